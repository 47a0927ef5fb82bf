// The control-file reader: load_tavix_inp_file and read_tavix_inp.
//
// A control file is namelist-flavoured text: sections opened by a word that begins
// with "&" and closed by a line that begins with "/", with `key = value` lines in
// between. The same grammar serves the user's tavix.inp and the run's snapshot
// data/config.inp.
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "control_values.h"
#include "tavix_inp.h"

namespace {

using namespace control_values;

// ---- the key table --------------------------------------------------------------

// What a key handler sees besides the object: the value as it stands after the
// "=", the key as written, and where the line came from, for messages.
struct KeyContext {
  const std::string& value;
  const std::string& key;
  const char* path;
  int line;  // 1-based entry of the line table
  bool verbose;
};

using KeyHandler = void (*)(TavixInp&, const KeyContext&);

struct KeyEntry {
  const char* key;
  const char* older_key;  // the older name of the same parameter, or null
  KeyHandler apply;
};

#define INT_KEY(member) [](TavixInp& p, const KeyContext& c) { p.member = to_int(c.value); }
#define REAL_KEY(member) [](TavixInp& p, const KeyContext& c) { p.member = to_real(c.value); }
#define FLAG_KEY(member) [](TavixInp& p, const KeyContext& c) { p.member = to_int(c.value) != 0; }
// A set flag can turn a switch on but never off; the keys so marked rely on that.
#define SET_FLAG_KEY(member) \
  [](TavixInp& p, const KeyContext& c) {   \
    if (to_int(c.value) != 0) p.member = true; \
  }
#define TEXT_KEY(member) [](TavixInp& p, const KeyContext& c) { p.member = to_text(c.value); }
#define BARE_TEXT_KEY(member) [](TavixInp& p, const KeyContext& c) { p.member = to_bare_text(c.value); }

void apply_walltime(TavixInp& p, const KeyContext& c) {
  std::vector<std::string> fields = words_of(to_text(c.value), ":");
  if (fields.size() == 1) {
    int n = to_int(fields[0]);
    p.walltime_hours = n / 3600;
    p.walltime_minutes = (n % 3600) / 60;
    p.walltime_seconds = n % 60;
  } else if (fields.size() == 3) {
    p.walltime_hours = to_int(fields[0]);
    p.walltime_minutes = to_int(fields[1]);
    p.walltime_seconds = to_int(fields[2]);
  } else {
    TX_FATAL(txunit::tavix_inp, 1, stdout,
             "Walltime format incorrect!\nIt should be either in ssssss seconds or in hh:mm:ss\n");
  }
}

void apply_chargetype(TavixInp& p, const KeyContext& c) {
  p.chargetype = to_text(c.value);
  if (!iequals(p.chargetype, "e") && !iequals(p.chargetype, "h") && !iequals(p.chargetype, "a"))
    TX_FATAL(txunit::tavix_inp, 1, stdout,
             "The current chargetype in tavix.inp is '%s', \nwhile the supported chargetype's are: 'e', 'h', 'a'\n",
             p.chargetype.c_str());
}

void apply_evc_type(TavixInp& p, const KeyContext& c) {
  p.evc_type = to_text(c.value);
  if (!iequals(p.evc_type, "cart") && !iequals(p.evc_type, "int"))
    TX_FATAL(txunit::tavix_inp, 1, stdout,
             "The current evc_type in tavix.inp is '%s', \nwhile the supported evc_type's are: 'cart', 'int'\n",
             p.evc_type.c_str());
}

// Prefix comparisons, five characters for "quant": "Marcus-like" and "quantitative"
// pass and are stored as written.
void apply_ratetype(TavixInp& p, const KeyContext& c) {
  p.ratetype = to_bare_text(c.value);
  if (!strcasestr_n(p.ratetype.c_str(), "marcus", 6) && !strcasestr_n(p.ratetype.c_str(), "quant", 5))
    TX_FATAL(txunit::tavix_inp, 1, stdout,
             "The current ratetype in tavix.inp is '%s', \nwhile the supported ratetype's are: marcus, quantum\n",
             p.ratetype.c_str());
}

void append_ints(std::vector<int>& list, const std::string& value) {
  for (const std::string& w : words_of(value, " \t")) list.push_back(to_int(w));
}

void append_reals(std::vector<double>& list, const std::string& value) {
  for (const std::string& w : words_of(value, " \t")) list.push_back(to_real(w));
}

// `molecule = 2 mol1.mol mol2.mol`: a count, then that many names, split at blanks
// alone (a tab does not separate).
void apply_molecule(TavixInp& p, const KeyContext& c) { assign_molecule_files(p, c.value, c.path, c.line); }

// The crystal is read at once, so its data are on the object when the reader returns.
void apply_crystal(TavixInp& p, const KeyContext& c) {
  std::string file = to_bare_text(c.value);
  p.read_data_cif(file.c_str(), c.verbose);
  p.mol_input_mode = 2;
}

void apply_reorg_outer(TavixInp& p, const KeyContext& c) {
  std::vector<std::string> words = words_of(c.value, " ");
  p.reorg_outer_method = words.empty() ? std::string() : words[0];
  size_t needed = 0;
  if (iequals(p.reorg_outer_method, "constant") || iequals(p.reorg_outer_method, "spheres"))
    needed = 2;
  else if (iequals(p.reorg_outer_method, "dielectric"))
    needed = 3;
  else
    // The message names the key, not the offending method: that is how it reads.
    TX_FATAL(txunit::tavix_inp, -1, stdout, "\nUnknown reorg_outer method \"%s\" in file %s!!!\n\n", c.key.c_str(),
             c.path);
  if (words.size() < needed)
    TX_FATAL(txunit::tavix_inp, 1, stderr, "reorg_outer %s in %s line %d needs %zu number(s), found %zu\n",
             p.reorg_outer_method.c_str(), c.path, c.line, needed - 1, words.size() - 1);
  if (iequals(p.reorg_outer_method, "constant")) {
    p.reorg_outer_constant = to_real(words[1]);  // eV
    p.reorg_outer_flag = 1;
  } else if (iequals(p.reorg_outer_method, "spheres")) {
    p.reorg_outer_value = to_real(words[1]);
    for (size_t k = 2; k < words.size(); ++k) p.reorg_outer_radii.push_back(to_real(words[k]) * 0.1);  // nm
    p.reorg_outer_flag = 2;
  } else {
    p.reorg_outer_value = to_real(words[1]);
    p.reorg_outer_cutoff = to_real(words[2]) * 0.1;  // nm
    p.reorg_outer_flag = 3;
  }
}

void apply_thinfilm(TavixInp& p, const KeyContext& c) {
  int v[2] = {p.thinfilm_dir, p.thinfilm_ncell};
  read_ints(c.value, v, 2);
  p.thinfilm_dir = v[0];
  p.thinfilm_ncell = v[1];
  // The closing quote is missing from this message, as it always has been.
  if (p.thinfilm_dir < 0 || p.thinfilm_dir > 2)
    TX_FATAL(txunit::tavix_inp, -1, stdout, "\nthinfilm dir not in range [0-2]: \"%d\n\n", p.thinfilm_dir);
  p.thinfilm_flag = 1;
}

void apply_app_elec_F(TavixInp& p, const KeyContext& c) {
  read_reals(c.value, p.app_elec_F, 3);
  for (double f : p.app_elec_F)
    if (std::abs(f) > 0.0) p.appE_flag = true;  // zero values never clear it
}

// The key sets the ORCA executable template at once, so that an ORCA control file
// passes the compatibility check without a qc_exe; 3 and 4 do nothing of the kind.
void apply_compute_engine(TavixInp& p, const KeyContext& c) {
  p.compute_engine = to_int(c.value);
  if (p.compute_engine == 2) p.qc_exe = "fullpath/orca";
}

// Keys in the order in which the reader tests them.
const KeyEntry kKeys[] = {
    {"do_transport_prepare", nullptr, INT_KEY(do_transport_prepare)},
    {"do_transport_submit_HL_job", nullptr, INT_KEY(do_transport_submit_HL_job)},
    {"do_transport_submit_RE_job", nullptr, INT_KEY(do_transport_submit_RE_job)},
    {"do_transport_get_transferintegral", nullptr, INT_KEY(do_transport_get_transferintegral)},
    {"do_transport_get_re_evc", nullptr, INT_KEY(do_transport_get_re_evc)},
    {"do_transport_run_MC", nullptr, INT_KEY(do_transport_run_MC)},
    {"do_transport_get_mob_MC", nullptr, INT_KEY(do_transport_get_mob_MC)},
    {"do_transport_run_MC_temp", nullptr, INT_KEY(do_transport_run_MC_temp)},
    {"do_transport_get_mob_MC_temp", nullptr, INT_KEY(do_transport_get_mob_MC_temp)},
    {"do_transport_run_ME", nullptr, INT_KEY(do_transport_run_ME)},
    {"do_transport_get_mob_ME", nullptr, INT_KEY(do_transport_get_mob_ME)},
    {"do_transport_run_ME_temp", nullptr, INT_KEY(do_transport_run_ME_temp)},
    {"do_transport_get_mob_ME_temp", nullptr, INT_KEY(do_transport_get_mob_ME_temp)},
    {"do_transport_gather_tavix_data", nullptr, INT_KEY(do_transport_gather_tavix_data)},
    {"mater_name", nullptr, TEXT_KEY(mater_name)},
    {"module_tavix", nullptr,
     [](TavixInp& p, const KeyContext& c) {
       p.module_tavix = to_text(c.value);
       p.module_tavix_flag = true;
     }},
    {"module_mpich2", nullptr,
     [](TavixInp& p, const KeyContext& c) {
       p.module_mpich2 = to_text(c.value);
       p.module_mpich2_flag = true;
     }},
    {"module_qc", "module_gaussian",
     [](TavixInp& p, const KeyContext& c) {
       p.module_qc = to_text(c.value);
       p.module_qc_flag = true;
     }},
    {"qc_exe", "gaussian_exe", TEXT_KEY(qc_exe)},
    {"qc_memory", "memory", INT_KEY(qc_memory)},
    {"qc_nodes", "gaussian_nodes", INT_KEY(qc_nodes)},
    {"qc_ppn", "gaussian_ppn", INT_KEY(qc_ppn)},
    {"qc_method", nullptr, TEXT_KEY(qc_method)},
    {"qc_basis", "basis_name",
     [](TavixInp& p, const KeyContext& c) {
       p.qc_basis = to_text(c.value);
       p.qc_basis_re = p.qc_basis;
     }},
    {"qc_basis_re", "basis_name_re", TEXT_KEY(qc_basis_re)},
    {"qc_es_opt", nullptr, TEXT_KEY(qc_es_opt)},
    {"qc_gs_tddft", nullptr, TEXT_KEY(qc_gs_tddft)},
    {"qc_es_tddft", nullptr, TEXT_KEY(qc_es_tddft)},
    {"qc_es_mult", nullptr, INT_KEY(qc_es_mult)},
    {"use_moo", nullptr, FLAG_KEY(use_moo)},
    {"queue_name", nullptr, TEXT_KEY(queue_name)},
    {"sched_type", "queue_type", TEXT_KEY(sched_type)},
    {"sched_job_array", nullptr, FLAG_KEY(sched_job_array)},
    {"nodelist", nullptr, TEXT_KEY(nodelist)},
    {"job_slot_limit", nullptr, INT_KEY(job_slot_limit)},
    {"walltime", nullptr, apply_walltime},
    {"walltime_hour", nullptr, INT_KEY(walltime_hours)},
    {"start_temp", nullptr, REAL_KEY(start_temp)},
    {"end_temp", nullptr, REAL_KEY(end_temp)},
    {"delta_temp", nullptr, REAL_KEY(delta_temp)},
    {"chargetype", nullptr, apply_chargetype},
    {"evc_type", nullptr, apply_evc_type},
    {"use_evc_dint", nullptr, FLAG_KEY(use_evc_dint)},
    {"vector_a", nullptr, [](TavixInp& p, const KeyContext& c) { read_reals(c.value, p.vector_a, 3); }},
    {"vector_b", nullptr, [](TavixInp& p, const KeyContext& c) { read_reals(c.value, p.vector_b, 3); }},
    {"vector_c", nullptr, [](TavixInp& p, const KeyContext& c) { read_reals(c.value, p.vector_c, 3); }},
    {"lattice_cutoff", "lat_cutoff", REAL_KEY(lat_cutoff)},
    {"neighbor_scell", "nei_scell", [](TavixInp& p, const KeyContext& c) { read_ints(c.value, p.nei_scell, 3); }},
    {"super_cell", "super-cell", [](TavixInp& p, const KeyContext& c) { read_ints(c.value, p.super_cell, 3); }},
    {"bond_dis_scale", nullptr, REAL_KEY(bond_dis_scale)},
    {"HL_unique_ctrl_ratio", nullptr, REAL_KEY(HL_unique_ctrl_ratio)},
    {"read_neighbor_dat", nullptr, SET_FLAG_KEY(read_neighbor_dat)},
    {"temp", nullptr, REAL_KEY(temp)},
    {"maxt", nullptr, REAL_KEY(maxt)},
    {"ratetype", nullptr, apply_ratetype},
    {"sta", nullptr, INT_KEY(sta)},
    {"delta_angle", nullptr, REAL_KEY(delta_angle)},
    {"tsimu", nullptr, REAL_KEY(tsimu)},
    {"tsnap", nullptr, REAL_KEY(tsnap)},
    {"tstep", nullptr, REAL_KEY(tstep)},
    {"nsimu", nullptr, INT_KEY(nsimu)},
    {"iterlimit", nullptr, INT_KEY(iterlimit)},
    {"nevery_out", nullptr, INT_KEY(nevery_out)},
    {"RE_unique_mol", nullptr, INT_KEY(RE_unique_mol)},
    {"HL_unique_mol", nullptr, INT_KEY(HL_unique_mol)},
    {"homo_adjustment", nullptr, [](TavixInp& p, const KeyContext& c) { append_ints(p.homo_adjustment, c.value); }},
    {"lumo_adjustment", nullptr, [](TavixInp& p, const KeyContext& c) { append_ints(p.lumo_adjustment, c.value); }},
    {"molecule", nullptr, apply_molecule},
    {"crystal", nullptr, apply_crystal},
    {"lat_site_energy", nullptr, INT_KEY(lat_site_energy)},
    {"mob_output_level", nullptr, INT_KEY(mob_output_level)},
    {"tavix_dat_file", nullptr, BARE_TEXT_KEY(tavix_dat_file)},
    {"eigval_output_flag", nullptr, INT_KEY(eigval_output_flag)},
    {"compute_engine", nullptr, apply_compute_engine},
    // Raw: the blank after "=" stays in the value, and the job scripts print it so.
    {"scratch", nullptr, [](TavixInp& p, const KeyContext& c) { p.scratch = c.value; }},
    {"eckart_mirror", nullptr, INT_KEY(eckart_mirror)},
    {"app_elec_F", nullptr, apply_app_elec_F},
    {"reorg_outer", nullptr, apply_reorg_outer},
    {"emultipole_induce", nullptr, INT_KEY(emultipole_induce)},
    {"emultipole_cutoff", nullptr, REAL_KEY(emultipole_cutoff)},
    {"emultipole_aDamp", nullptr, REAL_KEY(emultipole_aDamp)},
    {"emultipole_scale1", nullptr,
     [](TavixInp& p, const KeyContext& c) { append_reals(p.emultipole_scale1, c.value); }},
    {"emultipole_wSOR_N", nullptr, REAL_KEY(emultipole_wSOR_N)},
    {"emultipole_wSOR_C", nullptr, REAL_KEY(emultipole_wSOR_C)},
    {"emultipole_maxIter", nullptr, INT_KEY(emultipole_maxIter)},
    {"emultipole_epsTol", nullptr, REAL_KEY(emultipole_epsTol)},
    {"thinfilm", nullptr, apply_thinfilm},
    {"RE_use_neutral_chk", nullptr, SET_FLAG_KEY(RE_use_neutral_chk)},
    // A set flag whose default is true: writing 0 cannot switch the step off.
    {"RE_calc_lambda_4P", nullptr, SET_FLAG_KEY(RE_calc_lambda_4P)},
    {"V_dynamic_disorder", nullptr, SET_FLAG_KEY(V_dynamic_disorder)},
    {"HOMOLUMO_dynamic_disorder", nullptr, SET_FLAG_KEY(HOMOLUMO_dynamic_disorder)},
    {"data_mol_output_level", nullptr, INT_KEY(data_mol_output_level)},
    {"oniom_output_flag", nullptr, INT_KEY(oniom_output_flag)},
    {"oniom_nlayers", nullptr, INT_KEY(oniom_nlayers)},
    {"oniom_com_cutoff", nullptr, REAL_KEY(oniom_com_cutoff)},
};

#undef INT_KEY
#undef REAL_KEY
#undef FLAG_KEY
#undef SET_FLAG_KEY
#undef TEXT_KEY
#undef BARE_TEXT_KEY

const KeyEntry* find_key(const std::string& key) {
  for (const KeyEntry& e : kKeys) {
    if (iequals(key, e.key)) return &e;
    if (e.older_key && iequals(key, e.older_key)) return &e;
  }
  return nullptr;
}

// Mark of each engine that qc_exe must contain, case-sensitively.
const char* engine_mark(int engine) {
  switch (engine) {
    case 1:
      return "g";
    case 2:
      return "orca";
    case 3:
      return "qchem";
    case 4:
      return "bdf";
    default:
      return nullptr;
  }
}

enum class Section { none, transport, qc_append };

}  // namespace

