#include "kxcommonr/records/RawData.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace KXMTD_NAMESPACE {

namespace {

constexpr std::int64_t kMicrosPerDay = 86400LL * 1000000LL;
constexpr std::int64_t kFirstDay = -719162;  // 0001-01-01
constexpr std::int64_t kLastDay = 2932896;   // 9999-12-31
constexpr std::int64_t kExactLimit = std::int64_t(1) << 53;

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's
// days_from_civil).
std::int64_t DaysFromCivil(std::int64_t y, int m, int d) {
  y -= m <= 2;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t yoe = y - era * 400;
  const std::int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(std::int64_t z, std::int64_t& y, int& m, int& d) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = yoe + era * 400 + (m <= 2);
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Exactly `n` digits at text[at..] as a number.
bool Digits(std::string_view text, std::size_t at, std::size_t n, int& value) {
  if (at + n > text.size()) return false;
  value = 0;
  for (std::size_t i = at; i < at + n; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    value = value * 10 + (text[i] - '0');
  }
  return true;
}

bool DaysInRange(std::int64_t days) { return days >= kFirstDay && days <= kLastDay; }

std::string DateText(std::int64_t days) {
  std::int64_t y = 0;
  int m = 0, d = 0;
  CivilFromDays(days, y, m, d);
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", static_cast<int>(y), m, d);
  return text;
}

std::string TimeText(std::int64_t micros) {
  const std::int64_t seconds = micros / 1000000, fraction = micros % 1000000;
  char text[24];
  int length = std::snprintf(text, sizeof text, "%02d:%02d:%02d", static_cast<int>(seconds / 3600),
                             static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
  if (fraction != 0) {
    length += std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length), ".%06d",
                            static_cast<int>(fraction));
    while (text[length - 1] == '0') text[--length] = '\0';
  }
  return text;
}

}  // namespace

RawData RawData::Null(Type type) {
  RawData value;
  value.SetNull(type);
  return value;
}

RawData RawData::FromInteger(std::int64_t value) {
  RawData data;
  data.SetInteger(value);
  return data;
}

RawData RawData::FromReal(double value) {
  RawData data;
  data.SetReal(value);
  return data;
}

RawData RawData::FromString(std::string_view value) {
  RawData data;
  data.SetString(value);
  return data;
}

void RawData::SetNull(Type type) {
  fType = type >= Integer && type <= Timestamp ? type : Real;
  fbNull = true;
  fsValue.clear();
}

void RawData::SetInteger(std::int64_t value) {
  fType = Integer;
  fbNull = false;
  fiValue = value;
}

void RawData::SetReal(double value) {
  fType = Real;
  fbNull = false;
  fdValue = value;
}

void RawData::SetString(std::string_view value) {
  fType = String;
  fbNull = false;
  fsValue.assign(value.data(), value.size());
}

bool RawData::SetDate(std::int64_t days) {
  if (!DaysInRange(days)) return false;
  fType = Date;
  fbNull = false;
  fiValue = days;
  return true;
}

bool RawData::SetTime(std::int64_t microseconds) {
  if (microseconds < 0 || microseconds >= kMicrosPerDay) return false;
  fType = Time;
  fbNull = false;
  fiValue = microseconds;
  return true;
}

bool RawData::SetTimestamp(std::int64_t microseconds) {
  const std::int64_t days =
      microseconds >= 0 ? microseconds / kMicrosPerDay : -((-microseconds - 1) / kMicrosPerDay) - 1;
  if (!DaysInRange(days)) return false;
  fType = Timestamp;
  fbNull = false;
  fiValue = microseconds;
  return true;
}

bool RawData::AsInteger(std::int64_t& value) const {
  if (fbNull) return false;
  switch (fType) {
    case Integer: value = fiValue; return true;
    case Real:
      if (!(std::fabs(fdValue) < 9223372036854775808.0) || std::trunc(fdValue) != fdValue) return false;
      value = static_cast<std::int64_t>(fdValue);
      return true;
    case String: return ParseInteger(fsValue, value);
    default: return false;
  }
}

