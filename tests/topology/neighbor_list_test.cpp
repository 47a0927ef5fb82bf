// Centres of mass, the neighbor search, reading neighbor.dat, and the tables
// build_neighbor_list allocates.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "test_support.h"
#include "topology_fixtures.h"

namespace {

using topo::Atom;
using topo::Molecule;
using topo::Nei;
using txtest::data_path;
using txtest::mask_line_numbers;
using txtest::read_file;
using txtest::run_forked;
using txtest::RunResult;
using txtest::TempDir;
using txtest::write_file;

const std::string kHead = "\nERROR  transport : transport : line # : \n";

// Cubic 8 angstrom cell with one carbon per molecule at (1,1,1) and (5,1,1)
// angstrom: the structure the hand-written neighbor.dat fixtures describe.
void two_carbons(Transport& t) {
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.125, 0.125, 0.125}}, {{topo::C, 0.625, 0.125, 0.125}}});
}

void copy_fixture(const std::string& name) { write_file("neighbor.dat", read_file(data_path("neighbor/" + name))); }

std::vector<double> row3(const double* p, int n) { return std::vector<double>(p, p + 3 * n); }

// ---- centres of mass -------------------------------------------------------

TEST(CalcXCom, WeighsFractionalCoordinatesByMassWithoutUnwrapping) {
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  // C at x = 0.95 and H at x = 0.05: a molecule split across the face is not
  // made whole here, so the centre lies between them.
  topo::set_molecules(t, {{{topo::C, 0.95, 0.5, 0.5}, {topo::H, 0.05, 0.5, 0.5}}});
  t.calc_x_com();
  // python3: mC=12.011; mH=1.00794; (mC*0.95+mH*0.05)/(mC+mH)
  EXPECT_DOUBLE_EQ(t.mol_mass[0], 13.018939999999999);
  EXPECT_DOUBLE_EQ(t.mol_x_s_com[0][0], 0.8803210553240126);
  EXPECT_DOUBLE_EQ(t.mol_x_s_com[0][1], 0.5);
  EXPECT_DOUBLE_EQ(t.mol_x_s_com[0][2], 0.5);
  EXPECT_DOUBLE_EQ(t.mol_x_com[0][0], 7.042568442592101);
  EXPECT_DOUBLE_EQ(t.mol_x_com[0][1], 4.0);
  EXPECT_DOUBLE_EQ(t.mol_x_com[0][2], 4.0);
  EXPECT_TRUE(t.x_com_done);
}

TEST(CalcXCom, MoleculeWithoutAtomsKeepsItsCentreAtTheOrigin) {
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{}});
  t.calc_x_com();
  EXPECT_EQ(t.mol_mass[0], 0.0);
  EXPECT_EQ(t.mol_x_s_com[0][0], 0.0);
  EXPECT_EQ(t.mol_x_com[0][2], 0.0);
}

// ---- search -----------------------------------------------------------------

TEST(NeighborSearch, SingleMoleculeFindsOnlyItsImagesNeverItsOwnCopy) {
  Transport t;
  topo::set_orthorhombic(t, 3.0, 3.0, 3.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}}});
  topo::set_search(t, 4.0, 1, 1, 1);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  // Face images lie 3 angstrom away, edge images sqrt(18) = 4.24 beyond the cutoff.
  std::vector<Nei> row = topo::row_of(t, 0);
  std::sort(row.begin(), row.end());
  const std::vector<Nei> expected = {{0, -1, 0, 0}, {0, 0, -1, 0}, {0, 0, 0, -1},
                                     {0, 0, 0, 1},  {0, 0, 1, 0},  {0, 1, 0, 0}};
  EXPECT_EQ(row, expected);
  EXPECT_EQ(t.nneighbors[0], 6);
}

TEST(NeighborSearch, RootWithoutNeighborsHasEmptyRowsThatExist) {
  Transport t;
  topo::set_orthorhombic(t, 100.0, 100.0, 100.0);
  topo::set_molecules(t, {{{topo::H, 0.1, 0.1, 0.1}}, {{topo::H, 0.5, 0.5, 0.5}}});
  topo::set_search(t, 4.0, 1, 1, 1);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(t.nneighbors[i], 0);
    EXPECT_NE(t.neighbor_id[i], nullptr);
    EXPECT_NE(t.neighbor_cx[i], nullptr);
    EXPECT_NE(t.neighbor_x[i], nullptr);
    EXPECT_NE(t.neighbor_df[i], nullptr);
    EXPECT_NE(t.pair_x[i], nullptr);
    EXPECT_NE(t.nei_mol_seq[i], nullptr);
  }
  EXPECT_TRUE(t.neighbor_built);
}

