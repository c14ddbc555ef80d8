// SPDX-License-Identifier: Apache-2.0
// One pass to check the integrity, one to answer, and a last one for the reply's own HMAC.
#include "perf-probed/packet/tlv.h"

#include <algorithm>

#include "perf-probed/packet/byte_order.h"

namespace probed {
namespace {

constexpr std::size_t CLASS_OF_SERVICE_SIZE = 4;
constexpr std::size_t STAMP_INFORMATION_SIZE = 4;

// One TLV within the octets that remain from its header on.
class tlv_view {
public:
    explicit tlv_view(std::span<std::uint8_t> rest) : rest_(rest) {}

    [[nodiscard]] bool has_header() const { return rest_.size() >= TLV_HEADER; }
    [[nodiscard]] bool fits() const { return has_header() && value_size() <= rest_.size() - TLV_HEADER; }
    [[nodiscard]] std::uint8_t type() const { return rest_[1]; }
    [[nodiscard]] std::size_t value_size() const { return get_u16(rest_.data() + 2); }
    [[nodiscard]] std::size_t size() const { return TLV_HEADER + value_size(); }
    [[nodiscard]] std::span<std::uint8_t> value() const { return rest_.subspan(TLV_HEADER, value_size()); }
    [[nodiscard]] std::uint8_t &flags() const { return rest_[0]; }

private:
    std::span<std::uint8_t> rest_;
};

// Where the HMAC TLV is, as far as the TLVs can be walked.
struct layout {
    bool has_hmac = false;
    bool hmac_is_last = true;  // only padding follows it
    bool only_padding = true;  // there is nothing else
    std::size_t hmac_offset = 0;
};

layout find_hmac(std::span<std::uint8_t> tlvs) {
    layout found;
    std::size_t offset = 0;
    while (offset < tlvs.size()) {
        const tlv_view tlv(tlvs.subspan(offset));
        if (!tlv.fits()) {
            found.only_padding = false;
            break;
        }
        const bool is_hmac = tlv.type() == TLV_HMAC;
        const bool is_padding = tlv.type() == TLV_PADDING;
        found.only_padding = found.only_padding && is_padding;
        if (found.has_hmac && !is_padding) {
            found.hmac_is_last = false;
        }
        if (is_hmac && !found.has_hmac) {
            found.has_hmac = true;
            found.hmac_offset = offset;
        }
        offset += tlv.size();
    }
    return found;
}

bool integrity_holds(std::span<std::uint8_t> tlvs, const layout &found, const hmac_key &key) {
    if (!found.has_hmac) {
        return found.only_padding;
    }
    const tlv_view tlv(tlvs.subspan(found.hmac_offset));
    return found.hmac_is_last && tlv.value_size() == HMAC_SIZE && key.check(tlvs.first(found.hmac_offset), tlv.value());
}

// Answers one TLV of a sound length. `wrong_size`: its type has another size.
struct answer {
    bool understood = true;
    bool wrong_size = false;
};

answer answer_tlv(const tlv_view &tlv, const tlv_context &context, bool authenticated, tlv_verdict *verdict) {
    const std::span<std::uint8_t> value = tlv.value();
    switch (tlv.type()) {
    case TLV_PADDING: return {};
    case TLV_STAMP_INFORMATION:
        if (value.size() != STAMP_INFORMATION_SIZE) {
            return {true, true};
        }
        value[0] = static_cast<std::uint8_t>(context.source);
        value[1] = static_cast<std::uint8_t>(context.receive_method);
        value[2] = static_cast<std::uint8_t>(context.source);
        value[3] = static_cast<std::uint8_t>(context.transmit_method);
        return {};
    case TLV_CLASS_OF_SERVICE:
        // DSCP1 (6 bits), DSCP2 (6), ECN (2), RP (2), reserved: DSCP1 is wished for the reply.
        if (value.size() != CLASS_OF_SERVICE_SIZE) {
            return {true, true};
        }
        verdict->reply_dscp = value[0] >> 2;
        value[0] = static_cast<std::uint8_t>((value[0] & 0xFC) | (context.dscp >> 4));
        value[1] = static_cast<std::uint8_t>(((context.dscp & 0x0F) << 4) | ((context.ecn & 0x03) << 2));
        return {};
    case TLV_HMAC: return {authenticated, false};  // its size was checked with the integrity
    default: return {false, false};
    }
}

void set_flag_everywhere(std::span<std::uint8_t> tlvs, std::uint8_t flag) {
    while (tlv_view(tlvs).fits()) {
        const tlv_view tlv(tlvs);
        tlv.flags() = static_cast<std::uint8_t>(tlv.flags() | flag);
        tlvs = tlvs.subspan(tlv.size());
    }
}

}  // namespace

tlv_verdict reflect_tlvs(std::span<std::uint8_t> tlvs, const tlv_context &context, const hmac_key *key) {
    tlv_verdict verdict;
    const layout found = find_hmac(tlvs);
    if (key != nullptr && !integrity_holds(tlvs, found, *key)) {
        verdict.integrity_failed = true;
        set_flag_everywhere(tlvs, TLV_INTEGRITY);
        return verdict;
    }
    std::size_t offset = 0;
    while (offset < tlvs.size()) {
        const tlv_view tlv(tlvs.subspan(offset));
        if (!tlv.has_header()) {
            verdict.malformed = true;  // too short for a flag of its own
            break;
        }
        const answer answered = tlv.fits() ? answer_tlv(tlv, context, key != nullptr, &verdict) : answer{true, true};
        if (answered.wrong_size) {
            tlv.flags() = TLV_MALFORMED;
            verdict.malformed = true;
            break;
        }
        tlv.flags() = answered.understood ? 0 : TLV_UNRECOGNISED;
        offset += tlv.size();
    }
    if (key != nullptr && found.has_hmac) {
        std::ranges::copy(key->sign(tlvs.first(found.hmac_offset)),
                          tlvs.begin() + static_cast<std::ptrdiff_t>(found.hmac_offset + TLV_HEADER));
    }
    return verdict;
}

bool write_padding(std::span<std::uint8_t> tlvs) {
    if (tlvs.size() < TLV_HEADER || tlvs.size() - TLV_HEADER > 0xFFFF) {
        return false;
    }
    std::ranges::fill(tlvs, std::uint8_t{0});
    tlvs[0] = TLV_UNRECOGNISED;
    tlvs[1] = TLV_PADDING;
    put_u16(tlvs.data() + 2, static_cast<std::uint16_t>(tlvs.size() - TLV_HEADER));
    return true;
}

}  // namespace probed
