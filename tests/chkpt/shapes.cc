// SPDX-License-Identifier: Apache-2.0
// The members of each message, as the tests know them.
#include "tests/chkpt/shapes.h"

#include <algorithm>

#include "tests/chkpt/decoded.h"

namespace {

constexpr unsigned ELEMENTS = 2;  // of each array of a sample

template <class Record>
outcome outcome_of(const decoded<Record> &result) {
    const auto *const bytes = reinterpret_cast<const std::uint8_t *>(&result.record);
    return {result.status, result.record.presence,
            std::all_of(bytes, bytes + sizeof(Record), [](std::uint8_t byte) { return byte == 0; }),
            result.memory->sizes().size()};
}

template <class Record>
shape make_shape(const char *name, decoder_with_memory<Record> decoder, std::vector<shape_field> fields) {
    return {name, true, std::move(fields),
            [decoder](const blob &input, std::size_t fail_at) {
                return outcome_of(decode<Record>(decoder, input, fail_at));
            },
            [decoder](const blob &input) {
                decoded<Record> result;
                result.memory = std::make_shared<test_memory>();
                result.status = decoder(&result.record, input.bytes.data(),
                                        static_cast<std::uint32_t>(input.bytes.size()), nullptr, nullptr);
                return outcome_of(result);
            }};
}

template <class Record>
shape make_shape(const char *name, decoder_without_memory<Record> decoder, std::vector<shape_field> fields) {
    return {name, false, std::move(fields),
            [decoder](const blob &input, std::size_t) { return outcome_of(decode<Record>(decoder, input)); },
            [decoder](const blob &input) { return outcome_of(decode<Record>(decoder, input)); }};
}

constexpr shape_field NUMBER{field_kind::number};
constexpr shape_field TEXT{field_kind::text};
constexpr shape_field NUMBERS{field_kind::numbers};
shape_field message(const shape &nested) { return {field_kind::message, &nested}; }
shape_field messages(const shape &nested) { return {field_kind::messages, &nested}; }

const shape advertisement =
    make_shape<ChkptAdvertisement>("Advertisement", ChkptAdvertisement_decode, std::vector<shape_field>(9, NUMBER));
const shape control_code = make_shape<ChkptControlCode>("ControlCode", ChkptControlCode_decode, {NUMBER, NUMBER});
const shape scb = make_shape<ChkptScb>(
    "Scb", ChkptScb_decode, {TEXT, NUMBER, message(advertisement), message(control_code), message(control_code)});

const shape values = make_shape<ChkptDistributionValues>("DistributionValues", ChkptDistributionValues_decode,
                                                         std::vector<shape_field>(4, NUMBER));
const shape group = make_shape<ChkptDistributionGroup>("DistributionGroup", ChkptDistributionGroup_decode,
                                                       {NUMBER, NUMBER, messages(values)});
const shape entry = make_shape<ChkptDistributionEntry>("DistributionEntry", ChkptDistributionEntry_decode,
                                                       {NUMBER, messages(group), NUMBER});
const shape distribution =
    make_shape<ChkptDistribution>("Distribution", ChkptDistribution_decode, {NUMBERS, NUMBER, NUMBER, messages(entry)});

const shape pair = make_shape<ChkptSessionIdPair>("SessionIdPair", ChkptSessionIdPair_decode, {NUMBER, TEXT});
const shape info =
    make_shape<ChkptSegmentListInfo>("SegmentListInfo", ChkptSegmentListInfo_decode, {TEXT, NUMBER, NUMBER});
const shape session =
    make_shape<ChkptDrSession>("DrSession", ChkptDrSession_decode,
                               {TEXT, NUMBER, NUMBER, messages(pair), NUMBER, NUMBER, NUMBER, NUMBER, messages(info)});

const shape single_value = make_shape<ChkptSingleValue>("SingleValue", ChkptSingleValue_decode, {NUMBER});

}  // namespace

const std::vector<const shape *> &all_shapes() {
    static const std::vector<const shape *> all = {&advertisement, &control_code, &scb,  &values,  &group,       &entry,
                                                   &distribution,  &pair,         &info, &session, &single_value};
    return all;
}

void add_field(sample &to, const shape &message, std::uint32_t field) {
    const shape_field &what = message.fields[field - 1];
    if (what.nested != nullptr) {
        const sample nested = full_sample(*what.nested);
        to.bytes.message(field, nested.bytes);
        to.allocations += nested.allocations;
    } else if (what.kind == field_kind::text) {
        to.bytes.text(field, "text-" + std::to_string(field));
        ++to.allocations;
    } else {
        to.bytes.number(field, 300 * field);  // two bytes and more
    }
    if (what.is_array() && (to.ends.empty() || to.ends.back().field != field)) {
        ++to.allocations;
    }
    to.ends.push_back({to.bytes.bytes.size(), field});
}

sample full_sample(const shape &message) {
    sample result;
    for (std::uint32_t field = 1; field <= message.fields.size(); ++field) {
        const unsigned times = message.fields[field - 1].is_array() ? ELEMENTS : 1;
        for (unsigned i = 0; i < times; ++i) {
            add_field(result, message, field);
        }
    }
    return result;
}
