// Coordinate-file readers (XYZ, PDB, gro) and the Gaussian input locator.
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

const char* const kHead = "\nERROR  transport : fileio : line # : \n";

std::string coords_path(const std::string& name) { return txtest::data_path("coords/" + name); }

void expect_atom(const FileIO& io, int i, int type, double x, double y, double z) {
  EXPECT_EQ(io.cif_atypes[i], type) << "atom " << i;
  EXPECT_DOUBLE_EQ(io.cif_x[3 * i + 0], x) << "atom " << i;
  EXPECT_DOUBLE_EQ(io.cif_x[3 * i + 1], y) << "atom " << i;
  EXPECT_DOUBLE_EQ(io.cif_x[3 * i + 2], z) << "atom " << i;
}

// ---- XYZ ------------------------------------------------------------------------

TEST(XyzReader, RepeatedBlanksBetweenFieldsAreOneSeparator) {
  FileIO io;
  io.read_data_xyz(coords_path("water.xyz").c_str(), false);
  ASSERT_EQ(io.cif_natoms, 4);
  expect_atom(io, 0, 8, 0.0, 0.0, 0.1173);
  expect_atom(io, 1, 1, 0.0, 0.7572, -0.4692);
  expect_atom(io, 2, 1, 0.0, -0.7572, -0.4692);
  // Leading tab and blanks are stripped; columns behind z are ignored.
  expect_atom(io, 3, 17, 1.5, -2.5, 3.25);
  EXPECT_EQ(io.cif_x_s, nullptr);
}

TEST(XyzReader, TabSeparatedRowIsOneSymbolAndGivesNoNumbers) {
  FileIO io;
  io.read_data_xyz(coords_path("tabs.xyz").c_str(), false);
  ASSERT_EQ(io.cif_natoms, 1);
  expect_atom(io, 0, -1, 0.0, 0.0, 0.0);
}

TEST(XyzReader, ShortFileLeavesTheMissingAtomsZeroed) {
  FileIO io;
  io.read_data_xyz(coords_path("short.xyz").c_str(), false);
  ASSERT_EQ(io.cif_natoms, 3);
  expect_atom(io, 0, 7, 1.0, 2.0, 3.0);
  expect_atom(io, 1, 0, 0.0, 0.0, 0.0);
  expect_atom(io, 2, 0, 0.0, 0.0, 0.0);
}

TEST(XyzReader, VerboseAnnouncesTheFile) {
  FileIO io;
  const std::string path = coords_path("short.xyz");
  std::string out = txtest::capture_stdout([&] { io.read_data_xyz(path.c_str(), true); });
  EXPECT_EQ(out, "Reading file \"" + path + "\"... ");
}

TEST(XyzReader, SecondReadReplacesTheCrystalArrays) {
  FileIO io;
  io.cif_natoms = 2;
  io.cif_x_s = new double[6]();
  io.cif_radii = new double[2]();
  io.read_data_xyz(coords_path("water.xyz").c_str(), false);
  io.read_data_xyz(coords_path("short.xyz").c_str(), false);
  EXPECT_EQ(io.cif_natoms, 3);
  EXPECT_EQ(io.cif_x_s, nullptr);
  EXPECT_EQ(io.cif_radii, nullptr);
}

TEST(XyzReader, UnreadableFileExitsWithMinusOne) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_xyz("/nonexistent/absent.xyz", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open input file \"/nonexistent/absent.xyz\"\n");
}

