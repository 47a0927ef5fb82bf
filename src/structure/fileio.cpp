// FileIO: construction, destruction and the simple accessors of the crystal.
#include "fileio.h"

#include <cstring>

#include "array_release.h"

FileIO::FileIO()
    : structure_read(0),
      spacegroup_number(-1),
      identifier("tavix"),
      cif_natoms(0),
      cif_atypes(nullptr),
      cif_x_s(nullptr),
      cif_x(nullptr),
      cif_radii(nullptr),
      data_mol_output_level(2),
      debug_level(0),
      data_dir("data"),
      mol_input_mode(-1),
      nmols_uc(0),
      mol_natoms(nullptr),
      mol_elem(nullptr),
      mol_x(nullptr),
      mol_x_s(nullptr),
      mol_x_com(nullptr),
      mol_x_s_com(nullptr),
      mol_mass(nullptr),
      mol_index(nullptr),
      mol_files(nullptr),
      bond_dis_scale(1.15),
      uc_mol_seq(nullptr),
      uc_mol_re_list(nullptr),
      uc_mol_re_count(0),
      uc_mol_id(nullptr),
      uc_mol_unique_list(nullptr),
      uc_mol_unique_count(0),
      uc_mol_eigval(nullptr),
      HL_same_mols_flag(true),
      RE_use_neutral_chk(false),
      RE_calc_lambda_4P(true),
      use_evc_dint(false),
      thinfilm_flag(0),
      thinfilm_dir(0),
      thinfilm_ncell(0),
      emultipole_induce(1),
      emultipole_cutoff(4.0),
      emultipole_aDamp(0.39),
      emultipole_wSOR_N(0.75),
      emultipole_wSOR_C(0.75),
      emultipole_maxIter(512),
      emultipole_epsTol(0.001),
      mol_rows_allocated(0),
      mol_files_allocated(0),
      eigval_rows_allocated(0) {
  // Values that the model leaves unset until a reading fills them start at zero.
  std::memset(cell_latt, 0, sizeof(cell_latt));
  std::memset(latt_f2c, 0, sizeof(latt_f2c));
  std::memset(latt_c2f, 0, sizeof(latt_c2f));
  std::memset(vector_a, 0, sizeof(vector_a));
  std::memset(vector_b, 0, sizeof(vector_b));
  std::memset(vector_c, 0, sizeof(vector_c));
  std::memset(latt_3x3, 0, sizeof(latt_3x3));
  std::memset(super_latt_3x3, 0, sizeof(super_latt_3x3));
  std::memset(super_cell, 0, sizeof(super_cell));
  std::memset(latt_lengths, 0, sizeof(latt_lengths));
}

FileIO::~FileIO() {
  release_molecule_arrays();
  release_crystal_arrays();
  release_array(uc_mol_seq);
  release_array(uc_mol_re_list);
  release_array(uc_mol_id);
  release_array(uc_mol_unique_list);
  release_rows(uc_mol_eigval, eigval_rows_allocated);
  eigval_rows_allocated = 0;
}

void FileIO::release_crystal_arrays() {
  release_array(cif_atypes);
  release_array(cif_x_s);
  release_array(cif_x);
  release_array(cif_radii);
}

void FileIO::release_molecule_arrays() {
  release_array(mol_natoms);
  release_rows(mol_elem, mol_rows_allocated);
  release_rows(mol_x, mol_rows_allocated);
  release_rows(mol_x_s, mol_rows_allocated);
  release_rows(mol_x_com, mol_rows_allocated);
  release_rows(mol_x_s_com, mol_rows_allocated);
  release_array(mol_mass);
  release_array(mol_index);
  mol_rows_allocated = 0;
  release_rows(mol_files, mol_files_allocated);
  mol_files_allocated = 0;
}

int FileIO::get_cif_natoms() { return cif_natoms; }
int* FileIO::get_cif_atypes() { return cif_atypes; }
double* FileIO::get_cif_x() { return cif_x; }
double* FileIO::get_cif_x_s() { return cif_x_s; }
double* FileIO::get_cell_latt() { return cell_latt; }
const char* FileIO::get_identifier() { return identifier.c_str(); }
// Valid only for rows of the file's atom loop, which the expansion does not grow.
const char* FileIO::get_cif_atom_symbol(int i) {
  if (i < 0 || i >= static_cast<int>(atoms.type_symbol.size()))
    TX_FATAL(txunit::fileio, 1, stderr, "Atom row %d is outside the %d rows of the crystal file's atom loop\n", i,
             static_cast<int>(atoms.type_symbol.size()));
  return atoms.type_symbol[i].c_str();
}
void FileIO::set_bond_dis_scale(double scale) { bond_dis_scale = scale; }
void FileIO::set_data_mol_output_level(int level) { data_mol_output_level = level; }
int FileIO::get_data_mol_output_level() { return data_mol_output_level; }

void FileIO::get_cif_lattice_vectors(double* a, double* b, double* c) {
  for (int k = 0; k < 3; ++k) {
    a[k] = latt_f2c[k][0];
    b[k] = latt_f2c[k][1];
    c[k] = latt_f2c[k][2];
  }
}
