// SPDX-License-Identifier: Apache-2.0
// From an interface's name to the node that holds its data.
#pragma once

#include "platform/errcode.h"

// Sets pm_show_options.node_id to the node that hosts the interface in pm_show_options.name, unless
// the user chose nodes (-N or -A). 0 when there was nothing to do or the node is set, or was found
// to be none; ERRCODE_INVALID_ARGUMENT without a name; else the code of the operation that failed.
// Nothing is reported: without a node the walk simply goes over all of them.
[[nodiscard]] errcode pm_show_resolve_node();
