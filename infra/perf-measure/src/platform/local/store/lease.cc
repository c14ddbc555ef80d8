// The system's boot and the time since it.
#include "platform/local/store/lease.h"

#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace store {

namespace {

constexpr std::size_t BOOT_ID_LENGTH = 36;

// Without streams, whose initialisation every start of the program would pay for.
std::string read_boot() {
    char boot[BOOT_ID_LENGTH];
    const int file = ::open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC);
    const ssize_t length = file >= 0 ? ::read(file, boot, sizeof boot) : 0;
    if (file >= 0) {
        ::close(file);
    }
    return {boot, static_cast<std::size_t>(length > 0 ? length : 0)};
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
