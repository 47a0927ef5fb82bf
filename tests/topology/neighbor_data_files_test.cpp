// neighbor.dat and the neighbor report, the neighbor pictures, the overlap-tool
// frames and map, and the bond tables, on a tiny hand-built crystal whose files
// are worked out by hand (tests/data/golden/neighbor, derivation in its README and
// derive_goldens.py), and neighbor.dat read back by the list builder.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "structure_output.h"
#include "test_support.h"
#include "topology_fixtures.h"

namespace {

using topo::Nei;
using txtest::data_path;
using txtest::mask_line_numbers;
using txtest::path_exists;
using txtest::read_file;
using txtest::run_forked;
using txtest::RunResult;
using txtest::TempDir;
using txtest::write_file;

const std::string kHead = "\nERROR  transport : transport : line # : \n";

constexpr int N = 7;
constexpr int O = 8;

// Orthorhombic 8 x 16 x 4 angstrom, all coordinates exact binary fractions:
//   molecule 1: C2 on the diagonal of the xy plane around (0, 0, 2) angstrom,
//   molecule 2: O-C-O along x at x = 3.0, 4.25, 5.5, y = 0, z = 2,
//   molecule 3: N2 along x at x = 3.5, 4.5, y = 8, z = 2, far from the others.
// With lat_cutoff 3.0 and neighbor_scell 1 1 1, by hand: root 1 sees molecule 2 in
// cell (-1,0,0) (closest atoms 2.06 angstrom, centres 3.75 apart) and in cell
// (0,0,0) (2.55, centres 4.25 apart); root 2 sees molecule 1 in (1,0,0) and
// (0,0,0); root 3 has none (7.5 angstrom off in y, 6.5 from its own images).
void tiny_molecules(Transport& t) {
  topo::set_orthorhombic(t, 8.0, 16.0, 4.0);
  topo::set_molecules(t, {{{topo::C, -0.0625, -0.03125, 0.5}, {topo::C, 0.0625, 0.03125, 0.5}},
                          {{O, 0.375, 0.0, 0.5}, {topo::C, 0.53125, 0.0, 0.5}, {O, 0.6875, 0.0, 0.5}},
                          {{N, 0.4375, 0.5, 0.5}, {N, 0.5625, 0.5, 0.5}}});
  t.identifier = "tiny";
  topo::set_search(t, 3.0, 1, 1, 1);
  t.calc_x_com();
}

void tiny_crystal(Transport& t) {
  tiny_molecules(t);
  t.build_neighbor_list(false, false);
}

std::string golden(const std::string& name) { return read_file(data_path("golden/neighbor/" + name)); }

void expect_golden(const std::string& produced, const std::string& name) {
  ASSERT_TRUE(path_exists(produced)) << produced;
  EXPECT_EQ(read_file(produced), golden(name)) << produced;
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// A regular file where a directory is expected: every open below it fails.
void block_directory(const std::string& name) { write_file(name, "not a directory\n"); }

// A directory where an output file is expected: opening it for writing fails.
void block_file(const std::string& path) { ASSERT_EQ(mkdir(path.c_str(), 0755), 0) << path; }

std::vector<std::vector<Nei>> rows_of(const Transport& t) {
  std::vector<std::vector<Nei>> rows;
  for (int i = 0; i < t.nmols_uc; ++i) rows.push_back(topo::row_of(t, i));
  return rows;
}

// The list read back from ./neighbor.dat for the same molecules.
std::vector<std::vector<Nei>> read_back_tiny() {
  Transport back;
  tiny_molecules(back);
  txtest::capture_stdout([&] { back.build_neighbor_list(true, false); });
  return rows_of(back);
}

// ---- the tiny crystal itself ----------------------------------------------------

TEST(NeighborDataFixture, TinyCrystalHasTheHandWorkedRows) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  const std::vector<std::vector<Nei>> expected = {{{1, -1, 0, 0}, {1, 0, 0, 0}}, {{0, 1, 0, 0}, {0, 0, 0, 0}}, {}};
  EXPECT_EQ(rows_of(t), expected);
}

// ---- neighbor.dat ------------------------------------------------------------------

TEST(NeighborDat, WritesTheHandWorkedFile) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.data_mol_output_level = 0;
  t.output_neighbor_data();
  expect_golden("data/neighbor.dat", "neighbor.dat");
}

