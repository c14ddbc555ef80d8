// SPDX-License-Identifier: Apache-2.0
// One atomic path of an SR policy's segment list.
#pragma once

#include "schema/pm_records.h"

// A heading at `indent`, the lines indented by two more, the colons in column `width`. `running` tells whether the
// probe that measures the path runs.
void pm_show_atomic_path(const pm_srpolicy_atomic_path_parcel *path, bool running, int indent, int width);
