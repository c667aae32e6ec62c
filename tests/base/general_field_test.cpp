// The quick general fields against the general ones, which are held to a Fortran run time.
#include "base/general_field.h"

#include "base/number_forms.h"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace lcp;

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
    expectSame(std::pow(10, exponent(random)));
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
