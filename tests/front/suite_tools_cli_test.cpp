// The suite tools as the generated scripts run them, in a work directory of a
// one-molecule orthorhombic lattice (tests/data/suite_tools): the recovered
// diffusion tensor and mobility, the rates of tavix_hoprate.exe, job-array splits of
// tavix_mc.exe, and bad input.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "suite_tools.h"
#include "test_support.h"

namespace {

using txtest::data_path;
using txtest::path_exists;
using txtest::read_file;
using txtest::run_command;
using txtest::TempDir;
using txtest::write_file;

const std::string kHoprate = TAVIX_HOPRATE_EXE;
const std::string kMc = TAVIX_MC_EXE;
const std::string kMob = TAVIX_MOB_EXE;

void copy_work_dir(const TempDir& dir) {
  for (const char* n : {"tavix.inp", "lattice.cif", "charge.inp", "VL.dat", "EL.dat", "NM-e.dat"})
    write_file(dir.file(n), read_file(data_path(std::string("suite_tools/") + n)));
}

// WL.dat with rate ka for the two neighbors along a, kb along b, kc along c (1/ns);
// the order of the columns is taken from the library's own neighbor list.
void write_rates_by_axis(double ka, double kb, double kc) {
  Transport t;
  txtest::capture_stdout([&] { suite_tools::load_run(t); });
  ASSERT_EQ(t.nmols_uc, 1);
  ASSERT_EQ(t.nneighbors[0], 6);
  std::string text = "1\n6\n";
  for (int j = 0; j < 6; ++j) {
    const double* d = &t.neighbor_df[0][3 * j];
    const double k = d[0] != 0.0 ? ka : d[1] != 0.0 ? kb : kc;
    text += formatString("1.0 meV %.6e 1/ns 0.0 angstrom\n", k);
  }
  write_file("WL.dat", text);
}

// The number after "<key> = " on the line of `text` that holds it.
double value_after(const std::string& text, const std::string& key) {
  const size_t p = text.find(key + " = ");
  if (p == std::string::npos) return NAN;
  return std::strtod(text.c_str() + p + key.size() + 3, nullptr);
}

std::string first_line(const std::string& text) { return text.substr(0, text.find('\n') + 1); }

TEST(SuiteToolsCli, MobilityRecoversTheAnalyticDiffusionTensorOfTheLattice) {
  TempDir dir;
  copy_work_dir(dir);
  // Rates along a, b, c; a = 4, b = 5, c = 6 angstrom. D_xx = (1/2) sum_j k_j dx_j^2
  // over the two neighbors +-a gives k_a a^2: 400 * 16 = 6400, 100 * 25 = 2500,
  // 200 * 36 = 7200 angstrom^2/ns, and no off-diagonal part.
  write_rates_by_axis(400.0, 100.0, 200.0);
  const double D_exact[3] = {6400.0, 2500.0, 7200.0};
  // 2000 trajectories of 700 hops (total rate 1400/ns over tsimu = 0.5 ns). For a
  // near-Gaussian displacement the mean square of N walks has a relative standard
  // deviation sqrt(2/N) = 3.2 %; the fit over ten rows of one walk keeps about that,
  // so 10 % is three standard deviations. The seed makes the run repeatable.
  auto r = run_command(kMc + " -nsimu 2000 -seed 1");
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  r = run_command(kMob);
  ASSERT_EQ(r.status, 0) << r.out << r.err;

  const char* const axes[3] = {"a", "b", "c"};
  for (int k = 0; k < 3; ++k) {
    const std::string text = read_file(formatString("mob_%s.dat", axes[k]));
    const double D = value_after(text, formatString("# D_%s", axes[k]));
    EXPECT_NEAR(D, D_exact[k], 0.10 * D_exact[k]) << axes[k];
    // mu = e D / (k_B T): D angstrom^2/ns * 1e-16 cm^2/angstrom^2 / 1e-9 s/ns = D * 1e-7 cm^2/s,
    // over k_B T / e = 1.380649e-23 * 300 / 1.602176634e-19 V = 0.0258520 V at 300 K.
    const double mu = value_after(text, formatString("mu_%s", axes[k]));
    EXPECT_NEAR(mu, D * 1e-7 / 0.025851999786, 1e-6 * mu) << axes[k];
    // Analytic mobilities by hand: 6400e-7/0.0258520 = 0.024756, 2500e-7/... = 0.0096704,
    // 7200e-7/... = 0.027851 cm^2/Vs.
    const double mu_exact[3] = {0.024756, 0.0096704, 0.027851};
    EXPECT_NEAR(mu, mu_exact[k], 0.10 * mu_exact[k]) << axes[k];
  }
  // The average is a third of the trace: (6400 + 2500 + 7200)/3 = 5366.7 angstrom^2/ns.
  const std::string mob = read_file("mob.dat");
  EXPECT_NEAR(value_after(mob, "# D"), 5366.67, 0.06 * 5366.67);
  // The first lines are what the gather copies: complete statements.
  EXPECT_EQ(first_line(mob).find("electron mobility, average of a, b, c: mu = "), 0u) << mob;
  EXPECT_NE(first_line(mob).find(" cm^2/Vs at T = 300 K ("), std::string::npos) << mob;
  EXPECT_EQ(first_line(read_file("mob_b.dat")).find("electron mobility along b: mu_b = "), 0u);
  // Directions in the ab plane: theta 0 is a, theta 90 is b.
  const std::string all = read_file("mob_direction_all.dat");
  EXPECT_NE(all.find("# plane ab"), std::string::npos);
  EXPECT_NE(all.find("# plane ca"), std::string::npos);
  const std::string svg = read_file("msd.svg");
  EXPECT_EQ(svg.find("<svg xmlns=\"http://www.w3.org/2000/svg\""), 0u);
  EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
}

TEST(SuiteToolsCli, HoprateRateIsVSquaredTimesTheLibraryRateWithoutV) {
  TempDir dir;
  copy_work_dir(dir);
  auto r = run_command(kHoprate);
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_NE(r.out.find("rates: 6 of 6 pairs (100%)"), std::string::npos) << r.out;
  // The library's rate without V for each pair's energies, called directly.
  Transport t;
  txtest::capture_stdout([&] {
    suite_tools::load_run(t);
    t.dyn_disorder_init_prefix(false);
  });
  const std::string w = read_file("WL.dat");
  const char* p = w.c_str();
  char* end = nullptr;
  EXPECT_EQ(std::strtol(p, &end, 10), 1);
  EXPECT_EQ(std::strtol(end, &end, 10), 6);
  for (int j = 0; j < 6; ++j) {
    char unit1[16], unit2[16], unit3[16];
    double V_meV, rate, dist;
    int n = 0;
    ASSERT_EQ(std::sscanf(end, "%lf %15s %lf %15s %lf %15s%n", &V_meV, unit1, &rate, unit2, &dist, unit3, &n), 6);
    end += n;
    EXPECT_STREQ(unit1, "meV");
    EXPECT_STREQ(unit2, "1/ns");
    EXPECT_STREQ(unit3, "angstrom");
    const double V = t.V_pair[0][j];
    const double expected = V * V * t.hop_rate_no_V(0, t.dE_pair[0][j], t.lambda_mol[0]);
    EXPECT_NEAR(rate, expected, 1e-6 * expected) << "column " << j;  // "%14.6e"
    EXPECT_NEAR(V_meV, V / 3.675e-5, 1e-9) << "column " << j;
  }
}

std::set<std::string> track_files(const std::string& dir) {
  std::set<std::string> names;
  for (const std::string& p : globFileVector(dir + "/track/*")) names.insert(p.substr(p.rfind('/') + 1));
  return names;
}

TEST(SuiteToolsCli, TwoJobArrayHalvesGiveTheTracksOfOneRun) {
  TempDir whole;
  copy_work_dir(whole);
  write_rates_by_axis(40.0, 10.0, 20.0);
  const std::string wl = read_file("WL.dat");
  TempDir split(false);
  copy_work_dir(split);
  write_file(split.file("WL.dat"), wl);

  auto r = run_command(kMc + " -simu0 0 -nsimu 100 -seed 5", whole.path());
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  r = run_command(kMc + " -simu0 0 -nsimu 50 -seed 5", split.path());
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  r = run_command(kMc + " -simu0 50 -nsimu 50 -seed 5", split.path());
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_NE(r.out.find("track/track_total.dat averages 100 tracks"), std::string::npos) << r.out;

  const std::set<std::string> names = track_files(whole.path());
  EXPECT_EQ(names.size(), 101u);  // track_0001 .. track_0100 and track_total.dat
  EXPECT_EQ(names.count("track_0001.dat"), 1u);
  EXPECT_EQ(names.count("track_0100.dat"), 1u);
  EXPECT_EQ(track_files(split.path()), names);
  for (const std::string& n : names)
    EXPECT_EQ(read_file(split.file("track/" + n)), read_file(whole.file("track/" + n))) << n;
}

TEST(SuiteToolsCli, McPrintsAProgressLineEveryFivePercent) {
  TempDir dir;
  copy_work_dir(dir);
  write_rates_by_axis(40.0, 10.0, 20.0);
  auto r = run_command(kMc + " -nsimu 40");
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_NE(r.out.find("  trajectories: 2 of 40 done (5%)\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("  trajectories: 40 of 40 done (100%)\n"), std::string::npos) << r.out;
}

// ---- bad input ---------------------------------------------------------------------

TEST(SuiteToolsCli, HoprateWithoutVFileFailsNamingItAndWritesNoWFile) {
  TempDir dir;
  copy_work_dir(dir);
  std::remove("VL.dat");
  auto r = run_command(kHoprate);
  EXPECT_NE(r.status, 0);
  EXPECT_NE((r.out + r.err).find("Failed to open input file VL.dat"), std::string::npos) << r.out << r.err;
  EXPECT_FALSE(path_exists("WL.dat"));
}

TEST(SuiteToolsCli, HoprateWithMoleculeCountNotOfTheStructureFails) {
  TempDir dir;
  copy_work_dir(dir);
  write_file("VL.dat", "2\n6\n1 meV\n1 meV\n1 meV\n1 meV\n1 meV\n1 meV\n6\n");
  auto r = run_command(kHoprate);
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.out.find("Data in 'VL.dat' incomptible: 2 : 1 should be equal!"), std::string::npos) << r.out;
  EXPECT_FALSE(path_exists("WL.dat"));
}

TEST(SuiteToolsCli, HoprateWithNeighborCountNotOfTheStructureFails) {
  TempDir dir;
  copy_work_dir(dir);
  write_file("VL.dat", "1\n4\n1 meV\n1 meV\n1 meV\n1 meV\n");
  auto r = run_command(kHoprate);
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.out.find("Data in 'VL.dat' incomptible: 4 : 6 should be equal!"), std::string::npos) << r.out;
  EXPECT_FALSE(path_exists("WL.dat"));
}

TEST(SuiteToolsCli, HoprateAtZeroTemperatureFailsNamingTempInp) {
  TempDir dir;
  copy_work_dir(dir);
  write_file("temp.inp", "0 K\n");
  auto r = run_command(kHoprate);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "The temperature in 'temp.inp' is 0 K; it must be above zero\n");
  EXPECT_FALSE(path_exists("WL.dat"));
}

