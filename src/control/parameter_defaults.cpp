// TavixInp: the constructed values, the read defaults, the environment layer and
// the engine setter. Precedence, lowest first: constructed value, read default
// (set_varables_default), environment (get_environment_variables), control file.
#include <cstdlib>
#include <cstring>

#include "tavix_inp.h"

TavixInp::TavixInp()
    : do_transport_prepare(1),
      do_transport_submit_HL_job(1),
      do_transport_submit_RE_job(1),
      do_transport_get_transferintegral(1),
      do_transport_get_re_evc(1),
      do_transport_run_MC(1),
      do_transport_run_MC_temp(0),
      do_transport_get_mob_MC(1),
      do_transport_get_mob_MC_temp(0),
      do_transport_run_ME(0),
      do_transport_run_ME_temp(0),
      do_transport_get_mob_ME(0),
      do_transport_get_mob_ME_temp(0),
      do_transport_gather_tavix_data(1),
      inp_line_count(0),
      inp_lines(nullptr),
      inp_read(false),
      compute_engine(1),
      // Spelled with the digit one on purpose: an object that writes a control
      // file without having read one shows this spelling.
      qc_method("b31yp"),
      qc_basis("b3lyp 6-31g*"),
      qc_basis_re("b3lyp 6-31g*"),
      qc_memory(8192),
      temp(1.0),
      start_temp(0.0),
      end_temp(0.0),
      delta_temp(0.0),
      lat_cutoff(0.0),
      delta_angle(0.0),
      maxt(0.0),
      sta(0),
      nsimu(0),
      tsimu(0.0),
      tsnap(0.0),
      tstep(0.0),
      iterlimit(0),
      nevery_out(0),
      nei_scell{0, 0, 0},
      HL_unique_mol(1),
      RE_unique_mol(1),
      HL_unique_ctrl_ratio(0.05),
      lat_site_energy(0),
      eckart_mirror(0),
      appE_flag(false),
      app_elec_F{0.0, 0.0, 0.0},
      reorg_outer_flag(0),
      reorg_outer_value(0.0),
      reorg_outer_constant(0.0),
      reorg_outer_cutoff(0.0),
      use_moo(false),
      HOMOLUMO_dynamic_disorder(false),
      V_dynamic_disorder(false),
      read_neighbor_dat(false),
      mob_output_level(0),
      data_mol_output_level(2),
      eigval_output_flag(0),
      oniom_output_flag(0),
      oniom_nlayers(2),
      oniom_com_cutoff(50.0),
      qc_es_opt("TD"),
      qc_gs_tddft("TD"),
      qc_es_mult(1),
      qc_es_tddft("TD(triplet)"),
      unique_uc_mol_one_calc_flag(true),
      unique_nei_mol_one_calc_flag(true),
      unique_2mol_calc_flag(true),
      unique_RE_calc_flag(true) {}

// The line table belongs to a reading and is released at its end; only a reading
// cut short by an intercepted fatal exit leaves one behind for the destructor.
TavixInp::~TavixInp() { release_inp_lines(); }

int TavixInp::get_compute_engine() { return compute_engine; }
bool TavixInp::get_appE_flag() { return appE_flag; }
bool TavixInp::get_read_neighbor_flag() { return read_neighbor_dat; }
bool TavixInp::get_moo_flag() { return use_moo; }

void TavixInp::set_compute_engine(int engine) {
  compute_engine = engine;
  switch (engine) {
    case 2:
      qc_exe = "fullpath/orca";  // a template for the user to replace, never resolved
      break;
    case 3:
      qc_exe = "qchem";
      break;
    case 4:
      qc_exe = "$BDFHOME/sbin/bdfdrv.py";
      qc_basis = "6-31g(d,p)";
      qc_basis_re = "6-31g(d,p)";
      break;
    default:
      qc_exe = "g16";
      break;
  }
}

// Only the fields with a read default are touched: everything else keeps its value
// across a second reading on the same object.
void TavixInp::set_varables_default() {
  qc_method = "b3lyp";
  qc_basis = "b3lyp 6-31g*";
  qc_basis_re = "b3lyp 6-31g*";
  qc_memory = 8192;
  ratetype = "quantum";
  chargetype = "a";
  temp = 300.0;
  start_temp = 200.0;
  end_temp = 300.0;
  delta_temp = 50.0;
  evc_type = "cart";
  lat_cutoff = 4.0;
  delta_angle = 10.0;
  maxt = 10000.0;
  sta = 1;
  nsimu = 2000;
  tsimu = 1000.0;
  tsnap = 5.0;
  tstep = 1.0;
  iterlimit = 100;
  nevery_out = 10;
  nei_scell[0] = nei_scell[1] = nei_scell[2] = 3;
  lat_site_energy = 0;
  eckart_mirror = 0;
  mob_output_level = 2;
  data_mol_output_level = 2;

  vector_a[0] = 8.098;
  vector_a[1] = 0.0;
  vector_a[2] = 0.0;
  vector_b[0] = 0.0;
  vector_b[1] = 5.953;
  vector_b[2] = 0.0;
  vector_c[0] = -4.888095;
  vector_c[1] = 0.0;
  vector_c[2] = 7.138882;
  super_cell[0] = super_cell[1] = super_cell[2] = 5;
  nmols_uc = 0;

  sched_type = "slurm";
  queue_name = "X28Cv4";
  qc_exe = "g16";
  qc_nodes = 1;
  qc_ppn = 8;
}

namespace {
// A variable that is set overwrites its text; one that is not leaves it alone.
bool env_text(const char* name, std::string& out) {
  const char* value = std::getenv(name);
  if (!value) return false;
  out = value;
  return true;
}

// Decimal conversion without a check: no digits give 0, a tail is ignored.
void env_int(const char* name, int& out) {
  const char* value = std::getenv(name);
  if (value) out = std::atoi(value);
}
}  // namespace

void TavixInp::get_environment_variables() {
  env_text("TAVIX_JOB_SCHED", sched_type);
  env_text("TAVIX_JOB_QUEUE", queue_name);
  env_text("TAVIX_QC_EXE", qc_exe);
  env_int("TAVIX_QC_NODES", qc_nodes);
  env_int("TAVIX_QC_PPN", qc_ppn);
  if (env_text("TAVIX_MODULE_QC", module_qc)) module_qc_flag = true;
  if (env_text("TAVIX_MODULE_TAVIX", module_tavix)) module_tavix_flag = true;
  if (env_text("TAVIX_MODULE_MPICH2", module_mpich2)) module_mpich2_flag = true;
}
