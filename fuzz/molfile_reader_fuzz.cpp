// Fuzzes the MDL molfile reader (V2000 and V3000) with arbitrary text.
#include <exception>
#include <string>

#include "fileio.h"
#include "fuzz_common.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  txfuzz::init();
  return 0;
}

namespace {

// What the molecule-file driver prepares before reading a slot: one row, null.
void allocate_one_slot(FileIO& io) {
  io.nmols_uc = 1;
  io.mol_natoms = new int[1]();
  io.mol_elem = new int*[1]();
  io.mol_x = new double*[1]();
  io.mol_x_s = new double*[1]();
  io.mol_x_com = new double*[1]();
  io.mol_x_s_com = new double*[1]();
  io.mol_rows_allocated = 1;
}

// V3000 atoms go to the crystal arrays; a few rows let both the writes and the
// guard for rows beyond them be reached.
void allocate_crystal(FileIO& io, int natoms) {
  io.cif_natoms = natoms;
  io.cif_atypes = new int[natoms]();
  io.cif_x = new double[3 * natoms]();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string path = txfuzz::write_input(data, size, "input.mol");
  try {
    FileIO io;
    io.debug_level = static_cast<int>(size & 1);
    allocate_one_slot(io);
    allocate_crystal(io, 8);
    io.read_data_mol(path.c_str(), 0, false);
  } catch (const txfuzz::FatalExit&) {
  } catch (const std::exception&) {
    // std::out_of_range from a short V2000 atom line ends the program uncaught;
    // here it is an expected outcome.
  }
  return 0;
}
