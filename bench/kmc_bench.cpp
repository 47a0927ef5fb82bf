// Kinetic Monte Carlo on a real crystal's network: ibuprofen (COD 2300214), four
// molecules of 14 neighbors each at the default cutoff, read as a run reads it
// (control file, molecule separation, centres of mass, neighbor search). Rates
// are synthetic, 200/ns times exp(-r / 2 angstrom) by centre-of-mass distance, so
// a molecule's rates differ as real ones do. One benchmark iteration is one
// trajectory of about ten million hops; the counter is hops per second.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "transport.h"

namespace {

std::string fixture(const std::string& name) {
  const std::string here = __FILE__;
  return here.substr(0, here.rfind('/')) + "/../tests/data/cif/" + name;
}

// Runs `f` with standard output sent to /dev/null: the runners print a line or
// two per call, and the benchmark's own table should stay readable.
template <typename F>
void quietly(F&& f) {
  std::fflush(stdout);
  const int saved = dup(1);
  const int null = open("/dev/null", O_WRONLY);
  dup2(null, 1);
  close(null);
  f();
  std::fflush(stdout);
  dup2(saved, 1);
  close(saved);
}

struct Ibuprofen {
  Transport t;
  std::string dir;

  Ibuprofen() {
    char tmp[] = "/tmp/tavix_kmc_bench_XXXXXX";
    if (mkdtemp(tmp) == nullptr) std::abort();
    dir = tmp;
    const std::string inp = dir + "/tavix.inp";
    FILE* fp = std::fopen(inp.c_str(), "w");
    if (fp == nullptr) std::abort();
    std::fprintf(fp, "&transport\n  crystal = %s\n/\n", fixture("ibuprofen_COD2300214_blankline.cif").c_str());
    std::fclose(fp);
    quietly([&] {
      t.read_tavix_inp(inp.c_str(), false);
      t.read_crystal_strcuture_files(false, false);
      t.calc_x_com();
      t.build_neighbor_list(false, false);
    });
    std::remove(inp.c_str());

    // What MC_init would leave: rates, snapshots, track arrays.
    const int n = t.nmols_uc;
    t.w0 = new double*[n];
    t.run_rows_allocated = n;
    int widest = 0, keys = 0;
    for (int i = 0; i < n; ++i) {
      const int nn = t.nneighbors[i];
      widest = nn > widest ? nn : widest;
      keys += nn;
      t.w0[i] = new double[nn > 0 ? nn : 1];
      for (int j = 0; j < nn; ++j) {
        double c[3];
        mat_vec_mul(t.latt_f2c, t.neighbor_df[i] + 3 * j, c);
        t.w0[i][j] = 200.0 * std::exp(-std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]) / 2.0);
      }
    }
    t.max_nneighbors = widest;
    t.neighbor_nkeys = keys;
    double ktot = 0.0;
    for (int j = 0; j < t.nneighbors[0]; ++j) ktot += t.w0[0][j];
    // About 10^5 hops a row and 100 rows a trajectory, so that the two files a
    // trajectory writes weigh little against its hops.
    t.tsnap = 1e5 / ktot;
    t.nsnap = 100;
    const int m = t.nsnap + 1;
    t.track_istep = new int[m]();
    t.track_t = new double[m]();
    t.track_x = new double[3 * m]();
    t.track_r2 = new double[m]();
    t.ave_istep = new int[m]();
    t.ave_t = new double[m]();
    t.ave_x = new double[3 * m]();
    t.ave_r2 = new double[m]();
    t.mc_ready = true;
  }

  ~Ibuprofen() {
    for (const char* name : {"/track_0001.dat", "/track_total.dat"}) std::remove((dir + name).c_str());
    rmdir(dir.c_str());
  }
};

Ibuprofen& ibuprofen() {
  static Ibuprofen crystal;
  return crystal;
}

// Hops of the last trajectory: the walk ends on the hop that fills the last row,
// whose counter is the number of hops before it.
double last_hops(const Transport& t) { return static_cast<double>(t.track_istep[t.nsnap]) + 1.0; }

void BM_MC_run_openMP_Ibuprofen(benchmark::State& state) {
  Ibuprofen& c = ibuprofen();
  double hops = 0.0;
  for (auto _ : state) {
    quietly([&] { c.t.MC_run_openMP(c.dir.c_str(), 0, 1); });
    hops += last_hops(c.t);
  }
  state.counters["hops/s"] = benchmark::Counter(hops, benchmark::Counter::kIsRate);
  state.counters["neighbors"] = c.t.nneighbors[0];
}
BENCHMARK(BM_MC_run_openMP_Ibuprofen)->Unit(benchmark::kMillisecond);

// The first family for comparison: the plain per-hop recomputation on ran2.
void BM_MC_simulation_one_Ibuprofen(benchmark::State& state) {
  Ibuprofen& c = ibuprofen();
  double hops = 0.0;
  for (auto _ : state) {
    quietly([&] { c.t.MC_simulation_one(0, c.dir.c_str()); });
    hops += last_hops(c.t);
  }
  state.counters["hops/s"] = benchmark::Counter(hops, benchmark::Counter::kIsRate);
}
BENCHMARK(BM_MC_simulation_one_Ibuprofen)->Unit(benchmark::kMillisecond);

}  // namespace
