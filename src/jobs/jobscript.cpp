// Jobscript: construction with the scheduler defaults, getters and setters,
// the scheduler index from its name, and the file part of a path.
#include "job_scripts.h"

Jobscript::Jobscript()
    : job_verbose(false),
      job_sched_type(0),
      qc_log_ext("log"),
      trans_int_file("trans_int_files.dat"),
      job_moo_flag(false),
      reorg_outer_flag(0),
      job_scripts_HLdir("HL"),
      job_scripts_REdir("RE"),
      job_scripts_RUNdir("RUN"),
      job_scripts_SCRdir("scr"),
      job_scripts_JOBSdir("jobs"),
      sched_type("pbs"),
      queue_name("workq"),
      scratch("/tmp"),
      job_sched_names{"pbs", "slurm", "lsf", "local"},
      job_script_exts{"pbs", "slurm", "lsf", "local"},
      job_submit_cmds{"qsub", "sbatch", "bsub < ", "sh"},
      walltime_days(0),
      walltime_hours(160),
      walltime_minutes(0),
      walltime_seconds(0),
      module_qc_flag(false),
      module_qc("gaussian/g16.c01-avx2"),
      qc_exe("g16"),
      qc_nodes(1),
      qc_ppn(8),
      job_slot_limit(0),
      formchk_exe("formchk"),
      orca_2mkl_exe("orca_2mkl"),
      fchk2orb_exe("tavix_fchk2orb.exe"),
      module_mpich2_flag(false),
      module_mpich2("mpich2/1.5-gnu-8.5.0"),
      module_tavix_flag(false),
      module_tavix("tavix/" TAVIX_RELEASE_WORD "-mpich2"),
      sched_job_array(true) {}

Jobscript::~Jobscript() {}

std::string Jobscript::get_job_script_ext() const {
  if (job_sched_type < 0 || job_sched_type > 3)
    TX_FATAL(txunit::job_scripts, -1, stderr, "Unknown job scheduling type!\n");
  return job_script_exts[job_sched_type];
}
int Jobscript::get_job_sched_type() { return job_sched_type; }
int Jobscript::get_run_nodes() { return qc_nodes; }
int Jobscript::get_run_ppn() { return qc_ppn; }
bool Jobscript::get_job_moo_flag() { return job_moo_flag; }
void Jobscript::set_job_moo_flag(bool flag) { job_moo_flag = flag; }
void Jobscript::set_reorg_outer_flag(int flag) { reorg_outer_flag = flag; }
void Jobscript::set_job_scripts_HLdir(const std::string& dir) { job_scripts_HLdir = dir; }
void Jobscript::set_job_scripts_REdir(const std::string& dir) { job_scripts_REdir = dir; }
void Jobscript::set_job_scripts_RUNdir(const std::string& dir) { job_scripts_RUNdir = dir; }
void Jobscript::set_job_scripts_SCRdir(const std::string& dir) { job_scripts_SCRdir = dir; }
void Jobscript::set_job_scripts_JOBSdir(const std::string& dir) { job_scripts_JOBSdir = dir; }
void Jobscript::set_environment_module_gau_flag(bool flag) { module_qc_flag = flag; }
void Jobscript::set_environment_module_mpich2_gnu_flag(bool flag) { module_mpich2_flag = flag; }
void Jobscript::set_environment_module_tavix_flag(bool flag) { module_tavix_flag = flag; }

void Jobscript::parse_scheduling_type() {
  for (int k = 0; k < 4; ++k) {
    if (iequals(sched_type, job_sched_names[k])) {
      job_sched_type = k;
      return;
    }
  }
  // Deliberately silent: an unknown name keeps PBS, so a typo still yields scripts.
  job_sched_type = sched_pbs;
}

std::string Jobscript::getFileName(const std::string& path) const {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos) return std::string();
  return path.substr(slash + 1);
}
