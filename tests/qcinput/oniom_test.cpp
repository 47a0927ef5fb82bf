// ONIOM clusters: a hand-built cell of two molecules whose clusters are worked out
// in tests/data/golden/qcinput/oniom/ for one, two and three layers, and structural
// checks on a real crystal.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "../topology/topology_fixtures.h"
#include "evc_test_support.h"
#include "test_support.h"
#include "transport.h"

namespace {

// Neighbor rows as (zero-based id, cell shift).
void set_rows(Transport& t, const std::vector<std::vector<topo::Nei>>& rows) {
  const int n = static_cast<int>(rows.size());
  t.nneighbors = new int[n];
  t.neighbor_id = new int*[n];
  t.neighbor_cx = new int*[n];
  t.neighbor_cy = new int*[n];
  t.neighbor_cz = new int*[n];
  t.neighbor_rows_allocated = n;
  for (int i = 0; i < n; ++i) {
    t.nneighbors[i] = static_cast<int>(rows[i].size());
    t.neighbor_id[i] = new int[t.NNEIMAX]();
    t.neighbor_cx[i] = new int[t.NNEIMAX]();
    t.neighbor_cy[i] = new int[t.NNEIMAX]();
    t.neighbor_cz[i] = new int[t.NNEIMAX]();
    for (size_t j = 0; j < rows[i].size(); ++j) {
      t.neighbor_id[i][j] = rows[i][j].id;
      t.neighbor_cx[i][j] = rows[i][j].cx;
      t.neighbor_cy[i][j] = rows[i][j].cy;
      t.neighbor_cz[i][j] = rows[i][j].cz;
    }
  }
}

// Cell 4 x 6 x 10 angstrom. Molecule 1: two H atoms 1 angstrom apart along a, centre
// at fractional (0.125, 0, 0). Molecule 2: one He atom at (0.5, 0.5, 0). Molecule 1
// sees itself one cell along a and molecule 2 in the same cell; molecule 2 sees
// molecule 1 in the same cell and itself one cell along b.
void set_two_molecule_cell(Transport& t, int nlayers, double cutoff) {
  topo::set_orthorhombic(t, 4.0, 6.0, 10.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}, {topo::H, 0.25, 0.0, 0.0}}, {{2, 0.5, 0.5, 0.0}}});
  t.mol_x_s_com[0][0] = 0.125;
  t.mol_x_s_com[1][0] = 0.5;
  t.mol_x_s_com[1][1] = 0.5;
  set_rows(t, {{{0, 1, 0, 0}, {1, 0, 0, 0}}, {{0, 0, 0, 0}, {1, 0, 1, 0}}});
  t.oniom_nlayers = nlayers;
  t.oniom_com_cutoff = cutoff;
  ASSERT_EQ(txtest::run_command("mkdir -p data").status, 0);
}

void expect_case(const std::string& name) {
  for (const char* f : {"mol1_oniom.com", "mol1_oniom.xyz", "mol2_oniom.com", "mol2_oniom.xyz"})
    evctest::expect_golden(std::string("data/") + f, "oniom/" + name + "/" + f);
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) out.push_back(line);
  return out;
}

TEST(OniomInputFiles, OneLayerHasTheCentreAndItsNeighborsWhateverTheCutoff) {
  txtest::TempDir dir;
  Transport t;
  set_two_molecule_cell(t, 1, 1.0);  // every neighbor centre lies beyond 1 angstrom
  const std::string out = txtest::capture_stdout([&] { t.write_oniom_input_files(false); });
  EXPECT_EQ(out, "**** Generate Oniom input files ****\n**** End of Generate Oniom input files ****\n\n");
  expect_case("one_layer");
}

TEST(OniomInputFiles, TwoLayersKeepSecondNeighborsWhoseCentreIsWithinTheCutoff) {
  txtest::TempDir dir;
  Transport t;
  // Second shell of molecule 1, squared centre distances: molecule 1 two cells along a
  // 64, molecule 2 one cell along a 39.25, molecule 2 one cell along b 83.25; 8.2^2 is
  // 67.24. The first holds an atom 8.5 angstrom from the centre: it joins whole.
  set_two_molecule_cell(t, 2, 8.2);
  txtest::capture_stdout([&] { t.write_oniom_input_files(false); });
  expect_case("two_layers");
  const std::string xyz = txtest::read_file("data/mol1_oniom.xyz");
  EXPECT_NE(xyz.find("H     9.00000000   0.00000000    0.00000000 2 1 1\n"), std::string::npos) << xyz;
  EXPECT_EQ(xyz.find("He    2.00000000   9.00000000"), std::string::npos) << xyz;
}

