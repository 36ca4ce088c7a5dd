// Tests of the dispatch and of the shared vector kernels: the level in use
// follows the cap and the processor, the processor's level agrees with
// cpuid, and every shape's kernels equal the plain loops bit for bit on each
// instruction set this processor runs.
#include "kxcommonr/common/simd/KXSimd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#if defined(KX_X86_DISPATCH)
#include <cpuid.h>
#endif

#include "kxcommonr/testing/BitCheck.h"

namespace KXCommon {
namespace internal {
namespace {

using Vec = std::vector<double>;

TEST(KXDispatchTest, LevelFollowsTheCapAndTheProcessor) {
  const IsaLevel machine = MachineIsa();
  const int top = static_cast<int>(machine);
  for (const int cap : {0, 1, 2, -1, 3, -7}) {
    const int expected = cap < 0 || cap > 2 ? top : std::min(cap, top);
    EXPECT_EQ(SetKernelLevel(cap), expected) << cap;
    EXPECT_EQ(KernelLevel(), expected);
    EXPECT_EQ(static_cast<int>(ActiveIsa()), expected);
    EXPECT_EQ(MachineIsa(), machine);  // the cap never changes the processor's level
  }
#if defined(KX_X86_DISPATCH)
  // cpuid, and the register state the system saves (XCR0): AVX needs the
  // xmm and ymm state, AVX-512 also the opmask and zmm state.
  unsigned a, b, c, d, state = 0, unused;
  if (__get_cpuid(1, &a, &b, &c, &d) && (c & bit_OSXSAVE) != 0) {
    __asm__ volatile("xgetbv" : "=a"(state), "=d"(unused) : "c"(0));
  }
  int level = 0;
  if (__get_cpuid_count(7, 0, &a, &b, &c, &d)) {
    if ((b & bit_AVX2) != 0 && (state & 0x6) == 0x6) level = 1;
    if ((b & bit_AVX512F) != 0 && (state & 0xE6) == 0xE6) level = 2;
  }
  EXPECT_EQ(top, level);
#else
  EXPECT_EQ(machine, IsaLevel::kBaseline);
#endif
}

// The kernels of one shape against the plain loops. Row updates at counts
// past two vectors, misaligned, on separate arrays and on one array with y
// before x (the forward walk reads each x before y overwrites it); tiles
// with fixed and growing strides, full and one row, against
// c[r][q] -/+= a_t[r] * b_t[q] one t at a time. Nothing else may change.
// Inlined into a function of the shape's instruction set, which compiles
// the kernels for it.
template <class Isa>
KX_ALWAYS_INLINE void CheckKernels(const char* name) {
  std::mt19937_64 rng(21);
  const auto random = [&rng](std::size_t n) { return kxtesting::WideRandomVector(n, rng); };
  constexpr int kWidth = Isa::kVecs * Isa::kLanes;
  for (const bool subtract : {false, true}) {
    const auto update = [subtract](double& y, double p) { y = subtract ? y - p : y + p; };
    for (std::int64_t count = 0; count <= 40; count += count < 20 ? 1 : 7) {
      for (const std::int64_t gap : {-1, 2, 9}) {  // x = y + gap; -1: another array
        const std::int64_t at = 1 + count % 3;
        Vec memory = random(120), expected = memory;
        const Vec other = random(120);
        for (std::int64_t j = 0; j < count; ++j) {
          update(expected[at + j], 0.37 * (gap < 0 ? other[2 * at + j] : expected[at + gap + j]));
        }
        const double* x = gap < 0 ? other.data() + 2 * at : memory.data() + at + gap;
        if (subtract) simd::Axmy<Isa>(memory.data() + at, x, 0.37, count);
        if (!subtract) simd::Axpy<Isa>(memory.data() + at, x, 0.37, count);
        EXPECT_EQ(memory, expected) << name << " count " << count << " gap " << gap;
      }
    }
    for (const int rows : {1, Isa::kRows}) {
      for (const std::int64_t count : {0, 1, 7, 30}) {
        for (const std::int64_t grow : {0, 1}) {
          const std::int64_t as = rows + 3, bs = kWidth + 2, ld = kWidth + 5;  // strides
          const Vec a = random(2000), b = random(2000);
          Vec c = random(static_cast<std::size_t>(rows * ld)), expected = c;
          double* cRows[Isa::kRows];
          for (int r = 0; r < rows; ++r) cRows[r] = c.data() + r * ld;
          for (std::int64_t t = 0, aAt = 0, bAt = 0; t < count; ++t) {
            for (int r = 0; r < rows; ++r) {
              for (int q = 0; q < kWidth; ++q) {
                update(expected[r * ld + q], a[aAt + r] * b[bAt + q]);
              }
            }
            aAt += as + t * grow;
            bAt += bs + t * grow;
          }
          const double *pa = a.data(), *pb = b.data();
          constexpr int R = Isa::kRows, NV = Isa::kVecs;
          using simd::TileKernel;
          if (rows == 1 && subtract) TileKernel<Isa, 1, NV, true>(cRows, pa, as, grow, pb, bs, grow, count);
          if (rows == 1 && !subtract) TileKernel<Isa, 1, NV, false>(cRows, pa, as, grow, pb, bs, grow, count);
          if (rows > 1 && subtract) TileKernel<Isa, R, NV, true>(cRows, pa, as, grow, pb, bs, grow, count);
          if (rows > 1 && !subtract) TileKernel<Isa, R, NV, false>(cRows, pa, as, grow, pb, bs, grow, count);
          EXPECT_EQ(c, expected) << name << " rows " << rows << " count " << count << " grow " << grow;
        }
      }
    }
  }
}

#if defined(KX_X86_DISPATCH)
KX_TARGET("avx512f") void CheckAvx512() { CheckKernels<simd::IsaAvx512>("avx512"); }
KX_TARGET("avx2") void CheckAvx2() { CheckKernels<simd::IsaAvx2>("avx2"); }
#endif

TEST(KXSimdTest, KernelsEqualThePlainLoopsOnEveryPath) {
#if defined(KX_X86_DISPATCH)
  if (MachineIsa() >= IsaLevel::kAvx512) CheckAvx512();
  if (MachineIsa() >= IsaLevel::kAvx2) CheckAvx2();
#endif
  CheckKernels<simd::IsaBase>("baseline");
  CheckKernels<simd::IsaCloned>("eight lanes at the baseline");
}

TEST(KXSimdTest, PeelReachesTheNextCacheLine) {
  alignas(64) double line[24] = {};
  for (int offset = 0; offset < 16; ++offset) {
    for (const std::ptrdiff_t n : {0, 3, 100}) {
      EXPECT_EQ(simd::PeelTo64(line + offset, n), std::min<std::ptrdiff_t>((8 - offset % 8) % 8, n));
    }
  }
  // Not a multiple of 8 bytes: whole elements never reach a boundary.
  const char* halfway = reinterpret_cast<const char*>(line) + 4;
  EXPECT_EQ(simd::PeelTo64(reinterpret_cast<const double*>(halfway), 9), 0);
}

#if defined(KX_VECTOR_EXT)
// |v|, select and any-lane, lane by lane against the scalar operations
// (NaN and signed zero included).
template <class V>
void CheckLaneHelpers(std::mt19937_64& rng) {
  constexpr int kLanes = static_cast<int>(sizeof(V) / sizeof(double));
  for (int trial = 0; trial < 64; ++trial) {
    const Vec values = kxtesting::WideRandomVector(2 * kLanes, rng);
    V a, b, magnitude, chosen;
    std::memcpy(&a, values.data(), sizeof a);
    std::memcpy(&b, values.data() + kLanes, sizeof b);
    if (trial % 3 < 2) a[trial % kLanes] = trial % 3 == 0 ? -std::nan("") : -0.0;
    const typename simd::MaskOf<V>::M mask = trial % 4 == 0 ? (a > b) & (a < b) : a > b;
    simd::AbsLanes(magnitude, a);
    simd::SelectLanes(chosen, mask, a, b);
    bool anySet = false;
    for (int l = 0; l < kLanes; ++l) {
      EXPECT_TRUE(kxtesting::SameBits(magnitude[l], std::fabs(a[l])));
      EXPECT_TRUE(kxtesting::SameBits(chosen[l], mask[l] != 0 ? a[l] : b[l]));
      anySet = anySet || mask[l] != 0;
    }
    EXPECT_EQ(simd::AnyLane(mask), anySet) << kLanes << " lanes, trial " << trial;
  }
}

TEST(KXSimdTest, LaneHelpersMatchTheScalarOperations) {
  std::mt19937_64 rng(23);
  CheckLaneHelpers<simd::Vec2>(rng);
  CheckLaneHelpers<simd::Vec4>(rng);
  CheckLaneHelpers<simd::Vec8>(rng);
}
#endif

}  // namespace
}  // namespace internal
}  // namespace KXCommon
