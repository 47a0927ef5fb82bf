// Dipole tuning: the rotation and displacement series of a dimer, from a crystal
// of two molecules or from two XYZ files, with the principal axis or a given one.
//
// Expected files are in tests/data/golden/dipole. They were worked out by hand,
// with an independent Python calculation for the irrational numbers: rotations by
// Rodrigues' vector form v cos(t) + (k x v) sin(t) + k (k . v)(1 - cos(t)) with
// math.pi, principal axes as the analytic eigenvectors of the 2x2 block of the
// dimer's moment tensor (positive off-diagonal sums, divided by the atom count),
// each eigenvector signed as a Jacobi rotation of less than 45 degrees leaves it
// (positive component on its own axis). The inputs keep every atom in one plane,
// so the tensor has one 2x2 block and the solver needs a single rotation.
//
// Crystal (tests/data/dipole/two_h2_p1.cif, all atoms at z = 0): molecule 1 is H2
// along x around (3, 3, 0), molecule 2 H2 along y around (7, 5, 0). About the
// dimer's centre the x-y block is m * [[4.245, 8], [8, 16.245]] / 4, whose
// eigenvalue 0.245 m / 4 has the eigenvector (2, -1)/sqrt(5): axis 0 is
// (0.894427, -0.447214, 0). With the textbook minus sign it would be (2, 1)/sqrt(5),
// and rows of the untransposed matrix would give (0.894427, 0.447214, 0).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

std::string today() {
  const std::time_t now = std::time(nullptr);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d", std::localtime(&now));
  return text;
}

// A golden file with its YYYY-MM-DD placeholder set to today.
std::string golden(const std::string& name) {
  std::string text = txtest::read_file(txtest::data_path("golden/dipole/" + name));
  EXPECT_FALSE(text.empty()) << "missing golden file " << name;
  const std::string date = today();
  for (size_t at = text.find("YYYY-MM-DD"); at != std::string::npos; at = text.find("YYYY-MM-DD", at))
    text.replace(at, 10, date);
  return text;
}

std::string input(const std::string& name) { return txtest::data_path("dipole/" + name); }

// Names of the files in the working directory, sorted.
std::vector<std::string> files_here() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator("."))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> sorted(std::vector<std::string> v) {
  std::sort(v.begin(), v.end());
  return v;
}

// Line `n` (0-based) of a text.
std::string line_of(const std::string& text, int n) {
  size_t start = 0;
  for (int i = 0; i < n; ++i) start = text.find('\n', start) + 1;
  return text.substr(start, text.find('\n', start) - start);
}

// The arguments of one call, with names, so that each test shows only what it sets.
struct Tune {
  std::vector<std::string> files;
  std::string prefix = "h2";
  bool rotate = false;
  bool displace = false;
  std::vector<double> axis;  // empty: the principal axis `dir`
  int dir = 0;
  double ang_end = 0.0;
  int ang_n = 0;
  double disp_end = 0.0;
  int disp_n = 0;
  bool write_xyz = false;
  bool verbose = false;
  std::vector<double> centre;

  void operator()(FileIO& io) const {
    io.dipole_tune(files, prefix.c_str(), rotate, displace, axis.empty() ? nullptr : axis.data(), dir, ang_end,
                   ang_n, disp_end, disp_n, write_xyz, verbose, centre);
  }
  std::string run(FileIO& io) const {
    return txtest::capture_stdout([&] { (*this)(io); });
  }
};

Tune crystal() {
  Tune t;
  t.files = {input("two_h2_p1.cif")};
  return t;
}

Tune two_xyz() {
  Tune t;
  t.files = {input("co.xyz"), input("n2.xyz")};
  t.prefix = "co";
  t.dir = 2;
  return t;
}

const char* const head_error = "\nERROR  transport : fileio : line # : \n";

class DipoleTune : public ::testing::Test {
 protected:
  txtest::TempDir dir;
  FileIO io;
};

// ---- the crystal route --------------------------------------------------------------