TEST(NeighborDat, RootWithoutNeighborsHasCountZeroAndNoRowsAndReadsBack) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.data_dir = ".";
  t.data_mol_output_level = 0;
  t.output_neighbor_data();
  const std::vector<std::string> lines = lines_of(read_file("neighbor.dat"));
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back(), "0 #      dx        dy        dz         r     cindex");
  EXPECT_EQ(lines[lines.size() - 2], "3   4.0000   8.0000   2.0000  # root");

  Transport back;
  tiny_molecules(back);
  txtest::capture_stdout([&] { back.build_neighbor_list(true, false); });
  EXPECT_EQ(back.nneighbors[2], 0);
  EXPECT_EQ(back.nneighbors[0], 2);
  EXPECT_EQ(back.nneighbors[1], 2);
}

TEST(NeighborDat, RColumnIsTheCentreDistanceAndMayExceedTheCutoff) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.data_mol_output_level = 0;
  t.output_neighbor_data();
  int rows = 0;
  for (const std::string& line : lines_of(read_file("data/neighbor.dat"))) {
    int id, cx, cy, cz;
    double dx, dy, dz, r;
    if (std::sscanf(line.c_str(), " %d %lf %lf %lf %lf %d %d %d", &id, &dx, &dy, &dz, &r, &cx, &cy, &cz) != 8) continue;
    ++rows;
    EXPECT_GT(r, t.lat_cutoff) << line;
  }
  EXPECT_EQ(rows, 4);
  // The list was built on atoms: the closest atoms of every pair are inside the cutoff.
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < t.nneighbors[i]; ++j) {
      int cell[3] = {t.neighbor_cx[i][j], t.neighbor_cy[i][j], t.neighbor_cz[i][j]};
      EXPECT_LT(t.found_two_molecules_min_distance(i, t.neighbor_id[i][j], cell), t.lat_cutoff);
    }
}

TEST(NeighborDat, ReadsBackToTheSameIdsAndCells) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.data_dir = ".";
  t.data_mol_output_level = 0;
  t.output_neighbor_data();
  EXPECT_EQ(read_back_tiny(), rows_of(t));
}

// Reads a crystal as a run does: a control file naming it, the control reader,
// the molecule separation, the centres, then the list searched or read back.
void read_real_crystal(Transport& t, const std::string& cif, bool read_file) {
  write_file("tavix.inp", "&transport\n  crystal = " + cif + "\n/\n");
  txtest::capture_stdout([&] {
    t.read_tavix_inp("tavix.inp", false);
    t.read_crystal_strcuture_files(false, false);
    t.calc_x_com();
    t.build_neighbor_list(read_file, false);
  });
}

TEST(NeighborDat, RealCrystalReadsBackToTheSameIdsAndCells) {
  TempDir dir;
  const std::string cif = data_path("cif/benzene_COD2100348_blankline.cif");
  Transport t;
  read_real_crystal(t, cif, false);
  ASSERT_EQ(t.nmols_uc, 4);
  t.data_dir = ".";
  t.data_mol_output_level = 0;
  t.output_neighbor_data();

  Transport back;
  read_real_crystal(back, cif, true);
  ASSERT_EQ(back.nmols_uc, 4);
  EXPECT_EQ(rows_of(back), rows_of(t));
  for (int i = 0; i < t.nmols_uc; ++i) {
    EXPECT_EQ(t.nneighbors[i], 12);
    for (int k = 0; k < 3 * t.nneighbors[i]; ++k) EXPECT_DOUBLE_EQ(back.neighbor_x[i][k], t.neighbor_x[i][k]);
  }
}

TEST(NeighborDat, DebugLevelAnnouncesTheFile) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.data_mol_output_level = 0;
  t.debug_level = 1;
  EXPECT_EQ(txtest::capture_stdout([&] { t.output_neighbor_data(); }), "Writing neighbor file \"data/neighbor.dat\"... ");
}

TEST(NeighborDat, OpenFailureIsFatalWithStatusOne) {
  TempDir dir;
  block_directory("blocked");
  const RunResult r = run_forked([] {
    Transport t;
    tiny_crystal(t);
    t.data_dir = "blocked";
    t.output_neighbor_data();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file \"blocked/neighbor.dat\"\n");
}

TEST(NeighborDat, ListNotBuiltIsFatal) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    tiny_molecules(t);
    t.output_neighbor_data();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "output_neighbor_data: the neighbor list is not built\n");
  EXPECT_FALSE(path_exists("data/neighbor.dat"));
}

// ---- the neighbor report ----------------------------------------------------------

