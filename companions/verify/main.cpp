// Entry point of corvo-verify.
#include "companions/verify/verify.h"

int main(int count, char** values) {
  return lcp::companions::verifyModel({values + (count > 0 ? 1 : 0), values + count});
}
