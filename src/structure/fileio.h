// fileio.h - class FileIO: everything the engine knows about one crystal, the
// element table, and the structure readers and writers.
//
// Member definitions, one topic a file:
//   src/structure/fileio.cpp          construction, destruction, simple accessors
//   src/structure/elements.cpp        Elements_m, nw_elem_radius_m and the look-ups
//   src/structure/cell_geometry.cpp   cell <-> matrix, coordinate conversions, wraps
//   src/structure/cif_reader.cpp      read_data_cif, ParseTransformString
//   src/structure/spacegroup_p1.cpp   make_spacegroup_P1
//   src/structure/molecule_separation.cpp  read_crystal_strcuture_files, the separation
//                                     walks and find_bond_atom*
//   src/structure/whole_molecule.cpp  make_whole_molecule
//   src/structure/duplicate_molecules.cpp  RE_/HL_mols_if_the_same and the two cell checks
//   src/structure/xyz_mol_writers.cpp write_data_xyz, write_data_mol, write_mol_files
//   src/structure/cif_writers.cpp     write_data_cif, write_unitcell_cif, write_supercell_cif,
//                                     write_cif_mol_one
//   src/structure/pdb_writers.cpp     write_supercell_pdb, write_cif2pdb
//   src/structure/structure_converters.cpp  write_cif_unwrap, write_cif2* , write_cif_expand,
//                                     output_prin_moment_inertia
//   src/qcinput/gaussian_gjf_one.cpp  write_data_gjf_one
//   src/structure/molfile_reader.cpp  read_data_mol and the V3000 block readers
//   src/structure/coordinate_readers.cpp   read_data_xyz, read_data_pdb, read_data_gro,
//                                          parse_gaussian_com
#ifndef TAVIX_FILEIO_H
#define TAVIX_FILEIO_H

#include <cstdio>
#include <istream>
#include <map>
#include <string>
#include <vector>

#include "txutil.h"

// One row of the element table. Radii are in units of 1/250 angstrom.
struct ElementData {
  const char* symbol;  // two characters, blank padded on the right
  double mass;         // atomic mass units
  int cov_radius;      // covalent radius, 1/250 angstrom
  int vdw_radius;      // van der Waals radius, 1/250 angstrom (carried, never read)
  int color;           // colour index (carried, never read)
  const char* name;    // British spelling, capitals
};

constexpr int NUM_ELEMENTS_M = 104;
extern const ElementData Elements_m[NUM_ELEMENTS_M];
// Bond radii in angstrom by atomic number; entries 104 and 105 are spares.
extern const double nw_elem_radius_m[106];

// Text columns of a crystal file's atom loop, kept as the exact tokens.
struct Atoms {
  std::vector<std::string> label;
  std::vector<std::string> type_symbol;
  std::vector<std::string> fract_x;
  std::vector<std::string> fract_y;
  std::vector<std::string> fract_z;
};

// Text columns of a crystal file's bond loop.
struct Bonds {
  std::vector<std::string> atom_site_label_1;
  std::vector<std::string> atom_site_label_2;
  std::vector<std::string> distance;
  std::vector<std::string> site_symmetry_2;
  std::vector<std::string> bond_type;
};

class FileIO {
 public:
  FileIO();
  ~FileIO();

  // ---- crystal as read ---------------------------------------------------
  int structure_read;                    // 1 once read_data_cif has finished
  int spacegroup_number;                 // -1 when the file gives none
  std::string identifier;                // text behind data_
  std::string chemical_name;
  std::string spacegroup_name;           // Hermann-Mauguin name as read
  std::vector<std::string> symmetry_ops; // cleaned by sg_trim, file order
  double cell_latt[6];                   // a, b, c (angstrom), alpha, beta, gamma (degrees)
  Atoms atoms;
  Bonds bonds;
  int cif_natoms;
  int* cif_atypes;                       // element index per atom, -1 unknown
  double* cif_x_s;                       // fractional, 3 per atom
  double* cif_x;                         // angstrom, 3 per atom
  double* cif_radii;                     // bond radius per atom, angstrom
  int data_mol_output_level;             // bit mask for write_mol_files
  int debug_level;                       // traces of the space-group expansion
  std::string data_dir;                  // directory of structure output
  std::string crystal_file;              // path of the crystal file read last
  std::vector<int> uc_mol_natoms;        // atoms per separated molecule
  std::vector<int> uc_mol_atoms;         // crystal atom indices, molecules concatenated

