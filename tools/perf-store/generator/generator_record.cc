// SPDX-License-Identifier: Apache-2.0
// Addresses and texts of records.
#include "perf-store/generator/generator_record.h"

#include <cstring>

#include "perf-store/datasets/value_text.h"

namespace perf_store {

namespace {

template <class Integer>
void put_big_endian(Integer value, std::uint8_t *to) {
    for (std::size_t i = sizeof value; i-- > 0; value = static_cast<Integer>(value >> 8U)) {
        to[i] = static_cast<std::uint8_t>(value);
    }
}

}  // namespace

const char *item_memory::text(std::string_view value) {
    auto *copy = reinterpret_cast<char *>(memory_.allocate(value.size() + 1));
    std::memcpy(copy, value.data(), value.size());
    return copy;
}

std::uint32_t gen_ipv4(std::uint32_t address) {
    std::uint8_t octets[sizeof address];
    put_big_endian(address, octets);
    std::memcpy(&address, octets, sizeof address);
    return address;
}

pm_ipv6 gen_ipv6(std::uint64_t network, std::uint64_t host) {
    pm_ipv6 address{};
    put_big_endian(network, address.octets);
    put_big_endian(host, address.octets + sizeof network);
    return address;
}

pm_record_address gen_address(std::uint32_t ipv4_address) {
    pm_record_address address{};
    address.IPAddressType = PM_RECORD_ADDRESS_IPV4;
    address.IPv4 = gen_ipv4(ipv4_address);
    return address;
}

pm_record_address gen_address(const pm_ipv6 &ipv6_address) {
    pm_record_address address{};
    address.IPAddressType = PM_RECORD_ADDRESS_IPV6;
    address.IPv6 = ipv6_address;
    return address;
}

pm_record_address gen_no_address() {
    pm_record_address address{};
    address.IPAddressType = PM_RECORD_ADDRESS_NONE;
    return address;
}

std::string gen_address_text(const pm_record_address &address) {
    std::string text;
    if (address.IPAddressType == PM_RECORD_ADDRESS_IPV4) {
        append_ipv4(reinterpret_cast<const std::uint8_t *>(&address.IPv4), &text);
    } else if (address.IPAddressType == PM_RECORD_ADDRESS_IPV6) {
        append_ipv6(address.IPv6.octets, &text);
    }
    return text;
}

namespace detail {

void append_part(std::string_view part, std::string *out) { out->append(part); }
void append_part(std::uint64_t part, std::string *out) { append_number(part, out); }

}  // namespace detail

}  // namespace perf_store