TEST_F(DipoleTune, CrystalRotationAboutThePrincipalAxisStartsAtAngDeltaAndEndsAtAngEnd) {
  Tune t = crystal();
  t.rotate = true;
  t.ang_end = 120.0;
  t.ang_n = 2;
  t.write_xyz = true;
  const std::string out = t.run(io);
  EXPECT_EQ(out,
            " Rotating principal axle direction: 0\n"
            " Rotating axle unit vector:  0.89443 -0.44721        0\n"
            " Rotate ang_n: 2\n"
            " Rotate ang_end: 120\n"
            " Rotate ang_delta: 60\n"
            " Writing h2_d0_rot_60.xyz\n"
            " Writing h2_d0_rot_120.xyz\n");
  // No file for the starting position (angle 0).
  EXPECT_EQ(files_here(), sorted({"h2_d0_rot60.cif", "h2_d0_rot120.cif", "h2_d0_rot_60.xyz", "h2_d0_rot_120.xyz"}));
  for (const char* name : {"h2_d0_rot60.cif", "h2_d0_rot120.cif", "h2_d0_rot_60.xyz", "h2_d0_rot_120.xyz"})
    EXPECT_EQ(txtest::read_file(name), golden(name)) << name;
}

TEST_F(DipoleTune, CrystalDisplacementRoundsTheDistanceInCifNamesAndNotInXyzNames) {
  Tune t = crystal();
  t.displace = true;
  t.disp_end = 1.0;
  t.disp_n = 2;
  t.write_xyz = true;
  const std::string out = t.run(io);
  // Without verbose the displacement series names no file.
  EXPECT_EQ(out,
            " Rotating principal axle direction: 0\n"
            " Rotating axle unit vector:  0.89443 -0.44721        0\n"
            " Displace disp_n: 2\n"
            " Displace disp_delta: 1\n"
            " Displace disp_dr: 0.5\n");
  // 0.5 through "%.0f" is "0", through "%g" "0.5".
  EXPECT_EQ(files_here(), sorted({"h2_d0_disp0.cif", "h2_d0_disp1.cif", "h2_d0_disp_0.5.xyz", "h2_d0_disp_1.xyz"}));
  for (const char* name : {"h2_d0_disp0.cif", "h2_d0_disp1.cif", "h2_d0_disp_0.5.xyz", "h2_d0_disp_1.xyz"})
    EXPECT_EQ(txtest::read_file(name), golden(name)) << name;
}

TEST_F(DipoleTune, CrystalRotationAboutAGivenAxisUsesTheDvNames) {
  Tune t = crystal();
  t.rotate = true;
  t.axis = {0.0, 0.0, 1.0};
  t.dir = 5;  // only a name part with a given axis, and the rotation names do not use it
  t.ang_end = 180.0;
  t.ang_n = 2;
  t.write_xyz = true;
  const std::string out = t.run(io);
  EXPECT_EQ(out,
            " Rotating axle unit vector:        0        0        1\n"
            " Rotate ang_n: 2\n"
            " Rotate ang_end: 180\n"
            " Rotate ang_delta: 90\n"
            " Writing h2_dv_rot_90.xyz\n"
            " Writing h2_dv_rot_180.xyz\n");
  EXPECT_EQ(files_here(), sorted({"h2_dv_rot90.cif", "h2_dv_rot180.cif", "h2_dv_rot_90.xyz", "h2_dv_rot_180.xyz"}));
  for (const char* name : {"h2_dv_rot90.cif", "h2_dv_rot180.cif", "h2_dv_rot_90.xyz", "h2_dv_rot_180.xyz"})
    EXPECT_EQ(txtest::read_file(name), golden(name)) << name;
}

TEST_F(DipoleTune, GivenAxisDisplacementKeepsDirInTheXyzNameAndIsNotNormalised) {
  Tune t = crystal();
  t.displace = true;
  t.axis = {0.0, 0.0, 2.0};
  t.dir = 1;
  t.disp_end = 1.0;
  t.disp_n = 1;
  t.write_xyz = true;
  t.run(io);
  // A distance of 1 along (0, 0, 2) moves molecule 2 by 2 angstrom: z = 0.2 in the cell.
  EXPECT_EQ(files_here(), sorted({"h2_dv_disp1.cif", "h2_d1_disp_1.xyz"}));
  for (const char* name : {"h2_dv_disp1.cif", "h2_d1_disp_1.xyz"})
    EXPECT_EQ(txtest::read_file(name), golden(name)) << name;
}

