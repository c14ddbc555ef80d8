// SPDX-License-Identifier: Apache-2.0
// A statically linked program, put together as perf-show is, that tells what the cryptographic library knows of the
// processor: nothing when main begins, and something once there is a context for TLS.
#include <cstdint>
#include <cstdio>
#include <openssl/ssl.h>

extern "C" std::uint32_t OPENSSL_ia32cap_P[4];  // the library's own note of the processor's features

int main() {
    const std::uint32_t at_start = OPENSSL_ia32cap_P[0];
    SSL_CTX *const context = SSL_CTX_new(TLS_client_method());
    if (context == nullptr) {
        std::fputs("there is no context\n", stderr);
        return 1;
    }
    SSL_CTX_free(context);
    if (at_start != 0) {
        std::fputs("the library asked before main\n", stderr);
        return 1;
    }
    if (OPENSSL_ia32cap_P[0] == 0) {
        std::fputs("the library did not ask before it made a context\n", stderr);
        return 1;
    }
    return 0;
}
