// The data pass: weighted univariate statistics over 10^7 values (1% missing)
// beside Boost.Accumulators and GSL's weighted statistics, and reading a
// 100 MB CSV (20 numeric and 2 text columns) from memory into typed records
// beside the plain std::getline + std::strtod loop.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#ifdef KXBENCH_HAVE_BOOST_ACCUMULATORS
#include <boost/accumulators/accumulators.hpp>
#include <boost/accumulators/statistics/count.hpp>
#include <boost/accumulators/statistics/max.hpp>
#include <boost/accumulators/statistics/min.hpp>
#include <boost/accumulators/statistics/stats.hpp>
#include <boost/accumulators/statistics/weighted_mean.hpp>
#include <boost/accumulators/statistics/weighted_variance.hpp>
#endif
#ifdef KXBENCH_HAVE_GSL
#include <gsl/gsl_statistics_double.h>
#endif

#include "kxcommonr/kxcommonr.h"

namespace {

using KXCommon::KXMV;
using namespace KXMTD_NAMESPACE;

constexpr std::size_t kValues = 10000000;

struct Data {
  std::vector<double> values, weights;
  Data() : values(kValues), weights(kValues) {
    std::mt19937_64 random(42);
    std::normal_distribution<double> normal(100.0, 15.0);
    for (std::size_t i = 0; i < kValues; ++i) {
      values[i] = random() % 100 == 0 ? KXMV::Missing() : normal(random);
      weights[i] = static_cast<double>(1 + random() % 4);
    }
  }
};

const Data& TheData() {
  static const Data data;
  return data;
}

// count, minimum, maximum, mean and variance.
void BM_StatsOurs(benchmark::State& state) {
  const Data& d = TheData();
  for (auto _ : state) {
    KXContStats stats(2);
    for (std::size_t i = 0; i < kValues; ++i) stats.Add(d.values[i], d.weights[i]);
    benchmark::DoNotOptimize(stats.GetVariance() + stats.GetMin() + stats.GetMax());
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kValues));
}
BENCHMARK(BM_StatsOurs)->Unit(benchmark::kMillisecond);

// The same through the block form of Add.
void BM_StatsOursBlocks(benchmark::State& state) {
  const Data& d = TheData();
  for (auto _ : state) {
    KXContStats stats(2);
    stats.Add(d.values.data(), d.weights.data(), kValues);
    benchmark::DoNotOptimize(stats.GetVariance() + stats.GetMin() + stats.GetMax());
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kValues));
}
BENCHMARK(BM_StatsOursBlocks)->Unit(benchmark::kMillisecond);

#ifdef KXBENCH_HAVE_BOOST_ACCUMULATORS
void BM_StatsBoostAccumulators(benchmark::State& state) {
  namespace acc = boost::accumulators;
  const Data& d = TheData();
  for (auto _ : state) {
    acc::accumulator_set<double,
                         acc::stats<acc::tag::count, acc::tag::min, acc::tag::max,
                                    acc::tag::weighted_mean, acc::tag::weighted_variance>,
                         double>
        a;
    for (std::size_t i = 0; i < kValues; ++i) {
      if (!KXMV::IsMissing(d.values[i])) a(d.values[i], acc::weight = d.weights[i]);
    }
    benchmark::DoNotOptimize(acc::weighted_variance(a) + acc::min(a) + acc::max(a) +
                             static_cast<double>(acc::count(a)));
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kValues));
}
BENCHMARK(BM_StatsBoostAccumulators)->Unit(benchmark::kMillisecond);
#endif

#ifdef KXBENCH_HAVE_GSL
// GSL works on arrays without missing values: the valid ones are gathered
// first, then mean, variance and range are separate passes.
void BM_StatsGsl(benchmark::State& state) {
  const Data& d = TheData();
  std::vector<double> x, w;
  x.reserve(kValues);
  w.reserve(kValues);
  for (auto _ : state) {
    x.clear();
    w.clear();
    for (std::size_t i = 0; i < kValues; ++i) {
      if (!KXMV::IsMissing(d.values[i])) {
        x.push_back(d.values[i]);
        w.push_back(d.weights[i]);
      }
    }
    const double mean = gsl_stats_wmean(w.data(), 1, x.data(), 1, x.size());
    const double variance = gsl_stats_wvariance_m(w.data(), 1, x.data(), 1, x.size(), mean);
    double lo = 0, hi = 0;
    gsl_stats_minmax(&lo, &hi, x.data(), 1, x.size());
    benchmark::DoNotOptimize(variance + lo + hi);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kValues));
}
BENCHMARK(BM_StatsGsl)->Unit(benchmark::kMillisecond);
#endif

// About 100 MB: 20 numeric columns and 2 text columns.
const std::string& Csv() {
  static const std::string text = [] {
    std::mt19937_64 random(7);
    std::string csv;
    for (int c = 0; c < 20; ++c) csv += "x" + std::to_string(c) + ",";
    csv += "name,group\n";
    char cell[32];
    while (csv.size() < 100u * 1000u * 1000u) {
      for (int c = 0; c < 20; ++c) {
        const int length = std::snprintf(cell, sizeof cell, "%.6g,",
                                         static_cast<double>(random() % 2000000) / 997.0 - 900.0);
        csv.append(cell, static_cast<std::size_t>(length));
      }
      csv += "customer" + std::to_string(random() % 100000) + ",group" +
             std::to_string(random() % 50) + "\n";
    }
    return csv;
  }();
  return text;
}

void BM_CsvOurs(benchmark::State& state) {
  std::istringstream in(Csv());
  std::vector<RawData::Type> types(20, RawData::Real);
  types.push_back(RawData::String);
  types.push_back(RawData::String);
  KXTextRecordIterator it(in, KXTextRecordIterator::Options(), types);
  RawRecord record;
  for (auto _ : state) {
    it.NewPass();
    double sum = 0;
    double x = 0;
    while (it.Next(record)) {
      if (record[0].AsReal(x)) sum += x;
    }
    if (!it.GetFailReason().empty()) state.SkipWithError(it.GetFailReason().c_str());
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * Csv().size()));
}
BENCHMARK(BM_CsvOurs)->Unit(benchmark::kMillisecond);

// The plain loop: one line at a time, fields split at commas (no quotes),
// numbers by strtod, texts copied into strings.
void BM_CsvGetlineStrtod(benchmark::State& state) {
  std::istringstream in(Csv());
  std::string line;
  std::vector<double> numbers(20);
  std::string name, group;
  for (auto _ : state) {
    in.clear();
    in.seekg(0);
    std::getline(in, line);  // the header
    double sum = 0;
    while (std::getline(in, line)) {
      const char* p = line.c_str();
      char* end = nullptr;
      for (int c = 0; c < 20; ++c) {
        numbers[static_cast<std::size_t>(c)] = std::strtod(p, &end);
        p = end + 1;
      }
      const char* comma = std::strchr(p, ',');
      name.assign(p, comma);
      group.assign(comma + 1);
      sum += numbers[0];
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * Csv().size()));
}
BENCHMARK(BM_CsvGetlineStrtod)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
