// bench/symfactor_benchmark.cpp
//
// The factorising operations of KXSymMatrix beside LAPACK on the same
// positive definite matrix, in one run: OpenBLAS (one thread) and the
// reference LAPACK over the reference BLAS. Packed upper column-major ('U')
// is the same memory as our packed lower row-major, so the packed routines
// run on our very data; the full-storage routines get the full square.
//
//   LTChol                 vs dpptrf ('U', packed) and dpotrf (full)
//   CholInverse            vs dpptrf + dpptri
//   Sweep on every row     vs dpptrf + dpptri and dpotrf + dpotri
//
// Every timed iteration starts from a fresh copy of the matrix (the copy is
// timed for every contender alike). GFLOPS counts n^3/3 for a Cholesky and
// n^3 for an inverse, whatever the method.
//
//   symfactor_benchmark --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
//
// Ratio = our median time / the peer's median time at the same n.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "PeerLibraries.h"
#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace {

// Fortran LAPACK with the hidden length of the character argument.
using PackedFn = void (*)(const char* uplo, const int* n, double* ap, int* info,
                          std::size_t uploLength);
using FullFn = void (*)(const char* uplo, const int* n, double* a, const int* lda,
                        int* info, std::size_t uploLength);

// Random symmetric matrix with entries in [-1, 1] and n added to the
// diagonal: diagonally dominant, hence positive definite.
KXCommon::KXSymMatrix TestMatrix(int n) {
  std::mt19937_64 engine(2024);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  KXCommon::KXSymMatrix a(n);
  std::vector<double>& packed = a.AsVector();
  std::size_t k = 0;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) packed[k++] = uniform(engine) + (i == j ? n : 0.0);
  return a;
}

// Full column-major square of the packed matrix.
std::vector<double> FullSquare(const KXCommon::KXSymMatrix& a) {
  const int n = a.GetNRows();
  std::vector<double> full(static_cast<std::size_t>(n) * n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) full[static_cast<std::size_t>(j) * n + i] = a.GetElem(i, j);
  return full;
}

void SetFlops(benchmark::State& state, double flops) {
  state.counters["GFLOPS"] = benchmark::Counter(
      flops * 1e-9, benchmark::Counter::kIsIterationInvariantRate);
}

double Cube(benchmark::State& state) {
  const double n = static_cast<double>(state.range(0));
  return n * n * n;
}

// --- Cholesky ------------------------------------------------------------

void BM_LTChol(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const KXCommon::KXSymMatrix original = TestMatrix(n);
  std::vector<double> diag;
  original.GetDiagonal(diag);
  KXCommon::KXSymMatrix work(n);
  KXCommon::KXBitSet nonRedundant(n);
  for (auto _ : state) {
    work.AsVector() = original.GetData();
    benchmark::DoNotOptimize(work.LTChol(diag, 1e-12, nonRedundant, true));
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state) / 3.0);
}

void BM_Dpptrf(benchmark::State& state, const kxbench::PeerLibrary& peer) {
  PackedFn dpptrf;
  if (!kxbench::FindRoutines(state, peer, dpptrf, "dpptrf_")) return;
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> original = TestMatrix(n).GetData();
  std::vector<double> work;
  for (auto _ : state) {
    work = original;
    int info = 0;
    dpptrf("U", &n, work.data(), &info, 1);
    benchmark::DoNotOptimize(info);
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state) / 3.0);
}

void BM_Dpotrf(benchmark::State& state, const kxbench::PeerLibrary& peer) {
  FullFn dpotrf;
  if (!kxbench::FindRoutines(state, peer, dpotrf, "dpotrf_")) return;
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> original = FullSquare(TestMatrix(n));
  std::vector<double> work;
  for (auto _ : state) {
    work = original;
    int info = 0;
    dpotrf("L", &n, work.data(), &n, &info, 1);
    benchmark::DoNotOptimize(info);
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state) / 3.0);
}

// --- Inverse -------------------------------------------------------------

void BM_CholInverse(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const KXCommon::KXSymMatrix original = TestMatrix(n);
  std::vector<double> diag;
  original.GetDiagonal(diag);
  KXCommon::KXSymMatrix inverse(n);
  for (auto _ : state) {
    benchmark::DoNotOptimize(original.CholInverse(diag, 1e-12, inverse));
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state));
}

void BM_SweepAll(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const KXCommon::KXSymMatrix original = TestMatrix(n);
  std::vector<double> diag;
  original.GetDiagonal(diag);
  KXCommon::KXSymMatrix work(n);
  KXCommon::KXBitSet swept(n);
  for (auto _ : state) {
    work.AsVector() = original.GetData();
    swept.Clear();
    for (int k = 0; k < n; ++k) work.Sweep(k, 1e-12, diag, swept, true);
    benchmark::DoNotOptimize(work.AsVector().data());
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state));
}

// Every row through SweepRows: the blocked sweeps, the same result.
void BM_SweepRows(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const KXCommon::KXSymMatrix original = TestMatrix(n);
  std::vector<double> diag;
  original.GetDiagonal(diag);
  std::vector<int> rows(static_cast<std::size_t>(n));
  for (int k = 0; k < n; ++k) rows[static_cast<std::size_t>(k)] = k;
  KXCommon::KXSymMatrix work(n);
  KXCommon::KXBitSet swept(n);
  for (auto _ : state) {
    work.AsVector() = original.GetData();
    swept.Clear();
    benchmark::DoNotOptimize(work.SweepRows(rows, 1e-12, diag, swept, true));
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state));
}

void BM_DpptrfDpptri(benchmark::State& state, const kxbench::PeerLibrary& peer) {
  PackedFn dpptrf, dpptri;
  if (!kxbench::FindRoutines(state, peer, dpptrf, "dpptrf_", dpptri, "dpptri_")) return;
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> original = TestMatrix(n).GetData();
  std::vector<double> work;
  for (auto _ : state) {
    work = original;
    int info = 0;
    dpptrf("U", &n, work.data(), &info, 1);
    dpptri("U", &n, work.data(), &info, 1);
    benchmark::DoNotOptimize(info);
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state));
}

void BM_DpotrfDpotri(benchmark::State& state, const kxbench::PeerLibrary& peer) {
  FullFn dpotrf, dpotri;
  if (!kxbench::FindRoutines(state, peer, dpotrf, "dpotrf_", dpotri, "dpotri_")) return;
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> original = FullSquare(TestMatrix(n));
  std::vector<double> work;
  for (auto _ : state) {
    work = original;
    int info = 0;
    dpotrf("L", &n, work.data(), &n, &info, 1);
    dpotri("L", &n, work.data(), &n, &info, 1);
    benchmark::DoNotOptimize(info);
    benchmark::ClobberMemory();
  }
  SetFlops(state, Cube(state));
}

void Sizes(benchmark::internal::Benchmark* b) {
  b->Arg(100)->Arg(500)->Arg(1500)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_LTChol)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Dpptrf, openblas, kxbench::OpenBlas())->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Dpptrf, reflapack, kxbench::ReferenceLapack())->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Dpotrf, openblas, kxbench::OpenBlas())->Apply(Sizes);

BENCHMARK(BM_CholInverse)->Apply(Sizes);
BENCHMARK(BM_SweepAll)->Apply(Sizes);
BENCHMARK(BM_SweepRows)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DpptrfDpptri, openblas, kxbench::OpenBlas())->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DpptrfDpptri, reflapack, kxbench::ReferenceLapack())->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DpotrfDpotri, openblas, kxbench::OpenBlas())->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
