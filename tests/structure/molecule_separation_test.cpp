// Separation of the expanded cell into molecules: the bond searches
// find_bond_atom, find_bond_atom_cart and find_bond_atom_one, and the walks
// separate_cif_molecules, separate_gjf_molecules and make_whole_molecule,
// which must equal the plain walks that call a search once per step (kept
// below as the references), on hand-made cells, random cells, the real
// crystals and a 3x3x3 supercell of the largest of them.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

using Xyz = std::array<double, 3>;

void load_cell(FileIO& io, const double cell[6], const std::vector<Xyz>& x_s, const std::vector<double>& radii) {
  io.convert_cell6_to_latt3x3(cell, io.latt_f2c);
  io.release_crystal_arrays();
  const int n = static_cast<int>(x_s.size());
  io.cif_natoms = n;
  io.cif_atypes = new int[n];
  io.cif_radii = new double[n];
  io.cif_x_s = new double[3 * n];
  io.cif_x = new double[3 * n];
  for (int i = 0; i < n; ++i) {
    io.cif_atypes[i] = -1;
    io.cif_radii[i] = radii[i];
    for (int k = 0; k < 3; ++k) io.cif_x_s[3 * i + k] = x_s[i][k];
    io.coord_f2c(&io.cif_x_s[3 * i], &io.cif_x[3 * i]);
  }
}

const double kCube10[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 90.0};
const double kCarbon = 0.77;  // bond radius, angstrom; C-C bonds below 1.771 angstrom at scale 1.15

// Positions along x through the middle of the 10 angstrom cube.
std::vector<Xyz> along_x(const std::vector<double>& xs) {
  std::vector<Xyz> out;
  for (double x : xs) out.push_back({x, 0.5, 0.5});
  return out;
}

struct Search {
  int new_atom;
  int ref_atom;
  double dist;
};

using SearchFn = void (FileIO::*)(int, int*, int, int*, int*, int*, double*);

Search search(FileIO& io, std::vector<int> unvisited, std::vector<int> visited, SearchFn fn = &FileIO::find_bond_atom) {
  Search s{-7, -7, -7.0};
  (io.*fn)(io.cif_natoms, unvisited.data(), static_cast<int>(visited.size()), visited.data(), &s.new_atom, &s.ref_atom,
           &s.dist);
  return s;
}

Search search_one(FileIO& io, std::vector<Xyz>& x_s, std::vector<double> radii, std::vector<int> unvisited,
                  std::vector<int> visited) {
  Search s{-7, -7, -7.0};
  io.find_bond_atom_one(static_cast<int>(x_s.size()), x_s[0].data(), radii.data(), unvisited.data(),
                        static_cast<int>(visited.size()), visited.data(), &s.new_atom, &s.ref_atom, &s.dist);
  return s;
}

// The separation exactly as the plain algorithm states it: one call of the
// search per step, the criterion re-tested on its answer.
void plain_separation(FileIO& io, std::vector<int>& sizes, std::vector<int>& atoms,
                      SearchFn fn = &FileIO::find_bond_atom) {
  const int n = io.cif_natoms;
  std::vector<int> unvisited(n, 1);
  std::vector<int> list;
  int assigned = 0;
  bool fresh = true;
  while (assigned < n) {
    int a = -1;
    int r = -1;
    double d = 0.0;
    (io.*fn)(n, unvisited.data(), static_cast<int>(list.size()), list.data(), &a, &r, &d);
    if (fresh) {
      list.push_back(a);
      unvisited[a] = 0;
      fresh = false;
    } else if (a >= 0 && (io.cif_radii[a] + io.cif_radii[r]) * io.bond_dis_scale > d) {
      list.push_back(a);
      unvisited[a] = 0;
    } else {
      sizes.push_back(static_cast<int>(list.size()));
      atoms.insert(atoms.end(), list.begin(), list.end());
      assigned += static_cast<int>(list.size());
      list.clear();
      fresh = true;
    }
  }
}

void expect_same_as_plain(FileIO& io, const std::string& what) {
  std::vector<int> sizes;
  std::vector<int> atoms;
  plain_separation(io, sizes, atoms);
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, sizes) << what;
  EXPECT_EQ(io.uc_mol_atoms, atoms) << what;
}

void expect_gjf_same_as_plain(FileIO& io, const std::string& what) {
  std::vector<int> sizes;
  std::vector<int> atoms;
  plain_separation(io, sizes, atoms, &FileIO::find_bond_atom_cart);
  io.separate_gjf_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, sizes) << what;
  EXPECT_EQ(io.uc_mol_atoms, atoms) << what;
}

