// SPDX-License-Identifier: Apache-2.0
// Finds members by their names.
#include "perf-store/datasets/object_members.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "perf-store/datasets/nearest_word.h"

namespace perf_store {

object_members::object_members(const json_document *document, member_path *path, record_reader *reader,
                               const json_node &node, std::initializer_list<const char *> names)
    : path_(*path), reader_(*reader), node_(node), count_(names.size()) {
    std::copy(names.begin(), names.end(), names_.begin());
    error_ = take_apart(*document);
}

pm_error object_members::take_apart(const json_document &document) {
    if (pm_error error = reader_.require(node_, json_kind::object)) {
        return error;
    }
    const json_node *member = document.inside(node_);
    for (std::uint32_t i = 0; i < node_.count; ++i) {
        const char *const *end = names_.data() + count_;
        const char *const *name = std::find<const char *const *>(names_.data(), end, member->text);
        const json_node **value = name != end ? &values_[static_cast<std::size_t>(name - names_.data())] : nullptr;
        if (value == nullptr || *value != nullptr) {
            path_.enter(member->text);
            return reader_.refuse(*member,
                                  value != nullptr
                                      ? "given twice"
                                      : "unknown member" + did_you_mean(member->text, std::span(names_.data(), count_),
                                                                        [](const char *each) { return each; }));
        }
        *value = member + 1;
        member = document.after(**value);
    }
    return {};
}

void object_members::optional(const char *name, const member_read &read) {
    const json_node *value = find(name);
    if (error_ || value == nullptr) {
        return;
    }
    path_.enter(std::string_view(name));
    error_ = read(*value);
    if (!error_) {
        path_.leave();
    }
}

void object_members::required(const char *name, const member_read &read) {
    if (!error_ && find(name) == nullptr) {
        path_.enter(std::string_view(name));
        error_ = reader_.refuse(node_, "is missing");
    }
    optional(name, read);
}

const json_node *object_members::find(const char *name) const {
    for (std::size_t i = 0; i < count_; ++i) {
        if (std::strcmp(name, names_[i]) == 0) {
            return values_[i];
        }
    }
    return nullptr;
}

}  // namespace perf_store
