// kxcommonr/common/random/KXRandomValues.h
//
// KXRandomValues: random values from a distribution chosen by one of the
// SetParam... operations: uniform, normal and chi-square scalars, uniform
// and multivariate normal vectors, and Wishart matrices. Every uniform it
// consumes comes from a KXURandom that it owns (made by the constructor and
// by SetSeed) or borrows (SetURNGPtr).
//
// Algorithms (U is one KXURandom draw):
//   - uniform: a + (b - a) * U;
//   - standard normal: Kinderman and Ramage (1976), with the region-1
//     correction of Leydold (a candidate below 0 is rejected);
//   - gamma, shape a, rate r (chi-square with df degrees of freedom is shape
//     df/2, rate 1/2): a == 1 the exponential -log(1 - U); a < 1 Ahrens and
//     Dieter's GS; a > 1 Fishman's rejection from the exponential, or, when
//     selected with SetGammaMethod, Marsaglia and Tsang's method;
//   - multivariate normal: one standard normal per component, multiplied by
//     the Cholesky factor of the covariance, plus the mean;
//   - Wishart: the Bartlett decomposition, multiplied by the scale's factor.
// The order of the draws is documented with each operation.
//
// Cost (bench/random_benchmark.cpp, medians of one run on a 2-core AMD EPYC):
//   - a standard normal consumes 2.16 uniforms on average (about 11 ns);
//   - GS (shape below 1): 2.7 uniforms a draw at a = 0.5 (about 53 ns);
//   - Fishman's method runs e sqrt(a / (2 pi)) trials on average for large
//     a, each of two uniforms and three logarithms: 2.5 uniforms a draw at
//     a = 1.5 (about 41 ns), 6.8 at a = 10 (about 110 ns) and 215 at a = 1e4
//     (about 2.4 microseconds). It is refused above kMaxFishmanShape;
//   - Marsaglia and Tsang's method takes one normal and one uniform per
//     trial, about 3.2 uniforms and 23 ns a draw at any shape above 1. It
//     must be selected explicitly: the library never changes an algorithm
//     on its own.
//
// Stream compatibility: within a major version of the library, the same
// generator state, distribution and parameters give the same draws, each
// consuming the same uniforms: the algorithms, their constants and the order
// of draws never change. The values are bit for bit those of the C
// library's log, exp and sqrt; another C library may change the last bits.
//
// Failures: setters return false and change nothing; scalar draws return
// the missing value (KXMV::Missing()); vector and matrix draws return false
// and leave their output unchanged. A draw also fails, rather than looping
// for ever, when a rejection loop runs 10^6 times without success, which a
// working generator never does (the chance is below 10^-400) but a
// degenerate one does (the portable generator seeded with 0 gives 0 for
// ever).
//
// Generators, deliberately (callers must not "fix" it):
//   - SetSeed destroys the generator held, owned or borrowed: hand in with
//     SetURNGPtr only a generator made with new that you will neither use
//     nor delete after a later SetSeed;
//   - SetURNGPtr replaces only an owned generator: once one is borrowed, a
//     second SetURNGPtr returns true and is ignored until SetSeed;
//   - the destructor deletes the generators this object made, never a
//     borrowed one.
//
// Example: 1000 draws of a bivariate normal.
//   KXCommon::KXRandomValues rv;
//   rv.SetSeed(2024);
//   KXCommon::KXSymMatrix cov(2);
//   cov.SetElem(0, 0, 4.0); cov.SetElem(1, 0, 1.0); cov.SetElem(1, 1, 2.0);
//   if (!rv.SetParamNormal({1.0, -1.0}, 1e-12, cov)) { /* not a covariance */ }
//   std::vector<double> x;
//   for (int i = 0; i < 1000; ++i) rv.GetRandom(x);
//
// Thread rule: thread-compatible, one object per thread at a time (with the
// generator it draws from).
#ifndef KXCOMMONR_COMMON_RANDOM_KXRANDOMVALUES_H
#define KXCOMMONR_COMMON_RANDOM_KXRANDOMVALUES_H

#include <cstdint>
#include <vector>

#include "kxcommonr/common/random/KXURandom.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymMatrixData.h"
#include "kxcommonr/config.h"

