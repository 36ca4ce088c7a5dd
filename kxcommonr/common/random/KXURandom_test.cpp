// Tests of KXURandom: each mode and its precedence, the one-way switch, copy
// semantics, the binary record and the object stream (exact bytes and text,
// write then read, every refusal leaving the object as it was), the display.
#include "kxcommonr/common/random/KXURandom.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/TestData.h"
#include "kxcommonr/testing/XmlTestSupport.h"

namespace KXCommon {
namespace {

std::vector<double> Draw(KXURandom& u, int n) {
  std::vector<double> out(static_cast<std::size_t>(n));
  for (double& x : out) x = u.GetRandom();
  return out;
}
std::vector<double> TwisterDraws(unsigned long seed, int n) {
  KXRandomTwister t;
  t.Initialize(seed);
  std::vector<double> out(static_cast<std::size_t>(n));
  for (double& x : out) x = t.GetRealOpen();
  return out;
}

struct Constant : KXRandom {
  double GetRandom() override { return 0.25; }
};

std::fstream OpenBinary(const std::string& path, std::ios::openmode mode) {
  return std::fstream(path, mode | std::ios::binary);
}

TEST(KXURandomTest, ModesInOrderOfPrecedence) {
  KXURandom standard;
  EXPECT_TRUE(standard.GetUsePortable() && standard.GetUseTwister());
  EXPECT_EQ(standard.GetRandom(), (2329113618.0 + 0.5) / 4294967296.0);  // published word

  // The portable sequence, computed by testdata/make_random_reference.py.
  std::ifstream reference(
      kxtesting::TestDataPath("kxcommonr/common/random/testdata/random_reference.txt"));
  std::string line;
  while (std::getline(reference, line) && line.rfind("portable ", 0) != 0) {}
  std::istringstream fields(line.substr(9));
  unsigned long seed;
  fields >> seed;
  KXURandom portable(seed, true, false, nullptr);
  EXPECT_FALSE(portable.GetUseTwister());
  EXPECT_EQ(portable.GetTwister(), nullptr);
  int count = 0;
  for (double expected; fields >> expected; ++count) ASSERT_EQ(portable.GetRandom(), expected);
  EXPECT_EQ(count, 100);
  KXURandom one(1, true, false, nullptr);
  EXPECT_EQ(one.GetRandom(), 397204094.0 / 2147483648.0);
  EXPECT_EQ(one.GetSeed(), 397204094u);
  for (const unsigned long stuck : {0ul, 2147483647ul}) {
    KXURandom zero(stuck, true, false, nullptr);
    EXPECT_EQ(Draw(zero, 3), std::vector<double>(3, 0.0));
  }

  // The C library's generator, seeded by SetSeed only, on [0, 1].
  KXURandom crt(5, false, true, nullptr);
  EXPECT_FALSE(crt.GetUseTwister());
  EXPECT_EQ(crt.GetTwister(), nullptr);
  crt.SetSeed(11);
  const std::vector<double> fromCrt = Draw(crt, 50);
  std::srand(11);
  for (const double x : fromCrt) ASSERT_EQ(x, std::rand() / double(RAND_MAX));

  // A caller's generator overrides everything and never gets a twister.
  Constant user;
  KXURandom withUser(5, true, true, &user);
  EXPECT_FALSE(withUser.GetUseTwister());
  EXPECT_EQ(withUser.GetRandom(), 0.25);
  KXURandom crtUser(5, false, false, &user);
  EXPECT_EQ(crtUser.GetRandom(), 0.25);

  // SetSeed reseeds the twister; the portable generator takes the seed as its state.
  standard.SetSeed(4294967296ul * (sizeof(long) > 4) + 99);
  EXPECT_EQ(standard.GetSeed(), 99u);
  EXPECT_EQ(Draw(standard, 700), TwisterDraws(99, 700));
  portable.SetSeed(1);
  EXPECT_EQ(portable.GetRandom(), 397204094.0 / 2147483648.0);

  // One-way: after false then true, the portable generator, not the twister.
  standard.SetUsePortable(false);
  EXPECT_EQ(standard.GetTwister(), nullptr);
  standard.SetUsePortable(true);
  EXPECT_FALSE(standard.GetUseTwister());
  standard.SetSeed(1);
  EXPECT_EQ(standard.GetRandom(), 397204094.0 / 2147483648.0);
}

TEST(KXURandomTest, CopiesRestartTheTwisterFromTheSeed) {
  KXURandom source(2024, true, true, nullptr), assigned(7, true, false, nullptr);
  Draw(source, 1000);
  KXURandom copy(source);
  assigned = source;
  const KXURandom& self = assigned;
  assigned = self;  // self-assignment changes nothing
  EXPECT_EQ(Draw(copy, 700), TwisterDraws(2024, 700));
  EXPECT_EQ(Draw(assigned, 700), TwisterDraws(2024, 700));
  KXURandom portable(5, true, false, nullptr);
  Draw(portable, 3);
  KXURandom portableCopy(portable);
  EXPECT_EQ(Draw(portableCopy, 5), Draw(portable, 5));  // the seed is the whole state
  assigned = portable;
  EXPECT_EQ(assigned.GetTwister(), nullptr);
}

// The 20-byte record, little-endian: tag, seed as a double, two int32 flags.
std::string Record(const char* tag, double seed, std::uint32_t portable, std::uint32_t twister) {
  std::uint64_t bits;
  std::memcpy(&bits, &seed, 8);
  std::string r(tag, 4);
  for (int k = 0; k < 8; ++k) r += char(bits >> (8 * k));
  for (const std::uint32_t flag : {portable, twister}) {
    for (int k = 0; k < 4; ++k) r += char(flag >> (8 * k));
  }
  return r;
}

TEST(KXURandomTest, BinaryRecordWritesThenReadsAllOrNothing) {
  const std::string path = kxtesting::TempFilePath("urandom");
  {
    std::fstream out = OpenBinary(path, std::ios::out);
    EXPECT_EQ(KXURandom(4000000000ul, true, false, nullptr).WriteObject(out), 20);
    EXPECT_EQ(KXURandom().WriteObject(out), 20);
  }
  std::ifstream written(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(written)), {});
  EXPECT_EQ(bytes, Record("KXUR", 4e9, 1, 0) + Record("KXUR", 34567, 1, 1));

