// Transport: HOMO/LUMO inputs and jobs for Q-Chem.
#include "hl_pieces.h"

namespace {

const txhl::HLEngine kQchem = {
    "inp",
    txhl::method_and_basis_input<&FileIO::write_qchem_mol_inp_HL>,
    &Jobscript::write_qchem_HL_job,
    &Jobscript::write_qchem_HL_job_array,
    txhl::orca_qchem_bdf_driver_layout,
    "%s/running.HL_2mol",
};

}  // namespace

TX_DEFINE_HL_OPERATIONS(kQchem,
                        write_HL_qchem_mol_inp,
                        write_HL_qchem_mol_one_inp_and_job_uc,
                        write_HL_qchem_mol_one_inp_and_job_uc_unique,
                        write_HL_qchem_mol_one_inp_and_job_nei,
                        write_HL_qchem_mol_one_inp_and_job_nei_unique,
                        write_HL_qchem_2mol_inp_and_job,
                        write_HL_qchem_2mol_inp_and_job_unique)
