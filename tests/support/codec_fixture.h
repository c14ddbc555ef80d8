// SPDX-License-Identifier: Apache-2.0
// What the codec's tests share: decoded records that free themselves, resealed parcels, and record
// types and schemas that only exist for tests.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "platform/local/codec/checksum.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/codec/parcel_plan.h"

using parcel = std::vector<std::uint8_t>;

// A decoded record that frees what hangs off it.
class decoded_record {
public:
    decoded_record(const parcel &bytes, const parcel_descriptor *descriptor)
        : descriptor_(descriptor),
          bytes_(descriptor->layout[0].size / 8 + 1, 0xA5A5A5A5A5A5A5A5ULL),
          code_(parcel_decode(bytes.data(), static_cast<std::uint32_t>(bytes.size()), bytes_.data(), descriptor)) {}
    ~decoded_record() { parcel_free_indirections(bytes_.data(), descriptor_); }
    decoded_record(const decoded_record &) = delete;
    decoded_record &operator=(const decoded_record &) = delete;

    [[nodiscard]] errcode code() const { return code_; }
    [[nodiscard]] const void *data() const { return bytes_.data(); }
    template <class Record>
    [[nodiscard]] const Record &as() const {
        return *static_cast<const Record *>(data());
    }
    [[nodiscard]] bool all_zero() const {
        const auto *begin = reinterpret_cast<const std::uint8_t *>(bytes_.data());
        return std::all_of(begin, begin + descriptor_->layout[0].size, [](std::uint8_t byte) { return byte == 0; });
    }

private:
    const parcel_descriptor *descriptor_;
    std::vector<std::uint64_t> bytes_;
    errcode code_;
};

inline parcel encode(const void *record, const parcel_descriptor *descriptor) {
    parcel bytes;
    EXPECT_EQ(parcel_encode(record, descriptor, &bytes), ERRCODE_SUCCESS);
    return bytes;
}

// Sets the checksum of bytes that a test has changed, as an attacker would.
inline void reseal(parcel *bytes) {
    const std::uint64_t sum = checksum(bytes->data() + 12, bytes->size() - 12);
    std::memcpy(bytes->data() + 4, &sum, sizeof sum);
}

// Everything after the header replaced by `fields`.
inline parcel with_fields(const parcel_descriptor *descriptor, const parcel &fields) {
    const std::vector<std::uint64_t> zero(descriptor->layout[0].size / 8 + 1);
    parcel bytes = encode(zero.data(), descriptor);
    parcel_header header{};
    EXPECT_EQ(parcel_read_header(bytes.data(), bytes.size(), &header), ERRCODE_SUCCESS);
    bytes.resize(header.size);
    bytes.insert(bytes.end(), fields.begin(), fields.end());
    reseal(&bytes);
    return bytes;
}

// Schemas of other versions, by fingerprint.
inline std::map<std::uint64_t, std::string> &kept_schemas() {
    static std::map<std::uint64_t, std::string> schemas;
    return schemas;
}

inline bool find_kept(std::uint64_t fingerprint, std::string *schema) {
    const auto found = kept_schemas().find(fingerprint);
    if (found == kept_schemas().end()) {
        return false;
    }
    *schema = found->second;
    return true;
}

// A type of its own for tests. Descriptors are for ever: the codec remembers what it made of them.
struct test_type {
    std::string schema;
    std::vector<std::vector<std::uint64_t>> offsets;
    std::vector<parcel_layout> layout;
    parcel_descriptor descriptor{};
};

struct test_layout {
    std::uint64_t number;  // of the type; of the first, how many follow
    std::uint64_t size;
    std::vector<std::uint64_t> offsets;
};

inline const parcel_descriptor *make_type(const char *schema, const std::vector<test_layout> &layouts) {
    static std::deque<test_type> types;
    test_type &type = types.emplace_back();
    type.schema = schema;
    type.offsets.reserve(layouts.size());
    for (const test_layout &each : layouts) {
        type.offsets.push_back(each.offsets);
        type.layout.push_back({each.number, each.size, type.offsets.back().data()});
    }
    type.descriptor = {1, "pm_test_parcel", 1, 0, "test", type.layout.data(), type.schema.c_str(), ""};
    kept_schemas()[parcel_plan::fingerprint(type.schema)] = type.schema;
    parcel_set_schema_source(find_kept);
    return &type.descriptor;
}

// A type of one record.
inline const parcel_descriptor *make_type(const char *schema, std::uint64_t size,
                                          const std::vector<std::uint64_t> &offsets) {
    return make_type(schema, {{0, size, offsets}});
}
