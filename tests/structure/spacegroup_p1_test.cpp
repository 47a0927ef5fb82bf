// Expansion of the asymmetric unit by the symmetry operators, and the removal
// of overlapping copies. Positions are worked out by hand from the operators.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

using Xyz = std::array<double, 3>;

// A cubic cell of edge `a` holding the given fractional positions and element indices.
void load_cell(FileIO& io, const std::vector<Xyz>& x_s, const std::vector<int>& types, double a = 10.0) {
  const double cell[6] = {a, a, a, 90.0, 90.0, 90.0};
  io.convert_cell6_to_latt3x3(cell, io.latt_f2c);
  io.release_crystal_arrays();
  const int n = static_cast<int>(x_s.size());
  io.cif_natoms = n;
  io.cif_atypes = new int[n];
  io.cif_radii = new double[n];
  io.cif_x_s = new double[3 * n];
  io.cif_x = new double[3 * n];
  for (int i = 0; i < n; ++i) {
    io.cif_atypes[i] = types[i];
    io.cif_radii[i] = types[i] < 0 ? 9999.99 : nw_elem_radius_m[types[i]];
    for (int k = 0; k < 3; ++k) io.cif_x_s[3 * i + k] = x_s[i][k];
    io.coord_f2c(&io.cif_x_s[3 * i], &io.cif_x[3 * i]);
  }
}

void expect_position(const FileIO& io, int i, double x, double y, double z) {
  ASSERT_LT(i, io.cif_natoms);
  EXPECT_NEAR(io.cif_x_s[3 * i + 0], x, 1e-12) << "atom " << i;
  EXPECT_NEAR(io.cif_x_s[3 * i + 1], y, 1e-12) << "atom " << i;
  EXPECT_NEAR(io.cif_x_s[3 * i + 2], z, 1e-12) << "atom " << i;
}

std::string expand(FileIO& io, int fractional = 1) {
  return txtest::capture_stdout([&] { io.make_spacegroup_P1(fractional); });
}

const char* const kInversion[] = {"x,y,z", "-x,-y,-z"};

}  // namespace

TEST(SpacegroupP1, QuotedP1IsNotExpandedAndItsNameIsStoredTrimmed) {
  FileIO io;
  load_cell(io, {{1.25, -0.5, 0.5}}, {6});
  io.spacegroup_name = "'P 1'";
  io.symmetry_ops = {"-x,-y,-z", "x+1/2,y,z"};
  EXPECT_EQ(expand(io), "");
  EXPECT_EQ(io.spacegroup_name, "P1");
  ASSERT_EQ(io.cif_natoms, 1);
  // No wrap either: the coordinates outside [0, 1) stay.
  expect_position(io, 0, 1.25, -0.5, 0.5);
}

TEST(SpacegroupP1, P1IsRecognisedIgnoringCase) {
  FileIO io;
  load_cell(io, {{0.1, 0.2, 0.3}}, {6});
  io.spacegroup_name = "p 1";
  io.symmetry_ops = {"x,y,z", "-x,-y,-z"};
  expand(io);
  EXPECT_EQ(io.spacegroup_name, "p1");
  EXPECT_EQ(io.cif_natoms, 1);
}

TEST(SpacegroupP1, OtherNameWithoutOperatorsLeavesZeroAtoms) {
  FileIO io;
  load_cell(io, {{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}}, {6, 8});
  io.spacegroup_name = "'P 21/c'";
  EXPECT_EQ(expand(io), "");
  EXPECT_EQ(io.cif_natoms, 0);
  EXPECT_EQ(io.spacegroup_name, "P21/c");
}

TEST(SpacegroupP1, AbsentNameIsNotP1AndTheOperatorsApply) {
  FileIO io;
  load_cell(io, {{0.1, 0.2, 0.3}}, {6});
  io.symmetry_ops.assign(std::begin(kInversion), std::end(kInversion));
  EXPECT_EQ(expand(io), "");
  ASSERT_EQ(io.cif_natoms, 2);
  expect_position(io, 0, 0.1, 0.2, 0.3);
  expect_position(io, 1, 0.9, 0.8, 0.7);
}

