// SPDX-License-Identifier: Apache-2.0
// Decodes a blob for tests: from memory of exactly its size, so that a sanitizer sees any byte read
// behind it, and into a record that is not zero before.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "chkpt/chkpt.h"
#include "tests/chkpt/blob.h"
#include "tests/chkpt/test_memory.h"

// Both kinds of decoder under one form; the one without memory ignores it.
template <class Record>
using decoder_with_memory = std::int32_t(Record *, const std::uint8_t *, std::uint32_t, ChkptAllocFn, void *);
template <class Record>
using decoder_without_memory = std::int32_t(Record *, const std::uint8_t *, std::uint32_t);

template <class Record>
struct decoded {
    std::int32_t status = 1;
    Record record;
    std::shared_ptr<test_memory> memory;
};

namespace decoded_detail {

template <class Record, class Decode>
decoded<Record> run(const blob &input, std::size_t fail_at, Decode decode) {
    decoded<Record> result;
    std::memset(static_cast<void *>(&result.record), 0x01, sizeof result.record);
    result.memory = std::make_shared<test_memory>(fail_at);
    const std::vector<std::uint8_t> exact(input.bytes);
    result.status = decode(&result.record, exact.data(), static_cast<std::uint32_t>(exact.size()), *result.memory);
    return result;
}

}  // namespace decoded_detail

template <class Record>
decoded<Record> decode(decoder_with_memory<Record> decoder, const blob &input,
                       std::size_t fail_at = test_memory::NEVER) {
    return decoded_detail::run<Record>(
        input, fail_at, [decoder](Record *record, const std::uint8_t *data, std::uint32_t length, test_memory &memory) {
            return decoder(record, data, length, test_memory::allocate, &memory);
        });
}

template <class Record>
decoded<Record> decode(decoder_without_memory<Record> decoder, const blob &input,
                       std::size_t fail_at = test_memory::NEVER) {
    return decoded_detail::run<Record>(
        input, fail_at, [decoder](Record *record, const std::uint8_t *data, std::uint32_t length, test_memory &) {
            return decoder(record, data, length);
        });
}
