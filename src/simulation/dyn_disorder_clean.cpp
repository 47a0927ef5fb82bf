// Transport::dyn_disorder_clean: releases what the dynamic-disorder preparation owns.
#include "transport.h"

void Transport::dyn_disorder_clean() {}
