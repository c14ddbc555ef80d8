// SPDX-License-Identifier: Apache-2.0
// The names of the store's keys in a server, the form of what is in them, and ranges of items.
//
// docs/networked-store.md is the full account. An item is a member of its branch's sorted set, with the score 0:
//
//     path, a zero byte, the item's sealed parcel (store/seal.h)
//
// so members are in byte order of their paths, which have no zero byte.
#pragma once

#include <string>
#include <string_view>

#include "platform/local/store/branch.h"

namespace redis_store {

inline constexpr char STORE_FORMAT[] = "perf-show 1";
inline constexpr char STATE_TAG[] = "state";  // in the braces of the router's keys

// What a branch's key holds.
enum class branch_part : char {
    items = 'i',      // sorted set
    publisher = 'u',  // sealed local_publisher
    lease = 'l',      // with an expiry, while the publisher says that it lives
};
// What the router's keys hold.
enum class state_part : char {
    marks = 'm',       // hash: F format, P sealed local_platform, V number of changes, N of nodes, H of interfaces
    nodes = 'n',       // list of sealed local_node, in inventory order
    branches = 'b',    // hash: name of a branch; number of its items, or UNSETTLED
    interfaces = 'h',  // hash: handle in 8 hexadecimal digits; sealed local_interface
    schemas = 'f',     // hash: fingerprint in 16 hexadecimal digits; text
};

// While a writer changes a branch at another server of a cluster than the directory's, and after it was killed there.
inline constexpr char UNSETTLED[] = "-";

class key_names {
public:
    explicit key_names(std::string prefix) : prefix_(std::move(prefix)) {}

    [[nodiscard]] std::string of(const store::branch &named, branch_part part) const;
    [[nodiscard]] std::string of(state_part part) const;
    // The set that a writer builds before it takes the place of a branch's items.
    [[nodiscard]] std::string stage(const store::branch &named, const std::string &token) const;
    [[nodiscard]] std::string lock() const { return prefix_ + ":{state}:lock"; }

private:
    std::string prefix_;
};

// The root's letter and the node in 8 hexadecimal digits.
[[nodiscard]] std::string branch_name(const store::branch &named);
[[nodiscard]] bool parse_branch_name(std::string_view name, store::branch *named);
[[nodiscard]] std::string hexadecimal(std::uint64_t number, int digits);

// The bounds of a BYLEX range.
struct member_range {
    std::string first;
    std::string last;
};
[[nodiscard]] member_range range_of_path(std::string_view path);
// Paths that begin with `prefix` and come after `after`, if there is one.
[[nodiscard]] member_range range_of_prefix(std::string_view prefix, std::string_view after);

}  // namespace redis_store
