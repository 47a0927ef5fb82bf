// The process-wide random stream: L'Ecuyer's two-stream generator with a
// Bays-Durham shuffle, and the distributions drawn from it.
#include <cmath>
#include <cstdlib>
#include <ctime>

#include "txutil.h"

long idum = 1000;
int need_newvars = 1;

namespace {
constexpr long kIM1 = 2147483563;
constexpr long kIM2 = 2147483399;
constexpr long kIA1 = 40014;
constexpr long kIA2 = 40692;
constexpr long kIQ1 = 53668;
constexpr long kIQ2 = 52774;
constexpr long kIR1 = 12211;
constexpr long kIR2 = 3791;
constexpr int kNTAB = 32;
constexpr long kIMM1 = kIM1 - 1;
constexpr long kNDIV = 1 + kIMM1 / kNTAB;  // 67108862
constexpr double kAM = 1.0 / kIM1;         // 4.656613057391769e-10
constexpr double kRNMX = 0.99999988;

// Schrage's step: a x mod m without overflow, exact for 0 <= x < m.
inline long schrage(long x, long a, long q, long r, long m) {
  const long k = x / q;
  x = a * (x - k * q) - k * r;
  if (x < 0) x += m;
  return x;
}

// Brings a stream state into [0, m). A state already there is left alone; a larger
// one is replaced by its residue, which the next step maps to the same value as the
// plain step would, but keeps the shuffle-table index inside the table for any seed.
inline long to_range(unsigned long x, long m) { return static_cast<long>(x % static_cast<unsigned long>(m)); }
}  // namespace

double ran2(long* seed) {
  static long idum2 = 123456789;
  static long iy = 0;
  static long iv[kNTAB];

  long x = *seed;
  if (x <= 0) {
    // Restart: the seed's magnitude (0 taken as 1) starts both streams. Computed
    // unsigned so that the most negative long has a magnitude too.
    unsigned long mag = x == 0 ? 1UL : 0UL - static_cast<unsigned long>(x);
    x = to_range(mag, kIM1);
    idum2 = to_range(mag, kIM2);
    for (int j = kNTAB + 7; j >= 0; --j) {
      x = schrage(x, kIA1, kIQ1, kIR1, kIM1);
      if (j < kNTAB) iv[j] = x;
    }
    iy = iv[0];
  } else if (x >= kIM1) {
    x = to_range(static_cast<unsigned long>(x), kIM1);
  }
  // A positive seed continues the streams with whatever the table holds; with the
  // default seed the table starts as zeros and the first 32 or so numbers come from
  // that cold table. Deliberate: stored seeds and reference runs rely on it.
  x = schrage(x, kIA1, kIQ1, kIR1, kIM1);
  idum2 = schrage(idum2, kIA2, kIQ2, kIR2, kIM2);
  const long j = iy / kNDIV;
  iy = iv[j] - idum2;
  iv[j] = x;
  if (iy < 1) iy += kIMM1;
  *seed = x;
  const double temp = kAM * iy;
  return temp > kRNMX ? kRNMX : temp;
}

double ran2(long& seed) { return ran2(&seed); }

double randUniform() { return ran2(&idum); }

void init_random_seed() {
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  idum = std::rand();
}

double randGaussian() {
  static double v1 = 0.0;
  static double v2 = 0.0;
  static double factor = 0.0;
  // One deviate of each pair is held back and returned by the next call, even
  // across a reseed.
  if (need_newvars) {
    double s;
    do {
      v1 = 2.0 * ran2(&idum) - 1.0;
      v2 = 2.0 * ran2(&idum) - 1.0;
      s = v1 * v1 + v2 * v2;
    } while (!(s > 0.0 && s < 1.0));
    factor = std::sqrt(-2.0 * std::log(s) / s);
    need_newvars = 0;
    return v1 * factor;
  }
  need_newvars = 1;
  return v2 * factor;
}

double randExponential() {
  double u = ran2(&idum);
  if (u == 0.0) u = 4.656612873077393e-10;  // 2^-31, keeps -log finite
  return -std::log(u);
}

int select_reaction(const double* rates, int n, double total, double u) {
  if (n < 1) return -1;
  const double target = u * total;
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    sum += rates[i];
    if (sum > target) return i;
  }
  return -1;
}
