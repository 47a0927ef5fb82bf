// The run layout written by write_scripts: the list files and step scripts against
// hand-written copies in tests/data/golden/workflow, the optional steps on and off,
// the trees of the Monte Carlo and master-equation routes, and a whole run laid out
// from the benzene crystal under each scheduler, with every Python script compiled
// and every shell script parsed.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../qcinput/hl_fixtures.h"
#include "../topology/topology_fixtures.h"
#include "test_support.h"
#include "transport.h"

namespace {

std::string golden(const std::string& name) {
  std::string text = txtest::read_file(txtest::data_path("golden/workflow/" + name));
  EXPECT_FALSE(text.empty()) << "missing golden file " << name;
  return text;
}

bool exists(const std::string& path) { return txtest::path_exists(path); }

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

// Every regular file under the current directory, as "./dir/name", sorted.
std::vector<std::string> tree() {
  return lines_of(txtest::run_command("find . -type f -not -path '*/__pycache__/*' | LC_ALL=C sort").out);
}

std::vector<std::string> with_suffix(const std::vector<std::string>& files, const std::string& suffix) {
  std::vector<std::string> out;
  for (const std::string& f : files)
    if (f.size() >= suffix.size() && f.compare(f.size() - suffix.size(), suffix.size(), suffix) == 0)
      out.push_back(f);
  return out;
}

// Only the steps every run has: Gaussian, PBS, both carriers, no optional step,
// no Monte Carlo or master-equation tree.
void minimal(Transport& t) {
  t.job_workdir = "/home/user/run";
  t.job_sched_type = Jobscript::sched_pbs;
  t.compute_engine = 1;
  t.chargetype = "a";
  t.ratetype = "marcus";
  t.qc_ppn = 4;
  t.lat_site_energy = 0;
  t.reorg_outer_flag = 0;
  t.RE_use_neutral_chk = false;
  t.RE_calc_lambda_4P = false;
  t.unique_RE_calc_flag = false;
  t.unique_nei_mol_one_calc_flag = false;
  t.unique_2mol_calc_flag = false;
  t.do_transport_run_MC = t.do_transport_get_mob_MC = 0;
  t.do_transport_run_MC_temp = t.do_transport_get_mob_MC_temp = 0;
  t.do_transport_run_ME = t.do_transport_get_mob_ME = 0;
  t.do_transport_run_ME_temp = t.do_transport_get_mob_ME_temp = 0;
}

// The two-molecule hand crystal with its bond files, which the normal-mode inputs read.
void hand_run(Transport& t) {
  hl::set_hand_crystal(t);
  minimal(t);
  t.write_mol_bonds_files(true);
}

// Three one-atom molecules, one neighbor each; molecules 1 and 2 share one
// representative for the reorganisation work.
void three_run(Transport& t) {
  topo::set_orthorhombic(t, 5.0, 5.0, 5.0);
  topo::set_molecules(t, {{{topo::C, 0.1, 0.1, 0.1}}, {{topo::C, 0.5, 0.1, 0.1}}, {{topo::C, 0.1, 0.5, 0.5}}});
  txtest::write_file("neighbor.dat", topo::neighbor_dat({{{1, 0, 0, 0}}, {{2, 0, 0, 0}}, {{0, 0, 0, 0}}}));
  txtest::capture_stdout([&] { t.build_neighbor_list(true, false); });
  minimal(t);
  t.write_mol_bonds_files(true);
  t.unique_RE_calc_flag = true;
  t.uc_mol_seq[0] = 1;
  t.uc_mol_seq[1] = 1;
  t.uc_mol_seq[2] = 3;
  delete[] t.uc_mol_re_list;
  t.uc_mol_re_list = new int[2]{1, 3};
  t.uc_mol_re_count = 2;
}

class WorkflowTest : public ::testing::Test {
 protected:
  txtest::TempDir dir;
  Transport t;
};

TEST_F(WorkflowTest, TransferIntegralListNamesEveryPairByMoleculeAndNeighbor) {
  hand_run(t);
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("data/trans_int_files.dat"), golden("trans_int_files_plain.dat"));
}

