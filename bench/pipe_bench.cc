// SPDX-License-Identifier: Apache-2.0
// Whole programs that write into a pipe, beside each other: each command of the shell is run several times, in
// turns with the others, while this program reads its output and throws it away.
//
//   pipe_bench RUNS NAME=COMMAND...
//
// Prints for each command the median time, its rate, its peak memory and how many times as long as the first it
// takes. The outputs must be the same, else the comparison would mean nothing.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

struct measured {
    std::string name;
    std::string command;
    std::vector<double> seconds;
    std::uint64_t bytes = 0;
    std::uint64_t lines = 0;
    std::uint64_t digest = 0;  // of the output
    long peak_kilobytes = 0;
};

// Reads all of a pipe and throws it away; counts and digests it when asked to.
void drain(int from, measured *into) {
    static char bytes[1 << 16];
    for (ssize_t got = 0; (got = read(from, bytes, sizeof bytes)) > 0;) {
        if (into != nullptr) {
            into->bytes += static_cast<std::uint64_t>(got);
            for (ssize_t i = 0; i < got; ++i) {
                into->lines += bytes[i] == '\n' ? 1 : 0;
                into->digest = into->digest * 1099511628211ULL + static_cast<unsigned char>(bytes[i]);
            }
        }
    }
}

// Runs the command once; false when it failed. The first run counts what is printed, the others are timed.
bool run(measured *each, bool is_timed) {
    int ends[2];
    if (pipe(ends) != 0) {
        return false;
    }
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl("/bin/sh", "sh", "-c", ("exec " + each->command).c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    drain(ends[0], is_timed ? nullptr : each);
    close(ends[0]);
    int status = 1;
    rusage used{};
    if (wait4(child, &status, 0, &used) != child || status != 0) {
        return false;
    }
    if (is_timed) {
        each->seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    each->peak_kilobytes = used.ru_maxrss;
    return true;
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void report(const measured &each, const measured &first) {
    const double seconds = median(each.seconds);
    std::printf("%-10s %9.1f ms %8.1f M lines/s %8.0f MB/s %8ld kB peak   x %.2f\n", each.name.c_str(), seconds * 1e3,
                static_cast<double>(each.lines) / seconds / 1e6, static_cast<double>(each.bytes) / seconds / 1e6,
                each.peak_kilobytes, seconds / median(first.seconds));
}

}  // namespace

int main(int argc, char **argv) {
    const int runs = argc > 2 ? std::atoi(argv[1]) : 0;
    std::vector<measured> all;
    for (int i = 2; i < argc; ++i) {
        const std::string argument = argv[i];
        const std::size_t split = argument.find('=');
        if (split == std::string::npos) {
            break;
        }
        all.push_back({argument.substr(0, split), argument.substr(split + 1), {}});
    }
    if (runs < 1 || all.empty()) {
        std::fputs("usage: pipe_bench RUNS NAME=COMMAND...\n", stderr);
        return 2;
    }
    for (int round = 0; round <= runs; ++round) {
        for (measured &each : all) {
            if (!run(&each, round > 0)) {
                std::fprintf(stderr, "pipe_bench: '%s' failed\n", each.command.c_str());
                return 1;
            }
            if (each.digest != all.front().digest) {
                std::fprintf(stderr, "pipe_bench: '%s' prints another text than '%s'\n", each.command.c_str(),
                             all.front().command.c_str());
                return 1;
            }
        }
    }
    for (const measured &each : all) {
        report(each, all.front());
    }
    return 0;
}
