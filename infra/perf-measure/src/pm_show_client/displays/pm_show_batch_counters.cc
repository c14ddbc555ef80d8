// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_batch_counters.h"

#include <array>
#include <cstdint>

#include "base/pm_output.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/engine_names.h"
#include "schema/pm_records.h"

namespace {

constexpr char HEADER[] =
    "Messages Batches Min  Max  Avg  MaxLat AvgLat SError OError Description\n"
    "-------- ------- ---- ---- ---- ------ ------ ------ ------ -----------\n";

// The counters of a kind, in the order of the record.
enum batch_counter : std::size_t {
    messages = 0,
    batches = 1,
    minimum_size = 2,
    maximum_size = 3,
    average_size = 4,
    // 5 has no column
    maximum_latency = 6,
    average_latency = 7,
    send_errors = 8,
    other_errors = 9,
};

void print_row(const std::array<std::uint32_t, 10> &counts, const char *description) {
    pm_print<"%-8u %-7u %-4u %-4u %-4u %-6u %-6u %-6u %-6u %s\n">(
        counts[messages], counts[batches], counts[minimum_size], counts[maximum_size], counts[average_size],
        counts[maximum_latency], counts[average_latency], counts[send_errors], counts[other_errors], description);
}

}  // namespace

int pm_show_batch_counters(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &batches = *static_cast<const pm_stats_batch_t *>(decoded_parcel);
    pm_print<"%s">(HEADER);
    std::int32_t type = 0;
    for (const pm_stats_batch_elem_t &batch : batches.Count) {
        print_row(batch.Count, pm_im_event_str(type++));
    }
    return PM_SHOW_PRINTED;
}
