// The control-file reader: grammar, every key and conversion, the keys with a
// handling of their own, the closing steps, precedence and every fatal message.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tavix_output.h"
#include "test_support.h"

using txtest::mask_line_numbers;
using txtest::run_forked;
using txtest::TempDir;
using txtest::write_file;

namespace {

const char* const kEnvNames[] = {"TAVIX_JOB_SCHED",    "TAVIX_JOB_QUEUE",  "TAVIX_QC_EXE",
                                 "TAVIX_QC_NODES",     "TAVIX_QC_PPN",     "TAVIX_MODULE_QC",
                                 "TAVIX_MODULE_TAVIX", "TAVIX_MODULE_MPICH2"};

class ControlReader : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* n : kEnvNames) unsetenv(n);
  }
  void TearDown() override {
    for (const char* n : kEnvNames) unsetenv(n);
  }
  // Writes `text` to tavix.inp in the test's directory and reads it.
  void read(Transport& t, const std::string& text) {
    write_file("tavix.inp", text);
    ASSERT_EQ(t.read_tavix_inp("tavix.inp", false), 1);
  }
  // Reads `text` in a child process and returns what it printed and its status.
  txtest::RunResult read_forked(const std::string& text) {
    write_file("tavix.inp", text);
    return run_forked([] {
      Transport t;
      t.read_tavix_inp("tavix.inp", false);
    });
  }
  TempDir dir_;
};

const std::string kHead = "\nERROR  transport : tavix_inp : line # : \n";

}  // namespace

// ---- grammar ------------------------------------------------------------------

TEST_F(ControlReader, EmptyFileGivesAllDefaultsAndTheDefaultReportName) {
  Transport t;
  read(t, "");
  EXPECT_EQ(t.qc_method, "b3lyp");
  EXPECT_DOUBLE_EQ(t.temp, 300.0);
  EXPECT_EQ(t.qc_exe, "g16");
  EXPECT_EQ(t.ratetype, "quantum");
  EXPECT_EQ(t.tavix_dat_file, "tavix-quantum.dat");
  EXPECT_EQ(t.sched_type, "slurm");
  EXPECT_TRUE(t.inp_read);
  EXPECT_EQ(t.inp_lines, nullptr);
  EXPECT_EQ(t.inp_line_count, 0);
}

TEST_F(ControlReader, FileWithoutASectionIsSilentAndGivesDefaults) {
  Transport t;
  write_file("tavix.inp", "temp = 100\nqc_ppn = 3\n# a comment\n");
  std::string out = txtest::capture_stdout([&] { t.read_tavix_inp("tavix.inp", false); });
  EXPECT_EQ(out, "");
  EXPECT_DOUBLE_EQ(t.temp, 300.0);
  EXPECT_EQ(t.qc_ppn, 8);
  EXPECT_EQ(t.tavix_dat_file, "tavix-quantum.dat");
}

TEST_F(ControlReader, VerboseAnnouncesTheFile) {
  Transport t;
  write_file("tavix.inp", "");
  std::string out = txtest::capture_stdout([&] { t.read_tavix_inp("tavix.inp", true); });
  EXPECT_EQ(out, "Reading config file \"tavix.inp\"... \n");
}

TEST_F(ControlReader, FileEndingInsideTheSectionAppliesAllKeysUpToThere) {
  Transport t;
  read(t, "&transport\n  temp = 250\n  qc_ppn = 12\n");
  EXPECT_DOUBLE_EQ(t.temp, 250.0);
  EXPECT_EQ(t.qc_ppn, 12);
}

TEST_F(ControlReader, KeysIgnoreCase) {
  Transport t;
  read(t, "&transport\nDo_Transport_Run_MC = 0\nQC_PPN = 4\n/\n");
  EXPECT_EQ(t.do_transport_run_MC, 0);
  EXPECT_EQ(t.qc_ppn, 4);
}

TEST_F(ControlReader, BlanksAroundTheEqualsSignDoNotMatterExceptForRawText) {
  Transport a, b;
  read(a, "&transport\nqc_method=pbe0\ntemp=200\nqueue_name=short\nscratch=/scr\n/\n");
  read(b, "&transport\nqc_method   =   pbe0\ntemp   =   200\nqueue_name   =   short\nscratch   =   /scr\n/\n");
  EXPECT_EQ(a.qc_method, b.qc_method);
  EXPECT_DOUBLE_EQ(a.temp, b.temp);
  EXPECT_EQ(a.queue_name, b.queue_name);
  EXPECT_EQ(a.scratch, "/scr");
  EXPECT_EQ(b.scratch, "   /scr");
}

TEST_F(ControlReader, ScratchKeepsTheBlankAfterTheEqualsSign) {
  Transport t;
  read(t, "&transport\n  scratch = /local/tmp\n/\n");
  EXPECT_EQ(t.scratch, " /local/tmp");
}

TEST_F(ControlReader, CommentsAfterAValueAreCut) {
  Transport a, b;
  read(a, "&transport\ntemp = 300 ! kelvin\n/\n");
  read(b, "&transport\ntemp = 310 # kelvin\n/\n");
  EXPECT_DOUBLE_EQ(a.temp, 300.0);
  EXPECT_DOUBLE_EQ(b.temp, 310.0);
}

TEST_F(ControlReader, ACommentMarkInsideAQuotedTextCutsItAllTheSame) {
  Transport t;
  read(t, "&transport\nqc_method = \"b3!lyp\"\n/\n");
  EXPECT_EQ(t.qc_method, "b3");
}

TEST_F(ControlReader, TextValuesLoseEveryQuote) {
  Transport t;
  read(t, "&transport\nmater_name = \"pen'tacene\"\nqueue_name = 'long'\n/\n");
  EXPECT_EQ(t.mater_name, "pentacene");
  EXPECT_EQ(t.queue_name, "long");
}

