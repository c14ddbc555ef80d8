// Reads the store's batches one after the other.
#include "perf-store/datasets/store_reader.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "perf-store/datasets/value_text.h"
#include "platform/local/back_ends/readers.h"
#include "platform/local/store/store_url.h"

namespace perf_store {

namespace {

constexpr std::uint32_t ITEMS_AT_ONCE = 1000;

}  // namespace

std::string open_store(store::reader **out) {
    const pm_error error = store::shared_reader(out);
    return error ? store::describe(error) : "";
}

std::string for_each_item(store::reader *from, const store::branch &branch, std::string_view prefix,
                          const visit_item &visit) {
    const store::root_name &root = root_name_of(branch.data_root);
    store::batch batch;
    std::string last;
    do {
        if (const pm_error error = from->list(branch, {prefix, last, ITEMS_AT_ONCE, {}}, nullptr, &batch)) {
            return store::describe(error);
        }
        for (const store::item &each : batch.items()) {
            if (std::string stop = visit({root, branch.node, each.path}, each.parcel); !stop.empty()) {
                return stop;
            }
        }
        if (!batch.items().empty()) {
            last = batch.items().back().path;
        }
    } while (batch.more());
    return "";
}

const store::root_name &root_name_of(store::root id) {
    return *std::find_if(std::begin(store::ROOTS), std::end(store::ROOTS),
                         [&](const store::root_name &each) { return each.id == id; });
}

std::string describe_item(const item_key &item) {
    char node[16];
    std::snprintf(node, sizeof node, " %#x ", item.node);
    return item.root.word + std::string(node) + on_one_line(excerpt(item.path, store::MAX_PATH_LENGTH));
}

}  // namespace perf_store
