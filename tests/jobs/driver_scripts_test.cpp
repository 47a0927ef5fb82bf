// The scripts of the Monte Carlo and master-equation work directories: their text
// against hand-written copies in tests/data/golden/drivers, each optional line on its
// own, the job scripts they submit, and the collecting scripts run by python3.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "test_support.h"
#include "transport.h"

namespace {

std::string golden(const std::string& name) {
  std::string text = txtest::read_file(txtest::data_path("golden/drivers/" + name));
  EXPECT_FALSE(text.empty()) << "missing golden file " << name;
  return text;
}

bool exists(const std::string& path) { return txtest::path_exists(path); }

int py_compile(const std::string& path) { return txtest::run_command("python3 -m py_compile '" + path + "'").status; }

// One interpreter start for many files; the failing file names itself on standard error.
txtest::RunResult py_compile_all(const std::vector<std::string>& paths) {
  std::string command = "python3 -m py_compile";
  for (const std::string& p : paths) command += " '" + p + "'";
  return txtest::run_command(command);
}

int bash_n(const std::string& path) { return txtest::run_command("bash -n '" + path + "'").status; }

// Every optional line off, plain runners, the crystal file, PBS.
void plain(Transport& t) {
  t.job_workdir = "/work/run";
  t.job_sched_type = 0;
  t.qc_ppn = 8;
  t.nsimu = 100;
  t.openmp_flag = 0;
  t.mol_input_mode = 2;
  t.crystal_file = "pentacene.cif";
  t.data_dir = "data";
  t.run_dir = "RUN";
  t.nmols_uc = 2;
  t.V_dynamic_disorder = false;
  t.HOMOLUMO_dynamic_disorder = false;
  t.lat_site_energy = 0;
  t.reorg_outer_flag = 0;
  t.read_neighbor_dat = false;
  t.chargetype = "a";
}

// Every optional line on, threaded runners, two molecule files.
void full(Transport& t) {
  plain(t);
  t.openmp_flag = 1;
  t.mol_input_mode = 1;
  t.V_dynamic_disorder = true;
  t.HOMOLUMO_dynamic_disorder = true;
  t.lat_site_energy = 1;
  t.reorg_outer_flag = 1;
  t.read_neighbor_dat = true;
}

// `text` with `addition` put in behind the first occurrence of `anchor`.
std::string insert_after(std::string text, const std::string& anchor, const std::string& addition) {
  const std::size_t at = text.find(anchor);
  EXPECT_NE(at, std::string::npos) << "anchor not found: " << anchor;
  if (at != std::string::npos) text.insert(at + anchor.size(), addition);
  return text;
}

std::string replace_once(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << "text not found: " << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

// ---- Monte Carlo route -----------------------------------------------------------

// Writes the MC scripts of one carrier and compares the three scripts of its work
// directory with the hand-written copies in `folder`.
void expect_mc_scripts(const char* folder, void (*settings)(Transport&), int sched, const char* dir, const char* prefix,
                       int carrier, int temp_flag, double temperature) {
  txtest::TempDir tmp;
  Transport t;
  settings(t);
  t.job_sched_type = sched;
  t.write_run_scripts_MC(dir, prefix, carrier, temp_flag, temperature);
  const std::string work = std::string(dir) + (carrier == 0 ? "/elec/" : "/hole/");
  for (const char* name : {"prepare-mc.py", "run_mc_batch.py", "get_mob.py"})
    EXPECT_EQ(txtest::read_file(work + name), golden(std::string(folder) + "/" + name)) << folder << " " << name;
}

TEST(McDriverScripts, ElectronsWithEveryOptionOffMatchTheHandWrittenScripts) {
  expect_mc_scripts("mc_elec_plain", plain, 0, "MC-marcus", "../..", 0, 0, 0.0);
}

TEST(McDriverScripts, HolesWithEveryOptionOffUnderLsfMatchTheHandWrittenScripts) {
  expect_mc_scripts("mc_hole_plain", plain, 2, "MC-marcus", "../..", 1, 0, 0.0);
}

TEST(McDriverScripts, ElectronsWithEveryOptionOnUnderSlurmMatchTheHandWrittenScripts) {
  expect_mc_scripts("mc_elec_full", full, 1, "MC-marcus-temp/300", "../../..", 0, 1, 300.0);
}

TEST(McDriverScripts, HolesWithEveryOptionOnRunLocallyMatchTheHandWrittenScripts) {
  expect_mc_scripts("mc_hole_full", full, 3, "MC-marcus-temp/300", "../../..", 1, 1, 300.0);
}

// One optional setting switched on at a time against the all-off scripts with the
// setting's own lines put in by hand.
struct Toggle {
  const char* name;
  std::function<void(Transport&)> set;
  std::vector<std::pair<std::string, std::string>> after_and_text;
};

// Switches each toggle on alone and compares prepare-mc.py of the carrier with `base`,
// the all-off script, with the toggle's lines put in.
void expect_each_toggle_alone(int carrier, const std::string& base, const std::vector<Toggle>& toggles) {
  const std::string path = carrier == 0 ? "MC-marcus/elec/prepare-mc.py" : "MC-marcus/hole/prepare-mc.py";
  for (const Toggle& toggle : toggles) {
    txtest::TempDir dir;
    Transport t;
    plain(t);
    toggle.set(t);
    t.write_run_scripts_MC("MC-marcus", "../..", carrier, 0, 0.0);
    std::string expected = base;
    for (const auto& [after, text] : toggle.after_and_text) expected = insert_after(expected, after, text);
    EXPECT_EQ(txtest::read_file(path), expected) << toggle.name;
    EXPECT_EQ(py_compile(path), 0) << toggle.name;
  }
}

TEST(McDriverScripts, EachOptionalCopyOfElectronsStandsAloneInItsPlace) {
  const std::string base = golden("mc_elec_plain/prepare-mc.py");
  const std::vector<Toggle> toggles = {
      {"V_dynamic_disorder",
       [](Transport& t) { t.V_dynamic_disorder = true; },
       {{"import shutil\n", "import glob\n"},
        {"shutil.copy(\"../../data/VL.dat\", \"./\")\n",
         "files = glob.glob('../../data/VL*-dyn.dat')\nfor file in files:\n    shutil.copy(file, \"./\")\n"}}},
      {"HOMOLUMO_dynamic_disorder",
       [](Transport& t) { t.HOMOLUMO_dynamic_disorder = true; },
       {{"shutil.copy(\"../../data/VL.dat\", \"./\")\n", "shutil.copy(\"../../data/LUMO-dyn.dat\", \"./\")\n"}}},
      {"lat_site_energy",
       [](Transport& t) { t.lat_site_energy = 1; },
       {{"shutil.copy(\"../../data/NM-e.dat\", \"./\")\n", "shutil.copy(\"../../data/EL.dat\", \"./\")\n"}}},
      {"reorg_outer_flag",
       [](Transport& t) { t.reorg_outer_flag = 2; },
       {{"shutil.copy(\"../../data/NM-e.dat\", \"./\")\n",
         "shutil.copy(\"../../data/reorg_lambda_outer-e.dat\", \"./\")\n"}}},
      {"read_neighbor_dat",
       [](Transport& t) { t.read_neighbor_dat = true; },
       {{"shutil.copy(\"../../data/NM-e.dat\", \"./\")\n", "shutil.copy(\"../../data/neighbor.dat\", \"./\")\n"}}},
  };
  expect_each_toggle_alone(0, base, toggles);
}

TEST(McDriverScripts, EachOptionalCopyOfHolesStandsAloneInItsPlace) {
  const std::string base = golden("mc_hole_plain/prepare-mc.py");
  const std::vector<Toggle> toggles = {
      {"V_dynamic_disorder",
       [](Transport& t) { t.V_dynamic_disorder = true; },
       {{"import shutil\n", "import glob\n"},
        {"shutil.copy(\"../../data/VH.dat\", \"./\")\n",
         "files = glob.glob('../../data/VH*-dyn.dat')\nfor file in files:\n    shutil.copy(file, \"./\")\n"}}},
      {"HOMOLUMO_dynamic_disorder",
       [](Transport& t) { t.HOMOLUMO_dynamic_disorder = true; },
       {{"shutil.copy(\"../../data/VH.dat\", \"./\")\n", "shutil.copy(\"../../data/HOMO-dyn.dat\", \"./\")\n"}}},
      {"lat_site_energy",
       [](Transport& t) { t.lat_site_energy = 1; },
       {{"shutil.copy(\"../../data/NM-h.dat\", \"./\")\n", "shutil.copy(\"../../data/EH.dat\", \"./\")\n"}}},
      {"reorg_outer_flag",
       [](Transport& t) { t.reorg_outer_flag = 1; },
       {{"shutil.copy(\"../../data/NM-h.dat\", \"./\")\n",
         "shutil.copy(\"../../data/reorg_lambda_outer-h.dat\", \"./\")\n"}}},
      {"read_neighbor_dat",
       [](Transport& t) { t.read_neighbor_dat = true; },
       {{"shutil.copy(\"../../data/NM-h.dat\", \"./\")\n", "shutil.copy(\"../../data/neighbor.dat\", \"./\")\n"}}},
  };
  expect_each_toggle_alone(1, base, toggles);
}

TEST(McDriverScripts, TemperatureFlagAddsTempInpBehindChargeInp) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.write_run_scripts_MC("MC-marcus-temp/280", "../../..", 0, 1, 279.6);
  // 279.6 K is written through "%.0f": 280.
  const std::string head =
      golden("mc_elec_plain/prepare-mc.py").substr(0, golden("mc_elec_plain/prepare-mc.py").find("shutil.copy("));
  EXPECT_EQ(txtest::read_file("MC-marcus-temp/280/elec/prepare-mc.py"),
            head +
                "shutil.copy(\"../../../tavix.inp\", \"./\")\n"
                "shutil.copy(\"../../../pentacene.cif\", \"./\")\n"
                "shutil.copy(\"../../../data/VL.dat\", \"./\")\n"
                "shutil.copy(\"../../../data/NM-e.dat\", \"./\")\n"
                "\n"
                "with open(\"charge.inp\", \"w\") as f:\n"
                "    f.write(\"e\\n\")\n"
                "\n"
                "with open(\"temp.inp\", \"w\") as f:\n"
                "    f.write(\"280 K\\n\")\n"
                "\n"
                "os.system(\"tavix_hoprate.exe\")\n"
                "\n");
}

TEST(McDriverScripts, TemperatureFlagZeroWritesNoTempInpWhateverTheTemperature) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.write_run_scripts_MC("MC-marcus", "../..", 0, 0, 300.0);
  const std::string text = txtest::read_file("MC-marcus/elec/prepare-mc.py");
  EXPECT_FALSE(contains(text, "temp.inp"));
  EXPECT_FALSE(contains(text, "300"));
  EXPECT_EQ(text, golden("mc_elec_plain/prepare-mc.py"));
}

