// FileIO: the PDB writers. Two forms on purpose: write_supercell_pdb keeps a
// CRYST1 line of its own widths, write_cif2pdb the standard columns, which
// read_data_pdb reads back.
#include <cstdio>
#include <functional>
#include <string>

#include "fileio.h"
#include "structure_output.h"

namespace {

// Residue name of every molecule in PDB and gro rows; the residue number tells
// the molecules apart.
const char* const kResidueName = "MOL";

// The ATOM row of both writers. Atom name = symbol and a number in
// hexadecimal: the atom's 1-based place in its molecule, modulo 256 so that
// the name keeps its four columns (13-16) in molecules of any size.
void write_pdb_atom_row(FILE* fp, FileIO& io, int serial, int type, int place_in_molecule, int residue,
                        const double* x) {
  char symbol[3];
  io.find_element_name_from_index(type, symbol);
  const unsigned name_number = static_cast<unsigned>(place_in_molecule) % 256u;
  std::fprintf(fp, "%-6s%5d %2s%-2X %3.3s %1s%4d    %8.3f%8.3f%8.3f%6.2f%6.2f%10s%2s%2s\n", "ATOM", serial, symbol,
               name_number, kResidueName, "", residue, x[0], x[1], x[2], 1.0, 0.0, "", symbol, "");
}

}  // namespace

// Same cell order and thin-film cut as write_supercell_cif. Residue numbers
// run through every molecule written, serials through every atom.
void FileIO::write_supercell_pdb(const char* path, int nmols, int* natoms, int** types, double** x_s, int na, int nb,
                                 int nc) {
  FILE* fp = structure_output::open_output_or_fatal(path);
  std::fprintf(fp, "REMARK   TAVIX PDB file\n");
  std::fprintf(fp, "REMARK   Created:  %s\n", structure_output::creation_date().c_str());
  std::fprintf(fp, "CRYST1 %8.3f %8.3f %8.3f %8.3f %8.3f %8.3f P 1           1\n", na * cell_latt[0],
               nb * cell_latt[1], nc * cell_latt[2], cell_latt[3], cell_latt[4], cell_latt[5]);
  int serial = 0;
  int residue = 0;
  structure_output::for_each_supercell_cell(*this, na, nb, nc, [&](int i, int j, int k) {
    for (int m = 0; m < nmols; ++m) {
      ++residue;
      for (int a = 0; a < natoms[m]; ++a) {
        const double* f = &x_s[m][3 * a];
        const double shifted[3] = {i + f[0], j + f[1], k + f[2]};
        double cart[3];
        coord_f2c(shifted, cart);
        write_pdb_atom_row(fp, *this, ++serial, types[m][a], a + 1, residue, cart);
      }
    }
  });
  std::fprintf(fp, "TER\n");
  std::fclose(fp);
}

void FileIO::write_cif2pdb(const char* input, const char* output, bool verbose, bool write_cellvec) {
  structure_output::load_crystal(*this, input, verbose, write_cellvec);
  FILE* fp = structure_output::open_output_quoted(output, "w");
  std::fprintf(fp, "TITLE     %s\n", identifier.c_str());
  std::fprintf(fp, "REMARK    TAVIX generated pdf file\n");
  std::fprintf(fp, "CRYST1%9.3f%9.3f%9.3f%7.2f%7.2f%7.2f P 1           1\n", cell_latt[0], cell_latt[1],
               cell_latt[2], cell_latt[3], cell_latt[4], cell_latt[5]);
  std::fprintf(fp, "MODEL        1\n");
  int serial = 0;
  for (int m = 0; m < nmols_uc; ++m)
    for (int a = 0; a < mol_natoms[m]; ++a)
      write_pdb_atom_row(fp, *this, ++serial, mol_elem[m][a], a + 1, m + 1, &mol_x[m][3 * a]);
  std::fprintf(fp, "TER\n");
  std::fprintf(fp, "ENDMDL\n");
  std::fclose(fp);
}
