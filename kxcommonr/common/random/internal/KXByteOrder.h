// kxcommonr/common/random/internal/KXByteOrder.h
//
// Little-endian encoding of fixed-width values for the binary records of the
// generators, byte by byte, so a record reads the same on every machine.
// Library-internal. Thread rule: pure functions.
#ifndef KXCOMMONR_COMMON_RANDOM_INTERNAL_KXBYTEORDER_H
#define KXCOMMONR_COMMON_RANDOM_INTERNAL_KXBYTEORDER_H

#include <cstdint>
#include <cstring>

namespace KXCommon {
namespace internal {

inline void PutLE32(unsigned char* p, std::uint32_t v) {
  for (int k = 0; k < 4; ++k) p[k] = static_cast<unsigned char>(v >> (8 * k));
}
inline std::uint32_t GetLE32(const unsigned char* p) {
  std::uint32_t v = 0;
  for (int k = 0; k < 4; ++k) v |= static_cast<std::uint32_t>(p[k]) << (8 * k);
  return v;
}
// An IEEE double by its bit pattern.
inline void PutLEDouble(unsigned char* p, double x) {
  std::uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  PutLE32(p, static_cast<std::uint32_t>(bits));
  PutLE32(p + 4, static_cast<std::uint32_t>(bits >> 32));
}
inline double GetLEDouble(const unsigned char* p) {
  const std::uint64_t bits = GetLE32(p) | (static_cast<std::uint64_t>(GetLE32(p + 4)) << 32);
  double x;
  std::memcpy(&x, &bits, sizeof x);
  return x;
}

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_RANDOM_INTERNAL_KXBYTEORDER_H
