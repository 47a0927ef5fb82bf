// Rate kernels: the integrand, the trapezoid stages and Simpson's rule, the free
// trio, and the rate of one hop without V, against closed forms, an independent
// quadrature, the classical limit and detailed balance; and the hoisted form the
// members integrate with against the plain form, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "test_support.h"
#include "transport.h"

namespace {

using txtest::capture_stdout;
using txtest::mask_line_numbers;
using txtest::run_forked;
using txtest::RunResult;

constexpr double kB = 3.1677375952000004e-6;  // hartree per kelvin
constexpr double kAuNs = 2.4189e-8;
constexpr double kPi = 3.141592653589793;
constexpr double kMeV = 3.675e-5;  // hartree per meV
constexpr double kCm = 4.556e-6;   // hartree per cm-1
const std::string kHead = "\nERROR  transport : transport : line # : \n";
const std::string kQsimpWarning = "WARNING: Too many steps in routine qsimp!\n";

bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// One molecule's modes on a Transport, as the pair-data reader leaves them.
void set_modes(Transport& t, const std::vector<double>& freq, const std::vector<double>& S) {
  t.nNM.assign(1, static_cast<int>(freq.size()));
  t.nm_freq.assign(1, freq);
  t.nm_S.assign(1, S);
}

// The free kernels read module globals; this points them at test data for one
// scope and leaves them null afterwards, as the engine expects to own them.
class TrioGlobals {
 public:
  TrioGlobals(const std::string& ratetype, double T, std::vector<double> S, std::vector<double> freq, double omega,
              double V)
      : S_(std::move(S)), freq_(std::move(freq)) {
    ratetype_m = ratetype;
    temperature_m = T;
    nNM_m = static_cast<int>(S_.size());
    S_m = S_.data();
    freq_m = freq_.data();
    omega_m = omega;
    flagV_m = V;
  }
  ~TrioGlobals() {
    S_m = nullptr;
    freq_m = nullptr;
    nNM_m = 0;
  }

