// make_whole_molecule: the walk with covalent radii that moves atoms next to
// their partners, its warning when the walk is cut, and the one-step shift of
// the centre of mass back into the cell. Expected coordinates were worked out
// by hand and checked with python3 where the last digits matter. The walk's
// equality with its plain form is tested in molecule_separation_test.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

const double kCube10[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 90.0};
constexpr int kH = 1;
constexpr int kHe = 2;
constexpr int kC = 6;
constexpr int kUnknown = -1;

struct Molecule {
  std::vector<int> types;
  std::vector<double> x_s;  // 3 per atom
  double x(int atom, int k = 0) const { return x_s[3 * atom + k]; }
};

// Atoms along x through the middle of the cell.
Molecule along_x(const std::vector<int>& types, const std::vector<double>& xs) {
  Molecule m;
  m.types = types;
  for (double x : xs) {
    m.x_s.push_back(x);
    m.x_s.push_back(0.5);
    m.x_s.push_back(0.5);
  }
  return m;
}

std::string make_whole(FileIO& io, Molecule& m, int number = 1, bool verbose = true) {
  return txtest::capture_stdout(
      [&] { io.make_whole_molecule(number, static_cast<int>(m.types.size()), m.types.data(), m.x_s.data(), verbose); });
}

class MakeWholeMoleculeTest : public ::testing::Test {
 protected:
  void SetUp() override { io.convert_cell6_to_latt3x3(kCube10, io.latt_f2c); }
  FileIO io;
};

}  // namespace

TEST_F(MakeWholeMoleculeTest, MoleculeAcrossAFaceIsJoinedAndItsAtomsLeaveTheCell) {
  // 0.98 - 0.03 wraps to -0.05: atom 1 goes to 1.03; the centre 1.005 is
  // above the bound, so both move back by one cell: -0.02 and 0.03.
  Molecule m = along_x({kC, kC}, {0.98, 0.03});
  const std::string out = make_whole(io, m, 3);
  EXPECT_NEAR(m.x(0), -0.02, 1e-12);
  EXPECT_NEAR(m.x(1), 0.03, 1e-12);
  EXPECT_LT(m.x(0), 0.0);
  EXPECT_EQ(m.x(0, 1), 0.5);
  EXPECT_EQ(m.x(1, 2), 0.5);
  EXPECT_EQ(out,
            "  molecule 3 COM =  1.005000  0.500000  0.500000\n"
            "  molecule 3 COM =  0.005000  0.500000  0.500000 (wrapped)\n");
}

TEST_F(MakeWholeMoleculeTest, WalkCutByTheCovalentRadiiWarnsAndLeavesTheRestInPlace) {
  // 1.7 angstrom through the face: a bond for the bond radii of separation
  // ((0.77 + 0.77) * 1.15 = 1.771) but not for the covalent radii used here
  // ((0.72 + 0.72) * 1.15 = 1.656). Atom 1 would have moved to -0.15.
  Molecule m = along_x({kC, kC}, {0.02, 0.85});
  const std::string out = make_whole(io, m);
  EXPECT_EQ(m.x(0), 0.02);
  EXPECT_EQ(m.x(1), 0.85);
  EXPECT_EQ(out,
            "WARNING: Not all atoms are bonded in the molecule!\n"
            "         nat_bonded = 1, natoms = 2\n"
            "  molecule 1 COM =  0.435000  0.500000  0.500000\n");
}

TEST_F(MakeWholeMoleculeTest, WarningDoesNotNeedVerbose) {
  Molecule m = along_x({kC, kC, kC}, {0.02, 0.85, 0.07});
  const std::string out = make_whole(io, m, 1, false);
  EXPECT_EQ(out, "WARNING: Not all atoms are bonded in the molecule!\n         nat_bonded = 2, natoms = 3\n");
}

TEST_F(MakeWholeMoleculeTest, CovalentRadiiCanAlsoBondWhatSeparationKeepsApart) {
  // Helium: covalent radius 400/250 = 1.6, bond radius 1.22. At 3.0 angstrom
  // (1.6 + 1.6) * 1.15 = 3.68 bonds, (1.22 + 1.22) * 1.15 = 2.806 does not.
  Molecule m = along_x({kHe, kHe}, {0.35, 0.65});
  const std::string out = make_whole(io, m, 1, false);
  EXPECT_EQ(out, "");  // no warning: both atoms reached
  EXPECT_EQ(m.x(1), 0.65);

  FileIO crystal;
  crystal.convert_cell6_to_latt3x3(kCube10, crystal.latt_f2c);
  crystal.cif_natoms = 2;
  crystal.cif_atypes = new int[2]{kHe, kHe};
  crystal.cif_radii = new double[2]{1.22, 1.22};
  crystal.cif_x_s = new double[6]{0.35, 0.5, 0.5, 0.65, 0.5, 0.5};
  crystal.cif_x = new double[6]{3.5, 5.0, 5.0, 6.5, 5.0, 5.0};
  crystal.separate_cif_molecules(false);
  EXPECT_EQ(crystal.uc_mol_natoms, (std::vector<int>{1, 1}));
}

