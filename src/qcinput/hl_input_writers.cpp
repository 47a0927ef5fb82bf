// FileIO: the single-point inputs from which the orbital tools take HOMO, LUMO
// and overlaps, one writer per engine. All four share the atom lines and the
// closing append text; the engines differ in head and keywords only.
#include <cstdio>
#include <initializer_list>

#include "fileio.h"

namespace {

FILE* open_input(const char* path) {
  FILE* fp = std::fopen(path, "wt");
  if (fp == nullptr) TX_FATAL(txunit::fileio, -1, stderr, "Failed to open output file %s\n", path);
  return fp;
}

// One line per atom: the element symbol without its padding blank, then x, y, z.
// BDF reads eight decimals, the others four.
void write_atom_lines(FileIO& io, FILE* fp, int natoms, const int* elements, const double* x, bool bdf) {
  for (int a = 0; a < natoms; ++a) {
    char symbol[3];
    io.find_element_name_from_index(elements[a], symbol);
    const double* r = x + 3 * static_cast<size_t>(a);
    if (bdf)
      std::fprintf(fp, "%-2s %13.8f %13.8f %13.8f\n", symbol, r[0], r[1], r[2]);
    else
      std::fprintf(fp, "%-2s %9.4f %9.4f %9.4f\n", symbol, r[0], r[1], r[2]);
  }
}

// The user's lines close every input exactly as given; nothing is added after them.
void close_with_append(FILE* fp, const char* append_text) {
  if (append_text != nullptr) std::fputs(append_text, fp);
  std::fclose(fp);
}

const char* text_or_empty(const char* s) { return s != nullptr ? s : ""; }

// Fixed lines of an input, each written with its newline.
void write_lines(FILE* fp, std::initializer_list<const char*> lines) {
  for (const char* line : lines) std::fprintf(fp, "%s\n", line);
}

}  // namespace

// The route takes method and basis from `method_basis`; the IOp switches make
// Gaussian print the overlap and all orbital coefficients.
void FileIO::write_gau_mol_com_HL(const char* path, int natoms, const int* elements, const double* x,
                                  const char* title, const char* chk_name, const char* method_basis, int memory_mb,
                                  int /*nodes*/, int ppn, const char* append_text) {
  FILE* fp = open_input(path);
  std::fprintf(fp, "%%chk=%s.chk\n", text_or_empty(chk_name));
  std::fprintf(fp, "%%mem=%dMB\n", memory_mb);
  std::fprintf(fp, "%%nprocs=%d\n", ppn);
  std::fprintf(fp, "#P %s IOp(3/33=1,5/33=2) Pop=full nosymm\n", text_or_empty(method_basis));
  std::fprintf(fp, "\n%s\n\n", text_or_empty(title));
  write_lines(fp, {"0 1"});
  write_atom_lines(*this, fp, natoms, elements, x, false);
  write_lines(fp, {""});
  close_with_append(fp, append_text);
}

void FileIO::write_orca_mol_inp_HL(const char* path, int natoms, const int* elements, const double* x, int memory,
                                   int ppn, const char* method, const char* basis, const char* append_text) {
  FILE* fp = open_input(path);
  std::fprintf(fp, "! SP %s %s NoUseSym\n\n", text_or_empty(method), text_or_empty(basis));
  std::fprintf(fp, "%%MaxCore %d\n", memory);
  std::fprintf(fp, "%%PAL NPROCS %d END\n\n", ppn);
  write_lines(fp, {orca_inp_extra.c_str(), "*xyz 0 1"});
  write_atom_lines(*this, fp, natoms, elements, x, false);
  write_lines(fp, {"*"});
  close_with_append(fp, append_text);
}

void FileIO::write_qchem_mol_inp_HL(const char* path, int natoms, const int* elements, const double* x,
                                    int /*memory*/, int /*ppn*/, const char* method, const char* basis,
                                    const char* append_text) {
  FILE* fp = open_input(path);
  write_lines(fp, {"$molecule", "0 1"});
  write_atom_lines(*this, fp, natoms, elements, x, false);
  write_lines(fp, {"$end", "", "$rem", "JOBTYPE         SP"});
  std::fprintf(fp, "METHOD          %s\n", text_or_empty(method));
  std::fprintf(fp, "BASIS           %s\n", text_or_empty(basis));
  write_lines(fp, {"gui             2", "symmetry        off", "sym_ignore      true", "$end", ""});
  close_with_append(fp, append_text);
}

// The functional goes to the scf block; IprtMo and outaooverlap make BDF print
// the orbitals and the AO overlap.
void FileIO::write_bdf_mol_inp_HL(const char* path, int natoms, const int* elements, const double* x, int /*memory*/,
                                  int /*ppn*/, const char* method, const char* basis, const char* append_text) {
  FILE* fp = open_input(path);
  write_lines(fp, {"$compass", "Title", "  HL MOL INP", "Geometry"});
  write_atom_lines(*this, fp, natoms, elements, x, true);
  write_lines(fp, {"End Geometry", "Basis"});
  std::fprintf(fp, "  %s\n", text_or_empty(basis));
  write_lines(fp, {"Skeleton", "nosymm", "$end", "", "$xuanyuan", "Direct", "$end", "", "$scf", "RKS", "Charge",
                   "  0", "SpinMulti", "  1", "DFT"});
  std::fprintf(fp, "  %s\n", text_or_empty(method));
  write_lines(fp, {"MPEC+COSX", "IprtMo", "  2", "outaooverlap", "$end", ""});
  close_with_append(fp, append_text);
}
