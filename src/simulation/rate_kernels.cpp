// Rate kernels: the Marcus expression and the quantum Fermi-golden-rule rate as the
// time integral of a correlation function over the normal modes.
//
// The kernels work in atomic units (hartree, atomic time) and hand back rates in
// 1/ns. They exist twice: as Transport members that take their data as arguments,
// and as a free trio driven by module globals for use through a plain function
// pointer.
//
// The members integrate through a hoisted form of the integrand: everything that
// does not depend on the time (occupation numbers, the products of factors that
// multiply the time-dependent parts) is computed once per integral. Each hoisted
// product is the left operand of the same left-to-right product the plain form
// evaluates, so every value is bit for bit the plain one; rt_func keeps the plain
// form and the tests compare the two.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

#include "transport.h"

double* S_m = nullptr;
double* freq_m = nullptr;
int nNM_m = 0;
double omega_m = 0.0;
double flagV_m = 0.0;
std::string ratetype_m;
double temperature_m = 0.0;
double maxt_m = 0.0;

namespace {

constexpr double kB = 3.1677375952000004e-6;     // hartree per kelvin
constexpr double kTwoKB = 6.335475190400001e-6;  // 2 kB as one literal
constexpr double kAuNs = 2.4189e-8;              // ns per atomic time unit
constexpr double kPi = 3.141592653589793;
constexpr double kBoseCut = 128.0;           // freq/kT above which the occupation is 0
constexpr double kExponentCut = 127.0;       // real exponent above which the integrand is 0
constexpr double kSimpsonTolerance = 1e-10;  // relative
constexpr int kMaxSimpsonStages = 20;
constexpr int kMaxTrapezoidStage = 31;  // 2^29 new points; beyond, the count overflows

enum class RateModel { quantum, egelstaff };

// Case-sensitive on purpose: the control reader's case-blind "marcus"/"quant" test is
// a different gate, and Marcus never reaches the integrand.
RateModel integrand_model(const std::string& ratetype) {
  if (std::strncmp(ratetype.c_str(), "quantum", 5) == 0) return RateModel::quantum;
  if (std::strncmp(ratetype.c_str(), "egelst", 6) == 0) return RateModel::egelstaff;
  TX_FATAL_HEAD(txunit::transport);
  std::printf("WARNING: Unknown ratetype: %s\n", ratetype.c_str());
  std::printf("Supported rate types are quantum or egelst.\n");
  tx_exit(1);
}

// The mode with the largest Huang-Rhys factor, taken in the short-time form: a
// forward scan with strict greater-than from 0.0, so ties keep the first and with
// no positive factor mode 0 is chosen. The control key sta does not switch it off.
int short_time_mode(int nNM, const double* S) {
  int kmax = 0;
  double smax = 0.0;
  for (int k = 0; k < nNM; ++k)
    if (S[k] > smax) {
      smax = S[k];
      kmax = k;
    }
  return kmax;
}

// Bose occupation; a zero frequency divides by zero here and is not guarded.
inline double occupation(double freq, double kT) {
  const double x = freq / kT;
  return x > kBoseCut ? 0.0 : 1.0 / (std::exp(x) - 1.0);
}

// The integrand as written, everything recomputed at every time: the reference of
// the hoisted form below.
double plain_integrand(RateModel model, double T, double t, int nNM, const double* S, const double* freq, double omega,
                       double V) {
  const int kmax = short_time_mode(nNM, S);
  double re = 0.0;
  if (model == RateModel::quantum) {
    double im = 0.0;
    for (int k = 0; k < nNM; ++k) {
      const double n = occupation(freq[k], T * kB);
      if (k != kmax) {
        re += (2.0 * n + 1.0) * S[k] * (1.0 - std::cos(freq[k] * t));
        im += S[k] * std::sin(freq[k] * t);
      } else {
        const double ft = freq[k] * t;
        re += (n + 0.5) * S[k] * (ft * ft);
        im += S[k] * freq[k] * t;
      }
    }
    if (re > kExponentCut) return 0.0;
    return std::exp(-re) * (V * V + V * V) * std::cos(im + t * omega);
  }
  const double q = 1.0 / (kTwoKB * T);
  const double tau2 = t * t + q * q;
  const double tau = std::sqrt(tau2);
  for (int k = 0; k < nNM; ++k) {
    const double P = kB * T / freq[k];  // a zero frequency divides by zero, unguarded
    if (k != kmax)
      re += 2.0 * S[k] * P * (1.0 - std::cos(freq[k] * tau));
    else
      re += S[k] * P * freq[k] * freq[k] * tau2;
  }
  if (re > kExponentCut) return 0.0;
  return std::exp(-re) * (V * V + V * V) * std::cos(t * omega);
}

// The integrand with its time-independent factors computed once. Sized once per
// integral; an evaluation allocates nothing.
class HoistedIntegrand {
 public:
  // `tmax` bounds |t| over the integral; it only decides whether the early zero
  // below is safe.
  HoistedIntegrand(RateModel model, double T, int nNM, const double* S, const double* freq, double omega, double V,
                   double tmax)
      : model_(model), n_(nNM), kmax_(short_time_mode(nNM, S)), v2_(V * V + V * V), omega_(omega) {
    freq_.assign(freq, freq + nNM);
    sin_coef_.assign(S, S + nNM);
    cos_coef_.resize(nNM);
    if (model == RateModel::quantum) {
      for (int k = 0; k < nNM; ++k) {
        const double n = occupation(freq[k], T * kB);
        cos_coef_[k] = k != kmax_ ? (2.0 * n + 1.0) * S[k] : (n + 0.5) * S[k];
        if (k == kmax_) kmax_im_ = S[k] * freq[k];
      }
      arg_max_ = std::fabs(tmax);
    } else {
      const double q = 1.0 / (kTwoKB * T);
      q2_ = q * q;
      for (int k = 0; k < nNM; ++k) {
        const double P = kB * T / freq[k];
        cos_coef_[k] = k != kmax_ ? 2.0 * S[k] * P : S[k] * P * freq[k] * freq[k];
      }
      arg_max_ = std::sqrt(tmax * tmax + q2_);
    }
    // When every term of the real exponent is finite and non-negative at every time
    // of the integral, its partial sums only grow, so a short-time term above the
    // cut already decides the plain result: 0.0. Negative or non-finite factors
    // (and arguments whose squares could overflow) keep the full evaluation.
    early_zero_ = n_ > 0 && std::isfinite(arg_max_);
    for (int k = 0; k < n_ && early_zero_; ++k)
      early_zero_ = std::isfinite(cos_coef_[k]) && cos_coef_[k] >= 0.0 && std::isfinite(freq_[k]) &&
                    std::fabs(freq_[k]) * arg_max_ < 1e150;
  }

