// The CIF reader: the line scan with its tags, the three kinds of loop and
// their ends, the finishing steps, the fatal reports, and the warnings for
// files this reader misreads. Expected values are worked out by hand from the
// reader's rules and the small files written for these tests.
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

using txtest::data_path;
using txtest::mask_line_numbers;
using txtest::run_forked;
using txtest::RunResult;
using txtest::TempDir;
using txtest::write_file;

const std::string kHead = "\nERROR  transport : fileio : line # : \n";

const std::string kCell10 =
    "_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\n"
    "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n";

const std::string kAtomHeader =
    "loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n";

const std::string kP1 = "_symmetry_space_group_name_H-M 'P 1'\n";

// 1-based number of the nth line of `text` that equals `line`.
int line_of(const std::string& text, const std::string& line, int nth = 1) {
  std::istringstream in(text);
  std::string s;
  int number = 0;
  while (std::getline(in, s)) {
    ++number;
    if (s == line && --nth == 0) return number;
  }
  return -1;
}

struct Read {
  std::unique_ptr<FileIO> io = std::make_unique<FileIO>();
  std::string out;
  std::string err;
};

Read read_path(const std::string& path, bool verbose = false) {
  Read r;
  testing::internal::CaptureStderr();
  r.out = txtest::capture_stdout([&] { r.io->read_data_cif(path.c_str(), verbose); });
  std::fflush(stderr);
  r.err = testing::internal::GetCapturedStderr();
  return r;
}

// Writes `text` as t.cif in the current (temporary) directory and reads it.
Read read_text(const std::string& text, bool verbose = false) {
  write_file("t.cif", text);
  return read_path("t.cif", verbose);
}

RunResult read_text_forked(const std::string& text, bool verbose = false) {
  write_file("t.cif", text);
  return run_forked([verbose] {
    FileIO io;
    io.read_data_cif("t.cif", verbose);
  });
}

std::string not_enough_columns(const std::string& row) {
  return kHead + "Not enough columns: " + row + "\nAt least 5 columns are expected!\n";
}

std::string loop_warning(int line) {
  return "WARNING: t.cif line " + std::to_string(line) +
         ": 'loop_' read as a symmetry operator; end the symmetry table with a blank line\n";
}

std::string no_atoms_warning(int line) {
  return "WARNING: t.cif line " + std::to_string(line) +
         ": no atoms were read; the file needs one loop with _atom_site_label, _atom_site_type_symbol, "
         "_atom_site_fract_x, _atom_site_fract_y and _atom_site_fract_z\n";
}

std::string no_operator_warning(int line) {
  return "WARNING: t.cif line " + std::to_string(line) +
         ": no symmetry operator was read, so the expansion leaves no atoms; list the operators in a "
         "_symmetry_equiv_pos_as_xyz loop, or name the space group P1\n";
}

// Two atoms 4 angstrom apart in a P1 cube of 10 angstrom.
const std::string kTwoAtomsP1 = "data_two\n" + kP1 + kCell10 + kAtomHeader + "C1 C 0.1 0.1 0.1\nC2 C 0.5 0.1 0.1\n";

}  // namespace

// ---- tags of the main scan -------------------------------------------------------------

TEST(CifReaderTags, CellLengthWithUncertaintyGivesTheNumberBeforeTheBracket) {
  TempDir dir;
  const Read r = read_text("_cell_length_a 5.1234(5)\n_cell_angle_beta  98.39(2)\n");
  EXPECT_EQ(r.io->cell_latt[0], 5.1234);
  EXPECT_EQ(r.io->cell_latt[4], 98.39);
}

TEST(CifReaderTags, TabBetweenTagAndValueGivesZero) {
  TempDir dir;
  const Read r = read_text("_cell_length_b\t7.5\n_cell_length_c 7.5\n");
  EXPECT_EQ(r.io->cell_latt[1], 0.0);
  EXPECT_EQ(r.io->cell_latt[2], 7.5);
}

TEST(CifReaderTags, TwoDataLinesTheLaterNamesTheStructure) {
  TempDir dir;
  const Read r = read_text("data_first\n" + kCell10 + "data_second\n");
  EXPECT_EQ(r.io->identifier, "second");
  EXPECT_STREQ(r.io->get_identifier(), "second");
}

TEST(CifReaderTags, DataPrefixIgnoresCase) {
  TempDir dir;
  EXPECT_EQ(read_text("DATA_Upper\n").io->identifier, "Upper");
}

TEST(CifReaderTags, ChemicalNameLosesQuotesAndNamesAnUnnamedStructure) {
  TempDir dir;
  Read r = read_text("data_\n_chemical_name_common '  benzene '\n");
  EXPECT_EQ(r.io->chemical_name, "benzene");
  EXPECT_EQ(r.io->identifier, "benzene");
  r = read_text("data_named\n_chemical_name_common \"benzene\"\n");
  EXPECT_EQ(r.io->chemical_name, "benzene");
  EXPECT_EQ(r.io->identifier, "named");
}

