// SPDX-License-Identifier: Apache-2.0
// Running services: perf-probed and others as processes, in network namespaces or not, with stores of their own.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tests/support/command.h"

// A process that a test started, ended with it. Its output goes into files.
class running_process {
public:
    running_process(const std::string &command, std::string output) : output_(std::move(output)) {
        pid_ = fork();
        if (pid_ == 0) {
            const int to = open(output_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            dup2(to, STDOUT_FILENO);
            dup2(to, STDERR_FILENO);
            execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
            std::_Exit(127);
        }
    }
    ~running_process() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            kill(pid_, SIGCONT);
            waitpid(pid_, nullptr, 0);
        }
    }
    running_process(const running_process &) = delete;
    running_process &operator=(const running_process &) = delete;

    void signal(int number) const { kill(pid_, number); }
    // Ends it and gives its exit status; -1 when a signal ended it.
    int end(int number = SIGTERM) {
        kill(pid_, number);
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    [[nodiscard]] std::string output() const { return read_file(output_); }

private:
    std::string output_;
    pid_t pid_;
};

// Asks again and again, for `seconds` at most, until the answer is yes.
inline bool within(double seconds, const std::function<bool()> &asked) {
    for (double waited = 0; waited < seconds; waited += 0.05) {
        if (asked()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return asked();
}

inline void pause(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }

// A perf-probed with a configuration and a store of its own.
class live_service {
public:
    // `prefix` goes before the command, for example "ip netns exec NAME". `url` names another store than its own.
    explicit live_service(const std::string &yaml, std::string prefix = "", std::string url = "")
        : prefix_(std::move(prefix)), url_(url.empty() ? "lmdb:" + store() : std::move(url)) {
        configure(yaml);
        start();
    }
    void configure(const std::string &yaml) { write_file(config(), yaml); }
    void start() {
        process_ = std::make_unique<running_process>(
            prefix_ + " env 'OPSTORE_URL=" + url_ + "' '" PERF_PROBED "' --config " + config(), log_file());
    }
    [[nodiscard]] running_process &process() { return *process_; }

    // What a show prints.
    [[nodiscard]] command_result show(const std::string &arguments) const { return run("perf-show " + arguments); }
    // What a program of this project prints of the store.
    [[nodiscard]] command_result run(const std::string &command) const {
        return run_command("OPSTORE_URL='" + url_ + "' " + command, store());
    }
    [[nodiscard]] bool shows(const std::string &arguments, const std::string &text) const {
        return show(arguments).out.find(text) != std::string::npos;
    }
    [[nodiscard]] std::string store() const { return folder_.path() + "/store"; }
    [[nodiscard]] std::string config() const { return folder_.path() + "/config.yaml"; }
    [[nodiscard]] std::string log_file() const { return folder_.path() + "/log"; }
    [[nodiscard]] std::string log() const { return read_file(log_file()); }

private:
    temporary_folder folder_;
    std::string prefix_;
    std::string url_;
    std::unique_ptr<running_process> process_;
};