TEST(McDriverScripts, MoleculeFilesReplaceTheCrystalFileInInputModeOne) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.mol_input_mode = 1;
  t.nmols_uc = 3;
  t.write_run_scripts_MC("MC-marcus", "../..", 0, 0, 0.0);
  EXPECT_EQ(txtest::read_file("MC-marcus/elec/prepare-mc.py"),
            replace_once(golden("mc_elec_plain/prepare-mc.py"), "shutil.copy(\"../../pentacene.cif\", \"./\")\n",
                         "shutil.copy(\"../../mol1.mol\", \"./\")\nshutil.copy(\"../../mol2.mol\", \"./\")\n"
                         "shutil.copy(\"../../mol3.mol\", \"./\")\n"));
}

TEST(McDriverScripts, InputModeOtherThanOneOrTwoCopiesNoStructureFile) {
  for (int mode : {-1, 0, 3}) {
    txtest::TempDir dir;
    Transport t;
    plain(t);
    t.mol_input_mode = mode;
    t.write_run_scripts_MC("MC-marcus", "../..", 0, 0, 0.0);
    EXPECT_EQ(txtest::read_file("MC-marcus/elec/prepare-mc.py"),
              replace_once(golden("mc_elec_plain/prepare-mc.py"), "shutil.copy(\"../../pentacene.cif\", \"./\")\n", ""))
        << "mol_input_mode " << mode;
  }
}

