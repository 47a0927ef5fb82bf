// TavixDataOutput::output_data: the gather report of a finished run. It rebuilds
// the structure and the neighbor list from the run's snapshot, then writes one
// report that says where every result lies, copies in the mobility tables and
// warns of imaginary frequencies.
#include <cctype>
#include <cstdio>
#include <string>

#include "tavix_output.h"

namespace {

// The file lines of a section: "  <data_dir>/<name>".
void write_data_file(FILE* report, const std::string& data_dir, const char* name) {
  std::fprintf(report, "  %s/%s\n", data_dir.c_str(), name);
}

// A section whose file list depends on the carriers; `first` and `second` are
// the names in the order the report lists them.
void write_carrier_section(FILE* report, const char* heading, const std::string& data_dir, bool first_on,
                           const char* first, bool second_on, const char* second) {
  std::fprintf(report, "%s\n", heading);
  if (first_on) write_data_file(report, data_dir, first);
  if (second_on) write_data_file(report, data_dir, second);
  std::fprintf(report, "\n");
}

}  // namespace

void TavixDataOutput::output_data() {
  // The snapshot name is fixed: the -config option of the command line plays no part.
  const std::string config = data_dir + "/config.inp";
  read_tavix_inp(config.c_str(), false);
  read_crystal_strcuture_files(false, false);
  build_neighbor_list(false, false);
  if (get_unique_RE_calc_flag()) RE_check_unitcell_same_mols(false);
  if (get_unique_uc_mol_one_calc_flag() || get_unique_nei_mol_one_calc_flag() || get_unique_2mol_calc_flag())
    HL_check_unitcell_unique_mols(false);

  // Only now, with everything read, is an earlier report moved aside: a failed
  // gather leaves it in place.
  backup_file(tavix_dat_file.c_str());
  FILE* report = std::fopen(tavix_dat_file.c_str(), "wt");
  if (report == nullptr)
    TX_FATAL(txunit::tavix_output, -1, stderr, "Failed to create tavix data file %s\n", tavix_dat_file.c_str());

  const char carrier = chargetype.empty() ? '\0' : static_cast<char>(std::tolower(chargetype[0]));
  const bool holes = carrier == 'h' || carrier == 'a';
  const bool electrons = carrier == 'e' || carrier == 'a';

  for (int row = 0; row < 4; ++row) std::fprintf(report, "%s\n", tavix_msg[row]);
  std::fprintf(report, "%s%s\n", tavix_msg[4], TAVIX_VERSION_TEXT);
  for (int row = 5; row < 10; ++row) std::fprintf(report, "%s\n", tavix_msg[row]);
  for (const char* row : cites_required) std::fprintf(report, "%s\n", row);
  for (const char* row : cites_recommended) std::fprintf(report, "%s\n", row);

  const int nmols = data_mol_output_level > 0 ? nmols_uc : 1;
  const char* D = data_dir.c_str();

  std::fprintf(report, "Running configuration:\n  %s\n\n", config.c_str());

  std::fprintf(report, "Molecular information:\n");
  for (int k = 1; k <= nmols; ++k) std::fprintf(report, "  %s/mol%d.mol\n", D, k);
  std::fprintf(report, "\n");

  std::fprintf(report, "Neighbor information:\n");
  std::fprintf(report, "  %s/%s\n", D, "neighbor.dat");
  for (int k = 1; k <= nmols; ++k) std::fprintf(report, "  %s/mol%d_neighbors.cif\n", D, k);
  std::fprintf(report, "\n");

  // VH.dat stands before VL.dat; everywhere else electrons come first.
  write_carrier_section(report, "Transfer integral V:", data_dir, holes, "VH.dat", electrons, "VL.dat");
  write_carrier_section(report, "Reorganization energies by evc:", data_dir, electrons, "mol_lambda-e.dat", holes,
                        "mol_lambda-h.dat");
  if (RE_calc_lambda_4P)
    write_carrier_section(report, "Reorganization energies by four point method:", data_dir, electrons,
                          "mol_lambda_4P-e.dat", holes, "mol_lambda_4P-h.dat");
  write_carrier_section(report, "EVC NM information:", data_dir, electrons, "NM-e.dat", holes, "NM-h.dat");
  if (reorg_outer_flag != 0)
    write_carrier_section(report, "Outer reorganization energies:", data_dir, electrons, "reorg_lambda-outer-e.dat",
                          holes, "reorg_lambda-outer-h.dat");
  if (lat_site_energy != 0)
    write_carrier_section(report, "Reorganization internal energies:", data_dir, electrons, "SE_einternal-e.dat",
                          holes, "SE_einternal-h.dat");

  // What exists on disk is gathered; the workflow switches play no part here.
  struct Gathered {
    std::string dir;
    const char* progress;
    void (TavixDataOutput::*copy)(FILE*);
  };
  const Gathered gathered[] = {
      {"MC-" + ratetype, "Gathering MC mobilities...", &TavixDataOutput::output_MC_mob},
      {"MC-" + ratetype + "-temp", "Gathering MC with TD mobilities...", &TavixDataOutput::output_MC_mob_TempDep},
      {"ME-" + ratetype, "Gathering ME mobilities...", &TavixDataOutput::output_meq_mob},
      {"ME-" + ratetype + "-temp", "Gathering ME with TD mobilities...", &TavixDataOutput::output_meq_mob_TempDep},
  };
  for (const Gathered& g : gathered) {
    if (dir_exists(g.dir.c_str()) > 0) {
      std::printf("%s\n", g.progress);
      (this->*g.copy)(report);
    }
  }

  std::printf("TAVIX data are gathered to file \"%s\"\n", tavix_dat_file.c_str());
  check_imag_freq(report);
  std::fprintf(report, "Normal end of TAVIX data gathering.\n");
  std::fclose(report);
}
