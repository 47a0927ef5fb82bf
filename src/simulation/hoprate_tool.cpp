// tavix_hoprate.exe: the hop rate of every pair of the neighbor list, from the
// transfer integrals, site energies, applied field, normal modes and outer
// reorganisation energies that prepare-mc.py copied into the work directory,
// written as WL.dat (electrons) or WH.dat (holes) for the Monte Carlo walkers.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "suite_tools.h"

namespace suite_tools {

namespace {

constexpr double kMeVPerHartree = 1.0 / 3.675e-5;  // the inverse of the input conversion

void print_usage(const char* prog) {
  std::printf("Hop rates of every molecule pair\n\n");
  std::printf("Usage: %s\n", prog);
  std::printf("  Run in a carrier work directory holding tavix.inp, the structure, charge.inp,\n");
  std::printf("  VL.dat or VH.dat and NM-e.dat or NM-h.dat (optionally temp.inp, EL.dat or EH.dat,\n");
  std::printf("  reorg_lambda_outer-e.dat or reorg_lambda_outer-h.dat, neighbor.dat).\n");
  std::printf("  Writes WL.dat (electrons) or WH.dat (holes).\n\n");
}

}  // namespace

double pair_dE(const Transport& t, int i, int j) {
  double dE = t.dE_pair[i][j];
  if (t.appE_flag && t.dE_field != nullptr) dE += t.dE_field[i][j];
  return dE;
}

double pair_lambda(const Transport& t, int i, int j) {
  double lambda = t.lambda_mol[i];
  if (t.reorg_outer_flag != 0 && t.lambda_outer != nullptr) lambda += t.lambda_outer[i][j];
  return lambda;
}

std::vector<PairRate> compute_pair_rates(Transport& t, bool progress) {
  int total = 0;
  for (int i = 0; i < t.nmols_uc; ++i) total += t.nneighbors[i];
  std::vector<PairRate> out;
  out.reserve(total);
  int done = 0;
  for (int i = 0; i < t.nmols_uc; ++i) {
    // Pairs of one root with the same energies have the same integral; computing it
    // once gives the very same value, so the cache changes no digit.
    std::map<std::pair<double, double>, double> no_V_cache;
    for (int j = 0; j < t.nneighbors[i]; ++j) {
      PairRate p;
      p.root = i;
      p.column = j;
      p.neighbor = t.neighbor_id[i][j];
      p.cell[0] = t.neighbor_cx[i][j];
      p.cell[1] = t.neighbor_cy[i][j];
      p.cell[2] = t.neighbor_cz[i][j];
      double d[3];
      mat_vec_mul(t.latt_f2c, &t.neighbor_df[i][3 * j], d);
      p.distance = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
      p.V = t.V_pair[i][j];
      p.dE = pair_dE(t, i, j);
      p.lambda = pair_lambda(t, i, j);
      const auto key = std::make_pair(p.dE, p.lambda);
      auto it = no_V_cache.find(key);
      if (it == no_V_cache.end()) it = no_V_cache.emplace(key, t.hop_rate_no_V(i, p.dE, p.lambda)).first;
      p.rate = p.V * p.V * it->second;
      out.push_back(p);
      ++done;
      // A line at every tenth of the pairs crossed.
      if (progress && done * 10 / total > (done - 1) * 10 / total) {
        std::printf("  rates: %d of %d pairs (%d%%)\n", done, total, done * 100 / total);
        std::fflush(stdout);
      }
    }
  }
  return out;
}

// Each neighbor row holds three value-unit pairs, of which read_MC_w0 takes the
// second, the rate. The first is the transfer integral in meV and the third the
// centre-of-mass distance of the pair in angstrom, for a reader of the file.
std::string format_w_file(const Transport& t, const std::vector<PairRate>& rates) {
  std::string text = formatString("%d\n", t.nmols_uc);
  size_t k = 0;
  for (int i = 0; i < t.nmols_uc; ++i) {
    text += formatString("%d\n", t.nneighbors[i]);
    for (int j = 0; j < t.nneighbors[i]; ++j, ++k)
      text += formatString("%14.6e meV  %14.6e 1/ns  %10.4f angstrom\n", rates[k].V * kMeVPerHartree, rates[k].rate,
                           rates[k].distance);
  }
  return text;
}

void print_pair_table(const std::vector<PairRate>& rates) {
  std::printf("\n  root   nei    cell        r(angs)      V(meV)       dE(meV)    rate(1/ns)\n");
  for (const PairRate& p : rates)
    std::printf("  %4d  %4d  %2d %2d %2d  %9.4f  %12.5e  %12.5e  %12.5e\n", p.root + 1, p.neighbor + 1, p.cell[0],
                p.cell[1], p.cell[2], p.distance, p.V * kMeVPerHartree, p.dE * kMeVPerHartree, p.rate);
  std::printf("\n");
}

int tavix_hoprate_main(int argc, char** argv) {
  const char* prog = argc > 0 ? argv[0] : "tavix_hoprate.exe";
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], "-h") == 0 || std::strcmp(argv[i], "--help") == 0) {
      print_usage(prog);
      return 0;
    }

  Transport t;
  load_run(t);
  t.dyn_disorder_init_prefix(false);
  // The rate set-up has taken temp.inp as it stands; a temperature not above zero
  // has no rate (Marcus divides by it, detailed balance by k_B T).
  run_temperature(t);
  const char* w_file = t.carrier_char == 'e' ? "WL.dat" : "WH.dat";

  std::printf("Computing %s hop rates (%s, T = %g K)...\n", carrier_name(t.carrier_char), t.ratetype.c_str(), t.temp);
  const std::vector<PairRate> rates = compute_pair_rates(t, true);
  print_pair_table(rates);

  std::printf("Writing file '%s'...\n", w_file);
  if (!replace_file(w_file, format_w_file(t, rates)))
    TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", w_file);
  return 0;
}

}  // namespace suite_tools