TEST(McDriverScripts, SlashesOfTheDirectoryBecomeUnderscoresInJobNameAndMarker) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.write_run_scripts_MC("MC-marcus-temp/300", "../../..", 0, 1, 300.0);
  EXPECT_TRUE(contains(txtest::read_file("MC-marcus-temp/300/elec/run_mc_batch.py"),
                       "os.system(\"touch /work/run/RUN/running.MC-marcus-temp_300_elec\")\n"));
  const std::string job = txtest::read_file("MC-marcus-temp/300/elec/run_mc.pbs");
  EXPECT_TRUE(contains(job, "#PBS -o stdout-MC-marcus-temp_300_elec\n")) << job;
  EXPECT_TRUE(contains(job, "rm -f /work/run/RUN/running.MC-marcus-temp_300_elec\n")) << job;
  EXPECT_TRUE(contains(txtest::read_file("MC-marcus-temp/300/elec/get_mob.py"),
                       "os.system(\"touch /work/run/RUN/running.MC-marcus-temp_300_elec_getmob\")\n"));
  const std::string mob = txtest::read_file("MC-marcus-temp/300/elec/get_mob.pbs");
  EXPECT_TRUE(contains(mob, "#PBS -o stdout-mob\n")) << mob;
  EXPECT_TRUE(contains(mob, "rm -f /work/run/RUN/running.MC-marcus-temp_300_elec_getmob\n")) << mob;
}

