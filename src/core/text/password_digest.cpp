#include "core/text/password_digest.h"

#include <cstdint>

namespace finora {

std::string passwordDigest(std::string_view password)
{
    const auto signedByte = [](char c) {
        return static_cast<std::int32_t>(static_cast<std::int8_t>(c));
    };
    const std::int32_t first = password.empty() ? 0 : signedByte(password.front());
    const std::int32_t last = password.empty() ? 0 : signedByte(password.back());
    // Summed in 64 bits and then cut to 32, so absurdly long passwords wrap instead of overflowing.
    const std::int64_t ends = 5LL * first * first + 5LL * last * last;
    std::int64_t chars = 0;
    for (char c : password) {
        const auto d = static_cast<std::int8_t>(static_cast<std::uint8_t>(signedByte(c) * 11));
        chars += static_cast<std::int64_t>(d) * d;
    }
    return std::to_string(static_cast<std::int32_t>(static_cast<std::uint32_t>(ends))) +
           std::to_string(static_cast<std::int32_t>(static_cast<std::uint32_t>(chars)));
}

} // namespace finora
