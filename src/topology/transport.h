// transport.h - class Transport: the engine. Neighbor topology, rates and kinetic
// Monte Carlo, quantum-chemistry inputs and the workflow scripts, all on the one
// object that also carries the parameters and the structure.
//
// Member definitions, one topic a file:
//   src/topology/transport.cpp              construction, destruction, release_memories,
//                                           getters and setters
//   src/topology/neighbor_list.cpp          calc_x_com, build_neighbor_list, the search and
//                                           reading neighbor.dat, allocate_mol_id_indexes_array
//   src/topology/neighbor_geometry.cpp      check_if_molecule_within_rcut family, distances,
//                                           find_neighbor_molecules_min_distance,
//                                           create_neighbor_cell_array, found_dup_mol,
//                                           mol_com_out_of_cutoff
//   src/topology/neighbor_keys.cpp          key mappings, check_if_key_in_keylist
//   src/topology/moments.cpp                moment tensor and principal-axis rotations
//   src/topology/pair_equivalence.cpp       eigenvalue tables, unique pairs, molecule classes
//   src/simulation/dyn_disorder_clean.cpp   dyn_disorder_clean
//   src/jobs/checker_scripts.cpp            the embedded checker and extension scripts
//   src/jobs/driver_scripts.cpp             MC and ME driver scripts of a carrier directory
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

  // ---- neighbor list (neighbor_list.cpp, neighbor_geometry.cpp, neighbor_keys.cpp)
  void calc_x_com();
  void build_neighbor_list(bool read_file, bool verbose);
  int check_if_molecule_within_rcut(int i, int j, int cell[3], double rcut2, double* rsq);
  int check_if_molecule_within_rcut_x(int i, int j, int cell[3], double rcut2, double* rsq);
  int check_if_molecule_within_rcut_cell2(int i, int cell_i[3], int j, int cell_j[3], double rcut2);
  int check_if_molecule_within_rcut_com(int i, int cell_i[3], int j, int cell_j[3], double rcut2);
  double found_two_molecules_min_distance(int i, int j, int cell[3]);
  double calc_neighbor_com_rsq(int i, int j, int cell[3]);
  void find_neighbor_molecules_min_distance(bool verbose);
  void allocate_mol_id_indexes_array();
  void create_neighbor_cell_array(int n[3], int* out[3]);
  void neighbor_map_key_1d_to_2d(int key, int* mol, int* nei);
  void neighbor_map_key_2d_to_1d(int mol, int nei, int* key);
  int neighbor_map_key_1d_to_uc_id(int key);
  int check_if_key_in_keylist(int key);
  int found_dup_mol(const std::vector<double>& x, const std::vector<double>& y, const std::vector<double>& z,
                    const std::vector<int>& id, double x0, double y0, double z0, int id0);
  bool mol_com_out_of_cutoff(const std::vector<double>& x, const std::vector<double>& y,
                             const std::vector<double>& z, double x0, double y0, double z0, double rcut2);

  // ---- molecule and pair equivalence (moments.cpp, pair_equivalence.cpp) ----
  void calc_moment_of_inertia(int n, double* x, double* mass, double I[3][3]);
  void calc_uc_mol_moment_and_rotate_x_one(int n, int* types, double* x_in, double* x_out, int i);
  void calc_2mol_moment_and_rotate_x_one(int n, int* types, double* x_in, double* x_out, int i, int j);
  void calc_HL_uc_mol_eigval_eigvec();
  void calc_HL_2mol_eigval_eigvec_and_unique_pairs();
  void dyn_disorder_build_unique_pairs();
  int HL_check_unitcell_unique_mols(bool verbose);
  void find_HL_mol_neighbor_index_unique();

  // ---- dynamic disorder (src/simulation) -----------------------------------
  void dyn_disorder_clean();

  // ---- embedded checker scripts (checker_scripts.cpp) -----------------------
  void write_gaussian_log_check_py_file();
  void write_orca_out_check_py_file();
  void write_qchem_out_check_py_file();
  void write_bdf_out_check_py_file();
  void write_qchem_fchk_ext_lowercase_py_file();
  void write_gaussian_ext_out_to_log_py_file();
  void write_gaussian_ext_fch_to_fchk_py_file();

  // ---- MC and ME driver scripts (driver_scripts.cpp) -------------------------
  void write_run_scripts_MC(const char* dir, const char* root_prefix, int carrier, int temp_flag, double temperature);
  void write_run_scripts_ME(const char* dir, const char* root_prefix, int carrier);
  void write_run_scripts_ME_TD(const char* dir, const char* root_prefix, int carrier, int temp_flag,
                               double temperature);
  void write_get_mob_py_ME(const char* dir);
  void write_get_mob_py_ME_TD(const char* dir);

  // ---- allocation bookkeeping ----------------------------------------------
  // Row counts of the arrays above as allocated, so that release does not depend
  // on counts that a later reading may have changed.
  int neighbor_rows_allocated;
  int id_rows_allocated;
  int pair_rows_allocated;
  int run_rows_allocated;
};

#endif  // TAVIX_TRANSPORT_H