TEST(CifReaderTags, SpaceGroupNumberIsReadAndMinusOneWhenAbsent) {
  TempDir dir;
  EXPECT_EQ(read_text("_space_group_IT_number 14\n").io->spacegroup_number, 14);
  EXPECT_EQ(read_text(kCell10).io->spacegroup_number, -1);
}

TEST(CifReaderTags, LaterSpaceGroupNameOverwritesTheEarlierOne) {
  TempDir dir;
  const Read r = read_text("_symmetry_space_group_name_H-M 'P 1'\n_space_group_name_H-M_alt 'P 21/c'\n" + kCell10 +
                           "loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-x,-y,-z\n\n" + kAtomHeader +
                           "C1 C 0.1 0.2 0.3\n");
  // Not P1: expanded. The name is left trimmed by the expansion.
  EXPECT_EQ(r.io->spacegroup_name, "P21/c");
  EXPECT_EQ(r.io->cif_natoms, 2);
}

TEST(CifReaderTags, TagIsFoundWhereverItStandsInTheLine) {
  TempDir dir;
  EXPECT_EQ(read_text("my_cell_length_a_note 6.0\n").io->cell_latt[0], 6.0);
}

TEST(CifReaderTags, FirstMatchingTagEndsTheTestsOfALine) {
  TempDir dir;
  // Holds loop_ too, but the name test comes first: no loop is opened.
  const Read r = read_text("_chemical_name_common loop_ here\n_symmetry_equiv_pos_as_xyz\nx,y,z\n");
  EXPECT_EQ(r.io->chemical_name, "loop_ here");
  EXPECT_TRUE(r.io->symmetry_ops.empty());
}

TEST(CifReaderTags, CommentAndSemicolonLinesAreSkippedButTextFieldLinesAreScanned) {
  TempDir dir;
  const Read r = read_text("# _cell_length_a 99\n;_cell_length_c 99\n_cell_length_b 5\n;\n");
  EXPECT_EQ(r.io->cell_latt[0], 0.0);
  EXPECT_EQ(r.io->cell_latt[1], 5.0);
  EXPECT_EQ(r.io->cell_latt[2], 0.0);
}

TEST(CifReaderTags, CrystalFileAndReadFlagAreSet) {
  TempDir dir;
  const Read r = read_text(kCell10);
  EXPECT_EQ(r.io->crystal_file, "t.cif");
  EXPECT_EQ(r.io->structure_read, 1);
}

// ---- symmetry loop -----------------------------------------------------------------

TEST(CifReaderSymmetry, IdColumnTakesTheOperatorBehindTheFirstBlank) {
  TempDir dir;
  const Read r = read_text(
      "loop_\n_symmetry_equiv_pos_site_id\n_symmetry_equiv_pos_as_xyz\n1 'x, y, z'\n2 -x+1/2,-y,z\n\n");
  EXPECT_EQ(r.io->symmetry_ops, (std::vector<std::string>{"x,y,z", "-x+1/2,-y,z"}));
}

TEST(CifReaderSymmetry, RowWithoutBlankRepeatsTheLastOperatorWithAnIdColumn) {
  TempDir dir;
  const Read r = read_text("loop_\n_space_group_symop_id\n_space_group_symop_operation_xyz\n1 x,y,z\n-x,-y,-z\n\n");
  EXPECT_EQ(r.io->symmetry_ops, (std::vector<std::string>{"x,y,z", "x,y,z"}));
}

TEST(CifReaderSymmetry, WholeRowIsTheOperatorWithoutAnIdColumn) {
  TempDir dir;
  const Read r = read_text("loop_\n_space_group_symop_operation_xyz\n  ' -x , y+1/2 , -z '  \n\n");
  EXPECT_EQ(r.io->symmetry_ops, (std::vector<std::string>{"-x,y+1/2,-z"}));
}

TEST(CifReaderSymmetry, TagLineEndsTheTableAndIsReadAsATag) {
  TempDir dir;
  const Read r = read_text("loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n_cell_length_a 7\n-x,-y,-z\n");
  EXPECT_EQ(r.io->symmetry_ops, (std::vector<std::string>{"x,y,z"}));
  EXPECT_EQ(r.io->cell_latt[0], 7.0);
}

TEST(CifReaderSymmetry, LoopWithoutOperatorColumnSkipsItsFirstRow) {
  TempDir dir;
  // The first row is "loop_"; skipped, it opens nothing, so the atom rows pass unread.
  const Read r = read_text("loop_\n_symmetry_equiv_pos_site_id\n" + kAtomHeader + "C1 C 0.1 0.1 0.1\n");
  EXPECT_TRUE(r.io->symmetry_ops.empty());
  EXPECT_EQ(r.io->cif_natoms, 0);
}

