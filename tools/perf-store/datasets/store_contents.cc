// Keys of the store taken apart, batch by batch.
#include "perf-store/datasets/store_contents.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "perf-store/datasets/message_text.h"
#include "platform/local/lmdb_store/store_access.h"

namespace perf_store {

namespace {

constexpr std::size_t BATCH_BYTES = 1 << 20;
constexpr std::uint32_t ENOUGH = 0xFFFFFFFE;  // the code with which a visit ends a scan early

using key_visit = std::function<pm_error(std::string_view key, std::string_view parcel)>;

struct batch_entry {
    std::size_t key_length;
    std::size_t value_length;
};

// Keys and values of one batch, one after the other.
struct key_batch {
    std::vector<char> bytes;
    std::vector<batch_entry> entries;
};

errcode read_batch(store::environment *store, std::string_view prefix, std::string_view after, key_batch *out) {
    return store->read([&](const store::view &state) {
        out->bytes.clear();
        out->entries.clear();
        return state.scan(prefix, after, [&](std::string_view key, std::string_view value) {
            if (out->bytes.size() >= BATCH_BYTES) {
                return false;
            }
            const std::size_t at = out->bytes.size();
            out->bytes.resize(at + key.size() + value.size());
            std::memcpy(out->bytes.data() + at, key.data(), key.size());
            std::memcpy(out->bytes.data() + at + key.size(), value.data(), value.size());
            out->entries.push_back({key.size(), value.size()});
            return true;
        });
    });
}

// Visits the keys that begin with `prefix`, in order. Each batch is one consistent state.
pm_error each_key(std::string_view prefix, const key_visit &visit) {
    store::environment *store = nullptr;
    if (const errcode error = store::environment::shared(&store); error != ERRCODE_SUCCESS) {
        return store_error(error);
    }
    key_batch batch;
    std::string last;
    do {
        if (const errcode error = read_batch(store, prefix, last, &batch); error != ERRCODE_SUCCESS) {
            return store_error(error);
        }
        const char *at = batch.bytes.data();
        for (const batch_entry &each : batch.entries) {
            const std::string_view key(at, each.key_length);
            if (key <= std::string_view(last)) {  // a damaged tree could go round in circles
                return store_error(OPSTORE_DAMAGED);
            }
            last = key;
            const std::string_view value(at + each.key_length, each.value_length);
            if (pm_error error = visit(key, store::unseal(key, value))) {
                return error;
            }
            at += each.key_length + each.value_length;
        }
    } while (!batch.entries.empty());
    return {};
}

std::uint32_t parse_big_endian(std::string_view text) {
    std::uint32_t number = 0;
    for (const char byte : text.substr(0, sizeof number)) {
        number = number << 8 | static_cast<std::uint8_t>(byte);
    }
    return number;
}

// An item's or publisher's key; only a damaged store holds one that is neither.
pm_error parse_branch_key(std::string_view key, item_place *place) {
    constexpr std::size_t ROOT_AT = 1;
    constexpr std::size_t NODE_AT = 2;
    constexpr std::size_t PATH_AT = NODE_AT + sizeof(std::uint32_t);
    for (const store::root_name &each : store::ROOTS) {
        if (key.size() >= PATH_AT && key[ROOT_AT] == static_cast<char>(each.id)) {
            *place = {each, parse_big_endian(key.substr(NODE_AT)), key.substr(PATH_AT)};
            return {};
        }
    }
    return store_error(OPSTORE_DAMAGED);
}

// Visits items or publishers in order; the prefix of paths is for the caller when no node is selected.
pm_error each_in_branches(store::key_space space, const item_selection &selection, const item_visit &visit) {
    for (const store::root_name &root : store::ROOTS) {
        if (selection.root && *selection.root != root.id) {
            continue;
        }
        std::string prefix = store::key(space) + static_cast<char>(root.id);
        if (selection.node) {
            prefix = store::branch_key(space, root.id, *selection.node);
            if (space == store::key_space::item) {
                prefix += selection.path_prefix;
            }
        }
        pm_error error = each_key(prefix, [&](std::string_view key, std::string_view parcel) {
            item_place place{};
            pm_error wrong = parse_branch_key(key, &place);
            return wrong ? wrong : visit(place, parcel);
        });
        if (error) {
            return error;
        }
    }
    return {};
}

// How many keys the store holds, and in which state.
struct store_extent {
    std::size_t entries = 0;
    std::size_t transaction = 0;
};

// A failure is noticed by who reads the store next.
store_extent extent_now() {
    store_extent extent;
    store::environment *store = nullptr;
    if (store::environment::shared(&store) == ERRCODE_SUCCESS) {
        static_cast<void>(store->read([&](const store::view &state) {
            extent = {state.entries(), state.transaction()};
            return ERRCODE_SUCCESS;
        }));
    }
    return extent;
}

// One visit of a store, which counts the keys that it sees.
class store_visit {
public:
    store_visit(const item_selection &selection, store_visitor *visitor) : selection_(selection), visitor_(*visitor) {}

