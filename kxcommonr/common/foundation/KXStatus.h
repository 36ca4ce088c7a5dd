// kxcommonr/common/foundation/KXStatus.h
//
// KXStatus: the result object of fallible operations. It carries a 32-bit
// code (0 for success; each operation that returns a status defines its own
// codes), a 16-bit severity (0 OK, negative error, positive warning), and three
// integer and three real details that go with the code (for example the index
// of the offending item). IsOK, IsError and IsWarning look at the severity
// only, never at the code.
//
// A plain value type, copied field by field. Thread-compatible.
#ifndef KXCOMMONR_COMMON_FOUNDATION_KXSTATUS_H
#define KXCOMMONR_COMMON_FOUNDATION_KXSTATUS_H

#include <cstdint>

#include "kxcommonr/config.h"

namespace KXCommon {

class KXCOMMONR_API KXStatus {
 public:
  // Code 0, severity 0 (OK), all details zero.
  KXStatus();
  // The given code with severity 1 (warning) or -1 (error); details zero.
  // There is deliberately no way to build an OK status with a non-zero code.
  // The code is stored as a 32-bit value whatever the width of long.
  KXStatus(long code, bool warning);
  KXStatus(const KXStatus& other) = default;
  KXStatus& operator=(const KXStatus& other) = default;

  // Severity == 0.
  bool IsOK() const { return fSeverity == 0; }
  // Severity < 0.
  bool IsError() const { return fSeverity < 0; }
  // Severity > 0.
  bool IsWarning() const { return fSeverity > 0; }

  // The status code and the severity.
  long GetCode() const { return fCode; }
  int GetSeverity() const { return fSeverity; }

  // Details i = 0, 1, 2. An index above 2 reads 0 and writes nothing.
  long GetDiscreteDatum(unsigned i) const;
  void SetDiscreteDatum(unsigned i, long value);
  double GetScaleDatum(unsigned i) const;
  void SetScaleDatum(unsigned i, double value);

  // Equal when code and severity are equal and, for i = 0, 1, 2, discrete
  // datum i and scale datum i are equal (compared as doubles: a NaN detail
  // makes two statuses unequal, even a status with itself).
  bool operator==(const KXStatus& other) const;
  bool operator!=(const KXStatus& other) const { return !(*this == other); }

 private:
  static constexpr unsigned kDetails = 3;

  std::int32_t fCode;
  std::int16_t fSeverity;
  std::int32_t fDiscreteData[kDetails];
  double fScaleData[kDetails];
};

}  // namespace KXCommon

#endif  // KXCOMMONR_COMMON_FOUNDATION_KXSTATUS_H
