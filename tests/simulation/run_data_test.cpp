// Run data: the set-up after reading, the Monte Carlo bring-up, the W, V, E, NM,
// outer-reorganisation, charge and temperature files, the w0 and hop-rate tables,
// and the general reader of the per-pair data.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "../topology/topology_fixtures.h"
#include "test_support.h"
#include "transport.h"

namespace {

using txtest::capture_stdout;
using txtest::data_path;
using txtest::mask_line_numbers;
using txtest::path_exists;
using txtest::read_file;
using txtest::run_forked;
using txtest::RunResult;
using txtest::TempDir;
using txtest::write_file;

constexpr double kMeV = 3.675e-5;  // hartree per meV
constexpr double kCm = 4.556e-6;   // hartree per cm-1
const std::string kHead = "\nERROR  transport : transport : line # : \n";

// Copies a fixture of tests/data/simulation/run_data into the working directory.
void copy_fixture(const std::string& name, const std::string& as = "") {
  write_file(as.empty() ? name : as, read_file(data_path("simulation/run_data/" + name)));
}

std::string golden(const std::string& name) { return read_file(data_path("golden/simulation/" + name)); }

// The crystal of the fixtures: single hydrogens at fractional x = 0 and 0.25 in a
// 12 x 20 x 20 angstrom cell. Neighbors, sorted by centre distance: root 1 sees
// molecule 2 at +3 (cell 0) and at -9 (cell -1); root 2 sees molecule 1 at -3
// (cell 0) and at +9 (cell +1).
void two_hydrogens(Transport& t) {
  topo::set_orthorhombic(t, 12.0, 20.0, 20.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}}, {{topo::H, 0.25, 0.0, 0.0}}});
  topo::set_search(t, 9.5, 1, 0, 0);
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) t.latt_3x3[r][c] = t.latt_f2c[r][c];
  t.latt_lengths[0] = 12.0;
  t.latt_lengths[1] = 20.0;
  t.latt_lengths[2] = 20.0;
  t.tsimu = 100.0;
  t.tsnap = 5.0;
  t.nsimu = 10;
  t.temp = 300.0;
  t.maxt = 10000.0;
  t.ratetype = "quantum";
  t.chargetype = "e";
  t.lat_site_energy = 0;
  t.calc_x_com();
}

void with_neighbors(Transport& t) {
  two_hydrogens(t);
  t.build_neighbor_list(false, false);
}

TEST(RunDataFixture, NeighborsAreTheOnesTheFilesDescribe) {
  Transport t;
  with_neighbors(t);
  ASSERT_EQ(t.nneighbors[0], 2);
  ASSERT_EQ(t.nneighbors[1], 2);
  EXPECT_EQ(t.neighbor_id[0][0], 1);
  EXPECT_EQ(t.neighbor_cx[0][0], 0);
  EXPECT_EQ(t.neighbor_cx[0][1], -1);
  EXPECT_EQ(t.neighbor_id[1][0], 0);
  EXPECT_EQ(t.neighbor_cx[1][1], 1);
}

// ---- W files ---------------------------------------------------------------------

TEST(ReadW0, FirstRowUnitScalesAllRowsOfTheMolecule) {
  TempDir dir;
  copy_fixture("WL.dat");
  Transport t;
  with_neighbors(t);
  const std::string out = capture_stdout([&] { t.read_MC_w0(); });
  EXPECT_EQ(out, "Reading W files...\n");
  // Molecule 1: "1/ps" first, so the later "1/s" row is scaled by 1000 as well.
  EXPECT_DOUBLE_EQ(t.w0[0][0], 2000.0);
  EXPECT_DOUBLE_EQ(t.w0[0][1], 3e12);
  // Molecule 2 begins afresh: "1/s", so 1e-9 for both rows.
  EXPECT_DOUBLE_EQ(t.w0[1][0], 4e8 * 1e-9);
  EXPECT_DOUBLE_EQ(t.w0[1][1], 0.75 * 1e-9);
  EXPECT_EQ(t.run_rows_allocated, 2);
}

TEST(ReadW0, HoleFileUnitsIgnoreCaseAndUnknownUnitsScaleByOne) {
  TempDir dir;
  copy_fixture("WH.dat");
  Transport t;
  with_neighbors(t);
  t.mc_chargetype = "H";  // lower-cased before the choice
  capture_stdout([&] { t.read_MC_w0(); });
  EXPECT_DOUBLE_EQ(t.w0[0][0], 1500.0);  // "1/PS"
  EXPECT_DOUBLE_EQ(t.w0[0][1], 2500.0);
  EXPECT_DOUBLE_EQ(t.w0[1][0], 6.0);  // "per_ns": silently 1.0
  EXPECT_DOUBLE_EQ(t.w0[1][1], 8.0);  // its own "1/ps" is not read
}

TEST(ReadW0, DebugFlagReportsTheScales) {
  TempDir dir;
  copy_fixture("WL.dat");
  Transport t;
  with_neighbors(t);
  t.debug_flag = 1;
  const std::string out = capture_stdout([&] { t.read_MC_w0(); });
  EXPECT_EQ(out, "Reading W files...\nw0 unit scales in 'WL.dat':\n  s: 1000\n  s: 1e-09\n");
}

TEST(ReadW0, RowWithTwoPairsOnlyIsEnough) {
  TempDir dir;
  write_file("WL.dat", "2\n2\n1 meV 5 1/ns\n1 meV 6 1/ns\n2\n1 meV 7\n1 meV 8 1/ps\n");
  Transport t;
  with_neighbors(t);
  capture_stdout([&] { t.read_MC_w0(); });
  EXPECT_EQ(t.w0[0][0], 5.0);
  EXPECT_EQ(t.w0[0][1], 6.0);
  EXPECT_EQ(t.w0[1][0], 7.0);  // no unit: the scale stays 1.0
  EXPECT_EQ(t.w0[1][1], 8.0);
}