TEST(CifReaderSymmetry, LoopLineRightAfterTheTableBecomesAnOperatorAndWarns) {
  TempDir dir;
  const std::string text = "data_lost\n" + kCell10 + "loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\nloop_\n" +
                           "_atom_site_aniso_label\n_atom_site_aniso_U_11\nC1 0.01\n\n" + kAtomHeader +
                           "C1 C 0.1 0.2 0.3\nC2 C 0.6 0.2 0.3\n";
  const Read r = read_text(text);
  EXPECT_EQ(r.io->symmetry_ops, (std::vector<std::string>{"x,y,z", "loop_"}));
  // "loop_" puts every copy on the origin, where the two of them overlap.
  ASSERT_EQ(r.io->cif_natoms, 3);
  EXPECT_EQ(r.io->cif_x_s[6], 0.0);
  EXPECT_EQ(r.out,
            "WARNING: Overlapped atoms detected and to be removed\n"
            "         Number of overlapped atoms is 1\n"
            "         Number of remaining atoms is 3\n");
  EXPECT_EQ(r.err, loop_warning(line_of(text, "loop_", 2)));
}

TEST(CifReaderSymmetry, LoopLineWithAnIdColumnRepeatsTheLastOperatorAndWarns) {
  TempDir dir;
  const std::string text = "loop_\n_symmetry_equiv_pos_site_id\n_symmetry_equiv_pos_as_xyz\n1 x,y,z\n2 -x,-y,-z\n" +
                           kAtomHeader + "C1 C 0.1 0.2 0.3\n";
  const Read r = read_text(text);
  EXPECT_EQ(r.io->symmetry_ops, (std::vector<std::string>{"x,y,z", "-x,-y,-z", "-x,-y,-z"}));
  EXPECT_EQ(r.io->cif_natoms, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, loop_warning(line_of(text, "loop_", 2)) + no_atoms_warning(line_of(text, "C1 C 0.1 0.2 0.3")));
}

TEST(CifReaderSymmetry, LoopWarningLeavesTheVerboseReportUnchanged) {
  TempDir dir;
  const std::string text = "data_w\n" + kCell10 + "loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\nloop_\n";
  const RunResult r = read_text_forked(text, true);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out,
            "Reading crystal file \"t.cif\"... \n"
            "  Identifier: w\n"
            "  Spacegroup name: \n"
            "  Spacegroup operations: \n"
            "    x,y,z\n"
            "    loop_\n"
            "  Cell lattice a = 10\n"
            "  Cell lattice b = 10\n"
            "  Cell lattice c = 10\n"
            "  Cell lattice alpha = 90\n"
            "  Cell lattice beta  = 90\n"
            "  Cell lattice gamma = 90\n"
            "  natoms_cif = 0\n"
            "  Unit cell nmols  = 0\n"
            "  Unit cell natoms =\n"
            "Crystal file t.cif parsing done.\n");
  EXPECT_EQ(r.err, loop_warning(line_of(text, "loop_", 2)) + no_atoms_warning(line_of(text, "loop_", 2)));
}

// ---- atom loop ---------------------------------------------------------------------

TEST(CifReaderAtoms, ColumnsMayStandInAnyOrderAndOtherColumnsAreDropped) {
  TempDir dir;
  const Read r = read_text(kP1 + kCell10 +
                           "loop_\n_atom_site_occupancy\n_atom_site_fract_z\n_atom_site_label\n_atom_site_fract_x\n"
                           "_atom_site_type_symbol\n_atom_site_U_iso_or_equiv\n_atom_site_fract_y\n"
                           "0.5 0.30 N1 0.10 N 0.02 0.20\n");
  ASSERT_EQ(r.io->cif_natoms, 1);
  EXPECT_EQ(r.io->atoms.label[0], "N1");
  EXPECT_EQ(r.io->atoms.type_symbol[0], "N");
  EXPECT_EQ(r.io->atoms.fract_x[0], "0.10");
  EXPECT_EQ(r.io->atoms.fract_y[0], "0.20");
  EXPECT_EQ(r.io->atoms.fract_z[0], "0.30");
  EXPECT_EQ(r.io->cif_x_s[0], 0.10);
  EXPECT_EQ(r.io->cif_x_s[1], 0.20);
  EXPECT_EQ(r.io->cif_x_s[2], 0.30);
  EXPECT_NEAR(r.io->cif_x[0], 1.0, 1e-12);
  EXPECT_NEAR(r.io->cif_x[1], 2.0, 1e-12);
  EXPECT_NEAR(r.io->cif_x[2], 3.0, 1e-12);
}

