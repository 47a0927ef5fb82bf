// TavixDataOutput::output_data: the gather report of a finished run.
#include "tavix_output.h"

// The report is written once the control reader, structure and neighbor steps exist.
void TavixDataOutput::output_data() {}