TEST(ReadW0, LongUnitWordIsReadWithoutAFixedBuffer) {
  TempDir dir;
  const std::string row = "1.0 " + std::string(230, 'x') + " 2.5 1/ps 0 meV\n";
  ASSERT_LT(row.size(), 255u);
  write_file("WL.dat", "2\n2\n" + row + row + "2\n" + row + row);
  Transport t;
  with_neighbors(t);
  capture_stdout([&] { t.read_MC_w0(); });
  EXPECT_EQ(t.w0[0][0], 2500.0);
  EXPECT_EQ(t.w0[1][1], 2500.0);
}

TEST(ReadW0, LineLongerThan254CharactersCountsAsTwo) {
  TempDir dir;
  const std::string row = " 1 meV 2 1/ns 3 meV" + std::string(300, ' ') + "\n";
  write_file("WL.dat", "2\n2\n" + row + " 1 meV 4 1/ns 3 meV\n2\n1 meV 1 1/ns\n1 meV 1 1/ns\n");
  Transport t;
  with_neighbors(t);
  // The rest of the first row is taken as the second row, which holds no rate.
  const RunResult r = run_forked([&] { t.read_MC_w0(); });
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading W files...\n" + kHead + "Failed to read 'WL.dat' line 4: no rate in the second value-unit pair\n");
  EXPECT_EQ(r.status, 255);
}

TEST(ReadW0, WrongChargetypeIsFatal) {
  TempDir dir;
  Transport t;
  with_neighbors(t);
  t.mc_chargetype = "a";
  const RunResult r = run_forked([&] { t.read_MC_w0(); });
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading W files...\nINFO: MC chargetype = a\n" + kHead + "CHARGETYPE IS NOT SET CORRECTLY!\n");
  EXPECT_EQ(r.status, 255);
}

TEST(ReadW0, MissingFileIsFatal) {
  TempDir dir;
  Transport t;
  with_neighbors(t);
  const RunResult r = run_forked([&] { t.read_MC_w0(); });
  EXPECT_EQ(mask_line_numbers(r.out), "Reading W files...\n" + kHead + "Failed to open input file WL.dat\n");
  EXPECT_EQ(r.status, 255);
}

TEST(ReadW0, CountsDifferentFromTheStructureAreFatal) {
  TempDir dir;
  Transport t;
  with_neighbors(t);
  write_file("WL.dat", "3\n");
  RunResult r = run_forked([&] { t.read_MC_w0(); });
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading W files...\n" + kHead + "Data in 'WL.dat' incomptible: 3 : 2 should be equal!\n");
  EXPECT_EQ(r.status, 255);
  write_file("WL.dat", "2\n2\n1 meV 1 1/ns\n1 meV 1 1/ns\n1\n1 meV 1 1/ns\n");
  r = run_forked([&] { t.read_MC_w0(); });
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading W files...\n" + kHead + "Data in 'WL.dat' incomptible: 1 : 2 should be equal!\n");
  EXPECT_EQ(r.status, 255);
}

TEST(ReadW0, TruncatedFileIsFatal) {
  TempDir dir;
  Transport t;
  with_neighbors(t);
  write_file("WL.dat", "2\n2\n1 meV 1 1/ns\n");
  const RunResult r = run_forked([&] { t.read_MC_w0(); });
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading W files...\n" + kHead + "Failed to read 'WL.dat' line 4: unexpected end of file\n");
  EXPECT_EQ(r.status, 255);
}

TEST(ReadW0, WithoutNeighborListIsFatal) {
  TempDir dir;
  copy_fixture("WL.dat");
  Transport t;
  two_hydrogens(t);
  const RunResult r = run_forked([&] { t.read_MC_w0(); });
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading W files...\n" + kHead + "The neighbor list must be built before reading WL.dat\n");
  EXPECT_EQ(r.status, 255);
}

// ---- w0.dat and the hop-rate tables ----------------------------------------------

TEST(WriteW0, MatchesTheHandWrittenFile) {
  TempDir dir;
  copy_fixture("WL.dat");
  Transport t;
  with_neighbors(t);
  capture_stdout([&] { t.read_MC_w0(); });
  t.write_MC_w0(t.w0, t.nmols_uc);
  EXPECT_EQ(read_file("w0.dat"), golden("w0.dat"));
}

