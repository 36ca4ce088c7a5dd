#include "kxcommonr/mtd/KXContVar.h"

#include <cmath>
#include <iostream>
#include <utility>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXContVar";
const char kReadFailure[] = "Failure reading KXContVar!\n";
const char kWrongType[] = "Wrong encoder type in KXContVar!\n";
constexpr double kLargest = 1.7976931348623157e308;

void Require(bool ok) {
  if (!ok) detail::FailRead(std::cerr, kReadFailure);
}

// A double item with the object stream's 15 digits, except the few values
// next to the largest double whose 15-digit text rounds beyond the double
// range and would not read back: those get 17.
void WriteRangeValue(detail::ObjectWriter& out, double value) {
  if (std::fabs(value) >= 1.797693134862315e308 && std::isfinite(value) &&
      !KXCommon::KXMV::IsMissing(value)) {
    out.Exact(value);
  } else {
    out.Value(value);
  }
}

}  // namespace

KXContVar::KXContVar(const std::string& name, const std::string& label,
                     IKXVariable::VariableRole role)
    : fsName(name),
      fsLabel(label),
      fRole(role),
      fStorage(StorageUndefined),
      fdMin(-kLargest),
      fdMax(kLargest),
      fiNBins(-1),
      fdMean(KXCommon::KXMV::Missing()),
      fdStdDev(KXCommon::KXMV::Missing()),
      fbHasReplacement(false),
      fpEncoder(new KXContEncoder()) {}

KXContVar::KXContVar(const std::string& name, const std::string& label, double min, double max,
                     IKXVariable::VariableRole role, bool makeBins, int nBins)
    : KXContVar(name, label, role) {
  fdMin = min;
  fdMax = max;
  fiNBins = nBins;
  if (makeBins && nBins >= 1 && std::isfinite(min) && std::isfinite(max) && min < max) {
    std::vector<double> cutPoints;
    const double width = max / nBins - min / nBins;
    for (int j = 1; j < nBins; ++j) {
      const double cut = min + width * j;
      if (cut < max && (cutPoints.empty() || cut > cutPoints.back())) cutPoints.push_back(cut);
    }
    SetCutPoints(cutPoints);
  }
}

KXContVar::KXContVar(const std::string& name, const std::string& label,
                     const std::vector<double>& cutPoints, bool useBins,
                     IKXVariable::VariableRole role)
    : KXContVar(name, label, role) {
  BinBy(cutPoints, useBins);
}

KXContVar::KXContVar(const std::string& name, const std::string& label, double min, double max,
                     const std::vector<double>& cutPoints, bool useBins,
                     IKXVariable::VariableRole role)
    : KXContVar(name, label, role) {
  fdMin = min;
  fdMax = max;
  BinBy(cutPoints, useBins);
}

void KXContVar::BinBy(const std::vector<double>& cutPoints, bool useBins) {
  if (useBins) {
    SetCutPoints(cutPoints);
  } else if (KXContEncoder().SetCutPoints(cutPoints)) {
    fvCutPoints = cutPoints;  // kept for the owner; the encoder passes through
  }
}

KXContVar::KXContVar(const KXContVar& other)
    : IKXVariable(other),
      fsName(other.fsName),
      fsLabel(other.fsLabel),
      fRole(other.fRole),
      fStorage(other.fStorage),
      fdMin(other.fdMin),
      fdMax(other.fdMax),
      fiNBins(other.fiNBins),
      fdMean(other.fdMean),
      fdStdDev(other.fdStdDev),
      fvCutPoints(other.fvCutPoints),
      fsReplacement(other.fsReplacement),
      fbHasReplacement(other.fbHasReplacement),
      fpEncoder(other.fpEncoder ? new KXContEncoder(*other.fpEncoder) : nullptr) {}

KXContVar& KXContVar::operator=(const KXContVar& other) {
  if (this != &other) {
    KXContVar copy(other);  // all allocation first: *this is untouched if it throws
    std::swap(fsName, copy.fsName);
    std::swap(fsLabel, copy.fsLabel);
    fRole = copy.fRole;
    fStorage = copy.fStorage;
    fdMin = copy.fdMin;
    fdMax = copy.fdMax;
    fiNBins = copy.fiNBins;
    fdMean = copy.fdMean;
    fdStdDev = copy.fdStdDev;
    std::swap(fvCutPoints, copy.fvCutPoints);
    std::swap(fsReplacement, copy.fsReplacement);
    fbHasReplacement = copy.fbHasReplacement;
    std::swap(fpEncoder, copy.fpEncoder);
  }
  return *this;
}

