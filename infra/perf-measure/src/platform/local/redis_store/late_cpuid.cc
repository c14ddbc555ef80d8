// SPDX-License-Identifier: Apache-2.0
// Puts off what the cryptographic library asks of the processor until TLS is used.
//
// In a statically linked program the library executes its CPUID instructions before main, whether or not it is ever
// used, and a virtual machine leaves the guest for each of them: a twentieth of the time that a short show takes. It
// asks again when it is initialised, which is before anything else that it does, and only the first answer counts. So
// its call at start-up is ignored. Programs that want this link pm_late_cpuid, which leads the library's calls here.
namespace {

// Set before main, but after the library's call: .init runs before the constructors.
bool started = false;
[[gnu::constructor]] void note_start() { started = true; }

}  // namespace

// The names are the linker's (--wrap).
extern "C" void __real_OPENSSL_cpuid_setup();
extern "C" void __wrap_OPENSSL_cpuid_setup();

extern "C" void __wrap_OPENSSL_cpuid_setup() {
    if (started) {
        __real_OPENSSL_cpuid_setup();
    }
}
