// Kinetic Monte Carlo walkers on hand-built networks: paths, snapshot timing,
// track files, the averaging of MC_run and the second family, thin-film
// confinement, batch splitting, and the fast walker against the plain one.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"
#include "transport.h"

// Seams of the walkers (src/simulation/kmc.cpp).
namespace kmc_seam {
using TrajectorySeeder = void (*)(int itraj);
using DeviceSeedSource = std::uint32_t (*)();
TrajectorySeeder set_trajectory_seeder(TrajectorySeeder f);
DeviceSeedSource set_device_seed_source(DeviceSeedSource f);
}  // namespace kmc_seam

namespace {

using txtest::read_file;
using txtest::TempDir;

constexpr double kInf = std::numeric_limits<double>::infinity();

struct Column {
  int id;             // zero-based target molecule
  int cx, cy, cz;     // cell of the target
  double dx, dy, dz;  // fractional displacement
  double rate;        // 1/ns
};
using Network = std::vector<std::vector<Column>>;

// Puts a network on `t` as MC_init leaves it, so that MC_init returns at once:
// neighbor rows, rates, an orthorhombic cell a x b x c (angstrom), snapshot
// settings, and the track and average arrays of nsnap + 1 entries.
void install(Transport& t, const Network& net, double a, double b, double c, double tsnap, int nsnap,
             int nsimu = 1) {
  const int n = static_cast<int>(net.size());
  t.nmols_uc = n;
  t.nneighbors = new int[n];
  t.neighbor_id = new int*[n];
  t.neighbor_cx = new int*[n];
  t.neighbor_cy = new int*[n];
  t.neighbor_cz = new int*[n];
  t.neighbor_df = new double*[n];
  t.w0 = new double*[n];
  int keys = 0, widest = 0;
  for (int i = 0; i < n; ++i) {
    const int nn = static_cast<int>(net[i].size());
    t.nneighbors[i] = nn;
    keys += nn;
    widest = std::max(widest, nn);
    t.neighbor_id[i] = new int[t.NNEIMAX];
    t.neighbor_cx[i] = new int[t.NNEIMAX];
    t.neighbor_cy[i] = new int[t.NNEIMAX];
    t.neighbor_cz[i] = new int[t.NNEIMAX];
    t.neighbor_df[i] = new double[3 * std::max(nn, 1)];
    t.w0[i] = new double[std::max(nn, 1)];
    for (int j = 0; j < nn; ++j) {
      const Column& col = net[i][j];
      t.neighbor_id[i][j] = col.id;
      t.neighbor_cx[i][j] = col.cx;
      t.neighbor_cy[i][j] = col.cy;
      t.neighbor_cz[i][j] = col.cz;
      t.neighbor_df[i][3 * j] = col.dx;
      t.neighbor_df[i][3 * j + 1] = col.dy;
      t.neighbor_df[i][3 * j + 2] = col.dz;
      t.w0[i][j] = col.rate;
    }
  }
  t.neighbor_rows_allocated = n;
  t.run_rows_allocated = n;
  t.neighbor_nkeys = keys;
  t.max_nneighbors = widest;
  t.neighbor_built = true;
  std::memset(t.latt_f2c, 0, sizeof(t.latt_f2c));
  t.latt_f2c[0][0] = a;
  t.latt_f2c[1][1] = b;
  t.latt_f2c[2][2] = c;
  t.tsnap = tsnap;
  t.nsnap = nsnap;
  t.nsimu = nsimu;
  t.thinfilm_flag = 0;
  t.V_dynamic_disorder = false;
  t.HOMOLUMO_dynamic_disorder = false;
  t.track_istep = new int[nsnap + 1];
  t.track_t = new double[nsnap + 1];
  t.track_x = new double[3 * (nsnap + 1)];
  t.track_r2 = new double[nsnap + 1];
  t.ave_istep = new int[nsnap + 1]();
  t.ave_t = new double[nsnap + 1]();
  t.ave_x = new double[3 * (nsnap + 1)]();
  t.ave_r2 = new double[nsnap + 1]();
  t.mc_ready = true;
}

// Trajectory seeds of the first family: a negative idum restarts ran2 entirely,
// so each trajectory's numbers depend on its index alone.
int g_seed_offset = 0;
void restart_seeder(int itraj) { idum = -(itraj + 1 + g_seed_offset); }

class FirstFamilySeeds {
 public:
  explicit FirstFamilySeeds(int offset = 0) {
    g_seed_offset = offset;
    old_ = kmc_seam::set_trajectory_seeder(&restart_seeder);
  }
  ~FirstFamilySeeds() { kmc_seam::set_trajectory_seeder(old_); }

 private:
  kmc_seam::TrajectorySeeder old_;
};

// Device seeds of the second family: first, first + 1, ...
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

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) out.push_back(line);
  return out;
}

// Columns of the data rows of a track file (zero row included).
std::vector<std::vector<double>> track_rows(const std::string& path) {
  std::vector<std::vector<double>> rows;
  for (const std::string& line : lines_of(read_file(path))) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    std::vector<double> v;
    std::string w;
    while (in >> w) v.push_back(std::strtod(w.c_str(), nullptr));
    rows.push_back(v);
  }
  return rows;
}

std::string row_text(double t, double x, double y, double z, double r2, int istep) {
  char buf[128];
  std::snprintf(buf, sizeof buf, "%14.6e %14.6e %14.6e %14.6e %14.6e  %d\n", t, x, y, z, r2, istep);
  return buf;
}

