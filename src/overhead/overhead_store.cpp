#include "overhead/overhead_store.h"

#include "base/big_store.h"

namespace lcp {

OverheadStore& OVERHEAD = bigStore<OverheadStore>();

} // namespace lcp