TEST(NeighborInfo, ReportIsTheHandWorkedText) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  FILE* fp = std::fopen("report.txt", "w");
  ASSERT_NE(fp, nullptr);
  t.output_neighbor_info(fp);
  std::fclose(fp);
  expect_golden("report.txt", "neighbor_info.txt");
}

TEST(NeighborInfo, ListNotBuiltIsFatal) {
  const RunResult r = run_forked([] {
    Transport t;
    tiny_molecules(t);
    t.output_neighbor_info(stdout);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "output_neighbor_info: the neighbor list is not built\n");
}

// ---- neighbor pictures ------------------------------------------------------------

const char* const kPictures[] = {"mol1_neighbors.cif", "mol1_neighbors_mid.cif", "mol2_neighbors.cif",
                                 "mol2_neighbors_mid.cif", "mol3_neighbors.cif", "mol3_neighbors_mid.cif"};

std::vector<std::string> pictures_present() {
  std::vector<std::string> found;
  for (const char* name : kPictures)
    if (path_exists(std::string("data/") + name)) found.push_back(name);
  return found;
}

void write_with_level(int level) {
  Transport t;
  tiny_crystal(t);
  t.data_mol_output_level = level;
  t.output_neighbor_data();
}

TEST(NeighborPictures, LevelTwoDrawsEveryRootAsWorkedOut) {
  TempDir dir;
  write_with_level(2);
  for (const char* name : kPictures) expect_golden(std::string("data/") + name, name);
}

TEST(NeighborPictures, LevelThreeDrawsRootZeroOnlyBecauseBitZeroIsTestedFirst) {
  TempDir dir;
  write_with_level(3);
  EXPECT_EQ(pictures_present(), (std::vector<std::string>{"mol1_neighbors.cif", "mol1_neighbors_mid.cif"}));
  expect_golden("data/mol1_neighbors.cif", "mol1_neighbors.cif");
  expect_golden("data/mol1_neighbors_mid.cif", "mol1_neighbors_mid.cif");
}

TEST(NeighborPictures, LevelOneDrawsRootZeroOnly) {
  TempDir dir;
  write_with_level(1);
  EXPECT_EQ(pictures_present(), (std::vector<std::string>{"mol1_neighbors.cif", "mol1_neighbors_mid.cif"}));
}

TEST(NeighborPictures, LevelsWithoutBitsZeroAndOneDrawNothing) {
  for (int level : {0, 4, 8, 12}) {
    TempDir dir;
    write_with_level(level);
    EXPECT_TRUE(pictures_present().empty()) << level;
    EXPECT_TRUE(path_exists("data/neighbor.dat")) << level;
  }
}

TEST(NeighborPictures, DateLineIsTheFixedLiteralWhateverTheDay) {
  TempDir dir;
  write_with_level(2);
  for (const char* name : kPictures) {
    const std::vector<std::string> lines = lines_of(read_file(std::string("data/") + name));
    ASSERT_GT(lines.size(), 2u);
    EXPECT_EQ(lines[1], "_audit_creation_date              2018-09-12") << name;
  }
  // The other CIF writers stamp the day of the run; these pictures never do.
  if (structure_output::creation_date() != "2018-09-12") {
    EXPECT_EQ(read_file("data/mol1_neighbors.cif").find(structure_output::creation_date()), std::string::npos);
  }
}

TEST(NeighborPictures, PlainPicturesOfAllRootsComeBeforeAnyMidPicture) {
  TempDir dir;
  create_directory("data");
  block_file("data/mol3_neighbors.cif");
  const RunResult r = run_forked([] { write_with_level(2); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file \"data/mol3_neighbors.cif\"\n");
  // The last plain picture failed: both earlier ones exist, no _mid file yet.
  EXPECT_TRUE(path_exists("data/mol1_neighbors.cif"));
  EXPECT_TRUE(path_exists("data/mol2_neighbors.cif"));
  EXPECT_FALSE(path_exists("data/mol1_neighbors_mid.cif"));
  EXPECT_FALSE(path_exists("data/mol2_neighbors_mid.cif"));
}

TEST(NeighborPictures, MidPictureOpenFailureIsFatal) {
  TempDir dir;
  create_directory("data");
  block_file("data/mol1_neighbors_mid.cif");
  const RunResult r = run_forked([] { write_with_level(2); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file \"data/mol1_neighbors_mid.cif\"\n");
  EXPECT_TRUE(path_exists("data/mol3_neighbors.cif"));
}

// ---- overlap-tool positions -------------------------------------------------------

TEST(MooPos, PositionsAndFramesAsWorkedOut) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.output_moo_pos_data();
  for (int i = 1; i <= 3; ++i) {
    for (const char* kind : {"uc", "nei"}) {
      const std::string name = "moo_mol" + std::to_string(i) + "_" + kind + ".pos";
      expect_golden("data/" + name, name);
    }
  }
}

TEST(MooPos, LineNOfBothFilesDescribesPairN) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.output_moo_pos_data();
  for (int i = 0; i < t.nmols_uc; ++i) {
    const std::string stem = "data/moo_mol" + std::to_string(i + 1);
    const std::vector<std::string> uc = lines_of(read_file(stem + "_uc.pos"));
    const std::vector<std::string> nei = lines_of(read_file(stem + "_nei.pos"));
    ASSERT_EQ(static_cast<int>(uc.size()), t.nneighbors[i]);
    ASSERT_EQ(static_cast<int>(nei.size()), t.nneighbors[i]);
    for (int j = 0; j < t.nneighbors[i]; ++j) {
      EXPECT_EQ(uc[j].substr(0, 9), "uc_mol-" + std::to_string(i + 1) + " ");
      EXPECT_EQ(nei[j].substr(0, 9), "uc_mol-" + std::to_string(t.neighbor_id[i][j] + 1) + " ");
    }
  }
}

TEST(MooPos, DebugLevelAnnouncesEachRoot) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.debug_level = 1;
  EXPECT_EQ(txtest::capture_stdout([&] { t.output_moo_pos_data(); }),
            "Writing molecular pos files \"data/moo_mol1_uc.pos\"... "
            "Writing molecular pos files \"data/moo_mol2_uc.pos\"... "
            "Writing molecular pos files \"data/moo_mol3_uc.pos\"... ");
}