TEST(CifReaderAtoms, OnlyTheTypeSymbolNamesTheElement) {
  TempDir dir;
  const Read r = read_text(kP1 + kCell10 + kAtomHeader +
                           "N1 C 0.1 0.1 0.1\nX1 CL 0.3 0.1 0.1\nX2 cl 0.5 0.1 0.1\nC3 C1 0.7 0.1 0.1\n"
                           "Q1 Xx 0.9 0.1 0.1\n");
  ASSERT_EQ(r.io->cif_natoms, 5);
  const int types[] = {6, 17, 17, -1, -1};
  const double radii[] = {0.77, 0.99, 0.99, 9999.99, 9999.99};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(r.io->cif_atypes[i], types[i]) << i;
    EXPECT_EQ(r.io->cif_radii[i], radii[i]) << i;
  }
}

TEST(CifReaderAtoms, UnknownElementBondsToEverythingAtSeparation) {
  TempDir dir;
  // Atoms 0 and 1 are 4 angstrom apart, atom 2 is of an unknown element.
  const Read r = read_text(kP1 + kCell10 + kAtomHeader + "C1 C 0.1 0.1 0.1\nC2 C 0.5 0.1 0.1\nQ1 Qq 0.9 0.9 0.9\n");
  EXPECT_EQ(r.io->uc_mol_natoms, (std::vector<int>{3}));
  EXPECT_EQ(r.io->uc_mol_atoms, (std::vector<int>{0, 2, 1}));
}

TEST(CifReaderAtoms, AtomLoopEndsTheScanAtEachOfItsEnds) {
  const char* const ends[] = {"", "# a comment", "; text", "loop_", "loop_x"};
  for (const char* end : ends) {
    TempDir dir;
    const Read r = read_text(kTwoAtomsP1 + end + "\n_chemical_name_common after\n_cell_length_a 3\n");
    EXPECT_EQ(r.io->cif_natoms, 2) << "end line '" << end << "'";
    EXPECT_EQ(r.io->chemical_name, "") << "end line '" << end << "'";
    EXPECT_EQ(r.io->cell_latt[0], 10.0) << "end line '" << end << "'";
  }
}

TEST(CifReaderAtoms, AtomLoopEndsAtTheEndOfTheFile) {
  TempDir dir;
  const Read r = read_text(kTwoAtomsP1.substr(0, kTwoAtomsP1.size() - 1));  // no final line break
  EXPECT_EQ(r.io->cif_natoms, 2);
  EXPECT_EQ(r.io->atoms.fract_z[1], "0.1");
}

