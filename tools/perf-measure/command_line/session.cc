// SPDX-License-Identifier: Apache-2.0
// This program again, once for each line.
#include "perf-measure/command_line/session.h"

#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "perf-measure/command_line/invocation.h"
#include "perf-measure/completion/stored_names.h"
#include "perf-measure/interactive/shell.h"
#include "perf-measure/terminal/child_run.h"

namespace perf_measure {

namespace {

// Runs this program with the words; Ctrl-C ends it and not this process.
int run_self(const std::vector<std::string> &words) {
    std::vector<std::string> texts{"perf-measure"};
    texts.insert(texts.end(), words.begin(), words.end());
    std::vector<char *> arguments;
    for (std::string &each : texts) {
        arguments.push_back(each.data());
    }
    arguments.push_back(nullptr);
    sigset_t keys;
    sigemptyset(&keys);
    sigaddset(&keys, SIGINT);
    sigaddset(&keys, SIGQUIT);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &keys);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGQUIT, SIG_IGN);
    pid_t child = -1;
    const int failure = ::posix_spawn(&child, "/proc/self/exe", nullptr, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) {
        return report_failure("cannot run a command");
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_BY_SIGNAL + WTERMSIG(status);
}

// What comes before a name on its way from the child.
constexpr char WHOLE = 'w';
constexpr char PART = 'p';

// The store is read in a child: this process stays for hours, and must hold nothing of it.
std::vector<candidate> list_names(const name_source *items, std::string_view beginning) {
    std::string text;
    static_cast<void>(run_in_child(
        [&] {
            std::string lines;
            for (const candidate &name : stored_names(items, beginning)) {
                lines += (name.is_whole ? WHOLE : PART) + name.word + '\0';
            }
            return write_fully(STDOUT_FILENO, lines) ? EXIT_SHOWN : EXIT_NOT_READ;
        },
        [&text](stream from, std::string_view bytes) {
            text += from == stream::output ? bytes : "";
            return true;
        },
        true));
    std::vector<candidate> names;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\0', at);
        names.push_back({text.substr(at + 1, end - at - 1), "", text[at] == WHOLE});
        at = end + 1;
    }
    return names;
}

}  // namespace

int run_session() { return run_shell(run_self, list_names); }

}  // namespace perf_measure