TEST_F(DipoleTune, GivenAxisIsTakenAsItStandsForRotation) {
  Tune t = crystal();
  t.rotate = true;
  t.axis = {0.0, 0.0, 2.0};
  t.ang_end = 90.0;
  t.ang_n = 1;
  t.write_xyz = true;
  const std::string out = t.run(io);
  EXPECT_EQ(line_of(out, 0), " Rotating axle unit vector:        0        0        2");
  // By hand: W of (0, 0, 2) is [[0, -2, 0], [2, 0, 0], [0, 0, 0]], W^2 = diag(-4, -4, 0),
  // so at 90 degrees R = I + W + W^2 = [[-3, -2, 0], [2, -3, 0], [0, 0, 1]]. About
  // (7, 5, 0): (0, -0.35, 0) goes to (0.7, 1.05, 0), (0, 0.35, 0) to (-0.7, -1.05, 0).
  const std::string xyz = txtest::read_file("h2_dv_rot_90.xyz");
  EXPECT_EQ(line_of(xyz, 4), "H     7.7000    6.0500    0.0000");
  EXPECT_EQ(line_of(xyz, 5), "H     6.3000    3.9500    0.0000");
  EXPECT_EQ(line_of(xyz, 6), "U     7.0000    5.0000   -1.5000");
  EXPECT_EQ(line_of(xyz, 7), "V     7.0000    5.0000    1.5000");
}

TEST_F(DipoleTune, RotationCentreWithThreeValuesReplacesTheCentreOfMass) {
  Tune t = crystal();
  t.rotate = true;
  t.axis = {0.0, 0.0, 1.0};
  t.ang_end = 180.0;
  t.ang_n = 1;
  t.write_xyz = true;
  t.centre = {7.0, 4.65, 0.0};  // the first atom of molecule 2
  t.run(io);
  // Half a turn about the first atom: it stays, the second goes from y = 5.35 to
  // 3.95. The markers stay at molecule 2's centre of mass.
  const std::string xyz = txtest::read_file("h2_dv_rot_180.xyz");
  EXPECT_EQ(line_of(xyz, 4), "H     7.0000    4.6500    0.0000");
  EXPECT_EQ(line_of(xyz, 5), "H     7.0000    3.9500    0.0000");
  EXPECT_EQ(line_of(xyz, 6), "U     7.0000    5.0000   -0.7500");
  EXPECT_EQ(line_of(xyz, 7), "V     7.0000    5.0000    0.7500");
}

TEST_F(DipoleTune, RotationCentreWithoutThreeValuesIsMoleculeTwosCentreOfMass) {
  Tune t = crystal();
  t.rotate = true;
  t.axis = {0.0, 0.0, 1.0};
  t.ang_end = 180.0;
  t.ang_n = 1;
  t.write_xyz = true;
  t.centre = {1.0, 2.0};
  t.run(io);
  EXPECT_EQ(txtest::read_file("h2_dv_rot_180.xyz"), golden("h2_dv_rot_180.xyz"));
}

TEST_F(DipoleTune, ThreeMoleculeCellWritesNothingAndSaysNothing) {
  Tune t;
  t.files = {input("three_h2_p1.cif")};
  t.rotate = true;
  t.displace = true;
  t.ang_end = 90.0;
  t.ang_n = 2;
  t.disp_end = 1.0;
  t.disp_n = 2;
  t.write_xyz = true;
  EXPECT_EQ(t.run(io), "");
  EXPECT_TRUE(files_here().empty());
  EXPECT_EQ(io.nmols_uc, 3);
}

TEST_F(DipoleTune, AngNBelowOnePrintsTheSeriesValuesAndWritesNoFile) {
  Tune t = crystal();
  t.rotate = true;
  t.axis = {0.0, 0.0, 1.0};
  t.write_xyz = true;
  t.ang_end = 90.0;
  t.ang_n = 0;
  EXPECT_EQ(t.run(io),
            " Rotating axle unit vector:        0        0        1\n"
            " Rotate ang_n: 0\n"
            " Rotate ang_end: 90\n"
            " Rotate ang_delta: inf\n");
  t.ang_n = -2;
  EXPECT_EQ(t.run(io),
            " Rotating axle unit vector:        0        0        1\n"
            " Rotate ang_n: -2\n"
            " Rotate ang_end: 90\n"
            " Rotate ang_delta: -45\n");
  t.ang_end = 0.0;
  t.ang_n = 0;
  EXPECT_EQ(line_of(t.run(io), 3), " Rotate ang_delta: nan");
  EXPECT_TRUE(files_here().empty());
}

