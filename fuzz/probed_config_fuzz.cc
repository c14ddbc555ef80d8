// SPDX-License-Identifier: Apache-2.0
// Configurations of perf-probed.
#include "fuzz/probed_config_fuzz.h"

#include <cstdlib>
#include <string>

#include "perf-probed/config/config.h"
#include "perf-probed/service/session_plan.h"

void config_fuzz_one(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    probed::config settings;
    const probed::config_report report = probed::parse_config("f", text, &settings);
    for (const std::string &error : report.errors) {
        if (!error.starts_with("f:")) {
            std::abort();
        }
    }
    probed::rate_budget budget;
    if (report.ok()) {
        static_cast<void>(probed::plan_sessions(settings, &budget));
    }
}
