// Case-blind comparison: iequals, strcaseequal, strcasestr_n, ci_char_traits.
#include <gtest/gtest.h>

#include <string>

#include "txutil.h"

namespace {

TEST(Iequals, DifferentLengthIsFalse) { EXPECT_FALSE(iequals("ABC", "abcd")); }

TEST(Iequals, IgnoresCase) {
  EXPECT_TRUE(iequals("Crystal", "cRYSTAL"));
  EXPECT_FALSE(iequals("crystal", "crystat"));
}

TEST(Iequals, TwoEmptyTextsAreEqual) { EXPECT_TRUE(iequals("", "")); }

TEST(StrCaseEqual, WholeTextsIgnoreCase) {
  EXPECT_TRUE(strcaseequal("MarCus", "marcus"));
  EXPECT_FALSE(strcaseequal("marcus", "marcu"));
  EXPECT_TRUE(strcaseequal("", ""));
}

TEST(StrCaseEqual, CountBeyondSevenDashesIsFalse) {
  const std::string line = "-------";
  EXPECT_FALSE(strcaseequal(line, "--------", 8));
  EXPECT_FALSE(strcaseequal(line, line, 8));
  EXPECT_TRUE(strcaseequal(line, "--------", 7));
}

TEST(StrCaseEqual, CountComparesOnlyThePrefix) {
  EXPECT_TRUE(strcaseequal("ATOM  1 C", "atom  2 N", 6));
  EXPECT_FALSE(strcaseequal("ATOM  1 C", "atoms 2 N", 6));
}

TEST(StrCaseEqual, CountOfZeroIsTrue) {
  EXPECT_TRUE(strcaseequal("", "", 0));
  EXPECT_TRUE(strcaseequal("abc", "xyz", 0));
}

TEST(StrCaseEqual, CountBeyondTheSecondTextIsFalse) { EXPECT_FALSE(strcaseequal("abcdef", "abc", 4)); }

TEST(StrCaseStrN, ComparesAPrefixNotASearch) {
  EXPECT_EQ(strcasestr_n("Loop_Begin here", "LOOP_", 5), 1);
  EXPECT_EQ(strcasestr_n("xx loop_", "loop_", 5), 0);
}

TEST(StrCaseStrN, CountBelowOneIsAMatch) {
  EXPECT_EQ(strcasestr_n("abc", "xyz", 0), 1);
  EXPECT_EQ(strcasestr_n("abc", "xyz", -3), 1);
}

TEST(StrCaseStrN, ShorterFirstTextIsAMismatchAtItsTerminator) {
  EXPECT_EQ(strcasestr_n("ab", "abc", 3), 0);
  EXPECT_EQ(strcasestr_n("abc", "ab", 3), 0);
}

TEST(StrCaseStrN, TextsEndingTogetherBeforeTheCountMatch) {
  EXPECT_EQ(strcasestr_n("Ab", "aB", 10), 1);
  EXPECT_EQ(strcasestr_n("", "", 4), 1);
}

TEST(CiCharTraits, EqNeLtIgnoreCase) {
  EXPECT_TRUE(ci_char_traits::eq('A', 'a'));
  EXPECT_FALSE(ci_char_traits::eq('A', 'b'));
  EXPECT_TRUE(ci_char_traits::ne('A', 'b'));
  EXPECT_FALSE(ci_char_traits::ne('Z', 'z'));
  EXPECT_TRUE(ci_char_traits::lt('A', 'b'));
  EXPECT_FALSE(ci_char_traits::lt('b', 'A'));
  EXPECT_FALSE(ci_char_traits::lt('a', 'A'));
}

TEST(CiCharTraits, CompareBySmallLetters) {
  EXPECT_EQ(ci_char_traits::compare("ABC", "abc", 3), 0);
  EXPECT_EQ(ci_char_traits::compare("abc", "ABD", 3), -1);
  EXPECT_EQ(ci_char_traits::compare("abd", "ABC", 3), 1);
  // '[' lies between 'Z' and 'a': by small letters 'z' > '['.
  EXPECT_EQ(ci_char_traits::compare("Z", "[", 1), 1);
}

TEST(CiCharTraits, CompareStopsAtTerminators) {
  EXPECT_EQ(ci_char_traits::compare("ab", "abc", 5), -1);
  EXPECT_EQ(ci_char_traits::compare("abc", "ab", 5), 1);
  EXPECT_EQ(ci_char_traits::compare("ab", "AB", 5), 0);
}

TEST(CiCharTraits, CompareOfZeroOrUsedUpCountIsEqual) {
  EXPECT_EQ(ci_char_traits::compare("abc", "xyz", 0), 0);
  EXPECT_EQ(ci_char_traits::compare("abX", "ABy", 2), 0);
}

TEST(CiCharTraits, FindIgnoresCase) {
  const char* s = "Hello";
  EXPECT_EQ(ci_char_traits::find(s, 5, 'L'), s + 2);
  EXPECT_EQ(ci_char_traits::find(s, 5, 'h'), s);
}

TEST(CiCharTraits, FindMissGivesPositionBehindTheLast) {
  const char* s = "Hello";
  EXPECT_EQ(ci_char_traits::find(s, 5, 'z'), s + 5);
  EXPECT_EQ(ci_char_traits::find(s, 2, 'l'), s + 2);
}

TEST(CiCharTraits, FindWithCountBelowOneGivesTheStart) {
  const char* s = "Hello";
  EXPECT_EQ(ci_char_traits::find(s, 0, 'e'), s);
  EXPECT_EQ(ci_char_traits::find(s, -1, 'e'), s);
}

TEST(CiString, EqualityIgnoresCase) {
  ci_string a("Transport");
  ci_string b("TRANSPORT");
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a == ci_string("Transports"));
  EXPECT_LT(ci_string("abc").compare(ci_string("ABD")), 0);
}

TEST(IsAlphabetical, EmptyTextIsFalse) { EXPECT_FALSE(isAlphabetical("")); }

TEST(IsAlphabetical, AllLettersOnly) {
  EXPECT_TRUE(isAlphabetical("Cl"));
  EXPECT_FALSE(isAlphabetical("C1"));
  EXPECT_FALSE(isAlphabetical("C l"));
}

}  // namespace
