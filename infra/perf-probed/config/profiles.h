// SPDX-License-Identifier: Apache-2.0
// The settings of profiles as they are written in the configuration.
#pragma once

#include "perf-probed/config/section.h"
#include "perf-probed/session/profile.h"

namespace probed {

// Each changes what is given and checks that the whole makes sense. `clock`: one-way delay needs a synchronised one.
void read_profile(section &from, const clock_quality &clock, delay_profile *profile);
void read_profile(section &from, loss_profile *profile);
void read_profile(section &from, liveness_profile *profile);
void read_profile(section &from, probe_profile *profile);

}  // namespace probed
