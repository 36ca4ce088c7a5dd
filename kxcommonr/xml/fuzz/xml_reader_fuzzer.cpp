// libFuzzer target for the object-stream readers and the value writers.
//
// Input layout: the first byte seeds the order of reader calls, the rest is
// the file the readers see. Each input is read twice, once with each reader
// set (current and older), by a run of up to 64 calls chosen from every
// reader function until one fails or the stream ends. The remaining bytes
// also drive write-then-read checks: values written by XMLObj must come
// back as the format promises, and attribute escaping must leave no raw
// markup, line end or significant blank. Any broken promise aborts.
//
// Build: cmake --preset fuzz && cmake --build --preset fuzz
// Run:   build/fuzz/kxcommonr/xml/fuzz/kx_xml_reader_fuzzer CORPUS_DIR \
//            kxcommonr/xml/fuzz/corpus
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/internal/XMLLineReader.h"
#include "kxcommonr/xml/internal/XMLText.h"

namespace {

namespace detail = KXXML_NAMESPACE::detail;

void Check(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
  }
}

// A run of reader calls in an order drawn from `seed`.
void ReadWithDialect(const std::string& file, std::uint32_t seed,
                     const detail::ReaderDialect& dialect, bool currentSet) {
  std::istringstream in(file);
  std::uint32_t state = seed * 2654435761u + 1u;
  int integer = 0;
  unsigned int count = 0;
  long big = 0;
  double real = 0.0;
  std::string text;
  bool flag = false;
  for (int call = 0; call < 64 && in.good(); ++call) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    const int choice = static_cast<int>(state % (currentSet ? 10u : 8u));
    switch (choice) {
      case 0: detail::ParseStartXML(in, dialect); break;
      case 1: detail::ParseStartObj(in, "KXURandom", dialect); break;
      case 2: detail::ParseStartObj(in, "a b", dialect); break;
      case 3: detail::ParseEndObj(in, dialect); break;
      case 4: detail::ParseValue(in, integer, dialect); break;
      case 5: detail::ParseValue(in, count, dialect); break;
      case 6: detail::ParseValue(in, big, dialect); break;
      case 7: detail::ParseValue(in, real, dialect); break;
      case 8: detail::ParseValue(in, text, dialect); break;
      default: detail::ParseValue(in, flag, dialect); break;
    }
    Check(text.size() <= static_cast<std::size_t>(detail::kMaxLineLength),
          "a string value longer than a line");
  }
}

// The line XMLObj writes for `value`, read back by the current set.
template <class T>
bool WriteThenRead(const T& value, T& read) {
  std::ostringstream out;
  KXXML_NAMESPACE::XMLObj object("Fuzz", 1);
  object.WriteSubElement(out, value);
  std::istringstream in(out.str().substr(1));  // drop the leading line feed
  return detail::ParseValue(in, read, detail::CurrentDialect());
}

bool NeedsNoEscape(const std::string& text) {
  if (text.empty()) return true;
  if (text.front() == ' ' || text.back() == ' ') return false;
  if (text.find("  ") != std::string::npos) return false;
  return text.find_first_of(std::string("&<>\"\t\n\r\0", 8)) == std::string::npos;
}

void CheckRoundTrips(const std::uint8_t* data, std::size_t size) {
  // A string of the input bytes: comes back unchanged whenever it needs no
  // escaping and its line fits.
  const std::string text(reinterpret_cast<const char*>(data), size < 300 ? size : 300);
  std::string readText;
  const bool fits = text.size() + 20 <= static_cast<std::size_t>(detail::kMaxLineLength);
  const bool readOk = WriteThenRead(text, readText);
  if (NeedsNoEscape(text) && fits) {
    Check(readOk && readText == text, "a plain string did not round-trip");
  }
  if (!fits) Check(!readOk, "an over-long line was read");

  // The escape leaves no raw markup, line end or significant blank.
  const std::string escaped = detail::EscapeAttributeValue(text);
  Check(escaped.find_first_of("<>\"\t\n\r") == std::string::npos, "raw markup after escape");
  Check(escaped.find("  ") == std::string::npos, "doubled blank after escape");
  Check(escaped.empty() || (escaped.front() != ' ' && escaped.back() != ' '),
        "edge blank after escape");

  if (size >= 8) {
    double value;
    std::memcpy(&value, data, sizeof value);
    double read = 12345.0;
    Check(WriteThenRead(value, read), "a Double line was refused");
    if (KXCommon::KXMV::IsMissing(value)) {
      Check(KXCommon::KXMV::IsMissing(read), "Missing did not round-trip");
    } else if (std::isfinite(value)) {
      char digits[64];
      std::snprintf(digits, sizeof digits, "%.15g", value);
      const double expected = std::strtod(digits, nullptr);
      // Beyond the double range the 15-digit text does not read: unchanged.
      Check(read == expected || (std::isinf(expected) && read == 12345.0),
            "a double did not come back as its 15-digit text");
    } else {
      Check(read == 12345.0, "inf or nan changed the target");
    }

    std::int32_t bits32;
    std::memcpy(&bits32, data, sizeof bits32);
    int integer = 0;
    Check(WriteThenRead(static_cast<int>(bits32), integer) && integer == bits32,
          "an int did not round-trip");
    unsigned int count = 0;
    Check(WriteThenRead(static_cast<unsigned int>(bits32), count) &&
              count == static_cast<unsigned int>(bits32),
          "an unsigned int did not round-trip");
    std::int64_t bits64;
    std::memcpy(&bits64, data, sizeof bits64);
    const long big = static_cast<long>(bits64 % 1000000000000000LL);  // 15 digits
    long readBig = 0;
    Check(WriteThenRead(big, readBig) && readBig == big, "a long did not round-trip");
    bool flag = (data[0] & 1) != 0;
    bool readFlag = !flag;
    Check(WriteThenRead(flag, readFlag) && readFlag == flag, "a bool did not round-trip");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string file(reinterpret_cast<const char*>(data + 1), size - 1);
  ReadWithDialect(file, data[0], detail::CurrentDialect(), true);
  ReadWithDialect(file, data[0], detail::OlderDialect(), false);
  CheckRoundTrips(data + 1, size - 1);
  return 0;
}
