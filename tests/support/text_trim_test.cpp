// Trim families: which characters go at which end, and the c_ right-trim quirk.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "txutil.h"

namespace {

TEST(Trim, RemovesLeadingBlanksAndTabAndTrailingCarriageReturnLineFeed) {
  std::string s = "  \tword1 word2\r\n";
  EXPECT_EQ(trim(s), "word1 word2");
  EXPECT_EQ(s, "word1 word2");
}

TEST(Trim, TextOfBlanksBecomesEmpty) {
  std::string s = "     ";
  EXPECT_EQ(trim(s), "");
}

TEST(Trim, EmptyTextStaysEmpty) {
  std::string s;
  EXPECT_EQ(triml(s), "");
  EXPECT_EQ(trimr(s), "");
  EXPECT_EQ(trim(s), "");
}

TEST(Trim, ReturnsItsArgument) {
  std::string s = " a ";
  EXPECT_EQ(&trim(s), &s);
  EXPECT_EQ(&triml(s), &s);
  EXPECT_EQ(&trimr(s), &s);
}

TEST(Trim, LeftTrimKeepsLeadingLineEnds) {
  std::string s = "\r\n a";
  EXPECT_EQ(triml(s), "\r\n a");
  std::string t = " \t a \t";
  EXPECT_EQ(triml(t), "a \t");
}

TEST(Trim, RightTrimRemovesAllOfItsSet) {
  std::string s = "a \t\r\n \n";
  EXPECT_EQ(trimr(s), "a");
  std::string only = "\r\n\t \n";
  EXPECT_EQ(trimr(only), "");
}

TEST(Trim, LineEndBeforeWordsSurvivesTrim) {
  std::string s = "\n  ab  ";
  EXPECT_EQ(trim(s), "\n  ab");
}

TEST(CTrim, SingleBlankIsEmptiedByTheLeftTrim) {
  char s[] = " ";
  EXPECT_STREQ(c_trim(s), "");
}

TEST(CTrim, SingleLineFeedStays) {
  char s[] = "\n";
  EXPECT_STREQ(c_trim(s), "\n");
}

TEST(CTrim, RightTrimNeverRemovesTheFirstCharacter) {
  char two_blanks[] = "  ";
  EXPECT_STREQ(c_trimr(two_blanks), " ");
  char cr[] = "\r\r\n";
  EXPECT_STREQ(c_trimr(cr), "\r");
}

TEST(CTrim, TrimsBothEndsInPlace) {
  char s[] = " \t key = value \t\r\n";
  char* r = c_trim(s);
  EXPECT_EQ(r, s);
  EXPECT_STREQ(s, "key = value");
}

TEST(CTrim, LeftTrimMovesTextToTheStart) {
  char s[] = "\t\t  abc ";
  c_triml(s);
  EXPECT_STREQ(s, "abc ");
}

TEST(CTrim, NullPointerIsIgnored) {
  EXPECT_EQ(c_triml(nullptr), nullptr);
  EXPECT_EQ(c_trimr(nullptr), nullptr);
  EXPECT_EQ(c_trim(nullptr), nullptr);
}

TEST(CTrim, EmptyTextStaysEmpty) {
  char s[] = "";
  EXPECT_STREQ(c_trim(s), "");
}

TEST(SgTrim, QuotedTextWithBlanksLosesQuotesAndAllBlanks) {
  std::string single = "'P 21/c'";
  EXPECT_EQ(sg_trim(single), "P21/c");
  std::string dbl = " \t\"P 21 21 21\" \r\n";
  EXPECT_EQ(sg_trim(dbl), "P212121");
}

TEST(SgTrim, InnerTabsAreKept) {
  std::string s = "'P\t1'";
  EXPECT_EQ(sg_trim(s), "P\t1");
}

TEST(SgTrim, LeftAndRightSets) {
  std::string left = "\"' \tP-1 '\r\n";
  EXPECT_EQ(sg_triml(left), "P-1 '\r\n");
  std::string right = "\r\nP-1\"' \t\r\n";
  EXPECT_EQ(sg_trimr(right), "\r\nP-1");
  std::string quotes = "''\"\"";
  EXPECT_EQ(sg_trim(quotes), "");
}

}  // namespace
