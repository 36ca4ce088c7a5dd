// kxcommonr/common/packed/KXPackedFactorKernels.cpp
//
// Packed Cholesky, sweep, triangular inverse and triangular products.
//
// How the fast kernels stay bit-identical to the plain loops: every output
// element receives the same sequence of multiplications and additions
// (subtractions), in the same order, as in the plain loop; only independent
// outputs are visited in another order, several at a time in vector
// registers. No operation re-associates a sum, and the build forbids
// contracting a*b+c into one fused instruction, so the lane width of the
// instruction set picked at run time (AVX-512, AVX2 or the baseline SSE2)
// cannot change a result.
#include "kxcommonr/common/packed/KXPackedFactorKernels.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/simd/KXDispatch.h"
#include "kxcommonr/common/simd/KXSimd.h"

namespace KXCommon {
namespace internal {

namespace {

// The vector shapes per instruction set, the row updates
// y[j] = y[j] +/- c * x[j] (Axpy, Axmy) and the register tile (TileKernel).
#if defined(KX_X86_DISPATCH)
using simd::IsaAvx512;
using simd::IsaAvx2;
#endif
using simd::IsaBase;
using simd::Axpy;
using simd::Axmy;
using simd::TileKernel;

// ---------------------------------------------------------------------------
// Cholesky
// ---------------------------------------------------------------------------

// Decides the pivot of row i from its residual s and returns l_ii.
inline double AcceptPivot(double s, double threshold, unsigned char* accepted,
                          int i, int& redundant) {
  if (s > threshold) {
    accepted[i] = 1;
    return std::sqrt(s);
  }
  accepted[i] = 0;
  ++redundant;
  return 0.0;
}

constexpr int kDefaultPanel = 48;

// Blocked right-looking factorisation. The panel (columns p0..p1-1 of rows
// p0..n-1) is copied column-major into scratch, factored there column by
// column (each column subtracts its contribution from the later panel
// columns, so every element still subtracts its products in column order),
// written back, and subtracted from the trailing triangle with the register
// tile. scratch holds width * n + kRows * width doubles.
template <class Isa>
KX_ALWAYS_INLINE int CholeskyBlocked(double* a, int n, const double* origDiag, double tol,
                              unsigned char* accepted, int width, double* scratch) {
  constexpr int R = Isa::kRows;
  constexpr int NR = Isa::kVecs * Isa::kLanes;
  int redundant = 0;
  double* panel = scratch;
  double* packedA = scratch + static_cast<std::size_t>(width) * n;
  for (int p0 = 0; p0 < n; p0 += width) {
    const int p1 = std::min(n, p0 + width);
    const int w = p1 - p0;
    const std::int64_t ld = n - p0;
    // 1. Copy the panel: panel[m * ld + (i - p0)] = a(i, p0 + m).
    for (std::int64_t i = p0; i < n; ++i) {
      const double* row = a + KXPacked::Index(i, p0);
      const std::int64_t mEnd = std::min<std::int64_t>(w, i - p0 + 1);
      for (std::int64_t m = 0; m < mEnd; ++m) panel[m * ld + (i - p0)] = row[m];
    }
    // 2. Factor the panel column by column.
    for (int m = 0; m < w; ++m) {
      double* col = panel + static_cast<std::int64_t>(m) * ld;
      const int i = p0 + m;
      const double pivot =
          AcceptPivot(col[m], tol * origDiag[i], accepted, i, redundant);
      col[m] = pivot;
      if (pivot != 0.0) {
        for (std::int64_t r = m + 1; r < ld; ++r) col[r] = col[r] / pivot;
      } else {
        for (std::int64_t r = m + 1; r < ld; ++r) col[r] = 0.0;
      }
      for (int q = m + 1; q < w; ++q) {
        double* target = panel + static_cast<std::int64_t>(q) * ld;
        Axmy<Isa>(target + q, col + q, col[q], ld - q);
      }
    }
    // 3. Write the panel back.
    for (std::int64_t i = p0; i < n; ++i) {
      double* row = a + KXPacked::Index(i, p0);
      const std::int64_t mEnd = std::min<std::int64_t>(w, i - p0 + 1);
      for (std::int64_t m = 0; m < mEnd; ++m) row[m] = panel[m * ld + (i - p0)];
    }
    // 4. Trailing update: a(i, j) -= sum over the panel, rows i >= p1,
    //    columns p1 <= j <= i, one product at a time in column order.
    int i0 = p1;
    for (; i0 < n; i0 += R) {
      const int rows = std::min(R, n - i0);
      // A operand: packedA[m * R + r] = l(i0 + r, p0 + m).
      for (int r = 0; r < rows; ++r) {
        const double* row = a + KXPacked::Index(i0 + r, p0);
        for (int m = 0; m < w; ++m) packedA[m * R + r] = row[m];
      }
      double* crow[R];
      // Full tiles: columns j0 .. j0+NR-1 with j0+NR-1 <= i0.
      int j0 = p1;
      if (rows == R) {
        for (; j0 + NR - 1 <= i0; j0 += NR) {
          for (int r = 0; r < R; ++r) crow[r] = a + KXPacked::Index(i0 + r, j0);
          TileKernel<Isa, R, Isa::kVecs, true>(crow, packedA, R, 0, panel + (j0 - p0), ld, 0, w);
        }
      } else {
        for (; j0 + NR - 1 <= i0; j0 += NR) {
          for (int r = 0; r < rows; ++r) {
            crow[0] = a + KXPacked::Index(i0 + r, j0);
            TileKernel<Isa, 1, Isa::kVecs, true>(crow, packedA + r, R, 0, panel + (j0 - p0), ld, 0,
                                     w);
          }
        }
      }
      // Remaining columns j0 .. i of each row.
      for (int r = 0; r < rows; ++r) {
        const int i = i0 + r;
        double* c = a + KXPacked::Index(i, j0);
        const std::int64_t count = i - j0 + 1;
        for (int m = 0; m < w; ++m)
          Axmy<Isa>(c, panel + static_cast<std::int64_t>(m) * ld + (j0 - p0),
                    packedA[m * R + r], count);
      }
    }
  }
  return redundant;
}

// ---------------------------------------------------------------------------
// Triangular inverse and M'M
// ---------------------------------------------------------------------------

// Scratch of the blocked inverse, in doubles.
std::size_t InverseScratchSize(int n, int rows, int tile) {
  const std::size_t un = static_cast<std::size_t>(n);
  return static_cast<std::size_t>(rows) * (un + tile) + static_cast<std::size_t>(rows) * un +
         (un / tile + 1) * tile * tile;
}

// Blocked in-place inverse of a packed lower-triangular matrix. Rows are
// produced R at a time; x_ij = -(sum_{m=j}^{i-1} l_im x_mj) / l_ii keeps its
// column order m = j, j+1, ...: first the finished rows m < i0 (register
// tiles over the columns; the triangular start of each column tile reads a
// zero-padded copy of that diagonal block, adding exact zeros where m < j),
// then the rows of the block itself in order.
template <class Isa>
KX_ALWAYS_INLINE int LowerInverseBlocked(double* a, int n, double* scratch) {
  constexpr int R = Isa::kRows;
  constexpr int NV = Isa::kVecs;
  constexpr int NR = NV * Isa::kLanes;
  const std::int64_t ldS = static_cast<std::int64_t>(n) + NR;
  double* sums = scratch;
  double* packedA = sums + R * ldS;
  double* diagonalBlocks = packedA + static_cast<std::size_t>(R) * n;
  int blocksBuilt = 0;
  int zeroRows = 0;
  for (int i0 = 0; i0 < n; i0 += R) {
    const int rows = std::min(R, n - i0);
    for (int r = 0; r < rows; ++r) {
      std::fill(sums + r * ldS, sums + r * ldS + i0 + r + 1, 0.0);
      const double* row = a + KXPacked::Index(i0 + r, 0);
      for (int m = 0; m < i0; ++m) packedA[static_cast<std::size_t>(m) * R + r] = row[m];
    }
    double* crow[R];
    int j0 = 0;
    for (; j0 + NR <= i0; j0 += NR) {
      const int tile = j0 / NR;
      for (; blocksBuilt <= tile; ++blocksBuilt) {
        double* block = diagonalBlocks + static_cast<std::size_t>(blocksBuilt) * NR * NR;
        const int base = blocksBuilt * NR;
        for (int t = 0; t < NR - 1; ++t) {
          const double* row = a + KXPacked::Index(base + t, base);
          for (int c = 0; c < NR; ++c) block[t * NR + c] = c <= t ? row[c] : 0.0;
        }
      }
      const double* block = diagonalBlocks + static_cast<std::size_t>(tile) * NR * NR;
      const int m1 = j0 + NR - 1;
      if (rows == R) {
        for (int r = 0; r < R; ++r) crow[r] = sums + r * ldS + j0;
        TileKernel<Isa, R, NV, false>(crow, packedA + static_cast<std::size_t>(j0) * R, R, 0,
                                      block, NR, 0, NR - 1);
        if (i0 > m1)
          TileKernel<Isa, R, NV, false>(crow, packedA + static_cast<std::size_t>(m1) * R, R,
                                        0, a + KXPacked::Index(m1, j0), m1 + 1, 1, i0 - m1);
      } else {
        for (int r = 0; r < rows; ++r) {
          crow[0] = sums + r * ldS + j0;
          TileKernel<Isa, 1, NV, false>(crow, packedA + static_cast<std::size_t>(j0) * R + r,
                                        R, 0, block, NR, 0, NR - 1);
          if (i0 > m1)
            TileKernel<Isa, 1, NV, false>(crow,
                                          packedA + static_cast<std::size_t>(m1) * R + r, R,
                                          0, a + KXPacked::Index(m1, j0), m1 + 1, 1, i0 - m1);
        }
      }
    }
    // Columns j0 .. i0-1 left over: rows m = j0 .. i0-1, each over j <= m.
    for (int m = j0; m < i0; ++m) {
      const double* xm = a + KXPacked::Index(m, j0);
      for (int r = 0; r < rows; ++r)
        Axpy<Isa>(sums + r * ldS + j0, xm, packedA[static_cast<std::size_t>(m) * R + r],
                  m - j0 + 1);
    }
    // The block's own rows, in order, then the row is finished.
    for (int r = 0; r < rows; ++r) {
      const int i = i0 + r;
      double* rowI = a + KXPacked::Index(i, 0);
      const double lii = rowI[i];
      if (lii == 0.0) {
        std::fill(rowI, rowI + i + 1, 0.0);
        ++zeroRows;
        continue;
      }
      double* sum = sums + r * ldS;
      for (int m = i0; m < i; ++m) Axpy<Isa>(sum, a + KXPacked::Index(m, 0), rowI[m], m + 1);
      for (int j = 0; j < i; ++j) rowI[j] = -sum[j] / lii;
      rowI[i] = 1.0 / lii;
    }
  }
  return zeroRows;
}

// Blocked M'M in place: out(i, j) = sum_{m=i}^{n-1} M[m,i] M[m,j], j <= i,
// in that order of m. R output rows at a time: first each row's own part
// m < mc (mc the block's last row), then the common part m >= mc with
// register tiles; the tiles crossing the diagonal compute a few lanes past
// a row's end, which are discarded.
template <class Isa>
KX_ALWAYS_INLINE void LowerTransLowerBlocked(double* a, int n, double* scratch) {
  constexpr int R = Isa::kRows;
  constexpr int NV = Isa::kVecs;
  constexpr int L = Isa::kLanes;
  constexpr int NR = NV * L;
  const std::int64_t ldS = static_cast<std::int64_t>(n) + 2 * NR;
  double* sums = scratch;
  double* crow[R];
  for (int i0 = 0; i0 < n; i0 += R) {
    const int rows = std::min(R, n - i0);
    const int mc = i0 + rows - 1;
    for (int r = 0; r < rows; ++r) {
      double* sum = sums + r * ldS;
      std::fill(sum, sum + std::min<std::int64_t>(ldS, i0 + R + 2 * NR), 0.0);
      const int i = i0 + r;
      for (int m = i; m < mc; ++m) {
        const double* rowM = a + KXPacked::Index(m, 0);
        Axpy<Isa>(sum, rowM, rowM[i], i + 1);
      }
    }
    const std::size_t rowMc = KXPacked::Index(mc, 0);
    int j0 = 0;
    for (; j0 + NR <= i0 + 1; j0 += NR) {
      if (rows == R) {
        for (int r = 0; r < R; ++r) crow[r] = sums + r * ldS + j0;
        TileKernel<Isa, R, NV, false>(crow, a + rowMc + i0, mc + 1, 1, a + rowMc + j0,
                                      mc + 1, 1, n - mc);
      } else {
        for (int r = 0; r < rows; ++r) {
          crow[0] = sums + r * ldS + j0;
          TileKernel<Isa, 1, NV, false>(crow, a + rowMc + i0 + r, mc + 1, 1, a + rowMc + j0,
                                        mc + 1, 1, n - mc);
        }
      }
    }
    // Diagonal-crossing tiles, one vector wide. The reads of rows m < n-1
    // may run past the row into the next (never past the array for
    // n >= kLanes); the last row is added on its own.
    for (; j0 <= mc; j0 += L) {
      const int count = n - 1 - mc;
      if (count > 0) {
        if (rows == R) {
          for (int r = 0; r < R; ++r) crow[r] = sums + r * ldS + j0;
          TileKernel<Isa, R, 1, false>(crow, a + rowMc + i0, mc + 1, 1, a + rowMc + j0,
                                       mc + 1, 1, count);
        } else {
          for (int r = 0; r < rows; ++r) {
            crow[0] = sums + r * ldS + j0;
            TileKernel<Isa, 1, 1, false>(crow, a + rowMc + i0 + r, mc + 1, 1,
                                         a + rowMc + j0, mc + 1, 1, count);
          }
        }
      }
      const double* last = a + KXPacked::Index(n - 1, 0);
      for (int r = 0; r < rows; ++r) {
        double* sum = sums + r * ldS;
        const int jEnd = std::min(j0 + L, i0 + r + 1);
        for (int j = j0; j < jEnd; ++j) sum[j] = sum[j] + last[i0 + r] * last[j];
      }
    }
    for (int r = 0; r < rows; ++r) {
      const int i = i0 + r;
      std::copy(sums + r * ldS, sums + r * ldS + i + 1, a + KXPacked::Index(i, 0));
    }
  }
}

#if defined(KX_X86_DISPATCH)
KX_TARGET("avx512f")
int CholeskyAvx512(double* a, int n, const double* d, double tol, unsigned char* acc,
                   int width, double* s) {
  return CholeskyBlocked<IsaAvx512>(a, n, d, tol, acc, width, s);
}
KX_TARGET("avx2")
int CholeskyAvx2(double* a, int n, const double* d, double tol, unsigned char* acc,
                 int width, double* s) {
  return CholeskyBlocked<IsaAvx2>(a, n, d, tol, acc, width, s);
}
#endif
int CholeskyBase(double* a, int n, const double* d, double tol, unsigned char* acc,
                 int width, double* s) {
  return CholeskyBlocked<IsaBase>(a, n, d, tol, acc, width, s);
}

#if defined(KX_X86_DISPATCH)
KX_TARGET("avx512f") int InverseAvx512(double* a, int n, double* s) {
  return LowerInverseBlocked<IsaAvx512>(a, n, s);
}
KX_TARGET("avx2") int InverseAvx2(double* a, int n, double* s) {
  return LowerInverseBlocked<IsaAvx2>(a, n, s);
}
KX_TARGET("avx512f") void TransLowerAvx512(double* a, int n, double* s) {
  LowerTransLowerBlocked<IsaAvx512>(a, n, s);
}
KX_TARGET("avx2") void TransLowerAvx2(double* a, int n, double* s) {
  LowerTransLowerBlocked<IsaAvx2>(a, n, s);
}
#endif
int InverseBase(double* a, int n, double* s) { return LowerInverseBlocked<IsaBase>(a, n, s); }
void TransLowerBase(double* a, int n, double* s) { LowerTransLowerBlocked<IsaBase>(a, n, s); }

// Scratch sized for the widest tile of any instruction set.
constexpr int kMaxRows = 8;
constexpr int kMaxTile = 16;
constexpr int kBlockedMinOrder = 32;

// ---------------------------------------------------------------------------
// Sweep
// ---------------------------------------------------------------------------

constexpr int kSweepChunk = 2048;

// Adds c * column to row i of the triangle over the chunk's columns
// [j0, min(j1, i+1)), skipping column k.
template <class Isa>
KX_ALWAYS_INLINE void SweepUpdateRow(double* a, int i, int k, int j0, int j1, double c,
                              const double* column) {
  double* row = a + KXPacked::Index(i, 0);
  const int jEnd = std::min(j1, i + 1);
  if (k >= j0 && k < jEnd) {
    Axpy<Isa>(row + j0, column, c, k - j0);
    Axpy<Isa>(row + k + 1, column + (k + 1 - j0), c, jEnd - k - 1);
  } else {
    Axpy<Isa>(row + j0, column, c, jEnd - j0);
  }
}

// The rows are visited upwards for an even k and downwards for an odd k:
// a caller sweeping k = 0, 1, 2, ... then starts each sweep on the rows the
// previous one touched last, which are still in cache. (Each element gets
// the same operations whatever the order.)
template <class Isa>
KX_ALWAYS_INLINE void SweepRowChunked(double* a, int n, int k) {
  const std::size_t rowK = KXPacked::Index(k, 0);
  const double d = a[rowK + k];
  const double absD = std::fabs(d);
  const bool negate = -1.0 / d < 0.0;
  const bool downwards = (k & 1) != 0;
  double column[kSweepChunk];  // rescaled a_jk for the columns of one chunk
  auto oldColumnValue = [&](int i) { return i < k ? a[rowK + i] : a[KXPacked::Index(i, k)]; };
  if (n <= kSweepChunk) {
    // One chunk: each row's element of column k is rescaled right after the
    // row is updated (nothing later reads its old value).
    // Upwards, row i needs the column only up to i, so the values below
    // row k are picked up as their rows are reached; downwards they are
    // gathered first.
    for (int j = 0; j < k; ++j) column[j] = a[rowK + j] / absD;
    column[k] = 0.0;
    if (downwards) {
      for (int j = k + 1; j < n; ++j) {
#if defined(KX_X86_DISPATCH)
        if (j + 16 < n) __builtin_prefetch(a + KXPacked::Index(j + 16, k));
#endif
        column[j] = a[KXPacked::Index(j, k)] / absD;
      }
    }
    for (int step = 0; step < n; ++step) {
      const int i = downwards ? n - 1 - step : step;
      if (i == k) continue;
      const double old = oldColumnValue(i);
      if (i > k) column[i] = old / absD;
      SweepUpdateRow<Isa>(a, i, k, 0, n, negate ? -old : old, column);
      if (i > k) a[KXPacked::Index(i, k)] = column[i];
    }
    for (int j = 0; j < k; ++j) a[rowK + j] = column[j];
    a[rowK + k] = -1.0 / d;
    return;
  }
  const int chunks = (n + kSweepChunk - 1) / kSweepChunk;
  for (int chunkStep = 0; chunkStep < chunks; ++chunkStep) {
    const int chunk = downwards ? chunks - 1 - chunkStep : chunkStep;
    const int j0 = chunk * kSweepChunk;
    const int j1 = std::min(n, j0 + kSweepChunk);
    for (int j = j0; j < j1; ++j) column[j - j0] = j == k ? 0.0 : oldColumnValue(j) / absD;
    for (int step = 0; step < n - j0; ++step) {
      const int i = downwards ? n - 1 - step : j0 + step;
      if (i == k) continue;
      const double old = oldColumnValue(i);
      SweepUpdateRow<Isa>(a, i, k, j0, j1, negate ? -old : old, column);
    }
  }
  for (int j = 0; j < k; ++j) a[rowK + j] = a[rowK + j] / absD;
  for (int i = k + 1; i < n; ++i) {
    double& v = a[KXPacked::Index(i, k)];
    v = v / absD;
  }
  a[rowK + k] = -1.0 / d;
}

#if defined(KX_X86_DISPATCH)
KX_TARGET("avx512f") void SweepAvx512(double* a, int n, int k) {
  SweepRowChunked<IsaAvx512>(a, n, k);
}
KX_TARGET("avx2") void SweepAvx2(double* a, int n, int k) {
  SweepRowChunked<IsaAvx2>(a, n, k);
}
#endif
void SweepBase(double* a, int n, int k) { SweepRowChunked<IsaBase>(a, n, k); }

// ---------------------------------------------------------------------------
// Sweeps of many rows
// ---------------------------------------------------------------------------
//
// One sweep with pivot row k adds c_i * x_j to every element (i, j), j <= i,
// outside row and column k, where c_i is a_ik before the sweep (negated when
// d = a_kk > 0) and x_j = a_jk / |d|. A block of sweeps is therefore a
// sequence of such rank-one terms, which every element outside the block's
// rows and columns receives in order. The block's own columns (all of rows
// and columns k_1 .. k_w, the only values the pivot rule and later sweeps of
// the block read) are swept one by one in scratch; the terms then go to the
// rest of the triangle in one pass of register tiles; finally the block's
// columns are written over whatever that pass left in them.

constexpr int kSweepBlock = 16;

// Scratch of the blocked sweeps, in doubles: the block's columns, the
// multipliers c and the rescaled columns x of its accepted sweeps, the
// current diagonal, and the A operand of the tiles.
std::size_t SweepRowsScratchSize(int n, int width) {
  return 3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(n) +
         static_cast<std::size_t>(n) + static_cast<std::size_t>(width) * kMaxRows;
}

// Adds the terms of `count` sweeps, mult[t * n + i] * scaled[t * n + j] for
// t = 0, 1, ..., to every element (i, j), j <= i, of the triangle.
template <class Isa>
KX_ALWAYS_INLINE void AddSweepTerms(double* a, int n, const double* mult, const double* scaled,
                                    int count, double* packedA) {
  constexpr int R = Isa::kRows;
  constexpr int NR = Isa::kVecs * Isa::kLanes;
  const std::int64_t ld = n;
  for (int i0 = 0; i0 < n; i0 += R) {
    const int rows = std::min(R, n - i0);
    for (int t = 0; t < count; ++t)
      for (int r = 0; r < rows; ++r) packedA[t * R + r] = mult[t * ld + i0 + r];
    double* crow[R];
    // Full tiles: columns j0 .. j0+NR-1 with j0+NR-1 <= i0.
    int j0 = 0;
    if (rows == R) {
      for (; j0 + NR - 1 <= i0; j0 += NR) {
        for (int r = 0; r < R; ++r) crow[r] = a + KXPacked::Index(i0 + r, j0);
        TileKernel<Isa, R, Isa::kVecs, false>(crow, packedA, R, 0, scaled + j0, ld, 0, count);
      }
    }
    // Remaining columns j0 .. i of each row.
    for (int r = 0; r < rows; ++r) {
      const int i = i0 + r;
      double* row = a + KXPacked::Index(i, j0);
      for (int t = 0; t < count; ++t)
        Axpy<Isa>(row, scaled + t * ld + j0, packedA[t * R + r], i - j0 + 1);
    }
  }
}

template <class Isa>
KX_ALWAYS_INLINE int SweepRowsBlocked(double* a, int n, const int* rows, int count,
                                      SweepPivotRule& rule, int width, double* scratch,
                                      int* block, unsigned char* inBlock) {
  const std::int64_t ld = n;
  double* columns = scratch;  // columns[m * n + i] = a(i, block[m])
  double* mult = columns + width * ld;
  double* scaled = mult + width * ld;
  double* diag = scaled + width * ld;
  double* packedA = diag + ld;
  for (std::int64_t i = 0; i < n; ++i) diag[i] = a[KXPacked::Index(i, i)];
  int swept = 0;
  int next = 0;
  while (next < count) {
    int w = 0;
    while (next < count && w < width && !inBlock[rows[next]]) {
      block[w++] = rows[next];
      inBlock[rows[next++]] = 1;
    }
    for (int m = 0; m < w; ++m) {
      const int k = block[m];
      double* column = columns + m * ld;
      const double* rowK = a + KXPacked::Index(k, 0);
      for (int j = 0; j < k; ++j) column[j] = rowK[j];
      for (int i = k; i < n; ++i) column[i] = a[KXPacked::Index(i, k)];
    }
    int accepted = 0;
    for (int m = 0; m < w; ++m) {
      const int k = block[m];
      double* column = columns + m * ld;
      if (!rule.Accept(k, diag, column)) continue;
      const double d = column[k];
      const double absD = std::fabs(d);
      const bool negate = -1.0 / d < 0.0;
      double* c = mult + accepted * ld;
      double* x = scaled + accepted * ld;
      for (int i = 0; i < n; ++i) {
        const double old = column[i];
        c[i] = negate ? -old : old;
        x[i] = old / absD;
      }
      // Row and column k take no term; the pass over the triangle writes
      // there, but the block's columns are written over it afterwards.
      c[k] = 0.0;
      x[k] = 0.0;
      for (int i = 0; i < n; ++i) diag[i] = diag[i] + c[i] * x[i];
      diag[k] = -1.0 / d;
      // The other columns of the block: element (i, k_l) is stored in row
      // max(i, k_l) and takes c of that row times x of the other index.
      for (int l = 0; l < w; ++l) {
        if (l == m) continue;
        const int kl = block[l];
        double* other = columns + l * ld;
        Axpy<Isa>(other, x, c[kl], kl);
        Axpy<Isa>(other + kl, c + kl, x[kl], n - kl);  // x_kl * c_i: the same product
        other[k] = x[kl];
      }
      for (int i = 0; i < n; ++i) column[i] = x[i];
      column[k] = -1.0 / d;
      ++accepted;
    }
    if (accepted > 0) {
      AddSweepTerms<Isa>(a, n, mult, scaled, accepted, packedA);
      for (int m = 0; m < w; ++m) {
        const int k = block[m];
        const double* column = columns + m * ld;
        double* rowK = a + KXPacked::Index(k, 0);
        for (int j = 0; j < k; ++j) rowK[j] = column[j];
        for (int i = k; i < n; ++i) a[KXPacked::Index(i, k)] = column[i];
      }
    }
    for (int m = 0; m < w; ++m) inBlock[block[m]] = 0;
    swept += accepted;
  }
  return swept;
}

#if defined(KX_X86_DISPATCH)
KX_TARGET("avx512f")
int SweepRowsAvx512(double* a, int n, const int* rows, int count, SweepPivotRule& rule,
                    int width, double* scratch, int* block, unsigned char* inBlock) {
  return SweepRowsBlocked<IsaAvx512>(a, n, rows, count, rule, width, scratch, block, inBlock);
}
KX_TARGET("avx2")
int SweepRowsAvx2(double* a, int n, const int* rows, int count, SweepPivotRule& rule,
                  int width, double* scratch, int* block, unsigned char* inBlock) {
  return SweepRowsBlocked<IsaAvx2>(a, n, rows, count, rule, width, scratch, block, inBlock);
}
#endif
int SweepRowsBase(double* a, int n, const int* rows, int count, SweepPivotRule& rule,
                  int width, double* scratch, int* block, unsigned char* inBlock) {
  return SweepRowsBlocked<IsaBase>(a, n, rows, count, rule, width, scratch, block, inBlock);
}

}  // namespace

// ---------------------------------------------------------------------------
// Public entry points
// ---------------------------------------------------------------------------

int PackedCholeskyPlain(double* a, int n, const double* origDiag, double tol,
                        unsigned char* accepted) {
  int redundant = 0;
  for (std::int64_t i = 0; i < n; ++i) {
    double* rowI = a + KXPacked::Index(i, 0);
    for (std::int64_t j = 0; j <= i; ++j) {
      const double* rowJ = a + KXPacked::Index(j, 0);
      double s = rowI[j];
      for (std::int64_t m = 0; m < j; ++m) s = s - rowI[m] * rowJ[m];
      if (j < i) {
        rowI[j] = rowJ[j] != 0.0 ? s / rowJ[j] : 0.0;
      } else {
        rowI[i] = AcceptPivot(s, tol * origDiag[i], accepted, static_cast<int>(i),
                              redundant);
      }
    }
  }
  return redundant;
}

int PackedCholeskyWithPanel(double* a, int n, const double* origDiag, double tol,
                            unsigned char* accepted, int width) {
  if (n <= 0) return 0;
  if (width < 1) width = kDefaultPanel;
  width = std::min(width, n);
  std::vector<double> scratch;
  if (!GuardAllocation([&] {
    scratch.resize(static_cast<std::size_t>(width) * (static_cast<std::size_t>(n) + 16));
    return true;
  }, false)) {
    return PackedCholeskyPlain(a, n, origDiag, tol, accepted);
  }
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512:
      return CholeskyAvx512(a, n, origDiag, tol, accepted, width, scratch.data());
    case IsaLevel::kAvx2:
      return CholeskyAvx2(a, n, origDiag, tol, accepted, width, scratch.data());
#endif
    default:
      return CholeskyBase(a, n, origDiag, tol, accepted, width, scratch.data());
  }
}

int PackedCholesky(double* a, int n, const double* origDiag, double tol,
                   unsigned char* accepted) {
  if (n < 32) return PackedCholeskyPlain(a, n, origDiag, tol, accepted);
  return PackedCholeskyWithPanel(a, n, origDiag, tol, accepted, kDefaultPanel);
}

void PackedSweepRowPlain(double* a, int n, int k) {
  const std::size_t rowK = KXPacked::Index(k, 0);
  const double d = a[rowK + k];
  const double absD = std::fabs(d);
  const bool negate = -1.0 / d < 0.0;
  // a_jk for j == k is the diagonal: element (i, k) reads as a_ik below.
  auto at = [&](std::int64_t i, std::int64_t j) -> double& {
    return a[KXPacked::SymIndex(i, j)];
  };
  for (std::int64_t i = 0; i < n; ++i) {
    if (i == k) {
      a[rowK + k] = -1.0 / d;
      continue;
    }
    double& aik = at(i, k);
    const double c = negate ? -aik : aik;
    aik = aik / absD;
    double* row = a + KXPacked::Index(i, 0);
    for (std::int64_t j = 0; j <= i; ++j) {
      if (j == k) continue;
      row[j] = row[j] + c * at(j, k);
    }
  }
}

void PackedSweepRow(double* a, int n, int k) {
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512:
      SweepAvx512(a, n, k);
      return;
    case IsaLevel::kAvx2:
      SweepAvx2(a, n, k);
      return;
#endif
    default:
      SweepBase(a, n, k);
  }
}