TEST(OniomInputFiles, ThreeLayersAddTheThirdShellOnceAndNoPlacementTwice) {
  txtest::TempDir dir;
  Transport t;
  set_two_molecule_cell(t, 3, 10.5);
  txtest::capture_stdout([&] { t.write_oniom_input_files(false); });
  expect_case("three_layers");
}

TEST(OniomInputFiles, LayersBeyondThreeAreNotBuilt) {
  txtest::TempDir dir;
  Transport t;
  set_two_molecule_cell(t, 7, 10.5);
  txtest::capture_stdout([&] { t.write_oniom_input_files(false); });
  expect_case("three_layers");
}

TEST(OniomInputFiles, MoleculeWithoutNeighborsIsTheHighLayerAlone) {
  txtest::TempDir dir;
  Transport t;
  set_two_molecule_cell(t, 3, 50.0);
  t.nneighbors[0] = 0;
  txtest::capture_stdout([&] { t.write_oniom_input_files(false); });
  EXPECT_EQ(txtest::read_file("data/mol1_oniom.com"),
            "%chk=mol1_oniom.chk\n"
            "%nprocs=16\n"
            "%mem=80GB\n"
            "#p opt freq oniom(m062x/6-31g*:uff=qeq)=embedcharge nosymm\n"
            "\n"
            "mol_oniom\n"
            "\n"
            "0 1 0 1 0 1\n"
            "H                 0     0.0000000     0.0000000     0.0000000 H\n"
            "H                 0     1.0000000     0.0000000     0.0000000 H\n"
            "\n");
  EXPECT_EQ(txtest::read_file("data/mol1_oniom.xyz"),
            "2\n"
            "# Oniom input check\n"
            "H     0.00000000   0.00000000    0.00000000 0 1 0\n"
            "H     1.00000000   0.00000000    0.00000000 0 1 0\n");
}

TEST(OniomInputFiles, RouteMemoryAndProcessorsIgnoreTheQuantumChemistrySettings) {
  txtest::TempDir dir;
  Transport t;
  set_two_molecule_cell(t, 1, 50.0);
  t.qc_memory = 1234;
  t.qc_ppn = 3;
  t.qc_basis = "hf/sto-3g";
  t.qc_method = "hf";
  txtest::capture_stdout([&] { t.write_oniom_input_files(false); });
  const std::vector<std::string> com = lines_of(txtest::read_file("data/mol2_oniom.com"));
  ASSERT_GE(com.size(), 4u);
  EXPECT_EQ(com[1], "%nprocs=16");
  EXPECT_EQ(com[2], "%mem=80GB");
  EXPECT_EQ(com[3], "#p opt freq oniom(m062x/6-31g*:uff=qeq)=embedcharge nosymm");
}

TEST(OniomInputFiles, VerboseCountsTheAtomsOfEachCluster) {
  txtest::TempDir dir;
  Transport t;
  set_two_molecule_cell(t, 3, 10.5);
  const std::string out = txtest::capture_stdout([&] { t.write_oniom_input_files(true); });
  EXPECT_EQ(out,
            "**** Generate Oniom input files ****\n"
            "  mol1: 12 atoms in the cluster\n"
            "  mol2: 13 atoms in the cluster\n"
            "**** End of Generate Oniom input files ****\n\n");
}

TEST(OniomInputFiles, OutputThatCannotBeOpenedIsFatal) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    set_two_molecule_cell(t, 1, 50.0);
    t.data_dir = "missing";
    t.write_oniom_input_files(false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "**** Generate Oniom input files ****\n" + evctest::kFatalHead);
  EXPECT_EQ(r.err, "Failed to open output file missing/mol1_oniom.com\n");
}

TEST(OniomInputFiles, MissingNeighborListIsFatal) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    topo::set_orthorhombic(t, 4.0, 6.0, 10.0);
    topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}}});
    t.write_oniom_input_files(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "No neighbor list to build the ONIOM clusters from\n");
  EXPECT_FALSE(txtest::path_exists("data/mol1_oniom.com"));
}