const char* const kHead = "#      t,ns         x,angs         y,angs         z,angs         r2,A^2     istep\n";

// ---- the plain walk, written out as the reference form -------------------------
// Rates and the normalised row recomputed on every hop, the cumulative search
// with its fall-through to column 0, the Mersenne twister scaled by 2^-32.
struct Track {
  std::vector<int> istep;
  std::vector<double> t, x, r2;
};

Track reference_walk(const Network& net, const double f2c[3][3], double tsnap, int nsnap, std::uint32_t seed) {
  std::mt19937 g(seed);
  auto uniform = [&g] {
    double u = static_cast<double>(g()) * 2.3283064365386963e-10;
    if (u >= 1.0) u = 0.9999999999999999;
    return u;
  };
  size_t widest = 1;
  for (const auto& row : net) widest = std::max(widest, row.size());
  std::vector<double> p(widest + 1, 0.0);
  Track out{std::vector<int>(nsnap + 1), std::vector<double>(nsnap + 1), std::vector<double>(3 * (nsnap + 1)),
            std::vector<double>(nsnap + 1)};
  int cur = 0, istep = 0, snap = 0;
  double x = 0, y = 0, z = 0, t = 0, since = 0;
  for (;;) {
    const std::vector<Column>& row = net[cur];
    const int nn = static_cast<int>(row.size());
    double ktot = 0.0;
    int j = 0;
    if (nn < 1) {
      uniform();
    } else {
      for (const Column& c : row) ktot += c.rate;
      for (int k = 0; k < nn; ++k) p[k] = row[k].rate / ktot;
      const double r = uniform();
      double c = p[0];
      while (!(c > r)) {
        c += p[j + 1];
        if (j == nn - 1) {
          j = 0;
          break;
        }
        ++j;
      }
    }
    const double dt = 1.0 / ktot;
    if (nn >= 1) {
      x += row[j].dx;
      y += row[j].dy;
      z += row[j].dz;
      cur = row[j].id;
    }
    since += dt;
    if (dt >= tsnap - since && snap <= nsnap) {
      out.istep[snap] = istep;
      out.t[snap] = t;
      double* cx = &out.x[3 * snap];
      for (int a = 0; a < 3; ++a) cx[a] = f2c[a][0] * x + f2c[a][1] * y + f2c[a][2] * z;
      out.r2[snap] = cx[0] * cx[0] + cx[1] * cx[1] + cx[2] * cx[2];
      since = 0.0;
      ++snap;
    }
    if (snap == nsnap + 1) break;
    t += dt;
    ++istep;
  }
  return out;
}

bool same_bits(const void* a, const void* b, size_t n) { return std::memcmp(a, b, n) == 0; }

// ---- forced path -----------------------------------------------------------------
// Two molecules in a 4 x 5 x 6 cell; each has one neighbor, so the draws do not
// matter. Molecule 0 -> 1 at 2/ns by (0.5, 0, 0); 1 -> 0 at 4/ns by (0.5, 1, 0).
// tsnap = 1, nsnap = 3. Trace (dt 0.5 from molecule 0, 0.25 from molecule 1; the
// snapshot fires when dt >= tsnap - since_snap, since_snap already holding dt):
//   hop 0 from 0: since 0.5, 0.5 >= 0.5 -> row 0: istep 0, t 0, (0.5,0,0)
//   hop 1 from 1: since 0.25, no;  hop 2 from 0: since 0.75 -> row 1: istep 2, t 0.75, (1.5,1,0)
//   hop 3: no;  hop 4 -> row 2: istep 4, t 1.5, (2.5,2,0)
//   hop 5: no;  hop 6 -> row 3 (index nsnap, not written): istep 6, t 2.25; the walk ends.
// Cartesian = (4x, 5y, 6z); r2 in cells^2 0.25, 3.25, 10.25; in angstrom^2 4, 61, 200.
Network forced_path() {
  return {{{1, 0, 0, 0, 0.5, 0.0, 0.0, 2.0}}, {{0, 1, 1, 0, 0.5, 1.0, 0.0, 4.0}}};
}

std::string golden(const std::string& name) { return read_file(txtest::data_path("golden/kmc/" + name)); }

TEST(ForcedPath, FirstFamilyTrackFilesEqualTheHandTrace) {
  TempDir dir;
  Transport t;
  install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 3);
  const std::string out = txtest::capture_stdout([&] { t.MC_run("run", 0, 2); });
  EXPECT_EQ(read_file("run/track_0001.dat"), golden("forced_path_first_family_track.dat"));
  EXPECT_EQ(read_file("run/track_0002.dat"), golden("forced_path_first_family_track.dat"));
  // Two equal trajectories average to the same rows; istep is divided as an integer.
  EXPECT_EQ(read_file("run/track_total.dat"), golden("forced_path_first_family_track.dat"));
  EXPECT_EQ(out, "All data are in directory: run\n");
  // The last snapshot is computed though not written.
  EXPECT_EQ(t.track_istep[3], 6);
  EXPECT_EQ(t.track_t[3], 2.25);
  EXPECT_EQ(t.track_x[9], 14.0);
  EXPECT_EQ(t.track_x[10], 15.0);
}

