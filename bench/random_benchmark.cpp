// The random-number generators beside their peers, in one run: the
// Mersenne Twister word (ours through the library's exported call,
// std::mt19937 through a call that is not inlined and inlined, GSL's
// mt19937), bulk fills, KXURandom::GetRandom, and the variates of
// KXRandomValues (standard normal, exponential, gamma at shapes 0.5, 1.5,
// 10 and 1e4, chi-square) beside std::, GSL and R's standalone math
// library (its norm_rand set to Kinderman-Ramage).
//
// One iteration is one draw (the fills: 4096 words, and the counter
// ns_per_word), so the time per iteration compares directly: divide ours
// by a peer's of the same row. Our gamma draws are chi-square draws of 2a
// degrees of freedom (the same algorithm at shape a); uniforms_per_draw
// counts the uniforms one of our draws consumed, over 10^5 draws drawn
// before the timing. Peers are compiled in when CMake found them
// (KXBENCH_HAVE_GSL, KXBENCH_HAVE_RMATH); otherwise their rows are skipped
// with a message.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "kxcommonr/common/random/KXRandomTwister.h"
#include "kxcommonr/common/random/KXRandomValues.h"
#include "kxcommonr/common/random/KXURandom.h"

#if defined(KXBENCH_HAVE_GSL)
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>
#endif
#if defined(KXBENCH_HAVE_RMATH)
#define MATHLIB_STANDALONE
#include <Rmath.h>
#endif

