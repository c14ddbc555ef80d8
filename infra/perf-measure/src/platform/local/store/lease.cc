// SPDX-License-Identifier: Apache-2.0
// The system's boot and the time since it, and what leases make of states.
#include "platform/local/store/lease.h"

#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include "platform/local/store/local_store_records.h"

namespace store {

namespace {

// An identifier and the end of its line. Nothing here owns memory: leases are judged while a store is read, which a
// jump may end.
struct boot_text {
    char bytes[64];
    std::size_t length;
};

boot_text read_boot() {
    boot_text boot{};
    const int file = ::open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return boot;
    }
    const ssize_t length = ::read(file, boot.bytes, sizeof boot.bytes);
    ::close(file);
    boot.length = length > 0 ? std::string_view(boot.bytes, static_cast<std::size_t>(length)).find_first_of('\n') : 0;
    boot.length = boot.length <= sizeof boot.bytes ? boot.length : 0;
    return boot;
}

}  // namespace

std::string_view this_boot() {
    static const boot_text boot = read_boot();
    return {boot.bytes, boot.length};
}

std::uint64_t msec_since_boot() {
    std::timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1000 + static_cast<std::uint64_t>(time.tv_nsec) / 1'000'000;
}

publisher_state seen_state(const local_publisher &record, kept_lease lease) {
    const auto state = static_cast<publisher_state>(record.State);
    if (record.Lease == nullptr || state != publisher_state::running) {
        return state;
    }
    const char *const boot = record.Lease->Boot != nullptr ? record.Lease->Boot : "";
    const bool over = lease ? !*lease : lease_is_over(boot, record.Lease->ExpiresMsec);
    return over ? publisher_state::stopped : state;
}

bool lease_is_over(std::string_view boot, std::uint64_t expires_msec) {
    return boot != this_boot() || msec_since_boot() > expires_msec;
}

}  // namespace store