TEST_F(DipoleTune, DispNBelowOnePrintsTheSeriesValuesAndWritesNoFile) {
  Tune t = crystal();
  t.displace = true;
  t.axis = {0.0, 0.0, 1.0};
  t.write_xyz = true;
  t.disp_end = -1.5;
  t.disp_n = 0;
  EXPECT_EQ(t.run(io),
            " Rotating axle unit vector:        0        0        1\n"
            " Displace disp_n: 0\n"
            " Displace disp_delta: -1.5\n"
            " Displace disp_dr: -inf\n");
  t.disp_end = 1.5;
  t.disp_n = -3;
  EXPECT_EQ(t.run(io),
            " Rotating axle unit vector:        0        0        1\n"
            " Displace disp_n: -3\n"
            " Displace disp_delta: 1.5\n"
            " Displace disp_dr: -0.5\n");
  EXPECT_TRUE(files_here().empty());
}

TEST_F(DipoleTune, GaussianHeadLinesGrowByEightOnEveryCall) {
  const std::vector<std::string> eight = {"%chk=diple.chk",
                                          "%mem=4096MB",
                                          "%nprocs=20",
                                          "#P b3lyp STO-3g iop(3/33=1,5/33=2) pop=full nosymm",
                                          "",
                                          "uc_mol",
                                          "",
                                          "0 1"};
  EXPECT_TRUE(io.gaussian_head_lines.empty());
  Tune t = crystal();
  t.axis = {0.0, 0.0, 1.0};
  t.run(io);
  EXPECT_EQ(io.gaussian_head_lines, eight);
  t.run(io);
  std::vector<std::string> sixteen = eight;
  sixteen.insert(sixteen.end(), eight.begin(), eight.end());
  EXPECT_EQ(io.gaussian_head_lines, sixteen);
}

TEST_F(DipoleTune, CrystalRouteFillsCentresOfMassAndSequenceNumbers) {
  Tune t = crystal();
  t.axis = {0.0, 0.0, 1.0};
  t.run(io);
  EXPECT_EQ(io.mol_input_mode, 2);
  ASSERT_EQ(io.nmols_uc, 2);
  EXPECT_EQ(io.mol_index[0], 1);
  EXPECT_EQ(io.mol_index[1], 2);
  EXPECT_NEAR(io.mol_mass[0], 2 * 1.00794, 1e-12);
  const double com[2][3] = {{3.0, 3.0, 0.0}, {7.0, 5.0, 0.0}};
  for (int m = 0; m < 2; ++m)
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(io.mol_x_com[m][k], com[m][k], 1e-12);
}

// ---- the route with two XYZ files ---------------------------------------------------------

TEST_F(DipoleTune, TwoXyzFilesWriteBothSeriesWithAnXyzFilePerStepEvenWithoutWriteXyz) {
  Tune t = two_xyz();
  t.rotate = true;
  t.displace = true;
  t.ang_end = 90.0;
  t.ang_n = 1;
  t.disp_end = 2.0;
  t.disp_n = 1;
  t.write_xyz = false;
  const std::string out = t.run(io);
  EXPECT_EQ(out,
            " Rotating principal axle direction: 2\n"
            " Rotating axle unit vector:  0.65562        0  0.75509\n"
            " Rotate ang_n: 1\n"
            " Rotate ang_end: 90\n"
            " Rotate ang_delta: 90\n"
            " Writing co_d2_rot_90.xyz\n"
            " Displace disp_n: 1\n"
            " Displace disp_delta: 2\n"
            " Displace disp_dr: 2\n");
  EXPECT_EQ(files_here(), sorted({"co_d2_rot90.cif", "co_d2_rot_90.xyz", "co_d2_disp2.cif", "co_d2_disp_2.xyz"}));
  for (const char* name : {"co_d2_rot90.cif", "co_d2_rot_90.xyz", "co_d2_disp2.cif", "co_d2_disp_2.xyz"})
    EXPECT_EQ(txtest::read_file(name), golden(name)) << name;
}

