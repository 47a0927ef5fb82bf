// Transport: the Python drivers that submit the reorganisation jobs, and the names
// and lists that inputs, jobs and drivers of that work share.
#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

#include "re_pieces.h"
#include "txutil.h"

namespace txre {

const ReState kNeutral = {"neutral", "0 1", 0, 1};
const ReState kCation = {"cation", "1 2", 1, 2};
const ReState kAnion = {"anion", "-1 2", -1, 2};
const ReState kNeutralHN = {"neutral_hN", "1 2", 1, 2};
const ReState kCationNC = {"cation_nC", "0 1", 0, 1};
const ReState kNeutralEN = {"neutral_eN", "-1 2", -1, 2};
const ReState kAnionNC = {"anion_nC", "0 1", 0, 1};

const JobNames kGaussianJobNames = {"job_re-%s", "%s/running.re_%s"};
const JobNames kOrcaJobNames = {"job_re_%s", "%s/running.RE-%s"};
const JobNames kQchemBdfJobNames = {"job_re-%s", "%s/running.re-%s"};

namespace {

char carrier_letter(const Transport& t) {
  if (t.chargetype.empty()) return '\0';
  return static_cast<char>(std::tolower(static_cast<unsigned char>(t.chargetype[0])));
}

}  // namespace

bool electron_work(const Transport& t) {
  const char c = carrier_letter(t);
  return c == 'a' || c == 'e';
}

bool hole_work(const Transport& t) {
  const char c = carrier_letter(t);
  return c == 'a' || c == 'h';
}

std::vector<int> molecule_numbers(const Transport& t, bool unique, const char* op) {
  std::vector<int> numbers;
  if (!unique) {
    for (int n = 1; n <= t.nmols_uc; ++n) numbers.push_back(n);
    return numbers;
  }
  for (int k = 0; k < t.uc_mol_re_count; ++k) {
    const int number = t.uc_mol_re_list != nullptr ? t.uc_mol_re_list[k] : 0;
    if (number < 1 || number > t.nmols_uc)
      TX_FATAL(txunit::transport, -1, stderr, "%s: uc_mol_re_list entry %d is outside 1..%d\n", op, number, t.nmols_uc);
    numbers.push_back(number);
  }
  return numbers;
}

std::string state_base(int number, const char* state) { return format_string("re-mol%d-%s", number, state); }

std::string re_path(const Transport& t, const std::string& base, const char* ext) {
  return format_string("%s/%s.%s", t.job_scripts_REdir.c_str(), base.c_str(), ext);
}

// post_data_read_treatment sets it from compute_engine; until then the Gaussian "log".
std::string output_ext(const Transport& t) { return t.qc_log_ext; }

Transport::RE_submission submission(const Transport& t, const JobNames& names, const std::string& job_name) {
  return {format_string(names.marker_format, t.job_scripts_RUNdir.c_str(), job_name.c_str()),
          format_string(names.script_format, job_name.c_str())};
}

FILE* open_re_file(const std::string& path) {
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  return fp;
}

}  // namespace txre

// The driver is run from the working directory of the calculation: it enters the RE
// directory, whence the job scripts lie at ../<jobs>, and returns.
void Transport::write_RE_driver_py(const char* name, const std::vector<RE_submission>& jobs, bool separators,
                                   FILE* error_stream) {
  if (job_sched_type < 0 || job_sched_type > 3)
    TX_FATAL(txunit::transport, -1, stderr, "Unknown job scheduling type!\n");
  const std::string path = format_string("%s/%s", job_scripts_SCRdir.c_str(), name);
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, 1, error_stream, "Failed to open output file %s\n", path.c_str());
  std::fprintf(fp, "#!/usr/bin/env python\n");
  std::fprintf(fp, "import os\n");
  std::fprintf(fp, "\n");
  std::fprintf(fp, "cwd = os.getcwd()\n");
  std::fprintf(fp, "os.chdir(\"%s\")\n", job_scripts_REdir.c_str());
  std::fprintf(fp, "\n");
  for (const RE_submission& job : jobs) {
    if (separators) {
      std::fprintf(fp, "# ----\n");
      std::fprintf(fp, "\n");
    }
    std::fprintf(fp, "os.system(\"touch %s/%s\")\n", job_workdir.c_str(), job.marker.c_str());
    std::fprintf(fp, "os.system(\"%s ../%s/%s.%s\")\n", job_submit_cmds[job_sched_type].c_str(),
                 job_scripts_JOBSdir.c_str(), job.script.c_str(), job_script_exts[job_sched_type].c_str());
    std::fprintf(fp, "\n");
  }
  std::fprintf(fp, "os.chdir(cwd)\n");
  std::fprintf(fp, "\n");
  std::fclose(fp);
}
