// kxcommonr/mtd/KXCategoryDictionary.h
//
// KXCategoryDictionary<T>: the values of a categorical variable and their
// codes. Codes run 0..Size()-1 in the order the values were added; each code
// has a label (empty unless set). Find is O(1) expected through an
// open-addressing hash index of the codes (load at most one half, linear
// probing, a 32-bit hash tag per slot), so a lookup touches one or two cache
// lines and never allocates. T is double (numeric categories) or
// std::string; the owner decides which values may enter (the numeric
// encoder, for instance, admits finite values only and stores -0 as 0).
//
// SortByValue renumbers the codes in ascending value order: after merging
// the dictionaries of parts of the data (KXCategoryEncoder::Merge), it makes
// the result independent of how the data were split.
//
// A plain value; copies are deep. Thread-compatible.
#ifndef KXCOMMONR_MTD_KXCATEGORYDICTIONARY_H
#define KXCOMMONR_MTD_KXCATEGORYDICTIONARY_H

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KXMTD_NAMESPACE {

// The 32-bit hash of a category value: the bits of a double through a
// 64-bit mixer; a string through std::hash of its bytes.
inline std::uint32_t CategoryHash(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  bits ^= bits >> 33;
  bits *= 0xff51afd7ed558ccdULL;
  bits ^= bits >> 33;
  bits *= 0xc4ceb9fe1a85ec53ULL;
  bits ^= bits >> 33;
  return static_cast<std::uint32_t>(bits);
}
inline std::uint32_t CategoryHash(const std::string& value) {
  const std::uint64_t h = std::hash<std::string_view>()(std::string_view(value));
  return static_cast<std::uint32_t>(h ^ (h >> 32));
}

template <class T>
class KXCategoryDictionary {
 public:
  // The largest number of categories a dictionary holds.
  static constexpr int kMaxSize = INT_MAX / 4;

  KXCategoryDictionary() = default;

  int Size() const { return static_cast<int>(fvValues.size()); }
  bool Empty() const { return fvValues.empty(); }

  // The code of `value`, or -1 when it is not in the dictionary.
  int Find(const T& value) const {
    if (fvSlots.empty()) return -1;
    const std::uint32_t tag = CategoryHash(value);
    const std::size_t mask = fvSlots.size() - 1;
    for (std::size_t i = tag & mask;; i = (i + 1) & mask) {
      const Slot& slot = fvSlots[i];
      if (slot.code < 0) return -1;
      if (slot.tag == tag && fvValues[static_cast<std::size_t>(slot.code)] == value) {
        return slot.code;
      }
    }
  }

  // The code of `value`, added with the next code (and `label`) when it is
  // new. Returns -1, adding nothing, when the dictionary holds kMaxSize
  // values already.
  int Insert(const T& value, const std::string& label = std::string()) {
    const int found = Find(value);
    if (found >= 0) return found;
    if (Size() >= kMaxSize) return -1;
    if (2 * (fvValues.size() + 1) > fvSlots.size()) Rehash(2 * (fvValues.size() + 1));
    const int code = Size();
    fvValues.push_back(value);
    fvLabels.push_back(label);
    Place(code, CategoryHash(value));
    return code;
  }

  // The value of a code in 0..Size()-1 (unchecked).
  const T& Value(int code) const { return fvValues[static_cast<std::size_t>(code)]; }
  const std::vector<T>& Values() const { return fvValues; }
  // The label of a code in 0..Size()-1 (unchecked).
  const std::string& Label(int code) const { return fvLabels[static_cast<std::size_t>(code)]; }
  const std::vector<std::string>& Labels() const { return fvLabels; }
  // Sets the label of `code`; false when the code is out of range.
  bool SetLabel(int code, const std::string& label) {
    if (code < 0 || code >= Size()) return false;
    fvLabels[static_cast<std::size_t>(code)] = label;
    return true;
  }

  // Prepares room for `n` values (n beyond kMaxSize is capped).
  void Reserve(int n) {
    if (n <= Size()) return;
    const std::size_t want = static_cast<std::size_t>(std::min(n, kMaxSize));
    fvValues.reserve(want);
    fvLabels.reserve(want);
    if (2 * want > fvSlots.size()) Rehash(2 * want);
  }

  void Clear() {
    fvValues.clear();
    fvLabels.clear();
    fvSlots.clear();
  }

  // Renumbers the codes in ascending value order (std::less<T>). Returns the
  // new code of each old code.
  std::vector<int> SortByValue() {
    std::vector<int> order(fvValues.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [this](int a, int b) {
      return fvValues[static_cast<std::size_t>(a)] < fvValues[static_cast<std::size_t>(b)];
    });
    std::vector<T> values;
    std::vector<std::string> labels;
    values.reserve(order.size());
    labels.reserve(order.size());
    std::vector<int> newCode(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
      const std::size_t old = static_cast<std::size_t>(order[i]);
      newCode[old] = static_cast<int>(i);
      values.push_back(std::move(fvValues[old]));
      labels.push_back(std::move(fvLabels[old]));
    }
    fvValues.swap(values);
    fvLabels.swap(labels);
    Rehash(fvSlots.size());
    return newCode;
  }

  friend bool operator==(const KXCategoryDictionary& a, const KXCategoryDictionary& b) {
    return a.fvValues == b.fvValues && a.fvLabels == b.fvLabels;
  }

 private:
  struct Slot {
    int code;
    std::uint32_t tag;
  };

  // Rebuilds the index with at least `minSlots` slots (a power of two).
  void Rehash(std::size_t minSlots) {
    std::size_t n = 16;
    while (n < minSlots) n *= 2;
    fvSlots.assign(n, Slot{-1, 0});
    for (std::size_t code = 0; code < fvValues.size(); ++code) {
      Place(static_cast<int>(code), CategoryHash(fvValues[code]));
    }
  }

  void Place(int code, std::uint32_t tag) {
    const std::size_t mask = fvSlots.size() - 1;
    std::size_t i = tag & mask;
    while (fvSlots[i].code >= 0) i = (i + 1) & mask;
    fvSlots[i] = Slot{code, tag};
  }

  std::vector<T> fvValues;
  std::vector<std::string> fvLabels;
  std::vector<Slot> fvSlots;  // empty, or a power of two >= 2 * Size()
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXCATEGORYDICTIONARY_H
