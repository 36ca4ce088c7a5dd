// kxcommonr/testing/TestData.h
//
// Where the tests find the data files checked into the repository.
#ifndef KXCOMMONR_TESTING_TESTDATA_H
#define KXCOMMONR_TESTING_TESTDATA_H

#include <string>

namespace kxtesting {

// Absolute path of a file given relative to the repository root, for
// example TestDataPath("examples/data/Longley.csv").
inline std::string TestDataPath(const std::string& relative) {
  return std::string(KX_TEST_DATA_DIR) + "/" + relative;
}

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_TESTDATA_H
