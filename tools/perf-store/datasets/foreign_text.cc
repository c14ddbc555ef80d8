// SPDX-License-Identifier: Apache-2.0
// The first bytes of what is no data set.
#include "perf-store/datasets/foreign_text.h"

namespace perf_store {

namespace {

using namespace std::string_view_literals;

struct mark {
    std::string_view begin;
    const char *what;
};

constexpr char UTF16[] = "this is UTF-16; a data set is UTF-8 (iconv -f UTF-16 -t UTF-8 makes it so)";
constexpr char COMMENT[] = "this is a comment, which JSON does not have";

constexpr mark FILES[] = {
    {"\xEF\xBB\xBF"sv, "this is a byte order mark; a data set begins without one"},
    {"\xFE\xFF"sv, UTF16},
    {"\xFF\xFE"sv, UTF16},
    {"{\0"sv, UTF16},
    {"\0{"sv, UTF16},
    {"\x1F\x8B"sv, "this is compressed by gzip; gzip -dc FILE | perf-store load - reads it"},
    {"\xFD\x37zXZ"sv, "this is compressed by xz; xz -dc FILE | perf-store load - reads it"},
    {"\x28\xB5\x2F\xFD"sv, "this is compressed by zstd; zstd -dc FILE | perf-store load - reads it"},
};
constexpr mark TEXTS[] = {{"//"sv, COMMENT}, {"/*"sv, COMMENT}, {"#"sv, COMMENT}};

template <std::size_t Count>
const char *find(const mark (&marks)[Count], std::string_view text) {
    for (const mark &each : marks) {
        if (text.starts_with(each.begin)) {
            return each.what;
        }
    }
    return nullptr;
}

}  // namespace

const char *foreign_file(std::string_view beginning) { return find(FILES, beginning); }

const char *foreign_text(std::string_view text) { return find(TEXTS, text); }

}  // namespace perf_store
