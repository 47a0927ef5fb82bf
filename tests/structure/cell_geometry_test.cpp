// Cell parameters <-> lattice matrix, coordinate conversions and the periodic wraps.
#include <gtest/gtest.h>

#include <cmath>

#include "fileio.h"

namespace {

// Expected matrices below were worked out with python3 from the closed-form
// upper-triangular matrix (degrees to radians with pi = 3.1415926535898) and
// its closed-form inverse, independently of the code under test.
const double kMonoclinic[6] = {8.098, 5.953, 8.652, 90.0, 124.4, 90.0};
const double kMonoclinicF2c[3][3] = {
    {8.0980000000000008, -2.0784788410133174e-14, -4.8880945136325966},
    {0.0, 5.9530000000000003, -4.7274987320520498e-14},
    {0.0, 0.0, 7.138881987103785},
};
const double kMonoclinicC2f[3][3] = {
    {0.12348728081007655, 4.3115353653286404e-16, 0.084553505846092322},
    {0.0, 0.16798252981689904, 1.1124111564680229e-15},
    {0.0, 0.0, 0.14007795643722301},
};

const double kTriclinic[6] = {7.0, 8.0, 9.0, 70.0, 80.0, 100.0};
const double kTriclinicF2c[3][3] = {
    {7.0, -1.3891854213354722, 1.5628335990023463},
    {0.0, 7.8784620240976597, 3.4012369278665582},
    {0.0, 0.0, 8.1846892734144898},
};
const double kTriclinicC2f[3][3] = {
    {0.14285714285714285, 0.025189568672638402, -0.037745798717676499},
    {0.0, 0.1269283264857182, -0.052746450941982492},
    {0.0, 0.0, 0.12217934812115597},
};

void expect_matrix_near(const double got[3][3], const double want[3][3], double tol) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(got[i][j], want[i][j], tol) << "element [" << i << "][" << j << "]";
  }
}

void expect_product_is_identity(const double a[3][3], const double b[3][3]) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double s = 0.0;
      for (int k = 0; k < 3; ++k) s += a[i][k] * b[k][j];
      EXPECT_NEAR(s, i == j ? 1.0 : 0.0, 1e-12) << "element [" << i << "][" << j << "]";
    }
  }
}

}  // namespace

// ---- cell to matrix -------------------------------------------------------------

TEST(CellToMatrix, CubicCellHasTinyOffDiagonalTermsFromTheShortenedPi) {
  FileIO io;
  const double cell[6] = {10.0, 10.0, 10.0, 90.0, 90.0, 90.0};
  double latt[3][3];
  io.convert_cell6_to_latt3x3(cell, latt);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(io.latt_f2c[i][i], 10.0);
  // 10 cos(90 * 3.1415926535898 / 180), by python3.
  EXPECT_NEAR(io.latt_f2c[0][1], -3.4914813388431334e-14, 1e-20);
  EXPECT_NEAR(io.latt_f2c[0][2], -3.4914813388431334e-14, 1e-20);
  EXPECT_NEAR(io.latt_f2c[1][2], -3.4914813388431453e-14, 1e-20);
  for (int i = 0; i < 3; ++i) {
    for (int j = i + 1; j < 3; ++j) {
      EXPECT_NE(io.latt_f2c[i][j], 0.0);
      EXPECT_LT(std::fabs(io.latt_f2c[i][j]), 1e-13);
    }
  }
  EXPECT_EQ(io.latt_f2c[1][0], 0.0);
  EXPECT_EQ(io.latt_f2c[2][0], 0.0);
  EXPECT_EQ(io.latt_f2c[2][1], 0.0);
}

TEST(CellToMatrix, MonoclinicCellMatchesIndependentCalculation) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kMonoclinic, latt);
  expect_matrix_near(io.latt_f2c, kMonoclinicF2c, 1e-12);
  expect_matrix_near(io.latt_c2f, kMonoclinicC2f, 1e-12);
}

