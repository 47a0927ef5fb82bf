// The older flat control form: one `key value` pair per line, no sections and no
// "=". Still written by write_config_inp and read here, without the environment
// layer and without the closing steps of the current reader.
#include <fstream>
#include <string>

#include "control_values.h"
#include "tavix_inp.h"

namespace {

using namespace control_values;
using LegacyHandler = void (*)(TavixInp&, const std::string& value, const char* path, int line, bool verbose);

struct LegacyKey {
  const char* key;
  const char* older_key;
  LegacyHandler apply;
};

#define L_INT(member) [](TavixInp& p, const std::string& v, const char*, int, bool) { p.member = to_int(v); }
#define L_REAL(member) [](TavixInp& p, const std::string& v, const char*, int, bool) { p.member = to_real(v); }
// Texts lose their double quotes only; single quotes stay in this form.
#define L_TEXT(member) [](TavixInp& p, const std::string& v, const char*, int, bool) { p.member = to_text_dq(v); }
#define L_MODULE(member, flag)                                          \
  [](TavixInp& p, const std::string& v, const char*, int, bool) {       \
    p.member = to_text_dq(v);                                           \
    p.flag = true;                                                      \
  }

// Only this reader knows the zindo rule: a semi-empirical basis for transfer
// integrals gets a minimal basis for the reorganisation steps.
void apply_basis(TavixInp& p, const std::string& v, const char*, int, bool) {
  p.qc_basis = to_text_dq(v);
  p.qc_basis_re = p.qc_basis.find("zindo") != std::string::npos ? "b3lyp STO-3g" : p.qc_basis;
}

void apply_adjustment(std::vector<int>& list, const std::string& v) {
  for (const std::string& w : words_of(v, " ")) list.push_back(to_int(w));
}

const LegacyKey kLegacyKeys[] = {
    {"do_prepare", nullptr, L_INT(do_transport_prepare)},
    {"do_HL", nullptr, L_INT(do_transport_submit_HL_job)},
    {"do_RE", nullptr, L_INT(do_transport_submit_RE_job)},
    {"do_transferintegral", nullptr, L_INT(do_transport_get_transferintegral)},
    {"do_evc", nullptr, L_INT(do_transport_get_re_evc)},
    {"do_transport_run_MC", nullptr, L_INT(do_transport_run_MC)},
    {"do_transport_get_mob_MC", nullptr, L_INT(do_transport_get_mob_MC)},
    {"do_transport_run_MC_temp", nullptr, L_INT(do_transport_run_MC_temp)},
    {"do_transport_get_mob_MC_temp", nullptr, L_INT(do_transport_get_mob_MC_temp)},
    {"do_transport_run_ME", nullptr, L_INT(do_transport_run_ME)},
    {"do_transport_get_mob_ME", nullptr, L_INT(do_transport_get_mob_ME)},
    {"do_transport_run_ME_temp", nullptr, L_INT(do_transport_run_ME_temp)},
    {"do_transport_get_mob_ME_temp", nullptr, L_INT(do_transport_get_mob_ME_temp)},
    {"do_transport_gather_tavix_data", nullptr, L_INT(do_transport_gather_tavix_data)},
    {"mater_name", nullptr, L_TEXT(mater_name)},
    {"queue_name", nullptr, L_TEXT(queue_name)},
    {"qc_method", nullptr, L_TEXT(qc_method)},
    {"module_tavix", nullptr, L_MODULE(module_tavix, module_tavix_flag)},
    {"module_mpich2", nullptr, L_MODULE(module_mpich2, module_mpich2_flag)},
    {"module_qc", nullptr, L_MODULE(module_qc, module_qc_flag)},
    {"qc_exe", nullptr, L_TEXT(qc_exe)},
    {"basis_name", "qc_basis", apply_basis},
    {"basis_name_re", "qc_basis_re", L_TEXT(qc_basis_re)},
    {"memory", "qc_memory", L_INT(qc_memory)},
    {"gaussian_nodes", "qc_nodes", L_INT(qc_nodes)},
    {"gaussian_ppn", "qc_ppn", L_INT(qc_ppn)},
    {"sched_type", "queue_type", L_TEXT(sched_type)},
    {"start_temp", nullptr, L_REAL(start_temp)},
    {"end_temp", nullptr, L_REAL(end_temp)},
    {"delta_temp", nullptr, L_REAL(delta_temp)},
    {"temp", nullptr, L_REAL(temp)},
    {"maxt", nullptr, L_REAL(maxt)},
    {"delta_angle", nullptr, L_REAL(delta_angle)},
    {"tsimu", nullptr, L_REAL(tsimu)},
    {"tsnap", nullptr, L_REAL(tsnap)},
    {"tstep", nullptr, L_REAL(tstep)},
    {"bond_dis_scale", nullptr, L_REAL(bond_dis_scale)},
    {"lat_cutoff", nullptr, L_REAL(lat_cutoff)},
    {"nsimu", nullptr, L_INT(nsimu)},
    {"iterlimit", nullptr, L_INT(iterlimit)},
    {"nevery_out", nullptr, L_INT(nevery_out)},
    {"sta", nullptr, L_INT(sta)},
    // Not validated here, unlike the current reader.
    {"chargetype", nullptr, L_TEXT(chargetype)},
    {"evc_type", nullptr, L_TEXT(evc_type)},
    {"ratetype", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool) { p.ratetype = to_bare_text(v); }},
    {"vector_a", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool) { read_reals(v, p.vector_a, 3); }},
    {"vector_b", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool) { read_reals(v, p.vector_b, 3); }},
    {"vector_c", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool) { read_reals(v, p.vector_c, 3); }},
    {"nei_scell", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool) { read_ints(v, p.nei_scell, 3); }},
    {"super_cell", "super-cell",
     [](TavixInp& p, const std::string& v, const char*, int, bool) { read_ints(v, p.super_cell, 3); }},
    {"homo_adjustment", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool) { apply_adjustment(p.homo_adjustment, v); }},
    {"lumo_adjustment", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool) { apply_adjustment(p.lumo_adjustment, v); }},
    {"molecule", nullptr,
     [](TavixInp& p, const std::string& v, const char* path, int line, bool) {
       assign_molecule_files(p, v, path, line);
     }},
    {"crystal", nullptr,
     [](TavixInp& p, const std::string& v, const char*, int, bool verbose) {
       p.read_data_cif(to_bare_text(v).c_str(), verbose);
       p.mol_input_mode = 2;
     }},
    // The older spelling with two t's is the only one this form knows.
    {"latt_site_energy", nullptr, L_INT(lat_site_energy)},
};

