// HOMO/LUMO job scripts of the four engines, plain and array. Every engine shares
// the frame (head, directory and module lines, the first look at the output, the
// second look after a run, the end frame); only the run itself differs.
#include <functional>

#include "job_pieces.h"

namespace txjobs {
namespace {

// One task of a script: a plain job, an array task under a batch scheduler (the
// name carries the index variable), or one block of a local array.
struct HLTask {
  const char* base;  // input base name as given
  std::string name;  // per-task name: base, or base-<index>
  bool array;
  int local_index;  // index of a local array block, 0 otherwise
  int ppn;          // processes per node
};

struct HLEngine {
  const char* word;     // in the dormant verbose line
  const char* check;    // first look at the output (workdir, SCRdir, output path)
  const char* recheck;  // the same look after the run
  const char* skip;     // the line when the output is already fine
  bool log_ext;         // output path ends in qc_log_ext instead of "out"
  bool modules_first;   // module line, then DataDir, no change of directory
  void (*run)(ScriptOut& out, const HLTask& t, const std::string& out_path);  // the else branch
};

// After the run: look at the output again; success removes the ".ok" mark (after
// `on_success`), failure leaves ERROR-HL_<error_name> in the RUN directory.
void second_check(ScriptOut& out, const char* recheck, const std::string& out_path, const std::string& error_name,
                  const std::function<void()>& on_success = {}) {
  const Jobscript& j = out.job;
  out.line(recheck, j.job_workdir.c_str(), j.job_scripts_SCRdir.c_str(), out_path.c_str());
  out.line("    if [ -f %s.ok ]; then", out_path.c_str());
  if (on_success) on_success();
  out.line("        rm -f %s.ok", out_path.c_str());
  out.line("    else");
  out.line("        touch %s/%s/ERROR-HL_%s", j.job_workdir.c_str(), j.job_scripts_RUNdir.c_str(), error_name.c_str());
  out.line("    fi");
}

const char* const kGaussianRecheck = "    python %s/%s/gaussian_log_check.py %s";
const char* const kOrcaRecheck = "    python %s/%s/orca_out_check.py %s";
const char* const kQchemRecheck = "    python %s/%s/qchem_out_check.py %s";
const char* const kBdfRecheck = "    python %s/%s/bdf_out_check.py %s";

void gaussian_run(ScriptOut& out, const HLTask& t, const std::string& out_path) {
  const Jobscript& j = out.job;
  out.line("    %s %s.com", j.qc_exe.c_str(), t.name.c_str());
  // Deliberate: the Slurm array names its error file with the PBS index variable;
  // the scripts of that scheduler are kept as they were.
  const std::string error_name = (t.array && out.sched == Jobscript::sched_slurm)
                                     ? task_name(t.base, array_index_token(Jobscript::sched_pbs))
                                     : t.name;
  second_check(out, kGaussianRecheck, out_path, error_name, [&] {
    out.line("        %s %s.chk", j.formchk_exe.c_str(), t.name.c_str());
    if (j.job_moo_flag) out.line("        %s %s.fchk -orb -xyz", j.fchk2orb_exe.c_str(), t.name.c_str());
  });
  out.line("fi");
}

// Scratch directory of a plain ORCA run, by scheduler. The blanks around "=" in the
// batch forms are deliberate: the scripts keep that line as it always was, though a
// shell runs it as a command.
const char* const kOrcaPlainScrdir[3] = {
    "    SCRDIR = %s/tavix-HL-$PBS_JOBID",
    "    SCRDIR = %s/tavix-HL-$SLURM_JOB_ID",
    "    SCRDIR = %s/tavix-HL-$LSB_JOBID",
};
// The same for array tasks; PBS and Slurm add a blank line.
const char* const kOrcaArrayScrdir[3] = {
    "    SCRDIR=%s/tavix-HL-$PBS_JOBID-${PBS_ARRAYID}",
    "    SCRDIR=%s/tavix-HL-${SLURM_JOB_ID}-${SLURM_ARRAY_TASK_ID}",
    "    SCRDIR=%s/tavix-HL-$LSB_JOBID-${LSB_JOBINDEX}",
};

void orca_scratch_lines(ScriptOut& out, const HLTask& t) {
  const Jobscript& j = out.job;
  const char* scratch = j.scratch.c_str();
  if (out.sched == Jobscript::sched_local) {
    if (t.array)
      out.line("    SCRDIR=%s/tavix-HL-%d-$RANDOM", scratch, t.local_index);
    else
      out.line("    SCRDIR=%s/tavix-HL-%s-$RANDOM", scratch, t.base);
  } else if (t.array) {
    out.line(kOrcaArrayScrdir[out.sched], scratch);
    if (out.sched != Jobscript::sched_lsf) out.blank();
  } else {
    out.line(kOrcaPlainScrdir[out.sched], scratch);
    // Deliberate, like the blanks above: plain PBS alone also sets DataDir this way.
    if (out.sched == Jobscript::sched_pbs)
      out.line("DataDir = %s/%s", j.job_workdir.c_str(), j.job_scripts_HLdir.c_str());
  }
}

void orca_run(ScriptOut& out, const HLTask& t, const std::string& out_path) {
  const Jobscript& j = out.job;
  const char* name = t.name.c_str();
  orca_scratch_lines(out, t);
  out.line("    if [ ! -a $SCRDIR ]; then");
  const bool mkdir_first = !t.array && out.sched == Jobscript::sched_pbs;
  if (mkdir_first) out.line("        mkdir -p $SCRDIR");
  out.line("        echo \"Scratch directory $SCRDIR created.\"");
  if (!mkdir_first) out.line("        mkdir -p $SCRDIR");
  out.line("    fi");
  out.blank();
  if (t.array)
    out.line("    cp $DataDir/%s.inp $SCRDIR", name);
  else
    out.line("    cp ${DataDir}/%s.inp $SCRDIR", name);
  out.line("    cd ${SCRDIR}");
  out.line("    echo \"Working directory is ${SCRDIR}\"");
  out.blank();
  // qc_exe_args has no key; its empty slot leaves two blanks in the command.
  out.line("    %s %s.inp %s > %s.out", j.qc_exe.c_str(), name, j.qc_exe_args.c_str(), name);
  out.line("    %s %s", j.orca_2mkl_exe.c_str(), name);
  out.blank();
  out.line("    CurrDir=`pwd`");
  out.line("    if [ $DataDir != $CurrDir ]; then");
  out.line("        echo \"Copy data back to HL directory...\"");
  if (t.array && out.sched == Jobscript::sched_local) {
    out.line("        mv $SCRDIR/%s.out $DataDir", name);
    out.line("        mv $SCRDIR/%s.mkl $DataDir", name);
  } else {
    out.line("        mv $CurrDir/%s.out $DataDir", name);
    out.line("        mv $CurrDir/%s.mkl $DataDir", name);
  }
  out.line("    fi");
  second_check(out, kOrcaRecheck, out_path, t.name);
  out.blank();
  out.line("    cd ${DataDIR}");  // deliberate: not the DataDir set above; the scripts have always said so
  out.line("    rm -rf $SCRDIR");
  out.line("fi");
}

void qchem_run(ScriptOut& out, const HLTask& t, const std::string& out_path) {
  const Jobscript& j = out.job;
  out.line("    %s -nt %d %s.inp > %s.out", j.qc_exe.c_str(), t.ppn, t.name.c_str(), t.name.c_str());
  if (!(t.array && out.sched == Jobscript::sched_local)) out.blank();
  second_check(out, kQchemRecheck, out_path, t.name);
  out.line("fi");
}

void bdf_run(ScriptOut& out, const HLTask& t, const std::string& out_path) {
  const Jobscript& j = out.job;
  out.line("    export OMP_NUM_THREADS=%d", t.ppn);
  out.line("    BDF_TMPDIR_SAV=$BDF_TMPDIR");
  out.line("    export BDF_TMPDIR=$BDF_TMPDIR_SAV/bdf-%s", t.name.c_str());
  out.line("    mkdir $BDF_TMPDIR");
  out.line("    %s -r %s.inp > %s.out", j.qc_exe.c_str(), t.name.c_str(), t.name.c_str());
  out.blank();
  second_check(out, kBdfRecheck, out_path, t.name);
  out.line("    rm -rf $BDF_TMPDIR");
  out.line("    export BDF_TMPDIR=$BDF_TMPDIR_SAV");
  out.line("fi");
}

const HLEngine kGaussianHL = {
    "gaussian",
    "python %s/%s/gaussian_log_check.py %s",
    kGaussianRecheck,
    "    echo \"Normal termination of Gaussian detected, skip the current Gaussian run.\"",
    true,
    false,
    gaussian_run,
};
const HLEngine kOrcaHL = {
    "ORCA",
    "python %s/%s/orca_out_check.py %s",
    kOrcaRecheck,
    "    echo \"Normal termination of ORCA detected, skip the current ORCA run.\"",
    false,
    true,
    orca_run,
};
const HLEngine kQchemHL = {
    "Q-Chem",
    "python %s/%s/qchem_out_check.py %s",
    kQchemRecheck,
    "    echo \"Normal termination of Q-Chem detected, skip the current Q-Chem run.\"",
    false,
    false,
    qchem_run,
};
const HLEngine kBdfHL = {
    "BDF",
    "python %s/%s/bdf_out_check.py %s",
    kBdfRecheck,
    "    echo \"Normal termination of BDF detected, skip the current BDF run.\"",
    false,
    false,
    bdf_run,
};

// A finished calculation is never run again: the checker leaves "<output>.ok" when
// the output ended normally, and the first look skips the run.
void hl_body(ScriptOut& out, const HLEngine& e, const HLTask& t) {
  const Jobscript& j = out.job;
  const std::string out_path =
      e.log_ext ? format_string("%s/%s/%s.%s", j.job_workdir.c_str(), j.job_scripts_HLdir.c_str(), t.name.c_str(),
                                j.qc_log_ext.c_str())
                : format_string("%s/%s/%s.out", j.job_workdir.c_str(), j.job_scripts_HLdir.c_str(), t.name.c_str());
  out.line(e.check, j.job_workdir.c_str(), j.job_scripts_SCRdir.c_str(), out_path.c_str());
  out.line("if [ -f %s.ok ]; then", out_path.c_str());
  out.line("%s", e.skip);
  out.line("    rm -f %s.ok", out_path.c_str());
  out.line("else");
  e.run(out, t, out_path);
}

// Everything between the head and the first task.
void hl_top(ScriptOut& out, const HLEngine& e) {
  if (e.modules_first) {
    out.modules(Modules::qc);
    out.data_dir(out.job.job_scripts_HLdir);
  } else {
    out.qc_dir_lines(out.job.job_scripts_HLdir);
    out.modules(Modules::qc);
  }
  if (out.sched != Jobscript::sched_local) out.start_line();
}

// The writer bodies, plain and array, of one engine.
struct HLScript {
  const HLEngine& engine;

