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
//   src/topology/neighbor_data_files.cpp    neighbor.dat, neighbor pictures, overlap maps, bonds
//   src/simulation/run_data.cpp             post_data_read_treatment, calc_homo, MC_init, the
//                                           W, V, E, NM, charge and temp files
//   src/simulation/rate_kernels.cpp         rt_func, trapzd, qsimp, their free trio, the
//                                           rate of one hop without V
//   src/simulation/kmc.cpp                  the walkers and MC_run forms
//   src/simulation/tracks.cpp               output_track, output_track_ave
//   src/simulation/dynamic_disorder.cpp     series readers, synthesis, buffers, rates in time
//   src/simulation/dyn_disorder_clean.cpp   dyn_disorder_clean
//   src/jobs/checker_scripts.cpp            the embedded checker and extension scripts
//   src/jobs/driver_scripts.cpp             MC and ME driver scripts of a carrier directory
//   src/jobs/workflow_scripts.cpp           write_scripts: run layout, lists, step scripts
#ifndef TAVIX_TRANSPORT_H
#define TAVIX_TRANSPORT_H

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "tavix_inp.h"

// ---- the free rate-kernel trio and its module globals (rate_kernels.cpp) ---------
// For use through a plain function pointer. Nothing in the engine calls them; a
// program that does fills nNM_m, omega_m and flagV_m and copies its modes into
// S_m and freq_m first.
extern double* S_m;              // Huang-Rhys factors
extern double* freq_m;           // hartree
extern int nNM_m;
extern double omega_m;           // hartree
extern double flagV_m;           // hartree
extern std::string ratetype_m;
extern double temperature_m;     // kelvin
extern double maxt_m;            // atomic time
double rt_func_s(double t);
double trapzd_s(double (*f)(double), double a, double b, int n);
double qsimp_s(double (*f)(double), double a, double b);

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

  // ---- neighbor data files (neighbor_data_files.cpp) ------------------------
  void output_neighbor_info(FILE* stream);
  void output_neighbor_data();
  void output_moo_pos_data();
  void output_moo_map_xml();
  void write_map_xml_segment(FILE* fp, const char* prefix, int i, int natoms, double* mass, int homo);
  void write_mol_bonds_files(bool do_write);

  // ---- run data (run_data.cpp) ------------------------------------------------
  void post_data_read_treatment(bool verbose);
  void calc_homo();
  void MC_init();
  void read_MC_w0();
  void write_MC_w0(double** w, int n);
  void write_MC_hoprates(const char* file);
  void write_MC_hoprates_dyn(const char* file);
  void read_charge_inp();
  double read_temp_inp();
  void dyn_disorder_init_prefix(bool verbose);

  // ---- rate kernels (rate_kernels.cpp) -------------------------------------------
  double rt_func(double t, int nNM, double* S, double* freq, double omega, double V);
  double trapzd(double a, double b, int n, double s, int nNM, double* S, double* freq, double omega, double V);
  double qsimp(double a, double b, int nNM, double* S, double* freq, double omega, double V);
  // The rate of one hop from `root` with V = 1 (1/ns): Marcus, or the quantum
  // integral with detailed balance. Every rate builder uses this one recipe; a
  // full hop rate is this value times V^2 (V in hartree).
  double hop_rate_no_V(int root, double dE, double lambda_tot);

  // ---- kinetic Monte Carlo (kmc.cpp, tracks.cpp) -----------------------------
  void MC_simulation_one(int itraj, const char* dir);
  void MC_simulation_one_thinfilm(int itraj, const char* dir);
  void MC_run(const char* dir, int start, int n);
  void MC_run(const char* dir, int start);
  void MC_run_openMP(const char* dir, int start, int n);
  void MC_run_openMP(const char* dir);
  void MC_run_openMP(const char* dir, int start);
  void MC_run_openMP_dyn_disorder(const char* dir, int start, int n);
  void MC_run_openMP_thinfilm(const char* dir, int start, int n);
  void output_track(const char* dir, int itraj, double* t, double* x, double* r2, int* istep);
  void output_track_ave(const char* dir, double* t, double* x, double* r2, int* istep);

  // ---- dynamic disorder (dynamic_disorder.cpp, dyn_disorder_clean.cpp) -------
  // Data of the series and buffers (the dynamic-disorder code owns this block).
  // DYN-DISORDER-DATA-BEGIN
  // Series of the transfer integrals, per root i and pair column p; N is a power of two.
  std::vector<std::vector<int>> dyn_V_count;                  // N samples used
  std::vector<std::vector<double>> dyn_V_mean;                // meV
  std::vector<std::vector<std::vector<Complex>>> dyn_V_fft;   // spectrum of the mean-free series, N entries
  double dyn_V_dt = 0.0;                                      // ns between snapshots
  // Series of the orbital energies, per molecule m.
  std::vector<std::vector<double>> dyn_HL_frames;             // meV, every frame read
  std::vector<std::vector<Complex>> dyn_HL_fft;               // spectrum, N entries
  std::vector<double> dyn_HL_mean;                            // meV
  std::vector<int> dyn_HL_count;                              // N samples used
  double dyn_HL_dt = 0.0;                                     // ns between snapshots
  // Sample buffers of dyn_buffer_size entries: per root and column ([i][j][s]) or per
  // position u in pair_keylist ([u][s]).
  std::vector<std::vector<std::vector<double>>> dyn_V2_buffer_full;        // hartree^2
  std::vector<std::vector<double>> dyn_V2_buffer_unique;                   // hartree^2
  std::vector<std::vector<std::vector<double>>> dyn_w0_no_V_buffer_full;   // 1/ns, V = 1
  std::vector<std::vector<double>> dyn_w0_no_V_buffer_unique;              // 1/ns, V = 1
  double** w0_no_V = nullptr;        // 1/ns, V = 1 at the static energies, per root and neighbor
  int w0_no_V_rows_allocated = 0;    // rows of w0_no_V as allocated; whoever allocates sets it
  // DYN-DISORDER-DATA-END
  void dyn_disorder_read_dyn_V_data(bool debug);
  void dyn_disorder_read_dyn_HL_data(bool debug);
  void dyn_disorder_build_w0_no_V();
  void dyn_disorder_build_V2_buffer();
  void dyn_disorder_build_V2_buffer_full();
  void dyn_disorder_build_V2_buffer_unique();
  void dyn_disorder_build_w0_no_V_buffer();
  void dyn_disorder_build_w0_no_V_buffer_full();
  void dyn_disorder_build_w0_no_V_buffer_unique();
  double dyn_disorder_calc_V_N(double t, int i, int p);
  double dyn_disorder_calc_V(double t, int i, int p);
  double dyn_disorder_calc_V_idft(double t, int i, int p);
  double dyn_disorder_HOMOLUMO_calc_dE(double t, int i, int j);
  double dyn_disorder_HOMOLUMO_calc_dE_byfft(double t, int i, int j);
  void dyn_disorder_calc_w0(double t, double* phase, double* rates, int i);
  void dyn_disorder_clean();

  // ---- HOMO/LUMO inputs (src/qcinput/hl_*.cpp) -------------------------------
  // QCINPUT-HL-BEGIN
  // Inputs of every cell molecule, neighbor and pair, their batch jobs, and the
  // drivers scr/mol_one_uc.py, scr/mol_one_nei.py and scr/mol_two.py that submit
  // them. Shared frame and loops in hl_drivers.cpp; per engine hl_gaussian.cpp,
  // hl_orca.cpp, hl_qchem.cpp, hl_bdf.cpp. "gif" in three names is the interface's
  // own spelling.
  void write_HL_gaussian_mol_gif();
  void write_HL_gaussian_mol_one_gjf_and_job_uc();
  void write_HL_gaussian_mol_one_gjf_and_job_uc_unique();
  void write_HL_gaussian_mol_one_gjf_and_job_nei();
  void write_HL_gaussian_mol_one_gjf_and_job_nei_unique();
  void write_HL_gaussian_2mol_gjf_and_job();
  void write_HL_gaussian_2mol_gif_and_job_unique();
  void write_HL_orca_mol_inp();
  void write_HL_orca_mol_one_inp_and_job_uc();
  void write_HL_orca_mol_one_inp_and_job_uc_unique();
  void write_HL_orca_mol_one_inp_and_job_nei();
  void write_HL_orca_mol_one_inp_and_job_nei_unique();
  void write_HL_orca_2mol_inp_and_job();
  void write_HL_orca_2mol_inp_and_job_unique();
  void write_HL_qchem_mol_inp();
  void write_HL_qchem_mol_one_inp_and_job_uc();
  void write_HL_qchem_mol_one_inp_and_job_uc_unique();
  void write_HL_qchem_mol_one_inp_and_job_nei();
  void write_HL_qchem_mol_one_inp_and_job_nei_unique();
  void write_HL_qchem_2mol_inp_and_job();
  void write_HL_qchem_2mol_inp_and_job_unique();
  void write_HL_bdf_mol_inp();
  void write_HL_bdf_mol_one_inp_and_job_uc();
  void write_HL_bdf_mol_one_inp_and_job_uc_unique();
  void write_HL_bdf_mol_one_inp_and_job_nei();
  void write_HL_bdf_mol_one_inp_and_job_nei_unique();
  void write_HL_bdf_2mol_inp_and_job();
  void write_HL_bdf_2mol_inp_and_job_unique();
  // QCINPUT-HL-END

  // ---- reorganisation-energy inputs (src/qcinput/re_*.cpp) ---------------------
  // QCINPUT-RE-BEGIN
  // Relaxation and frequency runs of the cell molecules in the neutral and the charged
  // states: the inputs "re-mol<n>-<state>" in job_scripts_REdir, one job script each,
  // and the drivers mol_RE_neutral.py and mol_RE_anion_cation.py in job_scripts_SCRdir.
  // Electron work (chargetype a or e) adds the anion, hole work (a or h) the cation.
  // The _unique forms cover only the molecules of uc_mol_re_list, under their own
  // numbers. The Gaussian forms add the four-point inputs and job when
  // RE_calc_lambda_4P is set, and the multipole job when reorg_outer_flag is 3 or
  // lat_site_energy is set (re_families.cpp).
  void write_RE_gaussian_mol_gjf_and_job();  // anion and cation chained in one job
  void write_RE_gaussian_mol_gjf_and_job_unique();
  void write_RE_gaussian_mol_gjf_and_job_separated();  // one job a state
  void write_RE_gaussian_mol_gjf_and_job_unique_separated();
  void write_RE_orca_mol_inp_and_job_seperated();
  void write_RE_orca_mol_inp_and_job_unique_seperated();
  void write_RE_qchem_mol_inp_and_job_seperated();
  void write_RE_qchem_mol_inp_and_job_unique_seperated();
  void write_RE_bdf_mol_inp_and_job_seperated();
  void write_RE_bdf_mol_inp_and_job_unique_seperated();

  // Shell payload of one state's job, replacing `out`; mol_index is zero-based. The
  // run is skipped when its output already ended normally, and a failed run leaves
  // RUN/ERROR-RE-re-mol<n>-<state> (re_job_strings.cpp).
  void format_RE_gaussian_job_string(std::string& out, int mol_index, const char* state, bool run_formchk);
  void format_RE_orca_job_string(std::string& out, int mol_index, const char* state);
  void format_RE_qchem_job_string(std::string& out, int mol_index, const char* state);
  void format_RE_bdf_job_string(std::string& out, int mol_index, const char* state);

  // A driver in job_scripts_SCRdir that touches each marker and submits each script
  // from job_scripts_REdir (re_drivers.cpp). A driver that cannot be opened is fatal
  // with status 1, its text on `error_stream`.
  struct RE_submission {
    std::string marker;  // relative to job_workdir
    std::string script;  // under job_scripts_JOBSdir, without extension
  };
  void write_RE_driver_py(const char* name, const std::vector<RE_submission>& jobs, bool separators,
                          FILE* error_stream);

  // Four-point single points on finished checkpoints, Gaussian only: one input
  // "re-mol<n>-<state>.com" (mol_index zero-based), and the jobs "mol<n>_lambda_4P" of
  // the one-based `molecules` with their driver mol_RE_lambda_4P.py (re_four_point.cpp).
  void write_RE_gaussian_lambda_4P_com(int mol_index, const char* state, const char* charge_mult);
  void write_RE_gaussian_lambda_4P_job(const std::vector<int>& molecules);

  // Multipoles of the finished Gaussian outputs: the job "mps" over the one-based
  // `molecules` with its driver mol_RE_mps.py, and the configuration files of one
  // state of molecule `index` (zero-based) in job_scripts_REdir (re_multipole.cpp).
  void write_RE_gaussian_mps_job(const std::vector<int>& molecules);
  void write_RE_log2mps_xml_file_one(int index, const char* state = "neutral");
  void write_RE_molpol_xml_file_one(int index, const char* state = "neutral");

  // The orbital index files uc_H.inp, uc_L.inp and, with adjustments, H_adj.inp and
  // L_adj.inp in data_dir (re_orbital_index.cpp).
  void write_H_L_inp();
  // QCINPUT-RE-END

  // ---- normal-mode, four-point and ONIOM inputs (src/qcinput/evc_*.cpp,
  //      reorg4p_*.cpp, oniom_*.cpp) ----------------------------------------------
  // QCINPUT-EVC-BEGIN
  // Normal-mode chain over the finished relaxation runs (evc_inputs.cpp,
  // evc_scripts.cpp). The &evc inputs "evc-e-mol<n>.inp" and "evc-h-mol<n>.inp" go
  // to re_dir; prepare_RE.py (`name`) with run_RE.py, and get_RE.py (`name`), to
  // scr_dir. The plain forms cover molecules 1..nmols_uc, the _unique forms the
  // one-based numbers of uc_mol_re_list.
  // The bond lines of a "mol<n>_bonds.dat" file, as written, behind its count line.
  // A file that cannot be opened or is malformed or short is fatal.
  void load_bonds_data(const std::string& path, std::vector<std::string>& bonds);
  void write_evc_inp_files();
  void write_evc_inp_files_unique();
  void write_prepare_evc_files(const char* name);
  void write_prepare_evc_files_unique(const char* name);
  void write_get_re_py_file(const char* name);
  void write_get_re_py_file_unique(const char* name);

  // Four-point route of one molecule from a user's Gaussian input (reorg4p.cpp,
  // reorg4p_scripts.cpp): the inputs re-<state>.com and the master script RE_run.py
  // in the current directory; gaussian_log_check.py, a driver re-<state>.py and a
  // job re-<state> per state in job_scripts_JOBSdir. `com_file` "." takes the first
  // *.gjf of the current directory.
  void reorg4p_write_input_files(const std::string& com_file, bool verbose);
  // Shell payload of the job of `state` (gs, es, gs-tddft, es-tddft), replacing `out`.
  void reorg4p_format_RE_gau_job_string(std::string& out, const char* state, bool run_formchk);
  void reorg4p_write_gaussian_log_check_py_file();
  // The job script of `state` and its driver re-<state>.py.
  void reorg4p_write_job_and_driver(const char* state, bool run_formchk);
  void reorg4p_write_RE_run_py_file();

  // Gaussian ONIOM inputs, one cluster a cell molecule, "mol<n>_oniom.com" with the
  // check file "mol<n>_oniom.xyz" in data_dir (oniom_inputs.cpp).
  void write_oniom_input_files(bool verbose);
  // QCINPUT-EVC-END

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

  // ---- the run layout and its step scripts (workflow_scripts.cpp) -----------
  // Needs the neighbor list, and with unique_RE_calc_flag the unit-cell
  // representatives. With `verbose` each file announces itself on stdout.
  void write_scripts(bool verbose);

  // ---- allocation bookkeeping ----------------------------------------------
  // Row counts of the arrays above as allocated, so that release does not depend
  // on counts that a later reading may have changed.
  int neighbor_rows_allocated;
  int id_rows_allocated;
  int pair_rows_allocated;
  int run_rows_allocated;
};

#endif  // TAVIX_TRANSPORT_H
