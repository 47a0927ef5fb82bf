// The checker and extension scripts: their text against hand-written copies in
// tests/data/golden/checkers, and their behaviour when python3 runs them on
// prepared outputs in a temporary directory.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checker_script_tables.h"
#include "test_support.h"
#include "transport.h"

namespace {

std::string golden(const std::string& name) {
  std::string text = txtest::read_file(txtest::data_path("golden/checkers/" + name));
  EXPECT_FALSE(text.empty()) << "missing golden file " << name;
  return text;
}

// A fresh run directory with its scr directory, as the preparing stage leaves it.
struct RunDir {
  txtest::TempDir dir;
  RunDir() { txtest::run_command("mkdir scr"); }
};

txtest::RunResult python(const std::string& args) { return txtest::run_command("python3 " + args); }

int py_compile(const std::string& path) { return txtest::run_command("python3 -m py_compile '" + path + "'").status; }

void write_checkers() {
  Transport t;
  t.write_gaussian_log_check_py_file();
  t.write_orca_out_check_py_file();
  t.write_qchem_out_check_py_file();
  t.write_bdf_out_check_py_file();
}

bool exists(const std::string& path) { return txtest::path_exists(path); }

}  // namespace

// ---- written text ------------------------------------------------------------

TEST(CheckerScriptText, EndTestsMatchTheirHandWrittenCopies) {
  RunDir run;
  write_checkers();
  for (const char* name : {"gaussian_log_check.py", "orca_out_check.py", "qchem_out_check.py", "bdf_out_check.py"}) {
    EXPECT_EQ(txtest::read_file(std::string("scr/") + name), golden(name)) << name;
  }
}

TEST(CheckerScriptText, ExtensionScriptsMatchTheirHandWrittenCopies) {
  RunDir run;
  Transport t;
  t.write_qchem_fchk_ext_lowercase_py_file();
  t.write_gaussian_ext_out_to_log_py_file();
  t.write_gaussian_ext_fch_to_fchk_py_file();
  for (const char* name : {"qchem_fchk_ext_lowercase.py", "gau_ext_out_to_log.py", "gau_ext_fch_to_fchk.py"}) {
    EXPECT_EQ(txtest::read_file(std::string("scr/") + name), golden(name)) << name;
  }
}

TEST(CheckerScriptText, ScriptsGoIntoTheScrDirectoryOfTheTransportObject) {
  txtest::TempDir dir;
  txtest::run_command("mkdir helpers");
  Transport t;
  t.scr_dir = "helpers";
  t.write_gaussian_log_check_py_file();
  EXPECT_EQ(txtest::read_file("helpers/gaussian_log_check.py"), golden("gaussian_log_check.py"));
}

TEST(CheckerScriptText, RewritingReplacesTheOldFile) {
  RunDir run;
  txtest::write_file("scr/orca_out_check.py", std::string(5000, 'x'));
  Transport().write_orca_out_check_py_file();
  EXPECT_EQ(txtest::read_file("scr/orca_out_check.py"), golden("orca_out_check.py"));
}

TEST(CheckerScriptText, EveryWrittenScriptCompilesUnderPython3) {
  RunDir run;
  write_checkers();
  Transport t;
  t.write_qchem_fchk_ext_lowercase_py_file();
  t.write_gaussian_ext_out_to_log_py_file();
  t.write_gaussian_ext_fch_to_fchk_py_file();
  for (const char* name : {"gaussian_log_check.py", "orca_out_check.py", "qchem_out_check.py", "bdf_out_check.py",
                           "qchem_fchk_ext_lowercase.py", "gau_ext_out_to_log.py", "gau_ext_fch_to_fchk.py"}) {
    EXPECT_EQ(py_compile(std::string("scr/") + name), 0) << name;
  }
}

TEST(CheckerScriptText, UnwrittenTablesOtherThanTheOldHomoLumoScriptCompileUnderPython3) {
  txtest::TempDir dir;
  write_script_file("check_b.py", gaussian_log_check_py_b, gaussian_log_check_py_b_size);
  write_script_file("check_n.py", gaussian_log_check_py_n, gaussian_log_check_py_n_size);
  write_script_file("exp_inf.py", exp_inf_py, exp_inf_py_size);
  write_script_file("eh.py", exp_re_py_write_lambda_eh, exp_re_py_write_lambda_eh_size);
  for (const char* name : {"check_b.py", "check_n.py", "exp_inf.py", "eh.py"}) EXPECT_EQ(py_compile(name), 0) << name;
}