// Single hydrogens on a line of 1 angstrom cells at x = 0, 1/8, 1/4 and 7/16:
// every distance is exact. Counts per root, worked out by counting |x_j + k - x_i|
// below the cutoff in python3: 37.45 gives 299 for each root, 37.6 gives 300 for
// root 1 (and 299, 299, 300 for the others).
void line_of_four(Transport& t, double cutoff) {
  topo::set_orthorhombic(t, 1.0, 100.0, 100.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}},
                          {{topo::H, 0.125, 0.0, 0.0}},
                          {{topo::H, 0.25, 0.0, 0.0}},
                          {{topo::H, 0.4375, 0.0, 0.0}}});
  topo::set_search(t, cutoff, 40, 0, 0);
  t.calc_x_com();
}

TEST(NeighborSearch, TwoHundredNinetyNineNeighborsPass) {
  Transport t;
  line_of_four(t, 37.45);
  t.build_neighbor_list(false, false);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(t.nneighbors[i], 299);
}

TEST(NeighborSearch, ThreeHundredNeighborsAbort) {
  const RunResult r = run_forked([] {
    Transport t;
    line_of_four(t, 37.6);
    t.build_neighbor_list(false, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Need to boost NNEIMAX (NumNeigh=300)\n");
}

TEST(NeighborSearch, CloseAtomsWithFarCentreAreAcceptedAndSortLate) {
  Transport t;
  topo::set_orthorhombic(t, 32.0, 32.0, 32.0);
  // Root: one carbon at (2,2,2) angstrom.
  // Molecule 1: a hydrogen 3 angstrom from it, and two iodines 16 angstrom away,
  //   which pull the centre of mass far beyond the cutoff.
  // Molecule 2: one carbon 3.5 angstrom away, centre there too.
  topo::set_molecules(t, {{{topo::C, 0.0625, 0.0625, 0.0625}},
                          {{topo::H, 0.15625, 0.0625, 0.0625},
                           {topo::I, 0.5625, 0.0625, 0.0625},
                           {topo::I, 0.5625, 0.0625, 0.0625}},
                          {{topo::C, 0.0625, 0.171875, 0.0625}}});
  topo::set_search(t, 4.0, 0, 0, 0);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  // Molecule 1's first contact (3.0) is closer than molecule 2's (3.5), yet it
  // sorts after it: rows are ordered by centre-of-mass distance.
  ASSERT_EQ(t.nneighbors[0], 2);
  EXPECT_EQ(t.neighbor_id[0][0], 2);
  EXPECT_EQ(t.neighbor_id[0][1], 1);
  // The centre of molecule 1 lies far beyond the cutoff.
  int cell[3] = {0, 0, 0};
  EXPECT_GT(t.calc_neighbor_com_rsq(0, 1, cell), 15.0 * 15.0);
  // neighbor_x is the image's centre in angstrom, neighbor_df the fractional
  // displacement from the root's centre.
  EXPECT_DOUBLE_EQ(t.neighbor_x[0][0], 2.0);
  EXPECT_DOUBLE_EQ(t.neighbor_x[0][1], 5.5);
  EXPECT_DOUBLE_EQ(t.neighbor_x[0][2], 2.0);
  EXPECT_DOUBLE_EQ(t.neighbor_df[0][0], 0.0);
  EXPECT_DOUBLE_EQ(t.neighbor_df[0][1], 0.109375);
  EXPECT_DOUBLE_EQ(t.neighbor_df[0][2], 0.0);
  EXPECT_DOUBLE_EQ(t.neighbor_df[0][3], t.mol_x_s_com[1][0] - 0.0625);
}

TEST(NeighborSearch, RowsAreSortedByCentreDistanceWithCellsStored) {
  Transport t;
  topo::set_orthorhombic(t, 5.0, 20.0, 20.0);
  // Root at x = 0; partner at x = 4 angstrom (0.8); images of the partner at
  // -1 (x = -1 angstrom) and of the root at +-5 angstrom.
  topo::set_molecules(t, {{{topo::C, 0.0, 0.5, 0.5}}, {{topo::C, 0.8, 0.5, 0.5}}});
  topo::set_search(t, 5.5, 1, 0, 0);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  // Root 0: partner in cell -1 at 1.0, partner in cell 0 at 4.0, itself at +-5.0.
  ASSERT_EQ(t.nneighbors[0], 4);
  EXPECT_EQ((Nei{t.neighbor_id[0][0], t.neighbor_cx[0][0], t.neighbor_cy[0][0], t.neighbor_cz[0][0]}),
            (Nei{1, -1, 0, 0}));
  EXPECT_EQ((Nei{t.neighbor_id[0][1], t.neighbor_cx[0][1], t.neighbor_cy[0][1], t.neighbor_cz[0][1]}),
            (Nei{1, 0, 0, 0}));
  std::set<Nei> far = {{t.neighbor_id[0][2], t.neighbor_cx[0][2], 0, 0},
                       {t.neighbor_id[0][3], t.neighbor_cx[0][3], 0, 0}};
  EXPECT_EQ(far, (std::set<Nei>{{0, -1, 0, 0}, {0, 1, 0, 0}}));
  EXPECT_DOUBLE_EQ(t.neighbor_x[0][0], -1.0);
  EXPECT_DOUBLE_EQ(t.neighbor_df[0][0], -0.2);
  EXPECT_DOUBLE_EQ(t.neighbor_x[0][3], 4.0);
}

TEST(NeighborSearch, VerboseFramesTheSearchWithItsBanners) {
  Transport t;
  topo::set_orthorhombic(t, 100.0, 100.0, 100.0);
  topo::set_molecules(t, {{{topo::H, 0.1, 0.1, 0.1}}});
  topo::set_search(t, 4.5, 1, 2, 3);
  t.calc_x_com();
  const std::string out = txtest::capture_stdout([&] { t.build_neighbor_list(false, true); });
  EXPECT_EQ(out,
            "**** TAVIX Build Neighbor List ****\n"
            "  Neighbor rcutoff distance: 4.5\n"
            "  Neighbor search cell (-/+): 1 2 3\n"
            "**** End of TAVIX Build Neighbor List ****\n\n\n");
}

TEST(NeighborSearch, DebugFlagPrintsTheLatticeRows) {
  Transport t;
  topo::set_orthorhombic(t, 10.0, 20.0, 30.0);
  topo::set_molecules(t, {{{topo::H, 0.1, 0.1, 0.1}}});
  topo::set_search(t, 1.0, 0, 0, 0);
  t.debug_flag = 1;
  const std::string out = txtest::capture_stdout([&] { t.build_neighbor_list(false, false); });
  EXPECT_EQ(out,
            "  h:\n"
            "   10.0000000    0.0000000    0.0000000\n"
            "    0.0000000   20.0000000    0.0000000\n"
            "    0.0000000    0.0000000   30.0000000\n");
}

// The gather path builds the list before any centre exists: the sort keys are the
// zero centres of the separation's allocation, so rows are ordered by the length
// of the image offset alone, and the order is the same on every run.
TEST(NeighborSearch, GatherOrderSortsOnZeroCentresDeterministically) {
  auto build = [](Transport& t) {
    topo::set_orthorhombic(t, 3.0, 4.0, 5.0);
    topo::set_molecules(t, {{{topo::C, 0.5, 0.5, 0.5}, {topo::H, 0.75, 0.5, 0.5}}, {{topo::C, 0.1, 0.2, 0.3}}});
    topo::set_search(t, 4.0, 2, 2, 2);
    t.build_neighbor_list(false, false);
  };
  Transport a, b;
  build(a);
  build(b);
  for (int i = 0; i < 2; ++i) {
    ASSERT_GT(a.nneighbors[i], 2);
    EXPECT_EQ(topo::row_of(a, i), topo::row_of(b, i));
    double last = -1.0;
    for (int j = 0; j < a.nneighbors[i]; ++j) {
      const double x = 3.0 * a.neighbor_cx[i][j], y = 4.0 * a.neighbor_cy[i][j], z = 5.0 * a.neighbor_cz[i][j];
      const double key = x * x + y * y + z * z;
      EXPECT_LE(last, key) << "root " << i << " column " << j;
      last = key;
    }
  }
  // The centres are computed afterwards and feed neighbor_x.
  EXPECT_TRUE(a.x_com_done);
  const int nid = a.neighbor_id[1][0];
  EXPECT_DOUBLE_EQ(a.neighbor_x[1][0], 3.0 * (a.mol_x_s_com[nid][0] + a.neighbor_cx[1][0]));
}

// Scattered molecules of one to six atoms, some of them long rods, in a triclinic
// cell: the builder's rows, order included, equal the plain search's.
TEST(NeighborSearch, BuilderEqualsThePlainSearchInATriclinicCell) {
  unsigned state = 12345u;
  auto next = [&state] {
    state = state * 1103515245u + 12345u;
    return static_cast<double>((state >> 8) & 0xffff) / 65536.0;
  };
  for (int trial = 0; trial < 5; ++trial) {
    SCOPED_TRACE(trial);
    Transport t;
    const double cell6[6] = {6.0 + trial, 7.0, 8.5, 75.0, 85.0, 100.0 + 3 * trial};
    double latt[3][3];
    t.convert_cell6_to_latt3x3(cell6, latt);
    std::vector<Molecule> mols;
    for (int m = 0; m < 5; ++m) {
      Molecule mol;
      const int natoms = 1 + m;
      const double x0 = next(), y0 = next(), z0 = next();
      const double dx = 0.3 * (next() - 0.5), dy = 0.3 * (next() - 0.5), dz = 0.3 * (next() - 0.5);
      for (int a = 0; a < natoms; ++a)
        mol.push_back({m % 2 ? topo::C : topo::H, x0 + a * dx, y0 + a * dy, z0 + a * dz});
      mols.push_back(mol);
    }
    topo::set_molecules(t, mols);
    topo::set_search(t, 2.5 + 0.5 * trial, 2, 2, 2);
    t.calc_x_com();
    t.build_neighbor_list(false, false);
    const std::vector<std::vector<Nei>> plain = topo::plain_search_rows(t);
    int total = 0;
    for (int i = 0; i < t.nmols_uc; ++i) {
      EXPECT_EQ(topo::row_of(t, i), plain[i]) << "root " << i;
      total += t.nneighbors[i];
    }
    EXPECT_GT(total, 0);
  }
}

// ---- tables allocated with the list --------------------------------------------

TEST(NeighborTables, IdentityTablesAreSeededAndPairTablesZero) {
  Transport t;
  two_carbons(t);
  topo::set_search(t, 4.5, 0, 0, 0);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  ASSERT_EQ(t.nneighbors[0], 1);
  EXPECT_TRUE(t.mol_id_ready);
  EXPECT_EQ(t.uc_mol_seq[0], 1);
  EXPECT_EQ(t.uc_mol_seq[1], 2);
  EXPECT_EQ(t.uc_mol_id[0], 1);
  EXPECT_EQ(t.uc_mol_id[1], 2);
  EXPECT_EQ(t.nei_mol_seq[0][0], 1);
  EXPECT_EQ(t.nei_mol_id[0][0], 0);
  for (int i = 0; i < 2; ++i) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(t.uc_mol_eigval[i][k], 0.0);
    for (int k = 0; k < 9; ++k) EXPECT_EQ(t.uc_mol_eigvec[i][k], 0.0);
    EXPECT_EQ(t.pair_x[i][0], nullptr);
    EXPECT_EQ(t.pair_flag[i][0], 0);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(t.pair_eigval[i][0][k], 0.0);
  }
  EXPECT_EQ(t.eigval_rows_allocated, 2);
  EXPECT_EQ(t.pair_rows_allocated, 2);
  EXPECT_EQ(t.id_rows_allocated, 2);
  EXPECT_EQ(t.neighbor_rows_allocated, 2);
}

TEST(NeighborTables, ReleaseFreesEverythingTheListAllocated) {
  Transport t;
  two_carbons(t);
  topo::set_search(t, 4.5, 1, 1, 1);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  t.release_memories();
  EXPECT_EQ(t.nneighbors, nullptr);
  EXPECT_EQ(t.neighbor_x, nullptr);
  EXPECT_EQ(t.uc_mol_eigval, nullptr);
  EXPECT_EQ(t.uc_mol_eigvec, nullptr);
  EXPECT_EQ(t.pair_eigval, nullptr);
  EXPECT_EQ(t.nei_mol_id, nullptr);
  EXPECT_EQ(t.uc_mol_unique_list, nullptr);
  EXPECT_FALSE(t.mol_id_ready);
}

TEST(NeighborTables, AllocateMolIdIndexesSeedsOneBasedNumbers) {
  Transport t;
  t.nmols_uc = 3;
  t.nneighbors = new int[3]{2, 0, 3};
  t.neighbor_rows_allocated = 3;
  t.allocate_mol_id_indexes_array();
  EXPECT_TRUE(t.mol_id_ready);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(t.uc_mol_seq[i], i + 1);
    EXPECT_EQ(t.uc_mol_id[i], i + 1);
    EXPECT_EQ(t.uc_mol_re_list[i], 0);
    EXPECT_EQ(t.uc_mol_unique_list[i], 0);
  }
  EXPECT_EQ(t.nei_mol_seq[0][0], 1);
  EXPECT_EQ(t.nei_mol_seq[0][1], 2);
  EXPECT_EQ(t.nei_mol_seq[2][2], 3);
  EXPECT_EQ(t.nei_mol_id[2][2], 0);
}

// ---- reading neighbor.dat -----------------------------------------------------

TEST(NeighborFile, KeepsFileOrderAndRecomputesGeometry) {
  TempDir dir;
  copy_fixture("two_roots.dat");
  Transport t;
  two_carbons(t);
  t.calc_x_com();
  const std::string out = txtest::capture_stdout([&] { t.build_neighbor_list(true, false); });
  EXPECT_EQ(out, "Reading file 'neighbor.dat'\n");
  // Not sorted: the farther image stands first as in the file.
  EXPECT_EQ(topo::row_of(t, 0), (std::vector<Nei>{{0, 1, 0, 0}, {1, 0, 0, 0}}));
  EXPECT_EQ(topo::row_of(t, 1), (std::vector<Nei>{{0, -1, 0, 0}}));
  // Centres (1,1,1) and (5,1,1) angstrom; the file's dx..r columns play no part.
  EXPECT_EQ(row3(t.neighbor_x[0], 2), (std::vector<double>{9.0, 1.0, 1.0, 5.0, 1.0, 1.0}));
  EXPECT_EQ(row3(t.neighbor_df[0], 2), (std::vector<double>{1.0, 0.0, 0.0, 0.5, 0.0, 0.0}));
  EXPECT_EQ(row3(t.neighbor_x[1], 1), (std::vector<double>{-7.0, 1.0, 1.0}));
  EXPECT_EQ(row3(t.neighbor_df[1], 1), (std::vector<double>{-1.5, 0.0, 0.0}));
  EXPECT_TRUE(t.neighbor_built);
}

TEST(NeighborFile, RootWithNoNeighborsReadsBackAsAnEmptyRow) {
  TempDir dir;
  copy_fixture("empty_root.dat");
  Transport t;
  two_carbons(t);
  t.calc_x_com();
  txtest::capture_stdout([&] { t.build_neighbor_list(true, false); });
  EXPECT_EQ(t.nneighbors[0], 0);
  EXPECT_EQ(topo::row_of(t, 1), (std::vector<Nei>{{0, 0, 0, 0}}));
}

TEST(NeighborFile, VerboseBannerComesBeforeTheReadingLine) {
  TempDir dir;
  copy_fixture("empty_root.dat");
  Transport t;
  two_carbons(t);
  t.calc_x_com();
  t.lat_cutoff = 4.0;
  topo::set_search(t, 4.0, 3, 3, 3);
  const std::string out = txtest::capture_stdout([&] { t.build_neighbor_list(true, true); });
  EXPECT_EQ(out,
            "**** TAVIX Build Neighbor List ****\n"
            "  Neighbor rcutoff distance: 4\n"
            "  Neighbor search cell (-/+): 3 3 3\n"
            "Reading file 'neighbor.dat'\n"
            "**** End of TAVIX Build Neighbor List ****\n\n\n");
}

// As in the program, nothing catches a conversion failure: noexcept stands for main.
void read_neighbor_file() noexcept {
  Transport t;
  two_carbons(t);
  t.calc_x_com();
  t.build_neighbor_list(true, false);
}

RunResult read_forked() { return run_forked([] { read_neighbor_file(); }); }

// The failure that ends the process above is the standard one named "stoi".
template <typename E>
void expect_stoi_failure() {
  Transport t;
  two_carbons(t);
  t.calc_x_com();
  try {
    t.build_neighbor_list(true, false);
    ADD_FAILURE() << "no exception";
  } catch (const E& e) {
    EXPECT_STREQ(e.what(), "stoi");
  }
}

TEST(NeighborFile, MissingFileIsFatal) {
  TempDir dir;
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading file 'neighbor.dat'\n" + kHead + "Failed to open input file: neighbor.dat\n");
  EXPECT_EQ(r.err, "");
}

TEST(NeighborFile, RootCountDifferentFromTheCellIsFatal) {
  TempDir dir;
  write_file("neighbor.dat", topo::neighbor_dat({{}, {}, {}}));
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), "Reading file 'neighbor.dat'\n" + kHead +
                                          "Readin nmols (3) in neighbor.dat not equal to nmols (2) in unitcell!\n");
}

