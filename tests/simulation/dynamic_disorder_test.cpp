// Dynamic disorder: the series readers, the synthesis of V and of orbital
// energy differences, the static rates and sample buffers, the rates in time,
// and the release.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "test_support.h"
#include "transport.h"

namespace kmc_seam {
using DeviceSeedSource = std::uint32_t (*)();
DeviceSeedSource set_device_seed_source(DeviceSeedSource f);
}  // namespace kmc_seam

namespace {

using txtest::read_file;
using txtest::RunResult;
using txtest::TempDir;

constexpr double kMeV = 3.675e-5;  // hartree per meV
constexpr double kTwoPi = 2.0 * 3.141592653589793;
const std::string kHead = "\nERROR  transport : transport : line # : \n";

// Device seeds first, first + 1, ... for every fresh generator.
std::uint32_t g_next_seed = 0;
int g_seed_draws = 0;
std::uint32_t counting_seed() {
  ++g_seed_draws;
  return g_next_seed++;
}

class DeviceSeeds {
 public:
  explicit DeviceSeeds(std::uint32_t first) {
    g_next_seed = first;
    g_seed_draws = 0;
    old_ = kmc_seam::set_device_seed_source(&counting_seed);
  }
  ~DeviceSeeds() { kmc_seam::set_device_seed_source(old_); }

 private:
  kmc_seam::DeviceSeedSource old_;
};

// The uniform of the engine: one output times 2^-32.
double u32(std::mt19937& g) { return static_cast<double>(g()) * 2.3283064365386963e-10; }

void copy_fixture(const std::string& fixture, const std::string& as) {
  txtest::write_file(as, read_file(txtest::data_path("simulation/dyn/" + fixture)));
}

// Two molecules: molecule 0 has two neighbors (both molecule 1), molecule 1 one
// (molecule 0). Neighbor keys 0, 1 and 2.
void two_molecules(Transport& t, int carrier = 101) {
  const int n = 2;
  const int counts[2] = {2, 1};
  const int ids[2][2] = {{1, 1}, {0, 0}};
  t.nmols_uc = n;
  t.nneighbors = new int[n];
  t.neighbor_id = new int*[n];
  t.neighbor_cx = new int*[n];
  t.neighbor_cy = new int*[n];
  t.neighbor_cz = new int*[n];
  t.neighbor_df = new double*[n];
  for (int i = 0; i < n; ++i) {
    t.nneighbors[i] = counts[i];
    t.neighbor_id[i] = new int[t.NNEIMAX]();
    t.neighbor_cx[i] = new int[t.NNEIMAX]();
    t.neighbor_cy[i] = new int[t.NNEIMAX]();
    t.neighbor_cz[i] = new int[t.NNEIMAX]();
    t.neighbor_df[i] = new double[6]();
    for (int j = 0; j < counts[i]; ++j) t.neighbor_id[i][j] = ids[i][j];
  }
  t.neighbor_rows_allocated = n;
  t.neighbor_nkeys = 3;
  t.max_nneighbors = 2;
  t.carrier_char = carrier;
  t.unique_2mol_calc_flag = false;  // full buffers unless a test sets up the classes
}

// Releases what the tests hand to the dynamic-disorder code.
struct Cleanup {
  Transport& t;
  ~Cleanup() { t.dyn_disorder_clean(); }
};

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) out.push_back(line);
  return out;
}

// ---- reading the V series -------------------------------------------------------------

struct ReadV : ::testing::Test {
  TempDir dir;
  Transport t;
  void SetUp() override {
    two_molecules(t);
    copy_fixture("v_root1_five_frames.dat", "VL1-dyn.dat");
    copy_fixture("v_root2_header_first.dat", "VL2-dyn.dat");
  }
};

TEST_F(ReadV, CommentThenHeaderAndHeaderOnTheFirstLineAreBothAccepted) {
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_V_data(false); });
  EXPECT_EQ(out, "Reading dynamic disorder V files...\n  nframe = 5\n  npair  = 2\n  dt     = 2e-06 ns\n");
  EXPECT_EQ(t.dyn_V_dt, 2.0 * 1e-6);
  ASSERT_EQ(t.dyn_V_count.size(), 2u);
  EXPECT_EQ(t.dyn_V_count[0], (std::vector<int>{4, 4}));
  EXPECT_EQ(t.dyn_V_count[1], (std::vector<int>{2}));
  EXPECT_EQ(t.dyn_V_mean[0], (std::vector<double>{12.0, -4.0}));
  EXPECT_EQ(t.dyn_V_mean[1], (std::vector<double>{32.0}));
  // Transforms by hand (see SOURCES.md); rounding of the twiddles allows 1e-12.
  const std::vector<std::complex<double>> p0 = {{0, 0}, {0, 4}, {-8, 0}, {0, -4}};
  const std::vector<std::complex<double>> p1 = {{0, 0}, {-2, -2}, {4, 0}, {-2, 2}};
  ASSERT_EQ(t.dyn_V_fft[0][0].size(), 4u);
  ASSERT_EQ(t.dyn_V_fft[0][1].size(), 4u);
  for (int k = 0; k < 4; ++k) {
    EXPECT_NEAR(std::abs(t.dyn_V_fft[0][0][k] - p0[k]), 0.0, 1e-12) << k;
    EXPECT_NEAR(std::abs(t.dyn_V_fft[0][1][k] - p1[k]), 0.0, 1e-12) << k;
  }
  ASSERT_EQ(t.dyn_V_fft[1][0].size(), 2u);
  EXPECT_NEAR(std::abs(t.dyn_V_fft[1][0][1] - std::complex<double>(-4, 0)), 0.0, 1e-12);
  EXPECT_EQ(read_file("VL1-dyn.dat.ave"), "2\n    12.000\n    -4.000\n");
  EXPECT_EQ(read_file("VL2-dyn.dat.ave"), "1\n    32.000\n");
  EXPECT_FALSE(txtest::path_exists("VL1-dyn.dat.raw_1_1"));
  t.dyn_disorder_clean();
}

