// Transport: equivalence of unit-cell molecules and of neighbor pairs, from the
// principal moments of inertia, and the tables that record it.
//
// Only a representative of each class gets a quantum-chemistry job. Molecules are
// compared by atom count, mass and principal moments (HL_mols_if_the_same); pairs
// by the principal moments of the dimer alone.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "transport.h"

namespace {

// Written over the neighbor driver when every neighbor has a unit-cell twin: the
// neighbors then take the orbitals of the molecules they match.
const char* const mol_one_nei_stub_py[] = {
    "#!/usr/bin/env python",
    "import sys",
    "",
    "sys.stdout.write(\">> Use results from mol_one_uc.py\\n\")",
    "",
};

void write_lines(FILE* fp, const char* const* lines, size_t n) {
  for (size_t k = 0; k < n; ++k) std::fprintf(fp, "%s\n", lines[k]);
}

// Every operation here works on the rows build_neighbor_list allocates; without
// them the run ends with a message instead of reading through null rows.
void require_neighbor_tables(const Transport& t, const char* caller) {
  if (t.nmols_uc > 0 && !(t.neighbor_built && t.mol_id_ready && t.uc_mol_eigval && t.pair_eigval))
    TX_FATAL(txunit::transport, 1, stderr, "%s: the neighbor list is not built; build the neighbor list first\n",
             caller);
}

// Opens an equivalence table for writing; a table that will not open is fatal.
FILE* open_table(const std::string& path) {
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  return fp;
}

// Three eigenvalues, then the nine axis components, of one molecule or pair.
void print_eigen_row(FILE* fp, const double* e, const double* v) {
  std::fprintf(fp, "%10.6f %10.6f %10.6f  %10.6f %10.6f %10.6f %10.6f %10.6f %10.6f %10.6f %10.6f %10.6f\n", e[0],
               e[1], e[2], v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]);
}

}  // namespace

void Transport::calc_HL_uc_mol_eigval_eigvec() {
  require_neighbor_tables(*this, "calc_HL_uc_mol_eigval_eigvec");
  std::vector<double> x;
  for (int i = 0; i < nmols_uc; ++i) {
    const int n = mol_natoms[i];
    x.resize(3 * static_cast<size_t>(n));
    mat_vec_mul_n(latt_f2c, mol_x_s[i], x.data(), n);
    calc_uc_mol_moment_and_rotate_x_one(n, mol_atypes[i], x.data(), x.data(), i);
    if (write_rot_mol_flag) {
      create_directory(check_dir);
      const std::string path = format_string("%s/uc_mol_%d_rot.mol", check_dir.c_str(), i + 1);
      write_data_mol(path.c_str(), n, mol_atypes[i], x.data());
    }
  }
  if (unique_uc_mol_one_calc_flag && eigval_output_flag) {
    FILE* fp = open_table(format_string("%s/eigval_1mol.dat", data_dir.c_str()));
    std::fprintf(fp, "# unitcell mol eigenvalues by principal moment of inertia\n");
    std::fprintf(fp, "%d\n", nmols_uc);
    for (int i = 0; i < nmols_uc; ++i) {
      std::fprintf(fp, "   ");
      print_eigen_row(fp, uc_mol_eigval[i], uc_mol_eigvec[i]);
    }
    std::fclose(fp);
  }
}

