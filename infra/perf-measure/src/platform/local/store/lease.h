// SPDX-License-Identifier: Apache-2.0
// How long a store takes a running process's word for it, where nothing but the store tells that it died.
//
// The time is that since the host was booted, which nobody sets and which goes on while the host sleeps; so a lease is
// of one boot of one host, and every process there can tell whether it has run out.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/local/store/branch.h"

struct local_publisher;

namespace store {

// Whether a server still keeps a publisher's lease; none: there is no server, and the lease itself says when it ends.
using kept_lease = std::optional<bool>;

// The state that readers see: that of the record, but stopped where it says running and its lease has run out.
[[nodiscard]] publisher_state seen_state(const local_publisher &record, kept_lease lease);

// Identifies this boot of this host; empty when the system does not say.
[[nodiscard]] std::string_view this_boot();
// Milliseconds since it.
[[nodiscard]] std::uint64_t msec_since_boot();

// Whether a lease that says so has run out: its time is over, or it is of another boot.
[[nodiscard]] bool lease_is_over(std::string_view boot, std::uint64_t expires_msec);

}  // namespace store
