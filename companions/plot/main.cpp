// Entry point of corvo-plot.
#include "companions/plot/plot.h"

int main(int count, char** values) {
  return lcp::companions::plotLine({values + (count > 0 ? 1 : 0), values + count});
}
