// Links against an installed kxcommonr through its package and exercises one
// piece of each subsystem: a cross-product matrix swept to least-squares
// coefficients, a distribution function, a bit set and the XML number format.
#include "kxcommonr/kxcommonr.h"

#include <cmath>
#include <cstdio>
#include <vector>

int main() {
  using namespace KXCommon;
  bool ok = KXMV::IsMissing(KXMV::Missing());

  // y = 1 + 2 x on four points, through cross-products (1, x, y) and sweeps.
  KXSymMatrix xx(3);
  for (double x : {0.0, 1.0, 2.0, 3.0}) ok = xx.UpdateXX({1.0, x, 1.0 + 2.0 * x}, 1.0) && ok;
  std::vector<double> origDiag;
  xx.GetDiagonal(origDiag);
  KXBitSet swept(3);
  ok = xx.Sweep(0, 1e-10, origDiag, swept, true) && ok;
  ok = xx.Sweep(1, 1e-10, origDiag, swept, true) && ok;
  ok = std::fabs(xx.GetElem(2, 0) - 1.0) < 1e-12 && std::fabs(xx.GetElem(2, 1) - 2.0) < 1e-12 && ok;

  ok = std::fabs(KXDistFun::CdfStdNorm(0.0) - 0.5) < 1e-16 && ok;
  ok = KXXML_NAMESPACE::Format(0.5) == "0.5" && ok;

  std::printf("kxcommonr %s: %s\n", KXCOMMONR_VERSION_STRING, ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