  double operator()(double t) const { return model_ == RateModel::quantum ? quantum(t) : egelstaff(t); }

 private:
  double quantum(double t) const {
    if (early_zero_) {
      const double ft = freq_[kmax_] * t;
      if (cos_coef_[kmax_] * (ft * ft) > kExponentCut) return 0.0;
    }
    double re = 0.0, im = 0.0;
    const double* c = cos_coef_.data();
    const double* s = sin_coef_.data();
    const double* f = freq_.data();
    for (int k = 0; k < kmax_; ++k) {
      re += c[k] * (1.0 - std::cos(f[k] * t));
      im += s[k] * std::sin(f[k] * t);
    }
    if (n_ > 0) {
      const double ft = f[kmax_] * t;
      re += c[kmax_] * (ft * ft);
      im += kmax_im_ * t;
    }
    for (int k = kmax_ + 1; k < n_; ++k) {
      re += c[k] * (1.0 - std::cos(f[k] * t));
      im += s[k] * std::sin(f[k] * t);
    }
    if (re > kExponentCut) return 0.0;
    return std::exp(-re) * v2_ * std::cos(im + t * omega_);
  }

  double egelstaff(double t) const {
    const double tau2 = t * t + q2_;
    const double tau = std::sqrt(tau2);
    if (early_zero_ && cos_coef_[kmax_] * tau2 > kExponentCut) return 0.0;
    double re = 0.0;
    const double* c = cos_coef_.data();
    const double* f = freq_.data();
    for (int k = 0; k < kmax_; ++k) re += c[k] * (1.0 - std::cos(f[k] * tau));
    if (n_ > 0) re += c[kmax_] * tau2;
    for (int k = kmax_ + 1; k < n_; ++k) re += c[k] * (1.0 - std::cos(f[k] * tau));
    if (re > kExponentCut) return 0.0;
    return std::exp(-re) * v2_ * std::cos(t * omega_);
  }

