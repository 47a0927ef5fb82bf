// Transport: the scripts of the normal-mode chain in the scr directory. prepare_RE.py
// lays out evc/mol<n>/<carrier> with the &evc input and the relaxation outputs,
// run_RE.py submits one normal-mode job a carrier directory, and get_RE.py collects
// the reorganisation energies and mode files into data.
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "checker_script_tables.h"
#include "evc_pieces.h"
#include "transport.h"
#include "txutil.h"

namespace {

FILE* open_script(const std::string& path) {
  FILE* fp = std::fopen(path.c_str(), "w+t");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  return fp;
}

void put(FILE* fp, const std::string& line) { std::fprintf(fp, "%s\n", line.c_str()); }

// ---- prepare_RE.py and run_RE.py -------------------------------------------------

const char* const kPrepareHead[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import sys",
    "import shutil",
    "",
    "sys.stdout.write(\"Prepare for evc calculations...\\n\")",
    "",
    "rootdir = os.getcwd()",
    "",
    "access_rights = 493",
    "",
};

const char* const kRunHead[] = {
    "#!/usr/bin/env python",
    "import os",
    "import sys",
    "",
};

// Creates `dir` under the current directory of the script unless it is there, and enters it.
void mkdir_and_enter(FILE* fp, const std::string& dir) {
  put(fp, format_string("if not os.path.isdir(\"%s\"):", dir.c_str()));
  put(fp, format_string("    os.mkdir(\"%s\", access_rights)", dir.c_str()));
  put(fp, "");
  put(fp, format_string("os.chdir(\"%s\")", dir.c_str()));
}

// One relaxation output the normal-mode tool reads, copied from RE into the carrier
// directory: under a name of the given extension, or, with no name extension, as it is.
struct OutputCopy {
  std::string ext;       // extension in RE
  std::string dest_ext;  // extension of the copy; empty: same name, into the directory
};

std::vector<OutputCopy> output_copies(const Transport& t) {
  switch (t.compute_engine) {
    case 1:
      // The checkpoint copy always ends in ".fchk"; only its source follows fchk_ext.
      return {{t.fchk_ext, "fchk"}, {t.gaussian_log_ext, t.gaussian_log_ext}};
    case 2:
      return {{"hess", ""}};
    case 3:
      return {{"fchk", ""}, {"out", ""}};
    default:
      return {{"umv", ""}};
  }
}

void copy_outputs(FILE* fp, const Transport& t, const std::string& mol, const txevc::Carrier& c) {
  for (const char* state : {c.state, "neutral"})
    for (const OutputCopy& k : output_copies(t)) {
      const std::string src = format_string("../../RE/re-%s-%s.%s", mol.c_str(), state, k.ext.c_str());
      const std::string dst = k.dest_ext.empty()
                                  ? format_string("%s/", c.dir)
                                  : format_string("%s/re-%s-%s.%s", c.dir, mol.c_str(), state, k.dest_ext.c_str());
      put(fp, format_string("shutil.copy(\"%s\", \"%s\")", src.c_str(), dst.c_str()));
    }
}

void prepare_carrier(FILE* fp, const Transport& t, const std::string& mol, const txevc::Carrier& c) {
  put(fp, format_string("if not os.path.isdir(\"%s\"):", c.dir));
  put(fp, format_string("    os.mkdir(\"%s\", access_rights)", c.dir));
  put(fp, format_string("shutil.copy(\"../../RE/evc-%s-%s.inp\", \"%s/evc.inp\")", c.tag, mol.c_str(), c.dir));
  copy_outputs(fp, t, mol, c);
}

// The normal-mode job of one carrier directory, and its submission in run_RE.py. The
// job writer creates no directory, so the work directory is made here; prepare_RE.py
// finds it in place.
void submit_carrier_job(FILE* run, Transport& t, const std::string& mol, const txevc::Carrier& c) {
  const std::string mol_dir = format_string("%s/%s", t.evc_dir.c_str(), mol.c_str());
  const std::string work = format_string("%s/%s", mol_dir.c_str(), c.dir);
  create_directory(t.evc_dir);
  create_directory(mol_dir);
  create_directory(work);
  const std::string job_name = format_string("evc_%s_%s", mol.c_str(), c.dir);
  const std::string marker = format_string("%s/running.run_%s", t.run_dir.c_str(), job_name.c_str());
  const std::string payload = std::string("tavix_evc.exe evc.inp\n") +
                              (t.use_evc_dint ? "tavix_getNM.exe evc.dint.dat NM.dat"
                                              : "tavix_getNM.exe evc.cart.dat NM.dat");
  // One node: the two tools run serially.
  t.write_calc_getRE_job(format_string("%s/job_get_NM", work.c_str()).c_str(), 1, t.qc_ppn, job_name.c_str(),
                         marker.c_str(), payload.c_str());
  put(run, format_string("os.system(\"touch %s/%s\")", t.job_workdir.c_str(), marker.c_str()));
  put(run, format_string("os.chdir(\"%s/%s\")", t.job_workdir.c_str(), work.c_str()));
  put(run, format_string("os.system(\"%s %s.%s\")", t.job_submit_cmds[t.job_sched_type].c_str(), "job_get_NM",
                         t.get_job_script_ext().c_str()));
}

void write_prepare(Transport& t, const char* name, const std::vector<int>& numbers) {
  FILE* fp = open_script(format_string("%s/%s", t.scr_dir.c_str(), name));
  FILE* run = open_script(format_string("%s/run_RE.py", t.scr_dir.c_str()));
  write_script_lines(run, kRunHead, std::size(kRunHead));
  write_script_lines(fp, kPrepareHead, std::size(kPrepareHead));
  mkdir_and_enter(fp, t.evc_dir);
  put(fp, "evcdir = os.getcwd()");
  put(fp, "");
  const std::vector<const txevc::Carrier*> carriers = txevc::carriers_of(t.chargetype);
  for (int m : numbers) {
    const std::string mol = format_string("mol%d", m);
    put(fp, format_string("sys.stdout.write(\"  Treating %s...\\n\")", mol.c_str()));
    put(fp, "os.chdir(evcdir)");
    put(fp, "");
    mkdir_and_enter(fp, mol);
    for (const txevc::Carrier* c : carriers) prepare_carrier(fp, t, mol, *c);
    for (const txevc::Carrier* c : carriers) submit_carrier_job(run, t, mol, *c);
  }
  std::fclose(run);
  std::fclose(fp);
}

// ---- get_RE.py --------------------------------------------------------------------

void read_lambda(FILE* fp, const txevc::Carrier& c) {
  const bool elec = &c == &txevc::kElectron;
  const char v = c.tag[0];
  put(fp, format_string("os.chdir(\"%s\")", c.dir));
  if (elec)
    write_script_lines(fp, exp_re_py_read_lambda_elec, exp_re_py_read_lambda_elec_size);
  else
    write_script_lines(fp, exp_re_py_read_lambda_hole, exp_re_py_read_lambda_hole_size);
  put(fp, "with open(\"lambda.dat\", \"w\") as n:");
  put(fp, format_string("    n.write(\"%s:\\n\")", c.dir));
  put(fp, "    n.write(\"lam lam1 lam2 [meV]\\n\")");
  put(fp, format_string("    n.write(\"%%16.8f %%16.8f %%16.8f\\n\" %% (%c_lam, %c_lam1, %c_lam2))", v, v, v));
  put(fp, "    n.write(\"# reorganization energies: lam lam1 lam2 [meV]\\n\")");
  put(fp, "os.chdir(\"..\")");
}

void copy_results(FILE* fp, const Transport& t, int m, const txevc::Carrier& c) {
  put(fp, format_string("shutil.copy(\"%s/NM.dat\", \"../mol%d_NM-%s.dat\")", c.dir, m, c.tag));
  put(fp, format_string("shutil.copy(\"%s/NM.dat\", \"../../%s/NM%d-%s.dat\")", c.dir, t.data_dir.c_str(), m, c.tag));
  put(fp, format_string("shutil.copy(\"%s/lambda.dat\", \"../../%s/mol%d_lambda-%s.dat\")", c.dir,
                        t.data_dir.c_str(), m, c.tag));
}

void write_get_re(Transport& t, const char* name, const std::vector<int>& numbers) {
  FILE* fp = open_script(format_string("%s/%s", t.scr_dir.c_str(), name));
  write_script_lines(fp, exp_re_py_head, exp_re_py_head_size);
  const std::vector<const txevc::Carrier*> carriers = txevc::carriers_of(t.chargetype);
  for (int m : numbers) {
    put(fp, format_string("sys.stdout.write(\"  Treating mol%d...\\n\")", m));
    put(fp, "os.chdir(cwd2)");
    put(fp, format_string("os.chdir(\"mol%d\")", m));
    for (const txevc::Carrier* c : carriers) read_lambda(fp, *c);
    for (const txevc::Carrier* c : carriers) copy_results(fp, t, m, *c);
  }
  std::fclose(fp);
}

}  // namespace

void Transport::write_prepare_evc_files(const char* name) { write_prepare(*this, name, txevc::numbers_up_to(nmols_uc)); }

void Transport::write_prepare_evc_files_unique(const char* name) {
  write_prepare(*this, name, txevc::numbers_listed(uc_mol_re_list, uc_mol_re_count));
}

void Transport::write_get_re_py_file(const char* name) { write_get_re(*this, name, txevc::numbers_up_to(nmols_uc)); }

void Transport::write_get_re_py_file_unique(const char* name) {
  write_get_re(*this, name, txevc::numbers_listed(uc_mol_re_list, uc_mol_re_count));
}
