// Job scripts of the suite's own calculations: Monte Carlo, master equation,
// mobility, reorganisation-energy collection, transfer integrals (plain and array)
// and site energies. Their callers have made the directories; nothing is created here.
#include "job_pieces.h"

namespace txjobs {
namespace {

// The calculation kinds load the suite's modules on the batch schedulers. On local
// all but MC and ME load the quantum-chemistry module instead: deliberate, so that
// local scripts keep the module lines they have always had.
Modules calc_modules(int sched) { return sched == Jobscript::sched_local ? Modules::qc : Modules::suite; }

JobHead calc_head(const char* kind, const char* job_name, int nodes, int ppn) {
  return {kind, job_name, nodes, ppn, false, nullptr, nullptr};
}

// Head, submission directory, modules, start line.
void calc_top(ScriptOut& out, const JobHead& h, Modules m) {
  out.head(h);
  out.calc_dir_lines();
  out.modules(m);
  out.start_line();
}

// Monte Carlo and master equation: the suite's modules on every scheduler.
struct SimulationJob {
  const char* kind;           // tag of the LSF job line
  const char* local_command;  // replaces the payload on local; null: the payload
  void operator()(const Jobscript& job, int sched, const char* script_base, int nodes, int ppn, const char* payload,
                  const char* job_name, const char* marker) const {
    ScriptOut out(job, sched, calc_script_path(job, script_base), "gaussian");
    calc_top(out, calc_head(kind, job_name, nodes, ppn), Modules::suite);
    out.line("%s", sched == Jobscript::sched_local && local_command != nullptr ? local_command : payload);
    out.end_frame(marker, true);
  }
};

void mob_job(const Jobscript& job, int sched, const char* script_base, int nodes, int ppn, const char* job_name,
             const char* marker, const char* payload) {
  ScriptOut out(job, sched, calc_script_path(job, script_base), "gaussian");
  calc_top(out, calc_head("mc-mob", job_name, nodes, ppn), calc_modules(sched));
  if (sched == Jobscript::sched_local)
    out.raw(payload);  // without a newline: the end frame's blank ends the line
  else
    out.line("%s", payload);
  out.end_frame(marker, true);
}

void get_re_job(const Jobscript& job, int sched, const char* script_base, int nodes, int ppn, const char* job_name,
                const char* marker, const char* payload) {
  ScriptOut out(job, sched, calc_script_path(job, script_base), "gaussian");
  calc_top(out, calc_head("getRE", job_name, nodes, ppn), calc_modules(sched));
  out.line("%s", payload);
  if (sched != Jobscript::sched_local) {
    out.end_frame(marker, true);
    return;
  }
  // Local: no blank between the payload and the marker removal.
  out.remove_marker(marker);
  out.blank();
  out.closing(true);
}

// Standard output goes under the run directory, but the job stays in the
// submission directory; PBS leaves the nodelist line out, deliberately.
void site_ener_job(const Jobscript& job, int sched, const char* script_base, int nodes, int ppn, const char* job_name,
                   const char* marker, const char* payload, const char* run_dir) {
  ScriptOut out(job, sched, calc_script_path(job, script_base), "gaussian");
  JobHead h = calc_head(nullptr, job_name, nodes, ppn);
  h.out_dir = run_dir;
  h.pbs_nodelist = false;
  calc_top(out, h, calc_modules(sched));
  out.line("%s", payload);
  out.end_frame(marker, true);
}

// The transfer-integral jobs run in the run directory under the working directory.
void transint_dir_lines(ScriptOut& out, const char* run_dir) {
  out.line("cd %s", out.job.job_workdir.c_str());
  out.line("cd %s", run_dir);
  out.line("echo \"Working directory is `pwd`\"");
  out.blank();
}

void transint_job(const Jobscript& job, int sched, const char* script_base, int nodes, int ppn, const char* job_name,
                  const char* marker, const char* payload, const char* run_dir) {
  ScriptOut out(job, sched, calc_script_path(job, script_base), "gaussian");
  JobHead h = calc_head("Transint", job_name, nodes, ppn);
  h.out_dir = run_dir;
  out.head(h);
  out.modules(calc_modules(sched));
  if (sched == Jobscript::sched_local) {
    // Local: start line first, then the working directory; the run directory is not entered.
    out.start_line();
    out.line("cd %s", job.job_workdir.c_str());
  } else {
    transint_dir_lines(out, run_dir);
    out.start_line();
  }
  out.line("%s", payload);
  out.end_frame(marker, true);
}

// One task's command: orbital-overlap form with the moo flag, else the batch list
// form. `index` is the index variable or a literal number.
void transint_task_line(ScriptOut& out, const char* tool_cmd, const std::string& index) {
  const char* i = index.c_str();
  if (out.job.job_moo_flag)
    out.line("%s --mols moo_map.xml --pos1 moo_mol%s_uc.pos --pos2 moo_mol%s_nei.pos --postfix %s", tool_cmd, i, i, i);
  else
    out.line("%s -batch mol%s_%s -prefix V -postfix %s", tool_cmd, i, out.job.trans_int_file.c_str(), i);
}

void transint_array_job(const Jobscript& job, int sched, const char* script_base, int nodes, int ppn,
                        const char* job_name, const char* marker, int count, const int* index_list,
                        const char* tool_cmd, const char* run_dir) {
  const std::string index_text = array_index_text(count, index_list);
  ScriptOut out(job, sched, calc_script_path(job, script_base), "gaussian");
  out.head({nullptr, job_name, nodes, ppn, true, run_dir, &index_text});
  out.modules(calc_modules(sched));
  if (sched != Jobscript::sched_local) {
    transint_dir_lines(out, run_dir);
    out.start_line();
    const std::string token = array_index_token(sched);
    transint_task_line(out, tool_cmd, token);
    out.end_frame(task_name(marker, token), true);
    return;
  }
  out.start_line();
  out.line("cd %s", run_dir);
  out.blank();
  local_array_blocks(out, count, index_list, marker,
                     [&](int index) { transint_task_line(out, tool_cmd, std::to_string(index)); });
}

}  // namespace
}  // namespace txjobs

