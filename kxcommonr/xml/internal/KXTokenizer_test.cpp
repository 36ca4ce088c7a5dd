#include "kxcommonr/xml/internal/KXTokenizer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using KXXML_NAMESPACE::detail::KXTokenizer;

// The tokens strtok produces for `text`, the i-th call using delimiters[i %
// size]; the C library's own tokenizer is the reference.
std::vector<std::string> StrtokTokens(std::string text,
                                      const std::vector<std::string>& delimiters,
                                      int calls) {
  std::vector<std::string> tokens;
  char* start = &text[0];
  for (int i = 0; i < calls; ++i) {
    const char* token = std::strtok(i == 0 ? start : nullptr,
                                    delimiters[i % delimiters.size()].c_str());
    tokens.push_back(token == nullptr ? "<null>" : token);
  }
  return tokens;
}

std::vector<std::string> OurTokens(std::string text,
                                   const std::vector<std::string>& delimiters,
                                   int calls) {
  std::vector<std::string> tokens;
  KXTokenizer tokenizer(&text[0]);
  for (int i = 0; i < calls; ++i) {
    const char* token = tokenizer.Next(delimiters[i % delimiters.size()].c_str());
    tokens.push_back(token == nullptr ? "<null>" : token);
  }
  return tokens;
}

TEST(KXTokenizerTest, SplitsExactlyAsStrtokWithChangingDelimiterSets) {
  std::mt19937 rng(20261122);
  const std::string alphabet = " \t\r\n<>=\"/abcXY";
  std::uniform_int_distribution<int> pick(0, static_cast<int>(alphabet.size()) - 1);
  std::uniform_int_distribution<int> length(0, 24);
  for (int trial = 0; trial < 20000; ++trial) {
    std::string text;
    for (int i = length(rng); i > 0; --i) text += alphabet[pick(rng)];
    std::vector<std::string> delimiters(3);
    for (std::string& set : delimiters) {
      for (int i = length(rng) % 5; i > 0; --i) set += alphabet[pick(rng)];
    }
    const int calls = 1 + length(rng) % 8;
    ASSERT_EQ(OurTokens(text, delimiters, calls), StrtokTokens(text, delimiters, calls))
        << "text [" << text << "] sets [" << delimiters[0] << "] [" << delimiters[1]
        << "] [" << delimiters[2] << "]";
  }
}

TEST(KXTokenizerTest, TokenizersOverDifferentBuffersDoNotInterfere) {
  char first[] = "a b c";
  char second[] = "x,y";
  KXTokenizer left(first);
  KXTokenizer right(second);
  EXPECT_STREQ(left.Next(" "), "a");
  EXPECT_STREQ(right.Next(","), "x");
  EXPECT_STREQ(left.Next(" "), "b");
  EXPECT_STREQ(right.Next(","), "y");
  EXPECT_STREQ(left.Next(" "), "c");
  EXPECT_EQ(right.Next(","), nullptr);
  EXPECT_EQ(left.Next(" "), nullptr);
  KXTokenizer none(nullptr);
  EXPECT_EQ(none.Next(" "), nullptr);
}

}  // namespace
