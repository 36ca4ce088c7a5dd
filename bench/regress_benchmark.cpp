// bench/regress_benchmark.cpp
//
// The kxregress fit and its CSV ingestion, each beside a peer in the same run.
//
// Fit: a weighted-least-squares fit of y on 20 predictors with intercept over
// N cases held in memory (CSV parsing excluded), through the program's path
// (means, centred cross-products by UpdateXX per case or UpdateXXMat2 over
// blocks, Sweep, residual pass), against the same fit by OpenBLAS on one
// thread: the same centring, the centred cross-products by dsyrk_ on blocks
// of cases, dpotrf_/dpotrs_/dpotri_ for coefficients and the inverse's
// diagonal, and the residual sum of squares through dgemv_ on blocks of
// cases. Report ours/peer from the same run.
//
// CSV: parsing N x 20 numbers of CSV text (bytes per second), from memory and
// from a file, against a plain strtod loop over the same text.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/PeerLibraries.h"
#include "examples/regress/CsvTable.h"
#include "examples/regress/RegressionFit.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace {

using kxregress::CsvTable;
using kxregress::RegressionFit;
using kxregress::RegressionModel;

constexpr int kPredictors = 20;

class Lcg {
 public:
  explicit Lcg(std::uint64_t seed) : state_(seed) {}
  double Uniform() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state_ >> 11) * 0x1.0p-53;
  }

 private:
  std::uint64_t state_;
};

// y, x1..x20: correlated predictors with different means and scales.
const CsvTable& Cases(std::size_t numCases) {
  static std::size_t cachedSize = 0;
  static CsvTable table;
  if (cachedSize == numCases) return table;
  Lcg random(numCases);
  std::vector<double> cells;
  cells.reserve(numCases * (kPredictors + 1));
  std::vector<double> x(kPredictors);
  for (std::size_t r = 0; r < numCases; ++r) {
    const double common = random.Uniform();
    double y = 0.0;
    for (int j = 0; j < kPredictors; ++j) {
      x[j] = 100.0 * j + (j + 1) * (random.Uniform() + 0.3 * common);
      y += (j % 3 - 1) * 0.5 * x[j];
    }
    cells.push_back(y + random.Uniform());
    cells.insert(cells.end(), x.begin(), x.end());
  }
  std::vector<std::string> names = {"y"};
  for (int j = 1; j <= kPredictors; ++j) names.push_back("x" + std::to_string(j));
  table.Assign(names, std::move(cells));
  cachedSize = numCases;
  return table;
}

RegressionModel FullModel(int caseBlock) {
  RegressionModel model;
  model.target = 0;
  for (int j = 1; j <= kPredictors; ++j) model.predictors.push_back(j);
  model.caseBlock = caseBlock;
  return model;
}

