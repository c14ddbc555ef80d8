// SPDX-License-Identifier: Apache-2.0
// The filter of segment lists that the endpoint displays share.
#pragma once

#include <cstring>

#include "pm_show_client/pm_show_options.h"

// Whether a segment list of that name is to be shown: all are unless a name was asked for, and then only a
// list of exactly that name. A list without a name is none.
[[nodiscard]] inline bool pm_segment_list_is_wanted(const char *name) {
    return !pm_show_options.n_set || (name != nullptr && std::strcmp(name, pm_show_options.n_text) == 0);
}
