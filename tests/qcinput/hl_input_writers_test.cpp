// The four low-level HOMO/LUMO input writers of FileIO called directly: heads
// without atoms, the end of an input without append text, the ORCA output
// block, the arguments an input does not carry, and the failure to open.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "fileio.h"
#include "test_support.h"

namespace {

using txtest::read_file;

// Hydrogen fluoride with exact binary coordinates (angstrom).
const int hf_types[2] = {1, 9};
const double hf_x[6] = {0.0, 0.0, -0.5, 0.0, 0.0, 0.4375};

bool ends_with(const std::string& text, const std::string& tail) {
  return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

TEST(HLInputWriters, GaussianWithoutAtomsStillWritesHeadBlankAndAppend) {
  txtest::TempDir dir;
  FileIO io;
  const std::string expected =
      "%chk=none.chk\n"
      "%mem=100MB\n"
      "%nprocs=2\n"
      "#P hf/sto-3g IOp(3/33=1,5/33=2) Pop=full nosymm\n"
      "\n"
      "empty\n"
      "\n"
      "0 1\n"
      "\n"
      "tail line\n";
  io.write_gau_mol_com_HL("zero.com", 0, nullptr, nullptr, "empty", "none", "hf/sto-3g", 100, 1, 2, "tail line\n");
  EXPECT_EQ(read_file("zero.com"), expected);
  io.write_gau_mol_com_HL("negative.com", -3, nullptr, nullptr, "empty", "none", "hf/sto-3g", 100, 1, 2,
                          "tail line\n");
  EXPECT_EQ(read_file("negative.com"), expected);
}

TEST(HLInputWriters, GaussianWithEmptyAppendEndsWithTheBlankLineBehindTheAtoms) {
  txtest::TempDir dir;
  FileIO io;
  io.write_gau_mol_com_HL("hf.com", 2, hf_types, hf_x, "hf", "hf", "b3lyp/6-31g(d)", 1000, 1, 8, "");
  EXPECT_EQ(read_file("hf.com"),
            "%chk=hf.chk\n"
            "%mem=1000MB\n"
            "%nprocs=8\n"
            "#P b3lyp/6-31g(d) IOp(3/33=1,5/33=2) Pop=full nosymm\n"
            "\n"
            "hf\n"
            "\n"
            "0 1\n"
            "H     0.0000    0.0000   -0.5000\n"
            "F     0.0000    0.0000    0.4375\n"
            "\n");
}

// Without append text each engine's input ends with its own last fixed line.
TEST(HLInputWriters, OtherEnginesWithEmptyAppendEndWithTheirLastFixedLine) {
  txtest::TempDir dir;
  FileIO io;
  io.write_orca_mol_inp_HL("o.inp", 2, hf_types, hf_x, 1000, 8, "B3LYP", "def2-SVP", "");
  io.write_qchem_mol_inp_HL("q.inp", 2, hf_types, hf_x, 1000, 8, "B3LYP", "def2-SVP", "");
  io.write_bdf_mol_inp_HL("b.inp", 2, hf_types, hf_x, 1000, 8, "B3LYP", "def2-SVP", "");
  const std::string o = read_file("o.inp");
  const std::string q = read_file("q.inp");
  const std::string b = read_file("b.inp");
  EXPECT_TRUE(ends_with(o, "\nF     0.0000    0.0000    0.4375\n*\n")) << o;
  EXPECT_TRUE(ends_with(q, "\nsym_ignore      true\n$end\n\n")) << q;
  EXPECT_TRUE(ends_with(b, "\noutaooverlap\n$end\n\n")) << b;
}

TEST(HLInputWriters, AppendTextIsWrittenExactlyAsGiven) {
  txtest::TempDir dir;
  FileIO io;
  io.write_qchem_mol_inp_HL("q.inp", 2, hf_types, hf_x, 1000, 8, "B3LYP", "def2-SVP", "$pcm\n  theory cpcm\n$end");
  const std::string q = read_file("q.inp");
  EXPECT_TRUE(ends_with(q, "\nsym_ignore      true\n$end\n\n$pcm\n  theory cpcm\n$end")) << q;
}

TEST(HLInputWriters, OrcaOutputBlockDefaultsToTheSevenPrintLines) {
  FileIO io;
  EXPECT_EQ(io.orca_inp_extra,
            "%output\n"
            "  PrintLevel=Normal\n"
            "  Print[ P_Basis       ] 2\n"
            "  Print[ P_Overlap     ] 1\n"
            "  Print[ P_OrbEn       ] 1\n"
            "  Print[ P_MOs         ] 1\n"
            "end");
}

TEST(HLInputWriters, OrcaWritesItsOutputBlockAndOneNewlineBeforeTheAtoms) {
  txtest::TempDir dir;
  FileIO io;
  io.orca_inp_extra = "%scf\n  MaxIter 300\nend";
  io.write_orca_mol_inp_HL("o.inp", 2, hf_types, hf_x, 3000, 16, "PBE0", "def2-TZVP", "%tail\n");
  EXPECT_EQ(read_file("o.inp"),
            "! SP PBE0 def2-TZVP NoUseSym\n"
            "\n"
            "%MaxCore 3000\n"
            "%PAL NPROCS 16 END\n"
            "\n"
            "%scf\n"
            "  MaxIter 300\n"
            "end\n"
            "*xyz 0 1\n"
            "H     0.0000    0.0000   -0.5000\n"
            "F     0.0000    0.0000    0.4375\n"
            "*\n"
            "%tail\n");
}

// Gaussian's nodes, and Q-Chem's and BDF's memory and processes, are carried
// without a place in the input: the job script sets them.
TEST(HLInputWriters, ArgumentsWithoutAPlaceInTheInputChangeNothing) {
  txtest::TempDir dir;
  FileIO io;
  io.write_gau_mol_com_HL("g1.com", 2, hf_types, hf_x, "t", "c", "hf/sto-3g", 100, 1, 2, "");
  io.write_gau_mol_com_HL("g2.com", 2, hf_types, hf_x, "t", "c", "hf/sto-3g", 100, 64, 2, "");
  EXPECT_EQ(read_file("g1.com"), read_file("g2.com"));
  io.write_qchem_mol_inp_HL("q1.inp", 2, hf_types, hf_x, 100, 2, "HF", "STO-3G", "");
  io.write_qchem_mol_inp_HL("q2.inp", 2, hf_types, hf_x, 9000, 32, "HF", "STO-3G", "");
  EXPECT_EQ(read_file("q1.inp"), read_file("q2.inp"));
  io.write_bdf_mol_inp_HL("b1.inp", 2, hf_types, hf_x, 100, 2, "HF", "STO-3G", "");
  io.write_bdf_mol_inp_HL("b2.inp", 2, hf_types, hf_x, 9000, 32, "HF", "STO-3G", "");
  EXPECT_EQ(read_file("b1.inp"), read_file("b2.inp"));
}

// Symbols lose their padding blank; BDF writes eight decimals in 13 columns.
TEST(HLInputWriters, TwoLetterSymbolsAndBdfPrecision) {
  txtest::TempDir dir;
  FileIO io;
  const int types[1] = {17};
  const double x[3] = {-10.0625, 3.0, 123.125};
  io.write_qchem_mol_inp_HL("cl.inp", 1, types, x, 100, 1, "HF", "STO-3G", "");
  io.write_bdf_mol_inp_HL("cl_bdf.inp", 1, types, x, 100, 1, "HF", "STO-3G", "");
  EXPECT_NE(read_file("cl.inp").find("\n0 1\nCl  -10.0625    3.0000  123.1250\n$end\n"), std::string::npos);
  EXPECT_NE(read_file("cl_bdf.inp").find("\nGeometry\nCl  -10.06250000    3.00000000  123.12500000\nEnd Geometry\n"),
            std::string::npos);
}

// Each writer ends the run when its file cannot be opened, naming the path.
TEST(HLInputWriters, InputThatCannotBeOpenedIsFatalWithStatusMinusOne) {
  txtest::TempDir dir;
  const std::string path = dir.file("missing/x.inp");
  const auto expect_fatal = [&](const std::function<void(FileIO&)>& write) {
    const txtest::RunResult r = txtest::run_forked([&] {
      FileIO io;
      write(io);
    });
    EXPECT_EQ(r.status, 255);
    EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : fileio : line # : \n");
    EXPECT_EQ(r.err, "Failed to open output file " + path + "\n");
  };
  const char* p = path.c_str();
  expect_fatal([&](FileIO& io) { io.write_gau_mol_com_HL(p, 2, hf_types, hf_x, "t", "c", "hf", 1, 1, 1, ""); });
  expect_fatal([&](FileIO& io) { io.write_orca_mol_inp_HL(p, 2, hf_types, hf_x, 1, 1, "HF", "STO-3G", ""); });
  expect_fatal([&](FileIO& io) { io.write_qchem_mol_inp_HL(p, 2, hf_types, hf_x, 1, 1, "HF", "STO-3G", ""); });
  expect_fatal([&](FileIO& io) { io.write_bdf_mol_inp_HL(p, 2, hf_types, hf_x, 1, 1, "HF", "STO-3G", ""); });
}

}  // namespace
