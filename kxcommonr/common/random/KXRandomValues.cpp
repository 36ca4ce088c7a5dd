#include "kxcommonr/common/random/KXRandomValues.h"

#include <cmath>
#include <limits>
#include <utility>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/foundation/KXMV.h"

namespace KXCommon {

namespace {

bool Finite(double x) { return std::isfinite(x); }
bool ValidBounds(double a, double b) { return Finite(a) && Finite(b) && a < b && Finite(b - a); }

// Exchanges two one-block matrices without allocating: the data vectors are
// swapped, and each Resize then finds its data already of the right size.
void SwapMatrices(KXSymMatrix& a, KXSymMatrix& b) {
  const int aRows = a.GetNRows(), bRows = b.GetNRows();
  a.AsVector().swap(b.AsVector());
  a.Resize(bRows);
  b.Resize(aRows);
}

}  // namespace

KXRandomValues::KXRandomValues()
    : fuSeed(34567u),
      fdTol(1e-12),
      fiType(kUniform),
      fiDim(1),
      fbScalar(true),
      fbStandard(true),
      fpURNG(new KXURandom(34567u, true, true, nullptr)),
      fbOwnsURNG(true),
      fbMadeURNG(true),
      fiGammaMethod(kGammaFishman),
      fdA(0.0),
      fdB(1.0),
      fdMean(0.0),
      fdVar(1.0),
      fdSD(1.0),
      fdChiDF(1.0),
      fdWishartDF(1.0) {}

KXRandomValues::KXRandomValues(const KXRandomValues& other)
    : fuSeed(other.fuSeed),
      fdTol(other.fdTol),
      fiType(other.fiType),
      fiDim(other.fiDim),
      fbScalar(other.fbScalar),
      fbStandard(other.fbStandard),
      fpURNG(nullptr),
      fbOwnsURNG(true),
      fbMadeURNG(true),
      fiGammaMethod(other.fiGammaMethod),
      fdA(other.fdA),
      fdB(other.fdB),
      fdMean(other.fdMean),
      fdVar(other.fdVar),
      fdSD(other.fdSD),
      fdChiDF(other.fdChiDF),
      fdWishartDF(other.fdWishartDF),
      fvA(other.fvA),
      fvB(other.fvB),
      fvMean(other.fvMean),
      fmMatrix(other.fmMatrix),
      fmFactor(other.fmFactor),
      fvWork(other.fvWork),
      fmWork(other.fmWork) {
  fpURNG = new KXURandom(*other.fpURNG);  // last: nothing after it can throw
}

KXRandomValues& KXRandomValues::operator=(const KXRandomValues& other) {
  if (this != &other) {
    KXRandomValues copy(other);
    Swap(copy);  // copy takes this object's generator and deletes it if made here
  }
  return *this;
}

void KXRandomValues::Swap(KXRandomValues& other) {
  std::swap(fuSeed, other.fuSeed);
  std::swap(fdTol, other.fdTol);
  std::swap(fiType, other.fiType);
  std::swap(fiDim, other.fiDim);
  std::swap(fbScalar, other.fbScalar);
  std::swap(fbStandard, other.fbStandard);
  std::swap(fpURNG, other.fpURNG);
  std::swap(fbOwnsURNG, other.fbOwnsURNG);
  std::swap(fbMadeURNG, other.fbMadeURNG);
  std::swap(fiGammaMethod, other.fiGammaMethod);
  std::swap(fdA, other.fdA);
  std::swap(fdB, other.fdB);
  std::swap(fdMean, other.fdMean);
  std::swap(fdVar, other.fdVar);
  std::swap(fdSD, other.fdSD);
  std::swap(fdChiDF, other.fdChiDF);
  std::swap(fdWishartDF, other.fdWishartDF);
  fvA.swap(other.fvA);
  fvB.swap(other.fvB);
  fvMean.swap(other.fvMean);
  fvWork.swap(other.fvWork);
  SwapMatrices(fmMatrix, other.fmMatrix);
  SwapMatrices(fmFactor, other.fmFactor);
  SwapMatrices(fmWork, other.fmWork);
}

KXRandomValues::~KXRandomValues() { ReleaseURNG(); }

void KXRandomValues::ReleaseURNG() {
  if (fbMadeURNG) delete fpURNG;
  fpURNG = nullptr;
}

// ---- Generator ----------------------------------------------------------

void KXRandomValues::SetSeed(unsigned long seed) {
  KXURandom* fresh = new KXURandom(seed, true, true, nullptr);
  delete fpURNG;  // owned or borrowed alike
  fpURNG = fresh;
  fbMadeURNG = true;
  fuSeed = static_cast<std::uint32_t>(seed);
}

bool KXRandomValues::SetURNGPtr(KXURandom* p) {
  if (p == nullptr) return false;
  if (fbOwnsURNG) {
    ReleaseURNG();
    fpURNG = p;
    fbOwnsURNG = false;
    fbMadeURNG = false;
  }
  return true;
}

// ---- Settings -----------------------------------------------------------

bool KXRandomValues::SetTolerance(double tol) {
  if (!(tol >= 0.0 && tol < 1.0)) return false;
  fdTol = tol;
  return true;
}

void KXRandomValues::SetGammaMethod(GammaMethod method) {
  if (method == kGammaFishman || method == kGammaMarsagliaTsang) fiGammaMethod = method;
}

// ---- Scalar distributions -------------------------------------------------

bool KXRandomValues::SetParamUniform() { return SetParamUniform(0.0, 1.0); }

bool KXRandomValues::SetParamUniform(double a, double b) {
  if (!ValidBounds(a, b)) return false;
  fiType = kUniform;
  fdA = a;
  fdB = b;
  fbStandard = a == 0.0 && b == 1.0;
  fbScalar = true;
  return true;
}

bool KXRandomValues::SetParamNormal() {
  SetParamNormal(0.0, 1.0);
  fbStandard = true;
  return true;
}

bool KXRandomValues::SetParamNormal(double mean, double variance) {
  if (!(Finite(mean) && variance > 0.0 && Finite(variance))) return false;
  fiType = kNormal;
  fdMean = mean;
  fdVar = variance;
  fdSD = std::sqrt(variance);
  fbStandard = false;
  fbScalar = true;
  return true;
}

bool KXRandomValues::SetParamChi(double df) {
  if (!(df > 0.0 && Finite(df))) return false;
  fiType = kChiSquare;
  fdChiDF = df;
  fbStandard = false;
  fbScalar = true;
  return true;
}

// ---- Vector and matrix distributions ----------------------------------------
//
// Each setter builds the new parameters aside and moves them in only when
// everything succeeded (allocation failures included).

bool KXRandomValues::SetParamUniform(int n) {
  if (n < 1) return false;
  if (!GuardAllocation([&] {
    std::vector<double> work(static_cast<std::size_t>(n));
    fvWork.swap(work);
    return true;
  }, false)) {
    return false;
  }
  fiType = kUniform;
  fiDim = n;
  fbStandard = true;
  fbScalar = false;
  return true;
}

bool KXRandomValues::SetParamUniform(const std::vector<double>& a, const std::vector<double>& b) {
  if (a.empty() || a.size() != b.size() ||
      a.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    return false;
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!ValidBounds(a[i], b[i])) return false;
  }
  if (!GuardAllocation([&] {
    std::vector<double> lower(a), upper(b), work(a.size());
    fvA.swap(lower);
    fvB.swap(upper);
    fvWork.swap(work);
    return true;
  }, false)) {
    return false;
  }
  fiType = kUniform;
  fiDim = static_cast<int>(a.size());
  fbStandard = false;
  fbScalar = false;
  return true;
}

