// Cyclic Jacobi eigensolver for the small symmetric matrices of the engine
// (inertia tensors, 3x3), and the matching descending sort.
#include <cmath>
#include <cstdio>

#include "txutil.h"

namespace {
constexpr int kMaxSweeps = 50;
constexpr double kEps = 2.220446e-16;

inline void rotate(double m[3][3], double s, double tau, int i, int j, int k, int l) {
  const double g = m[i][j];
  const double h = m[k][l];
  m[i][j] = g - s * (h + g * tau);
  m[k][l] = h + s * (g - h * tau);
}

// Rows are fixed at three doubles; a larger order would run off the arrays.
void check_order(const char* who, int n) {
  if (n > 3) TX_FATAL(txunit::txutil, -1, stderr, "%s - matrix order %d exceeds 3\n", who, n);
}
}  // namespace

void jacobi_nr(double a[3][3], int n, double d[3], double v[3][3], int* nrot) {
  check_order("jacobi_nr", n);
  double b[3];
  double z[3];
  for (int ip = 0; ip < n; ++ip) {
    for (int iq = 0; iq < n; ++iq) v[ip][iq] = 0.0;
    v[ip][ip] = 1.0;
  }
  for (int ip = 0; ip < n; ++ip) {
    b[ip] = d[ip] = a[ip][ip];
    z[ip] = 0.0;
  }
  *nrot = 0;
  for (int sweep = 1; sweep <= kMaxSweeps; ++sweep) {
    double sm = 0.0;
    for (int ip = 0; ip < n - 1; ++ip)
      for (int iq = ip + 1; iq < n; ++iq) sm += std::fabs(a[ip][iq]);
    // Exact zero is the only convergence test: the rotations drive the
    // off-diagonal to true zeros.
    if (sm == 0.0) return;
    const double tresh = sweep < 4 ? 0.2 * sm / (n * n) : 0.0;
    for (int ip = 0; ip < n - 1; ++ip) {
      for (int iq = ip + 1; iq < n; ++iq) {
        const double g = 100.0 * std::fabs(a[ip][iq]);
        if (sweep > 4 && g <= kEps * std::fabs(d[ip]) && g <= kEps * std::fabs(d[iq])) {
          a[ip][iq] = 0.0;
        } else if (std::fabs(a[ip][iq]) > tresh) {
          double h = d[iq] - d[ip];
          double t;
          if (g <= kEps * std::fabs(h)) {
            t = a[ip][iq] / h;
          } else {
            const double theta = 0.5 * h / a[ip][iq];
            t = 1.0 / (std::fabs(theta) + std::sqrt(1.0 + theta * theta));
            if (theta < 0.0) t = -t;
          }
          const double c = 1.0 / std::sqrt(1 + t * t);
          const double s = t * c;
          const double tau = s / (1.0 + c);
          h = t * a[ip][iq];
          z[ip] -= h;
          z[iq] += h;
          d[ip] -= h;
          d[iq] += h;
          a[ip][iq] = 0.0;
          for (int j = 0; j < ip; ++j) rotate(a, s, tau, j, ip, j, iq);
          for (int j = ip + 1; j < iq; ++j) rotate(a, s, tau, ip, j, j, iq);
          for (int j = iq + 1; j < n; ++j) rotate(a, s, tau, ip, j, iq, j);
          for (int j = 0; j < n; ++j) rotate(v, s, tau, j, ip, j, iq);
          ++*nrot;
        }
      }
    }
    for (int ip = 0; ip < n; ++ip) {
      b[ip] += z[ip];
      d[ip] = b[ip];
      z[ip] = 0.0;
    }
  }
  // Callers go on with the last d and v.
  std::printf("ERROR: Too many iterations in routine jacobi\n");
}

void jacobi_nr(double a[3][3], int n, double d[3], double v[3][3], int& nrot) { jacobi_nr(a, n, d, v, &nrot); }

void eigsrt_nr(double d[3], double v[3][3], int n) {
  check_order("eigsrt_nr", n);
  for (int i = 0; i < n - 1; ++i) {
    int k = i;
    double p = d[i];
    // Greater-or-equal: of equal values the later one is taken.
    for (int j = i + 1; j < n; ++j) {
      if (d[j] >= p) {
        k = j;
        p = d[j];
      }
    }
    if (k != i) {
      d[k] = d[i];
      d[i] = p;
      if (v) {
        for (int j = 0; j < n; ++j) {
          const double t = v[j][i];
          v[j][i] = v[j][k];
          v[j][k] = t;
        }
      }
    }
  }
}
