#include "kxcommonr/mtd/KXBinningEncoder.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {
const char kObjectName[] = "KXBinningEncoder";
constexpr double kInf = std::numeric_limits<double>::infinity();
}  // namespace

KXBinningEncoder::KXBinningEncoder(BinningMethod method, int nBins)
    : fMethod(method == EqualWidth ? EqualWidth : EqualFrequency),
      fiRequestedBins(std::max(nBins, 1)),
      fdMin(kInf),
      fdMax(-kInf) {}

KXBinningEncoder::~KXBinningEncoder() = default;

IKXEncoder* KXBinningEncoder::Clone() const { return new KXBinningEncoder(*this); }

bool KXBinningEncoder::AddValue(double value, double weight) {
  if (IsMissingValue(value) || !std::isfinite(weight) || weight < 0.0) return false;
  if (weight == 0.0) return true;
  fdMin = std::min(fdMin, value);
  fdMax = std::max(fdMax, value);
  fdTotalWeight += weight;
  if (fMethod == EqualFrequency) fvData.emplace_back(value, weight);
  return true;
}

void KXBinningEncoder::ClearData() {
  fdMin = kInf;
  fdMax = -kInf;
  fdTotalWeight = 0.0;
  fvData.clear();
  fvData.shrink_to_fit();
}

std::vector<double> KXBinningEncoder::EqualWidthCuts() const {
  std::vector<double> cuts;
  // The width as a difference of quotients cannot overflow.
  const double width = fdMax / fiRequestedBins - fdMin / fiRequestedBins;
  for (int j = 1; j < fiRequestedBins; ++j) {
    const double cut = fdMin + width * j;
    if (cut < fdMax && (cuts.empty() || cut > cuts.back())) cuts.push_back(cut);
  }
  return cuts;
}

std::vector<double> KXBinningEncoder::EqualFrequencyCuts() {
  std::sort(fvData.begin(), fvData.end());
  std::vector<double> cuts;
  double cumulative = 0.0;
  int j = 1;
  for (std::size_t i = 0; i < fvData.size() && j < fiRequestedBins; ++i) {
    cumulative += fvData[i].second;
    const double value = fvData[i].first;
    if (i + 1 < fvData.size() && fvData[i + 1].first == value) continue;  // ties stay together
    // Every quantile this value reaches gives the same cut point.
    bool reached = false;
    while (j < fiRequestedBins && cumulative >= fdTotalWeight * j / fiRequestedBins) {
      reached = true;
      ++j;
    }
    if (reached && value < fdMax) cuts.push_back(value);
  }
  return cuts;
}

bool KXBinningEncoder::ComputeCutPoints() {
  if (!(fdTotalWeight > 0.0)) return false;
  return SetCutPoints(fMethod == EqualWidth ? EqualWidthCuts() : EqualFrequencyCuts());
}

int KXBinningEncoder::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Value(static_cast<int>(fMethod));
  out.Value(fiRequestedBins);
  WriteBins(out);
  return out.End();
}

int KXBinningEncoder::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  int method = -1, bins = 0;
  KXBinningEncoder read;
  if (in.Start(kObjectName) && in.Value(method) && (method == 0 || method == 1) &&
      in.Value(bins) && bins >= 1 && read.ReadBins(in) && in.End()) {
    read.fMethod = static_cast<BinningMethod>(method);
    read.fiRequestedBins = bins;
    *this = read;
    return in.Items();
  }
  return detail::ReportReadFailure(kObjectName);
}

void KXBinningEncoder::Display() const {
  KXComponentDisplay::DisplayText(1, "Binning encoder");
  KXComponentDisplay::DisplayS("Binning method",
                               fMethod == EqualWidth ? "equal width" : "equal frequency");
  KXComponentDisplay::DisplayI("Requested number of bins", fiRequestedBins);
  DisplayBins();
}

}  // namespace KXMTD_NAMESPACE
