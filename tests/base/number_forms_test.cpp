// The number fields against those of a Fortran run time: number_forms.txt holds one field a line
// (form, width, digits, the value's bits in hexadecimal, the text between bars), written by
//     gfortran -o table number_forms_table.f90 && ./table > number_forms.txt
#include "base/number_forms.h"

#include <bit>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

using namespace lcp;

namespace {

struct Field {
  char form = ' ';
  int width = 0, digits = 0;
  std::uint64_t bits = 0;

  double value() const { return std::bit_cast<double>(bits); }
};

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
  std::ifstream file(CORVO_TEST_DATA "/base/number_forms.txt");
  for (std::string line; std::getline(file, line);) {
    Field f;
    std::istringstream(line) >> f.form >> f.width >> f.digits >> std::hex >> f.bits;
    ++rows[f.form];
    ASSERT_EQ(line, line.substr(0, line.find('|') + 1) + written(f) + "|");
  }
  for (const char form : {'E', 'F', 'G', 'P'}) EXPECT_GT(rows[form], 700) << form;
  EXPECT_GT(rows['I'], 300);
}
