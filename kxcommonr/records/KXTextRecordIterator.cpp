#include "kxcommonr/records/KXTextRecordIterator.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace KXMTD_NAMESPACE {

namespace {

// The buffer starts small and doubles while reads fill it, up to kBlock (or
// beyond, for a record longer than half the buffer).
constexpr std::size_t kFirstBlock = std::size_t(1) << 16;
constexpr std::size_t kBlock = std::size_t(1) << 20;

const char* TypeWord(RawData::Type type) {
  switch (type) {
    case RawData::Integer: return "an integer";
    case RawData::Real: return "a real number";
    case RawData::Date: return "a date (YYYY-MM-DD)";
    case RawData::Time: return "a time (HH:MM:SS)";
    case RawData::Timestamp: return "a timestamp (YYYY-MM-DDTHH:MM:SS)";
    default: return "a string";
  }
}

// Fills `value` from `text` by the column's type; false when it does not fit.
bool Assign(RawData& value, RawData::Type type, std::string_view text) {
  std::int64_t integer = 0;
  double real = 0.0;
  switch (type) {
    case RawData::Integer:
      if (!RawData::ParseInteger(text, integer)) return false;
      value.SetInteger(integer);
      return true;
    case RawData::Real:
      if (!RawData::ParseReal(text, real)) return false;
      value.SetReal(real);
      return true;
    case RawData::Date: return RawData::ParseDate(text, integer) && value.SetDate(integer);
    case RawData::Time: return RawData::ParseTime(text, integer) && value.SetTime(integer);
    case RawData::Timestamp:
      return RawData::ParseTimestamp(text, integer) && value.SetTimestamp(integer);
    default: value.SetString(text); return true;
  }
}

}  // namespace

KXTextRecordIterator::KXTextRecordIterator(std::istream& in)
    : KXTextRecordIterator(in, Options()) {}

KXTextRecordIterator::KXTextRecordIterator(std::istream& in, const Options& options,
                                           std::vector<RawData::Type> types)
    : fIn(in), fOptions(options), fvTypes(std::move(types)), fStart(in.tellg()) {
  Start();
  if (!fsFailReason.empty()) return;
  if (fvTypes.empty()) {
    if (DetectTypes() && Rewind()) Start();
  } else if (fvTypes.size() != fvNames.size()) {
    Fail(std::to_string(fvTypes.size()) + " column types given for " +
         std::to_string(fvNames.size()) + " columns");
  }
}

KXTextRecordIterator::~KXTextRecordIterator() = default;

bool KXTextRecordIterator::Fail(const std::string& reason) {
  fsFailReason = reason;
  fbPending = false;
  return false;
}

std::string KXTextRecordIterator::ColumnName(std::size_t column) const {
  return "column \"" + (column < fvNames.size() ? fvNames[column] : std::to_string(column + 1)) + "\"";
}

std::string KXTextRecordIterator::FieldText(const Field& field) const {
  std::string text(fvBuffer.data() + field.begin, field.length);
  if (field.escaped) {
    const std::string doubled(2, fOptions.quote);
    for (std::size_t at = text.find(doubled); at != std::string::npos; at = text.find(doubled, at + 1)) {
      text.erase(at, 1);
    }
  }
  return text;
}

void KXTextRecordIterator::Start() {
  fiPos = fiEnd = 0;
  fbEof = false;
  fiLine = 1;
  fiRecordLine = 0;
  fbPending = false;
  fsFailReason.clear();
  const Scan first = ScanRecord();
  if (first == Scan::Failed) return;
  if (first == Scan::End) {
    if (fOptions.header) Fail("the data hold no header line");
    return;
  }
  fvNames.clear();
  for (std::size_t c = 0; c < fvFields.size(); ++c) {
    fvNames.push_back(fOptions.header ? FieldText(fvFields[c]) : "V" + std::to_string(c + 1));
  }
  fbPending = !fOptions.header;  // without a header the first record is data
}