TEST(MooPos, UcOpenFailureIsFatalWithStatusOne) {
  TempDir dir;
  block_directory("blocked");
  const RunResult r = run_forked([] {
    Transport t;
    tiny_crystal(t);
    t.data_dir = "blocked";
    t.output_moo_pos_data();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file \"blocked/moo_mol1_uc.pos\"\n");
}

TEST(MooPos, NeiOpenFailureIsFatalWithStatusOne) {
  TempDir dir;
  create_directory("data");
  block_file("data/moo_mol2_nei.pos");
  const RunResult r = run_forked([] {
    Transport t;
    tiny_crystal(t);
    t.output_moo_pos_data();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file \"data/moo_mol2_nei.pos\"\n");
}

TEST(MooPos, ListNotBuiltIsFatal) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    tiny_molecules(t);
    t.output_moo_pos_data();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "output_moo_pos_data: the neighbor list is not built\n");
}

// ---- overlap-tool map ----------------------------------------------------------------

// HOMO indices by hand: half the sum of atomic numbers, C2 12 -> 6, OCO 22 -> 11, N2 14 -> 7.
void set_homo_by_hand(Transport& t) {
  t.homo_index = new int[3]{6, 11, 7};
  t.homo_ready = true;
}

TEST(MooMap, MapAsWorkedOutWithoutIndexShifts) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  set_homo_by_hand(t);
  t.output_moo_map_xml();
  expect_golden("data/moo_map.xml", "moo_map.xml");
}

TEST(MooMap, AdjustmentsShiftHomoAndLumoPerMolecule) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  set_homo_by_hand(t);
  t.homo_adjustment = {1, 0, -1};
  t.lumo_adjustment = {0, 2, 0};
  t.output_moo_map_xml();
  expect_golden("data/moo_map.xml", "moo_map_adjusted.xml");
}

TEST(MooMap, OneEmptyListAddsZeroWhileTheOtherShifts) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  set_homo_by_hand(t);
  t.lumo_adjustment = {0, 2, 0};
  t.output_moo_map_xml();
  const std::string text = read_file("data/moo_map.xml");
  EXPECT_NE(text.find("<torbital>6 7</torbital>"), std::string::npos);
  EXPECT_NE(text.find("<torbital>11 14</torbital>"), std::string::npos);
  EXPECT_NE(text.find("<torbital>7 8</torbital>"), std::string::npos);
}

TEST(MooMap, HomoIsComputedWhenNotReady) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  ASSERT_FALSE(t.homo_ready);
  t.output_moo_map_xml();
  EXPECT_TRUE(t.homo_ready);
  expect_golden("data/moo_map.xml", "moo_map.xml");
}

