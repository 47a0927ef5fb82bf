// The bond files behind the &evc inputs (load_bonds_data) and the &evc inputs
// themselves, per engine and carrier, plain and unique. Expected files are in
// tests/data/golden/qcinput/evc/.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "evc_test_support.h"
#include "test_support.h"
#include "transport.h"

namespace {

using evctest::kFatalHead;

void expect_golden(const std::string& produced, const std::string& golden) {
  evctest::expect_golden(produced, "evc/" + golden);
}

std::vector<std::string> load(const std::string& content) {
  txtest::write_file("bonds.dat", content);
  Transport t;
  std::vector<std::string> bonds = {"stale"};
  t.load_bonds_data("bonds.dat", bonds);
  return bonds;
}

// A fatal load of `content` as mol1_bonds.dat: status and what the two streams say.
txtest::RunResult load_fatal(const std::string& content) {
  txtest::write_file("mol1_bonds.dat", content);
  return txtest::run_forked([] {
    Transport t;
    std::vector<std::string> bonds;
    t.load_bonds_data("mol1_bonds.dat", bonds);
  });
}

// ---- load_bonds_data -------------------------------------------------------------

TEST(LoadBondsData, KeepsEachBondLineAsWritten) {
  txtest::TempDir dir;
  EXPECT_EQ(load("2\n  1   2  0  0\n  1   3  0  0\n"), (std::vector<std::string>{"  1   2  0  0", "  1   3  0  0"}));
}

TEST(LoadBondsData, ZeroCountGivesAnEmptyList) {
  txtest::TempDir dir;
  EXPECT_TRUE(load("0\n").empty());
}

TEST(LoadBondsData, CountLineMayCarryBlanksAndLinesMayEndInCarriageReturns) {
  txtest::TempDir dir;
  EXPECT_EQ(load(" 1 \r\n 12  40  0  0\r\n"), (std::vector<std::string>{" 12  40  0  0"}));
}

TEST(LoadBondsData, LinesBeyondTheCountAreNotRead) {
  txtest::TempDir dir;
  EXPECT_EQ(load("1\n  1   2  0  0\n  2   3  0  0\ngarbage\n"), (std::vector<std::string>{"  1   2  0  0"}));
}

TEST(LoadBondsData, LastLineWithoutNewlineCounts) {
  txtest::TempDir dir;
  EXPECT_EQ(load("1\n  1   2  0  0"), (std::vector<std::string>{"  1   2  0  0"}));
}

TEST(LoadBondsData, MissingFileIsFatalNamingIt) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    std::vector<std::string> bonds;
    t.load_bonds_data("data/mol7_bonds.dat", bonds);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kFatalHead);
  EXPECT_EQ(r.err, "Failed to open input file data/mol7_bonds.dat\n");
}

TEST(LoadBondsData, EmptyFileIsFatalAtLineOne) {
  txtest::TempDir dir;
  const txtest::RunResult r = load_fatal("");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kFatalHead);
  EXPECT_EQ(r.err, "Failed to read 'mol1_bonds.dat' line 1: the file is empty\n");
}

TEST(LoadBondsData, CountThatIsNoIntegerIsFatalAtLineOne) {
  txtest::TempDir dir;
  for (const char* bad : {"two", "2 bonds", "1.5", ""}) {
    const txtest::RunResult r = load_fatal(std::string(bad) + "\n  1   2  0  0\n  1   3  0  0\n");
    EXPECT_EQ(r.status, 1) << bad;
    EXPECT_EQ(txtest::mask_line_numbers(r.out), kFatalHead);
    EXPECT_EQ(r.err, "Failed to read 'mol1_bonds.dat' line 1: '" + std::string(bad) + "' is no bond count\n");
  }
}

TEST(LoadBondsData, NegativeOrOversizedCountIsFatalAtLineOne) {
  txtest::TempDir dir;
  for (const char* bad : {"-1", "2147483648", "99999999999999999999"}) {
    const txtest::RunResult r = load_fatal(std::string(bad) + "\n");
    EXPECT_EQ(r.status, 1) << bad;
    EXPECT_EQ(r.err, "Failed to read 'mol1_bonds.dat' line 1: '" + std::string(bad) + "' is no bond count\n");
  }
}

