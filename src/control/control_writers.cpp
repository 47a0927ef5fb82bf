// The control-file writers: the full snapshot that the workflow stores and the
// gather reads back, three templates a user starts from, the fixed four-point
// template, and the older flat form. Numbers go through the stream's default
// formatting unless a line says otherwise; a file that cannot be opened is passed
// over silently.
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tavix_inp.h"

namespace {

// One control file being written: lines are gathered as text and written at once.
class ControlText {
 public:
  ControlText& line(const std::string& text) {
    out_ << text << '\n';
    return *this;
  }
  ControlText& blank() { return line(""); }
  template <typename T>
  ControlText& key(const char* literal, const T& value, const char* comment = "") {
    out_ << literal << value << comment << '\n';
    return *this;
  }
  std::string str() const { return out_.str(); }

 private:
  std::ostringstream out_;
};

std::string three_reals(const double* v) { return formatString("%12.6f %12.6f %12.6f", v[0], v[1], v[2]); }
std::string three_ints(const int* v) { return formatString("%d %d %d", v[0], v[1], v[2]); }

template <typename T>
std::string joined_after_blanks(const std::vector<T>& values) {
  std::ostringstream s;
  for (const T& v : values) s << ' ' << v;
  return s.str();
}

// Opens the target ("<data_dir>/<name>" with in_data_dir) and announces it; an
// empty path means the file could not be opened and nothing is to be written.
std::string target_path(TavixInp& p, const char* name, bool in_data_dir) {
  if (!in_data_dir) return name;
  create_directory(p.data_dir);
  return p.data_dir + "/" + name;
}

bool write_control_file(const std::string& path, const std::string& text, bool announce) {
  std::ofstream out(path);
  if (!out) return false;
  if (announce) std::printf("Writing config file \"%s\"... \n", path.c_str());
  out << text;
  return true;
}

const char* const kDoTransportKeys[14] = {
    "do_transport_prepare",         "do_transport_submit_HL_job",     "do_transport_get_transferintegral",
    "do_transport_submit_RE_job",   "do_transport_get_re_evc",        "do_transport_run_MC",
    "do_transport_get_mob_MC",      "do_transport_run_MC_temp",       "do_transport_get_mob_MC_temp",
    "do_transport_run_ME",          "do_transport_get_mob_ME",        "do_transport_run_ME_temp",
    "do_transport_get_mob_ME_temp", "do_transport_gather_tavix_data",
};

void write_do_transport(TavixInp& p, ControlText& t) {
  const int values[14] = {p.do_transport_prepare,
                          p.do_transport_submit_HL_job,
                          p.do_transport_get_transferintegral,
                          p.do_transport_submit_RE_job,
                          p.do_transport_get_re_evc,
                          p.do_transport_run_MC,
                          p.do_transport_get_mob_MC,
                          p.do_transport_run_MC_temp,
                          p.do_transport_get_mob_MC_temp,
                          p.do_transport_run_ME,
                          p.do_transport_get_mob_ME,
                          p.do_transport_run_ME_temp,
                          p.do_transport_get_mob_ME_temp,
                          p.do_transport_gather_tavix_data};
  for (int k = 0; k < 14; ++k) t.line(formatString("  %-33s = %d", kDoTransportKeys[k], values[k]));
}

// The structure line of the templates and the flat form: the molecule files or
// the crystal file found in the current directory, or a sample.
std::string structure_line(int input_mode, const char* molecule_literal, const char* crystal_literal) {
  if (input_mode == 1) {
    std::vector<std::string> mols = globFileVector("*.mol");
    if (mols.empty()) return std::string(molecule_literal) + "2 mol1.mol mol2.mol";
    return std::string(molecule_literal) + std::to_string(mols.size()) + joined_after_blanks(mols);
  }
  if (input_mode == 2) {
    std::vector<std::string> cifs = globFileVector("*.cif");
    return std::string(crystal_literal) + (cifs.empty() ? std::string("naphthalene.cif") : cifs[0]);
  }
  return std::string();
}

void add_structure_line(ControlText& t, int input_mode, const char* molecule_literal, const char* crystal_literal) {
  std::string text = structure_line(input_mode, molecule_literal, crystal_literal);
  if (!text.empty()) t.line(text);
}

// A module line is live when its flag is set and a comment otherwise.
void module_line(ControlText& t, bool live, const std::string& text) { t.line(live ? text : "# " + text); }

// The job-scheduling head shared by the terse and verbose templates.
void template_head(TavixInp& p, ControlText& t, bool with_mpich2) {
  t.line("&transport");
  write_do_transport(p, t);
  t.blank();
  t.line("  # Job Scheduling");
  t.key("  sched_type      = ", p.sched_type, "        ! pbs, slurm, lsf, or local");
  t.key("  queue_name      = ", p.queue_name);
  t.key("  compute_engine  = ", p.compute_engine, "          ! 1 = Gaussian, 2 = ORCA, 3 = QCHEM, 4 = BDF");
  t.key("  qc_exe          = ", p.qc_exe, "  ! g09/g16 or fullpath/orca or qchem or fullpath/bdfdrv.py");
  module_line(t, p.module_tavix_flag, "  module_tavix    = " + p.module_tavix);
  if (with_mpich2) module_line(t, p.module_mpich2_flag, "  module_mpich2   = " + p.module_mpich2);
  module_line(t, p.module_qc_flag, "  module_qc       = " + p.module_qc);
  t.key("  qc_method       = ", p.qc_method);
  t.key("  qc_basis        = ", p.qc_basis);
  t.key("  qc_basis_re     = ", p.qc_basis_re);
  t.key("  qc_memory       = ", p.qc_memory);
  t.key("  qc_nodes        = ", p.qc_nodes);
  t.key("  qc_ppn          = ", p.qc_ppn);
  t.blank();
}

void vectors(TavixInp& p, ControlText& t) {
  t.key("  vector_a        = ", three_reals(p.vector_a));
  t.key("  vector_b        = ", three_reals(p.vector_b));
  t.key("  vector_c        = ", three_reals(p.vector_c));
}

// An adjustment list of the verbose template; an empty one is shown as zeros.
std::string adjustment_values(const std::vector<int>& list, int nmols) {
  if (!list.empty()) return joined_after_blanks(list);
  return joined_after_blanks(std::vector<int>(nmols > 0 ? nmols : 0, 0));
}

}  // namespace

