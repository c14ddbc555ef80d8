// SPDX-License-Identifier: Apache-2.0
// What the platform supports for injecting and punting measurement packets.
#pragma once

// Prints a pm_capability_parcel. Unlike other displays it aborts without a record.
[[nodiscard]] int print_capability(const void *decoded_parcel);