TEST(CellToMatrix, TriclinicCellMatchesIndependentCalculation) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kTriclinic, latt);
  expect_matrix_near(io.latt_f2c, kTriclinicF2c, 1e-12);
  expect_matrix_near(io.latt_c2f, kTriclinicC2f, 1e-12);
}

TEST(CellToMatrix, ArgumentReceivesTheSameMatrixAsLattF2c) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kTriclinic, latt);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_EQ(latt[i][j], io.latt_f2c[i][j]);
  }
}

TEST(CellToMatrix, InverseTimesMatrixIsTheIdentity) {
  for (const double* cell : {kMonoclinic, kTriclinic}) {
    FileIO io;
    double latt[3][3];
    io.convert_cell6_to_latt3x3(cell, latt);
    expect_product_is_identity(io.latt_c2f, io.latt_f2c);
    expect_product_is_identity(io.latt_f2c, io.latt_c2f);
  }
}

TEST(CellToMatrix, LattF2cAndCellLattMayBeTheArguments) {
  FileIO io;
  io.set_cell_lattice(kMonoclinic, kMonoclinic[3], kMonoclinic[4], kMonoclinic[5]);
  io.convert_cell6_to_latt3x3(io.cell_latt, io.latt_f2c);
  expect_matrix_near(io.latt_f2c, kMonoclinicF2c, 1e-12);
  expect_matrix_near(io.latt_c2f, kMonoclinicC2f, 1e-12);
}

TEST(CellToMatrix, ImpossibleAnglesGiveNaNInTheLastElementOnly) {
  // cos 10 deg twice and cos 120 deg make the radicand about -2.16.
  FileIO io;
  const double cell[6] = {5.0, 5.0, 5.0, 10.0, 10.0, 120.0};
  double latt[3][3];
  io.convert_cell6_to_latt3x3(cell, latt);
  EXPECT_TRUE(std::isnan(io.latt_f2c[2][2]));
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      if (i != 2 || j != 2) {
        EXPECT_TRUE(std::isfinite(io.latt_f2c[i][j])) << i << j;
      }
    }
  }
  double x[3] = {0.5, 0.5, 0.5};
  io.coord_f2c(x, x);
  EXPECT_TRUE(std::isnan(x[2]));
}

TEST(CellToMatrix, ZeroLengthGivesInfinityInTheInverseNotAnError) {
  FileIO io;
  const double cell[6] = {5.0, 5.0, 0.0, 90.0, 90.0, 90.0};
  double latt[3][3];
  io.convert_cell6_to_latt3x3(cell, latt);
  EXPECT_EQ(io.latt_f2c[2][2], 0.0);
  EXPECT_TRUE(std::isinf(io.latt_c2f[2][2]));
  EXPECT_GT(io.latt_c2f[2][2], 0.0);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_FALSE(std::isfinite(io.latt_c2f[i][j])) << i << j;
  }
}

TEST(CellToMatrix, ZeroCellGivesNonFiniteMatricesSilently) {
  // What a structure file without any cell leaves behind.
  FileIO io;
  const double cell[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  double latt[3][3];
  io.convert_cell6_to_latt3x3(cell, latt);
  EXPECT_TRUE(std::isnan(io.latt_f2c[1][2]));
  EXPECT_TRUE(std::isnan(io.latt_f2c[2][2]));
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_FALSE(std::isfinite(io.latt_c2f[i][j])) << i << j;
  }
}

// ---- matrix to cell -------------------------------------------------------------

TEST(MatrixToCell, RoundTripReturnsTheCellUpToTheLastDigits) {
  for (const double* cell : {kMonoclinic, kTriclinic}) {
    FileIO io;
    double latt[3][3];
    io.convert_cell6_to_latt3x3(cell, latt);
    double back[6];
    io.convert_latt3x3_to_cell6(latt, back);
    for (int k = 0; k < 6; ++k) EXPECT_NEAR(back[k], cell[k], 1e-9) << "parameter " << k;
  }
}

