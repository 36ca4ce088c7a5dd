// kxcommonr/common/simd/KXDispatch.h
//
// Runtime dispatch of the hot kernels to wide vector units, in one place.
// Not part of the public interface.
//
// One portable x86-64 binary carries an AVX-512, an AVX2 and a baseline
// version of each hot kernel and picks one on the running processor. The
// kernels vectorise across independent outputs only, so every path gives
// the same bits; dispatch changes speed, never a result.
//
// Two mechanisms, both decided here:
//  - KX_TARGET_CLONES on a function: the loader picks a clone once (GCC and
//    clang target_clones; needs ELF ifunc support). For elementwise loops the
//    compiler vectorises on its own.
//  - KX_TARGET("avx2") on hand-instantiated kernels, chosen at run time with
//    ActiveIsa() below (register-blocked kernels whose tile shape follows the
//    vector width).
//
// Defining KXCOMMONR_NO_DISPATCH on the compiler command line builds plain
// portable C++ only: no vector extensions, no target attributes, no processor
// detection (as for MSVC or a non-x86 platform, where this happens anyway).
//
// Macros set for the kernel sources:
//   KX_VECTOR_EXT      GNU vector extensions (vector_size) may be used.
//   KX_X86_DISPATCH    x86 target attributes and processor detection are used.
//   KX_ALWAYS_INLINE   inline, forced where the compiler allows it (a kernel
//                      template must be inlined into each target's function).
//   KX_INLINE_LAMBDA   the same for a lambda, written after its parameters:
//                      [=](int k) KX_INLINE_LAMBDA { ... }.
//   KX_TARGET(isa)     compile one function for the instruction set isa.
//   KX_TARGET_CLONES   compile a function for AVX-512, AVX2 and the baseline.
//
// Thread rule: ActiveIsa() and KernelLevel() are safe from any thread; the
// processor is examined once, on first use. SetKernelLevel is for tests and
// must be called only while no kernel runs.
#ifndef KXCOMMONR_COMMON_SIMD_KXDISPATCH_H
#define KXCOMMONR_COMMON_SIMD_KXDISPATCH_H

#if (defined(__GNUC__) || defined(__clang__)) && !defined(KXCOMMONR_NO_DISPATCH)
#define KX_VECTOR_EXT 1
#define KX_ALWAYS_INLINE inline __attribute__((always_inline))
#define KX_INLINE_LAMBDA __attribute__((always_inline))
#if defined(__x86_64__) || defined(__i386__)
#define KX_X86_DISPATCH 1
#define KX_TARGET(isa) __attribute__((target(isa)))
#endif
#if defined(__x86_64__) && defined(__ELF__)
#define KX_TARGET_CLONES __attribute__((target_clones("avx512f", "avx2", "default")))
#endif
#else
#define KX_ALWAYS_INLINE inline
#define KX_INLINE_LAMBDA
#endif

#ifndef KX_TARGET
#define KX_TARGET(isa)
#endif
#ifndef KX_TARGET_CLONES
#define KX_TARGET_CLONES
#endif

namespace KXCommon {
namespace internal {

// Instruction-set levels of the hand-dispatched kernels, in increasing
// order: baseline (SSE2, or plain C++ without KX_X86_DISPATCH), AVX2 (with
// 256-bit vectors), AVX-512 (AVX-512F).
enum class IsaLevel : int { kBaseline = 0, kAvx2 = 1, kAvx512 = 2 };

// The best level this processor runs, found once. Always kBaseline without
// KX_X86_DISPATCH.
IsaLevel MachineIsa();

// The level the kernels use now: MachineIsa(), capped by SetKernelLevel.
IsaLevel ActiveIsa();

// The level now in use as a number (0 baseline, 1 AVX2, 2 AVX-512).
int KernelLevel();

// For tests comparing the paths: caps the level of every hand-dispatched
// kernel (the dense multiply and the packed factor kernels alike) at level;
// -1 (or any value outside 0..2) restores the processor's choice. Returns
// the level now in use, never above what the machine offers. Not
// thread-safe: call it only while no kernel runs. Functions cloned with
// KX_TARGET_CLONES are chosen by the loader and are not affected.
int SetKernelLevel(int level);

}  // namespace internal
}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_SIMD_KXDISPATCH_H