TEST(NeighborFile, SevenColumnsAbortAtThatRow) {
  TempDir dir;
  copy_fixture("seven_columns.dat");
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading file 'neighbor.dat'\n" + kHead + "ncol (7) in neighbor.dat not equal to 8!\n");
}

TEST(NeighborFile, NineColumnsAbortAtThatRow) {
  TempDir dir;
  copy_fixture("nine_columns.dat");
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading file 'neighbor.dat'\n" + kHead + "ncol (9) in neighbor.dat not equal to 8!\n");
}

// Rows of `n` neighbors of root 1, all molecule 2 in cell 0; root 2 empty.
std::string file_with_count(int n) {
  std::vector<Nei> row(n, Nei{1, 0, 0, 0});
  return topo::neighbor_dat({row, {}});
}

TEST(NeighborFile, CountAboveNneimaxIsRejectedNamingFileAndLine) {
  TempDir dir;
  write_file("neighbor.dat", file_with_count(301));
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), "Reading file 'neighbor.dat'\n" + kHead);
  EXPECT_EQ(r.err, "Failed to read 'neighbor.dat' line 5: neighbor count 301 is outside 0..300\n");
}

TEST(NeighborFile, NegativeCountIsRejected) {
  TempDir dir;
  write_file("neighbor.dat",
             "# c\n# c\n2\n1 0 0 0 # root\n-1 # n\n2 0 0 0 # root\n0 # n\n");
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read 'neighbor.dat' line 5: neighbor count -1 is outside 0..300\n");
}

