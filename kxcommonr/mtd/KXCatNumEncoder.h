// kxcommonr/mtd/KXCatNumEncoder.h
//
// KXCatNumEncoder: numeric raw values to category codes 0..k-1 (encoder type
// 2), under the rules of KXCategoryEncoder.h. Encode(double) gives the code
// as a double, or the system-missing value; Encode(string) first reads the
// string as a number (classic locale, blanks around it allowed).
//
// Saved form, object "KXCatNumEncoder": growing flag (Int), the number of
// user-missing values and each value (Double, 17 digits), the number of
// categories and, per code in order, the value (Double, 17 digits) and the
// label (encoded text). Values restore exactly.
//
// Example:
//   KXMTD::KXCatNumEncoder sex(2);
//   sex.AddMissingValue(9);
//   sex.Encode(1.0);   // 0
//   sex.Encode(2.0);   // 1
//   sex.Encode(9.0);   // missing
//   sex.SetGrowing(false);
//   sex.Encode(3.0);   // missing: unknown and no longer growing
#ifndef KXCOMMONR_MTD_KXCATNUMENCODER_H
#define KXCOMMONR_MTD_KXCATNUMENCODER_H

#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/KXCategoryEncoder.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXCatNumEncoder : public KXCategoryEncoder<double> {
 public:
  // An empty, growing encoder with room for `expectedCategories`.
  explicit KXCatNumEncoder(int expectedCategories = 0);
  KXCatNumEncoder(const KXCatNumEncoder&) = default;
  KXCatNumEncoder& operator=(const KXCatNumEncoder&) = default;
  ~KXCatNumEncoder() override;

  EncoderType GetEncoderType() const override { return EncoderTypeCatNum; }
  IKXEncoder* Clone() const override;
  double Encode(double raw) override;
  double Encode(const std::string& raw) override;
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // On failure the encoder is left unchanged.
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCATNUMENCODER_H