TEST_F(ReadV, HolesReadTheVHFiles) {
  t.carrier_char = 104;
  copy_fixture("v_three_pairs.dat", "VH1-dyn.dat");
  copy_fixture("v_three_frames.dat", "VH2-dyn.dat");
  txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_V_data(false); });
  EXPECT_EQ(t.dyn_V_mean[0], (std::vector<double>{2.0, 20.0}));
  EXPECT_EQ(t.dyn_V_mean[1], (std::vector<double>{7.0}));
  EXPECT_TRUE(txtest::path_exists("VH1-dyn.dat.ave"));
  EXPECT_FALSE(txtest::path_exists("VL1-dyn.dat.ave"));
  t.dyn_disorder_clean();
}

TEST_F(ReadV, ThousandFramesUseTheFirst512AndTheirMean) {
  t.nneighbors[0] = 1;
  copy_fixture("v_1000_frames.dat", "VL1-dyn.dat");
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_V_data(false); });
  EXPECT_EQ(t.dyn_V_count[0][0], 512);
  EXPECT_EQ(t.dyn_V_mean[0][0], 15.0);
  EXPECT_EQ(t.dyn_V_fft[0][0].size(), 512u);
  EXPECT_EQ(t.dyn_V_dt, 10.0 * 1e-6);
  EXPECT_EQ(read_file("VL1-dyn.dat.ave"), "1\n    15.000\n");
  // 1000 frames of one pair: no warning.
  EXPECT_EQ(out.find("WARNING"), std::string::npos);
  t.dyn_disorder_clean();
}

TEST_F(ReadV, DebugWritesTheSeriesAndSpectrumOfTheFirstRoot) {
  t.nneighbors[0] = 1;
  copy_fixture("v_three_frames.dat", "VL1-dyn.dat");
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_V_data(true); });
  EXPECT_EQ(out,
            "Reading dynamic disorder V files...\n"
            "Reading V-dyn file VL1-dyn.dat...\n"
            "  nframe = 3\n  npair  = 1\n  dt     = 1e-06 ns\n"
            "----\nN_data = 2\nV_aver = 7\n"
            "Reading V-dyn file VL2-dyn.dat...\n");
  // Frames 5 9 (100 dropped): mean-free -2 2, transform 0, -4.
  EXPECT_EQ(read_file("VL1-dyn.dat.raw_1_1"),
            "#          re           im\n  1    -2.000000     0.000000\n  2     2.000000     0.000000\n");
  EXPECT_EQ(read_file("VL1-dyn.dat.fft_1_1"),
            "#          re           im\n  1     0.000000     0.000000\n  2    -4.000000     0.000000\n");
  EXPECT_FALSE(txtest::path_exists("VL2-dyn.dat.raw_1_1"));
  t.dyn_disorder_clean();
}

TEST_F(ReadV, PairsBeyondTheNeighborsAreListedButNotKept) {
  copy_fixture("v_three_pairs.dat", "VL1-dyn.dat");
  txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_V_data(false); });
  EXPECT_EQ(t.dyn_V_mean[0], (std::vector<double>{2.0, 20.0}));
  EXPECT_EQ(t.dyn_V_count[0].size(), 2u);
  EXPECT_EQ(t.dyn_V_fft[0].size(), 2u);
  EXPECT_EQ(read_file("VL1-dyn.dat.ave"), "3\n     2.000\n    20.000\n   200.000\n");
  t.dyn_disorder_clean();
}

RunResult read_V_forked(const std::string& fixture, int carrier = 101) {
  copy_fixture(fixture, "VL1-dyn.dat");
  return txtest::run_forked([carrier] {
    Transport t;
    two_molecules(t, carrier);
    t.dyn_disorder_read_dyn_V_data(false);
  });
}

TEST_F(ReadV, FewerPairsThanNeighborsIsFatal) {
  const RunResult r = read_V_forked("v_one_pair.dat");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "Reading dynamic disorder V files...\n  nframe = 2\n  npair  = 1\n  dt     = 1e-06 ns\n" + kHead);
  EXPECT_EQ(r.err, "VL1-dyn.dat holds 1 pairs, fewer than the 2 neighbors of molecule 1\n");
}

TEST_F(ReadV, SecondCommentLineOfTwoWordsFailsWithTheThreeNumberMessage) {
  const RunResult r = read_V_forked("v_two_comments_two_words.dat");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "Reading dynamic disorder V files...\n" + kHead +
                "Incorrect dynamic disorder V data format\n"
                "At least 3 numbers are needed in the header: Nframe Npair dt_snap(in fs)\n");
}