// With both unique neighbor flags each line names the inputs of the representative
// key, and the molecule file of the root that holds that key.
TEST_F(WorkflowTest, TransferIntegralListWithUniquePairsNamesTheRepresentativeKeys) {
  hand_run(t);
  t.compute_engine = 2;
  t.unique_nei_mol_one_calc_flag = true;
  t.unique_2mol_calc_flag = true;
  delete[] t.pair_key_map;
  t.pair_key_map = new int[4]{2, 2, 2, 3};
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("data/trans_int_files.dat"), golden("trans_int_files_by_key.dat"));
}

TEST_F(WorkflowTest, OneUniqueFlagAloneKeepsThePlainNames) {
  hand_run(t);
  t.unique_nei_mol_one_calc_flag = true;
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("data/trans_int_files.dat"), golden("trans_int_files_plain.dat"));
}

TEST_F(WorkflowTest, KeyMappedOutsideTheNeighborListEndsWithTheMappingError) {
  hand_run(t);
  t.unique_nei_mol_one_calc_flag = true;
  t.unique_2mol_calc_flag = true;
  delete[] t.pair_key_map;
  t.pair_key_map = new int[4]{0, 1, 2, 7};
  txtest::RunResult r = txtest::run_forked([&] { t.write_scripts(false); });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.err, "neighbor key mapping error!\n");
  EXPECT_NE(r.out.find("ERROR  transport"), std::string::npos);
}

// The submit line names the script the transfer-integral job writer made,
// jobs/job_transint, so that the submitted file exists.
TEST_F(WorkflowTest, TransferIntegralStepTouchesItsMarkerAndSubmitsItsJob) {
  hand_run(t);
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/get_transint.py"), golden("get_transint_pbs_gaussian.py"));
  const std::string job = txtest::read_file("jobs/job_transint.pbs");
  EXPECT_NE(job.find("tavix_transferintegral.exe -batch trans_int_files.dat"), std::string::npos) << job;
  EXPECT_NE(job.find("running.run_transint"), std::string::npos) << job;
}

TEST_F(WorkflowTest, QChemTransferIntegralStepLowersTheExtensionsFirstAndUsesTheOverlapTool) {
  hand_run(t);
  t.compute_engine = 3;
  t.job_sched_type = Jobscript::sched_slurm;
  t.job_moo_flag = true;
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/get_transint.py"), golden("get_transint_slurm_qchem.py"));
  EXPECT_NE(txtest::read_file("jobs/job_transint.slurm").find("tavix_overlap.exe -qchem -batch trans_int_files.dat"),
            std::string::npos);
  EXPECT_TRUE(exists("scr/qchem_out_check.py"));
  EXPECT_TRUE(exists("scr/qchem_fchk_ext_lowercase.py"));
}

TEST_F(WorkflowTest, ToolFlagFollowsTheEngine) {
  hand_run(t);
  t.compute_engine = 2;
  t.write_scripts(false);
  EXPECT_NE(txtest::read_file("jobs/job_transint.pbs").find("tavix_transferintegral.exe -orca -batch"),
            std::string::npos);
  EXPECT_TRUE(exists("scr/orca_out_check.py"));
  EXPECT_FALSE(exists("scr/gaussian_log_check.py"));
  t.compute_engine = 4;
  t.write_scripts(false);
  EXPECT_NE(txtest::read_file("jobs/job_transint.pbs").find("tavix_transferintegral.exe -bdf -batch"),
            std::string::npos);
  EXPECT_TRUE(exists("scr/bdf_out_check.py"));
}

TEST_F(WorkflowTest, NormalModeMergeCoversBothCarriers) {
  hand_run(t);
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/merge_evc_NM_output.py"), golden("merge_evc_NM_output_a.py"));
}

TEST_F(WorkflowTest, HoleWorkWritesNoElectronBlockInAnyMergingScript) {
  hand_run(t);
  t.chargetype = "H";  // the first letter in any case decides
  t.lat_site_energy = 1;
  t.reorg_outer_flag = 1;
  t.write_scripts(false);
  for (const char* script : {"scr/merge_evc_NM_output.py", "scr/merge_RE_int_ener_output.py",
                             "scr/merge_RE_outer_lambda_output.py", "scr/get_RE_lambda_evc.py"}) {
    const std::string text = txtest::read_file(script);
    EXPECT_EQ(text.find("-e.dat"), std::string::npos) << script;
    EXPECT_NE(text.find("-h.dat"), std::string::npos) << script;
  }
}

