// SPDX-License-Identifier: Apache-2.0
// Records read from JSON and written again, as tests show them.
#pragma once

#include <string>

#include "perf-store/datasets/record_json.h"

// A record read from JSON.
class record_of {
public:
    record_of(const parcel_descriptor *type, const std::string &json) {
        const pm_error error = reader_.read(json, type, &record_);
        refusal_ = error.text();
    }

    [[nodiscard]] const void *data() const { return record_; }
    [[nodiscard]] const std::string &refusal() const { return refusal_; }  // empty for none

private:
    perf_store::record_json_reader reader_;
    const void *record_ = nullptr;
    std::string refusal_;
};

// All fields of a record, or why it cannot be written.
inline std::string written(const void *record, const parcel_descriptor *type) {
    std::string json;
    const pm_error error = perf_store::append_record(record, type, perf_store::json_fields::all, &json);
    return error ? error.text() : json;
}

// What is written of the record that is read, or why it is not read.
inline std::string again(const parcel_descriptor *type, const std::string &json) {
    const record_of record(type, json);
    return record.refusal().empty() ? written(record.data(), type) : record.refusal();
}

inline std::string refusal(const parcel_descriptor *type, const std::string &json) {
    return record_of(type, json).refusal();
}
