// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/pm_show_options.h"

pm_show_options_record pm_show_options;