TEST(MooMap, ReadyHomoIsNotRecomputed) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  t.homo_index = new int[3]{20, 30, 40};
  t.homo_ready = true;
  t.output_moo_map_xml();
  const std::string text = read_file("data/moo_map.xml");
  EXPECT_NE(text.find("<torbital>20 21</torbital>"), std::string::npos);
  EXPECT_NE(text.find("<torbital>30 31</torbital>"), std::string::npos);
  EXPECT_NE(text.find("<torbital>40 41</torbital>"), std::string::npos);
}

TEST(MooMap, ListLongerThanTheCellIsReadUpToTheLastMolecule) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  set_homo_by_hand(t);
  t.homo_adjustment = {1, 0, -1, 5};
  t.lumo_adjustment = {0, 2, 0, 5};
  t.output_moo_map_xml();
  expect_golden("data/moo_map.xml", "moo_map_adjusted.xml");
}

TEST(MooMap, ShortHomoAdjustmentListIsFatalInsteadOfReadPast) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    tiny_crystal(t);
    set_homo_by_hand(t);
    t.homo_adjustment = {1, 0};
    t.output_moo_map_xml();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "write_map_xml_segment: homo_adjustment has 2 values, none for molecule 3\n");
}

TEST(MooMap, ShortLumoAdjustmentListIsFatalInsteadOfReadPast) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    tiny_crystal(t);
    set_homo_by_hand(t);
    t.lumo_adjustment = {4};
    t.output_moo_map_xml();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "write_map_xml_segment: lumo_adjustment has 1 values, none for molecule 2\n");
}

TEST(MooMap, ReadyFlagWithoutIndicesIsFatal) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    tiny_crystal(t);
    t.homo_ready = true;
    t.output_moo_map_xml();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "output_moo_map_xml: no HOMO index per molecule\n");
  EXPECT_FALSE(path_exists("data/moo_map.xml"));
}

TEST(MooMap, DebugLevelAnnouncesTheFile) {
  TempDir dir;
  Transport t;
  tiny_crystal(t);
  set_homo_by_hand(t);
  t.debug_level = 1;
  EXPECT_EQ(txtest::capture_stdout([&] { t.output_moo_map_xml(); }), "Writing map file \"data/moo_map.xml\"... ");
}

TEST(MooMap, OpenFailureIsFatal) {
  TempDir dir;
  block_directory("blocked");
  const RunResult r = run_forked([] {
    Transport t;
    tiny_crystal(t);
    set_homo_by_hand(t);
    t.data_dir = "blocked";
    t.output_moo_map_xml();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file blocked/moo_map.xml\n");
}

TEST(MapXmlSegment, PrefixNamesTheMoleculeAndItsFiles) {
  TempDir dir;
  Transport t;
  t.hl_dir = "HLX";
  double mass[3] = {1.00794, 32.066, 1.00794};
  FILE* fp = std::fopen("segment.xml", "w");
  ASSERT_NE(fp, nullptr);
  t.write_map_xml_segment(fp, "nei", 4, 3, mass, 8);
  std::fclose(fp);
  EXPECT_EQ(read_file("segment.xml"),
            "  <molecule>\n"
            "    <name>nei_mol-5</name>\n"
            "    <coordinates>../HLX/nei_mol-5.xyz</coordinates>\n"
            "    <orbitals>../HLX/nei_mol-5.orb</orbitals>\n"
            "    <basisset>INDO</basisset>\n"
            "    <torbital>8 9</torbital>\n"
            "    <map>\n"
            "      1 2 3\n"
            "    </map>\n"
            "    <weights>\n"
            "      1.0 32.1 1.0\n"
            "    </weights>\n"
            "  </molecule>\n");
}

// ---- bond tables ------------------------------------------------------------------------

// The constructed object has RE_unique_mol 1, so the molecule set is the
// reorganisation list; the plain tests here ask for every molecule.
void every_molecule(Transport& t) { t.unique_RE_calc_flag = false; }

TEST(MolBonds, TablesAsWorkedOut) {
  TempDir dir;
  Transport t;
  tiny_molecules(t);
  every_molecule(t);
  t.write_mol_bonds_files(true);
  for (int i = 1; i <= 3; ++i) {
    const std::string name = "mol" + std::to_string(i) + "_bonds.dat";
    expect_golden("data/" + name, name);
  }
}

TEST(MolBonds, FalseWritesNothing) {
  TempDir dir;
  Transport t;
  tiny_molecules(t);
  t.write_mol_bonds_files(false);
  EXPECT_FALSE(path_exists("data"));
}

TEST(MolBonds, UniqueReWritesTheListedMoleculesOnly) {
  TempDir dir;
  Transport t;
  tiny_molecules(t);
  t.unique_RE_calc_flag = true;
  t.uc_mol_re_list = new int[2]{1, 3};
  t.uc_mol_re_count = 2;
  t.write_mol_bonds_files(true);
  expect_golden("data/mol1_bonds.dat", "mol1_bonds.dat");
  expect_golden("data/mol3_bonds.dat", "mol3_bonds.dat");
  EXPECT_FALSE(path_exists("data/mol2_bonds.dat"));
}

TEST(MolBonds, UniqueReBeforeTheReorganisationCheckWritesNoTable) {
  TempDir dir;
  Transport t;
  tiny_molecules(t);
  ASSERT_TRUE(t.unique_RE_calc_flag);
  ASSERT_EQ(t.uc_mol_re_count, 0);
  t.write_mol_bonds_files(true);
  EXPECT_TRUE(path_exists("data"));
  EXPECT_FALSE(path_exists("data/mol1_bonds.dat"));
}

TEST(MolBonds, UniqueReEntryOutsideTheCellIsFatal) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    tiny_molecules(t);
    t.unique_RE_calc_flag = true;
    t.uc_mol_re_list = new int[2]{1, 0};  // the second entry never filled
    t.uc_mol_re_count = 2;
    t.write_mol_bonds_files(true);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "write_mol_bonds_files: uc_mol_re_list entry 0 is outside 1..3\n");
}

