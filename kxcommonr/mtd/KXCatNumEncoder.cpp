#include "kxcommonr/mtd/KXCatNumEncoder.h"

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/mtd/internal/KXCategoryIO.h"
#include "kxcommonr/records/RawData.h"

namespace KXMTD_NAMESPACE {

namespace {
const char kObjectName[] = "KXCatNumEncoder";
}  // namespace

KXCatNumEncoder::KXCatNumEncoder(int expectedCategories)
    : KXCategoryEncoder<double>(expectedCategories) {}

KXCatNumEncoder::~KXCatNumEncoder() = default;

IKXEncoder* KXCatNumEncoder::Clone() const { return new KXCatNumEncoder(*this); }

double KXCatNumEncoder::Encode(double raw) {
  const int code = EncodeCode(raw);
  return code >= 0 ? code : KXCommon::KXMV::Missing();
}

double KXCatNumEncoder::Encode(const std::string& raw) {
  double value = 0.0;
  return RawData::ParseReal(raw, value) ? Encode(value) : KXCommon::KXMV::Missing();
}

int KXCatNumEncoder::WriteObjectXML(std::ostream& os, int indent) const {
  return detail::WriteCategoryObject(*this, kObjectName, os, indent);
}

int KXCatNumEncoder::ReadObjectXML(std::ifstream& is) {
  return detail::ReadCategoryObject(*this, kObjectName, is);
}

void KXCatNumEncoder::Display() const {
  KXComponentDisplay::DisplayText(1, "Numeric category encoder");
  KXComponentDisplay::DisplayI("Number of categories", GetNumberOfCategories());
  KXComponentDisplay::DisplayB("Growing dictionary", IsGrowing());
  KXComponentDisplay::DisplayDV("User-missing values", GetMissingValues(), false);
  KXComponentDisplay::DisplayDV("Category values", GetDictionary().Values(), false);
  KXComponentDisplay::DisplaySV("Category labels", GetDictionary().Labels());
}

}  // namespace KXMTD_NAMESPACE
