// libFuzzer target for the readers of the variables and encoders.
//
// Input layout: the first byte chooses the object to read (a categorical,
// continuous or weight variable, or one of the five encoders), the rest is
// the file it reads. A failed read must be a -1 (encoders) or a thrown
// IOException* (variables), nothing else; an encoder read successfully must
// write a text that reads back into a fresh encoder writing the same text
// again. Any broken promise aborts; the sanitizers catch the rest.
//
// Build: cmake --preset fuzz && cmake --build --preset fuzz
// Run:   build/fuzz/kxcommonr/mtd/fuzz/kx_mtd_reader_fuzzer CORPUS_DIR \
//            kxcommonr/mtd/fuzz/corpus
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include <unistd.h>

#include "kxcommonr/mtd/KXBinningEncoder.h"
#include "kxcommonr/mtd/KXCatNumEncoder.h"
#include "kxcommonr/mtd/KXCatVar.h"
#include "kxcommonr/mtd/KXContVar.h"
#include "kxcommonr/mtd/KXRoundEncoder.h"
#include "kxcommonr/mtd/KXStringEncoder.h"
#include "kxcommonr/mtd/KXWeightVar.h"

namespace {

using namespace KXMTD_NAMESPACE;

void Check(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
  }
}

const std::string& ScratchPath() {
  static const std::string path =
      (access("/dev/shm", W_OK) == 0 ? std::string("/dev/shm") : std::string("/tmp")) +
      "/kx_mtd_fuzz_" + std::to_string(static_cast<long>(getpid()));
  return path;
}

// Reads `bytes` into `object`: the read's result, or -2 for a thrown
// IOException*.
template <class Object>
int ReadBytes(Object& object, const std::string& bytes) {
  {
    std::ofstream out(ScratchPath(), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  std::ifstream in(ScratchPath(), std::ios::binary);
  try {
    return object.ReadObjectXML(in);
  } catch (IOException* e) {
    delete e;
    return -2;
  }
}

template <class Object>
std::string Written(const Object& object, int* lines = nullptr) {
  std::ostringstream out;
  const int written = object.WriteObjectXML(out, 0);
  if (lines != nullptr) *lines = written;
  return out.str();
}

// Reads the input into `object` and, when it was read, checks that what it
// writes reads back into `fresh` and writes the same again.
template <class Object>
void Exercise(Object object, Object fresh, const std::string& bytes, bool throws) {
  const int result = ReadBytes(object, bytes);
  if (result == -2 || result == -1) {
    Check((result == -2) == throws, "a failed read reports the way its class promises");
    return;
  }
  Check(result > 0, "a successful read counts its lines");
  // Variables carry names and labels as the object stream carries strings
  // (escaped when written, not decoded when read: "<" comes back as "&lt;",
  // and may no longer fit a line), so only the encoders, whose texts are
  // exact, must write a text that reads back to the very same text.
  if (throws) return;
  // A text may be split differently from the writer's own pieces, so the
  // written count need not be the count read.
  int lines = 0;
  const std::string text = Written(object, &lines);
  Check(ReadBytes(fresh, text) == lines, "what was read writes a text that reads back");
  Check(Written(fresh) == text, "write, read, write gives the same text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  // The readers' messages would flood the fuzzer's own output (which goes
  // to the C stream stderr, not through std::cerr).
  std::cerr.rdbuf(nullptr);
  std::cout.rdbuf(nullptr);
  switch (data[0] % 8) {
    case 0:
      Exercise(KXCatVar("", "", 0, IKXVariable::MeasureUnknown, IKXVariable::RoleInput, false),
               KXCatVar("", "", 0, IKXVariable::MeasureUnknown, IKXVariable::RoleInput, false),
               bytes, true);
      break;
    case 1:
      Exercise(KXContVar("", "", IKXVariable::RoleInput), KXContVar("", "", IKXVariable::RoleInput),
               bytes, true);
      break;
    case 2:
      Exercise(KXWeightVar("", "", IKXVariable::WRoundClosest),
               KXWeightVar("", "", IKXVariable::WRoundClosest), bytes, true);
      break;
    case 3: Exercise(KXCatNumEncoder(), KXCatNumEncoder(), bytes, false); break;
    case 4: Exercise(KXStringEncoder(), KXStringEncoder(), bytes, false); break;
    case 5: Exercise(KXContEncoder(), KXContEncoder(), bytes, false); break;
    case 6: Exercise(KXBinningEncoder(), KXBinningEncoder(), bytes, false); break;
    default: Exercise(KXRoundEncoder(), KXRoundEncoder(), bytes, false); break;
  }
  return 0;
}
