// SPDX-License-Identifier: Apache-2.0
// The signal handlers of guarded bodies.
#include "platform/local/lmdb_store/fault_guard.h"

#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace fault_guard {

sigjmp_buf *landing = nullptr;

namespace {

void on_fault(int signal_number) {
    if (landing != nullptr) {
        siglongjmp(*landing, 1);
    }
    std::signal(signal_number, SIG_DFL);
    static_cast<void>(std::raise(signal_number));
}

}  // namespace

void abandon() {
    if (landing != nullptr) {
        siglongjmp(*landing, 1);
    }
    std::abort();
}

void install() {
    static bool installed = false;
    if (installed) {
        return;
    }
    installed = true;
    struct sigaction action {};
    action.sa_handler = on_fault;
    action.sa_flags = SA_NODEFER;  // the handler may be left by a jump
    sigemptyset(&action.sa_mask);
    for (const int signal_number : {SIGBUS, SIGSEGV, SIGFPE, SIGABRT}) {
        sigaction(signal_number, &action, nullptr);
    }
}

}  // namespace fault_guard
