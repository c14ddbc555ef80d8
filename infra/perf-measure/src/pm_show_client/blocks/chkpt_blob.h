// SPDX-License-Identifier: Apache-2.0
// What the displays of checkpoint blobs share.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "base/pm_kept_memory.h"
#include "chkpt/chkpt.h"
#include "platform/parcel.h"

// Whether a checkpoint item, null for none, has a blob.
template <class Parcel>
[[nodiscard]] bool pm_has_blob(const Parcel *parcel) {
    return parcel != nullptr && parcel->buf.elements != nullptr && parcel->buf.count != 0;
}

// The record that a blob decodes into. A damaged blob gives what is before the damage. The memory
// of texts and arrays is never freed: the program ends with its display.
template <class Record>
[[nodiscard]] Record pm_decode_blob(const parcel_array<std::uint8_t> &blob,
                                    std::int32_t decode(Record *, const std::uint8_t *, std::uint32_t, ChkptAllocFn,
                                                        void *)) {
    Record record;
    const pm_kept_memory texts_and_arrays;
    static_cast<void>(decode(
        &record, blob.elements, blob.count, [](std::size_t size, void *) { return std::malloc(size); }, nullptr));
    return record;
}
