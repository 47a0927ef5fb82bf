// A real client reads what the writers write: Open Babel (obabel) takes our
// XYZ, molfile, PDB and CIF output of the benzene crystal (COD 2100348, four
// molecules in the cell: 48 atoms, C24H24) and finds the right atom count and
// formula, for the whole cell and for one molecule (12 atoms, C6H6).
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

struct Census {
  int atoms = -1;
  std::string formula;
};

bool obabel_on_path() { return txtest::run_command("command -v obabel").status == 0; }

// "title atoms formula" from obabel's txt output; the title may hold blanks, so
// the two numbers are the last two words of the one line.
Census read_with_obabel(const std::string& format, const std::string& path) {
  const txtest::RunResult r =
      txtest::run_command("obabel -i" + format + " '" + path + "' -otxt --append 'atoms formula'");
  Census c;
  std::istringstream lines(r.out);
  std::string line;
  int count = 0;
  std::string last;
  while (std::getline(lines, line))
    if (!line.empty()) {
      ++count;
      last = line;
    }
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(count, 1) << "obabel should see one structure in " << path << ":\n" << r.out << r.err;
  std::istringstream words(last);
  std::vector<std::string> w;
  for (std::string word; words >> word;) w.push_back(word);
  if (w.size() >= 2) {
    c.atoms = std::stoi(w[w.size() - 2]);
    c.formula = w.back();
  }
  return c;
}

class OpenBabelReadsOurFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(obabel_on_path()) << "obabel (Open Babel) is not on PATH; scripts/setup.sh installs it "
                                     "(Debian package openbabel). These tests check that a real client reads "
                                     "the structure files we write.";
    const std::string input = txtest::data_path("cif/benzene_COD2100348_blankline.cif");
    io.read_data_cif(input.c_str(), false);
    io.mol_input_mode = 2;
    io.read_crystal_strcuture_files(false, false);
    ASSERT_EQ(io.cif_natoms, 48);
    ASSERT_EQ(io.nmols_uc, 4);
  }

  txtest::TempDir dir;
  FileIO io;
};

TEST_F(OpenBabelReadsOurFiles, XyzOfTheCell) {
  io.write_data_xyz("cell.xyz");
  const Census c = read_with_obabel("xyz", "cell.xyz");
  EXPECT_EQ(c.atoms, 48);
  EXPECT_EQ(c.formula, "C24H24");
}

TEST_F(OpenBabelReadsOurFiles, XyzOfOneMolecule) {
  txtest::capture_stdout([&] { io.write_cif2xyz(txtest::data_path("cif/benzene_COD2100348_blankline.cif").c_str(),
                                                "benzene-%d.xyz", false, false); });
  const Census c = read_with_obabel("xyz", "benzene-1.xyz");
  EXPECT_EQ(c.atoms, 12);
  EXPECT_EQ(c.formula, "C6H6");
}

TEST_F(OpenBabelReadsOurFiles, MolfileOfTheCell) {
  io.write_data_mol("cell.mol");
  const Census c = read_with_obabel("mol", "cell.mol");
  EXPECT_EQ(c.atoms, 48);
  EXPECT_EQ(c.formula, "C24H24");
}

TEST_F(OpenBabelReadsOurFiles, MolfileOfEachMolecule) {
  io.write_mol_files("benzene");
  for (int i = 1; i <= 4; ++i) {
    const Census c = read_with_obabel("mol", "benzene-" + std::to_string(i) + ".mol");
    EXPECT_EQ(c.atoms, 12) << "molecule " << i;
    EXPECT_EQ(c.formula, "C6H6") << "molecule " << i;
  }
}

TEST_F(OpenBabelReadsOurFiles, PdbOfTheCell) {
  FileIO fresh;
  fresh.write_cif2pdb(txtest::data_path("cif/benzene_COD2100348_blankline.cif").c_str(), "cell.pdb", false, false);
  const Census c = read_with_obabel("pdb", "cell.pdb");
  EXPECT_EQ(c.atoms, 48);
  EXPECT_EQ(c.formula, "C24H24");
}

TEST_F(OpenBabelReadsOurFiles, PdbOfTheSupercell) {
  io.write_supercell_pdb("super.pdb", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 1);
  const Census c = read_with_obabel("pdb", "super.pdb");
  EXPECT_EQ(c.atoms, 96);
  EXPECT_EQ(c.formula, "C48H48");
}

TEST_F(OpenBabelReadsOurFiles, CifOfTheCrystalAtoms) {
  io.write_data_cif("cell.cif", true);
  const Census c = read_with_obabel("cif", "cell.cif");
  EXPECT_EQ(c.atoms, 48);
  EXPECT_EQ(c.formula, "C24H24");
}

TEST_F(OpenBabelReadsOurFiles, CifOfTheUnitCellMolecules) {
  io.write_unitcell_cif("unitcell.cif", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s);
  const Census c = read_with_obabel("cif", "unitcell.cif");
  EXPECT_EQ(c.atoms, 48);
  EXPECT_EQ(c.formula, "C24H24");
}

}  // namespace
