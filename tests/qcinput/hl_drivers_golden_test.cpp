// The HOMO/LUMO operations of all four engines on the hand-built crystal of
// hl_fixtures.h: drivers and representative inputs byte for byte against the
// hand-worked goldens, the sets of inputs and job scripts they leave, and the
// names and markers inside those scripts.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "hl_fixtures.h"

namespace {

using hl::Engine;
using hl::Op;
using hl::golden;
using txtest::read_file;

class HLDriverGolden : public hl::EngineTest {
 protected:
  void SetUp() override {
    hl::set_hand_crystal(t);
    hl::set_run(t, GetParam());
  }

  // Runs one operation with or without array jobs.
  void run(Op Engine::*op, bool arrays) {
    t.sched_job_array = arrays;
    call(op);
  }
  void run_unique(Op Engine::*op, bool arrays) {
    hl::set_unique_lists(t, {2}, {3, 4});
    run(op, arrays);
  }


  void expect_driver(const std::string& driver, const std::string& mode) {
    EXPECT_EQ(read_file("scr/" + driver + ".py"),
              golden(std::string(GetParam().family) + "/" + driver + "." + mode + ".py"));
  }

  void expect_inputs(const std::vector<std::string>& bases) {
    std::vector<std::string> names;
    for (const std::string& b : bases) names.push_back(input(b));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(hl::files_in("HL"), names);
  }

  void expect_golden_input(const std::string& base) {
    EXPECT_EQ(read_file("HL/" + input(base)), golden(engine() + "/" + input(base)));
  }

