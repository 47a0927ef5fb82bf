// re_pieces.h - internal to the reorganisation-energy inputs (src/qcinput/re_*.cpp):
// the charge states, the carrier tests, the molecules a run covers, and the names
// shared by inputs, jobs and drivers.
#ifndef TAVIX_RE_PIECES_H
#define TAVIX_RE_PIECES_H

#include <string>
#include <vector>

#include "transport.h"

namespace txre {

// One charge state of a molecule: the name in file and job names, and the charge
// and multiplicity it is computed in.
struct ReState {
  const char* name;
  const char* charge_mult;  // Gaussian, ORCA, Q-Chem
  int charge;               // BDF
  int multiplicity;         // BDF
};

extern const ReState kNeutral;
extern const ReState kCation;
extern const ReState kAnion;
// Four-point single points: the neutral geometry in the charged occupation and the
// charged geometry in the neutral one.
extern const ReState kNeutralHN;  // hole work
extern const ReState kCationNC;   // hole work
extern const ReState kNeutralEN;  // electron work
extern const ReState kAnionNC;    // electron work

// Carriers of chargetype, by its first letter in any case: a and e electrons, a and
// h holes.
bool electron_work(const Transport& t);
bool hole_work(const Transport& t);

// One-based numbers of the molecules a run covers: 1..nmols_uc, or the entries of
// uc_mol_re_list when `unique`. An entry outside 1..nmols_uc is fatal, naming `op`.
std::vector<int> molecule_numbers(const Transport& t, bool unique, const char* op);

// "re-mol<number>-<state>": input base, checkpoint and output name of a state.
std::string state_base(int number, const char* state);

// "<job_scripts_REdir>/<base>.<ext>".
std::string re_path(const Transport& t, const std::string& base, const char* ext);

// Extension of the quantum-chemistry outputs (qc_log_ext): "log" for Gaussian, "out"
// for the other engines.
std::string output_ext(const Transport& t);

// Script name and marker of a job in the forms of one family ("job_re-%s",
// "%s/running.re_%s" and their kin), the marker under job_scripts_RUNdir.
struct JobNames {
  const char* script_format;  // job name
  const char* marker_format;  // RUN directory, job name
};
extern const JobNames kGaussianJobNames;  // Gaussian, the multipole and four-point jobs
extern const JobNames kOrcaJobNames;
extern const JobNames kQchemBdfJobNames;

Transport::RE_submission submission(const Transport& t, const JobNames& names, const std::string& job_name);

// A file of the RE work opened with "wt"; one that cannot be opened is fatal
// (unit transport, status -1, text on standard error).
FILE* open_re_file(const std::string& path);

}  // namespace txre

#endif  // TAVIX_RE_PIECES_H
