// SPDX-License-Identifier: Apache-2.0
// Puts names to what a walk through the pages finds.
#include "platform/local/lmdb_store/inspect.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/lmdb_store/links.h"
#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/lmdb_store/page_walk.h"
#include "platform/local/lmdb_store/table_state.h"
#include "platform/local/store/seal.h"

namespace lmdb_store {

namespace {

// A file or folder, closed at its end.
class open_file {
public:
    open_file(const std::string &path, int flags) : descriptor_(::open(path.c_str(), flags | O_RDONLY | O_CLOEXEC)) {}
    ~open_file() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    open_file(const open_file &) = delete;
    open_file &operator=(const open_file &) = delete;
    [[nodiscard]] int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

// "main 0x100 intf/detail/eth0" for an item, else the kind of the record.
std::string name_of(std::string_view key) {
    store::branch of{};
    std::string_view path;
    if (key.starts_with(static_cast<char>(store::key_space::item)) && store::parse_branch_key(key, &of, &path)) {
        char node[16];
        std::snprintf(node, sizeof node, " %#x ", of.node);
        for (const store::root_name &each : store::ROOTS) {
            if (each.id == of.data_root) {
                return each.word + std::string(node) + std::string(path);
            }
        }
    }
    switch (key.empty() ? '\0' : key.front()) {
    case static_cast<char>(store::key_space::interface): return "an interface";
    case static_cast<char>(store::key_space::node): return "a node";
    case static_cast<char>(store::key_space::platform): return "platform";
    case static_cast<char>(store::key_space::publisher): return "a publisher";
    case static_cast<char>(store::key_space::schema): return "a schema";
    default: return "the end";
    }
}

// Checks records against their neighbours and passes them on.
class record_check {
public:
    record_check(std::uint64_t transaction, store::inspector *to) : transaction_(transaction), to_(*to) {}

    void take(std::string_view key, std::string_view kept) {
        if (key.empty() || key <= before_) {
            to_.loss("a record is out of its order");
            return;
        }
        ++records_;
        if (key == FORMAT_KEY) {
            begun_ = kept == FORMAT;
        } else {
            check_link(key, kept);
            pass_on(key, without_link(kept));
        }
        before_ = key;
    }

    // What is known to be missing once all was read.
    void end(std::uint64_t entries) {
        if (!begun_) {
            to_.loss("the format's record is missing");
        }
        if (!ended_) {
            to_.loss("the end is missing, or of another state than the head");
        }
        if (records_ != entries) {
            to_.loss("there are " + std::to_string(records_) + " records of " + std::to_string(entries));
        }
    }

private:
    void check_link(std::string_view key, std::string_view kept) {
        if (!is_linked(kept, before_, key)) {
            to_.loss("before " + name_of(key) + ": records are missing" +
                     (before_.empty() ? "" : ", those after " + name_of(before_)));
        }
    }

    void pass_on(std::string_view key, std::string_view value) {
        if (key == END_KEY) {
            ended_ = value.size() == sizeof transaction_ &&
                     std::memcmp(value.data(), &transaction_, sizeof transaction_) == 0;
            return;
        }
        const auto kind = static_cast<store::key_space>(key.front());
        to_.record(kind, key, kind == store::key_space::schema ? value : store::unseal(key, value));
    }

    std::uint64_t transaction_;
    store::inspector &to_;
    std::string before_;
    std::uint64_t records_ = 0;
    bool begun_ = false;
    bool ended_ = false;
};

}  // namespace

pm_error inspect(const std::string &folder, store::inspector *to) {
    reserve_standard_descriptors();
    const open_file place(folder, O_DIRECTORY);
    if (place.descriptor() >= 0) {
        static_cast<void>(::flock(place.descriptor(), LOCK_SH));
    }
    const open_file data(file_in(folder, DATA_FILE), 0);
    if (data.descriptor() < 0) {
        return pm_error(code_of(errno), check_access(folder).denial.text());
    }
    table_root root;
    if (!read_root(data.descriptor(), &root)) {
        return pm_error(OPSTORE_DAMAGED);
    }
    if (!root.sound) {
        to->loss("the head is damaged, or not the one that its writer noted");
    }
    record_check check(root.transaction, to);
    page_walk(data.descriptor(), root)
        .run([&](std::string_view key, std::string_view kept) { check.take(key, kept); },
             [&](const std::string &what) { to->loss(what); });
    check.end(root.entries);
    return {};
}

}  // namespace lmdb_store
