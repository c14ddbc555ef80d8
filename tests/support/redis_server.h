// SPDX-License-Identifier: Apache-2.0
// A private redis-server on a socket in a temporary folder, which ends with the object.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "platform/local/store/reader.h"
#include "platform/local/store/writer.h"
#include "tests/support/temporary_folder.h"

class redis_server {
public:
    // Options as in redis.conf, each a name and its value, after those that keep the server private and in memory.
    explicit redis_server(std::vector<std::string> options = {});
    ~redis_server();
    redis_server(const redis_server &) = delete;
    redis_server &operator=(const redis_server &) = delete;

    // "redis+unix://...?timeout=2000" and what is given in addition, such as "&db=1".
    [[nodiscard]] std::string url(const std::string &more = "") const;
    [[nodiscard]] std::string folder() const { return folder_.path(); }
    [[nodiscard]] std::string socket() const { return folder_.path() + "/socket"; }

    // Runs one command; gives its answer's texts one after another, or the error.
    std::string run(std::initializer_list<std::string_view> words) const;
    // The same, where a server of a cluster names another one in place of an answer.
    std::string run_here(std::initializer_list<std::string_view> words) const;

    void send_signal(int number) const;
    // Ends it with SIGKILL; start() begins it again, with what its options let it keep.
    void kill_it();
    void start();
    // Begins it again without waiting until it answers.
    void begin_start();
    // A port of this machine's own that nobody uses, and whose successor by 10000 is free too.
    static int free_port();

private:
    temporary_folder folder_;
    std::vector<std::string> options_;
    pid_t process_ = -1;
};

// Opened for reading or writing; null, and a failed expectation, when that fails.
std::unique_ptr<store::reader> read_store(const std::string &url);
std::unique_ptr<store::writer> write_store(const std::string &url);

inline constexpr store::branch MAIN_1{store::root::main, 1};

// Puts an item whose record is an interface of that name.
pm_error put_named(store::writer *into, std::string_view path, const std::string &name,
                   const store::branch &branch = MAIN_1);
// Loads items "item/000000" and so on in one commit.
pm_error load_items(const std::string &url, int count, const std::string &name = "x");
// The name in the record at a path, or the text of the error's code.
std::string name_at(store::reader *from, std::string_view path);
// The paths below a prefix, with how many batches they came in. Empty after an error, which is then in `*error`.
std::vector<std::string> all_paths(store::reader *from, std::string_view prefix, pm_error *error, int *batches);
