#include "kxcommonr/records/KXTextRecordIterator.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

namespace {

using KXMTD_NAMESPACE::IKXRecordIterator;
using KXMTD_NAMESPACE::KXTextRecordIterator;
using KXMTD_NAMESPACE::MemoryRecordIterator;
using KXMTD_NAMESPACE::RawData;
using KXMTD_NAMESPACE::RawRecord;

std::vector<RawRecord> ReadAll(IKXRecordIterator& it) {
  std::vector<RawRecord> records;
  RawRecord record;
  while (it.Next(record)) records.push_back(record);
  return records;
}

RawData Str(const char* s) { return RawData::FromString(s); }
RawData Int(std::int64_t i) { return RawData::FromInteger(i); }
RawData Real(double x) { return RawData::FromReal(x); }

TEST(KXTextRecordIteratorTest, ReadsQuotesLineEndsNullsAndDetectsTypes) {
  std::istringstream in(
      "id,name,score,day\r\n"
      "1,\"Smith, J.\",2.5,2024-02-29\r\n"
      "2,\"two\nlines \"\"quoted\"\"\",,\r\n"
      "\r\n"
      "3,\"\",-1e3,1999-12-31\r\n"
      "4,plain \"inner\" quote,7,2000-01-01");  // the last line has no line end
  KXTextRecordIterator it(in);
  ASSERT_EQ(it.GetFailReason(), "");
  EXPECT_EQ(it.GetColumnNames(), (std::vector<std::string>{"id", "name", "score", "day"}));
  EXPECT_EQ(it.GetColumnTypes(), (std::vector<RawData::Type>{RawData::Integer, RawData::String,
                                                             RawData::Real, RawData::Date}));
  RawData day1, day3, day4;
  day1.SetDate(19782);
  day3.SetDate(10956);
  day4.SetDate(10957);
  const std::vector<RawRecord> expected = {
      RawRecord({Int(1), Str("Smith, J."), Real(2.5), day1}),
      RawRecord({Int(2), Str("two\nlines \"quoted\""), RawData::Null(RawData::Real),
                 RawData::Null(RawData::Date)}),
      RawRecord({Int(3), Str(""), Real(-1000), day3}),
      RawRecord({Int(4), Str("plain \"inner\" quote"), Real(7), day4})};
  EXPECT_TRUE(ReadAll(it) == expected);
  EXPECT_EQ(it.GetFailReason(), "");
  EXPECT_EQ(it.GetLine(), 7);  // the quoted line end counts
  EXPECT_FALSE(it.HasMore());
  ASSERT_TRUE(it.NewPass());
  EXPECT_TRUE(it.HasMore());
  EXPECT_TRUE(ReadAll(it) == expected);

  // The same through memory records.
  MemoryRecordIterator memory(it.GetColumnNames(), expected);
  EXPECT_TRUE(ReadAll(memory) == expected);
  memory.NewPass();
  EXPECT_TRUE(memory.HasMore());
}

TEST(KXTextRecordIteratorTest, MalformedRecordsEndThePassWithTheirLineAndColumn) {
  const std::vector<RawData::Type> types = {RawData::Integer, RawData::Real};
  const struct {
    const char* text;
    int delivered;
    const char* reason;
  } cases[] = {
      {"a,b\n1,2\n3,x\n", 1, "line 3, column \"b\": \"x\" is not a real number"},
      {"a,b\n1,2\n3\n", 1, "line 3: 1 fields, expected 2"},
      {"a,b\n1,2,3\n", 0, "line 2: 3 fields, expected 2"},
      {"a,b\n\"1\"x,2\n", 0, "line 2, column \"a\": text after the closing quote"},
      {"a,b\n1,2\n\"3,4\n", 1, "line 3: a quoted field is not closed before the end of the data"},
      {"a,b\n1.5,2\n", 0, "line 2, column \"a\": \"1.5\" is not an integer"},
      {"", 0, "the data hold no header line"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::istringstream in(c.text);
    KXTextRecordIterator it(in, KXTextRecordIterator::Options(), types);
    EXPECT_EQ(static_cast<int>(ReadAll(it).size()), c.delivered);
    EXPECT_EQ(it.GetFailReason(), c.reason);
    RawRecord record;
    EXPECT_FALSE(it.Next(record) || it.HasMore());
  }
  std::istringstream in("a,b\n1,2\n");
  KXTextRecordIterator wrongTypes(in, KXTextRecordIterator::Options(), {RawData::Real});
  EXPECT_EQ(wrongTypes.GetFailReason(), "1 column types given for 2 columns");
  MemoryRecordIterator memory({"a"}, {RawRecord({Int(1)}), RawRecord({Int(1), Int(2)})});
  EXPECT_EQ(ReadAll(memory).size(), 1u);
  EXPECT_EQ(memory.GetFailReason(), "record 2: 2 values for 1 columns");
}

// A stream that can be read once only.
class OnceBuffer : public std::stringbuf {
 public:
  using std::stringbuf::stringbuf;

 protected:
  pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override { return -1; }
  pos_type seekpos(pos_type, std::ios_base::openmode) override { return -1; }
};

TEST(KXTextRecordIteratorTest, OptionsAndStreamsThatCannotRewind) {
  std::istringstream in("1;'a;b'\n2;'c'\n");
  KXTextRecordIterator::Options options;
  options.delimiter = ';';
  options.quote = '\'';
  options.header = false;
  KXTextRecordIterator it(in, options);
  EXPECT_EQ(it.GetColumnNames(), (std::vector<std::string>{"V1", "V2"}));
  EXPECT_TRUE(ReadAll(it) == (std::vector<RawRecord>{RawRecord({Int(1), Str("a;b")}),
                                                     RawRecord({Int(2), Str("c")})}));
  OnceBuffer once("x\n1\n");
  std::istream stream(&once);
  KXTextRecordIterator typed(stream, KXTextRecordIterator::Options(), {RawData::Integer});
  EXPECT_EQ(ReadAll(typed).size(), 1u);
  EXPECT_FALSE(typed.NewPass());
  EXPECT_EQ(typed.GetFailReason(), "the data cannot be read a second time");
  OnceBuffer onceMore("x\n1\n");
  std::istream detect(&onceMore);
  EXPECT_EQ(KXTextRecordIterator(detect).GetFailReason(), "the data cannot be read a second time");
}

// Records written as text (quoting what needs it) read back as they were,
// across many 1 MiB blocks.
TEST(KXTextRecordIteratorTest, WrittenRecordsReadBackAcrossBlocks) {
  std::mt19937 random(3);
  std::vector<RawRecord> records;
  std::string text = "n,x,s\n";
  const char* pieces[] = {"a", ",", "\"", "\n", "\r\n", " ", "xyz"};
  for (int i = 0; i < 100000; ++i) {
    std::string s;
    for (unsigned k = random() % 6; k > 0; --k) s += pieces[random() % 7];
    const double x = std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 40));
    records.push_back(RawRecord({Int(i), Real(x), Str(s.c_str())}));
    std::string quoted = "\"";
    for (const char c : s) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    char number[40];
    std::snprintf(number, sizeof number, "%.17g", x);
    text += std::to_string(i) + "," + number + "," + quoted + "\"" + (i % 2 ? "\n" : "\r\n");
  }
  std::istringstream in(text);
  KXTextRecordIterator it(in, KXTextRecordIterator::Options(),
                          {RawData::Integer, RawData::Real, RawData::String});
  ASSERT_GT(text.size(), std::size_t(2) << 20);
  const std::vector<RawRecord> read = ReadAll(it);
  EXPECT_EQ(it.GetFailReason(), "");
  ASSERT_EQ(read.size(), records.size());
  for (std::size_t i = 0; i < read.size(); ++i) ASSERT_TRUE(read[i] == records[i]) << i;
}

}  // namespace
