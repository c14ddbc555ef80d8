// SPDX-License-Identifier: Apache-2.0
// The responder that answers a session.
#pragma once

#include <cstdint>

#include "schema/pm_records.h"

// Its address and its distance in hops at `indent`, the colons in column `width`; each only when present.
void pm_show_responder(const pm_record_address *address, const std::uint8_t *hops, int indent, int width);