TEST(ForcedPath, SecondFamilyTrackFilesEqualTheHandTraceAndNumberFromOne) {
  TempDir dir;
  Transport t;
  install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 3);
  // `start` plays no part in this family.
  const std::string out = txtest::capture_stdout([&] { t.MC_run_openMP("run", 7, 2); });
  EXPECT_EQ(read_file("run/track_0001.dat"), golden("forced_path_second_family_track.dat"));
  EXPECT_EQ(read_file("run/track_0002.dat"), golden("forced_path_second_family_track.dat"));
  EXPECT_FALSE(txtest::path_exists("run/track_0008.dat"));
  EXPECT_EQ(read_file("run/track_total.dat"), golden("forced_path_second_family_total.dat"));
  EXPECT_EQ(out, "MC simulation...\nAll data are in directory: run\n");
  for (int s = 0; s <= 3; ++s) EXPECT_EQ(t.ave_istep[s], 0);
}

TEST(ForcedPath, ThinFilmWalkersPrintAsTheyGo) {
  TempDir dir;
  Transport t;
  install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 3);
  // Film along c, one cell. Molecule 0's column has cx = 0, a valid column index,
  // and cell 0: allowed. Molecule 1's column has cx = 1, past its one-column row:
  // not allowed, so from molecule 1 nothing is allowed and column 0 is taken with
  // an infinite dt; the walk still ends.
  t.thinfilm_flag = 1;
  t.thinfilm_dir = 2;
  t.thinfilm_ncell = 1;
  const std::string out = txtest::capture_stdout([&] { t.MC_run("film", 4, 2); });
  EXPECT_EQ(out, "MC simulation (5)...\nMC simulation (6)...\nAll data are in directory: film\n");
  EXPECT_TRUE(txtest::path_exists("film/track_0005.dat"));
  EXPECT_TRUE(txtest::path_exists("film/track_0006.dat"));
}

// ---- snapshot count ----------------------------------------------------------------

TEST(Snapshots, NsnapZeroGivesOneEntryAndOnlyTheZeroRow) {
  TempDir dir;
  Transport t;
  install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 0);
  t.MC_simulation_one(0, "run");
  // The first hop already fills the only entry and ends the walk.
  EXPECT_EQ(t.track_istep[0], 0);
  EXPECT_EQ(t.track_t[0], 0.0);
  EXPECT_EQ(t.track_x[0], 2.0);
  EXPECT_EQ(read_file("run/track_0001.dat"), std::string(kHead) + row_text(0, 0, 0, 0, 0, 0));
  EXPECT_EQ(t.ave_t[0], 0.0);
  EXPECT_EQ(t.ave_r2[0], 0.25);
}

TEST(Snapshots, DtAtOrAboveTsnapSnapshotsEveryHop) {
  TempDir dir;
  Transport t;
  // dt 0.5 and 0.25 against tsnap 0.25: every hop is a row.
  install(t, forced_path(), 4.0, 5.0, 6.0, 0.25, 3);
  t.MC_simulation_one(0, "run");
  EXPECT_EQ(std::vector<int>(t.track_istep, t.track_istep + 4), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(std::vector<double>(t.track_t, t.track_t + 4), (std::vector<double>{0.0, 0.5, 0.75, 1.25}));
}

TEST(Snapshots, NegativeNsnapIsFatal) {
  TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 0);
    t.nsnap = -1;
    t.MC_run_openMP("run", 0, 1);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
  EXPECT_EQ(r.err, "MC: nsnap (-1) is negative\n");
}

// ---- averaging ---------------------------------------------------------------------

TEST(McRun, NoTrajectoriesIsAOneLineErrorAndWritesNothing) {
  TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 3);
    t.MC_run("run", 0, 0);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
  EXPECT_EQ(r.err, "MC_run: no trajectories to average (n = 0)\n");
  EXPECT_FALSE(txtest::path_exists("run/track_total.dat"));
}

TEST(McRun, SecondFamilyWithNoTrajectoriesWritesNotANumberAverages) {
  TempDir dir;
  Transport t;
  install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 1);
  txtest::capture_stdout([&] { t.MC_run_openMP("run", 0, 0); });
  // 0/0 in doubles; the istep column is set, not divided.
  EXPECT_TRUE(std::isnan(t.ave_t[0]));
  EXPECT_TRUE(std::isnan(t.ave_r2[1]));
  const std::vector<std::string> lines = lines_of(read_file("run/track_total.dat"));
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_NE(lines[2].find("nan"), std::string::npos);
  EXPECT_EQ(lines[2].substr(lines[2].size() - 3), "  0");
}

TEST(McRun, AverageIstepIsTheIntegerQuotientOfTheTrajectories) {
  TempDir dir;
  FirstFamilySeeds seeds;
  Transport t;
  // Molecule 0 -> 1 (rate 1) or -> 2 (rate 3); 1 and 2 return at rates 1 and 4:
  // residence times 1/4, 1 and 1/4 make the hop counts at a time depend on the path.
  const Network net = {{{1, 0, 0, 0, 1, 0, 0, 1.0}, {2, 0, 0, 0, 0, 1, 0, 3.0}},
                       {{0, 0, 0, 0, -1, 0, 0, 1.0}},
                       {{0, 0, 0, 0, 0, -1, 0, 4.0}}};
  install(t, net, 1.0, 1.0, 1.0, 2.0, 4);
  txtest::capture_stdout([&] { t.MC_run("run", 0, 3); });
  std::vector<std::vector<double>> files[3];
  for (int k = 0; k < 3; ++k) files[k] = track_rows(formatString("run/track_%04d.dat", k + 1));
  const std::vector<std::vector<double>> total = track_rows("run/track_total.dat");
  ASSERT_EQ(total.size(), 5u);
  bool differ = false;
  for (size_t row = 1; row < total.size(); ++row) {
    const int sum = static_cast<int>(files[0][row][5] + files[1][row][5] + files[2][row][5]);
    EXPECT_EQ(static_cast<int>(total[row][5]), sum / 3) << row;
    differ = differ || files[0][row][5] != files[1][row][5] || files[1][row][5] != files[2][row][5];
    const double tsum = files[0][row][0] + files[1][row][0] + files[2][row][0];
    EXPECT_NEAR(total[row][0], tsum / 3.0, 1e-5 * (1.0 + tsum));
  }
  EXPECT_TRUE(differ) << "the three paths should not all have the same hop counts";
}

