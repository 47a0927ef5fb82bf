// FileIO: duplicate molecules of the unit cell.
//
// Molecules related by symmetry need their reorganisation energies and their
// orbitals computed once. Two tests decide what counts as the same molecule,
// with fixed limits: equal atom counts and masses within 0.01 amu for the
// reorganisation work, and in addition principal moments within 0.01 for the
// orbital work. The checks map every molecule to a representative and list
// the representatives.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "fileio.h"

namespace {

constexpr double kSameMassLimit = 0.01;    // amu
constexpr double kSameMomentLimit = 0.01;  // principal moment units of uc_mol_eigval

// The tests read per-molecule arrays that other operations fill: molecules
// outside the cell, or arrays not there yet, end the run with a message
// rather than reading past or through a null pointer.
void require_molecule_pair(const FileIO& io, int i, int j, const char* caller) {
  if (io.mol_natoms == nullptr || io.mol_mass == nullptr)
    TX_FATAL(txunit::fileio, 1, stderr, "%s: the molecule arrays are not allocated; read the structure first\n",
             caller);
  if (i < 0 || j < 0 || i >= io.nmols_uc || j >= io.nmols_uc)
    TX_FATAL(txunit::fileio, 1, stderr, "%s: molecule %d or %d is outside the %d molecules of the unit cell\n", caller,
             i, j, io.nmols_uc);
}

// Equal atom counts and masses within the limit.
bool same_count_and_mass(const FileIO& io, int i, int j, const char* caller) {
  require_molecule_pair(io, i, j, caller);
  return io.mol_natoms[i] == io.mol_natoms[j] && std::fabs(io.mol_mass[i] - io.mol_mass[j]) <= kSameMassLimit;
}

// The texts and tables of one of the two cell checks.
struct DuplicateCheck {
  const char* caller;
  const char* head;
  const char* tail;
  int* representative;  // uc_mol_seq or uc_mol_id, seeded 1, 2, ...
  const char* representative_name;
  int* unique_list;  // uc_mol_re_list or uc_mol_unique_list
  const char* unique_list_name;
  int (FileIO::*same)(int, int);
};

// Returns the number of representatives, which fill `unique_list` in
// ascending order.
int check_unitcell_same_mols(FileIO& io, const DuplicateCheck& check, bool verbose) {
  const int n = io.nmols_uc;
  if (n > 0 && check.representative == nullptr)
    TX_FATAL(txunit::fileio, 1, stderr, "%s: %s is not allocated; build the neighbor list first\n", check.caller,
             check.representative_name);
  if (n > 0 && check.unique_list == nullptr)
    TX_FATAL(txunit::fileio, 1, stderr, "%s: %s is not allocated; build the neighbor list first\n", check.caller,
             check.unique_list_name);

  if (verbose) std::printf("%s\n", check.head);
  // Pairs in this fixed order; a later i overwrites an earlier assignment, and
  // chains are not collapsed otherwise.
  for (int i = 0; i < n - 1; ++i)
    for (int j = i + 1; j < n; ++j)
      if ((io.*check.same)(i, j)) check.representative[j] = check.representative[i];
  if (verbose) {
    std::printf("  Unit cell molecular indexes: ");
    for (int i = 0; i < n; ++i) std::printf(" %d", check.representative[i]);
    std::printf("\n");
  }

  std::vector<int> values(check.representative, check.representative + std::max(n, 0));
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  int count = 0;
  if (verbose) std::printf("  Unit cell unique molecular indexes:");
  for (int v : values) {
    check.unique_list[count++] = v;
    if (verbose) std::printf(" %d", v);
  }
  if (verbose) std::printf("\n");
  if (verbose) std::printf("%s\n\n", check.tail);
  return count;
}

}  // namespace

int FileIO::RE_mols_if_the_same(int i, int j) {
  return same_count_and_mass(*this, i, j, "RE_mols_if_the_same") ? 1 : 0;
}

// Before the principal moments exist (uc_mol_eigval null, as on the gather
// path, which compares without having computed them) the moment test passes
// for every pair, which is what equal moments would give; the counts and
// masses still decide.
int FileIO::HL_mols_if_the_same(int i, int j) {
  if (!same_count_and_mass(*this, i, j, "HL_mols_if_the_same")) return 0;
  if (uc_mol_eigval == nullptr) return 1;
  if (i >= eigval_rows_allocated || j >= eigval_rows_allocated || uc_mol_eigval[i] == nullptr ||
      uc_mol_eigval[j] == nullptr)
    TX_FATAL(txunit::fileio, 1, stderr,
             "HL_mols_if_the_same: no principal moments for molecule %d or %d; build the neighbor list first\n", i, j);
  for (int k = 0; k < 3; ++k)
    if (!(std::fabs(uc_mol_eigval[i][k] - uc_mol_eigval[j][k]) <= kSameMomentLimit)) return 0;
  return 1;
}

void FileIO::RE_check_unitcell_same_mols(bool verbose) {
  const DuplicateCheck check = {"RE_check_unitcell_same_mols",
                                "**** Check RE Duplicate Molecules in Unit Cell ****",
                                "**** End of Check RE Duplicate Molecules in Unit Cell ****",
                                uc_mol_seq,
                                "uc_mol_seq",
                                uc_mol_re_list,
                                "uc_mol_re_list",
                                &FileIO::RE_mols_if_the_same};
  uc_mol_re_count = check_unitcell_same_mols(*this, check, verbose);
}

bool FileIO::HL_check_unitcell_same_mols(bool verbose) {
  const DuplicateCheck check = {"HL_check_unitcell_same_mols",
                                "**** Check HL Duplicate Molecules in Unit Cell ****",
                                "**** End of Check HL Duplicate Molecules in Unit Cell ****",
                                uc_mol_id,
                                "uc_mol_id",
                                uc_mol_unique_list,
                                "uc_mol_unique_list",
                                &FileIO::HL_mols_if_the_same};
  uc_mol_unique_count = check_unitcell_same_mols(*this, check, verbose);
  if (uc_mol_unique_count != nmols_uc) return false;
  HL_same_mols_flag = false;  // nothing reads it; kept as the record of the answer
  return true;
}