TEST(SpacegroupP1, CopiesAreOperatorMajorAndCarryTypeAndRadius) {
  FileIO io;
  load_cell(io, {{0.1, 0.2, 0.3}, {0.4, 0.1, 0.2}, {0.3, 0.3, 0.3}}, {6, 8, -1});
  io.symmetry_ops = {"x,y,z", "x+1/2,y,z"};
  expand(io);
  ASSERT_EQ(io.cif_natoms, 6);
  const int types[] = {6, 8, -1, 6, 8, -1};
  const double radii[] = {0.77, 0.66, 9999.99, 0.77, 0.66, 9999.99};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(io.cif_atypes[i], types[i]) << i;
    EXPECT_EQ(io.cif_radii[i], radii[i]) << i;
  }
  expect_position(io, 0, 0.1, 0.2, 0.3);
  expect_position(io, 1, 0.4, 0.1, 0.2);
  expect_position(io, 2, 0.3, 0.3, 0.3);
  expect_position(io, 3, 0.6, 0.2, 0.3);
  expect_position(io, 4, 0.9, 0.1, 0.2);
  expect_position(io, 5, 0.8, 0.3, 0.3);
  // The Cartesian copies follow the fractional ones (10 angstrom cube).
  EXPECT_NEAR(io.cif_x[3 * 4 + 0], 9.0, 1e-12);
  EXPECT_NEAR(io.cif_x[3 * 4 + 1], 1.0, 1e-12);
  EXPECT_NEAR(io.cif_x[3 * 4 + 2], 2.0, 1e-12);
}

TEST(SpacegroupP1, PositionsWrapByOneStepOnly) {
  FileIO io;
  load_cell(io, {{1.7, -1.2, 0.8}}, {6});
  io.symmetry_ops = {"x,y,z+1/2"};
  expand(io);
  ASSERT_EQ(io.cif_natoms, 1);
  // 1.7 -> 0.7; -1.2 -> -0.2 (stays outside); 0.8 + 0.5 = 1.3 -> 0.3.
  expect_position(io, 0, 0.7, -0.2, 0.3);
}

TEST(SpacegroupP1, TwoIdenticalOperatorsOverlapHalfTheAtoms) {
  FileIO io;
  load_cell(io, {{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}, {0.7, 0.8, 0.05}}, {6, 7, 8});
  io.symmetry_ops = {"x,y,z", "x,y,z"};
  EXPECT_EQ(expand(io),
            "WARNING: Overlapped atoms detected and to be removed\n"
            "         Number of overlapped atoms is 3\n"
            "         Number of remaining atoms is 3\n");
  ASSERT_EQ(io.cif_natoms, 3);
  EXPECT_EQ(io.cif_atypes[0], 6);
  EXPECT_EQ(io.cif_atypes[1], 7);
  EXPECT_EQ(io.cif_atypes[2], 8);
  expect_position(io, 2, 0.7, 0.8, 0.05);
}

TEST(SpacegroupP1, AtomOnAnInversionCentreKeepsOneCopy) {
  FileIO io;
  load_cell(io, {{0.5, 0.5, 0.5}, {0.0, 0.0, 0.0}, {0.1, 0.2, 0.3}}, {6, 7, 8});
  io.symmetry_ops.assign(std::begin(kInversion), std::end(kInversion));
  EXPECT_EQ(expand(io),
            "WARNING: Overlapped atoms detected and to be removed\n"
            "         Number of overlapped atoms is 2\n"
            "         Number of remaining atoms is 4\n");
  ASSERT_EQ(io.cif_natoms, 4);
  const int types[] = {6, 7, 8, 8};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(io.cif_atypes[i], types[i]) << i;
  expect_position(io, 0, 0.5, 0.5, 0.5);
  expect_position(io, 3, 0.9, 0.8, 0.7);
}

