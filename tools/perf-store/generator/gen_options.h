// SPDX-License-Identifier: Apache-2.0
// How large a synthetic data set is.
#pragma once

#include <cstdint>

namespace perf_store {

struct gen_options {
    std::uint32_t nodes = 4;        // one route processor, its standby, then line cards
    std::uint32_t interfaces = 16;  // shared out evenly among the line cards
    std::uint32_t policies = 100;   // SR policies
    std::uint32_t paths = 2;        // atomic paths of each segment list
    std::uint32_t endpoints = 20;
    std::uint32_t tunnels = 10;  // RSVP-TE tunnels
    std::uint64_t seed = 1;
};

// Within these handles, addresses and session ids stay distinct.
inline constexpr std::uint32_t GEN_MIN_NODES = 1;
inline constexpr std::uint32_t GEN_MAX_NODES = 1024;
inline constexpr std::uint32_t GEN_MAX_OBJECTS = 10'000'000;  // interfaces, policies, endpoints, tunnels: each
inline constexpr std::uint32_t GEN_MAX_PATHS = 64;

}  // namespace perf_store
