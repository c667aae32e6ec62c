// Entry point of corvo-check.
#include "companions/check/check.h"

int main(int count, char** values) {
  return lcp::companions::checkDescription({values + (count > 0 ? 1 : 0), values + count});
}
