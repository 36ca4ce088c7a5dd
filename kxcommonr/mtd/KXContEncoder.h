// kxcommonr/mtd/KXContEncoder.h
//
// KXContEncoder: continuous raw values (encoder type 1), either passed
// through (no bins: the default) or coded by bins. With cut points
// c[0] < c[1] < ... < c[m-1] the bins are right-closed:
//
//   code 0: x <= c[0];  code i: c[i-1] < x <= c[i];  code m: x > c[m-1]
//
// so there are m + 1 categories (one bin holding everything when binned
// with no cut point). The code of x is the number of cut points below it,
// found by binary search. Missing: the system-missing value, NaN, the
// infinities and the user-missing values encode as the missing value.
//
// Saved form, object "KXContEncoder": binned flag (Int), the number of cut
// points and each cut point, the number of user-missing values and each
// value (Doubles with 17 digits, so they restore exactly).
#ifndef KXCOMMONR_MTD_KXCONTENCODER_H
#define KXCOMMONR_MTD_KXCONTENCODER_H

#include <string>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXEncoder.h"
#include "kxcommonr/mtd/KXValueSet.h"

namespace KXMTD_NAMESPACE {

namespace detail {
class ObjectReader;
class ObjectWriter;
}  // namespace detail

class KXCOMMONR_API KXContEncoder : public IKXEncoder {
 public:
  // A pass-through encoder.
  KXContEncoder();
  // Bins by `cutPoints` when SetCutPoints accepts them, else passes through.
  explicit KXContEncoder(const std::vector<double>& cutPoints);
  KXContEncoder(const KXContEncoder&) = default;
  KXContEncoder& operator=(const KXContEncoder&) = default;
  ~KXContEncoder() override;

  EncoderType GetEncoderType() const override { return EncoderTypeCont; }
  // The number of bins, or 0 when passing through.
  int GetNumberOfCategories() const override;
  IKXEncoder* Clone() const override;
  // The bin code (binned) or the value itself, or the missing value.
  double Encode(double raw) override;
  // Encode of the string read as a number; missing when it is none.
  double Encode(const std::string& raw) override;
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // On failure the encoder is left unchanged.
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;

  // Bins by `cutPoints`, which must be finite, not the missing value, and
  // strictly increasing (an empty list gives one bin). Returns false,
  // changing nothing, otherwise.
  bool SetCutPoints(const std::vector<double>& cutPoints);
  // Passes values through again.
  void ClearBins();
  bool IsBinned() const { return fbBinned; }
  const std::vector<double>& GetCutPoints() const { return fvCutPoints; }
  // The bin code of `raw`, or -1 when it is missing or the encoder passes
  // values through.
  int GetBinCode(double raw) const;
  // Declares `value` user-missing; false for a value already missing.
  bool AddMissingValue(double value);
  // True for the system-missing value, NaN, the infinities and the
  // user-missing values.
  bool IsMissingValue(double value) const;
  const std::vector<double>& GetMissingValues() const { return fMissing.Values(); }

  friend bool operator==(const KXContEncoder& a, const KXContEncoder& b) {
    return a.fbBinned == b.fbBinned && a.fvCutPoints == b.fvCutPoints &&
           a.fMissing == b.fMissing;
  }

 protected:
  // The bins and user-missing values as lines of an object (the body of the
  // saved form), and their display.
  void WriteBins(detail::ObjectWriter& out) const;
  bool ReadBins(detail::ObjectReader& in);
  void DisplayBins() const;

 private:
  bool fbBinned = false;
  std::vector<double> fvCutPoints;
  KXValueSet<double> fMissing;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCONTENCODER_H
