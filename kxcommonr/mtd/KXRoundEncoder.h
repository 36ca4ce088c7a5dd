// kxcommonr/mtd/KXRoundEncoder.h
//
// KXRoundEncoder: frequency weights to whole numbers (encoder type 4) by a
// WRoundingOption: WRoundTruncate gives floor(w), WRoundClosest rounds half
// away from zero, WRoundAsIs keeps w. A weight that is missing, NaN,
// infinite or negative is refused: it encodes as the missing value (a
// weight of zero is kept: the case then counts for nothing). It has no
// categories.
//
// Saved form, object "KXRoundEncoder": the rounding option (Int).
#ifndef KXCOMMONR_MTD_KXROUNDENCODER_H
#define KXCOMMONR_MTD_KXROUNDENCODER_H

#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXEncoder.h"
#include "kxcommonr/mtd/IKXVariable.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXRoundEncoder : public IKXEncoder {
 public:
  // An option outside the three listed is taken as WRoundClosest.
  explicit KXRoundEncoder(IKXVariable::WRoundingOption option = IKXVariable::WRoundClosest);
  KXRoundEncoder(const KXRoundEncoder&) = default;
  KXRoundEncoder& operator=(const KXRoundEncoder&) = default;
  ~KXRoundEncoder() override;

  EncoderType GetEncoderType() const override { return EncoderTypeRound; }
  // Always 0.
  int GetNumberOfCategories() const override { return 0; }
  IKXEncoder* Clone() const override;
  // The rounded weight, or the missing value for a refused one.
  double Encode(double raw) override;
  // Encode of the string read as a number; missing when it is none.
  double Encode(const std::string& raw) override;
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // Fails (encoder unchanged) on an option outside the three listed.
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;

  IKXVariable::WRoundingOption GetRoundingOption() const { return fOption; }
  // False (unchanged) for an option outside the three listed.
  bool SetRoundingOption(IKXVariable::WRoundingOption option);

 private:
  IKXVariable::WRoundingOption fOption;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXROUNDENCODER_H
