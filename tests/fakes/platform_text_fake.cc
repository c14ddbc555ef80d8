// SPDX-License-Identifier: Apache-2.0
// A platform for tests of pm_utils.
#include "tests/fakes/platform_text_fake.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>

#include "platform/address.h"
#include "platform/bounded.h"
#include "platform/ifnx.h"
#include "platform/kal_time.h"
#include "platform/node.h"
#include "platform/opstore.h"
#include "platform/srv6_util.h"

platform_text_fake platform_fake;

void reset_platform_text_fake() { platform_fake = platform_text_fake{}; }

namespace {

// Text of an address in one of sixteen buffers.
const char *address_text(int family, const void *octets) {
    static std::array<std::array<char, INET6_ADDRSTRLEN>, 16> buffers;
    static std::size_t next = 0;
    auto &buffer = buffers[next++ % buffers.size()];
    return inet_ntop(family, octets, buffer.data(), static_cast<socklen_t>(buffer.size()));
}

char *heap_text(const char *text) {
    const std::size_t size = std::strlen(text) + 3;
    auto *copy = static_cast<char *>(std::malloc(size));
    std::snprintf(copy, size, "<%s>", text);
    return copy;
}

}  // namespace

const char *inet_ntoa_r(std::uint32_t address) { return address_text(AF_INET, &address); }

const char *inet6_ntoa_r(const std::uint8_t *octets) { return address_text(AF_INET6, octets); }

const char *ip_addr_string(const ip_prefix *prefix) {
    return address_text(prefix->family == IP_FAMILY_IPV4 ? AF_INET : AF_INET6, prefix->octets);
}

std::uint8_t *ip_addr_ptr(ip_prefix *prefix) { return prefix->octets; }

errcode memcpy_s(void *destination, std::size_t size, const void *source, std::size_t count) {
    if (count > size) {
        std::memset(destination, 0, size);
        return ERRCODE_RANGE;
    }
    std::memcpy(destination, source, count);
    return ERRCODE_SUCCESS;
}

errcode strncpy_s(char *destination, std::size_t size, const char *source, std::size_t count) {
    const std::size_t length = strnlen(source, count);
    return memcpy_s(destination, size, source, length) == ERRCODE_SUCCESS
               ? memcpy_s(destination + length, size - length, "", 1)
               : ERRCODE_RANGE;
}

errcode strcmp_s(const char *text, std::size_t, const char *other, int *result) {
    *result = std::strcmp(text, other);
    return ERRCODE_SUCCESS;
}

const char *srv6_util_sid_fmt_str(std::uint32_t) { return "f3216"; }
const char *srv6_util_end_func_str(std::uint32_t) { return "End"; }

errcode nodeid_to_str_external(std::uint32_t node, char *buffer, std::size_t size) {
    platform_fake.size_seen = size;
    std::snprintf(buffer, size, "lc%u", node);
    return platform_fake.node_error;
}

void ifnx_display_namestring(std::uint32_t, char *buffer, std::size_t size, std::uint32_t flags) {
    platform_fake.size_seen = size;
    platform_fake.flags_seen = flags;
    std::snprintf(buffer, size, "%s", platform_fake.interface);
}

const char *interface_name(std::uint32_t, std::uint32_t flags) {
    platform_fake.flags_seen = flags;
    return platform_fake.interface;
}

void kal_time_get_timespec_realtime(std::timespec *now) { *now = platform_fake.now; }

std::uint64_t kal_timespec_to_msec64(const std::timespec *time) {
    return static_cast<std::uint64_t>(time->tv_sec) * 1000 + static_cast<std::uint64_t>(time->tv_nsec) / 1000000;
}

void kal_time_diff(const std::timespec *earlier, const std::timespec *later, std::timespec *difference) {
    difference->tv_sec = later->tv_sec - earlier->tv_sec;
    difference->tv_nsec = later->tv_nsec - earlier->tv_nsec;
    if (difference->tv_nsec < 0) {
        difference->tv_sec -= 1;
        difference->tv_nsec += 1000000000;
    }
}

errcode opstore_string_decode(const char *encoded, char **text, std::size_t *length) {
    if (platform_fake.decode_error == ERRCODE_SUCCESS || platform_fake.failed_decode_leaves_text) {
        *text = heap_text(encoded);
        *length = std::strlen(*text);
    }
    return platform_fake.decode_error;
}

const char *errcode_strerror(errcode code) {
    static char text[32];
    std::snprintf(text, sizeof text, "errcode %u", code);
    return text;
}

void kal_time_msec64_to_timespec(std::uint64_t msec, std::timespec *time) {
    time->tv_sec = static_cast<std::time_t>(msec / 1000);
    time->tv_nsec = static_cast<long>(msec % 1000) * 1000000;
}

void kal_time_format_timespec2(const std::timespec *time, const char *format, int /*mode*/, char *buffer,
                               std::size_t size) {
    std::tm utc{};
    buffer[std::strftime(buffer, size, format, gmtime_r(&time->tv_sec, &utc))] = '\0';
}

const char *sprint_dhms(std::uint32_t seconds) {
    static char text[32];
    std::snprintf(text, sizeof text, "%u s", seconds);
    return text;
}