// make_whole_molecule exactly as the plain algorithm states it: covalent
// radii, one call of find_bond_atom_one per step with its re-test (at least
// the distance), the warning, the centre of mass and the one-step shift.
void plain_make_whole(FileIO& io, int number, int natoms, int* types, double* x_s, bool verbose) {
  std::vector<double> radii(natoms);
  for (int a = 0; a < natoms; ++a) radii[a] = io.find_element_radius_from_index(types[a]);
  std::vector<int> unvisited(natoms, 1);
  std::vector<int> visited;
  int a = -1;
  int r = -1;
  double d = 0.0;
  io.find_bond_atom_one(natoms, x_s, radii.data(), unvisited.data(), 0, visited.data(), &a, &r, &d);
  visited.push_back(a);
  unvisited[a] = 0;
  while (static_cast<int>(visited.size()) < natoms) {
    io.find_bond_atom_one(natoms, x_s, radii.data(), unvisited.data(), static_cast<int>(visited.size()), visited.data(),
                          &a, &r, &d);
    if (a < 0 || !((radii[a] + radii[r]) * io.bond_dis_scale >= d)) break;
    visited.push_back(a);
    unvisited[a] = 0;
  }
  const int nbonded = static_cast<int>(visited.size());
  if (nbonded < natoms)
    std::printf("WARNING: Not all atoms are bonded in the molecule!\n         nat_bonded = %d, natoms = %d\n", nbonded,
                natoms);
  auto com_of = [&](double c[3]) {
    double total = 0.0;
    double sum[3] = {0.0, 0.0, 0.0};
    for (int k = 0; k < natoms; ++k) {
      const double m = io.find_element_mass_from_index(types[k]);
      total += m;
      for (int x = 0; x < 3; ++x) sum[x] += m * x_s[3 * k + x];
    }
    for (int x = 0; x < 3; ++x) c[x] = sum[x] / total;
  };
  double c[3];
  com_of(c);
  if (verbose) std::printf("  molecule %d COM = %9.6f %9.6f %9.6f\n", number, c[0], c[1], c[2]);
  bool moved = false;
  for (int x = 0; x < 3; ++x) {
    if (c[x] < -5.96046448e-08) {
      for (int k = 0; k < natoms; ++k) x_s[3 * k + x] += 1.0;
      moved = true;
    } else if (c[x] > 1.0000000596046448) {
      for (int k = 0; k < natoms; ++k) x_s[3 * k + x] -= 1.0;
      moved = true;
    }
  }
  if (!moved) return;
  com_of(c);
  if (verbose) std::printf("  molecule %d COM = %9.6f %9.6f %9.6f (wrapped)\n", number, c[0], c[1], c[2]);
}

// Both forms of make_whole_molecule on copies of one molecule: the same
// coordinates bit for bit and the same printed text.
void expect_whole_same_as_plain(FileIO& io, int number, std::vector<int> types, const std::vector<double>& x_s,
                                const std::string& what) {
  const int n = static_cast<int>(types.size());
  std::vector<double> fast = x_s;
  std::vector<double> plain = x_s;
  const std::string fast_out =
      txtest::capture_stdout([&] { io.make_whole_molecule(number, n, types.data(), fast.data(), true); });
  const std::string plain_out =
      txtest::capture_stdout([&] { plain_make_whole(io, number, n, types.data(), plain.data(), true); });
  ASSERT_EQ(fast.size(), plain.size());
  for (size_t k = 0; k < fast.size(); ++k) {
    // Bit for bit; NaN only where the plain form has NaN.
    if (std::isnan(plain[k])) {
      EXPECT_TRUE(std::isnan(fast[k])) << what << ", coordinate " << k;
    } else {
      EXPECT_EQ(fast[k], plain[k]) << what << ", coordinate " << k;
    }
  }
  EXPECT_EQ(fast_out, plain_out) << what;
}

// Every molecule of a separated crystal, made whole both ways.
void expect_molecules_whole_same_as_plain(FileIO& io, const std::string& what) {
  size_t next = 0;
  for (size_t m = 0; m < io.uc_mol_natoms.size(); ++m) {
    std::vector<int> types;
    std::vector<double> x_s;
    for (int a = 0; a < io.uc_mol_natoms[m]; ++a, ++next) {
      const int atom = io.uc_mol_atoms[next];
      types.push_back(io.cif_atypes[atom]);
      for (int k = 0; k < 3; ++k) x_s.push_back(io.cif_x_s[3 * atom + k]);
    }
    expect_whole_same_as_plain(io, static_cast<int>(m) + 1, types, x_s, what + ", molecule " + std::to_string(m + 1));
  }
}

// A small deterministic generator, so that the random cells are the same on every run.
struct Lcg {
  uint64_t state;
  double next() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) / 9007199254740992.0;
  }
  int below(int n) { return static_cast<int>(next() * n) % n; }
};

void read_cif_quietly(FileIO& io, const std::string& path) {
  txtest::capture_stdout([&] { io.read_data_cif(path.c_str(), false); });
}

