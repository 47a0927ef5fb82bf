// HOMO/LUMO runs on a real crystal (benzene, COD 2100348: four equivalent
// molecules, twelve neighbors each) read as a run reads it: the unique runs
// write and submit only the representatives of uc_mol_unique_list and
// pair_keylist, the plain runs every molecule, neighbor and pair; the pair
// geometry is checked against the neighbor list, and Open Babel reads the
// geometry of our Gaussian pair input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "hl_fixtures.h"

namespace {

using hl::Engine;
using txtest::read_file;

const char* const kBenzene = "cif/benzene_COD2100348_blankline.cif";

// Control file, crystal, the treatment after reading, neighbor list, and the
// equivalence checks in the order of a run.
void read_benzene(Transport& t, bool unique) {
  txtest::write_file("tavix.inp", "&transport\n  crystal = " + txtest::data_path(kBenzene) + "\n  HL_unique_mol = " +
                                      (unique ? "1" : "0") + "\n/\n");
  txtest::capture_stdout([&] {
    t.read_tavix_inp("tavix.inp", false);
    t.read_crystal_strcuture_files(false, false);
    t.post_data_read_treatment(false);
    t.build_neighbor_list(false, false);
    if (unique) {
      create_directory(t.data_dir);  // the pair check writes its map there
      t.RE_check_unitcell_same_mols(false);
      t.calc_HL_uc_mol_eigval_eigvec();
      t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
      t.HL_check_unitcell_unique_mols(false);
    }
  });
  t.job_workdir = hl::kWorkdir;
  t.job_sched_type = Jobscript::sched_pbs;
  t.qc_inp_append = "";
}

// The quoted arguments of the driver's touch lines, or of its submit lines, in order.
std::vector<std::string> driver_calls(const std::string& driver, const std::string& command) {
  std::vector<std::string> calls;
  std::istringstream lines(read_file("scr/" + driver));
  const std::string head = "os.system(\"" + command + " ";
  for (std::string line; std::getline(lines, line);)
    if (line.compare(0, head.size(), head) == 0)
      calls.push_back(line.substr(head.size(), line.size() - head.size() - 2));  // less the closing ")
  return calls;
}

std::vector<std::string> touched(const std::string& driver) { return driver_calls(driver, "touch"); }
std::vector<std::string> submitted(const std::string& driver) { return driver_calls(driver, "qsub"); }

std::string marker(const std::string& name) { return std::string(hl::kWorkdir) + "/RUN/running.HL_" + name; }

std::vector<std::string> sorted(std::vector<std::string> v) {
  std::sort(v.begin(), v.end());
  return v;
}

using HLBenzene = hl::EngineTest;

TEST_P(HLBenzene, UniqueRunsWriteAndSubmitOnlyTheRepresentatives) {
  read_benzene(t, true);
  ASSERT_EQ(t.nmols_uc, 4);
  ASSERT_EQ(t.neighbor_nkeys, 48);
  // The crystal does have equivalent molecules and pairs.
  ASSERT_GE(t.uc_mol_unique_count, 1);
  ASSERT_LT(t.uc_mol_unique_count, 4);
  ASSERT_GE(t.pair_keylist_count, 1);
  ASSERT_LT(t.pair_keylist_count, 48);
  const std::vector<int> mols(t.uc_mol_unique_list, t.uc_mol_unique_list + t.uc_mol_unique_count);
  const std::vector<int> keys(t.pair_keylist, t.pair_keylist + t.pair_keylist_count);

  t.sched_job_array = false;
  call(&Engine::uc_unique);
  call(&Engine::nei_unique);
  call(&Engine::pair_unique);
  std::vector<std::string> inputs, uc_markers, uc_jobs, nei_markers, nei_jobs, pair_markers, pair_jobs;
  for (int m : mols) {
    const std::string base = "uc_mol-" + std::to_string(m);
    inputs.push_back(input(base));
    uc_markers.push_back(marker(base));
    uc_jobs.push_back("../jobs/job_" + base + ".pbs");
  }
  for (int k : keys) {
    for (const std::string prefix : {"nei_mol-", "2mol-"}) {
      const std::string base = prefix + std::to_string(k);
      inputs.push_back(input(base));
      (prefix == "2mol-" ? pair_markers : nei_markers).push_back(marker(base));
      (prefix == "2mol-" ? pair_jobs : nei_jobs).push_back("../jobs/job_" + base + ".pbs");
    }
  }
  EXPECT_EQ(hl::files_in("HL"), sorted(inputs));
  EXPECT_EQ(touched("mol_one_uc.py"), uc_markers);
  EXPECT_EQ(submitted("mol_one_uc.py"), uc_jobs);
  EXPECT_EQ(touched("mol_one_nei.py"), nei_markers);
  EXPECT_EQ(submitted("mol_one_nei.py"), nei_jobs);
  EXPECT_EQ(touched("mol_two.py"), pair_markers);
  EXPECT_EQ(submitted("mol_two.py"), pair_jobs);
  EXPECT_EQ(hl::files_in("jobs").size(), mols.size() + 2 * keys.size());

  // With arrays: one array each, over exactly those numbers.
  t.sched_job_array = true;
  call(&Engine::uc_unique);
  call(&Engine::nei_unique);
  call(&Engine::pair_unique);
  EXPECT_EQ(hl::files_in("HL"), sorted(inputs));
  EXPECT_EQ(touched("mol_one_uc.py"), uc_markers);
  EXPECT_EQ(submitted("mol_one_uc.py"), std::vector<std::string>{"../jobs/job_uc_mol.pbs"});
  EXPECT_EQ(touched("mol_one_nei.py"), nei_markers);
  EXPECT_EQ(submitted("mol_one_nei.py"), std::vector<std::string>{"../jobs/job_nei_mol.pbs"});
  EXPECT_EQ(submitted("mol_two.py"), std::vector<std::string>{"../jobs/job_2mol.pbs"});
  std::string mol_list, key_list;
  for (int m : mols) mol_list += (mol_list.empty() ? "" : ",") + std::to_string(m);
  for (int k : keys) key_list += (key_list.empty() ? "" : ",") + std::to_string(k);
  EXPECT_NE(read_file("jobs/job_uc_mol.pbs").find("\n#PBS -t " + mol_list + "\n"), std::string::npos);
  EXPECT_NE(read_file("jobs/job_nei_mol.pbs").find("\n#PBS -t " + key_list + "\n"), std::string::npos);
  EXPECT_NE(read_file("jobs/job_2mol.pbs").find("\n#PBS -t " + key_list + "\n"), std::string::npos);
}

TEST_P(HLBenzene, PlainRunsWriteAndSubmitEveryMoleculeNeighborAndPair) {
  read_benzene(t, false);
  ASSERT_EQ(t.nmols_uc, 4);
  t.sched_job_array = false;
  call(&Engine::uc);
  call(&Engine::nei);
  call(&Engine::pair);
  std::vector<std::string> inputs, uc_markers, nei_markers, pair_markers;
  for (int i = 1; i <= 4; ++i) {
    inputs.push_back(input("uc_mol-" + std::to_string(i)));
    uc_markers.push_back(marker("uc_mol-" + std::to_string(i)));
    ASSERT_EQ(t.nneighbors[i - 1], 12);
    for (int j = 1; j <= 12; ++j) {
      const std::string ij = std::to_string(i) + "-" + std::to_string(j);
      inputs.push_back(input("nei_mol-" + ij));
      inputs.push_back(input("2mol-" + ij));
      nei_markers.push_back(marker("nei_mol-" + ij));
      pair_markers.push_back(marker("2mol-" + ij));
    }
  }
  EXPECT_EQ(hl::files_in("HL"), sorted(inputs));
  EXPECT_EQ(touched("mol_one_uc.py"), uc_markers);
  EXPECT_EQ(touched("mol_one_nei.py"), nei_markers);
  EXPECT_EQ(touched("mol_two.py"), pair_markers);
  EXPECT_EQ(submitted("mol_two.py").size(), 48u);
  EXPECT_EQ(hl::files_in("jobs").size(), 4u + 48u + 48u);
}

// A unique input is the plain input of the neighbor or pair its key stands for.
TEST_P(HLBenzene, UniqueInputsAreThePlainInputsOfTheirKeys) {
  if (engine() == "gaussian") GTEST_SKIP() << "checkpoint and title name the file";
  read_benzene(t, true);
  t.HL_unique_mol = 0;
  call(&Engine::nei_unique);
  call(&Engine::pair_unique);
  t.HL_unique_mol = 1;
  call(&Engine::nei_unique);
  call(&Engine::pair_unique);
  for (int u = 0; u < t.pair_keylist_count; ++u) {
    const int k = t.pair_keylist[u];
    int mol = -1, nei = -1;
    t.neighbor_map_key_1d_to_2d(k - 1, &mol, &nei);
    const std::string ij = std::to_string(mol + 1) + "-" + std::to_string(nei + 1);
    EXPECT_EQ(read_file("HL/" + input("nei_mol-" + std::to_string(k))), read_file("HL/" + input("nei_mol-" + ij)));
    EXPECT_EQ(read_file("HL/" + input("2mol-" + std::to_string(k))), read_file("HL/" + input("2mol-" + ij)));
  }
}

// Atom lines "<symbol> x y z" of an input, in order.
struct AtomLine {
  std::string symbol;
  double x[3];
};

std::vector<AtomLine> atom_lines(const std::string& text) {
  std::vector<AtomLine> atoms;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    AtomLine a;
    std::string rest;
    const bool four_words = static_cast<bool>(words >> a.symbol >> a.x[0] >> a.x[1] >> a.x[2]) && !(words >> rest);
    if (four_words && std::isalpha(static_cast<unsigned char>(a.symbol[0])))
      atoms.push_back(a);
  }
  return atoms;
}

