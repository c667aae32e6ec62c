#include "input/yz_files.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/text_source.h"
#include "input/free_form.h"
#include "store/rundata.h"
#include "store/yz_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace lcp {

namespace {

constexpr std::size_t TAGLEN = 2;    // characters kept of an item that names a matrix
constexpr std::size_t ITEMLEN = 200; // characters kept of a number

struct DataFile {
  TextSource source;
  std::string record;
};

// --- fatal messages

void openBlock() {
  console::line();
  console::rule('*', console::STARS);
  console::line("Line Constants Program: ERROR");
}

[[noreturn]] void closeBlock() {
  console::rule('*', console::STARS);
  console::line("READTLDATA Ending!");
  stop(1);
}

[[noreturn]] void cannotOpen() {
  openBlock();
  console::print("Cannot open file: {}", RUNDATA.manual.YZFILE.text());
  console::line("File does not appear to exist");
  closeBlock();
}

[[noreturn]] void cannotRead() {
  openBlock();
  console::print("Error in Reading Data File: {}", RUNDATA.manual.YZFILE.text());
  console::line("File does not appear to conform to correct");
  console::line("format.");
  closeBlock();
}

// --- records and items

// Reads the next record. Returns false at the end of the file.
bool nextRecord(DataFile& file) {
  const TextSource::Result result = file.source.next(file.record, std::string::npos);
  if (result == TextSource::Result::Error) cannotRead();
  return result == TextSource::Result::Record;
}

bool isBlankRecord(std::string_view record) {
  return record.find_first_not_of(" \t") == std::string_view::npos;
}

bool nextFilledRecord(DataFile& file) {
  while (nextRecord(file)) {
    if (!isBlankRecord(file.record)) return true;
  }
  return false;
}

// The first item of a record; empty if there is none.
std::string firstItem(std::string_view record, std::size_t length) {
  std::string word;
  if (readWord(record, word) == Got::Malformed) cannotRead();
  return word.substr(0, length);
}

// --- one Y and Z pair

// Reads both parts of an element, which starts on a new record. Returns false at the end of the
// file.
bool readElement(DataFile& file, Complex& element) {
  double parts[2] = {0, 0};
  RealList list(parts);
  while (!list.complete()) {
    if (!nextRecord(file)) return false;
    if (!list.feed(file.record)) cannotRead();
  }
  element = {parts[0], parts[1]};
  return true;
}

// Returns the number of elements in the file; missing elements keep their values.
int readMatrix(DataFile& file, CView A, int n) {
  for (int e = 0; e < n * n; ++e) {
    if (!readElement(file, A(e / n + 1, e % n + 1))) return e;
  }
  return n * n;
}

// --- multiple Y and Z

// Parses a number at the start of a record in the usual plain form. Returns false for anything
// else, which is left to the free-form reader.
bool plainNumber(const std::string& record, double& value) {
  const char* at = record.data();
  const char* const end = at + record.size();
  while (at != end && *at == ' ') ++at;
  const auto [stopped, error] = std::from_chars(at, end, value);
  const bool whole = stopped == end || *stopped == ' ' || *stopped == ',' || *stopped == '/';
  return error == std::errc() && whole && std::isfinite(value) &&
         stopped - at <= static_cast<std::ptrdiff_t>(ITEMLEN);
}

double nextReal(DataFile& file) {
  double value = 0;
  if (!nextFilledRecord(file)) cannotRead();
  if (plainNumber(file.record, value)) return value;
  if (readReal(firstItem(file.record, ITEMLEN), value) != Got::Value) cannotRead();
  return value;
}

int nextCount(DataFile& file, std::string_view what, int most) {
  int value = 0;
  if (!nextFilledRecord(file)) cannotRead();
  if (readInteger(firstItem(file.record, ITEMLEN), value) != Got::Value || value < 1) cannotRead();
  if (value <= most) return value;
  openBlock();
  console::print("Error in Reading Data File: {}", RUNDATA.manual.YZFILE.text());
  console::print("Too Many {} ({}), Maximum of {} Allowed!", what, value, most);
  closeBlock();
}

Complex nextComplex(DataFile& file) {
  const double re = nextReal(file);
  return {re, nextReal(file)};
}

void readRow(DataFile& file, int k) {
  YZTABLE.FTABLE[k] = nextReal(file);
  for (int j = 1; j <= YZTABLE.order; ++j) {
    for (int i = 1; i <= YZTABLE.order; ++i) {
      YZTABLE.ZTABLE(k, j, i) = nextComplex(file);
      YZTABLE.YTABLE(k, j, i) = nextComplex(file);
    }
  }
}

void takeTable() {
  FitOptions& F = RUNDATA.fit;
  F.CONSTT = false;
  F.NFINC = YZTABLE.rows;
  F.FSTART = YZTABLE.FTABLE[1];
  F.FEND = YZTABLE.FTABLE[YZTABLE.rows];
  RUNDATA.line.NC = RUNDATA.cond.NCOND = YZTABLE.order;
}

} // namespace

void readYZFile() {
  ManualData& M = RUNDATA.manual;
  const int n = std::max(RUNDATA.line.NC, 0);
  DataFile file;
  if (!file.source.open(M.YZFILE.whole())) cannotOpen();
  CView chosen = M.ZENT;
  while (nextFilledRecord(file)) {
    const std::string item = firstItem(file.record, ITEMLEN);
    const std::string tag = item.substr(0, TAGLEN);
    if (tag == "Z:") chosen = M.ZENT;
    if (tag == "Y:") chosen = M.YENT;
    const int got = readMatrix(file, chosen, n);
    if (got == n * n) continue;
    console::warning(fmt::format("{} ends inside a matrix: of its {} elements {} stand behind "
                                 "\"{}\", the others keep what they held",
                                 M.YZFILE.text(), n * n, got, item));
    return;
  }
}

void readYZTable() {
  DataFile file;
  if (!file.source.open(RUNDATA.manual.YZFILE.whole())) cannotRead();
  nextRecord(file);
  YZTABLE.rows = nextCount(file, "Frequencies", MAXFREQ);
  YZTABLE.order = nextCount(file, "Conductors", LDMAT);
  YZTABLE.YTABLE.map(YZTABLE.order);
  YZTABLE.ZTABLE.map(YZTABLE.order);
  for (int k = 1; k <= YZTABLE.rows; ++k) readRow(file, k);
  takeTable();
}

} // namespace lcp
