// Level-1 kernels of kxcommonr beside the reference BLAS (Netlib) and
// OpenBLAS (one thread), on the same inputs in the same program.
//
// Names: <kernel>/<implementation>/<n>. Compare the times of one kernel and n
// across implementations (ours / peer). The summations (DDot, DASum and the
// KXMathFun sums) keep the reference order of additions, so their floor is
// the latency of one dependent addition per element; DNrm2 keeps the classic
// scaled algorithm. The elementwise kernels are vectorised.
#include <benchmark/benchmark.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "PeerLibraries.h"
#include "kxcommonr/common/vector/Blas1.h"
#include "kxcommonr/common/vector/KXMathFun.h"

namespace {

using KXCommon::Blas1;
using KXCommon::KXMathFun;

using DotFn = double (*)(const int*, const double*, const int*, const double*, const int*);
using Norm1Fn = double (*)(const int*, const double*, const int*);
using AxpyFn = void (*)(const int*, const double*, const double*, const int*, double*, const int*);
using ScalFn = void (*)(const int*, const double*, double*, const int*);
using CopyFn = void (*)(const int*, const double*, const int*, double*, const int*);
using SwapFn = void (*)(const int*, double*, const int*, double*, const int*);
using RotFn = void (*)(const int*, double*, const int*, double*, const int*, const double*,
                       const double*);
using IamaxFn = int (*)(const int*, const double*, const int*);

struct Data {
  std::vector<double> x;
  std::vector<double> y;
};

Data& Inputs(int n) {
  static std::vector<std::pair<int, Data>> cache;
  for (auto& entry : cache) {
    if (entry.first == n) return entry.second;
  }
  std::mt19937_64 rng(static_cast<std::uint64_t>(n));
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  Data data{std::vector<double>(static_cast<std::size_t>(n)),
            std::vector<double>(static_cast<std::size_t>(n))};
  for (double& v : data.x) v = value(rng);
  for (double& v : data.y) v = value(rng);
  cache.emplace_back(n, std::move(data));
  return cache.back().second;
}

const int kOne = 1;

void SetCounters(benchmark::State& state, int n, int arrays) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * n);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * n * arrays * 8);
}

// Registers one benchmark per peer of a Fortran symbol; `body` receives the
// resolved function pointer (nullptr for ours).
template <typename Fn>
void RegisterPeers(const std::string& kernel, const char* symbol, int n,
                   std::function<void(benchmark::State&, Fn)> body) {
  const kxbench::PeerLibrary* peers[] = {&kxbench::ReferenceBlas(), &kxbench::OpenBlas()};
  for (const kxbench::PeerLibrary* peer : peers) {
    const std::string name = kernel + "/" + peer->Name() + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(), [peer, symbol, body](benchmark::State& state) {
      Fn fn;
      if (kxbench::FindRoutines(state, *peer, fn, symbol)) body(state, fn);
    });
  }
}