TEST(McDriverScripts, JobScriptsCarryTheRunnerChosenByTheOpenmpFlag) {
  for (unsigned char omp : {0, 1}) {
    txtest::TempDir dir;
    Transport t;
    plain(t);
    t.openmp_flag = omp;
    t.nsimu = 250;
    t.qc_ppn = 16;
    t.write_run_scripts_MC("MC-marcus", "../..", 0, 0, 0.0);
    const std::string job = txtest::read_file("MC-marcus/elec/run_mc.pbs");
    const std::string mob = txtest::read_file("MC-marcus/elec/get_mob.pbs");
    EXPECT_TRUE(contains(job, "#PBS -l nodes=1:ppn=16\n")) << job;
    EXPECT_TRUE(contains(mob, "#PBS -l nodes=1:ppn=16\n")) << mob;
    if (omp) {
      EXPECT_TRUE(contains(job, "\ntavix_mc_OMP.exe -simu0 0 -nsimu 250\n")) << job;
      EXPECT_TRUE(contains(mob, "\ntavix_mob_OMP.exe\n")) << mob;
    } else {
      EXPECT_TRUE(contains(job, "\ntavix_mc.exe -simu0 0 -nsimu 250\n")) << job;
      EXPECT_TRUE(contains(mob, "\ntavix_mob.exe\n")) << mob;
    }
    // The prepare and submit scripts do not depend on the runner.
    EXPECT_EQ(txtest::read_file("MC-marcus/elec/run_mc_batch.py"), golden("mc_elec_plain/run_mc_batch.py"));
  }
}

TEST(McDriverScripts, EveryWrittenScriptCompilesOrPassesTheShellSyntaxCheck) {
  const char* exts[4] = {"pbs", "slurm", "lsf", "local"};
  for (int sched = 0; sched < 4; ++sched) {
    for (int variant = 0; variant < 2; ++variant) {
      txtest::TempDir dir;
      Transport t;
      if (variant == 0)
        plain(t);
      else
        full(t);
      t.job_sched_type = sched;
      t.write_run_scripts_MC("MC-marcus-temp/300", "../../..", 0, variant, 300.0);
      t.write_run_scripts_MC("MC-marcus-temp/300", "../../..", 1, variant, 300.0);
      std::vector<std::string> scripts;
      for (const char* c : {"elec", "hole"}) {
        const std::string work = std::string("MC-marcus-temp/300/") + c;
        for (const char* py : {"/prepare-mc.py", "/run_mc_batch.py", "/get_mob.py"}) scripts.push_back(work + py);
        for (const char* job : {"/run_mc.", "/get_mob."}) {
          const std::string path = work + job + exts[sched];
          ASSERT_TRUE(exists(path)) << path;
          EXPECT_EQ(bash_n(path), 0) << path;
        }
      }
      const txtest::RunResult r = py_compile_all(scripts);
      EXPECT_EQ(r.status, 0) << r.err;
    }
  }
}