  // Reading sets the seed and the flags only: the twister goes on as it was.
  KXURandom target;
  Draw(target, 10);
  std::fstream in = OpenBinary(path, std::ios::in);
  ASSERT_EQ(target.ReadObject(in), 20);
  EXPECT_EQ(target.GetSeed(), 4000000000u);
  EXPECT_FALSE(target.GetUseTwister());
  ASSERT_EQ(target.ReadObject(in), 20);
  const std::vector<double> continued = TwisterDraws(34567, 15);
  EXPECT_EQ(Draw(target, 5), std::vector<double>(continued.begin() + 10, continued.end()));
  EXPECT_EQ(target.ReadObject(in), 0);  // end of file

  // A record that switches the twister on for an object without one: the
  // twister comes on the next draw, seeded from the stored seed.
  KXURandom portable(1, true, false, nullptr);
  std::fstream again = OpenBinary(path, std::ios::in);
  again.seekg(20);
  ASSERT_EQ(portable.ReadObject(again), 20);
  EXPECT_EQ(Draw(portable, 3), TwisterDraws(34567, 3));
  KXURandom reseeded(1, true, false, nullptr);  // ... or on its next SetSeed
  again.seekg(20);
  ASSERT_EQ(reseeded.ReadObject(again), 20);
  reseeded.SetSeed(8);
  EXPECT_EQ(Draw(reseeded, 3), TwisterDraws(8, 3));

  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const std::string& bad : {Record("KXUT", 5, 1, 1), Record("KXUR", -1, 1, 1),
                                 Record("KXUR", 4294967296.0, 1, 1), Record("KXUR", nan, 1, 1),
                                 Record("KXUR", 5, 1, 1).substr(0, 19)}) {
    const std::string file = kxtesting::WriteTempFile("urandom_bad", bad);
    std::fstream badIn = OpenBinary(file, std::ios::in);
    KXURandom unchanged(9, true, false, nullptr);
    EXPECT_EQ(unchanged.ReadObject(badIn), 0);
    EXPECT_EQ(unchanged.GetSeed(), 9u);
    EXPECT_FALSE(unchanged.GetUseTwister());
  }
  const std::string twos = kxtesting::WriteTempFile("urandom_two", Record("KXUR", 8.75, 2, 2));
  std::fstream twosIn = OpenBinary(twos, std::ios::in);
  ASSERT_EQ(target.ReadObject(twosIn), 20);  // a flag is true only when it is 1
  EXPECT_EQ(target.GetSeed(), 8u);
  EXPECT_FALSE(target.GetUsePortable() || target.GetUseTwister());
  std::fstream closed;
  EXPECT_EQ(target.WriteObject(closed), 0);
  EXPECT_EQ(target.ReadObject(closed), 0);
}

