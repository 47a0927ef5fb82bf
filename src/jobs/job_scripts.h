// job_scripts.h - class Jobscript: scheduler, queue and external-program settings,
// and the writers of batch job scripts for PBS, Slurm, LSF and local runs.
//
// Member definitions, one topic a file:
//   src/jobs/jobscript.cpp   construction, getters and setters, parse_scheduling_type, getFileName
//   src/jobs/job_pieces.h    (internal) the pieces every script is built from, and the macro
//                            that defines a writer with its four scheduler members
//   src/jobs/job_head.cpp    those pieces: heads per scheduler, directory lines, module
//                            lines, start line, end frame, array index text and variables
//   src/jobs/hl_jobs.cpp     HOMO/LUMO writers of the four engines, plain and array
//   src/jobs/re_jobs.cpp     reorganisation-energy writers and write_RE_mps_job
//   src/jobs/calc_jobs.cpp   writers of the suite's own calculation jobs (MC, ME, calc_*)
#ifndef TAVIX_JOB_SCRIPTS_H
#define TAVIX_JOB_SCRIPTS_H

#include <string>

#include "txutil.h"

class Jobscript {
 public:
  Jobscript();
  ~Jobscript();

  bool job_verbose;            // dormant "Writing ..." lines of the writers
  int job_sched_type;          // 0 PBS, 1 Slurm, 2 LSF, 3 local
  std::string qc_log_ext;      // extension of the quantum-chemistry output
  std::string trans_int_file;  // list that drives the transfer-integral tool
  bool job_moo_flag;
  int reorg_outer_flag;  // copy of the control value
  std::string job_scripts_HLdir;
  std::string job_scripts_REdir;
  std::string job_scripts_RUNdir;
  std::string job_scripts_SCRdir;
  std::string job_scripts_JOBSdir;
  std::string job_workdir;  // absolute working directory of the run
  std::string mater_name;
  std::string sched_type;
  std::string queue_name;
  std::string scratch;
  std::string job_sched_names[4];
  std::string job_script_exts[4];
  std::string job_submit_cmds[4];
  int walltime_days;  // Slurm only
  // The wall-clock limit; older code says walltime_hour/_min/_sec for the same fields.
  union {
    int walltime_hours;
    int walltime_hour;
  };
  union {
    int walltime_minutes;
    int walltime_min;
  };
  union {
    int walltime_seconds;
    int walltime_sec;
  };
  bool module_qc_flag;
  std::string module_qc;
  std::string qc_exe;
  int qc_nodes;
  int qc_ppn;
  std::string qc_exe_args;  // no key fills it; the ORCA line keeps the empty slot
  std::string nodelist;
  int job_slot_limit;  // 0 means no limit
  std::string formchk_exe;
  std::string orca_2mkl_exe;
  std::string fchk2orb_exe;
  bool module_mpich2_flag;
  std::string module_mpich2;
  bool module_tavix_flag;
  std::string module_tavix;
  bool sched_job_array;
  std::string job_spare_text;  // reserved

  // ---- getters and setters (jobscript.cpp) --------------------------------
  std::string get_job_script_ext() const;
  int get_job_sched_type();
  int get_run_nodes();
  int get_run_ppn();
  bool get_job_moo_flag();
  void set_job_moo_flag(bool flag);
  void set_reorg_outer_flag(int flag);
  void set_job_scripts_HLdir(const std::string& dir);
  void set_job_scripts_REdir(const std::string& dir);
  void set_job_scripts_RUNdir(const std::string& dir);
  void set_job_scripts_SCRdir(const std::string& dir);
  void set_job_scripts_JOBSdir(const std::string& dir);
  void set_environment_module_gau_flag(bool flag);
  void set_environment_module_mpich2_gnu_flag(bool flag);
  void set_environment_module_tavix_flag(bool flag);

  // ---- scheduler and file names (jobscript.cpp) ------------------------------
  // Sets job_sched_type from sched_type, compared without regard to case with
  // job_sched_names in order. A name that matches none silently leaves 0 (PBS).
  void parse_scheduling_type();
  // The text behind the last "/" of `path`; empty when `path` holds no "/".
  std::string getFileName(const std::string& path) const;

