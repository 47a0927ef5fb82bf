// Transport: construction, release of the engine's arrays, getters and setters.
#include "transport.h"

#include <cstring>

#include "array_release.h"

Transport::Transport()
    : trackdir("track"),
      track_timeunit(1e-9),
      openmp_flag(1),
      NNEIMAX(300),
      dyn_buffer_size(100000),
      mc_chargetype("e"),
      hl_dir("HL"),
      re_dir("RE"),
      run_dir("RUN"),
      scr_dir("scr"),
      check_dir("check"),
      evc_dir("evc"),
      debug_flag(0),
      x_com_done(false),
      neighbor_built(false),
      mol_id_ready(false),
      pairs_checked(false),
      post_read_done(false),
      homo_ready(false),
      mc_ready(false),
      nneighbors(nullptr),
      neighbor_id(nullptr),
      neighbor_cx(nullptr),
      neighbor_cy(nullptr),
      neighbor_cz(nullptr),
      neighbor_x(nullptr),
      neighbor_df(nullptr),
      neighbor_nkeys(0),
      max_nneighbors(0),
      uc_mol_eigvec(nullptr),
      pair_flag(nullptr),
      pair_x(nullptr),
      pair_eigval(nullptr),
      pair_eigvec(nullptr),
      nei_mol_seq(nullptr),
      nei_mol_id(nullptr),
      pair_key_map(nullptr),
      pair_keylist(nullptr),
      pair_keylist_count(0),
      write_rot_mol_flag(false),
      carrier_char(0),
      nsnap(0),
      homo_index(nullptr),
      w0(nullptr),
      max_nNM(0),
      lambda_outer(nullptr),
      neighbor_dx(nullptr),
      dE_field(nullptr),
      neighbor_key_offset(nullptr),
      dyn_disorder_mode(0),
      track_istep(nullptr),
      track_t(nullptr),
      track_x(nullptr),
      track_r2(nullptr),
      ave_istep(nullptr),
      ave_t(nullptr),
      ave_x(nullptr),
      ave_r2(nullptr),
      neighbor_rows_allocated(0),
      id_rows_allocated(0),
      pair_rows_allocated(0),
      run_rows_allocated(0) {
  std::memset(field_axes, 0, sizeof(field_axes));
  mol_input_mode = -1;
  unique_uc_mol_one_calc_flag = (HL_unique_mol != 0);
  unique_nei_mol_one_calc_flag = (HL_unique_mol != 0);
  unique_2mol_calc_flag = (HL_unique_mol != 0);
  unique_RE_calc_flag = (RE_unique_mol != 0);
  get_workdir(job_workdir);
}

Transport::~Transport() { release_memories(); }

// Frees in the fixed order molecules, pair lists, identity tables, neighbor rows,
// Monte Carlo data. Every pointer is left null, so a second call does nothing.
void Transport::release_memories() {
  release_molecule_arrays();

  release_array(pair_key_map);
  release_array(pair_keylist);
  pair_keylist_count = 0;
  pairs_checked = false;

  release_array(uc_mol_seq);
  release_array(uc_mol_id);
  release_array(uc_mol_re_list);
  release_array(uc_mol_unique_list);
  release_rows(nei_mol_seq, id_rows_allocated);
  release_rows(nei_mol_id, id_rows_allocated);
  id_rows_allocated = 0;
  mol_id_ready = false;

  // The pair containers are allocated with the neighbor rows and share their shape.
  for (int i = 0; i < pair_rows_allocated; ++i) {
    int n = nneighbors ? nneighbors[i] : 0;
    if (pair_x && pair_x[i])
      for (int j = 0; j < n; ++j) delete[] pair_x[i][j];
    if (pair_eigval && pair_eigval[i])
      for (int j = 0; j < n; ++j) delete[] pair_eigval[i][j];
    if (pair_eigvec && pair_eigvec[i])
      for (int j = 0; j < n; ++j) delete[] pair_eigvec[i][j];
  }
  release_rows(pair_x, pair_rows_allocated);
  release_rows(pair_eigval, pair_rows_allocated);
  release_rows(pair_eigvec, pair_rows_allocated);
  release_rows(pair_flag, pair_rows_allocated);
  release_rows(uc_mol_eigvec, pair_rows_allocated);
  release_rows(uc_mol_eigval, eigval_rows_allocated);
  eigval_rows_allocated = 0;
  pair_rows_allocated = 0;

  release_rows(neighbor_id, neighbor_rows_allocated);
  release_rows(neighbor_cx, neighbor_rows_allocated);
  release_rows(neighbor_cy, neighbor_rows_allocated);
  release_rows(neighbor_cz, neighbor_rows_allocated);
  release_rows(neighbor_x, neighbor_rows_allocated);
  release_rows(neighbor_df, neighbor_rows_allocated);
  release_array(nneighbors);
  neighbor_rows_allocated = 0;
  neighbor_built = false;

  release_array(track_istep);
  release_array(track_t);
  release_array(track_x);
  release_array(track_r2);
  release_array(ave_istep);
  release_array(ave_t);
  release_array(ave_x);
  release_array(ave_r2);
  release_rows(w0, run_rows_allocated);
  release_rows(lambda_outer, run_rows_allocated);
  release_rows(neighbor_dx, run_rows_allocated);
  release_rows(dE_field, run_rows_allocated);
  release_array(neighbor_key_offset);
  release_array(homo_index);
  run_rows_allocated = 0;
  if (mc_ready && (V_dynamic_disorder || HOMOLUMO_dynamic_disorder)) dyn_disorder_clean();
  mc_ready = false;
}

bool Transport::get_unique_uc_mol_one_calc_flag() { return unique_uc_mol_one_calc_flag; }
bool Transport::get_unique_nei_mol_one_calc_flag() { return unique_nei_mol_one_calc_flag; }
bool Transport::get_unique_2mol_calc_flag() { return unique_2mol_calc_flag; }
bool Transport::get_unique_RE_calc_flag() { return unique_RE_calc_flag; }
void Transport::set_trackdir(const char* dir) { trackdir = dir; }
void Transport::set_trackdir(const std::string& dir) { trackdir = dir; }
std::string Transport::get_trackdir() { return trackdir; }
double Transport::get_track_timeunit() { return track_timeunit; }
void Transport::set_track_timeunit(double unit) { track_timeunit = unit; }
void Transport::set_openmp_flag(unsigned char flag) { openmp_flag = flag; }
