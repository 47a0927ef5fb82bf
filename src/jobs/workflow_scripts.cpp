// Transport::write_scripts: the layout of a run directory and every script of the
// calculation that is not a per-engine input. The installation's driver runs the
// step scripts one after another; a step announces itself by touching
// RUN/running.<name> just before it submits its job, and the job removes that file
// as its last action. Those markers are the only state that binds the stages.
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

#include "run_trees.h"
#include "transport.h"
#include "txutil.h"

namespace {

// One script or list file being written. Open failures end the process with the
// fatal report; a directory that could not be made shows up here as well.
class OutFile {
 public:
  OutFile(const std::string& path, bool verbose, const std::string& shown) {
    if (verbose) std::printf("Writting %s...\n", shown.c_str());
    fp_ = std::fopen(path.c_str(), "wt");
    if (fp_ == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  }
  OutFile(const OutFile&) = delete;
  OutFile& operator=(const OutFile&) = delete;
  ~OutFile() { std::fclose(fp_); }

  // One line: the formatted text and a newline.
  __attribute__((format(printf, 2, 3))) void line(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    std::vfprintf(fp_, fmt, ap);
    va_end(ap);
    std::fputc('\n', fp_);
  }
  void blank() { std::fputc('\n', fp_); }

 private:
  FILE* fp_;
};

struct CarrierWork {
  char letter;       // 'e' or 'h', the file suffix
  int code;          // 0 electrons, 1 holes
  const char* dir;   // "elec" or "hole"
};

std::vector<CarrierWork> carriers_of(const std::string& chargetype) {
  std::vector<CarrierWork> out;
  if (electron_work(chargetype)) out.push_back({'e', 0, "elec"});
  if (hole_work(chargetype)) out.push_back({'h', 1, "hole"});
  return out;
}

// "0,0,2": values minus one, joined by commas, as a Python list body.
std::string zero_based_list(const int* values, int count) {
  std::string s;
  for (int k = 0; k < count; ++k) {
    if (k > 0) s += ',';
    s += std::to_string(values[k] - 1);
  }
  return s;
}

class WorkflowWriter {
 public:
  WorkflowWriter(Transport& t, bool verbose)
      : t_(t),
        verbose_(verbose),
        ext_(t.compute_engine == 1 ? "log" : "out"),
        carriers_(carriers_of(t.chargetype)) {}

  void write_all();

 private:
  struct JobStep {
    std::string name;     // job name
    std::string script;   // script base under the jobs directory
    std::string marker;   // RUN/running.<name>
    std::string payload;  // shell lines of the job
  };

  JobStep job_step(const std::string& name) const {
    return {name, format_string("%s/%s", t_.job_scripts_JOBSdir.c_str(), name.c_str()),
            format_string("%s/running.%s", t_.run_dir.c_str(), name.c_str()), std::string()};
  }
  std::string scr_path(const char* name) const { return format_string("%s/%s", t_.scr_dir.c_str(), name); }
  std::string data_path(const char* name) const { return format_string("%s/%s", t_.data_dir.c_str(), name); }

  // The one-based number under which molecule i does its reorganisation work.
  int re_number(int i) const { return t_.unique_RE_calc_flag ? t_.uc_mol_seq[i] : i + 1; }
  // Loop heads over the molecules of a merging script: every molecule's record
  // (a representative may repeat, and so does its record), and each file once.
  std::string record_loop(const char* indent) const;
  std::string removal_loop() const;

  void step_head(OutFile& f, const char* imports) const;
  void data_dir_head(OutFile& f, const char* imports) const;
  void removal_block(OutFile& f, const std::string& comment, const char* stem, const char* tail) const;
  void step_submit(OutFile& f, const JobStep& step, bool chdir_back) const;

  void make_directories();
  void write_trans_int_files();
  void write_checkers();
  void write_get_transint();
  void write_merge_evc_nm();
  void write_site_energy_steps();
  void write_copy_neutral_chk();
  void write_lambda_4p();
  void write_merge_lumps(const char* script, const char* stem);
  void write_evc();
  void write_get_re_lambda_evc();
  void write_mc_trees();
  void write_me_trees();
  void write_start_file();