TEST(McDriverScripts, PrepareScriptCopiesItsInputsAndStartsTheRateTool) {
  // A run tree with the files the full electron script copies, and a stand-in rate
  // tool on the PATH that records that it ran.
  txtest::TempDir dir;
  Transport t;
  full(t);
  t.write_run_scripts_MC("MC-marcus-temp/300", "../../..", 0, 1, 300.0);
  txtest::run_command("mkdir -p data bin");
  for (const char* f :
       {"tavix.inp", "mol1.mol", "mol2.mol", "data/VL.dat", "data/VL1-dyn.dat", "data/VL2-dyn.dat", "data/VH1-dyn.dat",
        "data/LUMO-dyn.dat", "data/NM-e.dat", "data/EL.dat", "data/reorg_lambda_outer-e.dat", "data/neighbor.dat"})
    txtest::write_file(f, f);
  txtest::write_file("bin/tavix_hoprate.exe", "#!/bin/sh\necho ran > hoprate.ran\n");
  txtest::run_command("chmod +x bin/tavix_hoprate.exe");
  txtest::RunResult r =
      txtest::run_command("PATH=\"" + dir.path() + "/bin:$PATH\" python3 prepare-mc.py", "MC-marcus-temp/300/elec");
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string w = "MC-marcus-temp/300/elec/";
  for (const char* f : {"tavix.inp", "mol1.mol", "mol2.mol", "VL.dat", "VL1-dyn.dat", "VL2-dyn.dat", "LUMO-dyn.dat",
                        "NM-e.dat", "EL.dat", "reorg_lambda_outer-e.dat", "neighbor.dat"})
    EXPECT_TRUE(exists(w + f)) << f;
  EXPECT_FALSE(exists(w + "VH1-dyn.dat"));
  EXPECT_EQ(txtest::read_file(w + "VL2-dyn.dat"), "data/VL2-dyn.dat");
  EXPECT_EQ(txtest::read_file(w + "charge.inp"), "e\n");
  EXPECT_EQ(txtest::read_file(w + "temp.inp"), "300 K\n");
  EXPECT_EQ(txtest::read_file(w + "hoprate.ran"), "ran\n");
}

// ---- master-equation route -------------------------------------------------------

TEST(MeDriverScripts, ElectronsWithEveryOptionOffMatchTheHandWrittenScripts) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.write_run_scripts_ME("ME-marcus", "../..", 0);
  EXPECT_EQ(txtest::read_file("ME-marcus/elec/prepare-me.py"), golden("me_elec_plain/prepare-me.py"));
  EXPECT_EQ(txtest::read_file("ME-marcus/elec/run_me_batch.py"), golden("me_elec_plain/run_me_batch.py"));
  const std::string job = txtest::read_file("ME-marcus/elec/run_me.pbs");
  EXPECT_TRUE(contains(job, "#PBS -o stdout-elec\n")) << job;
  EXPECT_TRUE(contains(job, "\ntavix_meq.exe\n")) << job;
  EXPECT_TRUE(contains(job, "rm -f /work/run/RUN/running.me_e\n")) << job;
}

TEST(MeDriverScripts, HolesWithEveryOptionOnLeaveOuterSphereAndNeighborFilesOut) {
  txtest::TempDir dir;
  Transport t;
  full(t);
  t.write_run_scripts_ME("ME-marcus", "../..", 1);
  const std::string text = txtest::read_file("ME-marcus/hole/prepare-me.py");
  EXPECT_EQ(text, golden("me_hole_full/prepare-me.py"));
  EXPECT_FALSE(contains(text, "reorg_lambda_outer"));
  EXPECT_FALSE(contains(text, "neighbor.dat"));
  EXPECT_FALSE(contains(text, "temp.inp"));
  EXPECT_EQ(txtest::read_file("ME-marcus/hole/run_me_batch.py"), golden("me_hole_full/run_me_batch.py"));
}

