// The reader of the description file.
#pragma once

namespace lcp {

// Reads RUNDATA.run.FNAME whole into RUNDATA, checks it and orders its tables. Returns with the
// data complete, or ends the run with a message, exit status 1.
void READTLDATA();

} // namespace lcp