TEST(McRun, TwoArgumentFormRunsNsimuTrajectoriesFromStart) {
  TempDir dir;
  Transport t;
  install(t, forced_path(), 4.0, 5.0, 6.0, 1.0, 3, 3);
  txtest::capture_stdout([&] { t.MC_run("run", 10); });
  EXPECT_TRUE(txtest::path_exists("run/track_0011.dat"));
  EXPECT_TRUE(txtest::path_exists("run/track_0013.dat"));
  EXPECT_FALSE(txtest::path_exists("run/track_0014.dat"));
  EXPECT_FALSE(txtest::path_exists("run/track_0010.dat"));
}

TEST(McRun, FirstFamilyDrawsOneNumberPerHop) {
  TempDir dir;
  FirstFamilySeeds seeds(41);  // idum = -42 for trajectory 0
  Transport t;
  // A two-way chain, and molecule 2 without neighbors at the end of one branch.
  const Network net = {{{1, 0, 0, 0, 1, 0, 0, 1.0}, {2, 0, 0, 0, -1, 0, 0, 0.5}}, {{0, 0, 0, 0, -1, 0, 0, 2.0}}, {}};
  install(t, net, 1.0, 1.0, 1.0, 0.7, 6);
  t.MC_simulation_one(0, "run");
  const long after = idum;
  const int hops = t.track_istep[6] + 1;
  idum = -42;
  for (int k = 0; k < hops; ++k) randUniform();
  EXPECT_EQ(idum, after);
}

// ---- molecules without neighbors ---------------------------------------------------
// Molecule 0 -> 1 at 2/ns by (1, 0, 0); molecule 1 has no neighbors. tsnap 1, nsnap 3.
//   hop 0: since 0.5 >= 1 - 0.5 -> row 0: istep 0, t 0, x 1; t = 0.5
//   hop 1 from 1: stays, dt = 1/0 = inf; since inf >= -inf -> row 1: istep 1, t 0.5, x 1; t = inf
//   hop 2: row 2: istep 2, t inf;  hop 3: row 3 (not written), the walk ends.
Network dead_end() { return {{{1, 0, 0, 0, 1.0, 0.0, 0.0, 2.0}}, {}}; }

TEST(DeadEnd, MoleculeWithoutNeighborsKeepsTheCarrierInPlaceWithInfiniteTime) {
  TempDir dir;
  Transport t;
  install(t, dead_end(), 3.0, 1.0, 1.0, 1.0, 3);
  t.MC_simulation_one(0, "one");
  const std::string expected = std::string(kHead) + row_text(0, 0, 0, 0, 0, 0) + row_text(0, 3, 0, 0, 1, 0) +
                               row_text(0.5, 3, 0, 0, 1, 1) + row_text(kInf, 3, 0, 0, 1, 2);
  EXPECT_EQ(read_file("one/track_0001.dat"), expected);
  EXPECT_EQ(t.track_istep[3], 3);
  EXPECT_EQ(t.track_x[9], 3.0);
}

TEST(DeadEnd, SecondFamilyStaysInPlaceToo) {
  TempDir dir;
  Transport t;
  install(t, dead_end(), 3.0, 1.0, 1.0, 1.0, 3);
  txtest::capture_stdout([&] { t.MC_run_openMP("two", 0, 1); });
  const std::string expected = std::string(kHead) + row_text(0, 0, 0, 0, 0, 0) + row_text(0, 3, 0, 0, 9, 0) +
                               row_text(0.5, 3, 0, 0, 9, 1) + row_text(kInf, 3, 0, 0, 9, 2);
  EXPECT_EQ(read_file("two/track_0001.dat"), expected);
  EXPECT_EQ(t.ave_t[2], kInf);
}

// ---- selection ---------------------------------------------------------------------
// Molecule 0 has two columns of rate 0: the row 0/0 compares false everywhere and
// falls through to column 0. Molecule 1 returns by column 0 (rate 1) and has a
// zero-rate column 1 to molecule 2, which is never taken; only molecule 2 moves y.
Network zero_rates() {
  return {{{1, 0, 0, 0, 1, 0, 0, 0.0}, {2, 0, 0, 0, 0, 1, 0, 0.0}},
          {{0, 0, 0, 0, 0, 0, 1, 1.0}, {2, 0, 0, 0, 0, 1, 0, 0.0}},
          {{0, 0, 0, 0, 0, -5, 0, 1.0}}};
}