TEST(CheckerScriptText, TablesHoldTheirFixedLines) {
  // The lines quoted for each table, looked up in the table itself.
  auto has = [](const char* const* table, std::size_t size, const std::string& line) {
    for (std::size_t i = 0; i < size; ++i)
      if (line == table[i]) return true;
    return false;
  };
  EXPECT_TRUE(has(gaussian_log_check_py_n, gaussian_log_check_py_n_size, "        lines = f.readlines()"));
  EXPECT_TRUE(has(gaussian_log_check_py_n, gaussian_log_check_py_n_size, "        last = lines[-1]"));
  EXPECT_TRUE(has(gaussian_log_check_py_b, gaussian_log_check_py_b_size, "            f.seek(-2, os.SEEK_END)"));
  EXPECT_TRUE(has(gaussian_log_check_py_b, gaussian_log_check_py_b_size, "            while f.read(1) != b'\\n':"));
  EXPECT_TRUE(has(gaussian_log_check_py_b, gaussian_log_check_py_b_size, "                f.seek(-2, os_SEEK_CUR)"));
  EXPECT_TRUE(has(gaussian_log_check_py_b, gaussian_log_check_py_b_size, "        except OSError:"));
  EXPECT_TRUE(has(gaussian_log_check_py_b, gaussian_log_check_py_b_size, "            f.seek(0)"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "block = 'Population'"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "eigen = 'eigenvalues'"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "occst = 'occ'"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "virst = 'vir'"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "sepst = '--'"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "HATREE = 27.21e3"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "    homo = min(homo_ener).split()[-1]"));
  EXPECT_TRUE(has(extract_homo_lumo_py, extract_homo_lumo_py_size, "    lumo = min(lumo_ener).split()[0]"));
  EXPECT_TRUE(has(exp_inf_py, exp_inf_py_size, "os.chdir(\"data\")"));
  // Head of the prepare scripts: interpreter, blank, two comment lines, blank, the two imports.
  ASSERT_EQ(prepare_mc_py_head_size, 7u);
  EXPECT_STREQ(prepare_mc_py_head[0], "#!/usr/bin/env python");
  EXPECT_STREQ(prepare_mc_py_head[1], "");
  EXPECT_EQ(prepare_mc_py_head[2][0], '#');
  EXPECT_EQ(prepare_mc_py_head[3][0], '#');
  EXPECT_STREQ(prepare_mc_py_head[4], "");
  EXPECT_STREQ(prepare_mc_py_head[5], "import os");
  EXPECT_STREQ(prepare_mc_py_head[6], "import shutil");
}

TEST(CheckerScriptText, GetRePiecesComputeLambdaInMevFromTheEvcOutput) {
  // A get_RE.py for one molecule and both carriers, put together the way its writer
  // does: head, per carrier the read table and the lambda.dat lines.
  txtest::TempDir dir;
  txtest::run_command("mkdir -p evc/mol1/elec evc/mol1/hole");
  txtest::write_file("evc/mol1/elec/evc.cart.dat", "x\n Total reorganization energy (cm-1):  100.0  300.0\ny\n");
  txtest::write_file("evc/mol1/hole/evc.cart.dat", " Total reorganization energy   10.0   20.0\n");
  FILE* fp = std::fopen("get_RE.py", "wt");
  ASSERT_NE(fp, nullptr);
  write_script_lines(fp, exp_re_py_head, exp_re_py_head_size);
  std::fputs("sys.stdout.write(\"  Treating mol1...\\n\")\nos.chdir(cwd2)\nos.chdir(\"mol1\")\n", fp);
  const char* const* tables[2] = {exp_re_py_read_lambda_elec, exp_re_py_read_lambda_hole};
  std::size_t sizes[2] = {exp_re_py_read_lambda_elec_size, exp_re_py_read_lambda_hole_size};
  const char* carrier[2] = {"elec", "hole"};
  const char* var[2] = {"e", "h"};
  for (int c = 0; c < 2; ++c) {
    std::fprintf(fp, "os.chdir(\"%s\")\n", carrier[c]);
    write_script_lines(fp, tables[c], sizes[c]);
    std::fprintf(fp,
                 "with open(\"lambda.dat\", \"w\") as n:\n"
                 "    n.write(\"%s:\\n\")\n"
                 "    n.write(\"lam lam1 lam2 [meV]\\n\")\n"
                 "    n.write(\"%%16.8f %%16.8f %%16.8f\\n\" %% (%s_lam, %s_lam1, %s_lam2))\n"
                 "    n.write(\"# reorganization energies: lam lam1 lam2 [meV]\\n\")\n"
                 "os.chdir(\"..\")\n",
                 carrier[c], var[c], var[c], var[c]);
  }
  std::fclose(fp);
  txtest::RunResult r = python("get_RE.py");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Calculating NM data ...\n  Treating mol1...\n");
  // 100 and 300 cm-1 times 0.1239842 meV per cm-1: 12.39842 and 37.19526, sum 49.59368.
  EXPECT_EQ(txtest::read_file("evc/mol1/elec/lambda.dat"),
            "elec:\nlam lam1 lam2 [meV]\n     49.59368000      12.39842000      37.19526000\n"
            "# reorganization energies: lam lam1 lam2 [meV]\n");
  // 10 and 20 cm-1: 1.239842 and 2.479684, sum 3.719526.
  EXPECT_EQ(txtest::read_file("evc/mol1/hole/lambda.dat"),
            "hole:\nlam lam1 lam2 [meV]\n      3.71952600       1.23984200       2.47968400\n"
            "# reorganization energies: lam lam1 lam2 [meV]\n");
}

