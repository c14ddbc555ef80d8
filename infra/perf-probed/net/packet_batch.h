// SPDX-License-Identifier: Apache-2.0
// Many packets with one system call, in memory that is allocated once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "perf-probed/net/address.h"
#include "perf-probed/net/udp_socket.h"
#include "perf-probed/schedule/clocks.h"

namespace probed {

inline constexpr std::size_t BATCH_PACKETS = 64;
inline constexpr std::size_t PACKET_ROOM = 9216;  // octets; what is longer is cut and said to be

// Where a packet's time comes from.
enum class stamp_origin : std::uint8_t { clock, kernel, hardware };

struct received_packet {
    std::span<std::uint8_t> data;
    bool cut = false;  // it was longer than the room for it
    udp_endpoint from;
    ip_address to;
    std::uint32_t interface = 0;  // index; 0: unknown
    std::uint8_t ttl = 0;         // TTL or hop limit; 0: unknown
    std::uint8_t traffic_class = 0;
    wall_nsec time = 0;
    stamp_origin origin = stamp_origin::clock;
};

class receive_batch {
public:
    receive_batch();
    ~receive_batch();
    receive_batch(const receive_batch &) = delete;
    receive_batch &operator=(const receive_batch &) = delete;

    // Receives what is there, BATCH_PACKETS at most; `now` is the time of packets that the kernel did not stamp.
    // Returns how many, 0 when there are none.
    [[nodiscard]] std::size_t receive(udp_socket &socket, wall_nsec now);

    // Valid until the next receive; the data may be changed in place.
    [[nodiscard]] received_packet &operator[](std::size_t index) { return packets_[index]; }

private:
    struct slot;
    std::vector<slot> slots_;
    std::vector<mmsghdr> messages_;
    std::vector<received_packet> packets_;
};

struct outgoing_packet {
    std::span<const std::uint8_t> data;  // stays valid until flush
    udp_endpoint to;
    ip_address from;                 // none: the system chooses
    std::uint32_t interface = 0;     // to leave by; 0: as the routes say
    std::uint8_t traffic_class = 0;  // DSCP and ECN
    std::uint8_t hop_limit = 0;      // 0: the socket's 255
};

class send_batch {
public:
    send_batch();
    ~send_batch();
    send_batch(const send_batch &) = delete;
    send_batch &operator=(const send_batch &) = delete;

    [[nodiscard]] std::size_t size() const { return count_; }
    [[nodiscard]] bool full() const { return count_ == BATCH_PACKETS; }
    // Room for one packet of PACKET_ROOM octets, which the caller may fill before it adds it.
    [[nodiscard]] std::span<std::uint8_t> room();
    // Adds a packet. The batch is not full.
    void add(const outgoing_packet &packet);

    // Sends all and empties the batch. `failed(index, errno)` is called for each that did not go out. Errors that only
    // tell of an earlier packet's fate are passed over. Returns how many went out.
    template <class Failed>
    std::size_t flush(udp_socket &socket, Failed failed) {
        std::size_t sent = 0;
        std::size_t next = 0;
        while (next < count_) {
            int error = 0;
            const std::size_t done = send_from(socket, next, &error);
            sent += done;
            next += done;
            if (next < count_ && error != 0) {
                failed(next, error);
                ++next;
            }
        }
        count_ = 0;
        return sent;
    }

private:
    struct slot;
    // Sends from `first` on; returns how many went out, and the errno of the next one.
    [[nodiscard]] std::size_t send_from(udp_socket &socket, std::size_t first, int *error);

    std::vector<slot> slots_;
    std::vector<mmsghdr> messages_;
    std::size_t count_ = 0;
};

// Reads the time stamps of packets that left: `take(number, time)`, the numbers counting the socket's packets from 0.
class transmit_stamps {
public:
    transmit_stamps();
    ~transmit_stamps();
    transmit_stamps(const transmit_stamps &) = delete;
    transmit_stamps &operator=(const transmit_stamps &) = delete;

    template <class Take>
    void read(udp_socket &socket, Take take) {
        while (const std::size_t count = read_some(socket)) {
            for (std::size_t index = 0; index < count; ++index) {
                if (found_[index].time != 0) {
                    take(found_[index].number, found_[index].time);
                }
            }
            if (count < BATCH_PACKETS) {
                break;
            }
        }
    }

private:
    struct slot;
    struct stamp {
        std::uint32_t number;
        wall_nsec time;  // 0: the message is about something else
    };
    [[nodiscard]] std::size_t read_some(udp_socket &socket);

    std::vector<slot> slots_;
    std::vector<mmsghdr> messages_;
    std::vector<stamp> found_;
};

}  // namespace probed
