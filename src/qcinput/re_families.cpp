// Transport: the reorganisation runs of the cell molecules, one family of operations
// per engine. All families share one flow (inputs, one job a state, the two
// drivers); they differ in the input writer, the payload, the job writer and the
// forms of their names, which stay as the workflow knows them.
#include <string>
#include <vector>

#include "re_pieces.h"
#include "txutil.h"

namespace {

using txre::ReState;

struct Family {
  const txre::JobNames* names;
  bool separators;  // "# ----" before each job of the drivers
  // Writes the input of one state of molecule `number` (one-based).
  void (*write_input)(Transport& t, int number, const ReState& state, bool use_chk);
  void (*payload)(Transport& t, std::string& out, int mol_index, const char* state);
  // Writes the job script of one submission.
  void (*write_job)(Transport& t, const Transport::RE_submission& s, const std::string& job_name,
                    const std::string& payload);
};

int natoms_of(const Transport& t, int number) { return t.mol_natoms[number - 1]; }

std::string input_path(Transport& t, int number, const ReState& state, const char* ext) {
  return txre::re_path(t, txre::state_base(number, state.name), ext);
}

// ---- engines -----------------------------------------------------------------

void gaussian_input(Transport& t, int number, const ReState& state, bool use_chk) {
  const int m = number - 1;
  const std::string base = txre::state_base(number, state.name);
  const std::string title = format_string("mol%d", number);
  t.write_gau_mol_com_RE(txre::re_path(t, base, "com").c_str(), natoms_of(t, number), t.mol_elem[m], t.mol_x[m],
                         title.c_str(), base.c_str(), state.charge_mult, t.qc_basis_re.c_str(), t.qc_memory, t.qc_nodes,
                         t.qc_ppn, t.qc_inp_append.c_str(), use_chk);
}

void orca_input(Transport& t, int number, const ReState& state, bool) {
  const int m = number - 1;
  t.write_orca_mol_inp_RE(input_path(t, number, state, "inp").c_str(), natoms_of(t, number), t.mol_elem[m], t.mol_x[m],
                          t.qc_memory, t.qc_ppn, state.charge_mult, t.qc_method.c_str(), t.qc_basis_re.c_str(),
                          t.qc_inp_append.c_str());
}

void qchem_input(Transport& t, int number, const ReState& state, bool) {
  const int m = number - 1;
  t.write_qchem_mol_inp_RE(input_path(t, number, state, "inp").c_str(), natoms_of(t, number), t.mol_elem[m], t.mol_x[m],
                           t.qc_memory, t.qc_ppn, state.charge_mult, t.qc_method.c_str(), t.qc_basis_re.c_str(),
                           t.qc_inp_append.c_str());
}

void bdf_input(Transport& t, int number, const ReState& state, bool) {
  const int m = number - 1;
  t.write_bdf_mol_inp_RE(input_path(t, number, state, "inp").c_str(), natoms_of(t, number), t.mol_elem[m], t.mol_x[m],
                         t.qc_memory, t.qc_ppn, state.charge, state.multiplicity, t.qc_method.c_str(),
                         t.qc_basis_re.c_str(), t.qc_inp_append.c_str());
}

void gaussian_payload(Transport& t, std::string& out, int mol_index, const char* state) {
  t.format_RE_gaussian_job_string(out, mol_index, state, true);
}
void orca_payload(Transport& t, std::string& out, int mol_index, const char* state) {
  t.format_RE_orca_job_string(out, mol_index, state);
}
void qchem_payload(Transport& t, std::string& out, int mol_index, const char* state) {
  t.format_RE_qchem_job_string(out, mol_index, state);
}
void bdf_payload(Transport& t, std::string& out, int mol_index, const char* state) {
  t.format_RE_bdf_job_string(out, mol_index, state);
}

void gaussian_job(Transport& t, const Transport::RE_submission& s, const std::string& job_name,
                  const std::string& payload) {
  t.write_gaussian_RE_job(s.script.c_str(), t.qc_nodes, t.qc_ppn, payload.c_str(), job_name.c_str(), s.marker.c_str());
}
// The engines that run in scratch take the job name as the label of their SCRDIR.
void orca_job(Transport& t, const Transport::RE_submission& s, const std::string& job_name,
              const std::string& payload) {
  t.write_orca_RE_job(s.script.c_str(), t.qc_nodes, t.qc_ppn, job_name.c_str(), job_name.c_str(), s.marker.c_str(),
                      payload.c_str());
}
void qchem_job(Transport& t, const Transport::RE_submission& s, const std::string& job_name,
               const std::string& payload) {
  t.write_qchem_RE_job(s.script.c_str(), t.qc_nodes, t.qc_ppn, job_name.c_str(), job_name.c_str(), s.marker.c_str(),
                       payload.c_str());
}
void bdf_job(Transport& t, const Transport::RE_submission& s, const std::string& job_name, const std::string& payload) {
  t.write_bdf_RE_job(s.script.c_str(), t.qc_nodes, t.qc_ppn, job_name.c_str(), job_name.c_str(), s.marker.c_str(),
                     payload.c_str());
}

const Family kGaussian = {&txre::kGaussianJobNames, false, gaussian_input, gaussian_payload, gaussian_job};
const Family kOrca = {&txre::kOrcaJobNames, true, orca_input, orca_payload, orca_job};
const Family kQchem = {&txre::kQchemBdfJobNames, true, qchem_input, qchem_payload, qchem_job};
const Family kBdf = {&txre::kQchemBdfJobNames, true, bdf_input, bdf_payload, bdf_job};

// ---- the shared flow -----------------------------------------------------------

// One job: its script and payload written, its submission returned for a driver.
Transport::RE_submission write_job(Transport& t, const Family& f, const std::string& job_name,
                                   const std::string& payload) {
  const Transport::RE_submission s = txre::submission(t, *f.names, job_name);
  f.write_job(t, s, job_name, payload);
  return s;
}

// The job of one state alone, named "mol<n>-<state>".
Transport::RE_submission state_job(Transport& t, const Family& f, int number, const ReState& state) {
  std::string payload;
  f.payload(t, payload, number - 1, state.name);
  return write_job(t, f, format_string("mol%d-%s", number, state.name), payload);
}

// The inputs of every covered molecule: the neutral state always, then the cation
// for hole work and the anion for electron work. The charged Gaussian inputs may
// take their start from the neutral checkpoint.
void write_inputs(Transport& t, const Family& f, const std::vector<int>& numbers) {
  create_directory(t.job_scripts_REdir);
  create_directory(t.job_scripts_SCRdir);
  const bool electrons = txre::electron_work(t);
  const bool holes = txre::hole_work(t);
  for (int number : numbers) {
    f.write_input(t, number, txre::kNeutral, false);
    if (holes) f.write_input(t, number, txre::kCation, t.RE_use_neutral_chk);
    if (electrons) f.write_input(t, number, txre::kAnion, t.RE_use_neutral_chk);
  }
}

void write_drivers(Transport& t, const Family& f, const std::vector<Transport::RE_submission>& neutral,
                   const std::vector<Transport::RE_submission>& charged) {
  t.write_RE_driver_py("mol_RE_neutral.py", neutral, f.separators, stderr);
  t.write_RE_driver_py("mol_RE_anion_cation.py", charged, f.separators, stderr);
}

// One job a state; the charged driver holds all anion jobs first, then all cation jobs.
void write_separated(Transport& t, const Family& f, const std::vector<int>& numbers) {
  write_inputs(t, f, numbers);
  std::vector<Transport::RE_submission> neutral;
  std::vector<Transport::RE_submission> charged;
  for (int number : numbers) neutral.push_back(state_job(t, f, number, txre::kNeutral));
  if (txre::electron_work(t))
    for (int number : numbers) charged.push_back(state_job(t, f, number, txre::kAnion));
  if (txre::hole_work(t))
    for (int number : numbers) charged.push_back(state_job(t, f, number, txre::kCation));
  write_drivers(t, f, neutral, charged);
}

// What only the Gaussian route has: the four-point single points on the finished
// checkpoints, and the multipoles of the finished outputs for the outer-sphere and
// site energies.
void write_gaussian_extras(Transport& t, const std::vector<int>& numbers) {
  if (t.RE_calc_lambda_4P) {
    const bool electrons = txre::electron_work(t);
    const bool holes = txre::hole_work(t);
    for (int number : numbers) {
      if (holes)
        for (const ReState* s : {&txre::kNeutralHN, &txre::kCationNC})
          t.write_RE_gaussian_lambda_4P_com(number - 1, s->name, s->charge_mult);
      if (electrons)
        for (const ReState* s : {&txre::kNeutralEN, &txre::kAnionNC})
          t.write_RE_gaussian_lambda_4P_com(number - 1, s->name, s->charge_mult);
    }
    t.write_RE_gaussian_lambda_4P_job(numbers);
  }
  if (t.reorg_outer_flag == 3 || t.lat_site_energy) t.write_RE_gaussian_mps_job(numbers);
}

// Gaussian with the anion and the cation of a molecule chained in one job.
void write_gaussian_combined(Transport& t, bool unique, const char* op) {
  const Family& f = kGaussian;
  const std::vector<int> numbers = txre::molecule_numbers(t, unique, op);
  write_inputs(t, f, numbers);
  std::vector<Transport::RE_submission> neutral;
  std::vector<Transport::RE_submission> charged;
  std::string payload;
  for (int number : numbers) {
    f.payload(t, payload, number - 1, txre::kNeutral.name);
    neutral.push_back(write_job(t, f, format_string("mol%d_neutral", number), payload));
  }
  for (int number : numbers) {
    std::string chained;
    if (txre::electron_work(t)) {
      f.payload(t, payload, number - 1, txre::kAnion.name);
      chained += payload;
    }
    if (txre::hole_work(t)) {
      f.payload(t, payload, number - 1, txre::kCation.name);
      chained += payload;
    }
    charged.push_back(write_job(t, f, format_string("mol%d_anion_cation", number), chained));
  }
  write_drivers(t, f, neutral, charged);
  write_gaussian_extras(t, numbers);
}

void write_gaussian_separated(Transport& t, bool unique, const char* op) {
  const std::vector<int> numbers = txre::molecule_numbers(t, unique, op);
  write_separated(t, kGaussian, numbers);
  write_gaussian_extras(t, numbers);
}

}  // namespace