TEST(KXURandomTest, ObjectStreamWritesThenReadsAllOrNothing) {
  const std::string path = kxtesting::TempFilePath("urandom_xml");
  {
    std::ofstream out(path);
    EXPECT_EQ(KXURandom(4000000000ul, true, false, nullptr).WriteObjectXML(out, 1), 1);
  }
  std::ifstream written(path);
  const std::string text((std::istreambuf_iterator<char>(written)), {});
  EXPECT_EQ(text,
            "\n\t<Obj name=\"KXURandom\">\n\t\t<Double value=\"4000000000\"/>\n"
            "\t\t<Int value=\"1\"/>\n\t\t<Int value=\"0\"/>\n\t</Obj>");
  KXURandom target;
  std::ifstream in(path);
  ASSERT_EQ(target.ReadObjectXML(in), 1);
  EXPECT_EQ(target.GetSeed(), 4000000000u);
  EXPECT_TRUE(target.GetUsePortable());
  EXPECT_FALSE(target.GetUseTwister());

  const std::string head = "\n<Obj name=\"KXURandom\">\n";
  for (const std::string& bad :
       {head + "<Double value=\"-3\"/>\n<Int value=\"1\"/>\n<Int value=\"1\"/>\n</Obj>",
        head + "<Double value=\"Missing\"/>\n<Int value=\"1\"/>\n<Int value=\"1\"/>\n</Obj>",
        head + "<Double value=\"x\"/>\n<Int value=\"1\"/>\n<Int value=\"1\"/>\n</Obj>",
        head + "<Double value=\"3\"/>\n<Int value=\"1\"/>\n</Obj>",
        head + "<Double value=\"3\"/>\n<Int value=\"1\"/>\n<Int value=\"1\"/>\n",
        std::string("\n<Obj name=\"KXURandomX\">\n")}) {
    const std::string file = kxtesting::WriteTempFile("urandom_bad_xml", bad);
    std::ifstream badIn(file);
    KXURandom unchanged(9, true, false, nullptr);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(unchanged.ReadObjectXML(badIn), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Failure reading KXURandom!\n");
    EXPECT_EQ(unchanged.GetSeed(), 9u);
    EXPECT_FALSE(unchanged.GetUseTwister());
  }
}

TEST(KXURandomTest, Display) {
  kxtesting::DisplayCapture capture;
  KXURandom(4000000000ul, true, false, nullptr).Display();
  EXPECT_EQ(capture.Text(),
            "\nKXURandom display start\nThe seed = 4000000000\nPortable RNG indicator = true"
            "\nMersenne Twister RNG indicator = false\nKXURandom display end");
}

}  // namespace
}  // namespace KXCommon