TEST(CifReaderAtoms, TagLineRightAfterTheAtomRowsIsATooShortRow) {
  TempDir dir;
  const RunResult r = read_text_forked(kTwoAtomsP1 + "_atom_type_symbol\n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), not_enough_columns("_atom_type_symbol"));
  EXPECT_EQ(r.err, "");
}

TEST(CifReaderAtoms, AtomRowWithFourColumnsIsFatal) {
  TempDir dir;
  const RunResult r = read_text_forked(kP1 + kCell10 + kAtomHeader + "C1 C 0.1 0.1 0.1\n  C2 C\t0.5 0.1  \n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), not_enough_columns("C2 C\t0.5 0.1"));
  EXPECT_EQ(r.err, "");
}

TEST(CifReaderAtoms, RowLongerThanTheOldLineBufferIsReadWhole) {
  TempDir dir;
  const std::string label = "C" + std::string(1500, 'a');
  std::string extra;
  for (int i = 0; i < 400; ++i) extra += " 0.125";
  const Read r = read_text(kP1 + kCell10 + kAtomHeader + label + " C 0.1 0.1 0.1" + extra + "\nO1 O 0.2 0.1 0.1\n");
  ASSERT_EQ(r.io->cif_natoms, 2);
  EXPECT_EQ(r.io->atoms.label[0], label);
  EXPECT_EQ(r.io->cif_atypes[0], 6);
  EXPECT_EQ(r.io->uc_mol_natoms, (std::vector<int>{2}));
}

TEST(CifReaderAtoms, RowShorterThanItsTypeColumnStopsWithAClearMessage) {
  TempDir dir;
  const std::string text = kP1 + kCell10 +
                           "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n"
                           "_atom_site_occupancy\n_atom_site_type_symbol\n"
                           "C1 0.1 0.1 0.1 1 C\nC2 0.2 0.1 0.1 1\n";
  const RunResult r = read_text_forked(text);
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to read 't.cif' line " + std::to_string(line_of(text, "C2 0.2 0.1 0.1 1")) +
                       ": the atom row has 5 columns, none for _atom_site_type_symbol\n");
}

TEST(CifReaderAtoms, RowShorterThanItsLabelColumnLeavesFewerAtoms) {
  TempDir dir;
  // The label is the last column; a row without it adds no label, and the
  // atom count follows the labels.
  const Read r = read_text(kP1 + kCell10 +
                           "loop_\n_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n"
                           "_atom_site_fract_z\n_atom_site_occupancy\n_atom_site_label\n"
                           "C 0.1 0.1 0.1 1 C1\nO 0.2 0.1 0.1 1\n");
  EXPECT_EQ(r.io->cif_natoms, 1);
  EXPECT_EQ(r.io->atoms.type_symbol.size(), 2u);
}

TEST(CifReaderAtoms, AtomLoopLackingATypeColumnIsSkippedWithAWarning) {
  TempDir dir;
  const std::string text = "data_no_type\n" + kP1 + kCell10 +
                           "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n"
                           "C1 0.1 0.1 0.1\n_cell_length_a 12\n";
  const Read r = read_text(text);
  EXPECT_EQ(r.io->cif_natoms, 0);
  // The scan resumes behind the headers: the tag line after the row is read.
  EXPECT_EQ(r.io->cell_latt[0], 12.0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "WARNING: t.cif line " + std::to_string(line_of(text, "loop_")) +
                       ": atom loop skipped for want of a column; add the column(s) _atom_site_type_symbol\n" +
                       no_atoms_warning(line_of(text, "_cell_length_a 12")));
}

TEST(CifReaderAtoms, CartesianAtomLoopIsSkippedWithAWarningNamingTheFractColumns) {
  TempDir dir;
  const std::string text = kAtomHeader.substr(0, kAtomHeader.find("_atom_site_fract_x")) +
                           "_atom_site_Cartn_x\n_atom_site_Cartn_y\n_atom_site_Cartn_z\nC1 C 1 1 1\n";
  const Read r = read_text(text);
  EXPECT_EQ(r.io->cif_natoms, 0);
  EXPECT_EQ(r.err,
            "WARNING: t.cif line 1: atom loop skipped for want of a column; add the column(s) _atom_site_fract_x "
            "_atom_site_fract_y _atom_site_fract_z\n" +
                no_atoms_warning(7));
}

TEST(CifReaderAtoms, AnisotropicAndGeometryLoopsPassSilentlyAsAtomLoopsLackingColumns) {
  TempDir dir;
  // Four-column rows of the anisotropic table are no error: that table never
  // gets a reader of its own.
  const Read r = read_text(kP1 + kCell10 +
                           "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\n_atom_site_aniso_U_22\n"
                           "_atom_site_aniso_U_33\nC1 0.01 0.02 0.03\n"
                           "loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n_geom_bond_distance\n"
                           "_geom_bond_site_symmetry_2\n_ccdc_geom_bond_type\nC1 C2 1.5 . S\n\n" +
                           kAtomHeader + "C1 C 0.1 0.1 0.1\n");
  EXPECT_EQ(r.io->cif_natoms, 1);
  EXPECT_TRUE(r.io->bonds.atom_site_label_1.empty());
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
}

TEST(CifReaderAtoms, OtherLoopOnlyDropsItsFirstHeader) {
  TempDir dir;
  const Read r = read_text("loop_\n_publ_author_name\n_cell_length_a 6.5\n'Doe, J.'\n");
  EXPECT_EQ(r.io->cell_latt[0], 6.5);
}

TEST(CifReaderAtoms, AtomHeadersRunningToTheEndOfTheFileGiveNoAtoms) {
  TempDir dir;
  const std::string text = "data_empty\n" + kCell10 + kAtomHeader;
  const RunResult r = read_text_forked(text, true);
  EXPECT_EQ(r.status, 0);
  // No first or last atom to show.
  EXPECT_NE(r.out.find("  natoms_cif = 0\n  Unit cell nmols  = 0\n"), std::string::npos) << r.out;
  EXPECT_EQ(r.out.find("First atom"), std::string::npos);
  EXPECT_EQ(r.err, no_atoms_warning(line_of(text, "_atom_site_fract_z")));
}

// ---- bond loop ---------------------------------------------------------------------

TEST(CifReaderBonds, BondLoopBeforeTheAtomsIsStoredAsText) {
  const Read r = read_path(data_path("cif/bonds_before_atoms.cif"));
  EXPECT_EQ(r.io->bonds.atom_site_label_1, (std::vector<std::string>{"C1", "C1"}));
  EXPECT_EQ(r.io->bonds.atom_site_label_2, (std::vector<std::string>{"O1", "H1"}));
  EXPECT_EQ(r.io->bonds.distance, (std::vector<std::string>{"1.000(2)", "1.090"}));
  EXPECT_EQ(r.io->bonds.site_symmetry_2, (std::vector<std::string>{".", "1_555"}));
  EXPECT_EQ(r.io->bonds.bond_type, (std::vector<std::string>{"D", "S"}));
  EXPECT_EQ(r.io->cif_natoms, 3);
  EXPECT_EQ(r.io->uc_mol_natoms, (std::vector<int>{3}));
  EXPECT_EQ(r.err, "");
}

TEST(CifReaderBonds, GeomBondTableAfterTheAtomLoopIsNeverRead) {
  const Read r = read_path(data_path("cif/diatomic_pbar1.cif"));
  EXPECT_EQ(r.io->cif_natoms, 4);
  EXPECT_TRUE(r.io->bonds.atom_site_label_1.empty());
  EXPECT_TRUE(r.io->bonds.distance.empty());
}

TEST(CifReaderBonds, BondLoopLackingAColumnIsPassedOver) {
  TempDir dir;
  const Read r = read_text(kP1 + kCell10 +
                           "loop_\n_geom_bond_distance\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n"
                           "1.5 C1 C2\n" +
                           kAtomHeader + "C1 C 0.1 0.1 0.1\n");
  EXPECT_TRUE(r.io->bonds.distance.empty());
  EXPECT_EQ(r.io->cif_natoms, 1);
}

TEST(CifReaderBonds, BlankLineAfterTheBondTableIsATooShortRow) {
  TempDir dir;
  const RunResult r = read_text_forked(
      "loop_\n_geom_bond_distance\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n"
      "_geom_bond_site_symmetry_2\n_ccdc_geom_bond_type\n1.5 C1 C2 . S\n\n" +
      kAtomHeader + "C1 C 0.1 0.1 0.1\n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), not_enough_columns(""));
  EXPECT_EQ(r.err, "");
}

TEST(CifReaderBonds, BondRowWithFourColumnsIsFatal) {
  TempDir dir;
  const RunResult r = read_text_forked(
      "loop_\n_geom_bond_distance\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n"
      "_geom_bond_site_symmetry_2\n_ccdc_geom_bond_type\n1.5 C1 C2 .\n");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), not_enough_columns("1.5 C1 C2 ."));
}

