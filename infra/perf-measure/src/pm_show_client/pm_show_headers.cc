// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/pm_show_headers.h"

bool pm_show_header_pending = false;