TEST_F(MakeWholeMoleculeTest, CentreJustAboveOneWithinTheToleranceIsLeftAlone) {
  Molecule m = along_x({kC}, {1.00000001});
  const std::string out = make_whole(io, m);
  EXPECT_EQ(m.x(0), 1.00000001);
  EXPECT_EQ(out, "  molecule 1 COM =  1.000000  0.500000  0.500000\n");
}

TEST_F(MakeWholeMoleculeTest, CentreBeyondTheToleranceShiftsTheMoleculeBackOneCell) {
  // 1.0000001 - 1.0 = 1.0000000005838672e-07 (python3).
  Molecule m = along_x({kC}, {1.0000001});
  const std::string out = make_whole(io, m);
  EXPECT_EQ(m.x(0), 1.0000000005838672e-07);
  EXPECT_EQ(out,
            "  molecule 1 COM =  1.000000  0.500000  0.500000\n"
            "  molecule 1 COM =  0.000000  0.500000  0.500000 (wrapped)\n");
}

TEST_F(MakeWholeMoleculeTest, CentreJustBelowZeroWithinTheToleranceIsLeftAlone) {
  Molecule m = along_x({kC}, {-0.00000001});
  make_whole(io, m, 1, false);
  EXPECT_EQ(m.x(0), -0.00000001);
}

TEST_F(MakeWholeMoleculeTest, CentreBelowTheToleranceShiftsTheMoleculeForwardOneCell) {
  Molecule m = along_x({kC}, {-0.0000001});
  make_whole(io, m, 1, false);
  EXPECT_EQ(m.x(0), 0.9999999);  // -0.0000001 + 1.0 (python3)
}

TEST_F(MakeWholeMoleculeTest, EachAxisTakesOneStepOnly) {
  // Centre (2.5, -1.7, 0.5): x down by one, y up by one, z stays; both stay outside.
  Molecule m;
  m.types = {kC};
  m.x_s = {2.5, -1.7, 0.5};
  const std::string out = make_whole(io, m, 7);
  EXPECT_EQ(m.x(0, 0), 1.5);
  EXPECT_NEAR(m.x(0, 1), -0.7, 1e-15);
  EXPECT_EQ(m.x(0, 2), 0.5);
  EXPECT_EQ(out,
            "  molecule 7 COM =  2.500000 -1.700000  0.500000\n"
            "  molecule 7 COM =  1.500000 -0.700000  0.500000 (wrapped)\n");
}

TEST_F(MakeWholeMoleculeTest, UnknownElementBondsToEverythingAndWeighsNothing) {
  // The look-ups answer for index -1 as for a symbol not in the table.
  EXPECT_EQ(io.find_element_radius_from_index(-1), 9999.99);
  EXPECT_EQ(io.find_element_mass_from_index(-1), 0.0);
  // 6 angstrom from the carbon, yet reached through its huge radius, as it stands.
  Molecule m = along_x({kC, kUnknown}, {0.3, 0.9});
  const std::string out = make_whole(io, m);
  EXPECT_EQ(m.x(1), 0.9);
  EXPECT_EQ(out, "  molecule 1 COM =  0.300000  0.500000  0.500000\n");
}

TEST_F(MakeWholeMoleculeTest, AtomsJoinTheirEarliestPartnerInTheOrderOfTheWalk) {
  // H0 at 0.95; C1 at 0.06 bonds to H0 through the face (1.1 angstrom, below
  // (0.32 + 0.72) * 1.15 = 1.196) and goes to 1.06; C2 at 0.20 is 2.5
  // angstrom from H0 and bonds only to C1 as placed (1.06 - 0.20 wraps to
  // -0.14, 1.4 angstrom) and goes to 1.20.
  Molecule m = along_x({kH, kC, kC}, {0.95, 0.06, 0.20});
  make_whole(io, m, 1, false);
  // Centre of 1.00794 * 0.95 + 12.011 * (1.06 + 1.20) over 25.02994 is above 1: one cell back.
  EXPECT_NEAR(m.x(0), -0.05, 1e-12);
  EXPECT_NEAR(m.x(1), 0.06, 1e-12);
  EXPECT_NEAR(m.x(2), 0.20, 1e-12);
}

TEST_F(MakeWholeMoleculeTest, EmptyMoleculeDoesNothing) {
  int type = kC;
  double x = 0.5;
  const std::string out = txtest::capture_stdout([&] { io.make_whole_molecule(1, 0, &type, &x, true); });
  EXPECT_EQ(out, "");
  EXPECT_EQ(x, 0.5);
}
