// SPDX-License-Identifier: Apache-2.0
// Sorts records in memory and merges runs of a file.
#include "perf-store/diff/sorted_spool.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "perf-store/datasets/output_file.h"
#include "perf-store/datasets/temporary_file.h"

namespace perf_store {

namespace {

struct record_sizes {
    std::uint32_t key;
    std::uint32_t value;
};

record_sizes sizes_at(const char *record) {
    record_sizes sizes{};
    std::memcpy(&sizes, record, sizeof sizes);
    return sizes;
}

std::size_t length_of(const record_sizes &sizes) { return sizeof sizes + sizes.key + sizes.value; }

std::string_view key_at(const char *record) { return {record + sizeof(record_sizes), sizes_at(record).key}; }

std::string_view value_at(const char *record) {
    const record_sizes sizes = sizes_at(record);
    return {record + sizeof sizes + sizes.key, sizes.value};
}

}  // namespace

// A part of the file that is read from its begin to its end.
class sorted_spool::run {
public:
    run(int file, std::uint64_t begin, std::uint64_t end, std::size_t number, std::size_t read_at_once)
        : file_(file), read_(begin), end_(end), number_(number), buffer_(read_at_once, '\0') {}

    [[nodiscard]] pm_error next(bool *found) {
        at_ += length_;
        length_ = 0;
        *found = at_ < filled_ || read_ < end_;
        if (!*found) {
            return {};
        }
        if (pm_error error = require(sizeof(record_sizes))) {
            return error;
        }
        length_ = length_of(sizes_at(buffer_.data() + at_));
        return require(length_);
    }

    [[nodiscard]] std::string_view key() const { return key_at(buffer_.data() + at_); }
    [[nodiscard]] std::string_view value() const { return value_at(buffer_.data() + at_); }
    // Whether `a` is to be taken after `b`. Of records with the same key the one of the last run comes first.
    [[nodiscard]] static bool is_later(const std::unique_ptr<run> &a, const std::unique_ptr<run> &b) {
        const int order = a->key().compare(b->key());
        return order != 0 ? order > 0 : a->number_ < b->number_;
    }

private:
    // Makes `size` bytes from at_ on be in the buffer.
    [[nodiscard]] pm_error require(std::size_t size) {
        if (filled_ - at_ >= size) {
            return {};
        }
        std::memmove(buffer_.data(), buffer_.data() + at_, filled_ - at_);
        filled_ -= at_;
        at_ = 0;
        buffer_.resize(std::max(buffer_.size(), size));
        while (filled_ < size) {
            const std::size_t wanted = std::min<std::uint64_t>(buffer_.size() - filled_, end_ - read_);
            const ssize_t read = ::pread(file_, buffer_.data() + filled_, wanted, static_cast<off_t>(read_));
            if (read <= 0 && !(read < 0 && errno == EINTR)) {
                return temporary_file_error(read < 0 ? errno : EIO);
            }
            filled_ += read > 0 ? static_cast<std::size_t>(read) : 0;
            read_ += read > 0 ? static_cast<std::uint64_t>(read) : 0;
        }
        return {};
    }

