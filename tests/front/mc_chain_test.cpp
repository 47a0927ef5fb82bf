// The Monte Carlo route from start to finish: write_scripts lays out a run of the
// benzene crystal for the local scheduler, the generated prepare-mc.py,
// run_mc_batch.py and get_mob.py of each carrier run the suite tools from PATH
// (the submit command of the local scheduler is sh), and tavix_gather.exe then
// copies the computed mobilities into its report. Also keeps the prepare scripts
// shipped with the example run equal to what the engine writes for it.
#include <gtest/gtest.h>

#include <string>

#include "test_support.h"
#include "transport.h"

namespace {

using txtest::read_file;
using txtest::run_command;

std::string exe_dir() {
  const std::string gather = TAVIX_GATHER_EXE;
  return gather.substr(0, gather.rfind('/'));
}

std::string first_line(const std::string& path) {
  const std::string text = read_file(path);
  return text.substr(0, text.find('\n') + 1);
}

// What the preparing stage does before it lays out the run.
void prepare(Transport& t, const char* control) {
  txtest::capture_stdout([&] {
    t.read_tavix_inp(control, false);
    t.read_crystal_strcuture_files(false, false);
    t.parse_scheduling_type();
    t.build_neighbor_list(false, false);
    if (t.get_unique_RE_calc_flag()) t.RE_check_unitcell_same_mols(false);
    if (t.get_unique_2mol_calc_flag()) {
      t.calc_HL_uc_mol_eigval_eigvec();
      t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
    }
    t.write_mol_bonds_files(true);
  });
}

TEST(McChain, GeneratedLocalScriptsRunTheToolsAndTheGatherReportsTheMobilities) {
  txtest::TempDir dir;
  const std::string data = txtest::data_path("workflow/");
  ASSERT_EQ(run_command("cp '" + txtest::data_path("cif/benzene_COD2100348_blankline.cif") + "' benzene.cif && " +
                        "cp '" + data + "chain.inp' tavix.inp && mkdir data && cp tavix.inp data/config.inp && " +
                        "cp '" + data + "VL.dat' '" + data + "VH.dat' '" + data + "NM-e.dat' '" + data +
                        "NM-h.dat' data/")
                .status,
            0);

  Transport t;
  prepare(t, "tavix.inp");
  t.job_workdir = dir.path();
  t.write_scripts(false);

  const std::string path = "PATH='" + exe_dir() + "':\"$PATH\" ";
  for (const char* carrier : {"elec", "hole"}) {
    const std::string work = std::string("MC-marcus/") + carrier;
    for (const char* script : {"prepare-mc.py", "run_mc_batch.py", "get_mob.py"}) {
      txtest::RunResult r = run_command(path + "python3 " + script, work);
      ASSERT_EQ(r.status, 0) << work << "/" << script << "\n" << r.out << r.err;
    }
    EXPECT_TRUE(txtest::path_exists(work + (carrier[0] == 'e' ? "/WL.dat" : "/WH.dat")));
    EXPECT_TRUE(txtest::path_exists(work + "/track/track_total.dat"));
    EXPECT_TRUE(txtest::path_exists(work + "/msd.svg"));
    EXPECT_NE(first_line(work + "/mob.dat").find(" cm^2/Vs at T = 300 K"), std::string::npos)
        << first_line(work + "/mob.dat");
  }
  // Each job removed the marker its batch script touched.
  EXPECT_EQ(run_command("ls RUN").out, "");

  txtest::RunResult g = txtest::run_gather("");
  ASSERT_EQ(g.status, 0) << g.out << g.err;
  const std::string report = read_file("tavix-marcus.dat");
  for (const char* carrier : {"elec", "hole"}) {
    const std::string work = std::string("MC-marcus/") + carrier;
    std::string block = "**** Mobility data for " + work + "\n";
    for (const char* name : {"/mob_a.dat", "/mob_b.dat", "/mob_c.dat", "/mob.dat"})
      block += first_line(work + name);
    EXPECT_NE(report.find(block), std::string::npos) << block << "\n--- report:\n" << report;
  }
}

// The example's carrier directories ship the prepare scripts the engine writes
// for the example's control file, so that scripts/run_example.sh runs what a
// laid-out run would run.
TEST(McChain, ExamplePrepareScriptsAreTheEnginesOwn) {
  txtest::TempDir dir;
  const std::string example = txtest::data_path("../../examples/benzene");
  ASSERT_EQ(run_command("cp -r '" + example + "/.' .").status, 0);
  Transport t;
  prepare(t, "tavix.inp");
  for (int carrier : {0, 1}) {
    const std::string shipped = read_file(std::string("MC-quantum/") + (carrier == 0 ? "elec" : "hole") +
                                          "/prepare-mc.py");
    t.write_run_scripts_MC("MC-quantum", "../..", carrier, 0, 0.0);
    EXPECT_EQ(read_file(std::string("MC-quantum/") + (carrier == 0 ? "elec" : "hole") + "/prepare-mc.py"), shipped);
  }
  EXPECT_EQ(read_file("tavix.inp"), read_file("data/config.inp"));
}

}  // namespace
