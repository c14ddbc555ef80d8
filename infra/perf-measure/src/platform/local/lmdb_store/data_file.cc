// SPDX-License-Identifier: Apache-2.0
// Reads the two meta pages at the start of an LMDB file.
#include "platform/local/lmdb_store/data_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

constexpr std::uint32_t LMDB_MAGIC = 0xBEEFC0DE;
constexpr std::uint32_t LMDB_VERSION = 1;
constexpr std::uint32_t SMALLEST_PAGE = 512;
constexpr std::uint32_t LARGEST_PAGE = 65536;

bool read_meta(int file, std::uint64_t at, meta_page *meta) {
    return ::pread(file, meta, sizeof *meta, static_cast<off_t>(at)) == static_cast<ssize_t>(sizeof *meta) &&
           meta->magic == LMDB_MAGIC && meta->version == LMDB_VERSION;
}

bool is_page_size(std::uint32_t size) {
    return size >= SMALLEST_PAGE && size <= LARGEST_PAGE && (size & (size - 1)) == 0;
}

// False when the file has no sound head.
bool read_extent_of(int file, extent *out) {
    meta_page first{};
    meta_page second{};
    if (!read_meta(file, 0, &first) || !is_page_size(first.page_size) || !read_meta(file, first.page_size, &second) ||
        second.page_size != first.page_size) {
        return false;
    }
    const std::uint64_t last_page = first.transaction > second.transaction ? first.last_page : second.last_page;
    struct stat status {};
    const bool known = ::fstat(file, &status) == 0;
    *out = {(last_page + 1) * first.page_size, known ? static_cast<std::uint64_t>(status.st_size) : 0};
    return true;
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
    return sound ? pm_error() : pm_error(OPSTORE_DAMAGED);
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