TEST(CifReaderBonds, BondRowsRunningToTheEndOfTheFileEndTheScan) {
  TempDir dir;
  const Read r = read_text(
      "loop_\n_ccdc_geom_bond_type\n_geom_bond_distance\n_geom_bond_atom_site_label_1\n"
      "_geom_bond_atom_site_label_2\n_geom_bond_site_symmetry_2\nS 1.5 C1 C2 .\nD 1.2 C2 O1 2_555");
  EXPECT_EQ(r.io->bonds.bond_type, (std::vector<std::string>{"S", "D"}));
  EXPECT_EQ(r.io->bonds.site_symmetry_2, (std::vector<std::string>{".", "2_555"}));
  EXPECT_EQ(r.io->cif_natoms, 0);
}

TEST(CifReaderBonds, BondHeadersRunningToTheEndOfTheFileEndTheScan) {
  TempDir dir;
  const Read r = read_text("loop_\n_geom_bond_distance\n_geom_bond_atom_site_label_1\n");
  EXPECT_TRUE(r.io->bonds.distance.empty());
  EXPECT_EQ(r.io->cif_natoms, 0);
}

// ---- space group and expansion through a file -------------------------------------------

TEST(CifReaderExpansion, QuotedP1FileIsNotExpandedAndItsNameIsStoredAsP1) {
  const Read r = read_path(data_path("cif/quoted_p1.cif"));
  EXPECT_EQ(r.io->spacegroup_name, "P1");
  EXPECT_EQ(r.io->symmetry_ops.size(), 2u);
  ASSERT_EQ(r.io->cif_natoms, 1);
  EXPECT_EQ(r.io->cif_x_s[0], 1.25);
  EXPECT_EQ(r.io->cif_x_s[1], -0.5);
  EXPECT_EQ(r.io->cif_x_s[2], 0.5);
  EXPECT_NEAR(r.io->cif_x[0], 12.5, 1e-12);
  EXPECT_NEAR(r.io->cif_x[1], -5.0, 1e-12);
  EXPECT_NEAR(r.io->cif_x[2], 5.0, 1e-12);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
}

TEST(CifReaderExpansion, OtherSpaceGroupWithoutOperatorsEndsWithZeroAtomsAndNoError) {
  TempDir dir;
  const std::string text = "_symmetry_space_group_name_H-M 'P 21/c'\n" + kCell10 + kAtomHeader +
                           "C1 C 0.1 0.1 0.1\nO1 O 0.2 0.1 0.1\n";
  const RunResult r = read_text_forked(text);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, no_operator_warning(line_of(text, "loop_")));
  const Read in = read_text(text);
  EXPECT_EQ(in.io->cif_natoms, 0);
  EXPECT_TRUE(in.io->uc_mol_natoms.empty());
}

TEST(CifReaderExpansion, AbsentSpaceGroupTagIsNotP1) {
  TempDir dir;
  const Read r = read_text(kCell10 + "loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-x,-y,-z\n\n" + kAtomHeader +
                           "C1 C 0.1 0.2 0.3\n");
  ASSERT_EQ(r.io->cif_natoms, 2);
  EXPECT_NEAR(r.io->cif_x_s[3], 0.9, 1e-12);
  EXPECT_NEAR(r.io->cif_x_s[4], 0.8, 1e-12);
  EXPECT_NEAR(r.io->cif_x_s[5], 0.7, 1e-12);
  EXPECT_NEAR(r.io->cif_x[3], 9.0, 1e-12);
}

