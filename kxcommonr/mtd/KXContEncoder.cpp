#include "kxcommonr/mtd/KXContEncoder.h"

#include <algorithm>
#include <cmath>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/records/RawData.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXContEncoder";

bool IsValue(double x) { return std::isfinite(x) && !KXCommon::KXMV::IsMissing(x); }

bool ValidCutPoints(const std::vector<double>& cutPoints) {
  for (std::size_t i = 0; i < cutPoints.size(); ++i) {
    if (!IsValue(cutPoints[i]) || (i > 0 && !(cutPoints[i - 1] < cutPoints[i]))) return false;
  }
  return true;
}

}  // namespace

KXContEncoder::KXContEncoder() = default;

KXContEncoder::KXContEncoder(const std::vector<double>& cutPoints) { SetCutPoints(cutPoints); }

KXContEncoder::~KXContEncoder() = default;

int KXContEncoder::GetNumberOfCategories() const {
  return fbBinned ? static_cast<int>(fvCutPoints.size()) + 1 : 0;
}

IKXEncoder* KXContEncoder::Clone() const { return new KXContEncoder(*this); }

bool KXContEncoder::IsMissingValue(double value) const {
  return !IsValue(value) || fMissing.Contains(value);
}

int KXContEncoder::GetBinCode(double raw) const {
  if (!fbBinned || IsMissingValue(raw)) return -1;
  return static_cast<int>(std::lower_bound(fvCutPoints.begin(), fvCutPoints.end(), raw) -
                          fvCutPoints.begin());
}

double KXContEncoder::Encode(double raw) {
  if (IsMissingValue(raw)) return KXCommon::KXMV::Missing();
  return fbBinned ? GetBinCode(raw) : raw;
}

double KXContEncoder::Encode(const std::string& raw) {
  double value = 0.0;
  return RawData::ParseReal(raw, value) ? Encode(value) : KXCommon::KXMV::Missing();
}

bool KXContEncoder::SetCutPoints(const std::vector<double>& cutPoints) {
  if (!ValidCutPoints(cutPoints)) return false;
  fvCutPoints = cutPoints;
  for (double& c : fvCutPoints) c = c == 0.0 ? 0.0 : c;  // no -0 in the saved form
  fbBinned = true;
  return true;
}

void KXContEncoder::ClearBins() {
  fbBinned = false;
  fvCutPoints.clear();
}

bool KXContEncoder::AddMissingValue(double value) {
  if (!IsValue(value)) return false;
  fMissing.Insert(value == 0.0 ? 0.0 : value);
  return true;
}

void KXContEncoder::WriteBins(detail::ObjectWriter& out) const {
  out.Value(fbBinned);
  out.Value(static_cast<int>(fvCutPoints.size()));
  for (const double c : fvCutPoints) out.Exact(c);
  out.Value(static_cast<int>(fMissing.Values().size()));
  for (const double m : fMissing.Values()) out.Exact(m);
}

bool KXContEncoder::ReadBins(detail::ObjectReader& in) {
  bool binned = false;
  int cutCount = 0, missingCount = 0;
  std::vector<double> cutPoints;
  KXContEncoder read;
  double value = 0.0;
  if (!in.Value(binned) || !in.Count(cutCount)) return false;
  for (int i = 0; i < cutCount; ++i) {
    if (!in.Finite(value)) return false;
    cutPoints.push_back(value);
  }
  if (!in.Count(missingCount)) return false;
  for (int i = 0; i < missingCount; ++i) {
    if (!in.Finite(value) || !read.AddMissingValue(value)) return false;
  }
  if (binned ? !read.SetCutPoints(cutPoints) : !cutPoints.empty()) return false;
  fbBinned = read.fbBinned;
  fvCutPoints.swap(read.fvCutPoints);
  fMissing = read.fMissing;
  return true;
}

int KXContEncoder::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  WriteBins(out);
  return out.End();
}

int KXContEncoder::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  KXContEncoder read;
  if (in.Start(kObjectName) && read.ReadBins(in) && in.End()) {
    *this = read;
    return in.Items();
  }
  return detail::ReportReadFailure(kObjectName);
}

void KXContEncoder::DisplayBins() const {
  KXComponentDisplay::DisplayB("Binned", fbBinned);
  KXComponentDisplay::DisplayI("Number of categories", GetNumberOfCategories());
  KXComponentDisplay::DisplayDV("Cut points", fvCutPoints, true);
  KXComponentDisplay::DisplayDV("User-missing values", fMissing.Values(), false);
}

void KXContEncoder::Display() const {
  KXComponentDisplay::DisplayText(1, "Continuous encoder");
  DisplayBins();
}

}  // namespace KXMTD_NAMESPACE