  // ---- lattice ------------------------------------------------------------
  double latt_f2c[3][3];                 // fractional -> Cartesian, columns are a, b, c
  double latt_c2f[3][3];                 // inverse of latt_f2c
  double vector_a[3];                    // angstrom
  double vector_b[3];
  double vector_c[3];
  double latt_3x3[3][3];                 // copy of latt_f2c once the lattice is settled
  double super_latt_3x3[3][3];           // latt_3x3 with its rows scaled by super_cell
  int super_cell[3];
  double latt_lengths[3];                // angstrom

  // ---- molecules of the unit cell ----------------------------------------
  int mol_input_mode;                    // 1 molecule files, 2 crystal file, else none
  int nmols_uc;
  int* mol_natoms;
  // Element indices per molecule; the neighbor code calls the same rows mol_atypes.
  // The anonymous unions of this class only give one member two names of the same
  // type; GCC and Clang define reading either name.
  union {
    int** mol_elem;
    int** mol_atypes;
  };
  double** mol_x;                        // angstrom, 3 per atom, molecule whole
  double** mol_x_s;                      // fractional, 3 per atom, molecule whole
  double** mol_x_com;                    // angstrom, 3 per molecule
  double** mol_x_s_com;                  // fractional, 3 per molecule
  double* mol_mass;                      // atomic mass units
  int* mol_index;                        // 1 .. nmols_uc
  char** mol_files;
  double bond_dis_scale;                 // factor on a sum of radii in every bond test

  // ---- duplicate-molecule bookkeeping -------------------------------------
  int* uc_mol_seq;                       // representative for reorganisation work
  int* uc_mol_re_list;
  int uc_mol_re_count;
  int* uc_mol_id;                        // representative for orbital work
  int* uc_mol_unique_list;
  int uc_mol_unique_count;
  double** uc_mol_eigval;                // principal moments, 3 per molecule
  // True until every unit-cell molecule turns out unique; both names are in use.
  union {
    bool HL_same_mols_flag;
    bool uc_mol_has_dups;
  };

  // ---- parameters only structure handling needs ---------------------------
  bool RE_use_neutral_chk;
  bool RE_calc_lambda_4P;
  std::vector<int> lumo_adjustment;
  std::vector<int> homo_adjustment;
  bool use_evc_dint;                     // false selects evc.cart.dat
  int thinfilm_flag;
  int thinfilm_dir;                      // film normal: 0, 1 or 2
  int thinfilm_ncell;
  int emultipole_induce;
  double emultipole_cutoff;
  double emultipole_aDamp;
  std::vector<double> emultipole_scale1;
  double emultipole_wSOR_N;
  double emultipole_wSOR_C;
  int emultipole_maxIter;
  double emultipole_epsTol;

  // ---- molfile reading state ------------------------------------------------
  std::vector<std::string> v3000_tokens;  // tokens of the current V3000 line
  std::map<int, int> atom_index_map;      // V3000 atom number -> 1-based row
  std::string molfile_path;               // molfile being read, named in its error messages

  // ---- element look-ups (elements.cpp) ------------------------------------
  int find_element_index_from_name(const std::string& name);
  double find_element_radius_from_name(const std::string& name);
  void find_element_name_from_mass(double mass, char* out);
  void find_element_name_from_index(int index, char* out);
  double find_element_mass_from_index(int index);
  double find_element_radius_from_index(int index);
  double find_element_radius_from_index_nw(int index);

