// SPDX-License-Identifier: Apache-2.0
// Decodes each input as every kind of message, and what a caller may rely on of each result.
#include "fuzz/chkpt_decode_fuzz.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "chkpt/chkpt.h"

namespace {

constexpr std::size_t HEAD = 2;

void require(bool promise) {
    if (!promise) {
        std::abort();
    }
}

// The allocator: keeps count of what it gave, and fails once.
class limited_memory {
public:
    explicit limited_memory(std::size_t fail_at) : fail_at_(fail_at) {}

    static void *allocate(std::size_t size, void *context) {
        limited_memory &self = *static_cast<limited_memory *>(context);
        require(!self.failed_);  // nothing is asked for after a failure
        if (++self.count_ == self.fail_at_) {
            self.failed_ = true;
            return nullptr;
        }
        self.size_ += size;
        self.blocks_.emplace_back(new std::uint8_t[size]);
        std::memset(self.blocks_.back().get(), 0xA5, size);
        return self.blocks_.back().get();
    }

    [[nodiscard]] bool failed() const { return failed_; }
    [[nodiscard]] std::size_t size() const { return size_; }

private:
    std::size_t fail_at_;
    std::size_t count_ = 0;
    std::size_t size_ = 0;
    bool failed_ = false;
    std::vector<std::unique_ptr<std::uint8_t[]>> blocks_;
};

// What a decoder hands out can be read to its end --------------------------------------------------

std::size_t checksum = 0;  // of what was read, so that the reads stay

void read(const char *text) { checksum += text != nullptr ? std::strlen(text) : 0; }
void read(std::uint32_t number) { checksum += number; }
void read(const ChkptDistributionValues &values) { checksum += values.value_1 + values.value_4; }
void read(const ChkptSessionIdPair &pair) { read(pair.segment_list); }
void read(const ChkptSegmentListInfo &info) { read(info.segment_list); }

void read(const ChkptDistributionGroup &group);
void read(const ChkptDistributionEntry &entry);

template <class Element>
void read_all(const chkpt_array<Element> &array) {
    require((array.elements == nullptr) == (array.count == 0));
    for (const Element &element : array) {
        read(element);
    }
}

void read(const ChkptDistributionGroup &group) { read_all(group.values); }
void read(const ChkptDistributionEntry &entry) { read_all(entry.groups); }
void read(const ChkptDistribution &distribution) {
    read_all(distribution.linecards);
    read_all(distribution.entries);
}
void read(const ChkptDrSession &session) {
    read(session.policy_name);
    read_all(session.session_ids);
    read_all(session.segment_lists);
}
void read(const ChkptScb &scb) { read(scb.interface_name); }
void read(const ChkptAdvertisement &advertisement) { checksum += advertisement.presence; }
void read(const ChkptControlCode &code) { checksum += code.presence; }
void read(const ChkptSingleValue &value) { checksum += value.value; }

struct fuzz_input {
    const std::uint8_t *data;
    std::uint32_t length;
    std::size_t fail_at;
};

void check(std::int32_t status, const limited_memory &memory, const fuzz_input &input) {
    require(status >= CHKPT_NO_MEMORY && status <= CHKPT_DECODED);
    require((status == CHKPT_NO_MEMORY) == memory.failed());
    // An element takes at least two bytes of the blob: memory is bounded by what came in.
    constexpr std::size_t LARGEST = std::max({sizeof(ChkptDistributionEntry), sizeof(ChkptDistributionGroup),
                                              sizeof(ChkptSessionIdPair), sizeof(ChkptSegmentListInfo)});
    require(memory.size() <= LARGEST * input.length);
}

template <class Record>
void decode(std::int32_t decoder(Record *, const std::uint8_t *, std::uint32_t, ChkptAllocFn, void *),
            const fuzz_input &input) {
    limited_memory memory(input.fail_at);
    Record record;
    check(decoder(&record, input.data, input.length, limited_memory::allocate, &memory), memory, input);
    read(record);
}

template <class Record>
void decode(std::int32_t decoder(Record *, const std::uint8_t *, std::uint32_t), const fuzz_input &input) {
    const limited_memory memory(0);
    Record record;
    check(decoder(&record, input.data, input.length), memory, input);
    read(record);
}

}  // namespace

void chkpt_fuzz_one(const std::uint8_t *data, std::size_t size) {
    if (size < HEAD) {
        return;
    }
    const std::vector<std::uint8_t> blob(data + HEAD, data + size);  // its own block: no byte after it
    const fuzz_input input{blob.data(), static_cast<std::uint32_t>(blob.size()), data[1]};
    switch (data[0] % CHKPT_FUZZ_MESSAGES) {
    case 0: decode(ChkptAdvertisement_decode, input); break;
    case 1: decode(ChkptControlCode_decode, input); break;
    case 2: decode(ChkptScb_decode, input); break;
    case 3: decode(ChkptDistributionValues_decode, input); break;
    case 4: decode(ChkptDistributionGroup_decode, input); break;
    case 5: decode(ChkptDistributionEntry_decode, input); break;
    case 6: decode(ChkptDistribution_decode, input); break;
    case 7: decode(ChkptSessionIdPair_decode, input); break;
    case 8: decode(ChkptSegmentListInfo_decode, input); break;
    case 9: decode(ChkptDrSession_decode, input); break;
    case 10: decode(ChkptSingleValue_decode, input); break;
    default: break;
    }
}
