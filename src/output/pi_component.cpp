// With w = 2 pi SSFREQ and y = Y / 2, the shunt branches at each end, per metre, are
//
//   between conductors i and j:  y(i,j)
//   from conductor i to ground:  y(i,1) + y(i,2) + .. + y(i,NC)
//   C = |Im y| / w in microfarad, R1 = 1 / Re y in ohm, if Re y exceeds the conductance limit
//
// and the series branches are R2 = Re Z in ohm, LS = Im Z / w in henry.
//
// The simulator multiplies C, LS and R2 by the length and divides R1 by it.
#include "output/pi_component.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/open_files.h"
#include "base/solve_error.h"
#include "base/stop.h"
#include "base/text_file.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <initializer_list>
#include <string>
#include <string_view>

namespace lcp {

namespace {

constexpr double MICRO = 1000000.0;    // F to microfarad
constexpr double LEASTC = 1e-10;       // microfarad/m below which a cable has no branch
constexpr double LEASTR = 1e-20;       // ohm; for smaller values there is no parallel resistance
constexpr int PITCH = 72;              // spacing of the nodes in the drawing
constexpr int LEASTHEIGHT = 3 * PITCH; // of the symbol
constexpr int FOURCOLUMNS = -999;      // lowest ordinate that fits into four columns

RealMatrix PIC;  // capacitance, microfarad/m
RealMatrix PIR1; // parallel resistance of one metre, ohm; 0 for none
RealMatrix PILS; // series inductance, H/m
RealMatrix PIR2; // series resistance, ohm/m
LineMatrix PIY;  // half of the shunt admittance, S/m; admittance to ground on the diagonal

void setShunt(int i, int j, double w) {
  const Complex y = PIY(i, j);
  const bool conducts = y.real() > RUNDATA.display.GPARLIM && y.real() != 0.0;
  PIC(i, j) = std::fabs(y.imag() * MICRO / w);
  PIR1(i, j) = conducts ? 1.0 / y.real() : 0.0;
}

void formValues(CConstView Y, CConstView Z) {
  const int n = RUNDATA.line.NC;
  const double w = TWOPI * RUNDATA.line.SSFREQ;
  for (int i = 1; i <= n; ++i) {
    PIY(i, i) = 0.5 * Y(i, i);
    for (int j = 1; j <= n; ++j) {
      if (j != i) {
        PIY(i, j) = 0.5 * Y(i, j);
        PIY(i, i) += PIY(i, j);
      }
      if (j > i) setShunt(i, j, w);
      PIR2(i, j) = Z(i, j).real();
      PILS(i, j) = Z(i, j).imag() / w;
    }
    setShunt(i, i, w);
  }
}

void checkFinite(double length) {
  const int n = RUNDATA.line.NC;
  double sum = std::fabs(length); // infinite or NaN if a value is
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      sum += std::fabs(PIR2(i, j)) + std::fabs(PILS(i, j));
      if (j >= i) sum += std::fabs(PIC(i, j)) + std::fabs(PIR1(i, j));
    }
  }
  if (std::isfinite(sum)) return;
  console::openStars();
  console::line("The Values of the Coupled Pi Component are not Finite Numbers!");
  stopInStars("PISECT Ending!");
}

// Whether the name of the line is followed by a blank, which marks its end.
bool nameEnds() { return RUNDATA.line.LNAMELEN <= LINENAMELEN; }

std::string_view componentName() {
  const LineSummary& L = RUNDATA.line;
  if (!nameEnds() || L.LNAMELEN < 1) return {};
  return L.LNAME.whole().substr(0, static_cast<std::size_t>(L.LNAMELEN - 1));
}

} // namespace

std::string componentFile() {
  std::string name = fmt::format("{}.cmp", componentName());
  if (!nameEnds()) {
    name = fmt::format("{}.cmp", RUNDATA.line.LNAME.whole());
  } else if (name.size() > LINENAMELEN) {
    name.resize(LINENAMELEN);
  }
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
}

