// The database client over the embedded store. See platform/opstore.h.
#include "platform/opstore.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local/filters/item_filter.h"
#include "platform/local/lmdb_store/store.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"

namespace {

constexpr std::size_t BATCH_BYTES = 256 * 1024;  // a batch ends early rather than grow beyond this

// One item of a batch: where its key (terminated) and its data stand in the batch's bytes.
struct listed_item {
    std::uint32_t key_at;
    std::uint32_t key_length;
    std::uint32_t data_at;
    std::uint32_t data_length;
};

}  // namespace

struct opstore_list {
    std::unique_ptr<char[]> bytes;
    std::size_t capacity = 0;
    std::size_t used = 0;
    std::vector<listed_item> items;
    std::size_t next = 0;
    bool more = false;
    opstore_bind *owner = nullptr;

    [[nodiscard]] std::string_view key_of(const listed_item &item) const {
        return {bytes.get() + item.key_at, item.key_length};
    }
};

struct opstore_bind {
    std::string branch;  // key of the branch's items
    std::string publisher_key;
    std::string listed_prefix;  // of the last batch, and
    std::string last_key;       // its last key in full: callers keep only its first bytes
    opstore_list spare;         // memory of the list freed last, for the next one
};

namespace {

// Takes "<root>node/<id in hex>/" apart.
bool parse_branch(std::string_view path, store::root *root, std::uint32_t *node) {
    constexpr std::string_view NODE = "node/";
    for (const store::root_name &each : store::ROOTS) {
        if (!path.starts_with(each.path)) {
            continue;
        }
        path.remove_prefix(std::strlen(each.path));
        if (!path.starts_with(NODE) || !path.ends_with('/')) {
            return false;
        }
        path.remove_prefix(NODE.size());
        path.remove_suffix(1);
        const auto [end, failure] = std::from_chars(path.data(), path.data() + path.size(), *node, 16);
        *root = each.id;
        return failure == std::errc{} && end == path.data() + path.size();
    }
    return false;
}

errcode code_of_state(store::publisher_state state) {
    switch (state) {
    case store::publisher_state::running: return ERRCODE_SUCCESS;
    case store::publisher_state::stopped: return OPSTORE_STOPPED;
    case store::publisher_state::unreachable: return OPSTORE_UNREACHABLE;
    case store::publisher_state::starting: return OPSTORE_STARTING;
    }
    return OPSTORE_DAMAGED;
}

// Whether the process that serves the branch is running, as an error code.
errcode publisher_code(store::environment *store, const opstore_bind *handle) {
    local_publisher publisher{};
    const errcode failure = store->get_record(handle->publisher_key, &publisher, local_publisher_descriptor());
    if (failure == ERRCODE_NOT_FOUND) {
        return OPSTORE_NOT_PUBLISHED;
    }
    return failure != ERRCODE_SUCCESS ? failure : code_of_state(static_cast<store::publisher_state>(publisher.State));
}

// Makes room for an item; false when the batch is full. A first item always gets its room.
bool make_room(opstore_list *list, std::size_t size) {
    if (size <= list->capacity - list->used) {
        return true;
    }
    if (!list->items.empty()) {
        return false;
    }
    list->capacity = std::max(size, BATCH_BYTES);
    list->bytes = std::make_unique_for_overwrite<char[]>(list->capacity);
    return true;
}

void append(opstore_list *list, std::string_view key, std::string_view data) {
    char *to = list->bytes.get() + list->used;
    const auto key_at = static_cast<std::uint32_t>(list->used);
    const auto key_length = static_cast<std::uint32_t>(key.size());
    std::memcpy(to, key.data(), key.size());
    to[key.size()] = '\0';
    if (!data.empty()) {
        std::memcpy(to + key.size() + 1, data.data(), data.size());
    }
    list->items.push_back({key_at, key_length, key_at + key_length + 1, static_cast<std::uint32_t>(data.size())});
    list->used += key.size() + 1 + data.size();
}

// What a listing or a fetch asks for, below a branch.
struct question {
    std::string branch;  // key of the branch's items
    item_filter::selection selection;
};

// Fills the list with up to `wanted` items that begin with `prefix` and come after `after`.
errcode fill(store::environment *store, opstore_list *list, const question &asked, std::string_view prefix,
             std::string_view after, std::uint32_t wanted) {
    list->items.reserve(wanted);
    const errcode failure = store->read([&](const store::view &state) {
        const item_filter::matcher matcher(asked.selection, asked.branch, state);
        list->items.clear();
        list->used = 0;
        list->more = false;
        errcode filter_code = ERRCODE_SUCCESS;
        const errcode code = state.scan(prefix, after, [&](std::string_view key, std::string_view value) {
            const std::string_view name = key.substr(prefix.size());
            const std::string_view parcel = store::unseal(key, value);
            bool matches = false;
            filter_code = matcher.match(key.substr(asked.branch.size()), parcel, &matches);
            if (filter_code != ERRCODE_SUCCESS || !matches) {
                return filter_code == ERRCODE_SUCCESS;
            }
            if (list->items.size() == wanted || !make_room(list, name.size() + 1 + parcel.size())) {
                list->more = true;
                return false;
            }
            append(list, name, parcel);
            return true;
        });
        return code != ERRCODE_SUCCESS ? code : filter_code;
    });
    // A damaged tree could go round in circles; batches that ascend make every listing end.
    const bool ascends =
        list->items.empty() || after.empty() || list->key_of(list->items.back()) > after.substr(prefix.size());
    return failure == ERRCODE_SUCCESS && !ascends ? OPSTORE_DAMAGED : failure;
}

void copy_to(std::vector<char> *to, std::string_view from) {
    to->resize(from.size());
    if (!from.empty()) {
        std::memcpy(to->data(), from.data(), from.size());
    }
}

// Finds the one item that is asked for.
errcode find(store::environment *store, const question &asked, std::vector<char> *parcel) {
    const std::string key = asked.branch + asked.selection.path;
    return store->read([&](const store::view &state) {
        const item_filter::matcher matcher(asked.selection, asked.branch, state);
        std::string_view found;
        if (!asked.selection.first_match) {
            errcode code = state.get_parcel(key, &found);
            bool matches = true;
            if (code == ERRCODE_SUCCESS) {
                code = matcher.match(asked.selection.path, found, &matches);
            }
            copy_to(parcel, found);
            return matches ? code : ERRCODE_NOT_FOUND;
        }
        bool any = false;
        errcode filter_code = ERRCODE_SUCCESS;
        errcode code = state.scan(key, "", [&](std::string_view each, std::string_view value) {
            found = store::unseal(each, value);
            filter_code = matcher.match(each.substr(asked.branch.size()), found, &any);
            return filter_code == ERRCODE_SUCCESS && !any;
        });
        code = code != ERRCODE_SUCCESS ? code : filter_code;
        copy_to(parcel, found);
        return code == ERRCODE_SUCCESS && !any ? ERRCODE_NOT_FOUND : code;
    });
}

// The full key after which a listing goes on, from the start of it that the caller kept.
std::string resume_point(const opstore_bind *handle, const std::string &prefix, std::string_view kept) {
    const std::string_view last = handle->last_key;
    if (handle->listed_prefix == prefix && last.substr(0, OPSTORE_KEY_SIZE - 1) == kept) {
        return prefix + handle->last_key;
    }
    return prefix + std::string(kept);
}

}  // namespace

