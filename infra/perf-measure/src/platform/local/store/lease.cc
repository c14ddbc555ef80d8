// The system's boot and the time since it.
#include "platform/local/store/lease.h"

#include <ctime>
#include <fstream>

namespace store {

namespace {

std::string read_boot() {
    std::string boot;
    std::getline(std::ifstream("/proc/sys/kernel/random/boot_id") >> std::ws, boot);
    return boot;
}

}  // namespace

const std::string &this_boot() {
    static const std::string boot = read_boot();
    return boot;
}

std::uint64_t msec_since_boot() {
    std::timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1000 + static_cast<std::uint64_t>(time.tv_nsec) / 1'000'000;
}

bool lease_is_over(std::string_view boot, std::uint64_t expires_msec) {
    return boot != this_boot() || msec_since_boot() > expires_msec;
}

}  // namespace store