TEST_F(DipoleTune, VerboseRunReportsReadingCentresEigenvectorsAndEveryFile) {
  Tune t = two_xyz();
  t.rotate = true;
  t.displace = true;
  t.ang_end = 90.0;
  t.ang_n = 1;
  t.disp_end = 2.0;
  t.disp_n = 1;
  t.verbose = true;
  const std::string out = t.run(io);
  // Centres by hand: CO (12.011 * 1 + 15.9994 * 2.125) / 28.0104 = 1.64259 in x;
  // N2 (4, 0, 3.05). Eigenvectors from the x-z block of the tensor (see the head).
  // The rotation's XYZ file is named twice, the displacement's twice under verbose.
  EXPECT_EQ(out, " Reading file " + t.files[0] + "\n" +
                     " Reading file " + t.files[1] + "\n"
                     " Reading files OK\n"
                     " nmols_uc = 2\n"
                     " natoms = 2 2\n"
                     " Calculating COM...\n"
                     " COM 1 = 1.64259 0 1\n"
                     " COM 2 = 4 0 3.05\n"
                     " Eigen vector #0:     0.755089            0    -0.655623\n"
                     " Eigen vector #1:            0            1            0\n"
                     " Eigen vector #2:     0.655623            0     0.755089\n"
                     " Rotating principal axle direction: 2\n"
                     " Rotating axle unit vector:  0.65562        0  0.75509\n"
                     " Rotate ang_n: 1\n"
                     " Rotate ang_end: 90\n"
                     " Rotate ang_delta: 90\n"
                     " Writing co_d2_rot90.cif\n"
                     " Writing co_d2_rot_90.xyz\n"
                     " Writing co_d2_rot_90.xyz\n"
                     " Displace disp_n: 1\n"
                     " Displace disp_delta: 2\n"
                     " Displace disp_dr: 2\n"
                     " Writing co_d2_disp2.cif\n"
                     " Writing co_d2_disp_2.xyz\n"
                     " Writing co_d2_disp_2.xyz\n");
}

TEST_F(DipoleTune, TwoXyzRouteFillsTheMoleculesAndABoxCellFromTheirExtent) {
  Tune t = two_xyz();
  t.run(io);
  EXPECT_EQ(io.mol_input_mode, 2);
  ASSERT_EQ(io.nmols_uc, 2);
  EXPECT_EQ(io.mol_rows_allocated, 2);
  EXPECT_EQ(io.mol_files_allocated, 2);
  EXPECT_STREQ(io.mol_files[0], t.files[0].c_str());
  EXPECT_STREQ(io.mol_files[1], t.files[1].c_str());
  EXPECT_EQ(io.mol_natoms[0], 2);
  EXPECT_EQ(io.mol_natoms[1], 2);
  EXPECT_EQ(io.mol_elem[0][0], 6);
  EXPECT_EQ(io.mol_elem[0][1], 8);  // "o", folded to O
  EXPECT_EQ(io.mol_elem[1][0], 7);
  EXPECT_EQ(io.mol_elem[1][1], 7);
  EXPECT_EQ(io.mol_x[0][3], 2.125);  // the tab-separated line
  EXPECT_EQ(io.mol_x[1][2], 2.5);    // the line with leading blanks
  EXPECT_EQ(io.mol_index[0], 1);
  EXPECT_EQ(io.mol_index[1], 2);
  EXPECT_NEAR(io.mol_mass[0], 12.011 + 15.9994, 1e-12);
  EXPECT_NEAR(io.mol_mass[1], 2 * 14.0067, 1e-12);
  EXPECT_NEAR(io.mol_x_com[1][2], 3.05, 1e-12);
  // Extent 3 x 0 x 2.6 angstrom plus 10 on each axis.
  const double edge[3] = {13.0, 10.0, 12.6};
  for (int r = 0; r < 3; ++r) {
    EXPECT_NEAR(io.cell_latt[r], edge[r], 1e-12);
    EXPECT_EQ(io.cell_latt[3 + r], 90.0);
    for (int c = 0; c < 3; ++c) {
      EXPECT_NEAR(io.latt_f2c[r][c], r == c ? edge[r] : 0.0, 1e-12);
      EXPECT_NEAR(io.latt_c2f[r][c], r == c ? 1.0 / edge[r] : 0.0, 1e-15);
      EXPECT_TRUE(std::isfinite(io.latt_c2f[r][c]));
    }
  }
  EXPECT_NEAR(io.vector_c[2], 12.6, 1e-12);
  EXPECT_NEAR(io.mol_x_s[1][5], 3.6 / 12.6, 1e-15);
}