// The reader does not catch the conversion failure; in a program it ends the
// process as an uncaught exception.
TEST_F(ReadV, SecondCommentLineOfMoreWordsFailsInTheIntegerConversion) {
  copy_fixture("v_two_comments_three_words.dat", "VL1-dyn.dat");
  std::string what;
  txtest::capture_stdout([&] {
    try {
      t.dyn_disorder_read_dyn_V_data(false);
    } catch (const std::invalid_argument& e) {
      what = e.what();
    }
  });
  EXPECT_EQ(what, "stoi");
}

TEST(ReadHLConversion, NonNumericDtFailsInTheDoubleConversion) {
  TempDir dir;
  Transport t;
  two_molecules(t);
  txtest::write_file("LUMO-dyn.dat", "2 3 fs\n1\n2\n3\n4\n5\n6\n");
  std::string what;
  txtest::capture_stdout([&] {
    try {
      t.dyn_disorder_read_dyn_HL_data(false);
    } catch (const std::invalid_argument& e) {
      what = e.what();
    }
  });
  EXPECT_EQ(what, "stod");
}

TEST_F(ReadV, NoFramesWarnsThenFails) {
  const RunResult r = read_V_forked("v_zero_frames.dat");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "Reading dynamic disorder V files...\n  nframe = 0\n  npair  = 2\n  dt     = 1e-06 ns\n"
            "WARNING: Please check the V-dyn data, the 2nd line should be: Nframe Npair\n" +
                kHead +
                "Data format is incorrect in file VL1-dyn.dat\nThe format should be:\n# one comment line\n"
                "Nframe Npair\nNframe * Npair double numbers\n");
}

TEST_F(ReadV, BodyShorterThanTheHeaderIsFatal) {
  const RunResult r = read_V_forked("v_short_body.dat");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "VL1-dyn.dat holds 3 of the 8 numbers its header announces\n");
}

TEST_F(ReadV, MissingFileIsFatal) {
  std::remove("VL2-dyn.dat");
  const RunResult r = txtest::run_forked([] {
    Transport t;
    two_molecules(t);
    t.dyn_disorder_read_dyn_V_data(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "Reading dynamic disorder V files...\n  nframe = 5\n  npair  = 2\n  dt     = 2e-06 ns\n" + kHead +
                "Failed to open input file VL2-dyn.dat\n");
}

TEST_F(ReadV, CarrierOtherThanElectronOrHoleIsFatal) {
  const RunResult r = read_V_forked("v_root1_five_frames.dat", 'x');
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "Reading dynamic disorder V files...\n" + kHead +
                                                  "chargetype in charge.inp should be either 'e' or 'h'\n");
}

// ---- reading the orbital series -----------------------------------------------------

TEST(ReadHL, LumoSeriesIsMoleculeByMolecule) {
  TempDir dir;
  Transport t;
  two_molecules(t);
  copy_fixture("hl_two_molecules.dat", "LUMO-dyn.dat");
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_HL_data(false); });
  EXPECT_EQ(out, "Reading dynamic disorder LUMO files...\ndone with LUMO dynamic disorder initialization\n");
  EXPECT_EQ(t.dyn_HL_frames[0], (std::vector<double>{100, 104, 999}));
  EXPECT_EQ(t.dyn_HL_frames[1], (std::vector<double>{-50, -54, 7}));
  EXPECT_EQ(t.dyn_HL_count, (std::vector<int>{2, 2}));
  EXPECT_EQ(t.dyn_HL_mean, (std::vector<double>{102.0, -52.0}));
  EXPECT_EQ(t.dyn_HL_dt, 4.0 * 1e-6);
  EXPECT_NEAR(std::abs(t.dyn_HL_fft[0][1] - std::complex<double>(-4, 0)), 0.0, 1e-12);
  EXPECT_NEAR(std::abs(t.dyn_HL_fft[1][1] - std::complex<double>(4, 0)), 0.0, 1e-12);
  EXPECT_EQ(read_file("LUMO-dyn.dat.ave"), "2\n   102.000\n   -52.000\n");
  t.dyn_disorder_clean();
}

TEST(ReadHL, HomoSeriesWithDebugOutput) {
  TempDir dir;
  Transport t;
  two_molecules(t, 104);
  copy_fixture("hl_two_molecules.dat", "HOMO-dyn.dat");
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_HL_data(true); });
  EXPECT_EQ(out,
            "Reading dynamic disorder HOMO files...\nReading HOMO-dyn file HOMO-dyn.dat...\n"
            "  nmols  = 2\n  nframe = 3\n  dt     = 4e-06 ns\n"
            "----\n  N_data = 2\n  aver   = 102\n"
            "done with HOMO dynamic disorder initializaton\n");
  EXPECT_EQ(read_file("HOMO-dyn.dat.raw_1"),
            "#          re           im\n  1    -2.000000     0.000000\n  2     2.000000     0.000000\n");
  EXPECT_EQ(read_file("HOMO-dyn.dat.fft_1"),
            "#          re           im\n  1     0.000000     0.000000\n  2    -4.000000     0.000000\n");
  t.dyn_disorder_clean();
}

RunResult read_HL_forked(const std::string& fixture) {
  copy_fixture(fixture, "LUMO-dyn.dat");
  return txtest::run_forked([] {
    Transport t;
    two_molecules(t);
    t.dyn_disorder_read_dyn_HL_data(false);
  });
}

TEST(ReadHL, ShortHeaderIsFatal) {
  TempDir dir;
  const RunResult r = read_HL_forked("hl_short_header.dat");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "Reading dynamic disorder LUMO files...\n" + kHead +
                "Incorrect dynamic disorder HOMO/LUMO data format\n"
                "At least 3 numbers are needed in the header: nmols Nframe dt_snap(in fs)\n");
}