TEST(MatrixToCell, RightAnglesComeBackSlightlyAbove90BecauseOfTheTwoPis) {
  // python3: acos of the normalised dot product of the columns built with the
  // 14-digit pi, converted back with the full one, gives 90.000000000000199.
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kMonoclinic, latt);
  double back[6];
  io.convert_latt3x3_to_cell6(latt, back);
  EXPECT_NEAR(back[3], 90.000000000000199, 1e-12);
  EXPECT_NEAR(back[4], 124.40000000000028, 1e-12);
  EXPECT_NEAR(back[5], 90.000000000000199, 1e-12);
  EXPECT_NE(back[3], 90.0);
}

TEST(MatrixToCell, OrthogonalColumnsGiveRightAnglesAndColumnLengths) {
  FileIO io;
  const double m[3][3] = {{3.0, 0.0, 0.0}, {0.0, 4.0, 0.0}, {0.0, 0.0, 5.0}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) io.latt_f2c[i][j] = m[i][j];
  }
  double cell[6];
  io.convert_latt3x3_to_cell6(io.latt_f2c, cell);
  EXPECT_EQ(cell[0], 3.0);
  EXPECT_EQ(cell[1], 4.0);
  EXPECT_EQ(cell[2], 5.0);
  EXPECT_DOUBLE_EQ(cell[3], 90.0);
  EXPECT_DOUBLE_EQ(cell[4], 90.0);
  EXPECT_DOUBLE_EQ(cell[5], 90.0);
}

TEST(MatrixToCell, AnglesPairTheRightColumns) {
  // a = (2,0,0), b = (1,1,0) (45 deg from a), c = (0,0,3): alpha 90, beta 90, gamma 45.
  FileIO io;
  const double m[3][3] = {{2.0, 1.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 3.0}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) io.latt_f2c[i][j] = m[i][j];
  }
  double cell[6];
  io.convert_latt3x3_to_cell6(io.latt_f2c, cell);
  EXPECT_DOUBLE_EQ(cell[1], std::sqrt(2.0));
  EXPECT_DOUBLE_EQ(cell[3], 90.0);
  EXPECT_DOUBLE_EQ(cell[4], 90.0);
  EXPECT_DOUBLE_EQ(cell[5], 45.0);
}

TEST(MatrixToCell, ReadsTheObjectsMatrixAndNotItsArgument) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kTriclinic, latt);
  const double other[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  double cell[6];
  io.convert_latt3x3_to_cell6(other, cell);
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(cell[k], kTriclinic[k], 1e-9) << "parameter " << k;
}

// ---- set_cell_lattice -----------------------------------------------------------

TEST(SetCellLattice, StoresSixValuesAndLeavesTheMatrices) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kMonoclinic, latt);
  const double abc[3] = {1.5, 2.5, 3.5};
  io.set_cell_lattice(abc, 60.0, 70.0, 80.0);
  EXPECT_EQ(io.cell_latt[0], 1.5);
  EXPECT_EQ(io.cell_latt[1], 2.5);
  EXPECT_EQ(io.cell_latt[2], 3.5);
  EXPECT_EQ(io.cell_latt[3], 60.0);
  EXPECT_EQ(io.cell_latt[4], 70.0);
  EXPECT_EQ(io.cell_latt[5], 80.0);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ(io.latt_f2c[i][j], latt[i][j]);
    }
  }
  expect_matrix_near(io.latt_c2f, kMonoclinicC2f, 1e-12);
}

// ---- coordinate conversions -------------------------------------------------------

TEST(CoordinateConversion, FractionalToCartesianMultipliesByLattF2c) {
  // python3: kMonoclinicF2c times (0.25, 0.5, 0.75).
  const double want[3] = {-1.6415708852244575, 2.9764999999999646, 5.3541614903278383};
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kMonoclinic, latt);

  double x = 0.25, y = 0.5, z = 0.75;
  io.coord_f2c(x, y, z);
  EXPECT_NEAR(x, want[0], 1e-12);
  EXPECT_NEAR(y, want[1], 1e-12);
  EXPECT_NEAR(z, want[2], 1e-12);

  const double in[3] = {0.25, 0.5, 0.75};
  double out[3];
  io.coord_f2c(in, out);
  for (int k = 0; k < 3; ++k) {
    EXPECT_NEAR(out[k], want[k], 1e-12);
    EXPECT_EQ(in[k], k == 0 ? 0.25 : k == 1 ? 0.5 : 0.75);
  }
  EXPECT_EQ(out[0], x);
  EXPECT_EQ(out[1], y);
  EXPECT_EQ(out[2], z);
}

