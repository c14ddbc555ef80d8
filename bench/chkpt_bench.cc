// SPDX-License-Identifier: Apache-2.0
// Decoding checkpoint blobs beside Protocol Buffers' parser, on the heap and in an arena, and beside
// nanopb, which is given fixed sizes and so allocates nothing.
#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <google/protobuf/arena.h>
#include <pb_decode.h>
#include <string>

#include "checkpoint.nanopb.h"
#include "checkpoint.pb.h"
#include "chkpt/chkpt.h"

namespace {

constexpr std::uint64_t TIME_MSEC = 1709647387042;

checkpoint::Scb sample_scb() {
    checkpoint::Scb scb;
    scb.set_interface_name("eth0/1/0/4");
    scb.set_advertisement_kind(0);
    checkpoint::Advertisement &advertisement = *scb.mutable_last_advertisement();
    advertisement.set_time_msec(TIME_MSEC);
    advertisement.set_reason(5);
    advertisement.set_in_flight(false);
    advertisement.set_average_usec(1200);
    advertisement.set_minimum_usec(1100);
    advertisement.set_maximum_usec(21000);
    advertisement.set_variance_usec(100);
    advertisement.set_a_flag(true);
    scb.mutable_last_error()->set_code(28);
    scb.mutable_last_error()->set_time_msec(TIME_MSEC - 3600000);
    scb.mutable_last_notification()->set_code(1);
    scb.mutable_last_notification()->set_time_msec(TIME_MSEC - 60000);
    return scb;
}

checkpoint::DrSession sample_session() {
    constexpr unsigned SEGMENT_LISTS = 8;
    checkpoint::DrSession session;
    session.set_policy_name("policy-c10-ep-192.0.2.11");
    session.set_lsp_id(2);
    session.set_is_up(true);
    session.set_node_id(0x20);
    session.set_npu_id(1);
    session.set_host_type(CHKPT_HOST_NPU);
    for (unsigned i = 0; i < SEGMENT_LISTS; ++i) {
        const std::string name = "segment-list-" + std::to_string(i);
        checkpoint::SessionIdPair &pair = *session.add_session_ids();
        pair.set_session_id(4096 + i);
        pair.set_segment_list(name);
        checkpoint::SegmentListInfo &info = *session.add_segment_lists();
        info.set_segment_list(name);
        info.set_is_up(i % 2 == 0);
    }
    return session;
}

// Memory ------------------------------------------------------------------------------------------

// What was allocated with malloc, to be freed; the displays do not free it.
struct heap {
    std::array<void *, 64> blocks;
    std::size_t count = 0;

    static void *allocate(std::size_t size, void *context) {
        heap &self = *static_cast<heap *>(context);
        return self.blocks[self.count++] = std::malloc(size);
    }
    void reset() {
        while (count != 0) {
            std::free(blocks[--count]);
        }
    }
};

// Like a peer's arena: blocks one after the other, given back all at once.
struct arena {
    alignas(16) std::array<std::uint8_t, 8192> bytes;
    std::size_t used = 0;

    static void *allocate(std::size_t size, void *context) {
        arena &self = *static_cast<arena *>(context);
        void *const block = self.bytes.data() + self.used;
        self.used += (size + 15) / 16 * 16;
        return self.used <= self.bytes.size() ? block : nullptr;
    }
    void reset() { used = 0; }
};

// Decoding ----------------------------------------------------------------------------------------

template <auto Decode, class Record, class Memory>
void own(benchmark::State &state, const std::string &blob) {
    const auto *const bytes = reinterpret_cast<const std::uint8_t *>(blob.data());
    Memory memory;
    Record record;
    for (auto _ : state) {
        if (Decode(&record, bytes, static_cast<std::uint32_t>(blob.size()), Memory::allocate, &memory) != 0) {
            state.SkipWithError("blob does not decode");
            break;
        }
        benchmark::DoNotOptimize(record);
        memory.reset();
    }
    state.counters["bytes"] = static_cast<double>(blob.size());
}

template <class Message>
void parse_on_heap(benchmark::State &state, const std::string &blob) {
    for (auto _ : state) {
        Message message;
        if (!message.ParseFromString(blob)) {
            state.SkipWithError("message does not parse");
            break;
        }
        benchmark::DoNotOptimize(message);
    }
}

template <class Message>
void parse_in_arena(benchmark::State &state, const std::string &blob) {
    std::array<char, 8192> block;
    google::protobuf::ArenaOptions options;
    options.initial_block = block.data();
    options.initial_block_size = block.size();
    google::protobuf::Arena arena(options);
    for (auto _ : state) {
        auto *const message = google::protobuf::Arena::CreateMessage<Message>(&arena);
        if (!message->ParseFromString(blob)) {
            state.SkipWithError("message does not parse");
            break;
        }
        benchmark::DoNotOptimize(message);
        arena.Reset();
    }
}

template <class Record>
void nanopb(benchmark::State &state, const std::string &blob, const pb_msgdesc_t *fields) {
    Record record;
    for (auto _ : state) {
        pb_istream_t stream = pb_istream_from_buffer(reinterpret_cast<const pb_byte_t *>(blob.data()), blob.size());
        if (!pb_decode(&stream, fields, &record)) {
            state.SkipWithError("nanopb does not decode it");
            break;
        }
        benchmark::DoNotOptimize(record);
    }
}

template <class Message, class Record, class Nanopb, auto Decode>
void register_all(const std::string &name, const Message &sample, const pb_msgdesc_t *fields) {
    const auto add = [&name, blob = sample.SerializeAsString()](const std::string &what, auto function) {
        benchmark::RegisterBenchmark(("chkpt/" + name + "/" + what).c_str(),
                                     [=](benchmark::State &state) { function(state, blob); });
    };
    add("own_heap", own<Decode, Record, heap>);
    add("own_arena", own<Decode, Record, arena>);
    add("protobuf_heap", parse_on_heap<Message>);
    add("protobuf_arena", parse_in_arena<Message>);
    add("nanopb", [fields](benchmark::State &state, const std::string &blob) { nanopb<Nanopb>(state, blob, fields); });
}

const bool registered = [] {
    register_all<checkpoint::Scb, ChkptScb, checkpoint_Scb, ChkptScb_decode>("scb", sample_scb(),
                                                                             checkpoint_Scb_fields);
    register_all<checkpoint::DrSession, ChkptDrSession, checkpoint_DrSession, ChkptDrSession_decode>(
        "dr_session", sample_session(), checkpoint_DrSession_fields);
    return true;
}();

}  // namespace
