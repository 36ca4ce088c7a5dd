// kxcommonr/xml/internal/KXTokenizer.h
//
// A reentrant tokenizer with exactly the splitting rules of the C library's
// strtok: each call skips the leading characters that belong to the given
// delimiter set, takes the token up to the next delimiter, overwrites that
// delimiter with '\0' and resumes after it on the next call. The delimiter set
// may change from call to call. Unlike strtok, the position is kept in the
// object, so tokenizers over different buffers never disturb each other.
//
// Internal: not installed, not exported.
// Thread-compatible: one tokenizer per thread.
#ifndef KXCOMMONR_XML_INTERNAL_KXTOKENIZER_H
#define KXCOMMONR_XML_INTERNAL_KXTOKENIZER_H

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {
namespace detail {

class KXTokenizer {
 public:
  // REQUIRES: buffer is a writable, '\0'-terminated string that outlives the
  // tokenizer. A null buffer yields no tokens.
  explicit KXTokenizer(char* buffer) : next_(buffer) {}

  // The next token, delimited by any character of `delimiters` (a
  // '\0'-terminated set; null counts as the empty set). Returns null when
  // only delimiters remain; every later call then returns null too.
  char* Next(const char* delimiters);

 private:
  char* next_;  // where the next search starts; null once exhausted
};

}  // namespace detail
}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_INTERNAL_KXTOKENIZER_H
