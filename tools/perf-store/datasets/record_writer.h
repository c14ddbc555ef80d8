// Records to JSON, fields in schema order, so that reading it back gives the same record.
#pragma once

#include <string>

#include "perf-store/datasets/record_shape.h"

namespace perf_store {

// Which fields to write. One that is zero, false, absent or empty reads back the same when it is left
// out, which makes data sets several times smaller.
enum class json_fields { set, all };

// Appends the JSON object of a record. Throws std::runtime_error for a text that is not UTF-8, which
// JSON cannot hold; `*out` is then in any state.
void append_record(const void *record, const record_shape &shape, json_fields fields, std::string *out);

}  // namespace perf_store
