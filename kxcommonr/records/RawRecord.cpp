#include "kxcommonr/records/RawRecord.h"

#include "kxcommonr/common/foundation/KXMV.h"

namespace KXMTD_NAMESPACE {

double Record::Get(int i) const {
  return i >= 0 && i < Size() ? fvValues[static_cast<std::size_t>(i)] : KXCommon::KXMV::Missing();
}

bool Record::Set(int i, double value) {
  if (i < 0 || i >= Size()) return false;
  fvValues[static_cast<std::size_t>(i)] = value;
  return true;
}

}  // namespace KXMTD_NAMESPACE