TEST(NeighborFile, CountOfExactlyNneimaxFillsTheRows) {
  TempDir dir;
  write_file("neighbor.dat", file_with_count(300));
  Transport t;
  two_carbons(t);
  t.calc_x_com();
  txtest::capture_stdout([&] { t.build_neighbor_list(true, false); });
  EXPECT_EQ(t.nneighbors[0], 300);
  EXPECT_EQ(t.neighbor_id[0][299], 1);
}

TEST(NeighborFile, NeighborIdOutsideTheCellIsRejected) {
  TempDir dir;
  write_file("neighbor.dat", topo::neighbor_dat({{{1, 0, 0, 0}, {2, 0, 0, 0}}, {}}));
  RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read 'neighbor.dat' line 7: neighbor id 3 is outside 1..2\n");
  write_file("neighbor.dat", topo::neighbor_dat({{}, {{-1, 0, 0, 0}}}));
  r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read 'neighbor.dat' line 8: neighbor id 0 is outside 1..2\n");
}

TEST(NeighborFile, FileEndingEarlyIsRejected) {
  TempDir dir;
  write_file("neighbor.dat", "# c\n# c\n2\n1 0 0 0 # root\n2 # n\n   2 0 0 0 0  0 0 0\n");
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read 'neighbor.dat' line 7: unexpected end of file\n");
}

TEST(NeighborFile, NonNumericFieldEndsThroughUncaughtInvalidArgument) {
  TempDir dir;
  write_file("neighbor.dat", "# c\n# c\n2\n1 0 0 0 # root\n1 # n\n   x 0 0 0 0  0 0 0\n2 0 0 0 # root\n0 # n\n");
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 128 + 6);  // SIGABRT from std::terminate
  expect_stoi_failure<std::invalid_argument>();
}

TEST(NeighborFile, HugeCellIndexEndsThroughUncaughtOutOfRange) {
  TempDir dir;
  write_file("neighbor.dat",
             "# c\n# c\n2\n1 0 0 0 # root\n1 # n\n   2 0 0 0 0  99999999999 0 0\n2 0 0 0 # root\n0 # n\n");
  const RunResult r = read_forked();
  EXPECT_EQ(r.status, 128 + 6);
  expect_stoi_failure<std::out_of_range>();
}

}  // namespace