TEST(XyzReader, HugeAtomCountIsRefusedBeforeAllocating) {
  txtest::TempDir dir;
  txtest::write_file("huge.xyz", "2000000000\ncomment\nC 0 0 0\n");
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_xyz("huge.xyz", false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to read 'huge.xyz' line 1: atom count 2000000000 does not fit a file of 27 bytes\n");
}

TEST(XyzReader, NegativeAtomCountIsRefused) {
  txtest::TempDir dir;
  txtest::write_file("negative.xyz", "-1\ncomment\n");
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_xyz("negative.xyz", false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read 'negative.xyz' line 1: atom count -1 does not fit a file of 11 bytes\n");
}

TEST(XyzReader, EmptyFileHasNoAtoms) {
  txtest::TempDir dir;
  txtest::write_file("empty.xyz", "");
  FileIO io;
  io.read_data_xyz("empty.xyz", false);
  EXPECT_EQ(io.cif_natoms, 0);
}

// ---- PDB ------------------------------------------------------------------------

TEST(PdbReader, RemarkHoldingAtomCountsAndHetatmDoesNot) {
  FileIO io;
  std::string out = txtest::capture_stdout([&] { io.read_data_pdb(coords_path("cell.pdb").c_str(), false); });
  // The remark, two ATOM records; the HETATM record is no atom here.
  EXPECT_EQ(out, "  natoms = 3\n");
  ASSERT_EQ(io.cif_natoms, 3);
  // The remark's columns give "TO" (no element) and no numbers.
  expect_atom(io, 0, -1, 0.0, 0.0, 0.0);
  expect_atom(io, 1, 6, 1.0, 2.0, 3.0);
  // CA at the front of the name field is calcium.
  expect_atom(io, 2, 20, 4.0, 5.0, 6.0);
}

TEST(PdbReader, Cryst1SetsCellMatricesAndFractionalCoordinates) {
  FileIO io;
  txtest::capture_stdout([&] { io.read_data_pdb(coords_path("cell.pdb").c_str(), false); });
  const double cell[6] = {10.0, 12.0, 14.0, 90.0, 100.0, 90.0};
  for (int k = 0; k < 6; ++k) EXPECT_DOUBLE_EQ(io.cell_latt[k], cell[k]) << k;
  // python3: upper-triangular matrix of the cell with pi = 3.1415926535898, its
  // closed-form inverse, applied to (1, 2, 3) and (4, 5, 6).
  EXPECT_NEAR(io.latt_f2c[0][2], -2.431074487337076, 1e-12);
  EXPECT_NEAR(io.latt_f2c[2][2], 13.787308542170903, 1e-12);
  const double xs[3][3] = {{0.0, 0.0, 0.0},
                           {0.15289809421254136, 0.16666666666666768, 0.2175914168326598},
                           {0.505796188425083, 0.4166666666666687, 0.4351828336653196}};
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(io.cif_x_s[3 * i + k], xs[i][k], 1e-13) << i << " " << k;
}

TEST(PdbReader, VerbosePrintsTheCell) {
  FileIO io;
  const std::string path = coords_path("cell.pdb");
  std::string out = txtest::capture_stdout([&] { io.read_data_pdb(path.c_str(), true); });
  EXPECT_EQ(out, "Reading file \"" + path +
                     "\"...   natoms = 3\n"
                     "  Cell lattice a = 10\n"
                     "  Cell lattice b = 12\n"
                     "  Cell lattice c = 14\n"
                     "  Cell lattice alpha = 90\n"
                     "  Cell lattice beta  = 100\n"
                     "  Cell lattice gamma = 90\n");
}

TEST(PdbReader, OnlyHetatmRecordsGiveZeroAtoms) {
  FileIO io;
  std::string out = txtest::capture_stdout([&] { io.read_data_pdb(coords_path("hetatm_only.pdb").c_str(), false); });
  EXPECT_EQ(out, "  natoms = 0\n");
  EXPECT_EQ(io.cif_natoms, 0);
  EXPECT_DOUBLE_EQ(io.cell_latt[0], 10.0);
}

TEST(PdbReader, NoCryst1LeavesAZeroCellAndNonFiniteMatricesUnreported) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_pdb(coords_path("no_cryst.pdb").c_str(), false);
    if (io.cif_natoms != 1 || io.cif_atypes[0] != 7 || io.cell_latt[0] != 0.0) std::exit(3);
    if (std::isfinite(io.latt_c2f[0][0]) || std::isfinite(io.cif_x_s[0])) std::exit(4);
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "  natoms = 1\n");
  EXPECT_EQ(r.err, "");
}

TEST(PdbReader, ShortAtomLineReadsMissingFieldsAsZero) {
  txtest::TempDir dir;
  txtest::write_file("cut.pdb", "CRYST1   10.000   10.000   10.000  90.00  90.00  90.00\nATOM      1  N   MOL A   1       1.500\n");
  FileIO io;
  txtest::capture_stdout([&] { io.read_data_pdb("cut.pdb", false); });
  ASSERT_EQ(io.cif_natoms, 1);
  expect_atom(io, 0, 7, 1.5, 0.0, 0.0);
}

TEST(PdbReader, UnreadableFileExitsWithMinusOne) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_pdb("/nonexistent/absent.pdb", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open input file \"/nonexistent/absent.pdb\"\n");
}

// ---- gro ------------------------------------------------------------------------

TEST(GroReader, AtomNamesAreCutAtTheirFirstDigitAndNanometresBecomeAngstrom) {
  FileIO io;
  io.read_data_gro(coords_path("box3.gro").c_str(), false);
  ASSERT_EQ(io.cif_natoms, 4);
  expect_atom(io, 0, 8, 1.0, 2.0, 3.0);
  expect_atom(io, 1, 1, 1.5, -2.5, 3.5);    // H1
  expect_atom(io, 2, 6, 10.0, 11.0, 12.0);  // C12
  expect_atom(io, 3, -1, -5.0, 0.0, 0.5);   // 1H: empty name
}

