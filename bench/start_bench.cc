// SPDX-License-Identifier: Apache-2.0
// Start to exit: perf-show -c 9 on the example store beside cat of a file of the same text, or beside another program,
// all into /dev/null, run in turns. Prints the medians and their ratio.
//
//   start_bench PERF_SHOW TEXT-FILE [PEER...]     (OPSTORE_URL names the store)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

extern char **environ;

namespace {

constexpr int RUNS = 1000;

using microseconds = std::chrono::duration<double, std::micro>;

// Runs a command with its output thrown away; how long it took, negative when it failed.
double run(const posix_spawn_file_actions_t &actions, char *const *arguments) {
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    int status = 1;
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments, environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0) {
        return -1;
    }
    return microseconds(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> *times) {
    std::sort(times->begin(), times->end());
    return (*times)[times->size() / 2];
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 3) {
        std::fputs("usage: start_bench PERF_SHOW TEXT-FILE [PEER...]\n", stderr);
        return 2;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    char command[] = "-c";
    char summary[] = "9";
    char cat[] = "cat";
    char *const show_arguments[] = {argv[1], command, summary, nullptr};
    char *const cat_arguments[] = {cat, argv[2], nullptr};
    char *const *const peer_arguments = argc > 3 ? argv + 3 : cat_arguments;
    std::vector<double> show_times;
    std::vector<double> peer_times;
    for (int i = 0; i < RUNS; ++i) {
        show_times.push_back(run(actions, show_arguments));
        peer_times.push_back(run(actions, peer_arguments));
    }
    const double show = median(&show_times);
    const double reference = median(&peer_times);
    if (show_times.front() < 0 || peer_times.front() < 0) {
        std::fputs("start_bench: a command failed\n", stderr);
        return 1;
    }
    std::printf("start to exit: perf-show -c 9 %.0f us, %s %.0f us, ratio %.2f\n", show, peer_arguments[0], reference,
                show / reference);
    return 0;
}