// The 3x3x3 supercell of the largest real crystal (calixdiquinone, 440 atoms
// in the cell): its molecules made whole, written by write_supercell_cif and
// read back as a P1 crystal of 11,880 atoms.
void read_calixdiquinone_supercell(FileIO& io) {
  txtest::TempDir dir;
  FileIO cell;
  read_cif_quietly(cell, txtest::data_path("cif/calixdiquinone_COD7052819_blankline.cif"));
  cell.mol_input_mode = 2;
  txtest::capture_stdout([&] { cell.read_crystal_strcuture_files(false, false); });
  cell.write_supercell_cif("supercell.cif", cell.nmols_uc, cell.mol_natoms, cell.mol_elem, cell.mol_x_s, 3, 3, 3);
  read_cif_quietly(io, dir.file("supercell.cif"));
}

const char* const kRealCrystals[] = {"benzene_COD2100348_blankline.cif", "C13H10ClN2_COD7238658_blankline.cif",
                                     "calixdiquinone_COD7052819_blankline.cif", "ibuprofen_COD2300214_blankline.cif",
                                     "tetraazaarene_COD7052868_blankline.cif"};

}  // namespace

// ---- find_bond_atom ----------------------------------------------------------------

TEST(FindBondAtom, NothingVisitedGivesTheLowestUnvisitedAtom) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.1, 0.2, 0.3}), {kCarbon, kCarbon, kCarbon});
  const Search s = search(io, {0, 1, 1}, {});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_EQ(s.ref_atom, 0);
  EXPECT_EQ(s.dist, 0.0);
}

TEST(FindBondAtom, NoCandidateLeavesTheInitialValues) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.1, 0.5}), {kCarbon, kCarbon});
  const Search s = search(io, {0, 1}, {0});  // 4 angstrom apart
  EXPECT_EQ(s.new_atom, -1);
  EXPECT_EQ(s.ref_atom, -1);
  EXPECT_EQ(s.dist, 9999.99);
}

TEST(FindBondAtom, LowestBondedAtomComesWithItsEarliestPartnerInListOrder) {
  FileIO io;
  // Atom 1 is far from all; atom 2 lies 0.5 angstrom from both 0 and 3.
  load_cell(io, kCube10, along_x({0.10, 0.60, 0.15, 0.20}), {kCarbon, kCarbon, kCarbon, kCarbon});
  const Search s = search(io, {0, 1, 1, 0}, {3, 0});
  EXPECT_EQ(s.new_atom, 2);
  EXPECT_EQ(s.ref_atom, 3);
  EXPECT_NEAR(s.dist, 0.5, 1e-12);
}

TEST(FindBondAtom, AVisitedEntryEqualToTheCandidateIsSkipped) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.10, 0.15}), {kCarbon, kCarbon});
  const Search s = search(io, {1, 1}, {0, 1});
  EXPECT_EQ(s.new_atom, 0);
  EXPECT_EQ(s.ref_atom, 1);
}

TEST(FindBondAtom, MinimumImageTakesOneStepOnly) {
  FileIO io;
  // 0.97 - 0.02 = 0.95 wraps to -0.05 (0.5 angstrom); 1.98 - 0.02 = 1.96 wraps
  // once to 0.96 and stays 9.6 angstrom away.
  load_cell(io, kCube10, along_x({0.02, 0.97, 1.98}), {kCarbon, kCarbon, kCarbon});
  Search s = search(io, {0, 1, 0}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_NEAR(s.dist, 0.5, 1e-12);
  s = search(io, {0, 0, 1}, {0});
  EXPECT_EQ(s.new_atom, -1);
}

TEST(FindBondAtom, DistanceIsCartesianThroughTheLattice) {
  // Distances worked out with python3 from the upper-triangular cell matrix
  // (pi = 3.1415926535898) and the one-step minimum image.
  const double triclinic[6] = {7.0, 8.0, 9.0, 70.0, 80.0, 100.0};
  FileIO io;
  load_cell(io, triclinic, {{0.10, 0.20, 0.30}, {0.05, 0.25, 0.32}, {0.95, 0.20, 0.30}, {0.05, 0.22, 0.31}},
            {kCarbon, kCarbon, kCarbon, kCarbon});
  Search s = search(io, {0, 1, 0, 0}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_NEAR(s.dist, 0.6252141393151667, 1e-12);
  s = search(io, {0, 0, 0, 1}, {2});
  EXPECT_EQ(s.new_atom, 3);
  EXPECT_NEAR(s.dist, 0.7187020653347391, 1e-12);
}

TEST(FindBondAtom, BondNeedsTheScaledRadiiStrictlyAboveTheDistance) {
  // An 8 angstrom cube and a difference of 0.125: exactly 1.0 angstrom.
  const double cube8[6] = {8.0, 8.0, 8.0, 90.0, 90.0, 90.0};
  FileIO io;
  io.bond_dis_scale = 1.0;
  load_cell(io, cube8, {{0.25, 0.5, 0.5}, {0.125, 0.5, 0.5}}, {0.5, 0.5});
  EXPECT_EQ(search(io, {0, 1}, {0}).new_atom, -1);
  io.cif_radii[1] = 0.5000001;
  const Search s = search(io, {0, 1}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_EQ(s.dist, 1.0);
}

// ---- separate_cif_molecules ------------------------------------------------------------

TEST(SeparateCifMolecules, TwoMoleculesComeInDiscoveryOrderAtomZerosFirst) {
  FileIO io;
  // Molecule A: atoms 0 and 2; molecule B: atoms 1 and 3.
  load_cell(io, kCube10, along_x({0.10, 0.60, 0.20, 0.70}), {kCarbon, kCarbon, kCarbon, kCarbon});
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{2, 2}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 2, 1, 3}));
}

