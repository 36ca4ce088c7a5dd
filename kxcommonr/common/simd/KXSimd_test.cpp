// Tests of the dispatch and of the shared vector kernels: the level in use
// follows the cap and the processor, the processor's level agrees with
// cpuid, and every shape's kernels equal the plain loops bit for bit on each
// instruction set this processor runs.
#include "kxcommonr/common/simd/KXSimd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#if defined(KX_X86_DISPATCH)
#include <cpuid.h>
#endif

#include "kxcommonr/testing/BitCheck.h"

namespace KXCommon {
namespace internal {
namespace {

struct LevelGuard {
  ~LevelGuard() { SetKernelLevel(-1); }
};

TEST(KXDispatchTest, LevelFollowsTheCapAndTheProcessor) {
  LevelGuard restore;
  const IsaLevel machine = MachineIsa();
  const int top = static_cast<int>(machine);
  EXPECT_EQ(SetKernelLevel(-1), top);
  for (int level = 0; level <= 2; ++level) {
    const int expected = std::min(level, top);
    EXPECT_EQ(SetKernelLevel(level), expected);
    EXPECT_EQ(KernelLevel(), expected);
    EXPECT_EQ(static_cast<int>(ActiveIsa()), expected);
    EXPECT_EQ(MachineIsa(), machine);  // the cap never changes the processor's level
  }
  for (const int outside : {-1, 3, -7}) {
    SetKernelLevel(0);
    EXPECT_EQ(SetKernelLevel(outside), top) << outside;
  }
}

#if defined(KX_X86_DISPATCH)
// The level from cpuid and from the register state the system saves
// (XCR0): AVX needs the xmm and ymm state, AVX-512 the opmask and zmm state.
int LevelFromCpuid() {
  unsigned a, b, c, d;
  if (!__get_cpuid(1, &a, &b, &c, &d) || (c & bit_OSXSAVE) == 0) return 0;
  unsigned low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  if (!__get_cpuid_count(7, 0, &a, &b, &c, &d)) return 0;
  if ((b & bit_AVX512F) != 0 && (low & 0xE6) == 0xE6) return 2;
  if ((b & bit_AVX2) != 0 && (low & 0x6) == 0x6) return 1;
  return 0;
}

TEST(KXDispatchTest, DetectionAgreesWithCpuid) {
  EXPECT_EQ(static_cast<int>(MachineIsa()), LevelFromCpuid());
}
#else
TEST(KXDispatchTest, WithoutDispatchEverythingIsBaseline) {
  LevelGuard restore;
  EXPECT_EQ(MachineIsa(), IsaLevel::kBaseline);
  EXPECT_EQ(SetKernelLevel(2), 0);
}
#endif

// The shared kernels compiled for one instruction set, with the production
// tile (kRows x kVecs vectors) and a one-row tile.
using RowFn = void (*)(double* y, const double* x, double c, std::int64_t count);
using TileFn = void (*)(bool subtract, bool oneRow, double* const* c, const double* a,
                        std::int64_t aStride, std::int64_t aGrow, const double* b,
                        std::int64_t bStride, std::int64_t bGrow, std::int64_t count);
struct Path {
  const char* name;
  int level;  // the processor level it needs
  RowFn axpy, axmy;
  TileFn tile;
  int rows, width;  // of the production tile
};

#define KX_SIMD_TEST_PATH(Name, Isa, Target)                                                  \
  Target void Axpy##Name(double* y, const double* x, double c, std::int64_t count) {          \
    simd::Axpy<Isa>(y, x, c, count);                                                           \
  }                                                                                            \
  Target void Axmy##Name(double* y, const double* x, double c, std::int64_t count) {          \
    simd::Axmy<Isa>(y, x, c, count);                                                           \
  }                                                                                            \
  Target void Tile##Name(bool subtract, bool oneRow, double* const* c, const double* a,        \
                         std::int64_t as, std::int64_t ag, const double* b, std::int64_t bs,   \
                         std::int64_t bg, std::int64_t count) {                                \
    constexpr int R = Isa::kRows, NV = Isa::kVecs;                                             \
    if (oneRow && subtract) simd::TileKernel<Isa, 1, NV, true>(c, a, as, ag, b, bs, bg, count); \
    if (oneRow && !subtract) simd::TileKernel<Isa, 1, NV, false>(c, a, as, ag, b, bs, bg, count); \
    if (!oneRow && subtract) simd::TileKernel<Isa, R, NV, true>(c, a, as, ag, b, bs, bg, count); \
    if (!oneRow && !subtract) simd::TileKernel<Isa, R, NV, false>(c, a, as, ag, b, bs, bg, count); \
  }

#if defined(KX_X86_DISPATCH)
KX_SIMD_TEST_PATH(Avx512, simd::IsaAvx512, KX_TARGET("avx512f"))
KX_SIMD_TEST_PATH(Avx2, simd::IsaAvx2, KX_TARGET("avx2"))
#endif
KX_SIMD_TEST_PATH(Base, simd::IsaBase, )
KX_SIMD_TEST_PATH(Cloned, simd::IsaCloned, )

