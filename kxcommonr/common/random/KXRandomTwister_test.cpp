// Tests of the Mersenne Twister: the published vectors and std::mt19937, the
// block kernels and bulk fills on every instruction set the processor runs,
// the full-state records (write then read, every refusal all or nothing),
// and the jump against stepping and against CPython's generator
// (testdata/make_twister_jump.py).
#include "kxcommonr/common/random/KXRandomTwister.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/random/internal/KXRandomAccess.h"
#include "kxcommonr/common/random/internal/KXTwisterKernels.h"
#include "kxcommonr/testing/TestData.h"
#include "kxcommonr/testing/XmlTestSupport.h"

namespace KXCommon {
namespace {

using Words = std::vector<std::uint32_t>;
using internal::TwisterAccess;

Words Draw(KXRandomTwister& t, int n) {
  Words w(static_cast<std::size_t>(n));
  for (auto& x : w) x = t.GetInteger32();
  return w;
}

// The lines of a reference file without its comments.
std::vector<std::string> DataLines(const std::string& path) {
  std::ifstream in(kxtesting::TestDataPath(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line[0] != '#') lines.push_back(line);
  }
  return lines;
}
Words ParseWords(std::istringstream& line) {
  Words w;
  for (std::uint32_t x; line >> x;) w.push_back(x);
  return w;
}

// A generator at each kind of position: never seeded (625), seeded with the
// block used up (624), after 1, 301 and 623 draws, and jumped (0).
std::vector<KXRandomTwister> Positions() {
  std::vector<KXRandomTwister> out(6);
  out[1].Initialize(77);
  for (int k = 2; k <= 4; ++k) {
    out[k] = out[1];
    Draw(out[k], k == 2 ? 1 : k == 3 ? 301 : 623);
  }
  out[5] = out[1];
  out[5].Jump();
  return out;
}

TEST(KXRandomTwisterTest, PublishedVectorsAndStdMt19937) {
  const auto lines = DataLines("kxcommonr/common/random/testdata/mt19937_vectors.txt");
  ASSERT_EQ(lines.size(), 4u);
  KXRandomTwister fresh, seeded, array;
  seeded.Initialize(34567);
  unsigned long key[] = {0x123, 0x234, 0x345, 0x456};
  ASSERT_TRUE(array.InitByArray(key, 4));
  std::istringstream l0(lines[0]), l1(lines[1]), l2(lines[2]), l3(lines[3]);
  EXPECT_EQ(Draw(fresh, 20), ParseWords(l0));
  EXPECT_EQ(Draw(seeded, 20), ParseWords(l1));
  EXPECT_EQ(Draw(array, 20), ParseWords(l2));
  Draw(array, 980);
  EXPECT_EQ(Draw(array, 5), ParseWords(l3));

  // Seeds keep their low 32 bits, whatever the width of long.
  for (const unsigned long seed : {0ul, 1ul, 4294967295ul, (1ul << 31) + 7}) {
    KXRandomTwister t;
    t.Initialize(seed + (sizeof(long) > 4 ? (1ul << 31) * 4 : 0));
    std::mt19937 reference(static_cast<std::uint32_t>(seed));
    for (int i = 0; i < 3000; ++i) ASSERT_EQ(t.GetInteger32(), reference()) << seed << " " << i;
  }
  KXRandomTwister untouched = seeded;
  EXPECT_FALSE(seeded.InitByArray(nullptr, 4));
  EXPECT_FALSE(seeded.InitByArray(key, 0));
  EXPECT_EQ(Draw(seeded, 700), Draw(untouched, 700));
}

TEST(KXRandomTwisterTest, RealsFollowTheirWords) {
  KXRandomTwister t, words;
  for (int i = 0; i < 2000; ++i) {
    const double w = words.GetInteger32();
    const double w2 = (i % 5 == 4) ? words.GetInteger32() : 0.0;
    switch (i % 5) {
      case 0: ASSERT_EQ(t.GetInteger31(), static_cast<long>(w) / 2); break;
      case 1: ASSERT_EQ(t.GetRealClosed(), w / 4294967295.0); break;
      case 2: ASSERT_EQ(t.GetRealClosedOpen(), std::ldexp(w, -32)); break;
      case 3: ASSERT_EQ(t.GetRealOpen(), std::ldexp(w + 0.5, -32)); break;
      default:
        ASSERT_EQ(t.GetRealRes53(), std::ldexp(std::floor(w / 32) * 67108864.0 + std::floor(w2 / 64), -53));
    }
  }
}

// Each instruction-set path: the block kernel against the reference loop on
// random blocks, and the fills, from every kind of position and across
// block ends, against single draws of a copy, which must then stand where
// the filled generator stands.
TEST(KXRandomTwisterTest, BlocksAndFillsEqualSingleDrawsOnEveryPath) {
  std::mt19937 rng(5);
  const int top = internal::SetKernelLevel(-1);
  for (int level = 0; level <= top; ++level) {
    ASSERT_EQ(internal::SetKernelLevel(level), level);
    for (int trial = 0; trial < 20; ++trial) {
      Words block(624), plain;
      for (auto& w : block) w = static_cast<std::uint32_t>(rng());
      plain = block;
      internal::TwisterRegenerate(block.data());
      internal::TwisterRegeneratePlain(plain.data());
      ASSERT_EQ(block, plain) << "level " << level;
    }
    for (KXRandomTwister& start : Positions()) {
      for (const std::size_t n : {0, 1, 15, 17, 323, 624, 625, 2000}) {
        KXRandomTwister filled = start, stepped = start, realFilled = start;
        Words out(n + 1, 7u), expected(n + 1, 7u);
        std::vector<double> reals(n + 1, 7.0), expectedReals(n + 1, 7.0);
        ASSERT_TRUE(filled.FillInteger32(out.data(), n));
        ASSERT_TRUE(realFilled.FillRealOpen(reals.data(), n));
        for (std::size_t i = 0; i < n; ++i) {
          expected[i] = stepped.GetInteger32();
          expectedReals[i] = internal::TwisterRealOpen(expected[i]);
        }
        ASSERT_EQ(out, expected) << "level " << level << " n " << n;
        ASSERT_EQ(reals, expectedReals) << "level " << level << " n " << n;
        const Words after = Draw(stepped, 630);
        ASSERT_EQ(Draw(filled, 630), after);
        ASSERT_EQ(Draw(realFilled, 630), after);
      }
    }
  }
  internal::SetKernelLevel(-1);
  KXRandomTwister t;
  EXPECT_FALSE(t.FillInteger32(nullptr, 3));
  EXPECT_FALSE(t.FillRealOpen(nullptr, 3));
  EXPECT_TRUE(t.FillInteger32(nullptr, 0));
}

// The binary record: the bytes as documented, written then read from every
// kind of position (the reader resumes mid-stream), and each corruption
// refused with the generator unchanged. The object stream likewise.
TEST(KXRandomTwisterTest, StateRecordsResumeAndRefuseAllOrNothing) {
  for (KXRandomTwister& source : Positions()) {
    std::stringstream binary;
    ASSERT_EQ(source.WriteState(binary), KXRandomTwister::kStateRecordBytes);
    const std::string bytes = binary.str();
    ASSERT_EQ(bytes.size(), 2508u);
    EXPECT_EQ(bytes.substr(0, 8), std::string("KXMT\x01\0\0\0", 8));
    const std::int32_t index = TwisterAccess::Index(source);
    EXPECT_EQ(bytes.substr(8, 4), std::string({char(index), char(index >> 8), 0, 0}));
    const std::uint32_t w623 = TwisterAccess::Words(source)[623];
    EXPECT_EQ(bytes.substr(2504), std::string({char(w623), char(w623 >> 8), char(w623 >> 16),
                                               char(w623 >> 24)}));
    const std::string path = kxtesting::TempFilePath("twister");
    {
      std::ofstream xml(path);
      ASSERT_EQ(source.WriteStateXML(xml, 1), 1);
    }
    KXRandomTwister fromBinary, fromXml;
    fromBinary.Initialize(1);
    ASSERT_EQ(fromBinary.ReadState(binary), KXRandomTwister::kStateRecordBytes);
    std::ifstream xml(path);
    ASSERT_EQ(fromXml.ReadStateXML(xml), 1);
    const Words expected = Draw(source, 1300);
    EXPECT_EQ(Draw(fromBinary, 1300), expected);
    EXPECT_EQ(Draw(fromXml, 1300), expected);
  }

  KXRandomTwister valid;
  valid.Initialize(3);
  std::stringstream record;
  valid.WriteState(record);
  auto patched = [&](std::size_t at, std::string bytes) {
    std::string r = record.str();
    return r.replace(at, bytes.size(), bytes);
  };
  std::string zeros = record.str();  // the upper bit of word 0 and words 1..623 clear
  for (std::size_t at = 12; at < zeros.size(); ++at) zeros[at] = at == 12 ? '\x7f' : '\0';
  for (const std::string& bad :
       {patched(0, "KXMU"), patched(4, std::string("\x02", 1)), patched(8, std::string("\x72\x02", 2)),
        patched(8, "\xff\xff\xff\xff"), zeros, record.str().substr(0, 2507)}) {
    KXRandomTwister target = valid, untouched = valid;
    std::stringstream in(bad);
    EXPECT_EQ(target.ReadState(in), 0);
    EXPECT_EQ(Draw(target, 700), Draw(untouched, 700));
  }
  const std::string path = kxtesting::TempFilePath("twister_bad");
  std::ofstream(path) << "\n<Obj name=\"KXRandomTwister\">\n\t<Int value=\"1\"/>\n\t<Int value=\"626\"/>\n";
  KXRandomTwister target = valid, untouched = valid;
  std::ifstream in(path);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(target.ReadStateXML(in), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Failure reading KXRandomTwister!\n");
  EXPECT_EQ(Draw(target, 700), Draw(untouched, 700));
}

// Jumps by t^(N-1) for N up to 19937 need no reduction: from every kind of
// position they must equal N single draws. The reduced polynomial for
// N = 100003 comes from the reference file, as do the outputs 2^128 and
// 2^129 words ahead, computed from CPython's generator.
TEST(KXRandomTwisterTest, JumpsEqualSteppingAndTheIndependentReference) {
  for (const int n : {1, 2, 397, 624, 625, 1249, 19937}) {
    Words q(624, 0u);
    q[(n - 1) / 32] = 1u << ((n - 1) % 32);
    for (KXRandomTwister& start : Positions()) {
      KXRandomTwister jumped = start;
      if (TwisterAccess::Index(jumped) == 625) jumped.Initialize(5489);
      internal::TwisterJump(TwisterAccess::Words(jumped), TwisterAccess::Index(jumped), q.data(), 624);
      Draw(start, n);
      ASSERT_EQ(Draw(jumped, 1300), Draw(start, 1300)) << n;
    }
  }
  const auto lines = DataLines("kxcommonr/common/random/testdata/twister_jump_reference.txt");
  ASSERT_EQ(lines.size(), 9u);
  std::istringstream poly(lines[0]);
  std::string kind;
  int n = 0;
  poly >> kind >> n;
  const Words q = ParseWords(poly);
  ASSERT_EQ(q.size(), 624u);
  KXRandomTwister jumped, stepped;
  jumped.Initialize(5489);
  internal::TwisterJump(TwisterAccess::Words(jumped), TwisterAccess::Index(jumped), q.data(), 624);
  Draw(stepped, n);
  EXPECT_EQ(Draw(jumped, 1300), Draw(stepped, 1300));
  for (std::size_t k = 1; k < lines.size(); ++k) {
    std::istringstream line(lines[k]);
    unsigned long seed = 0;
    int predraw = 0, jumps = 0;
    line >> kind >> seed >> predraw >> jumps;
    KXRandomTwister t;
    t.Initialize(seed);
    Draw(t, predraw);
    for (int j = 0; j < jumps; ++j) t.Jump();
    EXPECT_EQ(Draw(t, 8), ParseWords(line)) << lines[k].substr(0, 20);
  }
}

}  // namespace
}  // namespace KXCommon