  // ---- simple accessors (fileio.cpp) ---------------------------------------
  int get_cif_natoms();
  int* get_cif_atypes();
  double* get_cif_x();
  double* get_cif_x_s();
  double* get_cell_latt();
  const char* get_identifier();
  const char* get_cif_atom_symbol(int i);
  void set_bond_dis_scale(double scale);
  void set_data_mol_output_level(int level);
  int get_data_mol_output_level();
  void get_cif_lattice_vectors(double* a, double* b, double* c);

  // ---- cell geometry (cell_geometry.cpp) ----------------------------------
  void convert_cell6_to_latt3x3(const double* cell6, double latt[3][3]);
  void convert_latt3x3_to_cell6(const double latt[3][3], double* cell6);
  void set_cell_lattice(const double* abc, double alpha, double beta, double gamma);
  void coord_f2c(double& x, double& y, double& z);
  void coord_f2c(const double* in, double* out);
  void coord_c2f(double& x, double& y, double& z);
  void coord_c2f(const double* in, double* out);
  void PBC_scaled_x_wrap(double* x);
  void PBC_scaled_disp_wrap(double* dx);
  // The six "  Cell lattice ..." lines of the readers' verbose reports.
  void print_cell_latt();

  // ---- CIF reader (cif_reader.cpp, spacegroup_p1.cpp) ----------------------
  void read_data_cif(const char* path, bool verbose);
  void ParseTransformString(const std::string& op, double rot[3][3], double* trans);
  void make_spacegroup_P1(int fractional);

  // ---- separation of the crystal into molecules (molecule_separation.cpp,
  //      whole_molecule.cpp, duplicate_molecules.cpp) -------------------------
  void read_crystal_strcuture_files(bool verbose, bool write_cellvec);
  void separate_cif_molecules(bool verbose);
  void separate_gjf_molecules(bool verbose);
  void find_bond_atom(int natoms, int* unvisited, int nvisited, int* visited, int* new_atom, int* ref_atom,
                      double* dist);
  void find_bond_atom_cart(int natoms, int* unvisited, int nvisited, int* visited, int* new_atom, int* ref_atom,
                           double* dist);
  void find_bond_atom_one(int natoms, double* x_s, double* radii, int* unvisited, int nvisited, int* visited,
                          int* new_atom, int* ref_atom, double* dist);
  void make_whole_molecule(int number, int natoms, int* types, double* x_s, bool verbose);
  int RE_mols_if_the_same(int i, int j);
  int HL_mols_if_the_same(int i, int j);
  void RE_check_unitcell_same_mols(bool verbose);
  bool HL_check_unitcell_same_mols(bool verbose);

