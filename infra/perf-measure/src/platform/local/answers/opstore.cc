// SPDX-License-Identifier: Apache-2.0
// The database client: branches, listings and single items, answered from the store.
#include "platform/opstore.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "platform/local/answers/store_client.h"
#include "platform/local/filters/item_filter.h"

struct opstore_list {
    store::batch read;
    std::size_t prefix_length = 0;  // of the items' paths: what follows are their keys
    std::size_t next = 0;
    opstore_bind *owner = nullptr;
};

struct opstore_bind {
    store::branch bound;
    std::string listed_prefix;            // of the last batch, and
    std::string last_path;                // its last path in full: callers keep only the first bytes of a key
    std::unique_ptr<opstore_list> spare;  // the list freed last, whose memory the next one uses
};

namespace {

// Takes "<root>node/<id in hex>/" apart.
bool parse_branch(std::string_view path, store::branch *named) {
    constexpr std::string_view NODE = "node/";
    for (const store::root_name &each : store::ROOTS) {
        if (!path.starts_with(each.path)) {
            continue;
        }
        path.remove_prefix(std::strlen(each.path));
        if (!path.starts_with(NODE)) {
            return false;
        }
        path.remove_prefix(NODE.size());
        if (!path.ends_with('/')) {
            return false;
        }
        path.remove_suffix(1);
        const auto [end, error] = std::from_chars(path.data(), path.data() + path.size(), named->node, 16);
        named->data_root = each.id;
        return error == std::errc{} && end == path.data() + path.size();
    }
    return false;
}

// Whether the process that serves a branch is running, as an error code.
errcode code_of_state(store::known_state state) {
    if (!state) {
        return OPSTORE_NOT_PUBLISHED;
    }
    switch (*state) {
    case store::publisher_state::running: return ERRCODE_SUCCESS;
    case store::publisher_state::stopped: return OPSTORE_STOPPED;
    case store::publisher_state::unreachable: return OPSTORE_UNREACHABLE;
    case store::publisher_state::starting: return OPSTORE_STARTING;
    }
    return OPSTORE_DAMAGED;
}

// How the store is asked for the items of a path.
store::selection store_selection(const item_filter::selection &wanted, const item_filter::matcher &matcher) {
    store::selection which;
    if (wanted.filter != nullptr) {
        which.predicate = &matcher;
        which.companion = item_filter::companions_of(wanted);
    }
    which.only_running = true;
    return which;
}

// The first item under the path that the filter wants, as reader::get gives one.
pm_error first_match(store::reader *reader, const store::branch &from, std::string_view path,
                     const store::selection &which, store::known_state *state, std::string *parcel) {
    store::batch found;
    if (pm_error error = reader->list(from, {path, "", 1, which}, state, &found)) {
        return error;
    }
    if (!found.items().empty()) {
        *parcel = found.items().front().parcel;
        return {};
    }
    return *state == store::publisher_state::running ? pm_error(ERRCODE_NOT_FOUND) : pm_error();
}

// The full path after which a listing goes on, from the start of the key that the caller kept.
std::string resume_point(const opstore_bind *handle, const std::string &prefix, std::string_view kept) {
    if (handle->listed_prefix == prefix) {
        const std::string_view last_key = std::string_view(handle->last_path).substr(prefix.size());
        if (last_key.substr(0, OPSTORE_KEY_SIZE - 1) == kept) {
            return handle->last_path;
        }
    }
    return prefix + std::string(kept);
}

// A list in memory that a list freed before has left.
std::unique_ptr<opstore_list> take_list(opstore_bind *handle) {
    auto list = handle->spare != nullptr ? std::move(handle->spare) : std::make_unique<opstore_list>();
    list->next = 0;
    list->owner = handle;
    return list;
}

}  // namespace

errcode _opstore_bind(opstore_handle *handle, const char *bind_path, std::uint32_t /*flags*/) {
    store::branch named{};
    if (handle == nullptr || bind_path == nullptr || !parse_branch(bind_path, &named)) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    store::reader *reader = nullptr;
    if (const errcode code = store_client::open(&reader); code != ERRCODE_SUCCESS) {
        return code;
    }
    *handle = new opstore_bind{named, {}, {}, nullptr};
    return ERRCODE_SUCCESS;
}

void _opstore_unbind(opstore_handle handle) { delete handle; }

errcode opstore_datalist(opstore_handle handle, const char *item_path, const char *start_key, std::uint32_t *count,
                         opstore_list **list, std::uint32_t flags) {
    store::reader *reader = nullptr;
    if (const errcode code = store_client::open(&reader); code != ERRCODE_SUCCESS) {
        return code;
    }
    const item_filter::selection wanted = item_filter::select(item_path);
    const item_filter::matcher matcher(wanted);
    std::string prefix = wanted.path;
    if (!prefix.ends_with('/') && !prefix.empty()) {
        prefix.push_back('/');
    }
    const std::string after = (flags & OPSTORE_LIST_AFTER) != 0 ? resume_point(handle, prefix, start_key) : "";
    std::unique_ptr<opstore_list> result = take_list(handle);
    store::known_state state;
    const pm_error error =
        reader->list(handle->bound, {prefix, after, *count, store_selection(wanted, matcher)}, &state, &result->read);
    if (const errcode code = error ? error.code() : code_of_state(state); code != ERRCODE_SUCCESS) {
        return code;
    }
    result->prefix_length = prefix.size();
    const auto &items = result->read.items();
    if (!items.empty()) {
        handle->listed_prefix = std::move(prefix);
        handle->last_path = items.back().path;
    }
    *count = static_cast<std::uint32_t>(items.size());
    *list = result.release();
    return ERRCODE_SUCCESS;
}

errcode opstore_datalist_next(opstore_list *list, const char **key, std::uint32_t *data_type, const void **data,
                              std::uint32_t *length, std::uint32_t *extra) {
    if (list->next == list->read.items().size()) {
        return ERRCODE_NOT_FOUND;
    }
    const store::item &current = list->read.items()[list->next++];
    *key = current.path.data() + list->prefix_length;
    *data_type = OPSTORE_TYPE_PARCEL;
    *data = current.parcel.data();
    *length = static_cast<std::uint32_t>(current.parcel.size());
    *extra = 0;
    return ERRCODE_SUCCESS;
}

errcode opstore_datalist_get_more_flag(opstore_list *list, std::uint32_t *more) {
    *more = list->read.more() ? 1 : 0;
    return ERRCODE_SUCCESS;
}

errcode opstore_datalist_free(opstore_list *list) {
    if (list == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    list->owner->spare.reset(list);
    return ERRCODE_SUCCESS;
}

errcode opstore_item_get(opstore_handle handle, const char *item_path, std::uint32_t *data_type, void **data,
                         std::uint32_t *length, std::uint32_t /*flags*/) {
    store::reader *reader = nullptr;
    if (const errcode code = store_client::open(&reader); code != ERRCODE_SUCCESS) {
        return code;
    }
    const item_filter::selection wanted = item_filter::select(item_path);
    const item_filter::matcher matcher(wanted);
    const store::selection which = store_selection(wanted, matcher);
    store::known_state state;
    std::string parcel;
    const pm_error error = wanted.first_match ? first_match(reader, handle->bound, wanted.path, which, &state, &parcel)
                                              : reader->get(handle->bound, wanted.path, which, &state, &parcel);
    if (const errcode code = error ? error.code() : code_of_state(state); code != ERRCODE_SUCCESS) {
        return code;
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
