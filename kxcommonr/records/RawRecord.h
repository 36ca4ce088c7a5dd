// kxcommonr/records/RawRecord.h
//
// RawRecord: the raw values of one case, one RawData per column, as a record
// iterator delivers them. Record: the encoded values of one case (doubles,
// the system-missing value for a missing one), as a variable list's
// encoders make them from a RawRecord (KXVarList::Encode).
//
// Both are plain values; refilling one record after another reuses their
// storage.
#ifndef KXCOMMONR_RECORDS_RAWRECORD_H
#define KXCOMMONR_RECORDS_RAWRECORD_H

#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/records/RawData.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API RawRecord {
 public:
  RawRecord() = default;
  explicit RawRecord(std::vector<RawData> values) : fvValues(std::move(values)) {}

  int Size() const { return static_cast<int>(fvValues.size()); }
  // Keeps the first n values (new ones are null reals); n < 0 as 0.
  void Resize(int n) { fvValues.resize(n > 0 ? static_cast<std::size_t>(n) : 0); }
  // The value of column i (unchecked: 0 <= i < Size()).
  RawData& operator[](int i) { return fvValues[static_cast<std::size_t>(i)]; }
  const RawData& operator[](int i) const { return fvValues[static_cast<std::size_t>(i)]; }
  // The value of column i, or null when i is out of range.
  const RawData* Get(int i) const {
    return i >= 0 && i < Size() ? &fvValues[static_cast<std::size_t>(i)] : nullptr;
  }
  const std::vector<RawData>& Values() const { return fvValues; }

  friend bool operator==(const RawRecord& a, const RawRecord& b) { return a.fvValues == b.fvValues; }

 private:
  std::vector<RawData> fvValues;
};

class KXCOMMONR_API Record {
 public:
  Record() = default;

  int Size() const { return static_cast<int>(fvValues.size()); }
  void Resize(int n) { fvValues.resize(n > 0 ? static_cast<std::size_t>(n) : 0); }
  // The value of column i, or the system-missing value out of range.
  double Get(int i) const;
  // False (nothing set) when i is out of range.
  bool Set(int i, double value);
  const double* Data() const { return fvValues.data(); }
  const std::vector<double>& Values() const { return fvValues; }

 private:
  std::vector<double> fvValues;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_RECORDS_RAWRECORD_H
