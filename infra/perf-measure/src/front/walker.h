// SPDX-License-Identifier: Apache-2.0
// The walk over the nodes that a show reads. How one node is read is generic_show.h.
#pragma once

#include <cstdint>
#include <functional>

#include "front/generic_show.h"

// What is done with a node.
using pm_show_node_visit = std::function<void(std::uint32_t node)>;

// Visits the nodes that a show reads, in its order: see generic_show_node_walker. False when it is not known which
// they are, which has been reported.
[[nodiscard]] bool pm_show_visit_nodes(const pm_show_node_visit &visit);

// Reads the node given by -N, else the local node when pm_show_options.local_node_only, else every
// node of the inventory whose software is up; without -A the standby partner of the central
// services is left out. pm_show_header_pending is set before each node. The request's legend is
// printed before all.
//
// All failures are printed: one on a node does not stop the walk over the others, one of the
// inventory does.
void generic_show_node_walker(const pm_show_request *request);
