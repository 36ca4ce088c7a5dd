#include "kxcommonr/xml/internal/KXTokenizer.h"

#include <cstring>

namespace KXXML_NAMESPACE {
namespace detail {

char* KXTokenizer::Next(const char* delimiters) {
  if (next_ == nullptr) return nullptr;
  const char* set = delimiters != nullptr ? delimiters : "";
  char* start = next_ + std::strspn(next_, set);
  if (*start == '\0') {
    // strtok keeps returning null once the string is used up.
    next_ = nullptr;
    return nullptr;
  }
  char* end = start + std::strcspn(start, set);
  if (*end == '\0') {
    next_ = nullptr;
  } else {
    *end = '\0';
    next_ = end + 1;
  }
  return start;
}

}  // namespace detail
}  // namespace KXXML_NAMESPACE