TEST(Selection, ZeroRateNeighborIsChosenOnlyAsColumnZeroByTheFallThrough) {
  TempDir dir;
  Transport t;
  install(t, zero_rates(), 1.0, 1.0, 1.0, 0.5, 6);
  for (int k = 0; k < 20; ++k) {
    t.MC_simulation_one(k, "run");
    // Hops alternate 0 -> 1 (x + 1) and 1 -> 0 (z + 1); y never moves.
    for (int s = 0; s <= 6; ++s) {
      EXPECT_EQ(t.track_x[3 * s + 0], static_cast<double>(s / 2 + 1));
      EXPECT_EQ(t.track_x[3 * s + 1], 0.0);
      EXPECT_EQ(t.track_x[3 * s + 2], static_cast<double>((s + 1) / 2));
    }
  }
  Transport second;
  install(second, zero_rates(), 1.0, 1.0, 1.0, 0.5, 6);
  txtest::capture_stdout([&] { second.MC_run_openMP("run2", 0, 20); });
  EXPECT_EQ(second.ave_x[3 * 6 + 1], 0.0);
  EXPECT_EQ(second.ave_x[3 * 6 + 0], 4.0);
}

// ---- large rates -------------------------------------------------------------------
// One molecule, one neighbor (its own image), rate 2^21/ns: dt = 2^-21 exactly and
// every sum of dt is exact. With tsnap 1 a row fires at the m-th hop after the last
// one when (m + 1) dt >= 1, i.e. m = 2^21 - 1:
//   row 0 at hop number 2^21 - 1 (istep 2^21 - 2), t = (2^21 - 2) dt;
//   row 1 another 2^21 - 1 hops on: istep 2^22 - 3, t = (2^22 - 3) dt.
TEST(LargeRates, MillionsOfHopsBetweenRows) {
  TempDir dir;
  const double k = 2097152.0;  // 2^21
  const Network net = {{{0, 1, 0, 0, 1.0, 0.0, 0.0, k}}};
  for (int family = 0; family < 2; ++family) {
    Transport t;
    install(t, net, 1.0, 1.0, 1.0, 1.0, 1);
    if (family == 0)
      t.MC_simulation_one(0, "run");
    else
      txtest::capture_stdout([&] { t.MC_run_openMP("run", 0, 1); });
    EXPECT_EQ(t.track_istep[0], 2097150) << family;
    EXPECT_EQ(t.track_t[0], 2097150.0 / k) << family;
    EXPECT_EQ(t.track_x[0], 2097151.0) << family;
    EXPECT_EQ(t.track_istep[1], 4194301) << family;
    EXPECT_EQ(t.track_t[1], 4194301.0 / k) << family;
  }
}

// ---- thin film -----------------------------------------------------------------------
// One molecule with three columns, film along b, one cell thick. The x cell index
// of a column is the column whose cy decides:
//   column 0: cx = -1, a negative column index, not allowed (rate 8, x - 1)
//   column 1: cx = 1 -> cy of column 1 = 0, cell 0: allowed (rate 1, x + 1)
//   column 2: cx = 5, past the three-column row, not allowed (rate 8, z + 1)
// So the walker only ever takes column 1, with dt = 1/1.
Network film_row() {
  return {{{0, -1, 0, 0, -1, 0, 0, 8.0}, {0, 1, 0, 0, 1, 0, 0, 1.0}, {0, 5, 0, 0, 0, 0, 1, 8.0}}};
}

void set_film(Transport& t, int dir, int ncell) {
  t.thinfilm_flag = 1;
  t.thinfilm_dir = dir;
  t.thinfilm_ncell = ncell;
}

TEST(ThinFilm, ColumnsWhoseLookUpFallsOutsideTheRowAreNotAllowed) {
  TempDir dir;
  Transport t;
  install(t, film_row(), 2.0, 1.0, 1.0, 1.0, 4);
  set_film(t, 1, 1);
  for (int k = 0; k < 10; ++k) {
    txtest::capture_stdout([&] { t.MC_simulation_one_thinfilm(k, "run"); });
    for (int s = 0; s <= 4; ++s) {
      EXPECT_EQ(t.track_x[3 * s], 2.0 * (s + 1));
      EXPECT_EQ(t.track_x[3 * s + 2], 0.0);
      EXPECT_EQ(t.track_t[s], static_cast<double>(s));
    }
  }
  Transport second;
  install(second, film_row(), 2.0, 1.0, 1.0, 1.0, 4);
  set_film(second, 1, 1);
  txtest::capture_stdout([&] { second.MC_run_openMP_thinfilm("run2", 0, 5); });
  EXPECT_EQ(second.ave_x[3 * 4], 10.0);
  EXPECT_EQ(second.ave_t[4], 4.0);
}

// Columns 0 and 2 allowed, column 1 (cell 5) not; rates 1, 1, 1, so ktot = 2 and
// p = 0.5, (0 as allocated), 0.5. The search starts at c = p[0]: at column 0 it
// chooses 0 when 0.5 > r, else adds p[1] = 0; column 1 is skipped; at column 2
// c is still 0.5, not above r, and p[3] would be next. Nothing chosen: column 0.
// Column 2 is never taken, although its rate counts in ktot: dt = 1/2.
TEST(ThinFilm, SearchAddsTheNextColumnWhetherAllowedOrNot) {
  TempDir dir;
  Transport t;
  const Network net = {{{0, 0, 0, 0, 1, 0, 0, 1.0}, {0, 1, 5, 0, 0, 0, 1, 1.0}, {0, 2, 0, 0, 0, 0, 1, 1.0}}};
  install(t, net, 1.0, 1.0, 1.0, 0.5, 5);
  set_film(t, 1, 1);
  txtest::capture_stdout([&] { t.MC_run("run", 0, 10); });
  for (int s = 0; s <= 5; ++s) {
    EXPECT_EQ(t.ave_x[3 * s], static_cast<double>(s + 1));
    EXPECT_EQ(t.ave_x[3 * s + 2], 0.0);
    EXPECT_EQ(t.ave_t[s], 0.5 * s);
  }
}