// The pair input holds the root as it stands in the cell, then the neighbor
// whose centre of mass is where the neighbor list puts it.
TEST_P(HLBenzene, PairInputHoldsTheRootThenTheNeighborAtItsCentre) {
  read_benzene(t, false);
  call(&Engine::pair);
  for (int j : {0, 5, 11}) {
    SCOPED_TRACE(j);
    const std::string base = "2mol-1-" + std::to_string(j + 1);
    const std::vector<AtomLine> atoms = atom_lines(read_file("HL/" + input(base)));
    const int n0 = t.mol_natoms[0];
    const int m = t.neighbor_id[0][j];
    ASSERT_EQ(static_cast<int>(atoms.size()), n0 + t.mol_natoms[m]);
    const double tol = engine() == "bdf" ? 5e-8 : 5e-4;
    for (int a = 0; a < n0; ++a)
      for (int k = 0; k < 3; ++k) EXPECT_NEAR(atoms[a].x[k], t.mol_x[0][3 * a + k], tol);
    double com[3] = {0, 0, 0}, mass = 0;
    for (int a = 0; a < t.mol_natoms[m]; ++a) {
      const double w = t.find_element_mass_from_index(t.mol_elem[m][a]);
      char symbol[3];
      t.find_element_name_from_index(t.mol_elem[m][a], symbol);
      EXPECT_EQ(atoms[n0 + a].symbol, symbol);
      mass += w;
      for (int k = 0; k < 3; ++k) com[k] += w * atoms[n0 + a].x[k];
    }
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(com[k] / mass, t.neighbor_x[0][3 * j + k], 1e-3);
  }
}

