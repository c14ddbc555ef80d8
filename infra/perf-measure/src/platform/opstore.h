// SPDX-License-Identifier: Apache-2.0
// Client of the operational state database.
//
// Items live under hierarchical text paths. Each node (a route processor or a line card) has a
// branch of its own under each data root: "<root>node/<node id in hex>/". A bind selects one
// branch; every path given to the other operations lies below it. The client only reads.
//
// A caller holds nothing of the store between two calls: keys and data that an operation hands
// out are copies, so output may wait for hours without keeping the store from changing.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/errcode.h"

struct opstore_bind;  // one bound branch
struct opstore_list;  // one batch of a listing

using opstore_handle = opstore_bind *;

inline constexpr std::uint32_t OPSTORE_BIND_READ = 4;    // flags of _opstore_bind
inline constexpr std::uint32_t OPSTORE_LIST_AFTER = 32;  // flag of opstore_datalist: start after the start key
inline constexpr std::uint32_t OPSTORE_TYPE_PARCEL = 7;  // data type of an encoded record
inline constexpr std::size_t OPSTORE_KEY_SIZE = 128;     // bytes of a key that a caller keeps, terminator included

// Whether the database's client can be used at all: the store's data file is readable. Where a
// user lacks the permission, one line on standard error says which group may read.
[[nodiscard]] bool opstore_client_present();

// Binds to the branch at `bind_path`. On success `*handle` scopes all later paths and belongs to
// the caller until _opstore_unbind. OPSTORE_NO_CLIENT: no readable store; OPSTORE_DAMAGED: the
// store cannot be read; ERRCODE_INVALID_ARGUMENT: not a branch path.
[[nodiscard]] errcode _opstore_bind(opstore_handle *handle, const char *bind_path, std::uint32_t flags);

// Releases the handle; null is allowed.
void _opstore_unbind(opstore_handle handle);

// Lists items whose path continues `item_path` by one or more components, in byte order.
// `start_key`: "" for the first batch; with OPSTORE_LIST_AFTER the key of the last item of the
// batch before, of which only the first 127 bytes need to be kept. `*count`: in, the most items
// wanted; out, the items returned, which may be fewer although more follow (see
// opstore_datalist_get_more_flag). On success `*list` belongs to the caller until
// opstore_datalist_free. Publisher states other than running give their code.
[[nodiscard]] errcode opstore_datalist(opstore_handle handle, const char *item_path, const char *start_key,
                                       std::uint32_t *count, opstore_list **list, std::uint32_t flags);

// Steps to the next item of a batch, in key order. Key and data stay the list's and are valid
// until it is freed. ERRCODE_NOT_FOUND past the last item.
[[nodiscard]] errcode opstore_datalist_next(opstore_list *list, const char **key, std::uint32_t *data_type,
                                            const void **data, std::uint32_t *length, std::uint32_t *extra);

// `*more` is non-zero when items follow the last one of this batch.
[[nodiscard]] errcode opstore_datalist_get_more_flag(opstore_list *list, std::uint32_t *more);

[[nodiscard]] errcode opstore_datalist_free(opstore_list *list);

// Fetches the item at exactly `item_path`. On success `*data` is a heap block of `*length` bytes
// that the caller frees with free. ERRCODE_NOT_FOUND: no such item; publisher states other than
// running give their code.
[[nodiscard]] errcode opstore_item_get(opstore_handle handle, const char *item_path, std::uint32_t *data_type,
                                       void **data, std::uint32_t *length, std::uint32_t flags);

// Makes any text safe as one path component: letters, digits, '.', '_' and '-' stay, every other
// byte becomes %XX. `*encoded` is a heap text that the caller frees, also when set on failure.
[[nodiscard]] errcode opstore_string_encode(const char *text, char **encoded, std::size_t *length);

// The inverse. ERRCODE_INVALID_ARGUMENT for a '%' that two hexadecimal digits do not follow or
// that means a zero byte. `*text` is a heap text that the caller frees, also when set on failure.
[[nodiscard]] errcode opstore_string_decode(const char *encoded, char **text, std::size_t *length);
