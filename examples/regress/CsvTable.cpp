// examples/regress/CsvTable.cpp
#include "examples/regress/CsvTable.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "kxcommonr/common/foundation/KXMV.h"

namespace kxregress {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool EndsField(char c) { return c == ',' || c == '\n' || c == '\r'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Reads a number starting at p (after optional blanks and '+') that must run
// up to a field end or the end of the text, possibly followed by blanks.
// Returns the position after the number and its blanks, or nullptr when the
// text there is not exactly one finite number.
const char* ReadNumber(const char* p, const char* end, double& value) {
  while (p != end && IsBlank(*p)) ++p;
  if (p != end && *p == '+') {
    ++p;
    if (p == end || *p == '-' || *p == '+') return nullptr;
  }
  double parsed = 0.0;
  const std::from_chars_result result = std::from_chars(p, end, parsed, std::chars_format::general);
  if (result.ec != std::errc() || !std::isfinite(parsed)) return nullptr;
  p = result.ptr;
  while (p != end && IsBlank(*p)) ++p;
  if (p != end && !EndsField(*p)) return nullptr;
  value = parsed;
  return p;
}

// Cursor over the text: one field at a time, keeping the line number.
class FieldReader {
 public:
  explicit FieldReader(std::string_view text) : p_(text.data()), end_(text.data() + text.size()) {
    // A UTF-8 byte order mark is not part of the first name.
    if (text.size() >= 3 && std::memcmp(p_, "\xEF\xBB\xBF", 3) == 0) p_ += 3;
  }

  bool AtEnd() const { return p_ == end_; }
  std::size_t Line() const { return line_; }

  // Skips empty lines; true when a line with content follows.
  bool SkipBlankLines() {
    while (p_ != end_ && (*p_ == '\n' || *p_ == '\r')) {
      if (*p_ == '\n') ++line_;
      ++p_;
    }
    return p_ != end_;
  }

  // After a field: true (and moves past the comma) when another field of the
  // same line follows; false at the end of the line or text (and moves past
  // the line end).
  bool NextField() {
    if (p_ != end_ && *p_ == ',') {
      ++p_;
      return true;
    }
    if (p_ != end_ && *p_ == '\r') ++p_;
    if (p_ != end_ && *p_ == '\n') {
      ++p_;
      ++line_;
    }
    return false;
  }

  // Reads a field as text (quotes resolved). False on an unterminated quote or
  // text after a closing quote.
  bool ReadText(std::string& field) {
    field.clear();
    const char* start = p_;
    while (p_ != end_ && IsBlank(*p_)) ++p_;
    if (p_ != end_ && *p_ == '"') return ReadQuoted(field);
    p_ = start;
    while (p_ != end_ && !EndsField(*p_)) ++p_;
    field.assign(start, p_);
    return true;
  }

  // Reads a field as a number. Returns 1 for a number (value set), 0 for an
  // empty field, 2 for other text, -1 for a malformed quoted field.
  int ReadCell(double& value, std::string& scratch) {
    if (const char* after = ReadNumber(p_, end_, value)) {
      p_ = after;
      return 1;
    }
    const char* q = p_;
    while (q != end_ && IsBlank(*q)) ++q;
    if (q != end_ && *q == '"') {
      if (!ReadText(scratch)) return -1;
      const std::string_view inner = Trim(scratch);
      if (inner.empty()) return 0;
      return ParseNumber(inner, value) ? 1 : 2;
    }
    if (q == end_ || EndsField(*q)) {
      p_ = q;
      return 0;
    }
    while (q != end_ && !EndsField(*q)) ++q;
    p_ = q;
    return 2;
  }

 private:
  bool ReadQuoted(std::string& field) {
    ++p_;  // opening quote
    for (;;) {
      if (p_ == end_) return false;
      const char c = *p_++;
      if (c == '"') {
        if (p_ != end_ && *p_ == '"') {
          field.push_back('"');
          ++p_;
          continue;
        }
        break;
      }
      if (c == '\n') ++line_;
      field.push_back(c);
    }
    while (p_ != end_ && IsBlank(*p_)) ++p_;
    return p_ == end_ || EndsField(*p_);
  }

