// SPDX-License-Identifier: Apache-2.0
// Writes the seed corpus of the checkpoint fuzz target: each message with all its fields, once with
// memory that runs out, and cut at a few places.
//
//   make_chkpt_corpus DIRECTORY
#include <cstdio>
#include <fstream>
#include <string>

#include "tests/chkpt/shapes.h"

namespace {

constexpr std::size_t CUTS = 3;

void write(const std::string &path, std::size_t message, std::size_t fail_at, const blob &content) {
    std::ofstream out(path, std::ios::binary);
    out.put(static_cast<char>(message)).put(static_cast<char>(fail_at));
    out.write(reinterpret_cast<const char *>(content.bytes.data()), static_cast<std::streamsize>(content.bytes.size()));
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: make_chkpt_corpus DIRECTORY\n", stderr);
        return 1;
    }
    for (std::size_t message = 0; message < all_shapes().size(); ++message) {
        const shape &what = *all_shapes()[message];
        const sample full = full_sample(what);
        const std::string base = std::string(argv[1]) + "/" + what.name;
        write(base + ".full", message, 0, full.bytes);
        if (what.takes_memory) {
            write(base + ".no_memory", message, full.allocations, full.bytes);
        }
        for (std::size_t cut = 1; cut <= CUTS; ++cut) {
            write(base + ".cut" + std::to_string(cut), message, 0,
                  full.bytes.cut(full.bytes.bytes.size() * cut / (CUTS + 1)));
        }
    }
    return 0;
}
