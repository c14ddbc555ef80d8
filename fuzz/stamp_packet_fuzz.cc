// SPDX-License-Identifier: Apache-2.0
// Test packets of STAMP from the network: requests, replies and their TLVs.
#include "fuzz/stamp_packet_fuzz.h"

#include <cstdlib>
#include <vector>

#include "perf-probed/reflector/reply_builder.h"
#include "perf-probed/session/delay_session.h"

namespace {

using namespace probed;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void read_as_reply(packet_mode mode, std::span<const std::uint8_t> packet) {
    reflector_fields fields;
    if (!read_reply(mode, packet, &fields)) {
        return;
    }
    const stamp_format format = decode_estimate(fields.estimate).format;
    const wall_nsec now = 1'709'647'390'000'000'000;
    const moment then{1'000'000'000, now};
    delay_session session(1, {}, 3'000'000, {});
    session.set_reason(PM_NOT_RUNNING_NONE, then);
    require(session.on_timer(then));
    session.sent(then, fields.sender.stamp);
    const reply answer{0,
                       fields.sender.stamp,
                       {1'010'000'000, now + 10'000'000},
                       then.offset(),
                       true,
                       fields.receive_stamp != 0,
                       fields.stamp != 0,
                       decode_stamp(format, fields.receive_stamp, now),
                       decode_stamp(format, fields.stamp, now)};
    require(session.on_reply(answer) == reply_kind::timely);
    require(session.on_reply(answer) == reply_kind::duplicate);
    require(session.counters().received == 1);
}

void answer(const reply_settings &settings, std::vector<std::uint8_t> packet) {
    received_packet request;
    request.data = packet;
    request.time = 1'709'647'390'000'000'000;
    std::vector<std::uint8_t> out(PACKET_ROOM);
    const built_reply built = build_reply(settings, request, out);
    if (built.refused != refusal::none) {
        require(built.size == 0);
        return;
    }
    require(built.size == packet.size() || (settings.answer_short && packet.size() < 41 && built.size == 41));
    complete_reply(settings, request.time, std::span(out).first(std::max(built.size, base_size(settings.mode()))));
    reflector_fields fields;
    sender_fields asked;
    require(read_reply(settings.mode(), std::span(out).first(built.size), &fields));
    require(read_request(settings.mode(), packet, &asked));
    require(fields.sender.sequence == asked.sequence && fields.sender.stamp == asked.stamp);
    require(settings.key == nullptr || settings.key->check_packet(out));
}

}  // namespace

void stamp_fuzz_one(const std::uint8_t *data, std::size_t size) {
    static const hmac_key key("a key");
    if (size == 0) {
        return;
    }
    const std::uint8_t choice = data[0];
    std::vector<std::uint8_t> packet(data + 1, data + size);
    if ((choice & 4) != 0 && packet.size() >= BASE_SIZE_AUTHENTICATED) {
        key.sign_packet(packet);
    }
    if (packet.size() > PACKET_ROOM) {
        packet.resize(PACKET_ROOM);
    }
    reply_settings settings;
    settings.key = (choice & 1) != 0 ? &key : nullptr;
    settings.answer_short = (choice & 2) != 0;
    settings.format = (choice & 8) != 0 ? stamp_format::ptp : stamp_format::ntp;
    answer(settings, packet);
    read_as_reply(settings.mode(), packet);
}
