// SPDX-License-Identifier: Apache-2.0
// Time stamps of test packets and the error estimate beside them (RFC 8762 section 4.2, RFC 8186).
//
// Inside the program a time is a count of nanoseconds since 1970, UTC; in a packet it is 64 bits of one
// of two formats, told apart by the Z bit of the error estimate.
#pragma once

#include <cstdint>

namespace probed {

using wall_nsec = std::int64_t;  // nanoseconds since 1970-01-01 00:00:00 UTC

inline constexpr std::int64_t NSEC_PER_SEC = 1'000'000'000;
inline constexpr std::int64_t NSEC_PER_MSEC = 1'000'000;
inline constexpr std::int64_t NSEC_PER_USEC = 1'000;

// The values of the Z bit.
enum class stamp_format : std::uint8_t {
    ntp = 0,  // seconds since 1900, fraction of 2^32
    ptp = 1,  // seconds since 1970, nanoseconds
};

// A time in a packet's format. Both formats keep only the low 32 bits of the seconds.
[[nodiscard]] std::uint64_t encode_stamp(stamp_format format, wall_nsec time);

// The time that a packet's 64 bits mean, in the era of 2^32 seconds that brings it nearest to `about`.
// Any 64 bits have a meaning; PTP nanoseconds beyond a second count as further seconds.
[[nodiscard]] wall_nsec decode_stamp(stamp_format format, std::uint64_t bits, wall_nsec about);

struct error_estimate {
    bool synchronised = false;  // S: to an external source
    stamp_format format = stamp_format::ntp;
    std::uint8_t scale = 0;       // 0 to 63
    std::uint8_t multiplier = 1;  // never 0 in what this program sends
};

// The smallest estimate of at least `error_nsec` nanoseconds: never less than the truth.
[[nodiscard]] error_estimate estimate_of(std::uint64_t error_nsec, bool synchronised, stamp_format format);

// What an estimate amounts to: multiplier x 2^(scale - 32) seconds, in nanoseconds rounded up; the largest
// 64-bit number when it is more.
[[nodiscard]] std::uint64_t error_nsec_of(const error_estimate &estimate);

[[nodiscard]] std::uint16_t encode_estimate(const error_estimate &estimate);
[[nodiscard]] error_estimate decode_estimate(std::uint16_t bits);

}  // namespace probed
