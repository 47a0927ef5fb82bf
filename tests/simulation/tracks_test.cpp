// Track files: layout, numbering, the average file, and the failure to open one.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "test_support.h"
#include "transport.h"

namespace {

using txtest::read_file;
using txtest::TempDir;

const char* const kHead = "#      t,ns         x,angs         y,angs         z,angs         r2,A^2     istep\n";
const char* const kZero = "  0.000000e+00   0.000000e+00   0.000000e+00   0.000000e+00   0.000000e+00  0\n";

// Three snapshots with nsnap = 2: the rows of index 0 and 1 are written, index 2
// (the one that ends a trajectory) is not.
struct ThreeSnapshots {
  double t[3] = {0.125, 1.5, 99.0};
  double x[9] = {1.0, -2.0, 3.5, 1234.5, 0.0, -0.001, 99.0, 99.0, 99.0};
  double r2[3] = {17.25, 1.5e7, 99.0};
  int istep[3] = {3, 120000, 99};
};

TEST(OutputTrack, WritesHeadZeroRowAndTheSnapshotsBelowNsnap) {
  TempDir dir;
  Transport t;
  t.nsnap = 2;
  ThreeSnapshots s;
  t.output_track("tracks", 1, s.t, s.x, s.r2, s.istep);
  // Rows by hand in "%14.6e %14.6e %14.6e %14.6e %14.6e  %d".
  const std::string expected = std::string(kHead) + kZero +
                               "  1.250000e-01   1.000000e+00  -2.000000e+00   3.500000e+00   1.725000e+01  3\n"
                               "  1.500000e+00   1.234500e+03   0.000000e+00  -1.000000e-03   1.500000e+07  120000\n";
  EXPECT_EQ(read_file("tracks/track_0001.dat"), expected);
}

TEST(OutputTrack, NsnapZeroWritesOnlyTheZeroRow) {
  TempDir dir;
  Transport t;
  t.nsnap = 0;
  ThreeSnapshots s;
  t.output_track("tracks", 3, s.t, s.x, s.r2, s.istep);
  EXPECT_EQ(read_file("tracks/track_0003.dat"), std::string(kHead) + kZero);
}

TEST(OutputTrack, NumbersUpTo9999HaveFourDigitsAndLaterOnesNoLeadingZeros) {
  TempDir dir;
  Transport t;
  t.nsnap = 0;
  ThreeSnapshots s;
  for (int n : {7, 9999, 10000, 123456}) t.output_track("tracks", n, s.t, s.x, s.r2, s.istep);
  EXPECT_TRUE(txtest::path_exists("tracks/track_0007.dat"));
  EXPECT_TRUE(txtest::path_exists("tracks/track_9999.dat"));
  EXPECT_TRUE(txtest::path_exists("tracks/track_10000.dat"));
  EXPECT_TRUE(txtest::path_exists("tracks/track_123456.dat"));
  EXPECT_FALSE(txtest::path_exists("tracks/track_010000.dat"));
}

TEST(OutputTrack, AverageGoesToTrackTotal) {
  TempDir dir;
  Transport t;
  t.nsnap = 1;
  ThreeSnapshots s;
  t.output_track_ave("avg", s.t, s.x, s.r2, s.istep);
  EXPECT_EQ(read_file("avg/track_total.dat"),
            std::string(kHead) + kZero +
                "  1.250000e-01   1.000000e+00  -2.000000e+00   3.500000e+00   1.725000e+01  3\n");
}

TEST(OutputTrack, InfiniteTimeIsWrittenAsInf) {
  TempDir dir;
  Transport t;
  t.nsnap = 1;
  double time[2] = {std::numeric_limits<double>::infinity(), 0.0};
  double x[6] = {0, 0, 0, 0, 0, 0};
  double r2[2] = {0, 0};
  int istep[2] = {5, 6};
  t.output_track("tracks", 2, time, x, r2, istep);
  EXPECT_EQ(read_file("tracks/track_0002.dat"),
            std::string(kHead) + kZero +
                "           inf   0.000000e+00   0.000000e+00   0.000000e+00   0.000000e+00  5\n");
}

TEST(OutputTrack, UnwritableFileIsFatalWithItsPath) {
  TempDir dir;
  txtest::write_file("blocker", "a file where the directory should be\n");
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    t.nsnap = 0;
    ThreeSnapshots s;
    t.output_track("blocker", 12, s.t, s.x, s.r2, s.istep);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
  EXPECT_EQ(r.err, "Failed to open output file blocker/track_0012.dat\n");
}

TEST(OutputTrack, UnwritableAverageIsFatalWithItsPath) {
  TempDir dir;
  txtest::write_file("blocker", "x\n");
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    t.nsnap = 0;
    ThreeSnapshots s;
    t.output_track_ave("blocker", s.t, s.x, s.r2, s.istep);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.err, "Failed to open output file blocker/track_total.dat\n");
}

}  // namespace