TEST(ReadHL, NoMoleculesIsFatal) {
  TempDir dir;
  const RunResult r = read_HL_forked("hl_zero_molecules.dat");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "Reading dynamic disorder LUMO files...\n" + kHead +
                "Incorrect data format in file LUMO-dyn.dat\nThe format should be:\n# one comment line\n"
                "nmols Nframe dt_snapshot(in fs)\nnmols * Nframe double numbers\n");
}

TEST(ReadHL, FewerMoleculesThanTheUnitCellIsFatal) {
  TempDir dir;
  const RunResult r = read_HL_forked("hl_one_molecule.dat");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "LUMO-dyn.dat holds 1 molecules, fewer than the 2 of the unit cell\n");
}

TEST(ReadHL, MissingFileIsFatal) {
  TempDir dir;
  const RunResult r = txtest::run_forked([] {
    Transport t;
    two_molecules(t);
    t.dyn_disorder_read_dyn_HL_data(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "Reading dynamic disorder LUMO files...\n" + kHead + "Failed to open input file LUMO-dyn.dat\n");
}

// ---- synthesis of V ---------------------------------------------------------------------
// Pair (0, 0) of v_root1_five_frames.dat: mean 12 meV, N = 4, transform 0, 4i, -8, -4i.

struct Synthesis : ::testing::Test {
  TempDir dir;
  Transport t;
  Cleanup cleanup{t};
  void SetUp() override {
    two_molecules(t);
    copy_fixture("v_root1_five_frames.dat", "VL1-dyn.dat");
    copy_fixture("v_root2_header_first.dat", "VL2-dyn.dat");
    txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_V_data(false); });
  }
};

// The random-phase sum written out with the hand transform.
double expected_V(std::uint32_t seed, double t, int terms) {
  const std::complex<double> F[4] = {{0, 0}, {0, 4}, {-8, 0}, {0, -4}};
  std::mt19937 g(seed);
  double sum = 0.0;
  for (int k = 0; k < terms; ++k) {
    const double a = kTwoPi * (u32(g) + k * t / 4.0);
    sum += std::cos(a) * F[k].real() + std::sin(a) * F[k].imag();
  }
  return (sum / 4.0 + 12.0) * kMeV;
}

TEST_F(Synthesis, RandomPhaseSeriesUsesAFreshPhasePerFrequency) {
  DeviceSeeds seeds(77);
  for (double time : {0.0, 1.0, 2.5}) {
    const std::uint32_t seed = g_next_seed;
    EXPECT_NEAR(t.dyn_disorder_calc_V_N(time, 0, 0), expected_V(seed, time, 4), 1e-15) << time;
  }
  EXPECT_EQ(g_seed_draws, 3);  // one generator per call
}

TEST_F(Synthesis, HalfSpectrumVariantSumsHalfTheTermsOverTheFullN) {
  DeviceSeeds seeds(5);
  EXPECT_NEAR(t.dyn_disorder_calc_V(1.5, 0, 0), expected_V(5, 1.5, 2), 1e-15);
}

TEST_F(Synthesis, InverseTransformGivesBackTheFramesAtWholeTimes) {
  const double frames[4] = {10, 12, 10, 16};
  for (int f = 0; f < 4; ++f) EXPECT_NEAR(t.dyn_disorder_calc_V_idft(f, 0, 0), frames[f] * kMeV, 1e-15) << f;
  EXPECT_NEAR(t.dyn_disorder_calc_V_idft(1.0, 1, 0), 34.0 * kMeV, 1e-15);
}

TEST_F(Synthesis, EmptySeriesGiveTheMean) {
  t.dyn_V_count[0][0] = 0;
  EXPECT_EQ(t.dyn_disorder_calc_V_N(3.0, 0, 0), 12.0 * kMeV);
  EXPECT_EQ(t.dyn_disorder_calc_V_idft(3.0, 0, 0), 12.0 * kMeV);
  t.dyn_V_count[0][0] = 1;
  EXPECT_EQ(t.dyn_disorder_calc_V(3.0, 0, 0), 12.0 * kMeV);
}

