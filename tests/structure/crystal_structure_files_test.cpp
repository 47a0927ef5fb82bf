// read_crystal_strcuture_files: molecule arrays from a crystal (mode 2, made
// whole) or from molecule files (mode 1, taken as they stand), the settled
// lattice, cellvec.dat, and the real crystals of tests/data/cif end to end.
// Expected counts come from the "this reader" column of the fixtures'
// reference table (tests/data/cif/SOURCES.md gives the provenance); lattice
// numbers from python3 with the same formulas; file texts worked out by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

using txtest::mask_line_numbers;
using txtest::run_forked;

const std::string kHead = "\nERROR  transport : fileio : line # : \n";

// The reader's own notes on misread files (standard error) are its tests' business.
std::string quiet_read(FileIO& io, const std::string& path) {
  testing::internal::CaptureStderr();
  const std::string out = txtest::capture_stdout([&] { io.read_data_cif(path.c_str(), false); });
  testing::internal::GetCapturedStderr();
  return out;
}

std::string read_molecules(FileIO& io, bool verbose = false, bool write_cellvec = false) {
  return txtest::capture_stdout([&] { io.read_crystal_strcuture_files(verbose, write_cellvec); });
}

// A P1 crystal in a 10 angstrom cube, atoms as "label symbol x y z" rows.
std::string p1_cube_cif(const std::string& rows) {
  return "data_test\n"
         "_symmetry_space_group_name_H-M 'P 1'\n"
         "_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\n"
         "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n"
         "loop_\n_atom_site_label\n_atom_site_type_symbol\n"
         "_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n" +
         rows;
}

// Molecule-file mode as the control reader leaves it: names counted in mol_files_allocated.
void name_molecule_files(FileIO& io, const std::vector<std::string>& names) {
  const int n = static_cast<int>(names.size());
  io.mol_input_mode = 1;
  io.nmols_uc = n;
  io.mol_files = new char*[n];
  io.mol_files_allocated = n;
  for (int i = 0; i < n; ++i) {
    io.mol_files[i] = new char[names[i].size() + 1];
    std::memcpy(io.mol_files[i], names[i].c_str(), names[i].size() + 1);
  }
}

void set_vectors(FileIO& io, const double a[3], const double b[3], const double c[3]) {
  for (int k = 0; k < 3; ++k) {
    io.vector_a[k] = a[k];
    io.vector_b[k] = b[k];
    io.vector_c[k] = c[k];
  }
}

// The molecule is connected when atoms count as bonded by the criterion of
// make_whole_molecule, (covalent ri + rj) * bond_dis_scale > d, with d the
// plain Cartesian distance of mol_x: no periodic image.
bool connected_in_plain_cartesian(FileIO& io, int m) {
  const int n = io.mol_natoms[m];
  const double* x = io.mol_x[m];
  std::vector<char> reached(n, 0);
  std::vector<int> stack = {0};
  reached[0] = 1;
  int count = 1;
  while (!stack.empty()) {
    const int a = stack.back();
    stack.pop_back();
    for (int b = 0; b < n; ++b) {
      if (reached[b]) continue;
      const double dx = x[3 * b] - x[3 * a];
      const double dy = x[3 * b + 1] - x[3 * a + 1];
      const double dz = x[3 * b + 2] - x[3 * a + 2];
      const double limit = (io.find_element_radius_from_index(io.mol_elem[m][a]) +
                            io.find_element_radius_from_index(io.mol_elem[m][b])) *
                           io.bond_dis_scale;
      if (limit > std::sqrt(dx * dx + dy * dy + dz * dz)) {
        reached[b] = 1;
        ++count;
        stack.push_back(b);
      }
    }
  }
  return count == n;
}

struct Reference {
  const char* file;
  int natoms;
  std::vector<int> sizes;
};

}  // namespace

// ---- real crystals ---------------------------------------------------------------------