TEST_F(ControlReader, BareTextValuesKeepTheirQuotes) {
  Transport t;
  read(t, "&transport\ntavix_dat_file = \"report.dat\"\n/\n");
  EXPECT_EQ(t.tavix_dat_file, "\"report.dat\"");
}

TEST_F(ControlReader, LinesWithoutEqualsSignAreSkipped) {
  Transport t;
  read(t, "&transport\nsomething without equals\ntemp = 123\n/\n");
  EXPECT_DOUBLE_EQ(t.temp, 123.0);
}

TEST_F(ControlReader, SlashInColumnOneClosesTheSection) {
  Transport t;
  read(t, "&transport\ntemp = 111\n/\ntemp = 222\n");
  EXPECT_DOUBLE_EQ(t.temp, 111.0);
}

TEST_F(ControlReader, IndentedSlashClosesTheSection) {
  Transport t;
  read(t, "&transport\ntemp = 111\n   /\ntemp = 222\n");
  EXPECT_DOUBLE_EQ(t.temp, 111.0);
}

TEST_F(ControlReader, AnyLineBeginningWithSlashClosesTheSection) {
  Transport t;
  read(t, "&transport\ntemp = 111\n/home/user/run = 5\nqc_ppn = 2\n/\n");
  EXPECT_DOUBLE_EQ(t.temp, 111.0);
  EXPECT_EQ(t.qc_ppn, 8);
}

TEST_F(ControlReader, SectionWordFollowedByACommentIsNotRecognised) {
  Transport a, b;
  read(a, "&transport ! main section\ntemp = 111\n/\n");
  read(b, "&transport # main section\ntemp = 111\n/\n");
  EXPECT_DOUBLE_EQ(a.temp, 300.0);
  EXPECT_DOUBLE_EQ(b.temp, 300.0);
}

TEST_F(ControlReader, SectionWordWithATouchingCommentIsRecognised) {
  Transport t;
  read(t, "&Transport! main\ntemp = 111\n/\n");
  EXPECT_DOUBLE_EQ(t.temp, 111.0);
}

TEST_F(ControlReader, SeveralSectionsAndTheLaterKeyWins) {
  Transport t;
  read(t, "&transport\ntemp = 111\nqc_ppn = 4\n/\n&transport\ntemp = 222\n/\n");
  EXPECT_DOUBLE_EQ(t.temp, 222.0);
  EXPECT_EQ(t.qc_ppn, 4);
}

TEST_F(ControlReader, AppendSectionsAreTakenRawAndAccumulate) {
  Transport t;
  read(t,
       "&gaussian.append\n"
       "  ! kept as it is\n"
       "pop=full # also kept\n"
       "  / indented slash does not close\n"
       "/\n"
       "&QC_INP_APPEND\n"
       "second\r\n"
       "/ closes\n"
       "temp = 5\n");
  EXPECT_EQ(t.qc_inp_append,
            "  ! kept as it is\npop=full # also kept\n  / indented slash does not close\nsecond\r\n");
  EXPECT_DOUBLE_EQ(t.temp, 300.0);
}

TEST_F(ControlReader, LongLinesAreSplitIntoEntriesOf1023Characters) {
  Transport t;
  std::string comment(1500, 'x');
  write_file("tavix.inp", "&transport\n! " + comment + "\ntemp = 99\n/\n");
  t.load_tavix_inp_file("tavix.inp", false);
  ASSERT_EQ(t.inp_line_count, 5);
  EXPECT_EQ(std::string(t.inp_lines[1]).size(), 1023u);
  t.release_inp_lines();
  read(t, "&transport\n! " + comment + "\ntemp = 99\n/\n");
  EXPECT_DOUBLE_EQ(t.temp, 99.0);
}

// ---- conversions ----------------------------------------------------------------

TEST_F(ControlReader, NumbersTakeTheLeadingPartAndTextGivesZero) {
  Transport t;
  read(t, "&transport\nqc_ppn = 12cores\nnsimu = many\ntemp = 2.5e2K\ntsimu = none\n/\n");
  EXPECT_EQ(t.qc_ppn, 12);
  EXPECT_EQ(t.nsimu, 0);
  EXPECT_DOUBLE_EQ(t.temp, 250.0);
  EXPECT_DOUBLE_EQ(t.tsimu, 0.0);
}

TEST_F(ControlReader, FlagsTurnOnAndOff) {
  Transport t;
  read(t, "&transport\nuse_moo = 1\nuse_moo = 0\nsched_job_array = 0\nuse_evc_dint = 7\n/\n");
  EXPECT_FALSE(t.use_moo);
  EXPECT_FALSE(t.sched_job_array);
  EXPECT_TRUE(t.use_evc_dint);
}

TEST_F(ControlReader, SetFlagsNeverTurnOff) {
  Transport t;
  read(t,
       "&transport\nRE_calc_lambda_4P = 0\nV_dynamic_disorder = 1\nV_dynamic_disorder = 0\n"
       "read_neighbor_dat = 0\n/\n");
  EXPECT_TRUE(t.RE_calc_lambda_4P);
  EXPECT_TRUE(t.V_dynamic_disorder);
  EXPECT_FALSE(t.read_neighbor_dat);
}