TEST_F(Synthesis, PairWithoutSeriesIsFatal) {
  const RunResult r = txtest::run_forked([&] { t.dyn_disorder_calc_V_N(0.0, 1, 1); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "No dynamic disorder V data for molecule 2, neighbor 2\n");
}

// ---- orbital energy differences ------------------------------------------------------------
// hl_two_molecules.dat: molecule 0 frames 100 104 (999), molecule 1 -50 -54 (7); N = 2.

struct Orbitals : ::testing::Test {
  TempDir dir;
  Transport t;
  Cleanup cleanup{t};
  void read(int carrier) {
    two_molecules(t, carrier);
    copy_fixture("hl_two_molecules.dat", carrier == 101 ? "LUMO-dyn.dat" : "HOMO-dyn.dat");
    txtest::capture_stdout([&] { t.dyn_disorder_read_dyn_HL_data(false); });
  }
};

TEST_F(Orbitals, FrameDifferenceIsNegatedForElectronsAndHitsOnlyTheFirstNFrames) {
  read(101);
  const double mol0[2] = {100, 104}, mol1[2] = {-50, -54};
  DeviceSeeds seeds(1);
  for (int k = 0; k < 20; ++k) {
    const std::uint32_t seed = g_next_seed;
    std::mt19937 g(seed);
    const double r1 = u32(g), r2 = u32(g);
    const double d = (mol1[static_cast<int>(r2 * 2)] - mol0[static_cast<int>(r1 * 2)]) * kMeV;
    EXPECT_NEAR(t.dyn_disorder_HOMOLUMO_calc_dE(123.0, 0, 1), -d, 1e-18) << seed;
  }
}

TEST_F(Orbitals, FrameDifferenceKeepsItsSignForHoles) {
  read(104);
  DeviceSeeds seeds(9);
  std::mt19937 g(9);
  const double r1 = u32(g), r2 = u32(g);
  const double mol0[2] = {100, 104}, mol1[2] = {-50, -54};
  const double d = (mol0[static_cast<int>(r2 * 2)] - mol1[static_cast<int>(r1 * 2)]) * kMeV;
  EXPECT_NEAR(t.dyn_disorder_HOMOLUMO_calc_dE(0.0, 1, 0), d, 1e-18);
}

TEST_F(Orbitals, SynthesisedDifferenceHasNoCarrierSign) {
  read(101);
  DeviceSeeds seeds(3);
  // n = 2, one term k = 0: F0 = 0 for both, so A = B = 0 and the result is the
  // difference of the means, whatever t and the phases.
  EXPECT_NEAR(t.dyn_disorder_HOMOLUMO_calc_dE_byfft(5.0, 0, 1), (102.0 - (-52.0)) * kMeV, 1e-18);
  // With a hand spectrum of two terms: n = 4, F_i = {1, 2i}, F_j = {3, 0}, dt 0.5.
  t.dyn_HL_count = {4, 4};
  t.dyn_HL_fft = {{{1, 0}, {0, 2}, {0, 0}, {0, 0}}, {{3, 0}, {0, 0}, {0, 0}, {0, 0}}};
  t.dyn_HL_frames = {{0, 0, 0, 0}, {0, 0, 0, 0}};
  t.dyn_HL_dt = 0.5;
  const std::uint32_t seed = g_next_seed;
  std::mt19937 h(seed);
  const double s1 = u32(h), s2 = u32(h);
  const double time = 0.75;
  const double gstep = time / (4 * 0.5) / 2.0;
  const double A = std::cos(kTwoPi * s1) * 1.0 + std::sin(kTwoPi * (s1 + gstep)) * 2.0;
  const double B = std::cos(kTwoPi * s2) * 3.0;
  EXPECT_NEAR(t.dyn_disorder_HOMOLUMO_calc_dE_byfft(time, 0, 1), ((A - B) / 4 + 102.0 + 52.0) * kMeV, 1e-18);
}

// ---- static rates ---------------------------------------------------------------------------
// Marcus with V = 1: sqrt(pi/a) exp(-(lambda + dE)^2 / (4a)) / 2.4189e-8, a = kB T lambda.
double marcus(double dE, double lambda, double T) {
  const double a = 3.1677375952000004e-6 * T * lambda;
  return std::sqrt(3.141592653589793 / a) * std::exp(-(lambda + dE) * (lambda + dE) / (4 * a)) / 2.4189e-8;
}

void marcus_setup(Transport& t) {
  two_molecules(t);
  t.ratetype = "marcus";
  t.temp = 300.0;
  t.lambda_mol = {0.005, 0.007};
  t.V_pair = {{0.001, 0.002}, {0.003}};
  t.dE_pair = {{0.0004, -0.0004}, {0.0}};
}

TEST(StaticRates, W0WithoutVAddsTheFieldAndTheOuterTerm) {
  TempDir dir;
  Transport t;
  Cleanup cleanup{t};
  marcus_setup(t);
  t.appE_flag = true;
  t.dE_field = new double*[2];
  t.dE_field[0] = new double[2]{0.0001, 0.0002};
  t.dE_field[1] = new double[1]{-0.0003};
  t.reorg_outer_flag = 1;
  t.lambda_outer = new double*[2];
  t.lambda_outer[0] = new double[2]{0.001, 0.0};
  t.lambda_outer[1] = new double[1]{0.002};
  t.run_rows_allocated = 2;
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_build_w0_no_V(); });
  EXPECT_EQ(out, "Building w0_no_V...\ndone\n");
  EXPECT_NEAR(t.w0_no_V[0][0] / marcus(0.0004 + 0.0001, 0.005 + 0.001, 300.0), 1.0, 1e-12);
  EXPECT_NEAR(t.w0_no_V[0][1] / marcus(-0.0004 + 0.0002, 0.005 + 0.0, 300.0), 1.0, 1e-12);
  EXPECT_NEAR(t.w0_no_V[1][0] / marcus(0.0 - 0.0003, 0.007 + 0.002, 300.0), 1.0, 1e-12);
  EXPECT_EQ(t.w0_no_V_rows_allocated, 2);
}