// A representative may stand for several molecules: the record list repeats it,
// the removal list names each file once.
TEST_F(WorkflowTest, UniqueRepresentativesRepeatTheirRecordsAndAreRemovedOnce) {
  three_run(t);
  t.chargetype = "h";
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/merge_evc_NM_output.py"), golden("merge_evc_NM_output_three_h.py"));
  EXPECT_EQ(txtest::read_file("scr/get_RE_lambda_evc.py"), golden("get_RE_lambda_evc_three_h.py"));

  // Run the merge on files of its own: the record of molecule 1 appears twice.
  txtest::write_file("data/NM1-h.dat", "mode record one\n");
  txtest::write_file("data/NM3-h.dat", "mode record three\n");
  txtest::RunResult r = txtest::run_command("python3 scr/merge_evc_NM_output.py");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(txtest::read_file("data/NM-h.dat"), "3\nmode record one\nmode record one\nmode record three\n");
  EXPECT_FALSE(exists("data/NM1-h.dat"));
  EXPECT_FALSE(exists("data/NM3-h.dat"));

  txtest::write_file("data/mol1_lambda-h.dat", "101.0 50.0 51.0\nsecond line\n");
  txtest::write_file("data/mol3_lambda-h.dat", "303.0 150.0 153.0\n");
  r = txtest::run_command("python3 scr/get_RE_lambda_evc.py");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(txtest::read_file("data/mol_lambda_evc-h.dat"),
            "3\n101.0 50.0 51.0\n101.0 50.0 51.0\n303.0 150.0 153.0\n"
            "# reorganization energies: lam lam1 lam2 [meV]\n");
}

TEST_F(WorkflowTest, SiteEnergyStepsAndTheirMergeComeTogether) {
  hand_run(t);
  t.lat_site_energy = 1;
  t.reorg_outer_flag = 2;
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/get_site_ener.py"), golden("get_site_ener.py"));
  EXPECT_EQ(txtest::read_file("data/SE_einternal_files.dat"), golden("SE_einternal_files.dat"));
  EXPECT_EQ(txtest::read_file("scr/get_RE_int_ener.py"), golden("get_RE_int_ener.py"));
  EXPECT_EQ(txtest::read_file("scr/get_RE_outer_ener.py"), golden("get_RE_outer_ener.py"));
  EXPECT_EQ(txtest::read_file("scr/merge_RE_int_ener_output.py"), golden("merge_RE_int_ener_output.py"));
  EXPECT_EQ(txtest::read_file("scr/merge_RE_outer_lambda_output.py"), golden("merge_RE_outer_lambda_output.py"));

  EXPECT_NE(txtest::read_file("jobs/get_site_ener.pbs").find("tavix_siteenergy.exe"), std::string::npos);
  EXPECT_NE(txtest::read_file("jobs/get_re_int_ener.pbs")
                .find("cd data\ntavix_getEinternal.exe -batch SE_einternal_files.dat -neighbor -qcflag 1"),
            std::string::npos);
  EXPECT_NE(txtest::read_file("jobs/get_re_outer.pbs").find("tavix_eoutersphere.exe\ntavix_emultipole.exe"),
            std::string::npos);
}

TEST_F(WorkflowTest, MultipoleToolAloneWithoutOuterReorganisation) {
  hand_run(t);
  t.lat_site_energy = 1;
  t.write_scripts(false);
  const std::string job = txtest::read_file("jobs/get_re_outer.pbs");
  EXPECT_EQ(job.find("tavix_eoutersphere.exe"), std::string::npos);
  EXPECT_NE(job.find("tavix_emultipole.exe"), std::string::npos);
  EXPECT_FALSE(exists("scr/merge_RE_outer_lambda_output.py"));
}

TEST_F(WorkflowTest, SiteEnergyOffSkipsItsStepsAndItsMergeTogether) {
  hand_run(t);
  t.write_scripts(false);
  for (const char* f : {"scr/get_site_ener.py", "data/SE_einternal_files.dat", "scr/get_RE_int_ener.py",
                        "scr/get_RE_outer_ener.py", "scr/merge_RE_int_ener_output.py",
                        "scr/merge_RE_outer_lambda_output.py", "jobs/get_site_ener.pbs"})
    EXPECT_FALSE(exists(f)) << f;
}

