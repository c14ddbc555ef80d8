// SPDX-License-Identifier: Apache-2.0
// The service of "perf-measure metrics --listen", which starts this program; nobody else does. It is a program of its
// own for the sake of the HTTP library, which cannot be linked into perf-measure where that is linked statically.
//
//   metrics-server ADDRESS PORT PERF-MEASURE WORDS...
#include <cstdio>
#include <cstdlib>

#include "perf-measure/exporter/metrics_server.h"

int main(int argc, char **argv) {
    if (argc < 5) {
        std::fputs("metrics-server is started by: perf-measure metrics --listen ADDRESS:PORT\n", stderr);
        return 2;
    }
    return exporter::serve_metrics({argv[1], std::atoi(argv[2]), argv[3], {argv + 4, argv + argc}});
}
