// SPDX-License-Identifier: Apache-2.0
// perf-show: one show command, coded as short options, onto standard output.
#include <csignal>
#include <ctime>

#include "base/pm_output.h"
#include "front/dispatch.h"
#include "front/options.h"
#include "platform/kal_time.h"
#include "pm_show_client/pm_show_clock.h"

int main(int argc, char **argv) {
    std::timespec now;
    kal_time_get_timespec_realtime(&now);  // first of all: every age is computed from it
    pm_show_now_msec = kal_timespec_to_msec64(&now);
    std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away shows as a failed write
    std::signal(SIGXFSZ, SIG_IGN);  // so does a file at its limit

    pm_show_parse_options(argc, argv);
    const int status = pm_show_dispatch();
    pm_output_flush();
    return status;
}