 private:
  std::vector<double> S_;
  std::vector<double> freq_;
};

// ---- the plain reference: the rule as written, every point through rt_func ----

struct Case {
  std::string ratetype;
  double T;
  std::vector<double> S, freq;
  double omega, V, a, b;
};

double plain_stage(Transport& t, const Case& c, int n, double s) {
  double* S = const_cast<double*>(c.S.data());
  double* f = const_cast<double*>(c.freq.data());
  const int nm = static_cast<int>(c.S.size());
  auto F = [&](double x) { return t.rt_func(x, nm, S, f, c.omega, c.V); };
  if (n == 1) return 0.5 * (c.b - c.a) * (F(c.a) + F(c.b));
  int it = 1;
  for (int j = 1; j < n - 1; ++j) it <<= 1;
  const double tnm = it;
  const double del = (c.b - c.a) / tnm;
  double x = c.a + 0.5 * del;
  double sum = 0.0;
  for (int j = 0; j < it; ++j, x += del) sum += F(x);
  return 0.5 * (s + (c.b - c.a) * sum / tnm);
}

// Returns the value and, in `stages`, the last stage computed.
double plain_qsimp(Transport& t, const Case& c, int* stages) {
  double st = plain_stage(t, c, 1, 0.0);
  double s = 4.0 * st / 3.0;
  for (int j = 2; j <= 20; ++j) {
    const double ost = st;
    st = plain_stage(t, c, j, st);
    const double os = s;
    s = (4.0 * st - ost) / 3.0;
    *stages = j;
    if (j > 6 && (std::fabs(s - os) < 1e-10 * std::fabs(os) || (s == 0.0 && os == 0.0))) return s;
  }
  return 0.0;
}

double member_qsimp(Transport& t, const Case& c) {
  return t.qsimp(c.a, c.b, static_cast<int>(c.S.size()), const_cast<double*>(c.S.data()),
                 const_cast<double*>(c.freq.data()), c.omega, c.V);
}

// ---- an independent quadrature: composite Gauss-Legendre ----------------------

struct GaussLegendre {
  std::vector<double> x, w;  // on [-1, 1]
  explicit GaussLegendre(int n) {
    for (int i = 1; i <= n; ++i) {
      double z = std::cos(kPi * (i - 0.25) / (n + 0.5));
      double dp = 0.0;
      for (int iter = 0; iter < 100; ++iter) {
        double p0 = 1.0, p1 = z;
        for (int k = 2; k <= n; ++k) {
          const double p2 = ((2.0 * k - 1.0) * z * p1 - (k - 1.0) * p0) / k;
          p0 = p1;
          p1 = p2;
        }
        dp = n * (z * p1 - p0) / (z * z - 1.0);
        const double dz = p1 / dp;
        z -= dz;
        if (std::fabs(dz) < 1e-16) break;
      }
      x.push_back(z);
      w.push_back(2.0 / ((1.0 - z * z) * dp * dp));
    }
  }
  template <typename F>
  double integrate(const F& f, double a, double b, int panels) const {
    double total = 0.0;
    const double h = (b - a) / panels;
    for (int p = 0; p < panels; ++p) {
      const double lo = a + p * h, mid = lo + 0.5 * h;
      for (size_t k = 0; k < x.size(); ++k) total += 0.5 * h * w[k] * f(mid + 0.5 * h * x[k]);
    }
    return total;
  }
};

// ---- Marcus ---------------------------------------------------------------------

TEST(MarcusRate, MatchesTheClosedForm) {
  Transport t;
  t.ratetype = "marcus";
  t.temp = 300.0;
  const double lambda = 200 * kMeV;
  for (double dE : {-50 * kMeV, 0.0, 50 * kMeV}) {
    const double a = kB * 300.0 * lambda;
    const double expected = std::sqrt(kPi / a) * std::exp(-(lambda + dE) * (lambda + dE) / (4.0 * a)) / kAuNs;
    EXPECT_NEAR(t.hop_rate_no_V(0, dE, lambda), expected, 1e-13 * expected);
  }
  // python3: kB=3.1677375952000004e-6; a=kB*300*0.00735;
  //          math.sqrt(math.pi/a)*math.exp(-(0.00735+dE)**2/(4*a))/2.4189e-8
  EXPECT_NEAR(t.hop_rate_no_V(0, -50 * kMeV, lambda), 9343903172.988308, 1e-12 * 9343903172.988308);
  EXPECT_NEAR(t.hop_rate_no_V(0, 50 * kMeV, lambda), 1351435610.7587447, 1e-12 * 1351435610.7587447);
}

TEST(MarcusRate, IsChosenByTheFirstFourCharactersWithoutCase) {
  Transport t;
  t.temp = 300.0;
  const double lambda = 200 * kMeV;
  t.ratetype = "marcus";
  const double reference = t.hop_rate_no_V(0, -0.001, lambda);
  for (const char* name : {"Marcus", "MARC", "marcus-like"}) {
    t.ratetype = name;
    EXPECT_EQ(t.hop_rate_no_V(0, -0.001, lambda), reference) << name;
  }
}

TEST(MarcusRate, ObeysDetailedBalance) {
  Transport t;
  t.ratetype = "marcus";
  t.temp = 300.0;
  const double lambda = 150 * kMeV, dE = 30 * kMeV;
  const double ratio = t.hop_rate_no_V(0, dE, lambda) / t.hop_rate_no_V(0, -dE, lambda);
  const double expected = std::exp(-dE / (kB * 300.0));
  EXPECT_NEAR(ratio, expected, 1e-12 * expected);
}

// ---- quantum: physics -------------------------------------------------------------

// One mode is always the short-time mode, so its integrand is a Gaussian times a
// cosine: 2 exp(-(n + 1/2) S f^2 t^2) cos((S f + omega) t).
double one_mode_integrand(double t, double f, double S, double T, double omega) {
  const double n = 1.0 / std::expm1(f / (kB * T));
  const double re = (n + 0.5) * S * f * f * t * t;
  if (re > 127.0) return 0.0;  // the engine's cut; the Gaussian is e^-127 there
  return 2.0 * std::exp(-re) * std::cos((S * f + omega) * t);
}

TEST(QuantumRate, OneModeMatchesGaussLegendreQuadrature) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 10000.0;
  const double f = 1500 * kCm, S = 0.3;
  set_modes(t, {f}, {S});
  const GaussLegendre gl(20);
  for (double dE : {-100 * kMeV, -20 * kMeV, 0.0, 40 * kMeV}) {
    const double omega = dE < 0.0 ? dE : -dE;
    double expected =
        gl.integrate([&](double x) { return one_mode_integrand(x, f, S, 300.0, omega); }, 0.0, 10000.0, 400) / kAuNs;
    if (dE >= 0.0) expected *= std::exp(-dE / (kB * 300.0));
    EXPECT_NEAR(t.hop_rate_no_V(0, dE, 0.0), expected, 1e-9 * expected) << dE;
  }
}

