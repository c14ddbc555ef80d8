// Replays the fuzz target's corpus and every input that ever crashed it.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

#include "parcel_decode_fuzz.h"

namespace {

std::size_t replay(const std::filesystem::path &folder) {
    std::size_t replayed = 0;
    if (!std::filesystem::exists(folder)) {
        return 0;
    }
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> input(std::istreambuf_iterator<char>(in), {});
        SCOPED_TRACE(entry.path());
        parcel_fuzz_one(reinterpret_cast<const std::uint8_t *>(input.data()), input.size());
        ++replayed;
    }
    return replayed;
}

TEST(ParcelFuzz, TheCorpusAndEveryFormerCrasherDecodeSafely) {
    EXPECT_GT(replay(PM_FUZZ_FOLDER "/corpus/parcel_decode"), 20U);
    replay(PM_FUZZ_FOLDER "/crashers/parcel_decode");
}

}  // namespace
