// Time per call of the KXDistFun CDFs, upper tails and quantiles beside
// Boost.Math (policy promote_double<false>, so that it computes in double
// like us) and GSL, on the same arguments in the same run.
//
// Each benchmark evaluates one function over a fixed table of 512 argument
// sets typical of statistical use (degrees of freedom 1 to 100, bodies and
// tails); the counter ns_per_call is the time of one call. Compare ours with
// a peer by the ratio of the two ns_per_call values of the same function.
// Peers are compiled in only when CMake found them (KXBENCH_HAVE_BOOST_MATH,
// KXBENCH_HAVE_GSL).
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "kxcommonr/common/dist/KXDistFun.h"

#if defined(KXBENCH_HAVE_BOOST_MATH)
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#endif
#if defined(KXBENCH_HAVE_GSL)
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_errno.h>
#endif

namespace {

using KXCommon::KXDistFun;

constexpr std::size_t kArguments = 512;

struct Arguments {
  double x[kArguments];   // normal argument / t / chi-square / F value
  double p[kArguments];   // probability in (0.001, 0.999) and tails
  double df1[kArguments];
  double df2[kArguments];
  double t[kArguments];
  double chi[kArguments];
  double f[kArguments];
};

const Arguments& Table() {
  static const Arguments table = [] {
    Arguments a;
    std::mt19937_64 random(42);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (std::size_t i = 0; i < kArguments; ++i) {
      a.x[i] = -8.0 + 12.0 * unit(random);
      // Probabilities: mostly the body, one in eight in a far tail.
      a.p[i] = i % 8 == 0 ? std::pow(10.0, -3.0 - 9.0 * unit(random))
                          : 0.001 + 0.998 * unit(random);
      a.df1[i] = std::floor(1.0 + 99.0 * unit(random) * unit(random)) +
                 (i % 4 == 0 ? 0.5 : 0.0);
      a.df2[i] = std::floor(2.0 + 98.0 * unit(random));
      a.t[i] = -6.0 + 12.0 * unit(random);
      a.chi[i] = a.df1[i] * (0.2 + 2.5 * unit(random));
      a.f[i] = 0.05 + 5.0 * unit(random);
    }
    return a;
  }();
  return table;
}

// Runs fn(i) over the argument table and reports the time per call.
template <typename Fn>
void RunOverTable(benchmark::State& state, Fn fn) {
  for (auto _ : state) {
    for (std::size_t i = 0; i < kArguments; ++i) {
      benchmark::DoNotOptimize(fn(i));
    }
  }
  state.counters["ns_per_call"] = benchmark::Counter(
      static_cast<double>(kArguments) * 1e-9,
      benchmark::Counter::kIsIterationInvariantRate |
          benchmark::Counter::kInvert);
}

const Arguments& A() { return Table(); }

// --- kxcommonr -------------------------------------------------------------
void BM_NormalCdf_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::CdfStdNorm(A().x[i]); });
}
void BM_NormalQuantile_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::IdfStdNorm(A().p[i]); });
}
void BM_TCdf_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::CdfT(A().t[i], A().df1[i]); });
}
void BM_TSig_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::SigT(A().t[i], A().df1[i]); });
}
void BM_TQuantile_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::IdfT(A().p[i], A().df1[i]); });
}
void BM_ChiCdf_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::CdfChi(A().chi[i], A().df1[i]); });
}
void BM_ChiSig_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::SigChi(A().chi[i], A().df1[i]); });
}
void BM_ChiQuantile_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return KXDistFun::IdfChi(A().p[i], A().df1[i]); });
}
void BM_FCdf_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return KXDistFun::CdfF(A().f[i], A().df1[i], A().df2[i]);
  });
}
void BM_FSig_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return KXDistFun::SigF(A().f[i], A().df1[i], A().df2[i]);
  });
}
void BM_FQuantile_Kx(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return KXDistFun::IdfF(A().p[i], A().df1[i], A().df2[i]);
  });
}
BENCHMARK(BM_NormalCdf_Kx);
BENCHMARK(BM_NormalQuantile_Kx);
BENCHMARK(BM_TCdf_Kx);
BENCHMARK(BM_TSig_Kx);
BENCHMARK(BM_TQuantile_Kx);
BENCHMARK(BM_ChiCdf_Kx);
BENCHMARK(BM_ChiSig_Kx);
BENCHMARK(BM_ChiQuantile_Kx);
BENCHMARK(BM_FCdf_Kx);
BENCHMARK(BM_FSig_Kx);
BENCHMARK(BM_FQuantile_Kx);

