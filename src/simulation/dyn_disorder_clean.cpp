// Transport::dyn_disorder_clean: releases what the dynamic-disorder preparation owns.
#include <vector>

#include "array_release.h"
#include "transport.h"

namespace {
template <typename T>
void drop(T& v) {
  T().swap(v);
}
}  // namespace

// The mode arrays, the static V and E, the series, the buffers, w0_no_V, and the
// module arrays S_m and freq_m of the rate kernels. Pointers are left null, so a
// second call does nothing.
void Transport::dyn_disorder_clean() {
  release_array(S_m);
  release_array(freq_m);

  drop(nm_freq);
  drop(nm_lambda);
  drop(nm_S);
  drop(nNM);
  max_nNM = 0;
  drop(lambda_mol);
  drop(V_pair);
  drop(nV);
  drop(dE_pair);
  drop(nE);

  drop(dyn_V_count);
  drop(dyn_V_mean);
  drop(dyn_V_fft);
  dyn_V_dt = 0.0;
  drop(dyn_HL_frames);
  drop(dyn_HL_fft);
  drop(dyn_HL_mean);
  drop(dyn_HL_count);
  dyn_HL_dt = 0.0;
  drop(dyn_V2_buffer_full);
  drop(dyn_V2_buffer_unique);
  drop(dyn_w0_no_V_buffer_full);
  drop(dyn_w0_no_V_buffer_unique);

  release_rows(w0_no_V, w0_no_V_rows_allocated);
  w0_no_V_rows_allocated = 0;
}
