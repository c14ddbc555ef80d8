// SPDX-License-Identifier: Apache-2.0
// The command line: short options into pm_show_options.
#pragma once

// Resets pm_show_options to its defaults and fills it from the command line. Numbers are read as C
// writes them (decimal, 0x and 0), junk as 0, and cut to 32 bits; texts are copied and never freed.
// Of options that share a field the last one wins. A bad option or address is reported on standard
// error and parsing goes on. `argv` is permuted as getopt does it.
void pm_show_parse_options(int argc, char **argv);
