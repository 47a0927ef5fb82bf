// The relaxation and frequency inputs of the four engines, written through the RE
// operations on a hand-built cell and compared byte for byte with hand-written files,
// and the low-level writers' own edges.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "re_test_support.h"

namespace {

using retest::expect_golden;

using retest::Family;
using retest::kFamilies;
using retest::set_cell;

const char* const kPrefix[5] = {"", "gaussian", "orca", "qchem", "bdf"};  // of the expected files

std::string written(const char* state, int mol, const char* ext) {
  return "RE/re-mol" + std::to_string(mol) + "-" + state + "." + ext;
}

std::string expected(const Family& c, int mol, const char* state, const char* suffix = "") {
  return std::string("inputs/") + kPrefix[c.engine] + "-mol" + std::to_string(mol) + "-" + state + suffix + "." + c.ext;
}

// Every family in its plain and its unique form (with every molecule a representative).
template <typename F>
void for_each_run(F check) {
  for (const Family& c : kFamilies) {
    for (bool unique : {false, true}) {
      SCOPED_TRACE(std::string(kPrefix[c.engine]) + (unique ? " unique" : " plain"));
      txtest::TempDir dir;
      Transport t;
      set_cell(t, c.engine);
      retest::set_re_list(t, {1, 2});
      check(t, c, [&] { (t.*(unique ? c.unique : c.plain))(); });
    }
  }
}

TEST(ReInputs, EveryEngineWritesNeutralCationAndAnionInputsAsWorkedOutByHand) {
  for_each_run([](Transport&, const Family& c, auto write) {
    write();
    for (const char* state : {"neutral", "cation", "anion"})
      expect_golden(written(state, 1, c.ext), expected(c, 1, state));
    expect_golden(written("neutral", 2, c.ext), expected(c, 2, "neutral"));
  });
}

TEST(ReInputs, NeutralCheckpointLeavesChargedGaussianInputsWithoutCoordinatesOrAppendText) {
  for_each_run([](Transport& t, const Family& c, auto write) {
    if (c.engine != 1) return;
    t.RE_use_neutral_chk = true;
    write();
    expect_golden(written("neutral", 1, "com"), expected(c, 1, "neutral"));
    for (const char* state : {"cation", "anion"}) {
      expect_golden(written(state, 1, "com"), expected(c, 1, state, "-chk"));
      const std::string text = txtest::read_file(written(state, 2, "com"));
      EXPECT_EQ(text.find("extra-append"), std::string::npos) << text;
      EXPECT_EQ(text.find("2.5000"), std::string::npos) << text;
      EXPECT_NE(text.find("Geom=Check Guess=Read\n\nmol2\n\n"), std::string::npos) << text;
    }
  });
}

// The flag is reset for the other engines after reading; their writers have no
// checkpoint form, so even a flag left on changes nothing.
TEST(ReInputs, OtherEnginesWriteCoordinatesWhateverTheNeutralCheckpointFlag) {
  for_each_run([](Transport& t, const Family& c, auto write) {
    if (c.engine == 1) return;
    t.RE_use_neutral_chk = true;
    write();
    for (const char* state : {"cation", "anion"}) expect_golden(written(state, 1, c.ext), expected(c, 1, state));
  });
}

// ---- the low-level writers ----------------------------------------------------

int co_types[2] = {6, 8};
double co_x[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 1.125};

TEST(ReInputs, GaussianInputWithEmptyAppendTextEndsWithTheBlankBehindTheAtoms) {
  txtest::TempDir dir;
  FileIO io;
  io.write_gau_mol_com_RE("x.com", 2, co_types, co_x, "mol1", "re-mol1-neutral", "0 1", "hf/sto-3g", 100, 1, 2, "",
                          false);
  EXPECT_EQ(txtest::read_file("x.com"),
            "%mem=100MB\n%nprocs=2\n%chk=re-mol1-neutral.chk\n#P opt freq hf/sto-3g Pop=full nosymm\n"
            "scf=(maxcycle=100,xqc)\n\nmol1\n\n0 1\n"
            "C     0.0000    0.0000    0.0000\nO     0.0000    0.0000    1.1250\n\n");
}

TEST(ReInputs, GaussianInputTakesAppendTextExactlyAsGiven) {
  txtest::TempDir dir;
  FileIO io;
  io.write_gau_mol_com_RE("x.com", 0, nullptr, nullptr, "t", "c", "0 1", "hf", 1, 1, 1, "a\n\nb", false);
  const std::string text = txtest::read_file("x.com");
  EXPECT_TRUE(retest::ends_with(text, "\n0 1\n\na\n\nb")) << text;
}

TEST(ReInputs, NodesArgumentDoesNotReachTheGaussianInput) {
  txtest::TempDir dir;
  FileIO io;
  io.write_gau_mol_com_RE("a.com", 2, co_types, co_x, "mol1", "c", "0 1", "hf", 100, 1, 2, "", false);
  io.write_gau_mol_com_RE("b.com", 2, co_types, co_x, "mol1", "c", "0 1", "hf", 100, 7, 2, "", false);
  EXPECT_EQ(txtest::read_file("a.com"), txtest::read_file("b.com"));
}

TEST(ReInputs, BdfChargeAndMultiplicityAreIntegers) {
  txtest::TempDir dir;
  FileIO io;
  io.write_bdf_mol_inp_RE("x.inp", 2, co_types, co_x, 100, 2, -3, 4, "pbe0", "cc-pvdz", "");
  const std::string text = txtest::read_file("x.inp");
  EXPECT_NE(text.find("$scf\nUKS\nCharge\n  -3\nSpinMulti\n  4\nDFT\n  pbe0\n"), std::string::npos) << text;
  EXPECT_TRUE(retest::ends_with(text, "\n$resp\nGeom\n$end\n\n")) << text;
}

TEST(ReInputs, QchemInputIgnoresMemoryAndProcessCount) {
  txtest::TempDir dir;
  FileIO io;
  io.write_qchem_mol_inp_RE("a.inp", 2, co_types, co_x, 100, 2, "0 1", "b3lyp", "sto-3g", "");
  io.write_qchem_mol_inp_RE("b.inp", 2, co_types, co_x, 900, 9, "0 1", "b3lyp", "sto-3g", "");
  EXPECT_EQ(txtest::read_file("a.inp"), txtest::read_file("b.inp"));
}

// Each writer on a path whose directory does not exist.
TEST(ReInputs, InputThatCannotBeOpenedIsFatalWithStatusMinusOne) {
  txtest::TempDir dir;
  const std::string path = dir.file("missing/x.inp");
  const std::function<void(FileIO&)> writers[] = {
      [&](FileIO& io) {
        io.write_gau_mol_com_RE(path.c_str(), 2, co_types, co_x, "t", "c", "0 1", "hf", 1, 1, 1, "", false);
      },
      [&](FileIO& io) { io.write_orca_mol_inp_RE(path.c_str(), 2, co_types, co_x, 1, 1, "0 1", "m", "b", ""); },
      [&](FileIO& io) { io.write_qchem_mol_inp_RE(path.c_str(), 2, co_types, co_x, 1, 1, "0 1", "m", "b", ""); },
      [&](FileIO& io) { io.write_bdf_mol_inp_RE(path.c_str(), 2, co_types, co_x, 1, 1, 0, 1, "m", "b", ""); },
  };
  for (const auto& write : writers) {
    const txtest::RunResult r = txtest::run_forked([&] {
      FileIO io;
      write(io);
    });
    retest::expect_fatal(r, 255, "fileio", "Failed to open output file " + path + "\n");
  }
}

}  // namespace