TEST(StaticRates, MissingSiteEnergyIsFatal) {
  TempDir dir;
  const RunResult r = txtest::run_forked([] {
    Transport t;
    marcus_setup(t);
    t.dE_pair[1].clear();
    txtest::capture_stdout([&] { t.dyn_disorder_build_w0_no_V(); });
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "No site energy difference for molecule 2, neighbor 1\n");
}

// ---- buffers ---------------------------------------------------------------------------------

std::vector<double> numbers_in(const std::string& path) {
  std::vector<double> v;
  for (const std::string& line : lines_of(read_file(path)))
    if (!line.empty()) v.push_back(std::strtod(line.c_str(), nullptr));
  return v;
}

TEST_F(Synthesis, V2BufferSamplesAreSeparateRealisations) {
  t.V_dynamic_disorder = true;
  t.dyn_buffer_size = 8;  // q = 4 / 8 = 0.5
  DeviceSeeds seeds(1000);
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_build_V2_buffer(); });
  EXPECT_EQ(out, "Building v2_buffer_full...\n");
  // Samples of pair (0,0) take seeds 1000..1007, one generator each, at time s q.
  for (int s = 0; s < 8; ++s) {
    const double V = expected_V(1000 + s, 0.5 * s, 4);
    EXPECT_NEAR(t.dyn_V2_buffer_full[0][0][s], V * V, 1e-20) << s;
  }
  EXPECT_EQ(g_seed_draws, 8 * 3);
  EXPECT_NE(t.dyn_V2_buffer_full[0][0][0], t.dyn_V2_buffer_full[0][0][1]);
  // The first row, one value a line.
  const std::vector<double> file = numbers_in("dyn_V2_buffer_1.dat");
  ASSERT_EQ(file.size(), 8u);
  for (int s = 0; s < 8; ++s) EXPECT_NEAR(file[s], t.dyn_V2_buffer_full[0][0][s], 1e-7 * file[s]);
  EXPECT_EQ(lines_of(read_file("dyn_V2_buffer_1.dat"))[0].size(), 14u);
}

TEST_F(Synthesis, V2BufferWithoutTheVFlagHoldsTheStaticV) {
  t.V_dynamic_disorder = false;
  t.V_pair = {{0.5, 0.25}, {2.0}};
  t.dyn_buffer_size = 3;
  txtest::capture_stdout([&] { t.dyn_disorder_build_V2_buffer_full(); });
  EXPECT_EQ(t.dyn_V2_buffer_full[0][1], (std::vector<double>{0.0625, 0.0625, 0.0625}));
  EXPECT_EQ(t.dyn_V2_buffer_full[1][0], (std::vector<double>{4.0, 4.0, 4.0}));
}

// Keys 0 and 1 (root 0) are one class, key 2 (root 1) another: pair_keylist 1, 3.
void unique_pairs(Transport& t) {
  t.unique_2mol_calc_flag = true;
  t.pair_key_map = new int[3]{0, 0, 2};
  t.pair_keylist = new int[2]{1, 3};
  t.pair_keylist_count = 2;
  t.pairs_checked = true;
  t.neighbor_key_offset = new int[2]{0, 2};
  t.unique_pair_index = {{1, 0}, {3, 1}};
}

TEST_F(Synthesis, UniqueV2BufferHasOneRowPerClass) {
  unique_pairs(t);
  t.V_dynamic_disorder = false;
  t.V_pair = {{0.5, 0.25}, {2.0}};
  t.dyn_buffer_size = 2;
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_build_V2_buffer(); });
  EXPECT_EQ(out, "Building dyn_V2_buffer_unique...\n");
  ASSERT_EQ(t.dyn_V2_buffer_unique.size(), 2u);
  EXPECT_EQ(t.dyn_V2_buffer_unique[0], (std::vector<double>{0.25, 0.25}));  // pair (0, 0)
  EXPECT_EQ(t.dyn_V2_buffer_unique[1], (std::vector<double>{4.0, 4.0}));    // pair (1, 0)
  EXPECT_EQ(numbers_in("dyn_V2_buffer_1.dat"), (std::vector<double>{0.25, 0.25}));
}

TEST_F(Synthesis, UniqueKeyOutsideTheNeighborsIsFatal) {
  unique_pairs(t);
  t.pair_keylist[1] = 9;
  t.V_dynamic_disorder = false;
  t.V_pair = {{0.5, 0.25}, {2.0}};
  t.dyn_buffer_size = 2;
  const RunResult r = txtest::run_forked([&] { t.dyn_disorder_build_V2_buffer_unique(); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Unique pair key 9 is not a neighbor key\n");
}

struct RateBuffers : Orbitals {
  void SetUp() override {
    read(101);
    t.ratetype = "Marcus";
    t.temp = 250.0;
    t.lambda_mol = {0.004, 0.006};
    t.dyn_buffer_size = 4;
  }
  // The rate of sample `seed` for root i and neighbor molecule m: electrons take
  // the negated frame difference.
  double expected(std::uint32_t seed, int i, int m) const {
    const double frames[2][2] = {{100, 104}, {-50, -54}};
    std::mt19937 g(seed);
    const double r1 = u32(g), r2 = u32(g);
    const double dE = -(frames[m][static_cast<int>(r2 * 2)] - frames[i][static_cast<int>(r1 * 2)]) * kMeV;
    return marcus(dE, i == 0 ? 0.004 : 0.006, 250.0);
  }
};

TEST_F(RateBuffers, FullBufferDrawsTwoFramesPerSample) {
  DeviceSeeds seeds(50);
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_build_w0_no_V_buffer(); });
  EXPECT_EQ(out, "Building dynamic disorder dyn_w0_no_V2_buffer_full...\n");
  for (int s = 0; s < 4; ++s) {
    EXPECT_NEAR(t.dyn_w0_no_V_buffer_full[0][0][s] / expected(50 + s, 0, 1), 1.0, 1e-12) << s;
    EXPECT_NEAR(t.dyn_w0_no_V_buffer_full[0][1][s] / expected(54 + s, 0, 1), 1.0, 1e-12) << s;
    EXPECT_NEAR(t.dyn_w0_no_V_buffer_full[1][0][s] / expected(58 + s, 1, 0), 1.0, 1e-12) << s;
  }
  EXPECT_EQ(numbers_in("dyn_w0_no_V_buffer_1.dat").size(), 4u);
}

