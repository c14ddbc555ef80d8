// SPDX-License-Identifier: Apache-2.0
// The peer of tables: copies and checks the items that a table shows (their places in the store, and the checksums of
// their parcels), and then writes the table's text from a file.
// What a table takes longer than this, it spends on decoding and formatting.
//
//   cursor_peer NODE PATH-PREFIX TEXT-FILE      (OPSTORE_URL names the store)
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "platform/local/back_ends/readers.h"
#include "platform/local/codec/parcel_codec.h"

namespace {

constexpr std::size_t ITEMS_AT_ONCE = 200;  // as perf-show lists them

pm_error copy_items(store::reader *from, const store::branch &branch, const std::string &prefix) {
    store::batch batch;
    std::string last;
    do {
        const store::list_query query{prefix, last, ITEMS_AT_ONCE, {}};
        if (pm_error error = from->list(branch, query, nullptr, &batch)) {
            return error;
        }
        for (const store::item &each : batch.items()) {
            parcel_header ignored;
            if (const errcode code = parcel_read_header(each.parcel.data(), each.parcel.size(), &ignored); code != 0) {
                return pm_error(code);
            }
        }
        if (!batch.items().empty()) {
            last = batch.items().back().path;
        }
    } while (batch.more());
    return {};
}

bool write_file(const char *name) {
    static char bytes[128 * 1024];
    const int file = ::open(name, O_RDONLY | O_CLOEXEC);
    ssize_t got = 0;
    while (file >= 0 && (got = ::read(file, bytes, sizeof bytes)) > 0) {
        for (ssize_t at = 0; at < got;) {
            const ssize_t written = ::write(STDOUT_FILENO, bytes + at, static_cast<std::size_t>(got - at));
            if (written <= 0) {
                return false;
            }
            at += written;
        }
    }
    return file >= 0 && got == 0;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fputs("usage: cursor_peer NODE PATH-PREFIX TEXT-FILE\n", stderr);
        return 2;
    }
    store::reader *from = nullptr;
    pm_error error = store::shared_reader(&from);
    const auto node = static_cast<std::uint32_t>(std::strtoul(argv[1], nullptr, 0));
    if (!error) {
        error = copy_items(from, {store::root::main, node}, argv[2]);
    }
    if (error || !write_file(argv[3])) {
        std::fprintf(stderr, "cursor_peer: %s\n", error ? error.text().c_str() : "cannot write");
        return 1;
    }
    return 0;
}
