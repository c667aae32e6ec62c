// Section "Manual Data Entry".
//
// Most values belong to the group of the selected format. A format without such a value accepts the
// line and drops the value.
#include "input/manual_section.h"

#include "base/console.h"
#include "base/number_forms.h"
#include "input/key_rows.h"
#include "input/reader_store.h"
#include "input/yz_files.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double NOSUSCEPTANCE = 1e-20; // per unit; smaller susceptances have no reciprocal
constexpr int LONGSTARS = 45;

// The keys of the group values come last, in the order of `fields`.
enum Rule {
  CONDUCTORCOUNT = 1,
  FORMAT,
  DATAFILE,
  R1,
  R0,
  R0M,
  X1,
  X0,
  X0M,
  XC1,
  XC0,
  XC0M,
  B1,
  B0,
  B0M
};

// The member of the reactance groups that a key sets, and that of the surge group if it has one. A
// susceptance is entered instead of a reactance, in per unit only.
struct GroupField {
  double SequenceReactances::*reactance;
  double SequenceSurges::*surge = nullptr;
  bool susceptance = false;
};

constexpr GroupField fields[] = {
    {&SequenceReactances::R1, &SequenceSurges::R1},
    {&SequenceReactances::R0, &SequenceSurges::R0},
    {&SequenceReactances::R0M, &SequenceSurges::R0M},
    {&SequenceReactances::X1},
    {&SequenceReactances::X0},
    {&SequenceReactances::X0M},
    {&SequenceReactances::XC1},
    {&SequenceReactances::XC0},
    {&SequenceReactances::XC0M},
    {&SequenceReactances::XC1, nullptr, true},
    {&SequenceReactances::XC0, nullptr, true},
    {&SequenceReactances::XC0M, nullptr, true},
};
static_assert(std::size(fields) == B0M - R1 + 1);

constexpr KeyRow groupKey(std::string_view text, Rule field) {
  return realKey(text, &READER.dropped).then(field).behind("Data Entry Format");
}

constexpr KeyRow rows[] = {
    integerKey("Number of Conductors", &READER.droppedInteger).then(CONDUCTORCOUNT),
    textKey("Data Entry Format", FORMAT).at(20),
    nameKey("Y,Z Input File Name", &RUNDATA.manual.YZFILE)
        .then(DATAFILE)
        .behind("Data Entry Format"),
    integerKey("Long Line Corrected", &RUNDATA.manual.LONGLINE),
    integerKey("YZ Data Format", &RUNDATA.manual.YZFMT),
    realKey("Voltage Rating (kV L-L RMS)", &RUNDATA.manual.VRATE).in("kV"),
    realKey("Total MVA Rating", &RUNDATA.manual.MVARATE).in("MVA"),
    groupKey("+ve Sequence Resistance", R1),
    groupKey("0 Sequence Resistance", R0),
    groupKey("0 Sequence Mutual Resistance", R0M),
    groupKey("+ve Sequence Inductive Reactance", X1),
    groupKey("0 Sequence Inductive Reactance", X0),
    groupKey("0 Sequence Mutual Inductive Reactance", X0M),
    groupKey("+ve Sequence Capacitive Reactance", XC1),
    groupKey("+ve Sequence Capacitive Susceptance", B1),
    groupKey("0 Sequence Capacitive Reactance", XC0),
    groupKey("0 Sequence Capacitive Susceptance", B0),
    groupKey("0 Sequence Mutual Capacitive Reactance", XC0M),
    groupKey("0 Sequence Mutual Capacitive Susceptance", B0M),
    realKey("+ve Sequence Travel Time", &RUNDATA.manual.MANSEQ.SEQSURGE.T1).in("s/m"),
    realKey("0 Sequence Travel Time", &RUNDATA.manual.MANSEQ.SEQSURGE.T0).in("s/m"),
    realKey("0 Sequence Mutual Travel Time", &RUNDATA.manual.MANSEQ.SEQSURGE.T0M).in("s/m"),
    realKey("+ve Sequence Surge Impedance", &RUNDATA.manual.MANSEQ.SEQSURGE.ZC1).in("ohm"),
    realKey("0 Sequence Surge Impedance", &RUNDATA.manual.MANSEQ.SEQSURGE.ZC0).in("ohm"),
    realKey("0 Sequence Mutual Surge Impedance", &RUNDATA.manual.MANSEQ.SEQSURGE.ZC0M).in("ohm"),
    integerKey("Estimate Zero Sequence", &RUNDATA.manual.ESTZERO),
    realKey("Estimation Ratio for 0-Seq.-R/+ve-Seq.-R", &RUNDATA.manual.RATIOR).in("1"),
    realKey("Estimation Ratio for 0-Seq.-Z/+ve-Seq.-Z", &RUNDATA.manual.RATIOZ).in("1"),
    realKey("Estimation Ratio for 0-Seq.-T/+ve-Seq.-T", &RUNDATA.manual.RATIOT).in("1"),
};
static_assert(noRowHidden(rows));