  // ---- structure writers and converters -------------------------------------
  void write_data_xyz(const char* path);
  void write_data_xyz(const char* path, int natoms, int* types, double* x);
  void write_data_mol(const char* path);
  void write_data_mol(const char* path, int natoms, int* types, double* x);
  void write_data_cif(const char* path, bool fractional);
  void write_data_cif(const char* path, int natoms, int* types, double* x_s);
  void write_unitcell_cif(const char* path, int nmols, int* natoms, int** types, double** x_s);
  void write_supercell_cif(const char* path, int nmols, int* natoms, int** types, double** x_s, int na, int nb,
                           int nc);
  void write_supercell_pdb(const char* path, int nmols, int* natoms, int** types, double** x_s, int na, int nb,
                           int nc);
  void write_cif_mol_one(FILE* fp, int first, int natoms, int* types, double* x_s, double* shift, double scale,
                         int number);
  void write_mol_files();
  void write_mol_files(const char* prefix);
  void output_prin_moment_inertia(const char* path, double* eigval, double* eigvec);
  void write_cif_unwrap(const char* input, const char* output, bool verbose, bool write_cellvec);
  void write_cif2mol(const char* input, const char* output, bool verbose, bool write_cellvec);
  void write_cif2pdb(const char* input, const char* output, bool verbose, bool write_cellvec);
  void write_cif2poscar(const char* input, const char* output, bool verbose, bool write_cellvec);
  void write_cif2xyz(const char* input, const char* output, bool verbose, bool write_cellvec);
  void write_cif2gro(const char* input, const char* output, bool verbose, bool write_cellvec);
  void write_cif2gjf(const char* input, const char* output, bool verbose, bool write_cellvec, int charge, int spin,
                     const char* keywords);
  void write_cif_expand(const char* input, const char* output, bool verbose, bool write_cellvec, int na, int nb,
                        int nc, bool write_pdb);
  // ---- dipole tuning (src/structure/dipole_tune.cpp) -----------------------------
  // FILEIO-DIPOLE-BEGIN
  // Series of two-molecule structures with the second molecule turned about, or
  // moved along, an axis; one CIF (and optionally one XYZ) file per step.
  // `files` holds one crystal file of two molecules or two XYZ files; `axis` is
  // null for the principal axis `dir` (0..2) of the dimer; angles in degrees,
  // displacements in angstrom; `centre` is used when it holds three values.
  void dipole_tune(const std::vector<std::string>& files, const char* prefix, bool do_rotate, bool do_displace,
                   const double* axis, int dir, double ang_end, int ang_n, double disp_end, int disp_n,
                   bool write_xyz, bool verbose, const std::vector<double>& centre);
  // Head of a Gaussian input of the tuned dimers (link-0 lines, route, title,
  // charge and multiplicity); dipole_tune appends its eight lines on every call.
  std::vector<std::string> gaussian_head_lines{};
  // FILEIO-DIPOLE-END

