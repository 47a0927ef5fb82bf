// tavix_hoprate.exe: hop rates of every molecule pair into WL.dat or WH.dat.
#include "suite_tools.h"

int main(int argc, char** argv) { return suite_tools::tavix_hoprate_main(argc, argv); }
