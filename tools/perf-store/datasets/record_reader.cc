// See record_reader.h.
#include "perf-store/datasets/record_reader.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <limits>

#include "perf-store/datasets/value_text.h"
#include "platform/local/store/writer.h"

namespace perf_store {

using parcel_notation::kind;

namespace {

constexpr std::size_t BLOCK_SIZE = 64 * 1024;
constexpr std::size_t MAX_FIELDS = 256;   // of one record
constexpr std::uint32_t MAX_DEPTH = 256;  // of records within one another; the codec's own limit is lower
constexpr std::uint32_t IPV4_VALUE = 0;   // discriminators of an address
constexpr std::uint32_t IPV6_VALUE = 1;
constexpr std::uint32_t NONE_VALUE = 2;

template <class T>
void put(std::uint8_t *to, T value) {
    std::memcpy(to, &value, sizeof value);
}

// A number of 1, 2, 4 or 8 bytes.
void put_unsigned(std::uint8_t *to, std::uint64_t value, std::uint32_t size) { std::memcpy(to, &value, size); }

std::uint64_t largest_of(std::uint32_t size) {
    return size == sizeof(std::uint64_t) ? ~0ULL : (1ULL << (8 * size)) - 1;
}

}  // namespace

std::uint8_t *record_memory::allocate(std::size_t size) {
    size = (size + 7) / 8 * 8;
    while (current_ < blocks_.size() && size > blocks_[current_].size - used_) {
        ++current_;
        used_ = 0;
    }
    if (current_ == blocks_.size()) {
        const std::size_t block_size = std::max(BLOCK_SIZE, size);
        blocks_.push_back({std::make_unique_for_overwrite<std::uint64_t[]>(block_size / 8), block_size});
    }
    auto *result = reinterpret_cast<std::uint8_t *>(blocks_[current_].bytes.get()) + used_;
    std::memset(result, 0, size);
    used_ += size;
    return result;
}

void record_memory::reset() {
    current_ = 0;
    used_ = 0;
}

void *record_reader::read(const json_node &node, const record_shape &shape) {
    depth_ = 0;
    std::uint8_t *record = memory_->allocate(shape.size);
    read_record(node, shape, record);
    return record;
}

void record_reader::require(const json_node &node, json_kind wanted) {
    if (node.kind != wanted) {
        fail(node, std::string("expected ") + json_kind_name(wanted) + ", found " + json_kind_name(node.kind));
    }
}

void record_reader::out_of_range(const json_node &node, std::string_view type) const {
    fail(node, excerpt(node.text) + " is out of range for " + std::string(type));
}

// The integer of a number or of text in C notation, as 64 bits.
std::uint64_t record_reader::integer(const json_node &node, std::string_view type, bool *negative) {
    if (node.kind != json_kind::number && node.kind != json_kind::text) {
        fail(node, std::string("expected a number, found ") + json_kind_name(node.kind));
    }
    std::uint64_t value = 0;
    switch (read_integer(node.text, &value, negative)) {
    case number_result::ok: return value;
    case number_result::out_of_range: out_of_range(node, type);
    case number_result::not_a_number: break;
    }
    fail(node, (node.text.empty() ? "empty text" : excerpt(node.text)) + " is not an integer");
}

std::uint64_t record_reader::read_unsigned(const json_node &node, std::uint64_t largest, std::string_view type) {
    bool negative = false;
    const std::uint64_t value = integer(node, type, &negative);
    if (negative || value > largest) {
        out_of_range(node, type);
    }
    return value;
}

void record_reader::read_enumeration(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    bool negative = false;
    const std::uint64_t value = integer(node, shape.notation, &negative);
    const auto number = static_cast<std::int64_t>(value);
    const bool fits = negative ? number >= std::numeric_limits<std::int32_t>::min()
                               : value <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
    if (!fits) {
        out_of_range(node, shape.notation);
    }
    put(to, static_cast<std::int32_t>(number));
}

bool record_reader::read_boolean(const json_node &node) {
    require(node, json_kind::boolean);
    return node.value;
}

std::string_view record_reader::read_text(const json_node &node) {
    require(node, json_kind::text);
    if (node.text.find('\0') != std::string_view::npos) {
        fail(node, "text holds a zero byte");
    }
    return node.text;
}

const char *record_reader::keep_text(const json_node &node) {
    const std::string_view text = read_text(node);
    std::uint8_t *copy = memory_->allocate(text.size() + 1);
    std::memcpy(copy, text.data(), text.size());
    return reinterpret_cast<const char *>(copy);
}

void record_reader::read_record(const json_node &node, const record_shape &shape, std::uint8_t *to) {
    if (is_union(shape)) {
        read_union(node, shape, to);
        return;
    }
    require(node, json_kind::object);
    if (++depth_ > MAX_DEPTH) {
        fail(node, store::TOO_DEEP);
    }
    std::bitset<MAX_FIELDS> seen;
    std::size_t expected = 0;  // members mostly come in schema order
    const json_node *member = document_->inside(node);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        const json_node &value = member[1];
        path_->enter(member->text);
        if (expected >= shape.fields.size() || shape.fields[expected].name != member->text) {
            const field_shape *found = shape.find(member->text, expected);
            if (found == nullptr) {
                fail(*member, "unknown field");
            }
            expected = static_cast<std::size_t>(found - shape.fields.data());
        }
        if (seen[expected]) {
            fail(*member, "given twice");
        }
        seen[expected] = true;
        const field_shape &field = shape.fields[expected++];
        read_value(value, *field.type, to + field.offset);
        path_->leave();
        member = document_->behind(value);
    }
    --depth_;
}

