// Transport: the scripts of the four-point route. Each state has a job in the jobs
// directory and a driver that marks it running and submits it; RE_run.py in the
// current directory runs the relaxations, then the excitation runs on their
// checkpoints, waits on the markers between, and hands the outputs to the
// installation's tavix_reorg_4P.py.
#include <cstdio>
#include <iterator>
#include <string>

#include "checker_script_tables.h"
#include "transport.h"
#include "txutil.h"

namespace {

FILE* open_output(const std::string& path) {
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  return fp;
}

const char* const kRunHead[] = {
    "#!/usr/bin/env python",
    "import os",
    "import sys",
    "import time",
    "from datetime import datetime",
    "import glob",
    "",
    "start_time = time.time()",
    "print('  #####     #     #     #  ###  #     #')",
    "print('    #      # #    #     #   #    #   #')",
    "print('    #     #   #    #   #    #      #')",
    "print('    #    #######    # #     #    #   #')",
    "print('    #    #     #     #     ###  #     #   " TAVIX_RELEASE_WORD "')",
    "print('')",
    "print('  Reorganization energy of one molecule by the four-point method:')",
    "print('  relaxes the ground and the excited state, then evaluates both on each geometry.')",
    "sys.stdout.flush()",
    "TAVIX_ROOT = os.getenv('TAVIX_ROOT')",
    "if not TAVIX_ROOT:",
    "    print('+------------------------------------------------+')",
    "    print('|  Please set environment variable TAVIX_ROOT !  |')",
    "    print('+------------------------------------------------+')",
    "    sys.exit(1)",
    "nerror = len(glob.glob1('.', 'ERROR-*'))",
    "if nerror > 0:",
    "    os.system('rm ERROR-*')",
    "nrun = len(glob.glob1('.', 'running.*'))",
    "if nrun > 0:",
    "    os.system('rm running.*')",
};

const char* const kRunWait[] = {
    "def wait_running():",
    "    run_dir_loc = '.'",
    "    nrun = len(glob.glob1(run_dir_loc, 'running.*'))",
    "    while nrun > 0:",
    "        time.sleep(1)",
    "        nrun = len(glob.glob1(run_dir_loc, 'running.*'))",
    "        nerror = len(glob.glob1(run_dir_loc, 'ERROR-*'))",
    "        if nerror > 0:",
    "            sys.stderr.write('\\nERROR occurs in running TAVIX calculations.\\n')",
    "            sys.stderr.write('Check ERROR-* to locate the problem.\\n')",
    "            sys.stderr.write('STOP\\n\\n')",
    "            sys.exit(1)",
    "wait_running()",
    "",
};

const char* const kRunTail[] = {
    "if os.path.exists('fort.7'):",
    "    os.remove('fort.7')",
    "seconds = time.time() - start_time",
    "seconds_in_day = 86400",
    "seconds_in_hour = 3600",
    "seconds_in_minute = 60",
    "days = seconds // seconds_in_day",
    "seconds = seconds - days * seconds_in_day",
    "hours = seconds // seconds_in_hour",
    "seconds = seconds - hours * seconds_in_hour",
    "minutes = seconds // seconds_in_minute",
    "seconds = seconds - minutes * seconds_in_minute",
    "now = datetime.now()",
    "print('\\nSuccessfully done at %s' % str(now))",
    "print('DURATION: {0:.0f} days {1:.0f} hours {2:.0f} minutes {3:.0f} seconds.'.format(days, hours, minutes, "
    "seconds))",
};

}  // namespace