TEST(SeparateCifMolecules, WalkTakesTheLowestNumberedBondedAtomNext) {
  FileIO io;
  // Bonds (1 angstrom): 0-2, 0-3, 3-1. After 0 both 2 and 3 qualify; 2 is lower.
  load_cell(io, kCube10, along_x({0.30, 0.50, 0.20, 0.40}), {kCarbon, kCarbon, kCarbon, kCarbon});
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{4}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 2, 3, 1}));
}

TEST(SeparateCifMolecules, MoleculeCrossingACellFaceIsOneMolecule) {
  FileIO io;
  load_cell(io, kCube10, {{0.98, 0.5, 0.5}, {0.5, 0.02, 0.5}, {0.03, 0.5, 0.5}, {0.5, 0.97, 0.5}},
            {kCarbon, kCarbon, kCarbon, kCarbon});
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{2, 2}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 2, 1, 3}));
}

TEST(SeparateCifMolecules, SingleAtomWithoutPartnerFormsAMoleculeOfOne) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.60, 0.10, 0.20}), {kCarbon, kCarbon, kCarbon});
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{1, 2}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 1, 2}));
}

TEST(SeparateCifMolecules, UnknownElementRadiusBondsToEverything) {
  FileIO io;
  // Atoms 0 and 1 are 4 angstrom apart; atom 2 has the radius of an unknown symbol.
  load_cell(io, kCube10, along_x({0.10, 0.50, 0.90}), {kCarbon, kCarbon, 9999.99});
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{3}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 2, 1}));
}

TEST(SeparateCifMolecules, NoAtomsGiveNoMolecules) {
  FileIO io;
  load_cell(io, kCube10, {}, {});
  const std::string out = txtest::capture_stdout([&] { io.separate_cif_molecules(true); });
  EXPECT_TRUE(io.uc_mol_natoms.empty());
  EXPECT_TRUE(io.uc_mol_atoms.empty());
  EXPECT_EQ(out, "  Unit cell nmols  = 0\n  Unit cell natoms =\n");
}

TEST(SeparateCifMolecules, VerboseListsTheMoleculeSizes) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.10, 0.60, 0.15}), {kCarbon, kCarbon, kCarbon});
  const std::string out = txtest::capture_stdout([&] { io.separate_cif_molecules(true); });
  EXPECT_EQ(out, "  Unit cell nmols  = 2\n  Unit cell natoms = 2 1\n");
}

TEST(SeparateCifMolecules, ANewSeparationReplacesTheEarlierLists) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.10, 0.60, 0.15}), {kCarbon, kCarbon, kCarbon});
  io.separate_cif_molecules(false);
  load_cell(io, kCube10, along_x({0.10}), {kCarbon});
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{1}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0}));
}

// ---- equal to the plain walk ---------------------------------------------------------------

TEST(SeparateCifMolecules, EqualsThePlainWalkOnRealCrystals) {
  for (const char* name : kRealCrystals) {
    FileIO io;
    txtest::capture_stdout([&] { io.read_data_cif(txtest::data_path(std::string("cif/") + name).c_str(), false); });
    ASSERT_GT(io.cif_natoms, 0) << name;
    expect_same_as_plain(io, name);
    // A looser and a tighter bond criterion give other graphs; still the same walk.
    io.bond_dis_scale = 2.0;
    expect_same_as_plain(io, std::string(name) + " at scale 2.0");
    io.bond_dis_scale = 0.9;
    expect_same_as_plain(io, std::string(name) + " at scale 0.9");
  }
}

