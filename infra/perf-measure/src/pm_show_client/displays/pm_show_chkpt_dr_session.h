// SPDX-License-Identifier: Apache-2.0
// The checkpointed distributed sessions: where each SR policy's session is hosted, its liveness and
// that of its segment lists.
#pragma once

// Prints a pm_chkpt_dr_db_sess_info; PM_SHOW_NO_RECORD also for one without a blob. A blob that is
// damaged is shown as far as it goes.
[[nodiscard]] int pm_show_chkpt_dr_session(const void *decoded_parcel);
