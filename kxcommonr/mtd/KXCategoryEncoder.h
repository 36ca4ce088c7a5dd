// kxcommonr/mtd/KXCategoryEncoder.h
//
// KXCategoryEncoder<T>: what the two categorical encoders share - a
// dictionary of category values with labels (KXCategoryDictionary.h), a set
// of user-missing values, and the growing rule. KXCatNumEncoder (T = double)
// and KXStringEncoder (T = std::string) derive from it and add the raw-value
// conversions, persistence and display.
//
// Encoding rule for a raw value v:
//   - v missing (the system-missing value or a NaN, for numbers) or one of
//     the user-missing values: no code;
//   - v in the dictionary: its code;
//   - otherwise, while the encoder is growing (the default), v is added with
//     the next code; once growing is switched off (for scoring new data with
//     a fitted model), v has no code.
// Numeric category values must be finite; -0 is stored as 0.
#ifndef KXCOMMONR_MTD_KXCATEGORYENCODER_H
#define KXCOMMONR_MTD_KXCATEGORYENCODER_H

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXEncoder.h"
#include "kxcommonr/mtd/KXCategoryDictionary.h"
#include "kxcommonr/mtd/KXValueSet.h"

namespace KXMTD_NAMESPACE {

// Whether a value may be a category: numbers must be finite and not the
// system-missing value; every string may.
inline bool IsCategoryValue(double value) {
  return std::isfinite(value) && !KXCommon::KXMV::IsMissing(value);
}
inline bool IsCategoryValue(const std::string&) { return true; }
// The stored form of a category value: -0 is stored as 0.
inline double CategoryKey(double value) { return value == 0.0 ? 0.0 : value; }
inline const std::string& CategoryKey(const std::string& value) { return value; }

template <class T>
class KXCategoryEncoder : public IKXEncoder {
 public:
  using value_type = T;

  int GetNumberOfCategories() const override { return fDictionary.Size(); }

  // The code of `raw`, or -1 when it is missing or unknown. Never grows.
  int GetCode(const T& raw) const {
    if (!IsCategoryValue(raw) || IsMissingValue(raw)) return -1;
    return fDictionary.Find(CategoryKey(raw));
  }
  // The code of `raw` under the encoding rule above, or -1.
  int EncodeCode(const T& raw) {
    if (!IsCategoryValue(raw) || IsMissingValue(raw)) return -1;
    const int code = fDictionary.Find(CategoryKey(raw));
    return code >= 0 || !fbGrowing ? code : fDictionary.Insert(CategoryKey(raw));
  }
  // Adds `value` (whether or not the encoder is growing) with `label`, or
  // finds it when present (the label is then left alone). Returns its code,
  // or -1 for a value that cannot be a category or is user-missing.
  int AddCategory(const T& value, const std::string& label = std::string()) {
    if (!IsCategoryValue(value) || IsMissingValue(value)) return -1;
    return fDictionary.Insert(CategoryKey(value), label);
  }
  // Adds `value`, which must be new, with `label`. Returns false (adding
  // nothing) for a value already present or one that cannot be a category.
  bool AddNewCategory(const T& value, const std::string& label) {
    if (!IsCategoryValue(value) || fDictionary.Find(CategoryKey(value)) >= 0) return false;
    return fDictionary.Insert(CategoryKey(value), label) >= 0;
  }
  // The value of `code` in `value`; false (value untouched) when out of range.
  bool GetValue(int code, T& value) const {
    if (code < 0 || code >= fDictionary.Size()) return false;
    value = fDictionary.Value(code);
    return true;
  }
  // The label of `code`, or null when out of range.
  const std::string* GetLabel(int code) const {
    return code >= 0 && code < fDictionary.Size() ? &fDictionary.Label(code) : nullptr;
  }
  // False when `code` is out of range.
  bool SetLabel(int code, const std::string& label) { return fDictionary.SetLabel(code, label); }

  bool IsGrowing() const { return fbGrowing; }
  void SetGrowing(bool growing) { fbGrowing = growing; }

  // Declares `value` user-missing; false for a value that cannot be a
  // category (already missing). A category already coded keeps its code
  // but no longer encodes.
  bool AddMissingValue(const T& value) {
    if (!IsCategoryValue(value)) return false;
    fMissing.Insert(CategoryKey(value));
    return true;
  }
  bool IsMissingValue(const T& value) const { return fMissing.Contains(value); }
  // The user-missing values, ascending.
  const std::vector<T>& GetMissingValues() const { return fMissing.Values(); }
  const KXCategoryDictionary<T>& GetDictionary() const { return fDictionary; }

  // Takes in the user-missing values of `other`, then its categories that
  // are not user-missing here, appended in other's code order with their
  // labels. Returns the code here of each of other's codes (-1 for one now
  // user-missing). For a result independent of how the data were split,
  // call SortCategories after the last merge.
  std::vector<int> Merge(const KXCategoryEncoder& other) {
    for (const T& value : other.fMissing.Values()) fMissing.Insert(value);
    const KXCategoryDictionary<T>& theirs = other.fDictionary;
    std::vector<int> codes(static_cast<std::size_t>(theirs.Size()), -1);
    for (int code = 0; code < theirs.Size(); ++code) {
      if (!IsMissingValue(theirs.Value(code))) {
        codes[static_cast<std::size_t>(code)] =
            fDictionary.Insert(theirs.Value(code), theirs.Label(code));
      }
    }
    return codes;
  }
  // Renumbers the codes in ascending value order; returns the new code of
  // each old code.
  std::vector<int> SortCategories() { return fDictionary.SortByValue(); }
  // Forgets every category and user-missing value; growing again.
  void Clear() {
    fDictionary.Clear();
    fMissing.Clear();
    fbGrowing = true;
  }

  friend bool operator==(const KXCategoryEncoder& a, const KXCategoryEncoder& b) {
    return a.fDictionary == b.fDictionary && a.fMissing == b.fMissing &&
           a.fbGrowing == b.fbGrowing;
  }

 protected:
  // `expected` categories are given room (at most 65536; negative as 0).
  explicit KXCategoryEncoder(int expected) {
    fDictionary.Reserve(std::min(std::max(expected, 0), 65536));
  }
  KXCategoryEncoder(const KXCategoryEncoder&) = default;
  KXCategoryEncoder& operator=(const KXCategoryEncoder&) = default;


 private:
  KXCategoryDictionary<T> fDictionary;
  KXValueSet<T> fMissing;
  bool fbGrowing = true;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCATEGORYENCODER_H
