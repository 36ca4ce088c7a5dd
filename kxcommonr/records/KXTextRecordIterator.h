// kxcommonr/records/KXTextRecordIterator.h
//
// KXTextRecordIterator: records from delimited text (CSV and its relatives)
// read from a caller's stream, which it does not own and which must outlive
// it. The text follows RFC 4180:
//   - fields are separated by the delimiter (',' by default) and records by
//     LF or CR LF (a lone CR ends a record too); the last record may lack its
//     line end;
//   - a field may be quoted ('"' by default): it then may hold delimiters,
//     line ends and doubled quotes (one quote each); a quote inside an
//     unquoted field is an ordinary character;
//   - the first record is the header (column names) unless options say
//     there is none (the columns are then named V1, V2, ...);
//   - an empty unquoted field is null; an empty quoted field ("") is the
//     empty string in a String column and null in any other;
//   - blank lines are skipped.
//
// Columns are typed either by the caller (one RawData::Type per column) or,
// when no types are given, by a first pass over the stream at construction:
// a column is Integer when every non-empty field is an integer, else Real
// when every one is a number, else Date, Timestamp or Time when every one
// has that ISO 8601 form, else String (a column of empty fields is Real).
// The stream must then be seekable, and so it must for NewPass.
//
// A malformed record ends the pass with a fail reason naming the line and
// the column, for example
//   line 7, column "price": "12x" is not a real number
//   line 9: 3 fields, expected 4
//   line 12: a quoted field is not closed before the end of the data
// Nothing is skipped silently. Numbers are read independent of the locale.
//
// Reads the stream in blocks growing to 1 MiB; a record needs no allocation
// once its strings have grown, and a field is parsed in place.
#ifndef KXCOMMONR_RECORDS_KXTEXTRECORDITERATOR_H
#define KXCOMMONR_RECORDS_KXTEXTRECORDITERATOR_H

#include <istream>
#include <string>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/records/IKXRecordIterator.h"
#include "kxcommonr/records/RawData.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API KXTextRecordIterator : public IKXRecordIterator {
 public:
  struct Options {
    char delimiter = ',';
    char quote = '"';
    bool header = true;
  };

  // Reads the header (and detects the column types when `types` is empty).
  // A failure there (an empty stream, a malformed header, as many types as
  // columns not given, a stream that cannot be rewound) leaves a fail reason
  // and an iterator that delivers nothing.
  explicit KXTextRecordIterator(std::istream& in);
  KXTextRecordIterator(std::istream& in, const Options& options,
                       std::vector<RawData::Type> types = {});
  KXTextRecordIterator(const KXTextRecordIterator&) = delete;
  KXTextRecordIterator& operator=(const KXTextRecordIterator&) = delete;
  ~KXTextRecordIterator() override;

  bool HasMore() override;
  bool Next(RawRecord& record) override;
  bool NewPass() override;
  const std::string& GetFailReason() const override { return fsFailReason; }
  int GetColumnCount() const override { return static_cast<int>(fvNames.size()); }
  const std::vector<std::string>& GetColumnNames() const override { return fvNames; }
  const std::vector<RawData::Type>& GetColumnTypes() const { return fvTypes; }
  // The line on which the last record delivered starts (1-based).
  long GetLine() const { return fiRecordLine; }

 private:
  struct Field {
    std::size_t begin, length;
    bool quoted, escaped;
  };
  enum class Scan { Record, End, Failed };

  void Start();
  bool Rewind();
  bool Refill();
  Scan ScanRecord();
  Scan ScanFields(std::size_t& at, long& newlines, bool& more);
  bool Convert(RawRecord& record);
  bool DetectTypes();
  bool Fail(const std::string& reason);
  std::string ColumnName(std::size_t column) const;
  std::string FieldText(const Field& field) const;

  std::istream& fIn;
  Options fOptions;
  std::vector<RawData::Type> fvTypes;
  std::vector<std::string> fvNames;
  std::streampos fStart;
  std::vector<char> fvBuffer;
  std::size_t fiPos = 0, fiEnd = 0;
  bool fbEof = false;
  bool fbFilled = false;  // the last read filled all the room it had
  long fiLine = 1;        // line of the next record
  long fiRecordLine = 0;  // line of the record in fvFields
  std::vector<Field> fvFields;
  bool fbPending = false;  // fvFields holds a record not yet delivered
  std::string fsScratch;
  std::string fsFailReason;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_RECORDS_KXTEXTRECORDITERATOR_H
