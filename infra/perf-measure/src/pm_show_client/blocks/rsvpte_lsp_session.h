// SPDX-License-Identifier: Apache-2.0
// The delay session of one LSP of an RSVP-TE tunnel.
#pragma once

#include "schema/pm_records.h"

// All lines at `indent`, the colons in column `width`.
void pm_show_rsvpte_lsp_session(const pm_rsvpte_lsp_delay_parcel *session, int indent, int width);
