// SPDX-License-Identifier: Apache-2.0
// Records as JSON: for every program that shows records or takes them, whatever keeps them.
//
//     std::string text;
//     if (pm_error error = append_record(&record, pm_values_parcel_descriptor(), json_fields::all, &text)) ...
//
//     record_json_reader reader;
//     const void *read = nullptr;
//     if (pm_error error = reader.read(text, pm_values_parcel_descriptor(), &read)) ...
//
// A record is an object whose members are the fields of its schema, by their names and in their order:
//
//     D, H, I, C, D%h, [enum]e   a number; above 2^53 text, so that every JSON reader keeps it
//     b                          true or false
//     s                          text, or null for an absent one
//     N, 16x%s, 6x%m             text of an IPv4, IPv6 or MAC address
//     p(T)                       the value of T, or null for absent
//     a(T), nA(T)                an array; a(c) is text of hexadecimal digits
//     $N                         an object
//     union                      an object with the discriminator and the selected arm by their names
//     address                    address text, or null for none
//
// What is read may be written more freely: members in any order, numbers as text in C notation, MAC
// addresses in both notations, an address as a union.
#pragma once

#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/record_memory.h"
#include "platform/parcel.h"

namespace perf_store {

// Which fields to write. One that is zero, false, absent or empty reads back the same when it is left
// out, which makes data sets several times smaller.
enum class json_fields { set, all };

// Appends the JSON object of a record, without a newline. Reading it back gives the same record. The one
// error is a text that is not UTF-8, which JSON cannot hold; then nothing is appended.
[[nodiscard]] pm_error append_record(const void *record, const parcel_descriptor *type, json_fields fields,
                                     std::string *out);

// JSON texts to records. One reader for many texts saves allocations.
class record_json_reader {
public:
    // Reads the JSON object `text`, which may have white space around it, into a zeroed record. `*record`
    // and all that it points to belong to the reader, until the next call.
    //
    // The error names the member: "CandidatePaths[2].Preference: 4294967296 is out of range for D". Errors are
    // a text that is not one JSON document, an unknown or repeated member, a value of the wrong kind or
    // out of range, and records nested too deeply.
    [[nodiscard]] pm_error read(std::string_view text, const parcel_descriptor *type, const void **record);

    // The byte of the text at which the last error was found.
    [[nodiscard]] std::size_t error_offset() const { return path_.error_offset(); }

private:
    std::string text_;  // terminated
    json_document document_;
    member_path path_;
    record_memory memory_;
};

}  // namespace perf_store