TEST_F(RateBuffers, UniqueBufferHasOneRowPerClass) {
  unique_pairs(t);
  DeviceSeeds seeds(10);
  const std::string out = txtest::capture_stdout([&] { t.dyn_disorder_build_w0_no_V_buffer(); });
  EXPECT_EQ(out, "Building dyn_w0_no_V_buffer_unique...\n");
  ASSERT_EQ(t.dyn_w0_no_V_buffer_unique.size(), 2u);
  for (int s = 0; s < 4; ++s) {
    EXPECT_NEAR(t.dyn_w0_no_V_buffer_unique[0][s] / expected(10 + s, 0, 1), 1.0, 1e-12);
    EXPECT_NEAR(t.dyn_w0_no_V_buffer_unique[1][s] / expected(14 + s, 1, 0), 1.0, 1e-12);
  }
}

// ---- rates in time ------------------------------------------------------------------------------
// B = 8; the V series of the first pair has N = 4 and spacing 0.5 ns, so
// c = B / (N dt) = 4 per ns. Buffer entries are 100 i + 10 j + s, w0_no_V = 1 + i + j.

struct RatesInTime : ::testing::Test {
  TempDir dir;
  Transport t;
  Cleanup cleanup{t};
  double rates[2] = {-1.0, -1.0};
  void SetUp() override {
    two_molecules(t);
    t.dyn_buffer_size = 8;
    t.dyn_V_count = {{4, 4}, {4}};
    t.dyn_V_dt = 0.5;
    t.V_pair = {{0.5, 0.25}, {2.0}};
    t.w0_no_V = new double*[2];
    t.w0_no_V[0] = new double[2]{1.0, 2.0};
    t.w0_no_V[1] = new double[1]{2.0};
    t.w0_no_V_rows_allocated = 2;
    for (auto* b : {&t.dyn_V2_buffer_full, &t.dyn_w0_no_V_buffer_full}) {
      b->assign(2, {});
      for (int i = 0; i < 2; ++i)
        for (int j = 0; j < t.nneighbors[i]; ++j) {
          std::vector<double> row(8);
          for (int s = 0; s < 8; ++s) row[s] = 100 * i + 10 * j + s + (b == &t.dyn_w0_no_V_buffer_full ? 1000 : 0);
          (*b)[i].push_back(row);
        }
    }
  }
};

TEST_F(RatesInTime, ZeroPhasesAtTimeZeroReadSampleZeroOfEveryBuffer) {
  t.dyn_disorder_mode = 1;
  double zeros[2] = {0.0, 0.0};
  t.dyn_disorder_calc_w0(0.0, zeros, rates, 0);
  EXPECT_EQ(rates[0], 0.0 * 1.0);
  EXPECT_EQ(rates[1], 10.0 * 2.0);
  t.dyn_disorder_calc_w0(0.0, zeros, rates, 1);
  EXPECT_EQ(rates[0], 100.0 * 2.0);
}

TEST_F(RatesInTime, ModeOneWalksTheBufferWithPhaseAndTime) {
  t.dyn_disorder_mode = 1;
  // 8 * 0.3 + 4 * 1.2 = 7.2 -> sample 7; 8 * 0.5 + 4 * 2.0 = 12 -> 12 % 8 = 4.
  double phase[2] = {0.3, 0.5};
  t.dyn_disorder_calc_w0(1.2, phase, rates, 0);
  EXPECT_EQ(rates[0], 7.0 * 1.0);
  t.dyn_disorder_calc_w0(2.0, phase, rates, 0);
  EXPECT_EQ(rates[1], 14.0 * 2.0);
}

TEST_F(RatesInTime, NegativePositionWrapsAroundTheBuffer) {
  t.dyn_disorder_mode = 1;
  // 8 * -0.3 = -2.4 -> -2 -> wraps to 6; 8 * -0.01 = -0.08 -> 0.
  double phase[2] = {-0.3, -0.01};
  t.dyn_disorder_calc_w0(0.0, phase, rates, 0);
  EXPECT_EQ(rates[0], 6.0 * 1.0);
  EXPECT_EQ(rates[1], 10.0 * 2.0);
}