int TavixInp::write_tavix_inp(const char* name, bool in_data_dir, bool verbose) {
  ControlText t;
  t.line("&transport");
  write_do_transport(*this, t);
  t.blank();

  t.line("  # Job Scheduling");
  t.key("  sched_type      = ", sched_type, "    ! pbs, slurm, lsf, or local");
  t.key("  queue_name      = ", queue_name);
  t.line("  nodelist        = \"" + nodelist + "\"");
  t.key("  sched_job_array = ", sched_job_array);
  t.key("  job_slot_limit  = ", job_slot_limit, "     ! 0 means no limit");
  // The comment has said 1000 since before the default became 160.
  t.key("  walltime_hour   = ", walltime_hours, "  ! default to 1000");
  t.key("  qc_method       = ", qc_method);
  t.key("  qc_basis        = ", qc_basis);
  t.key("  qc_basis_re     = ", qc_basis_re);
  t.key("  qc_memory       = ", qc_memory, "  ! MB");
  t.key("  qc_nodes        = ", qc_nodes);
  t.key("  qc_ppn          = ", qc_ppn);
  t.key("  compute_engine  = ", compute_engine, "     ! 1 = Gaussian, 2 = ORCA, 3 = QCHEM, 4 = BDF");
  t.key("  qc_exe          = ", qc_exe);
  t.key("  scratch         = ", scratch, "    ! use local disk for performance");
  // The sample releases in these comments are older than the defaults, as they always were.
  if (module_tavix_flag) t.key("  module_tavix    = ", module_tavix, " ! module load tavix/2021B-mpich2");
  if (module_mpich2_flag) t.key("  module_mpich2   = ", module_mpich2, " ! module load mpich2/1.5-gnu-7.5.0");
  if (module_qc_flag) t.key("  module_qc       = ", module_qc, "    ! module load gaussian/g16.c01-avx2");
  t.blank();

  t.line("  # Temperature Dependence");
  t.key("  start_temp      = ", start_temp);
  t.key("  end_temp        = ", end_temp);
  t.key("  delta_temp      = ", delta_temp);
  t.blank();

  t.key("  chargetype      = ", chargetype, "     ! e:electron, h:hole or a:all");
  t.key("  evc_type        = ", evc_type, "  ! cart or int");
  t.key("  use_evc_dint    = ", use_evc_dint, "     ! default 0 to use evc.cart.dat");
  t.blank();

  vectors(*this, t);
  t.key("  lattice_cutoff  = ", lat_cutoff, "  ! for neighbor list construction");
  t.key("  neighbor_scell  = ", three_ints(nei_scell), "  ! -/+ this value for neighbor search cells");
  t.key("  super_cell      = ", three_ints(super_cell));
  if (reorg_outer_flag == 0) {
    t.line("  # reorg_outer     = spheres 0.1 3.4 4.2");
  } else if (reorg_outer_flag == 1) {
    t.key("  reorg_outer     = constant ", reorg_outer_constant, "    !  in eV");
  } else if (reorg_outer_flag == 2) {
    std::vector<double> radii;
    for (double r : reorg_outer_radii) radii.push_back(r * 10.0);  // nm -> angstrom
    std::ostringstream v;
    v << reorg_outer_value << joined_after_blanks(radii);
    t.key("  reorg_outer     = spheres ", v.str(), "    ! radius in Angstroms");
  } else {
    std::ostringstream v;
    v << reorg_outer_value << ' ' << reorg_outer_cutoff * 10.0;  // nm -> angstrom
    t.key("  reorg_outer     = dielectric ", v.str(), "    ! cutoff in Angstroms");
  }
  t.blank();

  // The site-energy block stays in the file as comments when the step is off.
  ControlText site;
  site.key("  lat_site_energy = ", lat_site_energy);
  site.key("  emultipole_induce  = ", emultipole_induce, "      ! default to 1 (true)");
  site.key("  emultipole_cutoff  = ", emultipole_cutoff, "      ! default to 4.0");
  site.key("  emultipole_aDamp   = ", emultipole_aDamp, "   ! default to 0.39");
  site.key("  emultipole_scale1 =", joined_after_blanks(emultipole_scale1));
  site.key("  emultipole_wSOR_N  = ", emultipole_wSOR_N, "   ! default to 0.75");
  site.key("  emultipole_wSOR_C  = ", emultipole_wSOR_C, "  ! default to 0.75");
  site.key("  emultipole_maxIter = ", emultipole_maxIter, "    ! default to 512");
  site.key("  emultipole_epsTol  = ", emultipole_epsTol, "  ! default to 0.001");
  std::istringstream site_lines(site.str());
  for (std::string l; std::getline(site_lines, l);) t.line(lat_site_energy != 0 ? l : "  # " + l.substr(2));
  t.blank();

  t.key("  eckart_mirror   = ", eckart_mirror);
  t.key("  delta_angle     = ", delta_angle);
  t.blank();
  t.line("  # Femi Golden Rule");
  t.key("  temp            = ", temp);
  t.key("  maxt            = ", maxt);
  t.key("  ratetype        = ", ratetype, "  ! marcus, quantum");
  t.key("  sta             = ", sta, "  ! short-time approximation");
  t.blank();
  t.line("  # MC");
  t.key("  nsimu           = ", nsimu);
  t.key("  tsimu           = ", tsimu, "  ! in ns");
  t.key("  tsnap           = ", tsnap);
  t.blank();
  t.line("  # ME");
  t.key("  iterlimit       = ", iterlimit);
  t.key("  nevery_out      = ", nevery_out);
  t.blank();
  t.key("  bond_dis_scale       = ", bond_dis_scale, "  ! distance scale for separating molecules");
  t.key("  HL_unique_ctrl_ratio = ", HL_unique_ctrl_ratio, "  ! eigenvalue diff ratio for judging unique dipoles");
  t.key("  read_neighbor_dat    = ", read_neighbor_dat, "     ! readin neighbor.dat");
  t.blank();
  t.line("  # unique mol flags");
  t.key("  HL_unique_mol      = ", HL_unique_mol);
  t.key("  RE_unique_mol      = ", RE_unique_mol);
  t.key("  RE_use_neutral_chk = ", RE_use_neutral_chk);
  t.key("  RE_calc_lambda_4P  = ", RE_calc_lambda_4P);
  t.blank();
  if (homo_adjustment.empty())
    t.line("  # homo_adjustment = 0 0...   ! nmols_uc values");
  else
    t.key("  homo_adjustment =", joined_after_blanks(homo_adjustment));
  if (lumo_adjustment.empty())
    t.line("  # lumo_adjustment = 0 0...   ! nmols_uc values");
  else
    t.key("  lumo_adjustment =", joined_after_blanks(lumo_adjustment));
  t.blank();
  t.line("  # applied electric field (Fx, Fy, FZ) along vector a, b, and c.");
  if (appE_flag)
    t.line("  app_elec_F      = " +
           formatString("%10.3g %10.3g %10.3g    ! in eV/m", app_elec_F[0], app_elec_F[1], app_elec_F[2]));
  else
    t.line("  # app_elec_F      = 1e7 0.0 0.0    ! in eV/m");
  t.key("  use_moo            = ", use_moo);
  if (thinfilm_flag)
    t.line("  thinfilm          = " + formatString("%d %d", thinfilm_dir, thinfilm_ncell));
  else
    t.line("  # thinfilm        = 0 1      ! dir nUnitcell");
  t.key("  V_dynamic_disorder        = ", V_dynamic_disorder);
  t.key("  HOMOLUMO_dynamic_disorder = ", HOMOLUMO_dynamic_disorder);
  t.blank();
  t.key("  tavix_dat_file        = ", tavix_dat_file, "  ! default to tavix-ratetype.dat");
  t.key("  data_mol_output_level = ", data_mol_output_level,
        "  ! bit-wise setting: 1-one mol, 2-all mols, 4-supercell cif, 8-oniom input");
  t.key("  mob_output_level      = ", mob_output_level, "  ! bit-wise setting: 0-base, 2-mob_all");
  t.key("  eigval_output_flag    = ", eigval_output_flag, "  ! if output eigval for moments of inertia");
  t.key("  oniom_output_flag     = ", oniom_output_flag, "  ! if set to output oniom input files, default to 0");
  t.key("  oniom_nlayers         = ", oniom_nlayers, "  ! default to 2, up to 2nd nearest neighbors");
  t.key("  oniom_com_cutoff      = ", oniom_com_cutoff,
        "  ! oniom output com cutoff distance, default to 50.0 angstroms");
  t.blank();
  if (mol_input_mode == 1) {
    std::vector<std::string> names;
    for (int i = 0; i < nmols_uc && i < mol_files_allocated; ++i) names.push_back(mol_files[i]);
    t.key("  molecule           = ", std::to_string(nmols_uc) + joined_after_blanks(names));
  } else if (mol_input_mode == 2) {
    t.key("  crystal            = ", crystal_file);
  }
  t.line("/");

  write_control_file(target_path(*this, name, in_data_dir), t.str(), verbose);
  return 1;
}

