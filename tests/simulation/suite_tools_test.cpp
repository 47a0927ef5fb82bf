// The pieces of the suite tools: pair rates against the rate recipe, the W file
// as the walker's reader takes it, track files, the diffusion fit and the Einstein
// relation.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "suite_tools.h"
#include "test_support.h"

namespace {

using txtest::data_path;
using txtest::read_file;
using txtest::TempDir;
using txtest::write_file;

void copy_fixture(const TempDir& dir, const std::vector<std::string>& names) {
  for (const std::string& n : names) write_file(dir.file(n), read_file(data_path("suite_tools/" + n)));
}

const std::vector<std::string> kWorkDir = {"tavix.inp", "lattice.cif", "charge.inp", "VL.dat", "EL.dat", "NM-e.dat"};

TEST(SuiteToolsRates, PairRateIsVSquaredTimesTheRateWithoutV) {
  TempDir dir;
  copy_fixture(dir, kWorkDir);
  Transport t;
  std::vector<suite_tools::PairRate> rates;
  txtest::capture_stdout([&] {
    suite_tools::load_run(t);
    t.dyn_disorder_init_prefix(false);
    rates = suite_tools::compute_pair_rates(t, false);
  });
  ASSERT_EQ(rates.size(), 6u);
  // VL.dat and EL.dat in meV, converted as the reader does (3.675e-5 hartree/meV).
  const double V_meV[6] = {10, 10, 20, 20, 5, 5};
  const double E_meV[6] = {-10, 10, 25, -25, 0, 3};
  for (int j = 0; j < 6; ++j) {
    const double V = V_meV[j] * 3.675e-5;
    const double dE = E_meV[j] * 3.675e-5;
    EXPECT_DOUBLE_EQ(rates[j].V, V);
    EXPECT_DOUBLE_EQ(rates[j].dE, dE);
    EXPECT_EQ(rates[j].rate, V * V * t.hop_rate_no_V(0, dE, t.lambda_mol[0])) << "column " << j;
  }
}

TEST(SuiteToolsRates, QuantumPairRateIsVSquaredTimesTheIntegralWithoutV) {
  TempDir dir;
  copy_fixture(dir, kWorkDir);
  std::string inp = read_file("tavix.inp");
  inp.replace(inp.find("marcus"), 6, "quantum");
  write_file("tavix.inp", inp);
  Transport t;
  std::vector<suite_tools::PairRate> rates;
  txtest::capture_stdout([&] {
    suite_tools::load_run(t);
    t.dyn_disorder_init_prefix(false);
    rates = suite_tools::compute_pair_rates(t, false);
  });
  ASSERT_EQ(rates.size(), 6u);
  for (int j = 0; j < 6; ++j) {
    const double V = t.V_pair[0][j];
    EXPECT_GT(rates[j].rate, 0.0);
    EXPECT_EQ(rates[j].rate, V * V * t.hop_rate_no_V(0, t.dE_pair[0][j], t.lambda_mol[0])) << "column " << j;
  }
}

TEST(SuiteToolsRates, WFileIsReadBackByTheWalkerReader) {
  TempDir dir;
  copy_fixture(dir, kWorkDir);
  Transport t;
  std::vector<suite_tools::PairRate> rates;
  txtest::capture_stdout([&] {
    suite_tools::load_run(t);
    t.dyn_disorder_init_prefix(false);
    rates = suite_tools::compute_pair_rates(t, false);
  });
  const std::string text = suite_tools::format_w_file(t, rates);
  // First row: V = 10 meV, then the rate, then the distance to the -a neighbor, 4 angstrom.
  const std::string first_row = text.substr(4, text.find('\n', 4) - 4);
  EXPECT_EQ(first_row.substr(0, 20), "  1.000000e+01 meV  ");
  EXPECT_EQ(first_row.substr(first_row.size() - 19), "    4.0000 angstrom");
  write_file("WL.dat", text);
  t.mc_chargetype = "e";
  txtest::capture_stdout([&] { t.read_MC_w0(); });
  for (int j = 0; j < 6; ++j)  // "%14.6e" keeps seven significant digits
    EXPECT_NEAR(t.w0[0][j], rates[j].rate, 1e-6 * rates[j].rate) << "column " << j;
}

TEST(SuiteToolsTracks, TrackNumberTakesOnlySingleTrackNames) {
  EXPECT_EQ(suite_tools::track_number("track/track_0001.dat"), 1);
  EXPECT_EQ(suite_tools::track_number("track_0100.dat"), 100);
  EXPECT_EQ(suite_tools::track_number("x/track_12345.dat"), 12345);
  EXPECT_EQ(suite_tools::track_number("track/track_total.dat"), -1);
  EXPECT_EQ(suite_tools::track_number("track/track_0001.dat.tmp12"), -1);
  EXPECT_EQ(suite_tools::track_number("track/track_.dat"), -1);
}

TEST(SuiteToolsTracks, MergedTotalAveragesEveryTrackOfTheDirectory) {
  TempDir dir;
  const std::string head = "#      t,ns         x,angs         y,angs         z,angs         r2,A^2     istep\n";
  const std::string zero = "  0.000000e+00   0.000000e+00   0.000000e+00   0.000000e+00   0.000000e+00  0\n";
  txtest::run_command("mkdir -p track");
  write_file("track/track_0001.dat", head + zero + "1 2 0 0 4 10\n" + "2 4 0 0 16 21\n");
  write_file("track/track_0002.dat", head + zero + "3 -2 2 0 8 11\n" + "4 0 0 6 36 20\n");
  write_file("track/track_total.dat", "stale\n");
  std::string error;
  EXPECT_EQ(suite_tools::merge_track_total("track", error), 2) << error;
  // Means by hand; the hop counts by integer division, (10+11)/2 = 10, (21+20)/2 = 20.
  EXPECT_EQ(read_file("track/track_total.dat"),
            head + zero + "  2.000000e+00   0.000000e+00   1.000000e+00   0.000000e+00   6.000000e+00  10\n" +
                "  3.000000e+00   2.000000e+00   0.000000e+00   3.000000e+00   2.600000e+01  20\n");
}

TEST(SuiteToolsTracks, MergeRefusesTracksOfDifferentLengths) {
  TempDir dir;
  txtest::run_command("mkdir -p track");
  write_file("track/track_0001.dat", "0 0 0 0 0 0\n1 1 0 0 1 1\n");
  write_file("track/track_0002.dat", "0 0 0 0 0 0\n");
  std::string error;
  EXPECT_EQ(suite_tools::merge_track_total("track", error), -1);
  EXPECT_NE(error.find("track_0002.dat"), std::string::npos) << error;
  EXPECT_FALSE(txtest::path_exists("track/track_total.dat"));
}

TEST(SuiteToolsTracks, ReadTrackNamesTheFileAndLineOfABadRow) {
  TempDir dir;
  write_file("t.dat", "# head\n0 0 0 0 0 0\n1 2 3\n");
  suite_tools::TrackRows rows;
  std::string error;
  EXPECT_FALSE(suite_tools::read_track("t.dat", rows, error));
  EXPECT_EQ(error, "Failed to read 't.dat' line 3: six numbers are needed (t, x, y, z, r2, istep)");
  EXPECT_FALSE(suite_tools::read_track("missing.dat", rows, error));
  EXPECT_EQ(error, "Failed to open input file missing.dat");
}

// Two mirror tracks x = +-3 sqrt(t): the mean is zero, the unbiased spread
// (N/(N-1) = 2 times the mean square) is 2 * 9 t, so D_xx = 9 exactly and every
// other component is 0.
std::vector<suite_tools::TrackRows> mirror_tracks(std::vector<double>& time) {
  time = {0, 1, 2, 3, 4};
  std::vector<suite_tools::TrackRows> tracks(2);
  for (int k = 0; k < 2; ++k)
    for (double t : time) {
      tracks[k].t.push_back(t);
      tracks[k].x.insert(tracks[k].x.end(), {(k == 0 ? 3.0 : -3.0) * std::sqrt(t), 1.5, 0.0});
    }
  return tracks;
}

TEST(SuiteToolsFit, MirrorTracksGiveTheExactDiffusionTensor) {
  std::vector<double> time;
  const auto tracks = mirror_tracks(time);
  suite_tools::DiffusionFit fit;
  std::string error;
  ASSERT_TRUE(suite_tools::fit_diffusion(time, tracks, fit, error)) << error;
  EXPECT_EQ(fit.ntraj, 2);
  EXPECT_EQ(fit.t, (std::vector<double>{1, 2, 3, 4}));  // the zero row is left out
  EXPECT_NEAR(fit.D[0][0], 9.0, 1e-12);
  EXPECT_NEAR(fit.intercept[0][0], 0.0, 1e-12);
  for (int a = 0; a < 3; ++a)
    for (int b = 0; b < 3; ++b)
      if (a + b > 0) {
        EXPECT_EQ(fit.D[a][b], 0.0) << a << b;  // y is constant, z is 0
      }
  // Along (1, 1, 0)/sqrt(2): n^T D n = 9/2.
  const double n[3] = {std::sqrt(0.5), std::sqrt(0.5), 0.0};
  EXPECT_NEAR(suite_tools::directional_D(fit, n), 4.5, 1e-12);
  // Both tracks have the same slope, so the spread, and with it the error, is 0.
  EXPECT_NEAR(suite_tools::directional_D_error(fit, n), 0.0, 1e-12);
}

TEST(SuiteToolsFit, FitNeedsThreeSnapshotRowsAndTwoTracks) {
  std::vector<double> time;
  auto tracks = mirror_tracks(time);
  suite_tools::DiffusionFit fit;
  std::string error;
  std::vector<double> short_time(time.begin(), time.begin() + 3);
  for (auto& tr : tracks) {
    tr.t.resize(3);
    tr.x.resize(9);
  }
  EXPECT_FALSE(suite_tools::fit_diffusion(short_time, tracks, fit, error));
  EXPECT_EQ(error, "2 snapshot rows with a finite time; the fit needs at least 3");
  tracks = mirror_tracks(time);
  tracks.pop_back();
  EXPECT_FALSE(suite_tools::fit_diffusion(time, tracks, fit, error));
  EXPECT_EQ(error, "1 track(s); the spread of the displacement needs at least 2");
}

TEST(SuiteToolsFit, EinsteinRelationInSquareCentimetresPerVoltSecond) {
  // mu = e D / (k_B T). D = 1e4 angstrom^2/ns = 1e4 * 1e-16 cm^2 / 1e-9 s = 1e-3 cm^2/s;
  // k_B T / e at 300 K = 1.380649e-23 * 300 / 1.602176634e-19 = 0.025852 V;
  // mu = 1e-3 / 0.025852 = 0.0386817 cm^2/Vs (python3, exact SI constants).
  EXPECT_NEAR(suite_tools::einstein_mobility(1e4, 300.0), 0.03868172707183361, 1e-15);
  // Linear in D, inverse in T.
  EXPECT_NEAR(suite_tools::einstein_mobility(2e4, 600.0), 0.03868172707183361, 1e-15);
}

}  // namespace
