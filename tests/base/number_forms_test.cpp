// The number fields against those of a Fortran run time: number_forms.txt holds one field a line
// (form, width, digits, the value's bits in hexadecimal, the text between bars), written by
//     gfortran -o table number_forms_table.f90 && ./table > number_forms.txt
// `./table N SEED` writes N random values a field from another start, for a wider check by hand.
#include "base/number_forms.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

using namespace lcp;

namespace {

struct Field {
  char form = ' ';
  int width = 0;
  int digits = 0;
  std::uint64_t bits = 0;
  std::string text;

  double value() const { return std::bit_cast<double>(bits); }
};

std::vector<Field> table() {
  std::ifstream file(CORVO_TEST_DATA "/base/number_forms.txt");
  std::vector<Field> fields;
  for (std::string line; std::getline(file, line);) {
    Field f;
    std::string bits;
    std::istringstream(line) >> f.form >> f.width >> f.digits >> bits;
    f.bits = std::strtoull(bits.c_str(), nullptr, 16);
    const std::size_t bar = line.find('|');
    f.text = line.substr(bar + 1, line.rfind('|') - bar - 1);
    fields.push_back(f);
  }
  return fields;
}

std::string written(const Field& f) {
  switch (f.form) {
  case 'E': return scientificField(f.value(), f.width, f.digits);
  case 'F': return fixedField(f.value(), f.width, f.digits);
  case 'G': return generalField(f.value(), f.width, f.digits);
  case 'P': return pointedField(f.value(), f.width, f.digits);
  case 'I': return integerField(std::bit_cast<std::int64_t>(f.bits), f.width);
  default: return "no such form";
  }
}

} // namespace

TEST(NumberForms, AreThoseOfAFortranWrite) {
  std::map<char, int> rows;
  int shown = 0;
  for (const Field& f : table()) {
    ++rows[f.form];
    const std::string text = written(f);
    if (text == f.text) continue;
    ADD_FAILURE() << f.form << f.width << "." << f.digits << " of " << f.value() << " (bits 0x"
                  << std::hex << f.bits << "): |" << text << "|, not |" << f.text << "|";
    ASSERT_LT(++shown, 20) << "and more";
  }
  for (const char form : {'E', 'F', 'G', 'P'}) EXPECT_GT(rows[form], 700) << form;
  EXPECT_GT(rows['I'], 300);
}
