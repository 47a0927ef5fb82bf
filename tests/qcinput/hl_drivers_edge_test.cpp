// Corner cases of the HOMO/LUMO drivers and their fatal ends: one-molecule
// arrays, molecules without neighbors, key-named arrays over pair-named inputs,
// the script directory, and every failure with its message and status.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "hl_fixtures.h"

namespace {

using hl::Engine;
using txtest::read_file;

using HLDriverEdges = hl::EngineTest;

TEST_P(HLDriverEdges, ArrayOfOneMoleculeReadsOneToOne) {
  topo::set_orthorhombic(t, 4.0, 6.0, 8.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}, {topo::H, 0.125, 0.0, 0.0}}});
  hl::set_run(t, GetParam());
  ASSERT_TRUE(t.sched_job_array);  // the default
  call(&Engine::uc);
  EXPECT_NE(read_file("jobs/job_uc_mol.pbs").find("\n#PBS -t 1-1\n"), std::string::npos);
  t.job_sched_type = Jobscript::sched_slurm;
  call(&Engine::uc);
  EXPECT_NE(read_file("jobs/job_uc_mol.slurm").find("\n#SBATCH --array=1-1\n"), std::string::npos);
}

// Three molecules; the second has no neighbor at all.
void set_gap_crystal(Transport& t) {
  topo::set_orthorhombic(t, 4.0, 6.0, 8.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}, {topo::H, 0.125, 0.0, 0.0}},
                          {{topo::H, 0.5, 0.5, 0.5}, {topo::H, 0.625, 0.5, 0.5}},
                          {{topo::H, 0.0, 0.5, 0.0}, {topo::H, 0.125, 0.5, 0.0}}});
  txtest::write_file("neighbor.dat", topo::neighbor_dat({{{1, 0, 0, 0}}, {}, {{0, 0, 0, 1}}}));
  txtest::capture_stdout([&] { t.build_neighbor_list(true, false); });
  ASSERT_EQ(t.nneighbors[1], 0);
}

// The molecule without neighbors is skipped: no array, no touch and no submit.
TEST_P(HLDriverEdges, MoleculeWithoutNeighborsGetsNoArrayAndNoDriverLines) {
  set_gap_crystal(t);
  hl::set_run(t, GetParam());
  const std::string later_imports = std::string(GetParam().family) == "orca" ? "import glob\nimport shutil\n" : "";
  for (const auto& [op, driver, prefix, imports] :
       {std::make_tuple(&Engine::nei, "mol_one_nei.py", "nei_mol", std::string()),
        std::make_tuple(&Engine::pair, "mol_two.py", "2mol", later_imports)}) {
    SCOPED_TRACE(driver);
    call(op);
    const std::string p = prefix;
    EXPECT_EQ(read_file(std::string("scr/") + driver),
              "#!/usr/bin/env python\n"
              "import os\n" +
                  imports +
                  "\n"
                  "cwd = os.getcwd()\n"
                  "os.chdir(\"HL\")\n"
                  "\n"
                  "os.system(\"touch /home/user/run/RUN/running.HL_" + p + "-1-1\")\n"
                  "\n"
                  "os.system(\"qsub ../jobs/job_" + p + "-1.pbs\")\n"
                  "\n"
                  "os.system(\"touch /home/user/run/RUN/running.HL_" + p + "-3-1\")\n"
                  "\n"
                  "os.system(\"qsub ../jobs/job_" + p + "-3.pbs\")\n"
                  "\n"
                  "os.chdir(cwd)\n"
                  "\n");
  }
  EXPECT_EQ(hl::files_in("jobs"), (std::vector<std::string>{"job_2mol-1.pbs", "job_2mol-3.pbs", "job_nei_mol-1.pbs",
                                                            "job_nei_mol-3.pbs"}));
  EXPECT_EQ(hl::files_in("HL"), (std::vector<std::string>{input("2mol-1-1"), input("2mol-3-1"), input("nei_mol-1-1"),
                                                          input("nei_mol-3-1")}));
}