// Nothing allowed: ktot 0, dt infinite, and the walk takes column 0 (`first`).
TEST(ThinFilm, NothingAllowedTakesColumnZeroWithInfiniteTime) {
  TempDir dir;
  Transport t;
  install(t, film_row(), 2.0, 1.0, 1.0, 1.0, 2);
  set_film(t, 1, 0);  // zero cells: no column passes
  txtest::capture_stdout([&] { t.MC_simulation_one_thinfilm(0, "run"); });
  EXPECT_EQ(t.track_x[0], -2.0);
  EXPECT_EQ(t.track_t[0], 0.0);
  EXPECT_EQ(t.track_t[1], kInf);
  EXPECT_EQ(t.track_x[3], -4.0);
}

TEST(ThinFilm, DisplacementMovesTheCellWindow) {
  TempDir dir;
  Transport t;
  // Film along a, 2 cells. Column 0 (+1 along a, cx 0 -> itself, cell 0 + x) and
  // column 1 (-1 along a, cx 0 -> column 0's cell too). At x = 0 and x = 1 the
  // window test on column 0's cell gives cells 0 and 1: both allowed, ktot =
  // 1 + 1e-300 = 1 and column 0 is taken; at x = 2, cell 2: neither allowed, dt
  // infinite, and column 0 is taken anyway. tsnap 0.5: every hop is a row.
  const Network net = {{{0, 0, 0, 0, 1, 0, 0, 1.0}, {0, 0, 0, 0, -1, 0, 0, 1e-300}}};
  install(t, net, 1.0, 1.0, 1.0, 0.5, 3);
  set_film(t, 0, 2);
  txtest::capture_stdout([&] { t.MC_simulation_one_thinfilm(0, "run"); });
  EXPECT_EQ(std::vector<double>({t.track_x[0], t.track_x[3], t.track_x[6], t.track_x[9]}),
            (std::vector<double>{1.0, 2.0, 3.0, 4.0}));
  EXPECT_EQ(std::vector<double>({t.track_t[0], t.track_t[1], t.track_t[2], t.track_t[3]}),
            (std::vector<double>{0.0, 1.0, 2.0, kInf}));
}

TEST(ThinFilm, DirectionOutsideTheAxesIsFatal) {
  TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    install(t, film_row(), 2.0, 1.0, 1.0, 1.0, 2);
    set_film(t, 3, 1);
    t.MC_simulation_one_thinfilm(0, "run");
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
  EXPECT_EQ(r.err, "MC: thinfilm dir (3) not in range [0-2]\n");
}

// ---- dispatch of the two-argument MC_run_openMP -----------------------------------

TEST(Dispatch, ThinFilmFlagSelectsTheConfinedWalker) {
  TempDir dir;
  Transport t;
  install(t, film_row(), 2.0, 1.0, 1.0, 1.0, 4, 3);
  set_film(t, 1, 1);
  txtest::capture_stdout([&] { t.MC_run_openMP("film", 0); });
  EXPECT_EQ(t.ave_x[3 * 4], 10.0);  // only column 1
  EXPECT_TRUE(txtest::path_exists("film/track_0003.dat"));
}

TEST(Dispatch, OneArgumentFormIgnoresTheThinFilm) {
  TempDir dir;
  DeviceSeeds seeds(5);
  Transport t;
  install(t, film_row(), 2.0, 1.0, 1.0, 0.01, 4, 3);
  set_film(t, 1, 1);
  txtest::capture_stdout([&] { t.MC_run_openMP("free"); });
  // Unconfined, ktot = 17 and dt = 1/17; every hop is a row at tsnap 0.01. The
  // confined walk would have dt = 1.
  EXPECT_EQ(t.track_t[1], 1.0 / 17.0);
  EXPECT_EQ(g_seed_draws, 3);
}

// Mode 1 with a constant V^2 buffer of 4 and w0_no_V of 0.5: every rate is 2,
// against a static w0 of 1. The walker draws a phase per column, then one number
// for the selection.
void install_dyn_mode1(Transport& t, const Network& net, double tsnap, int nsnap) {
  install(t, net, 1.0, 1.0, 1.0, tsnap, nsnap, 2);
  t.V_dynamic_disorder = true;
  t.unique_2mol_calc_flag = false;
  t.dyn_disorder_mode = 1;
  t.dyn_buffer_size = 8;
  t.dyn_V_count = {{4}};
  t.dyn_V_dt = 1.0;
  const int n = t.nmols_uc;
  t.w0_no_V = new double*[n];
  t.w0_no_V_rows_allocated = n;
  t.dyn_V2_buffer_full.assign(n, {});
  for (int i = 0; i < n; ++i) {
    const int nn = t.nneighbors[i];
    t.w0_no_V[i] = new double[std::max(nn, 1)];
    for (int j = 0; j < nn; ++j) t.w0_no_V[i][j] = 0.5;
    t.dyn_V2_buffer_full[i].assign(nn, std::vector<double>(8, 4.0));
  }
}