bool KXTextRecordIterator::Rewind() {
  fIn.clear();
  fIn.seekg(fStart);
  if (fStart == std::streampos(-1) || !fIn) return Fail("the data cannot be read a second time");
  return true;
}

bool KXTextRecordIterator::Refill() {
  if (fiPos > 0) {
    std::memmove(fvBuffer.data(), fvBuffer.data() + fiPos, fiEnd - fiPos);
    fiEnd -= fiPos;
    fiPos = 0;
  }
  const std::size_t size = fvBuffer.size();
  if (size == 0) {
    fvBuffer.resize(kFirstBlock);
  } else if (2 * fiEnd > size || (fbFilled && size < kBlock)) {
    fvBuffer.resize(2 * size);
  }
  const std::size_t room = fvBuffer.size() - fiEnd;
  fIn.read(fvBuffer.data() + fiEnd, static_cast<std::streamsize>(room));
  const std::size_t got = static_cast<std::size_t>(fIn.gcount());
  fbFilled = got == room;
  fiEnd += got;
  if (got == 0 || !fIn) fbEof = true;
  return true;
}

KXTextRecordIterator::Scan KXTextRecordIterator::ScanRecord() {
  for (;;) {
    if (fiPos == fiEnd) {
      if (fbEof) return Scan::End;
      Refill();
      continue;
    }
    std::size_t at = fiPos;
    long newlines = 0;
    bool more = false;
    const Scan scan = ScanFields(at, newlines, more);
    if (more) {
      Refill();
      continue;
    }
    if (scan == Scan::Failed) return scan;
    fiRecordLine = fiLine;
    fiLine += 1 + newlines;
    fiPos = at;
    const bool blank = fvFields.size() == 1 && fvFields[0].length == 0 && !fvFields[0].quoted;
    if (!blank) return Scan::Record;
  }
}

KXTextRecordIterator::Scan KXTextRecordIterator::ScanFields(std::size_t& at, long& newlines,
                                                           bool& more) {
  const char* b = fvBuffer.data();
  const char delimiter = fOptions.delimiter, quote = fOptions.quote;
  fvFields.clear();
  for (;;) {
    Field field{at, 0, false, false};
    if (at < fiEnd && b[at] == quote) {
      field.quoted = true;
      field.begin = at + 1;
      std::size_t p = field.begin;
      for (;;) {
        const void* q = p < fiEnd ? std::memchr(b + p, quote, fiEnd - p) : nullptr;
        if (q == nullptr) {
          if (!fbEof) return more = true, Scan::Record;
          Fail("line " + std::to_string(fiLine + newlines) +
               ": a quoted field is not closed before the end of the data");
          return Scan::Failed;
        }
        const std::size_t qi = static_cast<std::size_t>(static_cast<const char*>(q) - b);
        if (qi + 1 == fiEnd && !fbEof) return more = true, Scan::Record;
        if (qi + 1 < fiEnd && b[qi + 1] == quote) {
          field.escaped = true;
          p = qi + 2;
          continue;
        }
        field.length = qi - field.begin;
        newlines += std::count(b + field.begin, b + qi, '\n');
        at = qi + 1;
        break;
      }
      if (at < fiEnd && b[at] != delimiter && b[at] != '\n' && b[at] != '\r') {
        Fail("line " + std::to_string(fiLine + newlines) + ", " + ColumnName(fvFields.size()) +
             ": text after the closing quote");
        return Scan::Failed;
      }
    } else {
      std::size_t p = at;
      while (p < fiEnd && b[p] != delimiter && b[p] != '\n' && b[p] != '\r') ++p;
      if (p == fiEnd && !fbEof) return more = true, Scan::Record;
      field.length = p - at;
      at = p;
    }
    fvFields.push_back(field);
    if (at == fiEnd) return Scan::Record;  // the last record, without a line end
    const char c = b[at];
    if (c == delimiter) {
      ++at;
      continue;
    }
    if (c == '\r') {
      if (at + 1 == fiEnd && !fbEof) return more = true, Scan::Record;
      ++at;
      if (at < fiEnd && b[at] == '\n') ++at;
      return Scan::Record;
    }
    ++at;  // '\n'
    return Scan::Record;
  }
}

