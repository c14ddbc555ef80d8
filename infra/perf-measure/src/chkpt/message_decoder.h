// SPDX-License-Identifier: Apache-2.0
// The one decoder of checkpoint messages. It is a template over a message's description, the list of
// its record's members: what a member is says how its field is read. For the files of chkpt only.
#pragma once

#include <cstring>
#include <type_traits>
#include <utility>

#include "chkpt/chkpt.h"
#include "chkpt/wire.h"

namespace chkpt_decoder {

using chkpt_wire::input;

// A message: its fields as members of its record, field 1 first.
template <auto... Members>
struct fields {
    using indices = std::make_integer_sequence<unsigned, sizeof...(Members)>;
};

// The description of each record's message; chkpt.cc has one for each.
template <class Record>
struct message;

struct memory {
    ChkptAllocFn alloc;
    void *context;
};

// What a member is.
template <class Member>
inline constexpr bool is_number = std::is_integral_v<Member>;
template <class Member>
inline constexpr bool is_array = false;
template <class Element>
inline constexpr bool is_array<chkpt_array<Element>> = true;

template <class Member>
inline constexpr chkpt_wire::type wire_type = is_number<Member> ? chkpt_wire::VARINT : chkpt_wire::LENGTH_DELIMITED;
template <class Element>
inline constexpr chkpt_wire::type wire_type<chkpt_array<Element>> = wire_type<Element>;

template <class Record>
[[nodiscard]] chkpt_status decode_message(Record &record, input from, const memory &memory);

// The content of one field, after its tag --------------------------------------------------------

template <class Number>
[[nodiscard]] chkpt_status decode_number(Number &member, input &from) {
    // A flag is what a 32-bit number is: a bit above those does not set it.
    std::conditional_t<sizeof(Number) == sizeof(std::uint64_t), std::uint64_t, std::uint32_t> number = 0;
    if (!chkpt_wire::read_varint(from, number)) {
        return CHKPT_TRUNCATED;
    }
    member = static_cast<Number>(number);
    return CHKPT_DECODED;
}

[[nodiscard]] inline chkpt_status decode_text(char *&member, input &from, bool seen, const memory &memory) {
    input text{};
    if (!chkpt_wire::take(from, text) || seen) {
        return CHKPT_TRUNCATED;
    }
    const std::size_t length = text.left();
    char *const copy =
        memory.alloc != nullptr ? static_cast<char *>(memory.alloc(length + 1, memory.context)) : nullptr;
    if (copy == nullptr) {
        return CHKPT_NO_MEMORY;
    }
    std::memcpy(copy, text.at, length);
    copy[length] = '\0';
    member = copy;
    return CHKPT_DECODED;
}

template <class Record>
[[nodiscard]] chkpt_status decode_nested(Record &member, input &from, const memory &memory) {
    input content{};
    if (!chkpt_wire::take(from, content)) {
        return CHKPT_TRUNCATED;
    }
    member = {};  // it may come again; the last one counts
    return decode_message(member, content, memory);
}

// Arrays ------------------------------------------------------------------------------------------

template <class Element>
[[nodiscard]] chkpt_status decode_element(Element &element, input &from, const memory &memory) {
    if constexpr (is_number<Element>) {
        return decode_number(element, from);
    } else {
        return decode_nested(element, from, memory);
    }
}

// Passes over an element by the type of the array, whatever its tag says.
template <class Element>
[[nodiscard]] bool skip_element(input &from) {
    if constexpr (is_number<Element>) {
        std::uint32_t number = 0;
        return chkpt_wire::read_varint(from, number);
    } else {
        input content{};
        return chkpt_wire::take(from, content);
    }
}

// Counts the elements from the first one's content to the last one of the same run;
// false when the bytes end inside an element or a tag.
template <class Element>
[[nodiscard]] bool count_run(input from, std::uint32_t number, std::uint32_t &count) {
    count = 0;
    for (chkpt_wire::tag next{number << chkpt_wire::TYPE_BITS}; next.number() == number;) {
        if (!skip_element<Element>(from)) {
            return false;
        }
        ++count;
        if (from.empty()) {
            return true;
        }
        if (!chkpt_wire::read_varint(from, next.value)) {
            return false;
        }
    }
    return true;
}

template <class Element>
[[nodiscard]] chkpt_status decode_array(chkpt_array<Element> &member, input &from, std::uint32_t number, bool seen,
                                        const memory &memory) {
    if (seen) {
        return CHKPT_TRUNCATED;
    }
    if (memory.alloc == nullptr) {
        return CHKPT_NO_MEMORY;
    }
    std::uint32_t count = 0;
    if (!count_run<Element>(from, number, count)) {
        return CHKPT_TRUNCATED;
    }
    auto *const elements = static_cast<Element *>(memory.alloc(count * sizeof(Element), memory.context));
    if (elements == nullptr) {
        return CHKPT_NO_MEMORY;
    }
    std::memset(elements, 0, count * sizeof(Element));  // what follows a damaged element stays zero
    member = {elements, count};
    for (std::uint32_t i = 0; i < count; ++i) {
        chkpt_wire::tag tag{wire_type<Element>};  // of the first element, which was read
        if (i != 0 && !chkpt_wire::read_varint(from, tag.value)) {
            return CHKPT_TRUNCATED;
        }
        if (tag.type() != wire_type<Element>) {
            return CHKPT_UNEXPECTED_TYPE;
        }
        if (const chkpt_status status = decode_element(elements[i], from, memory); status != CHKPT_DECODED) {
            return status;
        }
    }
    return CHKPT_DECODED;
}

// Messages ----------------------------------------------------------------------------------------

[[nodiscard]] inline chkpt_status skip_unknown(input &from, std::uint32_t type) {
    std::uint32_t length = 0;
    switch (type) {
    case chkpt_wire::VARINT: return chkpt_wire::read_varint(from, length) ? CHKPT_DECODED : CHKPT_TRUNCATED;
    case chkpt_wire::FIXED64: chkpt_wire::skip(from, sizeof(std::uint64_t)); return CHKPT_DECODED;
    case chkpt_wire::FIXED32: chkpt_wire::skip(from, sizeof(std::uint32_t)); return CHKPT_DECODED;
    case chkpt_wire::LENGTH_DELIMITED:
        if (!chkpt_wire::read_varint(from, length)) {
            return CHKPT_TRUNCATED;
        }
        chkpt_wire::skip(from, length);  // past the end is the end, unlike in a known field
        return CHKPT_DECODED;
    default: return CHKPT_INVALID_TYPE;
    }
}

// Decodes field `Number` of a record, which `member` holds.
template <unsigned Number, class Record, class Member>
[[nodiscard]] inline chkpt_status decode_field(Record &record, Member &member, std::uint32_t type, input &from,
                                               const memory &memory) {
    if (type != wire_type<Member>) {
        return CHKPT_UNEXPECTED_TYPE;
    }
    const bool seen = chkpt_has(record, Number);
    chkpt_status status = CHKPT_DECODED;
    if constexpr (is_number<Member>) {
        status = decode_number(member, from);
    } else if constexpr (std::is_same_v<Member, char *>) {
        status = decode_text(member, from, seen, memory);
    } else if constexpr (is_array<Member>) {
        status = decode_array(member, from, Number, seen, memory);
    } else {
        status = decode_nested(member, from, memory);
    }
    if (status == CHKPT_DECODED) {
        record.presence |= 1U << (Number - 1);
    }
    return status;
}

// Decodes the fields one after another. They come in the order of their numbers as a rule, so each is
// looked for after the last one; a field that is not there starts another round from field 1.
template <class Record, auto... Members, unsigned... Index>
[[nodiscard]] inline chkpt_status decode_fields(Record &record, input from, const memory &memory, fields<Members...>,
                                                std::integer_sequence<unsigned, Index...>) {
    chkpt_wire::tag next{};
    chkpt_status status = CHKPT_DECODED;
    // False at the end of the message, where `status` is the result.
    const auto read_tag = [&] {
        if (from.empty()) {
            return false;
        }
        if (!chkpt_wire::read_varint(from, next.value)) {
            status = CHKPT_TRUNCATED;
            return false;
        }
        return true;
    };
    bool known = false;
    const auto decode_if_next = [&]<unsigned Number>(auto &member, std::integral_constant<unsigned, Number>) {
        if (next.number() != Number) {
            return true;
        }
        known = true;
        status = decode_field<Number>(record, member, next.type(), from, memory);
        return status == CHKPT_DECODED && read_tag();
    };
    for (bool more = read_tag(); more;) {
        known = false;
        more = (decode_if_next(record.*Members, std::integral_constant<unsigned, Index + 1>{}) && ...);
        if (!known) {
            status = skip_unknown(from, next.type());
            more = status == CHKPT_DECODED && read_tag();
        }
    }
    return status;
}

// Decodes a message into a record that is all zero.
template <class Record>
chkpt_status decode_message(Record &record, input from, const memory &memory) {
    using members = typename message<Record>::members;
    return decode_fields(record, from, memory, members{}, typename members::indices{});
}

}  // namespace chkpt_decoder