TEST(CoordinateConversion, ArrayFormsWorkInPlace) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kTriclinic, latt);
  const double f[3] = {0.1, -0.7, 1.3};
  double separate[3];
  io.coord_f2c(f, separate);
  double v[3] = {f[0], f[1], f[2]};
  io.coord_f2c(v, v);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(v[k], separate[k]);
  double back[3];
  io.coord_c2f(separate, back);
  io.coord_c2f(v, v);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(v[k], back[k]);
}

TEST(CoordinateConversion, CartesianToFractionalUndoesFractionalToCartesian) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kTriclinic, latt);
  const double f[3] = {0.1, -0.7, 1.3};
  double c[3];
  io.coord_f2c(f, c);
  double x = c[0], y = c[1], z = c[2];
  io.coord_c2f(x, y, z);
  EXPECT_NEAR(x, f[0], 1e-12);
  EXPECT_NEAR(y, f[1], 1e-12);
  EXPECT_NEAR(z, f[2], 1e-12);
}

TEST(CoordinateConversion, CartesianToFractionalMultipliesByLattC2f) {
  FileIO io;
  double latt[3][3];
  io.convert_cell6_to_latt3x3(kMonoclinic, latt);
  // The lattice vector c in Cartesian form is fractional (0, 0, 1).
  double v[3] = {kMonoclinicF2c[0][2], kMonoclinicF2c[1][2], kMonoclinicF2c[2][2]};
  io.coord_c2f(v, v);
  EXPECT_NEAR(v[0], 0.0, 1e-12);
  EXPECT_NEAR(v[1], 0.0, 1e-12);
  EXPECT_NEAR(v[2], 1.0, 1e-12);
}

// ---- periodic wraps -----------------------------------------------------------------

TEST(PositionWrap, OneStepIntoHalfOpenUnitRange) {
  FileIO io;
  double x[3] = {1.0, -0.25, 0.999};
  io.PBC_scaled_x_wrap(x);
  EXPECT_EQ(x[0], 0.0);
  EXPECT_EQ(x[1], 0.75);
  EXPECT_EQ(x[2], 0.999);
}

TEST(PositionWrap, IsASingleStepNotALoop) {
  FileIO io;
  double x[3] = {-1.5, 2.5, 1.5};
  io.PBC_scaled_x_wrap(x);
  EXPECT_EQ(x[0], -0.5);
  EXPECT_EQ(x[1], 1.5);
  EXPECT_EQ(x[2], 0.5);
}

TEST(PositionWrap, MinusOneBecomesZeroAndZeroStays) {
  FileIO io;
  double x[3] = {-1.0, 0.0, 0.5};
  io.PBC_scaled_x_wrap(x);
  EXPECT_EQ(x[0], 0.0);
  EXPECT_EQ(x[1], 0.0);
  EXPECT_EQ(x[2], 0.5);
}

TEST(DisplacementWrap, BothHalvesStayAndBeyondIsFoldedOnce) {
  FileIO io;
  double dx[3] = {0.5, -0.5, 0.75};
  io.PBC_scaled_disp_wrap(dx);
  EXPECT_EQ(dx[0], 0.5);
  EXPECT_EQ(dx[1], -0.5);
  EXPECT_EQ(dx[2], -0.25);
}

TEST(DisplacementWrap, IsASingleStepNotALoop) {
  FileIO io;
  double dx[3] = {-0.75, 1.75, -1.75};
  io.PBC_scaled_disp_wrap(dx);
  EXPECT_EQ(dx[0], 0.25);
  EXPECT_EQ(dx[1], 0.75);
  EXPECT_EQ(dx[2], -0.75);
}
