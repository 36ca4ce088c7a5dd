// kxcommonr/testing/DistReference.h
//
// The high-precision reference table of the distribution functions
// (kxcommonr/common/dist/testdata/dist_reference.csv, written by
// make_dist_reference.py with mpmath) and the evaluation of KXDistFun at
// its points, and the lookup of per-region error budgets. Shared by the
// accuracy tests and the accuracy report.
#ifndef KXCOMMONR_TESTING_DISTREFERENCE_H
#define KXCOMMONR_TESTING_DISTREFERENCE_H

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/dist/KXDistFun.h"
#include "kxcommonr/common/dist/internal/KXDistFunAccess.h"

namespace kxtesting {

struct DistReferencePoint {
  std::string function;  // erf, erfc, cdfnorm, idfnorm, cdft, ...
  double arg[3];
  long double value;  // 40-digit reference read at long double precision
};

// Reads the table; an empty vector when the file cannot be read.
inline std::vector<DistReferencePoint> LoadDistReference(
    const std::string& path) {
  std::vector<DistReferencePoint> points;
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);  // header
  while (std::getline(in, line)) {
    if (line.empty()) continue;
    std::stringstream fields(line);
    DistReferencePoint point;
    std::string field;
    std::getline(fields, point.function, ',');
    for (double& a : point.arg) {
      std::getline(fields, field, ',');
      a = std::strtod(field.c_str(), nullptr);
    }
    std::getline(fields, field, ',');
    point.value = std::strtold(field.c_str(), nullptr);
    points.push_back(point);
  }
  return points;
}

// The library's value at the point (NaN for an unknown function name).
inline double EvaluateDistFunction(const DistReferencePoint& point) {
  using KXCommon::KXDistFun;
  using KXCommon::KXDistFunAccess;
  const std::string& f = point.function;
  const double* a = point.arg;
  if (f == "erf") return KXDistFunAccess::derf(a[0]);
  if (f == "erfc") return KXDistFunAccess::derfc(a[0]);
  if (f == "cdfnorm") return KXDistFun::CdfStdNorm(a[0]);
  if (f == "idfnorm") return KXDistFun::IdfStdNorm(a[0]);
  if (f == "cdft") return KXDistFun::CdfT(a[0], a[1]);
  if (f == "sigt") return KXDistFun::SigT(a[0], a[1]);
  if (f == "idft") return KXDistFun::IdfT(a[0], a[1]);
  if (f == "cdfchi") return KXDistFun::CdfChi(a[0], a[1]);
  if (f == "sigchi") return KXDistFun::SigChi(a[0], a[1]);
  if (f == "idfchi") return KXDistFun::IdfChi(a[0], a[1]);
  if (f == "cdff") return KXDistFun::CdfF(a[0], a[1], a[2]);
  if (f == "sigf") return KXDistFun::SigF(a[0], a[1], a[2]);
  if (f == "idff") return KXDistFun::IdfF(a[0], a[1], a[2]);
  if (f == "lgamma") return KXDistFun::zelkdnlgam(a[0]);
  return std::nan("");
}

// Relative error of the library's value against the reference; for log
// gamma, whose zeros at 1 and 2 make a relative error meaningless, the
// error relative to max(1, |value|).
inline double DistRelativeError(const DistReferencePoint& point,
                                double computed) {
  long double scale = std::fabs(point.value);
  if (point.function == "lgamma" && scale < 1.0L) scale = 1.0L;
  if (scale == 0.0L) return std::fabs(computed);
  return static_cast<double>(std::fabs(computed - point.value) / scale);
}

// Region of a point, for error budgets and the report: probabilities by
// tail ("lower tail" below 1e-3, "upper tail" above 1 - 1e-3, "body"),
// degrees of freedom by size.
inline std::string DistRegion(const DistReferencePoint& point) {
  const std::string& f = point.function;
  if (f == "erf" || f == "erfc" || f == "lgamma") return "all";
  const bool quantile = f.compare(0, 3, "idf") == 0;
  const double probability =
      quantile ? point.arg[0] : static_cast<double>(point.value);
  std::string region;
  if (f == "cdfnorm") {
    region = std::fabs(point.arg[0]) <= 5.0 ? "|x| <= 5" : "|x| > 5";
  } else if (f == "idfnorm") {
    region = probability >= 3e-7 && probability <= 1 - 3e-7
                 ? "3e-7 <= p <= 1-3e-7"
                 : "far tails";
  } else if ((f == "idft" || f == "idff") &&
             std::fabs(static_cast<double>(point.value)) > 1e150) {
    // The beta variate behind the quantile underflows: missing by design.
    return "|result| > 1e150";
  } else if (f == "idft" && point.arg[1] >= 1e8) {
    // The normal quantile by design (an O(1/df) approximation).
    return "df >= 1e8 (normal limit)";
  } else {
    if (f == "idft" && std::fabs(probability - 0.5) < 1e-3) {
      region = "|p - 0.5| < 1e-3";
    } else if (probability < 1e-3) {
      region = quantile ? "p < 1e-3" : "value < 1e-3";
    } else if (probability > 1 - 1e-3) {
      region = quantile ? "p > 1-1e-3" : "value > 1-1e-3";
    } else {
      region = "body";
    }
    const double df = f == "cdff" || f == "sigf" || f == "idff"
                          ? std::fmax(point.arg[1], point.arg[2])
                          : point.arg[1];
    region += df <= 100.0 ? ", df <= 100" : ", df > 100";
  }
  return region;
}

// A budget of the maximum relative error over the reference table, for one
// function in one region ("*": every region of the function not listed).
struct DistBudget {
  const char* function;
  const char* region;
  double maxRelativeError;
};

// The budget of a point, -1 when the table lists no budget for its function.
template <std::size_t N>
double DistBudgetFor(const DistBudget (&budgets)[N],
                     const DistReferencePoint& point) {
  const std::string region = DistRegion(point);
  double fallback = -1.0;
  for (const DistBudget& budget : budgets) {
    if (point.function != budget.function) continue;
    if (region == budget.region) return budget.maxRelativeError;
    if (std::string(budget.region) == "*") fallback = budget.maxRelativeError;
  }
  return fallback;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_DISTREFERENCE_H