TEST(MolBonds, MoleculeOfOneAtomGetsCountZero) {
  TempDir dir;
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.5, 0.5, 0.5}}});
  every_molecule(t);
  t.write_mol_bonds_files(true);
  EXPECT_EQ(read_file("data/mol1_bonds.dat"), "0\n");
}

// Two hydrogens on x at the origin and at `d` angstrom, bond_dis_scale 1.
std::string hydrogen_pair_bonds(double d) {
  TempDir dir;
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}, {topo::H, 0.0, 0.0, 0.0}}});
  t.mol_x[0][3] = d;
  t.bond_dis_scale = 1.0;
  every_molecule(t);
  t.write_mol_bonds_files(true);
  return read_file("data/mol1_bonds.dat");
}

TEST(MolBonds, LimitIsStrict) {
  // Covalent radius of H: 80/250 = 0.32 angstrom. Doubling is exact in binary, so
  // the limit 0.32 + 0.32 is the double nearest 0.64, as is the distance.
  EXPECT_EQ(hydrogen_pair_bonds(0.64), "0\n");
  EXPECT_EQ(hydrogen_pair_bonds(0.6399), "1\n  1   2  0  0\n");
}

TEST(MolBonds, CovalentRadiusOverTwoHundredFiftyDecides) {
  // 0.68 angstrom: beyond 2 x 0.32 (covalent), within 2 x 0.35 (the bond radius of
  // the crystal separation), so no bond.
  EXPECT_EQ(hydrogen_pair_bonds(0.68), "0\n");
}

TEST(MolBonds, OrderedByFirstAtomThenAsFound) {
  TempDir dir;
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  // A carbon square of side 1 angstrom: sides bond, diagonals (1.414) beyond
  // (0.72 + 0.72) x 0.9 = 1.296 do not.
  topo::set_molecules(t, {{{topo::C, 0.0, 0.0, 0.0},
                           {topo::C, 0.125, 0.0, 0.0},
                           {topo::C, 0.125, 0.125, 0.0},
                           {topo::C, 0.0, 0.125, 0.0}}});
  t.bond_dis_scale = 0.9;
  every_molecule(t);
  t.write_mol_bonds_files(true);
  EXPECT_EQ(read_file("data/mol1_bonds.dat"),
            "4\n"
            "  1   2  0  0\n"
            "  1   4  0  0\n"
            "  2   3  0  0\n"
            "  3   4  0  0\n");
}

TEST(MolBonds, OpenFailureIsFatal) {
  TempDir dir;
  create_directory("data");
  block_file("data/mol2_bonds.dat");
  const RunResult r = run_forked([] {
    Transport t;
    tiny_molecules(t);
    every_molecule(t);
    t.write_mol_bonds_files(true);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file data/mol2_bonds.dat\n");
}

}  // namespace
