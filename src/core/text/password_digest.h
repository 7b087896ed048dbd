#pragma once

#include <string>
#include <string_view>

namespace finora {

// The short check text a protected ledger keeps instead of its password (Windows-1251 bytes,
// each taken as a signed 8-bit value). Weak on purpose and kept exactly, so that existing
// ledgers keep opening with their passwords. An empty password counts its first and last
// characters as 0.
std::string passwordDigest(std::string_view password);

} // namespace finora