// ---- failure to open -----------------------------------------------------------

TEST(CheckerScriptFatal, MissingScrDirectoryIsFatalWithMinusOne) {
  txtest::TempDir dir;
  struct Case {
    void (Transport::*write)();
    const char* path;
  };
  const Case cases[] = {
      {&Transport::write_gaussian_log_check_py_file, "scr/gaussian_log_check.py"},
      {&Transport::write_orca_out_check_py_file, "scr/orca_out_check.py"},
      {&Transport::write_qchem_out_check_py_file, "scr/qchem_out_check.py"},
      {&Transport::write_bdf_out_check_py_file, "scr/bdf_out_check.py"},
      {&Transport::write_qchem_fchk_ext_lowercase_py_file, "scr/qchem_fchk_ext_lowercase.py"},
      {&Transport::write_gaussian_ext_out_to_log_py_file, "scr/gau_ext_out_to_log.py"},
      {&Transport::write_gaussian_ext_fch_to_fchk_py_file, "scr/gau_ext_fch_to_fchk.py"},
  };
  for (const Case& c : cases) {
    txtest::RunResult r = txtest::run_forked([&c] {
      Transport t;
      (t.*c.write)();
    });
    EXPECT_EQ(r.status, 255) << c.path;
    EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n") << c.path;
    EXPECT_EQ(r.err, std::string("Failed to open output file ") + c.path + "\n");
    EXPECT_FALSE(exists(c.path));
  }
}

// ---- behaviour of the end tests -------------------------------------------------

namespace {

struct Verdict {
  int status;
  std::string out;
  std::string err;
  bool ok;     // <output>.ok exists afterwards
  bool error;  // <output>.error exists afterwards
};

// A run directory with the four end tests in scr.
class EndTest : public ::testing::Test {
 protected:
  void SetUp() override { write_checkers(); }

  // Runs scr/<script> on `output`, which holds `content` (no file for null), after
  // leaving the given stale verdicts of an earlier run beside it.
  Verdict check(const char* script, const std::string& output, const char* content, bool stale_ok = false,
                bool stale_error = false) {
    txtest::run_command("rm -f '" + output + "'");
    if (content != nullptr) txtest::write_file(output, content);
    if (stale_ok) txtest::write_file(output + ".ok", "");
    if (stale_error) txtest::write_file(output + ".error", "");
    txtest::RunResult r = python(std::string("scr/") + script + " " + output);
    return {r.status, r.out, r.err, exists(output + ".ok"), exists(output + ".error")};
  }

  RunDir run;
};

}  // namespace

TEST_F(EndTest, GaussianEmptyOutputFailsInPythonAndLeavesNoVerdict) {
  Verdict v = check("gaussian_log_check.py", "mol.log", "");
  EXPECT_NE(v.status, 0);
  EXPECT_NE(v.err.find("NameError"), std::string::npos) << v.err;
  EXPECT_NE(v.err.find("last = line"), std::string::npos) << v.err;
  EXPECT_FALSE(v.ok);
  EXPECT_FALSE(v.error);
}

TEST_F(EndTest, GaussianNormalTerminationOnTheLastLineGivesOkAndStatusZero) {
  Verdict v = check("gaussian_log_check.py", "mol.log",
                    " SCF Done\n Normal termination of Gaussian 16 at Mon Jan  2 10:00:00 2023.\n");
  EXPECT_EQ(v.status, 0);
  EXPECT_EQ(v.out, "");
  EXPECT_TRUE(v.ok);
  EXPECT_FALSE(v.error);
}

TEST_F(EndTest, GaussianLastLineWithoutNewlineStillCounts) {
  Verdict v = check("gaussian_log_check.py", "mol.log", " Normal termination of Gaussian 16");
  EXPECT_EQ(v.status, 0);
  EXPECT_TRUE(v.ok);
}