TEST_F(WorkflowTest, OuterReorganisationMergeStandsWithoutSiteEnergies) {
  hand_run(t);
  t.reorg_outer_flag = 3;
  t.write_scripts(false);
  EXPECT_TRUE(exists("scr/merge_RE_outer_lambda_output.py"));
  EXPECT_FALSE(exists("scr/merge_RE_int_ener_output.py"));
}

TEST_F(WorkflowTest, SiteEnergyListUsesTheRepresentatives) {
  three_run(t);
  t.lat_site_energy = 1;
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("data/SE_einternal_files.dat"),
            "3\n"
            "../RE/re-mol1-anion.log ../RE/re-mol1-cation.log ../RE/re-mol1-neutral.log\n"
            "../RE/re-mol1-anion.log ../RE/re-mol1-cation.log ../RE/re-mol1-neutral.log\n"
            "../RE/re-mol3-anion.log ../RE/re-mol3-cation.log ../RE/re-mol3-neutral.log\n");
}

TEST_F(WorkflowTest, NeutralCheckpointCopiesForEveryMolecule) {
  hand_run(t);
  t.RE_use_neutral_chk = true;
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/copy_neutral_chk_files.py"), golden("copy_neutral_chk_files.py"));
}

TEST_F(WorkflowTest, NeutralCheckpointCopiesOnlyForRepresentatives) {
  three_run(t);
  t.RE_use_neutral_chk = true;
  t.write_scripts(false);
  const std::string text = txtest::read_file("scr/copy_neutral_chk_files.py");
  EXPECT_NE(text.find("shutil.copy('re-mol3-neutral.chk', 're-mol3-cation.chk')\n"), std::string::npos);
  EXPECT_EQ(text.find("re-mol2"), std::string::npos);
}

// The lists number the molecules from 0 while the inputs start at 1; kept.
TEST_F(WorkflowTest, FourPointListsCountMoleculesFromZero) {
  hand_run(t);
  t.RE_calc_lambda_4P = true;
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/copy_RE_lambda_4P_files.py"), golden("copy_RE_lambda_4P_files.py"));
  EXPECT_EQ(txtest::read_file("data/re_lambda_4P_files-e.dat"), golden("re_lambda_4P_files-e.dat"));
  EXPECT_EQ(txtest::read_file("data/re_lambda_4P_files-h.dat"), golden("re_lambda_4P_files-h.dat"));
  EXPECT_EQ(txtest::read_file("scr/get_RE_lambda_4P.py"), golden("get_RE_lambda_4P.py"));
}

TEST_F(WorkflowTest, FourPointStepsOnlyForGaussian) {
  hand_run(t);
  t.RE_calc_lambda_4P = true;
  t.compute_engine = 2;
  t.write_scripts(false);
  EXPECT_FALSE(exists("scr/copy_RE_lambda_4P_files.py"));
  EXPECT_FALSE(exists("data/re_lambda_4P_files-e.dat"));
  EXPECT_FALSE(exists("scr/get_RE_lambda_4P.py"));
}

TEST_F(WorkflowTest, StartFileRunsTheDriverInTheBackground) {
  hand_run(t);
  t.write_scripts(false);
  EXPECT_EQ(txtest::read_file("scr/tavix.sh"), golden("tavix.sh"));
  EXPECT_EQ(txtest::run_command("sh -n scr/tavix.sh").status, 0);
}

TEST_F(WorkflowTest, MonteCarloTreeHoldsOneDirectoryPerCarrier) {
  hand_run(t);
  t.do_transport_run_MC = 1;
  t.write_scripts(false);
  for (const char* c : {"elec", "hole"})
    for (const char* f : {"prepare-mc.py", "run_mc_batch.py", "get_mob.py", "run_mc.pbs", "get_mob.pbs"})
      EXPECT_TRUE(exists(std::string("MC-marcus/") + c + "/" + f)) << c << "/" << f;
  EXPECT_FALSE(exists("MC-marcus-temp"));
  EXPECT_FALSE(exists("ME-marcus"));
}

