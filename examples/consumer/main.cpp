// Links against an installed kxcommonr and checks a few results.
#include "kxcommonr/kxcommonr.h"

#include <cstdio>

int main() {
  using namespace KXCommon;
  bool ok = KXMV::IsMissing(KXMV::Missing());
  std::printf("kxcommonr %s: %s\n", KXCOMMONR_VERSION_STRING, ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
