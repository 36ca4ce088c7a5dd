// kxcommonr/mtd/IKXVariable.h
//
// IKXVariable: the description of one analysis variable - its name and
// label, its role in a model, its storage type, its measurement level, its
// number of categories and the encoder (IKXEncoder.h) that turns its raw
// values into codes. The implementations are KXCatVar (categorical),
// KXContVar (continuous) and KXWeightVar (frequency weight). A variable owns
// its encoder; Clone() returns a deep copy owned by the caller.
//
// The enumerations are stored and written as plain integers; a value outside
// the listed ones is kept as it is and displays as " = unrecognized".
//
// Persistence: WriteObjectXML writes the variable as one object of the object
// stream (XMLObj.h), its encoder nested one tab deeper, and returns the
// number of items written; ReadObjectXML reads it back and returns the
// number of items read. A read that fails writes the class's one-line
// message and throws a newly allocated IOException (IOException.h) that the
// caller deletes; the fields read before the failure keep their new values.
// Names and labels travel as the object stream carries strings: escaped on
// writing and not decoded on reading, so only texts free of & < > " tabs,
// line ends and leading, trailing or doubled blanks read back unchanged, and
// a text must fit a 255-character line.
#ifndef KXCOMMONR_MTD_IKXVARIABLE_H
#define KXCOMMONR_MTD_IKXVARIABLE_H

#include <fstream>
#include <ostream>
#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXEncoder.h"
#include "kxcommonr/mtd/IOException.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API IKXVariable {
 public:
  enum MeasureLevel : int {
    MeasureUnknown = 0,
    MeasureContinuous = 1,
    MeasureNumericCategorical = 2,
    MeasureStringCategorical = 3,
    MeasureFrequencyWeight = 4
  };
  enum VariableRole : int {
    RoleUndefined = 0,
    RoleTarget = 1,
    RoleTargetResponse = 2,
    RoleFrequencyWeight = 3,
    RoleInput = 4,
    RolePossibleInput = 5,
    RoleUnused = 6
  };
  enum VariableStorage : int {
    StorageUndefined = 0,
    StorageInteger = 1,
    StorageReal = 2,
    StorageString = 3,
    StorageDate = 4,
    StorageTime = 5,
    StorageTimestamp = 6
  };
  // How a frequency weight becomes a whole number.
  enum WRoundingOption : int { WRoundTruncate = 0, WRoundClosest = 1, WRoundAsIs = 2 };
  enum VarStatus : int {
    VarStatusValid = 0,           // two or more categories
    VarStatusSingleCategory = 1,  // exactly one category
    VarStatusNoCategory = 2       // no category
  };

  // The enumerations hold any int (a value read from a file is kept as it
  // is). The display texts: what a display prints after the field's name, for
  // example " = Target"; " = unrecognized" for a value outside the list.
  static const char* MeasureLevelText(int level);
  static const char* VariableRoleText(int role);
  static const char* VariableStorageText(int storage);
  static const char* WRoundingOptionText(int option);

  virtual ~IKXVariable();
  virtual MeasureLevel GetMeasureLevel() const = 0;
  virtual const std::string& GetVariableName() const = 0;
  virtual const std::string& GetVariableLabel() const = 0;
  virtual void SetVariableLabel(const std::string& label) = 0;
  virtual int GetNumberOfCategories() const = 0;
  virtual VariableRole GetVariableRole() const = 0;
  virtual void SetVariableRole(VariableRole role) = 0;
  virtual VariableStorage GetVariableStorage() const = 0;
  virtual void SetVariableStorage(VariableStorage storage) = 0;
  // Brings the category count up to date with the encoder; returns it.
  virtual int UpdateNumberOfCategories() = 0;
  // The text that replaces a missing value of this variable.
  virtual void SetMissingValueReplacement(const std::string& replacement) = 0;
  // The stored replacement, or null when none was set.
  virtual const std::string* GetMissingValueReplacement() const = 0;
  // A deep copy (encoder included), owned by the caller.
  virtual IKXVariable* Clone() const = 0;
  // The owned encoder (null only for a variable without one).
  virtual const IKXEncoder* GetEncoder() const = 0;
  virtual IKXEncoder* GetEncoder() = 0;
  virtual VarStatus GetVarStatus() = 0;
  virtual int WriteObjectXML(std::ostream& os, int indent) const = 0;
  virtual int ReadObjectXML(std::ifstream& is) = 0;
  virtual void Display() const = 0;

 protected:
  IKXVariable() = default;
  IKXVariable(const IKXVariable&) = default;
  IKXVariable& operator=(const IKXVariable&) = default;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_IKXVARIABLE_H
