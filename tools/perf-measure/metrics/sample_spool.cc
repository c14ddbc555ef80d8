// SPDX-License-Identifier: Apache-2.0
// Entries in memory, and in a file without a name when they become many.
//
// An entry is an entry_head, the labels, and for each slot a byte with the length of the value's text and the text.
#include "perf-measure/metrics/sample_spool.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "perf-store/datasets/temporary_file.h"

namespace perf_measure {

namespace {

constexpr std::size_t MOST_KEPT = 128 * 1024;  // bytes
constexpr std::size_t READ_SIZE = 128 * 1024;

struct entry_head {
    std::uint32_t labels;  // bytes
    std::uint32_t values;
};

pm_error write_at_end(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return perf_store::temporary_file_error(errno);
        }
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return {};
}

// Bytes of the entry that begins `bytes`, which may be cut short; 0 when not even its head is whole.
std::size_t entry_size(std::string_view bytes, entry_head *head) {
    if (bytes.size() < sizeof *head) {
        return 0;
    }
    std::memcpy(head, bytes.data(), sizeof *head);
    return sizeof *head + head->labels + head->values;
}

std::string_view value_in(std::string_view values, std::size_t slot) {
    for (; slot > 0; --slot) {
        values.remove_prefix(1 + static_cast<unsigned char>(values.front()));
    }
    return values.substr(1, static_cast<unsigned char>(values.front()));
}

// Visits the whole entries that `bytes` begins with; `*used` is their size.
pm_error visit_entries(std::string_view bytes, std::size_t slot, const sample_spool::sample_visit &visit,
                       std::size_t *used) {
    entry_head head{};
    const std::size_t all = bytes.size();
    for (std::size_t size = 0; (size = entry_size(bytes, &head)) != 0 && size <= bytes.size();) {
        const std::string_view value = value_in(bytes.substr(sizeof head + head.labels, head.values), slot);
        if (!value.empty()) {
            if (pm_error error = visit(bytes.substr(sizeof head, head.labels), value)) {
                return error;
            }
        }
        bytes.remove_prefix(size);
    }
    *used = all - bytes.size();
    return {};
}

}  // namespace

sample_spool::~sample_spool() {
    if (file_ >= 0) {
        ::close(file_);
    }
}

pm_error sample_spool::add(std::string_view labels, std::span<const metric_value> values) {
    entry_head head{static_cast<std::uint32_t>(labels.size()), static_cast<std::uint32_t>(values.size())};
    for (const metric_value &each : values) {
        head.values += static_cast<std::uint32_t>(each.text().size());
    }
    char bytes[sizeof head];
    std::memcpy(bytes, &head, sizeof head);
    kept_.append(bytes, sizeof bytes);
    kept_ += labels;
    for (const metric_value &each : values) {
        kept_ += static_cast<char>(each.text().size());
        kept_ += each.text();
    }
    return kept_.size() < MOST_KEPT ? pm_error() : move_to_file();
}

pm_error sample_spool::move_to_file() {
    if (file_ < 0) {
        if (pm_error error = perf_store::open_temporary_file(&file_)) {
            return error;
        }
    }
    if (pm_error error = write_at_end(file_, kept_)) {
        return error;
    }
    file_size_ += kept_.size();
    kept_.clear();
    return {};
}

pm_error sample_spool::visit(std::size_t slot, const sample_visit &visit) const {
    std::string read;
    std::size_t held = 0;  // bytes of `read` that are yet to be visited
    std::size_t used = 0;
    for (std::uint64_t at = 0; at < file_size_;) {
        entry_head head{};
        const std::size_t needed = entry_size(std::string_view(read).substr(0, held), &head);
        read.resize(std::max({read.size(), READ_SIZE, needed}));
        const ssize_t got = ::pread(file_, read.data() + held, read.size() - held, static_cast<off_t>(at));
        if (got <= 0) {
            if (got < 0 && errno == EINTR) {
                continue;
            }
            return perf_store::temporary_file_error(got < 0 ? errno : EIO);
        }
        at += static_cast<std::uint64_t>(got);
        held += static_cast<std::size_t>(got);
        if (pm_error error = visit_entries(std::string_view(read).substr(0, held), slot, visit, &used)) {
            return error;
        }
        held -= used;
        std::memmove(read.data(), read.data() + used, held);
    }
    return visit_entries(kept_, slot, visit, &used);
}

}  // namespace perf_measure
