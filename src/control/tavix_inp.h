// tavix_inp.h - class TavixInp: the run parameters of the suite, their two layers
// of defaults and the environment layer, and the control-file readers and writers.
//
// Member definitions, one topic a file:
//   src/control/parameter_defaults.cpp   construction, set_varables_default,
//                                        get_environment_variables, set_compute_engine,
//                                        getters
//   src/control/control_reader.cpp       load_tavix_inp_file, read_tavix_inp
//   src/control/legacy_reader.cpp        read_config_inp
//   src/control/control_writers.cpp      write_tavix_inp and the templates, write_config_inp
#ifndef TAVIX_TAVIX_INP_H
#define TAVIX_TAVIX_INP_H

#include <string>
#include <vector>

#include "fileio.h"
#include "job_scripts.h"

class TavixInp : public FileIO, public Jobscript {
 public:
  TavixInp();
  ~TavixInp();

  // ---- workflow switches: nonzero means the stage runs --------------------
  int do_transport_prepare;
  int do_transport_submit_HL_job;
  int do_transport_submit_RE_job;
  int do_transport_get_transferintegral;
  int do_transport_get_re_evc;
  int do_transport_run_MC;
  int do_transport_run_MC_temp;
  int do_transport_get_mob_MC;
  int do_transport_get_mob_MC_temp;
  int do_transport_run_ME;
  int do_transport_run_ME_temp;
  int do_transport_get_mob_ME;
  int do_transport_get_mob_ME_temp;
  int do_transport_gather_tavix_data;

  // ---- parameters -----------------------------------------------------------
  int inp_line_count;            // lines of the loaded control file
  char** inp_lines;              // the lines as read; exists only during a reading
  bool inp_read;                 // set by each completed reading
  int compute_engine;            // 1 Gaussian, 2 ORCA, 3 Q-Chem, 4 BDF
  std::string qc_method;
  std::string qc_basis;          // basis text of transfer-integral inputs
  std::string qc_basis_re;       // basis text of reorganisation inputs
  std::string qc_inp_append;     // verbatim lines appended to quantum-chemistry inputs
  int qc_memory;                 // MB per job
  std::string ratetype;          // "marcus" or "quantum"
  std::string chargetype;        // "e", "h" or "a"
  double temp;                   // kelvin
  double start_temp;             // kelvin
  double end_temp;               // kelvin
  double delta_temp;             // kelvin
  std::string evc_type;          // "cart" or "int"
  double lat_cutoff;             // angstrom, neighbor-list cutoff
  double delta_angle;            // degrees
  double maxt;                   // Fermi-golden-rule time limit
  int sta;                       // short-time approximation switch
  int nsimu;                     // Monte Carlo trajectories
  double tsimu;                  // ns
  double tsnap;                  // ns
  double tstep;
  int iterlimit;                 // master-equation iterations
  int nevery_out;
  // Cells searched in minus and plus each direction; the neighbor code names it
  // after its control key.
  union {
    int nei_scell[3];
    int neighbor_scell[3];
  };
  int HL_unique_mol;
  int RE_unique_mol;
  double HL_unique_ctrl_ratio;
  int lat_site_energy;
  int eckart_mirror;
  bool appE_flag;
  double app_elec_F[3];          // eV/m along a, b, c
  int reorg_outer_flag;          // 0 none, 1 constant, 2 spheres, 3 dielectric
  std::string reorg_outer_method;
  double reorg_outer_value;
  double reorg_outer_constant;   // eV
  double reorg_outer_cutoff;     // nm
  std::vector<double> reorg_outer_radii;  // nm
  bool use_moo;
  bool HOMOLUMO_dynamic_disorder;
  bool V_dynamic_disorder;
  bool read_neighbor_dat;
  std::string tavix_dat_file;    // name of the gather report
  int mob_output_level;          // bits: 0 base, 2 all mobilities
  int data_mol_output_level;     // bits: 1 one mol, 2 all mols, 4 supercell CIF, 8 ONIOM
  int eigval_output_flag;
  int oniom_output_flag;
  int oniom_nlayers;
  double oniom_com_cutoff;       // angstrom
  std::string qc_es_opt;
  std::string qc_gs_tddft;
  int qc_es_mult;
  std::string qc_es_tddft;

  // Unique-calculation switches, derived from HL_unique_mol and RE_unique_mol by
  // the Transport constructor and by every reading of a control file.
  bool unique_uc_mol_one_calc_flag;
  bool unique_nei_mol_one_calc_flag;
  bool unique_2mol_calc_flag;
  bool unique_RE_calc_flag;

  // ---- defaults, environment, getters (parameter_defaults.cpp) -------------
  int get_compute_engine();
  void set_compute_engine(int engine);
  bool get_appE_flag();
  bool get_read_neighbor_flag();
  bool get_moo_flag();
  void get_environment_variables();
  void set_varables_default();

  // ---- the control-file reader (control_reader.cpp) -------------------------
  // Reads the file and returns 1; every failure ends the process instead.
  int read_tavix_inp(const char* path, bool verbose);
  void load_tavix_inp_file(const char* path, bool verbose);
  void release_inp_lines();

  // ---- the older flat form (legacy_reader.cpp) --------------------------------
  int read_config_inp(const char* path, bool verbose);

  // ---- control-file writers (control_writers.cpp); callers ignore the result ---
  int write_tavix_inp(const char* name, bool in_data_dir, bool verbose);
  int write_tavix_inp_terse(const char* name, int input_mode, bool in_data_dir);
  int write_tavix_inp_verbose(const char* name, int input_mode, bool in_data_dir);
  int write_tavix_inp_terse_oniom(const char* name, int input_mode, bool in_data_dir);
  int write_tavix_inp_terse_reorg4p(const char* name, bool triplet);
  int write_config_inp(const char* name, int input_mode, bool in_data_dir);
};

#endif  // TAVIX_TAVIX_INP_H
