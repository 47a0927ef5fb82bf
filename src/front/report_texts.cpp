// The head of the gather report, and the carrier directory names.
#include "tavix_output.h"

const char* const tavix_msg[10] = {
    " _____   _    __     __ ___ __  __",
    "|_   _| / \\   \\ \\   / /|_ _|\\ \\/ /",
    "  | |  / _ \\   \\ \\ / /  | |  \\  / ",
    "  | | / ___ \\   \\ V /   | |  /  \\ ",
    "  |_|/_/   \\_\\   \\_/   |___|/_/\\_\\    Version ",
    "",
    "  Charge-carrier mobilities of organic molecular crystals: hopping rates from",
    "  transfer integrals and reorganisation energies, carriers followed by kinetic",
    "  Monte Carlo and the master equation. This report says where each result lies.",
    "",
};

const char* const cites_required[6] = {
    "Cite transport work as (required):",
    "  R. A. Marcus, \"Electron transfer reactions in chemistry. Theory and experiment\",",
    "    Rev. Mod. Phys. 65, 599 (1993).",
    "  J. Jortner, \"Temperature dependent activation energy for electron transfer between biological molecules\", J. Chem. Phys. 64, 4860 (1976).",
    "  A. B. Bortz, M. H. Kalos, J. L. Lebowitz, \"A new algorithm for Monte Carlo simulation of Ising spin systems\", J. Comput. Phys. 17, 10 (1975).",
    "",
};

const char* const cites_recommended[3] = {
    "Cite transport work as (recommended):",
    "  D. T. Gillespie, \"A general method for numerically simulating the stochastic time evolution of coupled chemical reactions\", J. Comput. Phys. 22, 403 (1976).",
    "",
};

const char* const ehstrs[3] = {"elec", "hole", ""};
