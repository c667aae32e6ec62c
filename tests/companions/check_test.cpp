#include "base/stop.h"
#include "companions/check/check.h"
#include "companions/check/finding.h"
#include "support/child.h"
#include "support/scratch.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace lcp::companions {

namespace {

using test::ChildResult;
using test::Scratch;
using Strings = std::set<std::string>;

const std::string EXAMPLES = std::string(CORVO_EXAMPLES) + "/";
const std::string LINE = "line500kv_phase.cvi", CABLES = "singlecore.cbi", PIPE = "pipetype.cbi",
                  HAND = "manual.cvi", FOURWIRE = "fourwire.cbi";

ChildResult check(std::string file, bool json) {
  std::string option = "--json";
  return test::runChild([&] {
    std::vector<char*> words = {file.data()};
    if (json) words.push_back(option.data());
    stop(checkDescription(words));
  });
}

// An example with pieces of text replaced, each where it stands first, and what is found in it:
// line number and kind.
struct Case {
  std::string example;
  std::vector<std::pair<std::string, std::string>> changes;
  Strings found;
  int status = 1;
};

const std::string BUNDLE = "Sub-ConductorsPerBundle: 4\n{\nBundleSpacing: 0.45 [m]\n}\n";
const std::string ENFORCE = "Weighting Factor 1: 1.0\nMaximum iterations for passivity: 3\n"
                            "Lower frequency for passivity check: 1.0\n"
                            "Frequency distribution for passivity check: 4\n";

const std::vector<Case> CASES = {
    // lines without effect
    {LINE, {{"Sag: 13.0", "! Sag: 13.0"}}, {"27 comment-key"}},
    {LINE, {{"Conductor Phase Information:", "C Conductor Phase Info:"}}, {}, 2},
    {LINE, {{"Name: Flat tower", "! Name of the tower\nCircut"}}, {"19 comment-key"}},
    {LINE, {{"Sag: 9.0", "Sagg: 9.0"}}, {"38 unknown-line"}},
    {LINE, {{"Sag: 13.0", std::string(130, ' ') + "Sag: 13.0"}}, {}},
};

} // namespace

} // namespace lcp::companions