  RateModel model_;
  int n_;
  int kmax_;
  double v2_;             // V^2 + V^2, hartree^2
  double omega_;          // hartree
  double q2_ = 0.0;       // (1/(2 kB T))^2, Egelstaff only
  double kmax_im_ = 0.0;  // S f of the short-time mode
  double arg_max_ = 0.0;  // bound of |time argument| over the integral
  bool early_zero_ = false;
  std::vector<double> freq_;      // hartree
  std::vector<double> sin_coef_;  // S
  std::vector<double> cos_coef_;  // factor of (1 - cos) per mode, of the square for kmax
};

// Stage n of the extended trapezoid rule over [a, b]; `s` is the previous stage.
// The new points are reached by repeated addition of the step, as the rule is
// usually written, not by multiplication: the points and so the sums depend on it.
template <typename F>
double trapezoid_stage(const F& f, double a, double b, int n, double s) {
  if (n == 1) return 0.5 * (b - a) * (f(a) + f(b));
  if (n > kMaxTrapezoidStage)
    TX_FATAL(txunit::transport, 1, stdout, "trapzd: refinement stage %d is beyond %d\n", n, kMaxTrapezoidStage);
  int it = 1;
  for (int j = 1; j < n - 1; ++j) it <<= 1;
  const double tnm = it;
  const double del = (b - a) / tnm;
  double x = a + 0.5 * del;
  double sum = 0.0;
  for (int j = 0; j < it; ++j, x += del) sum += f(x);
  return 0.5 * (s + (b - a) * sum / tnm);
}

// Simpson's rule from the trapezoid stages. `stage(n, s)` returns stage n. Gives
// false in `converged` (and 0.0) when 20 stages do not meet the tolerance.
template <typename Stage>
double simpson(const Stage& stage, bool* converged) {
  double st = stage(1, 0.0);
  double s = 4.0 * st / 3.0;
  for (int j = 2; j <= kMaxSimpsonStages; ++j) {
    const double ost = st;
    st = stage(j, st);
    const double os = s;
    s = (4.0 * st - ost) / 3.0;
    if (j > 6) {
      // An integrand that is exactly zero at every point stops here through the
      // second test, at stage 7.
      if (std::fabs(s - os) < kSimpsonTolerance * std::fabs(os) || (s == 0.0 && os == 0.0)) {
        *converged = true;
        return s;
      }
    }
  }
  *converged = false;
  return 0.0;
}

}  // namespace

// ---- the free trio ----------------------------------------------------------------

double rt_func_s(double t) {
  return plain_integrand(integrand_model(ratetype_m), temperature_m, t, nNM_m, S_m, freq_m, omega_m, flagV_m);
}

double trapzd_s(double (*f)(double), double a, double b, int n) {
  // One integration at a time: the running sum lives here between the stages.
  static double s;
  s = trapezoid_stage(f, a, b, n, s);
  return s;
}

double qsimp_s(double (*f)(double), double a, double b) {
  bool converged = false;
  // Silent on failure, unlike the member qsimp; the asymmetry is kept as it is.
  return simpson([&](int n, double) { return trapzd_s(f, a, b, n); }, &converged);
}

// ---- members ---------------------------------------------------------------------

double Transport::rt_func(double t, int nNM, double* S, double* freq, double omega, double V) {
  return plain_integrand(integrand_model(ratetype), temp, t, nNM, S, freq, omega, V);
}

double Transport::trapzd(double a, double b, int n, double s, int nNM, double* S, double* freq, double omega,
                         double V) {
  const HoistedIntegrand f(integrand_model(ratetype), temp, nNM, S, freq, omega, V,
                           std::fmax(std::fabs(a), std::fabs(b)));
  return trapezoid_stage(f, a, b, n, s);
}

double Transport::qsimp(double a, double b, int nNM, double* S, double* freq, double omega, double V) {
  const HoistedIntegrand f(integrand_model(ratetype), temp, nNM, S, freq, omega, V,
                           std::fmax(std::fabs(a), std::fabs(b)));
  bool converged = false;
  const double s = simpson([&](int n, double prev) { return trapezoid_stage(f, a, b, n, prev); }, &converged);
  if (!converged) {
    std::printf("WARNING: Too many steps in routine qsimp!\n");
    return 0.0;
  }
  return s;
}

double Transport::hop_rate_no_V(int root, double dE, double lambda_tot) {
  if (strcasestr_n(ratetype.c_str(), "marcus", 4)) {
    const double a = kB * temp * lambda_tot;
    const double x = lambda_tot + dE;
    return std::sqrt(kPi / a) * std::exp(-(x * x) / (4.0 * a)) / kAuNs;
  }
  if (root < 0 || root >= static_cast<int>(nNM.size()) || root >= static_cast<int>(nm_S.size()) ||
      root >= static_cast<int>(nm_freq.size()))
    TX_FATAL(txunit::transport, 1, stdout, "No normal modes are read for molecule %d\n", root + 1);
  const int n = nNM[root];
  double* S = nm_S[root].data();
  double* freq = nm_freq[root].data();
  // Uphill is the downhill integral with detailed balance; dE = 0 takes this path too.
  if (dE < 0.0) return qsimp(0.0, maxt, n, S, freq, dE, 1.0) / kAuNs;
  return qsimp(0.0, maxt, n, S, freq, -dE, 1.0) * std::exp(-dE / (kB * temp)) / kAuNs;
}
