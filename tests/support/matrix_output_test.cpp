// Matrix and vector tables: exact layout and the open failure.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "test_support.h"
#include "txutil.h"

namespace {

using txtest::read_file;
using txtest::TempDir;

std::string blanks(size_t n) { return std::string(n, ' '); }

TEST(OutputMatrix, BlocksOfColumnsNumberedFromZero) {
  TempDir dir;
  double r0[] = {1.0, -2.5, 0.125};
  double r1[] = {3.0, 4.0, 5.0};
  double r2[] = {0.0, 1e-9, -1e-9};
  double* m[] = {r0, r1, r2};
  output_matrix(m, 3, 2, "m.dat");
  // Worked out by hand: "%8s" of "" is 8 blanks, "%13d" right-aligns in 13,
  // "%7d    " is the row number in 7 and four blanks, "%13.8f" has 8 decimals.
  std::string expected =
      blanks(8) + blanks(12) + "0" + blanks(12) + "1\n" +
      blanks(6) + "0    " + "   1.00000000" + "  -2.50000000\n" +
      blanks(6) + "1    " + "   3.00000000" + "   4.00000000\n" +
      blanks(6) + "2    " + "   0.00000000" + "   0.00000000\n" +
      blanks(8) + blanks(12) + "2\n" +
      blanks(6) + "0    " + "   0.12500000\n" +
      blanks(6) + "1    " + "   5.00000000\n" +
      blanks(6) + "2    " + "  -0.00000000\n";
  EXPECT_EQ(read_file("m.dat"), expected);
}

TEST(OutputMatrix, WideBlockHoldsAllColumns) {
  TempDir dir;
  double r0[] = {1.0, 2.0};
  double r1[] = {3.0, 4.0};
  double* m[] = {r0, r1};
  output_matrix(m, 2, 5, "m.dat");
  std::string expected = blanks(20) + "0" + blanks(12) + "1\n" +
                         "      0       1.00000000   2.00000000\n" +
                         "      1       3.00000000   4.00000000\n";
  EXPECT_EQ(read_file("m.dat"), expected);
}

TEST(OutputMatrix, ColumnCountBelowOneWritesOneBlock) {
  TempDir dir;
  double r0[] = {1.0, 2.0};
  double r1[] = {3.0, 4.0};
  double* m[] = {r0, r1};
  output_matrix(m, 2, 0, "zero.dat");
  output_matrix(m, 2, 2, "two.dat");
  EXPECT_EQ(read_file("zero.dat"), read_file("two.dat"));
}

TEST(OutputVector, NewLineAfterEveryPerLineValuesAndAtTheEnd) {
  TempDir dir;
  double v[] = {1.5, -2.25, 1234.5, 1e-10, 0.0};
  output_vector(v, 5, 2, "v.dat");
  EXPECT_EQ(read_file("v.dat"),
            " 1.5000000e+00-2.2500000e+00\n"
            " 1.2345000e+03 1.0000000e-10\n"
            " 0.0000000e+00\n");
}

TEST(OutputVector, FullLastLineIsFollowedByAnEmptyLine) {
  TempDir dir;
  double v[] = {1.0, 2.0, 3.0, 4.0};
  output_vector(v, 4, 2, "v.dat");
  EXPECT_EQ(read_file("v.dat"),
            " 1.0000000e+00 2.0000000e+00\n"
            " 3.0000000e+00 4.0000000e+00\n"
            "\n");
}

TEST(OutputVector, PerLineBelowOneWritesOneLine) {
  TempDir dir;
  double v[] = {1.0, 2.0};
  output_vector(v, 2, 0, "v.dat");
  EXPECT_EQ(read_file("v.dat"), " 1.0000000e+00 2.0000000e+00\n");
}

TEST(OutputVvector, PrintsSizesAndWritesOneLinePerRow) {
  TempDir dir;
  std::vector<std::vector<double>> m = {{1.0, 2.0, 3.0}, {-1.0, 0.5, 100.0}};
  std::string printed = txtest::capture_stdout([&] { output_vvector(m, "vv.dat"); });
  EXPECT_EQ(printed, "ncols = 3\nnrows = 2\n");
  EXPECT_EQ(read_file("vv.dat"),
            "  1.0000000e+00  2.0000000e+00  3.0000000e+00\n"
            " -1.0000000e+00  5.0000000e-01  1.0000000e+02\n");
}

TEST(OutputVvector, EmptyMatrixGivesAnEmptyFile) {
  TempDir dir;
  std::vector<std::vector<double>> m;
  std::string printed = txtest::capture_stdout([&] { output_vvector(m, "vv.dat"); });
  EXPECT_EQ(printed, "ncols = 0\nnrows = 0\n");
  EXPECT_EQ(read_file("vv.dat"), "");
}

// Position line and message both go to standard output; the death statements
// send it to standard error so that the exact bytes can be matched.
const char* const kCreateFailure =
    "^\nERROR  transport : txutil : line [0-9]+ : \nFailed to create file missing/out\\.dat\n$";

TEST(OutputMatrixDeathTest, UnwritablePathIsFatalWithStatusOne) {
  TempDir dir;
  double r0[] = {1.0};
  double* m[] = {r0};
  EXPECT_EXIT(
      {
        std::fflush(stdout);
        dup2(2, 1);
        output_matrix(m, 1, 1, "missing/out.dat");
      },
      ::testing::ExitedWithCode(1), kCreateFailure);
}

TEST(OutputVectorDeathTest, UnwritablePathIsFatalWithStatusOne) {
  TempDir dir;
  double v[] = {1.0};
  EXPECT_EXIT(
      {
        std::fflush(stdout);
        dup2(2, 1);
        output_vector(v, 1, 1, "missing/out.dat");
      },
      ::testing::ExitedWithCode(1), kCreateFailure);
}

TEST(OutputVvectorDeathTest, UnwritablePathIsFatalAfterTheSizes) {
  TempDir dir;
  std::vector<std::vector<double>> m = {{1.0}};
  EXPECT_EXIT(
      {
        std::fflush(stdout);
        dup2(2, 1);
        output_vvector(m, "missing/out.dat");
      },
      ::testing::ExitedWithCode(1),
      "^ncols = 1\nnrows = 1\n\nERROR  transport : txutil : line [0-9]+ : \nFailed to create file "
      "missing/out\\.dat\n$");
}

TEST(OutputMatrix, CreateFailureIsReportedOnStandardOutputOnly) {
  TempDir dir;
  double r0[] = {1.0};
  double* m[] = {r0};
  txtest::RunResult r = txtest::run_forked([&] { output_matrix(m, 1, 1, "missing/out.dat"); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "\nERROR  transport : txutil : line # : \nFailed to create file missing/out.dat\n");
  EXPECT_EQ(r.err, "");
}

}  // namespace
