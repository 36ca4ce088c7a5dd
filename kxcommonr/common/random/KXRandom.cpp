#include "kxcommonr/common/random/KXRandom.h"

namespace KXCommon {

// Defined here so the virtual table has one home in the library.
KXRandom::~KXRandom() = default;

}  // namespace KXCommon
