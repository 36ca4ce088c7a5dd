// kxcommonr/mtd/KXCatVar.h
//
// KXCatVar: a categorical variable (IKXVariable.h). It owns its encoder: a
// KXCatNumEncoder for the measure level Numeric Categorical, a
// KXStringEncoder for every other level. The stored number of categories
// follows the encoder upwards only (UpdateNumberOfCategories, GetVarStatus);
// ChangeEncoder sets it to the new encoder's count.
//
// Saved form, object "KXCatVar", in this order: name, label (String); role,
// storage, number of categories, measure level (Int); ordinal flag,
// has-replacement flag (Int 1/0); the replacement (String) only when the
// flag is set; the encoder type (Int: 2 or 3, 0 without an encoder); the
// encoder's own object one tab deeper unless the type is 0. ReadObjectXML
// accepts types 2 and 3 only, so a variable saved without an encoder cannot
// be read back. Its result counts 1 for the start, 9 for the fixed items
// before the replacement, 1 for a replacement, 1 for the encoder type, the
// encoder's own lines and 1 for the end; WriteObjectXML returns the same
// count for what it wrote (-1 when the stream failed).
//
// A failed read writes "Failure reading KXCatVar!" to the standard error
// stream and throws a new IOException; the fields read so far keep their new
// values and the variable may be left without an encoder.
//
// Display: "Categorical variable: name = ...", "Label = ...", "Variable
// role = ...", "Variable storage = ...", "Measurement Level = ...", "Number
// of categories = ...", "Ordinal variable indicator = ...", and "Missing
// value replacement = ..." when one is set.
#ifndef KXCOMMONR_MTD_KXCATVAR_H
#define KXCOMMONR_MTD_KXCATVAR_H

#include <memory>
#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXVariable.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXCatVar : public IKXVariable {
 public:
  // Storage 0, no replacement, and a new empty encoder sized for
  // `numberOfCategories` (numeric for level 2, string otherwise).
  KXCatVar(const std::string& name, const std::string& label, int numberOfCategories,
           IKXVariable::MeasureLevel level, IKXVariable::VariableRole role, bool ordinal);
  KXCatVar(const KXCatVar& other);
  KXCatVar& operator=(const KXCatVar& other);
  ~KXCatVar() override;

  MeasureLevel GetMeasureLevel() const override { return fLevel; }
  const std::string& GetVariableName() const override { return fsName; }
  const std::string& GetVariableLabel() const override { return fsLabel; }
  void SetVariableLabel(const std::string& label) override { fsLabel = label; }
  // The stored count.
  int GetNumberOfCategories() const override { return fiNCategories; }
  void SetNumberOfCategories(int count) { fiNCategories = count; }
  VariableRole GetVariableRole() const override { return fRole; }
  void SetVariableRole(VariableRole role) override { fRole = role; }
  VariableStorage GetVariableStorage() const override { return fStorage; }
  void SetVariableStorage(VariableStorage storage) override { fStorage = storage; }
  bool GetOrdinalFlag() const { return fbOrdinal; }
  void SetOrdinalFlag(bool ordinal) { fbOrdinal = ordinal; }
  // Raises the stored count to the encoder's when that is larger; returns
  // the stored count.
  int UpdateNumberOfCategories() override;
  void SetMissingValueReplacement(const std::string& replacement) override;
  const std::string* GetMissingValueReplacement() const override;
  IKXVariable* Clone() const override;
  const IKXEncoder* GetEncoder() const override { return fpEncoder.get(); }
  IKXEncoder* GetEncoder() override { return fpEncoder.get(); }
  // Deletes the current encoder, takes ownership of `encoder` (may be null)
  // and sets the stored count to its number of categories (0 for null).
  void ChangeEncoder(IKXEncoder* encoder);
  // After UpdateNumberOfCategories: 1 for one category, 2 for fewer, else 0.
  VarStatus GetVarStatus() override;
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // Throws IOException* on failure (see above).
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;

 private:
  std::string fsName;
  std::string fsLabel;
  bool fbOrdinal;
  VariableRole fRole;
  VariableStorage fStorage;
  int fiNCategories;
  MeasureLevel fLevel;
  std::string fsReplacement;
  bool fbHasReplacement;
  std::unique_ptr<IKXEncoder> fpEncoder;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCATVAR_H