TEST_F(DipoleTune, UnknownSymbolIsStoredAsMinusOneAndWrittenAsA) {
  txtest::write_file("one.xyz", "2\n\nH 1.0 1.0 1.0\nXq 1.5 1.0 1.0\n");
  txtest::write_file("two.xyz", "1\n\nHe 5.0 5.0 5.0\n");
  Tune t;
  t.files = {"one.xyz", "two.xyz"};
  t.prefix = "unk";
  t.displace = true;
  t.axis = {0.0, 0.0, 1.0};
  t.disp_end = 1.0;
  t.disp_n = 1;
  t.run(io);
  EXPECT_EQ(io.mol_elem[0][1], -1);
  EXPECT_EQ(line_of(txtest::read_file("unk_d0_disp_1.xyz"), 3), "A     1.5000    1.0000    1.0000");
  // An unknown atom has no mass: molecule 1's centre is its H atom.
  EXPECT_EQ(io.mol_x_com[0][0], 1.0);
}

TEST_F(DipoleTune, FirstLineWithTextBehindTheNumberCountsAsTheNumber) {
  txtest::write_file("one.xyz", "1 atom\n\nH 1.0 1.0 1.0\n");
  txtest::write_file("two.xyz", "  1  \n\nH 5.0 5.0 5.0\n");
  Tune t;
  t.files = {"one.xyz", "two.xyz"};
  t.axis = {0.0, 0.0, 1.0};
  t.run(io);
  EXPECT_EQ(io.mol_natoms[0], 1);
  EXPECT_EQ(io.mol_natoms[1], 1);
}

// Both routes, one after the other on one object: each reading releases the
// arrays of the one before (the sanitizer build reports any leak).
TEST_F(DipoleTune, RepeatedRunsOnOneObjectReplaceTheMoleculeArrays) {
  Tune x = two_xyz();
  Tune c = crystal();
  c.axis = {0.0, 0.0, 1.0};
  x.run(io);
  x.run(io);
  c.run(io);
  EXPECT_EQ(io.mol_files_allocated, 2);
  EXPECT_STREQ(io.mol_files[0], "mol1.mol");
  x.run(io);
  EXPECT_EQ(io.mol_rows_allocated, 2);
  EXPECT_EQ(io.mol_elem[0][0], 6);
}

// ---- failures ------------------------------------------------------------------------------------

TEST_F(DipoleTune, NeitherOneNorTwoFilesIsFatalWithStatusOne) {
  for (const std::vector<std::string>& files :
       {std::vector<std::string>{}, std::vector<std::string>{"a.xyz", "b.xyz", "c.xyz"}}) {
    Tune t;
    t.files = files;
    txtest::RunResult r = txtest::run_forked([&] {
      FileIO fio;
      t(fio);
    });
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(txtest::mask_line_numbers(r.out), std::string(head_error) + "No input file(s) are specified!\n");
    EXPECT_EQ(r.err, "");
  }
}

TEST_F(DipoleTune, XyzInputThatCannotBeOpenedIsFatal) {
  Tune t;
  t.files = {input("co.xyz"), "missing.xyz"};
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO fio;
    t(fio);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), head_error);
  EXPECT_EQ(r.err, "Failed to open input file \"missing.xyz\"\n");
}