TEST(SeparateCifMolecules, EqualsThePlainWalkOnRandomCells) {
  const double cells[][6] = {
      {10.0, 10.0, 10.0, 90.0, 90.0, 90.0},
      {7.0, 8.0, 9.0, 70.0, 80.0, 100.0},
      {5.0, 12.0, 6.5, 90.0, 117.0, 90.0},
  };
  Lcg rng{12345};
  for (const auto& cell : cells) {
    for (int natoms : {1, 2, 7, 40, 150}) {
      for (double scale : {0.8, 1.15, 2.5}) {
        std::vector<Xyz> x_s;
        std::vector<double> radii;
        for (int i = 0; i < natoms; ++i) {
          // Some positions a little outside the cell, as a P1 file may hold them.
          x_s.push_back({rng.next() * 1.4 - 0.2, rng.next() * 1.4 - 0.2, rng.next() * 1.4 - 0.2});
          radii.push_back(0.3 + rng.next() * 1.2);
        }
        FileIO io;
        io.bond_dis_scale = scale;
        load_cell(io, cell, x_s, radii);
        expect_same_as_plain(io, "cell " + std::to_string(cell[0]) + ", " + std::to_string(natoms) + " atoms, scale " +
                                     std::to_string(scale));
      }
    }
  }
}

TEST(SeparateCifMolecules, EqualsThePlainWalkOnTheSupercellOfTheLargestCrystal) {
  FileIO io;
  read_calixdiquinone_supercell(io);
  ASSERT_EQ(io.cif_natoms, 11880);
  expect_same_as_plain(io, "calixdiquinone 3x3x3");
  EXPECT_EQ(io.uc_mol_natoms, std::vector<int>(108, 110));
}

TEST(SeparateCifMolecules, EqualsThePlainWalkOnAWideCellWithManyBoxes) {
  // A 60 angstrom cell holds many grid boxes per axis; positions partly
  // outside the cell and a few atoms with the radius of an unknown symbol.
  const double cell[6] = {60.0, 45.0, 50.0, 85.0, 95.0, 105.0};
  Lcg rng{777};
  for (double unknown_share : {0.0, 0.002}) {
    std::vector<Xyz> x_s;
    std::vector<double> radii;
    for (int i = 0; i < 1500; ++i) {
      x_s.push_back({rng.next() * 1.2 - 0.1, rng.next() * 1.2 - 0.1, rng.next() * 1.2 - 0.1});
      radii.push_back(rng.next() < unknown_share ? 9999.99 : 0.5 + rng.next() * 0.9);
    }
    FileIO io;
    io.bond_dis_scale = 1.15;
    load_cell(io, cell, x_s, radii);
    expect_same_as_plain(io, "wide cell, share of unknown radii " + std::to_string(unknown_share));
  }
}

TEST(SeparateCifMolecules, EqualsThePlainWalkOnDegenerateInput) {
  // Inputs the box grid cannot use fall back to testing every atom.
  const double flat[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 0.0};  // gamma 0: no volume
  const double thin[6] = {40.0, 40.0, 0.8, 90.0, 90.0, 90.0};  // fewer than three boxes along c
  const double nan_x = std::numeric_limits<double>::quiet_NaN();
  const double inf_x = std::numeric_limits<double>::infinity();
  struct Case {
    const char* what;
    const double* cell;
    std::vector<Xyz> x_s;
    std::vector<double> radii;
    double scale;
  } cases[] = {
      {"flat cell", flat, along_x({0.10, 0.15, 0.60}), {kCarbon, kCarbon, kCarbon}, 1.15},
      {"thin cell",
       thin,
       {{0.1, 0.1, 0.1}, {0.12, 0.1, 0.9}, {0.5, 0.5, 0.5}, {0.52, 0.5, 0.1}},
       {kCarbon, kCarbon, kCarbon, kCarbon},
       1.15},
      {"NaN coordinate",
       kCube10,
       {{0.1, 0.5, 0.5}, {nan_x, 0.5, 0.5}, {0.15, 0.5, 0.5}},
       {kCarbon, kCarbon, kCarbon},
       1.15},
      {"infinite coordinate",
       kCube10,
       {{0.1, 0.5, 0.5}, {inf_x, 0.5, 0.5}, {0.15, 0.5, 0.5}},
       {kCarbon, kCarbon, kCarbon},
       1.15},
      {"far outside the cell",
       kCube10,
       {{0.1, 0.5, 0.5}, {5000.12, 0.5, 0.5}, {0.15, 0.5, 0.5}},
       {kCarbon, kCarbon, kCarbon},
       1.15},
      {"NaN radius", kCube10, along_x({0.10, 0.15, 0.20}), {kCarbon, nan_x, kCarbon}, 1.15},
      {"negative scale", kCube10, along_x({0.10, 0.15, 0.20}), {-0.8, -0.8, kCarbon}, -1.0},
      {"zero scale", kCube10, along_x({0.10, 0.15, 0.20}), {kCarbon, kCarbon, kCarbon}, 0.0},
  };
  for (Case& c : cases) {
    FileIO io;
    io.bond_dis_scale = c.scale;
    load_cell(io, c.cell, c.x_s, c.radii);
    expect_same_as_plain(io, c.what);
  }
}