void BM_FitLibrary(benchmark::State& state, int caseBlock) {
  const CsvTable& table = Cases(static_cast<std::size_t>(state.range(0)));
  const RegressionModel model = FullModel(caseBlock);
  for (auto _ : state) {
    RegressionFit fit;
    kxregress::FitError error;
    if (!kxregress::FitRegression(table, model, fit, error)) {
      state.SkipWithError(error.message.c_str());
      return;
    }
    benchmark::DoNotOptimize(fit.coefficients.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

using DsyrkFn = void (*)(const char*, const char*, const int*, const int*, const double*,
                         const double*, const int*, const double*, double*, const int*);
using DpotrfFn = void (*)(const char*, const int*, double*, const int*, int*);
using DpotrsFn = void (*)(const char*, const int*, const int*, const double*, const int*, double*,
                          const int*, int*);
using DpotriFn = void (*)(const char*, const int*, double*, const int*, int*);
using DgemvFn = void (*)(const char*, const int*, const int*, const double*, const double*,
                         const int*, const double*, const int*, const double*, double*, const int*);

// The same fit on normal equations with OpenBLAS; returns false when a
// routine is missing or the factorisation fails.
bool FitOpenBlas(const CsvTable& table, int block, std::vector<double>& beta,
                 std::vector<double>& inverseDiagonal, double& rss) {
  DsyrkFn dsyrk;
  DpotrfFn dpotrf;
  DpotrsFn dpotrs;
  DpotriFn dpotri;
  DgemvFn dgemv;
  if (!kxbench::FindRoutines(kxbench::OpenBlas(), dsyrk, "dsyrk_", dpotrf, "dpotrf_", dpotrs,
                             "dpotrs_", dpotri, "dpotri_", dgemv, "dgemv_").empty()) {
    return false;
  }
  const int order = kPredictors + 1;  // predictors, then y
  const std::size_t numRows = table.NumRows();
  auto column = [](int k) { return k < kPredictors ? k + 1 : 0; };

  // The program's centring: means from one pass, cross-products about them
  // with the deviations summed on the way, then the rank-one correction.
  const double numCases = static_cast<double>(numRows);
  std::vector<double> mean(order, 0.0);
  for (std::size_t r = 0; r < numRows; ++r) {
    const double* row = table.Row(r);
    for (int k = 0; k < order; ++k) mean[k] += row[column(k)];
  }
  for (int k = 0; k < order; ++k) mean[k] /= numCases;

  // Centred cross-products, blocks of cases stored column-major for dsyrk_.
  std::vector<double> cross(static_cast<std::size_t>(order) * order, 0.0);
  std::vector<double> centred(static_cast<std::size_t>(block) * order);
  std::vector<double> deviation(order, 0.0);
  const double one = 1.0;
  for (std::size_t start = 0; start < numRows; start += static_cast<std::size_t>(block)) {
    const int rows = static_cast<int>(std::min<std::size_t>(block, numRows - start));
    for (int p = 0; p < rows; ++p) {
      const double* row = table.Row(start + static_cast<std::size_t>(p));
      for (int k = 0; k < order; ++k) {
        const double z = row[column(k)] - mean[k];
        centred[static_cast<std::size_t>(k) * rows + p] = z;
        deviation[k] += z;
      }
    }
    dsyrk("L", "T", &order, &rows, &one, centred.data(), &rows, &one, cross.data(), &order);
  }
  for (int k = 0; k < order; ++k) {
    const double delta = deviation[k] / numCases;
    mean[k] += delta;
    deviation[k] = delta;
  }
  for (int j = 0; j < order; ++j) {
    for (int i = j; i < order; ++i) {
      cross[static_cast<std::size_t>(j) * order + i] -= numCases * deviation[i] * deviation[j];
    }
  }

  // Coefficients from the predictor block, then its inverse for the errors.
  const int p = kPredictors;
  const int nrhs = 1;
  int info = 0;
  beta.assign(p, 0.0);
  for (int j = 0; j < p; ++j) beta[j] = cross[static_cast<std::size_t>(j) * order + p];
  dpotrf("L", &p, cross.data(), &order, &info);
  if (info != 0) return false;
  dpotrs("L", &p, &nrhs, cross.data(), &order, beta.data(), &p, &info);
  if (info != 0) return false;
  dpotri("L", &p, cross.data(), &order, &info);
  if (info != 0) return false;
  inverseDiagonal.resize(p);
  for (int j = 0; j < p; ++j) inverseDiagonal[j] = cross[static_cast<std::size_t>(j) * order + j];

  // Residuals by dgemv_ on blocks of the cases as stored (a block is a
  // column-major 21 x B matrix): fitted = x'b + intercept.
  std::vector<double> coefficientsByColumn(order, 0.0);
  double intercept = mean[p];
  for (int k = 0; k < p; ++k) {
    coefficientsByColumn[column(k)] = beta[k];
    intercept -= beta[k] * mean[k];
  }
  std::vector<double> fitted(static_cast<std::size_t>(block));
  const double zero = 0.0;
  const int unit = 1;
  rss = 0.0;
  for (std::size_t start = 0; start < numRows; start += static_cast<std::size_t>(block)) {
    const int rows = static_cast<int>(std::min<std::size_t>(block, numRows - start));
    dgemv("T", &order, &rows, &one, table.Row(start), &order, coefficientsByColumn.data(), &unit,
          &zero, fitted.data(), &unit);
    for (int q = 0; q < rows; ++q) {
      const double residual = table.Row(start + static_cast<std::size_t>(q))[0] - intercept - fitted[q];
      rss += residual * residual;
    }
  }
  return true;
}

void BM_FitOpenBlas(benchmark::State& state) {
  if (!kxbench::FindRoutines(state, kxbench::OpenBlas())) return;
  const CsvTable& table = Cases(static_cast<std::size_t>(state.range(0)));
  std::vector<double> beta;
  std::vector<double> inverseDiagonal;
  double rss = 0.0;
  for (auto _ : state) {
    if (!FitOpenBlas(table, static_cast<int>(state.range(1)), beta, inverseDiagonal, rss)) {
      state.SkipWithError("OpenBLAS routine missing or factorisation failed");
      return;
    }
    benchmark::DoNotOptimize(beta.data());
  }
  // Agreement with our fit, as a check that both compute the same thing.
  RegressionFit fit;
  kxregress::FitError error;
  if (kxregress::FitRegression(table, FullModel(0), fit, error)) {
    double worst = 0.0;
    for (int j = 0; j < kPredictors; ++j) {
      const double ours = fit.coefficients[j + 1].estimate;
      worst = std::max(worst, std::fabs(ours - beta[j]) / std::fabs(beta[j]));
    }
    state.counters["max_rel_diff_coef"] = worst;
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK_CAPTURE(BM_FitLibrary, UpdateXX, 0)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_FitLibrary, UpdateXXMat2_256, 256)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_FitLibrary, UpdateXXMat2_2048, 2048)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
// Second argument: cases per dsyrk_ block.
BENCHMARK(BM_FitOpenBlas)
    ->Args({100000, 256})
    ->Args({100000, 2048})
    ->Args({1000000, 256})
    ->Args({1000000, 2048})
    ->Unit(benchmark::kMillisecond);

// The cross-product kernel alone, on the 21 columns of the cases in memory
// (row-major, so a block of cases is a column-major 21 x B matrix for
// dsyrk_ with no copy): UpdateXX per case, UpdateXXMat2 per block of 256
// cases (copied into the two blocks it takes), dsyrk_ per block.
void BM_CrossProductsUpdateXX(benchmark::State& state) {
  const CsvTable& table = Cases(static_cast<std::size_t>(state.range(0)));
  const int order = table.NumColumns();
  std::vector<double> x(static_cast<std::size_t>(order));
  for (auto _ : state) {
    KXCommon::KXSymMatrix cross(order);
    for (std::size_t r = 0; r < table.NumRows(); ++r) {
      std::copy(table.Row(r), table.Row(r) + order, x.begin());
      cross.UpdateXX(x, 1.0);
    }
    benchmark::DoNotOptimize(cross.AsVector().data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_CrossProductsUpdateXXMat2(benchmark::State& state) {
  const CsvTable& table = Cases(static_cast<std::size_t>(state.range(0)));
  const int order = table.NumColumns();
  const int block = 256;
  KXCommon::KXRectMatrix cases(block, order);
  for (auto _ : state) {
    KXCommon::KXSymMatrix cross(order);
    for (std::size_t start = 0; start + block <= table.NumRows(); start += block) {
      std::copy(table.Row(start), table.Row(start + block), cases.AsVector().begin());
      cross.UpdateXXMat2(cases, cases, 1.0);
    }
    benchmark::DoNotOptimize(cross.AsVector().data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_CrossProductsDsyrk(benchmark::State& state) {
  DsyrkFn dsyrk;
  if (!kxbench::FindRoutines(state, kxbench::OpenBlas(), dsyrk, "dsyrk_")) return;
  const CsvTable& table = Cases(static_cast<std::size_t>(state.range(0)));
  const int order = table.NumColumns();
  const int block = 256;
  const double one = 1.0;
  for (auto _ : state) {
    std::vector<double> cross(static_cast<std::size_t>(order) * order, 0.0);
    for (std::size_t start = 0; start + block <= table.NumRows(); start += block) {
      dsyrk("L", "N", &order, &block, &one, table.Row(start), &order, &one, cross.data(), &order);
    }
    benchmark::DoNotOptimize(cross.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_CrossProductsUpdateXX)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CrossProductsUpdateXXMat2)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CrossProductsDsyrk)->Arg(1000000)->Unit(benchmark::kMillisecond);

// N cases of 20 numbers as CSV text, numbers of various lengths.
const std::string& CsvText(std::size_t numCases) {
  static std::size_t cachedSize = 0;
  static std::string text;
  if (cachedSize == numCases) return text;
  text.clear();
  for (int j = 1; j <= kPredictors; ++j) text += (j > 1 ? ",c" : "c") + std::to_string(j);
  text += '\n';
  Lcg random(7);
  char buffer[32];
  for (std::size_t r = 0; r < numCases; ++r) {
    for (int j = 0; j < kPredictors; ++j) {
      const double value = (random.Uniform() - 0.3) * std::pow(10.0, j % 7 - 2);
      std::snprintf(buffer, sizeof buffer, j % 2 ? "%.6g" : "%.10g", value);
      if (j > 0) text += ',';
      text += buffer;
    }
    text += '\n';
  }
  cachedSize = numCases;
  return text;
}

void BM_CsvParse(benchmark::State& state) {
  const std::string& text = CsvText(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    CsvTable table;
    std::string error;
    if (!table.Parse(text, error)) {
      state.SkipWithError(error.c_str());
      return;
    }
    benchmark::DoNotOptimize(table.Row(0));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

// Peer: a plain loop of strtod over the same text into the same row-major
// doubles (no quotes, no checks beyond strtod's own).
void BM_CsvStrtodLoop(benchmark::State& state) {
  const std::string& text = CsvText(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::vector<double> cells;
    cells.reserve(static_cast<std::size_t>(state.range(0)) * kPredictors);
    const char* p = text.c_str() + text.find('\n') + 1;
    const char* end = text.c_str() + text.size();
    while (p < end) {
      char* after = nullptr;
      cells.push_back(std::strtod(p, &after));
      p = after + 1;  // past ',' or '\n'
    }
    benchmark::DoNotOptimize(cells.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

// The whole program's ingestion: the CSV written to a temporary file once,
// then CsvTable::ReadFile (read everything, then parse).
void BM_CsvReadFile(benchmark::State& state) {
  const std::string& text = CsvText(static_cast<std::size_t>(state.range(0)));
  const std::string path =
      (std::filesystem::temp_directory_path() / "kxregress_benchmark.csv").string();
  {
    std::ofstream out(path, std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out) {
      state.SkipWithError("cannot write the temporary CSV file");
      return;
    }
  }
  for (auto _ : state) {
    CsvTable table;
    std::string error;
    if (!table.ReadFile(path, error)) {
      state.SkipWithError(error.c_str());
      break;
    }
    benchmark::DoNotOptimize(table.Row(0));
  }
  std::filesystem::remove(path);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

BENCHMARK(BM_CsvParse)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_CsvReadFile)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_CsvStrtodLoop)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
