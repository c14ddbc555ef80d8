// SPDX-License-Identifier: Apache-2.0
// Records of any type for tests: filled at random from the type's schema, and compared field by
// field. Works from the type's description, independently of the codec's plans.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/local/codec/parcel_notation.h"
#include "platform/parcel.h"

// A record type's description, ready to walk a structure.
class record_type {
public:
    explicit record_type(const parcel_descriptor *descriptor);

    [[nodiscard]] const parcel_notation::data_type &record() const { return *schema_.definitions.front(); }

private:
    parcel_notation::schema schema_;
};

// A record whose every field has a random value; arrays have 0 to 3 elements, optionals are absent
// half the time, unions take every discriminator including one that no arm lists.
class random_record {
public:
    random_record(const parcel_descriptor *descriptor, std::uint64_t seed);

    [[nodiscard]] void *data() const { return data_; }

private:
    void *allocate(std::size_t size);
    std::uint64_t below(std::uint64_t bound) { return random_() % bound; }
    void fill(const parcel_notation::data_type &type, std::uint8_t *at, int depth);
    void fill_union(const parcel_notation::data_type &type, std::uint8_t *at, int depth);

    record_type type_;
    std::mt19937_64 random_;
    std::vector<std::unique_ptr<std::uint64_t[]>> blocks_;
    void *data_;
};

// Where two records of a type differ first, as a member path; empty when they are the same.
[[nodiscard]] std::string first_difference(const parcel_descriptor *descriptor, const void *a, const void *b);