TEST_F(ControlReader, TriplesLeaveMissingFieldsAlone) {
  Transport t;
  read(t, "&transport\nvector_a = 1.5 2.5\nneighbor_scell = 2\nsuper-cell = 4 5 6\n/\n");
  EXPECT_DOUBLE_EQ(t.vector_a[0], 1.5);
  EXPECT_DOUBLE_EQ(t.vector_a[1], 2.5);
  EXPECT_DOUBLE_EQ(t.vector_a[2], 0.0);
  EXPECT_EQ(t.nei_scell[0], 2);
  EXPECT_EQ(t.nei_scell[1], 3);
  EXPECT_EQ(t.nei_scell[2], 3);
  EXPECT_EQ(t.super_cell[0], 4);
  EXPECT_EQ(t.super_cell[2], 6);
}

TEST_F(ControlReader, ListsSplitAtBlanksAndTabsAndAppend) {
  Transport t;
  read(t, "&transport\nhomo_adjustment = 0\t-1  2\nlumo_adjustment = 1\nemultipole_scale1 = 0.5 0.25\n/\n");
  EXPECT_EQ(t.homo_adjustment, (std::vector<int>{0, -1, 2}));
  EXPECT_EQ(t.lumo_adjustment, (std::vector<int>{1}));
  EXPECT_EQ(t.emultipole_scale1, (std::vector<double>{0.5, 0.25}));
}

TEST_F(ControlReader, ListsGrowOnASecondReading) {
  Transport t;
  read(t, "&transport\nhomo_adjustment = 1 2\n/\n");
  read(t, "&transport\nhomo_adjustment = 3\n/\n");
  EXPECT_EQ(t.homo_adjustment, (std::vector<int>{1, 2, 3}));
}

// ---- keys with a handling of their own ---------------------------------------

TEST_F(ControlReader, WalltimeInSecondsSplitsIntoHoursMinutesSeconds) {
  Transport t;
  read(t, "&transport\nsched_type = pbs\nwalltime = 3661\n/\n");
  EXPECT_EQ(t.walltime_hours, 1);
  EXPECT_EQ(t.walltime_minutes, 1);
  EXPECT_EQ(t.walltime_seconds, 1);
}

TEST_F(ControlReader, WalltimeForSlurmSplitsDaysOff) {
  Transport t;
  read(t, "&transport\nwalltime = 48:00:00\n/\n");
  EXPECT_EQ(t.walltime_days, 2);
  EXPECT_EQ(t.walltime_hours, 0);
}

TEST_F(ControlReader, WalltimeForPbsKeepsAllHours) {
  Transport t;
  read(t, "&transport\nsched_type = pbs\nwalltime = \"48:30:15\"\n/\n");
  EXPECT_EQ(t.walltime_days, 0);
  EXPECT_EQ(t.walltime_hours, 48);
  EXPECT_EQ(t.walltime_minutes, 30);
  EXPECT_EQ(t.walltime_seconds, 15);
}

TEST_F(ControlReader, WalltimeHourSetsTheHoursOnly) {
  Transport t;
  read(t, "&transport\nsched_type = lsf\nwalltime_hour = 30\n/\n");
  EXPECT_EQ(t.walltime_hours, 30);
  EXPECT_EQ(t.walltime_minutes, 0);
}

TEST_F(ControlReader, WalltimeOfTwoFieldsIsFatal) {
  auto r = read_forked("&transport\nwalltime = 1:30\n/\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out),
            kHead + "Walltime format incorrect!\nIt should be either in ssssss seconds or in hh:mm:ss\n");
}

TEST_F(ControlReader, ChargetypeIsStoredAsWritten) {
  Transport t;
  read(t, "&transport\nchargetype = H\n/\n");
  EXPECT_EQ(t.chargetype, "H");
}

TEST_F(ControlReader, WrongChargetypeIsFatal) {
  auto r = read_forked("&transport\nchargetype = x\n/\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead +
                                          "The current chargetype in tavix.inp is 'x', \n"
                                          "while the supported chargetype's are: 'e', 'h', 'a'\n");
}

TEST_F(ControlReader, WrongEvcTypeIsFatal) {
  auto r = read_forked("&transport\nevc_type = polar\n/\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead +
                                          "The current evc_type in tavix.inp is 'polar', \n"
                                          "while the supported evc_type's are: 'cart', 'int'\n");
}

TEST_F(ControlReader, EvcTypeIgnoresCase) {
  Transport t;
  read(t, "&transport\nevc_type = INT\n/\n");
  EXPECT_EQ(t.evc_type, "INT");
}

TEST_F(ControlReader, RatetypeIsComparedByPrefix) {
  Transport a, b, c;
  read(a, "&transport\nratetype = Marcus-like\n/\n");
  read(b, "&transport\nratetype = quantitative\n/\n");
  read(c, "&transport\nratetype = Quantum\n/\n");
  EXPECT_EQ(a.ratetype, "Marcus-like");
  EXPECT_EQ(b.ratetype, "quantitative");
  EXPECT_EQ(c.ratetype, "Quantum");
  EXPECT_EQ(c.tavix_dat_file, "tavix-Quantum.dat");
}

TEST_F(ControlReader, WrongRatetypeIsFatal) {
  auto r = read_forked("&transport\nratetype = marc\n/\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead +
                                          "The current ratetype in tavix.inp is 'marc', \n"
                                          "while the supported ratetype's are: marcus, quantum\n");
}

TEST_F(ControlReader, MoleculeGivesCountNamesAndMode) {
  Transport t;
  read(t, "&transport\nmolecule = 2 mol1.mol mol2.mol\n/\n");
  EXPECT_EQ(t.nmols_uc, 2);
  EXPECT_EQ(t.mol_input_mode, 1);
  EXPECT_STREQ(t.mol_files[0], "mol1.mol");
  EXPECT_STREQ(t.mol_files[1], "mol2.mol");
}

TEST_F(ControlReader, MoleculeNamesAreSplitAtBlanksOnly) {
  Transport t;
  read(t, "&transport\nmolecule = 2 a.mol\tb.mol c.mol\n/\n");
  EXPECT_STREQ(t.mol_files[0], "a.mol\tb.mol");
  EXPECT_STREQ(t.mol_files[1], "c.mol");
}

