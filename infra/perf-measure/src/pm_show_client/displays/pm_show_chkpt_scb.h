// SPDX-License-Identifier: Apache-2.0
// The session checkpoints: for each measured interface the last advertisement and the control codes
// that were received last.
#pragma once

// Prints a pm_chkpt_scb_parcel. With `name` in the options, nothing for another interface. A blob that
// is damaged is shown as far as it goes.
[[nodiscard]] int pm_show_chkpt_scb(const void *decoded_parcel);
