// Sections of towers, their circuits, ground-wire groups and sub-conductor blocks.
//
// While a group is open, the conductor table already counts its entries. The properties of the
// group are stored in its first entry and copied to the others at the closing mark.
#include "base/console.h"
#include "input/bundles.h"
#include "input/external_conductors.h"
#include "input/free_form.h"
#include "input/key_rows.h"
#include "input/library.h"
#include "input/reader_store.h"
#include "input/sections.h"
#include "input/trace_store.h"
#include "store/rundata.h"

#include <array>
#include <fmt/format.h>

namespace lcp {

namespace {

constexpr double PERKM = 0.001; // ohm/km to ohm/m

enum Rule {
  BUNDLE = 1,
  CONDUCTORS,
  PHASES,
  NUMBERED31,
  NUMBERED33,
  SHUNT,
  INNERRADIUS,
  POSITIONS,
  LIBRARY,
  CONDUCTORNAME,
  ELIMINATE,
  WIRENAME,
  SECONDWIRENAME,
  OUTERSTRANDS,
  TOTALSTRANDS
};

constexpr KeyRow circuitRows[] = {
    integerKey("Sub-ConductorsPerBundle", &READER.CURSUB).then(BUNDLE).behind("P1"),
    integerKey("Conductors", &READER.CURN).then(CONDUCTORS),
    integerKey("Transposed", &READER.transposed),
    itemsKey("Conductor Phase Information", PHASES).taking(EACH).behind("Conductors"),
    realKey("DCResistance", &RUNDATA.cond.CRDC).in("ohm/km").times(PERKM),
    realKey("Conductor Relative Permeability", &RUNDATA.cond.CMUR).in("1"),
    realKey("ShuntConductance", &RUNDATA.cond.CSHUNT).in("S/m").then(SHUNT),
    integerKey("Conductor Type", &READER.droppedInteger),
    realKey("Circuit AC Current Magnitude", &READER.dropped),
    realKey("Circuit AC Voltage Magnitude", &READER.dropped),
    textKey("Conductor DC Voltage Magnitude", NUMBERED31).many(),
    textKey("Conductor DC Current Magnitude", NUMBERED31).many(),
    textKey("Conductor AC Voltage Phase Angle", NUMBERED33).many(),
    textKey("Conductor AC Current Phase Angle", NUMBERED33).many(),
    realKey("Sag", &RUNDATA.cond.CSAG).in("m"),
    realKey("Radius", &RUNDATA.cond.CRAD).in("m"),
    realKey("Inner Radius", &READER.dropped).in("m").then(INNERRADIUS).behind("Radius"),
    realKey("Strand Radius", &RUNDATA.cond.CSTRAD).in("m").marking(&RUNDATA.cond.CSTRND),
    integerKey("Number of Outer Strands", &READER.droppedInteger).then(OUTERSTRANDS),
    integerKey("Total Number of Strands", &READER.droppedInteger).then(TOTALSTRANDS),
    realKey("Thickness", &RUNDATA.cond.CTHICK).in("m").marking(&RUNDATA.cond.CTUBE),
    itemsKey("P1", POSITIONS).at(POSITIONCOLUMN).taking(2).in("m").behind("Conductors"),
    textKey("Library", LIBRARY).at(10),
    textKey("Name", CONDUCTORNAME).undoing("ShuntConductance"),
};
static_assert(noRowHidden(circuitRows));

constexpr KeyRow groundWireRows[] = {
    integerKey("Eliminate Ground Wires", &READER.eliminate).then(ELIMINATE),
    realKey("DCResistance", &RUNDATA.cond.CRDC).in("ohm/km").times(PERKM),
    realKey("Ground Wire Relative Permeability", &RUNDATA.cond.CMUR).in("1"),
    realKey("GW2 DCResistance", &RUNDATA.cond.CRDC).in("ohm/km").times(PERKM).second(),
    realKey("GW2 Ground Wire Relative Permeability", &RUNDATA.cond.CMUR).in("1").second(),
    realKey("GW2 Radius", &RUNDATA.cond.CRAD).in("m").second(),
    realKey("Sag", &RUNDATA.cond.CSAG).in("m"),
    realKey("Radius", &RUNDATA.cond.CRAD).in("m"),
    integerKey("Unique Ground Wires", &RUNDATA.cond.UNIQGW),
    textKey("Library", LIBRARY).at(10),
    textKey("Name", WIRENAME),
    textKey("GW2 Name", SECONDWIRENAME).second(),
    itemsKey("P1", POSITIONS).at(POSITIONCOLUMN).taking(2).in("m"),
    itemsKey("Ground Wire Phase Information", PHASES).taking(EACH),
};
static_assert(noRowHidden(groundWireRows));

enum TowerRule { OPENCIRCUIT = 1, OPENWIRES, EXTERNAL };

constexpr KeyRow towerRows[] = {
    markKey("Circuit", OPENCIRCUIT).many(),
    integerKey("GroundWires", &READER.CURN).then(OPENWIRES).many(),
    markKey("Name", NORULE),
    textKey("External file name", EXTERNAL),
};
static_assert(noRowHidden(towerRows));

constexpr KeyRow spacingRows[] = {realKey("BundleSpacing", &READER.dropped).in("m")};

// The rest of the line from the value column on, without leading blanks.
std::string_view restOfLine(const KeyRow& key) {
  const std::string_view field = valueField(key, READER.LINE);
  return field.substr(std::min(field.find_first_not_of(' '), field.size()));
}

void openCircuit() {
  ++RUNDATA.cond.NCIRC;
  READER.CURN = 0;
  READER.CURSUB = 1;
  READER.transposed = 0;
  progress(fmt::format("Reading Circuit {} Data..", RUNDATA.cond.NCIRC));
  if (takeOpeningBrace()) READER.RSTATE = State::Circuit;
}

// Adds the conductors of the open group to the count.
void countConductors() {
  if (READER.CURN < 0) readError("its value must not be below 0");
  checkConductorCount(READER.CURN);
  RUNDATA.cond.NCOND += READER.CURN;
  checkConductorCount(RUNDATA.cond.NCOND);
}

void openGroundWires() {
  READER.eliminate = 1;
  countConductors();
  progress("Reading Ground Wire Data...");
  if (takeOpeningBrace()) READER.RSTATE = State::GroundWires;
}

// Without a count the bundle is that of the previous block, whose sub-conductors already exist.
void openSubConductors(bool counted) {
  if (counted) openBundle(READER.CURSUB);
  checkConductorCount(firstEntry() - 1 + READER.CURN * READER.CURSUB);
  READER.offsetLine = 0;
  progress("Reading Sub-Conductor Data...");
  if (takeOpeningBrace()) READER.RSTATE = State::SubConductors;
}

// Whether the record was truncated before or inside the last of n items.
bool cutBefore(std::string_view field, std::size_t n) {
  std::array<double, MAXCOND> whole{};
  RealList list{std::span<double>(whole).first(n)};
  return READER.wasCut && list.feed(field.substr(0, field.find_last_of(" \t,/") + 1)) &&
         !list.complete();
}

void readPhases(const KeyRow& key) {
  const std::string_view field = valueField(key, READER.LINE);
  std::array<int, MAXCOND> phases{};
  const auto n = static_cast<std::size_t>(READER.CURN);
  const int f = firstEntry();
  for (std::size_t i = 0; i < n; ++i) phases[i] = RUNDATA.cond.CPHASE[f + static_cast<int>(i)];
  if (!readIntegers(field, std::span(phases).first(n))) readError(INTEGERDUE);
  if (cutBefore(field, n)) {
    console::warning(fmt::format("{}: {} of circuit {} is cut at column {}",
                                 RUNDATA.run.FNAME.text(), key.text, RUNDATA.cond.NCIRC,
                                 LINELENGTH));
  }
  for (std::size_t i = 0; i < n; ++i) RUNDATA.cond.CPHASE[f + static_cast<int>(i)] = phases[i];
}

// Checks the value of one conductor, whose number is in two fixed columns; the value is not used.
void checkNumbered(std::size_t numberColumn) {
  const std::string_view line = READER.LINE;
  const auto from = [&](std::size_t c) { return line.substr(std::min(c, line.size())); };
  const std::string_view number = from(numberColumn).substr(0, 2);
  if (readInteger(number, READER.droppedInteger) == Got::Malformed) readError(INTEGERDUE);
  if (readReal(from(numberColumn + 4), READER.dropped) == Got::Malformed) readError(NUMBERDUE);
}

void storeInnerRadius() {
  ConductorTable& C = RUNDATA.cond;
  const int f = firstEntry();
  if (!entryOpen(f)) return;
  C.CTHICK[f] = C.CRAD[f] - READER.dropped;
  C.CTUBE[f] = true;
}

void circuitRule(const KeyRow& key, Got got) {
  ConductorTable& C = RUNDATA.cond;
  const bool value = got == Got::Value;
  switch (key.rule) {
  case BUNDLE: openSubConductors(value); break;
  case CONDUCTORS:
    if (!value) break;
    if (READER.CURN != 3) C.ALL3PH = false;
    countConductors();
    break;
  case PHASES: readPhases(key); break;
  case NUMBERED31: checkNumbered(31); break;
  case NUMBERED33: checkNumbered(33); break;
  case SHUNT:
    if (value) readReal(valueField(key, READER.LINE), READER.lastShunt);
    break;
  case INNERRADIUS:
    if (value) storeInnerRadius();
    break;
  case OUTERSTRANDS:
    if (value) putEntry(C.CNOUT, Entry::First, READER.droppedInteger);
    break;
  case TOTALSTRANDS:
    if (value) putEntry(C.CNTOT, Entry::First, READER.droppedInteger);
    break;
  case POSITIONS: readPositions(); break;
  case LIBRARY: READER.LIBPATH = restOfLine(key); break;
  case CONDUCTORNAME: lookUpConductor(restOfLine(key)); break;
  default: break;
  }
}

// Resets an entry after the counted ones to its defaults, so that a group of no conductors leaves
// no values after it.
void clearEntry(int i) {
  static const ConductorTable fresh;
  if (!CondReals().holds(i)) return;
  ConductorTable& C = RUNDATA.cond;
  for (CondReals ConductorTable::*field :
       {&ConductorTable::CX, &ConductorTable::CY, &ConductorTable::CSAG, &ConductorTable::CRDC,
        &ConductorTable::CRAD, &ConductorTable::CSHUNT, &ConductorTable::CTHICK,
        &ConductorTable::CMUR, &ConductorTable::CSTRAD, &ConductorTable::CNOUT,
        &ConductorTable::CNTOT}) {
    (C.*field)[i] = (fresh.*field)[i];
  }
  C.CTUBE[i] = C.CSTRND[i] = false;
}

} // namespace

bool towerLine() {
  const KeyRow* key = findKey(towerRows, READER.LINE);
  if (key == nullptr) return false;
  if (key->rule == OPENWIRES) READER.CURN = 0;
  readKey(*key, READER.LINE);
  if (key->rule == OPENCIRCUIT) openCircuit();
  if (key->rule == OPENWIRES) openGroundWires();
  if (key->rule == EXTERNAL) {
    READER.EXTFILE = restOfLine(*key);
    READER.RSTATE = State::ExternalFile;
  }
  return true;
}

bool circuitLine() {
  const KeyRow* key = findKey(circuitRows, READER.LINE);
  if (key == nullptr) return false;
  circuitRule(*key, readKey(*key, READER.LINE));
  return true;
}

bool groundWireLine() {
  const KeyRow* key = findKey(groundWireRows, READER.LINE);
  if (key == nullptr) return false;
  const Got got = readKey(*key, READER.LINE);
  switch (key->rule) {
  case ELIMINATE:
    if (got == Got::Value && READER.eliminate == 0) ++RUNDATA.cond.NCIRC;
    break;
  case LIBRARY: READER.LIBPATH = restOfLine(*key); break;
  case WIRENAME: lookUpGroundWire(restOfLine(*key), Entry::First); break;
  case SECONDWIRENAME: lookUpGroundWire(restOfLine(*key), Entry::Second); break;
  case POSITIONS: readPositions(); break;
  case PHASES: readPhases(*key); break;
  default: break;
  }
  return true;
}

bool subConductorLine() {
  const std::string_view line = READER.LINE;
  if (line.starts_with('P')) {
    std::array<double, 2> offset{};
    if (line.size() > POSITIONCOLUMN && !readReals(line.substr(POSITIONCOLUMN), offset))
      readError(NUMBERDUE);
    if (tracing()) tracePosition(POSITIONROW, openGroup());
    moveSubConductors(++READER.offsetLine, {offset[0], offset[1]});
    return true;
  }
  const KeyRow* key = findKey(spacingRows, line);
  if (key == nullptr) return false;
  if (readKey(*key, line) == Got::Value) spreadBundle(READER.dropped);
  return true;
}

void finishCircuit() {
  ConductorTable& C = RUNDATA.cond;
  const int f = firstEntry();
  const int l = C.NCOND + (READER.CURSUB - 1) * READER.CURN;
  checkConductorCount(l); // the count may have come after the bundle
  if (READER.CURN == 0) clearEntry(f);
  for (int e = f; e <= l; ++e) {
    for (CondReals ConductorTable::*field :
         {&ConductorTable::CSAG, &ConductorTable::CRDC, &ConductorTable::CSHUNT,
          &ConductorTable::CRAD, &ConductorTable::CSTRAD, &ConductorTable::CTHICK,
          &ConductorTable::CNOUT, &ConductorTable::CNTOT, &ConductorTable::CMUR}) {
      (C.*field)[e] = (C.*field)[f];
    }
    C.CTUBE[e] = C.CTUBE[f];
    C.CSTRND[e] = C.CSTRND[f];
    C.CCIRC[e] = C.NCIRC;
    C.CTRANSP[e] = READER.transposed;
    C.CYAVG[e] = C.CY[e] - 2.0 / 3.0 * C.CSAG[e];
    if (e <= C.NCOND) C.CMAP[e] = MAPMAIN;
  }
  C.NCOND = l;
}

void finishGroundWires() {
  ConductorTable& C = RUNDATA.cond;
  const int f = firstEntry();
  if (READER.CURN == 0) clearEntry(f);
  for (int e = f; e <= C.NCOND; ++e) {
    const int from = C.UNIQGW == 0 && e > f ? f + 1 : f;
    C.CCIRC[e] = C.NCIRC;
    C.CRDC[e] = C.CRDC[from];
    C.CMUR[e] = C.CMUR[from];
    C.CRAD[e] = C.CRAD[from];
    C.CSHUNT[e] = READER.eliminate != 0 ? 0.0 : READER.lastShunt;
    C.CSAG[e] = C.CSAG[f];
    C.CYAVG[e] = C.CY[e] - 2.0 / 3.0 * C.CSAG[e];
    C.CTRANSP[e] = 0;
    C.CMAP[e] = READER.eliminate == 1 ? MAPELIMINATED : MAPKEPT;
  }
}

} // namespace lcp