bool KXTextRecordIterator::Convert(RawRecord& record) {
  if (fvFields.size() != fvNames.size()) {
    return Fail("line " + std::to_string(fiRecordLine) + ": " + std::to_string(fvFields.size()) +
                " fields, expected " + std::to_string(fvNames.size()));
  }
  if (record.Size() != GetColumnCount()) record.Resize(GetColumnCount());
  for (std::size_t c = 0; c < fvFields.size(); ++c) {
    const Field& field = fvFields[c];
    const RawData::Type type = fvTypes[c];
    RawData& value = record[static_cast<int>(c)];
    if (field.length == 0) {
      if (field.quoted && type == RawData::String) {
        value.SetString(std::string_view());
      } else {
        value.SetNull(type);
      }
      continue;
    }
    std::string_view text(fvBuffer.data() + field.begin, field.length);
    if (field.escaped) {
      fsScratch = FieldText(field);
      text = fsScratch;
    }
    if (!Assign(value, type, text)) {
      return Fail("line " + std::to_string(fiRecordLine) + ", " + ColumnName(c) + ": \"" +
                  std::string(text) + "\" is not " + TypeWord(type));
    }
  }
  return true;
}

bool KXTextRecordIterator::DetectTypes() {
  const std::size_t n = fvNames.size();
  // Per column: could still be integer, real, date, timestamp, time; seen a value.
  std::vector<unsigned> could(n, 31u);
  std::vector<bool> seen(n, false);
  RawData probe;
  for (Scan scan = fbPending ? Scan::Record : ScanRecord(); scan != Scan::End; scan = ScanRecord()) {
    if (scan == Scan::Failed) return false;
    if (fvFields.size() != n) {
      return Fail("line " + std::to_string(fiRecordLine) + ": " + std::to_string(fvFields.size()) +
                  " fields, expected " + std::to_string(n));
    }
    for (std::size_t c = 0; c < n; ++c) {
      if (fvFields[c].length == 0 || could[c] == 0) continue;
      seen[c] = true;
      const std::string text = FieldText(fvFields[c]);
      const RawData::Type order[] = {RawData::Integer, RawData::Real, RawData::Date,
                                     RawData::Timestamp, RawData::Time};
      for (unsigned k = 0; k < 5; ++k) {
        if ((could[c] & (1u << k)) && !Assign(probe, order[k], text)) could[c] &= ~(1u << k);
      }
    }
  }
  fbPending = false;
  fvTypes.assign(n, RawData::String);
  const RawData::Type order[] = {RawData::Integer, RawData::Real, RawData::Date,
                                 RawData::Timestamp, RawData::Time};
  for (std::size_t c = 0; c < n; ++c) {
    if (!seen[c]) {
      fvTypes[c] = RawData::Real;
      continue;
    }
    for (unsigned k = 0; k < 5; ++k) {
      if (could[c] & (1u << k)) {
        fvTypes[c] = order[k];
        break;
      }
    }
  }
  return true;
}

bool KXTextRecordIterator::HasMore() {
  if (!fsFailReason.empty()) return false;
  if (fbPending) return true;
  fbPending = ScanRecord() == Scan::Record;
  return fbPending;
}

bool KXTextRecordIterator::Next(RawRecord& record) {
  if (!HasMore()) return false;
  fbPending = false;
  return Convert(record);
}

bool KXTextRecordIterator::NewPass() {
  fsFailReason.clear();
  if (!Rewind()) return false;
  Start();
  return fsFailReason.empty();
}

}  // namespace KXMTD_NAMESPACE
