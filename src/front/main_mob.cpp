// tavix_mob.exe (and tavix_mob_OMP.exe): diffusion and mobility from the tracks.
#include "suite_tools.h"

int main(int argc, char** argv) { return suite_tools::tavix_mob_main(argc, argv); }
