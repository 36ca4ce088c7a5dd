#include "kxcommonr/mtd/internal/KXCategoryIO.h"

#include <charconv>
#include <cmath>

namespace KXMTD_NAMESPACE {
namespace detail {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

bool ParseNumber(const std::string& text, double& value) {
  const char* first = text.data();
  const char* last = first + text.size();
  while (first < last && IsBlank(*first)) ++first;
  while (last > first && IsBlank(last[-1])) --last;
  if (first < last && *first == '+') ++first;  // from_chars takes no plus sign
  double read = 0.0;
  const std::from_chars_result result = std::from_chars(first, last, read);
  if (result.ec != std::errc() || result.ptr != last || first == last) return false;
  value = read;
  return true;
}

std::string NumberText(double value) {
  char buffer[32];
  const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

}  // namespace detail
}  // namespace KXMTD_NAMESPACE
