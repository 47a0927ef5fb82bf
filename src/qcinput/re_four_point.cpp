// Transport: the four-point reorganisation energies of the Gaussian route. Two
// single points a carrier on geometries the relaxations have finished: the neutral
// geometry in the charged occupation and the charged geometry in the neutral one.
// The workflow copies the checkpoints into place before these jobs run.
#include <cstdio>
#include <string>
#include <vector>

#include "re_pieces.h"
#include "txutil.h"

void Transport::write_RE_gaussian_lambda_4P_com(int mol_index, const char* state, const char* charge_mult) {
  const int number = mol_index + 1;
  const std::string base = txre::state_base(number, state);
  FILE* fp = txre::open_re_file(txre::re_path(*this, base, "com"));
  std::fprintf(fp, "%%mem=%dMB\n", qc_memory);
  std::fprintf(fp, "%%nprocs=%d\n", qc_ppn);
  std::fprintf(fp, "%%chk=%s.chk\n", base.c_str());
  std::fprintf(fp, "#P SP %s Pop=full nosymm\n", qc_basis_re.c_str());
  std::fprintf(fp, "Geom=Check Guess=Read scf=(maxcycle=100,xqc)\n");
  std::fprintf(fp, "\n");
  std::fprintf(fp, "mol%d\n", number);
  std::fprintf(fp, "\n");
  std::fprintf(fp, "%s\n", charge_mult != nullptr ? charge_mult : "");
  std::fprintf(fp, "\n");
  std::fclose(fp);
}

// One job a molecule chaining its single points, electrons first; no formatted
// checkpoint is needed from a single point.
void Transport::write_RE_gaussian_lambda_4P_job(const std::vector<int>& molecules) {
  create_directory(job_scripts_REdir);
  create_directory(job_scripts_SCRdir);
  const bool electrons = txre::electron_work(*this);
  const bool holes = txre::hole_work(*this);
  std::vector<RE_submission> jobs;
  std::string payload;
  for (int number : molecules) {
    std::string chained;
    if (electrons) {
      for (const txre::ReState* s : {&txre::kNeutralEN, &txre::kAnionNC}) {
        format_RE_gaussian_job_string(payload, number - 1, s->name, false);
        chained += payload;
      }
    }
    if (holes) {
      for (const txre::ReState* s : {&txre::kNeutralHN, &txre::kCationNC}) {
        format_RE_gaussian_job_string(payload, number - 1, s->name, false);
        chained += payload;
      }
    }
    const std::string job_name = format_string("mol%d_lambda_4P", number);
    const RE_submission job = txre::submission(*this, txre::kGaussianJobNames, job_name);
    write_gaussian_RE_job(job.script.c_str(), qc_nodes, qc_ppn, chained.c_str(), job_name.c_str(), job.marker.c_str());
    jobs.push_back(job);
  }
  write_RE_driver_py("mol_RE_lambda_4P.py", jobs, false, stderr);
}