bool KXRandomValues::SetParamNormal(int n) {
  if (!SetParamUniform(n)) return false;
  fiType = kNormal;
  return true;
}

bool KXRandomValues::Factor(const KXSymMatrixData& m, int n, double tol,
                            KXSymMatrix& factor) {
  const std::vector<double>& a = m.GetData();
  if (m.GetNRows() != n || a.size() != KXSymMatrixData::PackedSize(n)) return false;
  for (const double x : a) {
    if (!Finite(x)) return false;
  }
  factor.SetData(m);
  std::vector<double> diagonal;
  m.GetDiagonal(diagonal);
  if (factor.LTChol(diagonal, tol, true) < 0) return false;
  // L L' must give the matrix back: a pivot rejected as redundant hides a
  // negative one, or the elements of its column, from the factor.
  KXSymMatrix product(factor);
  product.LTLLTrans();
  const double bound = std::sqrt(tol) + 4.0 * (n + 1) * std::numeric_limits<double>::epsilon();
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j) {
      const double scale = std::sqrt(diagonal[i] * diagonal[j]);
      if (!(std::fabs(product.GetElem(i, j) - m.GetElem(i, j)) <= bound * scale)) return false;
    }
  }
  return true;
}

bool KXRandomValues::SetParamNormal(const std::vector<double>& mean, double tol,
                                    const KXSymMatrixData& cov) {
  if (mean.empty() || mean.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) ||
      !(tol >= 0.0 && tol < 1.0)) {
    return false;
  }
  for (const double x : mean) {
    if (!Finite(x)) return false;
  }
  const int n = static_cast<int>(mean.size());
  const bool done = GuardAllocation([&] {
    KXSymMatrix matrix, factor;
    matrix.SetData(cov);
    if (!Factor(cov, n, tol, factor)) return false;
    std::vector<double> center(mean), work(mean.size());
    // Nothing allocates from here on: the object changes all at once.
    fvMean.swap(center);
    fvWork.swap(work);
    SwapMatrices(fmMatrix, matrix);
    SwapMatrices(fmFactor, factor);
    return true;
  }, false);
  if (!done) return false;
  fdTol = tol;
  fiType = kNormal;
  fiDim = n;
  fbStandard = false;
  fbScalar = false;
  return true;
}

