// TavixDataOutput: construction and destruction; the class adds no data of its own.
#include "tavix_output.h"

TavixDataOutput::TavixDataOutput() {}
TavixDataOutput::~TavixDataOutput() {}
