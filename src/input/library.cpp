// Rows of the old format: name, radius (m), resistance (ohm/km), and optionally permeability and
// inner radius (m). After a line "#Format 1": name, radius (mm), resistance (ohm/km), strands,
// strand radius (mm), permeability. For ground wires the first four columns of the old format are
// read.
#include "input/library.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "base/text_source.h"
#include "input/reader_store.h"
#include "store/rundata.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace lcp {

namespace {

constexpr std::string_view FORMATMARK = "#Format";
constexpr double PERKM = 0.001; // ohm/km to ohm/m
constexpr double MM = 0.001;    // millimetres to m
using LibName = TextField<LIBNAMELEN>;

struct LibraryTexts {
  std::string_view cannotOpen, whileSearching, subject;
};

constexpr LibraryTexts CONDUCTORS = {"Error Opening Conductor Library File: ",
                                     "Error While Searching Conductor Library: ", "Conductor "};
constexpr LibraryTexts GROUNDWIRES = {"Error Opening Grnd Library File: ",
                                      "Error While Searching Grnd Wire Library: ", "Ground Wire "};

struct Library {
  TextSource file;
  std::string row;
  LibName LIBNAME;
  const LibraryTexts& texts;

  explicit Library(const LibraryTexts& t) : texts(t) {}

  [[noreturn]] void cannotOpen() {
    file.close();
    console::rule('*', console::STARS);
    console::print("{}{}", texts.cannotOpen, READER.LIBPATH.text());
    console::rule('*', console::STARS);
    readError();
  }

  [[noreturn]] void notFound() {
    file.close();
    console::rule('*', console::STARS);
    console::print("{}{}", texts.whileSearching, READER.LIBPATH.text());
    console::print("{}{} Not Found!", texts.subject, LIBNAME.text());
    console::rule('*', console::STARS);
    readError();
  }

  void open(std::string_view name) {
    LIBNAME = name;
    if (!file.open(READER.LIBPATH.whole())) cannotOpen();
  }

  void nextRow() {
    switch (file.next(row, LINELENGTH)) {
    case TextSource::Result::Record: return;
    case TextSource::Result::End: notFound();
    case TextSource::Result::Error: cannotOpen();
    }
  }

  bool isSought() const { return !LIBNAME.text().empty() && LIBWORD(row, 1) == LIBNAME.text(); }

  // Column n as a number, or nothing if the word holds no item. In the selected row, a malformed
  // word ends the run.
  std::optional<double> real(int n) {
    double value = 0;
    return good(n, readReal(LIBWORD(row, n), value)) ? std::optional(value) : std::nullopt;
  }
  std::optional<int> integer(int n) {
    int value = 0;
    return good(n, readInteger(LIBWORD(row, n), value)) ? std::optional(value) : std::nullopt;
  }

private:
  bool good(int n, Got got) {
    if (got == Got::Malformed)
      readError(fmt::format("{}: word {} of the row is no number", READER.LIBPATH.text(), n));
    return got == Got::Value;
  }
};

void store(double& target, std::optional<double> value, double factor = 1.0) {
  if (value) target = factor * *value;
}

void warnDefaults(double mur) {
  warn();
  if (READER.libraryWarned) return;
  READER.libraryWarned = true;
  console::rule('-', 49);
  console::line(LIBRARYWARNING);
  console::print("information was not found in conductor library{}", READER.LIBPATH.text());
  console::line("See online help for updated format. Values");
  console::line("defaulted to:");
  console::print("   Permeability = {}", fixedField(mur, 5, 2));
  console::line("  Inner Radius =  0.00 [m]");
  console::rule('-', 49);
}

// A missing column repeats the previous one.
void takeOldRow(Library& library, int i) {
  ConductorTable& C = RUNDATA.cond;
  const std::optional<double> resistance = library.real(3);
  store(C.CRAD[i], library.real(2));
  store(C.CRDC[i], resistance, PERKM);
  C.CSHUNT[i] = 0;
  const std::optional<double> permeability = library.real(4);
  if (permeability == resistance) {
    warnDefaults(C.CMUR[i]);
    return;
  }
  store(C.CMUR[i], permeability);
  const std::optional<double> inner = library.real(5);
  if (!inner || inner == permeability) return;
  C.CTUBE[i] = true;
  C.CTHICK[i] = C.CRAD[i] - *inner;
}

// Number of strands of radius r that fit around the circle through their centres. For strands
// thicker than 2/3 of the conductor it is NaN or negative, and a later key may replace it.
double outerStrands(double r, double R) {
  const double n = std::floor(PI / (2.0 * std::asin(r / (2.0 * (R - r)))));
  return std::isnan(n) ? std::numeric_limits<double>::quiet_NaN() : n; // positive NaN
}

void takeNewRow(Library& library, int i) {
  ConductorTable& C = RUNDATA.cond;
  C.CSTRND[i] = true;
  store(C.CRAD[i], library.real(2), MM);
  store(C.CRDC[i], library.real(3), PERKM);
  store(C.CNTOT[i], library.integer(4));
  store(C.CSTRAD[i], library.real(5), MM);
  store(C.CMUR[i], library.real(6));
  C.CSHUNT[i] = 0;
  C.CNOUT[i] = outerStrands(C.CSTRAD[i], C.CRAD[i]);
  if (!(C.CNOUT[i] >= 1)) {
    noteLine(fmt::format("{}: the strands of {} do not fit round it", READER.LIBPATH.text(),
                         library.LIBNAME.text()));
  }
}

void searchNewFormat(Library& library) {
  if (library.integer(2) != 1) library.cannotOpen();
  for (int n = 1; n <= MAXLIBLINES; ++n) {
    library.nextRow();
    if (library.isSought()) return;
  }
  library.notFound();
}

// The entry to fill; 0 (a scratch entry) if the group does not hold it, so that the row is still
// checked.
int targetEntry(Entry which) {
  const int i = entryIndex(which);
  return entryOpen(i) ? i : 0;
}

} // namespace

std::string_view LIBWORD(std::string_view text, int n) {
  std::string_view word;
  std::size_t at = 0;
  for (int count = 1; count <= n; ++count) {
    const std::size_t start = text.find_first_not_of(' ', at);
    if (start == std::string_view::npos) break;
    at = std::min(text.find(' ', start), text.size());
    word = text.substr(start, at - start);
  }
  return word;
}

void lookUpConductor(std::string_view name) {
  Library library(CONDUCTORS);
  library.open(name);
  bool newFormat = false;
  do {
    library.nextRow();
    newFormat = LIBWORD(library.row, 1).starts_with(FORMATMARK);
  } while (!newFormat && !library.isSought());
  if (newFormat) searchNewFormat(library);
  const int i = targetEntry(Entry::First);
  if (i == 0) return;
  if (newFormat) {
    takeNewRow(library, i);
  } else {
    takeOldRow(library, i);
  }
}

void lookUpGroundWire(std::string_view name, Entry target) {
  ConductorTable& C = RUNDATA.cond;
  Library library(GROUNDWIRES);
  library.open(name);
  do {
    library.nextRow();
  } while (!library.isSought());
  const int i = targetEntry(target);
  if (i == 0) return;
  store(C.CRAD[i], library.real(2));
  store(C.CRDC[i], library.real(3), PERKM);
  store(C.CMUR[i], library.real(4));
  C.CSHUNT[i] = 0;
}

} // namespace lcp
