#include "kxcommonr/mtd/KXContStats.h"

#include <cmath>
#include <cstring>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXContStats";

bool IsValue(double x) { return std::isfinite(x) && !KXCommon::KXMV::IsMissing(x); }

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

KXContStats::KXContStats(int moments)
    : fiMoments(moments == 2 ? 2 : 4),
      fdMin(KXCommon::KXMV::Missing()),
      fdMax(KXCommon::KXMV::Missing()) {}

void KXContStats::Clear() { *this = KXContStats(fiMoments); }

bool KXContStats::Add(double value, double weight) {
  if (!std::isfinite(weight) || weight < 0.0) return false;
  if (weight == 0.0) return true;
  if (!IsValue(value)) {
    ++fCounts.missing;
    fCounts.missingWeight += weight;
    return true;
  }
  if (fCounts.valid == 0) {
    fdMin = fdMax = fdShift = value;
  } else {
    fdMin = value < fdMin ? value : fdMin;
    fdMax = value > fdMax ? value : fdMax;
  }
  ++fCounts.valid;
  const double before = fCounts.weight;
  const double total = before + weight;
  const double delta = (value - fdShift) - fdMean;
  const double share = delta * weight / total;  // the change of the mean
  const double term = delta * share * before;   // delta^2 W w / n
  if (fiMoments == 4) {
    const double shareSq = share * share;
    fdM4 += term * shareSq * (before * before - before * weight + weight * weight) /
                (weight * weight) +
            6.0 * shareSq * fdM2 - 4.0 * share * fdM3;
    fdM3 += term * share * (before - weight) / weight - 3.0 * share * fdM2;
  }
  fdM2 += term;
  fdMean += share;
  fCounts.weight = total;
  return true;
}

void KXContStats::MergeMoments(double weight, double mean, double m2, double m3, double m4) {
  const double a = fCounts.weight, b = weight, n = a + b;
  const double delta = mean - fdMean;
  const double share = delta * b / n;
  const double term = delta * share * a;  // delta^2 a b / n
  if (fiMoments == 4) {
    const double shareA = delta * a / n;
    fdM4 += m4 + term * delta * delta * (a * a - a * b + b * b) / (n * n) +
            6.0 * (share * share * fdM2 + shareA * shareA * m2) +
            4.0 * (shareA * m3 - share * fdM3);
    fdM3 += m3 + term * delta * (a - b) / n + 3.0 * (shareA * m2 - share * fdM2);
  }
  fdM2 += m2 + term;
  fdMean += share;
  fCounts.weight = n;
}

bool KXContStats::Merge(const KXContStats& other) {
  if (other.fiMoments != fiMoments) return false;
  if (other.fCounts.valid > 0) {
    if (fCounts.valid == 0) {
      const KXCaseCounts counts = fCounts;
      *this = other;
      fCounts.Add(counts);
      return true;
    }
    MergeMoments(other.fCounts.weight, (other.fdShift - fdShift) + other.fdMean, other.fdM2,
                 other.fdM3, other.fdM4);
    fdMin = other.fdMin < fdMin ? other.fdMin : fdMin;
    fdMax = other.fdMax > fdMax ? other.fdMax : fdMax;
    fCounts.valid += other.fCounts.valid;
  }
  fCounts.missing += other.fCounts.missing;
  fCounts.missingWeight += other.fCounts.missingWeight;
  return true;
}

std::size_t KXContStats::Add(const double* values, const double* weights, std::size_t n) {
  constexpr std::size_t kBlock = 256;
  double x[kBlock], w[kBlock];
  std::size_t taken = 0;
  for (std::size_t start = 0; start < n; start += kBlock) {
    const std::size_t end = start + kBlock < n ? start + kBlock : n;
    std::size_t m = 0;
    for (std::size_t i = start; i < end; ++i) {
      const double weight = weights != nullptr ? weights[i] : 1.0;
      if (!std::isfinite(weight) || weight < 0.0) continue;
      ++taken;
      if (weight == 0.0) continue;
      const double value = values[i];
      if (!IsValue(value)) {
        ++fCounts.missing;
        fCounts.missingWeight += weight;
        continue;
      }
      if (fCounts.valid == 0 && m == 0) fdMin = fdMax = fdShift = value;
      fdMin = value < fdMin ? value : fdMin;
      fdMax = value > fdMax ? value : fdMax;
      x[m] = value - fdShift;
      w[m] = weight;
      ++m;
    }
    if (m == 0) continue;
    double total = 0.0, sum = 0.0;
    for (std::size_t k = 0; k < m; ++k) {
      total += w[k];
      sum += w[k] * x[k];
    }
    const double mean = sum / total;
    double m2 = 0.0, m3 = 0.0, m4 = 0.0;
    if (fiMoments == 4) {
      for (std::size_t k = 0; k < m; ++k) {
        const double d = x[k] - mean, wd2 = w[k] * d * d;
        m2 += wd2;
        m3 += wd2 * d;
        m4 += wd2 * d * d;
      }
    } else {
      for (std::size_t k = 0; k < m; ++k) {
        const double d = x[k] - mean;
        m2 += w[k] * d * d;
      }
    }
    if (fCounts.valid == 0) {
      fCounts.weight = total;
      fdMean = mean;
      fdM2 = m2;
      fdM3 = m3;
      fdM4 = m4;
    } else {
      MergeMoments(total, mean, m2, m3, m4);
    }
    fCounts.valid += static_cast<std::int64_t>(m);
  }
  return taken;
}

