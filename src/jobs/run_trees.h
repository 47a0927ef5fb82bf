// run_trees.h - what the driver scripts of a carrier directory and the run layout
// both decide: which carriers a run works on, and how many temperatures a
// temperature-dependent tree has. Defined in driver_scripts.cpp.
#ifndef TAVIX_RUN_TREES_H
#define TAVIX_RUN_TREES_H

#include <string>

// Electron work for chargetype "a" and "e", hole work for "a" and "h", by the first
// letter in any case.
bool electron_work(const std::string& chargetype);
bool hole_work(const std::string& chargetype);

// start_temp + k delta_temp for k below the rounded value of
// (end - start) / delta + 1. A range without a finite count (a zero step between
// different ends) ends the process with a message.
int temperature_count(double start_temp, double end_temp, double delta_temp);

#endif  // TAVIX_RUN_TREES_H
