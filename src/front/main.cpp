// tavix_gather.exe: gathers the results of a finished transport run into one report.
#include "tavix_output.h"

int main(int argc, char** argv) { return tavix_gather_main(argc, argv); }