  void operator()(const Jobscript& job, int sched, const char* script_name, int nodes, int ppn, const char* inp_name,
                  const char* job_name, const char* marker) const {
    ScriptOut out(job, sched, qc_script_path(job, script_name), engine.word);
    out.head({"HL", job_name, nodes, ppn, true, nullptr, nullptr});
    hl_top(out, engine);
    hl_body(out, engine, HLTask{inp_name, inp_name, false, 0, ppn});
    out.end_frame(marker, false);  // plain HL scripts alone end without the extra blank
  }

  void operator()(const Jobscript& job, int sched, const char* script_name, int nodes, int ppn, const char* inp_name,
                  const char* job_name, const char* marker, int count, const int* index_list) const {
    const std::string index_text = array_index_text(count, index_list);
    ScriptOut out(job, sched, qc_script_path(job, script_name), engine.word);
    out.head({"HL", job_name, nodes, ppn, true, nullptr, &index_text});
    hl_top(out, engine);
    if (sched != Jobscript::sched_local) {
      const char* token = array_index_token(sched);
      hl_body(out, engine, HLTask{inp_name, task_name(inp_name, token), true, 0, ppn});
      out.end_frame(task_name(marker, token), true);
      return;
    }
    local_array_blocks(out, count, index_list, marker, [&](int index) {
      out.line("# ----------------------------------------------------");
      out.line("# mol-%d", index);
      hl_body(out, engine, HLTask{inp_name, task_name(inp_name, std::to_string(index)), true, index, ppn});
    });
  }
};

}  // namespace
}  // namespace txjobs

