// SPDX-License-Identifier: Apache-2.0
// A platform whose answers a test sets, and that records how it is called.
#include "tests/fakes/platform_fake.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/bounded.h"
#include "platform/node.h"

fake_platform fake;

void reset_platform_fake() { fake = {}; }

struct opstore_bind {};
struct opstore_list {
    fake_batch batch;
    std::size_t next = 0;
};
struct invd_inventory {};

namespace {

opstore_bind the_bind;
invd_inventory the_inventory;

std::string hex(std::uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "%x", number);
    return text;
}

void log(const std::string &call) { fake.calls.push_back(call); }

char *heap_copy(const std::string &text) {
    auto *copy = static_cast<char *>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

}  // namespace

// Store.

bool opstore_client_present() {
    log("client_present");
    return fake.client_present;
}

errcode _opstore_bind(opstore_handle *handle, const char *bind_path, std::uint32_t flags) {
    log("bind " + std::string(bind_path) + " " + std::to_string(flags));
    const auto found = fake.bind_codes.find(bind_path);
    if (found != fake.bind_codes.end()) {
        return found->second;
    }
    *handle = &the_bind;
    return ERRCODE_SUCCESS;
}

void _opstore_unbind(opstore_handle handle) { log(handle == &the_bind ? "unbind" : "unbind of another handle"); }

errcode opstore_datalist(opstore_handle handle, const char *item_path, const char *start_key, std::uint32_t *count,
                         opstore_list **list, std::uint32_t flags) {
    log((handle == &the_bind ? "list " : "list on another handle ") + std::string(item_path) + " after [" + start_key +
        "] " + std::to_string(*count) + " " + std::to_string(flags));
    fake_batch batch;
    if (!fake.batches.empty()) {
        batch = fake.batches.front();
        fake.batches.pop_front();
    }
    if (batch.list_code != ERRCODE_SUCCESS) {
        return batch.list_code;
    }
    *count = static_cast<std::uint32_t>(batch.items.size());
    *list = new opstore_list{batch};
    fake.held.insert(*list);
    return ERRCODE_SUCCESS;
}

errcode opstore_datalist_next(opstore_list *list, const char **key, std::uint32_t *data_type, const void **data,
                              std::uint32_t *length, std::uint32_t *extra) {
    const fake_item &item = list->batch.items.at(list->next++);
    *key = item.key ? item.key->c_str() : nullptr;
    *data = item.data ? item.data->data() : nullptr;
    *data_type = OPSTORE_TYPE_PARCEL;
    *length = item.data ? static_cast<std::uint32_t>(item.data->size()) : 0;
    *extra = 0;
    return item.next_code;
}

errcode opstore_datalist_get_more_flag(opstore_list *list, std::uint32_t *more) {
    log("more");
    *more = list->batch.more;
    return list->batch.more_code;
}

errcode opstore_datalist_free(opstore_list *list) {
    log("free list");
    fake.held.erase(list);
    const errcode code = list->batch.free_code;
    delete list;
    return code;
}

errcode opstore_item_get(opstore_handle handle, const char *item_path, std::uint32_t *data_type, void **data,
                         std::uint32_t *length, std::uint32_t flags) {
    log((handle == &the_bind ? "get " : "get on another handle ") + std::string(item_path) + " " +
        std::to_string(flags));
    if (fake.item_code == ERRCODE_SUCCESS) {
        *data_type = fake.item_type;
        *data = heap_copy(fake.item_data);
        *length = static_cast<std::uint32_t>(fake.item_data.size());
    }
    return fake.item_code;
}

errcode opstore_string_encode(const char *text, char **encoded, std::size_t *length) {
    *encoded = heap_copy("<" + std::string(text) + ">");  // on failure too: the caller frees it
    *length = std::strlen(*encoded);
    return fake.encode_code;
}

// Codec and memory. Registration is for the linker: the front end decodes only.

errcode parcel_register_start() { return ERRCODE_SUCCESS; }
errcode parcel_register(const parcel_descriptor *) { return ERRCODE_SUCCESS; }
errcode parcel_register_end() { return ERRCODE_SUCCESS; }
void parcel_register_abort() {}