TEST(MeDriverScripts, TemperatureFormWithEveryOptionOnMatchesTheHandWrittenScripts) {
  txtest::TempDir dir;
  Transport t;
  full(t);
  t.mol_input_mode = 2;
  t.write_run_scripts_ME_TD("ME-marcus-temp/elec/300", "../../..", 0, 1, 300.0);
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/elec/300/prepare-me.py"), golden("me_td_elec_full/prepare-me.py"));
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/elec/300/run_me_batch.py"), golden("me_td_elec_full/run_me_batch.py"));
  const std::string job = txtest::read_file("ME-marcus-temp/elec/300/run_me.pbs");
  EXPECT_TRUE(contains(job, "#PBS -o stdout-td\n")) << job;
  EXPECT_TRUE(contains(job, "rm -f /work/run/RUN/running.me_td_e_td_300\n")) << job;
  EXPECT_FALSE(exists("ME-marcus-temp/elec/300/elec"));
}

TEST(MeDriverScripts, TemperatureFormWithEveryOptionOffMatchesTheHandWrittenScripts) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.write_run_scripts_ME_TD("ME-marcus-temp/hole/250", "../../..", 1, 1, 250.0);
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/hole/250/prepare-me.py"), golden("me_td_hole_plain/prepare-me.py"));
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/hole/250/run_me_batch.py"), golden("me_td_hole_plain/run_me_batch.py"));
}

TEST(MeDriverScripts, TemperatureFormWithFlagZeroWritesNoTempInpButKeepsTheTemperatureInTheMarker) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.write_run_scripts_ME_TD("ME-marcus-temp/hole/250", "../../..", 1, 0, 250.0);
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/hole/250/prepare-me.py"),
            replace_once(golden("me_td_hole_plain/prepare-me.py"),
                         "with open(\"temp.inp\", \"w\") as f:\n    f.write(\"250 K\\n\")\n\n", ""));
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/hole/250/run_me_batch.py"), golden("me_td_hole_plain/run_me_batch.py"));
}

TEST(MeDriverScripts, ImportGlobOfThePlainFormHasNoBlankBehindIt) {
  txtest::TempDir dir;
  Transport t;
  plain(t);
  t.V_dynamic_disorder = true;
  t.write_run_scripts_ME("ME-marcus", "../..", 0);
  EXPECT_EQ(txtest::read_file("ME-marcus/elec/prepare-me.py"),
            insert_after(insert_after(golden("me_elec_plain/prepare-me.py"), "import shutil\n", "import glob\n"),
                         "shutil.copy(\"../../data/VL.dat\", \"./\")\n",
                         "files = glob.glob('../../data/VL*-dyn.dat')\nfor file in files:\n"
                         "    shutil.copy(file, \"./\")\n"));
}

TEST(MeDriverScripts, EveryWrittenScriptCompilesOrPassesTheShellSyntaxCheck) {
  const char* exts[4] = {"pbs", "slurm", "lsf", "local"};
  for (int sched = 0; sched < 4; ++sched) {
    txtest::TempDir dir;
    Transport t;
    full(t);
    t.job_sched_type = sched;
    t.write_run_scripts_ME("ME-marcus", "../..", 0);
    t.write_run_scripts_ME("ME-marcus", "../..", 1);
    t.write_run_scripts_ME_TD("ME-marcus-temp/elec/300", "../../..", 0, 1, 300.0);
    t.write_run_scripts_ME_TD("ME-marcus-temp/hole/300", "../../..", 1, 1, 300.0);
    std::vector<std::string> scripts;
    for (const char* work :
         {"ME-marcus/elec", "ME-marcus/hole", "ME-marcus-temp/elec/300", "ME-marcus-temp/hole/300"}) {
      for (const char* py : {"/prepare-me.py", "/run_me_batch.py"}) scripts.push_back(std::string(work) + py);
      const std::string job = std::string(work) + "/run_me." + exts[sched];
      ASSERT_TRUE(exists(job)) << job;
      EXPECT_EQ(bash_n(job), 0) << job;
    }
    const txtest::RunResult r = py_compile_all(scripts);
    EXPECT_EQ(r.status, 0) << r.err;
  }
}