  // ---- low-level input writers of the quantum-chemistry engines (src/qcinput) --
  // FILEIO-HL-WRITERS-BEGIN
  // Single-point inputs for orbitals and overlaps (src/qcinput/hl_input_writers.cpp).
  // `x` holds 3 coordinates per atom (angstrom); `append_text` closes the file as
  // given. Gaussian takes method and basis from one text; `nodes` is carried but
  // the input names processes only, as do memory and ppn for Q-Chem and BDF.
  void write_gau_mol_com_HL(const char* path, int natoms, const int* elements, const double* x, const char* title,
                            const char* chk_name, const char* method_basis, int memory_mb, int nodes, int ppn,
                            const char* append_text);
  void write_orca_mol_inp_HL(const char* path, int natoms, const int* elements, const double* x, int memory,
                             int ppn, const char* method, const char* basis, const char* append_text);
  void write_qchem_mol_inp_HL(const char* path, int natoms, const int* elements, const double* x, int memory,
                              int ppn, const char* method, const char* basis, const char* append_text);
  void write_bdf_mol_inp_HL(const char* path, int natoms, const int* elements, const double* x, int memory, int ppn,
                            const char* method, const char* basis, const char* append_text);
  // Output block of every ORCA orbital input, written with a newline after it: the
  // basis, overlap, orbital energies and coefficients the orbital tools read.
  std::string orca_inp_extra =
      "%output\n"
      "  PrintLevel=Normal\n"
      "  Print[ P_Basis       ] 2\n"
      "  Print[ P_Overlap     ] 1\n"
      "  Print[ P_OrbEn       ] 1\n"
      "  Print[ P_MOs         ] 1\n"
      "end";
  // FILEIO-HL-WRITERS-END
  // FILEIO-RE-WRITERS-BEGIN
  // Relaxation and frequency inputs of one molecule in one charge state, for the
  // reorganisation energies (src/qcinput/re_input_writers.cpp). Coordinates in
  // angstrom, 3 per atom; memory in MB. A file that cannot be opened is fatal.
  // With use_chk the Gaussian input takes geometry and guess from its checkpoint and
  // holds neither atoms nor append text. nodes is carried and not written.
  void write_gau_mol_com_RE(const char* path, int natoms, const int* elements, const double* x, const char* title,
                            const char* chk_name, const char* charge_mult, const char* method_basis, int memory_mb,
                            int nodes, int ppn, const char* append_text, bool use_chk);
  void write_orca_mol_inp_RE(const char* path, int natoms, const int* elements, const double* x, int memory, int ppn,
                             const char* charge_mult, const char* method, const char* basis, const char* append_text);
  // memory and ppn are carried and not written.
  void write_qchem_mol_inp_RE(const char* path, int natoms, const int* elements, const double* x, int memory, int ppn,
                              const char* charge_mult, const char* method, const char* basis, const char* append_text);
  void write_bdf_mol_inp_RE(const char* path, int natoms, const int* elements, const double* x, int memory, int ppn,
                            int charge, int multiplicity, const char* method, const char* basis,
                            const char* append_text);
  // FILEIO-RE-WRITERS-END
  // FILEIO-EVC-WRITERS-BEGIN
  // Output extensions the normal-mode chain names, and its directory (Transport
  // keeps its own evc_dir, which its operations see).
  std::string gaussian_log_ext = "log";
  std::string fchk_ext = "fchk";
  std::string orca_out_ext = "out";
  std::string mps_ext = "mps";
  std::string evc_dir = "evc";
  // Inputs of the four-point route (src/qcinput/reorg4p_inputs.cpp): checkpoint
  // "<chk_name>.chk", memory in MB, the atom lines as the user's input has them. The
  // checkpoint forms take geometry from the checkpoint and hold no atoms; only the
  // ground-state one reads the guess too. A file that cannot be opened is fatal.
  void write_reorg4p_groundstate_gau_com(const char* path, const char* chk_name, int memory_mb, int nprocs,
                                         const char* basis, const std::vector<std::string>& atom_lines);
  void write_reorg4p_excitedstate_gau_com(const char* path, const char* chk_name, int memory_mb, int nprocs,
                                          const char* es_opt, const char* basis, int multiplicity,
                                          const std::vector<std::string>& atom_lines);
  void write_reorg4p_gau_com_Read_from_chk(const char* path, const char* chk_name, int memory_mb, int nprocs,
                                           const char* method, const char* basis, const char* title,
                                           int multiplicity, bool guess_read);
  // FILEIO-EVC-WRITERS-END
  // The older single-molecule Gaussian input (src/qcinput/gaussian_gjf_one.cpp).
  void write_data_gjf_one(const char* path, int natoms, int* elements, double* x, int nprocs, int memory_mb,
                          const char* method_basis);

  // ---- molfile reader (molfile_reader.cpp) ---------------------------------
  void read_data_mol(const char* path, int slot, bool verbose);
  int ReadV3000Line(std::istream& in, std::vector<std::string>& tokens);
  int ReadV3000Block(std::istream& in, int slot, bool verbose);
  int ReadAtomBlock(std::istream& in);
  int ReadBondBlock(std::istream& in);
  int ReadRGroupBlock(std::istream& in);
  int ReadUnimplementedBlock(std::istream& in, std::string& name);
  int AddBond(int, int, int, int);
  void SetFormalCharge(int);
  void SetSpinMultiplicity(int);
  void SetIsotope(int);

  // ---- coordinate readers (coordinate_readers.cpp) -------------------------
  void read_data_xyz(const char* path, bool verbose);
  void read_data_pdb(const char* path, bool verbose);
  void read_data_gro(const char* path, bool verbose);
  int parse_gaussian_com(const std::string& path, std::vector<std::string>& lines);

  // ---- allocation bookkeeping ----------------------------------------------
  // Rows allocated for the per-molecule arrays, so that they can be released
  // even after nmols_uc has been reset by a new reading. Every operation that
  // allocates such rows records their count here.
  int mol_rows_allocated;   // mol_elem, mol_x, mol_x_s, mol_x_com, mol_x_s_com
  int mol_files_allocated;  // mol_files
  int eigval_rows_allocated;  // uc_mol_eigval
  void release_molecule_arrays();
  void release_crystal_arrays();
};

#endif  // TAVIX_FILEIO_H
