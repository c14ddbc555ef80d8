// SPDX-License-Identifier: Apache-2.0
// The line cards to which sessions can be distributed, and the offload capability and capacity of
// their NPUs.
#pragma once

// Prints a pm_dr_lc_npu_info, which is never null (null aborts). Always PM_SHOW_PRINTED.
[[nodiscard]] int print_lc_npu_db(const void *decoded_parcel);
