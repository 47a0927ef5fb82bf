// The pair rates of tavix_hoprate.exe on a real crystal's network: benzene
// (COD 2100348, 4 molecules) with the example run's 4 angstrom cutoff, illustrative
// transfer integrals, a distinct site-energy difference for every pair (so that no
// two pairs of a root share an integral) and 20 normal modes per molecule. The
// counter "per_rate" is the time of one pair's rate.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "suite_tools.h"

namespace {

std::string fixture(const std::string& name) {
  const std::string here = __FILE__;
  return here.substr(0, here.rfind('/')) + "/../tests/data/cif/" + name;
}

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

void write_text(const std::string& path, const std::string& text) {
  FILE* fp = std::fopen(path.c_str(), "w");
  if (fp == nullptr) std::abort();
  std::fputs(text.c_str(), fp);
  std::fclose(fp);
}

// A work directory of benzene with one rate type, read as the tool reads it.
struct Benzene {
  Transport t;
  int pairs = 0;

  explicit Benzene(const char* ratetype) {
    char tmp[] = "/tmp/tavix_hoprate_bench_XXXXXX";
    if (mkdtemp(tmp) == nullptr) std::abort();
    const std::string dir = tmp;
    char cwd[4096];
    if (getcwd(cwd, sizeof cwd) == nullptr || chdir(tmp) != 0) std::abort();
    write_text("tavix.inp", formatString("&transport\n  chargetype = e\n  ratetype = %s\n  temp = 300\n"
                                         "  lattice_cutoff = 4.0\n  neighbor_scell = 3 3 3\n  lat_site_energy = 1\n"
                                         "  crystal = %s\n/\n",
                                         ratetype, fixture("benzene_COD2100348_blankline.cif").c_str()));
    write_text("charge.inp", "e\n");
    quietly([&] { suite_tools::load_run(t); });
    std::string V = formatString("%d\n", t.nmols_uc), E = V;
    std::string NM = "freq lambda S\n";
    for (int i = 0; i < t.nmols_uc; ++i) {
      V += formatString("%d\n", t.nneighbors[i]);
      E += formatString("%d\n", t.nneighbors[i]);
      for (int j = 0; j < t.nneighbors[i]; ++j, ++pairs) {
        V += formatString("%.3f meV\n", 5.0 + 3.0 * j);
        E += formatString("%.3f meV\n", -40.0 + 7.0 * j + 2.0 * i);
      }
      NM += "20\n";
      for (int k = 0; k < 20; ++k) {
        const double cm = 60.0 * std::pow(3200.0 / 60.0, k / 19.0);
        const double S = 0.02 + 0.3 * ((k * 7) % 5) / 4.0;
        NM += formatString("%.3f %.3f %.4f\n", cm, S * cm, S);
      }
    }
    write_text("VL.dat", V);
    write_text("EL.dat", E);
    write_text("NM-e.dat", NM);
    quietly([&] { t.dyn_disorder_init_prefix(false); });
    for (const char* f : {"tavix.inp", "charge.inp", "VL.dat", "EL.dat", "NM-e.dat"}) std::remove(f);
    if (chdir(cwd) != 0) std::abort();
    rmdir(dir.c_str());
  }
};

void run(benchmark::State& state, const char* ratetype) {
  Benzene b(ratetype);
  for (auto _ : state) benchmark::DoNotOptimize(suite_tools::compute_pair_rates(b.t, false));
  state.SetItemsProcessed(state.iterations() * b.pairs);
  state.counters["pairs"] = b.pairs;
  state.counters["per_rate"] =
      benchmark::Counter(static_cast<double>(b.pairs), benchmark::Counter::kIsIterationInvariantRate |
                                                           benchmark::Counter::kInvert);
}

void HoprateBenzeneQuantum(benchmark::State& state) { run(state, "quantum"); }
void HoprateBenzeneMarcus(benchmark::State& state) { run(state, "marcus"); }

BENCHMARK(HoprateBenzeneQuantum)->Unit(benchmark::kMillisecond);
BENCHMARK(HoprateBenzeneMarcus)->Unit(benchmark::kMicrosecond);

}  // namespace