  // ---- job-script writers -----------------------------------------------------
  // Each public writer calls the member of the scheduler that job_sched_type names
  // (_pbs, _slurm, _lsf, _local); any other index is fatal. The quantum-chemistry
  // writers first create job_scripts_JOBSdir. A marker is a path relative to
  // job_workdir that the finished script removes; a payload is a block of shell
  // lines built by the caller.
  static constexpr int sched_pbs = 0;
  static constexpr int sched_slurm = 1;
  static constexpr int sched_lsf = 2;
  static constexpr int sched_local = 3;

  // HOMO/LUMO: one script a molecule or pair, "<JOBSdir>/<script_name>.<ext>" (hl_jobs.cpp).
  void write_gaussian_HL_job(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                             const char* marker);
  void write_gaussian_HL_job_pbs(const char* script_name, int nodes, int ppn, const char* inp_name,
                                 const char* job_name, const char* marker);
  void write_gaussian_HL_job_slurm(const char* script_name, int nodes, int ppn, const char* inp_name,
                                   const char* job_name, const char* marker);
  void write_gaussian_HL_job_lsf(const char* script_name, int nodes, int ppn, const char* inp_name,
                                 const char* job_name, const char* marker);
  void write_gaussian_HL_job_local(const char* script_name, int nodes, int ppn, const char* inp_name,
                                   const char* job_name, const char* marker);
  void write_orca_HL_job(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                         const char* marker);
  void write_orca_HL_job_pbs(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                             const char* marker);
  void write_orca_HL_job_slurm(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                               const char* marker);
  void write_orca_HL_job_lsf(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                             const char* marker);
  void write_orca_HL_job_local(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                               const char* marker);
  void write_qchem_HL_job(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                          const char* marker);
  void write_qchem_HL_job_pbs(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                              const char* marker);
  void write_qchem_HL_job_slurm(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                                const char* marker);
  void write_qchem_HL_job_lsf(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                              const char* marker);
  void write_qchem_HL_job_local(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                                const char* marker);
  void write_bdf_HL_job(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                        const char* marker);
  void write_bdf_HL_job_pbs(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                            const char* marker);
  void write_bdf_HL_job_slurm(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                              const char* marker);
  void write_bdf_HL_job_lsf(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                            const char* marker);
  void write_bdf_HL_job_local(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                              const char* marker);

  // HOMO/LUMO arrays: `count` tasks; `index_list` (may be null: 1..count) numbers them (hl_jobs.cpp).
  void write_gaussian_HL_job_array(const char* script_name, int nodes, int ppn, const char* inp_name,
                                   const char* job_name, const char* marker, int count, const int* index_list);
  void write_gaussian_HL_job_array_pbs(const char* script_name, int nodes, int ppn, const char* inp_name,
                                       const char* job_name, const char* marker, int count, const int* index_list);
  void write_gaussian_HL_job_array_slurm(const char* script_name, int nodes, int ppn, const char* inp_name,
                                         const char* job_name, const char* marker, int count, const int* index_list);
  void write_gaussian_HL_job_array_lsf(const char* script_name, int nodes, int ppn, const char* inp_name,
                                       const char* job_name, const char* marker, int count, const int* index_list);
  void write_gaussian_HL_job_array_local(const char* script_name, int nodes, int ppn, const char* inp_name,
                                         const char* job_name, const char* marker, int count, const int* index_list);
  void write_orca_HL_job_array(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                               const char* marker, int count, const int* index_list);
  void write_orca_HL_job_array_pbs(const char* script_name, int nodes, int ppn, const char* inp_name,
                                   const char* job_name, const char* marker, int count, const int* index_list);
  void write_orca_HL_job_array_slurm(const char* script_name, int nodes, int ppn, const char* inp_name,
                                     const char* job_name, const char* marker, int count, const int* index_list);
  void write_orca_HL_job_array_lsf(const char* script_name, int nodes, int ppn, const char* inp_name,
                                   const char* job_name, const char* marker, int count, const int* index_list);
  void write_orca_HL_job_array_local(const char* script_name, int nodes, int ppn, const char* inp_name,
                                     const char* job_name, const char* marker, int count, const int* index_list);
  void write_qchem_HL_job_array(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                                const char* marker, int count, const int* index_list);
  void write_qchem_HL_job_array_pbs(const char* script_name, int nodes, int ppn, const char* inp_name,
                                    const char* job_name, const char* marker, int count, const int* index_list);
  void write_qchem_HL_job_array_slurm(const char* script_name, int nodes, int ppn, const char* inp_name,
                                      const char* job_name, const char* marker, int count, const int* index_list);
  void write_qchem_HL_job_array_lsf(const char* script_name, int nodes, int ppn, const char* inp_name,
                                    const char* job_name, const char* marker, int count, const int* index_list);
  void write_qchem_HL_job_array_local(const char* script_name, int nodes, int ppn, const char* inp_name,
                                      const char* job_name, const char* marker, int count, const int* index_list);
  void write_bdf_HL_job_array(const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name,
                              const char* marker, int count, const int* index_list);
  void write_bdf_HL_job_array_pbs(const char* script_name, int nodes, int ppn, const char* inp_name,
                                  const char* job_name, const char* marker, int count, const int* index_list);
  void write_bdf_HL_job_array_slurm(const char* script_name, int nodes, int ppn, const char* inp_name,
                                    const char* job_name, const char* marker, int count, const int* index_list);
  void write_bdf_HL_job_array_lsf(const char* script_name, int nodes, int ppn, const char* inp_name,
                                  const char* job_name, const char* marker, int count, const int* index_list);
  void write_bdf_HL_job_array_local(const char* script_name, int nodes, int ppn, const char* inp_name,
                                    const char* job_name, const char* marker, int count, const int* index_list);

