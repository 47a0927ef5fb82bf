// The fatal report: position line, message, and the one exit path.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "test_support.h"
#include "txutil.h"

namespace {
struct ExitIntercepted {
  int status;
};
void throwing_handler(int status) { throw ExitIntercepted{status}; }
}  // namespace

TEST(FatalReport, HeadNamesUnitAndLine) {
  std::string out = txtest::capture_stdout([] { fatal_report_head(txunit::fileio, 42); });
  EXPECT_EQ(out, "\nERROR  transport : fileio : line 42 : \n");
}

TEST(FatalReport, AHarnessCanInterceptTheExit) {
  tx_exit_handler previous = set_tx_exit_handler(throwing_handler);
  int seen = 0;
  std::string out = txtest::capture_stdout([&] {
    try {
      TX_FATAL(txunit::txutil, 3, stdout, "message %d\n", 7);
    } catch (const ExitIntercepted& e) {
      seen = e.status;
    }
  });
  set_tx_exit_handler(previous);
  EXPECT_EQ(seen, 3);
  EXPECT_NE(out.find("\nERROR  transport : txutil : line "), std::string::npos);
  EXPECT_NE(out.find(" : \nmessage 7\n"), std::string::npos);
}

TEST(FatalReportDeathTest, ExitsWithTheGivenStatus) {
  EXPECT_EXIT(TX_FATAL(txunit::tavix_inp, -1, stderr, "bad %s\n", "thing"), ::testing::ExitedWithCode(255),
              "^bad thing\n$");
  EXPECT_EXIT(TX_FATAL(txunit::tavix_inp, 1, stderr, "x\n"), ::testing::ExitedWithCode(1), "x");
}