int TavixInp::write_tavix_inp_terse(const char* name, int input_mode, bool in_data_dir) {
  ControlText t;
  template_head(*this, t, false);
  t.key("  temp            = ", temp);
  t.line("  # Temperature Dependence");
  t.key("  start_temp      = ", start_temp);
  t.key("  end_temp        = ", end_temp);
  t.key("  delta_temp      = ", delta_temp);
  t.key("  ratetype        = ", ratetype, "  ! marcus, quantum");
  t.blank();
  if (input_mode == 1) vectors(*this, t);
  t.key("  lattice_cutoff  = ", lat_cutoff, "  ! for neighbor list construction");
  t.key("  nsimu           = ", nsimu);
  t.key("  tsimu           = ", tsimu, "  ! in ns");
  t.key("  tsnap           = ", tsnap);
  t.blank();
  add_structure_line(t, input_mode, "  molecule        = ", "  crystal         = ");
  t.line("/");
  write_control_file(target_path(*this, name, in_data_dir), t.str(), true);
  return 1;
}

int TavixInp::write_tavix_inp_verbose(const char* name, int input_mode, bool in_data_dir) {
  ControlText t;
  template_head(*this, t, true);
  t.line("  # Temperature Dependence");
  t.key("  start_temp      = ", start_temp);
  t.key("  end_temp        = ", end_temp);
  t.key("  delta_temp      = ", delta_temp);
  t.blank();
  t.key("  chargetype      = ", chargetype, "     ! e:electron, h:hole or a:all");
  t.key("  evc_type        = ", evc_type, "  ! cart or int");
  t.key("  use_evc_dint    = ", use_evc_dint, "     ! default 0 to use evc.cart.dat");
  t.blank();
  if (input_mode == 1) vectors(*this, t);
  t.key("  lattice_cutoff  = ", lat_cutoff, "  ! for neighbor list construction");
  t.key("  neighbor_scell  = ", three_ints(nei_scell), "  ! -/+ this value for neighbor search cells");
  t.key("  super_cell      = ", three_ints(super_cell));
  t.key("  delta_angle     = ", delta_angle);
  t.blank();
  t.line("  # Femi Golden Rule");
  t.key("  temp            = ", temp);
  t.key("  maxt            = ", maxt);
  t.key("  ratetype        = ", ratetype, "  ! marcus, quantum");
  t.key("  sta             = ", sta, "  ! short-time approximation");
  t.key("  lat_site_energy = ", lat_site_energy, "  ! if calculate site energy");
  t.key("  mob_output_level = ", mob_output_level, "       ! bit-wise setting: 0-base, 2-mob_all");
  t.key("  eckart_mirror   = ", eckart_mirror);
  t.blank();
  t.line("  # MC");
  t.key("  nsimu           = ", nsimu);
  t.key("  tsimu           = ", tsimu, "  ! in ns");
  t.key("  tsnap           = ", tsnap);
  t.blank();
  t.line("  # ME");
  t.key("  iterlimit       = ", iterlimit);
  t.key("  nevery_out      = ", nevery_out);
  t.blank();
  t.key("  bond_dis_scale  = ", bond_dis_scale);
  t.key("  homo_adjustment =", adjustment_values(homo_adjustment, nmols_uc));
  t.key("  lumo_adjustment =", adjustment_values(lumo_adjustment, nmols_uc));
  t.blank();
  t.line("  # unique mol flags");
  t.key("  HL_unique_mol   = ", HL_unique_mol);
  t.key("  RE_unique_mol   = ", RE_unique_mol);
  t.blank();
  add_structure_line(t, input_mode, "  molecule        = ", "  crystal         = ");
  t.line("/");
  write_control_file(target_path(*this, name, in_data_dir), t.str(), true);
  return 1;
}