// Under MC-<rate>-temp the carrier lies below the temperature; under
// ME-<rate>-temp above it.
TEST_F(WorkflowTest, TemperatureTreesNestCarrierAndTemperatureInOppositeOrders) {
  hand_run(t);
  t.chargetype = "e";
  t.do_transport_get_mob_MC_temp = 1;
  t.do_transport_run_ME_temp = 1;
  t.start_temp = 200;
  t.end_temp = 300;
  t.delta_temp = 50;
  t.write_scripts(false);
  for (const char* T : {"200", "250", "300"}) {
    EXPECT_TRUE(exists(std::string("MC-marcus-temp/") + T + "/elec/prepare-mc.py")) << T;
    EXPECT_TRUE(exists(std::string("ME-marcus-temp/elec/") + T + "/prepare-me.py")) << T;
  }
  EXPECT_FALSE(exists("MC-marcus-temp/350"));
  EXPECT_FALSE(exists("MC-marcus-temp/200/hole"));
  EXPECT_TRUE(exists("ME-marcus-temp/get_mob.py"));
  EXPECT_NE(txtest::read_file("MC-marcus-temp/250/elec/prepare-mc.py").find("f.write(\"250 K\\n\")"),
            std::string::npos);
}

TEST_F(WorkflowTest, EqualStartAndEndTemperatureGivesOneTemperatureDirectory) {
  hand_run(t);
  t.do_transport_run_MC_temp = 1;
  t.start_temp = 300;
  t.end_temp = 300;
  t.delta_temp = 10;
  t.write_scripts(false);
  std::vector<std::string> dirs;
  for (const std::string& f : tree())
    if (f.rfind("./MC-marcus-temp/", 0) == 0) dirs.push_back(f.substr(0, f.find('/', 17)));
  dirs.erase(std::unique(dirs.begin(), dirs.end()), dirs.end());
  EXPECT_EQ(dirs, std::vector<std::string>{"./MC-marcus-temp/300"});
}

TEST_F(WorkflowTest, ZeroTemperatureStepEndsWithAMessageInsteadOfAnEndlessTree) {
  hand_run(t);
  t.do_transport_run_MC_temp = 1;
  t.start_temp = 200;
  t.end_temp = 300;
  t.delta_temp = 0;
  txtest::RunResult r = txtest::run_forked([&] { t.write_scripts(false); });
  EXPECT_EQ(r.status, 255);
  EXPECT_NE(r.err.find("Invalid temperature range"), std::string::npos) << r.err;
}

TEST_F(WorkflowTest, MasterEquationTreeCollectsBothCarriers) {
  hand_run(t);
  t.do_transport_get_mob_ME = 1;
  t.write_scripts(false);
  EXPECT_TRUE(exists("ME-marcus/elec/prepare-me.py"));
  EXPECT_TRUE(exists("ME-marcus/hole/run_me_batch.py"));
  const std::string collect = txtest::read_file("ME-marcus/get_mob.py");
  EXPECT_NE(collect.find("./mob_elec.dat"), std::string::npos);
  EXPECT_NE(collect.find("./mob_hole.dat"), std::string::npos);
}

TEST_F(WorkflowTest, NormalModeInputsAndTheirScriptsAreWritten) {
  hand_run(t);
  t.write_scripts(false);
  EXPECT_TRUE(exists("scr/prepare_RE.py"));
  EXPECT_TRUE(exists("scr/get_RE.py"));
  EXPECT_TRUE(exists("scr/get_RE_lambda_evc.py"));
}

TEST_F(WorkflowTest, VerboseAnnouncesEachFileWithTheSystemsSpelling) {
  hand_run(t);
  t.lat_site_energy = 1;
  const std::string out = txtest::capture_stdout([&] { t.write_scripts(true); });
  for (const char* line : {"Writting trans_int_files.dat...\n", "Writting get_transint.py...\n",
                           "Writting merge_evc_NM_output.py...\n", "Writting merge_RE_int_ener_output.py...\n",
                           "Writting evc inp files...\n", "Writting evc get_RE.py...\n", "Writting MC files...\n",
                           "Writting ME files...\n"})
    EXPECT_NE(out.find(line), std::string::npos) << line;
  const std::string quiet = txtest::capture_stdout([&] { t.write_scripts(false); });
  EXPECT_EQ(quiet.find("Writting"), std::string::npos);
}

TEST_F(WorkflowTest, SecondRunOverwritesEverything) {
  hand_run(t);
  t.do_transport_run_MC = 1;
  t.lat_site_energy = 1;
  t.write_scripts(false);
  const std::vector<std::string> files = tree();
  std::vector<std::string> first;
  for (const std::string& f : files) first.push_back(txtest::read_file(f));
  // Files of the set-up (neighbor.dat, bond files) are inputs, not the layout's own.
  auto layout_file = [](const std::string& f) {
    return f != "./neighbor.dat" && f.find("_bonds.dat") == std::string::npos;
  };
  for (const std::string& f : files)
    if (layout_file(f)) txtest::write_file(f, "stale\n");
  t.write_scripts(false);
  EXPECT_EQ(tree(), files);
  for (std::size_t k = 0; k < files.size(); ++k) EXPECT_EQ(txtest::read_file(files[k]), first[k]) << files[k];
}