// ---- find_bond_atom_cart ----------------------------------------------------------------

TEST(FindBondAtomCart, NothingVisitedGivesTheLowestUnvisitedAtom) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.1, 0.2, 0.3}), {kCarbon, kCarbon, kCarbon});
  const Search s = search(io, {0, 0, 1}, {}, &FileIO::find_bond_atom_cart);
  EXPECT_EQ(s.new_atom, 2);
  EXPECT_EQ(s.ref_atom, 0);
  EXPECT_EQ(s.dist, 0.0);
}

TEST(FindBondAtomCart, NoPeriodicImage) {
  FileIO io;
  // 0.5 angstrom apart through the face, 9.5 angstrom in plain Cartesian distance.
  load_cell(io, kCube10, along_x({0.02, 0.97}), {kCarbon, kCarbon});
  EXPECT_EQ(search(io, {0, 1}, {0}).new_atom, 1);
  const Search s = search(io, {0, 1}, {0}, &FileIO::find_bond_atom_cart);
  EXPECT_EQ(s.new_atom, -1);
  EXPECT_EQ(s.ref_atom, -1);
  EXPECT_EQ(s.dist, 9999.99);
}

TEST(FindBondAtomCart, LowestBondedAtomComesWithItsEarliestPartnerInListOrder) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.10, 0.60, 0.15, 0.20}), {kCarbon, kCarbon, kCarbon, kCarbon});
  const Search s = search(io, {0, 1, 1, 0}, {3, 0}, &FileIO::find_bond_atom_cart);
  EXPECT_EQ(s.new_atom, 2);
  EXPECT_EQ(s.ref_atom, 3);
  EXPECT_NEAR(s.dist, 0.5, 1e-12);
}

// ---- find_bond_atom_one ------------------------------------------------------------------

TEST(FindBondAtomOne, NothingVisitedGivesTheLowestUnvisitedAtom) {
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  std::vector<Xyz> x = {{0.1, 0.5, 0.5}, {0.9, 0.5, 0.5}};
  const Search s = search_one(io, x, {0.72, 0.72}, {1, 1}, {});
  EXPECT_EQ(s.new_atom, 0);
  EXPECT_EQ(s.ref_atom, 0);
  EXPECT_EQ(s.dist, 0.0);
}