TEST(SpacegroupP1, OverlapIsFoundAcrossTheCellFaceWhateverTheElements) {
  FileIO io;
  load_cell(io, {{0.001, 0.5, 0.5}, {0.995, 0.5, 0.5}}, {6, 8}, 100.0);
  io.symmetry_ops = {"x,y,z"};
  // 0.994 wraps to -0.006: 3.6e-5 in squared fractional units, 0.6 angstrom here.
  EXPECT_NE(expand(io), "");
  ASSERT_EQ(io.cif_natoms, 1);
  EXPECT_EQ(io.cif_atypes[0], 6);  // the earliest copy stays
}

TEST(SpacegroupP1, OverlapNeedsSquaredFractionalDistanceStrictlyBelowOneTenThousandth) {
  // 0.0099^2 = 9.801e-5 overlaps; 0.0101^2 = 1.0201e-4 does not; nor does
  // 3 * 0.006^2 = 1.08e-4, although each component is below 0.01.
  struct Case {
    Xyz second;
    int remaining;
  };
  const Case cases[] = {
      {{0.5099, 0.5, 0.5}, 1},
      {{0.5101, 0.5, 0.5}, 2},
      {{0.506, 0.506, 0.506}, 2},
  };
  for (const Case& c : cases) {
    FileIO io;
    load_cell(io, {{0.5, 0.5, 0.5}, c.second}, {6, 6});
    io.symmetry_ops = {"x,y,z"};
    expand(io);
    EXPECT_EQ(io.cif_natoms, c.remaining) << c.second[0] << " " << c.second[1];
  }
}

TEST(SpacegroupP1, DebugLevelTracesEachOperatorAndEachOverlap) {
  FileIO io;
  load_cell(io, {{0.25, 0.1, 0.2}}, {6});
  io.symmetry_ops = {"x,y,z", "-x+1/2,y,z"};
  io.debug_level = 1;
  EXPECT_EQ(expand(io),
            ">> operations: x,y,z\n"
            "matrix:\n"
            "   1   0   0\n"
            "   0   1   0\n"
            "   0   0   1\n"
            "vector: \n"
            "  0  0  0\n"
            "-------------------\n"
            ">> operations: -x+1/2,y,z\n"
            "matrix:\n"
            "  -1   0   0\n"
            "   0   1   0\n"
            "   0   0   1\n"
            "vector: \n"
            "  0.5  0  0\n"
            "-------------------\n"
            " overlapped atoms:   0 0.2500 0.1000 0.2000  |    1 0.2500 0.1000 0.2000\n"
            "WARNING: Overlapped atoms detected and to be removed\n"
            "         Number of overlapped atoms is 1\n"
            "         Number of remaining atoms is 1\n");
}

TEST(SpacegroupP1, CartesianInputIsTransformedAsItStands) {
  // Not reachable from a file, kept for the contract: with fractional == 0 the
  // operators act on cif_x, and cif_x_s follows from it.
  FileIO io;
  load_cell(io, {{0.02, 0.03, 0.04}}, {6});  // cif_x = (0.2, 0.3, 0.4) angstrom
  io.symmetry_ops.assign(std::begin(kInversion), std::end(kInversion));
  expand(io, 0);
  ASSERT_EQ(io.cif_natoms, 2);
  const double want_x[2][3] = {{0.2, 0.3, 0.4}, {0.8, 0.7, 0.6}};
  for (int i = 0; i < 2; ++i) {
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(io.cif_x[3 * i + k], want_x[i][k], 1e-12);
      EXPECT_NEAR(io.cif_x_s[3 * i + k], want_x[i][k] / 10.0, 1e-12);
    }
  }
}

TEST(SpacegroupP1, NoAtomsAndNoOperatorsGiveAnEmptyCell) {
  FileIO io;
  load_cell(io, {}, {});
  io.symmetry_ops = {"x,y,z"};
  EXPECT_EQ(expand(io), "");
  EXPECT_EQ(io.cif_natoms, 0);
}