int TavixInp::write_tavix_inp_terse_oniom(const char* name, int input_mode, bool in_data_dir) {
  ControlText t;
  t.line("&transport");
  t.key("  do_transport_prepare  = ", do_transport_prepare);
  t.key("  qc_method       = ", qc_method);
  t.key("  qc_basis        = ", qc_basis);
  t.key("  qc_basis_re     = ", qc_basis_re);
  t.key("  qc_memory       = ", qc_memory, "         ! MB");
  t.key("  qc_ppn          = ", qc_ppn);
  t.blank();
  if (input_mode == 1) vectors(*this, t);
  t.key("  lattice_cutoff  = ", lat_cutoff, "            ! for neighbor list construction");
  t.key("  oniom_output_flag     = ", oniom_output_flag, "            ! if set to 1 to output oniom input files ");
  t.key("  oniom_nlayers         = ", oniom_nlayers, "            ! maximum 3 layers, default to 2");
  t.key("  oniom_com_cutoff      = ", oniom_com_cutoff, "           ! molecular COM cutoff in angstroms");
  t.blank();
  add_structure_line(t, input_mode, "  molecule        = ", "  crystal           = ");
  t.line("/");
  write_control_file(target_path(*this, name, in_data_dir), t.str(), true);
  return 1;
}

