// A recursive-descent parser of the schema notation. See parcel_notation.h.
#include "platform/local/codec/parcel_notation.h"

#include <charconv>
#include <unordered_map>

namespace parcel_notation {

namespace {

constexpr std::size_t MAX_NESTING = 16;  // of p( and a( in one field
constexpr std::size_t MAX_DEFINITIONS = 4096;
constexpr std::uint32_t MAX_COUNT = 65536;  // of nA( and nx%

class parser {
public:
    parser(std::string_view text, schema *out) : text_(text), out_(out) {}

    bool run(std::string *error) {
        while (error_.empty() && at_ < text_.size()) {
            parse_definition();
        }
        if (error_.empty() && out_->definitions.empty()) {
            fail("no definition");
        }
        if (error_.empty()) {
            resolve_references();
        }
        if (!error_.empty() && error != nullptr) {
            *error = error_;
        }
        return error_.empty();
    }

private:
    void fail(std::string_view what) {
        if (error_.empty()) {
            error_ = std::string(what) + " at byte " + std::to_string(at_);
        }
    }

    [[nodiscard]] bool looking_at(std::string_view token) const { return text_.substr(at_).starts_with(token); }

    bool accept(std::string_view token) {
        if (!looking_at(token)) {
            return false;
        }
        at_ += token.size();
        return true;
    }

    void expect(std::string_view token) {
        if (!accept(token)) {
            fail("expected '" + std::string(token) + "'");
        }
    }

    std::uint32_t parse_number() {
        std::uint32_t value = 0;
        const char *begin = text_.data() + at_;
        const auto [end, failure] = std::from_chars(begin, text_.data() + text_.size(), value);
        if (failure != std::errc{}) {
            fail("expected a number");
            return 0;
        }
        at_ += static_cast<std::size_t>(end - begin);
        return value;
    }

    // A non-empty text up to `stop`, which is consumed.
    std::string_view parse_name(char stop) {
        const std::size_t end = text_.find(stop, at_);
        if (end == std::string_view::npos || end == at_) {
            fail("expected a name");
            return {};
        }
        const std::string_view name = text_.substr(at_, end - at_);
        at_ = end + 1;
        return name;
    }

    type_index add(const type &type) {
        out_->types.push_back(type);
        return static_cast<type_index>(out_->types.size() - 1);
    }

    type_index parse_type(std::size_t nesting = 0) {
        type result;
        if (nesting > MAX_NESTING) {
            fail("nested too deeply");
            return 0;
        }
        if (at_ >= text_.size()) {
            fail("expected a type");
            return 0;
        }
        const char letter = text_[at_];
        if (letter >= '0' && letter <= '9') {
            return parse_counted(nesting);
        }
        ++at_;
        switch (letter) {
        case 'D':
            result.what = kind::u32;
            result.format = accept("%h") ? 'h' : '\0';
            break;
        case 'H': result.what = kind::u64; break;
        case 'I': result.what = kind::u16; break;
        case 'C': result.what = kind::u8; break;
        case 'c': result.what = kind::opaque; break;
        case 'b': result.what = kind::boolean; break;
        case 's': result.what = kind::text; break;
        case 'N': result.what = kind::ipv4; break;
        case '[':
            result.what = kind::enumeration;
            result.name = parse_name(']');
            expect("e");
            break;
        case '$':
            result.what = kind::reference;
            result.number = parse_number();
            break;
        case 'p':
        case 'a':
            result.what = letter == 'p' ? kind::optional : kind::array;
            expect("(");
            result.element = parse_type(nesting + 1);
            expect(")");
            break;
        default: --at_; fail("unknown type");
        }
        return add(result);
    }

    // "nx%f" or "nA(T)"
    type_index parse_counted(std::size_t nesting) {
        type result;
        result.count = parse_number();
        if (result.count == 0 || result.count > MAX_COUNT) {
            fail("count out of range");
            return 0;
        }
        if (accept("x%")) {
            result.what = kind::bytes;
            if (at_ >= text_.size() || (text_[at_] != 's' && text_[at_] != 'm')) {
                fail("unknown format of bytes");
                return 0;
            }
            result.format = text_[at_++];
            if (result.count != (result.format == 's' ? 16U : 6U)) {
                fail("the format does not fit the number of bytes");
            }
        } else {
            result.what = kind::fixed_array;
            expect("A(");
            result.element = parse_type(nesting + 1);
            expect(")");
        }
        return add(result);
    }

