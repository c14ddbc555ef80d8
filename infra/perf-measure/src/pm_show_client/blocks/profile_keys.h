// SPDX-License-Identifier: Apache-2.0
// Which profile a session runs with.
#pragma once

#include "schema/pm_records.h"

inline constexpr int PM_PROFILE_WIDTH = 24;  // column of the colons in the profile of a session

// A heading at `indent` and two lines indented by two more, their colons in column `width`. `profile_name` is the
// session's own, shown while the key is not set. Nothing for a null key.
void pm_show_profile_keys(const pm_profile_key_parcel *key, const char *profile_name, int indent, int width);