#undef L_INT
#undef L_REAL
#undef L_TEXT
#undef L_MODULE

const LegacyKey* find_legacy_key(const std::string& key) {
  for (const LegacyKey& e : kLegacyKeys) {
    if (iequals(key, e.key)) return &e;
    if (e.older_key && iequals(key, e.older_key)) return &e;
  }
  return nullptr;
}

}  // namespace

int TavixInp::read_config_inp(const char* path, bool verbose) {
  set_varables_default();
  std::ifstream in(path);
  if (!in) TX_FATAL(txunit::tavix_inp, -1, stderr, "Failed to open input file \"%s\"\n", path);
  std::printf("Reading config file \"%s\"... \n", path);

  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    triml(line);
    if (line.empty() || line[0] == '!' || line[0] == '#') continue;
    size_t bang = line.find('!');
    if (bang != std::string::npos) line.erase(bang);
    // Key and value part at the first blank; a tab does not separate them.
    size_t blank = line.find(' ');
    if (blank == std::string::npos) continue;
    std::string key = line.substr(0, blank);
    trimr(key);
    const std::string value = line.substr(blank + 1);
    const LegacyKey* entry = find_legacy_key(key);
    if (entry == nullptr) {
      TX_FATAL_HEAD(txunit::tavix_inp);
      std::printf("\nUnknown parameter \"%s\" in file %s!!!\n\nLook up the conf.out for available parameters.\n",
                  key.c_str(), path);
      tx_exit(-1);
    }
    entry->apply(*this, value, path, number, verbose);
  }
  inp_read = true;
  return 1;
}
