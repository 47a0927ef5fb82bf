// tavix_mc.exe (and tavix_mc_OMP.exe): kinetic Monte Carlo trajectories into track/.
#include "suite_tools.h"

int main(int argc, char** argv) { return suite_tools::tavix_mc_main(argc, argv); }
