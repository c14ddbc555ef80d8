// SPDX-License-Identifier: Apache-2.0
// Cuts a record down to what a show would print of it: a limit of history rows, one segment list, the sections of
// a kind or transport.
#pragma once

#include <vector>

#include "perf-measure/items/item_reader.h"
#include "platform/parcel.h"

namespace perf_measure {

// Changes a decoded record as pm_show_options say, and puts back what it changed when it ends: what a record's
// arrays hold is freed by their true sizes.
class record_cuts {
public:
    explicit record_cuts(const item &cut);
    ~record_cuts();
    record_cuts(const record_cuts &) = delete;
    record_cuts &operator=(const record_cuts &) = delete;

    // Saves the bytes of a part, which may then be changed.
    template <class Part>
    Part &change(const Part &part) {
        auto &changed = const_cast<Part &>(part);
        save(&changed, sizeof changed);
        return changed;
    }

private:
    void save(void *part, std::size_t size);

    struct saved_part {
        void *at;
        std::vector<unsigned char> bytes;
    };
    std::vector<saved_part> saved_;
};

// Whether a show leaves the item out, although it is read: the checkpoint of another interface than the one named.
[[nodiscard]] bool is_left_out(const item &read);

}  // namespace perf_measure
