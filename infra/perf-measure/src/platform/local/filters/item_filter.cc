// SPDX-License-Identifier: Apache-2.0
// Takes derived paths apart and matches items by their detail records.
#include "platform/local/filters/item_filter.h"

#include <algorithm>
#include <iterator>

#include "paths/item_paths.h"
#include "platform/local/filters/rules.h"
#include "platform/local/filters/view_descriptors.h"
#include "platform/parcel.h"

namespace item_filter {

namespace {

using path_grammar::family;
using path_grammar::place;
using path_grammar::place_row;

constexpr char NAME_SEPARATOR = '/';

// The place whose filter a path names; null when it names none. A name may hold anything, so "-filter/"
// elsewhere in a path is a part of it.
const place_row *filtered_place(std::string_view item_path) {
    const auto *found = std::ranges::find_if(path_grammar::PLACES, [&](const place_row &each) {
        return each.filter != nullptr && item_path.starts_with(path_grammar::filter_prefix(each));
    });
    return found != std::end(path_grammar::PLACES) ? found : nullptr;
}

// Splits a key of `count` components off the front of `rest`, which keeps what follows the key's end. Components
// may hold a '/'; only the last one ends at it.
std::vector<wanted_component> take_key(std::string_view *rest, std::size_t count) {
    std::vector<wanted_component> key;
    while (key.size() + 1 < count) {
        const std::size_t comma = rest->find(path_grammar::COMPONENT_SEPARATOR);
        if (comma == std::string_view::npos) {
            break;
        }
        key.emplace_back(rest->substr(0, comma));
        rest->remove_prefix(comma + 1);
    }
    const std::size_t end = std::min(rest->find(path_grammar::KEY_END), rest->size());
    key.emplace_back(rest->substr(0, end));
    rest->remove_prefix(std::min(end + 1, rest->size()));
    return key;
}

// The name "0x0/0x2/gold" against the components of a profile key, which it consists of.
bool matches_profile(std::string_view name, const std::vector<wanted_component> &key) {
    for (const wanted_component &each : key) {
        const bool is_last = &each == &key.back();
        const std::size_t end = is_last ? name.size() : std::min(name.find(NAME_SEPARATOR), name.size());
        if (!each.any && name.substr(0, end) != each.text) {
            return false;
        }
        name.remove_prefix(std::min(end + 1, name.size()));
    }
    return true;
}

// Whether a key matches everything.
bool is_wildcard(const std::vector<wanted_component> &key) { return std::ranges::all_of(key, &wanted_component::any); }

// Where the detail records of a family are; empty for a family that is not matched by them.
std::string_view details_of(family what) {
    switch (what) {
    case family::srpolicy: return path_of(place::srpolicy_detail);
    case family::endpoint: return path_of(place::endpoint_detail);
    case family::rsvpte: return path_of(place::rsvpte_detail);
    case family::profile: break;
    }
    return {};
}

// "all-profile" and everything below it has another name.
bool names_all_profiles(std::string_view item_path, std::string_view *rest) {
    const std::string_view all = path_of(place::all_profile);
    const std::string_view folder = all.substr(0, all.size() - 1);
    if (item_path.substr(0, item_path.find(NAME_SEPARATOR)) != folder) {
        return false;
    }
    *rest = item_path.substr(folder.size());
    return true;
}

}  // namespace

selection select(std::string_view item_path) {
    selection result;
    std::string_view rest;
    if (names_all_profiles(item_path, &rest)) {
        const std::string_view profiles = path_of(place::name_profile);
        result.path = std::string(profiles.substr(0, profiles.size() - 1)).append(rest);
        return result;
    }
    const place_row *filtered = filtered_place(item_path);
    if (filtered == nullptr) {
        result.path = item_path;
        return result;
    }
    rest = item_path.substr(path_grammar::filter_prefix(*filtered).size());
    result.filter = filtered->filter;
    const std::size_t count = result.filter->components.size();
    result.key = take_key(&rest, count);
    result.incomplete = result.key.size() < count;
    result.prefix = filtered->path;
    result.path = result.prefix;
    if (result.filter->what == family::profile) {
        result.first_match = !rest.empty();
    } else {
        result.path += rest;
    }
    return result;
}

store::companion_paths companions_of(const selection &wanted) {
    if (wanted.filter == nullptr || wanted.incomplete || is_wildcard(wanted.key)) {
        return {};
    }
    const std::string_view details = details_of(wanted.filter->what);
    return details.empty() || wanted.prefix == details ? store::companion_paths{}
                                                       : store::companion_paths{wanted.prefix, details};
}

template <class View>
errcode matcher::match_detail(std::string_view parcel, const parcel_descriptor *descriptor, bool *matches) const {
    View record;
    const errcode error = parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &record, descriptor);
    if (error != ERRCODE_SUCCESS) {
        *matches = true;
        return error == PARCEL_UNKNOWN_SCHEMA ? error : ERRCODE_SUCCESS;
    }
    *matches = has_all(selection_.key, record);
    parcel_free_indirections(&record, descriptor);
    return ERRCODE_SUCCESS;
}

errcode matcher::match(std::string_view path, std::string_view parcel, std::string_view companion,
                       bool *matches) const {
    *matches = !selection_.incomplete;
    if (selection_.filter == nullptr || selection_.incomplete || is_wildcard(selection_.key)) {
        return ERRCODE_SUCCESS;
    }
    if (!companions_of(selection_).companions.empty()) {  // counters or a history of the record
        parcel = companion;
        if (parcel.empty()) {
            *matches = false;
            return ERRCODE_SUCCESS;
        }
    }
    switch (selection_.filter->what) {
    case family::srpolicy: return match_detail<filter_srpolicy>(parcel, filter_srpolicy_descriptor(), matches);
    case family::endpoint: return match_detail<filter_endpoint>(parcel, filter_endpoint_descriptor(), matches);
    case family::rsvpte: return match_detail<filter_rsvpte>(parcel, filter_rsvpte_descriptor(), matches);
    case family::profile: *matches = matches_profile(path.substr(selection_.prefix.size()), selection_.key); break;
    }
    return ERRCODE_SUCCESS;
}

}  // namespace item_filter
