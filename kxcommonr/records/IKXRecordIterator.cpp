#include "kxcommonr/records/IKXRecordIterator.h"

namespace KXMTD_NAMESPACE {

IKXRecordIterator::~IKXRecordIterator() = default;

MemoryRecordIterator::MemoryRecordIterator(std::vector<std::string> columnNames,
                                           std::vector<RawRecord> records)
    : fvNames(std::move(columnNames)), fvRecords(std::move(records)) {
  for (std::size_t i = 0; i < fvRecords.size(); ++i) {
    if (fvRecords[i].Size() != GetColumnCount()) {
      fsBadRecord = "record " + std::to_string(i + 1) + ": " + std::to_string(fvRecords[i].Size()) +
                    " values for " + std::to_string(GetColumnCount()) + " columns";
      fvRecords.resize(i);
      break;
    }
  }
}

MemoryRecordIterator::~MemoryRecordIterator() = default;

bool MemoryRecordIterator::HasMore() { return fsFailReason.empty() && fiNext < fvRecords.size(); }

bool MemoryRecordIterator::Next(RawRecord& record) {
  if (!fsFailReason.empty()) return false;
  if (fiNext >= fvRecords.size()) {
    fsFailReason = fsBadRecord;
    return false;
  }
  record = fvRecords[fiNext++];
  return true;
}

bool MemoryRecordIterator::NewPass() {
  fiNext = 0;
  fsFailReason.clear();
  return true;
}

}  // namespace KXMTD_NAMESPACE
