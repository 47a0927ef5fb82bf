// transport.h - class Transport: the engine. Neighbor topology, rates and kinetic
// Monte Carlo, quantum-chemistry inputs and the workflow scripts, all on the one
// object that also carries the parameters and the structure.
//
// Member definitions, one topic a file:
//   src/topology/transport.cpp              construction, destruction, release_memories,
//                                           getters and setters
//   src/simulation/dyn_disorder_clean.cpp   dyn_disorder_clean
#ifndef TAVIX_TRANSPORT_H
#define TAVIX_TRANSPORT_H

#include <map>
#include <string>
#include <vector>

#include "tavix_inp.h"

class Transport : public TavixInp {
 public:
  Transport();
  ~Transport();

  // ---- members no control key reaches ---------------------------------------
  std::string trackdir;              // directory of track files
  double track_timeunit;             // seconds per track time unit
  unsigned char openmp_flag;         // chooses the runner in write_run_scripts_MC
  int NNEIMAX;                       // capacity of a neighbor row
  int dyn_buffer_size;               // samples in a dynamic-disorder buffer
  std::string mc_chargetype;         // carrier of the Monte Carlo run
  // Directory names of the run layout; Jobscript holds its own copies.
  std::string hl_dir;
  std::string re_dir;
  std::string run_dir;
  std::string scr_dir;
  std::string check_dir;
  std::string evc_dir;
  int debug_flag;                    // traces; nothing in the engine raises it

  // ---- state flags ----------------------------------------------------------
  bool x_com_done;
  bool neighbor_built;
  bool mol_id_ready;
  bool pairs_checked;
  bool post_read_done;
  bool homo_ready;
  bool mc_ready;

  // ---- neighbor list --------------------------------------------------------
  int* nneighbors;
  int** neighbor_id;                 // zero-based unit-cell index
  int** neighbor_cx;                 // cell index along a
  int** neighbor_cy;                 // cell index along b
  int** neighbor_cz;                 // cell index along c
  double** neighbor_x;               // angstrom, 3 per neighbor
  double** neighbor_df;              // fractional displacement, 3 per neighbor
  int neighbor_nkeys;
  int max_nneighbors;

  // ---- pair containers and identity tables ---------------------------------
  double** uc_mol_eigvec;            // principal axes, 9 per molecule
  int** pair_flag;
  double*** pair_x;
  double*** pair_eigval;             // 3 per pair
  double*** pair_eigvec;             // 9 per pair
  int** nei_mol_seq;
  int** nei_mol_id;
  int* pair_key_map;                 // zero-based representative key of each key
  int* pair_keylist;                 // ascending one-based representative keys
  int pair_keylist_count;
  bool write_rot_mol_flag;

  // ---- run data -------------------------------------------------------------
  int carrier_char;                  // 101 electron, 104 hole
  int nsnap;
  int* homo_index;
  double** w0;                       // 1/ns, per root and neighbor
  std::vector<std::vector<double>> V_pair;     // hartree
  std::vector<std::vector<double>> dE_pair;    // hartree
  std::vector<int> nV;
  std::vector<int> nE;
  std::vector<int> nNM;
  std::vector<std::vector<double>> nm_freq;    // hartree
  std::vector<std::vector<double>> nm_lambda;  // hartree
  std::vector<std::vector<double>> nm_S;       // Huang-Rhys factors
  int max_nNM;
  std::vector<double> lambda_mol;    // hartree
  double** lambda_outer;             // hartree, per root and neighbor
  double** neighbor_dx;              // angstrom, 3 per neighbor
  double** dE_field;                 // hartree, per root and neighbor
  double field_axes[3][3];
  int* neighbor_key_offset;
  std::map<int, int> unique_pair_index;
  int dyn_disorder_mode;             // 0 none, 1 V, 2 HOMO/LUMO, 3 both

  // ---- Monte Carlo tracks, nsnap + 1 entries each -------------------------
  int* track_istep;
  double* track_t;                   // ns
  double* track_x;                   // angstrom, 3 per entry
  double* track_r2;                  // angstrom^2
  int* ave_istep;
  double* ave_t;
  double* ave_x;
  double* ave_r2;

  // ---- lifetime, getters, setters (transport.cpp) --------------------------
  void release_memories();
  bool get_unique_uc_mol_one_calc_flag();
  bool get_unique_nei_mol_one_calc_flag();
  bool get_unique_2mol_calc_flag();
  bool get_unique_RE_calc_flag();
  void set_trackdir(const char* dir);
  void set_trackdir(const std::string& dir);
  std::string get_trackdir();
  double get_track_timeunit();
  void set_track_timeunit(double unit);
  void set_openmp_flag(unsigned char flag);

  // ---- dynamic disorder (src/simulation) -----------------------------------
  void dyn_disorder_clean();

  // ---- allocation bookkeeping ----------------------------------------------
  // Row counts of the arrays above as allocated, so that release does not depend
  // on counts that a later reading may have changed.
  int neighbor_rows_allocated;
  int id_rows_allocated;
  int pair_rows_allocated;
  int run_rows_allocated;
};

#endif  // TAVIX_TRANSPORT_H
