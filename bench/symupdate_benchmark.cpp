// bench/symupdate_benchmark.cpp
//
// The weighted rank-one update of a packed symmetric matrix, KXSymMatrix::
// UpdateXX, beside the BLAS packed rank-one update dspr (uplo 'U': the upper
// triangle packed column by column is the same memory layout as our lower
// triangle packed row by row) from OpenBLAS (one thread) and the reference
// BLAS, on the same matrix order and case vector.
//
//   symupdate_benchmark --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
//
// Compare the median times of one order: ours / peer is the speed ratio.
// The matrix-vector product ComputeSV is timed beside dspmv the same way,
// and the quadratic form ComputeVSV beside dspmv followed by ddot.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "PeerLibraries.h"
#include "kxcommonr/common/sparse/KXSparseVector.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace {

// Fortran dspr with the hidden length of the character argument.
using DsprFn = void (*)(const char* uplo, const int* n, const double* alpha,
                        const double* x, const int* incx, double* ap,
                        std::size_t uploLength);

std::vector<double> CaseVector(int n, double zeroShare) {
  std::mt19937_64 engine(12345);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  std::vector<double> x(static_cast<std::size_t>(n));
  for (double& value : x) {
    value = uniform(engine) < zeroShare ? 0.0 : uniform(engine) - 0.5;
  }
  return x;
}

