// SPDX-License-Identifier: Apache-2.0
// The checkpointed distribution records: the line cards that each is distributed to.
#pragma once

// Prints a pm_chkpt_dr_info; PM_SHOW_NO_RECORD also for one without a blob.
[[nodiscard]] int pm_show_chkpt_dr(const void *decoded_parcel);
