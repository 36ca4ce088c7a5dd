// kxcommonr/common/simd/KXDispatch.cpp
#include "kxcommonr/common/simd/KXDispatch.h"

namespace KXCommon {
namespace internal {

namespace {

IsaLevel DetectIsa() {
#if defined(KX_X86_DISPATCH)
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return IsaLevel::kAvx512;
  if (__builtin_cpu_supports("avx2")) return IsaLevel::kAvx2;
#endif
  return IsaLevel::kBaseline;
}

// Highest level the kernels may use; set only by SetKernelLevel (tests).
int gLevelCap = static_cast<int>(IsaLevel::kAvx512);

}  // namespace

IsaLevel MachineIsa() {
  static const IsaLevel isa = DetectIsa();
  return isa;
}

IsaLevel ActiveIsa() {
  const IsaLevel machine = MachineIsa();
  return static_cast<int>(machine) > gLevelCap ? static_cast<IsaLevel>(gLevelCap) : machine;
}

int KernelLevel() { return static_cast<int>(ActiveIsa()); }

int SetKernelLevel(int level) {
  const int top = static_cast<int>(IsaLevel::kAvx512);
  gLevelCap = level < 0 || level > top ? top : level;
  return KernelLevel();
}

}  // namespace internal
}  // namespace KXCommon
