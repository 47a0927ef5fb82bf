// Transport: the scripts of a carrier directory of the Monte Carlo and master-equation
// routes (prepare, submit, collect the mobility), and the job scripts they submit.
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdio>
#include <string>

#include "checker_script_tables.h"
#include "run_trees.h"
#include "transport.h"
#include "txutil.h"

namespace {

struct Carrier {
  const char* dir;   // directory of the carrier's work
  const char* text;  // content of charge.inp and part of the ME markers
};

Carrier carrier_names(int carrier) {
  if (carrier == 0) return {"elec", "e"};
  if (carrier == 1) return {"hole", "h"};
  TX_FATAL(txunit::transport, -1, stderr, "Unknown carrier code %d: 0 electrons, 1 holes!\n", carrier);
}

FILE* open_script(const std::string& path) {
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  return fp;
}

// Every level of a relative path such as "MC-marcus-temp/300/elec", without a check:
// a level that cannot be made shows as the failure to open the first script in it.
void make_directories(const std::string& path) {
  for (std::size_t pos = path.find('/'); pos != std::string::npos; pos = path.find('/', pos + 1))
    if (pos > 0) create_directory(path.substr(0, pos));
  create_directory(path);
}

// How the three prepare scripts differ.
struct PrepareForm {
  bool glob_blank;          // a blank line behind "import glob" (ME temperature form)
  bool outer_and_neighbor;  // copies of the outer-sphere energies and neighbor.dat (MC only)
};

void write_prepare_script(const Transport& t, const std::string& path, const char* prefix, const Carrier& c,
                          const PrepareForm& form, int temp_flag, double temperature) {
  FILE* fp = open_script(path);
  write_script_lines(fp, prepare_mc_py_head, prepare_mc_py_head_size);
  if (t.V_dynamic_disorder) {
    std::fprintf(fp, "import glob\n");
    if (form.glob_blank) std::fprintf(fp, "\n");
  }
  std::fprintf(fp, "shutil.copy(\"%s/tavix.inp\", \"./\")\n", prefix);
  if (t.mol_input_mode == 2) {
    std::fprintf(fp, "shutil.copy(\"%s/%s\", \"./\")\n", prefix, t.crystal_file.c_str());
  } else if (t.mol_input_mode == 1) {
    for (int i = 1; i <= t.nmols_uc; ++i) std::fprintf(fp, "shutil.copy(\"%s/mol%d.mol\", \"./\")\n", prefix, i);
  }

  const bool elec = c.text[0] == 'e';
  const char* data = t.data_dir.c_str();
  auto copy = [&](const char* file) { std::fprintf(fp, "shutil.copy(\"%s/%s/%s\", \"./\")\n", prefix, data, file); };
  copy(elec ? "VL.dat" : "VH.dat");
  if (t.V_dynamic_disorder) {
    std::fprintf(fp, "files = glob.glob('%s/%s/%s*-dyn.dat')\n", prefix, data, elec ? "VL" : "VH");
    std::fprintf(fp, "for file in files:\n");
    std::fprintf(fp, "    shutil.copy(file, \"./\")\n");
  }
  if (t.HOMOLUMO_dynamic_disorder) copy(elec ? "LUMO-dyn.dat" : "HOMO-dyn.dat");
  copy(elec ? "NM-e.dat" : "NM-h.dat");
  if (t.lat_site_energy) copy(elec ? "EL.dat" : "EH.dat");
  if (form.outer_and_neighbor) {
    if (t.reorg_outer_flag) copy(elec ? "reorg_lambda_outer-e.dat" : "reorg_lambda_outer-h.dat");
    if (t.read_neighbor_dat) copy("neighbor.dat");
  }

  std::fprintf(fp, "\n");
  std::fprintf(fp, "with open(\"charge.inp\", \"w\") as f:\n");
  std::fprintf(fp, "    f.write(\"%s\\n\")\n", c.text);
  std::fprintf(fp, "\n");
  if (temp_flag) {
    std::fprintf(fp, "with open(\"temp.inp\", \"w\") as f:\n");
    std::fprintf(fp, "    f.write(\"%.0f K\\n\")\n", temperature);
    std::fprintf(fp, "\n");
  }
  std::fprintf(fp, "os.system(\"tavix_hoprate.exe\")\n");
  std::fprintf(fp, "\n");
  std::fclose(fp);
}

// Head of the submitting scripts; the job writer comes next, then submit_tail.
FILE* open_submit_script(const std::string& path) {
  FILE* fp = open_script(path);
  std::fprintf(fp, "#!/usr/bin/env python\n");
  std::fprintf(fp, "import os\n");
  std::fprintf(fp, "\n");
  return fp;
}

// The job writer has already rejected a scheduler index outside 0 to 3, so the
// submit command and the extension are indexed safely here.
void submit_tail(const Transport& t, FILE* fp, const std::string& marker, const char* script) {
  std::fprintf(fp, "os.system(\"touch %s/%s\")\n", t.job_workdir.c_str(), marker.c_str());
  std::fprintf(fp, "os.system(\"%s %s.%s\")\n", t.job_submit_cmds[t.job_sched_type].c_str(), script,
               t.get_job_script_ext().c_str());
  std::fprintf(fp, "\n");
  std::fclose(fp);
}

void write_me_batch_script(Transport& t, const std::string& work, const char* job_name, const std::string& marker) {
  FILE* fp = open_submit_script(format_string("%s/run_me_batch.py", work.c_str()));
  const std::string base = format_string("%s/run_me", work.c_str());
  t.write_ME_job(base.c_str(), 1, t.qc_ppn, "tavix_meq.exe", job_name, marker.c_str());
  submit_tail(t, fp, marker, "run_me");
}

}  // namespace

