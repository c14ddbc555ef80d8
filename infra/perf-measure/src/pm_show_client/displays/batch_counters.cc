// See batch_counters.h.
#include "pm_show_client/displays/batch_counters.h"

#include <array>
#include <cstdint>

#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/engine_names.h"

namespace {

constexpr char HEADER[] =
    "Messages Batches Min  Max  Avg  MaxLat AvgLat SError OError Description\n"
    "-------- ------- ---- ---- ---- ------ ------ ------ ------ -----------\n";

// The counters of a kind, in the order of the record.
enum batch_counter : std::size_t {
    MESSAGES = 0,
    BATCHES = 1,
    MINIMUM_SIZE = 2,
    MAXIMUM_SIZE = 3,
    AVERAGE_SIZE = 4,
    // 5 has no column
    MAXIMUM_LATENCY = 6,
    AVERAGE_LATENCY = 7,
    SEND_ERRORS = 8,
    OTHER_ERRORS = 9,
};

void print_row(const std::array<std::uint32_t, 10> &counts, const char *description) {
    pm_print<"%-8u %-7u %-4u %-4u %-4u %-6u %-6u %-6u %-6u %s\n">(
        counts[MESSAGES], counts[BATCHES], counts[MINIMUM_SIZE], counts[MAXIMUM_SIZE], counts[AVERAGE_SIZE],
        counts[MAXIMUM_LATENCY], counts[AVERAGE_LATENCY], counts[SEND_ERRORS], counts[OTHER_ERRORS], description);
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
