// The pieces every job script is built from: the head of each scheduler, the
// directory and module lines, the start line and the end frame, the array index
// text and variables, the script paths, and opening a script.
#include <cstdarg>

#include "job_pieces.h"

namespace txjobs {

namespace {

// Scheduler texts, by scheduler index (PBS, Slurm, LSF, local).
struct SchedTexts {
  const char* word;          // in the dormant verbose line
  const char* index_token;   // array index variable; local scripts hold numbers
  const char* workdir_echo;  // the submission directory, announced
  const char* workdir_cd;    // and entered
};

const SchedTexts kSched[4] = {
    {"PBS", "${PBS_ARRAYID}", "echo \"Working directory is ${PBS_O_WORKDIR}\"", "cd ${PBS_O_WORKDIR}"},
    {"SLURM", "${SLURM_ARRAY_TASK_ID}", "echo \"Working directory is $SLURM_SUBMIT_DIR\"", "cd ${SLURM_SUBMIT_DIR}"},
    {"LSF", "${LSB_JOBINDEX}", "echo \"Working directory is ${LS_SUBCWD}\"", "cd ${LS_SUBCWD}"},
    {"LOCAL", nullptr, nullptr, nullptr},
};

}  // namespace

// ---- opening and plain lines ---------------------------------------------------

ScriptOut::ScriptOut(const Jobscript& job_, int sched_, const std::string& path, const char* word)
    : job(job_), sched(sched_), fp_(nullptr) {
  job.getFileName(path);  // looked up and dropped: no output depends on the file part
  if (job.job_verbose) std::printf("Writing %s job %s script %s...\n", word, kSched[sched].word, path.c_str());
  fp_ = std::fopen(path.c_str(), "w");
  if (fp_ == nullptr) TX_FATAL(txunit::job_scripts, -1, stderr, "Failed to open output file %s\n", path.c_str());
}

ScriptOut::~ScriptOut() { std::fclose(fp_); }

void ScriptOut::line(const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  std::vfprintf(fp_, fmt, args);
  va_end(args);
  std::fputc('\n', fp_);
}

void ScriptOut::blank() { std::fputc('\n', fp_); }

void ScriptOut::raw(const char* text) { std::fputs(text, fp_); }

// ---- heads ---------------------------------------------------------------------

void ScriptOut::head(const JobHead& h) {
  switch (sched) {
    case Jobscript::sched_pbs:
      pbs_head(h);
      break;
    case Jobscript::sched_slurm:
      slurm_head(h);
      break;
    case Jobscript::sched_lsf:
      lsf_head(h);
      break;
    default:
      line("#!/bin/sh");
      blank();
  }
}

void ScriptOut::pbs_head(const JobHead& h) {
  line("#PBS -S /bin/bash");
  line("#PBS -l walltime=%d:%02d:%02d", job.walltime_hours, job.walltime_minutes, job.walltime_seconds);
  line("#PBS -l nodes=%d:ppn=%d", h.nodes, h.ppn);
  line("#PBS -q %s", job.queue_name.c_str());
  if (h.index_text != nullptr) {
    if (job.job_slot_limit != 0)
      line("#PBS -t %s%%%d", h.index_text->c_str(), job.job_slot_limit);
    else
      line("#PBS -t %s", h.index_text->c_str());
  }
  if (h.out_dir != nullptr)
    line("#PBS -o %s/stdout-%s", h.out_dir, h.name);
  else
    line("#PBS -o stdout-%s", h.name);
  line("#PBS -j oe");
  if (!job.nodelist.empty() && h.pbs_nodelist) line("#PBS -l nodes=%s", job.nodelist.c_str());
  blank();
}

void ScriptOut::slurm_output_line(const JobHead& h) {
  if (h.out_dir != nullptr)
    line("#SBATCH --output=%s/stdout-%s", h.out_dir, h.name);
  else if (h.index_text != nullptr)
    line("#SBATCH --output=stdout-%s-%%a", h.name);
  else
    line("#SBATCH --output=stdout-%s", h.name);
}

void ScriptOut::slurm_head(const JobHead& h) {
  line("#!/bin/bash");
  line("#SBATCH --time=%d-%02d:%02d:%02d", job.walltime_days, job.walltime_hours, job.walltime_minutes,
       job.walltime_seconds);
  if (h.hl_order) slurm_output_line(h);
  line("#SBATCH --nodes=%d --ntasks-per-node=%d", h.nodes, h.ppn);
  line("#SBATCH -p %s", job.queue_name.c_str());
  if (!h.hl_order) slurm_output_line(h);
  if (h.index_text != nullptr) {
    if (job.job_slot_limit != 0)
      line("#SBATCH --array=%s%%%d", h.index_text->c_str(), job.job_slot_limit);
    else
      line("#SBATCH --array=%s", h.index_text->c_str());
  }
  if (!job.nodelist.empty()) line("#SBATCH --nodelist=%s", job.nodelist.c_str());
  blank();
}

void ScriptOut::lsf_head(const JobHead& h) {
  // The job line carries "<kind>-" before the name, except for the untagged kinds.
  const std::string job_name = h.kind != nullptr ? std::string(h.kind) + "-" + h.name : std::string(h.name);
  line("#BSUB -W %d:%02d", job.walltime_hours, job.walltime_minutes);
  if (h.index_text == nullptr) line("#BSUB -J %s", job_name.c_str());
  if (h.out_dir != nullptr)
    line("#BSUB -oo %s/stdout-%s", h.out_dir, h.name);
  else if (h.index_text != nullptr)
    line("#BSUB -oo stdout-%s-%%I", h.name);
  else
    line("#BSUB -oo stdout-%s", h.name);
  // Widened so that an absurd request cannot overflow; the text is the same.
  line("#BSUB -n %lld", static_cast<long long>(h.nodes) * h.ppn);
  line("#BSUB -R 'span[ptile=%d]'", h.ppn);
  line("#BSUB -q %s", job.queue_name.c_str());
  if (h.index_text != nullptr) {
    if (job.job_slot_limit != 0)
      line("#BSUB -J %s[%s]%%%d", job_name.c_str(), h.index_text->c_str(), job.job_slot_limit);
    else
      line("#BSUB -J %s[%s]", job_name.c_str(), h.index_text->c_str());
  }
  if (!job.nodelist.empty()) line("#BSUB -m '%s'", job.nodelist.c_str());
  blank();
}

// ---- directory, module and start lines, end frame ------------------------------

void ScriptOut::data_dir(const std::string& dir) {
  line("DataDir=%s/%s", job.job_workdir.c_str(), dir.c_str());
  blank();
}

void ScriptOut::qc_dir_lines(const std::string& dir) {
  if (sched == Jobscript::sched_local) return;
  data_dir(dir);
  const SchedTexts& t = kSched[sched];
  if (sched == Jobscript::sched_pbs) {
    line("%s", t.workdir_cd);
    line("%s", t.workdir_echo);
  } else {
    line("%s", t.workdir_echo);
    line("%s", t.workdir_cd);
  }
  blank();
}

void ScriptOut::calc_dir_lines() {
  if (sched == Jobscript::sched_local) return;
  line("%s", kSched[sched].workdir_echo);
  line("%s", kSched[sched].workdir_cd);
  blank();
}

void ScriptOut::modules(Modules m) {
  auto module_line = [this](bool flag, const std::string& name) {
    if (!flag) return;
    line("module load %s", name.c_str());
    blank();
  };
  if (m == Modules::qc) module_line(job.module_qc_flag, job.module_qc);
  if (m == Modules::suite) {
    module_line(job.module_tavix_flag, job.module_tavix);
    module_line(job.module_mpich2_flag, job.module_mpich2);
  }
}

void ScriptOut::start_line() {
  line("echo \"Starting job run at `date`\"");
  blank();
}

void ScriptOut::remove_marker(const std::string& marker) {
  line("rm -f %s/%s", job.job_workdir.c_str(), marker.c_str());
}

void ScriptOut::closing(bool trailing_blank) {
  line("echo \"Ending job run at `date`\"");
  line("echo \"------------------------\"");
  if (trailing_blank) blank();
}

void ScriptOut::marker_block(const std::string& marker) {
  blank();
  remove_marker(marker);
  blank();
}

void ScriptOut::end_frame(const std::string& marker, bool trailing_blank) {
  marker_block(marker);
  closing(trailing_blank);
}

// ---- arrays, paths, dispatch ---------------------------------------------------

const char* array_index_token(int sched) { return kSched[sched].index_token; }

std::string array_index_text(int count, const int* index_list) {
  if (index_list == nullptr) return format_string("1-%d", count);
  // The writers this replaces kept six bytes a task, which bounds an index to five
  // digits; a string gives the same text for those and holds any longer one.
  std::string text;
  for (int i = 0; i < count; ++i) text += format_string("%d,", index_list[i]);
  if (!text.empty()) text.pop_back();
  return text;
}

void local_array_blocks(ScriptOut& out, int count, const int* index_list, const char* marker,
                        const std::function<void(int index)>& block) {
  for (int i = 1; i <= count; ++i) {
    const int index = index_list != nullptr ? index_list[i - 1] : i;
    block(index);
    out.marker_block(task_name(marker, std::to_string(index)));
  }
  out.closing(true);
}

std::string task_name(const char* name, const std::string& suffix) { return std::string(name) + "-" + suffix; }

std::string qc_script_path(const Jobscript& job, const char* name) {
  return format_string("%s/%s.%s", job.job_scripts_JOBSdir.c_str(), name, job.get_job_script_ext().c_str());
}

std::string calc_script_path(const Jobscript& job, const char* base) {
  return format_string("%s.%s", base, job.get_job_script_ext().c_str());
}

void unknown_job_sched_type() { TX_FATAL(txunit::job_scripts, -1, stderr, "Unknown job scheduling type!\n"); }

}  // namespace txjobs
