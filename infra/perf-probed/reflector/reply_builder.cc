// SPDX-License-Identifier: Apache-2.0
// The reply: the base packet from the request's fields, then its TLVs.
#include "perf-probed/reflector/reply_builder.h"

#include <algorithm>

namespace probed {
namespace {

refusal check_length(const reply_settings &settings, const received_packet &request) {
    if (request.cut) {
        return refusal::too_long;
    }
    const std::size_t size = request.data.size();
    if (settings.mode() == packet_mode::authenticated) {
        return size < BASE_SIZE_AUTHENTICATED ? refusal::too_short : refusal::none;
    }
    const std::size_t least = settings.answer_short ? SHORTEST_REQUEST : SHORTEST_REPLY;
    return size < least ? refusal::too_short : refusal::none;
}

stamp_method method_of(stamp_origin origin) {
    return origin == stamp_origin::hardware ? stamp_method::hardware : stamp_method::software_local;
}

}  // namespace

built_reply build_reply(const reply_settings &settings, const received_packet &request, std::span<std::uint8_t> out) {
    built_reply built;
    const packet_mode mode = settings.mode();
    const std::span<const std::uint8_t> data = request.data;
    reflector_fields fields;
    built.refused = check_length(settings, request);
    if (built.refused != refusal::none || !read_request(mode, data, &fields.sender)) {
        return built;
    }
    if (settings.key != nullptr && !settings.key->check_packet(data)) {
        built.refused = refusal::bad_hmac;
        return built;
    }
    fields.sequence = fields.sender.sequence;
    fields.ssid = fields.sender.ssid;
    fields.estimate = settings.estimate;
    fields.receive_stamp = encode_stamp(settings.format, request.time);
    fields.ttl = request.ttl;
    if (!write_reply(mode, fields, out)) {
        built.refused = refusal::too_long;
        return built;
    }
    built.size = std::max(data.size(), SHORTEST_REPLY);
    built.traffic_class = request.traffic_class & 0xFC;  // the DSCP comes back, congestion marks do not
    if (data.size() <= base_size(mode)) {
        return built;
    }
    const std::span<std::uint8_t> tlvs = out.subspan(base_size(mode), data.size() - base_size(mode));
    std::ranges::copy(data.subspan(base_size(mode)), tlvs.begin());
    const tlv_context context{static_cast<std::uint8_t>(request.traffic_class >> 2),
                              static_cast<std::uint8_t>(request.traffic_class & 0x03), settings.source,
                              method_of(request.origin), stamp_method::software_local};
    const tlv_verdict verdict = reflect_tlvs(tlvs, context, settings.key);
    built.malformed_tlv = verdict.malformed;
    built.integrity_failed = verdict.integrity_failed;
    if (verdict.reply_dscp >= 0) {
        built.traffic_class = static_cast<std::uint8_t>(verdict.reply_dscp << 2);
    }
    return built;
}

void complete_reply(const reply_settings &settings, wall_nsec now, std::span<std::uint8_t> packet) {
    write_reply_stamp(settings.mode(), encode_stamp(settings.format, now), packet);
    if (settings.key != nullptr) {
        settings.key->sign_packet(packet);
    }
}

}  // namespace probed
