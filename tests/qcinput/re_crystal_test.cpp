// Reorganisation runs on real crystals (tests/data/cif) read as a run reads them:
// the plain runs cover every molecule of the cell, the unique runs only the
// representatives of the reorganisation check, and their drivers submit exactly those.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "re_test_support.h"

namespace {

using retest::Names;
using retest::touched;

// Control file, crystal, molecule separation, the treatment after reading, neighbor
// list and the reorganisation check, in the order of a run.
void read_crystal(Transport& t, const std::string& cif) {
  txtest::write_file("tavix.inp", "&transport\n  crystal = " + txtest::data_path("cif/" + cif) + "\n/\n");
  txtest::capture_stdout([&] {
    t.read_tavix_inp("tavix.inp", false);
    t.read_crystal_strcuture_files(false, false);
    t.post_data_read_treatment(false);
    t.build_neighbor_list(false, false);
    t.RE_check_unitcell_same_mols(false);
  });
}

Names neutral_inputs(int nmols, const char* ext) {
  std::vector<int> mols;
  for (int m = 1; m <= nmols; ++m) mols.push_back(m);
  return retest::inputs_of(mols, {"neutral"}, ext);
}

Names neutral_files_in(const std::string& dir) {
  Names names;
  for (const std::string& f : retest::files_in(dir))
    if (f.find("-neutral.") != std::string::npos) names.push_back(f);
  return names;
}

// Benzene has four molecules of one kind in its cell.
TEST(ReCrystals, BenzeneUniqueRunsCoverTheFirstMoleculeAndPlainRunsAllFour) {
  for (const retest::Family& c : retest::kFamilies) {
    SCOPED_TRACE(c.engine);
    for (bool unique : {false, true}) {
      txtest::TempDir dir;
      Transport t;
      read_crystal(t, "benzene_COD2100348_blankline.cif");
      ASSERT_EQ(t.nmols_uc, 4);
      ASSERT_EQ(t.uc_mol_re_count, 1);
      ASSERT_EQ(t.uc_mol_re_list[0], 1);
      retest::set_run(t);
      retest::set_engine(t, c.engine);
      t.chargetype = "h";
      (t.*(unique ? c.unique : c.plain))();
      const int covered = unique ? 1 : 4;
      EXPECT_EQ(neutral_files_in("RE"), neutral_inputs(covered, c.ext));
      EXPECT_EQ(retest::files_in("RE").size(), 2u * covered);
      EXPECT_EQ(touched("scr/mol_RE_neutral.py").size(), static_cast<std::size_t>(covered));
      EXPECT_EQ(touched("scr/mol_RE_anion_cation.py").size(), static_cast<std::size_t>(covered));
      EXPECT_EQ(retest::py_compile("scr/mol_RE_neutral.py"), 0);
      // 12 atoms a benzene molecule, each on one line of the input.
      const std::string input = txtest::read_file(std::string("RE/re-mol1-neutral.") + c.ext);
      int h_lines = 0;
      for (std::size_t at = input.find("\nH "); at != std::string::npos; at = input.find("\nH ", at + 1)) ++h_lines;
      EXPECT_EQ(h_lines, 6) << input;
    }
  }
}

// The two-atom molecule of diatomic_pbar1.cif and its inversion image: C (0.1, 0.1,
// 0.1) and O (0.2, 0.1, 0.1) in a 10 angstrom cube give C (1, 1, 1) and O (2, 1, 1);
// the image C (0.9, 0.9, 0.9) and O (0.8, 0.9, 0.9) gives (9, 9, 9) and (8, 9, 9).
TEST(ReCrystals, InversionImageIsTheOnlyOtherMoleculeAndIsLeftToItsRepresentative) {
  txtest::TempDir dir;
  Transport t;
  read_crystal(t, "diatomic_pbar1.cif");
  ASSERT_EQ(t.nmols_uc, 2);
  retest::set_run(t);
  t.write_RE_gaussian_mol_gjf_and_job_separated();
  EXPECT_NE(txtest::read_file("RE/re-mol1-neutral.com")
                .find("\n0 1\nC     1.0000    1.0000    1.0000\nO     2.0000    1.0000    1.0000\n\n"),
            std::string::npos);
  EXPECT_NE(txtest::read_file("RE/re-mol2-anion.com")
                .find("\n-1 2\nC     9.0000    9.0000    9.0000\nO     8.0000    9.0000    9.0000\n\n"),
            std::string::npos);
  EXPECT_EQ(touched("scr/mol_RE_anion_cation.py"), (Names{"running.re_mol1-anion", "running.re_mol2-anion",
                                                          "running.re_mol1-cation", "running.re_mol2-cation"}));

  txtest::TempDir unique_dir;
  t.write_RE_gaussian_mol_gjf_and_job_unique_separated();
  EXPECT_EQ(retest::files_in("RE"), (Names{"re-mol1-anion.com", "re-mol1-cation.com", "re-mol1-neutral.com"}));
  EXPECT_EQ(touched("scr/mol_RE_neutral.py"), (Names{"running.re_mol1-neutral"}));
  EXPECT_EQ(touched("scr/mol_RE_anion_cation.py"), (Names{"running.re_mol1-anion", "running.re_mol1-cation"}));
}

}  // namespace
