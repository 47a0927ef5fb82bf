// hl_pieces.h - internal to src/qcinput: what the HOMO/LUMO operations of one
// engine differ in, and the shared frame (hl_drivers.cpp) that writes the inputs,
// the batch jobs and the Python drivers from that description.
#ifndef TAVIX_HL_PIECES_H
#define TAVIX_HL_PIECES_H

#include "transport.h"

namespace txhl {

// Writes one input of `natoms` atoms (coordinates in angstrom, 3 per atom) with
// the run's method, basis, memory, processes and append text. `title` is the
// title line where the engine has one; `base` is the input base name, which
// Gaussian also gives its checkpoint.
using InputWriter = void (*)(Transport& t, const char* path, int natoms, const int* elements, const double* x,
                             const char* title, const char* base);
using JobWriter = void (Jobscript::*)(const char* script_name, int nodes, int ppn, const char* inp_name,
                                      const char* job_name, const char* marker);
using JobArrayWriter = void (Jobscript::*)(const char* script_name, int nodes, int ppn, const char* inp_name,
                                           const char* job_name, const char* marker, int count,
                                           const int* index_list);

// How an engine's drivers are laid out. Gaussian's came first; the later engines'
// drivers differ in three small ways that the workflow does not depend on but that
// are kept, so that a driver reads the same from one release to the next.
struct DriverLayout {
  bool blank_after_uc_chdir;     // a blank line after the change to the HL directory in mol_one_uc.py
  bool pair_imports_glob_shutil; // mol_two.py also imports glob and shutil (and uses neither)
  bool plain_separator;          // "# ----" before each job of a run without arrays and not unique
};
extern const DriverLayout gaussian_driver_layout;
extern const DriverLayout orca_qchem_bdf_driver_layout;

struct HLEngine {
  const char* ext;  // input extension
  InputWriter write_input;
  JobWriter job;
  JobArrayWriter job_array;
  const DriverLayout& layout;
  // Marker of the one array job of a unique pair run, from job_scripts_RUNdir and
  // "2mol". Deliberately not the same for all engines: Gaussian's has "_unique".
  const char* unique_pair_array_marker;
};

// The writer of ORCA, Q-Chem and BDF, which take method and basis apart.
template <void (FileIO::*W)(const char*, int, const int*, const double*, int, int, const char*, const char*,
                            const char*)>
void method_and_basis_input(Transport& t, const char* path, int natoms, const int* elements, const double* x,
                            const char* /*title*/, const char* /*base*/) {
  (t.*W)(path, natoms, elements, x, t.qc_memory, t.qc_ppn, t.qc_method.c_str(), t.qc_basis.c_str(),
         t.qc_inp_append.c_str());
}

// "mol<i>.<ext>" of every cell molecule in the current directory, title and
// checkpoint "mol<i>"; no job, no driver.
void write_mol_inputs(Transport& t, const HLEngine& e);
// Cell molecules: all of them, or those of uc_mol_unique_list; driver mol_one_uc.py.
void write_uc(Transport& t, const HLEngine& e, bool unique);
// Neighbors in their place in the crystal: all, or those whose key is in
// pair_keylist; driver mol_one_nei.py.
void write_nei(Transport& t, const HLEngine& e, bool unique);
// Pairs of a molecule and a neighbor, likewise; driver mol_two.py.
void write_2mol(Transport& t, const HLEngine& e, bool unique);

}  // namespace txhl

// Defines an engine's seven operations, named as in the interface, on its
// description `engine`: the molecule inputs, then cell molecules, neighbors and
// pairs, each plain and unique.
#define TX_DEFINE_HL_OPERATIONS(engine, mol, uc, uc_unique, nei, nei_unique, pair, pair_unique) \
  void Transport::mol() { txhl::write_mol_inputs(*this, engine); }                             \
  void Transport::uc() { txhl::write_uc(*this, engine, false); }                               \
  void Transport::uc_unique() { txhl::write_uc(*this, engine, true); }                         \
  void Transport::nei() { txhl::write_nei(*this, engine, false); }                             \
  void Transport::nei_unique() { txhl::write_nei(*this, engine, true); }                       \
  void Transport::pair() { txhl::write_2mol(*this, engine, false); }                           \
  void Transport::pair_unique() { txhl::write_2mol(*this, engine, true); }

#endif  // TAVIX_HL_PIECES_H
