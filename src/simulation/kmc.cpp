// Transport: the kinetic Monte Carlo walkers and the MC_run forms.
//
// A carrier starts on molecule 0 and hops to a neighbor with probability
// proportional to the hop rate; the time of a hop is the mean residence time
// 1/ktot of the molecule it leaves, so a trajectory's clock is fixed by its path.
// Two families: the first draws from the process-wide ran2 stream and reseeds it
// from the clock per trajectory; the second gives every trajectory its own
// Mersenne twister seeded from the random device. Both run their trajectories
// one after another.
//
// Decisions where the walk would otherwise read outside its rows:
// - A molecule without neighbors keeps the carrier in place: no displacement,
//   `cur` unchanged, dt = 1/0 = inf. Every later hop is the same, so each fires a
//   snapshot and the trajectory ends with the remaining rows at t = inf.
// - In the thin film, a column whose x cell index k (used as a column index into
//   the same root's cell rows) is negative or not below nneighbors[cur] is not
//   allowed.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "transport.h"

// Seams for tests. Null hooks give the production behaviour: the clock seeding
// of init_random_seed for the first family, and one std::random_device("default")
// draw per fresh Mersenne twister for the second family and dynamic disorder.
namespace kmc_seam {
using TrajectorySeeder = void (*)(int itraj);
using DeviceSeedSource = std::uint32_t (*)();
namespace {
TrajectorySeeder trajectory_seeder = nullptr;
DeviceSeedSource device_seed_source = nullptr;
}  // namespace

TrajectorySeeder set_trajectory_seeder(TrajectorySeeder f) {
  TrajectorySeeder old = trajectory_seeder;
  trajectory_seeder = f;
  return old;
}

DeviceSeedSource set_device_seed_source(DeviceSeedSource f) {
  DeviceSeedSource old = device_seed_source;
  device_seed_source = f;
  return old;
}

// One 32-bit seed; the device lives only for this draw.
std::uint32_t device_seed() {
  if (device_seed_source) return device_seed_source();
  std::random_device device("default");
  return static_cast<std::uint32_t>(device());
}
}  // namespace kmc_seam

namespace {

// One engine output scaled by 2^-32; the guard keeps the value below 1. The
// output has 32 bits, so going through uint32_t changes no value and spares the
// conversion of a full unsigned 64-bit word.
struct MtUniform {
  std::mt19937 engine;
  explicit MtUniform(std::uint32_t seed) : engine(seed) {}
  double operator()() {
    double u = static_cast<double>(static_cast<std::uint32_t>(engine())) * 2.3283064365386963e-10;
    if (u >= 1.0) u = 0.9999999999999999;
    return u;
  }
};

struct RanUniform {
  double operator()() { return randUniform(); }
};

// The hop counter wraps instead of overflowing; trajectories are unbounded in hops.
inline int wrap_int(unsigned v) { return static_cast<int>(v); }
inline int wrap_add(int a, int b) { return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b)); }

// Chooses the column for the cumulative row of a plain walker: the first j with
// c > r, c the running sum p[0] + ... + p[j]; when rounding leaves the sum short
// of r the choice falls through to column 0, the nearest neighbor.
inline int select_column(const double* p, int nn, double r) {
  double c = p[0];
  for (int j = 0;; ++j) {
    if (c > r) return j;
    if (j == nn - 1) return 0;
    c += p[j + 1];
  }
}

// Walker state and the common tail of every hop: move, clock, snapshot, end.
struct Walker {
  Transport& T;
  int cur = 0;
  double x = 0.0, y = 0.0, z = 0.0;  // fractional displacement, cells
  double t = 0.0;                    // ns
  double since_snap = 0.0;           // ns
  unsigned istep = 0;
  int snap = 0;
  bool cartesian_r2;

  Walker(Transport& tr, bool cart) : T(tr), cartesian_r2(cart) {}

  void record() {
    T.track_istep[snap] = wrap_int(istep);
    T.track_t[snap] = t;
    const double f[3] = {x, y, z};
    double* c = T.track_x + 3 * snap;
    mat_vec_mul(T.latt_f2c, f, c);
    T.track_r2[snap] = cartesian_r2 ? c[0] * c[0] + c[1] * c[1] + c[2] * c[2] : x * x + y * y + z * z;
  }