// Fewer names than the count would read past the words; the reader stops with
// a message that names the file and line instead.
TEST_F(ControlReader, MoleculeWithFewerNamesThanItsCountFails) {
  auto r = read_forked("&transport\nmolecule = 3 a.mol b.mol\n/\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Molecule count 3 in tavix.inp line 2 has only 2 file name(s)\n");
}

TEST_F(ControlReader, ReorgOuterConstant) {
  Transport t;
  read(t, "&transport\nreorg_outer = constant 0.15\n/\n");
  EXPECT_EQ(t.reorg_outer_method, "constant");
  EXPECT_DOUBLE_EQ(t.reorg_outer_constant, 0.15);
  EXPECT_EQ(t.reorg_outer_flag, 1);
  EXPECT_EQ(t.Jobscript::reorg_outer_flag, 1);
}

TEST_F(ControlReader, ReorgOuterSpheresHoldsRadiiInNanometres) {
  Transport t;
  read(t, "&transport\nreorg_outer = Spheres 0.1 3.4 4.2\n/\n");
  EXPECT_EQ(t.reorg_outer_flag, 2);
  EXPECT_DOUBLE_EQ(t.reorg_outer_value, 0.1);
  ASSERT_EQ(t.reorg_outer_radii.size(), 2u);
  EXPECT_DOUBLE_EQ(t.reorg_outer_radii[0], 3.4 * 0.1);
  EXPECT_DOUBLE_EQ(t.reorg_outer_radii[1], 4.2 * 0.1);
}

TEST_F(ControlReader, ReorgOuterDielectricHoldsTheCutoffInNanometres) {
  Transport t;
  read(t, "&transport\nreorg_outer = dielectric 3.5 12.0\n/\n");
  EXPECT_EQ(t.reorg_outer_flag, 3);
  EXPECT_DOUBLE_EQ(t.reorg_outer_value, 3.5);
  EXPECT_DOUBLE_EQ(t.reorg_outer_cutoff, 12.0 * 0.1);
  EXPECT_EQ(t.Jobscript::reorg_outer_flag, 3);
}

TEST_F(ControlReader, UnknownReorgOuterMethodNamesTheKey) {
  auto r = read_forked("&transport\nReorg_Outer = cavity 1.0\n/\n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "\nUnknown reorg_outer method \"Reorg_Outer\" in file tavix.inp!!!\n\n");
}

