// Separation of the expanded cell into molecules: the bond search
// find_bond_atom and separate_cif_molecules, which must equal the plain walk
// that calls find_bond_atom once per step (kept below as the reference).
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
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

Search search(FileIO& io, std::vector<int> unvisited, std::vector<int> visited) {
  Search s{-7, -7, -7.0};
  io.find_bond_atom(io.cif_natoms, unvisited.data(), static_cast<int>(visited.size()), visited.data(), &s.new_atom,
                    &s.ref_atom, &s.dist);
  return s;
}

// The separation exactly as the plain algorithm states it: one call of
// find_bond_atom per step, the criterion re-tested on its answer.
void plain_separation(FileIO& io, std::vector<int>& sizes, std::vector<int>& atoms) {
  const int n = io.cif_natoms;
  std::vector<int> unvisited(n, 1);
  std::vector<int> list;
  int assigned = 0;
  bool fresh = true;
  while (assigned < n) {
    int a = -1;
    int r = -1;
    double d = 0.0;
    io.find_bond_atom(n, unvisited.data(), static_cast<int>(list.size()), list.data(), &a, &r, &d);
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

// A small deterministic generator, so that the random cells are the same on every run.
struct Lcg {
  uint64_t state;
  double next() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) / 9007199254740992.0;
  }
};

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
  const char* const files[] = {"benzene_COD2100348_blankline.cif", "C13H10ClN2_COD7238658_blankline.cif",
                               "calixdiquinone_COD7052819_blankline.cif", "ibuprofen_COD2300214_blankline.cif",
                               "tetraazaarene_COD7052868_blankline.cif"};
  for (const char* name : files) {
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
        expect_same_as_plain(io, "cell " + std::to_string(cell[0]) + ", " + std::to_string(natoms) +
                                     " atoms, scale " + std::to_string(scale));
      }
    }
  }
}