  // The common tail of every hop: displacement (none when staying), clock,
  // snapshot, end. Returns false once the last snapshot is filled. The snapshot
  // test compares dt with tsnap minus a since_snap that already holds dt, so a row
  // is taken one hop before the plain threshold; deliberate, the time axis of the
  // track files is built on it.
  bool move(const double* d, int next, double dt) {
    x += d[0];
    y += d[1];
    z += d[2];
    cur = next;
    return tick(dt);
  }
  bool stay(double dt) { return tick(dt); }

  bool tick(double dt) {
    since_snap += dt;
    if (dt >= T.tsnap - since_snap && snap <= T.nsnap) {
      record();
      since_snap = 0.0;
      ++snap;
    }
    if (snap == T.nsnap + 1) return false;
    t += dt;
    ++istep;
    return true;
  }
};

int largest_row(const Transport& T) {
  int m = 0;
  for (int i = 0; i < T.nmols_uc; ++i) m = std::max(m, T.nneighbors[i]);
  return m;
}

void check_nsnap(const Transport& T) {
  if (T.nsnap < 0) TX_FATAL(txunit::transport, 1, stderr, "MC: nsnap (%d) is negative\n", T.nsnap);
}

void check_film_dir(const Transport& T) {
  if (T.thinfilm_dir < 0 || T.thinfilm_dir > 2)
    TX_FATAL(txunit::transport, 1, stderr, "MC: thinfilm dir (%d) not in range [0-2]\n", T.thinfilm_dir);
}


// Scratch rows of one trajectory. The probability row starts at zero for every
// trajectory, so no trajectory depends on another; in the thin film its stale
// entries then carry over from hop to hop only.
struct Rows {
  std::vector<double> p;
  std::vector<char> allowed;
  std::vector<double> phase;
  std::vector<double> rates;
  explicit Rows(int n) : p(std::max(n, 1), 0.0), allowed(std::max(n, 1), 0), phase(std::max(n, 1), 0.0),
                         rates(std::max(n, 1), 0.0) {}
};

// One hop of the plain walker on the row `rates` of the current root, the
// normalised row recomputed as the reference form does.
template <class Uniform>
bool plain_hop(Walker& w, const double* rates, Rows& rows, Uniform& uniform) {
  const int nn = w.T.nneighbors[w.cur];
  double ktot = 0.0;
  if (nn < 1) {
    uniform();  // drawn and discarded, as for any hop
    return w.stay(1.0 / ktot);
  }
  double* p = rows.p.data();
  for (int j = 0; j < nn; ++j) ktot += rates[j];
  for (int j = 0; j < nn; ++j) p[j] = rates[j] / ktot;
  const int col = select_column(p, nn, uniform());
  return w.move(w.T.neighbor_df[w.cur] + 3 * col, w.T.neighbor_id[w.cur][col], 1.0 / ktot);
}

// One hop of the thin-film walker. Entries of p at columns not allowed now keep
// what they last held, and the selection adds them in as it walks the row.
template <class Uniform>
bool film_hop(Walker& w, const double* rates, Rows& rows, Uniform& uniform) {
  Transport& T = w.T;
  const int cur = w.cur;
  const int nn = T.nneighbors[cur];
  double ktot = 0.0;
  if (nn < 1) {
    uniform();
    return w.stay(1.0 / ktot);
  }
  const int dir = T.thinfilm_dir;
  const double disp = dir == 0 ? w.x : (dir == 1 ? w.y : w.z);
  const int* cell = dir == 0 ? T.neighbor_cx[cur] : (dir == 1 ? T.neighbor_cy[cur] : T.neighbor_cz[cur]);
  double* p = rows.p.data();
  char* allowed = rows.allowed.data();
  int first = -1;
  for (int j = 0; j < nn; ++j) {
    // The x cell index of the column serves as a column index into the same
    // root's cell rows: the program's own double look-up, kept. An index outside
    // the row makes the column not allowed.
    const int k = T.neighbor_cx[cur][j];
    bool ok = false;
    if (k >= 0 && k < nn) {
      // Truncated toward zero as the int cut would, without converting.
      const double c = std::trunc(static_cast<double>(cell[k]) + disp);
      ok = c >= 0.0 && c < static_cast<double>(T.thinfilm_ncell);
    }
    allowed[j] = ok;
    if (ok) {
      ktot += rates[j];
      if (first < 0) first = j;
    }
  }
  if (first < 0) first = 0;
  for (int j = 0; j < nn; ++j)
    if (allowed[j]) p[j] = rates[j] / ktot;
  const double r = uniform();
  double c = p[first];
  int col = -1;
  for (int j = 0; j < nn && col < 0; ++j) {
    if (!allowed[j]) continue;
    if (c > r)
      col = j;
    else if (j + 1 < nn)
      c += p[j + 1];  // added whether or not j+1 is allowed; p[nn] would be ignored
  }
  if (col < 0) col = first;
  return w.move(T.neighbor_df[cur] + 3 * col, T.neighbor_id[cur][col], 1.0 / ktot);
}