TEST(QuantumRate, OneModeMatchesTheGaussianIntegralInClosedForm) {
  // With the Gaussian gone long before maxt, the integral is the one to infinity:
  // sqrt(pi/a) exp(-b^2/(4a)), a = (n + 1/2) S f^2, b = S f + omega.
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 10000.0;
  const double f = 1200 * kCm, S = 0.5;
  set_modes(t, {f}, {S});
  const double n = 1.0 / std::expm1(f / (kB * 300.0));
  const double a = (n + 0.5) * S * f * f;
  for (double dE : {-80 * kMeV, -10 * kMeV}) {
    const double b = S * f + dE;
    const double expected = std::sqrt(kPi / a) * std::exp(-b * b / (4.0 * a)) / kAuNs;
    EXPECT_NEAR(t.hop_rate_no_V(0, dE, 0.0), expected, 1e-9 * expected) << dE;
  }
}

TEST(QuantumRate, ApproachesMarcusInTheClassicalLimit) {
  // Ten modes of 20 to 60 cm-1 at 300 K (kT is about 210 cm-1), sharing a
  // reorganisation energy of 0.1 eV: sum(S f) = lambda.
  Transport t;
  t.temp = 300.0;
  t.maxt = 10000.0;
  const double lambda = 100 * kMeV;
  std::vector<double> f, S;
  for (int k = 0; k < 10; ++k) {
    f.push_back((20.0 + 40.0 * k / 9.0) * kCm);
    S.push_back(lambda / 10.0 / f.back());
  }
  set_modes(t, f, S);
  for (double dE : {-50 * kMeV, 0.0, 50 * kMeV}) {
    t.ratetype = "quantum";
    const double quantum = t.hop_rate_no_V(0, dE, 0.0);
    t.ratetype = "marcus";
    const double marcus = t.hop_rate_no_V(0, dE, lambda);
    EXPECT_NEAR(quantum / marcus, 1.0, 0.02) << dE;
  }
}

TEST(QuantumRate, HighFrequencyModeIsFarFromMarcus) {
  // The counterpart of the classical limit: one 1600 cm-1 mode at 300 K tunnels.
  Transport t;
  t.temp = 300.0;
  t.maxt = 10000.0;
  const double f = 1600 * kCm, S = 0.4;
  set_modes(t, {f}, {S});
  t.ratetype = "quantum";
  const double quantum = t.hop_rate_no_V(0, 100 * kMeV, 0.0);
  t.ratetype = "marcus";
  const double marcus = t.hop_rate_no_V(0, 100 * kMeV, S * f);
  EXPECT_GT(std::fabs(quantum / marcus - 1.0), 0.3);
}

TEST(QuantumRate, ObeysDetailedBalanceToRounding) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 10000.0;
  set_modes(t, {300 * kCm, 1200 * kCm, 1600 * kCm}, {0.2, 0.05, 0.4});
  for (double dE : {5 * kMeV, 60 * kMeV}) {
    const double ratio = t.hop_rate_no_V(0, dE, 0.0) / t.hop_rate_no_V(0, -dE, 0.0);
    const double expected = std::exp(-dE / (kB * 300.0));
    EXPECT_NEAR(ratio, expected, 4 * std::numeric_limits<double>::epsilon() * expected) << dE;
  }
}

TEST(QuantumRate, ZeroEnergyDifferenceTakesTheDetailedBalancePath) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 10000.0;
  std::vector<double> f = {400 * kCm, 1500 * kCm}, S = {0.1, 0.3};
  set_modes(t, f, S);
  // exp(-0/kT) = 1 and omega = -0: the downhill integral at omega 0, unchanged.
  EXPECT_EQ(t.hop_rate_no_V(0, 0.0, 0.0), t.qsimp(0.0, 10000.0, 2, S.data(), f.data(), 0.0, 1.0) / kAuNs);
}

