// The command line of tavix_gather.exe. Four options, compared by their fixed
// leading bytes: "-configure" is "-config" and "-hello" is help. Users' scripts
// rely on that prefix matching, so it is not tightened to whole words.
#include <cstdio>
#include <cstring>
#include <string>

#include "tavix_output.h"

namespace {

std::string program_name_of(const char* argv0) {
  std::string word = argv0 ? argv0 : "";
  size_t cut = word.find_last_of("/\\");
  return cut == std::string::npos ? word : word.substr(cut + 1);
}

void print_usage(const std::string& prog) {
  print_TAVIX_title();
  std::printf("Gather TAVIX Mobility Data\n\n");
  std::printf("Usage: %s [opts]\n", prog.c_str());
  std::printf("  -config s : set config file, default to 'tavix.inp'\n\n");
  std::printf("e.g.: %s\n", prog.c_str());
  std::printf("  %s -config tavix.inp\n\n", prog.c_str());
}

}  // namespace

int tavix_gather_main(int argc, char** argv) {
  // The control file named here is reported, never read: the gather always reads
  // the run's snapshot data/config.inp. The option stays for compatibility.
  std::string config_file = "tavix.inp";
  const std::string prog = program_name_of(argc > 0 ? argv[0] : nullptr);

  int i = 1;
  while (i < argc) {
    const std::string word = argv[i];
    if (std::strncmp(word.c_str(), "-config", 7) == 0) {
      if (i + 1 >= argc) {
        std::fprintf(stderr, "ERROR: %s option %s needs a file name\n", prog.c_str(), word.c_str());
        tx_exit(1);
      }
      config_file = argv[i + 1];
      if (!file_exists(config_file.c_str())) {
        // A missing control file is reported but keeps status 0, as scripts expect.
        std::printf("ERROR: %s input config file %s not found!\n", prog.c_str(), config_file.c_str());
        tx_exit(0);
      }
      std::printf("  %s input config file is %s\n", prog.c_str(), config_file.c_str());
      std::fflush(stdout);
      i += 2;
    } else if (std::strncmp(word.c_str(), "-h", 2) == 0 || std::strncmp(word.c_str(), "--help", 6) == 0) {
      print_usage(prog);
      tx_exit(0);
    } else if (std::strncmp(word.c_str(), "--version", 9) == 0) {
      print_TAVIX_version();
      tx_exit(0);
    } else {
      ++i;
    }
  }

  std::printf("*** Gather TAVIX Mobility Data...\n");
  std::fflush(stdout);
  {
    TavixDataOutput gather;
    gather.output_data();
  }
  std::printf("*** Successfully done.\n");
  std::fflush(stdout);
  return 0;
}