  // One job a base: job name, input and the marker the job removes at its end.
  void expect_plain_jobs(const std::vector<std::string>& bases) {
    std::vector<std::string> names;
    for (const std::string& b : bases) {
      names.push_back("job_" + b + ".pbs");
      const std::string text = read_file("jobs/job_" + b + ".pbs");
      EXPECT_NE(text.find("\n#PBS -o stdout-" + b + "\n"), std::string::npos) << text;
      EXPECT_NE(text.find(input(b)), std::string::npos) << text;
      EXPECT_NE(text.find("\nrm -f /home/user/run/RUN/running.HL_" + b + "\n"), std::string::npos) << text;
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(hl::files_in("jobs"), names);
  }

  // One array script: its task list, inputs "<base>-<task>" and the task markers.
  void expect_array_job(const std::string& base, const std::string& tasks, const std::string& marker) {
    const std::string text = read_file("jobs/job_" + base + ".pbs");
    EXPECT_NE(text.find("\n#PBS -t " + tasks + "\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n#PBS -o stdout-" + base + "\n"), std::string::npos) << text;
    EXPECT_NE(text.find(input(base + "-${PBS_ARRAYID}")), std::string::npos) << text;
    EXPECT_NE(text.find("\nrm -f /home/user/run/RUN/" + marker + "-${PBS_ARRAYID}\n"), std::string::npos) << text;
  }
};

TEST_P(HLDriverGolden, CellMoleculesOneJobEach) {
  run(&Engine::uc, false);
  expect_driver("mol_one_uc", "plain");
  expect_inputs({"uc_mol-1", "uc_mol-2"});
  expect_golden_input("uc_mol-2");
  expect_plain_jobs({"uc_mol-1", "uc_mol-2"});
}

TEST_P(HLDriverGolden, CellMoleculesOneArray) {
  run(&Engine::uc, true);
  expect_driver("mol_one_uc", "array");
  expect_inputs({"uc_mol-1", "uc_mol-2"});
  expect_golden_input("uc_mol-2");
  EXPECT_EQ(hl::files_in("jobs"), std::vector<std::string>{"job_uc_mol.pbs"});
  expect_array_job("uc_mol", "1-2", "running.HL_uc_mol");
}

TEST_P(HLDriverGolden, UniqueCellMoleculesOnlyTheListOneJobEach) {
  run_unique(&Engine::uc_unique, false);
  expect_driver("mol_one_uc", "unique");
  expect_inputs({"uc_mol-2"});
  expect_golden_input("uc_mol-2");
  expect_plain_jobs({"uc_mol-2"});
}

TEST_P(HLDriverGolden, UniqueCellMoleculesArrayOverTheList) {
  run_unique(&Engine::uc_unique, true);
  expect_driver("mol_one_uc", "unique_array");
  expect_inputs({"uc_mol-2"});
  EXPECT_EQ(hl::files_in("jobs"), std::vector<std::string>{"job_uc_mol.pbs"});
  expect_array_job("uc_mol", "2", "running.HL_uc_mol");
}

TEST_P(HLDriverGolden, NeighborsOneJobEach) {
  run(&Engine::nei, false);
  expect_driver("mol_one_nei", "plain");
  const std::vector<std::string> all = {"nei_mol-1-1", "nei_mol-1-2", "nei_mol-2-1", "nei_mol-2-2"};
  expect_inputs(all);
  expect_golden_input("nei_mol-2-2");
  expect_plain_jobs(all);
}

TEST_P(HLDriverGolden, NeighborsOneArrayPerMolecule) {
  run(&Engine::nei, true);
  expect_driver("mol_one_nei", "array");
  expect_inputs({"nei_mol-1-1", "nei_mol-1-2", "nei_mol-2-1", "nei_mol-2-2"});
  expect_golden_input("nei_mol-2-2");
  EXPECT_EQ(hl::files_in("jobs"), (std::vector<std::string>{"job_nei_mol-1.pbs", "job_nei_mol-2.pbs"}));
  expect_array_job("nei_mol-1", "1-2", "running.HL_nei_mol-1");
  expect_array_job("nei_mol-2", "1-2", "running.HL_nei_mol-2");
}

TEST_P(HLDriverGolden, UniqueNeighborsNamedByKeyOneJobEach) {
  run_unique(&Engine::nei_unique, false);
  expect_driver("mol_one_nei", "unique");
  expect_inputs({"nei_mol-3", "nei_mol-4"});
  expect_plain_jobs({"nei_mol-3", "nei_mol-4"});
}

TEST_P(HLDriverGolden, UniqueNeighborsArrayOverTheKeys) {
  run_unique(&Engine::nei_unique, true);
  expect_driver("mol_one_nei", "unique_array");
  expect_inputs({"nei_mol-3", "nei_mol-4"});
  EXPECT_EQ(hl::files_in("jobs"), std::vector<std::string>{"job_nei_mol.pbs"});
  expect_array_job("nei_mol", "3,4", "running.HL_nei_mol");
}

TEST_P(HLDriverGolden, PairsOneJobEach) {
  run(&Engine::pair, false);
  expect_driver("mol_two", "plain");
  const std::vector<std::string> all = {"2mol-1-1", "2mol-1-2", "2mol-2-1", "2mol-2-2"};
  expect_inputs(all);
  expect_golden_input("2mol-2-1");
  expect_plain_jobs(all);
}

TEST_P(HLDriverGolden, PairsOneArrayPerMolecule) {
  run(&Engine::pair, true);
  expect_driver("mol_two", "array");
  expect_inputs({"2mol-1-1", "2mol-1-2", "2mol-2-1", "2mol-2-2"});
  expect_golden_input("2mol-2-1");
  EXPECT_EQ(hl::files_in("jobs"), (std::vector<std::string>{"job_2mol-1.pbs", "job_2mol-2.pbs"}));
  expect_array_job("2mol-1", "1-2", "running.HL_2mol-1");
  expect_array_job("2mol-2", "1-2", "running.HL_2mol-2");
}

TEST_P(HLDriverGolden, UniquePairsNamedByKeyOneJobEach) {
  run_unique(&Engine::pair_unique, false);
  expect_driver("mol_two", "unique");
  expect_inputs({"2mol-3", "2mol-4"});
  expect_plain_jobs({"2mol-3", "2mol-4"});
}

// Gaussian's array marker alone carries "_unique"; the other engines' is the
// plain "running.HL_2mol".
TEST_P(HLDriverGolden, UniquePairsArrayOverTheKeysWithTheEnginesMarker) {
  run_unique(&Engine::pair_unique, true);
  expect_driver("mol_two", "unique_array");
  expect_inputs({"2mol-3", "2mol-4"});
  EXPECT_EQ(hl::files_in("jobs"), std::vector<std::string>{"job_2mol.pbs"});
  const bool gaussian = engine() == "gaussian";
  expect_array_job("2mol", "3,4", gaussian ? "running.HL_2mol_unique" : "running.HL_2mol");
}

// A unique input is the plain one of the same neighbor or pair under its key;
// only Gaussian's checkpoint line names the file.
TEST_P(HLDriverGolden, UniqueInputsEqualThePlainOnesOfTheirKeys) {
  run_unique(&Engine::nei_unique, false);
  run_unique(&Engine::pair_unique, false);
  std::string nei = golden(engine() + "/" + input("nei_mol-2-2"));
  std::string pair = golden(engine() + "/" + input("2mol-2-1"));
  if (engine() == "gaussian") {
    nei.replace(0, nei.find('\n'), "%chk=nei_mol-4.chk");
    pair.replace(0, pair.find('\n'), "%chk=2mol-3.chk");
    // The title of a pair is its base name.
    pair.replace(pair.find("\n2mol-2-1\n"), 10, "\n2mol-3\n");
  }
  EXPECT_EQ(read_file("HL/" + input("nei_mol-4")), nei);
  EXPECT_EQ(read_file("HL/" + input("2mol-3")), pair);
}

// mol<i>.<ext> in the working directory: the cell molecule, title and
// checkpoint "mol<i>", no job, no driver, no directories.
TEST_P(HLDriverGolden, MoleculeInputsInTheWorkingDirectoryWithoutJobs) {
  call(&Engine::mol);
  std::string expected = golden(engine() + "/" + input("uc_mol-2"));
  if (engine() == "gaussian") {
    expected.replace(0, expected.find('\n'), "%chk=mol2.chk");
    expected.replace(expected.find("\nuc_mol\n"), 8, "\nmol2\n");
  }
  EXPECT_EQ(read_file(input("mol2")), expected);
  EXPECT_TRUE(txtest::path_exists(input("mol1")));
  EXPECT_FALSE(txtest::path_exists("HL"));
  EXPECT_FALSE(txtest::path_exists("scr"));
  EXPECT_FALSE(txtest::path_exists("jobs"));
}

// Every driver is valid Python and every job script valid shell, in all modes.
TEST_P(HLDriverGolden, EveryDriverCompilesAndEveryJobScriptParses) {
  const struct {
    Op Engine::*op;
    const char* driver;
  } runs[] = {{&Engine::uc, "mol_one_uc.py"},          {&Engine::nei, "mol_one_nei.py"},
              {&Engine::pair, "mol_two.py"},           {&Engine::uc_unique, "mol_one_uc.py"},
              {&Engine::nei_unique, "mol_one_nei.py"}, {&Engine::pair_unique, "mol_two.py"}};
  hl::set_unique_lists(t, {2}, {3, 4});
  // Each driver is kept under a name of its own, then all are compiled at once.
  ASSERT_EQ(txtest::run_command("mkdir drivers").status, 0);
  for (bool arrays : {false, true}) {
    for (const auto& r : runs) {
      run(r.op, arrays);
      const std::string kept = std::string("drivers/") + (arrays ? "array_" : "single_") +
                               (r.op == &Engine::uc || r.op == &Engine::nei || r.op == &Engine::pair ? "" : "unique_") +
                               r.driver;
      ASSERT_EQ(txtest::run_command(std::string("cp scr/") + r.driver + " " + kept).status, 0);
    }
  }
  EXPECT_EQ(hl::files_in("drivers").size(), 12u);
  const txtest::RunResult py = txtest::run_command("python3 -m py_compile drivers/*.py");
  EXPECT_EQ(py.status, 0) << py.err;

  // 14 single jobs and 7 arrays: the unique cell run reuses the names of the plain one.
  EXPECT_EQ(hl::files_in("jobs").size(), 21u);
  const txtest::RunResult sh = txtest::run_command("for f in jobs/*; do bash -n \"$f\" || echo \"$f\"; done");
  EXPECT_EQ(sh.status, 0);
  EXPECT_EQ(sh.out + sh.err, "");
}

INSTANTIATE_TEST_SUITE_P(AllEngines, HLDriverGolden, ::testing::ValuesIn(hl::engines()), hl::engine_name);

}  // namespace