bool KXRandomValues::SetParamWishart(int n, double df) {
  KXSymMatrix identity;
  if (n < 1 || !identity.SetNRows(n)) return false;
  identity.AddToDiagonal(1.0);
  if (!SetParamWishart(n, df, identity)) return false;
  fbStandard = true;
  return true;
}

bool KXRandomValues::SetParamWishart(int n, double df, const KXSymMatrixData& scale) {
  if (n < 1 || !(df >= n && Finite(df))) return false;
  const bool done = GuardAllocation([&] {
    KXSymMatrix matrix, factor, work;
    matrix.SetData(scale);
    if (!Factor(scale, n, fdTol, factor) || !work.SetNRows(n)) return false;
    SwapMatrices(fmMatrix, matrix);  // nothing allocates from here on
    SwapMatrices(fmFactor, factor);
    SwapMatrices(fmWork, work);
    return true;
  }, false);
  if (!done) return false;
  fiType = kWishart;
  fiDim = n;
  fdWishartDF = df;
  fbStandard = false;
  fbScalar = false;
  return true;
}

// ---- Draws ------------------------------------------------------------------

bool KXRandomValues::GetRandom(std::vector<double>& out) {
  if (fbScalar || (fiType != kUniform && fiType != kNormal)) return false;
  const std::size_t n = fvWork.size();
  for (std::size_t i = 0; i < n; ++i) {
    const double x = fiType == kNormal ? RVSNor()
                     : fbStandard      ? Uniform()
                                       : RVUni(fvA[i], fvB[i]);
    if (KXMV::IsMissing(x)) return false;
    fvWork[i] = x;
  }
  out.resize(n);
  if (fiType == kUniform || fbStandard) {
    std::copy(fvWork.begin(), fvWork.end(), out.begin());
    return true;
  }
  const double* l = fmFactor.AsVector().data();
  for (std::size_t i = 0; i < n; ++i, l += i) {
    double sum = 0.0;
    for (std::size_t j = 0; j <= i; ++j) sum = sum + l[j] * fvWork[j];
    out[i] = sum + fvMean[i];
  }
  return true;
}

bool KXRandomValues::GetRandom(KXSymMatrix& out) {
  if (fiType != kWishart || fbScalar) return false;
  const int n = fiDim;
  double* a = fmWork.AsVector().data();
  for (int i = 0; i < n; ++i, a += i) {
    for (int j = 0; j < i; ++j) {
      a[j] = RVSNor();
      if (KXMV::IsMissing(a[j])) return false;
    }
    const double chi = RVChi(fdWishartDF - i);
    if (KXMV::IsMissing(chi)) return false;
    a[i] = std::sqrt(chi);
  }
  out = fmWork;
  if (!fbStandard) {
    // B = L A in place, rows from the last: row i of B needs rows j..i of A,
    // and B_ij only column j of them.
    std::vector<double>& b = out.AsVector();
    const std::vector<double>& l = fmFactor.AsVector();
    for (int i = n - 1; i >= 0; --i) {
      for (int j = 0; j <= i; ++j) {
        double sum = 0.0;
        for (int k = j; k <= i; ++k) {
          sum = sum + l[KXSymMatrixData::PackedIndex(i, k)] * b[KXSymMatrixData::PackedIndex(k, j)];
        }
        b[KXSymMatrixData::PackedIndex(i, j)] = sum;
      }
    }
  }
  out.LTLLTrans();
  return true;
}

// ---- Display ------------------------------------------------------------------

void KXRandomValues::Display() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "KXRandomValues display start");
  DisplayDF("The seed", fuSeed);
  DisplayD("The tolerance", fdTol);
  DisplayI("The distribution type", fiType);
  DisplayI("The dimension", fiDim);
  DisplayB("Scalar draw indicator", fbScalar);
  DisplayB("Standard distribution indicator", fbStandard);
  DisplayB("Owned generator indicator", fbOwnsURNG);
  DisplayI("The gamma method", fiGammaMethod);
  if (fiType == kUniform && fbScalar) {
    DisplayD("Lower bound", fdA);
    DisplayD("Upper bound", fdB);
  } else if (fiType == kUniform && !fbStandard) {
    DisplayDV("Lower bound", fvA, false);
    DisplayDV("Upper bound", fvB, false);
  } else if (fiType == kNormal && fbScalar) {
    DisplayD("Mean", fdMean);
    DisplayD("Variance", fdVar);
    DisplayD("Standard deviation", fdSD);
  } else if (fiType == kNormal && !fbStandard) {
    DisplayDV("Mean", fvMean, false);
    DisplayText(1, "Variance");
    fmMatrix.Display();
  } else if (fiType == kChiSquare) {
    DisplayD("Degrees of freedom", fdChiDF);
  } else if (fiType == kWishart) {
    DisplayD("Degrees of freedom", fdWishartDF);
    if (!fbStandard) {
      DisplayText(1, "Scale");
      fmMatrix.Display();
    }
  }
  fpURNG->Display();
  DisplayText(1, "KXRandomValues display end");
}

}  // namespace KXCommon