// A fixed template, whatever the parameters hold; its compute_engine comment names
// NWChem where the other writers name BDF, and stays so.
int TavixInp::write_tavix_inp_terse_reorg4p(const char* name, bool triplet) {
  ControlText t;
  t.line("&transport");
  t.line("  queue_name      = X16Cv3");
  t.line("  sched_type      = slurm  ! pbs, slurm, lsf, or local");
  t.line("  compute_engine  = 1      ! 1 = Gaussian, 2 = ORCA, 3 = QCHEM, 4 = NWChem");
  t.line("  qc_exe          = g16    ! g09/g16 or fullpath/orca or qchem or nwchem");
  t.line("# module_qc = gaussian/g16.c01-avx2");
  t.line("  qc_method       = b3lyp         ! ignored for g09/g16");
  t.line("  qc_basis        = b3lyp 6-31g(d)");
  t.line("  qc_basis_re     = b3lyp 6-31g(d)");
  t.line("  # UDFT is recommended to use for T1 optimization by setting qc_es_mult = 3");
  if (triplet) {
    t.line("  qc_es_opt       = TD(triplet)   ! TD, TD(nstates=n); TD(triplets), TD(triplets,nstates=n)");
    t.line("  qc_gs_tddft     = TD(triplet)   ! n is default to 3, change the number as needed");
    t.line("  qc_es_mult      = 3             ! default to 1, set to 3 for T1 optimization by UDFT");
  } else {
    t.line("  qc_es_opt       = TD            ! TD, TD(nstates=n); TD(triplets), TD(triplets,nstates=n)");
    t.line("  qc_gs_tddft     = TD            ! n is default to 3, change the number as needed");
    t.line("  qc_es_mult      = 1             ! default to 1, set to 3 for T1 optimization by UDFT");
  }
  t.line("  qc_es_tddft     = TD(triplet)   ! used only when qc_es_mult = 3 for T1 optimization");
  t.line("  qc_memory       = 54096         ! MB");
  t.line("  qc_nodes        = 1");
  t.line("  qc_ppn          = 20");
  t.line("/");
  write_control_file(name, t.str(), true);
  return 1;
}

