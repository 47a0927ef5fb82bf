// Reorganisation-energy job scripts of the four engines and the multipole job.
// The caller's payload stands between the start line and the end frame; what the
// frame adds around it differs by engine.
#include "job_pieces.h"

namespace txjobs {
namespace {

JobHead re_head(const char* job_name, int nodes, int ppn) {
  return {"RE", job_name, nodes, ppn, false, nullptr, nullptr};
}

// Scratch directory of a reorganisation run (scratch, label), by scheduler.
const char* const kReScrdir[4] = {
    "SCRDIR=%s/tavix-RE-%s-$PBS_JOBID",
    "SCRDIR=%s/tavix-RE-%s-$SLURM_JOB_ID",
    "SCRDIR=%s/tavix-RE-%s-$LSB_JOBID",
    "SCRDIR=%s/tavix-RE-%s-$RANDOM",
};

void gaussian_re(const Jobscript& job, int sched, const char* script_name, int nodes, int ppn, const char* payload,
                 const char* job_name, const char* marker) {
  ScriptOut out(job, sched, qc_script_path(job, script_name), "gaussian");
  out.head(re_head(job_name, nodes, ppn));
  out.qc_dir_lines(job.job_scripts_REdir);
  out.modules(Modules::qc);
  out.start_line();
  out.raw(payload);
  out.end_frame(marker, true);
}

// ORCA stays in the submission directory: its payload moves to the scratch
// directory named here and back to DataDir itself.
void orca_re(const Jobscript& job, int sched, const char* script_name, int nodes, int ppn, const char* label,
             const char* job_name, const char* marker, const char* payload) {
  ScriptOut out(job, sched, qc_script_path(job, script_name), "ORCA");
  out.head(re_head(job_name, nodes, ppn));
  out.modules(Modules::qc);
  out.data_dir(job.job_scripts_REdir);
  out.line(kReScrdir[sched], job.scratch.c_str(), label);
  const bool pbs = sched == Jobscript::sched_pbs;
  if (pbs) out.blank();
  out.start_line();
  if (pbs) out.blank();  // deliberate second blank of the PBS form
  out.raw(payload);
  out.end_frame(marker, true);
}

// Q-Chem and BDF share one frame; only PBS names and clears a scratch directory.
struct QchemBdfRE {
  const char* word;  // in the dormant verbose line
  void operator()(const Jobscript& job, int sched, const char* script_name, int nodes, int ppn, const char* label,
                  const char* job_name, const char* marker, const char* payload) const {
    ScriptOut out(job, sched, qc_script_path(job, script_name), word);
    out.head(re_head(job_name, nodes, ppn));
    out.qc_dir_lines(job.job_scripts_REdir);
    out.modules(Modules::qc);
    out.start_line();
    const bool pbs = sched == Jobscript::sched_pbs;
    if (pbs) out.line(kReScrdir[Jobscript::sched_pbs], job.scratch.c_str(), label);
    out.raw(payload);
    if (pbs) {
      out.line("cd ${DataDIR}");  // deliberate spelling, as in the ORCA HOMO/LUMO scripts
      out.line("rm -rf $SCRDIR");
    }
    out.end_frame(marker, true);
  }
};

// The multipole job: no modules; it enters DataDir after the start line, and its
// payload gains a newline.
void re_mps(const Jobscript& job, int sched, const char* script_name, int nodes, int ppn, const char* /*unused*/,
            const char* job_name, const char* marker, const char* payload) {
  ScriptOut out(job, sched, qc_script_path(job, script_name), "RE mps");
  out.head(re_head(job_name, nodes, ppn));
  out.data_dir(job.job_scripts_REdir);
  out.start_line();
  out.line("cd ${DataDir}");
  out.line("%s", payload);
  out.end_frame(marker, true);
}

}  // namespace
}  // namespace txjobs

#define RE_LABEL_PARAMS                                                                                      \
  (const char* script_name, int nodes, int ppn, const char* label, const char* job_name, const char* marker, \
   const char* payload)
#define RE_LABEL_ARGS (script_name, nodes, ppn, label, job_name, marker, payload)

TX_DEFINE_JOB_WRITER(write_gaussian_RE_job, true, txjobs::gaussian_re,
                     (const char* script_name, int nodes, int ppn, const char* payload, const char* job_name,
                      const char* marker),
                     (script_name, nodes, ppn, payload, job_name, marker))
TX_DEFINE_JOB_WRITER(write_orca_RE_job, true, txjobs::orca_re, RE_LABEL_PARAMS, RE_LABEL_ARGS)
TX_DEFINE_JOB_WRITER(write_qchem_RE_job, true, txjobs::QchemBdfRE{"Q-Chem"}, RE_LABEL_PARAMS, RE_LABEL_ARGS)
TX_DEFINE_JOB_WRITER(write_bdf_RE_job, true, txjobs::QchemBdfRE{"BDF"}, RE_LABEL_PARAMS, RE_LABEL_ARGS)
TX_DEFINE_JOB_WRITER(write_RE_mps_job, true, txjobs::re_mps,
                     (const char* script_name, int nodes, int ppn, const char* unused, const char* job_name,
                      const char* marker, const char* payload),
                     (script_name, nodes, ppn, unused, job_name, marker, payload))