namespace {

using KXCommon::KXRandomTwister;
using KXCommon::KXRandomValues;
using KXCommon::KXURandom;

constexpr int kFillWords = 4096;

#if defined(KXBENCH_HAVE_GSL)
// A fresh GSL mt19937 per benchmark, freed at its end.
struct GslRng {
  GslRng() : rng(gsl_rng_alloc(gsl_rng_mt19937)) { gsl_rng_set(rng, 5489); }
  ~GslRng() { gsl_rng_free(rng); }
  gsl_rng* rng;
};
#define KXBENCH_GSL(state) GslRng gsl
#else
#define KXBENCH_GSL(state)                  \
  state.SkipWithError("GSL not found");     \
  return
#endif

#if defined(KXBENCH_HAVE_RMATH)
// R's normal generator: Kinderman and Ramage (5 in R's N01type; 0 is the
// uncorrected version of R before 1.7.0).
void SeedR() {
  N01_kind = 5;
  set_seed(123, 456);
}
#define KXBENCH_RMATH(state) SeedR()
#else
#define KXBENCH_RMATH(state)                                         \
  state.SkipWithError("R's standalone math library (Rmath) not found"); \
  return
#endif

// std::mt19937 behind a call the compiler may not inline, as a library
// call would be.
__attribute__((noinline)) std::uint32_t NextWord(std::mt19937& g) { return static_cast<std::uint32_t>(g()); }

// ---- The twister word -------------------------------------------------------

void BM_Word_KXRandomTwister(benchmark::State& state) {
  KXRandomTwister t;
  t.Initialize(5489);
  for (auto _ : state) benchmark::DoNotOptimize(t.GetInteger32());
}
void BM_Word_StdMt19937NotInlined(benchmark::State& state) {
  std::mt19937 g(5489);
  for (auto _ : state) benchmark::DoNotOptimize(NextWord(g));
}
void BM_Word_StdMt19937Inlined(benchmark::State& state) {
  std::mt19937 g(5489);
  for (auto _ : state) benchmark::DoNotOptimize(g());
}
void BM_Word_GslMt19937(benchmark::State& state) {
  KXBENCH_GSL(state);
  for (auto _ : state) benchmark::DoNotOptimize(gsl_rng_get(gsl.rng));
}

// ---- Bulk fills of 4096 words ---------------------------------------------------

void PerWord(benchmark::State& state) {
  state.counters["ns_per_word"] = benchmark::Counter(
      kFillWords * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
void BM_Fill_KXFillInteger32(benchmark::State& state) {
  KXRandomTwister t;
  t.Initialize(5489);
  std::vector<std::uint32_t> out(kFillWords);
  for (auto _ : state) {
    t.FillInteger32(out.data(), out.size());
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  PerWord(state);
}
void BM_Fill_KXFillRealOpen(benchmark::State& state) {
  KXRandomTwister t;
  t.Initialize(5489);
  std::vector<double> out(kFillWords);
  for (auto _ : state) {
    t.FillRealOpen(out.data(), out.size());
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  PerWord(state);
}
void BM_Fill_StdMt19937Inlined(benchmark::State& state) {
  std::mt19937 g(5489);
  std::vector<std::uint32_t> out(kFillWords);
  for (auto _ : state) {
    for (auto& w : out) w = static_cast<std::uint32_t>(g());
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  PerWord(state);
}
void BM_Fill_GslMt19937(benchmark::State& state) {
  KXBENCH_GSL(state);
  std::vector<std::uint32_t> out(kFillWords);
  for (auto _ : state) {
    for (auto& w : out) w = static_cast<std::uint32_t>(gsl_rng_get(gsl.rng));
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  PerWord(state);
}

// ---- Uniforms on (0, 1) -----------------------------------------------------------

void BM_Uniform_KXURandom(benchmark::State& state) {
  KXURandom u;
  for (auto _ : state) benchmark::DoNotOptimize(u.GetRandom());
}
void BM_Uniform_StdUniformReal(benchmark::State& state) {
  std::mt19937 g(5489);
  std::uniform_real_distribution<double> d;
  for (auto _ : state) benchmark::DoNotOptimize(d(g));
}
void BM_Uniform_GslUniformPos(benchmark::State& state) {
  KXBENCH_GSL(state);
  for (auto _ : state) benchmark::DoNotOptimize(gsl_rng_uniform_pos(gsl.rng));
}
void BM_Uniform_RUnifRand(benchmark::State& state) {
  KXBENCH_RMATH(state);
  for (auto _ : state) benchmark::DoNotOptimize(unif_rand());
}

// ---- Variates of KXRandomValues -------------------------------------------------------

// Counts the uniforms of 10^5 draws of what `set` selects, then times draws.
struct Counting : KXCommon::KXRandom {
  double GetRandom() override {
    ++count;
    return twister.GetRealOpen();
  }
  KXRandomTwister twister;
  long count = 0;
};
template <class Set>
void KXDraws(benchmark::State& state, Set set) {
  Counting counting;
  KXURandom counted(0, true, true, &counting);
  KXRandomValues probe;
  probe.SetURNGPtr(&counted);
  set(probe);
  for (int i = 0; i < 100000; ++i) benchmark::DoNotOptimize(probe.GetRandom());
  KXRandomValues v;
  v.SetSeed(2024);
  set(v);
  for (auto _ : state) benchmark::DoNotOptimize(v.GetRandom());
  state.counters["uniforms_per_draw"] = counting.count / 1e5;
}

void BM_Normal_KXRandomValues(benchmark::State& state) {
  KXDraws(state, [](KXRandomValues& v) { v.SetParamNormal(); });
}
void BM_Normal_RKindermanRamage(benchmark::State& state) {
  KXBENCH_RMATH(state);
  for (auto _ : state) benchmark::DoNotOptimize(norm_rand());
}
void BM_Normal_StdNormal(benchmark::State& state) {
  std::mt19937 g(5489);
  std::normal_distribution<double> d;
  for (auto _ : state) benchmark::DoNotOptimize(d(g));
}
void BM_Normal_GslZiggurat(benchmark::State& state) {
  KXBENCH_GSL(state);
  for (auto _ : state) benchmark::DoNotOptimize(gsl_ran_gaussian_ziggurat(gsl.rng, 1.0));
}

void BM_Exponential_KXRandomValues(benchmark::State& state) {
  KXDraws(state, [](KXRandomValues& v) { v.SetParamChi(2.0); });
}
void BM_Exponential_RExpRand(benchmark::State& state) {
  KXBENCH_RMATH(state);
  for (auto _ : state) benchmark::DoNotOptimize(exp_rand());
}
void BM_Exponential_Std(benchmark::State& state) {
  std::mt19937 g(5489);
  std::exponential_distribution<double> d;
  for (auto _ : state) benchmark::DoNotOptimize(d(g));
}
void BM_Exponential_Gsl(benchmark::State& state) {
  KXBENCH_GSL(state);
  for (auto _ : state) benchmark::DoNotOptimize(gsl_ran_exponential(gsl.rng, 1.0));
}

void BM_Gamma_KXRandomValues(benchmark::State& state, double shape) {
  KXDraws(state, [shape](KXRandomValues& v) { v.SetParamChi(2.0 * shape); });
}
void BM_Gamma_KXMarsagliaTsang(benchmark::State& state, double shape) {
  KXDraws(state, [shape](KXRandomValues& v) {
    v.SetGammaMethod(KXRandomValues::kGammaMarsagliaTsang);
    v.SetParamChi(2.0 * shape);
  });
}
void BM_Gamma_R(benchmark::State& state, double shape) {
  KXBENCH_RMATH(state);
  for (auto _ : state) benchmark::DoNotOptimize(rgamma(shape, 1.0));
}
void BM_Gamma_Std(benchmark::State& state, double shape) {
  std::mt19937 g(5489);
  std::gamma_distribution<double> d(shape);
  for (auto _ : state) benchmark::DoNotOptimize(d(g));
}
void BM_Gamma_Gsl(benchmark::State& state, double shape) {
  KXBENCH_GSL(state);
  for (auto _ : state) benchmark::DoNotOptimize(gsl_ran_gamma(gsl.rng, shape, 1.0));
}

void BM_ChiSquare5_KXRandomValues(benchmark::State& state) {
  KXDraws(state, [](KXRandomValues& v) { v.SetParamChi(5.0); });
}
void BM_ChiSquare5_R(benchmark::State& state) {
  KXBENCH_RMATH(state);
  for (auto _ : state) benchmark::DoNotOptimize(rchisq(5.0));
}
void BM_ChiSquare5_Std(benchmark::State& state) {
  std::mt19937 g(5489);
  std::chi_squared_distribution<double> d(5.0);
  for (auto _ : state) benchmark::DoNotOptimize(d(g));
}
void BM_ChiSquare5_Gsl(benchmark::State& state) {
  KXBENCH_GSL(state);
  for (auto _ : state) benchmark::DoNotOptimize(gsl_ran_chisq(gsl.rng, 5.0));
}

}  // namespace

BENCHMARK(BM_Word_KXRandomTwister);
BENCHMARK(BM_Word_StdMt19937NotInlined);
BENCHMARK(BM_Word_StdMt19937Inlined);
BENCHMARK(BM_Word_GslMt19937);
BENCHMARK(BM_Fill_KXFillInteger32);
BENCHMARK(BM_Fill_KXFillRealOpen);
BENCHMARK(BM_Fill_StdMt19937Inlined);
BENCHMARK(BM_Fill_GslMt19937);
BENCHMARK(BM_Uniform_KXURandom);
BENCHMARK(BM_Uniform_StdUniformReal);
BENCHMARK(BM_Uniform_GslUniformPos);
BENCHMARK(BM_Uniform_RUnifRand);
BENCHMARK(BM_Normal_KXRandomValues);
BENCHMARK(BM_Normal_RKindermanRamage);
BENCHMARK(BM_Normal_StdNormal);
BENCHMARK(BM_Normal_GslZiggurat);
BENCHMARK(BM_Exponential_KXRandomValues);
BENCHMARK(BM_Exponential_RExpRand);
BENCHMARK(BM_Exponential_Std);
BENCHMARK(BM_Exponential_Gsl);
#define KXBENCH_GAMMA(shape, name)                                    \
  BENCHMARK_CAPTURE(BM_Gamma_KXRandomValues, name, shape);           \
  BENCHMARK_CAPTURE(BM_Gamma_KXMarsagliaTsang, name, shape);         \
  BENCHMARK_CAPTURE(BM_Gamma_R, name, shape);                        \
  BENCHMARK_CAPTURE(BM_Gamma_Std, name, shape);                      \
  BENCHMARK_CAPTURE(BM_Gamma_Gsl, name, shape)
KXBENCH_GAMMA(0.5, shape_0.5);
KXBENCH_GAMMA(1.5, shape_1.5);
KXBENCH_GAMMA(10.0, shape_10);
KXBENCH_GAMMA(1e4, shape_1e4);
BENCHMARK(BM_ChiSquare5_KXRandomValues);
BENCHMARK(BM_ChiSquare5_R);
BENCHMARK(BM_ChiSquare5_Std);
BENCHMARK(BM_ChiSquare5_Gsl);

BENCHMARK_MAIN();
