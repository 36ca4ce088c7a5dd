// kxcommonr/mtd/KXBinningEncoder.h
//
// KXBinningEncoder: a continuous encoder (KXContEncoder.h) that learns its
// cut points from data (encoder type 5). Feed the values with AddValue (with
// frequency weights), then ComputeCutPoints:
//
//   EqualWidth      n - 1 cut points spaced evenly between the smallest and
//                   the largest value: min + j (max - min) / n, j = 1..n-1;
//   EqualFrequency  the cut point of bin j is the weighted j/n quantile: the
//                   smallest value whose cumulative weight reaches
//                   j W / n (W the total weight). Bins are right-closed, so
//                   tied values never straddle a cut; repeated cut points
//                   and a cut at the largest value are dropped, so heavy
//                   ties give fewer than n bins.
//
// Constant data give one bin. Equal frequency keeps every value until the
// cut points are computed (16 bytes per call of AddValue); equal
// width keeps only the range. The data are not part of the saved form.
//
// Saved form, object "KXBinningEncoder": method (Int), requested number of
// bins (Int), then the body of the continuous encoder's object. Reading
// one clears the data taken so far.
#ifndef KXCOMMONR_MTD_KXBINNINGENCODER_H
#define KXCOMMONR_MTD_KXBINNINGENCODER_H

#include <utility>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/KXContEncoder.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXBinningEncoder : public KXContEncoder {
 public:
  enum BinningMethod : int { EqualWidth = 0, EqualFrequency = 1 };

  // An encoder that will make `nBins` bins by `method`; it passes values
  // through until ComputeCutPoints succeeds. nBins below 1 is taken as 1.
  explicit KXBinningEncoder(BinningMethod method = EqualFrequency, int nBins = 10);
  KXBinningEncoder(const KXBinningEncoder&) = default;
  KXBinningEncoder& operator=(const KXBinningEncoder&) = default;
  ~KXBinningEncoder() override;

  EncoderType GetEncoderType() const override { return EncoderTypeBinning; }
  IKXEncoder* Clone() const override;
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // On failure the encoder is left unchanged.
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;

  BinningMethod GetMethod() const { return fMethod; }
  int GetRequestedBins() const { return fiRequestedBins; }

  // Takes `value` with frequency `weight` into the data. Returns false,
  // taking nothing, for a missing value (IsMissingValue) or a weight that is
  // negative or not finite; a zero weight is accepted and ignored.
  bool AddValue(double value, double weight = 1.0);
  // Sets the cut points from the data taken so far. Returns false, changing
  // nothing, when no value with a positive weight has been taken.
  bool ComputeCutPoints();
  // Forgets the data (not the cut points).
  void ClearData();

 private:
  std::vector<double> EqualWidthCuts() const;
  std::vector<double> EqualFrequencyCuts();

  BinningMethod fMethod;
  int fiRequestedBins;
  double fdMin, fdMax, fdTotalWeight = 0.0;
  std::vector<std::pair<double, double>> fvData;  // (value, weight), equal frequency only
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXBINNINGENCODER_H
