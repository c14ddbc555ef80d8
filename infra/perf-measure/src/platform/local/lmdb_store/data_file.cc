// SPDX-License-Identifier: Apache-2.0
// Reads the two meta pages at the start of an LMDB file.
#include "platform/local/lmdb_store/data_file.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/local/codec/checksum.h"
#include "platform/local/lmdb_store/table_state.h"

namespace lmdb_store {

namespace {

// A meta page. The one with the later transaction counts.
struct meta_page {
    std::uint8_t page_header[16];
    std::uint32_t magic;
    std::uint32_t version;
    std::uint64_t address;
    std::uint64_t map_size;
    std::uint32_t page_size;
    std::uint8_t trees[92];
    std::uint64_t last_page;
    std::uint64_t transaction;
};
static_assert(sizeof(meta_page) == 152);

// A writer's note of the head that its transaction has written.
struct head_note {
    std::uint64_t magic;
    std::uint64_t transaction;
    std::uint64_t sum;  // over the head, without the page's header
};

// Both as they are in the file.
struct noted_head {
    meta_page meta;
    head_note note;
};

constexpr std::uint64_t NOTE_AT = 256;  // in the page; LMDB writes the first 152 bytes
constexpr std::uint64_t NOTE_MAGIC = 0x746f6e6461656870;
constexpr int MAX_TRIES = 20;  // of reading a head that is being written
constexpr useconds_t PAUSE = 1000;

constexpr std::uint32_t LMDB_MAGIC = 0xBEEFC0DE;
constexpr std::uint32_t LMDB_VERSION = 1;
constexpr std::uint32_t SMALLEST_PAGE = 512;
constexpr std::uint32_t LARGEST_PAGE = 65536;

bool read_meta(int file, std::uint64_t at, meta_page *meta) {
    return ::pread(file, meta, sizeof *meta, static_cast<off_t>(at)) == static_cast<ssize_t>(sizeof *meta) &&
           meta->magic == LMDB_MAGIC && meta->version == LMDB_VERSION;
}

std::uint64_t sum_of(const meta_page &meta) { return checksum(&meta.magic, sizeof meta - offsetof(meta_page, magic)); }

bool read_note(int file, std::uint64_t page_at, head_note *note) {
    return ::pread(file, note, sizeof *note, static_cast<off_t>(page_at + NOTE_AT)) ==
           static_cast<ssize_t>(sizeof *note);
}

bool is_page_size(std::uint32_t size) {
    return size >= SMALLEST_PAGE && size <= LARGEST_PAGE && (size & (size - 1)) == 0;
}

// Both copies of the head. False when either is none.
bool read_heads(int file, noted_head heads[2]) {
    return read_meta(file, 0, &heads[0].meta) && is_page_size(heads[0].meta.page_size) &&
           read_meta(file, heads[0].meta.page_size, &heads[1].meta) &&
           heads[1].meta.page_size == heads[0].meta.page_size && read_note(file, 0, &heads[0].note) &&
           read_note(file, heads[0].meta.page_size, &heads[1].note);
}

// Whether a head can be the one that its writer left. Of one that is being written, only the number is right.
bool agrees(const noted_head &head, bool is_current) {
    if (head.note.magic != NOTE_MAGIC) {
        return head.note.magic == 0 && head.note.transaction == 0 && head.note.sum == 0;
    }
    if (head.note.transaction != head.meta.transaction) {
        return head.note.transaction < head.meta.transaction;
    }
    return !is_current || head.note.sum == sum_of(head.meta);
}

// Transactions take turns at the two copies; a file in which nothing was committed has twice the same.
bool are_neighbours(const noted_head heads[2]) {
    const std::uint64_t first = heads[0].meta.transaction;
    const std::uint64_t second = heads[1].meta.transaction;
    return (first == 0 && second == 0) || (first % 2 == 0 && (first + 1 == second || second + 1 == first));
}

const noted_head &current_of(const noted_head heads[2]) {
    return heads[heads[0].meta.transaction > heads[1].meta.transaction ? 0 : 1];
}

bool are_sound(const noted_head heads[2]) {
    const noted_head &current = current_of(heads);
    return are_neighbours(heads) && agrees(heads[0], &current == &heads[0]) && agrees(heads[1], &current == &heads[1]);
}

// False when the file has no sound head. One that a writer is just writing is read again.
bool read_extent_of(int file, extent *out) {
    noted_head heads[2] = {};
    bool sound = false;
    for (int tries = 0; tries < MAX_TRIES && !sound; ++tries) {
        if (!read_heads(file, heads)) {
            return false;
        }
        sound = are_sound(heads);
        if (!sound) {
            ::usleep(PAUSE);
        }
    }
    const meta_page &current = current_of(heads).meta;
    struct stat status {};
    const bool known = ::fstat(file, &status) == 0;
    *out = {(current.last_page + 1) * current.page_size, known ? static_cast<std::uint64_t>(status.st_size) : 0};
    return sound;
}

}  // namespace

pm_error read_extent(const std::string &folder, extent *out) {
    *out = {};
    const int file = ::open(file_in(folder, DATA_FILE).c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return pm_error(code_of(errno));
    }
    const bool sound = read_extent_of(file, out);
    ::close(file);
    if (!sound) {
        *out = {};
    }
    return sound ? pm_error() : pm_error(OPSTORE_DAMAGED);
}

bool read_root(int file, table_root *out) {
    constexpr std::size_t ENTRIES_AT = 120;  // of the table's tree, in the page
    constexpr std::size_t ROOT_AT = 128;
    noted_head heads[2] = {};
    extent ignored;
    struct stat status {};
    if (!read_heads(file, heads) || ::fstat(file, &status) != 0) {
        return false;
    }
    out->sound = read_extent_of(file, &ignored);
    const noted_head *chosen = &current_of(heads);
    const noted_head *other = chosen == &heads[0] ? &heads[1] : &heads[0];
    if (!out->sound && !agrees(*chosen, true) && agrees(*other, true)) {
        chosen = other;
    }
    const auto *bytes = reinterpret_cast<const char *>(&chosen->meta);
    std::memcpy(&out->entries, bytes + ENTRIES_AT, sizeof out->entries);
    std::memcpy(&out->root, bytes + ROOT_AT, sizeof out->root);
    out->page_size = chosen->meta.page_size;
    out->transaction = chosen->meta.transaction;
    const std::uint64_t length = static_cast<std::uint64_t>(status.st_size) / out->page_size + 1;
    out->pages = std::min(chosen->meta.last_page, length) + 1;
    return true;
}

void note_head(int file) {
    noted_head heads[2] = {};
    if (!read_heads(file, heads)) {
        return;
    }
    const meta_page &current = current_of(heads).meta;
    const head_note note{NOTE_MAGIC, current.transaction, sum_of(current)};
    const std::uint64_t page_at = current.transaction % 2 * current.page_size;
    static_cast<void>(!::pwrite(file, &note, sizeof note, static_cast<off_t>(page_at + NOTE_AT)));
}

bool has_note(const std::string &folder) {
    const int file = ::open(file_in(folder, DATA_FILE).c_str(), O_RDONLY | O_CLOEXEC);
    bool found = false;
    for (const std::uint64_t page_at : {std::uint64_t{0}, static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE))}) {
        head_note note{};
        found = found || (file >= 0 && read_note(file, page_at, &note) && note.magic == NOTE_MAGIC);
    }
    if (file >= 0) {
        ::close(file);
    }
    return found;
}

std::string old_format_text(const std::string &folder) {
    return folder + ": a store of an earlier format; load its data set again with perf-store load --replace";
}

void reserve_standard_descriptors() {
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_PATH);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

}  // namespace lmdb_store
