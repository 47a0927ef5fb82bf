// FileIO: the relaxation and frequency inputs of one molecule in one charge state,
// one writer per engine. Each input optimises the geometry and then computes the
// frequencies there, which is what the normal-mode analysis of the reorganisation
// energies reads.
#include <cstdio>

#include "fileio.h"

namespace {

FILE* open_input(const char* path) {
  FILE* fp = std::fopen(path, "wt");
  if (fp == nullptr) TX_FATAL(txunit::fileio, -1, stderr, "Failed to open output file %s\n", path);
  return fp;
}

// One line an atom: the symbol without its trailing blank, then x, y, z in `format`.
void write_atoms(FileIO& io, FILE* fp, int natoms, const int* elements, const double* x, const char* format) {
  for (int a = 0; a < natoms; ++a) {
    char symbol[3];
    io.find_element_name_from_index(elements[a], symbol);
    std::fprintf(fp, format, symbol, x[3 * a], x[3 * a + 1], x[3 * a + 2]);
  }
}

const char* const kAtomLine = "%-2s %9.4f %9.4f %9.4f\n";
const char* const kBdfAtomLine = "%-2s %13.8f %13.8f %13.8f\n";

const char* text_or_empty(const char* text) { return text != nullptr ? text : ""; }

// The user's lines close every input exactly as given.
void close_with_append(FILE* fp, const char* append_text) {
  std::fputs(text_or_empty(append_text), fp);
  std::fclose(fp);
}

// Each block below is written as it stands in the input, a newline ending each line.

const char* const kGaussianHead =
    "%%mem=%dMB\n"
    "%%nprocs=%d\n"
    "%%chk=%s.chk\n"
    "#P opt freq %s Pop=full nosymm\n"
    "scf=(maxcycle=100,xqc)\n";

const char* const kOrcaHead =
    "! opt freq %s %s NoUseSym\n"
    "\n"
    "%%MaxCore %d\n"
    "%%PAL NPROCS %d END\n"
    "\n"
    "*xyz %s\n";

// Q-Chem: the optimisation, then the frequencies on the geometry read back from it.
const char* const kQchemJobs =
    "$end\n"
    "\n"
    "$rem\n"
    "JOBTYPE         opt\n"
    "METHOD          %s\n"
    "BASIS           %s\n"
    "symmetry        off\n"
    "sym_ignore      true\n"
    "$end\n"
    "\n"
    "@@@\n"
    "\n"
    "$molecule\n"
    "  read\n"
    "$end\n"
    "\n"
    "$rem\n"
    "JOBTYPE         freq\n"
    "METHOD          %s\n"
    "BASIS           %s\n"
    "iprint          10000000\n"
    "gui             2\n"
    "symmetry        off\n"
    "sym_ignore      true\n"
    "$end\n"
    "\n";

// BDF: unrestricted, since the charged states are doublets; the optimiser takes a
// numerical Hessian at the end, from which the frequencies come.
const char* const kBdfHead =
    "$compass\n"
    "Title\n"
    "  RE MOL INP\n"
    "Geometry\n";

const char* const kBdfModules =
    "End Geometry\n"
    "Basis\n"
    "  %s\n"
    "Skeleton\n"
    "nosymm\n"
    "$end\n"
    "\n"
    "$bdfopt\n"
    "Solver\n"
    "  1\n"
    "IOpt\n"
    "  3\n"
    "usenumhess\n"
    "Hess\n"
    "  final\n"
    "$end\n"
    "\n"
    "$xuanyuan\n"
    "Direct\n"
    "$end\n"
    "\n"
    "$scf\n"
    "UKS\n"
    "Charge\n"
    "  %d\n"
    "SpinMulti\n"
    "  %d\n"
    "DFT\n"
    "  %s\n"
    "IprtMo\n"
    "  2\n"
    "$end\n"
    "\n"
    "$resp\n"
    "Geom\n"
    "$end\n"
    "\n";

}  // namespace

void FileIO::write_gau_mol_com_RE(const char* path, int natoms, const int* elements, const double* x, const char* title,
                                  const char* chk_name, const char* charge_mult, const char* method_basis,
                                  int memory_mb, int /*nodes*/, int ppn, const char* append_text, bool use_chk) {
  FILE* fp = open_input(path);
  std::fprintf(fp, kGaussianHead, memory_mb, ppn, text_or_empty(chk_name), text_or_empty(method_basis));
  if (use_chk) {
    // The geometry comes from the checkpoint the neutral run left behind.
    std::fprintf(fp, "Geom=Check Guess=Read\n\n%s\n\n%s\n\n", text_or_empty(title), text_or_empty(charge_mult));
    std::fclose(fp);
    return;
  }
  std::fprintf(fp, "\n%s\n\n%s\n", text_or_empty(title), text_or_empty(charge_mult));
  write_atoms(*this, fp, natoms, elements, x, kAtomLine);
  std::fprintf(fp, "\n");
  close_with_append(fp, append_text);
}

void FileIO::write_orca_mol_inp_RE(const char* path, int natoms, const int* elements, const double* x, int memory,
                                   int ppn, const char* charge_mult, const char* method, const char* basis,
                                   const char* append_text) {
  FILE* fp = open_input(path);
  std::fprintf(fp, kOrcaHead, text_or_empty(method), text_or_empty(basis), memory, ppn, text_or_empty(charge_mult));
  write_atoms(*this, fp, natoms, elements, x, kAtomLine);
  std::fprintf(fp, "*\n");
  close_with_append(fp, append_text);
}

void FileIO::write_qchem_mol_inp_RE(const char* path, int natoms, const int* elements, const double* x, int /*memory*/,
                                    int /*ppn*/, const char* charge_mult, const char* method, const char* basis,
                                    const char* append_text) {
  FILE* fp = open_input(path);
  std::fprintf(fp, "$molecule\n%s\n", text_or_empty(charge_mult));
  write_atoms(*this, fp, natoms, elements, x, kAtomLine);
  std::fprintf(fp, kQchemJobs, text_or_empty(method), text_or_empty(basis), text_or_empty(method),
               text_or_empty(basis));
  close_with_append(fp, append_text);
}

void FileIO::write_bdf_mol_inp_RE(const char* path, int natoms, const int* elements, const double* x, int /*memory*/,
                                  int /*ppn*/, int charge, int multiplicity, const char* method, const char* basis,
                                  const char* append_text) {
  FILE* fp = open_input(path);
  std::fputs(kBdfHead, fp);
  write_atoms(*this, fp, natoms, elements, x, kBdfAtomLine);
  std::fprintf(fp, kBdfModules, text_or_empty(basis), charge, multiplicity, text_or_empty(method));
  close_with_append(fp, append_text);
}