namespace {

// Steps shared by the full pair check and its dynamic-disorder variant: rotate
// every pair onto its axes, then map every key onto a representative and list
// the representatives. `tables` adds the eigenvalue table and the map file.
void build_unique_pairs(Transport& t, bool tables) {
  std::vector<int> types;
  for (int i = 0; i < t.nmols_uc; ++i) {
    for (int j = 0; j < t.nneighbors[i]; ++j) {
      const int m = t.neighbor_id[i][j];
      const int ni = t.mol_natoms[i];
      const int n = ni + t.mol_natoms[m];
      const double cell[3] = {static_cast<double>(t.neighbor_cx[i][j]), static_cast<double>(t.neighbor_cy[i][j]),
                              static_cast<double>(t.neighbor_cz[i][j])};
      types.assign(t.mol_atypes[i], t.mol_atypes[i] + ni);
      types.insert(types.end(), t.mol_atypes[m], t.mol_atypes[m] + t.mol_natoms[m]);
      double* x = new double[3 * static_cast<size_t>(n)];
      for (int a = 0; a < ni; ++a)
        for (int k = 0; k < 3; ++k) x[3 * a + k] = t.mol_x_s[i][3 * a + k];
      for (int a = 0; a < t.mol_natoms[m]; ++a)
        for (int k = 0; k < 3; ++k) x[3 * (ni + a) + k] = t.mol_x_s[m][3 * a + k] + cell[k];
      mat_vec_mul_n(t.latt_f2c, x, x, n);
      t.calc_2mol_moment_and_rotate_x_one(n, types.data(), x, x, i, j);
      if (t.write_rot_mol_flag) {
        create_directory(t.check_dir);
        const std::string path = format_string("%s/2mol_%d_%d_rot.mol", t.check_dir.c_str(), i + 1, j + 1);
        t.write_data_mol(path.c_str(), n, types.data(), x);
      }
      // The rotated pair stays alive for the dimer inputs; a repeated check
      // replaces it.
      delete[] t.pair_x[i][j];
      t.pair_x[i][j] = x;
    }
  }

  if (tables && t.unique_2mol_calc_flag && t.eigval_output_flag) {
    FILE* fp = open_table(format_string("%s/eigval_2mol.dat", t.data_dir.c_str()));
    std::fprintf(fp, "# 2mol eigenvalues by principal moment of inertia\n");
    std::fprintf(fp, "%d\n", t.nmols_uc);
    for (int i = 0; i < t.nmols_uc; ++i) {
      std::fprintf(fp, "  %d\n", i + 1);
      for (int j = 0; j < t.nneighbors[i]; ++j) {
        std::fprintf(fp, "    %2d: ", j + 1);
        print_eigen_row(fp, t.pair_eigval[i][j], t.pair_eigvec[i][j]);
      }
    }
    std::fclose(fp);
  }

  int nkeys = 0;
  for (int i = 0; i < t.nmols_uc; ++i) nkeys += t.nneighbors[i];
  t.neighbor_nkeys = nkeys;
  std::vector<const double*> eig;
  eig.reserve(nkeys);
  for (int i = 0; i < t.nmols_uc; ++i)
    for (int j = 0; j < t.nneighbors[i]; ++j) eig.push_back(t.pair_eigval[i][j]);

  delete[] t.pair_key_map;
  t.pair_key_map = new int[nkeys];
  for (int k = 0; k < nkeys; ++k) t.pair_key_map[k] = k;
  // One ordered pass: a later match overwrites, and no transitive closure is
  // taken, so a key's representative may change after another key copied it.
  for (int k = 0; k < nkeys; ++k) {
    for (int l = k + 1; l < nkeys; ++l) {
      if (std::fabs(eig[k][0] - eig[l][0]) < 0.01 && std::fabs(eig[k][1] - eig[l][1]) < 0.01 &&
          std::fabs(eig[k][2] - eig[l][2]) < 0.01)
        t.pair_key_map[l] = t.pair_key_map[k];
    }
  }

  if (tables && t.unique_2mol_calc_flag) {
    FILE* fp = open_table(format_string("%s/unique_id_map.dat", t.data_dir.c_str()));
    std::fprintf(fp, "# Unique ID mapping\n");
    std::fprintf(fp, "%d\n", t.nmols_uc);
    int key = 0;
    for (int i = 0; i < t.nmols_uc; ++i) {
      std::fprintf(fp, "  %d\n", t.nneighbors[i]);
      // The third number is the key itself, not its representative: the file
      // records the numbering, deliberately.
      for (int j = 0; j < t.nneighbors[i]; ++j, ++key) std::fprintf(fp, "    %3d %3d  %3d\n", i + 1, j + 1, key + 1);
    }
    std::fclose(fp);
  }

  std::vector<int> reps(t.pair_key_map, t.pair_key_map + nkeys);
  std::sort(reps.begin(), reps.end());
  reps.erase(std::unique(reps.begin(), reps.end()), reps.end());
  delete[] t.pair_keylist;
  t.pair_keylist = new int[reps.size()];
  t.pair_keylist_count = static_cast<int>(reps.size());
  for (size_t k = 0; k < reps.size(); ++k) t.pair_keylist[k] = reps[k] + 1;
}

}  // namespace

