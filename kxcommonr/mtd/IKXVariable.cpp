#include "kxcommonr/mtd/IKXVariable.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kUnrecognized[] = " = unrecognized";

template <int N>
const char* TextOf(const char* const (&texts)[N], int value) {
  return value >= 0 && value < N ? texts[value] : kUnrecognized;
}

}  // namespace

IKXEncoder::~IKXEncoder() = default;
IKXVariable::~IKXVariable() = default;

const char* IKXVariable::MeasureLevelText(int level) {
  static const char* const kTexts[] = {
      " = Unknown measure level", " = Continuous", " = Numeric Categorical",
      " = String Categorical", " = Frequency weight"};
  return TextOf(kTexts, level);
}

const char* IKXVariable::VariableRoleText(int role) {
  static const char* const kTexts[] = {
      " = Undefined variable role", " = Target", " = Target Response",
      " = Frequency weight", " = Input", " = Possible Input", " = Unused variable"};
  return TextOf(kTexts, role);
}

const char* IKXVariable::VariableStorageText(int storage) {
  static const char* const kTexts[] = {
      " = Undefined variable storage", " = Integer", " = Real", " = String",
      " = Date", " = Time", " = Timestamp"};
  return TextOf(kTexts, storage);
}

const char* IKXVariable::WRoundingOptionText(int option) {
  static const char* const kTexts[] = {
      " = Truncate to smaller int", " = Round to closest int", " = As is - no change"};
  return TextOf(kTexts, option);
}

}  // namespace KXMTD_NAMESPACE