TEST_F(RatesInTime, PositionThatIsNotFiniteIsFatal) {
  t.dyn_disorder_mode = 1;
  RunResult r = txtest::run_forked([&] {
    double phase[2] = {std::numeric_limits<double>::infinity(), 0.0};
    t.dyn_disorder_calc_w0(0.0, phase, rates, 0);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Dynamic disorder sample position is not finite (inf)\n");
  r = txtest::run_forked([&] {
    double phase[2] = {std::numeric_limits<double>::quiet_NaN(), 0.0};
    t.dyn_disorder_calc_w0(0.0, phase, rates, 0);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Dynamic disorder sample position is not finite (nan)\n");
}

size_t canonical_sample(std::mt19937& g) {
  return static_cast<size_t>(8.0 * std::generate_canonical<double, std::numeric_limits<double>::digits>(g));
}

TEST_F(RatesInTime, ModeTwoDrawsTheEnergySampleFromOneGeneratorPerCall) {
  t.dyn_disorder_mode = 2;
  DeviceSeeds seeds(31);
  double phase[2] = {0.9, 0.9};
  t.dyn_disorder_calc_w0(5.0, phase, rates, 0);
  EXPECT_EQ(g_seed_draws, 1);
  std::mt19937 g(31);
  const size_t k0 = canonical_sample(g), k1 = canonical_sample(g);
  EXPECT_EQ(rates[0], 0.5 * 0.5 * (1000.0 + k0));
  EXPECT_EQ(rates[1], 0.25 * 0.25 * (1010.0 + k1));
}

TEST_F(RatesInTime, ModeThreeMultipliesBothBuffers) {
  t.dyn_disorder_mode = 3;
  DeviceSeeds seeds(32);
  double phase[2] = {0.3, 0.5};
  t.dyn_disorder_calc_w0(1.2, phase, rates, 0);
  std::mt19937 g(32);
  const size_t k0 = canonical_sample(g);
  EXPECT_EQ(rates[0], (1000.0 + k0) * 7.0);
}

TEST_F(RatesInTime, OtherModesLeaveTheRatesAlone) {
  double phase[2] = {0.0, 0.0};
  for (int mode : {0, 4, -1}) {
    t.dyn_disorder_mode = mode;
    t.dyn_disorder_calc_w0(0.0, phase, rates, 0);
    EXPECT_EQ(rates[0], -1.0);
    EXPECT_EQ(rates[1], -1.0);
  }
}

TEST_F(RatesInTime, UniqueBuffersGoThroughTheClassOfThePair) {
  unique_pairs(t);
  t.dyn_disorder_mode = 1;
  t.dyn_V2_buffer_unique = {std::vector<double>(8, 3.0), std::vector<double>(8, 5.0)};
  double zeros[2] = {0.0, 0.0};
  t.dyn_disorder_calc_w0(0.0, zeros, rates, 0);
  EXPECT_EQ(rates[0], 3.0 * 1.0);
  EXPECT_EQ(rates[1], 3.0 * 2.0);  // key 1 is in key 0's class
  t.dyn_disorder_calc_w0(0.0, zeros, rates, 1);
  EXPECT_EQ(rates[0], 5.0 * 2.0);
  // A representative missing from the map is entered as position 0.
  t.unique_pair_index.erase(3);
  t.dyn_disorder_calc_w0(0.0, zeros, rates, 1);
  EXPECT_EQ(rates[0], 3.0 * 2.0);
  EXPECT_EQ(t.unique_pair_index.at(3), 0);
}

TEST_F(RatesInTime, MissingBufferIsFatal) {
  t.dyn_disorder_mode = 1;
  t.dyn_V2_buffer_full.clear();
  const RunResult r = txtest::run_forked([&] {
    double zeros[2] = {0.0, 0.0};
    t.dyn_disorder_calc_w0(0.0, zeros, rates, 0);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "No dynamic disorder V^2 buffer for molecule 1, neighbor 1\n");
}

TEST_F(RatesInTime, EmptyBufferSizeIsFatal) {
  t.dyn_disorder_mode = 2;
  t.dyn_buffer_size = 0;
  const RunResult r = txtest::run_forked([&] {
    double zeros[2] = {0.0, 0.0};
    t.dyn_disorder_calc_w0(0.0, zeros, rates, 0);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "dyn_buffer_size (0) must be at least 1\n");
}

// ---- release -----------------------------------------------------------------------------------------

TEST(Clean, ReleasesEverythingAndLeavesPointersNull) {
  Transport t;
  two_molecules(t);
  S_m = new double[3]();
  freq_m = new double[3]();
  t.nm_freq = {{1.0}};
  t.nm_S = {{1.0}};
  t.nm_lambda = {{1.0}};
  t.nNM = {1};
  t.lambda_mol = {1.0};
  t.V_pair = {{1.0}};
  t.dE_pair = {{1.0}};
  t.dyn_V_count = {{2}};
  t.dyn_HL_frames = {{1.0}};
  t.dyn_V2_buffer_full = {{{1.0}}};
  t.dyn_w0_no_V_buffer_unique = {{1.0}};
  t.w0_no_V = new double*[2]{new double[2], new double[1]};
  t.w0_no_V_rows_allocated = 2;
  t.dyn_disorder_clean();
  EXPECT_EQ(S_m, nullptr);
  EXPECT_EQ(freq_m, nullptr);
  EXPECT_EQ(t.w0_no_V, nullptr);
  EXPECT_EQ(t.w0_no_V_rows_allocated, 0);
  EXPECT_TRUE(t.nm_freq.empty() && t.nm_S.empty() && t.nm_lambda.empty() && t.nNM.empty());
  EXPECT_TRUE(t.V_pair.empty() && t.dE_pair.empty() && t.lambda_mol.empty());
  EXPECT_TRUE(t.dyn_V_count.empty() && t.dyn_HL_frames.empty());
  EXPECT_TRUE(t.dyn_V2_buffer_full.empty() && t.dyn_w0_no_V_buffer_unique.empty());
  t.dyn_disorder_clean();  // a second call finds nothing to free
  EXPECT_EQ(S_m, nullptr);
}

}  // namespace