TEST(ReadCrystalStructureFiles, RealCrystalsGiveTheReferenceMoleculesWholeAndInTheCell) {
  const Reference refs[] = {
      {"C13H10ClN2_COD7238658.cif", 0, {}},
      {"C13H10ClN2_COD7238658_blankline.cif", 116, {29, 29, 29, 29}},
      {"benzene_COD2100348.cif", 0, {}},
      {"benzene_COD2100348_blankline.cif", 48, {12, 12, 12, 12}},
      {"calixdiquinone_COD7052819.cif", 0, {}},
      {"calixdiquinone_COD7052819_blankline.cif", 440, {110, 110, 110, 110}},
      {"dibenzoylbenzene_COD2000642.cif", 0, {}},
      {"ibuprofen_COD2300214.cif", 0, {}},
      {"ibuprofen_COD2300214_blankline.cif", 132, {33, 33, 33, 33}},
      {"tetraazaarene_COD7052868.cif", 0, {}},
      {"tetraazaarene_COD7052868_blankline.cif", 152, {76, 76}},
      {"thioquinacridone_COD2000724.cif", 0, {}},
  };
  for (const Reference& ref : refs) {
    SCOPED_TRACE(ref.file);
    FileIO io;
    quiet_read(io, txtest::data_path(std::string("cif/") + ref.file));
    ASSERT_EQ(io.cif_natoms, ref.natoms);
    io.mol_input_mode = 2;
    const std::string out = read_molecules(io);
    EXPECT_EQ(out, "");  // in particular no "Not all atoms are bonded"
    ASSERT_EQ(io.nmols_uc, static_cast<int>(ref.sizes.size()));
    EXPECT_EQ(io.mol_rows_allocated, io.nmols_uc);
    EXPECT_EQ(io.mol_files_allocated, io.nmols_uc);
    for (int m = 0; m < io.nmols_uc; ++m) {
      SCOPED_TRACE("molecule " + std::to_string(m + 1));
      EXPECT_EQ(io.mol_natoms[m], ref.sizes[m]);
      EXPECT_STREQ(io.mol_files[m], ("mol" + std::to_string(m + 1) + ".mol").c_str());
      EXPECT_EQ(io.mol_index[m], m + 1);
      EXPECT_TRUE(connected_in_plain_cartesian(io, m));
      // Centre of mass of mol_x_s inside the cell within the tolerances.
      double total = 0.0;
      double com[3] = {0.0, 0.0, 0.0};
      for (int a = 0; a < io.mol_natoms[m]; ++a) {
        const double mass = io.find_element_mass_from_index(io.mol_elem[m][a]);
        total += mass;
        for (int k = 0; k < 3; ++k) com[k] += mass * io.mol_x_s[m][3 * a + k];
      }
      for (int k = 0; k < 3; ++k) {
        EXPECT_GE(com[k] / total, -5.96046448e-08);
        EXPECT_LE(com[k] / total, 1.0000000596046448);
      }
      // mol_x is latt_f2c mol_x_s, and each atom is its crystal atom moved by whole cells.
      for (int a = 0; a < io.mol_natoms[m]; ++a) {
        double x[3];
        io.coord_f2c(&io.mol_x_s[m][3 * a], x);
        for (int k = 0; k < 3; ++k) EXPECT_EQ(io.mol_x[m][3 * a + k], x[k]);
      }
    }
    // Centres and masses wait, zero, for calc_x_com.
    for (int m = 0; m < io.nmols_uc; ++m) {
      EXPECT_EQ(io.mol_mass[m], 0.0);
      for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(io.mol_x_com[m][k], 0.0);
        EXPECT_EQ(io.mol_x_s_com[m][k], 0.0);
      }
    }
  }
}

TEST(ReadCrystalStructureFiles, AtomsOfAMoleculeAreTheirCrystalAtomsMovedByWholeCells) {
  FileIO io;
  quiet_read(io, txtest::data_path("cif/calixdiquinone_COD7052819_blankline.cif"));
  io.mol_input_mode = 2;
  read_molecules(io);
  size_t next = 0;
  for (int m = 0; m < io.nmols_uc; ++m) {
    for (int a = 0; a < io.mol_natoms[m]; ++a, ++next) {
      const int atom = io.uc_mol_atoms[next];
      EXPECT_EQ(io.mol_elem[m][a], io.cif_atypes[atom]);
      for (int k = 0; k < 3; ++k) {
        const double shift = io.mol_x_s[m][3 * a + k] - io.cif_x_s[3 * atom + k];
        EXPECT_NEAR(shift, std::round(shift), 1e-9);
      }
    }
  }
}

