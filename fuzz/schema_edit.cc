// SPDX-License-Identifier: Apache-2.0
// Finds fields by their braces, "{Name}T", without parsing the text.
#include "fuzz/schema_edit.h"

#include <algorithm>

namespace {

constexpr std::size_t MOST_EDITS = 8;
constexpr std::size_t EDIT_SIZE = 3;
constexpr char OTHER_NAME[] = "x";

// Where the field is that a number chooses; npos when there is none.
std::size_t choose_field(const std::string &text, std::size_t number) {
    const auto fields = static_cast<std::size_t>(std::count(text.begin(), text.end(), '{'));
    std::size_t at = fields != 0 ? text.find('{') : std::string::npos;
    for (std::size_t left = fields != 0 ? number % fields : 0; left > 0; --left) {
        at = text.find('{', at + 1);
    }
    return at;
}

void rename_record(std::string *text, std::size_t at) {
    const std::size_t before = text->rfind(';', at);
    at = text->find('{', before != std::string::npos ? before : 0);
    while (at != std::string::npos && at < text->find(';', at)) {
        const std::size_t end = text->find(';', at);
        text->insert(at + 1, OTHER_NAME);
        const std::size_t next = text->find('{', at + 1);
        at = next < end + 1 ? next : std::string::npos;
    }
}

void edit(schema_edit what, std::size_t at, std::size_t number, std::string *text) {
    const bool is_arm = at > 0 && (*text)[at - 1] == ':';  // of a union, which has one field
    const std::size_t type = text->find('}', at) + 1;
    const std::size_t end = text->find_first_of("{;", type);
    switch (what) {
    case schema_edit::rename_field: text->insert(at + 1, OTHER_NAME); break;
    case schema_edit::rename_record: rename_record(text, at); break;
    case schema_edit::rename_and_widen:
        if (!is_arm) {
            text->replace(type, end - type, "H");
            text->insert(at + 1, OTHER_NAME);
        }
        break;
    case schema_edit::add_field:
        if (!is_arm) {
            text->insert(at, "{added" + std::to_string(number) + "}H");
        }
        break;
    case schema_edit::remove_field:
        if (!is_arm) {
            text->erase(at, end - at);
        }
        break;
    case schema_edit::remove_after:
        if (!is_arm) {
            text->erase(at, text->find(';', at) - at);
        }
        break;
    case schema_edit::count: break;
    }
}

}  // namespace

std::size_t edit_schema(std::span<const std::uint8_t> input, std::string *text) {
    if (input.empty()) {
        return 0;
    }
    const std::size_t edits = std::min(input[0] % (MOST_EDITS + 1), (input.size() - 1) / EDIT_SIZE);
    for (std::size_t i = 0; i < edits; ++i) {
        const std::uint8_t *each = input.data() + 1 + i * EDIT_SIZE;
        const std::size_t at = choose_field(*text, static_cast<std::size_t>(each[1] | each[2] << 8));
        if (at != std::string::npos) {
            edit(static_cast<schema_edit>(each[0] % static_cast<std::uint8_t>(schema_edit::count)), at, i, text);
        }
    }
    return 1 + edits * EDIT_SIZE;
}