void TavixInp::load_tavix_inp_file(const char* path, bool /*verbose*/) {
  FILE* fp = std::fopen(path, "r");
  if (fp == nullptr) TX_FATAL(txunit::tavix_inp, -1, stdout, "Failed to open input file: %s\n", path);

  // A physical line longer than the buffer becomes several entries.
  char buf[1024];
  int count = 0;
  while (std::fgets(buf, 1024, fp) != nullptr) ++count;

  release_inp_lines();
  inp_lines = new char*[count > 0 ? count : 1];
  std::rewind(fp);
  int n = 0;
  while (n < count && std::fgets(buf, 1024, fp) != nullptr) {
    size_t len = std::strlen(buf);
    inp_lines[n] = new char[len + 1];
    std::memcpy(inp_lines[n], buf, len + 1);
    ++n;
  }
  inp_line_count = n;
  std::fclose(fp);
}

void TavixInp::release_inp_lines() {
  if (inp_lines) {
    for (int i = 0; i < inp_line_count; ++i) delete[] inp_lines[i];
    delete[] inp_lines;
  }
  inp_lines = nullptr;
  inp_line_count = 0;
}

int TavixInp::read_tavix_inp(const char* path, bool verbose) {
  set_varables_default();
  get_environment_variables();
  load_tavix_inp_file(path, verbose);
  if (verbose) std::printf("Reading config file \"%s\"... \n", path);

  Section section = Section::none;
  for (int i = 0; i < inp_line_count; ++i) {
    if (section == Section::qc_append) {
      // Taken raw: only a "/" in the very first column closes the section.
      if (inp_lines[i][0] == '/')
        section = Section::none;
      else
        qc_inp_append += inp_lines[i];
      continue;
    }

    std::string line = inp_lines[i];
    trim(line);
    bool blank = line.empty() || line[0] == '!' || line[0] == '#';

    if (section == Section::none) {
      if (blank) continue;
      size_t bang = line.find('!');
      if (bang != std::string::npos) line.erase(bang);
      // Not trimmed again: "&transport ! main" keeps its blank and opens nothing.
      if (iequals(line, "&transport"))
        section = Section::transport;
      else if (iequals(line, "&gaussian.append") || iequals(line, "&qc_inp_append"))
        section = Section::qc_append;
      continue;
    }

    size_t cut = line.find('!');
    if (cut != std::string::npos) line.erase(cut);
    cut = line.find('#');
    if (cut != std::string::npos) line.erase(cut);
    if (!line.empty() && line[0] == '/') {
      section = Section::none;
      continue;
    }
    size_t eq = line.find('=');
    if (blank || eq == std::string::npos) continue;

    std::string key = line.substr(0, eq);
    trim(key);
    const std::string value = line.substr(eq + 1);
    const KeyEntry* entry = find_key(key);
    if (entry == nullptr)
      TX_FATAL(txunit::tavix_inp, -1, stdout, "\nUnknown parameter \"%s\" in file %s!!!\n\n", key.c_str(), path);
    entry->apply(*this, KeyContext{value, key, path, i + 1, verbose});
  }

  // Closing steps.
  const char* mark = engine_mark(compute_engine);
  if (mark && qc_exe.find(mark) == std::string::npos)
    TX_FATAL(txunit::tavix_inp, 1, stdout,
             "Incomptiable settings:\n  The compute_engine = %d, while qc_exe is set to %s\n"
             "  1 - Gaussian, 2 - ORCA, 3 - QCHEM, 4 - BDF\n",
             compute_engine, qc_exe.c_str());

  unique_uc_mol_one_calc_flag = (HL_unique_mol != 0);
  unique_nei_mol_one_calc_flag = (HL_unique_mol != 0);
  unique_2mol_calc_flag = (HL_unique_mol != 0);
  unique_RE_calc_flag = (RE_unique_mol != 0);

  release_inp_lines();

  if (tavix_dat_file.empty()) tavix_dat_file = "tavix-" + ratetype + ".dat";
  if (sched_type == "lsf")
    for (char& ch : nodelist)
      if (ch == ',') ch = ' ';
  if (sched_type == "slurm") {
    walltime_days = walltime_hours / 24;
    walltime_hours = walltime_hours % 24;
  }
  Jobscript::set_reorg_outer_flag(reorg_outer_flag);
  if (oniom_output_flag != 0) data_mol_output_level |= 8;
  inp_read = true;
  return 1;
}