TEST(QuantumRate, NonConvergentIntegralGivesExactlyZeroWithAWarning) {
  // No modes: the integrand is 2 cos(t omega), which 2^19 points over 1e7 time
  // units at omega = 1 cannot resolve.
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 1e7;
  set_modes(t, {}, {});
  double rate = -1.0;
  const std::string out = capture_stdout([&] { rate = t.hop_rate_no_V(0, -1.0, 0.0); });
  EXPECT_EQ(rate, 0.0);
  EXPECT_EQ(out, kQsimpWarning);
}

TEST(QuantumRate, ZeroFrequencyGivesNaNIntegrandAndSoAZeroRate) {
  // Nothing guards a zero frequency: the occupation is 1/0, the integrand NaN,
  // Simpson never converges and the rate is 0.0 with the warning.
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 10000.0;
  std::vector<double> f = {0.0, 1000 * kCm}, S = {0.1, 0.2};
  set_modes(t, f, S);
  EXPECT_TRUE(std::isnan(t.rt_func(100.0, 2, S.data(), f.data(), 0.0, 1.0)));
  double rate = -1.0;
  const std::string out = capture_stdout([&] { rate = t.hop_rate_no_V(0, -0.001, 0.0); });
  EXPECT_EQ(rate, 0.0);
  EXPECT_EQ(out, kQsimpWarning);
}

TEST(QuantumRate, EgelstaffZeroFrequencyAlsoGivesNaN) {
  Transport t;
  t.ratetype = "egelstaff";
  t.temp = 300.0;
  std::vector<double> f = {1000 * kCm, 0.0}, S = {0.3, 0.1};
  EXPECT_TRUE(std::isnan(t.rt_func(100.0, 2, S.data(), f.data(), 0.0, 1.0)));
}

TEST(QuantumRate, WithoutModesTheRootIsFatal) {
  Transport t;
  t.ratetype = "quantum";
  const RunResult r = run_forked([&] { t.hop_rate_no_V(2, -0.001, 0.0); });
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "No normal modes are read for molecule 3\n");
  EXPECT_EQ(r.status, 1);
}

// ---- the integrand ------------------------------------------------------------------

TEST(RateIntegrand, QuantumFormulaByHand) {
  // Two modes, the second the short-time one (larger S). T = 0: both occupations 0.
  Transport t;
  t.ratetype = "quantum";
  t.temp = 0.0;
  std::vector<double> f = {0.002, 0.005}, S = {0.1, 0.4};
  const double x = 150.0, omega = -0.003, V = 0.5;
  const double re = 0.1 * (1.0 - std::cos(0.002 * x)) + 0.5 * 0.4 * (0.005 * x) * (0.005 * x);
  const double im = 0.1 * std::sin(0.002 * x) + 0.4 * 0.005 * x;
  const double expected = std::exp(-re) * 0.5 * std::cos(im + x * omega);
  EXPECT_NEAR(t.rt_func(x, 2, S.data(), f.data(), omega, V), expected, 1e-15);
}

TEST(RateIntegrand, QuantumUsesBoseOccupation) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  std::vector<double> f = {0.001, 0.004}, S = {0.2, 0.1};  // mode 0 is the short-time one
  const double x = 80.0;
  const double n0 = 1.0 / std::expm1(0.001 / (kB * 300.0)), n1 = 1.0 / std::expm1(0.004 / (kB * 300.0));
  const double re = (n0 + 0.5) * 0.2 * (0.001 * x) * (0.001 * x) + (2 * n1 + 1) * 0.1 * (1.0 - std::cos(0.004 * x));
  const double im = 0.2 * 0.001 * x + 0.1 * std::sin(0.004 * x);
  EXPECT_NEAR(t.rt_func(x, 2, S.data(), f.data(), 0.0, 1.0), std::exp(-re) * 2.0 * std::cos(im), 1e-14);
}

TEST(RateIntegrand, WithoutModesItIsTwoVSquaredCosine) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  EXPECT_EQ(t.rt_func(2.0, 0, nullptr, nullptr, 0.25, 3.0), 18.0 * std::cos(0.5));
  t.ratetype = "egelst";
  EXPECT_EQ(t.rt_func(2.0, 0, nullptr, nullptr, 0.25, 3.0), 18.0 * std::cos(0.5));
}

