#include "kxcommonr/mtd/KXWeightVar.h"

#include <iostream>
#include <utility>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXWeightVar";
const char kReadFailure[] = "Failure reading KXWeightVar!\n";

void Require(bool ok) {
  if (!ok) detail::FailRead(std::cerr, kReadFailure);
}

}  // namespace

KXWeightVar::KXWeightVar(const std::string& name, const std::string& label,
                         IKXVariable::WRoundingOption option)
    : fsName(name), fsLabel(label), fStorage(StorageUndefined), fpEncoder(new KXRoundEncoder(option)) {}

KXWeightVar::KXWeightVar(const KXWeightVar& other)
    : IKXVariable(other),
      fsName(other.fsName),
      fsLabel(other.fsLabel),
      fStorage(other.fStorage),
      fpEncoder(new KXRoundEncoder(*other.fpEncoder)) {}

KXWeightVar& KXWeightVar::operator=(const KXWeightVar& other) {
  if (this != &other) {
    KXWeightVar copy(other);
    std::swap(fsName, copy.fsName);
    std::swap(fsLabel, copy.fsLabel);
    fStorage = copy.fStorage;
    std::swap(fpEncoder, copy.fpEncoder);
  }
  return *this;
}

KXWeightVar::~KXWeightVar() = default;

IKXVariable* KXWeightVar::Clone() const { return new KXWeightVar(*this); }

int KXWeightVar::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Value(fsName);
  out.Value(fsLabel);
  out.Value(static_cast<int>(fStorage));
  out.Nested(fpEncoder->WriteObjectXML(os, indent + 1));
  return out.End();
}

int KXWeightVar::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  int storage = 0;
  Require(in.Start(kObjectName) && in.Value(fsName) && in.Value(fsLabel) && in.Value(storage));
  fStorage = static_cast<VariableStorage>(storage);
  Require(in.Nested(fpEncoder->ReadObjectXML(is)) && in.End());
  return in.Items();
}

void KXWeightVar::Display() const {
  using namespace KXComponentDisplay;
  DisplayS("Frequency weight variable: name", fsName);
  DisplayS("Label", fsLabel);
  DisplayText(1, std::string("Variable storage") + VariableStorageText(fStorage));
  DisplayText(1, "");
  fpEncoder->Display();
}

}  // namespace KXMTD_NAMESPACE