int PackedSweepRowsWithBlock(double* a, int n, const int* rows, int count,
                             SweepPivotRule& rule, int width) {
  if (n <= 0 || count <= 0) return 0;
  if (width < 1) width = kSweepBlock;
  width = std::min(width, n);
  std::vector<double> scratch;
  std::vector<int> block;
  std::vector<unsigned char> inBlock;
  if (!GuardAllocation([&] {
    scratch.resize(SweepRowsScratchSize(n, width));
    block.resize(static_cast<std::size_t>(width));
    inBlock.assign(static_cast<std::size_t>(n), 0);
    return true;
  }, false)) {
    return -1;
  }
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512:
      return SweepRowsAvx512(a, n, rows, count, rule, width, scratch.data(), block.data(),
                             inBlock.data());
    case IsaLevel::kAvx2:
      return SweepRowsAvx2(a, n, rows, count, rule, width, scratch.data(), block.data(),
                           inBlock.data());
#endif
    default:
      return SweepRowsBase(a, n, rows, count, rule, width, scratch.data(), block.data(),
                           inBlock.data());
  }
}

int PackedSweepRows(double* a, int n, const int* rows, int count, SweepPivotRule& rule) {
  return PackedSweepRowsWithBlock(a, n, rows, count, rule, kSweepBlock);
}

