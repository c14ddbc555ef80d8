// SPDX-License-Identifier: Apache-2.0
// Which form of metrics a client wants.
#pragma once

#include <string_view>

namespace exporter {

// Whether the Accept header of a request asks for OpenMetrics at least as much as for plain text. A client that takes
// anything gets plain text, which a person can read in a browser.
[[nodiscard]] bool wants_openmetrics(std::string_view accept);

}  // namespace exporter
