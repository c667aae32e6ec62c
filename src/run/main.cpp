#include "base/stop.h"

int main() { lcp::stop(0); }
