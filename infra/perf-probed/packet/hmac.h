// SPDX-License-Identifier: Apache-2.0
// The HMAC of test packets: HMAC-SHA-256 cut to its first 16 octets.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <openssl/sha.h>
#include <span>
#include <string_view>

#include "perf-probed/packet/stamp_packet.h"

namespace probed {

// A key made ready. Signing and checking allocate nothing, so that they may be done for every packet. The
// key's text is not kept.
class hmac_key {
public:
    explicit hmac_key(std::string_view key);
    ~hmac_key();
    hmac_key(const hmac_key &) = default;
    hmac_key &operator=(const hmac_key &) = default;

    // The first 16 octets of the HMAC of `text`.
    [[nodiscard]] std::array<std::uint8_t, HMAC_SIZE> sign(std::span<const std::uint8_t> text) const;

    // Whether `mac`, HMAC_SIZE octets, is that of `text`. Takes the same time wherever they differ.
    [[nodiscard]] bool check(std::span<const std::uint8_t> text, std::span<const std::uint8_t> mac) const;

    // The HMAC of an authenticated base packet, at its place. `packet` has BASE_SIZE_AUTHENTICATED octets or more.
    void sign_packet(std::span<std::uint8_t> packet) const;
    [[nodiscard]] bool check_packet(std::span<const std::uint8_t> packet) const;

private:
    SHA256_CTX inner_{};  // after the key's inner pad
    SHA256_CTX outer_{};  // after the key's outer pad
};

}  // namespace probed