TEST(ReadCrystalStructureFiles, FileThatEndsTheReaderNeverReachesSeparation) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    io.read_data_cif(txtest::data_path("cif/dimethylquinacridone_COD2202108.cif").c_str(), false);
  });
  EXPECT_EQ(r.status, 255);
}

// ---- crystal mode --------------------------------------------------------------------

TEST(ReadCrystalStructureFiles, MoleculeAcrossACellFaceIsOneMoleculeAndLeavesTheCell) {
  txtest::TempDir dir;
  txtest::write_file("cross.cif", p1_cube_cif("C1 C 0.98 0.5 0.5\nC2 C 0.03 0.5 0.5\n"));
  FileIO io;
  quiet_read(io, "cross.cif");
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{2}));
  io.mol_input_mode = 2;
  const std::string out = read_molecules(io, true);
  ASSERT_EQ(io.nmols_uc, 1);
  // 0.03 goes next to 0.98 at 1.03; the centre 1.005 moves both back one cell.
  EXPECT_NEAR(io.mol_x_s[0][0], -0.02, 1e-12);
  EXPECT_NEAR(io.mol_x_s[0][3], 0.03, 1e-12);
  EXPECT_NEAR(io.mol_x[0][0], -0.2, 1e-11);
  EXPECT_NEAR(io.mol_x[0][3], 0.3, 1e-11);
  EXPECT_EQ(out,
            "Make whole molecules...\n"
            "  molecule 1 COM =  1.005000  0.500000  0.500000\n"
            "  molecule 1 COM =  0.005000  0.500000  0.500000 (wrapped)\n");
}

TEST(ReadCrystalStructureFiles, BondOfTheBondRadiiThatTheCovalentRadiiMissGivesTheWarning) {
  // 1.7 angstrom through the face: (0.77 + 0.77) * 1.15 = 1.771 joins the two
  // carbons at separation, (0.72 + 0.72) * 1.15 = 1.656 does not make them whole.
  txtest::TempDir dir;
  txtest::write_file("cut.cif", p1_cube_cif("C1 C 0.02 0.5 0.5\nC2 C 0.85 0.5 0.5\n"));
  FileIO io;
  quiet_read(io, "cut.cif");
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{2}));
  io.mol_input_mode = 2;
  const std::string out = read_molecules(io);
  EXPECT_EQ(out, "WARNING: Not all atoms are bonded in the molecule!\n         nat_bonded = 1, natoms = 2\n");
  ASSERT_EQ(io.nmols_uc, 1);
  EXPECT_EQ(io.mol_x_s[0][0], 0.02);
  EXPECT_EQ(io.mol_x_s[0][3], 0.85);  // kept in place
}

TEST(ReadCrystalStructureFiles, CrystalModeTakesTheVectorsFromTheCell) {
  // Columns of the cell matrix of 7 8 9 70 80 100 (python3, pi = 3.1415926535898).
  const double cell[6] = {7.0, 8.0, 9.0, 70.0, 80.0, 100.0};
  FileIO io;
  std::memcpy(io.cell_latt, cell, sizeof cell);
  io.convert_cell6_to_latt3x3(io.cell_latt, io.latt_f2c);
  io.mol_input_mode = 2;
  read_molecules(io);
  EXPECT_EQ(io.nmols_uc, 0);
  EXPECT_EQ(io.mol_natoms, nullptr);
  EXPECT_EQ(io.vector_a[0], 7.0);
  EXPECT_EQ(io.vector_a[1], 0.0);
  EXPECT_EQ(io.vector_a[2], 0.0);
  EXPECT_NEAR(io.vector_b[0], -1.3891854213354722, 1e-14);
  EXPECT_NEAR(io.vector_b[1], 7.87846202409766, 1e-14);
  EXPECT_EQ(io.vector_b[2], 0.0);
  EXPECT_NEAR(io.vector_c[0], 1.5628335990023463, 1e-14);
  EXPECT_NEAR(io.vector_c[1], 3.40123692786656, 1e-14);
  EXPECT_NEAR(io.vector_c[2], 8.184689273414488, 1e-14);
  EXPECT_NEAR(io.latt_lengths[0], 7.0, 1e-13);
  EXPECT_NEAR(io.latt_lengths[1], 8.0, 1e-13);
  EXPECT_NEAR(io.latt_lengths[2], 9.0, 1e-13);
  for (int k = 0; k < 6; ++k) EXPECT_EQ(io.cell_latt[k], cell[k]);  // crystal mode leaves the cell as read
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      EXPECT_EQ(io.latt_3x3[r][c], io.latt_f2c[r][c]);
      double unit = 0.0;
      for (int k = 0; k < 3; ++k) unit += io.latt_f2c[r][k] * io.latt_c2f[k][c];
      EXPECT_NEAR(unit, r == c ? 1.0 : 0.0, 1e-14);
    }
  }
}