TEST(LoadBondsData, ShortFileIsFatalAtTheFirstMissingLine) {
  txtest::TempDir dir;
  const txtest::RunResult r = load_fatal("3\n  1   2  0  0\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kFatalHead);
  EXPECT_EQ(r.err, "Failed to read 'mol1_bonds.dat' line 3: the file ends before bond 2 of 3\n");
}

TEST(LoadBondsData, HugeCountOnAShortFileStopsAtItsEnd) {
  txtest::TempDir dir;
  const txtest::RunResult r = load_fatal("2147483647\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read 'mol1_bonds.dat' line 2: the file ends before bond 1 of 2147483647\n");
}

TEST(LoadBondsData, LineWithoutTwoAtomNumbersIsFatalNamingTheLine) {
  txtest::TempDir dir;
  for (const char* bad : {"  1", "  a   2  0  0", ""}) {
    const txtest::RunResult r = load_fatal(std::string("2\n  1   2  0  0\n") + bad + "\n");
    EXPECT_EQ(r.status, 1) << bad;
    EXPECT_EQ(txtest::mask_line_numbers(r.out), kFatalHead);
    EXPECT_EQ(r.err, "Failed to read 'mol1_bonds.dat' line 3: '" + std::string(bad) + "' is no bond line\n");
  }
}

// ---- the &evc inputs ---------------------------------------------------------------

// A run of `n` molecules in the current directory with the RE and data directories.
void prepare_run(Transport& t, int n, const char* chargetype, int engine) {
  t.nmols_uc = n;
  t.chargetype = chargetype;
  t.compute_engine = engine;
  t.eckart_mirror = 0;
  t.use_evc_dint = false;
  ASSERT_EQ(txtest::run_command("mkdir -p RE data").status, 0);
}

TEST(EvcInputs, GaussianBothCarriersWithEckartMirrorAndBondLists) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 2, "a", 1);
  t.eckart_mirror = 1;
  txtest::write_file("data/mol1_bonds.dat", "2\n  1   2  0  0\n  1   3  0  0\n");
  txtest::write_file("data/mol2_bonds.dat", "0\n");
  t.write_evc_inp_files();
  for (const char* f : {"evc-e-mol1.inp", "evc-h-mol1.inp", "evc-e-mol2.inp", "evc-h-mol2.inp"})
    expect_golden(std::string("RE/") + f, std::string("gaussian_a/RE/") + f);
}

TEST(EvcInputs, EmptyBondListLeavesTheDefinitionLineBareAndSlashFollows) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 1, "e", 1);
  txtest::write_file("data/mol1_bonds.dat", "0\n");
  t.write_evc_inp_files();
  const std::string text = txtest::read_file("RE/evc-e-mol1.inp");
  const std::string tail = "  if_add_int_coord = .t.\n  def_add_int_coord = \n/\n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(EvcInputs, OrcaElectronsOnlyReadsHessianFiles) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 1, "e", 2);
  txtest::write_file("data/mol1_bonds.dat", "1\n  1   2  0  0\n");
  t.write_evc_inp_files();
  expect_golden("RE/evc-e-mol1.inp", "orca_e/RE/evc-e-mol1.inp");
  EXPECT_FALSE(txtest::path_exists("RE/evc-h-mol1.inp"));
}

TEST(EvcInputs, ChargetypeHWritesOnlyHoleInputs) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 1, "h", 3);
  txtest::write_file("data/mol1_bonds.dat", "1\n  1   2  0  0\n");
  t.write_evc_inp_files();
  expect_golden("RE/evc-h-mol1.inp", "qchem_h/RE/evc-h-mol1.inp");
  EXPECT_FALSE(txtest::path_exists("RE/evc-e-mol1.inp"));
}

TEST(EvcInputs, UniqueFormKeepsTheListedNumbersAndReadsNoOtherBondFile) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 3, "A", 4);  // the first letter counts without regard to case
  t.eckart_mirror = 1;
  t.uc_mol_re_list = new int[1]{2};
  t.uc_mol_re_count = 1;
  txtest::write_file("data/mol2_bonds.dat", "3\n  1   2  0  0\n  2   3  0  0\n  2   4  0  0\n");
  t.write_evc_inp_files_unique();
  expect_golden("RE/evc-e-mol2.inp", "bdf_unique/RE/evc-e-mol2.inp");
  expect_golden("RE/evc-h-mol2.inp", "bdf_unique/RE/evc-h-mol2.inp");
  for (const char* f : {"RE/evc-e-mol1.inp", "RE/evc-h-mol1.inp", "RE/evc-e-mol3.inp", "RE/evc-h-mol3.inp"})
    EXPECT_FALSE(txtest::path_exists(f)) << f;
}

