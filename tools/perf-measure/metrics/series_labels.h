// SPDX-License-Identifier: Apache-2.0
// The labels of series: what is measured, from the node down to one session.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "schema/pm_enums.h"

namespace perf_measure {

// The families of measured things.
inline constexpr std::string_view INTERFACES = "interface";
inline constexpr std::string_view SR_POLICIES = "sr-policy";
inline constexpr std::string_view TUNNELS = "rsvp-te";
inline constexpr std::string_view ENDPOINTS = "endpoint";

// Kinds of measurement.
inline constexpr std::string_view DELAY = "delay";
inline constexpr std::string_view LOSS = "loss";
inline constexpr std::string_view LIVENESS = "liveness";
inline constexpr std::string_view PROBE = "probe";
// The kind of a value of the enumeration; its number for an unknown one.
[[nodiscard]] std::string kind_word(pm_measurement_type_e kind);

// The labels of a node and of an item, which those of all its series begin with.
[[nodiscard]] std::string node_labels(std::string_view node);
[[nodiscard]] std::string item_labels(std::string_view node, std::string_view family, std::string_view name);

// The labels of one series of an item. The path says which part of the item; "" for the whole. Session 0 is none.
[[nodiscard]] std::string series_labels(const std::string &item, std::string_view path, std::uint32_t session,
                                        std::string_view kind);

}  // namespace perf_measure