TEST(Dispatch, DynamicFlagSelectsTheDynamicWalker) {
  TempDir dir;
  Transport t;
  const Network net = {{{0, 1, 0, 0, 1, 0, 0, 1.0}}};
  install_dyn_mode1(t, net, 0.25, 2);
  txtest::capture_stdout([&] { t.MC_run_openMP("dyn", 0); });
  EXPECT_EQ(t.track_t[2], 1.0);  // dt = 1/2 from the buffers, not 1 from w0
  EXPECT_TRUE(txtest::path_exists("dyn/track_0002.dat"));
}

TEST(DynamicWalker, DrawsOnePhasePerColumnThenOneForTheSelection) {
  TempDir dir;
  // Two molecules; molecule 0 has three columns, molecule 1 one. Rates through the
  // buffers are all 2, so the choice follows the (nn + 1)-th draw of each hop.
  const Network net = {{{1, 0, 0, 0, 1, 0, 0, 1.0}, {1, 0, 0, 0, 0, 1, 0, 1.0}, {1, 0, 0, 0, 0, 0, 1, 1.0}},
                       {{0, 0, 0, 0, 0, 0, 0, 1.0}}};
  for (std::uint32_t seed = 1; seed <= 5; ++seed) {
    Transport t;
    install_dyn_mode1(t, net, 0.3, 12);
    {
      DeviceSeeds seeds(seed);
      txtest::capture_stdout([&] { t.MC_run_openMP_dyn_disorder("dyn", 0, 1); });
    }
    // Rebuild the path hop by hop: from 0, p = 1/3 each and dt = 1/6; from 1, dt = 1/2.
    std::mt19937 g(seed);
    auto u = [&g] { return static_cast<double>(g()) * 2.3283064365386963e-10; };
    double x[3] = {0, 0, 0};
    int cur = 0, snap = 0;
    double since = 0.0, tt = 0.0;
    int istep = 0;
    while (snap <= 12) {
      const int nn = cur == 0 ? 3 : 1;
      for (int j = 0; j < nn; ++j) u();
      const double r = u();
      double dt;
      if (cur == 0) {
        const int col = r < 1.0 / 3.0 ? 0 : (r < 2.0 / 3.0 ? 1 : 2);
        x[col] += 1.0;
        dt = 1.0 / 6.0;
        cur = 1;
      } else {
        dt = 0.5;
        cur = 0;
      }
      since += dt;
      if (dt >= 0.3 - since) {
        EXPECT_EQ(t.track_istep[snap], istep) << seed << " " << snap;
        EXPECT_DOUBLE_EQ(t.track_t[snap], tt) << seed << " " << snap;
        for (int a = 0; a < 3; ++a) EXPECT_EQ(t.track_x[3 * snap + a], x[a]) << seed << " " << snap;
        since = 0.0;
        ++snap;
      }
      tt += dt;
      ++istep;
    }
  }
}

// ---- physics: a one-dimensional chain ------------------------------------------------
// One molecule per cell, neighbors at cells -1 and +1 along a = 3 angstrom, both at
// k = 2/ns: a symmetric random walk of step a with dt = 1/(2k) = 0.25 ns. The m-th
// hop after a row is a row when dt >= tsnap - m dt, i.e. (m + 1) dt >= tsnap; with
// tsnap 2.5 that is every 9th hop, so row s holds the position after n = 9(s + 1) hops at the time before the last of
// them, t = (n - 1) dt. The mean squared displacement after n hops is n a^2 =
// 2 k a^2 (t + dt); its variance for one walk is a^4 (2n^2 - 2n), so the mean over M
// walks has the standard error a^2 sqrt((2n^2 - 2n)/M). Tolerance: 4 standard errors.
Network chain(double k) { return {{{0, -1, 0, 0, -1, 0, 0, k}, {0, 1, 0, 0, 1, 0, 0, k}}}; }

void expect_diffusive(const Transport& t, double k, double a, double cell_r2_scale, int M) {
  const double dt = 1.0 / (2.0 * k);
  for (int s = 0; s <= t.nsnap; ++s) {
    const double n = 9.0 * (s + 1);
    EXPECT_EQ(t.ave_t[s], (n - 1.0) * dt) << s;
    const double msd = t.ave_r2[s] * cell_r2_scale;
    const double expected = 2.0 * k * a * a * (t.ave_t[s] + dt);
    const double se = a * a * std::sqrt((2.0 * n * n - 2.0 * n) / M);
    EXPECT_NEAR(msd, expected, 4.0 * se) << "row " << s;
  }
}

TEST(Physics, ChainMeanSquaredDisplacementIsTwoKaSquaredTimesTime) {
  TempDir dir;
  const double k = 2.0, a = 3.0;
  const int M = 1000;
  {
    DeviceSeeds seeds(1000);
    Transport t;
    install(t, chain(k), a, 1.0, 1.0, 2.5, 10);
    txtest::capture_stdout([&] { t.MC_run_openMP("second", 0, M); });
    expect_diffusive(t, k, a, 1.0, M);  // r2 in angstrom^2
  }
  {
    FirstFamilySeeds seeds(5000);
    Transport t;
    install(t, chain(k), a, 1.0, 1.0, 2.5, 10);
    txtest::capture_stdout([&] { t.MC_run("first", 0, M); });
    expect_diffusive(t, k, a, a * a, M);  // r2 in cells^2
  }
}