int PackedLowerInversePlain(double* a, int n) {
  int zeroRows = 0;
  for (std::int64_t i = 0; i < n; ++i) {
    double* rowI = a + KXPacked::Index(i, 0);
    const double lii = rowI[i];
    if (lii == 0.0) {
      for (std::int64_t j = 0; j <= i; ++j) rowI[j] = 0.0;
      ++zeroRows;
      continue;
    }
    for (std::int64_t j = 0; j < i; ++j) {
      double s = 0.0;
      for (std::int64_t m = j; m < i; ++m) s = s + rowI[m] * a[KXPacked::Index(m, j)];
      rowI[j] = -s / lii;
    }
    rowI[i] = 1.0 / lii;
  }
  return zeroRows;
}

int PackedLowerInverse(double* a, int n) {
  if (n < kBlockedMinOrder) return PackedLowerInversePlain(a, n);
  std::vector<double> scratch;
  if (!GuardAllocation([&] {
    scratch.resize(InverseScratchSize(n, kMaxRows, kMaxTile));
    return true;
  }, false)) {
    return PackedLowerInversePlain(a, n);
  }
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512:
      return InverseAvx512(a, n, scratch.data());
    case IsaLevel::kAvx2:
      return InverseAvx2(a, n, scratch.data());
#endif
    default:
      return InverseBase(a, n, scratch.data());
  }
}