    int file_;
    std::uint64_t read_;  // up to here
    std::uint64_t end_;
    std::size_t number_;
    std::string buffer_;
    std::size_t filled_ = 0;
    std::size_t at_ = 0;  // the record
    std::size_t length_ = 0;
};

sorted_spool::sorted_spool(std::size_t memory) : memory_(memory) {}

sorted_spool::~sorted_spool() {
    if (file_ >= 0) {
        ::close(file_);
    }
}

pm_error sorted_spool::put(std::string_view key, std::string_view value) {
    const record_sizes sizes{static_cast<std::uint32_t>(key.size()), static_cast<std::uint32_t>(value.size())};
    const std::size_t needed = records_.size() + length_of(sizes) + (places_.size() + 1) * sizeof places_.front();
    if (needed > memory_ && !places_.empty()) {
        if (pm_error error = write_run()) {
            return error;
        }
    }
    if (records_.capacity() < memory_) {
        records_.reserve(memory_);  // so that it is not copied while it grows
    }
    ascending_ = ascending_ && (places_.empty() || key_at(records_.data() + places_.back()) < key);
    places_.push_back(records_.size());
    records_.append(reinterpret_cast<const char *>(&sizes), sizeof sizes).append(key).append(value);
    return {};
}

// Puts the places in the order of the keys, with one place for each key.
void sorted_spool::sort_memory() {
    if (ascending_) {
        return;
    }
    const auto key_of = [&](std::uint64_t place) { return key_at(records_.data() + place); };
    std::sort(places_.begin(), places_.end(), [&](std::uint64_t a, std::uint64_t b) {
        const int order = key_of(a).compare(key_of(b));
        return order != 0 ? order < 0 : a > b;  // the last one first
    });
    const auto same = [&](std::uint64_t a, std::uint64_t b) { return key_of(a) == key_of(b); };
    places_.erase(std::unique(places_.begin(), places_.end(), same), places_.end());
}

pm_error sorted_spool::write_run() {
    if (file_ < 0) {
        if (pm_error error = open_temporary_file(&file_)) {
            return error;
        }
    }
    sort_memory();
    const std::string folder = temporary_folder_name();
    output_file out(file_, folder.c_str());
    for (const std::uint64_t place : places_) {
        const char *record = records_.data() + place;
        out.buffer().append(record, length_of(sizes_at(record)));
        written_ += length_of(sizes_at(record));
        if (pm_error error = out.flush_when_full()) {
            return error;
        }
    }
    if (pm_error error = out.flush()) {
        return error;
    }
    // A run that goes on where the last one ends is a part of it: what came in order is one run.
    if (!ends_.empty() && last_written_ < key_at(records_.data() + places_.front())) {
        ends_.pop_back();
    }
    ends_.push_back(written_);
    last_written_ = key_at(records_.data() + places_.back());
    records_.clear();
    places_.clear();
    ascending_ = true;
    return {};
}

pm_error sorted_spool::finish() {
    if (file_ < 0) {
        sort_memory();
        return {};
    }
    if (pm_error error = places_.empty() ? pm_error() : write_run()) {
        return error;
    }
    std::string().swap(records_);
    std::vector<std::uint64_t>().swap(places_);
    return {};
}

pm_error sorted_spool::open_runs() {
    constexpr std::size_t LEAST_READ = 4096;
    constexpr std::size_t MOST_READ = 256 * 1024;
    const std::size_t read_at_once = std::clamp(memory_ / 4 / ends_.size(), LEAST_READ, MOST_READ);
    std::uint64_t begin = 0;
    for (const std::uint64_t end : ends_) {
        auto next = std::make_unique<run>(file_, begin, end, runs_.size(), read_at_once);
        bool found = false;
        if (pm_error error = next->next(&found)) {
            return error;
        }
        runs_.push_back(std::move(next));
        begin = end;
    }
    ends_.clear();
    std::make_heap(runs_.begin(), runs_.end(), run::is_later);
    return {};
}

pm_error sorted_spool::next(bool *found) {
    if (file_ < 0) {
        return next_in_memory(found);
    }
    if (pm_error error = ends_.empty() ? pm_error() : open_runs()) {
        return error;
    }
    return next_of_runs(found);
}

pm_error sorted_spool::next_in_memory(bool *found) {
    *found = taken_ < places_.size();
    if (*found) {
        const char *record = records_.data() + places_[taken_++];
        key_ = key_at(record);
        value_ = value_at(record);
    }
    return {};
}

// Goes on in the run in front, and in those that have the same key.
pm_error sorted_spool::next_of_runs(bool *found) {
    const std::string last(current_ != nullptr ? current_->key() : std::string_view());
    while (current_ != nullptr && !runs_.empty() && runs_.front()->key() == last) {
        std::pop_heap(runs_.begin(), runs_.end(), run::is_later);
        bool more = false;
        if (pm_error error = runs_.back()->next(&more)) {
            return error;
        }
        if (more) {
            std::push_heap(runs_.begin(), runs_.end(), run::is_later);
        } else {
            runs_.pop_back();
        }
    }
    *found = !runs_.empty();
    current_ = *found ? runs_.front().get() : nullptr;
    if (*found) {
        key_ = current_->key();
        value_ = current_->value();
    }
    return {};
}

}  // namespace perf_store
