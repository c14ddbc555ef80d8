// SPDX-License-Identifier: Apache-2.0
// Conversions between nanoseconds and the two time stamp formats.
#include "perf-probed/packet/time_stamp.h"

#include <limits>

namespace probed {
namespace {

constexpr std::int64_t SECONDS_1900_TO_1970 = 2'208'988'800;
constexpr std::int64_t ERA_SECONDS = std::int64_t{1} << 32;

// Quotient and remainder with a remainder that is never negative.
constexpr std::int64_t floor_seconds(wall_nsec time) {
    const std::int64_t seconds = time / NSEC_PER_SEC;
    return time % NSEC_PER_SEC < 0 ? seconds - 1 : seconds;
}

// The seconds since 1970 that are `low` modulo 2^32 and nearest to `about`.
constexpr std::int64_t nearest_era(std::uint32_t low, std::int64_t about) {
    const std::int64_t difference = static_cast<std::int64_t>(low) - (about & (ERA_SECONDS - 1));
    std::int64_t seconds = about + difference;
    if (difference > ERA_SECONDS / 2) {
        seconds -= ERA_SECONDS;
    } else if (difference < -ERA_SECONDS / 2) {
        seconds += ERA_SECONDS;
    }
    return seconds;
}

}  // namespace

std::uint64_t encode_stamp(stamp_format format, wall_nsec time) {
    const std::int64_t seconds = floor_seconds(time);
    const auto nsec = static_cast<std::uint64_t>(time - seconds * NSEC_PER_SEC);
    if (format == stamp_format::ptp) {
        return (static_cast<std::uint64_t>(static_cast<std::uint32_t>(seconds)) << 32) | nsec;
    }
    const std::uint64_t fraction = ((nsec << 32) + NSEC_PER_SEC / 2) / NSEC_PER_SEC;  // below 2^32: nsec < 10^9 - 0.1
    return (static_cast<std::uint64_t>(static_cast<std::uint32_t>(seconds + SECONDS_1900_TO_1970)) << 32) | fraction;
}

wall_nsec decode_stamp(stamp_format format, std::uint64_t bits, wall_nsec about) {
    const auto high = static_cast<std::uint32_t>(bits >> 32);
    const std::uint64_t low = bits & 0xFFFFFFFF;
    const std::int64_t about_seconds = floor_seconds(about);
    if (format == stamp_format::ptp) {
        return nearest_era(high, about_seconds) * NSEC_PER_SEC + static_cast<std::int64_t>(low);
    }
    const std::int64_t seconds = nearest_era(high, about_seconds + SECONDS_1900_TO_1970) - SECONDS_1900_TO_1970;
    const std::uint64_t nsec = (low * NSEC_PER_SEC + (std::uint64_t{1} << 31)) >> 32;
    return seconds * NSEC_PER_SEC + static_cast<std::int64_t>(nsec);
}

error_estimate estimate_of(std::uint64_t error_nsec, bool synchronised, stamp_format format) {
    error_estimate estimate{synchronised, format, 0, 255};
    while (error_nsec_of(estimate) < error_nsec && estimate.scale < 63) {
        ++estimate.scale;
    }
    // The smallest multiplier of this scale that is enough.
    while (estimate.multiplier > 1) {
        --estimate.multiplier;
        if (error_nsec_of(estimate) < error_nsec) {
            ++estimate.multiplier;
            break;
        }
    }
    return estimate;
}

std::uint64_t error_nsec_of(const error_estimate &estimate) {
    const std::uint64_t nsec = estimate.multiplier * static_cast<std::uint64_t>(NSEC_PER_SEC);  // 38 bits
    const unsigned scale = estimate.scale & 0x3FU;
    if (scale >= 32) {
        const unsigned left = scale - 32;
        constexpr std::uint64_t MOST = std::numeric_limits<std::uint64_t>::max();
        return nsec > MOST >> left ? MOST : nsec << left;
    }
    const unsigned right = 32 - scale;
    return (nsec >> right) + ((nsec & ((std::uint64_t{1} << right) - 1)) != 0 ? 1 : 0);
}

std::uint16_t encode_estimate(const error_estimate &estimate) {
    const unsigned synchronised = estimate.synchronised ? 0x8000 : 0;
    const unsigned format = estimate.format == stamp_format::ptp ? 0x4000 : 0;
    return static_cast<std::uint16_t>(synchronised | format | ((estimate.scale & 0x3FU) << 8) | estimate.multiplier);
}

error_estimate decode_estimate(std::uint16_t bits) {
    return {(bits & 0x8000) != 0, (bits & 0x4000) != 0 ? stamp_format::ptp : stamp_format::ntp,
            static_cast<std::uint8_t>((bits >> 8) & 0x3F), static_cast<std::uint8_t>(bits & 0xFF)};
}

}  // namespace probed
