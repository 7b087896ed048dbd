#pragma once

#include "core/model/ledger.h"

#include <cstdint>

namespace finora {

// A believable ledger of a Bulgarian household with a small business on the side, for the demo,
// the benchmarks and tests: a three-level category tree, EUR, USD and GBP besides BGL, single
// and multi-payment operations, a few unpaid, about 4,000 a year ending in October 2026.
// The same seed gives the same ledger on every platform.
Ledger generateLedger(std::int64_t operationCount, std::uint64_t seed = 1);

} // namespace finora
