// The frame every HOMO/LUMO operation shares: the geometry of a cell molecule, a
// neighbor in its place in the crystal, or a pair; the input, its batch job and
// the lines of the Python driver that submits it; the loops over molecules,
// neighbors and pairs, plain or unique, one job each or one array.
//
// A driver is run from the working directory of the calculation: it changes to
// the HL directory, touches each job's running marker in RUN and submits the
// job, so the workflow waits until the job has removed the marker again.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "hl_pieces.h"

namespace txhl {

const DriverLayout gaussian_driver_layout = {true, false, false};
const DriverLayout orca_qchem_bdf_driver_layout = {false, true, true};

namespace {

// Atoms of one input: element indices, and angstrom coordinates 3 per atom.
struct Geometry {
  std::vector<int> elements;
  std::vector<double> x;
  int natoms() const { return static_cast<int>(elements.size()); }
};

// Coordinates of one molecule, sized before anything of it is read: a negative
// atom count ends in std::length_error here, the language's array-size failure.
std::vector<double> coordinate_buffer(int natoms) { return std::vector<double>(3 * static_cast<size_t>(natoms)); }

void append(Geometry& g, const int* elements, int natoms, const std::vector<double>& x) {
  g.elements.insert(g.elements.end(), elements, elements + natoms);
  g.x.insert(g.x.end(), x.begin(), x.end());
}

// Appends molecule m moved by `cell` lattice vectors: fractional coordinates
// plus the shift, then through latt_f2c.
void append_shifted(const Transport& t, int m, const int cell[3], Geometry& g) {
  const int n = t.mol_natoms[m];
  std::vector<double> x = coordinate_buffer(n);
  for (int a = 0; a < n; ++a) {
    double s[3];
    for (int k = 0; k < 3; ++k) s[k] = t.mol_x_s[m][3 * a + k] + cell[k];
    mat_vec_mul(t.latt_f2c, s, &x[3 * static_cast<size_t>(a)]);
  }
  append(g, t.mol_elem[m], n, x);
}

// A cell molecule as the separation left it, in Cartesian coordinates.
Geometry cell_molecule(const Transport& t, int i) {
  const int n = t.mol_natoms[i];
  std::vector<double> x = coordinate_buffer(n);
  std::copy(t.mol_x[i], t.mol_x[i] + x.size(), x.begin());
  Geometry g;
  append(g, t.mol_elem[i], n, x);
  return g;
}

// Appends column j of root i, both zero-based, in its image of the crystal.
void append_neighbor(const Transport& t, int i, int j, Geometry& g) {
  const int cell[3] = {t.neighbor_cx[i][j], t.neighbor_cy[i][j], t.neighbor_cz[i][j]};
  append_shifted(t, t.neighbor_id[i][j], cell, g);
}

Geometry neighbor_molecule(const Transport& t, int i, int j) {
  Geometry g;
  append_neighbor(t, i, j, g);
  return g;
}

// Root i unshifted, then its neighbor j, both from fractional coordinates.
Geometry molecule_pair(const Transport& t, int i, int j) {
  const int origin[3] = {0, 0, 0};
  Geometry g;
  append_shifted(t, i, origin, g);
  append_neighbor(t, i, j, g);
  return g;
}

// "<RUNdir>/running.HL_<name>": relative to job_workdir, as the job removes it.
std::string marker_of(const Transport& t, const std::string& name) {
  return format_string("%s/running.HL_%s", t.job_scripts_RUNdir.c_str(), name.c_str());
}

std::string script_of(const std::string& base) { return format_string("job_%s", base.c_str()); }

void write_input(Transport& t, const HLEngine& e, const std::string& base, const std::string& title,
                 const Geometry& g) {
  const std::string path = format_string("%s/%s.%s", t.job_scripts_HLdir.c_str(), base.c_str(), e.ext);
  e.write_input(t, path.c_str(), g.natoms(), g.elements.data(), g.x.data(), title.c_str(), base.c_str());
}

// One driver file in the script directory, written line by line.
class Driver {
 public:
  Driver(Transport& t, const char* file, bool glob_shutil, bool blank_after_chdir) : t_(t) {
    create_directory(t.job_scripts_SCRdir);
    create_directory(t.job_scripts_HLdir);
    const std::string path = format_string("%s/%s", t.job_scripts_SCRdir.c_str(), file);
    fp_ = std::fopen(path.c_str(), "wt");
    if (fp_ == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", path.c_str());
    std::fprintf(fp_, "#!/usr/bin/env python\n");
    std::fprintf(fp_, "import os\n");
    if (glob_shutil) {
      std::fprintf(fp_, "import glob\n");
      std::fprintf(fp_, "import shutil\n");
    }
    std::fprintf(fp_, "\n");
    std::fprintf(fp_, "cwd = os.getcwd()\n");
    std::fprintf(fp_, "os.chdir(\"%s\")\n", t.job_scripts_HLdir.c_str());
    if (blank_after_chdir) std::fprintf(fp_, "\n");
  }
  ~Driver() {
    std::fprintf(fp_, "os.chdir(cwd)\n");
    std::fprintf(fp_, "\n");
    std::fclose(fp_);
  }
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  // Touch and submit of one job.
  void job(const std::string& marker, const std::string& script, bool separator) {
    if (separator) {
      std::fprintf(fp_, "# ----\n");
      std::fprintf(fp_, "\n");
    }
    std::fprintf(fp_, "os.system(\"touch %s/%s\")\n", t_.job_workdir.c_str(), marker.c_str());
    submit(script);
  }

  // One marker a task, then one submit of the whole array.
  void array(const std::string& marker, const std::vector<int>& indexes, const std::string& script) {
    for (int index : indexes)
      std::fprintf(fp_, "os.system(\"touch %s/%s-%d\")\n", t_.job_workdir.c_str(), marker.c_str(), index);
    std::fprintf(fp_, "\n");
    submit(script);
  }

 private:
  void submit(const std::string& script) {
    const int s = t_.job_sched_type;
    if (s < 0 || s > 3) TX_FATAL(txunit::transport, -1, stderr, "Unknown job scheduling type!\n");
    std::fprintf(fp_, "os.system(\"%s ../%s/%s.%s\")\n", t_.job_submit_cmds[s].c_str(),
                 t_.job_scripts_JOBSdir.c_str(), script.c_str(), t_.job_script_exts[s].c_str());
    std::fprintf(fp_, "\n");
  }

  Transport& t_;
  FILE* fp_;
};

// A job of its own for input `base`: script "job_<base>", job name `base`.
void single_job(Transport& t, const HLEngine& e, Driver& d, const std::string& base, bool separator) {
  const std::string script = script_of(base);
  const std::string marker = marker_of(t, base);
  (t.*e.job)(script.c_str(), t.qc_nodes, t.qc_ppn, base.c_str(), base.c_str(), marker.c_str());
  d.job(marker, script, separator);
}

// One array over inputs "<base>-<index>". A null `index_list` numbers the tasks
// 1..indexes.size(); `indexes` are the numbers either way.
void array_job(Transport& t, const HLEngine& e, Driver& d, const std::string& base, const std::string& marker,
               const std::vector<int>& indexes, const int* index_list) {
  const std::string script = script_of(base);
  (t.*e.job_array)(script.c_str(), t.qc_nodes, t.qc_ppn, base.c_str(), base.c_str(), marker.c_str(),
                   static_cast<int>(indexes.size()), index_list);
  d.array(marker, indexes, script);
}

std::vector<int> one_to(int n) {
  std::vector<int> v;
  for (int k = 1; k <= n; ++k) v.push_back(k);
  return v;
}

// The neighbor and pair operations read the rows build_neighbor_list makes;
// without them the run ends with a message instead of reading through null rows.
void require_neighbor_list(const Transport& t, const char* what) {
  if (t.nmols_uc > 0 && !(t.neighbor_built && t.nneighbors != nullptr))
    TX_FATAL(txunit::transport, 1, stderr, "%s: the neighbor list is not built; build the neighbor list first\n",
             what);
}

// What the neighbor and pair runs differ in.
struct PairRun {
  const char* prefix;  // of input, script and marker names
  const char* driver;  // file in the script directory
  bool pair;           // root and neighbor together; title is the base name
};
const PairRun kNeighbors = {"nei_mol", "mol_one_nei.py", false};
const PairRun kPairs = {"2mol", "mol_two.py", true};

void write_pair_input(Transport& t, const HLEngine& e, const PairRun& run, const std::string& base, int i, int j) {
  if (run.pair)
    write_input(t, e, base, base, molecule_pair(t, i, j));
  else
    write_input(t, e, base, run.prefix, neighbor_molecule(t, i, j));
}

void write_neighbors_or_pairs(Transport& t, const HLEngine& e, const PairRun& run, bool unique) {
  require_neighbor_list(t, run.driver);
  Driver d(t, run.driver, run.pair && e.layout.pair_imports_glob_shutil, true);
  const bool arrays = t.sched_job_array;
  if (!unique) {
    for (int i = 0; i < t.nmols_uc; ++i) {
      const int n = t.nneighbors[i];
      for (int j = 0; j < n; ++j) {
        const std::string base = format_string("%s-%d-%d", run.prefix, i + 1, j + 1);
        write_pair_input(t, e, run, base, i, j);
        if (!arrays) single_job(t, e, d, base, e.layout.plain_separator);
      }
      // A molecule without neighbors gets no array and no line in the driver.
      if (arrays && n > 0) {
        const std::string base = format_string("%s-%d", run.prefix, i + 1);
        array_job(t, e, d, base, marker_of(t, base), one_to(n), nullptr);
      }
    }
    return;
  }

  int key = 0;  // one-based, as pair_keylist holds it
  for (int i = 0; i < t.nmols_uc; ++i) {
    for (int j = 0; j < t.nneighbors[i]; ++j) {
      ++key;
      if (!t.check_if_key_in_keylist(key)) continue;
      const std::string base = t.HL_unique_mol != 0 ? format_string("%s-%d", run.prefix, key)
                                                    : format_string("%s-%d-%d", run.prefix, i + 1, j + 1);
      write_pair_input(t, e, run, base, i, j);
      if (!arrays) single_job(t, e, d, base, true);
    }
  }
  if (arrays) {
    // The array names its tasks by key whatever the inputs are called: with
    // HL_unique_mol 0 its task k looks for an input "<prefix>-<k>" that was
    // written as "<prefix>-<i>-<j>". That mismatch is kept as it is.
    const std::string marker = run.pair ? format_string(e.unique_pair_array_marker, t.job_scripts_RUNdir.c_str(),
                                                        run.prefix)
                                        : marker_of(t, run.prefix);
    const std::vector<int> keys(t.pair_keylist, t.pair_keylist + t.pair_keylist_count);
    array_job(t, e, d, run.prefix, marker, keys, t.pair_keylist);
  }
}

}  // namespace

void write_mol_inputs(Transport& t, const HLEngine& e) {
  for (int i = 0; i < t.nmols_uc; ++i) {
    const std::string base = format_string("mol%d", i + 1);
    const Geometry g = cell_molecule(t, i);
    const std::string path = format_string("%s.%s", base.c_str(), e.ext);
    e.write_input(t, path.c_str(), g.natoms(), g.elements.data(), g.x.data(), base.c_str(), base.c_str());
  }
}

namespace {

// The representatives of a unique run, one-based. The list comes from the
// molecule check; a list that is missing or names no molecule of the cell ends
// the run with a message instead of reading past the molecule arrays.
std::vector<int> unique_molecules(const Transport& t) {
  if (t.uc_mol_unique_count > 0 && t.uc_mol_unique_list == nullptr)
    TX_FATAL(txunit::transport, 1, stderr,
             "mol_one_uc.py: the unique molecule list is not built; check the unit cell molecules first\n");
  const std::vector<int> mols(t.uc_mol_unique_list, t.uc_mol_unique_list + std::max(t.uc_mol_unique_count, 0));
  for (int m : mols)
    if (m < 1 || m > t.nmols_uc)
      TX_FATAL(txunit::transport, 1, stderr,
               "mol_one_uc.py: uc_mol_unique_list holds %d, not a molecule of the cell (1 to %d)\n", m, t.nmols_uc);
  return mols;
}

}  // namespace

void write_uc(Transport& t, const HLEngine& e, bool unique) {
  // One-based molecule numbers; a unique run keeps the numbers of its representatives.
  const std::vector<int> mols = unique ? unique_molecules(t) : one_to(t.nmols_uc);
  Driver d(t, "mol_one_uc.py", false, e.layout.blank_after_uc_chdir);
  for (int m : mols) {
    const std::string base = format_string("uc_mol-%d", m);
    write_input(t, e, base, "uc_mol", cell_molecule(t, m - 1));
    if (!t.sched_job_array) single_job(t, e, d, base, unique || e.layout.plain_separator);
  }
  if (t.sched_job_array)
    array_job(t, e, d, "uc_mol", marker_of(t, "uc_mol"), mols, unique ? t.uc_mol_unique_list : nullptr);
}

void write_nei(Transport& t, const HLEngine& e, bool unique) { write_neighbors_or_pairs(t, e, kNeighbors, unique); }

void write_2mol(Transport& t, const HLEngine& e, bool unique) { write_neighbors_or_pairs(t, e, kPairs, unique); }

}  // namespace txhl
