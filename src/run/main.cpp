// Entry point of corvo.
#include "run/lcpmain.h"

int main(int count, char** values) {
  lcp::LCPMAIN(std::span<char* const>(values + (count > 0 ? 1 : 0), values + count));
}
