// bench/rectmatrix_benchmark.cpp
//
// The rectangular-matrix products and the block cross-product update beside
// OpenBLAS (one thread), on the same inputs in the same run:
//   - KXRectMatrix::ComputeMatrixProduct vs dgemm, n x n times n x n;
//   - KXSymMatrix::UpdateXXMat2 on blocks of 256 cases vs dsyrk on the same
//     blocks, and the same cases one by one through UpdateXX vs dspr,
//     accumulating 10^5 cases of p variables (p = 50 and 200);
//   - KXRectMatrix::FindRedundancies on a 10^5 x 50 design vs dsyrk + dpotrf
//     (the cross products and a Cholesky factor of them).
//
//   rectmatrix_benchmark --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
//
// Compare the median times of the same arguments: ours / peer is the time
// ratio (below 1: ours faster). The GFLOPS counter counts multiply-adds as
// two operations (n(n+1)k for a triangle of cross products).
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "PeerLibraries.h"
#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace {

using KXCommon::KXBitSet;
using KXCommon::KXRectMatrix;
using KXCommon::KXSymMatrix;

// Fortran BLAS/LAPACK entry points with the hidden character lengths.
using DgemmFn = void (*)(const char*, const char*, const int*, const int*, const int*, const double*,
                         const double*, const int*, const double*, const int*, const double*, double*,
                         const int*, std::size_t, std::size_t);
using DsyrkFn = void (*)(const char*, const char*, const int*, const int*, const double*, const double*,
                         const int*, const double*, double*, const int*, std::size_t, std::size_t);
using DsprFn = void (*)(const char*, const int*, const double*, const double*, const int*, double*,
                        std::size_t);
using DpotrfFn = void (*)(const char*, const int*, double*, const int*, int*, std::size_t);

constexpr int kBlockCases = 256;
constexpr int kTotalCases = 100000;
constexpr int kBlockPool = 16;  // distinct blocks cycled through

KXRectMatrix RandomMatrix(int rows, int cols, unsigned seed) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  KXRectMatrix m(rows, cols);
  for (double& x : m.AsVector()) x = uniform(engine);
  return m;
}

std::vector<KXRectMatrix> BlockPool(int p) {
  std::vector<KXRectMatrix> pool;
  for (int b = 0; b < kBlockPool; ++b) pool.push_back(RandomMatrix(kBlockCases, p, 100u + b));
  return pool;
}

void SetFlops(benchmark::State& state, double flopsPerIteration) {
  state.counters["GFLOPS"] = benchmark::Counter(flopsPerIteration * static_cast<double>(state.iterations()) / 1e9,
                                                benchmark::Counter::kIsRate);
}

// --- Matrix product -------------------------------------------------------

void BM_ProductOurs(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const KXRectMatrix a = RandomMatrix(n, n, 1);
  const KXRectMatrix b = RandomMatrix(n, n, 2);
  KXRectMatrix c(n, n);
  for (auto _ : state) {
    a.ComputeMatrixProduct(b, c);
    benchmark::DoNotOptimize(c.AsVector().data());
  }
  SetFlops(state, 2.0 * n * n * n);
}

void BM_ProductOpenBlasDgemm(benchmark::State& state) {
  DgemmFn dgemm;
  if (!kxbench::FindRoutines(state, kxbench::OpenBlas(), dgemm, "dgemm_")) return;
  const int n = static_cast<int>(state.range(0));
  const KXRectMatrix a = RandomMatrix(n, n, 1);
  const KXRectMatrix b = RandomMatrix(n, n, 2);
  std::vector<double> c(static_cast<std::size_t>(n) * n);
  const double one = 1.0, zero = 0.0;
  for (auto _ : state) {
    // Row-major C = A B is column-major C' = B' A'.
    dgemm("N", "N", &n, &n, &n, &one, b.GetData().data(), &n, a.GetData().data(), &n, &zero, c.data(), &n, 1,
          1);
    benchmark::DoNotOptimize(c.data());
  }
  SetFlops(state, 2.0 * n * n * n);
}

// --- Accumulating cross products ------------------------------------------

void BM_UpdateXXMat2Blocks(benchmark::State& state) {
  const int p = static_cast<int>(state.range(0));
  const std::vector<KXRectMatrix> pool = BlockPool(p);
  const int blocks = kTotalCases / kBlockCases;
  for (auto _ : state) {
    KXSymMatrix cross(p);
    for (int b = 0; b < blocks; ++b) {
      const KXRectMatrix& block = pool[static_cast<std::size_t>(b % kBlockPool)];
      cross.UpdateXXMat2(block, block, 1.0);
    }
    benchmark::DoNotOptimize(cross.AsVector().data());
  }
  SetFlops(state, 1.0 * p * (p + 1) * blocks * kBlockCases);
}

