// SPDX-License-Identifier: Apache-2.0
// What a display is: the routine that prints one record of a show command.
#pragma once

// Results of a display.
inline constexpr int PM_SHOW_PRINTED = 0;
inline constexpr int PM_SHOW_NO_RECORD = 22;  // called without a record
inline constexpr int PM_SHOW_NOTHING = 125;   // printed nothing: no blank line before the next item

// Prints one decoded record and returns one of the results above. The record is the caller's and
// valid during the call only; null once for an empty listing.
using pm_show_display = int (*)(const void *decoded_parcel);