TEST(CifReaderExpansion, TwoIdenticalOperatorsWarnWithHalfTheAtomsOverlapped) {
  TempDir dir;
  const Read r = read_text(kCell10 + "loop_\n_symmetry_equiv_pos_as_xyz\n'x, y, z'\n'X,Y,Z'\n\n" + kAtomHeader +
                           "C1 C 0.1 0.1 0.1\nO1 O 0.2 0.1 0.1\n");
  EXPECT_EQ(r.out,
            "WARNING: Overlapped atoms detected and to be removed\n"
            "         Number of overlapped atoms is 2\n"
            "         Number of remaining atoms is 2\n");
  EXPECT_EQ(r.io->cif_natoms, 2);
  EXPECT_EQ(r.io->uc_mol_natoms, (std::vector<int>{2}));
}

TEST(CifReaderExpansion, SpecialPositionOnAnInversionCentreKeepsOneCopy) {
  TempDir dir;
  const Read r = read_text(kCell10 + "loop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n-x,-y,-z\n\n" + kAtomHeader +
                           "S1 S 0.5 0.5 0.5\nC1 C 0.1 0.1 0.1\n");
  EXPECT_EQ(r.out,
            "WARNING: Overlapped atoms detected and to be removed\n"
            "         Number of overlapped atoms is 1\n"
            "         Number of remaining atoms is 3\n");
  ASSERT_EQ(r.io->cif_natoms, 3);
  EXPECT_EQ(r.io->cif_atypes[0], 16);
  EXPECT_EQ(r.io->cif_atypes[1], 6);
  EXPECT_EQ(r.io->cif_atypes[2], 6);
}

TEST(CifReaderExpansion, OperatorsInUpperCaseWithSpacesAndFractionsApply) {
  TempDir dir;
  const Read r = read_text(kCell10 +
                           "loop_\n_symmetry_equiv_pos_as_xyz\n'X, Y, Z'\n'-X+1/2, Y+1/2, -Z+1/2'\n"
                           "'1/2+x, 1/2-y, z-1/2'\n'-x+0.5, -y, z'\n\n" +
                           kAtomHeader + "C1 C 0.1 0.2 0.3\n");
  ASSERT_EQ(r.io->cif_natoms, 4);
  const double want[4][3] = {{0.1, 0.2, 0.3}, {0.4, 0.7, 0.2}, {0.6, 0.3, 0.8}, {0.4, 0.8, 0.3}};
  for (int i = 0; i < 4; ++i)
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(r.io->cif_x_s[3 * i + k], want[i][k], 1e-12) << i << "," << k;
}

// ---- whole reads -------------------------------------------------------------------------

TEST(CifReaderWhole, VerboseReportOfASmallCrystal) {
  const std::string path = data_path("cif/diatomic_pbar1.cif");
  const RunResult r = run_forked([&] {
    FileIO io;
    io.read_data_cif(path.c_str(), true);
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "Reading crystal file \"" + path +
                       "\"... \n"
                       "  Identifier: diatomic\n"
                       "  Spacegroup name: 'P -1'\n"
                       "  Spacegroup operations: \n"
                       "    x,y,z\n"
                       "    -x,-y,-z\n"
                       "  Cell lattice a = 10\n"
                       "  Cell lattice b = 10\n"
                       "  Cell lattice c = 10\n"
                       "  Cell lattice alpha = 90\n"
                       "  Cell lattice beta  = 90\n"
                       "  Cell lattice gamma = 90\n"
                       "  natoms_cif = 2\n"
                       "  First atom: C1 C 0.10 0.10 0.10\n"
                       "  ...\n"
                       "  Last  atom: O1 O 0.20 0.10 0.10\n"
                       "  Unit cell nmols  = 2\n"
                       "  Unit cell natoms = 2 2\n"
                       "Crystal file " +
                       path + " parsing done.\n");
  EXPECT_EQ(r.err, "");
}

TEST(CifReaderWhole, SmallCrystalGivesItsAtomsAndMolecules) {
  const Read r = read_path(data_path("cif/diatomic_pbar1.cif"));
  FileIO& io = *r.io;
  EXPECT_EQ(io.identifier, "diatomic");
  EXPECT_EQ(io.chemical_name, "carbon monoxide, stretched");
  EXPECT_EQ(io.spacegroup_number, 2);
  EXPECT_EQ(io.spacegroup_name, "P-1");
  EXPECT_EQ(io.cell_latt[0], 10.0);
  ASSERT_EQ(io.cif_natoms, 4);
  const int types[] = {6, 8, 6, 8};
  const double x_s[4][3] = {{0.1, 0.1, 0.1}, {0.2, 0.1, 0.1}, {0.9, 0.9, 0.9}, {0.8, 0.9, 0.9}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(io.cif_atypes[i], types[i]);
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(io.cif_x_s[3 * i + k], x_s[i][k], 1e-12);
      EXPECT_NEAR(io.cif_x[3 * i + k], 10.0 * x_s[i][k], 1e-12);
    }
  }
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{2, 2}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 1, 2, 3}));
  // latt_c2f is the inverse of latt_f2c.
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double s = 0.0;
      for (int k = 0; k < 3; ++k) s += io.latt_f2c[i][k] * io.latt_c2f[k][j];
      EXPECT_NEAR(s, i == j ? 1.0 : 0.0, 1e-12);
    }
  }
}