void RegisterAll() {
  for (int n : {100, 10000, 1000000}) {
    const std::string size = std::to_string(n);

    // --- Summations.
    benchmark::RegisterBenchmark(("DDot/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(Blas1::DDot(n, d.x.data(), 1, d.y.data(), 1));
      SetCounters(state, n, 2);
    });
    RegisterPeers<DotFn>("DDot", "ddot_", n, [n](benchmark::State& state, DotFn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne, d.y.data(), &kOne));
      SetCounters(state, n, 2);
    });
    benchmark::RegisterBenchmark(("DASum/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(Blas1::DASum(n, d.x.data(), 1));
      SetCounters(state, n, 1);
    });
    RegisterPeers<Norm1Fn>("DASum", "dasum_", n, [n](benchmark::State& state, Norm1Fn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne));
      SetCounters(state, n, 1);
    });
    benchmark::RegisterBenchmark(("DNrm2/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(Blas1::DNrm2(n, d.x.data(), 1));
      SetCounters(state, n, 1);
    });
    RegisterPeers<Norm1Fn>("DNrm2", "dnrm2_", n, [n](benchmark::State& state, Norm1Fn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne));
      SetCounters(state, n, 1);
    });

    // The KXMathFun sums over std::vector, beside the same peers.
    benchmark::RegisterBenchmark(("MathFunDDot/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(KXMathFun::DDot(n, d.x, 0, 1, d.y, 0, 1));
      SetCounters(state, n, 2);
    });
    RegisterPeers<DotFn>("MathFunDDot", "ddot_", n, [n](benchmark::State& state, DotFn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne, d.y.data(), &kOne));
      SetCounters(state, n, 2);
    });
    benchmark::RegisterBenchmark(("MathFunDASum/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(KXMathFun::DASum(n, d.x, 0, 1));
      SetCounters(state, n, 1);
    });
    RegisterPeers<Norm1Fn>("MathFunDASum", "dasum_", n, [n](benchmark::State& state, Norm1Fn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne));
      SetCounters(state, n, 1);
    });
    // A plain sum has no BLAS counterpart; the sum of magnitudes is the
    // nearest (same order, one more operation per element).
    benchmark::RegisterBenchmark(("MathFunDSum/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(KXMathFun::DSum(n, d.x, 1));
      SetCounters(state, n, 1);
    });
    RegisterPeers<Norm1Fn>("MathFunDSum", "dasum_", n, [n](benchmark::State& state, Norm1Fn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne));
      SetCounters(state, n, 1);
    });
    benchmark::RegisterBenchmark(("MathFunDNrm2/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(KXMathFun::DNrm2(n, d.x, 0, 1));
      SetCounters(state, n, 1);
    });
    RegisterPeers<Norm1Fn>("MathFunDNrm2", "dnrm2_", n, [n](benchmark::State& state, Norm1Fn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne));
      SetCounters(state, n, 1);
    });

    // --- Elementwise kernels.
    const double a = 1e-9;
    benchmark::RegisterBenchmark(("Daxpy/kxcommonr/" + size).c_str(), [n, a](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) {
        Blas1::Daxpy(n, a, d.x.data(), 1, d.y.data(), 1);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 3);
    });
    RegisterPeers<AxpyFn>("Daxpy", "daxpy_", n, [n, a](benchmark::State& state, AxpyFn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) {
        fn(&n, &a, d.x.data(), &kOne, d.y.data(), &kOne);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 3);
    });
    // Scaling alternates two factors whose product is exactly 1.
    benchmark::RegisterBenchmark(("DScal/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      double factor = 2.0;
      for (auto _ : state) {
        Blas1::DScal(n, factor, d.y.data(), 1);
        factor = 1.0 / factor;
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 2);
    });
    RegisterPeers<ScalFn>("DScal", "dscal_", n, [n](benchmark::State& state, ScalFn fn) {
      Data& d = Inputs(n);
      double factor = 2.0;
      for (auto _ : state) {
        fn(&n, &factor, d.y.data(), &kOne);
        factor = 1.0 / factor;
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 2);
    });
    benchmark::RegisterBenchmark(("DCopy/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      std::vector<double> target(static_cast<std::size_t>(n));
      for (auto _ : state) {
        Blas1::DCopy(n, d.x.data(), 1, target.data(), 1);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 2);
    });
    RegisterPeers<CopyFn>("DCopy", "dcopy_", n, [n](benchmark::State& state, CopyFn fn) {
      Data& d = Inputs(n);
      std::vector<double> target(static_cast<std::size_t>(n));
      for (auto _ : state) {
        fn(&n, d.x.data(), &kOne, target.data(), &kOne);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 2);
    });
    benchmark::RegisterBenchmark(("DSwap/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) {
        Blas1::DSwap(n, d.x.data(), 1, d.y.data(), 1);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 4);
    });
    RegisterPeers<SwapFn>("DSwap", "dswap_", n, [n](benchmark::State& state, SwapFn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) {
        fn(&n, d.x.data(), &kOne, d.y.data(), &kOne);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 4);
    });
    const double c = 0.6, s = 0.8;
    benchmark::RegisterBenchmark(("DRot/kxcommonr/" + size).c_str(), [n, c, s](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) {
        Blas1::DRot(n, d.x.data(), 1, d.y.data(), 1, c, s);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 4);
    });
    RegisterPeers<RotFn>("DRot", "drot_", n, [n, c, s](benchmark::State& state, RotFn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) {
        fn(&n, d.x.data(), &kOne, d.y.data(), &kOne, &c, &s);
        benchmark::ClobberMemory();
      }
      SetCounters(state, n, 4);
    });
    benchmark::RegisterBenchmark(("IDAMax/kxcommonr/" + size).c_str(), [n](benchmark::State& state) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(Blas1::IDAMax(n, d.x.data(), 1));
      SetCounters(state, n, 1);
    });
    RegisterPeers<IamaxFn>("IDAMax", "idamax_", n, [n](benchmark::State& state, IamaxFn fn) {
      Data& d = Inputs(n);
      for (auto _ : state) benchmark::DoNotOptimize(fn(&n, d.x.data(), &kOne));
      SetCounters(state, n, 1);
    });
  }
}

// The summations promise the reference order of additions: check the bits
// against the reference BLAS on the benchmark inputs and report it.
void ReportBitIdentity() {
  const kxbench::PeerLibrary& reference = kxbench::ReferenceBlas();
  DotFn ddot;
  Norm1Fn dasum;
  if (!kxbench::FindRoutines(reference, ddot, "ddot_", dasum, "dasum_").empty()) return;
  bool same = true;
  for (int n : {100, 10000, 1000000}) {
    Data& d = Inputs(n);
    same = same && Blas1::DDot(n, d.x.data(), 1, d.y.data(), 1) ==
                       ddot(&n, d.x.data(), &kOne, d.y.data(), &kOne);
    same = same && KXMathFun::DDot(n, d.x, 0, 1, d.y, 0, 1) ==
                       ddot(&n, d.x.data(), &kOne, d.y.data(), &kOne);
    same = same && Blas1::DASum(n, d.x.data(), 1) == dasum(&n, d.x.data(), &kOne);
    same = same && KXMathFun::DASum(n, d.x, 0, 1) == dasum(&n, d.x.data(), &kOne);
  }
  benchmark::AddCustomContext("DDot/DASum bit-identical to refblas", same ? "yes" : "NO");
}

// Registered before the benchmark main runs.
[[maybe_unused]] const bool kRegistered = (RegisterAll(), ReportBitIdentity(), true);

}  // namespace

BENCHMARK_MAIN();
