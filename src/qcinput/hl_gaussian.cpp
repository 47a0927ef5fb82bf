// Transport: HOMO/LUMO inputs and jobs for Gaussian. The route takes method and
// basis from qc_basis alone, and the checkpoint of each input is named after it,
// for the formchk step of its job.
#include "hl_pieces.h"

namespace {

void gaussian_input(Transport& t, const char* path, int natoms, const int* elements, const double* x,
                    const char* title, const char* base) {
  t.write_gau_mol_com_HL(path, natoms, elements, x, title, base, t.qc_basis.c_str(), t.qc_memory, t.qc_nodes,
                         t.qc_ppn, t.qc_inp_append.c_str());
}

const txhl::HLEngine kGaussian = {
    "com",
    gaussian_input,
    &Jobscript::write_gaussian_HL_job,
    &Jobscript::write_gaussian_HL_job_array,
    txhl::gaussian_driver_layout,
    "%s/running.HL_%s_unique",
};

}  // namespace

TX_DEFINE_HL_OPERATIONS(kGaussian,
                        write_HL_gaussian_mol_gif,
                        write_HL_gaussian_mol_one_gjf_and_job_uc,
                        write_HL_gaussian_mol_one_gjf_and_job_uc_unique,
                        write_HL_gaussian_mol_one_gjf_and_job_nei,
                        write_HL_gaussian_mol_one_gjf_and_job_nei_unique,
                        write_HL_gaussian_2mol_gjf_and_job,
                        write_HL_gaussian_2mol_gif_and_job_unique)
