// SPDX-License-Identifier: Apache-2.0
// The program's version, which the build gives.
#pragma once

namespace perf_measure {

inline constexpr char VERSION[] = PERF_MEASURE_VERSION;

}  // namespace perf_measure