void PackedLowerTransLowerPlain(double* a, int n) {
  for (std::int64_t i = 0; i < n; ++i) {
    for (std::int64_t j = 0; j <= i; ++j) {
      double s = 0.0;
      for (std::int64_t m = i; m < n; ++m)
        s = s + a[KXPacked::Index(m, i)] * a[KXPacked::Index(m, j)];
      a[KXPacked::Index(i, j)] = s;
    }
  }
}

void PackedLowerTransLower(double* a, int n) {
  if (n < kBlockedMinOrder) {
    PackedLowerTransLowerPlain(a, n);
    return;
  }
  std::vector<double> scratch;
  if (!GuardAllocation([&] {
    scratch.resize(static_cast<std::size_t>(kMaxRows) *
                   (static_cast<std::size_t>(n) + 2 * kMaxTile));
    return true;
  }, false)) {
    PackedLowerTransLowerPlain(a, n);
    return;
  }
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512:
      TransLowerAvx512(a, n, scratch.data());
      return;
    case IsaLevel::kAvx2:
      TransLowerAvx2(a, n, scratch.data());
      return;
#endif
    default:
      TransLowerBase(a, n, scratch.data());
  }
}

void PackedLowerLowerTrans(double* a, int n) {
  // Rows from the last: row i of M M' needs rows 0..i of M, and within the
  // row columns from the diagonal down, so nothing is read after it is
  // overwritten.
  // Four outputs of a row are summed side by side (independent sums, each
  // still in the order m = 0, 1, ..., j).
  for (std::int64_t i = n - 1; i >= 0; --i) {
    double* rowI = a + KXPacked::Index(i, 0);
    std::int64_t j = i;
    for (; j >= 3; j -= 4) {
      const std::int64_t j0 = j - 3;
      const double* r0 = a + KXPacked::Index(j0, 0);
      const double* r1 = a + KXPacked::Index(j0 + 1, 0);
      const double* r2 = a + KXPacked::Index(j0 + 2, 0);
      const double* r3 = a + KXPacked::Index(j0 + 3, 0);
      double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0;
      for (std::int64_t m = 0; m <= j0; ++m) {
        const double x = rowI[m];
        s0 = s0 + x * r0[m];
        s1 = s1 + x * r1[m];
        s2 = s2 + x * r2[m];
        s3 = s3 + x * r3[m];
      }
      s1 = s1 + rowI[j0 + 1] * r1[j0 + 1];
      s2 = s2 + rowI[j0 + 1] * r2[j0 + 1];
      s3 = s3 + rowI[j0 + 1] * r3[j0 + 1];
      s2 = s2 + rowI[j0 + 2] * r2[j0 + 2];
      s3 = s3 + rowI[j0 + 2] * r3[j0 + 2];
      s3 = s3 + rowI[j0 + 3] * r3[j0 + 3];
      rowI[j0] = s0;
      rowI[j0 + 1] = s1;
      rowI[j0 + 2] = s2;
      rowI[j0 + 3] = s3;
    }
    for (; j >= 0; --j) {
      const double* rowJ = a + KXPacked::Index(j, 0);
      double s = 0.0;
      for (std::int64_t m = 0; m <= j; ++m) s = s + rowI[m] * rowJ[m];
      rowI[j] = s;
    }
  }
}

}  // namespace internal
}  // namespace KXCommon
