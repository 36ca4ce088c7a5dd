#include "kxcommonr/mtd/KXStringEncoder.h"

#include <cmath>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/mtd/internal/KXCategoryIO.h"
#include "kxcommonr/records/RawData.h"

namespace KXMTD_NAMESPACE {

namespace {
const char kObjectName[] = "KXStringEncoder";
}  // namespace

KXStringEncoder::KXStringEncoder(int expectedCategories)
    : KXCategoryEncoder<std::string>(expectedCategories) {}

KXStringEncoder::~KXStringEncoder() = default;

IKXEncoder* KXStringEncoder::Clone() const { return new KXStringEncoder(*this); }

double KXStringEncoder::Encode(double raw) {
  if (!IsCategoryValue(raw)) return KXCommon::KXMV::Missing();
  std::string text;
  RawData::FromReal(CategoryKey(raw)).AsString(text);
  return Encode(text);
}

double KXStringEncoder::Encode(const std::string& raw) {
  const int code = EncodeCode(raw);
  return code >= 0 ? code : KXCommon::KXMV::Missing();
}

int KXStringEncoder::WriteObjectXML(std::ostream& os, int indent) const {
  return detail::WriteCategoryObject(*this, kObjectName, os, indent);
}

int KXStringEncoder::ReadObjectXML(std::ifstream& is) {
  return detail::ReadCategoryObject(*this, kObjectName, is);
}

void KXStringEncoder::Display() const {
  KXComponentDisplay::DisplayText(1, "String category encoder");
  KXComponentDisplay::DisplayI("Number of categories", GetNumberOfCategories());
  KXComponentDisplay::DisplayB("Growing dictionary", IsGrowing());
  KXComponentDisplay::DisplaySV("User-missing values", GetMissingValues());
  KXComponentDisplay::DisplaySV("Category values", GetDictionary().Values());
  KXComponentDisplay::DisplaySV("Category labels", GetDictionary().Labels());
}

}  // namespace KXMTD_NAMESPACE
