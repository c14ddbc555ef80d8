// SPDX-License-Identifier: Apache-2.0
// The legend above advertisement histories.
#pragma once

// Prints an empty line and a line for each reason that the histories abbreviate.
void pm_show_advert_legend();
