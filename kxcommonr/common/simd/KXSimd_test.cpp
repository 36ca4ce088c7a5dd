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

// One call of a shared kernel: a row update (tileRows == 0) or a tile.
struct Job {
  bool subtract;
  int tileRows;  // 0, 1 or the shape's kRows
  double* const* c;
  const double *x, *b;
  double* y;
  double scalar;
  std::int64_t count, aStride, bStride, grow;
};

// The kernels compiled for one instruction set (called directly, so that
// they are inlined into the function of that target).
#define KX_TILE(rows, subtract)                                                              \
  simd::TileKernel<Isa, rows, Isa::kVecs, subtract>(j.c, j.x, j.aStride, j.grow, j.b, j.bStride, \
                                                    j.grow, j.count)
#define KX_SIMD_TEST_PATH(Name, IsaShape, Target)                                \
  Target void Name(const Job& j) {                                              \
    typedef IsaShape Isa;                                                       \
    if (j.tileRows == 0 && j.subtract) simd::Axmy<Isa>(j.y, j.x, j.scalar, j.count); \
    if (j.tileRows == 0 && !j.subtract) simd::Axpy<Isa>(j.y, j.x, j.scalar, j.count); \
    if (j.tileRows == 1 && j.subtract) KX_TILE(1, true);                        \
    if (j.tileRows == 1 && !j.subtract) KX_TILE(1, false);                      \
    if (j.tileRows > 1 && j.subtract) KX_TILE(Isa::kRows, true);                \
    if (j.tileRows > 1 && !j.subtract) KX_TILE(Isa::kRows, false);              \
  }
#if defined(KX_X86_DISPATCH)
KX_SIMD_TEST_PATH(RunAvx512, simd::IsaAvx512, KX_TARGET("avx512f"))
KX_SIMD_TEST_PATH(RunAvx2, simd::IsaAvx2, KX_TARGET("avx2"))
#endif
KX_SIMD_TEST_PATH(RunBase, simd::IsaBase, )
KX_SIMD_TEST_PATH(RunCloned, simd::IsaCloned, )

struct Path {
  const char* name;
  int level, rows, width;  // the processor level it needs; its tile
  void (*run)(const Job&);
};
#define KX_PATH_ROW(Name, Isa, level) {#Name, level, Isa::kRows, Isa::kVecs * Isa::kLanes, Name}
const Path kPaths[] = {
#if defined(KX_X86_DISPATCH)
    KX_PATH_ROW(RunAvx512, simd::IsaAvx512, 2), KX_PATH_ROW(RunAvx2, simd::IsaAvx2, 1),
#endif
    KX_PATH_ROW(RunBase, simd::IsaBase, 0), KX_PATH_ROW(RunCloned, simd::IsaCloned, 0)};

// Row updates at counts past two vectors, misaligned, on separate arrays
// and on one array with y before x (the forward walk reads each x before y
// overwrites it); tiles with fixed and growing strides, full and one row,
// against c[r][q] -/+= a_t[r] * b_t[q] one t at a time. Nothing else changes.
TEST(KXSimdTest, KernelsEqualThePlainLoopsOnEveryPath) {
  std::mt19937_64 rng(21);
  const auto random = [&rng](std::size_t n) { return kxtesting::WideRandomVector(n, rng); };
  int paths = 0;
  for (const Path& path : kPaths) {
    if (path.level > static_cast<int>(MachineIsa())) continue;
    ++paths;
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
          path.run({subtract, 0, nullptr, x, nullptr, memory.data() + at, 0.37, count, 0, 0, 0});
          EXPECT_EQ(memory, expected) << path.name << " count " << count << " gap " << gap;
        }
      }
      for (const int rows : {1, path.rows}) {
        for (const std::int64_t count : {0, 1, 7, 30}) {
          for (const std::int64_t grow : {0, 1}) {
            const std::int64_t aStride = rows + 3, bStride = path.width + 2, ld = path.width + 5;
            const Vec a = random(2000), b = random(2000);
            Vec c = random(static_cast<std::size_t>(rows * ld)), expected = c;
            std::vector<double*> cRows;
            for (int r = 0; r < rows; ++r) cRows.push_back(c.data() + r * ld);
            for (std::int64_t t = 0, aAt = 0, bAt = 0; t < count; ++t) {
              for (int r = 0; r < rows; ++r) {
                for (int q = 0; q < path.width; ++q) {
                  update(expected[r * ld + q], a[aAt + r] * b[bAt + q]);
                }
              }
              aAt += aStride + t * grow;
              bAt += bStride + t * grow;
            }
            path.run({subtract, rows, cRows.data(), a.data(), b.data(), nullptr, 0, count, aStride,
                      bStride, grow});
            EXPECT_EQ(c, expected) << path.name << " rows " << rows << " count " << count
                                   << " grow " << grow;
          }
        }
      }
    }
  }
  EXPECT_GE(paths, 2);
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