TEST(RateIntegrand, TiesOfTheLargestFactorKeepTheFirstMode) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 0.0;
  std::vector<double> f = {0.001, 0.003, 0.007}, S = {0.2, 0.3, 0.3};
  const double x = 120.0;
  // Mode 1 short-time, modes 0 and 2 full.
  const double re =
      0.2 * (1.0 - std::cos(0.001 * x)) + 0.5 * 0.3 * (0.003 * x) * (0.003 * x) + 0.3 * (1.0 - std::cos(0.007 * x));
  const double im = 0.2 * std::sin(0.001 * x) + 0.3 * 0.003 * x + 0.3 * std::sin(0.007 * x);
  EXPECT_NEAR(t.rt_func(x, 3, S.data(), f.data(), 0.0, 1.0), 2.0 * std::exp(-re) * std::cos(im), 1e-14);
}

TEST(RateIntegrand, WithoutPositiveFactorMode0TakesTheShortTimeForm) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 0.0;
  std::vector<double> f = {0.004, 0.002}, S = {-0.1, -0.2};
  const double x = 50.0;
  const double re = 0.5 * -0.1 * (0.004 * x) * (0.004 * x) + -0.2 * (1.0 - std::cos(0.002 * x));
  const double im = -0.1 * 0.004 * x + -0.2 * std::sin(0.002 * x);
  EXPECT_NEAR(t.rt_func(x, 2, S.data(), f.data(), 0.0, 1.0), 2.0 * std::exp(-re) * std::cos(im), 1e-14);
  // All factors zero: every term vanishes, whichever form mode 0 takes.
  std::vector<double> zero = {0.0, 0.0};
  EXPECT_EQ(t.rt_func(x, 2, zero.data(), f.data(), 0.01, 1.0), 2.0 * std::cos(0.5));
}

TEST(RateIntegrand, RealExponentAboveTheCutGivesZero) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 0.0;
  std::vector<double> f = {1.0}, S = {1.0};
  // re = t^2 / 2: 126.5 keeps exp(-re), 127.5 is past the cut.
  EXPECT_EQ(t.rt_func(std::sqrt(255.0), 1, S.data(), f.data(), 0.0, 1.0), 0.0);
  const double x = std::sqrt(253.0);
  EXPECT_NEAR(t.rt_func(x, 1, S.data(), f.data(), 0.0, 1.0), 2.0 * std::exp(-0.5 * x * x) * std::cos(x), 1e-65);
  EXPECT_GT(std::fabs(t.rt_func(x, 1, S.data(), f.data(), 0.0, 1.0)), 0.0);
}

TEST(RateIntegrand, EgelstaffFormulaByHand) {
  Transport t;
  t.ratetype = "egelstaff";
  t.temp = 300.0;
  std::vector<double> f = {0.002, 0.006}, S = {0.1, 0.3};  // mode 1 short-time
  const double x = 70.0, omega = -0.002, V = 2.0;
  const double kT = kB * 300.0;
  const double tau2 = x * x + 1.0 / (4.0 * kT * kT);
  const double re =
      2.0 * 0.1 * (kT / 0.002) * (1.0 - std::cos(0.002 * std::sqrt(tau2))) + 0.3 * (kT / 0.006) * 0.006 * 0.006 * tau2;
  const double expected = std::exp(-re) * 8.0 * std::cos(x * omega);
  EXPECT_NEAR(t.rt_func(x, 2, S.data(), f.data(), omega, V), expected, 1e-12 * std::fabs(expected));
}

TEST(RateIntegrand, AtZeroTemperatureOccupationsAreZero) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 0.0;
  std::vector<double> f = {0.003}, S = {0.2};
  const double x = 30.0;
  EXPECT_NEAR(t.rt_func(x, 1, S.data(), f.data(), 0.0, 1.0),
              std::exp(-(0.5 * 0.2 * (0.003 * x) * (0.003 * x))) * 2.0 * std::cos(0.2 * 0.003 * x), 1e-15);
}

