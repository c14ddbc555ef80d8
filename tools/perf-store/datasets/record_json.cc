// SPDX-License-Identifier: Apache-2.0
// One JSON text to one record; data sets, which are streams of documents, use the parts by themselves.
#include "perf-store/datasets/record_json.h"

#include "perf-store/datasets/record_reader.h"

namespace perf_store {

pm_error record_json_reader::read(std::string_view text, const parcel_descriptor *type, const void **record) {
    text_ = text;
    path_.clear();
    memory_.reset();
    std::size_t length = 0;
    if (const pm_error error = document_.read(text_.c_str(), &length)) {
        return path_.refuse(error.text(), length);
    }
    if (length == 0) {
        return path_.refuse("no JSON", 0);
    }
    if (const std::size_t rest = text_.find_first_not_of(" \t\r\n", length); rest != std::string::npos) {
        return path_.refuse("more than one JSON document", rest);
    }
    return record_reader(&document_, &path_, &memory_).read(document_.root(), type, record);
}

}  // namespace perf_store
