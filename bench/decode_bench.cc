// SPDX-License-Identifier: Apache-2.0
// Decoding: a parcel beside Protocol Buffers' parser on an equivalent message, on the heap and in an
// arena, and beside a plain copy of the parcel's bytes.
#include <benchmark/benchmark.h>
#include <cstring>
#include <google/protobuf/arena.h>
#include <string>
#include <vector>

#include "bench/proto_mirror.h"
#include "bench/sample_records.h"
#include "mirror.pb.h"
#include "platform/local/codec/parcel_codec.h"
#include "schema/pm_descriptors.h"

namespace {

template <class Record>
std::vector<std::uint8_t> encoded(const Record &record, const parcel_descriptor *descriptor) {
    std::vector<std::uint8_t> parcel;
    if (parcel_encode(&record, descriptor, &parcel) != ERRCODE_SUCCESS) {
        std::abort();
    }
    return parcel;
}

template <class Message, class Record>
std::string mirrored(const Record &record, const parcel_descriptor *descriptor) {
    Message message;
    fill_mirror(descriptor, &record, &message);
    return message.SerializeAsString();
}

template <class Record>
void decode_parcel(benchmark::State &state, const Record &record, const parcel_descriptor *descriptor) {
    const std::vector<std::uint8_t> parcel = encoded(record, descriptor);
    Record decoded;
    for (auto _ : state) {
        if (parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &decoded, descriptor) != 0) {
            state.SkipWithError("parcel does not decode");
            break;
        }
        benchmark::DoNotOptimize(decoded);
        parcel_free_indirections(&decoded, descriptor);
    }
    state.counters["bytes"] = static_cast<double>(parcel.size());
}

template <class Message, class Record>
void parse_on_heap(benchmark::State &state, const Record &record, const parcel_descriptor *descriptor) {
    const std::string bytes = mirrored<Message>(record, descriptor);
    for (auto _ : state) {
        Message message;
        if (!message.ParseFromString(bytes)) {
            state.SkipWithError("message does not parse");
            break;
        }
        benchmark::DoNotOptimize(message);
    }
    state.counters["bytes"] = static_cast<double>(bytes.size());
}

template <class Message, class Record>
void parse_in_arena(benchmark::State &state, const Record &record, const parcel_descriptor *descriptor) {
    const std::string bytes = mirrored<Message>(record, descriptor);
    google::protobuf::Arena arena;
    for (auto _ : state) {
        auto *message = google::protobuf::Arena::CreateMessage<Message>(&arena);
        if (!message->ParseFromString(bytes)) {
            state.SkipWithError("message does not parse");
            break;
        }
        benchmark::DoNotOptimize(message);
        arena.Reset();
    }
    state.counters["bytes"] = static_cast<double>(bytes.size());
}

template <class Record>
void copy_bytes(benchmark::State &state, const Record &record, const parcel_descriptor *descriptor) {
    const std::vector<std::uint8_t> parcel = encoded(record, descriptor);
    std::vector<std::uint8_t> copy(parcel.size());
    for (auto _ : state) {
        std::memcpy(copy.data(), parcel.data(), parcel.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
}

template <class Message, class Record>
void register_all(const std::string &name, const Record &record, const parcel_descriptor *descriptor) {
    const auto add = [&](const std::string &what, auto function) {
        benchmark::RegisterBenchmark(("decode/" + name + "/" + what).c_str(),
                                     [=, &record](benchmark::State &state) { function(state, record, descriptor); });
    };
    add("parcel", decode_parcel<Record>);
    add("protobuf_heap", parse_on_heap<Message, Record>);
    add("protobuf_arena", parse_in_arena<Message, Record>);
    add("memcpy", copy_bytes<Record>);
}

const bool registered = [] {
    register_all<mirror::pm_summary_parcel_T164>("summary", sample_summary(), pm_summary_parcel_descriptor());
    register_all<mirror::pm_srpolicy_parcel_T116>("policy", sample_policy(), pm_srpolicy_parcel_descriptor());
    register_all<mirror::pm_intf_parcel_T84>("interface", sample_interface(), pm_intf_parcel_descriptor());
    return true;
}();

}  // namespace