TEST(RateIntegrand, UnknownRatetypeIsFatal) {
  Transport t;
  std::vector<double> f = {0.003}, S = {0.2};
  // The integrand compares with case: "Quantum" passes the control reader, not this.
  for (const char* name : {"Quantum", "marcus", "quan"}) {
    t.ratetype = name;
    const RunResult r = run_forked([&] { t.rt_func(1.0, 1, S.data(), f.data(), 0.0, 1.0); });
    EXPECT_EQ(mask_line_numbers(r.out),
              kHead + "WARNING: Unknown ratetype: " + name + "\nSupported rate types are quantum or egelst.\n");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 1);
  }
}

TEST(RateIntegrand, UnknownRatetypeIsFatalThroughTheHopRateToo) {
  Transport t;
  t.ratetype = "Quantum";
  t.temp = 300.0;
  t.maxt = 100.0;
  set_modes(t, {0.003}, {0.2});
  const RunResult r = run_forked([&] { t.hop_rate_no_V(0, -0.001, 0.0); });
  EXPECT_EQ(mask_line_numbers(r.out),
            kHead + "WARNING: Unknown ratetype: Quantum\nSupported rate types are quantum or egelst.\n");
  EXPECT_EQ(r.status, 1);
}

// ---- trapezoid stages and Simpson -------------------------------------------------

TEST(Trapezoid, FirstStageUsesBothEndsAndLaterStagesTheMidpoints) {
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  std::vector<double> f = {0.004}, S = {0.3};
  auto F = [&](double x) { return t.rt_func(x, 1, S.data(), f.data(), -0.001, 1.0); };
  const double s1 = t.trapzd(0.0, 400.0, 1, 0.0, 1, S.data(), f.data(), -0.001, 1.0);
  EXPECT_EQ(s1, 0.5 * 400.0 * (F(0.0) + F(400.0)));
  const double s2 = t.trapzd(0.0, 400.0, 2, s1, 1, S.data(), f.data(), -0.001, 1.0);
  EXPECT_EQ(s2, 0.5 * (s1 + 400.0 * F(200.0) / 1.0));
  const double s3 = t.trapzd(0.0, 400.0, 3, s2, 1, S.data(), f.data(), -0.001, 1.0);
  EXPECT_EQ(s3, 0.5 * (s2 + 400.0 * (F(100.0) + F(300.0)) / 2.0));
}

TEST(Simpson, IdenticallyZeroIntegrandStopsAtStageSevenWithoutWarning) {
  // Every sampled time lies past the cut: re > 127 everywhere on [1000, 2000].
  Transport t;
  t.ratetype = "quantum";
  t.temp = 0.0;
  std::vector<double> f = {0.05}, S = {5.0};
  double s = -1.0;
  const std::string out = capture_stdout([&] { s = t.qsimp(1000.0, 2000.0, 1, S.data(), f.data(), 0.0, 1.0); });
  EXPECT_EQ(s, 0.0);
  EXPECT_EQ(out, "");
  const Case c{"quantum", 0.0, S, f, 0.0, 1.0, 1000.0, 2000.0};
  int stages = 0;
  EXPECT_EQ(plain_qsimp(t, c, &stages), 0.0);
  EXPECT_EQ(stages, 7);
}

int g_calls = 0;
double counted_zero(double) {
  ++g_calls;
  return 0.0;
}
double counted_cosine(double x) {
  ++g_calls;
  return std::cos(x);
}

TEST(Simpson, ZeroIntegrandIsSampledThroughSevenStagesOnly) {
  // Stage 1 takes 2 points, stage j >= 2 takes 2^(j-2): 2 + 1 + 2 + ... + 32 = 65.
  g_calls = 0;
  EXPECT_EQ(qsimp_s(counted_zero, 0.0, 1.0), 0.0);
  EXPECT_EQ(g_calls, 65);
}

TEST(Simpson, SmoothIntegrandConvergesToTheIntegral) {
  EXPECT_NEAR(qsimp_s(counted_cosine, 0.0, 1.0), std::sin(1.0), 1e-10);
}

// ---- the free trio ------------------------------------------------------------------

