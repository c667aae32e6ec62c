// The number fields against those of a Fortran run time where forms change, round or do not fit,
// and against a second writer everywhere else.
//
// number_forms.txt holds one field a line: form, width, digits, the value's bits in hexadecimal,
// and between bars the text that number_forms.f90 writes for it,
//     gfortran -o forms number_forms.f90 && ./forms < number_forms.txt
#include "base/number_forms.h"

#include "base/general_field.h"
#include "support/exact_fields.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

struct Form {
  std::string (*field)(double value, int width, int digits);
  std::string (*second)(double value, int width, int digits);
};

const std::map<char, Form> FORMS = {{'E', {scientificField, exactScientific}},
                                    {'F', {fixedField, exactFixed}},
                                    {'G', {generalField, exactGeneral}},
                                    {'P', {pointedField, exactPointed}}};

} // namespace

TEST(NumberForms, AreThoseOfAFortranWrite) {
  std::map<char, int> rows;
  std::ifstream file(CORVO_TEST_DATA "/base/number_forms.txt");
  for (std::string line; std::getline(file, line);) {
    char form = ' ';
    int width = 0, digits = 0;
    std::uint64_t bits = 0;
    std::istringstream(line) >> form >> width >> digits >> std::hex >> bits;
    ++rows[form];
    const std::string field =
        form == 'I' ? integerField(std::bit_cast<std::int64_t>(bits), width)
                    : FORMS.at(form).field(std::bit_cast<double>(bits), width, digits);
    EXPECT_EQ(line, line.substr(0, line.find('|') + 1) + field + "|");
  }
  for (const char form : {'E', 'F', 'G', 'P', 'I'}) EXPECT_GE(rows[form], 15) << form;
}

TEST(NumberForms, AreThoseOfExactDecimals) {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<> mantissa(-1, 1), power(-20, 20), fewer(-4, 8), half(0, 16);
  const auto number = [&](int kind) {
    if (kind == 0) return std::bit_cast<double>(random());
    if (kind == 1) return mantissa(random) * std::pow(10, std::round(power(random)));
    if (kind == 2) return mantissa(random) * std::pow(10, std::round(fewer(random)));
    return std::round(1e5 * mantissa(random)) / std::exp2(std::round(half(random))); // ties
  };
  for (const auto& [form, writers] : FORMS) {
    for (int width = 5; width <= 26; width += 1 + width / 8) {
      for (int digits = 1; digits <= width - 1; digits += 1 + digits / 3) {
        for (int i = 0; i < 60; ++i) {
          const double value = number(i % 4);
          if (!std::isfinite(value)) continue;
          ASSERT_EQ(writers.field(value, width, digits), writers.second(value, width, digits))
              << form << width << '.' << digits << ' ' << value;
        }
      }
    }
  }
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
