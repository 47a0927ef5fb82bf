// job_pieces.h - internal to src/jobs: the pieces every batch job script is built
// from (head, directory lines, module lines, start line, end frame), the array
// index text and variables, and the macro that defines a public writer together
// with its four scheduler members. Definitions in job_head.cpp.
#ifndef TAVIX_JOB_PIECES_H
#define TAVIX_JOB_PIECES_H

#include <cstdio>
#include <functional>
#include <string>

#include "job_scripts.h"

namespace txjobs {

// What the head of a script says about the job.
struct JobHead {
  const char* kind;  // tag of the LSF job line ("HL", "MC", ...); null: the job name alone
  const char* name;  // job name
  int nodes;
  int ppn;                        // processes per node
  bool hl_order;                  // Slurm: output line right after the time (HL and array kinds)
  const char* out_dir;            // standard output under this directory; null: submission directory
  const std::string* index_text;  // array index text; null for a plain job
  bool pbs_nodelist = true;       // PBS nodelist line, left out by the site-energy job only
};

// Which "module load" lines a script gets.
enum class Modules { none, qc, suite };

// One script being written: opens it (fatal when it can't), writes lines, closes it.
class ScriptOut {
 public:
  // `word` names the program in the dormant verbose line ("gaussian", "ORCA", ...).
  ScriptOut(const Jobscript& job, int sched, const std::string& path, const char* word);
  ~ScriptOut();
  ScriptOut(const ScriptOut&) = delete;
  ScriptOut& operator=(const ScriptOut&) = delete;

  // One line: the printf-formatted text and a newline.
  void line(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
  void blank();
  // Text as it stands, no newline added.
  void raw(const char* text);

  void head(const JobHead& h);
  // "DataDir=<workdir>/<dir>" and a blank.
  void data_dir(const std::string& dir);
  // Directory lines of the HOMO/LUMO and Gaussian reorganisation jobs: DataDir, then
  // the change to the submission directory. None on local.
  void qc_dir_lines(const std::string& dir);
  // Directory lines of the calculation jobs: the change to the submission directory.
  void calc_dir_lines();
  void modules(Modules m);
  void start_line();
  // "rm -f <workdir>/<marker>".
  void remove_marker(const std::string& marker);
  // The two closing echo lines, and a blank when `trailing_blank`.
  void closing(bool trailing_blank);
  // Blank, marker removal, blank: the tail of each task.
  void marker_block(const std::string& marker);
  // marker_block, then closing.
  void end_frame(const std::string& marker, bool trailing_blank);

  const Jobscript& job;
  const int sched;

 private:
  void pbs_head(const JobHead& h);
  void slurm_head(const JobHead& h);
  void slurm_output_line(const JobHead& h);
  void lsf_head(const JobHead& h);
  FILE* fp_;
};

// The variable that holds a task's array index in a script: "${PBS_ARRAYID}",
// "${SLURM_ARRAY_TASK_ID}", "${LSB_JOBINDEX}". Local scripts hold literal numbers.
const char* array_index_token(int sched);

// The scheduler's text of the array indexes: "1-<count>" without a list, else the
// listed indexes joined by commas.
std::string array_index_text(int count, const int* index_list);

// The blocks of a local array script: one a task, numbered by the list or 1..count,
// each written by `block(index)` and ended by the removal of "<marker>-<index>";
// then the closing lines. A count below 1 gives no block.
void local_array_blocks(ScriptOut& out, int count, const int* index_list, const char* marker,
                        const std::function<void(int index)>& block);

// "<name>-<suffix>": the per-task form of a name in array scripts.
std::string task_name(const char* name, const std::string& suffix);

// "<JOBSdir>/<name>.<ext>" of the quantum-chemistry kinds and "<base>.<ext>" of the
// calculation kinds, with the extension of the current scheduler.
std::string qc_script_path(const Jobscript& job, const char* name);
std::string calc_script_path(const Jobscript& job, const char* base);

[[noreturn]] void unknown_job_sched_type();

}  // namespace txjobs

#define TX_UNPAREN(...) __VA_ARGS__

// Defines the public writer `writer` and its members writer_pbs, _slurm, _lsf and
// _local. `params` is the parenthesised parameter list and `args` the parenthesised
// parameter names. Each member hands its scheduler index and the arguments to
// `body(const Jobscript&, int sched, args...)`; the public writer creates the jobs
// directory when `makes_jobs_dir`, then picks the member by job_sched_type.
#define TX_DEFINE_JOB_WRITER(writer, makes_jobs_dir, body, params, args)               \
  void Jobscript::writer##_pbs params { body(*this, sched_pbs, TX_UNPAREN args); }     \
  void Jobscript::writer##_slurm params { body(*this, sched_slurm, TX_UNPAREN args); } \
  void Jobscript::writer##_lsf params { body(*this, sched_lsf, TX_UNPAREN args); }     \
  void Jobscript::writer##_local params { body(*this, sched_local, TX_UNPAREN args); } \
  void Jobscript::writer params {                                                      \
    if (makes_jobs_dir) create_directory(job_scripts_JOBSdir);                         \
    switch (job_sched_type) {                                                          \
      case sched_slurm:                                                                \
        writer##_slurm args;                                                           \
        break;                                                                         \
      case sched_lsf:                                                                  \
        writer##_lsf args;                                                             \
        break;                                                                         \
      case sched_pbs:                                                                  \
        writer##_pbs args;                                                             \
        break;                                                                         \
      case sched_local:                                                                \
        writer##_local args;                                                           \
        break;                                                                         \
      default:                                                                         \
        txjobs::unknown_job_sched_type();                                              \
    }                                                                                  \
  }

#endif  // TAVIX_JOB_PIECES_H