bool RawData::AsReal(double& value) const {
  if (fbNull) return false;
  switch (fType) {
    case Integer:
      if (fiValue < -kExactLimit || fiValue > kExactLimit) return false;
      value = static_cast<double>(fiValue);
      return true;
    case Real: value = fdValue; return true;
    case String: return ParseReal(fsValue, value);
    case Date: value = static_cast<double>(fiValue); return true;
    default: value = static_cast<double>(fiValue) / 1e6; return true;  // Time, Timestamp
  }
}

bool RawData::AsString(std::string& value) const {
  if (fbNull) return false;
  switch (fType) {
    case Integer: value = std::to_string(fiValue); return true;
    case Real: {
      char text[32];
      const std::to_chars_result result = std::to_chars(text, text + sizeof text, fdValue);
      value.assign(text, result.ptr);
      return true;
    }
    case String: value = fsValue; return true;
    case Date: value = DateText(fiValue); return true;
    case Time: value = TimeText(fiValue); return true;
    default: {
      const std::int64_t days = fiValue >= 0 ? fiValue / kMicrosPerDay
                                             : -((-fiValue - 1) / kMicrosPerDay) - 1;
      value = DateText(days) + "T" + TimeText(fiValue - days * kMicrosPerDay);
      return true;
    }
  }
}

bool RawData::ParseDate(std::string_view text, std::int64_t& days) {
  text = Trimmed(text);
  int y = 0, m = 0, d = 0;
  if (text.size() != 10 || text[4] != '-' || text[7] != '-' || !Digits(text, 0, 4, y) ||
      !Digits(text, 5, 2, m) || !Digits(text, 8, 2, d) || y < 1 || m < 1 || m > 12 || d < 1) {
    return false;
  }
  static const int kMonthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
  if (d > kMonthDays[m - 1] + (m == 2 && leap ? 1 : 0)) return false;
  days = DaysFromCivil(y, m, d);
  return true;
}

bool RawData::ParseTime(std::string_view text, std::int64_t& microseconds) {
  text = Trimmed(text);
  int h = 0, mi = 0, s = 0;
  if (text.size() < 8 || text[2] != ':' || text[5] != ':' || !Digits(text, 0, 2, h) ||
      !Digits(text, 3, 2, mi) || !Digits(text, 6, 2, s) || h > 23 || mi > 59 || s > 59) {
    return false;
  }
  std::int64_t fraction = 0;
  if (text.size() > 8) {
    const std::size_t n = text.size() - 9;
    if (text[8] != '.' || n < 1 || n > 6) return false;
    int digits = 0;
    if (!Digits(text, 9, n, digits)) return false;
    fraction = digits;
    for (std::size_t i = n; i < 6; ++i) fraction *= 10;
  }
  microseconds = ((h * 60LL + mi) * 60LL + s) * 1000000LL + fraction;
  return true;
}

bool RawData::ParseTimestamp(std::string_view text, std::int64_t& microseconds) {
  text = Trimmed(text);
  std::int64_t days = 0, time = 0;
  if (text.size() < 19 || (text[10] != 'T' && text[10] != ' ') ||
      !ParseDate(text.substr(0, 10), days) || !ParseTime(text.substr(11), time)) {
    return false;
  }
  microseconds = days * kMicrosPerDay + time;
  return true;
}

bool RawData::ParseInteger(std::string_view text, std::int64_t& value) {
  text = Trimmed(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  std::int64_t read = 0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), read);
  if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
  value = read;
  return true;
}

bool RawData::ParseReal(std::string_view text, double& value) {
  text = Trimmed(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double read = 0.0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), read);
  if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
  value = read;
  return true;
}

bool operator==(const RawData& a, const RawData& b) {
  if (a.fType != b.fType || a.fbNull != b.fbNull) return false;
  if (a.fbNull) return true;
  switch (a.fType) {
    case RawData::Real: return std::memcmp(&a.fdValue, &b.fdValue, sizeof a.fdValue) == 0;
    case RawData::String: return a.fsValue == b.fsValue;
    default: return a.fiValue == b.fiValue;
  }
}

}  // namespace KXMTD_NAMESPACE
