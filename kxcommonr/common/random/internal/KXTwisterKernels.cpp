#include "kxcommonr/common/random/internal/KXTwisterKernels.h"

#include <cstring>

namespace KXCommon {
namespace internal {

namespace {

constexpr int kN = kTwisterWords;
constexpr int kM = kTwisterShift;

#if defined(KX_VECTOR_EXT)
// Lanes of 32-bit words and the doubles they convert to; each function
// compiled for an instruction set lowers them to its own registers.
template <int L> struct Lanes;
template <> struct Lanes<4> {
  typedef std::uint32_t Words __attribute__((vector_size(16)));
  typedef double Reals __attribute__((vector_size(32)));
};
template <> struct Lanes<8> {
  typedef std::uint32_t Words __attribute__((vector_size(32)));
  typedef double Reals __attribute__((vector_size(64)));
};
template <> struct Lanes<16> {
  typedef std::uint32_t Words __attribute__((vector_size(64)));
  typedef double Reals __attribute__((vector_size(128)));
};

template <class V, class T>
KX_ALWAYS_INLINE void Load(V& v, const T* p) { std::memcpy(&v, p, sizeof v); }
template <class T, class V>
KX_ALWAYS_INLINE void Store(T* p, const V& v) { std::memcpy(p, &v, sizeof v); }

// L words of the recurrence at once: out[k] = twist(cur[k], cur[k+1],
// far[k]). Everything is loaded before out (== cur) is written.
template <int L>
KX_ALWAYS_INLINE void TwistLanes(std::uint32_t* cur, const std::uint32_t* far) {
  typedef typename Lanes<L>::Words W;
  W current, next, distant;
  Load(current, cur);
  Load(next, cur + 1);
  Load(distant, far);
  const W y = (current & kTwisterUpper) | (next & kTwisterLower);
  const W result = distant ^ (y >> 1) ^ ((W{} - (y & 1u)) & kTwisterMatrix);
  Store(cur, result);
}

template <int L>
KX_ALWAYS_INLINE void TemperLanes(typename Lanes<L>::Words& y) {
  y ^= y >> 11;
  y ^= (y << 7) & 0x9d2c5680u;
  y ^= (y << 15) & 0xefc60000u;
  y ^= y >> 18;
}

// The block in four runs: words 0..226 read the old words 397 ahead, words
// 227..622 the new words 227 behind (already written, as L <= 227), and
// word 623 wraps round to the new word 0.
template <int L>
KX_ALWAYS_INLINE void RegenerateLanes(std::uint32_t* mt) {
  int i = 0;
  for (; i + L <= kN - kM; i += L) TwistLanes<L>(mt + i, mt + i + kM);
  for (; i < kN - kM; ++i) mt[i] = TwisterTwist(mt[i], mt[i + 1], mt[i + kM]);
  for (; i + L <= kN - 1; i += L) TwistLanes<L>(mt + i, mt + i + kM - kN);
  for (; i < kN - 1; ++i) mt[i] = TwisterTwist(mt[i], mt[i + 1], mt[i + kM - kN]);
  mt[kN - 1] = TwisterTwist(mt[kN - 1], mt[0], mt[kM - 1]);
}

template <int L>
KX_ALWAYS_INLINE void TemperWordsLanes(const std::uint32_t* in, std::uint32_t* out,
                                       std::int64_t n) {
  std::int64_t i = 0;
  for (; i + L <= n; i += L) {
    typename Lanes<L>::Words y;
    Load(y, in + i);
    TemperLanes<L>(y);
    Store(out + i, y);
  }
  for (; i < n; ++i) out[i] = TwisterTemper(in[i]);
}

template <int L>
KX_ALWAYS_INLINE void TemperRealsLanes(const std::uint32_t* in, double* out, std::int64_t n) {
  typedef typename Lanes<L>::Reals R;
  std::int64_t i = 0;
  for (; i + L <= n; i += L) {
    typename Lanes<L>::Words y;
    Load(y, in + i);
    TemperLanes<L>(y);
    R real = __builtin_convertvector(y, R);
    real = (real + 0.5) * 2.3283064365386963e-10;  // exact, as TwisterRealOpen
    Store(out + i, real);
  }
  for (; i < n; ++i) out[i] = TwisterRealOpen(TwisterTemper(in[i]));
}

#if defined(KX_X86_DISPATCH)
KX_TARGET("avx512f") void RegenerateAvx512(std::uint32_t* mt) { RegenerateLanes<16>(mt); }
KX_TARGET("avx2") void RegenerateAvx2(std::uint32_t* mt) { RegenerateLanes<8>(mt); }
KX_TARGET("avx512f")
void TemperWordsAvx512(const std::uint32_t* in, std::uint32_t* out, std::int64_t n) {
  TemperWordsLanes<16>(in, out, n);
}
KX_TARGET("avx2")
void TemperWordsAvx2(const std::uint32_t* in, std::uint32_t* out, std::int64_t n) {
  TemperWordsLanes<8>(in, out, n);
}
KX_TARGET("avx512f")
void TemperRealsAvx512(const std::uint32_t* in, double* out, std::int64_t n) {
  TemperRealsLanes<16>(in, out, n);
}
KX_TARGET("avx2")
void TemperRealsAvx2(const std::uint32_t* in, double* out, std::int64_t n) {
  TemperRealsLanes<8>(in, out, n);
}
#endif
void RegenerateBase(std::uint32_t* mt) { RegenerateLanes<4>(mt); }
void TemperWordsBase(const std::uint32_t* in, std::uint32_t* out, std::int64_t n) {
  TemperWordsLanes<4>(in, out, n);
}
void TemperRealsBase(const std::uint32_t* in, double* out, std::int64_t n) {
  TemperRealsLanes<4>(in, out, n);
}
#else
void RegenerateBase(std::uint32_t* mt) { TwisterRegeneratePlain(mt); }
void TemperWordsBase(const std::uint32_t* in, std::uint32_t* out, std::int64_t n) {
  for (std::int64_t i = 0; i < n; ++i) out[i] = TwisterTemper(in[i]);
}
void TemperRealsBase(const std::uint32_t* in, double* out, std::int64_t n) {
  for (std::int64_t i = 0; i < n; ++i) out[i] = TwisterRealOpen(TwisterTemper(in[i]));
}
#endif

}  // namespace

void TwisterRegeneratePlain(std::uint32_t* mt) {
  for (int i = 0; i < kN; ++i) {
    mt[i] = TwisterTwist(mt[i], mt[(i + 1) % kN], mt[(i + kM) % kN]);
  }
}

void TwisterRegenerate(std::uint32_t* mt) {
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512: RegenerateAvx512(mt); return;
    case IsaLevel::kAvx2: RegenerateAvx2(mt); return;
#endif
    default: RegenerateBase(mt); return;
  }
}

void TwisterTemperWords(const std::uint32_t* words, std::uint32_t* out, std::int64_t n) {
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512: TemperWordsAvx512(words, out, n); return;
    case IsaLevel::kAvx2: TemperWordsAvx2(words, out, n); return;
#endif
    default: TemperWordsBase(words, out, n); return;
  }
}