// The Gaussian payload of the relaxation runs, with every path relative to the working directory:
// the run is skipped when its output already ended normally, and a failed run
// leaves ERROR-RE-re-<state> beside it.
void Transport::reorg4p_format_RE_gau_job_string(std::string& out, const char* state, bool run_formchk) {
  const std::string n = format_string("re-%s", state);
  const std::string p = format_string("%s.%s", n.c_str(), gaussian_log_ext.c_str());
  const std::string check = format_string("python %s/gaussian_log_check.py %s", job_scripts_JOBSdir.c_str(), p.c_str());
  out = check + "\n";
  out += format_string("if [ -f %s.ok ]; then\n", p.c_str());
  out += "    echo \"Normal termination of Gaussian detected, skip the current run.\"\n";
  out += format_string("    rm -f %s.ok\n", p.c_str());
  out += "else\n";
  out += format_string("    echo \"Run Gaussian job %s...\"\n", n.c_str());
  out += format_string("    %s %s.com\n", qc_exe.c_str(), n.c_str());
  if (run_formchk) out += format_string("    %s %s.chk\n", formchk_exe.c_str(), n.c_str());
  out += "    " + check + "\n";
  out += format_string("    if [ -f %s.ok ]; then\n", p.c_str());
  out += format_string("        rm -f %s.ok\n", p.c_str());
  out += "    else\n";
  out += format_string("        touch ERROR-RE-%s\n", n.c_str());
  out += "    fi\n";
  out += "fi\n";
}

// The route's jobs look for the checker beside them, so it goes to the jobs
// directory, which nothing has made yet.
void Transport::reorg4p_write_gaussian_log_check_py_file() {
  create_directory(job_scripts_JOBSdir);
  write_script_file(format_string("%s/gaussian_log_check.py", job_scripts_JOBSdir.c_str()), gaussian_log_check_py,
                    gaussian_log_check_py_size);
}

void Transport::reorg4p_write_job_and_driver(const char* state, bool run_formchk) {
  const std::string job = format_string("re-%s", state);
  const std::string marker = format_string("running.re_%s", state);
  std::string payload;
  reorg4p_format_RE_gau_job_string(payload, state, run_formchk);
  write_gaussian_RE_job(job.c_str(), qc_nodes, qc_ppn, payload.c_str(), job.c_str(), marker.c_str());

  FILE* fp = open_output(format_string("%s/%s.py", job_scripts_JOBSdir.c_str(), job.c_str()));
  std::fprintf(fp, "#!/usr/bin/env python\n");
  std::fprintf(fp, "import os\n");
  std::fprintf(fp, "\n");
  std::fprintf(fp, "os.system('touch %s')\n", marker.c_str());
  std::fprintf(fp, "os.system('%s %s/%s.%s')\n", job_submit_cmds[job_sched_type].c_str(), job_scripts_JOBSdir.c_str(),
               job.c_str(), get_job_script_ext().c_str());
  std::fprintf(fp, "\n");
  std::fclose(fp);
}

void Transport::reorg4p_write_RE_run_py_file() {
  const bool triplet = qc_es_mult == 3;
  const char* jobs = job_scripts_JOBSdir.c_str();
  FILE* fp = open_output("RE_run.py");
  write_script_lines(fp, kRunHead, std::size(kRunHead));
  std::fprintf(fp, "os.system('python %s/re-gs.py')\n", jobs);
  std::fprintf(fp, "os.system('python %s/re-es.py')\n", jobs);
  write_script_lines(fp, kRunWait, std::size(kRunWait));
  std::fprintf(fp, "os.system('cp re-gs.chk re-gs-tddft.chk')\n");
  std::fprintf(fp, "os.system('python %s/re-gs-tddft.py')\n", jobs);
  if (triplet) {
    std::fprintf(fp, "os.system('cp re-es.chk re-es-tddft.chk')\n");
    std::fprintf(fp, "os.system('python %s/re-es-tddft.py')\n", jobs);
  }
  std::fprintf(fp, "wait_running()\n");
  std::fprintf(fp, "\n");
  // The outputs are named .log by Gaussian and .out by the other engines.
  const char* ext = compute_engine == 1 ? "log" : "out";
  std::string args = triplet ? "--mult 3 " : "";
  args += format_string("--gs re-gs.%s --es re-es.%s --gs2 re-gs-tddft.%s", ext, ext, ext);
  if (triplet) args += format_string(" --es2 re-es-tddft.%s", ext);
  std::fprintf(fp, "os.system('python $TAVIX_ROOT/scripts/tavix_reorg_4P.py %s')\n", args.c_str());
  std::fprintf(fp, "\n");
  write_script_lines(fp, kRunTail, std::size(kRunTail));
  std::fclose(fp);
}
