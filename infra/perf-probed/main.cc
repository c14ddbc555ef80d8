// SPDX-License-Identifier: Apache-2.0
// perf-probed: measures delay, loss and liveness with real packets, and publishes what it finds.
#include <cstdio>
#include <string>

#include <CLI/CLI.hpp>

#include "perf-probed/config/config.h"
#include "perf-probed/daemon/daemon.h"

namespace {

constexpr char DEFAULT_CONFIG[] = "/etc/perf-probed.yaml";

bool read_settings(const std::string &path, probed::config *settings) {
    const probed::config_report report = probed::load_config(path, settings);
    for (const std::string &text : report.warnings) {
        std::fprintf(stderr, "perf-probed: warning: %s\n", text.c_str());
    }
    for (const std::string &text : report.errors) {
        std::fprintf(stderr, "perf-probed: %s\n", text.c_str());
    }
    return report.ok();
}

}  // namespace

int main(int argc, char **argv) {
    CLI::App app(
        "Measures delay, loss and liveness with STAMP packets, answers those of others, and publishes its "
        "state into the store that perf-show reads.",
        "perf-probed");
    std::string path = DEFAULT_CONFIG;
    std::string checked;
    app.add_option("-c,--config", path, "The configuration's file")->option_text("FILE");
    app.add_option("--check", checked, "Check a configuration and do nothing else")->option_text("FILE");
    app.set_version_flag("--version", "perf-probed " PERF_PROBED_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &failure) {
        return app.exit(failure) == 0 ? 0 : 2;
    }
    probed::config settings;
    if (!read_settings(checked.empty() ? path : checked, &settings)) {
        return 1;
    }
    if (!checked.empty()) {
        return 0;
    }
    probed::daemon service(path, settings);
    if (const pm_error error = service.run()) {
        std::fprintf(stderr, "perf-probed: %s\n", error.text().c_str());
        return 1;
    }
    return 0;
}