  // Reorganisation energy, "<JOBSdir>/<script_name>.<ext>" (re_jobs.cpp). `label` names the scratch
  // directory; the fourth text of write_RE_mps_job is not used.
  void write_gaussian_RE_job(const char* script_name, int nodes, int ppn, const char* payload, const char* job_name,
                             const char* marker);
  void write_gaussian_RE_job_pbs(const char* script_name, int nodes, int ppn, const char* payload, const char* job_name,
                                 const char* marker);
  void write_gaussian_RE_job_slurm(const char* script_name, int nodes, int ppn, const char* payload,
                                   const char* job_name, const char* marker);
  void write_gaussian_RE_job_lsf(const char* script_name, int nodes, int ppn, const char* payload, const char* job_name,
                                 const char* marker);
  void write_gaussian_RE_job_local(const char* script_name, int nodes, int ppn, const char* payload,
                                   const char* job_name, const char* marker);
  void write_orca_RE_job(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                         const char* marker, const char* payload);
  void write_orca_RE_job_pbs(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                             const char* marker, const char* payload);
  void write_orca_RE_job_slurm(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                               const char* marker, const char* payload);
  void write_orca_RE_job_lsf(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                             const char* marker, const char* payload);
  void write_orca_RE_job_local(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                               const char* marker, const char* payload);
  void write_qchem_RE_job(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                          const char* marker, const char* payload);
  void write_qchem_RE_job_pbs(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                              const char* marker, const char* payload);
  void write_qchem_RE_job_slurm(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                                const char* marker, const char* payload);
  void write_qchem_RE_job_lsf(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                              const char* marker, const char* payload);
  void write_qchem_RE_job_local(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                                const char* marker, const char* payload);
  void write_bdf_RE_job(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                        const char* marker, const char* payload);
  void write_bdf_RE_job_pbs(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                            const char* marker, const char* payload);
  void write_bdf_RE_job_slurm(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                              const char* marker, const char* payload);
  void write_bdf_RE_job_lsf(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                            const char* marker, const char* payload);
  void write_bdf_RE_job_local(const char* script_name, int nodes, int ppn, const char* label, const char* job_name,
                              const char* marker, const char* payload);
  void write_RE_mps_job(const char* script_name, int nodes, int ppn, const char* unused, const char* job_name,
                        const char* marker, const char* payload);
  void write_RE_mps_job_pbs(const char* script_name, int nodes, int ppn, const char* unused, const char* job_name,
                            const char* marker, const char* payload);
  void write_RE_mps_job_slurm(const char* script_name, int nodes, int ppn, const char* unused, const char* job_name,
                              const char* marker, const char* payload);
  void write_RE_mps_job_lsf(const char* script_name, int nodes, int ppn, const char* unused, const char* job_name,
                            const char* marker, const char* payload);
  void write_RE_mps_job_local(const char* script_name, int nodes, int ppn, const char* unused, const char* job_name,
                              const char* marker, const char* payload);