#if defined(KXBENCH_HAVE_BOOST_MATH)
// --- Boost.Math ------------------------------------------------------------
using BoostPolicy = boost::math::policies::policy<
    boost::math::policies::promote_double<false>>;
using BoostNormal = boost::math::normal_distribution<double, BoostPolicy>;
using BoostT = boost::math::students_t_distribution<double, BoostPolicy>;
using BoostChi = boost::math::chi_squared_distribution<double, BoostPolicy>;
using BoostF = boost::math::fisher_f_distribution<double, BoostPolicy>;

void BM_NormalCdf_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return cdf(BoostNormal(), A().x[i]); });
}
void BM_NormalQuantile_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return quantile(BoostNormal(), A().p[i]); });
}
void BM_TCdf_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return cdf(BoostT(A().df1[i]), A().t[i]); });
}
void BM_TSig_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return cdf(complement(BoostT(A().df1[i]), A().t[i]));
  });
}
void BM_TQuantile_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return quantile(BoostT(A().df1[i]), A().p[i]); });
}
void BM_ChiCdf_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return cdf(BoostChi(A().df1[i]), A().chi[i]); });
}
void BM_ChiSig_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return cdf(complement(BoostChi(A().df1[i]), A().chi[i]));
  });
}
void BM_ChiQuantile_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return quantile(BoostChi(A().df1[i]), A().p[i]); });
}
void BM_FCdf_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return cdf(BoostF(A().df1[i], A().df2[i]), A().f[i]);
  });
}
void BM_FSig_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return cdf(complement(BoostF(A().df1[i], A().df2[i]), A().f[i]));
  });
}
void BM_FQuantile_Boost(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return quantile(BoostF(A().df1[i], A().df2[i]), A().p[i]);
  });
}
BENCHMARK(BM_NormalCdf_Boost);
BENCHMARK(BM_NormalQuantile_Boost);
BENCHMARK(BM_TCdf_Boost);
BENCHMARK(BM_TSig_Boost);
BENCHMARK(BM_TQuantile_Boost);
BENCHMARK(BM_ChiCdf_Boost);
BENCHMARK(BM_ChiSig_Boost);
BENCHMARK(BM_ChiQuantile_Boost);
BENCHMARK(BM_FCdf_Boost);
BENCHMARK(BM_FSig_Boost);
BENCHMARK(BM_FQuantile_Boost);
#endif

#if defined(KXBENCH_HAVE_GSL)
// --- GSL -------------------------------------------------------------------
void BM_NormalCdf_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_ugaussian_P(A().x[i]); });
}
void BM_NormalQuantile_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_ugaussian_Pinv(A().p[i]); });
}
void BM_TCdf_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_tdist_P(A().t[i], A().df1[i]); });
}
void BM_TSig_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_tdist_Q(A().t[i], A().df1[i]); });
}
void BM_TQuantile_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_tdist_Pinv(A().p[i], A().df1[i]); });
}
void BM_ChiCdf_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_chisq_P(A().chi[i], A().df1[i]); });
}
void BM_ChiSig_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_chisq_Q(A().chi[i], A().df1[i]); });
}
void BM_ChiQuantile_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) { return gsl_cdf_chisq_Pinv(A().p[i], A().df1[i]); });
}
void BM_FCdf_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return gsl_cdf_fdist_P(A().f[i], A().df1[i], A().df2[i]);
  });
}
void BM_FSig_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return gsl_cdf_fdist_Q(A().f[i], A().df1[i], A().df2[i]);
  });
}
void BM_FQuantile_Gsl(benchmark::State& s) {
  RunOverTable(s, [](std::size_t i) {
    return gsl_cdf_fdist_Pinv(A().p[i], A().df1[i], A().df2[i]);
  });
}
// GSL reports domain and convergence problems through a handler that aborts
// by default; turn it off before the first GSL benchmark runs.
const bool kGslHandlerOff = [] {
  gsl_set_error_handler_off();
  return true;
}();
BENCHMARK(BM_NormalCdf_Gsl);
BENCHMARK(BM_NormalQuantile_Gsl);
BENCHMARK(BM_TCdf_Gsl);
BENCHMARK(BM_TSig_Gsl);
BENCHMARK(BM_TQuantile_Gsl);
BENCHMARK(BM_ChiCdf_Gsl);
BENCHMARK(BM_ChiSig_Gsl);
BENCHMARK(BM_ChiQuantile_Gsl);
BENCHMARK(BM_FCdf_Gsl);
BENCHMARK(BM_FSig_Gsl);
BENCHMARK(BM_FQuantile_Gsl);
#endif

}  // namespace

BENCHMARK_MAIN();
