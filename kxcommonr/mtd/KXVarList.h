// kxcommonr/mtd/KXVarList.h
//
// KXVarList: the variables of a data set, in column order. The list owns its
// variables; a copy clones them all. Variable i describes column i of the
// records: Encode turns a RawRecord into a Record through each variable's
// encoder. Names are unique and found in O(1).
//
// BuildFromPass makes the list from one pass over a record iterator (two
// when a column mixes numbers and strings): a column of numbers (integers,
// reals, dates, times, timestamps) becomes a continuous variable with its
// range, mean and standard deviation; a column holding any string becomes a
// string-categorical variable whose encoder holds every value met, in order
// of appearance. Every variable gets the role Input and the storage of its
// column's values.
//
// Saved form, object "KXVarList": the number of variables (Int), then per
// variable its class name (String: "KXCatVar", "KXContVar" or
// "KXWeightVar") and its own object one tab deeper. ReadObjectXML reads into
// a new list and replaces this one only when all of it was read; otherwise it
// writes "Failure reading KXVarList!" to the standard error stream (after the
// message of the variable that failed, if one did) and throws a new
// IOException, leaving this list unchanged.
#ifndef KXCOMMONR_MTD_KXVARLIST_H
#define KXCOMMONR_MTD_KXVARLIST_H

#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/mtd/IKXVariable.h"
#include "kxcommonr/records/IKXRecordIterator.h"
#include "kxcommonr/records/RawRecord.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXVarList {
 public:
  KXVarList();
  KXVarList(const KXVarList& other);
  KXVarList& operator=(const KXVarList& other);
  KXVarList(KXVarList&&) noexcept;
  KXVarList& operator=(KXVarList&&) noexcept;
  ~KXVarList();

  int Size() const { return static_cast<int>(fvVariables.size()); }
  // Appends `variable` and takes ownership of it. Returns false for null or
  // a name already in the list; the caller then keeps the variable.
  bool Add(IKXVariable* variable);
  // Deletes variable `index`; false when out of range.
  bool Remove(int index);
  void Clear();
  // Variable `index`, or null when out of range.
  IKXVariable* Get(int index);
  const IKXVariable* Get(int index) const;
  // The index of the variable named `name`, or -1.
  int IndexOf(const std::string& name) const;
  // The indices of the variables with `role`, in order.
  std::vector<int> SelectByRole(IKXVariable::VariableRole role) const;

  // Replaces the list by the variables of the records (see above) and starts
  // a new pass of `records`. Returns false, the list unchanged, with
  // `reason` set, when the iterator fails.
  bool BuildFromPass(IKXRecordIterator& records, std::string& reason);
  // Encodes column i of `raw` by variable i into `encoded` (resized to
  // Size()): a null becomes the missing value, a string goes to the
  // encoder's string form, any other value to its numeric form. Returns
  // false, `encoded` unchanged, when `raw` has not Size() columns.
  bool Encode(const RawRecord& raw, Record& encoded);

  int WriteObjectXML(std::ostream& os, int indent) const;
  // Throws IOException* on failure (see above).
  int ReadObjectXML(std::ifstream& is);
  void Display() const;

 private:
  void Reindex();

  std::vector<std::unique_ptr<IKXVariable>> fvVariables;
  std::unordered_map<std::string, int> fIndex;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_KXVARLIST_H
