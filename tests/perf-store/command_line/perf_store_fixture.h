// SPDX-License-Identifier: Apache-2.0
// Whole perf-store commands: each test has a folder of its own, with the store in it, and runs the
// program there.
#pragma once

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace perf_store_test {

// How a command ended.
struct outcome {
    int status = -1;  // exit status; -1 when a signal ended it
    int signal = 0;
    std::string out;
    std::string error;
};

inline std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Whether a text is one line and no more.
inline bool is_one_line(const std::string &text) { return text.size() > 1 && text.find('\n') == text.size() - 1; }

class PerfStore : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(folder(), "");
        url_ = "lmdb:" + store();
    }

    [[nodiscard]] const std::string &folder() const { return own_.path(); }
    [[nodiscard]] std::string store() const { return folder() + "/store"; }
    [[nodiscard]] std::string data_file() const { return store() + "/data.mdb"; }

    // Another OPSTORE_URL for the commands that follow.
    void use_url(const std::string &url) { url_ = url; }
    void use_store(const std::string &name) { url_ = "lmdb:" + folder() + "/" + name; }
    // Another place for standard output than outcome::out.
    void write_to(const std::string &path) { output_ = path; }
    // Called in the command's process just before the program starts.
    void before_start(void (*prepare)()) { prepare_ = prepare; }

    void write(const std::string &name, const std::string &content) const {
        std::ofstream(folder() + "/" + name, std::ios::binary) << content;
    }

    // Runs the program in the test's folder. A command that does not end is ended by SIGALRM.
    [[nodiscard]] outcome run(const std::vector<std::string> &arguments, const std::string &input = "") const {
        constexpr unsigned LONGEST_RUN_SECONDS = 120;
        write("stdin", input);
        const std::string out = output_.empty() ? folder() + "/stdout" : output_;
        const std::string error = folder() + "/stderr";
        std::vector<char *> words{const_cast<char *>("perf-store")};
        for (const std::string &each : arguments) {
            words.push_back(const_cast<char *>(each.c_str()));
        }
        words.push_back(nullptr);
        const int program = ::open(PERF_STORE, O_RDONLY | O_CLOEXEC);
        const pid_t child = ::fork();
        if (child == 0) {
            const bool ready = ::setenv("OPSTORE_URL", url_.c_str(), 1) == 0 && ::chdir(folder().c_str()) == 0 &&
                               redirect(folder() + "/stdin", O_RDONLY, STDIN_FILENO) &&
                               redirect(out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO) &&
                               redirect(error, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
            if (prepare_ != nullptr) {
                prepare_();
            }
            ::alarm(LONGEST_RUN_SECONDS);
            if (ready) {
                ::fexecve(program, words.data(), environ);
            }
            std::_Exit(127);
        }
        ::close(program);
        outcome result;
        int status = 0;
        if (child < 0 || ::waitpid(child, &status, 0) != child) {
            ADD_FAILURE() << "cannot run " << PERF_STORE;
            return result;
        }
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        result.out = output_.empty() ? read_file(out) : "";
        result.error = read_file(error);
        return result;
    }

    // Loads a data set that is written to set.ndjson.
    [[nodiscard]] outcome load(const std::string &set) const {
        write("set.ndjson", set);
        return run({"load", "set.ndjson"});
    }

    // Loads a data set that must be good.
    void load_good(const std::string &set) const {
        const outcome loaded = load(set);
        ASSERT_EQ(loaded.status, 0) << loaded.error;
        ASSERT_EQ(loaded.error, "");
    }

    // The whole store, which must be sound.
    [[nodiscard]] std::string dump() const {
        const outcome dumped = run({"dump"});
        EXPECT_EQ(dumped.status, 0) << dumped.error;
        EXPECT_EQ(dumped.error, "");
        return dumped.out;
    }

private:
    static bool redirect(const std::string &path, int flags, int to) {
        const int file = ::open(path.c_str(), flags, 0600);
        return file >= 0 && ::dup2(file, to) == to;
    }

    temporary_folder own_;
    std::string url_;
    std::string output_;
    void (*prepare_)() = nullptr;
};

}  // namespace perf_store_test
