// One quantum hop rate with 100 normal modes, the unit of work of every rate
// builder (a dynamic-disorder buffer evaluates it once per sample). Frequencies
// spread over 50-3500 cm-1, Huang-Rhys factors over 0.001-0.5, T = 300 K,
// maxt = 10000 atomic time units.
//
// HopRate100Modes is the engine's path (hop_rate_no_V: the hoisted integrand).
// PlainRate100Modes integrates the plain integrand through the free trio, which
// recomputes every occupation at every time, for comparison.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "transport.h"

namespace {

constexpr double kHartreePerCm = 4.556e-6;
constexpr double kHartreePerMeV = 3.675e-5;
constexpr int kModes = 100;

struct Modes {
  std::vector<double> freq;  // hartree
  std::vector<double> S;
};

// Frequencies evenly spaced on a log scale from 50 to 3500 cm-1. Huang-Rhys factors
// from a fixed linear congruential sequence, 0.001 * 500^(u^2): spread over the
// whole range, most of them small, as in the spectra of organic semiconductors.
// Their sum is about 4.6; the reorganisation energy sum(S f) about 0.38 eV.
Modes realistic_modes() {
  Modes m;
  uint32_t state = 12345u;
  for (int k = 0; k < kModes; ++k) {
    const double cm = 50.0 * std::pow(3500.0 / 50.0, k / double(kModes - 1));
    state = state * 1664525u + 1013904223u;
    const double u = state / 4294967296.0;
    m.freq.push_back(cm * kHartreePerCm);
    m.S.push_back(0.001 * std::pow(500.0, u * u));
  }
  return m;
}

void setup(Transport& t, const Modes& m) {
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 10000.0;
  t.nNM.assign(1, kModes);
  t.nm_freq.assign(1, m.freq);
  t.nm_S.assign(1, m.S);
}

void HopRate100Modes(benchmark::State& state) {
  const Modes m = realistic_modes();
  Transport t;
  setup(t, m);
  const double dE = -50.0 * kHartreePerMeV;
  for (auto _ : state) benchmark::DoNotOptimize(t.hop_rate_no_V(0, dE, 0.0));
}
BENCHMARK(HopRate100Modes)->Unit(benchmark::kMillisecond);

void PlainRate100Modes(benchmark::State& state) {
  Modes m = realistic_modes();
  ratetype_m = "quantum";
  temperature_m = 300.0;
  nNM_m = kModes;
  S_m = m.S.data();
  freq_m = m.freq.data();
  omega_m = -50.0 * kHartreePerMeV;
  flagV_m = 1.0;
  for (auto _ : state) benchmark::DoNotOptimize(qsimp_s(rt_func_s, 0.0, 10000.0));
  S_m = nullptr;
  freq_m = nullptr;
}
BENCHMARK(PlainRate100Modes)->Unit(benchmark::kMillisecond);

}  // namespace