TEST(ReadCrystalStructureFiles, SupercellScalesTheRowsOfTheMatrixNotTheLatticeVectors) {
  const double cell[6] = {7.0, 8.0, 9.0, 70.0, 80.0, 100.0};
  FileIO io;
  io.convert_cell6_to_latt3x3(cell, io.latt_f2c);
  io.super_cell[0] = 2;
  io.super_cell[1] = 1;
  io.super_cell[2] = 1;
  io.mol_input_mode = 2;
  read_molecules(io);
  // Row 0 doubled: its b and c components too, which doubling vector a would leave alone.
  EXPECT_EQ(io.super_latt_3x3[0][0], 14.0);
  EXPECT_EQ(io.super_latt_3x3[0][1], 2.0 * io.latt_3x3[0][1]);
  EXPECT_NEAR(io.super_latt_3x3[0][1], -2.7783708426709444, 1e-13);
  EXPECT_EQ(io.super_latt_3x3[0][2], 2.0 * io.latt_3x3[0][2]);
  for (int r = 1; r < 3; ++r)
    for (int c = 0; c < 3; ++c) EXPECT_EQ(io.super_latt_3x3[r][c], io.latt_3x3[r][c]);
}

TEST(ReadCrystalStructureFiles, CellvecOfACubeShowsTheSignsOfTheShortenedPi) {
  // 90 degrees with pi = 3.1415926535898 is a little more than a right angle:
  // its cosine is about -3.5e-15, so b's x, and c's x and y, print as -0.000000.
  txtest::TempDir dir;
  const double cube[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 90.0};
  FileIO io;
  io.convert_cell6_to_latt3x3(cube, io.latt_f2c);
  io.mol_input_mode = 2;
  read_molecules(io, false, true);
  EXPECT_EQ(txtest::read_file("data/cellvec.dat"),
            "a =      10.000000       0.000000       0.000000\n"
            "b =      -0.000000      10.000000       0.000000\n"
            "c =      -0.000000      -0.000000      10.000000\n");
}

TEST(ReadCrystalStructureFiles, CellvecGoesToTheDataDirectory) {
  txtest::TempDir dir;
  FileIO io;
  io.data_dir = "out";
  const double cube[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 90.0};
  io.convert_cell6_to_latt3x3(cube, io.latt_f2c);
  io.mol_input_mode = 2;
  read_molecules(io, false, true);
  EXPECT_TRUE(txtest::path_exists("out/cellvec.dat"));
  EXPECT_FALSE(txtest::path_exists("data"));
}

TEST(ReadCrystalStructureFiles, NoCellvecUnlessAsked) {
  txtest::TempDir dir;
  FileIO io;
  const double cube[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 90.0};
  io.convert_cell6_to_latt3x3(cube, io.latt_f2c);
  io.mol_input_mode = 2;
  read_molecules(io);
  EXPECT_FALSE(txtest::path_exists("data"));
}