TEST(EvcInputs, GaussianFrequencyFilesFollowTheLogExtension) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 1, "h", 1);
  t.gaussian_log_ext = "out";
  txtest::write_file("data/mol1_bonds.dat", "0\n");
  t.write_evc_inp_files();
  const std::string text = txtest::read_file("RE/evc-h-mol1.inp");
  EXPECT_NE(text.find("  ffreq(1)  = \"re-mol1-neutral.out\"\n  ffreq(2)  = \"re-mol1-cation.out\"\n"),
            std::string::npos)
      << text;
}

TEST(EvcInputs, UnknownChargetypeWritesNothingAndReadsNoBondFile) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 2, "x", 1);
  t.write_evc_inp_files();
  EXPECT_EQ(txtest::run_command("ls RE").out, "");
}

TEST(EvcInputs, BondFileIsReadFromTheDataDirectory) {
  txtest::TempDir dir;
  Transport t;
  prepare_run(t, 1, "e", 1);
  t.data_dir = "elsewhere";
  ASSERT_EQ(txtest::run_command("mkdir elsewhere").status, 0);
  txtest::write_file("elsewhere/mol1_bonds.dat", "1\n  5   6  0  0\n");
  t.write_evc_inp_files();
  EXPECT_NE(txtest::read_file("RE/evc-e-mol1.inp").find("\n          5   6  0  0\n/\n"), std::string::npos);
}

TEST(EvcInputs, OutputThatCannotBeOpenedIsFatal) {
  txtest::TempDir dir;
  ASSERT_EQ(txtest::run_command("mkdir data").status, 0);
  txtest::write_file("data/mol1_bonds.dat", "0\n");
  // There is no RE directory.
  evctest::expect_fatal_open([](Transport& t) { t.write_evc_inp_files(); },
                             "Failed to open output file RE/evc-e-mol1.inp\n");
}

TEST(EvcInputs, MissingBondFileIsFatalBeforeAnyInputOfThatMolecule) {
  txtest::TempDir dir;
  ASSERT_EQ(txtest::run_command("mkdir RE data").status, 0);
  const txtest::RunResult r = evctest::forked([](Transport& t) {
    t.chargetype = "a";
    t.write_evc_inp_files();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to open input file data/mol1_bonds.dat\n");
  EXPECT_FALSE(txtest::path_exists("RE/evc-e-mol1.inp"));
}

// The bond files as the neighbor code writes them, for a real crystal: every bond
// line of the file reaches the input.
TEST(EvcInputs, BondFilesOfARealCrystalReachTheInputs) {
  txtest::TempDir dir;
  txtest::write_file("tavix.inp",
                     "&transport\n  crystal = " + txtest::data_path("cif/diatomic_pbar1.cif") + "\n/\n");
  Transport t;
  t.read_tavix_inp("tavix.inp", false);
  t.read_crystal_strcuture_files(false, false);
  t.unique_RE_calc_flag = false;
  t.write_mol_bonds_files(true);
  ASSERT_EQ(txtest::run_command("mkdir -p RE").status, 0);
  t.chargetype = "e";
  t.compute_engine = 1;
  t.write_evc_inp_files();
  ASSERT_EQ(t.nmols_uc, 2);
  for (int m = 1; m <= 2; ++m) {
    const std::string bonds = txtest::read_file("data/mol" + std::to_string(m) + "_bonds.dat");
    // Carbon and oxygen 1 angstrom apart: one bond.
    EXPECT_EQ(bonds, "1\n  1   2  0  0\n");
    EXPECT_NE(txtest::read_file("RE/evc-e-mol" + std::to_string(m) + ".inp")
                  .find("  def_add_int_coord = \n          1   2  0  0\n/\n"),
              std::string::npos);
  }
}

}  // namespace
