// kxcommonr/mtd/IKXEncoder.h
//
// IKXEncoder: the object a variable holds to turn raw values into the values
// a model works with. Every encoder takes numeric and string raw values and
// gives a double: a category code 0..k-1 (categorical encoders), a bin code
// or the value itself (continuous encoder), a rounded weight (rounding
// encoder), or the system-missing value (KXMV) for a missing, user-missing,
// refused or unknown raw value. The implementations:
//
//   type 1  KXContEncoder     cut points to bin codes, or values passed through
//   type 2  KXCatNumEncoder   numeric values to category codes
//   type 3  KXStringEncoder   strings to category codes
//   type 4  KXRoundEncoder    frequency weights rounded to integers
//   type 5  KXBinningEncoder  a continuous encoder whose cut points are learned
//
// Each saves itself as one object of the object stream named after its class
// (for example <Obj name="KXStringEncoder">), in a format that restores it
// exactly: numbers carry 17 significant digits and texts are written in a
// percent-encoded form that needs no XML escaping and splits over several
// lines when long. WriteObjectXML and ReadObjectXML return the number of
// lines (items) of the object, start and end lines included; ReadObjectXML
// returns -1 after writing "Failure reading <class>!" to the standard error
// stream when the object cannot be read (the encoder is then left in a valid
// but unspecified state: clear or discard it).
//
// Thread-compatible: const operations may run concurrently; Encode may grow
// a categorical encoder's dictionary, so it needs exclusive access.
#ifndef KXCOMMONR_MTD_IKXENCODER_H
#define KXCOMMONR_MTD_IKXENCODER_H

#include <fstream>
#include <ostream>
#include <string>

#include "kxcommonr/config.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API IKXEncoder {
 public:
  // The type numbers written by the variables ahead of their encoder.
  enum EncoderType : int {
    EncoderTypeNone = 0,
    EncoderTypeCont = 1,
    EncoderTypeCatNum = 2,
    EncoderTypeString = 3,
    EncoderTypeRound = 4,
    EncoderTypeBinning = 5
  };

  virtual ~IKXEncoder();
  virtual EncoderType GetEncoderType() const = 0;
  // Categories (or bins) the encoder knows; 0 for an encoder that passes
  // values through.
  virtual int GetNumberOfCategories() const = 0;
  // A new copy, owned by the caller.
  virtual IKXEncoder* Clone() const = 0;
  // The encoded value of a numeric raw value, or the missing value.
  virtual double Encode(double raw) = 0;
  // The encoded value of a string raw value, or the missing value. Numeric
  // encoders read the string as a number in the classic locale (blanks
  // around it allowed, nothing else); text that is no number is missing.
  virtual double Encode(const std::string& raw) = 0;
  // Writes the encoder's object with its lines indented by `indent` tabs.
  // Returns the number of lines written, or -1 when the stream has failed.
  virtual int WriteObjectXML(std::ostream& os, int indent) const = 0;
  // Reads the object WriteObjectXML wrote. Returns the number of lines
  // read, or -1 (with the message on standard error) when it cannot.
  virtual int ReadObjectXML(std::ifstream& is) = 0;
  virtual void Display() const = 0;

 protected:
  IKXEncoder() = default;
  IKXEncoder(const IKXEncoder&) = default;
  IKXEncoder& operator=(const IKXEncoder&) = default;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_IKXENCODER_H
