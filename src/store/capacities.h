// All capacities of the program.
#pragma once

namespace lcp {

// Run control
constexpr int FILENAMELEN = 200; // file names, in characters
constexpr int ARGUMENTLEN = 30;  // a numeric value or a keyword on the command line
constexpr int MAXSTEPS = 999;    // length steps, each with its own file name

// Description file
constexpr int LINELENGTH = 120;   // columns of an input line that are read
constexpr int MAXCOND = 720;      // physical conductors
constexpr int MAXEQUIV = 48;      // equivalent conductors of an overhead line
constexpr int MAXSUB = 15;        // sub-conductors of a bundle
constexpr int MAXCABLE = 100;     // cables
constexpr int MAXPIPE = 1;        // pipes
constexpr int MAXEXTRECORDS = 50; // records of an external conductor file
constexpr int EXTRECORDLEN = 49;  // numbers of such a record
constexpr int LINENAMELEN = 30;   // name of the line, in characters
constexpr int LIBPATHLEN = 110;   // conductor library path
constexpr int LIBNAMELEN = 113;   // name looked up in a library
constexpr int EXTFILELEN = 100;   // name of an external conductor file
constexpr int MAXLIBLINES = 5000; // lines searched in a library of the new format

// Solve
constexpr int LDMAT = 49;     // order and leading dimension of a line matrix
constexpr int LDCABLE = 100;  // order and leading dimension of a cable system before reduction
constexpr int MAXFREQ = 1020; // frequency steps
constexpr int MAXINV = 120;   // largest order of the inversion kernels

// Rational fits
constexpr int NPMAX = 100;            // poles of a fit
constexpr int MAXPOLES = NPMAX + 1;   // ... plus the real pole of a DC correction
constexpr int NGMAX = LDMAT;          // delay groups
constexpr int LSROWS = 2 * MAXFREQ;   // rows of a least-squares problem: real above imaginary parts
constexpr int LSCOLS = 2 * NPMAX + 4; // columns of a least-squares problem with one set of poles
constexpr int LSRHS = LDMAT * LDMAT;  // its right-hand sides: elements of a line matrix
constexpr int MAXCOLUMNS = NGMAX * MAXPOLES; // columns of a problem over all delay groups
constexpr int LSWORK = 6120;                 // size of the LAPACK work array in a fit

// Passivity
constexpr int MAXPASSGRID = 5020; // frequencies of a passivity check

// Output files
constexpr int ROWELEMENTS = 25;    // elements of a matrix row on one line of a file
constexpr int BERGERONVALUES = 40; // values of one mode on a line of a Bergeron file
constexpr int MANUALVALUES = 25;   // ... of a Bergeron file of entered data
constexpr int MANUALCOLUMNS = 99;  // columns of a manual output file that are copied

} // namespace lcp