    void parse_union(definition *into) {
        into->what = form::choice;
        expect("<");
        into->discriminator = parse_name(',');
        into->discriminator_type = parse_name('>');
        while (error_.empty() && !accept(")")) {
            expect(",");
            if (accept("?:v")) {  // every value not listed: what an unlisted value means anyway
                continue;
            }
            field arm;
            arm.value = parse_number();
            expect(":");
            if (accept("v")) {
                arm.empty = true;
            } else {
                expect("{");
                arm.name = parse_name('}');
                arm.marked = accept("P");
                arm.type = parse_type();
            }
            into->fields.push_back(arm);
        }
    }

    void parse_definition() {
        definition next;
        expect("$");
        next.number = parse_number();
        expect("=");
        if (accept("?(")) {
            parse_union(&next);
        } else if (looking_at("{") || looking_at(";")) {
            while (error_.empty() && accept("{")) {
                field member;
                member.name = parse_name('}');
                member.marked = accept("P");
                member.type = parse_type();
                next.fields.push_back(member);
            }
        } else {
            next.what = form::scalar;
            next.scalar = parse_type();
        }
        expect(";");
        if (out_->definitions.size() >= MAX_DEFINITIONS) {
            fail("too many definitions");
        }
        out_->definitions.push_back(std::move(next));
    }

    void resolve_references() {
        std::unordered_map<std::uint32_t, definition_index> by_number;
        for (const definition &each : out_->definitions) {
            if (!by_number.emplace(each.number, static_cast<definition_index>(&each - out_->definitions.data()))
                     .second) {
                error_ = "$" + std::to_string(each.number) + " is defined twice";
                return;
            }
            if (each.what == form::scalar && scalar_size(out_->types[each.scalar]) == 0) {
                error_ = "$" + std::to_string(each.number) + " is neither a record, a union nor a scalar";
                return;
            }
        }
        for (type &each : out_->types) {
            if (each.what != kind::reference) {
                continue;
            }
            const auto found = by_number.find(each.number);
            if (found == by_number.end()) {
                error_ = "$" + std::to_string(each.number) + " is not defined";
                return;
            }
            each.definition = found->second;
        }
    }

    std::string_view text_;
    schema *out_;
    std::size_t at_ = 0;
    std::string error_;
};

}  // namespace

bool parse(std::string_view text, schema *out, std::string *error) { return parser(text, out).run(error); }

const type &resolve(const schema &schema, type_index index) {
    const type &named = schema.types[index];
    if (named.what == kind::reference) {
        const definition &target = schema.definitions[named.definition];
        if (target.what == form::scalar) {
            return schema.types[target.scalar];
        }
    }
    return named;
}

std::uint32_t scalar_size(const type &type) {
    switch (type.what) {
    case kind::u32:
    case kind::boolean:
    case kind::ipv4:
    case kind::enumeration: return 4;
    case kind::u64: return 8;
    case kind::u16: return 2;
    case kind::u8:
    case kind::opaque: return 1;
    case kind::bytes: return type.count;
    default: return 0;
    }
}

std::string notation(const schema &schema, type_index index) {
    const type &type = schema.types[index];
    switch (type.what) {
    case kind::u32: return type.format == 'h' ? "D%h" : "D";
    case kind::u64: return "H";
    case kind::u16: return "I";
    case kind::u8: return "C";
    case kind::opaque: return "c";
    case kind::boolean: return "b";
    case kind::text: return "s";
    case kind::ipv4: return "N";
    case kind::enumeration: return "[" + std::string(type.name) + "]e";
    case kind::bytes: return std::to_string(type.count) + "x%" + type.format;
    case kind::reference: return "$" + std::to_string(type.number);
    case kind::optional: return "p(" + notation(schema, type.element) + ")";
    case kind::array: return "a(" + notation(schema, type.element) + ")";
    case kind::fixed_array: return std::to_string(type.count) + "A(" + notation(schema, type.element) + ")";
    }
    return {};
}

}  // namespace parcel_notation