  // The suite's own calculations, "<script_base>.<ext>" (calc_jobs.cpp). They create no directory.
  void write_MC_job(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                    const char* marker);
  void write_MC_job_pbs(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                        const char* marker);
  void write_MC_job_slurm(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                          const char* marker);
  void write_MC_job_lsf(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                        const char* marker);
  void write_MC_job_local(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                          const char* marker);
  void write_ME_job(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                    const char* marker);
  void write_ME_job_pbs(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                        const char* marker);
  void write_ME_job_slurm(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                          const char* marker);
  void write_ME_job_lsf(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                        const char* marker);
  void write_ME_job_local(const char* script_base, int nodes, int ppn, const char* payload, const char* job_name,
                          const char* marker);
  void write_calc_mob_job(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                          const char* payload);
  void write_calc_mob_job_pbs(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                              const char* payload);
  void write_calc_mob_job_slurm(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                                const char* payload);
  void write_calc_mob_job_lsf(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                              const char* payload);
  void write_calc_mob_job_local(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                                const char* payload);
  void write_calc_getRE_job(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                            const char* payload);
  void write_calc_getRE_job_pbs(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                                const char* payload);
  void write_calc_getRE_job_slurm(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                                  const char* payload);
  void write_calc_getRE_job_lsf(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                                const char* payload);
  void write_calc_getRE_job_local(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                                  const char* payload);
  void write_calc_transint_job(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                               const char* payload, const char* run_dir);
  void write_calc_transint_job_pbs(const char* script_base, int nodes, int ppn, const char* job_name,
                                   const char* marker, const char* payload, const char* run_dir);
  void write_calc_transint_job_slurm(const char* script_base, int nodes, int ppn, const char* job_name,
                                     const char* marker, const char* payload, const char* run_dir);
  void write_calc_transint_job_lsf(const char* script_base, int nodes, int ppn, const char* job_name,
                                   const char* marker, const char* payload, const char* run_dir);
  void write_calc_transint_job_local(const char* script_base, int nodes, int ppn, const char* job_name,
                                     const char* marker, const char* payload, const char* run_dir);
  void write_calc_transint_job_array(const char* script_base, int nodes, int ppn, const char* job_name,
                                     const char* marker, int count, const int* index_list, const char* tool_cmd,
                                     const char* run_dir);
  void write_calc_transint_job_array_pbs(const char* script_base, int nodes, int ppn, const char* job_name,
                                         const char* marker, int count, const int* index_list, const char* tool_cmd,
                                         const char* run_dir);
  void write_calc_transint_job_array_slurm(const char* script_base, int nodes, int ppn, const char* job_name,
                                           const char* marker, int count, const int* index_list, const char* tool_cmd,
                                           const char* run_dir);
  void write_calc_transint_job_array_lsf(const char* script_base, int nodes, int ppn, const char* job_name,
                                         const char* marker, int count, const int* index_list, const char* tool_cmd,
                                         const char* run_dir);
  void write_calc_transint_job_array_local(const char* script_base, int nodes, int ppn, const char* job_name,
                                           const char* marker, int count, const int* index_list, const char* tool_cmd,
                                           const char* run_dir);
  void write_calc_siteEner_job(const char* script_base, int nodes, int ppn, const char* job_name, const char* marker,
                               const char* payload, const char* run_dir);
  void write_calc_siteEner_job_pbs(const char* script_base, int nodes, int ppn, const char* job_name,
                                   const char* marker, const char* payload, const char* run_dir);
  void write_calc_siteEner_job_slurm(const char* script_base, int nodes, int ppn, const char* job_name,
                                     const char* marker, const char* payload, const char* run_dir);
  void write_calc_siteEner_job_lsf(const char* script_base, int nodes, int ppn, const char* job_name,
                                   const char* marker, const char* payload, const char* run_dir);
  void write_calc_siteEner_job_local(const char* script_base, int nodes, int ppn, const char* job_name,
                                     const char* marker, const char* payload, const char* run_dir);
};

#endif  // TAVIX_JOB_SCRIPTS_H
