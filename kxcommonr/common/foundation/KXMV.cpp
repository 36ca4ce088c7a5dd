#include "kxcommonr/common/foundation/KXMV.h"

namespace KXCommon {

const double KXMV::gMissingValue = -1.7976931348623157e308;

}  // namespace KXCommon