void TwisterTemperRealsOpen(const std::uint32_t* words, double* out, std::int64_t n) {
  switch (ActiveIsa()) {
#if defined(KX_X86_DISPATCH)
    case IsaLevel::kAvx512: TemperRealsAvx512(words, out, n); return;
    case IsaLevel::kAvx2: TemperRealsAvx2(words, out, n); return;
#endif
    default: TemperRealsBase(words, out, n); return;
  }
}

void TwisterJump(std::uint32_t* state, std::int32_t& index, const std::uint32_t* q, int words) {
  // The output sequence around the position: this block, then the next one,
  // so that the window one word after the next output is sequence[k+1..k+624].
  if (index >= kN) {
    TwisterRegenerate(state);
    index = 0;
  }
  std::uint32_t sequence[2 * kN];
  std::memcpy(sequence, state, sizeof(std::uint32_t) * kN);
  std::memcpy(sequence + kN, state, sizeof(std::uint32_t) * kN);
  TwisterRegenerate(sequence + kN);
  const std::uint32_t* window = sequence + index + 1;

  // Horner: acc = G(acc) xor [q_i] window, for i from the top coefficient
  // down, where G steps a window one word on. acc is circular: it starts at
  // `start`, and a step overwrites its first word with the new last one.
  std::uint32_t acc[kN] = {};
  int start = 0;
  for (int bit = 32 * words - 1; bit >= 0; --bit) {
    acc[start] = TwisterTwist(acc[start], acc[(start + 1) % kN], acc[(start + kM) % kN]);
    start = (start + 1) % kN;
    if (((q[bit / 32] >> (bit % 32)) & 1u) != 0) {
      const int head = kN - start;  // acc[start..kN) gets window[0..head)
      for (int j = 0; j < head; ++j) acc[start + j] ^= window[j];
      for (int j = head; j < kN; ++j) acc[j - head] ^= window[j];
    }
  }
  for (int j = 0; j < kN; ++j) state[j] = acc[(start + j) % kN];
  index = 0;
}

}  // namespace internal
}  // namespace KXCommon