double KXContStats::GetMin() const { return fdMin; }
double KXContStats::GetMax() const { return fdMax; }

double KXContStats::GetMean() const {
  return fCounts.valid > 0 ? fdShift + fdMean : KXCommon::KXMV::Missing();
}

double KXContStats::GetVariance() const {
  return fCounts.weight > 1.0 ? fdM2 / (fCounts.weight - 1.0) : KXCommon::KXMV::Missing();
}

double KXContStats::GetStdDev() const {
  const double variance = GetVariance();
  return KXCommon::KXMV::IsMissing(variance) ? variance : std::sqrt(variance);
}

double KXContStats::GetSkewness() const {
  const double w = fCounts.weight;
  if (fiMoments != 4 || !(w > 2.0) || !(fdM2 > 0.0)) return KXCommon::KXMV::Missing();
  const double g1 = (fdM3 / w) / std::pow(fdM2 / w, 1.5);
  return std::sqrt(w * (w - 1.0)) / (w - 2.0) * g1;
}

double KXContStats::GetKurtosis() const {
  const double w = fCounts.weight;
  if (fiMoments != 4 || !(w > 3.0) || !(fdM2 > 0.0)) return KXCommon::KXMV::Missing();
  const double m2 = fdM2 / w;
  const double g2 = (fdM4 / w) / (m2 * m2) - 3.0;
  return (w - 1.0) / ((w - 2.0) * (w - 3.0)) * ((w + 1.0) * g2 + 6.0);
}

int KXContStats::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Value(fiMoments);
  for (const double v : {static_cast<double>(fCounts.valid), static_cast<double>(fCounts.missing),
                         fCounts.weight, fCounts.missingWeight, fdMin, fdMax, fdShift, fdMean, fdM2,
                         fdM3, fdM4}) {
    out.Exact(v);
  }
  return out.End();
}

int KXContStats::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  int moments = 0;
  double v[11] = {};
  bool ok = in.Start(kObjectName) && in.Value(moments) && (moments == 2 || moments == 4);
  for (double& value : v) ok = ok && in.Number(value);
  ok = ok && in.End();
  // A consistent state: whole non-negative counts, non-negative weights, the
  // range set exactly when there are valid cases, M2 >= 0.
  const bool counts = ok && v[0] >= 0.0 && v[0] < 9.0e15 && v[1] >= 0.0 && v[1] < 9.0e15 &&
                      std::trunc(v[0]) == v[0] && std::trunc(v[1]) == v[1] &&
                      IsValue(v[2]) && v[2] >= 0.0 && IsValue(v[3]) && v[3] >= 0.0;
  const bool range = counts && (v[0] == 0.0 ? KXCommon::KXMV::IsMissing(v[4]) &&
                                                  KXCommon::KXMV::IsMissing(v[5])
                                            : IsValue(v[4]) && IsValue(v[5]) && v[4] <= v[5]);
  if (!range || !IsValue(v[6]) || !IsValue(v[7]) || !(v[8] >= 0.0) || !IsValue(v[8]) ||
      !IsValue(v[9]) || !IsValue(v[10])) {
    return detail::ReportReadFailure(kObjectName);
  }
  KXContStats read(moments);
  read.fCounts.valid = static_cast<std::int64_t>(v[0]);
  read.fCounts.missing = static_cast<std::int64_t>(v[1]);
  read.fCounts.weight = v[2];
  read.fCounts.missingWeight = v[3];
  read.fdMin = v[4];
  read.fdMax = v[5];
  read.fdShift = v[6];
  read.fdMean = v[7];
  read.fdM2 = v[8];
  read.fdM3 = v[9];
  read.fdM4 = v[10];
  *this = read;
  return in.Items();
}

void KXContStats::Display() const {
  using namespace KXComponentDisplay;
  DisplayText(1, "Continuous statistics");
  DisplayI("Valid cases", static_cast<int>(fCounts.valid));
  DisplayI("Missing cases", static_cast<int>(fCounts.missing));
  DisplayD("Sum of weights", fCounts.weight);
  DisplayD("Minimum", GetMin());
  DisplayD("Maximum", GetMax());
  DisplayDF("Mean", GetMean());
  DisplayDF("Standard deviation", GetStdDev());
  if (fiMoments == 4) {
    DisplayD("Skewness", GetSkewness());
    DisplayD("Kurtosis", GetKurtosis());
  }
}

bool operator==(const KXContStats& a, const KXContStats& b) {
  return a.fiMoments == b.fiMoments && a.fCounts == b.fCounts && SameBits(a.fdMin, b.fdMin) &&
         SameBits(a.fdMax, b.fdMax) && SameBits(a.fdShift, b.fdShift) &&
         SameBits(a.fdMean, b.fdMean) && SameBits(a.fdM2, b.fdM2) &&
         SameBits(a.fdM3, b.fdM3) && SameBits(a.fdM4, b.fdM4);
}

}  // namespace KXMTD_NAMESPACE
