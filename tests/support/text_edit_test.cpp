// Text editing: replacements, path-text fixes, morphNumericString, formatting.
#include <gtest/gtest.h>

#include <string>

#include "txutil.h"

namespace {

TEST(FindAndReplaceAll, ReplacementIsNotScannedAgain) {
  std::string s = "aaa";
  findAndReplaceAll(s, "a", "aa");
  EXPECT_EQ(s, "aaaaaa");
}

TEST(FindAndReplaceAll, ReplacesLeftToRight) {
  std::string s = "abcabc";
  findAndReplaceAll(s, "bc", "");
  EXPECT_EQ(s, "aa");
  std::string t = "aaaa";
  findAndReplaceAll(t, "aa", "b");
  EXPECT_EQ(t, "bb");
  std::string u = "%NAME%/%NAME%.inp";
  findAndReplaceAll(u, "%NAME%", "mol1");
  EXPECT_EQ(u, "mol1/mol1.inp");
}

TEST(FindAndReplaceAll, EmptyPatternLeavesTextAlone) {
  std::string s = "abc";
  findAndReplaceAll(s, "", "x");
  EXPECT_EQ(s, "abc");
}

TEST(RemoveWhiteSpaceUnderscore, DropsBlanksAndUnderscores) {
  EXPECT_EQ(RemoveWhiteSpaceUnderscore(" P 2_1/c _"), "P21/c");
  EXPECT_EQ(RemoveWhiteSpaceUnderscore("a\tb"), "a\tb");
}

TEST(ReplaceSlashWithUnderscore, BothSlashesBecomeUnderscores) {
  char s[] = "a/b\\c";
  ReplaceSlashWithUnderscore(s);
  EXPECT_STREQ(s, "a_b_c");
  std::string t = "/x\\y/";
  ReplaceSlashWithUnderscore(t);
  EXPECT_EQ(t, "_x_y_");
  ReplaceSlashWithUnderscore(static_cast<char*>(nullptr));
}

TEST(ReplaceBackSlashWithSlash, OnlyBackslashesChange) {
  char s[] = "C:\\run\\data/x_y";
  ReplaceBackSlashWithSlash(s);
  EXPECT_STREQ(s, "C:/run/data/x_y");
  ReplaceBackSlashWithSlash(nullptr);
}

TEST(FixMsys2PathDrive, DriveLetterMovesBehindASlash) {
  char s[] = "C:/dir";
  FixMsys2PathDrive(s);
  EXPECT_STREQ(s, "/C/dir");
  std::string t = "d:";
  FixMsys2PathDrive(t);
  EXPECT_EQ(t, "/d");
}

TEST(FixMsys2PathDrive, NoColonAtSecondPlaceChangesNothing) {
  for (const char* text : {"/c/dir", "dir/C:x", "C", "", "ab:c", "\\\\srv\\x"}) {
    std::string expected = text;
    char buf[16];
    std::snprintf(buf, sizeof buf, "%s", text);
    FixMsys2PathDrive(buf);
    EXPECT_EQ(std::string(buf), expected) << text;
    std::string s = text;
    FixMsys2PathDrive(s);
    EXPECT_EQ(s, expected) << text;
  }
  FixMsys2PathDrive(static_cast<char*>(nullptr));
}

struct MorphCase {
  const char* in;
  int digits;
  const char* out;
};

TEST(MorphNumericString, CutsBehindThePointAndDropsTrailingZeros) {
  const MorphCase cases[] = {
      {"3.14159", 2, "3.14"}, {"1.5000", 3, "1.5"},  {"2.000", 2, "2"},      {"12.30", 5, "12.3"},
      {"7.0", 0, "7"},        {"7.9", 0, "7"},       {"10.", 2, "10"},       {"100.000", 1, "100"},
      {"0.001", 2, "0"},      {"-2.50", 4, "-2.5"},  {"1.23e5", 6, "1.23e5"},
  };
  for (const MorphCase& c : cases) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%s", c.in);
    morphNumericString(buf, c.digits);
    EXPECT_STREQ(buf, c.out) << c.in << " digits " << c.digits;
  }
}

TEST(MorphNumericString, TextWithoutPointIsLeftAlone) {
  char s[] = "1000";
  morphNumericString(s, 2);
  EXPECT_STREQ(s, "1000");
  char t[] = "1000";
  morphNumericString(t, -1);
  EXPECT_STREQ(t, "1000");
}

TEST(MorphNumericString, NegativeDigitsAlsoStripZerosOfTheWholePart) {
  char s[] = "100.5";
  morphNumericString(s, -1);
  EXPECT_STREQ(s, "1");
  char t[] = "12.75";
  morphNumericString(t, -3);
  EXPECT_STREQ(t, "12");
}

TEST(MorphNumericString, ZeroStrippingStopsAtTheStartOfTheBuffer) {
  char s[] = "0.5";
  morphNumericString(s, -1);
  EXPECT_STREQ(s, "");
  char t[] = ".5";
  morphNumericString(t, -1);
  EXPECT_STREQ(t, "");
}

TEST(FormatString, FormatsIntoAnExactlySizedText) {
  EXPECT_EQ(format_string("%s_%03d.dat", "track", 7), "track_007.dat");
  EXPECT_EQ(format_string("plain"), "plain");
  std::string long_text(5000, 'x');
  EXPECT_EQ(format_string("[%s]", long_text.c_str()), "[" + long_text + "]");
}

TEST(FormatStringC, ShortText) { EXPECT_EQ(formatString("%d %s %.2f", 42, "mol", 1.25), "42 mol 1.25"); }

TEST(FormatStringC, TextsAroundTheFirstBufferSize) {
  for (size_t len : {1022u, 1023u, 1024u, 1025u, 4096u}) {
    std::string body(len, 'q');
    std::string out = formatString("%s", body.c_str());
    EXPECT_EQ(out.size(), len);
    EXPECT_EQ(out, body);
  }
}

TEST(FormatStringC, EmptyText) { EXPECT_EQ(formatString("%s", ""), ""); }

std::string via_va_list(const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  std::string out = formatStringV(fmt, args);
  va_end(args);
  return out;
}

TEST(FormatStringV, TakesAnArgumentList) {
  std::string big(3000, 'z');
  EXPECT_EQ(via_va_list("%s-%d", big.c_str(), 5), big + "-5");
  EXPECT_EQ(via_va_list("%c%c", 'o', 'k'), "ok");
}

}  // namespace