TEST(ReadCrystalStructureFiles, SecondReadingReplacesTheMoleculeArrays) {
  txtest::TempDir dir;
  txtest::write_file("two.cif", p1_cube_cif("C1 C 0.1 0.5 0.5\nC2 C 0.6 0.5 0.5\n"));
  FileIO io;
  quiet_read(io, txtest::data_path("cif/benzene_COD2100348_blankline.cif"));
  io.mol_input_mode = 2;
  read_molecules(io);
  ASSERT_EQ(io.nmols_uc, 4);
  FileIO fresh;
  quiet_read(fresh, "two.cif");
  // The same object reads the smaller crystal: the earlier rows are released.
  io.release_crystal_arrays();
  io.cif_natoms = fresh.cif_natoms;
  io.cif_atypes = fresh.cif_atypes;
  io.cif_x = fresh.cif_x;
  io.cif_x_s = fresh.cif_x_s;
  io.cif_radii = fresh.cif_radii;
  fresh.cif_atypes = nullptr;
  fresh.cif_x = nullptr;
  fresh.cif_x_s = nullptr;
  fresh.cif_radii = nullptr;
  std::memcpy(io.latt_f2c, fresh.latt_f2c, sizeof io.latt_f2c);
  io.uc_mol_natoms = fresh.uc_mol_natoms;
  io.uc_mol_atoms = fresh.uc_mol_atoms;
  read_molecules(io);
  EXPECT_EQ(io.nmols_uc, 2);
  EXPECT_EQ(io.mol_rows_allocated, 2);
  EXPECT_EQ(io.mol_files_allocated, 2);
  EXPECT_STREQ(io.mol_files[1], "mol2.mol");
}

TEST(ReadCrystalStructureFiles, MoleculeListsThatDoNotMatchTheCrystalEndTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    io.mol_input_mode = 2;
    io.uc_mol_natoms = {2};
    io.uc_mol_atoms = {0, 1};
    io.read_crystal_strcuture_files(false, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "The molecule lists do not match the 0 atoms of the crystal; read the crystal file again\n");
}

// ---- molecule-file mode -----------------------------------------------------------------

TEST(ReadCrystalStructureFiles, MoleculeFileModeDerivesTheCellFromTheVectors) {
  // a = (5, 0, 0), b = (0, 6, 0), c = (0, 3, 3): |c| = 4.242640687119285, alpha
  // 44.9999999999999, beta and gamma 89.9999999999998 (python3, acos times 180
  // over 3.1415926535898).
  const double a[3] = {5.0, 0.0, 0.0};
  const double b[3] = {0.0, 6.0, 0.0};
  const double c[3] = {0.0, 3.0, 3.0};
  const std::string water = txtest::data_path("mol/water_v2000.mol");
  FileIO io;
  set_vectors(io, a, b, c);
  name_molecule_files(io, {water, water});
  char** files = io.mol_files;
  read_molecules(io);
  EXPECT_EQ(io.mol_files, files);  // the control reader's names stay
  EXPECT_EQ(io.mol_files_allocated, 2);
  EXPECT_EQ(io.mol_rows_allocated, 2);
  EXPECT_EQ(io.cell_latt[0], 5.0);
  EXPECT_EQ(io.cell_latt[1], 6.0);
  EXPECT_DOUBLE_EQ(io.cell_latt[2], 4.242640687119285);
  EXPECT_DOUBLE_EQ(io.cell_latt[3], 44.9999999999999);
  EXPECT_DOUBLE_EQ(io.cell_latt[4], 89.9999999999998);
  EXPECT_DOUBLE_EQ(io.cell_latt[5], 89.9999999999998);
  EXPECT_EQ(io.mol_index[0], 1);
  EXPECT_EQ(io.mol_index[1], 2);
  // Taken as they stand, not made whole: fractional = inverse of [a b c] times
  // Cartesian, (x/5, (y - z)/6, z/3), negative components included.
  for (int m = 0; m < 2; ++m) {
    ASSERT_EQ(io.mol_natoms[m], 3);
    EXPECT_EQ(io.mol_elem[m][0], 8);
    EXPECT_EQ(io.mol_x[m][5], -0.4692);
    EXPECT_NEAR(io.mol_x_s[m][0], 0.0, 1e-15);
    EXPECT_NEAR(io.mol_x_s[m][1], -0.1173 / 6.0, 1e-15);
    EXPECT_NEAR(io.mol_x_s[m][2], 0.1173 / 3.0, 1e-15);
    EXPECT_NEAR(io.mol_x_s[m][4], (0.7572 + 0.4692) / 6.0, 1e-15);
    EXPECT_NEAR(io.mol_x_s[m][5], -0.4692 / 3.0, 1e-15);
    EXPECT_EQ(io.mol_mass[m], 0.0);
    EXPECT_EQ(io.mol_x_s_com[m][2], 0.0);
  }
}

