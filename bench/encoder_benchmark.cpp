// Encoding raw values through the categorical encoders beside a plain
// std::unordered_map / std::map lookup of the same keys, and writing and
// reading a description of 1000 variables in the object stream.
//
// Each encoding benchmark encodes 10^6 raw values drawn from k categories
// (k = 10 and 10^4) whose dictionary was built beforehand; the encoder is
// called through IKXEncoder::Encode, as a data pass calls it.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "kxcommonr/kxcommonr.h"

namespace {

using namespace KXMTD_NAMESPACE;

constexpr int kValues = 1000000;

double NumericKey(int i) { return i * 0.37 - 1000.25; }
std::string StringKey(int i) { return "category_" + std::to_string(i * 7919) + "_level"; }

// 10^6 keys drawn uniformly from the first k.
template <class Key, class Make>
std::vector<Key> Draws(int k, Make make) {
  std::mt19937 random(12345);
  std::vector<Key> draws(kValues);
  for (Key& d : draws) d = make(static_cast<int>(random() % static_cast<unsigned>(k)));
  return draws;
}

template <class Encoder, class Key, class Make>
void EncodeOurs(benchmark::State& state, Make make) {
  const int k = static_cast<int>(state.range(0));
  Encoder encoder;
  for (int i = 0; i < k; ++i) encoder.AddCategory(make(i));
  encoder.SetGrowing(false);
  IKXEncoder& generic = encoder;
  const std::vector<Key> draws = Draws<Key>(k, make);
  for (auto _ : state) {
    double sum = 0;
    for (const Key& d : draws) sum += generic.Encode(d);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}

template <class Map, class Key, class Make>
void EncodeMap(benchmark::State& state, Make make) {
  const int k = static_cast<int>(state.range(0));
  Map map;
  for (int i = 0; i < k; ++i) map.emplace(make(i), i);
  const std::vector<Key> draws = Draws<Key>(k, make);
  for (auto _ : state) {
    double sum = 0;
    for (const Key& d : draws) {
      const auto found = map.find(d);
      sum += found != map.end() ? found->second : -1;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}

void BM_NumericOurs(benchmark::State& s) { EncodeOurs<KXCatNumEncoder, double>(s, NumericKey); }
void BM_NumericUnorderedMap(benchmark::State& s) {
  EncodeMap<std::unordered_map<double, int>, double>(s, NumericKey);
}
void BM_NumericMap(benchmark::State& s) { EncodeMap<std::map<double, int>, double>(s, NumericKey); }
void BM_StringOurs(benchmark::State& s) { EncodeOurs<KXStringEncoder, std::string>(s, StringKey); }
void BM_StringUnorderedMap(benchmark::State& s) {
  EncodeMap<std::unordered_map<std::string, int>, std::string>(s, StringKey);
}
void BM_StringMap(benchmark::State& s) {
  EncodeMap<std::map<std::string, int>, std::string>(s, StringKey);
}

BENCHMARK(BM_NumericOurs)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NumericUnorderedMap)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NumericMap)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StringOurs)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StringUnorderedMap)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StringMap)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);

// 1000 variables: string categorical (12 levels each), continuous with four
// bins, and frequency weights, in turn.
std::vector<std::unique_ptr<IKXVariable>> Description(bool filled) {
  std::vector<std::unique_ptr<IKXVariable>> variables;
  for (int i = 0; i < 1000; ++i) {
    const std::string name = filled ? "variable_" + std::to_string(i) : "";
    if (i % 3 == 0) {
      auto* v = new KXCatVar(name, "label", 12, IKXVariable::MeasureStringCategorical,
                             IKXVariable::RoleInput, false);
      for (int k = 0; filled && k < 12; ++k) v->GetEncoder()->Encode(StringKey(k));
      variables.emplace_back(v);
    } else if (i % 3 == 1) {
      variables.emplace_back(new KXContVar(name, "label", -i, i * 3.5, IKXVariable::RoleInput, filled, 4));
    } else {
      variables.emplace_back(new KXWeightVar(name, "label", IKXVariable::WRoundClosest));
    }
  }
  return variables;
}

std::string DescriptionFile() {
  static const std::string path = [] {
    const std::string file = "kx_encoder_benchmark_description.txt";
    std::ofstream out(file, std::ios::binary);
    for (const auto& v : Description(true)) v->WriteObjectXML(out, 1);
    return file;
  }();
  return path;
}

void BM_WriteDescription(benchmark::State& state) {
  const auto variables = Description(true);
  std::size_t bytes = 0;
  for (auto _ : state) {
    std::ostringstream out;
    for (const auto& v : variables) v->WriteObjectXML(out, 1);
    bytes = out.str().size();
    benchmark::DoNotOptimize(bytes);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void BM_ReadDescription(benchmark::State& state) {
  const std::string path = DescriptionFile();
  std::ifstream probe(path, std::ios::binary | std::ios::ate);
  const std::int64_t bytes = static_cast<std::int64_t>(probe.tellg());
  for (auto _ : state) {
    state.PauseTiming();
    auto variables = Description(false);
    state.ResumeTiming();
    std::ifstream in(path, std::ios::binary);
    for (auto& v : variables) benchmark::DoNotOptimize(v->ReadObjectXML(in));
  }
  state.SetBytesProcessed(state.iterations() * bytes);
}

BENCHMARK(BM_WriteDescription)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadDescription)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