    [[nodiscard]] pm_error whole() {
        const store_extent before = extent_now();
        if (pm_error error = router()) {
            return error;
        }
        if (pm_error error = branches()) {
            return error;
        }
        const key_visit count_only = [](std::string_view, std::string_view) { return pm_error(); };
        for (const store::key_space space : {store::key_space::format, store::key_space::schema}) {
            if (pm_error error = counted(space, count_only)) {
                return error;
            }
        }
        // A damaged tree can lose keys without a sign; another writer may have changed their number.
        const store_extent after = extent_now();
        const bool lost = before.transaction == after.transaction && keys_ != after.entries;
        return lost ? store_error(OPSTORE_DAMAGED) : pm_error();
    }

    [[nodiscard]] pm_error branches() {
        pm_error error = each_in_branches(store::key_space::publisher, selection_,
                                          [this](const item_place &branch, std::string_view parcel) {
                                              ++keys_;
                                              return visitor_.publisher(branch, parcel);
                                          });
        if (error) {
            return error;
        }
        return each_in_branches(store::key_space::item, selection_,
                                [this](const item_place &item, std::string_view parcel) {
                                    ++keys_;
                                    const bool selected = item.path.starts_with(selection_.path_prefix);
                                    return selected ? visitor_.item(item, parcel) : pm_error();
                                });
    }

private:
    [[nodiscard]] pm_error counted(store::key_space space, const key_visit &visit) {
        return each_key(store::key(space), [&](std::string_view key, std::string_view parcel) {
            ++keys_;
            return visit(key, parcel);
        });
    }

    [[nodiscard]] pm_error router() {
        pm_error error = counted(store::key_space::platform, [this](std::string_view, std::string_view parcel) {
            return visitor_.platform(parcel);
        });
        if (!error) {
            error = counted(store::key_space::node,
                            [this](std::string_view, std::string_view parcel) { return visitor_.node(parcel); });
        }
        if (!error) {
            error = counted(store::key_space::interface, [this](std::string_view key, std::string_view parcel) {
                return visitor_.interface(parse_big_endian(key.substr(1)), parcel);
            });
        }
        return error;
    }

    const item_selection &selection_;
    store_visitor &visitor_;
    std::size_t keys_ = 0;
};

}  // namespace

std::string describe_item(const item_place &item) {
    char node[16];
    std::snprintf(node, sizeof node, " %#x ", item.node);
    return item.root.word + std::string(node) + on_one_line(excerpt(item.path, store::MAX_PATH_LENGTH));
}

pm_error store_error(errcode code) {
    const char *url = store::configured_url();
    const char *folder = store::folder_of(url);
    std::string denied = code == OPSTORE_NO_CLIENT && folder != nullptr ? store::check_access(folder).problem : "";
    return {code, denied.empty() ? std::string(url) + ": " + errcode_strerror(code) : std::move(denied)};
}

pm_error open_store() {
    store::environment *store = nullptr;
    const errcode error = store::environment::shared(&store);
    return error != ERRCODE_SUCCESS ? store_error(error) : pm_error();
}

pm_error visit_store(const item_selection &selection, store_visitor *visitor) {
    store_visit visit(selection, visitor);
    return selection.everything() ? visit.whole() : visit.branches();
}

pm_error each_item(const item_selection &selection, const item_visit &visit) {
    return each_in_branches(store::key_space::item, selection, [&](const item_place &item, std::string_view parcel) {
        return item.path.starts_with(selection.path_prefix) ? visit(item, parcel) : pm_error();
    });
}

pm_error read_item(const item_place &item, std::string *parcel) {
    const std::string wanted =
        store::branch_key(store::key_space::item, item.root.id, item.node) + std::string(item.path);
    bool found = false;
    pm_error error = each_key(wanted, [&](std::string_view key, std::string_view value) {  // its own comes first
        found = key == wanted;
        *parcel = value;
        return pm_error(ENOUGH);
    });
    if (error && error.code() != ENOUGH) {
        return error;
    }
    return found ? pm_error()
                 : pm_error(ERRCODE_NOT_FOUND, describe_item(item) + ": " + errcode_strerror(ERRCODE_NOT_FOUND));
}

}  // namespace perf_store
