// SPDX-License-Identifier: Apache-2.0
// The way to the service of metrics, which is a program of its own (exporter/main.cc).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "perf-measure/command_line/invocation.h"

namespace perf_measure {

// "127.0.0.1:9464" or "[::1]:9464" taken apart: a numeric address, without brackets, and a port; 0 is any. False for
// anything else.
[[nodiscard]] bool read_place(std::string_view text, std::string *address, std::uint32_t *port);

// Becomes the service of given.listen. Returns only when there is none to become; an exit status, reported.
[[nodiscard]] int serve_metrics(const invocation &given);

}  // namespace perf_measure