errcode parcel_decode(const void *data, std::uint32_t length, void *record, const parcel_descriptor *descriptor) {
    const std::string text(static_cast<const char *>(data), length);
    log("decode " + text + " as " + descriptor->name);
    const auto found = fake.undecodable.find(text);
    if (found != fake.undecodable.end()) {
        return found->second;
    }
    fake.decoded.push_back(text);
    fake.held.insert(record);
    static_cast<fake_record *>(record)->text = fake.decoded.back().c_str();
    return ERRCODE_SUCCESS;
}

void parcel_free_indirections(void *record, const parcel_descriptor *descriptor) {
    auto *const decoded = static_cast<fake_record *>(record);
    log("free " + std::string(decoded->text) + " as " + descriptor->name);
    fake.held.erase(record);
    decoded->text = nullptr;
}

void *calloc_named(std::size_t count, std::size_t size, const char *tag) {
    fake.allocated = std::to_string(count) + " * " + std::to_string(size) + " " + tag;
    return fake.out_of_memory ? nullptr : std::calloc(count, size);
}

void safe_strncpy(char *destination, const char *source, std::size_t size) {
    std::snprintf(destination, size, "%s", source);
}

// Inventory and redundancy.

errcode invd_get_inventory(std::uint32_t kind, const invd_inventory **inventory) {
    log("inventory " + std::to_string(kind));
    *inventory = &the_inventory;
    return fake.inventory_code;
}

errcode invd_inventory_get_node_count(const invd_inventory *, std::int32_t *count) {
    *count = static_cast<std::int32_t>(fake.nodes.size());
    return fake.count_code;
}

errcode invd_inventory_get_nodeid(const invd_inventory *, std::int32_t index, std::uint32_t *node) {
    const fake_node &found = fake.nodes.at(static_cast<std::size_t>(index));
    *node = found.id;
    return found.id_code;
}

errcode invd_inventory_get_sw_state(const invd_inventory *, std::int32_t index, std::uint32_t *state) {
    const fake_node &found = fake.nodes.at(static_cast<std::size_t>(index));
    *state = found.sw_state;
    return found.state_code;
}

errcode redund_get_proc_group_partner_node(const char *process_group, std::uint32_t *node) {
    log("partner of " + std::string(process_group));
    *node = fake.partner;
    return fake.partner_code;
}

// Node identity.

errcode platform_get_my_nodeid(std::uint32_t *node) {
    log("my_nodeid");
    *node = fake.my_node;
    return fake.my_node_code;
}

std::uint32_t platform_get_router_type() {
    log("router_type");
    return fake.router_type;
}

int platform_am_i_rp_plus_datapath() {
    log("rp_plus_datapath");
    return fake.rp_plus_datapath;
}

errcode platform_get_active_standby_rps_in_rack(std::uint32_t *active, std::uint32_t rack) {
    log("active_rp " + std::to_string(rack));
    *active = fake.active_rp;
    return fake.active_rp_code;
}

errcode nodeid_create(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t *node) {
    log("create " + std::to_string(a) + "/" + std::to_string(b) + "/" + std::to_string(c));
    *node = fake.card;
    return fake.card_code;
}

errcode nodeid_processor_nodeid_for_nodeid(std::uint32_t node, std::uint32_t *processor) {
    log("processor of " + hex(node));
    *processor = fake.processor;
    return fake.processor_code;
}

// Interface names and addresses.

errcode ifnx_ifname_parse(const char *name, std::uint32_t flags, ifnx_parsed_name *parsed) {
    constexpr ifnx_parsed_name zeroed{};
    log("parse " + std::string(name) + " " + std::to_string(flags) +
        (std::memcmp(parsed, &zeroed, sizeof zeroed) == 0 ? "" : " into a used record"));
    const auto found = fake.interfaces.find(name);
    if (found == fake.interfaces.end()) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    *parsed = found->second;
    return ERRCODE_SUCCESS;
}

int hex_string2ip_addr(const char *text, ip_address *address) {
    const auto found = fake.addresses.find(text);
    if (found == fake.addresses.end()) {
        return 1;
    }
    *address = found->second;
    return 0;
}

int ip_addr2hex_string2(const ip_address *address, char *buffer, std::size_t size) {
    fake.address_seen = *address;
    std::snprintf(buffer, size, "%s", fake.address_text.c_str());  // on failure too: the buffer then means nothing
    return fake.address_text_code == ERRCODE_SUCCESS ? 0 : 1;
}