// ---- batch jobs -----------------------------------------------------------------------
// Two jobs of two trajectories each (separate processes in practice, separate
// objects here) against one job of four. With the trajectory seeds fixed by index,
// track_0001.dat to track_0004.dat are byte for byte the same: a trajectory depends
// only on its index and the network. track_total.dat is not: each job averages its
// own trajectories, so the second job's file is the average of trajectories 3 and 4.
TEST(BatchSplit, TwoHalvesNumberAndFillTheTrackFilesAsOneRun) {
  TempDir dir;
  FirstFamilySeeds seeds;
  const Network net = {{{1, 0, 0, 0, 0.5, 0, 0, 1.0}, {1, -1, 0, 0, -0.5, 0, 0, 3.0}},
                       {{0, 1, 0, 0, 0.5, 0, 0, 2.0}, {0, 0, 0, 0, -0.5, 0, 0, 2.0}}};
  auto job = [&](const char* where, int start, int n) {
    Transport t;
    install(t, net, 2.0, 1.0, 1.0, 1.0, 6);
    txtest::capture_stdout([&] { t.MC_run(where, start, n); });
  };
  job("whole", 0, 4);
  job("split", 0, 2);
  job("split", 2, 2);
  bool paths_differ = false;
  for (int k = 1; k <= 4; ++k) {
    const std::string name = formatString("/track_%04d.dat", k);
    EXPECT_EQ(read_file("whole" + name), read_file("split" + name)) << k;
    paths_differ = paths_differ || read_file("whole" + name) != read_file("whole/track_0001.dat");
  }
  EXPECT_TRUE(paths_differ);
  EXPECT_FALSE(txtest::path_exists("split/track_0005.dat"));
  const auto t3 = track_rows("whole/track_0003.dat");
  const auto t4 = track_rows("whole/track_0004.dat");
  const auto total = track_rows("split/track_total.dat");
  for (size_t row = 1; row < total.size(); ++row) {
    EXPECT_EQ(static_cast<int>(total[row][5]), (static_cast<int>(t3[row][5]) + static_cast<int>(t4[row][5])) / 2);
    const double mean_x = 0.5 * (t3[row][1] + t4[row][1]);
    EXPECT_NEAR(total[row][1], mean_x, 1e-5 * (1.0 + std::fabs(mean_x)));
  }
}

// ---- the fast walker against the plain one -----------------------------------------
// MC_run_openMP caches each molecule's cumulative row and residence time; the
// reference above recomputes them on every hop. Same seeds, bit-identical tracks.
Network random_network(std::uint32_t seed, const std::vector<int>& widths) {
  std::mt19937 g(seed);
  std::uniform_real_distribution<double> rate(0.1, 10.0), step(-1.0, 1.0);
  const int n = static_cast<int>(widths.size());
  Network net(n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < widths[i]; ++j)
      net[i].push_back({static_cast<int>(g() % n), 0, 0, 0, step(g), step(g), step(g), rate(g)});
  return net;
}

void compare_with_reference(const Network& net, double tsnap, int nsnap, std::uint32_t first_seed, int runs) {
  TempDir dir;
  Transport t;
  install(t, net, 1.0, 1.0, 1.0, tsnap, nsnap);
  // A triclinic cell, so that the Cartesian sums have all their terms.
  const double f2c[3][3] = {{5.1, 0.7, -0.3}, {0.0, 6.2, 1.1}, {0.0, 0.0, 7.3}};
  std::memcpy(t.latt_f2c, f2c, sizeof f2c);
  for (int k = 0; k < runs; ++k) {
    {
      DeviceSeeds seeds(first_seed + k);
      txtest::capture_stdout([&] { t.MC_run_openMP("run", 0, 1); });
    }
    const Track ref = reference_walk(net, f2c, tsnap, nsnap, first_seed + k);
    const size_t m = nsnap + 1;
    EXPECT_TRUE(same_bits(t.track_istep, ref.istep.data(), m * sizeof(int))) << k;
    EXPECT_TRUE(same_bits(t.track_t, ref.t.data(), m * sizeof(double))) << k;
    EXPECT_TRUE(same_bits(t.track_x, ref.x.data(), 3 * m * sizeof(double))) << k;
    EXPECT_TRUE(same_bits(t.track_r2, ref.r2.data(), m * sizeof(double))) << k;
  }
}

TEST(FastWalker, EqualsThePlainWalkBitForBit) {
  // Rows of 14 (the count search), 40 (the binary search), 3 and 1.
  compare_with_reference(random_network(7, {14, 14, 40, 3, 14, 1}), 0.9, 60, 100, 12);
}

TEST(FastWalker, EqualsThePlainWalkOnRowsThatAreNotMonotone) {
  Network net = random_network(8, {14, 14, 5, 14});
  net[2][1].rate = -3.0;  // cumulative row goes down: the linear search
  net[1][4].rate = 0.0;
  net[3][13].rate = 0.0;  // a zero last column
  compare_with_reference(net, 0.5, 40, 200, 10);
}

TEST(FastWalker, EqualsThePlainWalkWithZeroRowsAndDeadEnds) {
  Network net = random_network(9, {14, 14, 14, 14, 0});
  for (Column& c : net[3]) c.rate = 0.0;  // 0/0 row: the fall-through, dt infinite
  compare_with_reference(net, 0.5, 30, 300, 10);
}

}  // namespace