TEST(ReadCrystalStructureFiles, MoleculeFileModeWritesTheVectorsToCellvec) {
  txtest::TempDir dir;
  const double a[3] = {5.0, 0.0, 0.0};
  const double b[3] = {0.0, 6.0, 0.0};
  const double c[3] = {0.0, 3.0, 3.0};
  FileIO io;
  set_vectors(io, a, b, c);
  name_molecule_files(io, {txtest::data_path("mol/water_v2000.mol")});
  read_molecules(io, false, true);
  EXPECT_EQ(txtest::read_file("data/cellvec.dat"),
            "a =       5.000000       0.000000       0.000000\n"
            "b =       0.000000       6.000000       0.000000\n"
            "c =       0.000000       3.000000       3.000000\n");
}

TEST(ReadCrystalStructureFiles, MoleculeFileModeReadsAgainIntoFreshArrays) {
  const double a[3] = {5.0, 0.0, 0.0};
  const double b[3] = {0.0, 6.0, 0.0};
  const double c[3] = {0.0, 0.0, 7.0};
  FileIO io;
  set_vectors(io, a, b, c);
  name_molecule_files(io, {txtest::data_path("mol/water_v2000.mol")});
  read_molecules(io);
  read_molecules(io);
  EXPECT_EQ(io.nmols_uc, 1);
  EXPECT_EQ(io.mol_natoms[0], 3);
  EXPECT_NEAR(io.mol_x_s[0][2], 0.1173 / 7.0, 1e-15);
}

TEST(ReadCrystalStructureFiles, MoleculeFileModeWithoutMoleculesSettlesTheLattice) {
  const double a[3] = {5.0, 0.0, 0.0};
  const double b[3] = {0.0, 6.0, 0.0};
  const double c[3] = {0.0, 0.0, 7.0};
  FileIO io;
  set_vectors(io, a, b, c);
  io.mol_input_mode = 1;
  read_molecules(io);
  EXPECT_EQ(io.mol_natoms, nullptr);
  EXPECT_EQ(io.cell_latt[2], 7.0);
  EXPECT_EQ(io.latt_f2c[2][2], 7.0);
  EXPECT_NEAR(io.latt_c2f[1][1], 1.0 / 6.0, 1e-16);
}

TEST(ReadCrystalStructureFiles, FewerFileNamesThanMoleculesEndTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    name_molecule_files(io, {"a.mol"});
    io.nmols_uc = 2;
    io.read_crystal_strcuture_files(false, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "2 molecules are expected but 1 molecule files are named\n");
}

// ---- fatal paths -------------------------------------------------------------------------

TEST(ReadCrystalStructureFiles, OtherInputModesHaveNoMolecularData) {
  for (int mode : {0, 3, -1}) {
    const txtest::RunResult r = run_forked([mode] {
      FileIO io;
      io.mol_input_mode = mode;
      io.read_crystal_strcuture_files(false, false);
    });
    EXPECT_EQ(r.status, 255);
    EXPECT_EQ(mask_line_numbers(r.out),
              kHead + "No input molecular data is available. (" + std::to_string(mode) + ")\n");
    EXPECT_EQ(r.err, "");
  }
}

TEST(ReadCrystalStructureFiles, CellvecThatCannotBeOpenedEndsTheRun) {
  txtest::TempDir dir;
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    io.data_dir = "missing/deeper";  // one level is created at most
    const double cube[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 90.0};
    io.convert_cell6_to_latt3x3(cube, io.latt_f2c);
    io.mol_input_mode = 2;
    io.read_crystal_strcuture_files(false, true);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "Failed to open output file missing/deeper/cellvec.dat\n");
  EXPECT_EQ(r.err, "");
}
