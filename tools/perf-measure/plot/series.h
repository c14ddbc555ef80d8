// SPDX-License-Identifier: Apache-2.0
// What a plot draws: the delays of one measured thing over time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/parcel.h"

namespace perf_measure {

// One probe, aggregation or advertisement. Delays in microseconds.
struct sample {
    std::uint64_t time_msec = 0;  // since the epoch
    bool has_delay = true;        // false when no packet came back
    std::uint32_t average = 0;
    std::uint32_t minimum = 0;
    std::uint32_t maximum = 0;
    std::uint32_t sent = 0;  // packets; 0 where the history does not count them
    std::uint32_t received = 0;

    [[nodiscard]] std::uint32_t lost() const { return sent > received ? sent - received : 0; }
};

struct series {
    std::string title;
    std::vector<sample> samples;  // in the order of time
};

// What is common to all samples of a series.
struct summary {
    std::uint64_t first_msec = 0;
    std::uint64_t last_msec = 0;
    std::uint32_t lowest = 0;  // delay
    std::uint32_t highest = 0;
    std::uint64_t sent = 0;
    std::uint64_t lost = 0;
    bool has_delay = false;
};
[[nodiscard]] summary summarize(const series &drawn);

// The series of a history record: an interface and its bundle members, the candidate paths of an SR policy, the
// LSPs of a tunnel, the segment lists of an endpoint. With `segment_list` only those of that list, also of an SR
// policy. With `limit` only the first so many rows of each history, as a show has them; 0 is no limit.
enum class history_of : std::uint8_t { interface, sr_policy, rsvp_te, endpoint };
[[nodiscard]] std::vector<series> series_of(history_of what, const void *record, std::string_view segment_list,
                                            std::uint32_t limit);

// "2024-03-05 13:57:30" in the local time zone.
[[nodiscard]] std::string time_text(std::uint64_t time_msec);

// A text from the store as one line of UTF-8: what is not, is '?'.
[[nodiscard]] std::string printable(std::string_view text);

}  // namespace perf_measure