TEST(WriteW0, UnwritableFileIsFatalOnTheErrorStream) {
  TempDir dir;
  Transport t;
  with_neighbors(t);
  ASSERT_EQ(mkdir("w0.dat", 0755), 0);
  const RunResult r = run_forked([&] { t.write_MC_w0(t.w0, t.nmols_uc); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file w0.dat\n");
  EXPECT_EQ(r.status, 1);
}

TEST(WriteHoprates, MatchesTheHandWrittenFile) {
  TempDir dir;
  copy_fixture("WL.dat");
  copy_fixture("VL.dat");
  copy_fixture("charge.inp");
  Transport t;
  with_neighbors(t);
  capture_stdout([&] { t.read_MC_w0(); });
  const std::string out = capture_stdout([&] { t.write_MC_hoprates("hoprates.dat"); });
  EXPECT_EQ(out, "Writing file 'hoprates.dat'...\n");
  EXPECT_EQ(read_file("hoprates.dat"), golden("hoprates.dat"));
}

TEST(WriteHoprates, DebugLevelReportsTheCharge) {
  TempDir dir;
  copy_fixture("WL.dat");
  copy_fixture("VL.dat");
  copy_fixture("charge.inp");
  Transport t;
  with_neighbors(t);
  capture_stdout([&] { t.read_MC_w0(); });
  t.debug_level = 1;
  const std::string out = capture_stdout([&] { t.write_MC_hoprates("x.dat"); });
  EXPECT_EQ(out, "Reading charge file 'charge.inp'...\n  charge = e\nWriting file 'x.dat'...\n");
}

TEST(WriteHoprates, HoleChargeReadsVH) {
  TempDir dir;
  copy_fixture("WL.dat");
  copy_fixture("VH.dat");
  write_file("charge.inp", "h\n");
  Transport t;
  with_neighbors(t);
  capture_stdout([&] { t.read_MC_w0(); });
  capture_stdout([&] { t.write_MC_hoprates("hoprates.dat"); });
  EXPECT_NE(read_file("hoprates.dat").find("    4.000000e+01 meV    2.000000e+03 1/ns\n"), std::string::npos);
}

TEST(WriteHoprates, MissingOrWrongChargeFileIsFatal) {
  TempDir dir;
  Transport t;
  with_neighbors(t);
  RunResult r = run_forked([&] { t.write_MC_hoprates("hoprates.dat"); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "chargetype in charge.inp should be either 'e' or 'h'\n");
  EXPECT_EQ(r.status, 1);
  write_file("charge.inp", "a\n");
  r = run_forked([&] { t.write_MC_hoprates("hoprates.dat"); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "chargetype in charge.inp should be either 'e' or 'h'\n");
  EXPECT_EQ(r.status, 1);
}

TEST(WriteHoprates, MissingVFileIsFatal) {
  TempDir dir;
  write_file("charge.inp", "h\n");
  Transport t;
  with_neighbors(t);
  const RunResult r = run_forked([&] { t.write_MC_hoprates("hoprates.dat"); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "Failed to open input file VH.dat\n");
  EXPECT_EQ(r.status, 255);
}

TEST(WriteHoprates, VFileCountsDifferentFromTheListAreFatal) {
  TempDir dir;
  write_file("charge.inp", "e\n");
  write_file("VL.dat", "2\n1\n5.0 meV\n");
  Transport t;
  with_neighbors(t);
  const RunResult r = run_forked([&] { t.write_MC_hoprates("hoprates.dat"); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "Data in 'VL.dat' incomptible: 1 : 2 should be equal!\n");
  EXPECT_EQ(r.status, 255);
}

TEST(WriteHoprates, UnwritableOutputIsFatal) {
  TempDir dir;
  copy_fixture("VL.dat");
  copy_fixture("charge.inp");
  ASSERT_EQ(mkdir("out", 0755), 0);
  Transport t;
  with_neighbors(t);
  const RunResult r = run_forked([&] { t.write_MC_hoprates("out"); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "Failed to open output file \"out\"\n");
  EXPECT_EQ(r.status, 255);
}

TEST(WriteHopratesDyn, MatchesTheHandWrittenFile) {
  TempDir dir;
  Transport t;
  with_neighbors(t);
  copy_fixture("WL.dat");
  capture_stdout([&] { t.read_MC_w0(); });
  t.w0[0][0] = 123.45678;
  t.w0[0][1] = -0.0;
  t.w0[1][0] = 1e-12;
  t.w0[1][1] = 999999.94;
  const std::string out = capture_stdout([&] { t.write_MC_hoprates_dyn("hoprates-dyn.dat"); });
  EXPECT_EQ(out, "Writing file 'hoprates-dyn.dat'...\n");
  EXPECT_EQ(read_file("hoprates-dyn.dat"), golden("hoprates-dyn.dat"));
}

// ---- charge.inp and temp.inp -------------------------------------------------------

TEST(ReadChargeInp, StoresTheFirstCharacterOfTheTrimmedLine) {
  TempDir dir;
  write_file("charge.inp", "  hole\n");
  Transport t;
  t.mc_chargetype = "ex";
  const std::string out = capture_stdout([&] { t.read_charge_inp(); });
  EXPECT_EQ(out, "Reading file 'charge.inp'...\n");
  EXPECT_EQ(t.mc_chargetype, "hx");
}

TEST(ReadChargeInp, MissingFileIsFatal) {
  TempDir dir;
  Transport t;
  const RunResult r = run_forked([&] { t.read_charge_inp(); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "Failed to open input file charge.inp\n");
  EXPECT_EQ(r.status, 255);
}

TEST(ReadTempInp, MissingFileGives300Silently) {
  TempDir dir;
  Transport t;
  double T = 0.0;
  EXPECT_EQ(capture_stdout([&] { T = t.read_temp_inp(); }), "");
  EXPECT_EQ(T, 300.0);
}

TEST(ReadTempInp, ReadsTheFirstNumber) {
  TempDir dir;
  copy_fixture("temp.inp");
  Transport t;
  double T = 0.0;
  EXPECT_EQ(capture_stdout([&] { T = t.read_temp_inp(); }), "Reading input file temp.inp...\n");
  EXPECT_EQ(T, 250.0);
  write_file("temp.inp", "warm\n");
  capture_stdout([&] { T = t.read_temp_inp(); });
  EXPECT_EQ(T, 0.0);
}

// ---- post_data_read_treatment and calc_homo -------------------------------------

TEST(PostDataReadTreatment, DerivesCarrierSnapshotsAndFlags) {
  Transport t;
  two_hydrogens(t);
  t.chargetype = "H";
  t.tsimu = 1000.0;
  t.tsnap = 5.0;
  t.compute_engine = 2;
  t.RE_use_neutral_chk = true;
  t.data_mol_output_level = 6;
  t.post_data_read_treatment(false);
  EXPECT_EQ(t.carrier_char, 104);
  EXPECT_EQ(t.nsnap, 200);
  EXPECT_FALSE(t.RE_use_neutral_chk);
  EXPECT_EQ(t.get_data_mol_output_level(), 6);
  EXPECT_EQ(t.qc_log_ext, "out");
  EXPECT_TRUE(t.post_read_done);
  EXPECT_TRUE(t.x_com_done);
  EXPECT_TRUE(t.homo_ready);
  EXPECT_DOUBLE_EQ(t.mol_x_com[1][0], 3.0);
}

TEST(PostDataReadTreatment, SnapshotCountRoundsHalfUp) {
  Transport t;
  two_hydrogens(t);
  t.tsimu = 7.0;
  t.tsnap = 2.0;  // 3.5 + 0.5
  t.post_data_read_treatment(false);
  EXPECT_EQ(t.nsnap, 4);
  t.tsimu = 1.0;
  t.tsnap = 3.0;  // 0.83 truncated
  t.post_data_read_treatment(false);
  EXPECT_EQ(t.nsnap, 0);
  EXPECT_EQ(t.qc_log_ext, "log");  // Gaussian by construction
}

TEST(PostDataReadTreatment, ZeroSnapshotIntervalIsFatal) {
  Transport t;
  two_hydrogens(t);
  t.tsnap = 0.0;
  RunResult r = run_forked([&] { t.post_data_read_treatment(false); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "tsimu = 100 ns and tsnap = 0 ns give no number of snapshots\n");
  EXPECT_EQ(r.status, 1);
  t.tsimu = 0.0;  // 0/0
  r = run_forked([&] { t.post_data_read_treatment(false); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "tsimu = 0 ns and tsnap = 0 ns give no number of snapshots\n");
  EXPECT_EQ(r.status, 1);
}

TEST(PostDataReadTreatment, ZindosAdjustsBasisAndRaisesMooWithUseMoo) {
  Transport t;
  two_hydrogens(t);
  t.qc_basis = "ZINDO/S";
  t.qc_basis_re = "zindos";
  t.use_moo = true;
  std::string out = capture_stdout([&] { t.post_data_read_treatment(true); });
  EXPECT_FALSE(t.get_job_moo_flag());  // "ZINDO/S" does not contain "zindos"
  EXPECT_EQ(t.qc_basis_re, "b3lyp STO-3g");
  EXPECT_EQ(out, "\nINFO: QC_basis_re is adjusted to 'b3lyp STO-3g'\n\n");
  t.qc_basis = "ZINDOS";
  out = capture_stdout([&] { t.post_data_read_treatment(false); });
  EXPECT_TRUE(t.get_job_moo_flag());
  EXPECT_EQ(out, "");
}

TEST(PostDataReadTreatment, ZindosWithoutUseMooLeavesMooOff) {
  Transport t;
  two_hydrogens(t);
  t.qc_basis = "zindos";
  t.use_moo = false;
  t.post_data_read_treatment(false);
  EXPECT_FALSE(t.get_job_moo_flag());
}

TEST(PostDataReadTreatment, SpheresNeedARadiusPerMolecule) {
  Transport t;
  two_hydrogens(t);
  t.reorg_outer_flag = 2;
  t.reorg_outer_radii = {0.3};
  const RunResult r = run_forked([&] { t.post_data_read_treatment(false); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "reorg_outer: Number of radiuses (1) is LESS than number of molecules (2)\n");
  EXPECT_EQ(r.status, 1);
  t.reorg_outer_radii = {0.3, 0.4};
  EXPECT_EQ(run_forked([&] { t.post_data_read_treatment(false); }).status, 0);
}

TEST(PostDataReadTreatment, DielectricAppendsPopulationKeywordsForGaussian) {
  const std::string pop = " Pop=MK IOp(6/33=2,6/42=6,7/33=1)";
  {
    Transport t;
    two_hydrogens(t);
    t.reorg_outer_flag = 3;
    t.qc_exe = "/opt/g16/g16";
    t.qc_basis_re = "b3lyp 6-31g*";
    const std::string out = capture_stdout([&] { t.post_data_read_treatment(true); });
    EXPECT_EQ(t.qc_basis_re, "b3lyp 6-31g*" + pop);
    EXPECT_EQ(out, "\nINFO: append basis_re with" + pop + "\n");
    t.post_data_read_treatment(false);  // already there: not again
    EXPECT_EQ(t.qc_basis_re, "b3lyp 6-31g*" + pop);
  }
  {
    Transport t;
    two_hydrogens(t);
    t.reorg_outer_flag = 3;
    t.qc_exe = "g09";
    t.qc_basis_re = "b3lyp 6-31g* pop=mk IOp(6/33=2,6/42=6)";  // "MK" is compared with case
    t.post_data_read_treatment(false);
    EXPECT_EQ(t.qc_basis_re, "b3lyp 6-31g* pop=mk IOp(6/33=2,6/42=6)" + pop);
  }
  {
    Transport t;
    two_hydrogens(t);
    t.reorg_outer_flag = 3;
    t.compute_engine = 2;
    t.qc_exe = "fullpath/orca";
    t.qc_basis_re = "b3lyp 6-31g*";
    t.post_data_read_treatment(false);
    EXPECT_EQ(t.qc_basis_re, "b3lyp 6-31g*");
  }
}

TEST(PostDataReadTreatment, EmptyAdjustmentListsAreAcceptedForAnyMoleculeCount) {
  Transport t;
  two_hydrogens(t);
  t.homo_adjustment.clear();
  t.lumo_adjustment.clear();
  EXPECT_EQ(run_forked([&] { t.post_data_read_treatment(false); }).status, 0);
  t.homo_adjustment = {0, 1};
  t.lumo_adjustment = {1, 0};
  EXPECT_EQ(run_forked([&] { t.post_data_read_treatment(false); }).status, 0);
}

TEST(PostDataReadTreatment, AdjustmentListsOfAnotherCountAreFatal) {
  Transport t;
  two_hydrogens(t);
  t.homo_adjustment = {0, 1, 2};
  RunResult r = run_forked([&] { t.post_data_read_treatment(false); });
  EXPECT_EQ(mask_line_numbers(r.out),
            kHead + "homo_adjustment: Number of input parameters (3) is NOT equal to nmols_uc (2)\n");
  EXPECT_EQ(r.status, 1);
  t.homo_adjustment.clear();
  t.lumo_adjustment = {4};
  r = run_forked([&] { t.post_data_read_treatment(false); });
  EXPECT_EQ(mask_line_numbers(r.out),
            kHead + "lumo_adjustment: Number of input parameters (1) is NOT equal to nmols_uc (2)\n");
  EXPECT_EQ(r.status, 1);
}

TEST(CalcHomo, HalfTheElectronsAndWithMooTheValenceOnly) {
  Transport t;
  topo::set_orthorhombic(t, 10.0, 10.0, 10.0);
  // C6H6; CH3Cl; CH3Br; H2S.
  std::vector<topo::Molecule> mols(4);
  for (int k = 0; k < 6; ++k) mols[0].push_back({topo::C, 0.1, 0.1, 0.1});
  for (int k = 0; k < 6; ++k) mols[0].push_back({topo::H, 0.1, 0.1, 0.1});
  mols[1] = {{topo::C, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}, {17, 0, 0, 0}};
  mols[2] = {{topo::C, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}, {35, 0, 0, 0}};
  mols[3] = {{16, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}};
  topo::set_molecules(t, mols);
  t.calc_homo();
  EXPECT_EQ(t.homo_index[0], 21);  // 42 / 2
  EXPECT_EQ(t.homo_index[1], 13);  // 26 / 2
  EXPECT_EQ(t.homo_index[2], 22);  // 44 / 2
  EXPECT_EQ(t.homo_index[3], 9);   // 18 / 2
  t.set_job_moo_flag(true);
  t.calc_homo();
  EXPECT_EQ(t.homo_index[0], 15);  // (6*4 + 6) / 2
  EXPECT_EQ(t.homo_index[1], 7);   // (4 + 3 + 7) / 2
  EXPECT_EQ(t.homo_index[2], 21);  // (4 + 3 + 35) / 2: bromine keeps its core
  EXPECT_EQ(t.homo_index[3], 4);   // (6 + 2) / 2
  EXPECT_TRUE(t.homo_ready);
}

// ---- MC_init -----------------------------------------------------------------------

void run_files() {
  copy_fixture("WL.dat");
  copy_fixture("VL.dat");
  copy_fixture("charge.inp");
}

TEST(MCInit, BringsUpTheRunAndWritesTheTables) {
  TempDir dir;
  run_files();
  copy_fixture("temp.inp");
  Transport t;
  two_hydrogens(t);
  const std::string out = capture_stdout([&] { t.MC_init(); });
  EXPECT_EQ(out,
            "Initializing MC...\n"
            "Reading file 'charge.inp'...\n"
            "Reading W files...\n"
            "Writing file 'hoprates.dat'...\n"
            "Reading input file temp.inp...\n"
            "  chargetype = e\n"
            "  temp       = 250\n"
            "  nsimu      = 10\n"
            "  tsimu      = 100 ns\n"
            "  tsnap      = 5 ns\n");
  EXPECT_TRUE(t.mc_ready);
  EXPECT_TRUE(path_exists("track"));
  EXPECT_EQ(read_file("w0.dat"), golden("w0.dat"));
  EXPECT_EQ(read_file("hoprates.dat"), golden("hoprates.dat"));
  EXPECT_EQ(t.max_nneighbors, 2);
  EXPECT_EQ(t.neighbor_nkeys, 4);
  EXPECT_EQ(t.dyn_disorder_mode, 0);
  EXPECT_EQ(t.nsnap, 20);
  for (int s = 0; s <= t.nsnap; ++s) {
    EXPECT_EQ(t.ave_istep[s], 0);
    EXPECT_EQ(t.ave_t[s], 0.0);
    EXPECT_EQ(t.ave_r2[s], 0.0);
    EXPECT_EQ(t.ave_x[3 * s + 2], 0.0);
  }
  EXPECT_EQ(t.temp, 250.0);
  EXPECT_TRUE(t.homo_ready);
  EXPECT_EQ(t.homo_index[1], 0);  // one hydrogen: 1 / 2
}

TEST(MCInit, CalledTwiceDoesTheWorkOnce) {
  TempDir dir;
  run_files();
  Transport t;
  two_hydrogens(t);
  capture_stdout([&] { t.MC_init(); });
  double** w0 = t.w0;
  std::remove("w0.dat");
  EXPECT_EQ(capture_stdout([&] { t.MC_init(); }), "");
  EXPECT_FALSE(path_exists("w0.dat"));
  EXPECT_EQ(t.w0, w0);
}

TEST(MCInit, TemperatureFileWithZeroOrNegativeLeavesTempUnchanged) {
  for (const char* value : {"0\n", "-20\n"}) {
    TempDir dir;
    run_files();
    write_file("temp.inp", value);
    Transport t;
    two_hydrogens(t);
    t.temp = 310.0;
    capture_stdout([&] { t.MC_init(); });
    EXPECT_EQ(t.temp, 310.0) << value;
  }
}

TEST(MCInit, ZeroSnapshotCountGivesOneEntryArrays) {
  TempDir dir;
  run_files();
  Transport t;
  two_hydrogens(t);
  t.tsimu = 2.0;
  t.tsnap = 5.0;  // 0.4 + 0.5 truncated
  capture_stdout([&] { t.MC_init(); });
  EXPECT_EQ(t.nsnap, 0);
  EXPECT_EQ(t.ave_t[0], 0.0);
}

TEST(MCInit, ZeroOrNegativeSnapshotSettingsAreFatal) {
  TempDir dir;
  run_files();
  Transport t;
  two_hydrogens(t);
  t.tsnap = 0.0;
  RunResult r = run_forked([&] { t.MC_init(); });
  EXPECT_NE(mask_line_numbers(r.out).find(kHead + "tsimu = 100 ns and tsnap = 0 ns give no number of snapshots\n"),
            std::string::npos);
  EXPECT_EQ(r.status, 1);
  t.tsnap = 5.0;
  t.tsimu = -100.0;
  r = run_forked([&] { t.MC_init(); });
  EXPECT_NE(
      mask_line_numbers(r.out).find(kHead + "tsimu = -100 ns and tsnap = 5 ns give a negative number of snapshots\n"),
      std::string::npos);
  EXPECT_EQ(r.status, 1);
}

TEST(MCInit, KeepsANeighborListAlreadyBuilt) {
  TempDir dir;
  run_files();
  Transport t;
  with_neighbors(t);
  int* row = t.neighbor_id[0];
  capture_stdout([&] { t.MC_init(); });
  EXPECT_EQ(t.neighbor_id[0], row);
  EXPECT_EQ(read_file("w0.dat"), golden("w0.dat"));
}

TEST(MCInit, DynamicTransferIntegralsReplaceTheRatesByThoseOfTimeZero) {
  TempDir dir;
  run_files();
  copy_fixture("NM-e.dat");
  // Four frames of the two pairs of each root, 10 fs apart.
  write_file("VL1-dyn.dat", "# V series\n4 2 10.0\n50 20\n52 18\n48 22\n50 20\n");
  write_file("VL2-dyn.dat", "# V series\n4 2 10.0\n-12 1\n-13 0\n-12 1\n-13 0\n");
  Transport t;
  two_hydrogens(t);
  t.V_dynamic_disorder = true;
  t.unique_2mol_calc_flag = false;
  t.dyn_buffer_size = 8;
  const std::string out = capture_stdout([&] { t.MC_init(); });
  EXPECT_NE(out.find("Writing file 'hoprates.dat'...\n"
                     "Initializing dynamic disorder...\n"
                     "  V_dynamic_disorder  = 1\n"
                     "  HL_dynamic_disorder = 0\n"
                     "General dynamic disorder initialization...\n"),
            std::string::npos);
  EXPECT_NE(out.find("Writing file 'hoprates-dyn.dat'...\n"), std::string::npos);
  EXPECT_EQ(t.dyn_disorder_mode, 1);
  // w0.dat and hoprates.dat keep the static rates; w0 now holds sample 0 of the V^2
  // buffer times the rate without V.
  EXPECT_EQ(read_file("w0.dat"), golden("w0.dat"));
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) EXPECT_EQ(t.w0[i][j], t.dyn_V2_buffer_full[i][j][0] * t.w0_no_V[i][j]);
  const std::string dyn = read_file("hoprates-dyn.dat");
  EXPECT_EQ(dyn.substr(0, 45), "# nroot, root_mol_info, nnei, neighbors_info\n");
  EXPECT_NE(dyn.find("   2 #     dx        dy        dz         r    cindex        hoprate\n"), std::string::npos);
  EXPECT_TRUE(t.mc_ready);
}

// ---- the per-pair data of the rate builders ----------------------------------------

void pair_files() {
  run_files();
  copy_fixture("EL.dat");
  copy_fixture("NM-e.dat");
  copy_fixture("reorg_lambda_outer-e.dat");
  copy_fixture("temp.inp");
}

TEST(DynDisorderInitPrefix, ReadsEveryFileAndReportsIt) {
  TempDir dir;
  pair_files();
  Transport t;
  with_neighbors(t);
  t.appE_flag = true;
  t.app_elec_F[0] = 1e8;
  t.app_elec_F[1] = 0.0;
  t.app_elec_F[2] = 0.0;
  t.reorg_outer_flag = 1;
  t.lat_site_energy = 1;
  const std::string out = capture_stdout([&] { t.dyn_disorder_init_prefix(true); });
  EXPECT_EQ(out,
            "General dynamic disorder initialization...\n"
            "Reading temperature file temp.inp...\n"
            "  temp = 250\n"
            "Reading charge file charge.inp...\n"
            "  charge = e\n"
            "Calculating app_elec_F COM...\n"
            "Reading RE outer energies...\n"
            "Reading RE file reorg_lambda_outer-e.dat...\n"
            "Reading V file VL.dat...\n"
            "  nV = 2\n"
            "  nV = 2\n"
            "Reading E file EL.dat...\n"
            "  nE = 2\n"
            "  nE = 2\n"
            "Reading NM file NM-e.dat...\n"
            "  nNM = 2\n"
            "  nNM = 1\n"
            "Warning: lam < 0.0 (1 -1.3668e-05)\n"
            "  Total reorganization energy is 6.19876 meV\n"
            "  Total reorganization energy is 2.4795 meV\n");
  EXPECT_EQ(t.temp, 250.0);
  EXPECT_EQ(t.carrier_char, 101);
  // V and E in hartree.
  EXPECT_EQ(t.nV, (std::vector<int>{2, 2}));
  EXPECT_DOUBLE_EQ(t.V_pair[0][0], 50.0 * kMeV);
  EXPECT_DOUBLE_EQ(t.V_pair[1][0], -12.5 * kMeV);
  EXPECT_DOUBLE_EQ(t.V_pair[1][1], 0.125 * kMeV);
  EXPECT_EQ(t.nE, (std::vector<int>{2, 2}));
  EXPECT_DOUBLE_EQ(t.dE_pair[0][1], -5.0 * kMeV);
  EXPECT_DOUBLE_EQ(t.dE_pair[1][0], -5.0 * kMeV);
  // Outer reorganisation energies.
  EXPECT_DOUBLE_EQ(t.lambda_outer[0][1], 20.0 * kMeV);
  EXPECT_DOUBLE_EQ(t.lambda_outer[1][0], 30.0 * kMeV);
  // Modes: cm-1 to hartree; the outer terms of every neighbor accumulate into the
  // frequencies, each mode by its share S / sum(S).
  EXPECT_EQ(t.nNM, (std::vector<int>{2, 1}));
  EXPECT_EQ(t.max_nNM, 2);
  EXPECT_NEAR(t.nm_freq[0][0], 1000 * kCm + 0.05 * 10 * kMeV / 0.25 + 0.05 * 20 * kMeV / 0.25, 1e-18);
  EXPECT_NEAR(t.nm_freq[0][1], 1500 * kCm + 0.2 * 10 * kMeV / 0.25 + 0.2 * 20 * kMeV / 0.25, 1e-18);
  EXPECT_NEAR(t.nm_freq[1][0], 200 * kCm + 30 * kMeV + 40 * kMeV, 1e-18);
  EXPECT_DOUBLE_EQ(t.nm_lambda[0][1], -3.0 * kCm);
  EXPECT_EQ(t.nm_S[0][1], 0.2);
  EXPECT_DOUBLE_EQ(t.lambda_mol[0], 50.0 * kCm);
  EXPECT_DOUBLE_EQ(t.lambda_mol[1], 20.0 * kCm);
  // The field: here the cell axes are Cartesian, so the field is F itself.
  EXPECT_DOUBLE_EQ(t.neighbor_dx[0][0], 3.0);
  EXPECT_DOUBLE_EQ(t.neighbor_dx[0][3], -9.0);
  EXPECT_DOUBLE_EQ(t.neighbor_dx[1][0], -3.0);
  EXPECT_DOUBLE_EQ(t.dE_field[0][0], 1e8 * 3.0 * 1e-10 * 0.03675);
  EXPECT_DOUBLE_EQ(t.dE_field[1][1], 1e8 * 9.0 * 1e-10 * 0.03675);
  // Globals, offsets, rate rows.
  EXPECT_EQ(ratetype_m, "quantum");
  EXPECT_EQ(temperature_m, 250.0);
  EXPECT_EQ(maxt_m, 10000.0);
  ASSERT_NE(S_m, nullptr);
  ASSERT_NE(freq_m, nullptr);
  EXPECT_EQ(S_m[1], 0.0);
  EXPECT_EQ(t.neighbor_key_offset[0], 0);
  EXPECT_EQ(t.neighbor_key_offset[1], 2);
  ASSERT_NE(t.w0, nullptr);
  EXPECT_EQ(t.w0[1][1], 0.0);
  EXPECT_EQ(t.w0_no_V, nullptr);
}

TEST(DynDisorderInitPrefix, FieldIsTakenAlongTheCellAxes) {
  TempDir dir;
  pair_files();
  Transport t;
  with_neighbors(t);
  // Axis a leans into y: (8, 6, 0), length 10. The displacement stays Cartesian
  // (from latt_f2c), the field goes through the normalised axes of latt_3x3.
  const double axes[3][3] = {{8.0, 0.0, 0.0}, {6.0, 20.0, 0.0}, {0.0, 0.0, 20.0}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) t.latt_3x3[r][c] = axes[r][c];
  t.latt_lengths[0] = 10.0;
  t.appE_flag = true;
  t.app_elec_F[0] = 0.0;
  t.app_elec_F[1] = 1e8;
  t.app_elec_F[2] = 0.0;
  capture_stdout([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_DOUBLE_EQ(t.field_axes[0][0], 0.8);
  EXPECT_DOUBLE_EQ(t.field_axes[1][0], 0.6);
  EXPECT_DOUBLE_EQ(t.field_axes[1][1], 1.0);
  EXPECT_DOUBLE_EQ(t.field_axes[2][2], 1.0);
  // e = (0.6e8, 1e8, 0); displacement (3, 0, 0): 1.8e8 * 1e-10 * 0.03675.
  EXPECT_DOUBLE_EQ(t.dE_field[0][0], 6.615e-4);
  EXPECT_DOUBLE_EQ(t.dE_field[0][1], -3.0 * 6.615e-4);
  EXPECT_DOUBLE_EQ(t.dE_field[1][0], -6.615e-4);
}

TEST(DynDisorderInitPrefix, TakesTheTemperatureFileAsItStands) {
  TempDir dir;
  pair_files();
  write_file("temp.inp", "-20\n");
  Transport t;
  with_neighbors(t);
  capture_stdout([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(t.temp, -20.0);
  EXPECT_EQ(temperature_m, -20.0);
}

TEST(DynDisorderInitPrefix, WithoutOptionalFilesKeepsDefaults) {
  TempDir dir;
  copy_fixture("VL.dat");
  copy_fixture("NM-e.dat");
  Transport t;
  with_neighbors(t);
  t.post_data_read_treatment(false);  // carrier 'e' from the control value
  t.temp = 280.0;
  t.lat_site_energy = 1;  // EL.dat is missing: skipped silently
  t.V_dynamic_disorder = true;
  const std::string out = capture_stdout([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(out, "General dynamic disorder initialization...\nWarning: lam < 0.0 (1 -1.3668e-05)\n");
  EXPECT_EQ(t.temp, 280.0);
  EXPECT_EQ(t.dE_pair[0], (std::vector<double>{0.0, 0.0}));
  EXPECT_EQ(t.nE, (std::vector<int>{0, 0}));
  EXPECT_EQ(t.lambda_outer, nullptr);
  EXPECT_EQ(t.dE_field, nullptr);
  EXPECT_DOUBLE_EQ(t.nm_freq[1][0], 200.0 * kCm);  // no outer term
  ASSERT_NE(t.w0_no_V, nullptr);
  EXPECT_EQ(t.w0_no_V_rows_allocated, 2);
  t.dyn_disorder_clean();  // release_memories leaves dynamic data to a completed MC_init
}

TEST(DynDisorderInitPrefix, HoleFilesAndMarcusLeaveFrequencies) {
  TempDir dir;
  copy_fixture("VH.dat");
  copy_fixture("NM-h.dat");
  write_file("reorg_lambda_outer-h.dat", "2\n2\n1.0\n1.0\n2\n1.0\n1.0\n");
  write_file("charge.inp", "H\n");
  Transport t;
  with_neighbors(t);
  t.reorg_outer_flag = 1;
  t.ratetype = "Marcus";
  capture_stdout([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(t.carrier_char, 104);
  EXPECT_DOUBLE_EQ(t.V_pair[0][0], 40.0 * kMeV);
  EXPECT_DOUBLE_EQ(t.nm_freq[0][0], 800.0 * kCm);
  EXPECT_DOUBLE_EQ(t.lambda_outer[1][1], 1.0 * kMeV);
}

TEST(DynDisorderInitPrefix, UniquePairPositionsFollowTheKeyList) {
  TempDir dir;
  run_files();
  copy_fixture("NM-e.dat");
  Transport t;
  with_neighbors(t);
  t.unique_2mol_calc_flag = true;
  int keys[] = {1, 3};
  t.pair_keylist = keys;
  t.pair_keylist_count = 2;
  capture_stdout([&] { t.dyn_disorder_init_prefix(false); });
  t.pair_keylist = nullptr;
  t.pair_keylist_count = 0;
  EXPECT_EQ(t.unique_pair_index.size(), 2u);
  EXPECT_EQ(t.unique_pair_index[1], 0);
  EXPECT_EQ(t.unique_pair_index[3], 1);
}

TEST(DynDisorderInitPrefix, SecondCallStartsAfresh) {
  TempDir dir;
  pair_files();
  Transport t;
  with_neighbors(t);
  t.appE_flag = true;
  t.reorg_outer_flag = 1;
  capture_stdout([&] {
    t.dyn_disorder_init_prefix(false);
    t.dyn_disorder_init_prefix(false);
  });
  EXPECT_EQ(t.nm_freq[0].size(), 2u);
  EXPECT_EQ(t.V_pair[1].size(), 2u);
}

TEST(DynDisorderInitPrefix, ChargeOtherThanElectronOrHoleIsFatal) {
  TempDir dir;
  pair_files();
  write_file("charge.inp", "x\n");
  Transport t;
  with_neighbors(t);
  RunResult r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), "General dynamic disorder initialization...\n" + kHead +
                                          "chargetype in charge.inp should be either 'e' or 'h'\n");
  EXPECT_EQ(r.status, 1);
  // Without the file the control's carrier stands, and "a" is neither.
  std::remove("charge.inp");
  t.carrier_char = 'a';
  r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(r.status, 1);
}

TEST(DynDisorderInitPrefix, MissingFilesAreFatalWithTheirOwnWords) {
  TempDir dir;
  pair_files();
  Transport t;
  with_neighbors(t);
  const std::string lead = "General dynamic disorder initialization...\n";
  t.reorg_outer_flag = 1;
  std::remove("reorg_lambda_outer-e.dat");
  RunResult r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), lead + kHead + "Failed to open output file reorg_lambda_outer-e.dat\n");
  EXPECT_EQ(r.status, 1);
  t.reorg_outer_flag = 0;
  std::remove("VL.dat");
  r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), lead + kHead + "Failed to open input file VL.dat\n");
  EXPECT_EQ(r.status, 1);
  copy_fixture("VL.dat");
  std::remove("NM-e.dat");
  r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), lead + kHead + "Failed to open input file NM-e.dat\n");
  EXPECT_EQ(r.status, 1);
}

TEST(DynDisorderInitPrefix, MalformedFilesAreFatal) {
  TempDir dir;
  pair_files();
  Transport t;
  with_neighbors(t);
  const std::string lead = "General dynamic disorder initialization...\n";
  write_file("NM-e.dat", "# modes\n-1\n");
  RunResult r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), lead + kHead + "Failed to read 'NM-e.dat' line 2: negative number of modes\n");
  EXPECT_EQ(r.status, 1);
  write_file("NM-e.dat", "# modes\n1\n1000.0 50.0\n");
  r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), lead + kHead +
                                          "Failed to read 'NM-e.dat' line 3: three numbers are needed: frequency, "
                                          "lambda, S\n");
  EXPECT_EQ(r.status, 1);
  write_file("VL.dat", "2\n2\n5.0 meV\nmeV\n");
  r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), lead + kHead + "Failed to read 'VL.dat' line 4: no number\n");
  EXPECT_EQ(r.status, 1);
  write_file("VL.dat", "2\n3\n");
  r = run_forked([&] { t.dyn_disorder_init_prefix(false); });
  EXPECT_EQ(mask_line_numbers(r.out), lead + kHead + "Data in 'VL.dat' incomptible: 3 : 2 should be equal!\n");
  EXPECT_EQ(r.status, 1);
}

}  // namespace
