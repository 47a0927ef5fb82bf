// The banner operations of the library, called in-process.
#include <gtest/gtest.h>

#include "tavix_output.h"
#include "test_support.h"

TEST(Banners, VersionLineIsExact) {
  EXPECT_EQ(txtest::capture_stdout([] { print_TAVIX_version(); }),
            "TAVIX version 2022B (2.3.4), build on Dec  1 2022\n");
}

TEST(Banners, BuildLineIsExact) {
  EXPECT_EQ(txtest::capture_stdout([] { print_TAVIX_build(); }), "TAVIX build on Dec  1 2022\n");
}

TEST(Banners, TitleLinesEndWithAStarInTheLastColumn) {
  std::string out = txtest::capture_stdout([] { print_TAVIX_title(); });
  size_t pos = 0;
  size_t width = out.find('\n');
  for (int line = 0; line < 4; ++line) {
    size_t end = out.find('\n', pos);
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(end - pos, width);
    EXPECT_EQ(out[end - 1], '*');
    EXPECT_EQ(out[pos], '*');
    pos = end + 1;
  }
  EXPECT_EQ(pos, out.size());
}