// ---- collecting scripts of the master-equation route ----------------------------

TEST(MeMobilityScripts, BothCarriersCopyElectronsThenHoles) {
  txtest::TempDir dir;
  txtest::run_command("mkdir ME-marcus");
  Transport t;
  plain(t);
  t.write_get_mob_py_ME("ME-marcus");
  EXPECT_EQ(txtest::read_file("ME-marcus/get_mob.py"), golden("get_mob_me/me_both.py"));
  EXPECT_EQ(py_compile("ME-marcus/get_mob.py"), 0);
}

TEST(MeMobilityScripts, ElectronsOnlyLeaveTheHoleCopyOut) {
  txtest::TempDir dir;
  txtest::run_command("mkdir ME-marcus");
  Transport t;
  plain(t);
  t.chargetype = "e";
  t.write_get_mob_py_ME("ME-marcus");
  EXPECT_EQ(txtest::read_file("ME-marcus/get_mob.py"), golden("get_mob_me/me_elec_only.py"));
}

TEST(MeMobilityScripts, HolesOnlyLeaveTheElectronCopyOut) {
  txtest::TempDir dir;
  txtest::run_command("mkdir ME-marcus");
  Transport t;
  plain(t);
  t.chargetype = "H";
  t.write_get_mob_py_ME("ME-marcus");
  EXPECT_EQ(txtest::read_file("ME-marcus/get_mob.py"),
            "#!/usr/bin/env python\nimport shutil\n\nshutil.copy(\"hole/exp_data.dat\", \"./mob_hole.dat\")\n");
}

TEST(MeMobilityScripts, TemperatureFormMatchesTheHandWrittenScript) {
  txtest::TempDir dir;
  txtest::run_command("mkdir ME-marcus-temp");
  Transport t;
  plain(t);
  t.start_temp = 300.0;
  t.end_temp = 310.0;
  t.delta_temp = 10.0;
  t.write_get_mob_py_ME_TD("ME-marcus-temp");
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/get_mob.py"), golden("get_mob_me/me_td_both.py"));
  EXPECT_EQ(py_compile("ME-marcus-temp/get_mob.py"), 0);
}

TEST(MeMobilityScripts, TemperatureFormReadsTheThirdColumnWhateverTheFileHolds) {
  txtest::TempDir dir;
  txtest::run_command("mkdir -p ME-marcus-temp/elec/300 ME-marcus-temp/elec/350");
  Transport t;
  plain(t);
  t.chargetype = "e";
  t.start_temp = 300.0;
  t.end_temp = 350.0;
  t.delta_temp = 50.0;
  t.write_get_mob_py_ME_TD("ME-marcus-temp");
  EXPECT_FALSE(contains(txtest::read_file("ME-marcus-temp/get_mob.py"), "hole"));
  // Five columns; the third is the mobility, the others are decoys.
  txtest::write_file("ME-marcus-temp/elec/300/exp_data.dat",
                     "a 9.0 0.25 7.0 8.0\nb 9.0 1.5 7.0 8.0\nc 9.0 3e-3 7.0 8.0\nav 9.0 0.5 7.0 8.0\n");
  txtest::write_file("ME-marcus-temp/elec/350/exp_data.dat",
                     "a 1 2 3 4\nb 1 0.125 3 4\nc 1 100 3 4\nav 1 -2 3 4\nextra line 99\n");
  txtest::RunResult r = txtest::run_command("python3 get_mob.py", "ME-marcus-temp");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "  Writing file mob_elec.dat...\n");
  // Python's "%12.6e" of the third column, worked out by hand; the negative value takes 13 characters,
  // more than the width, so it follows the two blanks of the format directly.
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/mob_elec.dat"),
            "dir_a:\n"
            "300  2.500000e-01  cm^{2}/Vs\n"
            "350  2.000000e+00  cm^{2}/Vs\n"
            "dir_b:\n"
            "300  1.500000e+00  cm^{2}/Vs\n"
            "350  1.250000e-01  cm^{2}/Vs\n"
            "dir_c:\n"
            "300  3.000000e-03  cm^{2}/Vs\n"
            "350  1.000000e+02  cm^{2}/Vs\n"
            "dir_av:\n"
            "300  5.000000e-01  cm^{2}/Vs\n"
            "350  -2.000000e+00  cm^{2}/Vs\n");
}