// A real crystal of four benzene molecules: each cluster has the centre's atoms as its
// high layer, the whole first shell behind it, every second-shell molecule whole with
// its centre within the cutoff, and no molecule twice (no two centres on one spot).
TEST(OniomInputFiles, RealCrystalClustersAreWholeAndFreeOfDuplicates) {
  txtest::TempDir dir;
  txtest::write_file("tavix.inp", "&transport\n  crystal = " +
                                      txtest::data_path("cif/benzene_COD2100348_blankline.cif") + "\n/\n");
  Transport t;
  t.read_tavix_inp("tavix.inp", false);
  t.read_crystal_strcuture_files(false, false);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  t.oniom_nlayers = 2;
  t.oniom_com_cutoff = 9.0;
  ASSERT_EQ(txtest::run_command("mkdir -p data").status, 0);
  txtest::capture_stdout([&] { t.write_oniom_input_files(false); });
  ASSERT_EQ(t.nmols_uc, 4);
  for (int i = 0; i < t.nmols_uc; ++i) {
    const std::vector<std::string> xyz = lines_of(txtest::read_file("data/mol" + std::to_string(i + 1) + "_oniom.xyz"));
    const std::vector<std::string> com = lines_of(txtest::read_file("data/mol" + std::to_string(i + 1) + "_oniom.com"));
    ASSERT_GE(xyz.size(), 2u);
    const int natoms = std::stoi(xyz[0]);
    ASSERT_EQ(static_cast<int>(xyz.size()), natoms + 2);
    ASSERT_EQ(static_cast<int>(com.size()), natoms + 9);  // 8 head lines and the closing blank
    struct Row {
      double x[3];
      double mass;
      int layer, mol, index;
    };
    std::vector<Row> rows;
    for (int a = 0; a < natoms; ++a) {
      std::istringstream in(xyz[a + 2]);
      std::string symbol;
      Row r;
      in >> symbol >> r.x[0] >> r.x[1] >> r.x[2] >> r.layer >> r.mol >> r.index;
      r.mass = t.find_element_mass_from_index(t.find_element_index_from_name(symbol));
      rows.push_back(r);
      EXPECT_EQ(com[a + 8].substr(com[a + 8].size() - 1), r.layer == 0 ? "H" : "L");
    }
    // Molecules stand atom block after atom block; their centres of mass, in order.
    std::vector<std::vector<double>> centres;
    std::vector<int> layers;
    int count[3] = {0, 0, 0};
    for (size_t a = 0; a < rows.size();) {
      ASSERT_GE(rows[a].layer, 0);
      ASSERT_LE(rows[a].layer, 2);
      const int n = t.mol_natoms[rows[a].mol - 1];
      ASSERT_LE(a + n, rows.size());
      std::vector<double> c(3, 0.0);
      double m = 0.0;
      for (int k = 0; k < n; ++k) {
        const Row& r = rows[a + k];
        EXPECT_EQ(r.layer, rows[a].layer);
        EXPECT_EQ(r.mol, rows[a].mol);
        for (int q = 0; q < 3; ++q) c[q] += r.mass * r.x[q];
        m += r.mass;
      }
      for (double& v : c) v /= m;
      centres.push_back(c);
      layers.push_back(rows[a].layer);
      count[rows[a].layer] += n;
      a += n;
    }
    EXPECT_EQ(count[0], t.mol_natoms[i]);
    int first_shell = 0;
    for (int j = 0; j < t.nneighbors[i]; ++j) first_shell += t.mol_natoms[t.neighbor_id[i][j]];
    EXPECT_EQ(count[1], first_shell);
    EXPECT_GT(count[2], 0);
    for (size_t p = 1; p < centres.size(); ++p) {
      const double d = std::hypot(centres[p][0] - centres[0][0], centres[p][1] - centres[0][1], centres[p][2] - centres[0][2]);
      if (layers[p] == 2) {
        EXPECT_LE(d, 9.0 + 1e-6) << "molecule " << p << " of cluster " << i + 1;
      }
      for (size_t q = 0; q < p; ++q) {
        const double e = std::hypot(centres[p][0] - centres[q][0], centres[p][1] - centres[q][1], centres[p][2] - centres[q][2]);
        EXPECT_GT(e, 0.5) << "molecules " << q << " and " << p << " of cluster " << i + 1 << " coincide";
      }
    }
  }
}

}  // namespace