TEST_F(EndTest, GaussianNormalTerminationBeforeTheLastLineIsAnAbnormalEnd) {
  Verdict v = check("gaussian_log_check.py", "mol.log", " Normal termination of Gaussian 16\n Error termination\n");
  EXPECT_EQ(v.status, 1);
  EXPECT_EQ(v.out, "\nAbnormal termination of Gaussian with 'mol.log'!\n\n");
  EXPECT_FALSE(v.ok);
  EXPECT_TRUE(v.error);
}

TEST_F(EndTest, GaussianTextWithoutTheLeadingBlankIsNotANormalEnd) {
  Verdict v = check("gaussian_log_check.py", "mol.log", "Normal termination of Gaussian 16\n");
  EXPECT_EQ(v.status, 1);
  EXPECT_TRUE(v.error);
}

TEST_F(EndTest, MissingOutputGivesStatusOneAndNoVerdict) {
  for (const char* script : {"gaussian_log_check.py", "orca_out_check.py", "qchem_out_check.py", "bdf_out_check.py"}) {
    Verdict v = check(script, "absent.out", nullptr);
    EXPECT_EQ(v.status, 1) << script;
    EXPECT_EQ(v.out, "") << script;
    EXPECT_FALSE(v.ok) << script;
    EXPECT_FALSE(v.error) << script;
  }
}

TEST_F(EndTest, NoArgumentGivesStatusOne) {
  for (const char* script : {"gaussian_log_check.py", "orca_out_check.py", "qchem_out_check.py", "bdf_out_check.py"}) {
    txtest::RunResult r = python(std::string("scr/") + script);
    EXPECT_EQ(r.status, 1) << script;
    EXPECT_EQ(r.err, "") << script;
  }
}

TEST_F(EndTest, GaussianFinishedOutputSkipsARerunEvenWhenTheInputChanged) {
  // The skip test of a Gaussian job body: the verdict looks at the output alone.
  txtest::write_file("mol.com", "#P b3lyp/6-31g(d)\n");
  txtest::write_file("mol.log", " Normal termination of Gaussian 16\n");
  const std::string body =
      "python3 scr/gaussian_log_check.py mol.log\n"
      "if [ -f mol.log.ok ]; then\n"
      "    echo skip\n"
      "    rm -f mol.log.ok\n"
      "else\n"
      "    echo run\n"
      "fi\n";
  EXPECT_EQ(txtest::run_command(body).out, "skip\n");
  txtest::write_file("mol.com", "#P pbe0/def2svp\n");
  EXPECT_EQ(txtest::run_command(body).out, "skip\n");
  EXPECT_FALSE(exists("mol.log.ok"));
}

TEST_F(EndTest, OrcaOutputOfOneLineFailsInPythonAtTheSecondLastLine) {
  Verdict v = check("orca_out_check.py", "mol.out", "                             ****ORCA TERMINATED NORMALLY****\n");
  EXPECT_NE(v.status, 0);
  EXPECT_NE(v.err.find("IndexError"), std::string::npos) << v.err;
  EXPECT_NE(v.err.find("lines[-2]"), std::string::npos) << v.err;
  EXPECT_FALSE(v.ok);
  EXPECT_FALSE(v.error);
}

TEST_F(EndTest, OrcaBannerOnTheLineBeforeTheLastGivesOk) {
  Verdict v = check("orca_out_check.py", "mol.out",
                    "...\n                             ****ORCA TERMINATED NORMALLY****\n"
                    "TOTAL RUN TIME: 0 days 0 hours 1 minutes 2 seconds 3 msec\n");
  EXPECT_EQ(v.status, 0);
  EXPECT_TRUE(v.ok);
  EXPECT_FALSE(v.error);
}

TEST_F(EndTest, OrcaBannerOnTheLastLineIsAnAbnormalEnd) {
  Verdict v = check("orca_out_check.py", "mol.out", "first\nsecond\n****ORCA TERMINATED NORMALLY****\n");
  EXPECT_EQ(v.status, 1);
  EXPECT_EQ(v.out, "Abnormal termination of ORCA with mol.out!\n");
  EXPECT_TRUE(v.error);
  EXPECT_FALSE(v.ok);
}

TEST_F(EndTest, QchemGreetingAnywhereInTheOutputGivesOk) {
  Verdict v = check("qchem_out_check.py", "mol.out",
                    " *  Thank you very much for using Q-Chem.  Have a nice day.  *\n more lines\n\n");
  EXPECT_EQ(v.status, 0);
  EXPECT_TRUE(v.ok);
}

