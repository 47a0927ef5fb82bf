// Recursive radix-2 Fourier transform on std::valarray, and the power-of-two cut
// its callers use to size a series.
#include <cstddef>

#include "txutil.h"

// Decimation in time. The length must be a power of two (callers cut with
// highestPowerof2); an odd length drops its last entry from both halves, and that
// entry is left as it was.
void CT_fft(CArray& x) {
  const std::size_t n = x.size();
  if (n < 2) return;
  const std::size_t half = n / 2;
  CArray even = x[std::slice(0, half, 2)];
  CArray odd = x[std::slice(1, half, 2)];
  CT_fft(even);
  CT_fft(odd);
  const double dn = static_cast<double>(n);
  for (std::size_t k = 0; k < half; ++k) {
    const Complex w = std::polar(1.0, -6.283185307179586 * static_cast<double>(k) / dn);
    const Complex t = w * odd[k];
    x[k] = even[k] + t;
    x[k + half] = even[k] - t;
  }
}

void CT_ifft(CArray& x) {
  const std::size_t n = x.size();
  for (std::size_t i = 0; i < n; ++i) x[i] = std::conj(x[i]);
  CT_fft(x);
  const double dn = static_cast<double>(n);
  for (std::size_t i = 0; i < n; ++i) x[i] = std::conj(x[i]) / dn;
}

// Linear count-down, as the series lengths it serves are small.
int highestPowerof2(int n) {
  for (int i = n; i >= 1; --i)
    if ((i & (i - 1)) == 0) return i;
  return 0;
}
