// SPDX-License-Identifier: Apache-2.0
// Runs code in a child process: LMDB lets a process open a store once only, so what writes a store that
// a test reads must be another process.
#pragma once

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

// Runs `body`, which returns whether all went well, in a child; returns what it returned.
template <class Body>
bool in_child(Body body) {
    const pid_t child = fork();
    if (child == 0) {
        std::_Exit(body() ? 0 : 1);
    }
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