int TavixInp::write_config_inp(const char* name, int input_mode, bool in_data_dir) {
  ControlText t;
  auto flat = [&t](const char* key, const auto& value, const char* comment = "") {
    std::ostringstream v;
    v << value;
    t.line(formatString("%-16s%s%s", key, v.str().c_str(), comment));
  };
  t.line("# parameters in simulation");
  t.line("# Job Scheduling");
  flat("queue_type", sched_type, "    ! pbs, slurm, lsf, or local");
  flat("queue_name", queue_name);
  t.line("# g09/g16 or orca");
  flat("qc_exe", qc_exe);
  if (module_tavix_flag) flat("module_tavix", module_tavix);
  if (module_mpich2_flag) flat("module_mpich2", module_mpich2);
  if (module_qc_flag) flat("module_qc", module_qc);
  flat("qc_method", qc_method);
  flat("qc_basis", qc_basis);
  flat("qc_basis_re", qc_basis_re);
  flat("qc_memory", qc_memory);
  flat("qc_nodes", qc_nodes);
  flat("qc_ppn", qc_ppn);
  flat("temp", temp);
  t.blank();
  t.line("# Temperature Dependence");
  flat("start_temp", start_temp);
  flat("end_temp", end_temp);
  flat("delta_temp", delta_temp);
  flat("chargetype", chargetype);
  flat("evc_type", evc_type);
  t.blank();
  if (input_mode == 1) {
    flat("vector_a", three_reals(vector_a));
    flat("vector_b", three_reals(vector_b));
    flat("vector_c", three_reals(vector_c));
  }
  flat("lat_cutoff", lat_cutoff);
  flat("delta_angle", delta_angle);
  t.blank();
  t.line("# Femi Golden Rule");
  flat("temp", temp);
  flat("maxt", maxt);
  flat("ratetype", ratetype);
  flat("sta", sta);
  t.blank();
  t.line("# MC");
  flat("nsimu", nsimu);
  flat("tsimu", tsimu);
  flat("tsnap", tsnap);
  t.blank();
  t.line("# ME");
  flat("super_cell", three_ints(super_cell));
  flat("iterlimit", iterlimit);
  flat("nevery_out", nevery_out);
  t.blank();
  add_structure_line(t, input_mode, "molecule        ", "crystal         ");
  write_control_file(target_path(*this, name, in_data_dir), t.str(), true);
  return 1;
}
