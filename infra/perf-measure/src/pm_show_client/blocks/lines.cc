// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/lines.h"

void pm_print_heading(int indent, pm_text heading) { pm_print<"%*s%s:\n">(indent, "", heading); }