void Transport::calc_HL_2mol_eigval_eigvec_and_unique_pairs() {
  require_neighbor_tables(*this, "calc_HL_2mol_eigval_eigvec_and_unique_pairs");
  build_unique_pairs(*this, true);
  if (unique_2mol_calc_flag) {
    std::printf("**** Check Duplicate 2mol pairs ****\n");
    std::printf("  Unique 2mol pairs: %d out of %d\n", pair_keylist_count, neighbor_nkeys);
    for (int k = 0; k < pair_keylist_count; ++k) {
      int mol = 0, nei = 0;
      neighbor_map_key_1d_to_2d(pair_keylist[k] - 1, &mol, &nei);
      std::printf("    %3d %3d   <=>  %3d\n", mol + 1, nei + 1, pair_keylist[k]);
    }
    std::printf("**** End of Check Duplicate 2mol pairs ****\n\n");
  }
  pairs_checked = true;
}

void Transport::dyn_disorder_build_unique_pairs() {
  require_neighbor_tables(*this, "dyn_disorder_build_unique_pairs");
  std::printf("Building dynamic disorder unique pairs...\n");
  build_unique_pairs(*this, false);
  std::printf("  Unique pairs:");
  for (int k = 0; k < pair_keylist_count; ++k) std::printf(" %d", pair_keylist[k]);
  std::printf("\n");
}

int Transport::HL_check_unitcell_unique_mols(bool verbose) {
  require_neighbor_tables(*this, "HL_check_unitcell_unique_mols");
  if (verbose) std::printf("**** Check HL Duplicate Molecules in Unit Cell ****\n");
  for (int i = 0; i < nmols_uc; ++i)
    for (int j = i + 1; j < nmols_uc; ++j)
      if (HL_mols_if_the_same(i, j)) uc_mol_id[j] = uc_mol_id[i];
  if (verbose) {
    std::printf("  Unit cell molecular indexes: ");
    for (int i = 0; i < nmols_uc; ++i) std::printf(" %d", uc_mol_id[i]);
    std::printf("\n");
  }

  std::vector<int> candidates;
  if (!unique_2mol_calc_flag) {
    candidates.assign(uc_mol_id, uc_mol_id + nmols_uc);
  } else {
    // Only the roots of unique pairs become single-molecule jobs. A one-based key
    // belongs to the first root whose running neighbor sum reaches it.
    for (int k = 0; k < pair_keylist_count; ++k) {
      int root = 1;
      int sum = 0;
      for (int i = 0; i < nmols_uc; ++i) {
        sum += nneighbors[i];
        if (sum >= pair_keylist[k]) {
          root = i + 1;
          break;
        }
      }
      candidates.push_back(root);
    }
  }
  std::sort(candidates.begin(), candidates.end());
  candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
  // Candidates are distinct molecule numbers 1..nmols_uc, so the list (nmols_uc
  // long) holds them all.
  uc_mol_unique_count = static_cast<int>(candidates.size());
  for (int k = 0; k < uc_mol_unique_count; ++k) uc_mol_unique_list[k] = candidates[k];
  if (verbose) {
    std::printf("  Unit cell unique molecular indexes:");
    for (int k = 0; k < uc_mol_unique_count; ++k) std::printf(" %d", uc_mol_unique_list[k]);
    std::printf("\n");
  }

  // Both branches return, so the closing banner of the verbose report is never
  // printed; the report deliberately ends with the list of unique indexes.
  if (uc_mol_unique_count == nmols_uc) {
    uc_mol_has_dups = false;
    return 1;
  }
  return 0;
}

void Transport::find_HL_mol_neighbor_index_unique() {
  require_neighbor_tables(*this, "find_HL_mol_neighbor_index_unique");
  for (int i = 0; i < nmols_uc; ++i)
    for (int j = 0; j < nneighbors[i]; ++j)
      for (int m = 0; m < nmols_uc; ++m)
        if (HL_mols_if_the_same(neighbor_id[i][j], m)) nei_mol_id[i][j] = uc_mol_id[m];

  // The stub replaces the neighbor driver that the input writers put in the same
  // script directory.
  create_directory(job_scripts_SCRdir);
  const std::string path = format_string("%s/mol_one_nei.py", job_scripts_SCRdir.c_str());
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", path.c_str());
  write_lines(fp, mol_one_nei_stub_py, sizeof(mol_one_nei_stub_py) / sizeof(mol_one_nei_stub_py[0]));
  std::fclose(fp);
}
