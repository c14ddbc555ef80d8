// SPDX-License-Identifier: Apache-2.0
// Reads the store's batches one after the other.
#include "perf-store/datasets/store_contents.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <vector>

#include "perf-store/datasets/message_text.h"
#include "platform/errcode.h"
#include "platform/local/back_ends/readers.h"
#include "platform/local/store/store_url.h"

namespace perf_store {

namespace {

constexpr std::uint32_t ITEMS_AT_ONCE = 1000;

// The store that was opened: that of OPSTORE_URL, whose errors tell of OPSTORE_URL where it is not set, or one by name.
class named_store {
public:
    named_store() = default;
    explicit named_store(const std::string &url) : url_(&url) {}

    [[nodiscard]] pm_error open(store::reader **out) const {
        return describe(url_ != nullptr ? store::shared_reader(*url_, out) : store::shared_reader(out));
    }
    // An error that is ready to be shown.
    [[nodiscard]] pm_error describe(const pm_error &error) const {
        if (!error) {
            return {};
        }
        return pm_error(error.code(), url_ != nullptr ? store::describe(error, *url_) : store::describe(error));
    }

private:
    const std::string *url_ = nullptr;
};

pm_error open(store::reader **out) { return named_store().open(out); }

// One visit of a store, which counts the records that it sees.
class store_visit {
public:
    store_visit(store::reader *from, const item_selection &selection, const named_store &name = {})
        : from_(*from), selection_(selection), name_(name) {}

    // Everything, beginning with the router.
    [[nodiscard]] pm_error whole(store_visitor *visitor) {
        const store::census before = census_now();
        if (pm_error error = router(visitor)) {
            return error;
        }
        if (pm_error error = branches(visitor)) {
            return error;
        }
        // A damaged store can lose records without a sign; another writer may have changed their number.
        const store::census after = census_now();
        const bool lost = before.state == after.state && records_ != after.records;
        return lost ? describe(pm_error(OPSTORE_DAMAGED)) : pm_error();
    }

    [[nodiscard]] pm_error branches(store_visitor *visitor) {
        if (pm_error error = publishers(visitor)) {
            return error;
        }
        return items([&](const item_place &item, std::string_view parcel) { return visitor->item(item, parcel); });
    }

    [[nodiscard]] pm_error items(const item_visit &visit) {
        std::vector<store::branch> branches;
        if (pm_error error = describe(from_.branches(&branches))) {
            return error;
        }
        for (const store::branch &each : branches) {
            if (selects(each)) {
                if (pm_error error = items_of(each, visit)) {
                    return error;
                }
            }
        }
        return {};
    }

private:
    // A failure is noticed by who reads the store next.
    [[nodiscard]] store::census census_now() {
        store::census census;
        static_cast<void>(from_.count(&census));
        return census;
    }

    [[nodiscard]] bool selects(const store::branch &branch) const {
        return (!selection_.root || *selection_.root == branch.data_root) &&
               (!selection_.node || *selection_.node == branch.node);
    }

    [[nodiscard]] pm_error router(store_visitor *visitor) {
        std::string platform;
        pm_error error = from_.platform(&platform);
        if (!error) {
            ++records_;
            error = visitor->platform(platform);
            if (error) {
                return error;
            }
        } else if (error.code() != ERRCODE_NOT_FOUND) {
            return describe(error);
        }
        std::vector<std::string> nodes;
        if (error = describe(from_.nodes(&nodes)); error) {
            return error;
        }
        for (const std::string &each : nodes) {
            ++records_;
            if (error = visitor->node(each); error) {
                return error;
            }
        }
        return interfaces(visitor);
    }

    [[nodiscard]] pm_error interfaces(store_visitor *visitor) {
        std::vector<store::interface_entry> entries;
        std::uint64_t from = 0;
        do {
            if (pm_error error = describe(from_.interfaces(from, &entries))) {
                return error;
            }
            for (const store::interface_entry &each : entries) {
                ++records_;
                from = std::uint64_t{each.handle} + 1;
                if (pm_error error = visitor->interface(each.handle, each.parcel)) {
                    return error;
                }
            }
        } while (!entries.empty());
        return {};
    }

    [[nodiscard]] pm_error publishers(store_visitor *visitor) {
        std::vector<store::publisher_entry> entries;
        if (pm_error error = describe(from_.publishers(&entries))) {
            return error;
        }
        for (const store::publisher_entry &each : entries) {
            if (!selects(each.served)) {
                continue;
            }
            ++records_;
            const item_place place{root_name_of(each.served.data_root), each.served.node, {}};
            if (pm_error error = visitor->publisher(place, each.parcel, each.lease)) {
                return error;
            }
        }
        return {};
    }

    [[nodiscard]] pm_error items_of(const store::branch &branch, const item_visit &visit) {
        const store::root_name &root = root_name_of(branch.data_root);
        store::batch batch;
        std::string last;
        do {
            const store::list_query query{selection_.path_prefix, last, ITEMS_AT_ONCE, {}};
            if (pm_error error = describe(from_.list(branch, query, nullptr, &batch))) {
                return error;
            }
            for (const store::item &each : batch.items()) {
                ++records_;
                if (pm_error error = visit({root, branch.node, each.path}, each.parcel)) {
                    return error;
                }
            }
            if (!batch.items().empty()) {
                last = batch.items().back().path;
            }
        } while (batch.more());
        return {};
    }

    [[nodiscard]] pm_error describe(const pm_error &error) const { return name_.describe(error); }

    store::reader &from_;
    const item_selection &selection_;
    named_store name_;
    std::uint64_t records_ = 0;
};

}  // namespace

std::string describe_item(const item_place &item) {
    char node[16];
    std::snprintf(node, sizeof node, " %#x ", item.node);
    return item.root.word + std::string(node) + on_one_line(excerpt(item.path, store::MAX_PATH_LENGTH));
}

const store::root_name &root_name_of(store::root id) {
    return *std::ranges::find(store::ROOTS, id, &store::root_name::id);
}

pm_error open_store() {
    store::reader *from = nullptr;
    return open(&from);
}

pm_error visit_store(const item_selection &selection, store_visitor *visitor) {
    store::reader *from = nullptr;
    if (pm_error error = open(&from)) {
        return error;
    }
    store_visit visit(from, selection);
    return selection.everything() ? visit.whole(visitor) : visit.branches(visitor);
}

pm_error visit_store_at(const std::string &url, store_visitor *visitor) {
    const named_store name(url);
    store::reader *from = nullptr;
    if (pm_error error = name.open(&from)) {
        return error;
    }
    const item_selection everything;
    return store_visit(from, everything, name).whole(visitor);
}

pm_error each_item(const item_selection &selection, const item_visit &visit) {
    store::reader *from = nullptr;
    if (pm_error error = open(&from)) {
        return error;
    }
    return store_visit(from, selection).items(visit);
}

pm_error read_item(const item_place &item, std::string *parcel) {
    store::reader *from = nullptr;
    if (pm_error error = open(&from)) {
        return error;
    }
    store::batch first;  // get() would refuse the item where its publisher's record is damaged
    if (pm_error error =
            named_store().describe(from->list({item.root.id, item.node}, {item.path, "", 1, {}}, nullptr, &first))) {
        return error;
    }
    if (first.items().empty() || first.items().front().path != item.path) {
        return pm_error(ERRCODE_NOT_FOUND, describe_item(item) + ": " + errcode_strerror(ERRCODE_NOT_FOUND));
    }
    *parcel = first.items().front().parcel;
    return {};
}

}  // namespace perf_store