TEST(GroReader, ThreeWordBoxOnAClearMatrixIsOrthogonal) {
  FileIO io;
  io.read_data_gro(coords_path("box3.gro").c_str(), false);
  const double f2c[3][3] = {{20.0, 0.0, 0.0}, {0.0, 25.0, 0.0}, {0.0, 0.0, 30.0}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_DOUBLE_EQ(io.latt_f2c[i][j], f2c[i][j]);
  EXPECT_DOUBLE_EQ(io.latt_c2f[0][0], 1.0 / 20.0);
  EXPECT_DOUBLE_EQ(io.latt_c2f[1][1], 1.0 / 25.0);
  EXPECT_DOUBLE_EQ(io.latt_c2f[2][2], 1.0 / 30.0);
  const double cell[6] = {20.0, 25.0, 30.0, 90.0, 90.0, 90.0};
  for (int k = 0; k < 6; ++k) EXPECT_DOUBLE_EQ(io.cell_latt[k], cell[k]) << k;
  EXPECT_DOUBLE_EQ(io.cif_x_s[6], 0.5);  // 10 / 20
  EXPECT_DOUBLE_EQ(io.cif_x_s[7], 0.44);  // 11 / 25
  EXPECT_DOUBLE_EQ(io.cif_x_s[8], 0.4);   // 12 / 30
}

TEST(GroReader, ThreeWordBoxKeepsOffDiagonalsHeldBefore) {
  FileIO io;
  io.latt_f2c[0][1] = 5.0;
  io.read_data_gro(coords_path("box3.gro").c_str(), false);
  EXPECT_DOUBLE_EQ(io.latt_f2c[0][0], 20.0);
  EXPECT_DOUBLE_EQ(io.latt_f2c[0][1], 5.0);
  // gamma from columns (20, 0, 0) and (5, 25, 0): acos(100 / (20 * sqrt(650))) in degrees.
  EXPECT_NEAR(io.cell_latt[5], std::acos(100.0 / (20.0 * std::sqrt(650.0))) * 180.0 / 3.141592653589793, 1e-12);
  EXPECT_NE(io.cell_latt[5], 90.0);
}

TEST(GroReader, NineWordBoxLandsRowWise) {
  FileIO io;
  io.read_data_gro(coords_path("box9.gro").c_str(), false);
  ASSERT_EQ(io.cif_natoms, 2);
  expect_atom(io, 0, 7, 1.0, 2.0, 3.0);
  expect_atom(io, 1, 16, 5.0, 6.0, 7.0);
  // Words 3..8 (v1y v1z v2x v2z v3x v3y) go to [0][1] [0][2] [1][0] [1][2] [2][0] [2][1].
  const double f2c[3][3] = {{10.0, 0.0, 0.0}, {3.0, 11.0, 0.0}, {2.0, 4.0, 12.0}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_DOUBLE_EQ(io.latt_f2c[i][j], f2c[i][j]) << i << " " << j;
  // python3: exact inverse with fractions, then fractional coordinates and the
  // cell of the columns (lengths and acos of normalised dot products).
  const double c2f[3][3] = {{0.1, 0.0, 0.0},
                            {-0.02727272727272727, 0.09090909090909091, 0.0},
                            {-0.007575757575757576, -0.030303030303030304, 0.08333333333333333}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(io.latt_c2f[i][j], c2f[i][j], 1e-15) << i << " " << j;
  const double xs[6] = {0.1, 0.15454545454545454, 0.18181818181818182, 0.5, 0.4090909090909091, 0.36363636363636365};
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(io.cif_x_s[k], xs[k], 1e-14) << k;
  const double cell[6] = {10.63014581273465, 11.704699910719626, 12.0, 70.01689347810003, 79.15549993265765,
                          70.76023750834558};
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(io.cell_latt[k], cell[k], 1e-12) << k;
}

TEST(GroReader, CountLineThatIsNoIntegerThrowsInvalidArgument) {
  FileIO io;
  EXPECT_THROW(io.read_data_gro(coords_path("not_a_count.gro").c_str(), false), std::invalid_argument);
}

TEST(GroReader, CountOutOfIntRangeThrowsOutOfRange) {
  txtest::TempDir dir;
  txtest::write_file("big.gro", "title\n99999999999\n");
  FileIO io;
  EXPECT_THROW(io.read_data_gro("big.gro", false), std::out_of_range);
}

TEST(GroReader, FileOfOneLineHasNoCountAndThrowsInvalidArgument) {
  txtest::TempDir dir;
  txtest::write_file("one.gro", "title only\n");
  FileIO io;
  EXPECT_THROW(io.read_data_gro("one.gro", false), std::invalid_argument);
}

TEST(GroReader, ShortFileLeavesMissingAtomsZeroedAndKeepsTheMatrix) {
  FileIO io;
  io.latt_f2c[0][0] = 10.0;
  io.latt_f2c[1][1] = 10.0;
  io.latt_f2c[2][2] = 10.0;
  io.read_data_gro(coords_path("short.gro").c_str(), false);
  ASSERT_EQ(io.cif_natoms, 3);
  expect_atom(io, 0, 6, 1.0, 2.0, 3.0);
  expect_atom(io, 1, 0, 0.0, 0.0, 0.0);
  expect_atom(io, 2, 0, 0.0, 0.0, 0.0);
  EXPECT_DOUBLE_EQ(io.latt_f2c[0][0], 10.0);
  EXPECT_DOUBLE_EQ(io.cif_x_s[2], 0.3);
}

TEST(GroReader, ShortFileOnAClearMatrixEndsInTheInversion) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_gro(coords_path("short.gro").c_str(), false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : txutil : line # : \nDeterminant of matrix is zero.\n");
}

TEST(GroReader, VerboseEchoesCountAndAtomLines) {
  FileIO io;
  io.latt_f2c[0][0] = io.latt_f2c[1][1] = io.latt_f2c[2][2] = 10.0;
  const std::string path = coords_path("short.gro");
  std::string out = txtest::capture_stdout([&] { io.read_data_gro(path.c_str(), true); });
  EXPECT_EQ(out, "Reading file \"" + path +
                     "\"...   natoms = 3\n"
                     "    1MOL      C    1   0.100   0.200   0.300\n");
}

TEST(GroReader, HugeAtomCountIsRefusedBeforeAllocating) {
  txtest::TempDir dir;
  txtest::write_file("huge.gro", "title\n2000000000\n");
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_gro("huge.gro", false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to read 'huge.gro' line 2: atom count 2000000000 does not fit a file of 17 bytes\n");
}

TEST(GroReader, UnreadableFileExitsWithMinusOne) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    io.read_data_gro("/nonexistent/absent.gro", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open input file \"/nonexistent/absent.gro\"\n");
}

// ---- Gaussian input ------------------------------------------------------------

TEST(GaussianCom, OneLineRouteGivesRoutePlusFive) {
  FileIO io;
  std::vector<std::string> lines;
  const int first = io.parse_gaussian_com(coords_path("one_line_route.com"), lines);
  EXPECT_EQ(first, 6);  // route at 1
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_EQ(lines[first], "O 0.0 0.0 0.1173");
}

TEST(GaussianCom, TwoLineRouteGivesRoutePlusSix) {
  FileIO io;
  std::vector<std::string> lines;
  const int first = io.parse_gaussian_com(coords_path("two_line_route.com"), lines);
  EXPECT_EQ(first, 8);  // route at 2
  EXPECT_EQ(lines[first], "O 0.0 0.0 0.1173");
}

TEST(GaussianCom, BlankLineBeforeTheRouteStillFindsIt) {
  FileIO io;
  std::vector<std::string> lines;
  const int first = io.parse_gaussian_com(coords_path("blank_before_route.com"), lines);
  EXPECT_EQ(first, 7);  // route at 2; the "#" of the title comes later and does not matter
  EXPECT_EQ(lines[first], "O 0.0 0.0 0.1173");
}

TEST(GaussianCom, LinesAreAppended) {
  FileIO io;
  std::vector<std::string> lines;
  io.parse_gaussian_com(coords_path("one_line_route.com"), lines);
  io.parse_gaussian_com(coords_path("one_line_route.com"), lines);
  EXPECT_EQ(lines.size(), 20u);
}

TEST(GaussianCom, NoHashExitsWithOne) {
  const std::string path = coords_path("no_route.com");
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO io;
    std::vector<std::string> lines;
    io.parse_gaussian_com(path, lines);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to locate \"#\" in input file " + path + "!\n");
}

TEST(GaussianCom, NeitherBlankLineExitsWithOne) {
  const std::string path = coords_path("no_blank.com");
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO io;
    std::vector<std::string> lines;
    io.parse_gaussian_com(path, lines);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to locate \"#\" in input file " + path + "!\n");
}

TEST(GaussianCom, RouteOnTheLastLineExitsWithOne) {
  txtest::TempDir dir;
  txtest::write_file("last.com", "%chk=x\n# hf\n");
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    std::vector<std::string> lines;
    io.parse_gaussian_com("last.com", lines);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to locate \"#\" in input file last.com!\n");
}

TEST(GaussianCom, UnreadableFileExitsWithOne) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    std::vector<std::string> lines;
    io.parse_gaussian_com("/nonexistent/absent.com", lines);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open input file /nonexistent/absent.com\n");
}

}  // namespace