TEST(FindBondAtomOne, PairAsItStandsBondsWithoutMoving) {
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  std::vector<Xyz> x = {{0.10, 0.5, 0.5}, {0.15, 0.5, 0.5}};
  const Search s = search_one(io, x, {0.72, 0.72}, {0, 1}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_EQ(s.ref_atom, 0);
  EXPECT_NEAR(s.dist, 0.5, 1e-12);
  EXPECT_EQ(x[1][0], 0.15);
}

TEST(FindBondAtomOne, WrappedPairMovesTheAtomNextToItsPartner) {
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  // 0.98 - 2.03 wraps to -0.05 (python3: -0.04999999999999982); the atom goes
  // to 0.98 + 0.05 = 1.0299999999999998.
  std::vector<Xyz> x = {{0.98, 0.5, 0.5}, {2.03, 0.5, 0.5}};
  const Search s = search_one(io, x, {0.72, 0.72}, {0, 1}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_EQ(s.ref_atom, 0);
  EXPECT_NEAR(s.dist, 0.5, 1e-12);
  EXPECT_EQ(x[1][0], 1.0299999999999998);
  EXPECT_EQ(x[1][1], 0.5);
  EXPECT_EQ(x[0][0], 0.98);
}

TEST(FindBondAtomOne, WrapTakesAsManyStepsAsNeeded) {
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  // 0.98 - (-3.96) = 4.94 wraps in five steps to -0.06 (python3:
  // -0.0600000000000005); the atom goes to 1.0400000000000005.
  std::vector<Xyz> x = {{0.98, 0.5, 0.5}, {-3.96, 0.5, 0.5}};
  const Search s = search_one(io, x, {0.72, 0.72}, {0, 1}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_NEAR(s.dist, 0.6, 1e-12);
  EXPECT_EQ(x[1][0], 1.0400000000000005);
}

TEST(FindBondAtomOne, PairAsItStandsIsTriedBeforeTheWrappedOne) {
  // In a 2 angstrom cube, 0.6 of the edge is 1.2 angstrom as it stands and
  // 0.8 angstrom wrapped; the first test already bonds, so nothing moves.
  const double cube2[6] = {2.0, 2.0, 2.0, 90.0, 90.0, 90.0};
  FileIO io;
  io.convert_cell6_to_latt3x3(cube2, io.latt_f2c);
  std::vector<Xyz> x = {{0.1, 0.5, 0.5}, {0.7, 0.5, 0.5}};
  const Search s = search_one(io, x, {0.72, 0.72}, {0, 1}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_NEAR(s.dist, 1.2, 1e-12);
  EXPECT_EQ(x[1][0], 0.7);
}

TEST(FindBondAtomOne, NoCandidateLeavesTheInitialValuesAndTheAtoms) {
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  std::vector<Xyz> x = {{0.1, 0.5, 0.5}, {1.5, 0.5, 0.5}};
  const Search s = search_one(io, x, {0.72, 0.72}, {0, 1}, {0});
  EXPECT_EQ(s.new_atom, -1);
  EXPECT_EQ(s.ref_atom, -1);
  EXPECT_EQ(s.dist, 9999.99);
  EXPECT_EQ(x[1][0], 1.5);
}

TEST(FindBondAtomOne, EarliestPartnerInListOrderPlacesTheAtom) {
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  // Atom 2 bonds to both visited atoms through the face; list order puts atom
  // 1 first, so atom 2 lands 0.5 angstrom from atom 1: 0.95 - (0.95 - 0.0) wrapped.
  std::vector<Xyz> x = {{0.92, 0.5, 0.5}, {1.95, 0.5, 0.5}, {0.0, 0.5, 0.5}};
  const Search s = search_one(io, x, {0.72, 0.72, 0.72}, {0, 0, 1}, {1, 0});
  EXPECT_EQ(s.new_atom, 2);
  EXPECT_EQ(s.ref_atom, 1);
  EXPECT_NEAR(x[2][0], 2.0, 1e-12);
}

TEST(FindBondAtomOne, HugeDifferencesEndWithoutHanging) {
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  // An infinite difference wraps to NaN and bonds to nothing.
  std::vector<Xyz> x = {{0.1, 0.5, 0.5}, {std::numeric_limits<double>::infinity(), 0.5, 0.5}};
  EXPECT_EQ(search_one(io, x, {0.72, 0.72}, {0, 1}, {0}).new_atom, -1);
  // 0.25 - 2^60 is -2^60 in a double, a whole number of cells, which wraps
  // to exactly 0.0: the atom lands on its partner at distance 0.
  std::vector<Xyz> y = {{0.25, 0.5, 0.5}, {1152921504606846976.0, 0.5, 0.5}};
  const Search s = search_one(io, y, {0.72, 0.72}, {0, 1}, {0});
  EXPECT_EQ(s.new_atom, 1);
  EXPECT_EQ(s.dist, 0.0);
  EXPECT_EQ(y[1][0], 0.25);
}

TEST(FindBondAtomOne, VisitedIndexMayPointBeforeArraysThatStartInsideLargerOnes) {
  // Arrays that start at atom 2 of a molecule: atom 0 of the molecule is -2 from there.
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  std::vector<Xyz> x = {{0.98, 0.5, 0.5}, {0.5, 0.5, 0.5}, {2.03, 0.5, 0.5}};
  std::vector<double> radii = {0.72, 0.72, 0.72};
  int unvisited = 1;
  int visited = -2;
  Search s{-7, -7, -7.0};
  io.find_bond_atom_one(1, x[2].data(), &radii[2], &unvisited, 1, &visited, &s.new_atom, &s.ref_atom, &s.dist);
  EXPECT_EQ(s.new_atom, 0);
  EXPECT_EQ(s.ref_atom, -2);
  EXPECT_EQ(x[2][0], 1.0299999999999998);  // as in WrappedPairMovesTheAtomNextToItsPartner
  EXPECT_EQ(x[1][0], 0.5);
}

TEST(FindBondAtomOne, WrapFarBeyondTheCellEqualsTheStepByStepLoop) {
  // Differences of more than a thousand cells, ties of exactly half a cell
  // included; the reference is the loop itself. Radii of 1000 angstrom fail
  // the pair as it stands (over 10,000 angstrom) and pass it wrapped.
  FileIO io;
  io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c);
  for (double d : {1024.3, 1024.5, 1025.5, -1025.5, 1500.5, -1500.5, 2047.75, -3000.25, 4096.5, -4096.5, 1e6 + 0.5,
                   -1e6 - 0.5, 123456.789, -98765.4321}) {
    double w = d;
    while (w > 0.5) w -= 1.0;
    while (w < -0.5) w += 1.0;
    std::vector<Xyz> x = {{0.0, 0.5, 0.5}, {-d, 0.5, 0.5}};
    const Search s = search_one(io, x, {1000.0, 1000.0}, {0, 1}, {0});
    EXPECT_EQ(s.new_atom, 1) << d;
    EXPECT_EQ(x[1][0], 0.0 - w) << d;
  }
}

// ---- separate_gjf_molecules --------------------------------------------------------------

TEST(SeparateGjfMolecules, NoPeriodicImageJoinsAtomsAcrossTheFace) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.02, 0.97, 0.06}), {kCarbon, kCarbon, kCarbon});
  io.separate_gjf_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{2, 1}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 2, 1}));
  io.separate_cif_molecules(false);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{3}));
}