namespace {

void openComponent(TextFile& file) {
  const std::string name = componentFile();
  if (file.open(name, EarlyEnd::REMOVE)) return;
  sayCannotWrite(name);
  stop(1);
}

void putLines(TextFile& file, std::initializer_list<std::string_view> lines) {
  for (const std::string_view line : lines) file.line(line);
}

void writeParameters(TextFile& file, std::string_view name, double length) {
  putLines(file, {"  {", R"(  Desc = "Coupled Pi Section Transmission Line")", "  FileDate = 0",
                  "  Parameters =", "   {", R"(   Category("Configuration"))", "    {",
                  R"(    Text("Name",6,14,215,12,2))", "     {", R"(     Desc = "Line Name")"});
  file.line(fmt::format(R"(     Def = "{}")", name));
  putLines(file, {"     Len = 14", "     }", R"(    Input("len",6,28,215,11,2))", "     {",
                  R"(     Desc = "Line Length")"});
  file.line(fmt::format(R"(     Def = "{}")", scientificField(length, 12, 6)));
  putLines(file, {"     Data = Real", R"(     Unit = "m")", "     Len = 14", "     Min = 0",
                  "     }", "    }", "   }", ""});
}

int ordinate(int i) { return -PITCH * (i - 1); }

std::string ordinateField(int y) { return integerField(y, y < FOURCOLUMNS ? 5 : 4); }

void writeNodes(TextFile& file) {
  putLines(file, {"  Nodes =", "   {", R"(   Electrical("S1",-216,0))", "    {", "    }",
                  R"(   Electrical("R1",216,0))", "    {", "    }", R"(   Electrical("G",0,0))",
                  "    {", "    Type = Ground", "    }"});
  for (int i = 2; i <= RUNDATA.line.NC; ++i) {
    const std::string y = ordinateField(ordinate(i));
    file.line(fmt::format(R"(   Electrical("S{}",-216,{}))", i, y));
    putLines(file, {"    {", "    }"});
    file.line(fmt::format(R"(   Electrical("R{}",216,{}))", i, y));
    putLines(file, {"    {", "    }"});
  }
  file.line("   }");
}

void writeGraphics(TextFile& file, std::string_view name) {
  const int n = RUNDATA.line.NC;
  const int bottom = -std::max(PITCH * n, LEASTHEIGHT);
  putLines(file, {"  Graphics =", "   {"});
  file.line(fmt::format("  Rectangle(-160,72,160,{})", ordinateField(bottom)));
  putLines(file, {"   Line(-160,0,-216,0)", "   Line(160,0,216,0)"});
  for (int i = 2; i <= n; ++i) {
    file.line(fmt::format("  Line(-160,{0},-216,{0})", ordinate(i)));
    file.line(fmt::format("  Line(+160,{0},+216,{0})", ordinate(i)));
  }
  file.line(fmt::format(R"(   Text(0,0,"{}"))", name));
  putLines(file, {R"(   Text(0,-60,"COUPLED"))", R"(   Text(0,-120,"PI"))",
                  R"(   Text(0,-180,"SECTION"))", R"(   Text(-180,15,"1"))", "   }"});
}

void putValue(TextFile& file, std::string_view kind, int i, int j, double value,
              std::string_view scale) {
  file.line(fmt::format("REAL  {}_{}{}  = {}{}", kind, i, j, scientificField(value, 15, 9), scale));
}

void putShunt(TextFile& file, int i, int j) {
  putValue(file, "C", i, j, PIC(i, j), "*len");
  putValue(file, "R1", i, j, PIR1(i, j), "/len");
}

void writeValues(TextFile& file) {
  const int n = RUNDATA.line.NC;
  file.line(R"(   Computations = "\)");
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      if (i < j) putShunt(file, i, j);
      putValue(file, "LS", i, j, PILS(i, j), "*len");
      putValue(file, "R2", i, j, PIR2(i, j), "*len");
    }
    putShunt(file, i, i);
  }
  file.line(R"( ")");
}

// A cable without coupling has no such branch; an overhead line always has it.
bool hasCapacitance(int i, int j) {
  return RUNDATA.run.ISCABLE != CABLESYSTEM || !(PIC(i, j) < LEASTC);
}

void writeGroundBranches(TextFile& file, int i) {
  for (const char* end : {"S", "R"}) {
    if (hasCapacitance(i, i)) file.line(fmt::format("${0}{1}  $G     0  0  $C_{1}{1}", end, i));
  }
  for (const char* end : {"S", "R"}) {
    if (PIR1(i, i) > LEASTR) file.line(fmt::format("${0}{1}  $G     $R1_{1}{1}  0  0", end, i));
  }
}

void writeCouplingBranches(TextFile& file, int i, int j) {
  for (const char* end : {"S", "R"}) {
    if (hasCapacitance(i, j))
      file.line(fmt::format("${0}{1}  ${0}{2}    0  0  $C_{1}{2}", end, i, j));
  }
  for (const char* end : {"S", "R"}) {
    if (PIR1(i, j) > LEASTR)
      file.line(fmt::format("${0}{1}  ${0}{2}  $R1_{1}{2}  0  0", end, i, j));
  }
}

void writeBranches(TextFile& file) {
  const int n = RUNDATA.line.NC;
  file.line(R"(   Branch = "\)");
  if (n == 1) file.line("$S1  $R1    $R2_11  $LS_11  0");
  for (int i = 1; i <= n; ++i) writeGroundBranches(file, i);
  for (int i = 1; i <= n; ++i) {
    for (int j = i + 1; j <= n; ++j) writeCouplingBranches(file, i, j);
  }
  file.line(R"( ")");
}

void writeTransformers(TextFile& file, std::string_view name) {
  const int n = RUNDATA.line.NC;
  const std::string count = integerField(n, 2);
  putLines(file, {R"(   Transformers = "\)", "#TRANSFORMERS 1"});
  file.line(fmt::format("#WINDINGS {}", count));
  file.line(fmt::format(" ! {}", name));
  file.line(fmt::format("{} /", count));
  std::string ends;
  for (int i = 1; i <= n; ++i) {
    std::string row = fmt::format("$S{0} $R{0}     ", i);
    for (int j = 1; j <= i; ++j) row += fmt::format("$R2_{0}{1} $LS_{0}{1}  ", i, j);
    file.line(row + " /");
    ends += fmt::format("$S{0} $R{0} ", i);
  }
  putLines(file, {R"( ")", R"(   Matrix-fill = "\)", ends + R"( ")"});
}

} // namespace

void PISECT(CConstView Y, CConstView Z, double length) {
  const std::string_view name = componentName();
  TextFile file;
  formValues(Y, Z);
  checkFinite(length);
  openComponent(file);
  file.line(fmt::format(R"( Component("{}_u"))", name));
  writeParameters(file, name, length);
  writeNodes(file);
  writeGraphics(file, name);
  putLines(file, {"  Section(VELTA)", "   {"});
  writeValues(file);
  writeBranches(file);
  if (RUNDATA.line.NC >= 2) writeTransformers(file, name);
  putLines(file, {"   }", "  }"});
  file.close();
}

} // namespace lcp