KXContVar::~KXContVar() = default;

IKXVariable* KXContVar::Clone() const { return new KXContVar(*this); }

int KXContVar::GetNumberOfCategories() const {
  return fpEncoder ? fpEncoder->GetNumberOfCategories() : 0;
}

int KXContVar::UpdateNumberOfCategories() {
  if (fpEncoder) fiNBins = fpEncoder->GetNumberOfCategories();
  return fiNBins;
}

void KXContVar::SetMissingValueReplacement(const std::string& replacement) {
  fsReplacement = replacement;
  fbHasReplacement = true;
}

const std::string* KXContVar::GetMissingValueReplacement() const {
  return fbHasReplacement ? &fsReplacement : nullptr;
}

bool KXContVar::SetCutPoints(const std::vector<double>& cutPoints) {
  std::unique_ptr<KXContEncoder> encoder(fpEncoder ? new KXContEncoder(*fpEncoder)
                                                   : new KXContEncoder());
  if (!encoder->SetCutPoints(cutPoints)) return false;
  fvCutPoints = encoder->GetCutPoints();
  fiNBins = encoder->GetNumberOfCategories();
  fpEncoder = std::move(encoder);
  return true;
}

IKXVariable::VarStatus KXContVar::GetVarStatus() {
  if (fdMin > fdMax) return VarStatusNoCategory;
  return fdMin == fdMax ? VarStatusSingleCategory : VarStatusValid;
}

int KXContVar::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Value(fsName);
  out.Value(fsLabel);
  out.Value(fiNBins);
  for (const double value : {fdMin, fdMax, fdMean, fdStdDev}) WriteRangeValue(out, value);
  out.Value(static_cast<int>(fStorage));
  out.Value(fbHasReplacement);
  if (fbHasReplacement) out.Value(fsReplacement);
  out.Value(static_cast<int>(fpEncoder ? fpEncoder->GetEncoderType() : IKXEncoder::EncoderTypeNone));
  if (fpEncoder) out.Nested(fpEncoder->WriteObjectXML(os, indent + 1));
  return out.End();
}

int KXContVar::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  Require(in.Start(kObjectName));
  fpEncoder.reset();
  int storage = 0, type = 0;
  Require(in.Value(fsName) && in.Value(fsLabel) && in.Value(fiNBins) && in.Number(fdMin) &&
          in.Number(fdMax) && in.Number(fdMean) && in.Number(fdStdDev) && in.Value(storage));
  fStorage = static_cast<VariableStorage>(storage);
  Require(in.Value(fbHasReplacement));
  if (fbHasReplacement) Require(in.Value(fsReplacement));
  Require(in.Value(type));
  if (type != IKXEncoder::EncoderTypeNone && type != IKXEncoder::EncoderTypeCont) {
    detail::FailRead(std::cout, kWrongType);
  }
  if (type == IKXEncoder::EncoderTypeCont) {
    std::unique_ptr<KXContEncoder> encoder(new KXContEncoder());
    Require(in.Nested(encoder->ReadObjectXML(is)));
    fvCutPoints = encoder->GetCutPoints();
    fpEncoder = std::move(encoder);
  }
  Require(in.End());
  return in.Items();
}

void KXContVar::Display() const {
  using namespace KXComponentDisplay;
  DisplayS("Continuous variable: name", fsName);
  DisplayS("Label", fsLabel);
  DisplayText(1, std::string("Variable role") + VariableRoleText(fRole));
  DisplayText(1, std::string("Variable storage") + VariableStorageText(fStorage));
  DisplayI("Number of bins", fiNBins);
  DisplayD("Minimum", fdMin);
  DisplayD("Maximum", fdMax);
  DisplayD("Mean", fdMean);
  DisplayD("Standard deviation", fdStdDev);
  DisplayDV("Cut points", fvCutPoints, false);
  if (fbHasReplacement) DisplayS("Missing value replacement", fsReplacement);
  if (fpEncoder) fpEncoder->Display();
}

}  // namespace KXMTD_NAMESPACE
