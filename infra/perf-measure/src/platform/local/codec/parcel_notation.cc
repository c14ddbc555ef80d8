// SPDX-License-Identifier: Apache-2.0
// A recursive-descent parser of the schema notation, and look-ups in what it gives.
#include "platform/local/codec/parcel_notation.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>

namespace parcel_notation {

namespace {

constexpr std::size_t MAX_NESTING = 16;  // of p( and a( in one field
constexpr std::size_t MAX_DEFINITIONS = 4096;
constexpr std::uint32_t MAX_COUNT = 65536;  // of nA( and nx%

class parser {
public:
    parser(std::string_view text, schema *out) : text_(text), out_(out) {}

    pm_error run() {
        while (!error_ && at_ < text_.size()) {
            parse_definition();
        }
        if (!error_ && out_->definitions.empty()) {
            fail("no definition");
        }
        if (!error_) {
            index_definitions();
        }
        if (!error_) {
            resolve_references();
        }
        return error_;
    }

private:
    void fail(std::string_view what) { refuse(std::string(what) + " at byte " + std::to_string(at_)); }

    // The first error stays.
    void refuse(std::string what) {
        if (!error_) {
            error_ = pm_error(std::move(what));
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
        const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), value);
        if (error != std::errc{}) {
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

    // Null once an error is known.
    data_type *parse_type(std::size_t nesting = 0) {
        if (nesting > MAX_NESTING) {
            fail("nested too deeply");
            return nullptr;
        }
        if (at_ >= text_.size()) {
            fail("expected a type");
            return nullptr;
        }
        const std::size_t begin = at_;
        data_type *&known = letter_type();
        if (known != nullptr) {
            ++at_;
            return known;
        }
        data_type result;
        if (text_[at_] >= '0' && text_[at_] <= '9') {
            parse_counted(nesting, &result);
        } else if (text_[at_] == '$') {
            ++at_;
            result.number = parse_number();
        } else {
            parse_letter(nesting, &result);
        }
        if (error_) {
            return nullptr;
        }
        result.notation = text_.substr(begin, at_ - begin);
        std::deque<data_type> &to = text_[begin] == '$' ? references_ : out_->types;
        data_type *const made = &to.emplace_back(std::move(result));
        if (made->notation.size() == 1) {
            known = made;
        }
        return made;
    }

    // The type made for a letter that is a type by itself, as most are; all fields of that type share it.
    data_type *&letter_type() {
        static constexpr std::string_view LETTERS = "DHICcbsN";
        static_assert(LETTERS.size() + 1 == sizeof letter_types_ / sizeof *letter_types_);
        const std::size_t letter = std::min(LETTERS.find(text_[at_]), LETTERS.size());
        const bool longer = text_.substr(at_ + 1).starts_with("%h");
        return letter_types_[longer ? LETTERS.size() : letter];  // the last one stays null
    }

    void parse_letter(std::size_t nesting, data_type *into) {
        const auto sized = [&](kind what, std::uint32_t size) {
            into->what = what;
            into->size = size;
        };
        const char letter = text_[at_++];
        switch (letter) {
        case 'D':
            sized(kind::u32, 4);
            accept("%h");
            break;
        case 'H': sized(kind::u64, 8); break;
        case 'I': sized(kind::u16, 2); break;
        case 'C': sized(kind::u8, 1); break;
        case 'c': sized(kind::opaque, 1); break;
        case 'b': sized(kind::boolean, 4); break;
        case 's': sized(kind::text, sizeof(char *)); break;
        case 'N': sized(kind::ipv4, 4); break;
        case '[':
            sized(kind::enumeration, 4);
            into->name = parse_name(']');
            expect("e");
            break;
        case 'p':
        case 'a':
            letter == 'p' ? sized(kind::optional, sizeof(void *)) : sized(kind::array, sizeof(parcel_array<char>));
            expect("(");
            into->element = parse_type(nesting + 1);
            expect(")");
            break;
        default: --at_; fail("unknown type");
        }
    }

    // "nx%f" or "nA(T)"
    void parse_counted(std::size_t nesting, data_type *into) {
        into->count = parse_number();
        if (into->count == 0 || into->count > MAX_COUNT) {
            fail("count out of range");
            return;
        }
        if (!accept("x%")) {
            into->what = kind::fixed_array;
            expect("A(");
            into->element = parse_type(nesting + 1);
            expect(")");
            return;
        }
        if (!looking_at("s") && !looking_at("m")) {
            fail("unknown format of bytes");
            return;
        }
        into->what = kind::bytes;
        into->format = text_[at_++];
        into->size = into->count;
        if (into->count != (into->format == 's' ? sizeof(parcel_ipv6) : sizeof(parcel_mac))) {
            fail("the format does not fit the number of bytes");
        }
    }

    // "{Name}T", with or without a mark.
    void parse_field(field *into) {
        expect("{");
        into->name = parse_name('}');
        into->marked = accept("P");
        into->type = parse_type();
    }

    void parse_fields(data_type *into) {
        into->what = kind::record;
        const std::string_view body = text_.substr(at_, text_.find(';', at_) - at_);
        constexpr std::ptrdiff_t MOST = 256;  // that are believed before they are read
        into->fields.reserve(static_cast<std::size_t>(std::min(std::ranges::count(body, '{'), MOST)));
        while (!error_ && looking_at("{")) {
            parse_field(&into->fields.emplace_back());
        }
    }

    void parse_arms(data_type *into) {
        into->what = kind::tagged_union;
        expect("<");
        into->discriminator = parse_name(',');
        into->discriminator_type = parse_name('>');
        while (!error_ && !accept(")")) {
            expect(",");
            if (accept("?:v")) {  // every value not listed: what an unlisted value means anyway
                into->catch_all = true;
                continue;
            }
            field arm;
            arm.value = parse_number();
            expect(":");
            if (!accept("v")) {
                parse_field(&arm);
            }
            into->fields.push_back(arm);
        }
    }

    void parse_definition() {
        const std::size_t begin = at_;
        expect("$");
        const std::uint32_t number = parse_number();
        const std::string_view notation = text_.substr(begin, at_ - begin);
        expect("=");
        data_type *next = nullptr;
        if (accept("?(")) {
            next = &out_->types.emplace_back();
            parse_arms(next);
            next->notation = notation;
        } else if (looking_at("{") || looking_at(";")) {
            next = &out_->types.emplace_back();
            parse_fields(next);
            next->notation = notation;
        } else if (looking_at("$")) {
            fail("expected a definition");
        } else {
            next = parse_type();  // a scalar, of its own for its number
            next = next != nullptr ? &out_->types.emplace_back(*next) : nullptr;
        }
        expect(";");
        if (out_->definitions.size() >= MAX_DEFINITIONS) {
            fail("too many definitions");
        }
        if (next != nullptr) {
            next->number = number;
            out_->definitions.push_back(next);
        }
    }

    // Every number is defined once, as a record, a union or a scalar.
    void index_definitions() {
        for (data_type *each : out_->definitions) {
            const std::string number = "$" + std::to_string(each->number);
            if (!by_number_.emplace(each->number, each).second) {
                refuse(number + " is defined twice");
            } else if (!is_scalar(each->what) && each->what != kind::record && each->what != kind::tagged_union) {
                refuse(number + " is neither a record, a union nor a scalar");
            }
        }
    }

    // A reference is a type that stays out of the schema: what points to it is to point to its element.
    void resolve_references() {
        for (data_type &each : references_) {
            const auto found = by_number_.find(each.number);
            if (found == by_number_.end()) {
                refuse("$" + std::to_string(each.number) + " is not defined");
                return;
            }
            each.element = found->second;
            if (is_scalar(each.element->what)) {  // a type of its own, for its notation
                each.element = &out_->types.emplace_back(*found->second);
                each.element->notation = each.notation;
            }
        }
        for (data_type &each : out_->types) {
            each.element = target(each.element);
            for (field &member : each.fields) {
                member.type = target(member.type);
            }
        }
    }

    // What a type is, if it is a reference; else itself.
    static data_type *target(data_type *each) {
        return each != nullptr && each->element != nullptr && each->notation.front() == '$' ? each->element : each;
    }

    std::string_view text_;
    schema *out_;
    std::size_t at_ = 0;
    std::deque<data_type> references_;
    data_type *letter_types_[9] = {};
    std::unordered_map<std::uint32_t, data_type *> by_number_;
    pm_error error_;
};

}  // namespace

pm_error parse(std::string_view text, schema *out) { return parser(text, out).run(); }

const field *data_type::arm_of(std::uint32_t value) const {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const field &arm) { return arm.value == value; });
    return found != fields.end() ? &*found : nullptr;
}

const field *data_type::find(std::string_view wanted, std::size_t from) const {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const field &each = fields[(from + i) % fields.size()];
        if (each.name == wanted) {
            return &each;
        }
    }
    return nullptr;
}

}  // namespace parcel_notation
