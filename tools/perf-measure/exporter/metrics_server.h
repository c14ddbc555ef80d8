// SPDX-License-Identifier: Apache-2.0
// The HTTP service: GET and HEAD of /metrics.
#pragma once

#include <string>
#include <vector>

namespace exporter {

struct service {
    std::string address;             // numeric, IPv4 or IPv6
    int port = 0;                    // 0: any that is free
    std::string program;             // perf-measure's path
    std::vector<std::string> words;  // its command of metrics
};

// Serves until SIGTERM or SIGINT, each scrape by a run of the program; 0 then. 1 when the address cannot be had, which
// has been reported on standard error. The line "perf-measure: metrics at http://..." there says that it serves.
//
// A scrape whose store cannot be read is answered with status 503 and the program's own words. A client that reads
// slowly has a thread of its own and, after RESPONSE_LIMIT, the end of its connection.
[[nodiscard]] int serve_metrics(const service &what);

}  // namespace exporter