void Transport::write_RE_gaussian_mol_gjf_and_job() {
  write_gaussian_combined(*this, false, "write_RE_gaussian_mol_gjf_and_job");
}

void Transport::write_RE_gaussian_mol_gjf_and_job_unique() {
  write_gaussian_combined(*this, true, "write_RE_gaussian_mol_gjf_and_job_unique");
}

void Transport::write_RE_gaussian_mol_gjf_and_job_separated() {
  write_gaussian_separated(*this, false, "write_RE_gaussian_mol_gjf_and_job_separated");
}

void Transport::write_RE_gaussian_mol_gjf_and_job_unique_separated() {
  write_gaussian_separated(*this, true, "write_RE_gaussian_mol_gjf_and_job_unique_separated");
}

void Transport::write_RE_orca_mol_inp_and_job_seperated() {
  write_separated(*this, kOrca, txre::molecule_numbers(*this, false, "write_RE_orca_mol_inp_and_job_seperated"));
}

void Transport::write_RE_orca_mol_inp_and_job_unique_seperated() {
  write_separated(*this, kOrca, txre::molecule_numbers(*this, true, "write_RE_orca_mol_inp_and_job_unique_seperated"));
}

void Transport::write_RE_qchem_mol_inp_and_job_seperated() {
  write_separated(*this, kQchem, txre::molecule_numbers(*this, false, "write_RE_qchem_mol_inp_and_job_seperated"));
}

void Transport::write_RE_qchem_mol_inp_and_job_unique_seperated() {
  write_separated(*this, kQchem,
                  txre::molecule_numbers(*this, true, "write_RE_qchem_mol_inp_and_job_unique_seperated"));
}

void Transport::write_RE_bdf_mol_inp_and_job_seperated() {
  write_separated(*this, kBdf, txre::molecule_numbers(*this, false, "write_RE_bdf_mol_inp_and_job_seperated"));
}

void Transport::write_RE_bdf_mol_inp_and_job_unique_seperated() {
  write_separated(*this, kBdf, txre::molecule_numbers(*this, true, "write_RE_bdf_mol_inp_and_job_unique_seperated"));
}
