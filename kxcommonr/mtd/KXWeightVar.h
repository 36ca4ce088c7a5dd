// kxcommonr/mtd/KXWeightVar.h
//
// KXWeightVar: a frequency-weight variable (IKXVariable.h). Its encoder is
// always a KXRoundEncoder, created with the variable's rounding option. Its
// measure level and role are Frequency weight whatever SetVariableRole is
// given; it has no categories (GetNumberOfCategories and
// UpdateNumberOfCategories return 0, GetVarStatus VarStatusValid) and no
// missing-value replacement (the setter ignores its argument, the getter
// returns null).
//
// Saved form, object "KXWeightVar": name, label (String), storage (Int),
// then the encoder's object one tab deeper (no encoder type before it).
// Reading lets the encoder the variable holds read its own object. Both
// Write and Read return 1 for the start, 3 for the items, the encoder's
// lines and 1 for the end (Write: -1 when the stream failed). A failed read
// writes "Failure reading KXWeightVar!" to the standard error stream and
// throws a new IOException, the fields read so far keeping their new values.
//
// Display: "Frequency weight variable: name = ...", "Label = ...",
// "Variable storage = ...", an empty line, then the encoder's display.
#ifndef KXCOMMONR_MTD_KXWEIGHTVAR_H
#define KXCOMMONR_MTD_KXWEIGHTVAR_H

#include <memory>
#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXVariable.h"
#include "kxcommonr/mtd/KXRoundEncoder.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXWeightVar : public IKXVariable {
 public:
  KXWeightVar(const std::string& name, const std::string& label,
              IKXVariable::WRoundingOption option);
  KXWeightVar(const KXWeightVar& other);
  KXWeightVar& operator=(const KXWeightVar& other);
  ~KXWeightVar() override;

  MeasureLevel GetMeasureLevel() const override { return MeasureFrequencyWeight; }
  const std::string& GetVariableName() const override { return fsName; }
  const std::string& GetVariableLabel() const override { return fsLabel; }
  void SetVariableLabel(const std::string& label) override { fsLabel = label; }
  int GetNumberOfCategories() const override { return 0; }
  VariableRole GetVariableRole() const override { return RoleFrequencyWeight; }
  void SetVariableRole(VariableRole) override {}
  VariableStorage GetVariableStorage() const override { return fStorage; }
  void SetVariableStorage(VariableStorage storage) override { fStorage = storage; }
  int UpdateNumberOfCategories() override { return 0; }
  void SetMissingValueReplacement(const std::string&) override {}
  const std::string* GetMissingValueReplacement() const override { return nullptr; }
  IKXVariable* Clone() const override;
  const IKXEncoder* GetEncoder() const override { return fpEncoder.get(); }
  IKXEncoder* GetEncoder() override { return fpEncoder.get(); }
  const KXRoundEncoder& GetRoundEncoder() const { return *fpEncoder; }
  VarStatus GetVarStatus() override { return VarStatusValid; }
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // Throws IOException* on failure (see above).
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;

 private:
  std::string fsName;
  std::string fsLabel;
  VariableStorage fStorage;
  std::unique_ptr<KXRoundEncoder> fpEncoder;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXWEIGHTVAR_H
