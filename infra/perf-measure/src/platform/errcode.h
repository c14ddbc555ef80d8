// SPDX-License-Identifier: Apache-2.0
// Error codes of the platform and their texts.
//
// Every platform operation that can fail returns an errcode: 0 is success, every other value
// names one failure. Codes travel unchanged from the operation that fails to the message that
// reports it.
#pragma once

#include <cstdint>

using errcode = std::uint32_t;

inline constexpr errcode ERRCODE_SUCCESS = 0;
inline constexpr errcode ERRCODE_NOT_FOUND = 6;          // the single item asked for is not there
inline constexpr errcode ERRCODE_NO_MEMORY = 12;         // an allocation failed
inline constexpr errcode ERRCODE_INVALID_ARGUMENT = 22;  // an argument outside the contract
inline constexpr errcode ERRCODE_RANGE = 34;             // a bounded copy that does not fit

// State of the process that serves a branch of the database.
inline constexpr errcode OPSTORE_NOT_PUBLISHED = 0x40812a00;  // no process ever served this branch
inline constexpr errcode OPSTORE_UNREACHABLE = 0x40818600;
inline constexpr errcode OPSTORE_STARTING = 0x40818a00;
inline constexpr errcode OPSTORE_STOPPED = 0x40819000;

// The database client itself.
inline constexpr errcode OPSTORE_NO_CLIENT = 0x8081c200;  // no readable store
inline constexpr errcode OPSTORE_DAMAGED = 0x8081c400;    // the store's file contradicts itself
inline constexpr errcode OPSTORE_BUSY = 0x8081c600;       // no reader slot could be had

// The parcel codec.
inline constexpr errcode PARCEL_MALFORMED = 0x40821a00;       // not a parcel, cut short or out of bounds
inline constexpr errcode PARCEL_CHECKSUM = 0x40821c00;        // the bytes are not those that were written
inline constexpr errcode PARCEL_OTHER_TYPE = 0x40821e00;      // holds a record of another type
inline constexpr errcode PARCEL_UNKNOWN_SCHEMA = 0x40822000;  // written with a schema nobody kept
inline constexpr errcode PARCEL_SCHEMA_CHANGED = 0x40822200;  // a field changed its kind since it was written
inline constexpr errcode PARCEL_BAD_DESCRIPTOR = 0x40822400;  // the descriptor's schema or layout is wrong

// Text of a code. Never null; a code without a text of its own gives "Unknown error".
// The text is constant and never freed.
[[nodiscard]] const char *errcode_strerror(errcode code);
