// SPDX-License-Identifier: Apache-2.0
// One input of the test packets' fuzz target. The first octet chooses: bit 0 authenticated mode, bit 1 short requests
// are answered, bit 2 an HMAC is put right first, bit 3 PTP time; the rest is a packet.
#pragma once

#include <cstddef>
#include <cstdint>

// Reads the packet as a request and as a reply, and answers it; aborts when a promise does not hold.
void stamp_fuzz_one(const std::uint8_t *data, std::size_t size);
