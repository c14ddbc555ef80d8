// SPDX-License-Identifier: Apache-2.0
// Building records of a synthetic data set.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "perf-store/datasets/record_memory.h"
#include "platform/parcel.h"
#include "schema/pm_records.h"

namespace perf_store {

// Memory of one object's records, zeroed, used again for the next object.
class item_memory {
public:
    template <class T>
    [[nodiscard]] T *make() {
        return reinterpret_cast<T *>(memory_.allocate(sizeof(T)));
    }
    template <class T>
    [[nodiscard]] T *keep(const T &value) {
        T *kept = make<T>();
        *kept = value;
        return kept;
    }
    // An array of `count` zeroed elements.
    template <class T>
    [[nodiscard]] parcel_array<T> array(std::uint32_t count) {
        if (count == 0) {
            return {0, nullptr};
        }
        return {count, reinterpret_cast<T *>(memory_.allocate(sizeof(T) * std::size_t{count}))};
    }
    template <class T>
    [[nodiscard]] parcel_array<T> array_of(std::initializer_list<T> values) {
        parcel_array<T> result = array<T>(static_cast<std::uint32_t>(values.size()));
        T *to = result.elements;
        for (const T &value : values) {
            *to++ = value;
        }
        return result;
    }
    [[nodiscard]] const char *text(std::string_view value);
    void reset() { memory_.reset(); }

private:
    record_memory memory_;
};

// Texts of names: gen_text("eth0/", card, "/0/", port).
template <class... Parts>
[[nodiscard]] std::string gen_text(const Parts &...parts);

// Addresses, from numbers in the host's byte order.
[[nodiscard]] std::uint32_t gen_ipv4(std::uint32_t address);
[[nodiscard]] pm_ipv6 gen_ipv6(std::uint64_t network, std::uint64_t host);
[[nodiscard]] pm_record_address gen_address(std::uint32_t ipv4_address);
[[nodiscard]] pm_record_address gen_address(const pm_ipv6 &address);
[[nodiscard]] pm_record_address gen_no_address();
[[nodiscard]] std::string gen_address_text(const pm_record_address &address);

namespace detail {
void append_part(std::string_view part, std::string *out);
void append_part(std::uint64_t part, std::string *out);
inline void append_part(std::uint32_t part, std::string *out) { append_part(std::uint64_t{part}, out); }
inline void append_part(const char *part, std::string *out) { append_part(std::string_view(part), out); }
inline void append_part(const std::string &part, std::string *out) { append_part(std::string_view(part), out); }
}  // namespace detail

template <class... Parts>
std::string gen_text(const Parts &...parts) {
    std::string result;
    (detail::append_part(parts, &result), ...);
    return result;
}

}  // namespace perf_store
