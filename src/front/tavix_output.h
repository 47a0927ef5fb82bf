// tavix_output.h - class TavixDataOutput: the gather report of a finished run, and
// the program's banners. Including this header reaches the whole class chain.
//
// Member and function definitions, one topic a file:
//   src/front/banners.cpp       print_TAVIX_title, print_TAVIX_version, print_TAVIX_build
//   src/front/gather_main.cpp   the command line of tavix_gather.exe
//   src/front/gather_report.cpp output_data
//   src/front/report_texts.cpp  the report's head texts and the carrier directory names
//   src/front/mobility_tables.cpp   output_MC_mob*, output_mc_mob_one, output_meq_mob*
//   src/front/imaginary_frequencies.cpp  check_imag_freq, listFiles, parse_evc_file_imag_freq,
//                                        is_directory
#ifndef TAVIX_TAVIX_OUTPUT_H
#define TAVIX_TAVIX_OUTPUT_H

#include <cstdio>
#include <string>
#include <vector>

#include "transport.h"

// Rows of the report's head. The large letters, the notice and the references
// are ours; the number of rows and their order are fixed.
extern const char* const tavix_msg[10];
extern const char* const cites_required[6];
extern const char* const cites_recommended[3];
// Carrier subdirectories by ehflag: 0 electrons, 1 holes.
extern const char* const ehstrs[3];

class TavixDataOutput : public Transport {
 public:
  TavixDataOutput();
  ~TavixDataOutput();

  // ---- the gather (gather_report.cpp) --------------------------------------
  void output_data();

  // ---- imaginary frequencies (imaginary_frequencies.cpp) --------------------
  void check_imag_freq(FILE* report);
  bool parse_evc_file_imag_freq(const std::string& path);
  void listFiles(const char* dir, std::vector<std::string>& files);
  bool is_directory(const char* path);

  // ---- mobility tables (mobility_tables.cpp) --------------------------------
  void output_mc_mob_one(FILE* report, const std::string& dir, int ehflag);
  void output_MC_mob(FILE* report);
  void output_MC_mob_TempDep(FILE* report);
  void output_meq_mob_one(FILE* report, const std::string& dir, int ehflag);
  void output_meq_mob(FILE* report);
  void output_meq_mob_TempDep(FILE* report);
};

void print_TAVIX_title();
void print_TAVIX_version();
void print_TAVIX_build();

// The whole program behind main(): options, banners and the gather.
int tavix_gather_main(int argc, char** argv);

#endif  // TAVIX_TAVIX_OUTPUT_H
