// kxcommonr/common/rectmatrix/KXDenseKernels.cpp
//
// Blocked matrix multiply in the classic three-level layout: a k-slab of b
// is packed into panels NR columns wide, a block of rows of a into panels MR
// rows tall (scaled on the way when asked), and an MR x NR register tile of
// the output is updated by the micro-kernel over the whole slab. Padding
// lanes of partial panels are zero and their outputs are discarded.
//
// The micro-kernel keeps MR x NR accumulators in vector registers and does,
// for each p of the slab, acc[r][j] = acc[r][j] + a[r] * b[j]: a separate
// multiply and add per element (the build forbids contraction to FMA), so
// each output sees exactly the scalar loop's operations in the same order.
// The tile shape follows the vector unit; the results do not.
#include "kxcommonr/common/rectmatrix/KXDenseKernels.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "kxcommonr/common/packed/KXPackedLayout.h"

// KXCOMMONR_NO_DISPATCH builds the plain scalar path alone (as for a
// compiler without GNU vector extensions), which also tests it.
#include "kxcommonr/common/simd/KXDispatch.h"
#include "kxcommonr/common/simd/KXSimd.h"

namespace KXCommon {
namespace internal {

namespace {

constexpr int kSlabDepth = 256;    // KC: depth of a packed slab
constexpr int kRowBlock = 96;      // MC: rows of a per packed block (multiple of every MR)
constexpr int kColBlock = 512;     // NC: columns of b per packed block (multiple of every NR)
constexpr int kNarrowTriangle = 128;  // below this order a triangle uses narrower tiles
constexpr int kStagedTriangle = 512;  // up to this order a triangle is staged in a square

// Per-thread packing buffers, 64-byte aligned, grown on demand.
struct PackBuffers {
  std::vector<double> aStore;
  std::vector<double> bStore;
  std::vector<double> stageStore;
  static double* Aligned(std::vector<double>& store, std::size_t count) {
    if (store.size() < count + 8) store.resize(count + 8);
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(store.data());
    const std::uintptr_t aligned = (address + 63) & ~static_cast<std::uintptr_t>(63);
    return reinterpret_cast<double*>(aligned);
  }
};

PackBuffers& ThreadBuffers() {
  static thread_local PackBuffers buffers;
  return buffers;
}

// Packs rows i0..i0+mc-1, depth p0..p0+kc-1 of a into MR-row panels:
// panel q holds, for each p, MR consecutive values a(i, p) * scale.
template <int MR>
KX_ALWAYS_INLINE void PackA(const StridedView& a, int i0, int mc, int p0, int kc, double scale,
                           bool scaled, double* out) {
  if (a.rowStride == 1) {
    // For each p the rows are contiguous in memory (a transposed view, as
    // for a block of cases): stream through the p's once, filling every
    // panel from each.
    for (int p = 0; p < kc; ++p) {
      const double* src = a.base + static_cast<std::ptrdiff_t>(i0) + static_cast<std::ptrdiff_t>(p0 + p) * a.colStride;
      for (int ir = 0; ir < mc; ir += MR) {
        const int rows = mc - ir < MR ? mc - ir : MR;
        double* dst = out + static_cast<std::ptrdiff_t>(ir) * kc + static_cast<std::ptrdiff_t>(p) * MR;
        if (scaled) {
          for (int r = 0; r < rows; ++r) dst[r] = src[ir + r] * scale;
        } else {
          for (int r = 0; r < rows; ++r) dst[r] = src[ir + r];
        }
        for (int r = rows; r < MR; ++r) dst[r] = 0.0;
      }
    }
    return;
  }
  for (int ir = 0; ir < mc; ir += MR) {
    const int rows = mc - ir < MR ? mc - ir : MR;
    double* panel = out + static_cast<std::ptrdiff_t>(ir) * kc;
    for (int r = 0; r < rows; ++r) {
      const double* src = a.base + static_cast<std::ptrdiff_t>(i0 + ir + r) * a.rowStride +
                          static_cast<std::ptrdiff_t>(p0) * a.colStride;
      double* dst = panel + r;
      if (scaled) {
        for (int p = 0; p < kc; ++p) dst[static_cast<std::ptrdiff_t>(p) * MR] = src[p * a.colStride] * scale;
      } else {
        for (int p = 0; p < kc; ++p) dst[static_cast<std::ptrdiff_t>(p) * MR] = src[p * a.colStride];
      }
    }
    for (int r = rows; r < MR; ++r)
      for (int p = 0; p < kc; ++p) panel[static_cast<std::ptrdiff_t>(p) * MR + r] = 0.0;
  }
}

// Packs depth p0..p0+kc-1, columns j0..j0+nc-1 of b into NR-column panels:
// panel q holds, for each p, NR consecutive values b(p, j). Streams through
// the p's once, filling every panel from each.
template <int NR>
KX_ALWAYS_INLINE void PackB(const StridedView& b, int p0, int kc, int j0, int nc, double* out) {
  for (int p = 0; p < kc; ++p) {
    const double* src = b.base + static_cast<std::ptrdiff_t>(p0 + p) * b.rowStride +
                        static_cast<std::ptrdiff_t>(j0) * b.colStride;
    for (int jr = 0; jr < nc; jr += NR) {
      const int cols = nc - jr < NR ? nc - jr : NR;
      double* dst = out + static_cast<std::ptrdiff_t>(jr) * kc + static_cast<std::ptrdiff_t>(p) * NR;
      if (b.colStride == 1) {
        for (int j = 0; j < cols; ++j) dst[j] = src[jr + j];
      } else {
        for (int j = 0; j < cols; ++j) dst[j] = src[(jr + j) * b.colStride];
      }
      for (int j = cols; j < NR; ++j) dst[j] = 0.0;
    }
  }
}

// Output addressing: row i of a row-major matrix, or of a packed triangle.
struct OutputRows {
  double* base;
  std::ptrdiff_t ldc;  // 0 selects the packed lower triangle
  double* Row(int i) const {
    if (ldc == 0) return base + KXPacked::RowStart(i);
    return base + static_cast<std::ptrdiff_t>(i) * ldc;
  }
};

// Runs the kernel of the fewest rows (MR, MR/2 or MR/4) that covers mr.
template <int MR, typename Kernel>
KX_ALWAYS_INLINE void RunTile(int mr, int kc, const double* ap, const double* bp, double* const* rows) {
  if (mr <= MR / 4) {
    Kernel::template Run<MR / 4>(kc, ap, bp, rows);
  } else if (mr <= MR / 2) {
    Kernel::template Run<MR / 2>(kc, ap, bp, rows);
  } else {
    Kernel::template Run<MR>(kc, ap, bp, rows);
  }
}

// The driver. Kernel::Run<R>(kc, ap, bp, rows) updates R rows of an
// MR x NR tile (R = MR, MR/2 or MR/4).
// lower restricts the outputs to j <= i (a packed triangle). padded says
// that out has room for whole tiles past row m and column n (and above the
// diagonal), so every tile is updated in place.
template <int MR, int NR, typename Kernel>
KX_ALWAYS_INLINE void BlockedMultiply(int m, int n, int k, const StridedView& a, double scale,
                                     bool scaled, const StridedView& b, const OutputRows& out,
                                     bool lower, bool padded) {
  if (m <= 0 || n <= 0 || k <= 0) return;
  PackBuffers& buffers = ThreadBuffers();
  const int slab = k < kSlabDepth ? k : kSlabDepth;
  const int colBlock = n < kColBlock ? n : kColBlock;
  const int rowBlock = m < kRowBlock ? m : kRowBlock;
  double* bPacked = PackBuffers::Aligned(
      buffers.bStore, static_cast<std::size_t>(slab) * static_cast<std::size_t>((colBlock + NR - 1) / NR * NR));
  double* aPacked = PackBuffers::Aligned(
      buffers.aStore, static_cast<std::size_t>(slab) * static_cast<std::size_t>((rowBlock + MR - 1) / MR * MR));
  alignas(64) double tile[MR * NR];
  double* rows[MR];
  const bool sameSource = !scaled && a.base == b.base && a.rowStride == b.colStride &&
                          a.colStride == b.rowStride;

  for (int p0 = 0; p0 < k; p0 += kSlabDepth) {
    const int kc = k - p0 < kSlabDepth ? k - p0 : kSlabDepth;
    for (int j0 = 0; j0 < n; j0 += kColBlock) {
      const int nc = n - j0 < kColBlock ? n - j0 : kColBlock;
      const int firstRow = lower ? j0 : 0;  // rows above j0 have no outputs here
      if (firstRow >= m) break;
      PackB<NR>(b, p0, kc, j0, nc, bPacked);
      for (int i0 = firstRow; i0 < m; i0 += kRowBlock) {
        const int mc = m - i0 < kRowBlock ? m - i0 : kRowBlock;
        // a = b' unscaled (a cross product of one matrix): the rows of a
        // are columns of b already packed in the same layout when MR == NR.
        const double* aBlock = aPacked;
        if (MR == NR && sameSource && j0 <= i0 && i0 + mc <= j0 + nc &&
            (mc % MR == 0 || i0 + mc == j0 + nc)) {
          aBlock = bPacked + static_cast<std::ptrdiff_t>(i0 - j0) * kc;
        } else {
          PackA<MR>(a, i0, mc, p0, kc, scale, scaled, aPacked);
        }
        for (int ir = 0; ir < mc; ir += MR) {
          const int i = i0 + ir;
          const int mr = mc - ir < MR ? mc - ir : MR;
          const double* ap = aBlock + static_cast<std::ptrdiff_t>(ir) * kc;
          for (int jr = 0; jr < nc; jr += NR) {
            const int j = j0 + jr;
            if (lower && j > i + mr - 1) break;  // tile wholly above the diagonal
            const int nr = nc - jr < NR ? nc - jr : NR;
            const double* bp = bPacked + static_cast<std::ptrdiff_t>(jr) * kc;
            const bool crossesDiagonal = lower && j + NR - 1 > i;
            if (padded || (mr == MR && nr == NR && !crossesDiagonal)) {
              for (int r = 0; r < MR; ++r) rows[r] = out.Row(i + r) + j;
              RunTile<MR, Kernel>(mr, kc, ap, bp, rows);
              continue;
            }
            // Edge or diagonal tile: through a local copy of the valid outputs.
            for (int r = 0; r < MR; ++r) {
              rows[r] = tile + r * NR;
              int valid = r < mr ? nr : 0;
              if (lower && valid > i + r - j + 1) valid = i + r - j + 1;
              const double* src = valid > 0 ? out.Row(i + r) + j : nullptr;
              for (int c = 0; c < NR; ++c) rows[r][c] = c < valid ? src[c] : 0.0;
            }
            RunTile<MR, Kernel>(mr, kc, ap, bp, rows);
            for (int r = 0; r < mr; ++r) {
              int valid = nr;
              if (lower && valid > i + r - j + 1) valid = i + r - j + 1;
              double* dst = out.Row(i + r) + j;
              for (int c = 0; c < valid; ++c) dst[c] = rows[r][c];
            }
          }
        }
      }
    }
  }
}

// A small packed triangle is staged in a zeroed square of whole tiles,
// updated there tile by tile without edge cases, and copied back: the
// values above the diagonal and in the padding are computed and dropped.
template <int MR, int NR, typename Kernel>
KX_ALWAYS_INLINE void StagedTriangle(int n, int k, const StridedView& a, double scale, bool scaled,
                                    const StridedView& b, double* packed) {
  const int stride = (n + NR - 1) / NR * NR;
  const int stageRows = (n + MR - 1) / MR * MR;
  const std::size_t count = static_cast<std::size_t>(stageRows) * static_cast<std::size_t>(stride);
  double* stage = PackBuffers::Aligned(ThreadBuffers().stageStore, count);
  for (std::size_t q = 0; q < count; ++q) stage[q] = 0.0;
  const double* row = packed;
  for (int i = 0; i < n; row += i + 1, ++i) std::memcpy(stage + static_cast<std::ptrdiff_t>(i) * stride, row, sizeof(double) * (i + 1));
  BlockedMultiply<MR, NR, Kernel>(n, n, k, a, scale, scaled, b, OutputRows{stage, stride}, true, true);
  double* target = packed;
  for (int i = 0; i < n; target += i + 1, ++i) std::memcpy(target, stage + static_cast<std::ptrdiff_t>(i) * stride, sizeof(double) * (i + 1));
}

struct MultiplyArgs {
  int m, n, k;
  StridedView a;
  double scale;
  bool scaled;
  StridedView b;
  OutputRows out;
  bool lower;
};

// The micro-kernel: R rows (R = MR, MR/2 or MR/4) of an MR x NR tile of
// NV vectors of the shape Isa, over packed panels of MR values of a and NR
// values of b per p.
template <class Isa, int MR, int NV>
struct TileRunner {
  static constexpr int kNR = NV * Isa::kLanes;
  template <int R>
  static KX_ALWAYS_INLINE void Run(int kc, const double* ap, const double* bp, double* const* rows) {
    simd::TileKernel<Isa, R, NV, false>(rows, ap, MR, 0, bp, kNR, 0, kc);
  }
};

template <class Isa, int MR = Isa::kRows, int NV = Isa::kVecs>
KX_ALWAYS_INLINE void RunShape(const MultiplyArgs& x) {
  typedef TileRunner<Isa, MR, NV> K;
  if (x.lower && x.n <= kStagedTriangle) {
    StagedTriangle<MR, K::kNR, K>(x.n, x.k, x.a, x.scale, x.scaled, x.b, x.out.base);
  } else {
    BlockedMultiply<MR, K::kNR, K>(x.m, x.n, x.k, x.a, x.scale, x.scaled, x.b, x.out, x.lower, false);
  }
}

#if defined(KX_X86_DISPATCH)
KX_TARGET("avx512f") void RunAvx512(const MultiplyArgs& args) {
  // A small triangle wastes less of narrower tiles on its diagonal.
  if (args.lower && args.n < kNarrowTriangle) {
    RunShape<simd::IsaAvx512, 8, 1>(args);
  } else {
    RunShape<simd::IsaAvx512>(args);
  }
}

KX_TARGET("avx2") void RunAvx2(const MultiplyArgs& args) { RunShape<simd::IsaAvx2>(args); }
#endif

void RunBaseline(const MultiplyArgs& args) { RunShape<simd::IsaBase>(args); }

void Run(const MultiplyArgs& args) {
#if defined(KX_X86_DISPATCH)
  switch (ActiveIsa()) {
    case IsaLevel::kAvx512: RunAvx512(args); break;
    case IsaLevel::kAvx2: RunAvx2(args); break;
    default: RunBaseline(args); break;
  }
#else
  RunBaseline(args);
#endif
}

}  // namespace

void GemmAccumulate(int m, int n, int k, StridedView a, StridedView b, double* c, std::ptrdiff_t ldc) {
  if (m <= 0 || n <= 0 || k <= 0) return;
  MultiplyArgs args{m, n, k, a, 1.0, false, b, OutputRows{c, ldc < 1 ? 1 : ldc}, false};
  Run(args);
}

void PackedLowerAccumulate(int n, int k, StridedView a, double scale, StridedView b, double* packed) {
  if (n <= 0 || k <= 0) return;
  MultiplyArgs args{n, n, k, a, scale, scale != 1.0, b, OutputRows{packed, 0}, true};
  Run(args);
}

bool SelectDenseKernelPath(const char* name) {
  const std::string wanted = name == nullptr ? "" : name;
#if defined(KX_X86_DISPATCH)
  if (wanted.empty()) {
    SetKernelLevel(-1);
    return true;
  }
  int level = -1;
  if (wanted == "avx512") level = static_cast<int>(IsaLevel::kAvx512);
  if (wanted == "avx2") level = static_cast<int>(IsaLevel::kAvx2);
  if (wanted == "baseline") level = static_cast<int>(IsaLevel::kBaseline);
  if (level < 0 || level > static_cast<int>(MachineIsa())) return false;
  SetKernelLevel(level);
  return true;
#else
  return wanted.empty() || wanted == "portable";
#endif
}

const char* DenseKernelPath() {
#if defined(KX_X86_DISPATCH)
  switch (ActiveIsa()) {
    case IsaLevel::kAvx512: return "avx512";
    case IsaLevel::kAvx2: return "avx2";
    default: return "baseline";
  }
#else
  return "portable";
#endif
}

}  // namespace internal
}  // namespace KXCommon
