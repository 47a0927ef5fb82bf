// The orbital index files of the data directory: the HOMO and LUMO of every cell
// molecule, moved by the user's adjustments when given.
#include <gtest/gtest.h>

#include <string>

#include "re_test_support.h"

namespace {

// Carbon monoxide has 6 + 8 = 14 electrons, HOMO 7; hydrogen chloride 17 + 1 = 18,
// HOMO 9. The LUMO is the next orbital.
void set_cell(Transport& t) {
  retest::set_cell(t, 1);
  t.data_dir = "data";
}

TEST(ReOrbitalIndex, WithoutAdjustmentsHomoAndTheNextOrbitalAreWritten) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t);
  t.write_H_L_inp();
  EXPECT_EQ(txtest::read_file("data/uc_H.inp"), "7\n9\n");
  EXPECT_EQ(txtest::read_file("data/uc_L.inp"), "8\n10\n");
  EXPECT_FALSE(txtest::path_exists("data/H_adj.inp"));
  EXPECT_FALSE(txtest::path_exists("data/L_adj.inp"));
}

TEST(ReOrbitalIndex, AdjustmentsMoveEachMoleculeAndAreKeptWithTheMoleculeCount) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t);
  t.homo_adjustment = {0, -1};
  t.lumo_adjustment = {1, 2};
  t.write_H_L_inp();
  EXPECT_EQ(txtest::read_file("data/uc_H.inp"), "7\n8\n");
  EXPECT_EQ(txtest::read_file("data/uc_L.inp"), "9\n12\n");
  EXPECT_EQ(txtest::read_file("data/H_adj.inp"), "2\n0\n-1\n");
  EXPECT_EQ(txtest::read_file("data/L_adj.inp"), "2\n1\n2\n");
}

TEST(ReOrbitalIndex, OnlyTheGivenListGetsItsAdjustmentFile) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t);
  t.lumo_adjustment = {-1, 0};
  t.write_H_L_inp();
  EXPECT_EQ(txtest::read_file("data/uc_H.inp"), "7\n9\n");
  EXPECT_EQ(txtest::read_file("data/uc_L.inp"), "7\n10\n");
  EXPECT_FALSE(txtest::path_exists("data/H_adj.inp"));
  EXPECT_EQ(txtest::read_file("data/L_adj.inp"), "2\n-1\n0\n");
}

TEST(ReOrbitalIndex, IndexesAlreadyWorkedOutAreTakenAsTheyStand) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t);
  t.homo_index = new int[2]{40, 41};
  t.homo_ready = true;
  t.write_H_L_inp();
  EXPECT_EQ(txtest::read_file("data/uc_H.inp"), "40\n41\n");
  EXPECT_EQ(txtest::read_file("data/uc_L.inp"), "41\n42\n");
}

// A list that does not give one entry a molecule cannot be applied.
TEST(ReOrbitalIndex, AdjustmentListOfTheWrongLengthIsFatal) {
  txtest::TempDir dir;
  for (bool homo : {true, false}) {
    const txtest::RunResult r = txtest::run_forked([&] {
      Transport t;
      set_cell(t);
      (homo ? t.homo_adjustment : t.lumo_adjustment) = {1};
      t.write_H_L_inp();
    });
    retest::expect_fatal(r, 1, "transport",
                         std::string(homo ? "homo" : "lumo") +
                             "_adjustment: Number of input parameters (1) is NOT equal to nmols_uc (2)\n",
                         true);
  }
}

TEST(ReOrbitalIndex, FileThatCannotBeOpenedIsFatalWithStatusMinusOne) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    set_cell(t);
    t.data_dir = "missing/data";
    t.write_H_L_inp();
  });
  retest::expect_fatal(r, 255, "transport", "Failed to open output file missing/data/uc_H.inp\n");
}

}  // namespace
