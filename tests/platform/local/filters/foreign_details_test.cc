// SPDX-License-Identifier: Apache-2.0
// Filters over detail records that are not of this program's schema, or cannot be read.
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "tests/platform/local/filters/derived_store.h"

namespace {

using namespace derived_test;

class ForeignDetails : public DerivedStore {
protected:
    // A copy of the store whose schema text of policies is damaged, read while the object lives.
    class lost_schema {
    public:
        lost_schema() {
            std::filesystem::copy(store_folder(), copy_.path(), std::filesystem::copy_options::recursive);
            const std::string file = copy_.path() + "/data.mdb";
            std::string bytes = read_file(file);
            for (std::size_t at = 0; (at = bytes.find(TEXT, at)) != std::string::npos; ++replaced_) {
                bytes[at + TEXT.size() - 1] = 'X';
            }
            write_file(file, bytes);
            setenv("OPSTORE_URL", ("lmdb:" + copy_.path()).c_str(), 1);
        }
        ~lost_schema() { setenv("OPSTORE_URL", ("lmdb:" + store_folder()).c_str(), 1); }
        lost_schema(const lost_schema &) = delete;
        lost_schema &operator=(const lost_schema &) = delete;

        [[nodiscard]] int replaced() const { return replaced_; }

    private:
        static constexpr std::string_view TEXT = "$116={Color}D{EndPointAddress";
        temporary_folder copy_;
        int replaced_ = 0;
    };

    static std::string of_color(const char *color) { return "srpolicy/detail-filter/" + key(POLICY, {{1, color}}); }
};

TEST_F(ForeignDetails, AnOlderSchemaIsComparedByTheFieldsThatItHas) {
    EXPECT_EQ(get(of_color("0xa") + "/older", FOREIGN_NODE), ERRCODE_SUCCESS);
    EXPECT_EQ(get(of_color("0xb") + "/older", FOREIGN_NODE), ERRCODE_NOT_FOUND);
    const std::string by_preference = "srpolicy/detail-filter/" + key(POLICY, {{5, "0x64"}});
    EXPECT_EQ(get(by_preference + "/older", FOREIGN_NODE), ERRCODE_NOT_FOUND);
}

TEST_F(ForeignDetails, ARecordThatDoesNotDecodeMatchesSoThatItsReaderReportsIt) {
    EXPECT_EQ(listed(of_color("0xa") + "/", FOREIGN_NODE), (names{"older", "other-type", "recent"}));
    EXPECT_EQ(listed(of_color("0xb") + "/", FOREIGN_NODE), names{"other-type"});
}

TEST_F(ForeignDetails, ASchemaThatTheStoreHasLostIsAnErrorOfTheListingAndOfTheItem) {
    const lost_schema damaged;
    ASSERT_GT(damaged.replaced(), 0);
    EXPECT_EQ(list(of_color("0xa") + "/").code, PARCEL_UNKNOWN_SCHEMA);
    EXPECT_EQ(list("srpolicy/counters-filter/" + key(POLICY, {{1, "0xa"}}) + "/").code, PARCEL_UNKNOWN_SCHEMA);
    EXPECT_EQ(get(of_color("0xa") + "/a"), PARCEL_UNKNOWN_SCHEMA);
    EXPECT_EQ(get(of_color("0xa") + "/no-such-policy"), ERRCODE_NOT_FOUND);
}

TEST_F(ForeignDetails, WhatComparesNoRecordNeedsNoSchema) {
    const lost_schema damaged;
    EXPECT_EQ(listed("srpolicy/detail/"), (names{"a", "b", "c", "d"}));
    EXPECT_EQ(listed("srpolicy/detail-filter/" + key(POLICY, {}) + "/"), (names{"a", "b", "c", "d"}));
    EXPECT_EQ(listed("endpoint/detail-filter/" + key(ENDPOINT, {{1, "blue"}}) + "/"), names{"y"});
}

}  // namespace
