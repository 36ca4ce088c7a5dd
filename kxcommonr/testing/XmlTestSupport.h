// kxcommonr/testing/XmlTestSupport.h
//
// Helpers for tests that write XML: unique temporary files, libxml2's
// xmllint as an independent well-formedness checker (tests GTEST_SKIP when
// xmllint is not on the PATH), and a scoped switch of one locale category.
#ifndef KXCOMMONR_TESTING_XMLTESTSUPPORT_H
#define KXCOMMONR_TESTING_XMLTESTSUPPORT_H

#include <gtest/gtest.h>

#include <atomic>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace kxtesting {

// A path in the test temp directory, unique within this process run; the
// file is removed when the program ends.
inline std::string TempFilePath(const std::string& stem) {
  static std::atomic<int> counter{0};
  static struct Registry {
    std::vector<std::string> paths;
    ~Registry() {
      for (const std::string& path : paths) std::remove(path.c_str());
    }
  } registry;
  std::ostringstream path;
  path << ::testing::TempDir() << "kx_" << stem << "_" << counter++;
#ifndef _WIN32
  path << "_" << static_cast<long>(::getpid());
#endif
  registry.paths.push_back(path.str());
  return path.str();
}

// Writes `bytes` to a new temporary file and returns its path.
inline std::string WriteTempFile(const std::string& stem, const std::string& bytes) {
  const std::string path = TempFilePath(stem);
  std::ofstream out(path, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return path;
}

inline bool XmlLintAvailable() {
  return std::system("command -v xmllint >/dev/null 2>&1") == 0;
}

// Runs `xmllint <options> file` and returns what it printed on standard
// output; `ok` receives whether it exited with status 0.
inline std::string RunXmlLint(const std::string& options, const std::string& path,
                              bool& ok) {
  const std::string outPath = path + ".lint";
  const std::string command =
      "xmllint " + options + " '" + path + "' >'" + outPath + "' 2>/dev/null";
  ok = std::system(command.c_str()) == 0;
  std::ifstream in(outPath, std::ios::binary);
  std::ostringstream printed;
  printed << in.rdbuf();
  in.close();
  std::remove(outPath.c_str());
  return printed.str();
}

// Whether xmllint reads `text` as a well-formed document.
inline bool XmlLintAccepts(const std::string& text) {
  bool ok = false;
  RunXmlLint("--noout", WriteTempFile("lint", text), ok);
  return ok;
}

// Sets one category of the C locale (LC_CTYPE, LC_NUMERIC, ...) for its
// lifetime when `name` is installed (active()), and restores it afterwards.
class LocaleScope {
 public:
  LocaleScope(int category, const char* name)
      : category_(category), saved_(std::setlocale(category, nullptr)) {
    active_ = std::setlocale(category, name) != nullptr;
  }
  ~LocaleScope() { std::setlocale(category_, saved_.c_str()); }
  LocaleScope(const LocaleScope&) = delete;
  LocaleScope& operator=(const LocaleScope&) = delete;
  bool active() const { return active_; }

 private:
  int category_;
  std::string saved_;
  bool active_ = false;
};

}  // namespace kxtesting

#endif  // KXCOMMONR_TESTING_XMLTESTSUPPORT_H
