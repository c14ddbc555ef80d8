// SPDX-License-Identifier: Apache-2.0
// The block of an operation queue: its size, its enqueues and its high water mark.
#pragma once

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_utils/engine_names.h"

// Which queue, by the numbers of pm_queue_type_str().
enum pm_queue_type : std::int32_t {
    PM_QUEUE_QUERIER_RX = 0,
    PM_QUEUE_RESPONDER_RX = 1,
    PM_QUEUE_CHECKPOINT_OPERATION = 2,
};

// Prints the name of the queue at `indent` and the lines indented by two more. `Queue` is any of the
// records that count a queue.
template <class Queue>
void pm_show_queue(pm_queue_type type, const Queue &queue, int indent) {
    pm_print_heading(indent, pm_queue_type_str(type));
    const pm_lines lines = pm_lines_at(indent + 2);
    lines.number("Size", queue.QueueSize);
    lines.number("Enqueues", queue.NumberOfEnqueues);
    lines.number("High water mark", queue.HighWaterMark);
    // A number without a meaning, where a calendar text would belong; any number serves.
    lines.number("High water mark time", static_cast<std::uint32_t>(queue.HighWaterMarkTS));
}