bool electron_work(const std::string& chargetype) {
  if (chargetype.empty()) return false;
  const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(chargetype[0])));
  return c == 'a' || c == 'e';
}

bool hole_work(const std::string& chargetype) {
  if (chargetype.empty()) return false;
  const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(chargetype[0])));
  return c == 'a' || c == 'h';
}

int temperature_count(double start_temp, double end_temp, double delta_temp) {
  const double n = std::round((end_temp - start_temp) / delta_temp + 1.0);
  if (!std::isfinite(n) || n > INT_MAX || n < INT_MIN)
    TX_FATAL(txunit::transport, -1, stderr, "Invalid temperature range: %g to %g in steps of %g!\n", start_temp,
             end_temp, delta_temp);
  return static_cast<int>(n);
}

void Transport::write_run_scripts_MC(const char* dir, const char* root_prefix, int carrier, int temp_flag,
                                     double temperature) {
  const Carrier c = carrier_names(carrier);
  const std::string work = format_string("%s/%s", dir, c.dir);
  make_directories(work);

  write_prepare_script(*this, format_string("%s/prepare-mc.py", work.c_str()), root_prefix, c, {false, true}, temp_flag,
                       temperature);

  FILE* fp = open_submit_script(format_string("%s/run_mc_batch.py", work.c_str()));
  const std::string command = format_string(
      openmp_flag ? "tavix_mc_OMP.exe -simu0 %d -nsimu %d" : "tavix_mc.exe -simu0 %d -nsimu %d", 0, nsimu);
  const std::string base = format_string("%s/run_mc", work.c_str());
  std::string job_name = format_string("%s_%s", dir, c.dir);
  ReplaceSlashWithUnderscore(job_name);
  const std::string marker = format_string("%s/running.%s", run_dir.c_str(), job_name.c_str());
  write_MC_job(base.c_str(), 1, qc_ppn, command.c_str(), job_name.c_str(), marker.c_str());
  submit_tail(*this, fp, marker, "run_mc");

  fp = open_submit_script(format_string("%s/get_mob.py", work.c_str()));
  const std::string mob_base = format_string("%s/get_mob", work.c_str());
  std::string mob_name = format_string("%s_%s_getmob", dir, c.dir);
  ReplaceSlashWithUnderscore(mob_name);
  const std::string mob_marker = format_string("%s/running.%s", run_dir.c_str(), mob_name.c_str());
  // The job name only names the job's standard output, stdout-mob.
  write_calc_mob_job(mob_base.c_str(), 1, qc_ppn, "mob", mob_marker.c_str(),
                     openmp_flag ? "tavix_mob_OMP.exe" : "tavix_mob.exe");
  submit_tail(*this, fp, mob_marker, "get_mob");
}

