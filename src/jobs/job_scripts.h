// job_scripts.h - class Jobscript: scheduler, queue and external-program settings,
// and the writers of batch job scripts for PBS, Slurm, LSF and local runs.
//
// Member definitions, one topic a file:
//   src/jobs/jobscript.cpp   construction, getters and setters
#ifndef TAVIX_JOB_SCRIPTS_H
#define TAVIX_JOB_SCRIPTS_H

#include <string>

#include "txutil.h"

class Jobscript {
 public:
  Jobscript();
  ~Jobscript();

  bool job_verbose;                  // dormant "Writing ..." lines of the writers
  int job_sched_type;                // 0 PBS, 1 Slurm, 2 LSF, 3 local
  std::string qc_log_ext;            // extension of the quantum-chemistry output
  std::string trans_int_file;        // list that drives the transfer-integral tool
  bool job_moo_flag;
  int reorg_outer_flag;              // copy of the control value
  std::string job_scripts_HLdir;
  std::string job_scripts_REdir;
  std::string job_scripts_RUNdir;
  std::string job_scripts_SCRdir;
  std::string job_scripts_JOBSdir;
  std::string job_workdir;           // absolute working directory of the run
  std::string mater_name;
  std::string sched_type;
  std::string queue_name;
  std::string scratch;
  std::string job_sched_names[4];
  std::string job_script_exts[4];
  std::string job_submit_cmds[4];
  int walltime_days;                 // Slurm only
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
  std::string qc_exe_args;           // no key fills it; the ORCA line keeps the empty slot
  std::string nodelist;
  int job_slot_limit;                // 0 means no limit
  std::string formchk_exe;
  std::string orca_2mkl_exe;
  std::string fchk2orb_exe;
  bool module_mpich2_flag;
  std::string module_mpich2;
  bool module_tavix_flag;
  std::string module_tavix;
  bool sched_job_array;
  std::string job_spare_text;        // reserved

  // ---- getters and setters (jobscript.cpp) --------------------------------
  std::string get_job_script_ext();
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
};

#endif  // TAVIX_JOB_SCRIPTS_H
