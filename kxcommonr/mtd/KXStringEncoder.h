// kxcommonr/mtd/KXStringEncoder.h
//
// KXStringEncoder: string raw values to category codes 0..k-1 (encoder type
// 3), under the rules of KXCategoryEncoder.h. Strings are compared byte for
// byte (no trimming, no case folding); the empty string is an ordinary value
// unless declared missing. Encode(double) encodes the number's shortest text
// that reads back to it (std::to_chars: "2", "0.1", "1e+300"); the
// system-missing value and non-finite numbers are missing.
//
// Saved form, object "KXStringEncoder": growing flag (Int), the number of
// user-missing strings and each string, the number of categories and, per
// code in order, the value and the label. Texts are written in an encoded
// form (every byte preserved, long texts over several lines), so any string
// restores exactly.
#ifndef KXCOMMONR_MTD_KXSTRINGENCODER_H
#define KXCOMMONR_MTD_KXSTRINGENCODER_H

#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/KXCategoryEncoder.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXStringEncoder : public KXCategoryEncoder<std::string> {
 public:
  // An empty, growing encoder with room for `expectedCategories`.
  explicit KXStringEncoder(int expectedCategories = 0);
  KXStringEncoder(const KXStringEncoder&) = default;
  KXStringEncoder& operator=(const KXStringEncoder&) = default;
  ~KXStringEncoder() override;

  EncoderType GetEncoderType() const override { return EncoderTypeString; }
  IKXEncoder* Clone() const override;
  double Encode(double raw) override;
  double Encode(const std::string& raw) override;
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // On failure the encoder is left unchanged.
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXSTRINGENCODER_H
