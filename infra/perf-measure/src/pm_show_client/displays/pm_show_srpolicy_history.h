// SPDX-License-Identifier: Apache-2.0
// The histories of an SR policy's candidate paths, of their segment lists and of the atomic paths in those.
#pragma once

// Prints a pm_srpolicy_history_parcel.
[[nodiscard]] int pm_show_srpolicy_history(const void *decoded_parcel);