  Transport& t_;
  bool verbose_;
  const char* ext_;  // output extension of the quantum-chemistry engine
  std::vector<CarrierWork> carriers_;
};

std::string WorkflowWriter::record_loop(const char* indent) const {
  if (!t_.unique_RE_calc_flag) return format_string("%sfor m in range(%d):", indent, t_.nmols_uc);
  std::vector<int> ids(t_.uc_mol_seq, t_.uc_mol_seq + t_.nmols_uc);
  return format_string("%sfor m in [%s]:", indent, zero_based_list(ids.data(), t_.nmols_uc).c_str());
}

std::string WorkflowWriter::removal_loop() const {
  if (!t_.unique_RE_calc_flag) return format_string("for m in range(%d):", t_.nmols_uc);
  return format_string("for m in [%s]:", zero_based_list(t_.uc_mol_re_list, t_.uc_mol_re_count).c_str());
}

void WorkflowWriter::step_head(OutFile& f, const char* imports) const {
  f.line("#!/usr/bin/env python");
  f.line("%s", imports);
  f.blank();
}

// A merging script works inside the data directory and returns at its end.
void WorkflowWriter::data_dir_head(OutFile& f, const char* imports) const {
  f.line("%s", imports);
  f.blank();
  f.line("cwd = os.getcwd()");
  f.line("os.chdir('%s')", t_.data_dir.c_str());
}

// Removes the per-molecule files '<stem>' + str(m+1) + '<tail>' that exist, each once.
void WorkflowWriter::removal_block(OutFile& f, const std::string& comment, const char* stem, const char* tail) const {
  f.line("%s", comment.c_str());
  f.line("%s", removal_loop().c_str());
  f.line("    fnmstr = '%s' + str(m+1) + '%s'", stem, tail);
  f.line("    if os.path.isfile(fnmstr):");
  f.line("        os.remove(fnmstr)");
  f.blank();
}

// The submit line names the script the job writer made, which for every step but
// the transfer integrals is <jobs>/<job name>.
void WorkflowWriter::step_submit(OutFile& f, const JobStep& step, bool chdir_back) const {
  f.line("os.system(\"touch %s/%s\")", t_.job_workdir.c_str(), step.marker.c_str());
  f.line("os.system(\"%s %s.%s\")", t_.job_submit_cmds[t_.job_sched_type].c_str(), step.script.c_str(),
         t_.get_job_script_ext().c_str());
  f.blank();
  if (chdir_back) {
    f.line("os.chdir(cwd)");
    f.blank();
  }
}

void WorkflowWriter::make_directories() {
  create_directory(t_.run_dir);
  create_directory(t_.scr_dir);
  create_directory(t_.job_scripts_JOBSdir);
  create_directory(t_.data_dir);
  create_directory(t_.hl_dir);
  create_directory(t_.re_dir);
}

void WorkflowWriter::write_trans_int_files() {
  const bool by_key = t_.unique_nei_mol_one_calc_flag && t_.unique_2mol_calc_flag;
  OutFile f(data_path("trans_int_files.dat"), verbose_, "trans_int_files.dat");
  const char* H = "../HL";
  f.line("%d", t_.nmols_uc);
  int key = 0;  // zero-based running number of the pair
  for (int i = 0; i < t_.nmols_uc; ++i) {
    f.line("%d", t_.nneighbors[i]);
    for (int j = 0; j < t_.nneighbors[i]; ++j, ++key) {
      const int nei = t_.neighbor_id[i][j] + 1;
      if (!by_key) {
        f.line("%s/2mol-%d-%d.%s  %s/uc_mol-%d.%s  %s/nei_mol-%d-%d.%s  %d %d", H, i + 1, j + 1, ext_, H, i + 1, ext_,
               H, i + 1, j + 1, ext_, i, nei);
        continue;
      }
      if (t_.pair_key_map == nullptr) TX_FATAL(txunit::transport, -1, stderr, "neighbor key mapping error!\n");
      const int rep = t_.pair_key_map[key] + 1;  // one-based representative key
      // The root is the molecule whose neighbors the running sum passes first; a
      // key beyond every neighbor has none.
      int root = -1;
      for (int m = 0, sum = 0; m < t_.nmols_uc && rep >= 1; ++m) {
        sum += t_.nneighbors[m];
        if (rep <= sum) {
          root = m;
          break;
        }
      }
      if (root < 0) TX_FATAL(txunit::transport, -1, stderr, "neighbor key mapping error!\n");
      f.line("%s/2mol-%d.%s  %s/uc_mol-%d.%s  %s/nei_mol-%d.%s  %d %d", H, rep, ext_, H, root + 1, ext_, H, rep, ext_,
             i, nei);
    }
  }
}

void WorkflowWriter::write_checkers() {
  switch (t_.compute_engine) {
    case 1: t_.write_gaussian_log_check_py_file(); break;
    case 2: t_.write_orca_out_check_py_file(); break;
    case 3:
      t_.write_qchem_out_check_py_file();
      t_.write_qchem_fchk_ext_lowercase_py_file();
      break;
    default: t_.write_bdf_out_check_py_file(); break;
  }
}

void WorkflowWriter::write_get_transint() {
  std::string tool = t_.job_moo_flag ? "tavix_overlap.exe" : "tavix_transferintegral.exe";
  if (t_.compute_engine == 2) tool += " -orca";
  if (t_.compute_engine == 3) tool += " -qchem";
  if (t_.compute_engine == 4) tool += " -bdf";

  JobStep step = job_step("transint");
  step.script = format_string("%s/job_transint", t_.job_scripts_JOBSdir.c_str());
  step.marker = format_string("%s/running.run_transint", t_.run_dir.c_str());
  step.payload = format_string("%s -batch %s", tool.c_str(), t_.trans_int_file.c_str());

  OutFile f(scr_path("get_transint.py"), verbose_, "get_transint.py");
  step_head(f, "import os");
  if (t_.compute_engine == 3) {
    f.line("os.system(\"python %s/qchem_fchk_ext_lowercase.py %s\")", t_.scr_dir.c_str(), t_.hl_dir.c_str());
    f.blank();
  }
  t_.write_calc_transint_job(step.script.c_str(), 1, t_.qc_ppn, step.name.c_str(), step.marker.c_str(),
                             step.payload.c_str(), t_.data_dir.c_str());
  step_submit(f, step, false);
}

void WorkflowWriter::write_merge_evc_nm() {
  OutFile f(scr_path("merge_evc_NM_output.py"), verbose_, "merge_evc_NM_output.py");
  data_dir_head(f, "import os, sys");
  for (const CarrierWork& c : carriers_) {
    f.line("sys.stdout.write('  Lumping NM*-%c.dat...\\n')", c.letter);
    f.line("if os.path.isfile('NM1-%c.dat'):", c.letter);
    f.line("    with open('NM-%c.dat', 'w') as outfile:", c.letter);
    f.line("        outfile.write('%d\\n')", t_.nmols_uc);
    f.line("%s", record_loop("        ").c_str());
    f.line("            fnmstr = 'NM' + str(m+1) + '-%c.dat'", c.letter);
    f.line("            with open(fnmstr, 'r') as infile:");
    f.line("                for line in infile:");
    f.line("                    outfile.write(line)");
    f.blank();
    const std::string tail = format_string("-%c.dat", c.letter);
    removal_block(f, format_string("# remove NM*%s", tail.c_str()), "NM", tail.c_str());
  }
  f.line("os.chdir(cwd)");
  f.blank();
}

void WorkflowWriter::write_site_energy_steps() {
  {
    JobStep step = job_step("get_site_ener");
    step.payload = "tavix_siteenergy.exe";
    OutFile f(scr_path("get_site_ener.py"), verbose_, "get_site_ener.py");
    f.line("#!/usr/bin/env python");
    f.line("import os");
    f.line("import sys");
    f.blank();
    t_.write_calc_siteEner_job(step.script.c_str(), 1, t_.qc_ppn, step.name.c_str(), step.marker.c_str(),
                               step.payload.c_str(), t_.data_dir.c_str());
    step_submit(f, step, false);
  }
  {
    OutFile f(data_path("SE_einternal_files.dat"), verbose_, "SE_einternal_files.dat");
    f.line("%d", t_.nmols_uc);
    const char* R = "../RE";
    for (int i = 0; i < t_.nmols_uc; ++i) {
      const int n = re_number(i);
      f.line("%s/re-mol%d-anion.%s %s/re-mol%d-cation.%s %s/re-mol%d-neutral.%s", R, n, ext_, R, n, ext_, R, n, ext_);
    }
  }
  {
    JobStep step = job_step("get_re_int_ener");
    step.payload = format_string("cd %s\ntavix_getEinternal.exe -batch %s -neighbor -qcflag %d", t_.data_dir.c_str(),
                                 "SE_einternal_files.dat", t_.compute_engine);
    OutFile f(scr_path("get_RE_int_ener.py"), verbose_, "get_RE_int_ener.py");
    step_head(f, "import os,sys");
    f.line("cwd = os.getcwd()");
    f.blank();
    t_.write_calc_getRE_job(step.script.c_str(), 1, t_.qc_ppn, step.name.c_str(), step.marker.c_str(),
                            step.payload.c_str());
    step_submit(f, step, true);
  }
  {
    JobStep step = job_step("get_re_outer");
    if (t_.reorg_outer_flag != 0) step.payload = "tavix_eoutersphere.exe\n";
    step.payload += "tavix_emultipole.exe";
    OutFile f(scr_path("get_RE_outer_ener.py"), verbose_, "get_RE_outer_ener.py");
    step_head(f, "import os,sys");
    f.line("cwd = os.getcwd()");
    f.blank();
    t_.write_calc_getRE_job(step.script.c_str(), 1, t_.qc_ppn, step.name.c_str(), step.marker.c_str(),
                            step.payload.c_str());
    step_submit(f, step, true);
  }
}

void WorkflowWriter::write_copy_neutral_chk() {
  OutFile f(scr_path("copy_neutral_chk_files.py"), verbose_, "copy_neutral_chk_files.py");
  f.line("import os");
  f.line("import shutil");
  f.blank();
  f.line("cwd = os.getcwd()");
  f.line("os.chdir('%s')", t_.re_dir.c_str());
  const int count = t_.unique_RE_calc_flag ? t_.uc_mol_re_count : t_.nmols_uc;
  for (int k = 0; k < count; ++k) {
    const int n = t_.unique_RE_calc_flag ? t_.uc_mol_re_list[k] : k + 1;
    f.line("shutil.copy('re-mol%d-neutral.chk', 're-mol%d-anion.chk')", n, n);
    f.line("shutil.copy('re-mol%d-neutral.chk', 're-mol%d-cation.chk')", n, n);
  }
  f.blank();
  f.line("os.chdir(cwd)");
  f.blank();
}

void WorkflowWriter::write_lambda_4p() {
  {
    OutFile f(scr_path("copy_RE_lambda_4P_files.py"), verbose_, "copy_RE_lambda_4P_files.py");
    f.line("import os, sys");
    f.line("import shutil");
    f.blank();
    f.line("cwd = os.getcwd()");
    f.line("os.chdir('%s')", t_.re_dir.c_str());
    f.line("sys.stdout.write('  Prepare lambda 4P chk files...\\n')");
    const int count = t_.unique_RE_calc_flag ? t_.uc_mol_re_count : t_.nmols_uc;
    for (int k = 0; k < count; ++k) {
      const int n = t_.unique_RE_calc_flag ? t_.uc_mol_re_list[k] : k + 1;
      f.line("shutil.copy('re-mol%d-neutral.chk', 're-mol%d-neutral_eN.chk')", n, n);
      f.line("shutil.copy('re-mol%d-neutral.chk', 're-mol%d-neutral_hN.chk')", n, n);
      f.line("shutil.copy('re-mol%d-anion.chk',   're-mol%d-anion_nC.chk'  )", n, n);
      f.line("shutil.copy('re-mol%d-cation.chk',  're-mol%d-cation_nC.chk' )", n, n);
    }
    // Back where it started, as every other step that changes directory.
    f.blank();
    f.line("os.chdir(cwd)");
    f.blank();
  }
  const char* R = "../RE";
  for (const CarrierWork& c : carriers_) {
    const std::string name = format_string("re_lambda_4P_files-%c.dat", c.letter);
    OutFile f(data_path(name.c_str()), verbose_, name);
    f.line("%d", t_.nmols_uc);
    for (int i = 0; i < t_.nmols_uc; ++i) {
      // The plain lists count the molecules from 0 while the inputs count from 1;
      // the reading tool expects it so.
      const int n = t_.unique_RE_calc_flag ? t_.uc_mol_seq[i] : i;
      if (c.letter == 'e')
        f.line("%s/re-mol%d-anion_nC.%s %s/re-mol%d-neutral.%s %s/re-mol%d-neutral_eN.%s %s/re-mol%d-anion.%s", R, n,
               ext_, R, n, ext_, R, n, ext_, R, n, ext_);
      else
        f.line("%s/re-mol%d-cation_nC.%s %s/re-mol%d-neutral.%s %s/re-mol%d-neutral_hN.%s %s/re-mol%d-cation.%s", R,
               n, ext_, R, n, ext_, R, n, ext_, R, n, ext_);
    }
  }
  OutFile f(scr_path("get_RE_lambda_4P.py"), verbose_, "get_RE_lambda_4P.py");
  data_dir_head(f, "import os");
  for (const CarrierWork& c : carriers_)
    f.line("os.system('tavix_getLambda_4P.exe -batch re_lambda_4P_files-%c.dat')", c.letter);
  f.blank();
  f.line("os.chdir(cwd)");
  f.blank();
}

// The per-molecule pieces of the site energies or the outer reorganisation energy
// lumped into one file per carrier.
void WorkflowWriter::write_merge_lumps(const char* script, const char* stem) {
  OutFile f(scr_path(script), verbose_, script);
  data_dir_head(f, "import os, sys");
  for (const CarrierWork& c : carriers_) {
    f.line("sys.stdout.write('  Lumping %s*-%c.dat...\\n')", stem, c.letter);
    f.line("if os.path.isfile('%s1-%c.dat'):", stem, c.letter);
    f.line("    with open('%s-%c.dat', 'w') as outfile:", stem, c.letter);
    f.line("        outfile.write('%d\\n')", t_.nmols_uc);
    f.line("        for m in range(%d):", t_.nmols_uc);
    f.line("            fnmstr = '%s' + str(m+1) + '-%c.dat'", stem, c.letter);
    f.line("            with open(fnmstr, 'r') as infile:");
    f.line("                for line in infile:");
    f.line("                    outfile.write(line)");
    f.blank();
    f.line("    for m in range(%d):", t_.nmols_uc);
    f.line("        fnmstr = '%s' + str(m+1) + '-%c.dat'", stem, c.letter);
    f.line("        os.remove(fnmstr)");
    f.blank();
  }
  f.line("os.chdir(cwd)");
  f.blank();
}

void WorkflowWriter::write_evc() {
  if (verbose_) std::printf("Writting evc inp files...\n");
  if (t_.unique_RE_calc_flag)
    t_.write_evc_inp_files_unique();
  else
    t_.write_evc_inp_files();
  if (verbose_) std::printf("Writting evc get_RE.py...\n");
  if (t_.unique_RE_calc_flag) {
    t_.write_prepare_evc_files_unique("prepare_RE.py");
    t_.write_get_re_py_file_unique("get_RE.py");
  } else {
    t_.write_prepare_evc_files("prepare_RE.py");
    t_.write_get_re_py_file("get_RE.py");
  }
}

void WorkflowWriter::write_get_re_lambda_evc() {
  OutFile f(scr_path("get_RE_lambda_evc.py"), verbose_, "get_RE_lambda_evc.py");
  data_dir_head(f, "import os");
  for (const CarrierWork& c : carriers_) {
    f.line("# Lump mol*_lambda_%c.dat", c.letter);
    f.line("if os.path.isfile('mol1_lambda-%c.dat'):", c.letter);
    f.line("    with open('mol_lambda_evc-%c.dat', 'w') as outfile:", c.letter);
    f.line("        outfile.write('%d\\n')", t_.nmols_uc);
    f.line("%s", record_loop("        ").c_str());
    f.line("            fnmstr = 'mol' + str(m+1) + '_lambda-%c.dat'", c.letter);
    f.line("            with open(fnmstr, 'r') as infile:");
    f.line("                outfile.write('%%s' %% infile.readline())");
    f.line("        outfile.write('# reorganization energies: lam lam1 lam2 [meV]\\n')");
    f.blank();
    removal_block(f, format_string("# Remove mol*_lambda_%c.dat", c.letter), "mol",
                  format_string("_lambda-%c.dat", c.letter).c_str());
  }
  f.line("os.chdir(cwd)");
  f.blank();
}

void WorkflowWriter::write_mc_trees() {
  if (verbose_) std::printf("Writting MC files...\n");
  if (t_.do_transport_run_MC || t_.do_transport_get_mob_MC) {
    const std::string dir = format_string("MC-%s", t_.ratetype.c_str());
    for (const CarrierWork& c : carriers_) t_.write_run_scripts_MC(dir.c_str(), "../..", c.code, 0, 0.0);
  }
  if (t_.do_transport_run_MC_temp || t_.do_transport_get_mob_MC_temp) {
    const std::string top = format_string("MC-%s-temp", t_.ratetype.c_str());
    const int n = temperature_count(t_.start_temp, t_.end_temp, t_.delta_temp);
    for (int k = 0; k < n; ++k) {
      const double T = t_.start_temp + k * t_.delta_temp;
      const std::string dir = format_string("%s/%.0f", top.c_str(), T);
      for (const CarrierWork& c : carriers_) t_.write_run_scripts_MC(dir.c_str(), "../../..", c.code, 1, T);
    }
  }
}

// Under ME-<rate>-temp the carrier level lies above the temperature level, unlike
// under MC-<rate>-temp; the collecting script relies on it.
void WorkflowWriter::write_me_trees() {
  if (verbose_) std::printf("Writting ME files...\n");
  if (t_.do_transport_run_ME || t_.do_transport_get_mob_ME) {
    const std::string dir = format_string("ME-%s", t_.ratetype.c_str());
    for (const CarrierWork& c : carriers_) t_.write_run_scripts_ME(dir.c_str(), "../..", c.code);
    t_.write_get_mob_py_ME(dir.c_str());
  }
  if (t_.do_transport_run_ME_temp || t_.do_transport_get_mob_ME_temp) {
    const std::string top = format_string("ME-%s-temp", t_.ratetype.c_str());
    const int n = temperature_count(t_.start_temp, t_.end_temp, t_.delta_temp);
    for (const CarrierWork& c : carriers_) {
      const std::string carrier_top = format_string("%s/%s", top.c_str(), c.dir);
      for (int k = 0; k < n; ++k) {
        const double T = t_.start_temp + k * t_.delta_temp;
        const std::string dir = format_string("%s/%.0f", carrier_top.c_str(), T);
        t_.write_run_scripts_ME_TD(dir.c_str(), "../../..", c.code, 1, T);
      }
    }
    t_.write_get_mob_py_ME_TD(top.c_str());
  }
}

void WorkflowWriter::write_start_file() {
  OutFile f(scr_path("tavix.sh"), verbose_, "tavix.sh");
  f.line("#!/bin/sh");
  f.blank();
  f.line("python $TAVIX_ROOT/bin/tavix.py 1> log 2>&1 &");
  f.blank();
}

void WorkflowWriter::write_all() {
  if (t_.job_sched_type < 0 || t_.job_sched_type > 3)
    TX_FATAL(txunit::transport, -1, stderr, "Unknown job scheduling type!\n");
  if (t_.nmols_uc > 0 && (t_.nneighbors == nullptr || t_.neighbor_id == nullptr))
    TX_FATAL(txunit::transport, -1, stderr, "The neighbor list must be built before the run scripts are written!\n");
  if (t_.unique_RE_calc_flag && t_.nmols_uc > 0 && (t_.uc_mol_seq == nullptr || t_.uc_mol_re_list == nullptr))
    TX_FATAL(txunit::transport, -1, stderr,
             "The unit cell unique molecules must be found before the run scripts are written!\n");

  make_directories();
  write_trans_int_files();
  write_checkers();
  write_get_transint();
  write_merge_evc_nm();
  if (t_.lat_site_energy) write_site_energy_steps();
  if (t_.RE_use_neutral_chk) write_copy_neutral_chk();
  if (t_.RE_calc_lambda_4P && t_.compute_engine == 1) write_lambda_4p();
  if (t_.lat_site_energy) write_merge_lumps("merge_RE_int_ener_output.py", "SE_einternal");
  if (t_.reorg_outer_flag != 0) write_merge_lumps("merge_RE_outer_lambda_output.py", "reorg_lambda_outer");
  write_evc();
  write_get_re_lambda_evc();
  write_mc_trees();
  write_me_trees();
  write_start_file();
}

}  // namespace

void Transport::write_scripts(bool verbose) {
  WorkflowWriter writer(*this, verbose);
  writer.write_all();
}