void BM_UpdateXXCaseByCase(benchmark::State& state) {
  const int p = static_cast<int>(state.range(0));
  const std::vector<KXRectMatrix> pool = BlockPool(p);
  const int blocks = kTotalCases / kBlockCases;
  // The same cases as vectors, extracted before timing.
  std::vector<std::vector<double>> cases(static_cast<std::size_t>(kBlockPool) * kBlockCases);
  for (int b = 0; b < kBlockPool; ++b)
    for (int c = 0; c < kBlockCases; ++c)
      pool[static_cast<std::size_t>(b)].GetRow(c, cases[static_cast<std::size_t>(b) * kBlockCases + c]);
  for (auto _ : state) {
    KXSymMatrix cross(p);
    for (int b = 0; b < blocks; ++b) {
      const std::size_t first = static_cast<std::size_t>(b % kBlockPool) * kBlockCases;
      for (int c = 0; c < kBlockCases; ++c) cross.UpdateXX(cases[first + c], 1.0);
    }
    benchmark::DoNotOptimize(cross.AsVector().data());
  }
  SetFlops(state, 1.0 * p * (p + 1) * blocks * kBlockCases);
}

void BM_OpenBlasDsyrkBlocks(benchmark::State& state) {
  DsyrkFn dsyrk;
  if (!kxbench::FindRoutines(state, kxbench::OpenBlas(), dsyrk, "dsyrk_")) return;
  const int p = static_cast<int>(state.range(0));
  const std::vector<KXRectMatrix> pool = BlockPool(p);
  const int blocks = kTotalCases / kBlockCases;
  const int k = kBlockCases;
  const double one = 1.0;
  std::vector<double> cross(static_cast<std::size_t>(p) * p);
  for (auto _ : state) {
    std::fill(cross.begin(), cross.end(), 0.0);
    for (int b = 0; b < blocks; ++b) {
      // The row-major block (cases x p) is the column-major p x cases
      // matrix X'; C += X' (X')' = X'X.
      const KXRectMatrix& block = pool[static_cast<std::size_t>(b % kBlockPool)];
      dsyrk("U", "N", &p, &k, &one, block.GetData().data(), &p, &one, cross.data(), &p, 1, 1);
    }
    benchmark::DoNotOptimize(cross.data());
  }
  SetFlops(state, 1.0 * p * (p + 1) * blocks * kBlockCases);
}

void BM_OpenBlasDsprCaseByCase(benchmark::State& state) {
  DsprFn dspr;
  if (!kxbench::FindRoutines(state, kxbench::OpenBlas(), dspr, "dspr_")) return;
  const int p = static_cast<int>(state.range(0));
  const std::vector<KXRectMatrix> pool = BlockPool(p);
  const int blocks = kTotalCases / kBlockCases;
  const int inc = 1;
  const double one = 1.0;
  std::vector<double> packed(static_cast<std::size_t>(p) * (p + 1) / 2);
  for (auto _ : state) {
    std::fill(packed.begin(), packed.end(), 0.0);
    for (int b = 0; b < blocks; ++b) {
      const KXRectMatrix& block = pool[static_cast<std::size_t>(b % kBlockPool)];
      for (int c = 0; c < kBlockCases; ++c) dspr("U", &p, &one, block.GetRowPtr(c), &inc, packed.data(), 1);
    }
    benchmark::DoNotOptimize(packed.data());
  }
  SetFlops(state, 1.0 * p * (p + 1) * blocks * kBlockCases);
}

// --- Redundancy detection on a design -------------------------------------

KXRectMatrix Design(int cases, int p) {
  KXRectMatrix design = RandomMatrix(cases, p, 77);
  // Two dependent columns, so the factorisation has work to skip.
  for (int i = 0; i < cases; ++i) {
    design.SetElem(i, 7, design.GetElem(i, 1) + design.GetElem(i, 2));
    design.SetElem(i, 30, 3.0 * design.GetElem(i, 4));
  }
  return design;
}

void BM_FindRedundanciesOurs(benchmark::State& state) {
  const int p = static_cast<int>(state.range(0));
  KXRectMatrix design = Design(kTotalCases, p);
  KXBitSet kept;
  int redundant = 0;
  for (auto _ : state) {
    redundant = design.FindRedundancies(1e-7, kept, false);
    benchmark::DoNotOptimize(redundant);
  }
  if (redundant != 2) state.SkipWithError("unexpected redundancy count");
  SetFlops(state, 1.0 * p * (p + 1) * kTotalCases);
}

void BM_FindRedundanciesOpenBlas(benchmark::State& state) {
  DsyrkFn dsyrk;
  DpotrfFn dpotrf;
  if (!kxbench::FindRoutines(state, kxbench::OpenBlas(), dsyrk, "dsyrk_", dpotrf, "dpotrf_")) return;
  const int p = static_cast<int>(state.range(0));
  const KXRectMatrix design = Design(kTotalCases, p);
  const int k = kTotalCases;
  const double one = 1.0, zero = 0.0;
  std::vector<double> cross(static_cast<std::size_t>(p) * p);
  for (auto _ : state) {
    dsyrk("U", "N", &p, &k, &one, design.GetData().data(), &p, &zero, cross.data(), &p, 1, 1);
    int info = 0;
    dpotrf("U", &p, cross.data(), &p, &info, 1);  // stops at the first dependent column
    benchmark::DoNotOptimize(info);
  }
  SetFlops(state, 1.0 * p * (p + 1) * kTotalCases);
}

BENCHMARK(BM_ProductOurs)->Arg(500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProductOpenBlasDgemm)->Arg(500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateXXMat2Blocks)->Arg(50)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenBlasDsyrkBlocks)->Arg(50)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateXXCaseByCase)->Arg(50)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenBlasDsprCaseByCase)->Arg(50)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindRedundanciesOurs)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindRedundanciesOpenBlas)->Arg(50)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
