// tavix_output.h - class TavixDataOutput: the gather report of a finished run, and
// the program's banners. Including this header reaches the whole class chain.
//
// Member and function definitions, one topic a file:
//   src/front/banners.cpp       print_TAVIX_title, print_TAVIX_version, print_TAVIX_build
//   src/front/gather_main.cpp   the command line of tavix_gather.exe
//   src/front/gather_report.cpp output_data
#ifndef TAVIX_TAVIX_OUTPUT_H
#define TAVIX_TAVIX_OUTPUT_H

#include "transport.h"

class TavixDataOutput : public Transport {
 public:
  TavixDataOutput();
  ~TavixDataOutput();

  // ---- the gather (gather_report.cpp) --------------------------------------
  void output_data();
};

void print_TAVIX_title();
void print_TAVIX_version();
void print_TAVIX_build();

// The whole program behind main(): options, banners and the gather.
int tavix_gather_main(int argc, char** argv);

#endif  // TAVIX_TAVIX_OUTPUT_H
