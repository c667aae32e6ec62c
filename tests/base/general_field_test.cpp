// The quick general fields against the general ones, which are held to a Fortran run time.
#include "base/general_field.h"

#include "base/number_forms.h"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace lcp;

namespace {

void expectSame(double value) {
  char text[GENERALWIDTH];
  putGeneral(value, text);
  ASSERT_EQ(std::string(text, GENERALWIDTH), generalField(value, GENERALWIDTH, GENERALDIGITS))
      << std::hexfloat << value;
}

} // namespace

TEST(GeneralField, IsThatOfANumberField) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 200000; ++i) expectSame(std::bit_cast<double>(random()));
  std::uniform_real_distribution<> exponent(-40, 18), digits(-1e9, 1e9);
  for (int i = 0; i < 200000; ++i) {
    expectSame(std::pow(10, exponent(random)));
    // nine digits: the last one, 5, is rounded by what stands behind it in binary
    expectSame(std::round(digits(random)) * std::pow(10, std::floor(exponent(random) / 2)));
  }
  for (int e = -45; e <= 25; ++e) {
    for (const double leading : {1.0, 9.9999999, 9.99999995, 1.00000005, 4.99999995}) {
      double value = -leading * std::pow(10, e);
      for (int step = 0; step < 40; ++step) value = std::nextafter(value, -HUGE_VAL);
      for (int step = 0; step < 80; ++step, value = std::nextafter(value, 0)) expectSame(value);
    }
  }
  for (const double value : {0.0, -0.0, HUGE_VAL, -HUGE_VAL, std::nan("")}) expectSame(value);
}
