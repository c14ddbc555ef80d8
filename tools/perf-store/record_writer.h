// Records to JSON: every field, in schema order, so that reading it back gives the same record.
#pragma once

#include <string>

#include "record_shape.h"

namespace perf_store {

// Appends the JSON object of a record. Throws std::runtime_error for a text that is not UTF-8, which
// JSON cannot hold; `*out` is then in any state.
void append_record(const void *record, const record_shape &shape, std::string *out);

}  // namespace perf_store
