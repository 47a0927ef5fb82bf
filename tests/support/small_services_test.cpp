// Small services: OS names, dates, randomString, intN, FNW_hash.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "test_support.h"
#include "txutil.h"

namespace {

TEST(OsNames, ConstantTexts) {
  EXPECT_STREQ(get_OS_str(), "Linux");
  EXPECT_STREQ(get_OS_sub_str(), "linux");
}

TEST(GetDate, LocalDateWithMonthFromOneAndFullYear) {
  int month = 0, day = 0, year = 0;
  for (int attempt = 0; attempt < 3; ++attempt) {
    std::time_t before = std::time(nullptr);
    int returned = get_date(&month, &day, &year);
    std::time_t after = std::time(nullptr);
    if (before != after) continue;  // a second boundary passed; try again
    std::tm expected = *std::localtime(&before);
    EXPECT_EQ(month, expected.tm_mon + 1);
    EXPECT_EQ(day, expected.tm_mday);
    EXPECT_EQ(year, expected.tm_year + 1900);
    EXPECT_EQ(returned, year);
    EXPECT_GE(year, 2022);
    return;
  }
  FAIL() << "clock kept crossing second boundaries";
}

// The expected text is built from strftime fields, apart from the day, which
// stands without padding.
std::string expected_now_text(std::time_t t) {
  std::tm parts = *std::localtime(&t);
  char names[16];
  std::strftime(names, sizeof names, "%a %b", &parts);
  char clock[32];
  std::strftime(clock, sizeof clock, "%H:%M:%S %Y", &parts);
  return std::string(names) + " " + std::to_string(parts.tm_mday) + " " + clock;
}

TEST(GetNowDateTime, WeekdayMonthDayClockYear) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    char buf[64];
    std::time_t before = std::time(nullptr);
    get_now_date_time(buf);
    std::string from_static = get_now_date_time();
    std::time_t after = std::time(nullptr);
    if (before != after) continue;
    EXPECT_EQ(std::string(buf), expected_now_text(before));
    EXPECT_EQ(from_static, expected_now_text(before));
    return;
  }
  FAIL() << "clock kept crossing second boundaries";
}

TEST(GetNowDateTime, ReferenceTextOfAHandWrittenDate) {
  // 2022-12-01 09:05:03 in the zone set here is a Thursday.
  const char* old_tz = std::getenv("TZ");
  std::string saved = old_tz ? old_tz : "";
  setenv("TZ", "UTC", 1);
  tzset();
  std::tm when{};
  when.tm_year = 122;
  when.tm_mon = 11;
  when.tm_mday = 1;
  when.tm_hour = 9;
  when.tm_min = 5;
  when.tm_sec = 3;
  std::time_t t = timegm(&when);
  std::string text = expected_now_text(t);
  if (old_tz)
    setenv("TZ", saved.c_str(), 1);
  else
    unsetenv("TZ");
  tzset();
  EXPECT_EQ(text, "Thu Dec 1 09:05:03 2022");
}

TEST(GetNowDateTime, NoArgumentFormReusesOneStaticBuffer) {
  char* first = get_now_date_time();
  char* second = get_now_date_time();
  EXPECT_EQ(first, second);
}

bool all_in_charset(const char* s) {
  return std::strspn(s, "abcdefghijklmnopqrstuvwxyz0123456789") == std::strlen(s);
}

TEST(RandomString, GivesNCharactersOfTheCharset) {
  std::string s = randomString(12);
  EXPECT_EQ(s.size(), 12u);
  EXPECT_TRUE(all_in_charset(s.c_str()));
  EXPECT_STREQ(randomString(0), "");
}

TEST(RandomString, DrawsByRandModuloThirtySix) {
  randomString(1);  // the first call seeds; later calls must not seed again
  std::srand(12345);
  std::string expected;
  const char* charset = "abcdefghijklmnopqrstuvwxyz0123456789";
  for (int i = 0; i < 40; ++i) expected += charset[std::rand() % 36];
  std::srand(12345);
  EXPECT_EQ(std::string(randomString(40)), expected);
}

TEST(RandomString, ReturnsTheSameStaticBuffer) {
  char* a = randomString(3);
  char* b = randomString(5);
  EXPECT_EQ(a, b);
  EXPECT_EQ(std::strlen(b), 5u);
}

TEST(RandomString, LengthOfTheBufferOrMoreIsClampedTo255) {
  EXPECT_EQ(std::strlen(randomString(255)), 255u);
  EXPECT_EQ(std::strlen(randomString(256)), 255u);
  char* s = randomString(100000);
  EXPECT_EQ(std::strlen(s), 255u);
  EXPECT_TRUE(all_in_charset(s));
}

TEST(RandomString, NegativeLengthGivesEmptyText) { EXPECT_STREQ(randomString(-4), ""); }

TEST(IntN, DrawsRandModuloN) {
  std::srand(777);
  int expected[20];
  for (int& e : expected) e = std::rand() % 7;
  std::srand(777);
  for (int e : expected) EXPECT_EQ(intN(7), e);
  EXPECT_EQ(intN(1), 0);
}

TEST(IntNDeathTest, EmptyRangeIsFatal) {
  EXPECT_EXIT(
      {
        std::fflush(stdout);
        dup2(2, 1);
        intN(0);
      },
      ::testing::ExitedWithCode(1),
      "^\nERROR  transport : txutil : line [0-9]+ : \nintN: cannot draw from an empty range \\(n = 0\\)\n$");
}

TEST(IntN, EmptyRangeReportHeadOnStandardOutputMessageOnStandardError) {
  txtest::RunResult r = txtest::run_forked([] { intN(0); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : txutil : line # : \n");
  EXPECT_EQ(r.err, "intN: cannot draw from an empty range (n = 0)\n");
}

// Expected values from python3:
//   s = 0x811c9dc5
//   for c in text: s = (s * 16777619) % 2**64; s ^= (c - 256 if c > 127 else c) % 2**64
TEST(FnwHash, EmptyTextYieldsTheBasis) {
  EXPECT_EQ(FNW_hash(""), 0x811c9dc5u);
  EXPECT_EQ(FNW_hash(std::string()), 0x811c9dc5u);
}

TEST(FnwHash, KnownTexts) {
  EXPECT_EQ(FNW_hash("a"), 0x811d69050c5d7eull);
  EXPECT_EQ(FNW_hash("ab"), 0x344658b070772d38ull);
  EXPECT_EQ(FNW_hash("foobar"), 0x130a8bed31f0b262ull);
  EXPECT_EQ(FNW_hash(std::string("tavix")), 0xd06513d877005f39ull);
}

TEST(FnwHash, IsNotCutToThirtyTwoBits) {
  // The published 32-bit FNV-1 of "a" is 0x050c5d7e; here the upper bits stay.
  EXPECT_NE(FNW_hash("a"), 0x050c5d7eull);
  EXPECT_EQ(FNW_hash("a") & 0xffffffffull, 0x050c5d7eull);
}

TEST(FnwHash, BytesAbove127AreSignExtended) {
  EXPECT_EQ(FNW_hash("\xe9t\xe9"), 0xfaba1381387cffebull);
}

}  // namespace