TEST_P(HLDriverEdges, MoleculeWithoutNeighborsIsSkippedWithoutArraysToo) {
  set_gap_crystal(t);
  hl::set_run(t, GetParam());
  t.sched_job_array = false;
  call(&Engine::nei);
  const std::string text = read_file("scr/mol_one_nei.py");
  EXPECT_NE(text.find("running.HL_nei_mol-1-1\")\n"), std::string::npos) << text;
  EXPECT_NE(text.find("running.HL_nei_mol-3-1\")\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("nei_mol-2"), std::string::npos) << text;
  EXPECT_EQ(hl::files_in("jobs"), (std::vector<std::string>{"job_nei_mol-1-1.pbs", "job_nei_mol-3-1.pbs"}));
}

// With HL_unique_mol 0 the inputs keep their pair names, while the array still
// names its tasks by key: task 3 looks for "nei_mol-3". The mismatch is kept.
TEST_P(HLDriverEdges, KeyListedPairWithPairNamedInputsStillGetsAnArrayTaskUnderItsKey) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  hl::set_unique_lists(t, {2}, {3, 4});
  t.HL_unique_mol = 0;
  call(&Engine::nei_unique);
  call(&Engine::pair_unique);
  EXPECT_EQ(hl::files_in("HL"), (std::vector<std::string>{input("2mol-2-1"), input("2mol-2-2"),
                                                          input("nei_mol-2-1"), input("nei_mol-2-2")}));
  EXPECT_EQ(hl::files_in("jobs"), (std::vector<std::string>{"job_2mol.pbs", "job_nei_mol.pbs"}));
  const std::string job = read_file("jobs/job_nei_mol.pbs");
  EXPECT_NE(job.find("\n#PBS -t 3,4\n"), std::string::npos) << job;
  EXPECT_NE(job.find(input("nei_mol-${PBS_ARRAYID}")), std::string::npos) << job;
  const std::string driver = read_file("scr/mol_one_nei.py");
  EXPECT_NE(driver.find("os.system(\"touch /home/user/run/RUN/running.HL_nei_mol-3\")\n"
                        "os.system(\"touch /home/user/run/RUN/running.HL_nei_mol-4\")\n"
                        "\n"
                        "os.system(\"qsub ../jobs/job_nei_mol.pbs\")\n"),
            std::string::npos)
      << driver;
  EXPECT_NE(read_file("jobs/job_2mol.pbs").find("\n#PBS -t 3,4\n"), std::string::npos);
}

// Without arrays a key-listed pair keeps its pair name for job and marker too.
TEST_P(HLDriverEdges, KeyListedPairWithPairNamedInputsWithoutArraysKeepsThePairName) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  hl::set_unique_lists(t, {2}, {3});
  t.HL_unique_mol = 0;
  t.sched_job_array = false;
  call(&Engine::nei_unique);
  EXPECT_EQ(hl::files_in("jobs"), std::vector<std::string>{"job_nei_mol-2-1.pbs"});
  EXPECT_NE(read_file("scr/mol_one_nei.py").find("running.HL_nei_mol-2-1\")\n"), std::string::npos);
}

// The neighbor and pair drivers live in the script directory whether the run
// is plain or unique, and change to the HL directory of the run.
TEST_P(HLDriverEdges, DriversStandInTheScriptDirectoryPlainOrUnique) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  hl::set_unique_lists(t, {2}, {3, 4});
  t.set_job_scripts_SCRdir("pyscripts");
  t.set_job_scripts_HLdir("orbitals");
  for (const auto& [op, driver] : {std::make_pair(&Engine::nei, "mol_one_nei.py"),
                                   std::make_pair(&Engine::nei_unique, "mol_one_nei.py"),
                                   std::make_pair(&Engine::pair, "mol_two.py"),
                                   std::make_pair(&Engine::pair_unique, "mol_two.py")}) {
    SCOPED_TRACE(driver);
    ASSERT_EQ(txtest::run_command("rm -rf pyscripts").status, 0);
    call(op);
    EXPECT_EQ(hl::files_in("pyscripts"), std::vector<std::string>{driver});
    EXPECT_NE(read_file(std::string("pyscripts/") + driver).find("\nos.chdir(\"orbitals\")\n"), std::string::npos);
  }
  EXPECT_FALSE(txtest::path_exists("scr"));
  EXPECT_FALSE(txtest::path_exists("HL"));
  EXPECT_EQ(hl::files_in("orbitals").size(), 12u);  // 4 neighbors, 4 pairs, 2 + 2 by key
}

// The submit line takes the scheduler's command and script extension.
TEST_P(HLDriverEdges, SubmitLineFollowsTheScheduler) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  t.job_sched_type = Jobscript::sched_lsf;
  call(&Engine::uc);
  EXPECT_NE(read_file("scr/mol_one_uc.py").find("\nos.system(\"bsub <  ../jobs/job_uc_mol.lsf\")\n\n"),
            std::string::npos);
  t.job_sched_type = Jobscript::sched_local;
  t.sched_job_array = false;
  call(&Engine::uc);
  EXPECT_NE(read_file("scr/mol_one_uc.py").find("\nos.system(\"sh ../jobs/job_uc_mol-2.local\")\n\n"),
            std::string::npos);
}

// ---- fatal ends ----------------------------------------------------------------

TEST_P(HLDriverEdges, DriverThatCannotBeOpenedEndsWithStatusOne) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  txtest::write_file("scr", "a file where the script directory should be\n");
  for (const auto& [op, driver] : {std::make_pair(&Engine::uc, "mol_one_uc.py"),
                                   std::make_pair(&Engine::nei_unique, "mol_one_nei.py"),
                                   std::make_pair(&Engine::pair, "mol_two.py")}) {
    const txtest::RunResult r = txtest::run_forked([&] { call(op); });
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
    EXPECT_EQ(r.err, std::string("Failed to open output file scr/") + driver + "\n");
  }
}

