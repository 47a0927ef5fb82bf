// structure_output.h - pieces shared by the structure writers (xyz_mol_writers.cpp,
// cif_writers.cpp, pdb_writers.cpp, structure_converters.cpp). Not part of the
// public interface of FileIO.
#ifndef TAVIX_STRUCTURE_OUTPUT_H
#define TAVIX_STRUCTURE_OUTPUT_H

#include <cstdio>
#include <functional>
#include <string>

#include "fileio.h"

namespace structure_output {

// Local date of the run, the creation date of CIF and PDB files.
std::string creation_date();
// Open failure of the CIF writers and write_supercell_pdb: position line, then the
// message, status -1.
FILE* open_output_or_fatal(const char* path);
// Open failure of the XYZ and molfile writers, write_cif2pdb and write_cif2poscar:
// the message alone on standard error, status -1.
FILE* open_output_quoted(const char* path, const char* mode);
// The cells of an na x nb x nc supercell in writing order.
void for_each_supercell_cell(const FileIO& io, int na, int nb, int nc, const std::function<void(int, int, int)>& body);
// The head every P1 CIF of the engine shares, through the atom loop's label and
// type columns; the caller adds its coordinate columns. a, b and c are multiplied
// by `length_scale` (supercells, the 3 x 3 x 3 neighbor pictures).
void write_p1_cif_head(FILE* fp, const std::string& identifier, const std::string& date, const double cell[6],
                       const double length_scale[3]);
// The start of every converter: the crystal, its molecules made whole, the lattice settled.
void load_crystal(FileIO& io, const char* input, bool verbose, bool write_cellvec);

}  // namespace structure_output

#endif  // TAVIX_STRUCTURE_OUTPUT_H
