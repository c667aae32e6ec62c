// Files with Y and Z in the place of a geometry.
//
// Blank records are skipped. A file that cannot be opened, and one that does not conform, end the
// run with a message, exit status 1.
#pragma once

namespace lcp {

// Reads the Y and Z file YZFILE into YENT and ZENT: "Z:" or "Y:", then NC squared elements in row
// order, each a real and an imaginary part on a new record. The blocks may stand in either order,
// one that repeats overwrites the first. A file that ends inside a matrix keeps what was read; a
// warning says so, exit status 2.
void readYZFile();

// Reads the multiple Y and Z file YZFILE into YZTABLE, one number a record: a record that is not
// looked at, the number of frequencies, the order N, then for each frequency its value in Hz and
// for each element in row order Re Z, Im Z, Re Y, Im Y. NFINC, FSTART, FEND, NC and NCOND are then
// those of the table, and the transformation is not constant.
void readYZTable();

} // namespace lcp