// The driver is already open when the input fails; what was written stays.
TEST_P(HLDriverEdges, InputThatCannotBeOpenedEndsWithStatusMinusOneAndLeavesTheDriverHead) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  txtest::write_file("HL", "a file where the HL directory should be\n");
  const txtest::RunResult r = txtest::run_forked([&] { call(&Engine::uc); });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : fileio : line # : \n");
  EXPECT_EQ(r.err, "Failed to open output file HL/" + input("uc_mol-1") + "\n");
  EXPECT_EQ(read_file("scr/mol_one_uc.py").rfind("#!/usr/bin/env python\nimport os\n\ncwd = os.getcwd()\n", 0), 0u);
}

TEST_P(HLDriverEdges, JobScriptThatCannotBeWrittenEndsWithStatusMinusOne) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  t.sched_job_array = false;
  txtest::write_file("jobs", "a file where the jobs directory should be\n");
  const txtest::RunResult r = txtest::run_forked([&] { call(&Engine::nei); });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : job_scripts : line # : \n");
  EXPECT_EQ(r.err, "Failed to open output file jobs/job_nei_mol-1-1.pbs\n");
  // The input came first and stays.
  EXPECT_EQ(hl::files_in("HL"), std::vector<std::string>{input("nei_mol-1-1")});
}

TEST_P(HLDriverEdges, UnknownSchedulerEndsInTheJobWriter) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  t.job_sched_type = 4;
  const txtest::RunResult r = txtest::run_forked([&] { call(&Engine::pair); });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : job_scripts : line # : \n");
  EXPECT_EQ(r.err, "Unknown job scheduling type!\n");
}

TEST_P(HLDriverEdges, NeighborRunsWithoutANeighborListEndWithAMessage) {
  topo::set_orthorhombic(t, 4.0, 6.0, 8.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}, {topo::H, 0.125, 0.0, 0.0}}});
  hl::set_run(t, GetParam());
  for (const auto& [op, driver] : {std::make_pair(&Engine::nei, "mol_one_nei.py"),
                                   std::make_pair(&Engine::pair_unique, "mol_two.py")}) {
    const txtest::RunResult r = txtest::run_forked([&] { call(op); });
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
    EXPECT_EQ(r.err, std::string(driver) + ": the neighbor list is not built; build the neighbor list first\n");
  }
}

TEST_P(HLDriverEdges, UniqueCellRunWithoutItsListEndsWithAMessage) {
  topo::set_orthorhombic(t, 4.0, 6.0, 8.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}, {topo::H, 0.125, 0.0, 0.0}}});
  hl::set_run(t, GetParam());
  ASSERT_EQ(t.uc_mol_unique_list, nullptr);
  t.uc_mol_unique_count = 1;
  const txtest::RunResult r = txtest::run_forked([&] { call(&Engine::uc_unique); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
  EXPECT_EQ(r.err, "mol_one_uc.py: the unique molecule list is not built; check the unit cell molecules first\n");
  t.uc_mol_unique_count = 0;
}

TEST_P(HLDriverEdges, UniqueCellListNamingNoMoleculeOfTheCellEndsWithAMessage) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  for (int m : {0, 3}) {
    hl::set_unique_lists(t, {1, m}, {});
    const txtest::RunResult r = txtest::run_forked([&] { call(&Engine::uc_unique); });
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
    EXPECT_EQ(r.err, "mol_one_uc.py: uc_mol_unique_list holds " + std::to_string(m) +
                         ", not a molecule of the cell (1 to 2)\n");
  }
  EXPECT_FALSE(txtest::path_exists("scr"));  // checked before anything is written
}

// An atom count that no buffer can hold ends in the standard library's size
// failure before any coordinate is read. The call stands in a noexcept frame so
// that the exception ends the child as an uncaught one does in a run, instead
// of in the test framework's handler.
TEST_P(HLDriverEdges, ImpossibleAtomCountAbortsThroughTheSizeFailure) {
  hl::set_hand_crystal(t);
  hl::set_run(t, GetParam());
  const int natoms = t.mol_natoms[1];
  t.mol_natoms[1] = -1;
  for (hl::Op Engine::*op : {&Engine::mol, &Engine::uc, &Engine::nei, &Engine::pair}) {
    const txtest::RunResult r = txtest::run_forked([&] {
      std::setvbuf(stderr, nullptr, _IONBF, 0);  // the abort flushes nothing
      [&]() noexcept { call(op); }();
    });
    EXPECT_EQ(r.status, 128 + 6);  // SIGABRT of std::terminate
    EXPECT_NE(r.err.find("std::length_error"), std::string::npos) << r.err;
  }
  t.mol_natoms[1] = natoms;
}

INSTANTIATE_TEST_SUITE_P(AllEngines, HLDriverEdges, ::testing::ValuesIn(hl::engines()), hl::engine_name);

}  // namespace
