#include "kxcommonr/mtd/KXRoundEncoder.h"

#include <cmath>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/records/RawData.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXRoundEncoder";

bool IsOption(int option) { return option >= 0 && option <= 2; }

}  // namespace

KXRoundEncoder::KXRoundEncoder(IKXVariable::WRoundingOption option)
    : fOption(IsOption(option) ? option : IKXVariable::WRoundClosest) {}

KXRoundEncoder::~KXRoundEncoder() = default;

IKXEncoder* KXRoundEncoder::Clone() const { return new KXRoundEncoder(*this); }

bool KXRoundEncoder::SetRoundingOption(IKXVariable::WRoundingOption option) {
  if (!IsOption(option)) return false;
  fOption = option;
  return true;
}

double KXRoundEncoder::Encode(double raw) {
  if (!std::isfinite(raw) || raw < 0.0) return KXCommon::KXMV::Missing();  // missing is < 0
  switch (fOption) {
    case IKXVariable::WRoundTruncate: return std::floor(raw);
    case IKXVariable::WRoundClosest: return std::round(raw);
    default: return raw;
  }
}

double KXRoundEncoder::Encode(const std::string& raw) {
  double value = 0.0;
  return RawData::ParseReal(raw, value) ? Encode(value) : KXCommon::KXMV::Missing();
}

int KXRoundEncoder::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Value(static_cast<int>(fOption));
  return out.End();
}

int KXRoundEncoder::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  int option = -1;
  if (in.Start(kObjectName) && in.Value(option) && IsOption(option) && in.End()) {
    fOption = static_cast<IKXVariable::WRoundingOption>(option);
    return in.Items();
  }
  return detail::ReportReadFailure(kObjectName);
}

void KXRoundEncoder::Display() const {
  KXComponentDisplay::DisplayText(1, "Rounding encoder");
  KXComponentDisplay::DisplayText(
      1, std::string("Rounding option") + IKXVariable::WRoundingOptionText(fOption));
}

}  // namespace KXMTD_NAMESPACE
