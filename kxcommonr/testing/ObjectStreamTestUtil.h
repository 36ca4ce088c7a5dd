// kxcommonr/testing/ObjectStreamTestUtil.h
//
// Helpers for tests of objects that save themselves in the object stream:
// write an object to a temporary file and read it back, and run a read that
// must fail, collecting what it printed and whether it threw.
#ifndef KXCOMMONR_TESTING_OBJECTSTREAMTESTUTIL_H
#define KXCOMMONR_TESTING_OBJECTSTREAMTESTUTIL_H

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "kxcommonr/mtd/IOException.h"
#include "kxcommonr/testing/XmlTestSupport.h"

namespace kxtesting {

// What one read returned or how it failed.
struct ReadOutcome {
  int result = 0;        // the read's return value (when it returned)
  bool threw = false;    // an IOException* was thrown (and deleted)
  std::string errText;   // what the read wrote to standard error
  std::string outText;   // ... and to standard output
};

// Reads `text` from a temporary file into `object` by ReadObjectXML,
// catching an IOException* and the two standard streams.
template <class Object>
ReadOutcome ReadFromText(Object& object, const std::string& text) {
  std::ifstream in(WriteTempFile("object", text), std::ios::binary);
  ReadOutcome outcome;
  ::testing::internal::CaptureStderr();
  ::testing::internal::CaptureStdout();
  try {
    outcome.result = object.ReadObjectXML(in);
  } catch (KXMTD_NAMESPACE::IOException* e) {
    delete e;
    outcome.threw = true;
  }
  outcome.outText = ::testing::internal::GetCapturedStdout();
  outcome.errText = ::testing::internal::GetCapturedStderr();
  return outcome;
}

// The text WriteObjectXML writes for `object` at `indent`; `written`
// receives its result.
template <class Object>
std::string WrittenText(const Object& object, int indent = 0, int* written = nullptr) {
  std::ostringstream out;
  const int result = object.WriteObjectXML(out, indent);
  if (written != nullptr) *written = result;
  return out.str();
}

// Writes `object`, reads the text into `read`, and checks that the read
// succeeds with the count the write returned and that `read` writes the
// same text again (write, read, write: nothing lost or changed).
template <class Object>
void ExpectRoundTrip(const Object& object, Object& read) {
  int written = 0;
  const std::string text = WrittenText(object, 1, &written);
  const ReadOutcome outcome = ReadFromText(read, text);
  EXPECT_FALSE(outcome.threw) << outcome.errText;
  EXPECT_EQ(outcome.result, written);
  EXPECT_EQ(outcome.errText + outcome.outText, "");
  EXPECT_EQ(WrittenText(read, 1), text);
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_OBJECTSTREAMTESTUTIL_H