errcode _opstore_bind(opstore_handle *handle, const char *bind_path, std::uint32_t /*flags*/) {
    store::root root{};
    std::uint32_t node = 0;
    if (handle == nullptr || bind_path == nullptr || !parse_branch(bind_path, &root, &node)) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    store::environment *store = nullptr;
    if (const errcode failure = store::environment::shared(&store); failure != ERRCODE_SUCCESS) {
        return failure;
    }
    auto *bound = new opstore_bind;
    bound->branch = branch_key(store::key_space::item, root, node);
    bound->publisher_key = branch_key(store::key_space::publisher, root, node);
    *handle = bound;
    return ERRCODE_SUCCESS;
}

void _opstore_unbind(opstore_handle handle) { delete handle; }

errcode opstore_datalist(opstore_handle handle, const char *item_path, const char *start_key, std::uint32_t *count,
                         opstore_list **list, std::uint32_t flags) {
    store::environment *store = nullptr;
    errcode failure = store::environment::shared(&store);
    if (failure == ERRCODE_SUCCESS) {
        failure = publisher_code(store, handle);
    }
    if (failure != ERRCODE_SUCCESS) {
        return failure;
    }
    const question asked{handle->branch, item_filter::select(item_path)};
    std::string prefix = asked.branch + asked.selection.path;
    if (!prefix.ends_with('/') && !asked.selection.path.empty()) {
        prefix.push_back('/');
    }
    const std::string after = (flags & OPSTORE_LIST_AFTER) != 0 ? resume_point(handle, prefix, start_key) : "";
    auto *result = new opstore_list(std::move(handle->spare));
    handle->spare = {};
    result->owner = handle;
    failure = fill(store, result, asked, prefix, after, *count);
    if (failure != ERRCODE_SUCCESS) {
        delete result;
        return failure;
    }
    if (!result->items.empty()) {
        handle->listed_prefix = std::move(prefix);
        handle->last_key = result->key_of(result->items.back());
    }
    *count = static_cast<std::uint32_t>(result->items.size());
    *list = result;
    return ERRCODE_SUCCESS;
}

