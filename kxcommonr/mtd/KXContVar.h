// kxcommonr/mtd/KXContVar.h
//
// KXContVar: a continuous variable (IKXVariable.h) with its range, number
// of bins, mean, standard deviation and cut points. A new variable has the
// range -1.7976931348623157e308 .. +1.7976931348623157e308, -1 bins, mean
// and standard deviation missing, no cut points and a pass-through
// KXContEncoder. Its measure level is Continuous.
//
// Constructors with bins: KXContVar(name, label, min, max, role, makeBins,
// nBins) gives, when makeBins is set, nBins >= 1 and min < max are finite,
// an encoder with nBins equal-width bins over [min, max] (the interior cut
// points become the variable's); otherwise a pass-through encoder. The
// cut-point constructors bin by the cut points when useBins is set and they
// are valid (finite, strictly increasing); invalid cut points are not kept.
// SetCutPoints replaces the bins of a variable later, for instance with the
// cut points a KXBinningEncoder learned.
//
// Saved form, object "KXContVar", in this order: name, label (String);
// number of bins (Int); minimum, maximum, mean, standard deviation (Double,
// 15 significant digits, 17 for the values next to the largest double:
// the range and moments are descriptive and restore to 15 digits); storage (Int); has-replacement flag (Int 1/0);
// the replacement (String) only when the flag is set; the encoder type (Int:
// 1, or 0 without an encoder); the encoder's object (its cut points exact)
// one tab deeper when there is one. The role and the variable's copy of the
// cut points are not saved: a read keeps the role the variable had, and the
// cut points are taken from the encoder read. Both Write and Read return 1
// for the start, 9 for the fixed items, 1 for a replacement, 1 for the type,
// the encoder's lines and 1 for the end (Write: -1 when the stream failed).
//
// A read finding an encoder type other than 0 and 1 writes "Wrong encoder
// type in KXContVar!" to the standard output stream; any other failure
// writes "Failure reading KXContVar!" to the standard error stream; both
// throw a new IOException, the fields read so far keeping their new values.
#ifndef KXCOMMONR_MTD_KXCONTVAR_H
#define KXCOMMONR_MTD_KXCONTVAR_H

#include <memory>
#include <string>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXVariable.h"
#include "kxcommonr/mtd/KXContEncoder.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXContVar : public IKXVariable {
 public:
  KXContVar(const std::string& name, const std::string& label, IKXVariable::VariableRole role);
  KXContVar(const std::string& name, const std::string& label, double min, double max,
            IKXVariable::VariableRole role, bool makeBins, int nBins);
  KXContVar(const std::string& name, const std::string& label,
            const std::vector<double>& cutPoints, bool useBins, IKXVariable::VariableRole role);
  KXContVar(const std::string& name, const std::string& label, double min, double max,
            const std::vector<double>& cutPoints, bool useBins, IKXVariable::VariableRole role);
  KXContVar(const KXContVar& other);
  KXContVar& operator=(const KXContVar& other);
  ~KXContVar() override;

  MeasureLevel GetMeasureLevel() const override { return MeasureContinuous; }
  const std::string& GetVariableName() const override { return fsName; }
  const std::string& GetVariableLabel() const override { return fsLabel; }
  void SetVariableLabel(const std::string& label) override { fsLabel = label; }
  // The encoder's number of categories; 0 without an encoder.
  int GetNumberOfCategories() const override;
  VariableRole GetVariableRole() const override { return fRole; }
  void SetVariableRole(VariableRole role) override { fRole = role; }
  VariableStorage GetVariableStorage() const override { return fStorage; }
  void SetVariableStorage(VariableStorage storage) override { fStorage = storage; }
  // Sets the number of bins to the encoder's number of categories and
  // returns it; without an encoder, returns the number of bins unchanged.
  int UpdateNumberOfCategories() override;
  void SetMissingValueReplacement(const std::string& replacement) override;
  const std::string* GetMissingValueReplacement() const override;
  IKXVariable* Clone() const override;
  const IKXEncoder* GetEncoder() const override { return fpEncoder.get(); }
  IKXEncoder* GetEncoder() override { return fpEncoder.get(); }
  // 2 when minimum > maximum, 1 when they are equal, else 0.
  VarStatus GetVarStatus() override;
  int WriteObjectXML(std::ostream& os, int indent) const override;
  // Throws IOException* on failure (see above).
  int ReadObjectXML(std::ifstream& is) override;
  void Display() const override;

  double GetMean() const { return fdMean; }
  void SetMean(double mean) { fdMean = mean; }
  double GetStdDev() const { return fdStdDev; }
  void SetStdDev(double stdDev) { fdStdDev = stdDev; }
  double GetMin() const { return fdMin; }
  double GetMax() const { return fdMax; }
  void SetMinMax(double min, double max) {
    fdMin = min;
    fdMax = max;
  }
  int GetNBins() const { return fiNBins; }
  void SetNBins(int nBins) { fiNBins = nBins; }
  const std::vector<double>& GetCutPoints() const { return fvCutPoints; }
  // Bins by `cutPoints` (finite, strictly increasing): the variable keeps
  // them, the number of bins becomes their count + 1, and the encoder bins
  // by them (a new KXContEncoder when there was none). Returns false,
  // changing nothing, for invalid cut points.
  bool SetCutPoints(const std::vector<double>& cutPoints);

 private:
  void BinBy(const std::vector<double>& cutPoints, bool useBins);

  std::string fsName;
  std::string fsLabel;
  VariableRole fRole;
  VariableStorage fStorage;
  double fdMin;
  double fdMax;
  int fiNBins;
  double fdMean;
  double fdStdDev;
  std::vector<double> fvCutPoints;
  std::string fsReplacement;
  bool fbHasReplacement;
  std::unique_ptr<KXContEncoder> fpEncoder;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCONTVAR_H
