// kxcommonr/mtd/internal/KXCategoryIO.h
//
// The saved form shared by the categorical encoders (the categorical body:
// growing flag, user-missing values, categories with labels).
#ifndef KXCOMMONR_MTD_INTERNAL_KXCATEGORYIO_H
#define KXCOMMONR_MTD_INTERNAL_KXCATEGORYIO_H

#include <string>
#include <utility>

#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {
namespace detail {

// Value lines of the two kinds of category value.
inline void WriteCategoryValue(ObjectWriter& out, double value) { out.Exact(value); }
inline void WriteCategoryValue(ObjectWriter& out, const std::string& value) { out.Text(value); }
inline bool ReadCategoryValue(ObjectReader& in, double& value) { return in.Finite(value); }
inline bool ReadCategoryValue(ObjectReader& in, std::string& value) { return in.Text(value); }

// Writes the object `name` holding the categorical body of `encoder`.
template <class Encoder>
int WriteCategoryObject(const Encoder& encoder, const char* name, std::ostream& os, int indent) {
  ObjectWriter out(os, name, indent);
  out.Value(encoder.IsGrowing());
  out.Value(static_cast<int>(encoder.GetMissingValues().size()));
  for (const auto& value : encoder.GetMissingValues()) WriteCategoryValue(out, value);
  const auto& dictionary = encoder.GetDictionary();
  out.Value(dictionary.Size());
  for (int code = 0; code < dictionary.Size(); ++code) {
    WriteCategoryValue(out, dictionary.Value(code));
    out.Text(dictionary.Label(code));
  }
  return out.End();
}

// Reads the object `name` into a fresh encoder and hands it over to
// `encoder` when the whole object was read. Returns the lines read, or -1
// (writing "Failure reading <name>!" to standard error; `encoder` unchanged).
template <class Encoder>
int ReadCategoryObject(Encoder& encoder, const char* name, std::ifstream& is) {
  ObjectReader in(is);
  Encoder read;
  bool growing = true;
  int missingCount = 0, categoryCount = 0;
  bool ok = in.Start(name) && in.Value(growing) && in.Count(missingCount);
  typename Encoder::value_type value{};
  for (int i = 0; ok && i < missingCount; ++i) {
    ok = ReadCategoryValue(in, value) && read.AddMissingValue(value);
  }
  ok = ok && in.Count(categoryCount);
  std::string label;
  for (int code = 0; ok && code < categoryCount; ++code) {
    ok = ReadCategoryValue(in, value) && in.Text(label) && read.AddNewCategory(value, label);
  }
  ok = ok && in.End();
  if (!ok) return ReportReadFailure(name);
  read.SetGrowing(growing);
  encoder = std::move(read);
  return in.Items();
}

}  // namespace detail
}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_INTERNAL_KXCATEGORYIO_H