errcode opstore_datalist_next(opstore_list *list, const char **key, std::uint32_t *data_type, const void **data,
                              std::uint32_t *length, std::uint32_t *extra) {
    if (list->next == list->items.size()) {
        return ERRCODE_NOT_FOUND;
    }
    const listed_item &item = list->items[list->next++];
    *key = list->bytes.get() + item.key_at;
    *data_type = OPSTORE_TYPE_PARCEL;
    *data = list->bytes.get() + item.data_at;
    *length = item.data_length;
    *extra = 0;
    return ERRCODE_SUCCESS;
}

errcode opstore_datalist_get_more_flag(opstore_list *list, std::uint32_t *more) {
    *more = list->more ? 1 : 0;
    return ERRCODE_SUCCESS;
}

errcode opstore_datalist_free(opstore_list *list) {
    if (list == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    opstore_list &spare = list->owner->spare;
    spare.bytes = std::move(list->bytes);
    spare.capacity = list->capacity;
    spare.items = std::move(list->items);
    spare.items.clear();
    delete list;
    return ERRCODE_SUCCESS;
}

errcode opstore_item_get(opstore_handle handle, const char *item_path, std::uint32_t *data_type, void **data,
                         std::uint32_t *length, std::uint32_t /*flags*/) {
    store::environment *store = nullptr;
    errcode failure = store::environment::shared(&store);
    if (failure == ERRCODE_SUCCESS) {
        failure = publisher_code(store, handle);
    }
    if (failure != ERRCODE_SUCCESS) {
        return failure;
    }
    std::vector<char> parcel;
    failure = find(store, {handle->branch, item_filter::select(item_path)}, &parcel);
    if (failure != ERRCODE_SUCCESS) {
        return failure;
    }
    *data = std::malloc(std::max<std::size_t>(parcel.size(), 1));
    if (*data == nullptr) {
        return ERRCODE_NO_MEMORY;
    }
    std::memcpy(*data, parcel.data(), parcel.size());
    *length = static_cast<std::uint32_t>(parcel.size());
    *data_type = OPSTORE_TYPE_PARCEL;
    return ERRCODE_SUCCESS;
}