TEST_F(DipoleTune, XyzOutputThatCannotBeOpenedIsFatal) {
  std::filesystem::create_directory("co_d2_rot_90.xyz");
  Tune t = two_xyz();
  t.rotate = true;
  t.ang_end = 90.0;
  t.ang_n = 1;
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO fio;
    t(fio);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), std::string(" Rotating principal axle direction: 2\n"
                                                          " Rotating axle unit vector:  0.65562        0  0.75509\n"
                                                          " Rotate ang_n: 1\n"
                                                          " Rotate ang_end: 90\n"
                                                          " Rotate ang_delta: 90\n"
                                                          " Writing co_d2_rot_90.xyz\n") +
                                                  head_error);
  EXPECT_EQ(r.err, "Failed to open output file \"co_d2_rot_90.xyz\"\n");
}

// Terminate handler of the children below: names the exception that reached
// std::terminate (the library's own report is lost with abort's unflushed
// buffers), then ends as the default handler does.
[[noreturn]] void name_exception_and_abort() {
  if (std::exception_ptr e = std::current_exception()) {
    try {
      std::rethrow_exception(e);
    } catch (const std::invalid_argument& x) {
      std::fprintf(stderr, "std::invalid_argument: %s\n", x.what());
    } catch (const std::out_of_range& x) {
      std::fprintf(stderr, "std::out_of_range: %s\n", x.what());
    } catch (...) {
      std::fprintf(stderr, "another exception\n");
    }
  }
  std::fflush(stderr);
  std::abort();
}

// The conversion's exception is not caught anywhere: the child runs through a
// noexcept function so that, as in the program, it reaches std::terminate.
void expect_abnormal_end(const std::string& first_line, const std::string& expected_err) {
  txtest::write_file("bad.xyz", first_line + "\n\nH 1.0 1.0 1.0\n");
  Tune t;
  t.files = {"bad.xyz", input("n2.xyz")};
  txtest::RunResult r = txtest::run_forked([&]() noexcept {
    std::set_terminate(name_exception_and_abort);
    FileIO fio;
    t(fio);
  });
  EXPECT_EQ(r.status, 134) << first_line;  // SIGABRT
  EXPECT_EQ(r.err, expected_err) << first_line;
}

TEST_F(DipoleTune, FirstLineThatIsNoIntegerEndsAbnormally) {
  expect_abnormal_end("two", "std::invalid_argument: stoi\n");
  expect_abnormal_end("", "std::invalid_argument: stoi\n");
}

TEST_F(DipoleTune, FirstLineBeyondTheIntRangeEndsAbnormally) {
  expect_abnormal_end("99999999999", "std::out_of_range: stoi\n");
}

void expect_read_failure(const std::string& content, const std::string& message) {
  txtest::write_file("bad.xyz", content);
  Tune t;
  t.files = {input("co.xyz"), "bad.xyz"};
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO fio;
    t(fio);
  });
  EXPECT_EQ(r.status, 255) << content;
  EXPECT_EQ(txtest::mask_line_numbers(r.out), head_error);
  EXPECT_EQ(r.err, message);
}

TEST_F(DipoleTune, AtomCountBelowOneIsFatal) {
  expect_read_failure("0\n\n", "Failed to read \"bad.xyz\" line 1: the atom count 0 is below 1\n");
  expect_read_failure("-2\n\n", "Failed to read \"bad.xyz\" line 1: the atom count -2 is below 1\n");
}

TEST_F(DipoleTune, FileEndingBeforeItsAtomsIsFatal) {
  expect_read_failure("3\ncomment\nH 1 1 1\nH 1 1 2\n",
                      "Failed to read \"bad.xyz\" line 5: the file ends before atom 3 of 3\n");
}

TEST_F(DipoleTune, AtomLineWithoutThreeCoordinatesIsFatal) {
  expect_read_failure("2\ncomment\nH 1 1 1\nH 1 1\n",
                      "Failed to read \"bad.xyz\" line 4: an atom line needs a symbol and three coordinates\n");
}

TEST_F(DipoleTune, MoleculeWithoutAKnownElementIsFatal) {
  expect_read_failure("1\n\nXq 1 1 1\n",
                      "Molecule 2 has no atom of a known element and so no centre of mass\n");
}

TEST_F(DipoleTune, PrincipalDirectionOutsideZeroToTwoIsFatal) {
  Tune t = two_xyz();
  t.dir = 3;
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO fio;
    t(fio);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), head_error);
  EXPECT_EQ(r.err, "Principal axis direction 3 is not 0, 1 or 2\n");
}

}  // namespace