TEST(MeMobilityScripts, EqualStartAndEndTemperaturesGiveOneTemperature) {
  txtest::TempDir dir;
  txtest::run_command("mkdir ME-marcus-temp");
  Transport t;
  plain(t);
  t.chargetype = "h";
  t.start_temp = 300.0;
  t.end_temp = 300.0;
  t.delta_temp = 20.0;
  t.write_get_mob_py_ME_TD("ME-marcus-temp");
  EXPECT_EQ(txtest::read_file("ME-marcus-temp/get_mob.py"),
            "#!/usr/bin/env python\n"
            "import os, sys\n"
            "\n"
            "mu = []\n"
            "mu.append([])\n"
            "with open(\"hole/300/exp_data.dat\") as f:\n"
            "    for i in range(4):\n"
            "        line = f.readline()\n"
            "        items = line.split()\n"
            "        mu[0].append(float(items[2]))\n"
            "\n"
            "sys.stdout.write(\"  Writing file mob_hole.dat...\\n\")\n"
            "\n"
            "with open(\"mob_hole.dat\", \"w\") as n:\n"
            "    n.write(\"dir_a:\\n\")\n"
            "    n.write(\"300  %12.6e  cm^{2}/Vs\\n\" % (mu[0][0]))\n"
            "    n.write(\"dir_b:\\n\")\n"
            "    n.write(\"300  %12.6e  cm^{2}/Vs\\n\" % (mu[0][1]))\n"
            "    n.write(\"dir_c:\\n\")\n"
            "    n.write(\"300  %12.6e  cm^{2}/Vs\\n\" % (mu[0][2]))\n"
            "    n.write(\"dir_av:\\n\")\n"
            "    n.write(\"300  %12.6e  cm^{2}/Vs\\n\" % (mu[0][3]))\n");
}

// ---- failures ----------------------------------------------------------------------

TEST(DriverScriptsFatal, WorkDirectoryThatCannotBeMadeFailsAtTheFirstScript) {
  txtest::TempDir dir;
  txtest::write_file("MC-marcus", "a file in the way");
  txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    plain(t);
    t.write_run_scripts_MC("MC-marcus", "../..", 0, 0, 0.0);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
  EXPECT_EQ(r.err, "Failed to open output file MC-marcus/elec/prepare-mc.py\n");
}

TEST(DriverScriptsFatal, MissingDirectoryOfTheCollectingScriptsIsFatal) {
  txtest::TempDir dir;
  for (int td = 0; td < 2; ++td) {
    txtest::RunResult r = txtest::run_forked([td] {
      Transport t;
      plain(t);
      if (td)
        t.write_get_mob_py_ME_TD("ME-absent");
      else
        t.write_get_mob_py_ME("ME-absent");
    });
    EXPECT_EQ(r.status, 255);
    EXPECT_EQ(r.err, "Failed to open output file ME-absent/get_mob.py\n");
  }
}

TEST(DriverScriptsFatal, CarrierCodeOtherThanZeroOrOneIsFatal) {
  txtest::TempDir dir;
  txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    plain(t);
    t.write_run_scripts_ME("ME-marcus", "../..", 2);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.err, "Unknown carrier code 2: 0 electrons, 1 holes!\n");
  EXPECT_FALSE(exists("ME-marcus"));
}

TEST(DriverScriptsFatal, ZeroTemperatureStepIsFatalInsteadOfAnUndefinedCount) {
  txtest::TempDir dir;
  txtest::run_command("mkdir ME-marcus-temp");
  txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    plain(t);
    t.start_temp = 300.0;
    t.end_temp = 300.0;
    t.delta_temp = 0.0;
    t.write_get_mob_py_ME_TD("ME-marcus-temp");
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.err, "Invalid temperature range: 300 to 300 in steps of 0!\n");
}
