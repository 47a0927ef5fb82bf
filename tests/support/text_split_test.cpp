// Word splitting: tokenize, split_to_words, split_string, split_string_dl, strhed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "txutil.h"

namespace {

using Words = std::vector<std::string>;

TEST(Tokenize, RunsOfDelimitersGiveNoEmptyWords) {
  Words out;
  EXPECT_EQ(tokenize(out, ",,a,,b,", ","), 1);
  EXPECT_EQ(out, (Words{"a", "b"}));
}

TEST(Tokenize, StringFormCutsTheSame) {
  Words out;
  EXPECT_EQ(tokenize(out, std::string(",,a,,b,"), std::string(",")), 1);
  EXPECT_EQ(out, (Words{"a", "b"}));
}

TEST(Tokenize, AnyCharacterOfTheSetCuts) {
  Words out;
  tokenize(out, "  C1 \t 0.25,0.5\n", " \t,\n");
  EXPECT_EQ(out, (Words{"C1", "0.25", "0.5"}));
}

TEST(Tokenize, ClearsTheListFirst) {
  Words out = {"old"};
  tokenize(out, "x", ",");
  EXPECT_EQ(out, (Words{"x"}));
  tokenize(out, ",,,", ",");
  EXPECT_TRUE(out.empty());
}

TEST(Tokenize, NullTextOrDelimitersReturnZeroAndEmptyList) {
  Words out = {"old"};
  EXPECT_EQ(tokenize(out, nullptr, ","), 0);
  EXPECT_TRUE(out.empty());
  out = {"old"};
  EXPECT_EQ(tokenize(out, "a,b", nullptr), 0);
  EXPECT_TRUE(out.empty());
}

TEST(SplitToWords, CutsAndClears) {
  Words out = {"old"};
  split_to_words(";a;;b c;", "; ", out);
  EXPECT_EQ(out, (Words{"a", "b", "c"}));
}

TEST(SplitString, SplitsAtWhiteSpaceLikeStreamExtraction) {
  EXPECT_EQ(split_string("  a\tbb\n ccc \r\n"), (Words{"a", "bb", "ccc"}));
  EXPECT_TRUE(split_string(" \t\n").empty());
}

TEST(SplitStringDl, DropsEmptyWords) {
  EXPECT_EQ(split_string_dl("a,,b,", ','), (Words{"a", "b"}));
  EXPECT_EQ(split_string_dl(",x y,", ','), (Words{"x y"}));
  EXPECT_TRUE(split_string_dl("", ',').empty());
  EXPECT_TRUE(split_string_dl(",,", ',').empty());
}

TEST(Strhed, CutsTheFirstWordAndTrimsTheRest) {
  char line[] = "  \tkey   some value \t\r\n";
  char* p = line;
  char* word = strhed(&p);
  EXPECT_STREQ(word, "key");
  EXPECT_STREQ(p, "some value");
}

TEST(Strhed, SkipsLeadingLineFeeds) {
  char line[] = "\n\nabc\tdef";
  char* p = line;
  EXPECT_STREQ(strhed(&p), "abc");
  EXPECT_STREQ(p, "def");
}

TEST(Strhed, RestLosesBackspaceToCarriageReturnAtBothEnds) {
  char line[] = "w \b\t\v\f\r rest \b\v\f";
  char* p = line;
  EXPECT_STREQ(strhed(&p), "w");
  EXPECT_STREQ(p, "rest");
}

TEST(Strhed, CarriageReturnDoesNotEndTheWord) {
  char line[] = "ab\rcd ef";
  char* p = line;
  EXPECT_STREQ(strhed(&p), "ab\rcd");
  EXPECT_STREQ(p, "ef");
}

TEST(Strhed, SingleWordLeavesAnEmptyRest) {
  char line[] = "word";
  char* p = line;
  EXPECT_STREQ(strhed(&p), "word");
  EXPECT_STREQ(p, "");
}

TEST(Strhed, EmptyInputGivesThatEmptyText) {
  char line[] = "";
  char* p = line;
  char* word = strhed(&p);
  EXPECT_EQ(word, line);
  EXPECT_STREQ(p, "");
}

TEST(Strhed, RepeatedCallsWalkTheWords) {
  char line[] = "one two  three";
  char* p = line;
  EXPECT_STREQ(strhed(&p), "one");
  EXPECT_STREQ(strhed(&p), "two");
  EXPECT_STREQ(strhed(&p), "three");
  EXPECT_STREQ(strhed(&p), "");
}

}  // namespace
