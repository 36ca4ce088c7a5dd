// libFuzzer target for the text record iterator.
//
// Input layout: the first byte chooses the options (delimiter, quote, header
// or not) and whether the columns are typed by the caller (types drawn from
// the second byte) or detected; the rest is the text. Each input is read in
// two passes, which must deliver the same records and end the same way; a
// pass that fails must say why, and every record delivered must have the
// column count and, per column, a value of the column's type or a null.
// Any broken promise aborts; the sanitizers catch the rest.
//
// Build: cmake --preset fuzz && cmake --build --preset fuzz
// Run:   build/fuzz/kxcommonr/records/fuzz/kx_text_records_fuzzer CORPUS_DIR \
//            kxcommonr/records/fuzz/corpus
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/records/KXTextRecordIterator.h"

namespace {

using namespace KXMTD_NAMESPACE;

void Check(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
  }
}

std::vector<RawRecord> Pass(KXTextRecordIterator& it) {
  std::vector<RawRecord> records;
  RawRecord record;
  while (it.HasMore()) {
    if (!it.Next(record)) break;
    Check(record.Size() == it.GetColumnCount(), "a record has the column count");
    for (int c = 0; c < record.Size(); ++c) {
      const RawData& value = record[c];
      const RawData::Type type = it.GetColumnTypes()[static_cast<std::size_t>(c)];
      Check(value.GetType() == type, "a value (or null) has its column's type");
    }
    records.push_back(record);
  }
  Check(!it.Next(record), "a finished pass stays finished");
  return records;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::uint8_t choice = data[0], typeBits = data[1];
  KXTextRecordIterator::Options options;
  const char delimiters[] = {',', ';', '\t', '|'};
  options.delimiter = delimiters[choice & 3];
  options.quote = (choice & 4) ? '\'' : '"';
  options.header = (choice & 8) == 0;
  const bool typed = (choice & 16) != 0;
  const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);

  std::vector<RawData::Type> types;
  if (typed) {
    // As many types as the first line has fields (a guess the iterator checks).
    std::size_t columns = 1;
    for (const char c : text) {
      if (c == '\n') break;
      columns += c == options.delimiter;
    }
    for (std::size_t c = 0; c < columns && c < 64; ++c) {
      types.push_back(static_cast<RawData::Type>((typeBits >> (c % 4 * 2)) % 6));
    }
  }
  std::istringstream in(text);
  KXTextRecordIterator it(in, options, types);
  const std::string startReason = it.GetFailReason();
  const std::vector<RawRecord> first = Pass(it);
  const std::string firstReason = it.GetFailReason();
  if (!startReason.empty()) {
    Check(first.empty(), "an iterator that failed to start delivers nothing");
    return 0;
  }
  const bool again = it.NewPass();
  Check(again == it.GetFailReason().empty(), "NewPass says why it fails");
  if (!again) return 0;
  const std::vector<RawRecord> second = Pass(it);
  Check(first.size() == second.size(), "two passes deliver as many records");
  for (std::size_t i = 0; i < first.size(); ++i) Check(first[i] == second[i], "two passes agree");
  Check(it.GetFailReason() == firstReason, "two passes end the same way");
  return 0;
}