TEST(SeparateGjfMolecules, VerboseListsTheMoleculeSizes) {
  FileIO io;
  load_cell(io, kCube10, along_x({0.10, 0.60, 0.15}), {kCarbon, kCarbon, kCarbon});
  const std::string out = txtest::capture_stdout([&] { io.separate_gjf_molecules(true); });
  EXPECT_EQ(out, "Mol separated: nmols  = 2\nMol separated: natoms = 2 1\n");
}

TEST(SeparateGjfMolecules, NoAtomsGiveNoMolecules) {
  FileIO io;
  load_cell(io, kCube10, {}, {});
  const std::string out = txtest::capture_stdout([&] { io.separate_gjf_molecules(true); });
  EXPECT_TRUE(io.uc_mol_natoms.empty());
  EXPECT_EQ(out, "Mol separated: nmols  = 0\nMol separated: natoms =\n");
}

TEST(SeparateGjfMolecules, EqualsThePlainWalkOnRealCrystalsAndRandomSets) {
  for (const char* name : kRealCrystals) {
    FileIO io;
    read_cif_quietly(io, txtest::data_path(std::string("cif/") + name));
    expect_gjf_same_as_plain(io, name);
  }
  Lcg rng{4242};
  for (int natoms : {1, 5, 60, 800}) {
    for (double scale : {0.8, 1.15, 2.5}) {
      std::vector<Xyz> x_s;
      std::vector<double> radii;
      for (int i = 0; i < natoms; ++i) {
        x_s.push_back({rng.next() * 3.0 - 1.0, rng.next(), rng.next() * 0.5});
        radii.push_back(rng.next() < 0.01 ? 9999.99 : 0.3 + rng.next() * 1.2);
      }
      FileIO io;
      io.bond_dis_scale = scale;
      load_cell(io, kCube10, x_s, radii);
      expect_gjf_same_as_plain(io, std::to_string(natoms) + " atoms, scale " + std::to_string(scale));
    }
  }
}

// ---- make_whole_molecule against its plain walk ---------------------------------------

TEST(MakeWholeMolecule, EqualsThePlainWalkOnTheMoleculesOfRealCrystals) {
  for (const char* name : kRealCrystals) {
    FileIO io;
    read_cif_quietly(io, txtest::data_path(std::string("cif/") + name));
    expect_molecules_whole_same_as_plain(io, name);
  }
}

TEST(MakeWholeMolecule, EqualsThePlainWalkOnTheMoleculesOfTheSupercell) {
  FileIO io;
  read_calixdiquinone_supercell(io);
  expect_molecules_whole_same_as_plain(io, "calixdiquinone 3x3x3");
}

TEST(MakeWholeMolecule, EqualsThePlainWalkOnRandomMolecules) {
  // Chains of atoms about 1.2 to 1.8 angstrom apart, each atom then shifted by
  // whole cells, with a few loose atoms that the walk cannot reach; elements
  // drawn from H, C, N, O, S and an unknown one.
  const double cells[][6] = {{10.0, 10.0, 10.0, 90.0, 90.0, 90.0}, {4.0, 5.5, 6.5, 75.0, 100.0, 115.0}};
  const int elements[] = {1, 6, 7, 8, 16, -1};
  Lcg rng{99};
  for (const auto& cell : cells) {
    for (int natoms : {1, 2, 6, 30, 120}) {
      for (int round = 0; round < 4; ++round) {
        FileIO io;
        io.convert_cell6_to_latt3x3(cell, io.latt_f2c);
        std::vector<int> types;
        std::vector<double> x_s;
        double at[3] = {rng.next() * 5.0, rng.next() * 5.0, rng.next() * 5.0};  // angstrom
        for (int a = 0; a < natoms; ++a) {
          types.push_back(elements[rng.below(rng.next() < 0.97 ? 5 : 6)]);
          double step[3] = {rng.next() - 0.5, rng.next() - 0.5, rng.next() - 0.5};
          const double len = std::sqrt(step[0] * step[0] + step[1] * step[1] + step[2] * step[2]) + 1e-9;
          const double bond = rng.next() < 0.05 ? 6.0 : 1.2 + rng.next() * 0.6;
          for (int k = 0; k < 3; ++k) at[k] += step[k] / len * bond;
          double f[3];
          io.coord_c2f(at, f);
          for (int k = 0; k < 3; ++k) x_s.push_back(f[k] + (rng.below(7) - 3));
        }
        expect_whole_same_as_plain(io, round + 1, types, x_s,
                                   "cell " + std::to_string(cell[0]) + ", " + std::to_string(natoms) + " atoms");
      }
    }
  }
}
