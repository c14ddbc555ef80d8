// SPDX-License-Identifier: Apache-2.0
// The lines that the counters and the history of an RSVP-TE tunnel share.
#pragma once

#include <cstdint>

#include "base/pm_output.h"
#include "pm_show_client/blocks/label_lines.h"

inline void pm_show_tunnel_name(const char *name) { pm_print<"Tunnel name: %s\n">(name); }

inline void pm_show_lsp_id(std::uint32_t lsp_id) { pm_lines{2, 30}.number("LSP ID", lsp_id); }
