// SPDX-License-Identifier: Apache-2.0
// The queue of distribution records that wait for another try.
#pragma once

// Prints a pm_dr_retry_queue_info, which is never null.
[[nodiscard]] int print_dr_retry_queue(const void *decoded_parcel);