void BM_UpdateXX(benchmark::State& state, double zeroShare) {
  const int n = static_cast<int>(state.range(0));
  KXCommon::KXSymMatrix matrix(n);
  const std::vector<double> x = CaseVector(n, zeroShare);
  for (auto _ : state) {
    matrix.UpdateXX(x, 1e-3);
    benchmark::DoNotOptimize(matrix.AsVector().data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_Dspr(benchmark::State& state, const kxbench::PeerLibrary& peer,
             double zeroShare) {
  DsprFn dspr;
  if (!kxbench::FindRoutines(state, peer, dspr, "dspr_")) return;
  const int n = static_cast<int>(state.range(0));
  std::vector<double> packed(static_cast<std::size_t>(n) * (n + 1) / 2, 0.0);
  const std::vector<double> x = CaseVector(n, zeroShare);
  const double alpha = 1e-3;
  const int inc = 1;
  for (auto _ : state) {
    dspr("U", &n, &alpha, x.data(), &inc, packed.data(), 1);
    benchmark::DoNotOptimize(packed.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
}

using DspmvFn = void (*)(const char* uplo, const int* n, const double* alpha,
                         const double* ap, const double* x, const int* incx,
                         const double* beta, double* y, const int* incy,
                         std::size_t uploLength);

void BM_ComputeSV(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  KXCommon::KXSymMatrix matrix(n);
  matrix.UpdateXX(CaseVector(n, 0.0), 1.0);
  matrix.AddToDiagonal(1.0);
  const std::vector<double> x = CaseVector(n, 0.0);
  std::vector<double> y(static_cast<std::size_t>(n));
  for (auto _ : state) {
    matrix.ComputeSV(x, y);
    benchmark::DoNotOptimize(y.data());
    benchmark::ClobberMemory();
  }
}

void BM_Dspmv(benchmark::State& state, const kxbench::PeerLibrary& peer) {
  DspmvFn dspmv;
  if (!kxbench::FindRoutines(state, peer, dspmv, "dspmv_")) return;
  const int n = static_cast<int>(state.range(0));
  KXCommon::KXSymMatrix matrix(n);
  matrix.UpdateXX(CaseVector(n, 0.0), 1.0);
  matrix.AddToDiagonal(1.0);
  const std::vector<double> x = CaseVector(n, 0.0);
  std::vector<double> y(static_cast<std::size_t>(n));
  const double one = 1.0, zero = 0.0;
  const int inc = 1;
  for (auto _ : state) {
    dspmv("U", &n, &one, matrix.AsVector().data(), x.data(), &inc, &zero,
          y.data(), &inc, 1);
    benchmark::DoNotOptimize(y.data());
    benchmark::ClobberMemory();
  }
}

using DdotFn = double (*)(const int* n, const double* x, const int* incx,
                          const double* y, const int* incy);

void BM_ComputeVSV(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  KXCommon::KXSymMatrix matrix(n);
  matrix.UpdateXX(CaseVector(n, 0.0), 1.0);
  matrix.AddToDiagonal(1.0);
  const std::vector<double> x = CaseVector(n, 0.0);
  for (auto _ : state) benchmark::DoNotOptimize(matrix.ComputeVSV(x));
}

void BM_DspmvDdot(benchmark::State& state, const kxbench::PeerLibrary& peer) {
  DspmvFn dspmv;
  DdotFn ddot;
  if (!kxbench::FindRoutines(state, peer, dspmv, "dspmv_", ddot, "ddot_")) return;
  const int n = static_cast<int>(state.range(0));
  KXCommon::KXSymMatrix matrix(n);
  matrix.UpdateXX(CaseVector(n, 0.0), 1.0);
  matrix.AddToDiagonal(1.0);
  const std::vector<double> x = CaseVector(n, 0.0);
  std::vector<double> y(static_cast<std::size_t>(n));
  const double one = 1.0, zero = 0.0;
  const int inc = 1;
  for (auto _ : state) {
    dspmv("U", &n, &one, matrix.AsVector().data(), x.data(), &inc, &zero,
          y.data(), &inc, 1);
    benchmark::DoNotOptimize(ddot(&n, x.data(), &inc, y.data(), &inc));
  }
}

void Orders(benchmark::internal::Benchmark* b) {
  for (int n : {10, 50, 200, 1000}) b->Arg(n);
}

// Dense case vectors.
BENCHMARK_CAPTURE(BM_UpdateXX, dense, 0.0)->Apply(Orders);
BENCHMARK_CAPTURE(BM_Dspr, openblas_dense, kxbench::OpenBlas(), 0.0)->Apply(Orders);
BENCHMARK_CAPTURE(BM_Dspr, refblas_dense, kxbench::ReferenceBlas(), 0.0)->Apply(Orders);
// Half the elements zero, as with dummy-coded categorical predictors.
BENCHMARK_CAPTURE(BM_UpdateXX, half_zero, 0.5)->Apply(Orders);
BENCHMARK_CAPTURE(BM_Dspr, openblas_half_zero, kxbench::OpenBlas(), 0.5)->Apply(Orders);

// Matrix-vector product.
BENCHMARK(BM_ComputeSV)->Apply(Orders);
BENCHMARK_CAPTURE(BM_Dspmv, openblas, kxbench::OpenBlas())->Apply(Orders);

// Quadratic form.
BENCHMARK(BM_ComputeVSV)->Apply(Orders);
BENCHMARK_CAPTURE(BM_DspmvDdot, openblas, kxbench::OpenBlas())->Apply(Orders);

}  // namespace

// A dummy-coded case at p = 70: 19 numeric predictors, a factor of 50 levels
// (one dummy set) and the response. The layout puts the factor first, as a
// model with the factor entered first has it.
KXCommon::KXSparseVector FactorCase() {
  KXCommon::KXSparseVector x(70);
  x.Append(17, 1.0);                                      // the case's level
  for (int i = 50; i < 70; ++i) x.Append(i, 0.37 * i - 11.0);  // numeric predictors, response
  return x;
}

void BM_FactorCaseSparse(benchmark::State& state) {
  const KXCommon::KXSparseVector x = FactorCase();
  KXCommon::KXSymMatrix sscp(70);
  for (auto _ : state) {
    x.UpdateXX(sscp, 1.0);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_FactorCaseSparse);

void BM_FactorCaseDense(benchmark::State& state) {
  const std::vector<double> x = FactorCase().ToDense();
  KXCommon::KXSymMatrix sscp(70);
  for (auto _ : state) {
    sscp.UpdateXX(x, 1.0);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_FactorCaseDense);

BENCHMARK_MAIN();