#define HL_PARAMS \
  (const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name, const char* marker)
#define HL_ARGS (script_name, nodes, ppn, inp_name, job_name, marker)
#define HL_ARRAY_PARAMS                                                                                         \
  (const char* script_name, int nodes, int ppn, const char* inp_name, const char* job_name, const char* marker, \
   int count, const int* index_list)
#define HL_ARRAY_ARGS (script_name, nodes, ppn, inp_name, job_name, marker, count, index_list)

TX_DEFINE_JOB_WRITER(write_gaussian_HL_job, true, txjobs::HLScript{txjobs::kGaussianHL}, HL_PARAMS, HL_ARGS)
TX_DEFINE_JOB_WRITER(write_orca_HL_job, true, txjobs::HLScript{txjobs::kOrcaHL}, HL_PARAMS, HL_ARGS)
TX_DEFINE_JOB_WRITER(write_qchem_HL_job, true, txjobs::HLScript{txjobs::kQchemHL}, HL_PARAMS, HL_ARGS)
TX_DEFINE_JOB_WRITER(write_bdf_HL_job, true, txjobs::HLScript{txjobs::kBdfHL}, HL_PARAMS, HL_ARGS)
TX_DEFINE_JOB_WRITER(write_gaussian_HL_job_array, true, txjobs::HLScript{txjobs::kGaussianHL}, HL_ARRAY_PARAMS,
                     HL_ARRAY_ARGS)
TX_DEFINE_JOB_WRITER(write_orca_HL_job_array, true, txjobs::HLScript{txjobs::kOrcaHL}, HL_ARRAY_PARAMS, HL_ARRAY_ARGS)
TX_DEFINE_JOB_WRITER(write_qchem_HL_job_array, true, txjobs::HLScript{txjobs::kQchemHL}, HL_ARRAY_PARAMS, HL_ARRAY_ARGS)
TX_DEFINE_JOB_WRITER(write_bdf_HL_job_array, true, txjobs::HLScript{txjobs::kBdfHL}, HL_ARRAY_PARAMS, HL_ARRAY_ARGS)
