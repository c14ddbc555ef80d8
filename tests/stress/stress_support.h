// SPDX-License-Identifier: Apache-2.0
// Processes that run beside each other on one store, and data sets whose records tell which load they
// came from.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "base/pm_output.h"
#include "front/generic_show.h"
#include "platform/local/back_ends/readers.h"
#include "platform/local/lmdb_store/table_state.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/child_process.h"
#include "tests/support/command.h"

#ifdef PM_SANITIZE
inline constexpr unsigned STRESS_SCALE = 6;  // programs that start slowly are started less often
#else
inline constexpr unsigned STRESS_SCALE = 1;
#endif

inline constexpr char STRESS_LISTED[] = "intf/detail/";
inline constexpr std::uint32_t STRESS_NODE = 1;
inline constexpr std::uint32_t STRESS_BATCH = 200;

// Displays of listings: one counts the items in `shown`, one prints what tells them apart.
inline unsigned shown = 0;

inline int count_item(const void *decoded_parcel) {
    shown += decoded_parcel != nullptr ? 1 : 0;
    return PM_SHOW_NOTHING;
}

// Prints so much that a few thousand items fill the widest pipe.
inline int print_item(const void *decoded_parcel) {
    const auto *record = static_cast<const pm_intf_parcel *>(decoded_parcel);
    pm_print<"%-600s %s\n">(record->InterfaceName, record->DelayMeasurementSessions[0].ProfileName);
    return PM_SHOW_NOTHING;
}

using stress_clock = std::chrono::steady_clock;

inline double seconds_since(stress_clock::time_point start) {
    return std::chrono::duration<double>(stress_clock::now() - start).count();
}

// Has the system end this process with its parent. One whose parent ended before it could ask goes on, so what
// such a process does has to end by itself.
inline void end_with_parent() { prctl(PR_SET_PDEATHSIG, SIGKILL); }

// A running child process, killed at the end of its scope at the latest.
class running_process {
public:
    running_process() = default;
    template <class Body>
    explicit running_process(Body body) : id_(fork()) {
        if (id_ == 0) {
            end_with_parent();
            std::_Exit(body() ? 0 : 1);
        }
    }
    ~running_process() {
        if (id_ > 0) {
            kill(SIGKILL);
            static_cast<void>(wait(5));
        }
    }
    running_process(running_process &&other) noexcept : id_(std::exchange(other.id_, -1)) {}
    running_process &operator=(running_process &&other) noexcept {
        std::swap(id_, other.id_);
        return *this;
    }

    [[nodiscard]] pid_t id() const { return id_; }
    void kill(int signal_number) const { ::kill(id_, signal_number); }

    // Waits for the end, at most this long. Whether it came, and then with status 0.
    [[nodiscard]] bool wait(double seconds) {
        const auto start = stress_clock::now();
        while (id_ > 0) {
            int status = 1;
            if (waitpid(id_, &status, WNOHANG) == id_) {
                id_ = -1;
                return WIFEXITED(status) && WEXITSTATUS(status) == 0;
            }
            if (seconds_since(start) > seconds) {
                return false;
            }
            usleep(200);
        }
        return false;
    }

private:
    pid_t id_ = -1;
};

// Becomes a program on a store; for the body of a running_process. A negative `out` discards the output.
inline bool become(const std::vector<std::string> &words, const std::string &store, int out = -1) {
    const int to = out >= 0 ? out : open("/dev/null", O_WRONLY | O_CLOEXEC);
    setenv("OPSTORE_URL", ("lmdb:" + store).c_str(), 1);
    std::signal(SIGPIPE, SIG_DFL);
    std::vector<char *> arguments;
    for (const std::string &word : words) {
        arguments.push_back(const_cast<char *>(word.c_str()));
    }
    arguments.push_back(nullptr);
    dup2(to, STDOUT_FILENO);
    execv(arguments[0], arguments.data());
    return false;
}

// The text that a field of every record of one load holds.
inline std::string generation_text(std::uint32_t generation, std::size_t size) {
    std::string text = std::to_string(generation) + " ";
    text.resize(size, static_cast<char>('a' + generation % 26));
    return text;
}

// An interface's item as a data set line. Four fields tell the generation; `size` bytes are text.
inline std::string interface_line(const std::string &name, std::uint32_t generation, std::size_t size) {
    const std::string number = std::to_string(generation);
    return R"({"item":{"root":"main","node":1,"path":")" + (STRESS_LISTED + name) +
           R"(","type":"pm_intf_parcel","record":{"InterfaceName":")" + name + R"(","InterfaceHandle":)" + number +
           R"(,"DelayMeasurementSessions":[{"SessionId":)" + number + R"(,"ProfileName":")" +
           generation_text(generation, size) + R"("}],"NextHopMacAddressGetErrorCount":)" + number + "}}}\n";
}

// The generation of a record; nothing for one whose fields are not of one load.
inline bool whole_generation(const pm_intf_parcel &record, std::uint32_t *generation) {
    *generation = record.InterfaceHandle;
    if (record.DelayMeasurementSessions.count != 1 || record.NextHopMacAddressGetErrorCount != *generation) {
        return false;
    }
    const pm_scb_parcel &session = record.DelayMeasurementSessions[0];
    return session.SessionId == *generation && session.ProfileName != nullptr &&
           session.ProfileName == generation_text(*generation, std::string(session.ProfileName).size());
}

inline std::string padded(const std::string &prefix, unsigned number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%05u", number);
    return prefix + digits;
}

// Lists the interfaces with generic_show, each to `display`.
inline errcode list_interfaces(pm_show_display display, std::uint32_t batch = STRESS_BATCH) {
    pm_show_request request{};
    request.base_path = "/oper/perf_meas/main/";
    request.item_path = STRESS_LISTED;
    request.start_key = "";
    request.display = display;
    request.parcel_desc = pm_intf_parcel_descriptor();
    request.decoded_size = sizeof(pm_intf_parcel);
    request.batch_size = batch;
    return generic_show(&request, STRESS_NODE);
}

inline bool load(const std::string &store, const std::string &set, bool replace = false) {
    running_process loader([&] {
        std::vector<std::string> words = {PERF_STORE, "load", set};
        if (replace) {
            words.insert(words.begin() + 2, "--replace");
        }
        return become(words, store);
    });
    return loader.wait(30);
}

// A process that loads the sets in turn until it is told to stop.
class looping_writer {
public:
    looping_writer(const std::string &store, const std::vector<std::string> &sets)
        : stop_(store + ".stop"), process_([&] {
              for (std::size_t i = 0; !std::filesystem::exists(stop_); ++i) {
                  if (!load(store, sets[i % sets.size()], i % 3 == 0)) {
                      return false;
                  }
              }
              return true;
          }) {}
    ~looping_writer() { static_cast<void>(stop()); }
    looping_writer(const looping_writer &) = delete;
    looping_writer &operator=(const looping_writer &) = delete;

    // Whether all loads went well until now.
    [[nodiscard]] bool stop() {
        write_file(stop_, "");
        return process_.wait(30);
    }

private:
    std::string stop_;
    running_process process_;
};

inline std::uintmax_t size_of(const std::string &store) { return std::filesystem::file_size(store + "/data.mdb"); }