INSTANTIATE_TEST_SUITE_P(AllEngines, HLBenzene, ::testing::ValuesIn(hl::engines()), hl::engine_name);

// ---- a real client reads our Gaussian inputs -----------------------------------

bool obabel_on_path() { return txtest::run_command("command -v obabel").status == 0; }

// "<atoms> <bonds> <formula>" as Open Babel reports them; the title in front may
// hold blanks, so the three are the last words of the one line.
std::string obabel_census(const std::string& format, const std::string& path) {
  const txtest::RunResult r =
      txtest::run_command("obabel -i" + format + " '" + path + "' -otxt --append 'atoms bonds formula'");
  EXPECT_EQ(r.status, 0) << r.err;
  std::istringstream words(r.out);
  std::vector<std::string> w;
  for (std::string word; words >> word;) w.push_back(word);
  if (w.size() < 3) return r.out + r.err;
  return w[w.size() - 3] + " " + w[w.size() - 2] + " " + w.back();
}

// Open Babel (3.1) lists its Gaussian input formats (gjf, com, gau, gjc) as
// write-only, so it is handed the molecule specification of our input, the
// lines from behind "0 1" to the blank line, under an XYZ count line made by
// wc. Its reader then parses every symbol and coordinate, and its bond
// perception finds two whole benzene rings (12 bonds each) where the pair
// should be. Should a later Open Babel read Gaussian inputs, it reads the
// whole file as well.
TEST(HLOpenBabel, ReadsTheMoleculeSpecificationOfOurGaussianPairInput) {
  ASSERT_TRUE(obabel_on_path()) << "obabel (Open Babel) is not on PATH; scripts/setup.sh installs it (Debian "
                                   "package openbabel). This test checks that a real client reads the geometry of "
                                   "the Gaussian inputs we write.";
  txtest::TempDir dir;
  Transport t;
  read_benzene(t, false);
  t.qc_basis = "B3LYP/6-31G(d)";
  t.sched_job_array = false;
  t.write_HL_gaussian_2mol_gjf_and_job();
  ASSERT_EQ(t.mol_natoms[0] + t.mol_natoms[t.neighbor_id[0][0]], 24);

  const std::string cut =
      "awk 'go && $0 == \"\" {exit} go {print} $0 == \"0 1\" {go = 1}' HL/2mol-1-1.com > block.txt && "
      "{ wc -l < block.txt; echo 2mol-1-1; cat block.txt; } > pair.xyz";
  ASSERT_EQ(txtest::run_command(cut).status, 0);
  EXPECT_EQ(obabel_census("xyz", "pair.xyz"), "24 24 C12H12");

  const txtest::RunResult formats = txtest::run_command("obabel -L formats");
  for (const char* format : {"gjf", "com"}) {
    const std::string listed = std::string("\n") + format + " -- Gaussian Input";
    const size_t at = formats.out.find(listed);
    ASSERT_NE(at, std::string::npos) << formats.out;
    const std::string entry = formats.out.substr(at + 1, formats.out.find('\n', at + 1) - at - 1);
    if (entry.find("[Write-only]") == std::string::npos) {
      EXPECT_EQ(obabel_census(format, "HL/2mol-1-1.com"), "24 24 C12H12") << entry;
    }
  }
}

}  // namespace
