// Recursive Fourier transform and the power-of-two cut.
#include <gtest/gtest.h>

#include <cmath>

#include "txutil.h"

namespace {

const double kPi = std::acos(-1.0);

// Direct O(N^2) transform as the independent reference.
CArray direct_dft(const CArray& x) {
  const std::size_t n = x.size();
  CArray out(n);
  for (std::size_t k = 0; k < n; ++k) {
    Complex sum(0.0, 0.0);
    for (std::size_t j = 0; j < n; ++j) {
      const double angle = -2.0 * kPi * static_cast<double>(j * k % n) / static_cast<double>(n);
      sum += x[j] * Complex(std::cos(angle), std::sin(angle));
    }
    out[k] = sum;
  }
  return out;
}

CArray sample(std::size_t n) {
  CArray x(n);
  for (std::size_t i = 0; i < n; ++i)
    x[i] = Complex(std::sin(0.7 * i) + 0.25 * i, std::cos(1.3 * i * i) - 0.5);
  return x;
}

}  // namespace

TEST(CtFft, MatchesTheDirectTransform) {
  for (std::size_t n : {2u, 4u, 8u, 16u, 64u, 256u}) {
    CArray x = sample(n);
    const CArray want = direct_dft(x);
    CT_fft(x);
    for (std::size_t k = 0; k < n; ++k) {
      EXPECT_NEAR(x[k].real(), want[k].real(), 1e-10 * n) << n << " " << k;
      EXPECT_NEAR(x[k].imag(), want[k].imag(), 1e-10 * n) << n << " " << k;
    }
  }
}

TEST(CtFft, ImpulseAndConstantByHand) {
  CArray impulse = {Complex(1, 0), Complex(0, 0), Complex(0, 0), Complex(0, 0)};
  CT_fft(impulse);
  for (std::size_t k = 0; k < 4; ++k) EXPECT_EQ(impulse[k], Complex(1, 0));
  CArray flat = {Complex(1, 0), Complex(1, 0), Complex(1, 0), Complex(1, 0)};
  CT_fft(flat);
  EXPECT_EQ(flat[0], Complex(4, 0));
  for (std::size_t k = 1; k < 4; ++k) {
    EXPECT_NEAR(flat[k].real(), 0.0, 1e-15);
    EXPECT_NEAR(flat[k].imag(), 0.0, 1e-15);
  }
  // x = (0, 1, 0, 0): X_k = exp(-i pi k / 2) = 1, -i, -1, i.
  CArray shifted = {Complex(0, 0), Complex(1, 0), Complex(0, 0), Complex(0, 0)};
  CT_fft(shifted);
  const Complex want[4] = {Complex(1, 0), Complex(0, -1), Complex(-1, 0), Complex(0, 1)};
  for (std::size_t k = 0; k < 4; ++k) {
    EXPECT_NEAR(shifted[k].real(), want[k].real(), 1e-15);
    EXPECT_NEAR(shifted[k].imag(), want[k].imag(), 1e-15);
  }
}

TEST(CtFft, LengthBelowTwoIsLeftAlone) {
  CArray empty;
  CT_fft(empty);
  EXPECT_EQ(empty.size(), 0u);
  CArray one = {Complex(2.5, -1)};
  CT_fft(one);
  EXPECT_EQ(one[0], Complex(2.5, -1));
}

TEST(CtFft, OddLengthDropsTheLastEntryFromBothHalves) {
  // N = 3: even half (a), odd half (b), so X0 = a + b, X1 = a - b, c untouched.
  CArray x = {Complex(1, 2), Complex(3, -1), Complex(7, 7)};
  CT_fft(x);
  EXPECT_EQ(x[0], Complex(4, 1));
  EXPECT_EQ(x[1], Complex(-2, 3));
  EXPECT_EQ(x[2], Complex(7, 7));
  CArray five = sample(5);
  const Complex last = five[4];
  CT_fft(five);
  EXPECT_EQ(five[4], last);
}

TEST(CtIfft, InvertsTheForwardTransform) {
  for (std::size_t n : {1u, 2u, 8u, 128u}) {
    const CArray orig = sample(n);
    CArray x = orig;
    CT_fft(x);
    CT_ifft(x);
    for (std::size_t k = 0; k < n; ++k) {
      EXPECT_NEAR(x[k].real(), orig[k].real(), 1e-12) << n << " " << k;
      EXPECT_NEAR(x[k].imag(), orig[k].imag(), 1e-12) << n << " " << k;
    }
  }
}

TEST(CtIfft, ScalesByOneOverN) {
  CArray x = {Complex(4, 0), Complex(0, 0), Complex(0, 0), Complex(0, 0)};
  CT_ifft(x);
  for (std::size_t k = 0; k < 4; ++k) EXPECT_EQ(x[k], Complex(1, 0));
}

TEST(HighestPowerOf2, LargestPowerNotAboveN) {
  EXPECT_EQ(highestPowerof2(1), 1);
  EXPECT_EQ(highestPowerof2(2), 2);
  EXPECT_EQ(highestPowerof2(3), 2);
  EXPECT_EQ(highestPowerof2(1000), 512);
  EXPECT_EQ(highestPowerof2(1024), 1024);
  EXPECT_EQ(highestPowerof2(0), 0);
  EXPECT_EQ(highestPowerof2(-5), 0);
}
