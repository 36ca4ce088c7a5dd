// kxcommonr/records/IKXRecordIterator.h
//
// IKXRecordIterator: the source of the records a modelling component reads,
// one pass after another. Implementations: MemoryRecordIterator (records held
// in memory), KXTextRecordIterator (delimited text from a stream); a host may
// supply its own by implementing this interface.
//
//   for (bool pass = true; pass; pass = more passes wanted) {
//     RawRecord record;
//     while (it.Next(record)) { ... }
//     if (!it.GetFailReason().empty()) { report it; stop }
//     it.NewPass();
//   }
//
// Contract of every implementation:
//   - Next fills `record` (one RawData per column, GetColumnCount() of them)
//     and returns true, or returns false at the end of the pass or on a
//     failure; after a failure GetFailReason() says what and where (for text,
//     the line and column), and the pass is over: Next keeps returning false.
//   - HasMore is true exactly when the next Next will deliver a record (it
//     may read ahead to know).
//   - NewPass starts the records again from the first and clears the fail
//     reason; it returns false (with a fail reason) when the source cannot be
//     read again.
#ifndef KXCOMMONR_RECORDS_IKXRECORDITERATOR_H
#define KXCOMMONR_RECORDS_IKXRECORDITERATOR_H

#include <string>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/records/RawRecord.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API IKXRecordIterator {
 public:
  virtual ~IKXRecordIterator();
  virtual bool HasMore() = 0;
  virtual bool Next(RawRecord& record) = 0;
  virtual bool NewPass() = 0;
  // Empty while nothing has failed.
  virtual const std::string& GetFailReason() const = 0;
  virtual int GetColumnCount() const = 0;
  // The column names (as many as GetColumnCount()).
  virtual const std::vector<std::string>& GetColumnNames() const = 0;

 protected:
  IKXRecordIterator() = default;
  IKXRecordIterator(const IKXRecordIterator&) = default;
  IKXRecordIterator& operator=(const IKXRecordIterator&) = default;
};

// Records held in memory (copied in at construction). Every record must have
// the column count of the names; the constructor keeps only the records
// before the first one that does not, and that pass then fails there.
class KXCOMMONR_API MemoryRecordIterator : public IKXRecordIterator {
 public:
  MemoryRecordIterator(std::vector<std::string> columnNames, std::vector<RawRecord> records);
  ~MemoryRecordIterator() override;

  bool HasMore() override;
  bool Next(RawRecord& record) override;
  bool NewPass() override;
  const std::string& GetFailReason() const override { return fsFailReason; }
  int GetColumnCount() const override { return static_cast<int>(fvNames.size()); }
  const std::vector<std::string>& GetColumnNames() const override { return fvNames; }

 private:
  std::vector<std::string> fvNames;
  std::vector<RawRecord> fvRecords;
  std::string fsBadRecord;  // the reason a record was refused, if one was
  std::size_t fiNext = 0;
  std::string fsFailReason;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_RECORDS_IKXRECORDITERATOR_H
