#include "kxcommonr/common/foundation/KXStatus.h"

namespace KXCommon {

KXStatus::KXStatus()
    : fCode(0), fSeverity(0), fDiscreteData{0, 0, 0}, fScaleData{0, 0, 0} {}

KXStatus::KXStatus(long code, bool warning)
    : fCode(static_cast<std::int32_t>(code)),
      fSeverity(static_cast<std::int16_t>(warning ? 1 : -1)),
      fDiscreteData{0, 0, 0},
      fScaleData{0, 0, 0} {}

long KXStatus::GetDiscreteDatum(unsigned i) const {
  return i < kDetails ? fDiscreteData[i] : 0;
}

void KXStatus::SetDiscreteDatum(unsigned i, long value) {
  if (i < kDetails) fDiscreteData[i] = static_cast<std::int32_t>(value);
}

double KXStatus::GetScaleDatum(unsigned i) const {
  return i < kDetails ? fScaleData[i] : 0.0;
}

void KXStatus::SetScaleDatum(unsigned i, double value) {
  if (i < kDetails) fScaleData[i] = value;
}

bool KXStatus::operator==(const KXStatus& other) const {
  if (fCode != other.fCode || fSeverity != other.fSeverity) return false;
  for (unsigned i = 0; i < kDetails; ++i) {
    if (fDiscreteData[i] != other.fDiscreteData[i]) return false;
    if (!(fScaleData[i] == other.fScaleData[i])) return false;
  }
  return true;
}

}  // namespace KXCommon