namespace KXCommon {

namespace internal {
struct RandomValuesAccess;
}

class KXCOMMONR_API KXRandomValues {
 public:
  // Distribution types.
  enum { kUniform = 0, kNormal = 1, kChiSquare = 2, kWishart = 3 };
  // Methods for gamma shapes above 1 (shapes at or below 1 always use the
  // exponential or GS).
  enum GammaMethod { kGammaFishman = 0, kGammaMarsagliaTsang = 1 };
  // The largest shape drawn with Fishman's method (about 2,200 uniforms a
  // draw); a larger one makes the draw fail.
  static constexpr double kMaxFishmanShape = 1e6;

  // Seed 34567, tolerance 1e-12, the standard uniform, an owned
  // KXURandom(34567, true, true, nullptr), Fishman's method.
  KXRandomValues();
  // Copies the distribution and its parameters. The copy gets a generator
  // of its own that it owns: a copy of the generator held (as KXURandom
  // copies, the twister restarting from its seed).
  KXRandomValues(const KXRandomValues& other);
  // As the copy constructor; the generator this object held is deleted when
  // this object made it. Nothing happens on self-assignment.
  KXRandomValues& operator=(const KXRandomValues& other);
  ~KXRandomValues();

  // ---- Scalar distributions (GetRandom()) --------------------------------

  // The standard uniform on [0, 1].
  bool SetParamUniform();
  // The uniform on [a, b]; standard exactly when a == 0 and b == 1. False
  // unless a < b, both finite, and b - a finite.
  bool SetParamUniform(double a, double b);
  // The standard normal.
  bool SetParamNormal();
  // The normal with the given mean and VARIANCE (standard deviation
  // sqrt(variance)). False unless the mean is finite and 0 < variance < inf.
  bool SetParamNormal(double mean, double variance);
  // The chi-square with df degrees of freedom. False unless 0 < df < inf.
  bool SetParamChi(double df);

  // ---- Vector distributions (GetRandom(std::vector<double>&)) ------------

  // Vectors of n independent standard uniforms. False when n < 1.
  bool SetParamUniform(int n);
  // Vectors whose component i is uniform on [a[i], b[i]]. False unless the
  // sizes are equal and at least 1 and every pair is accepted as by
  // SetParamUniform(a, b). Pass vectors: SetParamUniform({0}, {2}) calls the
  // scalar form.
  bool SetParamUniform(const std::vector<double>& a, const std::vector<double>& b);
  // Vectors of n independent standard normals. False when n < 1.
  bool SetParamNormal(int n);
  // Multivariate normal vectors with the given mean and covariance (order
  // mean.size() >= 1). tol is the relative tolerance of the Cholesky
  // factorisation and becomes this object's tolerance: a row whose residual
  // pivot does not exceed tol times its variance is a degenerate direction
  // (the covariance may be singular). False, nothing changed, when the
  // order differs from the mean's size, an element is not finite, tol is
  // outside [0, 1), or the covariance is not positive semi-definite: its
  // factor L must give back every element within (sqrt(tol) + 4 (n + 1)
  // eps) sqrt(c_ii c_jj) (a negative variance, a correlation beyond 1, a
  // negative pivot are refused).
  bool SetParamNormal(const std::vector<double>& mean, double tol, const KXSymMatrixData& cov);

  // ---- Wishart matrices (GetRandom(KXSymMatrix&)) ------------------------

  // Wishart of order n with df degrees of freedom and the identity scale.
  // False unless n >= 1 and n <= df < inf.
  bool SetParamWishart(int n, double df);
  // The same with a positive semi-definite scale of order n, factorised with
  // this object's tolerance and checked as the covariance above.
  bool SetParamWishart(int n, double df, const KXSymMatrixData& scale);

  // ---- Settings ------------------------------------------------------------

  // The relative tolerance of later matrix setters. False unless 0 <= tol < 1.
  bool SetTolerance(double tol);
  double GetTolerance() const { return fdTol; }
  // The method for gamma shapes above 1 (chi-square with df > 2). Any other
  // value is ignored.
  void SetGammaMethod(GammaMethod method);
  GammaMethod GetGammaMethod() const { return fiGammaMethod; }
  int GetDistributionType() const { return fiType; }
  // The vector length, or the Wishart order.
  int GetDimension() const { return fiDim; }
  bool IsScalar() const { return fbScalar; }
  bool IsStandard() const { return fbStandard; }

  // ---- Generator ------------------------------------------------------------

