#include "store/solvedata.h"

#include "base/big_store.h"

namespace lcp {

SolveData& SOLVEDATA = bigStore<SolveData>();

} // namespace lcp