TEST_F(EndTest, QchemOutputWithoutTheGreetingIsAnAbnormalEnd) {
  Verdict v = check("qchem_out_check.py", "mol.out", " Have a nice day\n");  // no full stop
  EXPECT_EQ(v.status, 1);
  EXPECT_EQ(v.out, "Abnormal termination of Q-Chem with mol.out!\n");
  EXPECT_TRUE(v.error);
}

TEST_F(EndTest, BdfClosingTextAnywhereInTheOutputGivesOk) {
  Verdict v =
      check("bdf_out_check.py", "mol.out", "head\n Normal termination. Thank you very much for using BDF.\n x\n");
  EXPECT_EQ(v.status, 0);
  EXPECT_TRUE(v.ok);
}

TEST_F(EndTest, BdfOutputWithoutTheClosingTextIsAnAbnormalEnd) {
  Verdict v = check("bdf_out_check.py", "mol.out", "Normal termination.\n");
  EXPECT_EQ(v.status, 1);
  EXPECT_EQ(v.out, "Abnormal termination of BDF with mol.out!\n");
  EXPECT_TRUE(v.error);
}

TEST_F(EndTest, StaleOkOfAnEarlierRunIsGoneWhateverTheNewVerdict) {
  struct Case {
    const char* script;
    const char* output;
  };
  // An abnormal end, a Python failure and a missing output: none leaves the old .ok.
  const Case cases[] = {{"gaussian_log_check.py", "abnormal\n"}, {"gaussian_log_check.py", ""},
                        {"gaussian_log_check.py", nullptr},      {"orca_out_check.py", "abnormal\nend\n"},
                        {"orca_out_check.py", "one\n"},          {"orca_out_check.py", nullptr},
                        {"qchem_out_check.py", "abnormal\n"},    {"qchem_out_check.py", nullptr},
                        {"bdf_out_check.py", "abnormal\n"},      {"bdf_out_check.py", nullptr}};
  for (const Case& c : cases) {
    Verdict v = check(c.script, "x.out", c.output, true, true);
    EXPECT_FALSE(v.ok) << c.script << " " << (c.output ? c.output : "(missing)");
    if (!c.output) {
      EXPECT_FALSE(v.error) << c.script;
    }
  }
}

TEST_F(EndTest, StaleErrorIsGoneAfterANormalEnd) {
  Verdict v = check("gaussian_log_check.py", "x.log", " Normal termination of Gaussian\n", false, true);
  EXPECT_EQ(v.status, 0);
  EXPECT_FALSE(v.error);
  EXPECT_TRUE(v.ok);
}

// ---- extension scripts -----------------------------------------------------------

TEST(ExtensionScripts, RenameMatchingFilesAndReplaceAnExistingTarget) {
  RunDir run;
  Transport t;
  t.write_qchem_fchk_ext_lowercase_py_file();
  t.write_gaussian_ext_out_to_log_py_file();
  t.write_gaussian_ext_fch_to_fchk_py_file();
  txtest::run_command("mkdir HL");
  txtest::write_file("HL/a.FChk", "new a");
  txtest::write_file("HL/a.fchk", "old a");
  txtest::write_file("HL/b.x.FChk", "b");
  txtest::write_file("HL/c.FCHK", "c");
  EXPECT_EQ(python("scr/qchem_fchk_ext_lowercase.py HL").status, 0);
  EXPECT_EQ(txtest::read_file("HL/a.fchk"), "new a");
  EXPECT_FALSE(exists("HL/a.FChk"));
  EXPECT_EQ(txtest::read_file("HL/b.x.fchk"), "b");
  EXPECT_TRUE(exists("HL/c.FCHK"));

  txtest::write_file("HL/m.out", "m");
  txtest::write_file("HL/m.fch", "f");
  EXPECT_EQ(python("scr/gau_ext_out_to_log.py HL").status, 0);
  EXPECT_EQ(python("scr/gau_ext_fch_to_fchk.py HL").status, 0);
  EXPECT_EQ(txtest::read_file("HL/m.log"), "m");
  EXPECT_EQ(txtest::read_file("HL/m.fchk"), "f");
  EXPECT_FALSE(exists("HL/m.out"));
  EXPECT_FALSE(exists("HL/m.fch"));
  EXPECT_EQ(txtest::read_file("HL/a.fchk"), "new a");  // .fchk does not end in .fch
}

TEST(ExtensionScripts, MissingDirectoryArgumentFailsInPython) {
  RunDir run;
  Transport().write_gaussian_ext_out_to_log_py_file();
  txtest::RunResult r = python("scr/gau_ext_out_to_log.py");
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.err.find("IndexError"), std::string::npos) << r.err;
}
