// kxcommonr/common/foundation/KXAllocation.h
//
// The allocation guard: the library's promise that a failed allocation is
// reported by a result (false, -1, the missing value) and never escapes as
// an exception rests on these two helpers.
//
//   if (!TryResize(out, base + count)) return false;   // out unchanged
//   return GuardAllocation([&] { return Work(); }, false);
//
// Thread-safe: no state.
#ifndef KXCOMMONR_COMMON_FOUNDATION_KXALLOCATION_H
#define KXCOMMONR_COMMON_FOUNDATION_KXALLOCATION_H

#include <cstddef>
#include <new>
#include <stdexcept>
#include <vector>

#include "kxcommonr/config.h"

namespace KXCommon {

// Runs work() and returns its result, or `failed` when an allocation inside
// it fails (std::bad_alloc, or std::length_error for a size beyond what a
// container can hold). Other exceptions pass through.
template <class Work, class Result>
Result GuardAllocation(Work&& work, Result failed) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return failed;
  } catch (const std::length_error&) {
    return failed;
  }
}

// Resizes v to n elements, new ones equal to fill. Returns false, v
// unchanged, when the memory cannot be had.
template <class T>
bool TryResize(std::vector<T>& v, std::size_t n, const T& fill = T()) {
  return GuardAllocation([&] {
    v.resize(n, fill);
    return true;
  }, false);
}

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_FOUNDATION_KXALLOCATION_H
