// SPDX-License-Identifier: Apache-2.0
// A platform for tests of the front end: store, codec, inventory and node identity, with answers
// that a test sets and a log of the calls. Texts, times and error texts are platform_text_fake.h.
#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/address.h"
#include "platform/errcode.h"
#include "platform/ifnx.h"
#include "platform/inventory.h"
#include "platform/opstore.h"
#include "platform/parcel.h"

// One item of a batch. `data` is what the fake codec decodes.
struct fake_item {
    std::optional<std::string> key;
    std::optional<std::string> data;
    errcode next_code = ERRCODE_SUCCESS;  // of opstore_datalist_next
};

// The answer to one listing request.
struct fake_batch {
    std::vector<fake_item> items;
    std::uint32_t more = 0;
    errcode list_code = ERRCODE_SUCCESS;  // of opstore_datalist; a failure hands out no batch
    errcode more_code = ERRCODE_SUCCESS;
    errcode free_code = ERRCODE_SUCCESS;
};

struct fake_node {
    std::uint32_t id;
    std::uint32_t sw_state = INVD_SW_STATE_UP;
    errcode id_code = ERRCODE_SUCCESS;
    errcode state_code = ERRCODE_SUCCESS;
};

// What the fake codec decodes an item into: the item's data as a text, which "hangs off" the record
// until it is freed.
struct fake_record {
    const char *text;
};

struct fake_platform {
    // The store.
    bool client_present = true;
    std::map<std::string, errcode> bind_codes;  // by bind path
    std::deque<fake_batch> batches;             // one for each request to come; none left: an empty one
    errcode item_code = ERRCODE_SUCCESS;        // of opstore_item_get
    std::uint32_t item_type = OPSTORE_TYPE_PARCEL;
    std::string item_data = "item";
    errcode encode_code = ERRCODE_SUCCESS;  // a name is encoded between '<' and '>'

    // The codec and memory.
    std::map<std::string, errcode> undecodable;  // by the item's data
    bool out_of_memory = false;
    std::string allocated;  // "count * size tag" of the last calloc_named

    // Inventory and redundancy.
    errcode inventory_code = ERRCODE_SUCCESS;
    errcode count_code = ERRCODE_SUCCESS;
    std::vector<fake_node> nodes;
    std::uint32_t partner = NODEID_NONE;
    errcode partner_code = ERRCODE_SUCCESS;

    // Node identity.
    std::uint32_t my_node = 0x100;
    errcode my_node_code = ERRCODE_SUCCESS;
    std::uint32_t router_type = 1;
    int rp_plus_datapath = 0;
    std::uint32_t active_rp = 0x100;
    errcode active_rp_code = ERRCODE_SUCCESS;
    std::uint32_t card = 0x801;  // what nodeid_create gives
    errcode card_code = ERRCODE_SUCCESS;
    std::uint32_t processor = 0x800;
    errcode processor_code = ERRCODE_SUCCESS;

    // Interface names and addresses.
    std::map<std::string, ifnx_parsed_name> interfaces;  // other names do not parse
    std::map<std::string, ip_address> addresses;         // other texts are no addresses
    std::string address_text = "0a000001";               // hex text of any address
    errcode address_text_code = ERRCODE_SUCCESS;
    ip_address address_seen{};  // by ip_addr2hex_string2

    // Calls in order, each with its arguments, and what was decoded and not freed.
    std::vector<std::string> calls;
    std::set<const void *> held;
    std::list<std::string> decoded;  // keeps the decoded texts
};
extern fake_platform fake;

// Back to the answers above.
void reset_platform_fake();
