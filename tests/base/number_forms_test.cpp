// The number fields against those of a Fortran run time: number_forms.txt holds one field a line
// (form, width, digits, the value's bits in hexadecimal, the text between bars), written by
//     gfortran -o table number_forms_table.f90 && ./table > number_forms.txt
#include "base/number_forms.h"

#include "base/general_field.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sstream>

using namespace lcp;

TEST(NumberForms, AreThoseOfAFortranWrite) {
  const std::map<char, std::string (*)(double, int, int)> forms = {
      {'E', scientificField}, {'F', fixedField}, {'G', generalField}, {'P', pointedField}};
  std::map<char, int> rows;
  std::ifstream file(CORVO_TEST_DATA "/base/number_forms.txt");
  for (std::string line; std::getline(file, line);) {
    char form = ' ';
    int width = 0, digits = 0;
    std::uint64_t bits = 0;
    std::istringstream(line) >> form >> width >> digits >> std::hex >> bits;
    ++rows[form];
    const std::string field = form == 'I'
                                  ? integerField(std::bit_cast<std::int64_t>(bits), width)
                                  : forms.at(form)(std::bit_cast<double>(bits), width, digits);
    ASSERT_EQ(line, line.substr(0, line.find('|') + 1) + field + "|");
  }
  for (const auto& [form, write] : forms) EXPECT_GT(rows[form], 700) << form;
  EXPECT_GT(rows['I'], 300);
}

// The quick fields of general form.
TEST(GeneralField, IsThatOfANumberField) {
  const auto expectSame = [](double value) {
    char text[GENERALWIDTH];
    putGeneral(value, text);
    ASSERT_EQ(std::string(text, GENERALWIDTH), generalField(value, GENERALWIDTH, GENERALDIGITS));
  };
  std::mt19937_64 random(11);
  std::uniform_real_distribution<> exponent(-40, 18), digits(-1e9, 1e9);
  for (int i = 0; i < 100000; ++i) {
    expectSame(std::bit_cast<double>(random()));
    // nine digits: a last one of 5 is rounded by what stands behind it in binary
    expectSame(std::round(digits(random)) * std::pow(10, std::floor(exponent(random) / 2)));
  }
  for (int e = -45; e <= 25; ++e) { // edges of digits and of forms, to the last bit
    for (const double leading : {1.0, 9.9999999, 9.99999995, 1.00000005, 4.99999995}) {
      double value = -leading * std::pow(10, e) * (1 + 4e-15);
      for (int step = 0; step < 80; ++step, value = std::nextafter(value, 0)) expectSame(value);
    }
  }
  for (const double value : {0.0, -0.0, HUGE_VAL, -HUGE_VAL, std::nan("")}) expectSame(value);
}