TEST_F(ControlReader, ReorgOuterWithTooFewWordsFails) {
  auto r = read_forked("&transport\nreorg_outer = dielectric 3.5\n/\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "reorg_outer dielectric in tavix.inp line 2 needs 2 number(s), found 1\n");
}

TEST_F(ControlReader, ThinfilmSetsDirectionCellsAndFlag) {
  Transport t;
  read(t, "&transport\nthinfilm = 2 4\n/\n");
  EXPECT_EQ(t.thinfilm_dir, 2);
  EXPECT_EQ(t.thinfilm_ncell, 4);
  EXPECT_EQ(t.thinfilm_flag, 1);
}

TEST_F(ControlReader, ThinfilmDirectionOutOfRangeIsFatal) {
  auto r = read_forked("&transport\nthinfilm = 3 1\n/\n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "\nthinfilm dir not in range [0-2]: \"3\n\n");
}

TEST_F(ControlReader, FieldTurnsTheFlagOnAndZerosDoNotClearIt) {
  Transport t;
  read(t, "&transport\napp_elec_F = 0 -1e7 0\napp_elec_F = 0 0 0\n/\n");
  EXPECT_TRUE(t.appE_flag);
  EXPECT_DOUBLE_EQ(t.app_elec_F[1], 0.0);
  Transport u;
  read(u, "&transport\napp_elec_F = 0 0 0\n/\n");
  EXPECT_FALSE(u.appE_flag);
}

TEST_F(ControlReader, BasisBeforeBasisReSetsBothThenOnlyTheLatter) {
  Transport t;
  read(t, "&transport\nqc_basis = b3lyp 6-311g\nqc_basis_re = b3lyp sto-3g\n/\n");
  EXPECT_EQ(t.qc_basis, "b3lyp 6-311g");
  EXPECT_EQ(t.qc_basis_re, "b3lyp sto-3g");
}

TEST_F(ControlReader, BasisAfterBasisReOverwritesTheLatter) {
  Transport t;
  read(t, "&transport\nbasis_name_re = b3lyp sto-3g\nbasis_name = b3lyp 6-311g\n/\n");
  EXPECT_EQ(t.qc_basis, "b3lyp 6-311g");
  EXPECT_EQ(t.qc_basis_re, "b3lyp 6-311g");
}

TEST_F(ControlReader, ComputeEngineTwoWithoutExecutablePasses) {
  Transport t;
  read(t, "&transport\ncompute_engine = 2\n/\n");
  EXPECT_EQ(t.compute_engine, 2);
  EXPECT_EQ(t.qc_exe, "fullpath/orca");
}

TEST_F(ControlReader, ComputeEngineTwoThenAPathKeepsThePath) {
  Transport t;
  read(t, "&transport\ncompute_engine = 2\nqc_exe = /opt/orca/orca\n/\n");
  EXPECT_EQ(t.qc_exe, "/opt/orca/orca");
}

TEST_F(ControlReader, ComputeEngineThreeWithoutExecutableIsIncompatible) {
  auto r = read_forked("&transport\ncompute_engine = 3\n/\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead +
                                          "Incomptiable settings:\n"
                                          "  The compute_engine = 3, while qc_exe is set to g16\n"
                                          "  1 - Gaussian, 2 - ORCA, 3 - QCHEM, 4 - BDF\n");
}

TEST_F(ControlReader, CompatibilityMarksAreCaseSensitiveSubstrings) {
  Transport t;
  read(t, "&transport\ncompute_engine = 4\nqc_exe = /opt/bdf/bdfdrv.py\n/\n");
  EXPECT_EQ(t.compute_engine, 4);
  Transport u;
  read(u, "&transport\nqc_exe = /usr/local/bin/ignore\n/\n");
  EXPECT_EQ(u.qc_exe, "/usr/local/bin/ignore");
  auto r = read_forked("&transport\nqc_exe = ORCA\n/\n");
  EXPECT_EQ(r.status, 1);
}

TEST_F(ControlReader, EngineOutsideOneToFourIsNotChecked) {
  Transport t;
  read(t, "&transport\ncompute_engine = 9\nqc_exe = whatever\n/\n");
  EXPECT_EQ(t.compute_engine, 9);
}

TEST_F(ControlReader, UnknownKeyEndsTheProcess) {
  auto r = read_forked("&transport\ntemp = 200\nlattice_constant = 5\nqc_ppn = 2\n/\n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "\nUnknown parameter \"lattice_constant\" in file tavix.inp!!!\n\n");
}

TEST_F(ControlReader, MissingFileIsFatal) {
  auto r = run_forked([] {
    Transport t;
    t.read_tavix_inp("no-such.inp", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead + "Failed to open input file: no-such.inp\n");
}

// ---- closing steps ----------------------------------------------------------------

TEST_F(ControlReader, UniqueSwitchesFollowTheUniqueMolKeys) {
  Transport t;
  read(t, "&transport\nHL_unique_mol = 0\n/\n");
  EXPECT_FALSE(t.get_unique_uc_mol_one_calc_flag());
  EXPECT_FALSE(t.get_unique_nei_mol_one_calc_flag());
  EXPECT_FALSE(t.get_unique_2mol_calc_flag());
  EXPECT_TRUE(t.get_unique_RE_calc_flag());
  read(t, "&transport\nHL_unique_mol = 1\nRE_unique_mol = 0\n/\n");
  EXPECT_TRUE(t.get_unique_2mol_calc_flag());
  EXPECT_FALSE(t.get_unique_RE_calc_flag());
}

TEST_F(ControlReader, LsfNodelistCommasBecomeBlanks) {
  Transport t;
  read(t, "&transport\nsched_type = lsf\nnodelist = \"n1,n2,n3\"\n/\n");
  EXPECT_EQ(t.nodelist, "n1 n2 n3");
  Transport u;
  read(u, "&transport\nsched_type = LSF\nnodelist = n1,n2\n/\n");
  EXPECT_EQ(u.nodelist, "n1,n2");
}

TEST_F(ControlReader, OniomOutputSetsBitEightOfTheDataLevel) {
  Transport t;
  read(t, "&transport\ndata_mol_output_level = 3\noniom_output_flag = 1\n/\n");
  EXPECT_EQ(t.data_mol_output_level, 11);
}

TEST_F(ControlReader, ReportNameKeepsAGivenName) {
  Transport t;
  read(t, "&transport\ntavix_dat_file = mine.dat\nratetype = marcus\n/\n");
  EXPECT_EQ(t.tavix_dat_file, "mine.dat");
}

// ---- precedence -------------------------------------------------------------------

TEST_F(ControlReader, EnvironmentBeatsTheReadDefaultAndTheFileBeatsTheEnvironment) {
  setenv("TAVIX_QC_PPN", "24", 1);
  setenv("TAVIX_JOB_QUEUE", "envq", 1);
  setenv("TAVIX_MODULE_QC", "gaussian/env", 1);
  Transport a;
  read(a, "&transport\n/\n");
  EXPECT_EQ(a.qc_ppn, 24);
  EXPECT_EQ(a.queue_name, "envq");
  EXPECT_EQ(a.module_qc, "gaussian/env");
  EXPECT_TRUE(a.module_qc_flag);
  Transport b;
  read(b, "&transport\nqc_ppn = 6\nqueue_name = fileq\nmodule_qc = gaussian/file\n/\n");
  EXPECT_EQ(b.qc_ppn, 6);
  EXPECT_EQ(b.queue_name, "fileq");
  EXPECT_EQ(b.module_qc, "gaussian/file");
}

TEST_F(ControlReader, EveryEnvironmentVariableIsOverriddenByItsKey) {
  setenv("TAVIX_JOB_SCHED", "lsf", 1);
  setenv("TAVIX_JOB_QUEUE", "envq", 1);
  setenv("TAVIX_QC_EXE", "g09", 1);
  setenv("TAVIX_QC_NODES", "5", 1);
  setenv("TAVIX_QC_PPN", "24", 1);
  setenv("TAVIX_MODULE_QC", "qc/env", 1);
  setenv("TAVIX_MODULE_TAVIX", "tavix/env", 1);
  setenv("TAVIX_MODULE_MPICH2", "mpi/env", 1);
  Transport e;
  read(e, "");
  EXPECT_EQ(e.sched_type, "lsf");
  EXPECT_EQ(e.qc_exe, "g09");
  EXPECT_EQ(e.qc_nodes, 5);
  EXPECT_EQ(e.module_tavix, "tavix/env");
  EXPECT_EQ(e.module_mpich2, "mpi/env");
  Transport f;
  read(f,
       "&transport\nsched_type = pbs\nqueue_name = q\nqc_exe = g16\nqc_nodes = 2\nqc_ppn = 3\n"
       "module_qc = qc/f\nmodule_tavix = tavix/f\nmodule_mpich2 = mpi/f\n/\n");
  EXPECT_EQ(f.sched_type, "pbs");
  EXPECT_EQ(f.queue_name, "q");
  EXPECT_EQ(f.qc_exe, "g16");
  EXPECT_EQ(f.qc_nodes, 2);
  EXPECT_EQ(f.qc_ppn, 3);
  EXPECT_EQ(f.module_qc, "qc/f");
  EXPECT_EQ(f.module_tavix, "tavix/f");
  EXPECT_EQ(f.module_mpich2, "mpi/f");
}

// An ORCA setting survives a second reading while qc_exe falls back to its read
// default, so the compatibility check then fails: the engine must be named again.
TEST_F(ControlReader, ASecondReadingOfAnOrcaRunMustNameTheEngineAgain) {
  write_file("first.inp", "&transport\ncompute_engine = 2\n/\n");
  write_file("second.inp", "&transport\n/\n");
  auto r = run_forked([] {
    Transport t;
    t.read_tavix_inp("first.inp", false);
    t.read_tavix_inp("second.inp", false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("The compute_engine = 2, while qc_exe is set to g16"), std::string::npos);
}

TEST_F(ControlReader, ASecondReadingStartsFromTheReadDefaults) {
  Transport t;
  read(t, "&transport\ntemp = 100\ncompute_engine = 7\ndo_transport_run_ME = 1\nqc_exe = x\n/\n");
  read(t, "&transport\n/\n");
  EXPECT_DOUBLE_EQ(t.temp, 300.0);
  EXPECT_EQ(t.compute_engine, 7);
  EXPECT_EQ(t.do_transport_run_ME, 1);
  EXPECT_EQ(t.qc_exe, "g16");
}

// ---- every key --------------------------------------------------------------------

TEST_F(ControlReader, EveryKeyOfTheTableReachesItsParameter) {
  Transport t;
  read(t,
       "&transport\n"
       "  do_transport_prepare = 0\n"
       "  do_transport_submit_HL_job = 0\n"
       "  do_transport_submit_RE_job = 0\n"
       "  do_transport_get_transferintegral = 0\n"
       "  do_transport_get_re_evc = 0\n"
       "  do_transport_run_MC = 0\n"
       "  do_transport_get_mob_MC = 0\n"
       "  do_transport_run_MC_temp = 1\n"
       "  do_transport_get_mob_MC_temp = 1\n"
       "  do_transport_run_ME = 1\n"
       "  do_transport_get_mob_ME = 1\n"
       "  do_transport_run_ME_temp = 1\n"
       "  do_transport_get_mob_ME_temp = 1\n"
       "  do_transport_gather_tavix_data = 0\n"
       "  mater_name = \"rubrene\"\n"
       "  module_tavix = tavix/2023A\n"
       "  module_mpich2 = mpich/4.1\n"
       "  module_gaussian = gaussian/g09\n"
       "  gaussian_exe = g09\n"
       "  memory = 4000\n"
       "  gaussian_nodes = 2\n"
       "  gaussian_ppn = 16\n"
       "  qc_method = pbe0\n"
       "  basis_name = pbe0 6-311g**\n"
       "  basis_name_re = pbe0 def2-svp\n"
       "  qc_es_opt = TD(nstates=5)\n"
       "  qc_gs_tddft = TD(nstates=3)\n"
       "  qc_es_tddft = TD(triplets)\n"
       "  qc_es_mult = 3\n"
       "  use_moo = 1\n"
       "  queue_name = long\n"
       "  queue_type = pbs\n"
       "  sched_job_array = 0\n"
       "  nodelist = node1,node2\n"
       "  job_slot_limit = 10\n"
       "  walltime = 7325\n"
       "  walltime_hour = 30\n"
       "  start_temp = 100\n"
       "  end_temp = 400\n"
       "  delta_temp = 25\n"
       "  chargetype = e\n"
       "  evc_type = int\n"
       "  use_evc_dint = 1\n"
       "  vector_a = 10.0 0.5 0.25\n"
       "  vector_b = 0.1 11.0 0.2\n"
       "  vector_c = -1.0 0.3 12.0\n"
       "  lat_cutoff = 5.5\n"
       "  nei_scell = 1 2 3\n"
       "  super_cell = 2 3 4\n"
       "  bond_dis_scale = 1.2\n"
       "  HL_unique_ctrl_ratio = 0.1\n"
       "  read_neighbor_dat = 1\n"
       "  temp = 250\n"
       "  maxt = 5000\n"
       "  ratetype = marcus\n"
       "  sta = 0\n"
       "  delta_angle = 5\n"
       "  tsimu = 500\n"
       "  tsnap = 2.5\n"
       "  tstep = 0.5\n"
       "  nsimu = 100\n"
       "  iterlimit = 50\n"
       "  nevery_out = 5\n"
       "  RE_unique_mol = 0\n"
       "  HL_unique_mol = 0\n"
       "  homo_adjustment = 0 -1\n"
       "  lumo_adjustment = 1 0\n"
       "  molecule = 2 a.mol b.mol\n"
       "  lat_site_energy = 1\n"
       "  mob_output_level = 3\n"
       "  tavix_dat_file = report.dat\n"
       "  eigval_output_flag = 1\n"
       "  compute_engine = 1\n"
       "  scratch = /scr\n"
       "  eckart_mirror = 1\n"
       "  app_elec_F = 1e7 0 0\n"
       "  reorg_outer = spheres 0.2 3.0 4.0\n"
       "  emultipole_induce = 0\n"
       "  emultipole_cutoff = 6.0\n"
       "  emultipole_aDamp = 0.5\n"
       "  emultipole_scale1 = 0.5 1.0\n"
       "  emultipole_wSOR_N = 0.6\n"
       "  emultipole_wSOR_C = 0.7\n"
       "  emultipole_maxIter = 100\n"
       "  emultipole_epsTol = 0.01\n"
       "  thinfilm = 1 3\n"
       "  RE_use_neutral_chk = 1\n"
       "  RE_calc_lambda_4P = 1\n"
       "  V_dynamic_disorder = 1\n"
       "  HOMOLUMO_dynamic_disorder = 1\n"
       "  data_mol_output_level = 1\n"
       "  oniom_output_flag = 1\n"
       "  oniom_nlayers = 3\n"
       "  oniom_com_cutoff = 30.0\n"
       "/\n");
  EXPECT_EQ(t.do_transport_prepare, 0);
  EXPECT_EQ(t.do_transport_submit_HL_job, 0);
  EXPECT_EQ(t.do_transport_submit_RE_job, 0);
  EXPECT_EQ(t.do_transport_get_transferintegral, 0);
  EXPECT_EQ(t.do_transport_get_re_evc, 0);
  EXPECT_EQ(t.do_transport_run_MC, 0);
  EXPECT_EQ(t.do_transport_get_mob_MC, 0);
  EXPECT_EQ(t.do_transport_run_MC_temp, 1);
  EXPECT_EQ(t.do_transport_get_mob_MC_temp, 1);
  EXPECT_EQ(t.do_transport_run_ME, 1);
  EXPECT_EQ(t.do_transport_get_mob_ME, 1);
  EXPECT_EQ(t.do_transport_run_ME_temp, 1);
  EXPECT_EQ(t.do_transport_get_mob_ME_temp, 1);
  EXPECT_EQ(t.do_transport_gather_tavix_data, 0);
  EXPECT_EQ(t.mater_name, "rubrene");
  EXPECT_EQ(t.module_tavix, "tavix/2023A");
  EXPECT_TRUE(t.module_tavix_flag);
  EXPECT_EQ(t.module_mpich2, "mpich/4.1");
  EXPECT_TRUE(t.module_mpich2_flag);
  EXPECT_EQ(t.module_qc, "gaussian/g09");
  EXPECT_TRUE(t.module_qc_flag);
  EXPECT_EQ(t.qc_exe, "g09");
  EXPECT_EQ(t.qc_memory, 4000);
  EXPECT_EQ(t.qc_nodes, 2);
  EXPECT_EQ(t.qc_ppn, 16);
  EXPECT_EQ(t.qc_method, "pbe0");
  EXPECT_EQ(t.qc_basis, "pbe0 6-311g**");
  EXPECT_EQ(t.qc_basis_re, "pbe0 def2-svp");
  EXPECT_EQ(t.qc_es_opt, "TD(nstates=5)");
  EXPECT_EQ(t.qc_gs_tddft, "TD(nstates=3)");
  EXPECT_EQ(t.qc_es_tddft, "TD(triplets)");
  EXPECT_EQ(t.qc_es_mult, 3);
  EXPECT_TRUE(t.use_moo);
  EXPECT_EQ(t.queue_name, "long");
  EXPECT_EQ(t.sched_type, "pbs");
  EXPECT_FALSE(t.sched_job_array);
  EXPECT_EQ(t.nodelist, "node1,node2");
  EXPECT_EQ(t.job_slot_limit, 10);
  // walltime = 7325 gives 2:02:05; walltime_hour then replaces the hours only.
  EXPECT_EQ(t.walltime_hours, 30);
  EXPECT_EQ(t.walltime_minutes, 2);
  EXPECT_EQ(t.walltime_seconds, 5);
  EXPECT_EQ(t.walltime_days, 0);
  EXPECT_DOUBLE_EQ(t.start_temp, 100.0);
  EXPECT_DOUBLE_EQ(t.end_temp, 400.0);
  EXPECT_DOUBLE_EQ(t.delta_temp, 25.0);
  EXPECT_EQ(t.chargetype, "e");
  EXPECT_EQ(t.evc_type, "int");
  EXPECT_TRUE(t.use_evc_dint);
  EXPECT_DOUBLE_EQ(t.vector_a[0], 10.0);
  EXPECT_DOUBLE_EQ(t.vector_a[1], 0.5);
  EXPECT_DOUBLE_EQ(t.vector_a[2], 0.25);
  EXPECT_DOUBLE_EQ(t.vector_b[0], 0.1);
  EXPECT_DOUBLE_EQ(t.vector_b[1], 11.0);
  EXPECT_DOUBLE_EQ(t.vector_b[2], 0.2);
  EXPECT_DOUBLE_EQ(t.vector_c[0], -1.0);
  EXPECT_DOUBLE_EQ(t.vector_c[1], 0.3);
  EXPECT_DOUBLE_EQ(t.vector_c[2], 12.0);
  EXPECT_DOUBLE_EQ(t.lat_cutoff, 5.5);
  EXPECT_EQ(t.nei_scell[0], 1);
  EXPECT_EQ(t.nei_scell[1], 2);
  EXPECT_EQ(t.nei_scell[2], 3);
  EXPECT_EQ(t.super_cell[0], 2);
  EXPECT_EQ(t.super_cell[1], 3);
  EXPECT_EQ(t.super_cell[2], 4);
  EXPECT_DOUBLE_EQ(t.bond_dis_scale, 1.2);
  EXPECT_DOUBLE_EQ(t.HL_unique_ctrl_ratio, 0.1);
  EXPECT_TRUE(t.read_neighbor_dat);
  EXPECT_DOUBLE_EQ(t.temp, 250.0);
  EXPECT_DOUBLE_EQ(t.maxt, 5000.0);
  EXPECT_EQ(t.ratetype, "marcus");
  EXPECT_EQ(t.sta, 0);
  EXPECT_DOUBLE_EQ(t.delta_angle, 5.0);
  EXPECT_DOUBLE_EQ(t.tsimu, 500.0);
  EXPECT_DOUBLE_EQ(t.tsnap, 2.5);
  EXPECT_DOUBLE_EQ(t.tstep, 0.5);
  EXPECT_EQ(t.nsimu, 100);
  EXPECT_EQ(t.iterlimit, 50);
  EXPECT_EQ(t.nevery_out, 5);
  EXPECT_EQ(t.RE_unique_mol, 0);
  EXPECT_EQ(t.HL_unique_mol, 0);
  EXPECT_EQ(t.homo_adjustment, (std::vector<int>{0, -1}));
  EXPECT_EQ(t.lumo_adjustment, (std::vector<int>{1, 0}));
  EXPECT_EQ(t.nmols_uc, 2);
  EXPECT_EQ(t.mol_input_mode, 1);
  EXPECT_STREQ(t.mol_files[1], "b.mol");
  EXPECT_EQ(t.lat_site_energy, 1);
  EXPECT_EQ(t.mob_output_level, 3);
  EXPECT_EQ(t.tavix_dat_file, "report.dat");
  EXPECT_EQ(t.eigval_output_flag, 1);
  EXPECT_EQ(t.compute_engine, 1);
  EXPECT_EQ(t.scratch, " /scr");
  EXPECT_EQ(t.eckart_mirror, 1);
  EXPECT_TRUE(t.appE_flag);
  EXPECT_DOUBLE_EQ(t.app_elec_F[0], 1e7);
  EXPECT_EQ(t.reorg_outer_flag, 2);
  EXPECT_DOUBLE_EQ(t.reorg_outer_value, 0.2);
  EXPECT_EQ(t.reorg_outer_radii.size(), 2u);
  EXPECT_EQ(t.emultipole_induce, 0);
  EXPECT_DOUBLE_EQ(t.emultipole_cutoff, 6.0);
  EXPECT_DOUBLE_EQ(t.emultipole_aDamp, 0.5);
  EXPECT_EQ(t.emultipole_scale1, (std::vector<double>{0.5, 1.0}));
  EXPECT_DOUBLE_EQ(t.emultipole_wSOR_N, 0.6);
  EXPECT_DOUBLE_EQ(t.emultipole_wSOR_C, 0.7);
  EXPECT_EQ(t.emultipole_maxIter, 100);
  EXPECT_DOUBLE_EQ(t.emultipole_epsTol, 0.01);
  EXPECT_EQ(t.thinfilm_dir, 1);
  EXPECT_EQ(t.thinfilm_ncell, 3);
  EXPECT_EQ(t.thinfilm_flag, 1);
  EXPECT_TRUE(t.RE_use_neutral_chk);
  EXPECT_TRUE(t.RE_calc_lambda_4P);
  EXPECT_TRUE(t.V_dynamic_disorder);
  EXPECT_TRUE(t.HOMOLUMO_dynamic_disorder);
  EXPECT_EQ(t.data_mol_output_level, 9);  // 1, and bit 8 for the ONIOM output
  EXPECT_EQ(t.oniom_output_flag, 1);
  EXPECT_EQ(t.oniom_nlayers, 3);
  EXPECT_DOUBLE_EQ(t.oniom_com_cutoff, 30.0);
  EXPECT_FALSE(t.get_unique_2mol_calc_flag());
  EXPECT_FALSE(t.get_unique_RE_calc_flag());
}

TEST_F(ControlReader, OlderKeyNamesReachTheSameParameters) {
  Transport t;
  read(t, "&transport\nlattice_cutoff = 6.5\nneighbor_scell = 4 4 4\nsuper-cell = 1 1 1\n/\n");
  EXPECT_DOUBLE_EQ(t.lat_cutoff, 6.5);
  EXPECT_EQ(t.nei_scell[2], 4);
  EXPECT_EQ(t.super_cell[0], 1);
}

// ---- the crystal key ----------------------------------------------------------------

TEST_F(ControlReader, CrystalIsReadAtOnceDuringTheReading) {
  Transport t;
  const std::string cif = txtest::data_path("cif/benzene_COD2100348_blankline.cif");
  read(t, "&transport\n  crystal = " + cif + "  \n  temp = 200\n/\n");
  EXPECT_EQ(t.mol_input_mode, 2);
  EXPECT_EQ(t.structure_read, 1);
  EXPECT_EQ(t.crystal_file, cif);
  EXPECT_EQ(t.cif_natoms, 48);
  EXPECT_EQ(t.uc_mol_natoms.size(), 4u);
  EXPECT_DOUBLE_EQ(t.temp, 200.0);
}

TEST_F(ControlReader, CrystalReadingFollowsTheVerboseArgument) {
  Transport t;
  const std::string cif = txtest::data_path("cif/benzene_COD2100348_blankline.cif");
  write_file("tavix.inp", "&transport\ncrystal = " + cif + "\n/\n");
  std::string quiet = txtest::capture_stdout([&] { t.read_tavix_inp("tavix.inp", false); });
  EXPECT_EQ(quiet, "");
  Transport v;
  std::string loud = txtest::capture_stdout([&] { v.read_tavix_inp("tavix.inp", true); });
  EXPECT_NE(loud.find("Reading crystal file \"" + cif + "\"... "), std::string::npos);
}

TEST_F(ControlReader, MissingCrystalFileIsTheCifReadersFatal) {
  auto r = read_forked("&transport\ncrystal = nothere.cif\n/\n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), "\nERROR  transport : fileio : line # : \n");
  EXPECT_EQ(r.err, "Failed to open input file \"nothere.cif\"\n");
}