struct Format {
  std::string_view text;
  int MANFMT;
};

constexpr Format formats[] = {
    {"Surge Impedance and Travel Time", MANSURGE},
    {"p.u./m", MANPERUNIT},
    {"ohms/m", MANOHMS},
    {"RXB p.u./m", MANPERUNIT},
    {"Y and Z", MANPAIR},
    {"Multiple Y and Z", MANMULTIPLE},
};

void compareConductorCount(int entered) {
  if (entered == RUNDATA.line.NC) return;
  console::rule('*', LONGSTARS);
  console::line("Line Constants Program: ERROR");
  console::line();
  console::line("The number of conductors entered in the");
  console::line("Manual Entry of Y,Z component does not match");
  console::line("the total system conductors:");
  console::line();
  console::print(" {} != {}", integerField(RUNDATA.line.NC, 2), integerField(entered, 2));
  console::rule('*', LONGSTARS);
  readError();
}

void chooseFormat(std::string_view text) {
  for (const Format& format : formats) {
    if (!text.starts_with(format.text)) continue;
    RUNDATA.manual.MANFMT = format.MANFMT;
    return;
  }
  console::line("***  corvo.exe ERROR ***");
  console::line("Unknown Data Entry System of Units: ");
  readError();
}

void readDataFile() {
  READER.fileFormat = RUNDATA.manual.MANFMT;
  if (RUNDATA.manual.MANFMT == MANPAIR) readYZFile();
  if (RUNDATA.manual.MANFMT != MANMULTIPLE) return;
  readYZTable();
  RUNDATA.run.DATAFMT = ROUTEMULTIPLE;
}

void storeInGroup(const GroupField& field, double value) {
  ManualSequences& S = RUNDATA.manual.MANSEQ;
  const int MANFMT = RUNDATA.manual.MANFMT;
  if (MANFMT == MANPERUNIT) {
    if (field.susceptance && std::fabs(value) <= NOSUSCEPTANCE)
      readError("the susceptance has no reciprocal");
    S.SEQPU.*field.reactance = field.susceptance ? 1.0 / value : value;
  }
  if (MANFMT == MANOHMS && !field.susceptance) S.SEQOHM.*field.reactance = value;
  if (MANFMT == MANSURGE && field.surge != nullptr) S.SEQSURGE.*field.surge = value;
}

} // namespace

bool manualLine() {
  const KeyRow* key = findKey(rows, READER.LINE);
  if (key == nullptr) return false;
  const Got got = readKey(*key, READER.LINE);
  switch (key->rule) {
  case NORULE: break;
  case CONDUCTORCOUNT:
    if (got == Got::Value) compareConductorCount(READER.droppedInteger);
    break;
  case FORMAT: chooseFormat(valueField(*key, READER.LINE)); break;
  case DATAFILE: readDataFile(); break;
  default:
    if (got == Got::Value) storeInGroup(fields[key->rule - R1], READER.dropped);
  }
  return true;
}

} // namespace lcp