TEST_F(WorkflowTest, UnwritableDirectoryEndsWithTheOpenFailure) {
  hand_run(t);
  t.data_dir = "no/such/place";
  txtest::RunResult r = txtest::run_forked([&] { t.write_scripts(false); });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.err, "Failed to open output file no/such/place/trans_int_files.dat\n");
}

// ---- a whole run from a control file and a crystal, per scheduler ---------------

struct Scheduler {
  const char* name;
  const char* ext;
};

class WholeRun : public ::testing::TestWithParam<Scheduler> {};

// The benzene crystal: four equivalent molecules in the cell, so with the default
// unique flags one representative (molecule 1) does the reorganisation work and
// the four-point lists and normal-mode inputs name it alone. Gaussian, both
// carriers, the plain Monte Carlo and master-equation trees on quantum rates.
// The listing (tests/data/workflow/benzene_tree.txt) holds the set-up files too:
// the control file, the crystal, the bond files and unique_id_map.dat.
TEST_P(WholeRun, LayoutMatchesTheHandListingAndEveryScriptParses) {
  txtest::TempDir dir;
  txtest::RunResult cp = txtest::run_command("cp '" + txtest::data_path("cif/benzene_COD2100348_blankline.cif") + "' benzene.cif");
  ASSERT_EQ(cp.status, 0);
  std::string control = txtest::read_file(txtest::data_path("workflow/benzene.inp"));
  control.replace(control.find("@SCHED@"), 7, GetParam().name);
  txtest::write_file("tavix.inp", control);
  ASSERT_EQ(txtest::run_command("mkdir data").status, 0);

  Transport t;
  txtest::capture_stdout([&] {
    t.read_tavix_inp("tavix.inp", false);
    t.read_crystal_strcuture_files(false, false);
    t.parse_scheduling_type();
    t.build_neighbor_list(false, false);
    // What the preparing stage finds before it lays out the run.
    if (t.get_unique_RE_calc_flag()) t.RE_check_unitcell_same_mols(false);
    if (t.get_unique_2mol_calc_flag()) {
      t.calc_HL_uc_mol_eigval_eigvec();
      t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
    }
    t.write_mol_bonds_files(true);
  });
  t.job_workdir = "/home/user/run";
  ASSERT_EQ(t.nmols_uc, 4);
  t.write_scripts(false);

  std::vector<std::string> expected = lines_of(txtest::read_file(txtest::data_path("workflow/benzene_tree.txt")));
  for (std::string& line : expected) {
    const std::size_t at = line.find("@EXT@");
    if (at != std::string::npos) line.replace(at, 5, GetParam().ext);
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(tree(), expected);
  for (const char* d : {"RUN", "HL", "RE", "scr", "jobs", "data"})
    EXPECT_EQ(txtest::run_command(std::string("test -d ") + d).status, 0) << d;

  const std::vector<std::string> files = tree();
  std::string py = "python3 -m py_compile";
  for (const std::string& f : with_suffix(files, ".py")) py += " '" + f + "'";
  txtest::RunResult r = txtest::run_command(py);
  EXPECT_EQ(r.status, 0) << r.err;
  for (const std::string& f : with_suffix(files, std::string(".") + GetParam().ext)) {
    r = txtest::run_command("bash -n '" + f + "'");
    EXPECT_EQ(r.status, 0) << f << ": " << r.err;
  }
  r = txtest::run_command("bash -n scr/tavix.sh");
  EXPECT_EQ(r.status, 0) << r.err;
}

INSTANTIATE_TEST_SUITE_P(EveryScheduler, WholeRun,
                         ::testing::Values(Scheduler{"pbs", "pbs"}, Scheduler{"slurm", "slurm"},
                                           Scheduler{"lsf", "lsf"}, Scheduler{"local", "local"}),
                         [](const ::testing::TestParamInfo<Scheduler>& info) { return info.param.name; });

}  // namespace
