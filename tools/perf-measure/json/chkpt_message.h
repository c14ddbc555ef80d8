// SPDX-License-Identifier: Apache-2.0
// Checkpoint blobs as JSON.
#pragma once

#include <string>

#include "perf-measure/items/item_reader.h"

namespace perf_measure {

// Appends ,"message":{...} with the members that were seen in the item's blob, and ,"damaged":true when the blob
// could not be read to its end. Appends nothing for an item without a blob.
void append_chkpt_message(const item &read, std::string *out);

}  // namespace perf_measure