TEST(SuiteToolsCli, MobWithoutTrackTotalFailsAndWritesNothing) {
  TempDir dir;
  copy_work_dir(dir);
  auto r = run_command(kMob);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err,
            "Failed to open input file track/track_total.dat: no finished Monte Carlo run here (run tavix_mc.exe "
            "first)\n");
  for (const char* f : {"mob.dat", "mob_a.dat", "mob_direction_all.dat", "msd.svg"}) EXPECT_FALSE(path_exists(f)) << f;
}

TEST(SuiteToolsCli, MobAtZeroTemperatureFailsNamingTheControlFile) {
  TempDir dir;
  copy_work_dir(dir);
  std::string inp = read_file("tavix.inp");
  inp.replace(inp.find("temp            = 300"), 21, "temp            = 0");
  write_file("tavix.inp", inp);
  auto r = run_command(kMob);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "The temperature in 'tavix.inp' is 0 K; it must be above zero\n");
  EXPECT_FALSE(path_exists("mob.dat"));
}

TEST(SuiteToolsCli, McRejectsANegativeFirstTrajectory) {
  TempDir dir;
  copy_work_dir(dir);
  auto r = run_command(kMc + " -simu0 -3");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("option -simu0 needs a whole number"), std::string::npos) << r.err;
  EXPECT_FALSE(path_exists("track"));
}

}  // namespace