// How many of c[0..n-1] are <= r; NaN entries count as not. Two at a time
// where SSE2 is there, which is every x86-64.
inline int count_at_most(const double* c, int n, double r) {
  int j = 0;
  long long k = 0;
#if defined(__SSE2__)
  const __m128d rv = _mm_set1_pd(r);
  __m128i acc = _mm_setzero_si128();
  for (; j + 2 <= n; j += 2) acc = _mm_sub_epi64(acc, _mm_castpd_si128(_mm_cmple_pd(_mm_loadu_pd(c + j), rv)));
  long long lanes[2];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), acc);
  k = lanes[0] + lanes[1];
#endif
  for (; j < n; ++j) k += c[j] <= r;
  return static_cast<int>(k);
}

// Static per-molecule data of the plain walker of the second family, built once
// per run from the run's copy of the rates: the cumulative normalised row, the
// residence time, targets and displacements, flat. Each value is the same
// arithmetic on the same data in the same order as the per-hop recomputation, so
// the walk is bit for bit the reference walk.
struct HopTable {
  struct Mol {
    int start;    // first column in the flat rows
    int nn;       // columns
    double dt;    // ns, 1/ktot
    bool sorted;  // cumulative row non-decreasing (no NaN)
  };
  struct Col {
    double dx, dy, dz;  // fractional displacement
    int next;           // target molecule
  };
  std::vector<Mol> mol;
  std::vector<double> cum;  // contiguous per molecule, for the search
  std::vector<Col> col;

  explicit HopTable(const Transport& T) {
    const int n = T.nmols_uc;
    mol.resize(n);
    int keys = 0;
    for (int i = 0; i < n; ++i) {
      mol[i].start = keys;
      mol[i].nn = std::max(T.nneighbors[i], 0);
      keys += mol[i].nn;
    }
    cum.resize(keys);
    col.resize(keys);
    for (int i = 0; i < n; ++i) {
      const int nn = mol[i].nn;
      const double* w = T.w0[i];
      double ktot = 0.0;
      for (int j = 0; j < nn; ++j) ktot += w[j];
      double* c = cum.data() + mol[i].start;
      bool up = true;
      for (int j = 0; j < nn; ++j) {
        const double p = w[j] / ktot;
        c[j] = j == 0 ? p : c[j - 1] + p;
        if (j > 0 && !(c[j - 1] <= c[j])) up = false;
        const double* d = T.neighbor_df[i] + 3 * j;
        col[mol[i].start + j] = Col{d[0], d[1], d[2], T.neighbor_id[i][j]};
      }
      mol[i].dt = 1.0 / ktot;
      mol[i].sorted = up;
    }
  }

  // The first column with cum > r, or column 0 when there is none. On a
  // non-decreasing row that column is the count of entries <= r, found without
  // branches for short rows and by bisection for long ones.
  int select(const Mol& m, double r) const {
    const double* c = cum.data() + m.start;
    const int nn = m.nn;
    int k;
    if (!m.sorted) {
      k = 0;
      while (k < nn && !(c[k] > r)) ++k;
    } else if (nn <= 32) {
      k = count_at_most(c, nn, r);
    } else {
      k = static_cast<int>(std::upper_bound(c, c + nn, r) - c);
    }
    return k < nn ? k : 0;
  }
};

