#include "kxcommonr/xml/internal/KXTokenizer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using KXXML_NAMESPACE::detail::KXTokenizer;

// The tokens of `calls` calls over `text`, the i-th with delimiters[i % 3],
// from strtok (the C library's tokenizer, the reference) or from ours.
std::vector<std::string> Tokens(std::string text, const std::string (&delimiters)[3], int calls,
                                bool useStrtok) {
  std::vector<std::string> tokens;
  KXTokenizer tokenizer(&text[0]);
  for (int i = 0; i < calls; ++i) {
    const char* set = delimiters[i % 3].c_str();
    const char* token =
        useStrtok ? std::strtok(i == 0 ? &text[0] : nullptr, set) : tokenizer.Next(set);
    tokens.push_back(token == nullptr ? "<null>" : token);
  }
  return tokens;
}

TEST(KXTokenizerTest, SplitsExactlyAsStrtokWithChangingDelimiterSets) {
  std::mt19937 rng(20261122);
  const std::string alphabet = " \t\r\n<>=\"/abcXY";
  for (int trial = 0; trial < 20000; ++trial) {
    std::string text, delimiters[3];
    for (int i = rng() % 25; i > 0; --i) text += alphabet[rng() % alphabet.size()];
    for (std::string& set : delimiters) {
      for (int i = rng() % 5; i > 0; --i) set += alphabet[rng() % alphabet.size()];
    }
    const int calls = 1 + rng() % 8;
    ASSERT_EQ(Tokens(text, delimiters, calls, false), Tokens(text, delimiters, calls, true))
        << "text [" << text << "] sets [" << delimiters[0] << "] [" << delimiters[1] << "] ["
        << delimiters[2] << "]";
  }
}

TEST(KXTokenizerTest, TokenizersOverDifferentBuffersDoNotInterfere) {
  char first[] = "a b c", second[] = "x,y";
  KXTokenizer left(first), right(second), none(nullptr);
  std::string interleaved;
  for (int i = 0; i < 4; ++i) {
    for (const char* token : {left.Next(" "), right.Next(","), none.Next(" ")}) {
      interleaved += token == nullptr ? "-" : token;
    }
  }
  EXPECT_EQ(interleaved, "ax-by-c-----");  // exhausted tokenizers stay exhausted
}

}  // namespace
