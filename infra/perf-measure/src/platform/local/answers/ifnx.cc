// SPDX-License-Identifier: Apache-2.0
// Interface names: taken apart, and looked up by handle.
#include "platform/ifnx.h"

#include <charconv>
#include <cstring>
#include <string_view>

#include "platform/bounded.h"
#include "platform/local/answers/store_client.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"

namespace {

constexpr char UNKNOWN[] = "Unknown";
constexpr std::size_t SLOTS = 8;
constexpr std::size_t SLOT_SIZE = 256;

// Reads one decimal number from the front of `text`.
bool take_number(std::string_view *text, std::uint32_t *number) {
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), *number);
    if (error != std::errc{}) {
        return false;
    }
    text->remove_prefix(static_cast<std::size_t>(end - text->data()));
    return true;
}

bool take(std::string_view *text, char c) {
    if (text->empty() || text->front() != c) {
        return false;
    }
    text->remove_prefix(1);
    return true;
}

bool is_type_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-'; }

// "A/B/C/D" or one number; the count of numbers, 0 for anything else.
std::size_t take_numbers(std::string_view *text, std::uint32_t numbers[4]) {
    std::size_t count = 0;
    do {
        if (count == 4 || !take_number(text, &numbers[count])) {
            return 0;
        }
        ++count;
    } while (take(text, '/'));
    return count == 1 || count == 4 ? count : 0;
}

}  // namespace

errcode ifnx_ifname_parse(const char *name, std::uint32_t /*flags*/, ifnx_parsed_name *parsed) {
    if (name == nullptr || parsed == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    std::string_view text(name);
    std::size_t letters = 0;
    while (letters < text.size() && is_type_letter(text[letters])) {
        ++letters;
    }
    text.remove_prefix(letters);
    std::uint32_t numbers[4] = {};
    const std::size_t count = take_numbers(&text, numbers);
    std::uint32_t sub_interface = 0;
    if (letters == 0 || count == 0 || (take(&text, '.') && !take_number(&text, &sub_interface)) || !text.empty()) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    parsed->kind = count == 4 ? IFNX_KIND_NODE_CARD : IFNX_KIND_GLOBAL;
    if (count == 4) {
        std::memcpy(parsed->location, numbers, sizeof parsed->location);
    }
    return ERRCODE_SUCCESS;
}

namespace {

errcode read_interface(std::uint32_t handle, local_interface *record) {
    store::reader *reader = nullptr;
    std::string parcel;
    if (const errcode code = store_client::open(&reader); code != ERRCODE_SUCCESS) {
        return code;
    }
    const pm_error error = reader->interface(handle, &parcel);
    return error ? error.code() : store_client::decode(parcel, record, local_interface_descriptor());
}

}  // namespace

void ifnx_display_namestring(std::uint32_t handle, char *buffer, std::size_t size, std::uint32_t /*flags*/) {
    local_interface record{};
    const errcode code = read_interface(handle, &record);
    store_client::report_unreadable("an interface's name cannot be read", code);
    safe_strncpy(buffer, code == ERRCODE_SUCCESS && record.Name != nullptr ? record.Name : UNKNOWN, size);
    parcel_free_indirections(&record, local_interface_descriptor());
}

namespace {

// Names looked up before, by the low bits of their handle: a show asks for the same few again and again.
struct recent_name {
    bool known = false;
    std::uint32_t handle = 0;
    char name[SLOT_SIZE] = {};
};

const recent_name &recent_name_of(std::uint32_t handle, std::uint32_t flags) {
    constexpr std::size_t NAMES = 64;
    static recent_name names[NAMES];
    // Handles of neighbours differ in their fourth bit and up.
    recent_name &recent = names[handle / 8 % NAMES];
    if (!recent.known || recent.handle != handle) {
        ifnx_display_namestring(handle, recent.name, sizeof recent.name, flags);
        recent.handle = handle;
        recent.known = true;
    }
    return recent;
}

}  // namespace

const char *interface_name(std::uint32_t handle, std::uint32_t flags) {
    static char slots[SLOTS][SLOT_SIZE];
    static std::size_t next = 0;
    char *slot = slots[next];
    next = (next + 1) % SLOTS;
    const recent_name &recent = recent_name_of(handle, flags);
    std::memcpy(slot, recent.name, sizeof recent.name);
    return slot;
}
