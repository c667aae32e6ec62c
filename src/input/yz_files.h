// Reads files with Y and Z that replace a geometry.
//
// Blank records are skipped. A file that cannot be opened or does not conform ends the run with a
// message and exit status 1.
#pragma once

namespace lcp {

// Reads the Y and Z file YZFILE into YENT and ZENT. The file has blocks "Z:" and "Y:", each
// followed by NC squared elements in row order, real and imaginary part, each element on a new
// record. The blocks may come in either order; a repeated block overwrites the earlier one. If the
// file ends inside a matrix, what was read is kept and a warning is printed (exit status 2).
void readYZFile();

// Reads the multiple Y and Z file YZFILE into YZTABLE, one number per record: a record that is
// ignored, the number of frequencies, the order N, then for each frequency its value in Hz and, for
// each element in row order, Re Z, Im Z, Re Y, Im Y. NFINC, FSTART, FEND, NC and NCOND are set from
// the table, and CONSTT is cleared.
void readYZTable();

} // namespace lcp
