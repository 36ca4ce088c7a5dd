// kxcommonr/records/RawData.h
//
// RawData: one raw value of a record - an integer, a real, a string, a
// date, a time of day or a timestamp - or a null of one of those types.
//
//   Integer    64-bit signed integer
//   Real       double
//   String     bytes (no encoding assumed)
//   Date       days since 1970-01-01 in the proleptic Gregorian calendar
//   Time       microseconds since midnight, 0 .. 86399999999
//   Timestamp  microseconds since 1970-01-01T00:00:00 (no time zone)
//
// The conversions refuse what does not fit instead of guessing: AsInteger
// takes a real only when it is a whole number in range and a string only
// when all of it is an integer; AsReal takes an integer only when the double
// holds it exactly (|i| <= 2^53), a string only when all of it is a number,
// and gives dates as days, times as seconds since midnight and timestamps as
// seconds since 1970; AsString gives every value's text (the shortest text
// that reads back for reals, ISO 8601 for dates and times). A null converts
// to nothing: every As... returns false and leaves its argument alone.
//
// The setters reuse the string's storage, so a RawData refilled record after
// record does not allocate once its string has grown.
#ifndef KXCOMMONR_RECORDS_RAWDATA_H
#define KXCOMMONR_RECORDS_RAWDATA_H

#include <cstdint>
#include <string>
#include <string_view>

#include "kxcommonr/config.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API RawData {
 public:
  enum Type : int { Integer = 0, Real = 1, String = 2, Date = 3, Time = 4, Timestamp = 5 };

  // A null real.
  RawData() = default;
  static RawData Null(Type type);
  static RawData FromInteger(std::int64_t value);
  static RawData FromReal(double value);
  static RawData FromString(std::string_view value);

  Type GetType() const { return fType; }
  bool IsNull() const { return fbNull; }

  void SetNull(Type type);
  void SetInteger(std::int64_t value);
  void SetReal(double value);
  void SetString(std::string_view value);
  // False (value unchanged) for a date outside years 1..9999.
  bool SetDate(std::int64_t days);
  // False (value unchanged) outside 0 .. 86399999999 microseconds.
  bool SetTime(std::int64_t microseconds);
  // False (value unchanged) outside years 1..9999.
  bool SetTimestamp(std::int64_t microseconds);

  bool AsInteger(std::int64_t& value) const;
  bool AsReal(double& value) const;
  bool AsString(std::string& value) const;
  // The stored string (empty unless the value is a non-null String).
  const std::string& StringValue() const { return fsValue; }
  // The stored integer of an Integer, Date, Time or Timestamp (0 otherwise).
  std::int64_t IntegerValue() const { return fType == Real || fType == String ? 0 : fiValue; }

  // Text forms "YYYY-MM-DD", "HH:MM:SS[.ffffff]" and
  // "YYYY-MM-DDTHH:MM:SS[.ffffff]" (a blank may replace the T). False, the
  // value unchanged, for anything else or an impossible date or time.
  static bool ParseDate(std::string_view text, std::int64_t& days);
  static bool ParseTime(std::string_view text, std::int64_t& microseconds);
  static bool ParseTimestamp(std::string_view text, std::int64_t& microseconds);
  // The whole of `text` (blanks around it allowed) as an integer or a
  // decimal number, independent of the locale.
  static bool ParseInteger(std::string_view text, std::int64_t& value);
  static bool ParseReal(std::string_view text, double& value);

  // Values equal in type, nullness and value (reals compared bitwise).
  friend KXCOMMONR_API bool operator==(const RawData& a, const RawData& b);

 private:
  Type fType = Real;
  bool fbNull = true;
  std::int64_t fiValue = 0;  // Integer, Date, Time, Timestamp
  double fdValue = 0.0;      // Real
  std::string fsValue;       // String
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_RECORDS_RAWDATA_H