  // Destroys the generator held (owned or borrowed, see above), stores the
  // seed and holds a new KXURandom(seed, true, true, nullptr): a twister
  // seeded with seed. Whether the object counts as owning its generator
  // (for SetURNGPtr) is left as it was.
  void SetSeed(unsigned long seed);
  // False, nothing changed, when p is null. Otherwise true; when the
  // generator held is owned it is destroyed and p is borrowed instead; when
  // it is already borrowed, p is ignored.
  bool SetURNGPtr(KXURandom* p);
  // The generator drawn from (never null). It stays where it is: use it to
  // save, restore or jump the stream.
  KXURandom* GetURNGPtr() { return fpURNG; }

  // ---- Draws -----------------------------------------------------------------

  // One value of a scalar distribution: uniform a + (b - a) U; normal
  // mean + sd z; chi-square a gamma of shape df/2 and rate 1/2. The missing
  // value for a vector or matrix distribution or when the generator fails.
  double GetRandom();
  // One vector (out resized to the dimension): uniform component i is
  // a[i] + (b[i] - a[i]) U_i, drawn in index order; multivariate normal:
  // z_0, ..., z_(n-1) drawn in index order, then x_i = (sum over j <= i of
  // L_ij z_j, added in increasing j) + mean_i. False, out unchanged, unless
  // the distribution is a vector one, or when the generator fails.
  bool GetRandom(std::vector<double>& out);
  // One Wishart matrix (out becomes of order n): the lower-triangular
  // Bartlett matrix A is drawn row by row, in row i first the normals A_ij,
  // j < i, then A_ii = sqrt of a chi-square with df - i degrees of freedom;
  // with a scale, B = L A (B_ij = sum over k = j..i of L_ik A_kj, in
  // increasing k), else B = A; out = B B'. False, out unchanged, unless the
  // distribution is Wishart, or when the generator fails.
  bool GetRandom(KXSymMatrix& out);

  // Prints, through KXComponentDisplay: "KXRandomValues display start", "The
  // seed", "The tolerance", "The distribution type", "The dimension",
  // "Scalar draw indicator", "Standard distribution indicator", "Owned
  // generator indicator", "The gamma method", the parameters of the
  // distribution ("Lower bound", "Upper bound"; "Mean", "Variance",
  // "Standard deviation"; "Degrees of freedom"; vectors and matrices under
  // the same names), the generator's display and "KXRandomValues display
  // end".
  void Display() const;

 private:
  friend struct internal::RandomValuesAccess;

  // The variates; each returns the missing value on invalid parameters or
  // when the generator fails.
  double RVUni(double a, double b);   // a + (b - a) U; missing if b < a
  double RVExp(double rate);          // -log(1 - U) / rate; missing if U >= 1
  double RVNor(double mean, double sd);  // mean exactly if sd == 0
  double RVChi(double df);            // RVGam(df / 2, 0.5)
  double RVSNor();                    // standard normal
  // The auxiliary function of the normal generator: 0 at t == 0, else
  // max(0.3989422804014327 exp(-t t / 2) - 0.180025191068563 max(xi - |t|,
  // 0), 0).
  static double RVAuxF(double t);
  double RVGam(double a, double rate);  // gamma, shape a, rate
  double RVGamMT(double a);             // Marsaglia-Tsang, shape a > 1, rate 1

  double Uniform();
  // Factorises a positive semi-definite matrix of order n (see
  // SetParamNormal); false when it is not one.
  static bool Factor(const KXSymMatrixData& m, int n, double tol, KXSymMatrix& factor);
  void ReleaseURNG();
  // Exchanges every field with other's; never allocates.
  void Swap(KXRandomValues& other);

  std::uint32_t fuSeed;
  double fdTol;
  int fiType;
  int fiDim;
  bool fbScalar;
  bool fbStandard;
  KXURandom* fpURNG;
  bool fbOwnsURNG;   // owned: SetURNGPtr may replace it
  bool fbMadeURNG;   // made by this object: the destructor deletes it
  GammaMethod fiGammaMethod;
  double fdA, fdB;
  double fdMean, fdVar, fdSD;
  double fdChiDF;
  double fdWishartDF;
  std::vector<double> fvA, fvB;   // uniform vector bounds
  std::vector<double> fvMean;     // multivariate normal mean
  KXSymMatrix fmMatrix;           // covariance or Wishart scale, as given
  KXSymMatrix fmFactor;           // its Cholesky factor
  std::vector<double> fvWork;     // the draws of a vector, before out
  KXSymMatrix fmWork;             // the Bartlett matrix, before out
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_KXRANDOMVALUES_H
