#include "companions/batch/summary.h"

#include "companions/shared/text.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::string_view NOTRUN = "not run";

struct Column {
  std::string_view fact, title;
};
constexpr Column COLUMNS[] = {
    {"status", "status"},  {"exit", "exit"},     {"warnings", "warnings"},
    {"R", "R [ohm]"},      {"X", "X [ohm]"},     {"B", "B [S]"},
    {"Yc", "Yc [%]"},      {"H", "H [%]"},       {"Zc", "Zc [%]"},
    {"A", "A [%]"},        {"Z", "Z [%]"},       {"passivity", "passivity"},
    {"cpu", "CPU [s]"},    {"wall", "time [s]"}, {"memory", "memory [MB]"},
    {"message", "message"}};

std::string_view factOf(const Facts& facts, std::string_view name) {
  const auto found = facts.find(name);
  return found == facts.end() ? std::string_view() : std::string_view(found->second);
}

std::string_view statusOf(const Facts& facts) {
  return facts.empty() ? NOTRUN : factOf(facts, "status");
}

std::vector<std::string> headingOf(const CaseList& list) {
  std::vector<std::string> row = {"case"};
  row.insert(row.end(), list.keys.begin(), list.keys.end());
  row.emplace_back("length [m]");
  for (const Column& c : COLUMNS) row.emplace_back(c.title);
  return row;
}

std::vector<std::string> rowOf(const BatchCase& c, const Facts& facts) {
  std::vector<std::string> row = {c.name};
  row.insert(row.end(), c.varied.begin(), c.varied.end());
  row.push_back(c.length);
  for (const Column& column : COLUMNS)
    row.emplace_back(column.fact == "status" ? statusOf(facts) : factOf(facts, column.fact));
  return row;
}

std::string escaped(std::string_view text) {
  std::string safe;
  for (const char c : text) {
    if (c == '&') {
      safe += "&amp;";
    } else if (c == '<') {
      safe += "&lt;";
    } else if (c == '>') {
      safe += "&gt;";
    } else if (c == '"') {
      safe += "&quot;";
    } else {
      safe += c;
    }
  }
  return safe;
}

// A path as a URL: everything but letters, digits and a few signs is percent-encoded.
std::string address(std::string_view path) {
  std::string safe;
  for (const char c : path) {
    const bool letter = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (letter || std::string_view("/._-~").find(c) != std::string_view::npos) {
      safe += c;
    } else {
      safe += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return safe;
}

std::string htmlRow(const std::vector<std::string>& row, std::string_view cell,
                    const std::string& link) {
  std::string text = "<tr>";
  for (std::size_t k = 0; k < row.size(); ++k) {
    std::string shown = escaped(row[k]);
    if (k == 0 && !link.empty()) shown = fmt::format("<a href=\"{}\">{}</a>", link, shown);
    text += fmt::format("<{}>{}</{}>", cell, shown, cell);
  }
  return text + "</tr>\n";
}

} // namespace

std::string summaryOf(const CaseList& list, const std::vector<Facts>& facts) {
  std::string text = joined(headingOf(list), "\t") + "\n";
  for (std::size_t k = 0; k < list.cases.size(); ++k)
    text += joined(rowOf(list.cases[k], facts[k]), "\t") + "\n";
  return text;
}

std::string indexOf(const CaseList& list, const std::vector<Facts>& facts,
                    const std::filesystem::path& work) {
  std::string text = "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                     "<title>Cases</title>\n<style>body{font-family:sans-serif}"
                     "table{border-collapse:collapse}td,th{border:1px solid #bbb;padding:2px 8px;"
                     "text-align:left}</style></head><body>\n";
  text += fmt::format("<h1>{}</h1>\n<table>\n", escaped(countsOf(facts)));
  text += htmlRow(headingOf(list), "th", "");
  for (std::size_t k = 0; k < list.cases.size(); ++k) {
    const BatchCase& c = list.cases[k];
    const std::string_view page = factOf(facts[k], "page");
    const std::string link =
        page.empty() ? "" : address((c.folder / page).lexically_relative(work).string());
    text += htmlRow(rowOf(c, facts[k]), "td", link);
  }
  return text + "</table>\n</body></html>\n";
}

std::string countsOf(const std::vector<Facts>& facts) {
  constexpr std::pair<std::string_view, std::string_view> KINDS[] = {
      {"ok", "ok"},           {"warning", "with a warning"}, {"failed", "failed"},
      {"crashed", "crashed"}, {"timeout", "out of time"},    {NOTRUN, "not run"}};
  std::vector<std::string> parts;
  for (const auto& [status, words] : KINDS) {
    const auto n = std::count_if(facts.begin(), facts.end(), [status = status](const Facts& f) {
      return statusOf(f) == status;
    });
    if (n > 0) parts.push_back(fmt::format("{} {}", n, words));
  }
  return fmt::format("{} case{}: {}", facts.size(), facts.size() == 1 ? "" : "s",
                     joined(parts, ", "));
}

int exitStatus(const std::vector<Facts>& facts) {
  constexpr int FAILED = 1, WARNED = 2;
  int status = 0;
  for (const Facts& f : facts) {
    if (statusOf(f) == "warning") {
      status = WARNED;
    } else if (statusOf(f) != "ok") {
      return FAILED;
    }
  }
  return status;
}

} // namespace lcp::companions