TEST(FreeTrio, IntegrandEqualsTheMemberOnTheSameData) {
  std::vector<double> f = {0.001, 0.004, 0.009}, S = {0.05, 0.3, 0.1};
  TrioGlobals g("quantum", 250.0, S, f, -0.002, 0.7);
  Transport t;
  t.ratetype = "quantum";
  t.temp = 250.0;
  for (double x : {0.0, 13.0, 250.0, 4000.0})
    EXPECT_TRUE(same_bits(rt_func_s(x), t.rt_func(x, 3, S.data(), f.data(), -0.002, 0.7))) << x;
}

TEST(FreeTrio, SimpsonEqualsThePlainRuleAndTheMember) {
  std::vector<double> f = {300 * kCm, 1400 * kCm}, S = {0.2, 0.35};
  TrioGlobals g("quantum", 300.0, S, f, -30 * kMeV, 1.0);
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  const Case c{"quantum", 300.0, S, f, -30 * kMeV, 1.0, 0.0, 10000.0};
  int stages = 0;
  const double plain = plain_qsimp(t, c, &stages);
  EXPECT_TRUE(same_bits(qsimp_s(rt_func_s, 0.0, 10000.0), plain));
  EXPECT_TRUE(same_bits(member_qsimp(t, c), plain));
}

TEST(FreeTrio, TrapezoidKeepsItsRunningSumBetweenStages) {
  g_calls = 0;
  const double s1 = trapzd_s(counted_cosine, 0.0, 2.0, 1);
  EXPECT_EQ(s1, 0.5 * 2.0 * (1.0 + std::cos(2.0)));
  const double s2 = trapzd_s(counted_cosine, 0.0, 2.0, 2);
  EXPECT_EQ(s2, 0.5 * (s1 + 2.0 * std::cos(1.0) / 1.0));
  EXPECT_EQ(g_calls, 3);
}

TEST(FreeTrio, SimpsonFailsSilentlyWithZero) {
  // 2^19 points cannot follow cos(t) over 1e7 time units.
  double s = -1.0;
  const std::string out = capture_stdout([&] { s = qsimp_s(counted_cosine, 0.0, 1e7); });
  EXPECT_EQ(s, 0.0);
  EXPECT_EQ(out, "");
}

TEST(FreeTrio, UnknownRatetypeIsFatal) {
  std::vector<double> f = {0.003}, S = {0.2};
  TrioGlobals g("MARCUS", 300.0, S, f, 0.0, 1.0);
  const RunResult r = run_forked([] { rt_func_s(1.0); });
  EXPECT_EQ(mask_line_numbers(r.out),
            kHead + "WARNING: Unknown ratetype: MARCUS\nSupported rate types are quantum or egelst.\n");
  EXPECT_EQ(r.status, 1);
}

// ---- the hoisted form against the plain one, bit for bit ----------------------