#define CALC_PAYLOAD_FIRST_PARAMS \
  (const char* script_base, int nodes, int ppn, const char* payload, const char* job_name, const char* marker)
#define CALC_PAYLOAD_FIRST_ARGS (script_base, nodes, ppn, payload, job_name, marker)
#define CALC_PARAMS \
  (const char* script_base, int nodes, int ppn, const char* job_name, const char* marker, const char* payload)
#define CALC_ARGS (script_base, nodes, ppn, job_name, marker, payload)
#define CALC_RUN_DIR_PARAMS                                                                                    \
  (const char* script_base, int nodes, int ppn, const char* job_name, const char* marker, const char* payload, \
   const char* run_dir)
#define CALC_RUN_DIR_ARGS (script_base, nodes, ppn, job_name, marker, payload, run_dir)

TX_DEFINE_JOB_WRITER(write_MC_job, false, (txjobs::SimulationJob{"MC", nullptr}), CALC_PAYLOAD_FIRST_PARAMS,
                     CALC_PAYLOAD_FIRST_ARGS)
// Deliberately, the local master-equation script runs the fixed command whatever the payload says.
TX_DEFINE_JOB_WRITER(write_ME_job, false, (txjobs::SimulationJob{"ME", "tavix_meq.exe"}), CALC_PAYLOAD_FIRST_PARAMS,
                     CALC_PAYLOAD_FIRST_ARGS)
TX_DEFINE_JOB_WRITER(write_calc_mob_job, false, txjobs::mob_job, CALC_PARAMS, CALC_ARGS)
TX_DEFINE_JOB_WRITER(write_calc_getRE_job, false, txjobs::get_re_job, CALC_PARAMS, CALC_ARGS)
TX_DEFINE_JOB_WRITER(write_calc_transint_job, false, txjobs::transint_job, CALC_RUN_DIR_PARAMS, CALC_RUN_DIR_ARGS)
TX_DEFINE_JOB_WRITER(write_calc_siteEner_job, false, txjobs::site_ener_job, CALC_RUN_DIR_PARAMS, CALC_RUN_DIR_ARGS)
TX_DEFINE_JOB_WRITER(write_calc_transint_job_array, false, txjobs::transint_array_job,
                     (const char* script_base, int nodes, int ppn, const char* job_name, const char* marker, int count,
                      const int* index_list, const char* tool_cmd, const char* run_dir),
                     (script_base, nodes, ppn, job_name, marker, count, index_list, tool_cmd, run_dir))
