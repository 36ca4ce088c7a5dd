// examples/regress/CsvTable.h
//
// A numeric table read from a CSV file with a header row, as the regression
// program needs it: column names from the header, and every cell as a double,
// the missing value (KXCommon::KXMV::Missing()) standing for an empty or
// non-numeric cell. Cells are stored row by row so that one case is
// contiguous.
//
// Accepted text: fields separated by commas, lines ended by LF or CRLF, fields
// optionally enclosed in double quotes (a doubled quote inside stands for one
// quote), blank lines ignored, spaces around a number allowed. A number is what
// std::from_chars reads in general format, with an optional leading '+';
// "inf" and "nan" are not numbers here (a non-finite value cannot take part in
// a fit).
//
// Thread-compatible: one table per thread, or only const access shared.
#ifndef KXCOMMONR_EXAMPLES_REGRESS_CSVTABLE_H
#define KXCOMMONR_EXAMPLES_REGRESS_CSVTABLE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kxregress {

class CsvTable {
 public:
  // Column names in header order.
  const std::vector<std::string>& Names() const { return names_; }
  int NumColumns() const { return static_cast<int>(names_.size()); }
  std::size_t NumRows() const { return numRows_; }

  // Index of the column named name (exact, case-sensitive match after the
  // header's surrounding spaces were trimmed), or -1 when there is none.
  int FindColumn(std::string_view name) const;

  // The cell (row, column), the missing value for an empty or non-numeric
  // cell. REQUIRES: row < NumRows(), 0 <= column < NumColumns().
  double At(std::size_t row, int column) const {
    return cells_[row * names_.size() + static_cast<std::size_t>(column)];
  }
  // Start of a row's cells (NumColumns() of them).
  const double* Row(std::size_t row) const { return cells_.data() + row * names_.size(); }

  // Number of cells of a column that held text which is not a number (empty
  // cells not counted), and number of cells that were numbers.
  std::size_t NonNumericCount(int column) const { return nonNumeric_[static_cast<std::size_t>(column)]; }
  std::size_t NumericCount(int column) const { return numeric_[static_cast<std::size_t>(column)]; }

  // Builds a table directly from names and row-major cells (cells.size() must
  // be a multiple of names.size(); missing values mark absent cells). Returns
  // false, leaving the table unchanged, when the sizes do not fit or names is
  // empty. Used by programs that hold their data in memory already.
  bool Assign(std::vector<std::string> names, std::vector<double> cells);

  // Parses CSV text. On failure returns false, sets error to a one-line
  // message (with the 1-based line number where it applies) and leaves the
  // table unchanged. Fails on an empty text, an empty or duplicated column
  // name, a row with more fields than the header, or an unterminated quote.
  // A row with fewer fields than the header gets empty cells for the rest.
  bool Parse(std::string_view text, std::string& error);

  // Reads the whole file and parses it. Returns false with a one-line error
  // ("cannot open '<path>': <reason>" or the parse error) on failure, the
  // table then unchanged.
  bool ReadFile(const std::string& path, std::string& error);

 private:
  std::vector<std::string> names_;
  std::size_t numRows_ = 0;
  std::vector<double> cells_;
  std::vector<std::size_t> nonNumeric_;
  std::vector<std::size_t> numeric_;
};

// Parses one cell's text as a finite number; false for empty or non-numeric
// text (value then unchanged). Spaces and tabs around the number are ignored.
bool ParseNumber(std::string_view text, double& value);

}  // namespace kxregress

#endif  // KXCOMMONR_EXAMPLES_REGRESS_CSVTABLE_H
