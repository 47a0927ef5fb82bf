// The random stream is drawn once or twice per Monte Carlo hop; these measure the
// raw generator and the shared-seed wrapper.
#include <benchmark/benchmark.h>

#include "txutil.h"

static void BM_randUniform(benchmark::State& state) {
  idum = 1000;
  for (auto _ : state) benchmark::DoNotOptimize(randUniform());
}
BENCHMARK(BM_randUniform);

static void BM_ran2(benchmark::State& state) {
  long seed = -1;
  for (auto _ : state) benchmark::DoNotOptimize(ran2(&seed));
}
BENCHMARK(BM_ran2);

static void BM_randExponential(benchmark::State& state) {
  idum = -1;
  for (auto _ : state) benchmark::DoNotOptimize(randExponential());
}
BENCHMARK(BM_randExponential);