  const char* p_;
  const char* end_;
  std::size_t line_ = 1;
};

std::string LinePrefix(std::size_t line) { return "line " + std::to_string(line) + ": "; }

}  // namespace

bool ParseNumber(std::string_view text, double& value) {
  const char* end = text.data() + text.size();
  double parsed = 0.0;
  if (ReadNumber(text.data(), end, parsed) != end) return false;
  value = parsed;
  return true;
}

int CsvTable::FindColumn(std::string_view name) const {
  for (std::size_t i = 0; i < names_.size(); ++i) {
    if (names_[i] == name) return static_cast<int>(i);
  }
  return -1;
}

bool CsvTable::Assign(std::vector<std::string> names, std::vector<double> cells) {
  if (names.empty() || cells.size() % names.size() != 0) return false;
  const std::size_t numColumns = names.size();
  std::vector<std::size_t> nonNumeric(numColumns, 0);
  std::vector<std::size_t> numeric(numColumns, 0);
  for (std::size_t k = 0; k < cells.size(); ++k) {
    if (!KXCommon::KXMV::IsMissing(cells[k])) ++numeric[k % numColumns];
  }
  names_ = std::move(names);
  numRows_ = cells.size() / numColumns;
  cells_ = std::move(cells);
  nonNumeric_ = std::move(nonNumeric);
  numeric_ = std::move(numeric);
  return true;
}

bool CsvTable::Parse(std::string_view text, std::string& error) {
  FieldReader reader(text);
  if (!reader.SkipBlankLines()) {
    error = "the file is empty (a header row of column names is needed)";
    return false;
  }

  std::vector<std::string> names;
  std::unordered_set<std::string> seen;
  std::string field;
  do {
    if (!reader.ReadText(field)) {
      error = LinePrefix(reader.Line()) + "unterminated or malformed quoted field";
      return false;
    }
    std::string name(Trim(field));
    if (name.empty()) {
      error = LinePrefix(reader.Line()) + "column " + std::to_string(names.size() + 1) +
              " of the header has no name";
      return false;
    }
    if (!seen.insert(name).second) {
      error = LinePrefix(reader.Line()) + "column name '" + name + "' appears twice";
      return false;
    }
    names.push_back(std::move(name));
  } while (reader.NextField());

  const std::size_t numColumns = names.size();
  // Reserve for one row per remaining line, an upper bound that avoids
  // repeated growth of large tables.
  std::size_t lineCount = 1;
  for (const char c : text) lineCount += (c == '\n');
  std::vector<double> cells;
  cells.reserve(lineCount * numColumns);
  std::vector<std::size_t> nonNumeric(numColumns, 0);
  std::vector<std::size_t> numeric(numColumns, 0);
  const double missing = KXCommon::KXMV::Missing();

  while (reader.SkipBlankLines()) {
    std::size_t column = 0;
    do {
      if (column == numColumns) {
        error = LinePrefix(reader.Line()) + "more fields than the " + std::to_string(numColumns) +
                " columns of the header";
        return false;
      }
      double value = missing;
      const int kind = reader.ReadCell(value, field);
      if (kind < 0) {
        error = LinePrefix(reader.Line()) + "unterminated or malformed quoted field";
        return false;
      }
      if (kind == 1) {
        ++numeric[column];
      } else {
        value = missing;
        if (kind == 2) ++nonNumeric[column];
      }
      cells.push_back(value);
      ++column;
    } while (reader.NextField());
    for (; column < numColumns; ++column) cells.push_back(missing);
  }

  names_ = std::move(names);
  numRows_ = cells.size() / numColumns;
  cells_ = std::move(cells);
  nonNumeric_ = std::move(nonNumeric);
  numeric_ = std::move(numeric);
  return true;
}

bool CsvTable::ReadFile(const std::string& path, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    // Name the likely reason without relying on errno, which the streams
    // need not set.
    std::error_code code;
    const std::filesystem::path location(path);
    const char* reason = "cannot be read";
    if (!std::filesystem::exists(location, code)) {
      reason = "no such file";
    } else if (std::filesystem::is_directory(location, code)) {
      reason = "is a directory";
    }
    error = "cannot open '" + path + "': " + reason;
    return false;
  }
  // One read of the whole file when its size is known, then whatever a
  // growing file (or a stream without a size) still holds.
  std::string text;
  std::error_code sizeError;
  const std::uintmax_t size = std::filesystem::file_size(path, sizeError);
  if (!sizeError && size > 0 && size < static_cast<std::uintmax_t>(text.max_size())) {
    text.resize(static_cast<std::size_t>(size));
    in.read(&text[0], static_cast<std::streamsize>(size));
    text.resize(static_cast<std::size_t>(in.gcount()));
  }
  char buffer[1 << 16];
  while (in && (in.read(buffer, sizeof buffer) || in.gcount() > 0)) {
    text.append(buffer, static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) {
    error = "cannot read '" + path + "'";
    return false;
  }
  std::string parseError;
  if (!Parse(text, parseError)) {
    error = path + ": " + parseError;
    return false;
  }
  return true;
}

}  // namespace kxregress