// An object with the discriminator and the arm that it selects.
void record_reader::read_union(const json_node &node, const record_shape &shape, std::uint8_t *to) {
    if (is_address(shape) && node.kind != json_kind::object) {
        read_address(node, shape, to);
        return;
    }
    require(node, json_kind::object);
    const json_node *discriminator = nullptr;
    const json_node *content = nullptr;
    const json_node *content_name = nullptr;
    const json_node *member = document_->inside(node);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        const bool selects = member->text == shape.discriminator;
        const json_node *&place = selects ? discriminator : content;
        path_->enter(member->text);
        if (!selects && (member->text.empty() || shape.find(member->text) == nullptr)) {
            fail(*member, "unknown field");
        }
        if (place != nullptr) {
            fail(*member, selects ? "given twice" : "a union has one arm only");
        }
        path_->leave();
        place = &member[1];
        content_name = selects ? content_name : member;
        member = document_->behind(member[1]);
    }
    if (discriminator == nullptr) {
        if (content != nullptr) {
            path_->enter(content_name->text);
            fail(*content_name, "needs " + std::string(shape.discriminator) + " beside it");
        }
        return;
    }
    path_->enter(shape.discriminator);
    bool negative = false;
    const std::uint64_t value = integer(*discriminator, "D", &negative);
    const auto number = static_cast<std::int64_t>(value);
    if (negative ? number < std::numeric_limits<std::int32_t>::min() : value > 0xFFFFFFFF) {
        out_of_range(*discriminator, "D");
    }
    put(to, static_cast<std::uint32_t>(value));
    path_->leave();
    if (content == nullptr) {
        return;
    }
    const field_shape *arm = shape.arm_of(static_cast<std::uint32_t>(value));
    path_->enter(content_name->text);
    if (arm == nullptr || arm->name != content_name->text) {
        fail(*content_name, "is not the arm that " + std::string(shape.discriminator) + " " +
                                std::string(discriminator->text) + " selects");
    }
    read_value(*content, *arm->type, to + arm->offset);
    path_->leave();
}

void record_reader::read_address(const json_node &node, const record_shape &shape, std::uint8_t *to) {
    if (node.kind == json_kind::null) {
        put(to, NONE_VALUE);
        return;
    }
    const std::string_view text = read_text(node);
    if (read_ipv4(text, to + shape.arm_of(IPV4_VALUE)->offset)) {
        put(to, IPV4_VALUE);
    } else if (read_ipv6(text, to + shape.arm_of(IPV6_VALUE)->offset)) {
        put(to, IPV6_VALUE);
    } else {
        fail(node, excerpt(text) + " is not an address");
    }
}

void record_reader::read_value(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    switch (shape.what) {
    case kind::u32:
    case kind::u64:
    case kind::u16:
    case kind::u8:
    case kind::opaque: put_unsigned(to, read_unsigned(node, largest_of(shape.size), shape.notation), shape.size); break;
    case kind::enumeration: read_enumeration(node, shape, to); break;
    case kind::boolean: put<std::uint32_t>(to, read_boolean(node) ? 1 : 0); break;
    case kind::text:
        if (node.kind != json_kind::null) {
            put(to, keep_text(node));
        }
        break;
    case kind::ipv4:
    case kind::bytes: read_octets(node, shape, to); break;
    case kind::record:
    case kind::tagged_union: read_record(node, shape, to); break;
    case kind::optional:
        if (node.kind != json_kind::null) {
            std::uint8_t *value = memory_->allocate(shape.element->size);
            read_value(node, *shape.element, value);
            put(to, value);
        }
        break;
    case kind::array: read_array(node, shape, to); break;
    case kind::fixed_array:
        require(node, json_kind::array);
        if (node.count > shape.count) {
            fail(node, std::to_string(node.count) + " elements are too many for " + std::string(shape.notation));
        }
        read_elements(node, *shape.element, to);
        break;
    }
}

void record_reader::read_octets(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    const std::string_view text = read_text(node);
    const auto check = [&](bool good, const char *what) {
        if (!good) {
            fail(node, excerpt(text) + " is not " + what);
        }
    };
    if (shape.what == kind::ipv4) {
        check(read_ipv4(text, to), "an IPv4 address");
    } else if (shape.format == 's') {
        check(read_ipv6(text, to), "an IPv6 address");
    } else {
        check(read_mac(text, to), "a MAC address");
    }
}

void record_reader::read_array(const json_node &node, const value_shape &shape, std::uint8_t *to) {
    if (shape.element->what == kind::opaque) {
        read_opaque(node, to);
        return;
    }
    require(node, json_kind::array);
    if (node.count == 0) {
        return;
    }
    std::uint8_t *elements = memory_->allocate(std::size_t{node.count} * shape.element->size);
    read_elements(node, *shape.element, elements);
    put(to, parcel_array<std::uint8_t>{node.count, elements});
}

// A buffer of bytes, written as hexadecimal digits.
void record_reader::read_opaque(const json_node &node, std::uint8_t *to) {
    const std::string_view text = read_text(node);
    if (text.empty()) {
        return;
    }
    std::uint8_t *bytes = memory_->allocate(text.size() / 2 + 1);
    if (!read_hexadecimal(text, bytes)) {
        fail(node, "expected an even number of hexadecimal digits");
    }
    put(to, parcel_array<std::uint8_t>{static_cast<std::uint32_t>(text.size() / 2), bytes});
}

void record_reader::read_elements(const json_node &node, const value_shape &element, std::uint8_t *to) {
    const json_node *each = document_->inside(node);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        path_->enter(i);
        read_value(*each, element, to + std::size_t{i} * element.size);
        path_->leave();
        each = document_->behind(*each);
    }
}

}  // namespace perf_store