// Deterministic cases: realistic mode sets, negative and zero factors, ties, both
// branches, temperatures from 0 K, an integrand cut to zero over most of its range
// (the early zero of the hoisted form), a zero frequency (NaN) and the large
// realistic 100-mode set of the benchmark.
std::vector<Case> bit_cases() {
  std::vector<Case> cases;
  uint32_t state = 2024u;
  auto uniform = [&]() {
    state = state * 1664525u + 1013904223u;
    return state / 4294967296.0;
  };
  const char* types[] = {"quantum", "egelstaff"};
  const double temps[] = {0.0, 77.0, 300.0, 1000.0};
  const int counts[] = {0, 1, 2, 5, 12};
  for (int ti = 0; ti < 2; ++ti)
    for (double T : temps)
      for (int n : counts) {
        Case c{types[ti], T, {}, {}, (uniform() - 0.7) * 0.01, uniform() < 0.5 ? 1.0 : 0.003, 0.0, 10000.0};
        for (int k = 0; k < n; ++k) {
          c.freq.push_back((50.0 + 3450.0 * uniform()) * kCm);
          c.S.push_back(0.001 * std::pow(500.0, uniform()));
        }
        cases.push_back(c);
      }
  // Negative and zero factors, a tie.
  cases.push_back({"quantum", 300.0, {0.2, -0.05, 0.0, 0.2}, {0.002, 0.004, 0.006, 0.008}, -0.002, 1.0, 0.0, 10000.0});
  cases.push_back({"egelstaff", 300.0, {-0.1, 0.3, 0.3}, {0.002, 0.004, 0.006}, -0.001, 1.0, 0.0, 10000.0});
  cases.push_back({"quantum", 300.0, {0.0, 0.0}, {0.002, 0.004}, 0.001, 1.0, 0.0, 10000.0});
  // Strong coupling: zero beyond t of a few hundred, by the short-time term alone.
  cases.push_back({"quantum", 300.0, {5.0, 0.1, 0.02}, {3000 * kCm, 800 * kCm, 100 * kCm}, -0.02, 1.0, 0.0, 10000.0});
  cases.push_back({"egelstaff", 300.0, {5.0, 0.1}, {3000 * kCm, 800 * kCm}, -0.02, 1.0, 0.0, 10000.0});
  // Negative limits and reversed ones.
  cases.push_back({"quantum", 300.0, {0.3, 0.1}, {0.006, 0.002}, -0.003, 1.0, -2000.0, 3000.0});
  cases.push_back({"quantum", 300.0, {0.3, 0.1}, {0.006, 0.002}, -0.003, 1.0, 3000.0, 0.0});
  // A zero frequency: NaN everywhere, twenty stages.
  cases.push_back({"quantum", 300.0, {0.1, 0.3}, {0.0, 0.005}, -0.001, 1.0, 0.0, 10000.0});
  // The benchmark's 100 modes.
  Case big{"quantum", 300.0, {}, {}, -50 * kMeV, 1.0, 0.0, 10000.0};
  uint32_t s2 = 12345u;
  for (int k = 0; k < 100; ++k) {
    s2 = s2 * 1664525u + 1013904223u;
    const double u = s2 / 4294967296.0;
    big.freq.push_back(50.0 * std::pow(3500.0 / 50.0, k / 99.0) * kCm);
    big.S.push_back(0.001 * std::pow(500.0, u * u));
  }
  cases.push_back(big);
  return cases;
}

TEST(HoistedIntegrand, SimpsonEqualsThePlainFormBitForBit) {
  const std::vector<Case> cases = bit_cases();
  int early_zero_cases = 0;
  for (size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    Transport t;
    t.ratetype = c.ratetype;
    t.temp = c.T;
    int stages = 0;
    double plain = 0.0, hoisted = 0.0;
    capture_stdout([&] {
      plain = plain_qsimp(t, c, &stages);
      hoisted = member_qsimp(t, c);
    });
    EXPECT_TRUE(same_bits(hoisted, plain)) << "case " << i << ": " << hoisted << " vs " << plain;
    // Count the cases where the plain integrand is cut to zero at late times.
    double* S = const_cast<double*>(c.S.data());
    double* f = const_cast<double*>(c.freq.data());
    if (!c.S.empty() && t.rt_func(0.9 * c.b, static_cast<int>(c.S.size()), S, f, c.omega, c.V) == 0.0)
      ++early_zero_cases;
  }
  EXPECT_GE(early_zero_cases, 2);
}

TEST(HoistedIntegrand, TrapezoidStagesEqualThePlainFormBitForBit) {
  const std::vector<Case> cases = bit_cases();
  for (size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    Transport t;
    t.ratetype = c.ratetype;
    t.temp = c.T;
    double* S = const_cast<double*>(c.S.data());
    double* f = const_cast<double*>(c.freq.data());
    const int n = static_cast<int>(c.S.size());
    double plain = 0.0, hoisted = 0.0;
    for (int stage = 1; stage <= 9; ++stage) {
      plain = plain_stage(t, c, stage, plain);
      hoisted = t.trapzd(c.a, c.b, stage, hoisted, n, S, f, c.omega, c.V);
      ASSERT_TRUE(same_bits(hoisted, plain)) << "case " << i << " stage " << stage;
    }
  }
}

TEST(HoistedIntegrand, HopRateOfTheBenchmarkSetEqualsThePlainForm) {
  const Case big = bit_cases().back();
  Transport t;
  t.ratetype = "quantum";
  t.temp = 300.0;
  t.maxt = 10000.0;
  set_modes(t, big.freq, big.S);
  int stages = 0;
  const double plain = plain_qsimp(t, big, &stages) / kAuNs;
  EXPECT_TRUE(same_bits(t.hop_rate_no_V(0, -50 * kMeV, 0.0), plain));
  EXPECT_GT(plain, 0.0);
}

}  // namespace
