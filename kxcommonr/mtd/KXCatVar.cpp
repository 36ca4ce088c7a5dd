#include "kxcommonr/mtd/KXCatVar.h"

#include <iostream>
#include <utility>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/mtd/KXCatNumEncoder.h"
#include "kxcommonr/mtd/KXStringEncoder.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXCatVar";
const char kReadFailure[] = "Failure reading KXCatVar!\n";

// Items a read reports besides the encoder's lines: start, nine fixed items,
// the encoder type and the end.
constexpr int kFixedItems = 1 + 9 + 1 + 1;

void Require(bool ok) {
  if (!ok) detail::FailRead(std::cerr, kReadFailure);
}

}  // namespace

KXCatVar::KXCatVar(const std::string& name, const std::string& label, int numberOfCategories,
                   IKXVariable::MeasureLevel level, IKXVariable::VariableRole role, bool ordinal)
    : fsName(name),
      fsLabel(label),
      fbOrdinal(ordinal),
      fRole(role),
      fStorage(StorageUndefined),
      fiNCategories(numberOfCategories),
      fLevel(level),
      fbHasReplacement(false) {
  if (level == MeasureNumericCategorical) {
    fpEncoder.reset(new KXCatNumEncoder(numberOfCategories));
  } else {
    fpEncoder.reset(new KXStringEncoder(numberOfCategories));
  }
}

KXCatVar::KXCatVar(const KXCatVar& other)
    : IKXVariable(other),
      fsName(other.fsName),
      fsLabel(other.fsLabel),
      fbOrdinal(other.fbOrdinal),
      fRole(other.fRole),
      fStorage(other.fStorage),
      fiNCategories(other.fiNCategories),
      fLevel(other.fLevel),
      fsReplacement(other.fsReplacement),
      fbHasReplacement(other.fbHasReplacement),
      fpEncoder(other.fpEncoder ? other.fpEncoder->Clone() : nullptr) {}

KXCatVar& KXCatVar::operator=(const KXCatVar& other) {
  if (this != &other) {
    KXCatVar copy(other);  // all allocation first: *this is untouched if it throws
    std::swap(fsName, copy.fsName);
    std::swap(fsLabel, copy.fsLabel);
    fbOrdinal = copy.fbOrdinal;
    fRole = copy.fRole;
    fStorage = copy.fStorage;
    fiNCategories = copy.fiNCategories;
    fLevel = copy.fLevel;
    std::swap(fsReplacement, copy.fsReplacement);
    fbHasReplacement = copy.fbHasReplacement;
    std::swap(fpEncoder, copy.fpEncoder);
  }
  return *this;
}

KXCatVar::~KXCatVar() = default;

IKXVariable* KXCatVar::Clone() const { return new KXCatVar(*this); }

int KXCatVar::UpdateNumberOfCategories() {
  if (fpEncoder && fpEncoder->GetNumberOfCategories() > fiNCategories) {
    fiNCategories = fpEncoder->GetNumberOfCategories();
  }
  return fiNCategories;
}

void KXCatVar::SetMissingValueReplacement(const std::string& replacement) {
  fsReplacement = replacement;
  fbHasReplacement = true;
}

const std::string* KXCatVar::GetMissingValueReplacement() const {
  return fbHasReplacement ? &fsReplacement : nullptr;
}

void KXCatVar::ChangeEncoder(IKXEncoder* encoder) {
  fpEncoder.reset(encoder);
  fiNCategories = encoder ? encoder->GetNumberOfCategories() : 0;
}

IKXVariable::VarStatus KXCatVar::GetVarStatus() {
  const int count = UpdateNumberOfCategories();
  if (count == 1) return VarStatusSingleCategory;
  return count < 1 ? VarStatusNoCategory : VarStatusValid;
}

int KXCatVar::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Value(fsName);
  out.Value(fsLabel);
  out.Value(static_cast<int>(fRole));
  out.Value(static_cast<int>(fStorage));
  out.Value(fiNCategories);
  out.Value(static_cast<int>(fLevel));
  out.Value(fbOrdinal);
  out.Value(fbHasReplacement);
  if (fbHasReplacement) out.Value(fsReplacement);
  const int type = fpEncoder ? fpEncoder->GetEncoderType() : IKXEncoder::EncoderTypeNone;
  out.Value(type);
  int encoderLines = 0;
  if (type != IKXEncoder::EncoderTypeNone) encoderLines = fpEncoder->WriteObjectXML(os, indent + 1);
  if (out.End() < 0 || encoderLines < 0) return -1;
  return kFixedItems + (fbHasReplacement ? 1 : 0) + encoderLines;
}

int KXCatVar::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  Require(in.Start(kObjectName));
  fpEncoder.reset();
  int role = 0, storage = 0, level = 0, type = 0;
  Require(in.Value(fsName) && in.Value(fsLabel) && in.Value(role));
  fRole = static_cast<VariableRole>(role);
  Require(in.Value(storage));
  fStorage = static_cast<VariableStorage>(storage);
  Require(in.Value(fiNCategories) && in.Value(level));
  fLevel = static_cast<MeasureLevel>(level);
  Require(in.Value(fbOrdinal) && in.Value(fbHasReplacement));
  if (fbHasReplacement) Require(in.Value(fsReplacement));
  Require(in.Value(type));
  std::unique_ptr<IKXEncoder> encoder;
  if (type == IKXEncoder::EncoderTypeCatNum) encoder.reset(new KXCatNumEncoder(2));
  if (type == IKXEncoder::EncoderTypeString) encoder.reset(new KXStringEncoder(2));
  Require(encoder != nullptr);
  const int encoderLines = encoder->ReadObjectXML(is);
  Require(encoderLines >= 0);
  fpEncoder = std::move(encoder);
  Require(in.End());
  return kFixedItems + (fbHasReplacement ? 1 : 0) + encoderLines;
}

void KXCatVar::Display() const {
  using namespace KXComponentDisplay;
  DisplayS("Categorical variable: name", fsName);
  DisplayS("Label", fsLabel);
  DisplayText(1, std::string("Variable role") + VariableRoleText(fRole));
  DisplayText(1, std::string("Variable storage") + VariableStorageText(fStorage));
  DisplayText(1, std::string("Measurement Level") + MeasureLevelText(fLevel));
  DisplayI("Number of categories", fiNCategories);
  DisplayB("Ordinal variable indicator", fbOrdinal);
  if (fbHasReplacement) DisplayS("Missing value replacement", fsReplacement);
}

}  // namespace KXMTD_NAMESPACE