// The walk of the plain walker of the second family on the cached table, the
// arithmetic of Walker::move and Walker::tick. Numbers are drawn from the
// trajectory's own engine in blocks, in the order the hops use them; numbers left
// over when the walk ends are never looked at, and the engine ends with the
// trajectory, so the walk is the same as with one draw per hop. The inner loop
// runs until a row is due, with no call in it, so the state stays in registers.
// Between rows the end test cannot change (snap only grows at a row), so it is
// made at the rows alone.
template <class Uniform>
void run_cached(Walker& w, const HopTable& h, Uniform& uniform) {
  constexpr int kBlock = 256;
  double block[kBlock];
  int used = kBlock;
  const double tsnap = w.T.tsnap;
  const int nsnap = w.T.nsnap;
  const HopTable::Mol* mol = h.mol.data();
  const HopTable::Col* col = h.col.data();
  int cur = w.cur;
  double x = w.x, y = w.y, z = w.z, t = w.t, since = w.since_snap;
  unsigned istep = w.istep;
  for (;;) {
    double dt = 0.0;
    bool row = false;
    while (!row) {
      if (used == kBlock) {
        for (double& r : block) r = uniform();
        used = 0;
      }
      const HopTable::Mol& m = mol[cur];
      const double r = block[used++];
      dt = m.dt;
      if (m.nn > 0) {
        const HopTable::Col& c = col[m.start + h.select(m, r)];
        x += c.dx;
        y += c.dy;
        z += c.dz;
        cur = c.next;
      }
      since += dt;
      row = dt >= tsnap - since;
      if (!row) {
        t += dt;
        ++istep;
      }
    }
    w.istep = istep;
    w.t = t;
    w.x = x;
    w.y = y;
    w.z = z;
    w.record();
    since = 0.0;
    if (++w.snap == nsnap + 1) break;
    t += dt;
    ++istep;
  }
  w.cur = cur;
  w.istep = istep;
  w.t = t;
  w.since_snap = since;
}

// Sums over the trajectories of one run of the second family; the hop counter
// has none.
struct RunSums {
  std::vector<double> t, x, r2;
  explicit RunSums(int nsnap) : t(nsnap + 1, 0.0), x(3 * (nsnap + 1), 0.0), r2(nsnap + 1, 0.0) {}
  void add(const Transport& T) {
    for (int s = 0; s <= T.nsnap; ++s) {
      t[s] += T.track_t[s];
      for (int a = 0; a < 3; ++a) x[3 * s + a] += T.track_x[3 * s + a];
      r2[s] += T.track_r2[s];
    }
  }
};

void add_track_to_ave(Transport& T) {
  for (int s = 0; s <= T.nsnap; ++s) {
    T.ave_istep[s] = wrap_add(T.ave_istep[s], T.track_istep[s]);
    T.ave_t[s] += T.track_t[s];
    for (int a = 0; a < 3; ++a) T.ave_x[3 * s + a] += T.track_x[3 * s + a];
    T.ave_r2[s] += T.track_r2[s];
  }
}

void divide_ave(Transport& T, int n) {
  const double dn = static_cast<double>(n);
  for (int s = 0; s <= T.nsnap; ++s) {
    T.ave_t[s] /= dn;
    for (int a = 0; a < 3; ++a) T.ave_x[3 * s + a] /= dn;
    T.ave_r2[s] /= dn;
  }
}

// End of a run of the second family: private sums into ave_*, averages, and an
// istep column of zeros, as its runs keep no hop sum.
void finish_second_family(Transport& T, const RunSums& sums, const char* dir, int n) {
  for (int s = 0; s <= T.nsnap; ++s) {
    T.ave_t[s] += sums.t[s];
    for (int a = 0; a < 3; ++a) T.ave_x[3 * s + a] += sums.x[3 * s + a];
    T.ave_r2[s] += sums.r2[s];
  }
  // n = 0 divides the doubles by zero and leaves NaN rows; no integer is divided.
  divide_ave(T, n);
  for (int s = 0; s <= T.nsnap; ++s) T.ave_istep[s] = 0;
  T.output_track_ave(dir, T.ave_t, T.ave_x, T.ave_r2, T.ave_istep);
  std::printf("All data are in directory: %s\n", dir);
}

void seed_first_family(int itraj) {
  if (kmc_seam::trajectory_seeder)
    kmc_seam::trajectory_seeder(itraj);
  else
    init_random_seed();
}

// The run's private copy of the rates, one flat row per root.
std::vector<std::vector<double>> copy_rates(const Transport& T) {
  std::vector<std::vector<double>> c(T.nmols_uc);
  for (int i = 0; i < T.nmols_uc; ++i)
    if (T.nneighbors[i] > 0) c[i].assign(T.w0[i], T.w0[i] + T.nneighbors[i]);
  return c;
}

}  // namespace

// ---- first family ---------------------------------------------------------------

void Transport::MC_simulation_one(int itraj, const char* dir) {
  MC_init();
  check_nsnap(*this);
  seed_first_family(itraj);
  Rows rows(largest_row(*this));
  Walker w(*this, false);
  RanUniform uniform;
  while (plain_hop(w, w0[w.cur], rows, uniform)) {
  }
  output_track(dir, itraj + 1, track_t, track_x, track_r2, track_istep);
  add_track_to_ave(*this);
}