#define KX_PATH_ROW(Name, Isa, level) \
  {#Name, level, Axpy##Name, Axmy##Name, Tile##Name, Isa::kRows, Isa::kVecs * Isa::kLanes}
const Path kPaths[] = {
#if defined(KX_X86_DISPATCH)
    KX_PATH_ROW(Avx512, simd::IsaAvx512, 2),
    KX_PATH_ROW(Avx2, simd::IsaAvx2, 1),
#endif
    KX_PATH_ROW(Base, simd::IsaBase, 0),
    KX_PATH_ROW(Cloned, simd::IsaCloned, 0),
};

bool Runs(const Path& path) { return path.level <= static_cast<int>(MachineIsa()); }

bool SameBits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

// Row updates at every count up to past two blocks of the widest vector, at
// several misalignments, on separate arrays and on one array with y before
// x (the forward walk then reads x before y overwrites it); the elements
// around the row must stay untouched.
TEST(KXSimdTest, RowUpdatesEqualThePlainLoop) {
  std::mt19937_64 rng(21);
  int runs = 0;
  for (const Path& path : kPaths) {
    if (!Runs(path)) continue;
    ++runs;
    for (const bool subtract : {false, true}) {
      const RowFn kernel = subtract ? path.axmy : path.axpy;
      for (std::int64_t count = 0; count <= 40; count += count < 20 ? 1 : 7) {
        for (const int shift : {0, 1, 3}) {
          for (const int gap : {-1, 2, 9, 200}) {  // x = y + gap; -1: separate arrays
            std::vector<double> memory = kxtesting::WideRandomVector(300, rng);
            const std::vector<double> other = kxtesting::WideRandomVector(300, rng);
            double* y = memory.data() + 1 + shift;
            const double* x = gap < 0 ? other.data() + 2 * shift : y + gap;
            std::vector<double> expected = memory;
            double* yExpected = expected.data() + (y - memory.data());
            const double* xExpected = gap < 0 ? x : yExpected + gap;
            for (std::int64_t j = 0; j < count; ++j) {
              yExpected[j] = subtract ? yExpected[j] - 0.37 * xExpected[j]
                                      : yExpected[j] + 0.37 * xExpected[j];
            }
            kernel(y, x, 0.37, count);
            EXPECT_TRUE(SameBits(memory, expected))
                << path.name << (subtract ? " Axmy" : " Axpy") << " count " << count
                << " shift " << shift << " gap " << gap;
          }
        }
      }
    }
  }
  EXPECT_GE(runs, 2);
}

// The tile against its definition: c[r][q] -/+= a_t[r] * b_t[q] one t at a
// time, with fixed and growing strides, for the full tile and one row.
TEST(KXSimdTest, TileEqualsThePlainLoop) {
  std::mt19937_64 rng(22);
  for (const Path& path : kPaths) {
    if (!Runs(path)) continue;
    for (const bool oneRow : {false, true}) {
      const int rows = oneRow ? 1 : path.rows;
      for (const bool subtract : {false, true}) {
        for (const std::int64_t count : {0, 1, 2, 7, 30}) {
          for (const std::int64_t grow : {0, 1}) {
            const std::int64_t aStride = rows + 3, bStride = path.width + 2;
            const std::size_t span = static_cast<std::size_t>((count + 2) * (bStride + count));
            const std::vector<double> a = kxtesting::WideRandomVector(span, rng);
            const std::vector<double> b = kxtesting::WideRandomVector(span, rng);
            std::vector<double> c = kxtesting::WideRandomVector(
                static_cast<std::size_t>(rows * (path.width + 5)), rng);
            std::vector<double> expected = c;
            std::vector<double*> cRows;
            for (int r = 0; r < rows; ++r) cRows.push_back(c.data() + r * (path.width + 5));
            std::int64_t aAt = 0, bAt = 0, as = aStride, bs = bStride;
            for (std::int64_t t = 0; t < count; ++t, aAt += as, bAt += bs, as += grow, bs += grow) {
              for (int r = 0; r < rows; ++r) {
                for (int q = 0; q < path.width; ++q) {
                  double& target = expected[static_cast<std::size_t>(r * (path.width + 5) + q)];
                  const double product = a[static_cast<std::size_t>(aAt + r)] *
                                         b[static_cast<std::size_t>(bAt + q)];
                  target = subtract ? target - product : target + product;
                }
              }
            }
            path.tile(subtract, oneRow, cRows.data(), a.data(), aStride, grow, b.data(),
                      bStride, grow, count);
            EXPECT_TRUE(SameBits(c, expected)) << path.name << " rows " << rows << " count "
                                               << count << " grow " << grow;
          }
        }
      }
    }
  }
}

TEST(KXSimdTest, PeelReachesTheNextCacheLine) {
  alignas(64) double line[24] = {};
  for (int offset = 0; offset < 16; ++offset) {
    for (const std::ptrdiff_t n : {0, 3, 100}) {
      const std::ptrdiff_t expected = std::min<std::ptrdiff_t>((8 - offset % 8) % 8, n);
      EXPECT_EQ(simd::PeelTo64(line + offset, n), expected) << offset << " " << n;
    }
  }
  // An address that is not a multiple of 8 bytes never reaches a boundary
  // by whole elements.
  const double* odd = reinterpret_cast<const double*>(reinterpret_cast<const char*>(line) + 4);
  EXPECT_EQ(simd::PeelTo64(odd, 100), 0);
}

#if defined(KX_VECTOR_EXT)
// |v|, select and any-lane for each vector width, lane by lane against the
// scalar operations (NaN and signed zero included).
template <class V>
void CheckLaneHelpers(std::mt19937_64& rng) {
  typedef typename simd::MaskOf<V>::M M;
  constexpr int kLanes = static_cast<int>(sizeof(V) / sizeof(double));
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  for (int trial = 0; trial < 64; ++trial) {
    const std::vector<double> values = kxtesting::WideRandomVector(2 * kLanes, rng);
    V a, b, magnitude, chosen;
    std::memcpy(&a, values.data(), sizeof a);
    std::memcpy(&b, values.data() + kLanes, sizeof b);
    a[trial % kLanes] = trial % 3 == 0 ? -kNaN : trial % 3 == 1 ? -0.0 : a[trial % kLanes];
    M mask = a > b;
    if (trial % 4 == 0) mask = mask & M{};  // no lane set
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
