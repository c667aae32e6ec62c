// Entry point of corvo-batch.
#include "companions/batch/batch.h"

int main(int count, char** values) { return lcp::companions::runBatch({values, values + count}); }
