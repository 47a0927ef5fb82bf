// FileIO: the XYZ and molfile writers, and write_mol_files, which turns the
// molecules of the cell into the structure output under data_dir.
#include <algorithm>
#include <cstdio>
#include <string>

#include "fileio.h"
#include "structure_output.h"

namespace structure_output {

// Open failure of the XYZ and molfile writers, write_cif2pdb and
// write_cif2poscar: the message alone on standard error, status -1.
FILE* open_output_quoted(const char* path, const char* mode) {
  FILE* fp = std::fopen(path, mode);
  if (fp == nullptr) {
    std::fprintf(stderr, "Failed to open output file \"%s\"\n", path);
    tx_exit(-1);
  }
  return fp;
}

}  // namespace structure_output

void FileIO::write_data_xyz(const char* path) { write_data_xyz(path, cif_natoms, cif_atypes, cif_x); }

void FileIO::write_data_xyz(const char* path, int natoms, int* types, double* x) {
  FILE* fp = structure_output::open_output_quoted(path, "w");
  std::fprintf(fp, "%d\n", natoms);
  std::fprintf(fp, "mol xyz file\n");
  for (int i = 0; i < natoms; ++i) {
    char symbol[3];
    find_element_name_from_index(types[i], symbol);
    std::fprintf(fp, "%2s %14.10f %14.10f %14.10f\n", symbol, x[3 * i], x[3 * i + 1], x[3 * i + 2]);
  }
  std::fclose(fp);
}

void FileIO::write_data_mol(const char* path) { write_data_mol(path, cif_natoms, cif_atypes, cif_x); }

// No bond block: the counts line always says 0 bonds.
void FileIO::write_data_mol(const char* path, int natoms, int* types, double* x) {
  FILE* fp = structure_output::open_output_quoted(path, "w");
  std::fprintf(fp, "Molecule\n");
  std::fprintf(fp, "Created by TAVIX\n");
  std::fprintf(fp, "\n");
  std::fprintf(fp, "%3d  0  0  0  0  0  0  0  0  0999 V2000\n", natoms);
  for (int i = 0; i < natoms; ++i) {
    char symbol[3];
    find_element_name_from_index(types[i], symbol);
    std::fprintf(fp, " %9.4f %9.4f %9.4f %-2s  0  0  0  0  0  0  0  0  0  0\n", x[3 * i], x[3 * i + 1],
                 x[3 * i + 2], symbol);
  }
  std::fprintf(fp, "M  END\n");
  std::fclose(fp);
}

// data_mol_output_level is a bit mask: 4 the supercell CIF, 1 the unit-cell
// CIF, 2 one molfile per molecule. With 1 and without 2 the unit cell comes
// with molecule 1 as a sample, on purpose.
void FileIO::write_mol_files() {
  create_directory(data_dir);
  const int level = data_mol_output_level;
  if (level & 4) {
    const std::string path = format_string("%s/supercell.cif", data_dir.c_str());
    write_supercell_cif(path.c_str(), nmols_uc, mol_natoms, mol_elem, mol_x_s, super_cell[0], super_cell[1],
                        super_cell[2]);
  }
  if (level & 1) {
    const std::string path = format_string("%s/%s", data_dir.c_str(), "unitcell.cif");
    write_unitcell_cif(path.c_str(), nmols_uc, mol_natoms, mol_elem, mol_x_s);
  }
  int nfiles = 0;
  if (level & 2)
    nfiles = nmols_uc;
  else if (level & 1)
    nfiles = std::min(1, nmols_uc);
  for (int i = 0; i < nfiles; ++i) {
    const std::string path = format_string("%s/%s", data_dir.c_str(), mol_files[i]);
    write_data_mol(path.c_str(), mol_natoms[i], mol_elem[i], mol_x[i]);
  }
}

void FileIO::write_mol_files(const char* prefix) {
  for (int i = 0; i < nmols_uc; ++i) {
    const std::string path = format_string("%s-%d.mol", prefix, i + 1);
    write_data_mol(path.c_str(), mol_natoms[i], mol_elem[i], mol_x[i]);
  }
}