void Transport::MC_simulation_one_thinfilm(int itraj, const char* dir) {
  MC_init();
  check_nsnap(*this);
  check_film_dir(*this);
  std::printf("MC simulation (%d)...\n", itraj + 1);
  seed_first_family(itraj);
  Rows rows(largest_row(*this));
  Walker w(*this, false);
  RanUniform uniform;
  while (film_hop(w, w0[w.cur], rows, uniform)) {
  }
  output_track(dir, itraj + 1, track_t, track_x, track_r2, track_istep);
  add_track_to_ave(*this);
}

void Transport::MC_run(const char* dir, int start, int n) {
  MC_init();
  // The average divides the hop counts by n as integers; with no trajectory there
  // is nothing to average, so the run stops before writing anything.
  if (n < 1) TX_FATAL(txunit::transport, 1, stderr, "MC_run: no trajectories to average (n = %d)\n", n);
  for (int k = 0; k < n; ++k) {
    if (thinfilm_flag)
      MC_simulation_one_thinfilm(start + k, dir);
    else
      MC_simulation_one(start + k, dir);
  }
  divide_ave(*this, n);
  for (int s = 0; s <= nsnap; ++s) ave_istep[s] /= n;
  output_track_ave(dir, ave_t, ave_x, ave_r2, ave_istep);
  std::printf("All data are in directory: %s\n", dir);
}

void Transport::MC_run(const char* dir, int start) { MC_run(dir, start, nsimu); }

// ---- second family ----------------------------------------------------------------
// `start` is not used by this family: its files are numbered from 1.

void Transport::MC_run_openMP(const char* dir, int /*start*/, int n) {
  MC_init();
  check_nsnap(*this);
  std::printf("MC simulation...\n");
  const HopTable table(*this);
  RunSums sums(nsnap);
  for (int k = 0; k < n; ++k) {
    MtUniform uniform(kmc_seam::device_seed());
    Walker w(*this, true);
    run_cached(w, table, uniform);
    output_track(dir, k + 1, track_t, track_x, track_r2, track_istep);
    sums.add(*this);
  }
  finish_second_family(*this, sums, dir, n);
}

void Transport::MC_run_openMP(const char* dir) { MC_run_openMP(dir, 0, nsimu); }

void Transport::MC_run_openMP(const char* dir, int start) {
  if (thinfilm_flag)
    MC_run_openMP_thinfilm(dir, start, nsimu);
  else if (!V_dynamic_disorder && !HOMOLUMO_dynamic_disorder)
    MC_run_openMP(dir, start, nsimu);
  else
    MC_run_openMP_dyn_disorder(dir, start, nsimu);
}

void Transport::MC_run_openMP_dyn_disorder(const char* dir, int /*start*/, int n) {
  MC_init();
  check_nsnap(*this);
  std::printf("MC simulation...\n");
  RunSums sums(nsnap);
  const int width = largest_row(*this);
  for (int k = 0; k < n; ++k) {
    MtUniform uniform(kmc_seam::device_seed());
    Rows rows(width);
    Walker w(*this, true);
    for (;;) {
      const int nn = nneighbors[w.cur];
      for (int j = 0; j < nn; ++j) rows.phase[j] = uniform();
      dyn_disorder_calc_w0(w.t, rows.phase.data(), rows.rates.data(), w.cur);
      if (!plain_hop(w, rows.rates.data(), rows, uniform)) break;
    }
    output_track(dir, k + 1, track_t, track_x, track_r2, track_istep);
    sums.add(*this);
  }
  finish_second_family(*this, sums, dir, n);
}

void Transport::MC_run_openMP_thinfilm(const char* dir, int /*start*/, int n) {
  MC_init();
  check_nsnap(*this);
  check_film_dir(*this);
  std::printf("MC simulation...\n");
  const std::vector<std::vector<double>> rates = copy_rates(*this);
  RunSums sums(nsnap);
  const int width = largest_row(*this);
  for (int k = 0; k < n; ++k) {
    MtUniform uniform(kmc_seam::device_seed());
    Rows rows(width);
    Walker w(*this, true);
    while (film_hop(w, rates[w.cur].data(), rows, uniform)) {
    }
    output_track(dir, k + 1, track_t, track_x, track_r2, track_istep);
    sums.add(*this);
  }
  finish_second_family(*this, sums, dir, n);
}