void Transport::write_run_scripts_ME(const char* dir, const char* root_prefix, int carrier) {
  const Carrier c = carrier_names(carrier);
  const std::string work = format_string("%s/%s", dir, c.dir);
  make_directories(work);
  write_prepare_script(*this, format_string("%s/prepare-me.py", work.c_str()), root_prefix, c, {false, false}, 0, 0.0);
  write_me_batch_script(*this, work, c.dir, format_string("%s/running.me_%s", run_dir.c_str(), c.text));
}

// Here `dir` is the work directory itself, "<tree>/<carrier>/<temperature>".
void Transport::write_run_scripts_ME_TD(const char* dir, const char* root_prefix, int carrier, int temp_flag,
                                        double temperature) {
  const Carrier c = carrier_names(carrier);
  const std::string work = dir;
  make_directories(work);
  write_prepare_script(*this, format_string("%s/prepare-me.py", work.c_str()), root_prefix, c, {true, false}, temp_flag,
                       temperature);
  const std::string temp_text = format_string("%.0f", temperature);
  write_me_batch_script(*this, work, "td",
                        format_string("%s/running.me_td_%s_%s_%s", run_dir.c_str(), c.text, "td", temp_text.c_str()));
}

void Transport::write_get_mob_py_ME(const char* dir) {
  FILE* fp = open_script(format_string("%s/get_mob.py", dir));
  std::fprintf(fp, "#!/usr/bin/env python\n");
  std::fprintf(fp, "import shutil\n");
  std::fprintf(fp, "\n");
  if (electron_work(chargetype))
    std::fprintf(fp, "shutil.copy(\"%s/exp_data.dat\", \"./mob_%s.dat\")\n", "elec", "elec");
  if (hole_work(chargetype)) std::fprintf(fp, "shutil.copy(\"%s/exp_data.dat\", \"./mob_%s.dat\")\n", "hole", "hole");
  std::fclose(fp);
}

void Transport::write_get_mob_py_ME_TD(const char* dir) {
  FILE* fp = open_script(format_string("%s/get_mob.py", dir));
  std::fprintf(fp, "#!/usr/bin/env python\n");
  std::fprintf(fp, "import os, sys\n");
  std::fprintf(fp, "\n");
  const int n = temperature_count(start_temp, end_temp, delta_temp);
  // exp_data.dat holds one line per direction a, b, c and the average; the mobility
  // is read from its third column whatever else the file holds.
  const int mobility_column = 2;
  static const char* const direction[4] = {"a", "b", "c", "av"};
  const char* carriers[2] = {electron_work(chargetype) ? "elec" : nullptr, hole_work(chargetype) ? "hole" : nullptr};
  for (const char* carrier : carriers) {
    if (carrier == nullptr) continue;
    std::fprintf(fp, "mu = []\n");
    for (int k = 0; k < n; ++k) {
      const std::string t_text = format_string("%.0f", start_temp + k * delta_temp);
      const std::string sub = format_string("%s/%s", carrier, t_text.c_str());
      std::fprintf(fp, "mu.append([])\n");
      std::fprintf(fp, "with open(\"%s/exp_data.dat\") as f:\n", sub.c_str());
      std::fprintf(fp, "    for i in range(4):\n");
      std::fprintf(fp, "        line = f.readline()\n");
      std::fprintf(fp, "        items = line.split()\n");
      std::fprintf(fp, "        mu[%d].append(float(items[%d]))\n", k, mobility_column);
      std::fprintf(fp, "\n");
    }
    std::fprintf(fp, "sys.stdout.write(\"  Writing file mob_%s.dat...\\n\")\n", carrier);
    std::fprintf(fp, "\n");
    std::fprintf(fp, "with open(\"mob_%s.dat\", \"w\") as n:\n", carrier);
    for (int d = 0; d < 4; ++d) {
      std::fprintf(fp, "    n.write(\"dir_%s:\\n\")\n", direction[d]);
      for (int k = 0; k < n; ++k) {
        const std::string t_text = format_string("%.0f", start_temp + k * delta_temp);
        std::fprintf(fp, "    n.write(\"%s  %%12.6e  cm^{2}/Vs\\n\" %% (mu[%d][%d]))\n", t_text.c_str(), k, d);
      }
    }
  }
  std::fclose(fp);
}