TEST(CifReaderWhole, CrlfLineEndingsReadLikeLineFeeds) {
  TempDir dir;
  std::string text = txtest::read_file(data_path("cif/diatomic_pbar1.cif"));
  std::string crlf;
  for (char c : text) {
    if (c == '\n') crlf += '\r';
    crlf += c;
  }
  const Read r = read_text(crlf);
  EXPECT_EQ(r.io->identifier, "diatomic");
  EXPECT_EQ(r.io->symmetry_ops, (std::vector<std::string>{"x,y,z", "-x,-y,-z"}));
  EXPECT_EQ(r.io->cif_natoms, 4);
  EXPECT_EQ(r.io->uc_mol_natoms, (std::vector<int>{2, 2}));
}

TEST(CifReaderWhole, OpenFailureIsFatal) {
  const RunResult r = run_forked([] {
    FileIO io;
    io.read_data_cif("/nonexistent/dir/x.cif", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open input file \"/nonexistent/dir/x.cif\"\n");
}

TEST(CifReaderWhole, DirectoryAsPathReadsNoAtoms) {
  TempDir dir;
  const Read r = read_path(dir.path());
  EXPECT_EQ(r.io->cif_natoms, 0);
  EXPECT_EQ(r.io->structure_read, 1);
}

TEST(CifReaderWhole, EmptyFileReadsNoAtoms) {
  TempDir dir;
  const Read r = read_text("");
  EXPECT_EQ(r.io->cif_natoms, 0);
  EXPECT_EQ(r.io->identifier, "tavix");
  EXPECT_EQ(r.err, no_atoms_warning(1));
}

TEST(CifReaderWhole, TruncatedFilesNeverCrash) {
  // Every prefix of a complete file: each ends in a normal return or in the
  // fatal report of a too-short row, never in a signal.
  TempDir dir;
  const std::string text = txtest::read_file(data_path("cif/diatomic_pbar1.cif"));
  // Cut at every line end and in the middle of every line.
  std::vector<size_t> cuts = {0};
  for (size_t start = 0, end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    cuts.push_back(start + (end - start) / 2);
    cuts.push_back(end);
    cuts.push_back(end + 1);
  }
  for (size_t n : cuts) {
    const RunResult r = read_text_forked(text.substr(0, n));
    ASSERT_TRUE(r.status == 0 || r.status == 255) << "prefix " << n << " status " << r.status;
    if (r.status == 255) {
      EXPECT_EQ(mask_line_numbers(r.out).rfind(kHead + "Not enough columns: ", 0), 0u) << "prefix " << n;
    }
  }
}

TEST(CifReaderWhole, SecondReadIntoTheSameObjectAppendsTextAndReplacesArrays) {
  const std::string path = data_path("cif/diatomic_pbar1.cif");
  FileIO io;
  std::string out = txtest::capture_stdout([&] {
    io.read_data_cif(path.c_str(), false);
    io.read_data_cif(path.c_str(), false);
  });
  // Columns and operators doubled: 4 atoms by 4 operators, 12 of them on top of others.
  EXPECT_EQ(io.atoms.label.size(), 4u);
  EXPECT_EQ(io.symmetry_ops.size(), 4u);
  EXPECT_EQ(out,
            "WARNING: Overlapped atoms detected and to be removed\n"
            "         Number of overlapped atoms is 12\n"
            "         Number of remaining atoms is 4\n");
  EXPECT_EQ(io.cif_natoms, 4);
  EXPECT_EQ(io.uc_mol_natoms, (std::vector<int>{2, 2}));
  EXPECT_EQ(io.uc_mol_atoms, (std::vector<int>{0, 1, 2, 3}));
}

TEST(CifReaderWhole, NumbersAreReadInTheCLocaleWhateverTheProcessLocale) {
  const char* const comma_locales[] = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "de_DE", "fr_FR"};
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  bool switched = false;
  for (const char* name : comma_locales) {
    if (std::setlocale(LC_ALL, name)) {
      switched = true;
      break;
    }
  }
  if (!switched) GTEST_SKIP() << "no locale with a decimal comma installed";
  TempDir dir;
  const Read r = read_text(kTwoAtomsP1);
  std::setlocale(LC_ALL, saved.c_str());
  EXPECT_EQ(r.io->cell_latt[0], 10.0);
  EXPECT_EQ(r.io->cif_x_s[0], 0.1);
}
