// SPDX-License-Identifier: Apache-2.0
// The read of one node: its listings in batches, its single items, and what is said when the store has none.
#include "front/generic_show.h"

#include <cstddef>

#include "base/pm_kept_memory.h"
#include "base/pm_output.h"
#include "front/compose.h"
#include "front/heap_block.h"
#include "platform/bounded.h"
#include "platform/node.h"
#include "pm_show_client/pm_show_headers.h"
#include "pm_show_client/pm_show_options.h"

opstore_handle pm_show_opstore_handle = nullptr;
std::uint8_t pm_show_opstore_present = 0;
pm_show_failure_observer pm_show_on_failure = nullptr;

namespace {

constexpr std::size_t NODE_NAME_SIZE = 32;
constexpr std::uint32_t UNLIMITED_BATCH = 0xFFFFFFFF;

// Where an answer of the store that nobody expects is reported to come from: fixed texts, whatever
// this file is called and however long it is.
constexpr char REPORTED_SOURCE[] = "infra/perf-measure/src/pm_show_client";
constexpr int REPORTED_LISTING_LINE = 589;
constexpr int REPORTED_ITEM_LINE = 732;

constexpr char LISTING_ROUTINE[] = "generic_datalist_show";  // the name that messages give to the listing

// A node's read ends for want of what `code` says.
void tell_failure(std::uint32_t node_id, errcode code) {
    if (code != ERRCODE_SUCCESS && pm_show_on_failure != nullptr) {
        pm_show_on_failure(node_id, code);
    }
}

void report_undecodable(errcode code) {
    pm_print_error<"%s: Cannot decode the requested information from system database: %s (0x%x)\n">(
        LISTING_ROUTINE, errcode_strerror(code), code);
}

// The store's answers other than an item go to standard output, as what the show has to say.
void print_not_running() { pm_print<"PM process is not running\n">(); }

void print_unexpected(int line, errcode code) {
    pm_print<"%s:%d, (%s)\n">(REPORTED_SOURCE, line, errcode_strerror(code));
}

// The record that items are decoded into; reports when there is no memory.
pm_heap_block<void> allocate_record(const pm_show_request &request, const char *tag) {
    pm_heap_block<void> record(calloc_named(1, request.decoded_size, tag));
    if (record == nullptr) {
        pm_print_error<"Not enough memory to allocate parcel of size %u">(request.decoded_size);
    }
    return record;
}

// A listing in progress.
struct listing {
    const pm_show_request &request;
    void *record;
    opstore_list *batch = nullptr;  // held until freed
    std::uint32_t more = 1;         // kept from batch to batch; a full batch does not ask
    bool first = true;
    std::uint32_t flags = 0;
    int display_result = 0;             // of the item before
    errcode failure = ERRCODE_SUCCESS;  // what ended it before its end
    char key[OPSTORE_KEY_SIZE] = {};
};

void free_batch(listing &state) {
    const errcode code = opstore_datalist_free(state.batch);
    state.batch = nullptr;
    if (code != ERRCODE_SUCCESS) {
        pm_print_error<"%s: Cannot free the data from system database: %s (0x%x)\n">(LISTING_ROUTINE,
                                                                                     errcode_strerror(code), code);
    }
}

// Reads, decodes and displays the next item of the batch; `*key` is the batch's. False ends the
// listing, reported.
bool show_next_item(listing &state, const char **key) {
    std::uint32_t data_type = 0;
    std::uint32_t length = 0;
    std::uint32_t extra = 0;
    const void *data = nullptr;
    *key = nullptr;
    errcode code = opstore_datalist_next(state.batch, key, &data_type, &data, &length, &extra);
    if (code != ERRCODE_SUCCESS || data == nullptr || *key == nullptr) {
        state.failure = code;
        report_undecodable(code);
        return false;
    }
    code = parcel_decode(data, length, state.record, state.request.parcel_desc);
    if (code != ERRCODE_SUCCESS) {
        state.failure = code;
        report_undecodable(code);
        return false;
    }
    if (state.display_result == PM_SHOW_PRINTED && state.request.spacing == pm_show_spacing::spaced) {
        pm_print<"\n">();
    }
    state.display_result = state.request.display(state.record);
    parcel_free_indirections(state.record, state.request.parcel_desc);
    return true;
}

void report_listing_answer(errcode code) {
    switch (code) {
    case OPSTORE_NOT_PUBLISHED: break;
    case OPSTORE_UNREACHABLE:
    case OPSTORE_STARTING:
    case OPSTORE_STOPPED: print_not_running(); break;
    default: print_unexpected(REPORTED_LISTING_LINE, code);
    }
}

// Requests the next batch. Its item count; 0 ends the listing, answered.
std::uint32_t request_batch(listing &state) {
    std::uint32_t count = state.request.batch_size;
    errcode code =
        opstore_datalist(pm_show_opstore_handle, state.request.item_path, state.key, &count, &state.batch, state.flags);
    if (code != ERRCODE_SUCCESS) {
        state.failure = code;
        report_listing_answer(code);
        return 0;
    }
    if (count == 0) {
        if (state.first) {
            state.request.display(nullptr);
        }
        return 0;
    }
    if (count < state.request.batch_size) {
        code = opstore_datalist_get_more_flag(state.batch, &state.more);
        if (code != ERRCODE_SUCCESS) {
            report_undecodable(code);
            return 0;
        }
    }
    return count;
}

// Shows the next batch of the listing; false ends it.
bool show_next_batch(listing &state) {
    const std::uint32_t count = request_batch(state);
    if (count == 0) {
        return false;
    }
    const char *key = nullptr;
    for (std::uint32_t item = 0; item < count; ++item) {
        if (!show_next_item(state, &key)) {
            return false;
        }
    }
    if (state.more == 0 && state.request.batch_size == UNLIMITED_BATCH) {  // no command asks for this
        return false;
    }
    safe_strncpy(state.key, key, sizeof state.key);
    free_batch(state);
    state.flags = OPSTORE_LIST_AFTER;
    state.first = false;
    return state.more != 0;
}

errcode show_listing(const pm_show_request &request, errcode *failure) {
    const pm_heap_block<void> record = allocate_record(request, "PM decoded parcel");
    if (record == nullptr) {
        *failure = ERRCODE_NO_MEMORY;
        return ERRCODE_INVALID_ARGUMENT;  // not ERRCODE_NO_MEMORY
    }
    listing state{.request = request, .record = record.get()};
    safe_strncpy(state.key, request.start_key, sizeof state.key);
    while (show_next_batch(state)) {
    }
    if (state.batch != nullptr) {
        free_batch(state);
    }
    *failure = state.failure;
    return ERRCODE_SUCCESS;
}

// What decoding allocates stays until the program ends.
errcode decode_for_good(const pm_show_request &request, const void *data, std::uint32_t length, void *record) {
    const pm_kept_memory indirections;
    return parcel_decode(data, length, record, request.parcel_desc);
}

// Decodes and displays a fetched item.
errcode show_fetched_item(const pm_show_request &request, std::uint32_t data_type, const void *data,
                          std::uint32_t length, errcode *failure) {
    const pm_heap_block<void> record =
        allocate_record(request, "MPLS-TE decoded parcel");  // the tag of every record type
    if (record == nullptr) {
        *failure = ERRCODE_NO_MEMORY;
        return ERRCODE_SUCCESS;
    }
    if (data_type != OPSTORE_TYPE_PARCEL) {
        *failure = PARCEL_MALFORMED;
        pm_print_error<"Unknown data type returned by get for path [%s]">(request.item_path);
        return ERRCODE_SUCCESS;
    }
    const errcode code = decode_for_good(request, data, length, record.get());
    if (code != ERRCODE_SUCCESS) {
        *failure = code;
        pm_print_error<"Failure to decode parcel for path [%s], %s">(request.item_path, errcode_strerror(code));
        return code;
    }
    return static_cast<errcode>(request.display(record.get()));
}

errcode show_single_item(const pm_show_request &request, errcode *failure) {
    std::uint32_t data_type = 0;
    std::uint32_t length = 0;
    void *fetched = nullptr;
    const errcode code = opstore_item_get(pm_show_opstore_handle, request.item_path, &data_type, &fetched, &length, 0);
    const pm_heap_block<void> data(fetched);
    *failure = code;
    switch (code) {
    case ERRCODE_SUCCESS: return show_fetched_item(request, data_type, data.get(), length, failure);
    case OPSTORE_NOT_PUBLISHED: break;
    case OPSTORE_UNREACHABLE:
    case OPSTORE_STOPPED:  // OPSTORE_STARTING is missing on purpose, unlike in a listing
        print_not_running();
        break;
    case ERRCODE_NOT_FOUND: pm_print<"Item not found\n">(); break;
    default: print_unexpected(REPORTED_ITEM_LINE, code);
    }
    return code;
}

bool store_client_present() {
    if (pm_show_opstore_present == 0 && opstore_client_present()) {
        pm_show_opstore_present = 1;
    }
    return pm_show_opstore_present != 0;
}

bool is_complete(const pm_show_request *request) {
    return request != nullptr && request->base_path != nullptr && request->item_path != nullptr &&
           request->start_key != nullptr && request->display != nullptr && request->parcel_desc != nullptr &&
           request->decoded_size != 0;
}

errcode bind_node(const char *base_path, std::uint32_t node_id) {
    pm_show_path bind_path;
    pm_format_text<"%snode/%x/">(bind_path, sizeof bind_path, base_path, node_id);
    const errcode code = store_client_present() ? _opstore_bind(&pm_show_opstore_handle, bind_path, OPSTORE_BIND_READ)
                                                : OPSTORE_NO_CLIENT;
    if (code != ERRCODE_SUCCESS) {
        pm_print_error<" %s: opstore_bind failed: %s (0x%x)\n">("generic_show", errcode_strerror(code), code);
        tell_failure(node_id, code);
    }
    return code;
}

void print_node_header(std::uint32_t node_id) {
    char name[NODE_NAME_SIZE] = "";
    static_cast<void>(nodeid_to_str_external(node_id, name, sizeof name));  // a node without a name prints none
    pm_print<"\n%s%s\n%s">(pm_show_separator, name, pm_show_separator);
}

}  // namespace

errcode generic_show(const pm_show_request *request, std::uint32_t node_id) {
    if (!is_complete(request)) {
        pm_print_error<"Invalid argument\n">();
        return ERRCODE_INVALID_ARGUMENT;
    }
    const errcode code = bind_node(request->base_path, node_id);
    if (code != ERRCODE_SUCCESS) {
        return code;
    }
    print_node_header(node_id);
    errcode failure = ERRCODE_SUCCESS;
    const errcode result =
        request->single_item != 0 ? show_single_item(*request, &failure) : show_listing(*request, &failure);
    tell_failure(node_id, failure);
    if (store_client_present()) {
        _opstore_unbind(pm_show_opstore_handle);
    }
    return result;
}
