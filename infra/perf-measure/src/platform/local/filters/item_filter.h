// SPDX-License-Identifier: Apache-2.0
// Derived item paths: what the measurement service would answer to a filter.
//
//   X-filter/KEY/            the items of X/ whose detail record matches KEY (SR policies, endpoints,
//   X-filter/KEY/NAME        RSVP-TE tunnels; X may be details, counters or histories), and one of them
//   all-profile/             the named profiles
//   name-profile-filter/KEY  the named profiles of a kind, transport and name; KEY/KEY is the first
//
// X is a place with a filter key in paths/item_paths.h. A key with another number of components than
// paths/filter_keys.h lists, or with a component that cannot be read, matches nothing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "paths/filter_keys.h"
#include "platform/errcode.h"
#include "platform/local/filters/wanted_component.h"
#include "platform/local/store/reader.h"
#include "platform/parcel.h"

namespace item_filter {

// The items that a path asks for.
struct selection {
    std::string path;                                  // without the filter: to list under, or of the one item
    std::string prefix;                                // what its items' paths begin with, before their names
    const path_grammar::filter_key *filter = nullptr;  // null: everything under the path
    std::vector<wanted_component> key;                 // one for each of the filter's components, unless incomplete
    bool incomplete = false;                           // the key has too few components
    bool first_match = false;                          // the one item is the first under `path` that matches
};

// Takes an item path apart. A path that derives nothing selects itself.
[[nodiscard]] selection select(std::string_view item_path);

// Where the detail records are that the selection's items are matched by; none when that takes no other item.
[[nodiscard]] store::companion_paths companions_of(const selection &wanted);

// Matches items of one selection.
class matcher final : public store::item_predicate {
public:
    // The selection must outlive the matcher.
    explicit matcher(const selection &selection) : selection_(selection) {}

    // Whether the item at `path` below the branch, whose parcel is given, is selected. Its companion is the
    // detail record of the same name where that is another item; an item without one matches only a key of
    // wildcards. A detail record that does not decode matches, so that its reader reports it. But one whose
    // schema the store has lost is PARCEL_UNKNOWN_SCHEMA: its reader may know the schema, and would show
    // what was not asked for.
    [[nodiscard]] errcode match(std::string_view path, std::string_view parcel, std::string_view companion,
                                bool *matches) const override;

private:
    template <class View>
    [[nodiscard]] errcode match_detail(std::string_view parcel, const parcel_descriptor *descriptor,
                                       bool *matches) const;

    const selection &selection_;
};

}  // namespace item_filter
