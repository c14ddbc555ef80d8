// SPDX-License-Identifier: Apache-2.0
// Progress of long work, as a terminal shows it.
#include "perf-store/datasets/progress_line.h"

#include "tests/perf-store/command_line/perf_store_fixture.h"

#include <chrono>
#include <pty.h>
#include <thread>

#include "tests/support/child_process.h"

namespace {

using namespace perf_store_test;
using perf_store::progress_line;

constexpr char AGAIN[] = "\r\033[K";  // to the start of the line, which is erased
constexpr std::chrono::milliseconds LONGER_THAN_BETWEEN_TWO_LINES{150};

// A pseudo terminal whose far end is a command's standard error.
class Progress : public PerfStore {
protected:
    void SetUp() override {
        PerfStore::SetUp();
        ASSERT_EQ(::openpty(&near_, &far_, nullptr, nullptr, nullptr), 0);
    }
    void TearDown() override {
        ::close(near_);
        ::close(far_);
        PerfStore::TearDown();
    }

    // What was written to the terminal until now. It takes its time from one end to the other, so the last
    // character is the test's own.
    [[nodiscard]] std::string shown() const {
        constexpr char LAST = '$';
        std::string text;
        EXPECT_EQ(::write(far_, &LAST, 1), 1);
        while (!text.ends_with(LAST)) {
            char bytes[4096];
            const ssize_t got = ::read(near_, bytes, sizeof bytes);
            if (got <= 0) {
                ADD_FAILURE() << "the terminal cannot be read";
                return text;
            }
            text.append(bytes, static_cast<std::size_t>(got));
        }
        text.pop_back();
        return text;
    }

    // Runs `body` in a child whose standard error is the terminal.
    template <class Body>
    void on_terminal(Body body) const {
        EXPECT_TRUE(in_child([&] { return ::dup2(far_, STDERR_FILENO) == STDERR_FILENO && body(); }));
    }

    static inline int far_ = -1;  // of the one test at a time

private:
    int near_ = -1;
};

void advance_to(progress_line *line, std::uint64_t items, std::uint64_t done) {
    for (std::uint64_t item = items - 255; item <= items; ++item) {  // the clock is not asked for every item
        line->advance(item, done);
    }
}

TEST_F(Progress, IsALineThatIsWrittenOverAndErasedAtTheEnd) {
    on_terminal([] {
        progress_line line("loading", 2000);
        std::this_thread::sleep_for(LONGER_THAN_BETWEEN_TWO_LINES);
        advance_to(&line, 256, 500);
        advance_to(&line, 512, 900);  // too early for another line
        std::this_thread::sleep_for(LONGER_THAN_BETWEEN_TWO_LINES);
        advance_to(&line, 768, 1999);
        return true;
    });
    EXPECT_EQ(shown(), std::string(AGAIN) + "loading: 256 items, 25 %" + AGAIN + "loading: 768 items, 99 %" + AGAIN);
}

TEST_F(Progress, HasNoShareOfWorkWhoseWholeIsUnknown) {
    on_terminal([] {
        progress_line line("dumping", 0);
        std::this_thread::sleep_for(LONGER_THAN_BETWEEN_TWO_LINES);
        advance_to(&line, 256, 0);
        return true;
    });
    EXPECT_EQ(shown(), std::string(AGAIN) + "dumping: 256 items" + AGAIN);
}

TEST_F(Progress, OfShortWorkIsNotShown) {
    on_terminal([] {
        progress_line line("loading", 100);
        advance_to(&line, 256, 100);
        return true;
    });
    EXPECT_EQ(shown(), "");
}

TEST_F(Progress, IsForTerminalsOnly) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    EXPECT_TRUE(in_child([&] {
        ::dup2(ends[1], STDERR_FILENO);
        progress_line line("loading", 0);
        std::this_thread::sleep_for(LONGER_THAN_BETWEEN_TWO_LINES);
        advance_to(&line, 256, 0);
        return true;
    }));
    ::close(ends[1]);
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 0);
    ::close(ends[0]);
}

int slow_input = -1;

// The whole program, its input so slow that the work is long.
TEST_F(Progress, OfALoadIsShown) {
    constexpr unsigned ITEMS = 24'000;  // about 2 MB, of which the program reads one at a time
    std::string set;
    for (unsigned i = 0; i < ITEMS; ++i) {
        set += R"({"item":{"root":"main","node":1,"path":"a/)" + std::to_string(100'000 + i) +
               R"(","type":"pm_values_parcel","record":{}}})" + "\n";
    }
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    slow_input = ends[0];
    std::thread writer([&] {
        std::size_t written = 0;
        while (written < set.size()) {
            const std::size_t end = written < set.size() / 2 ? set.size() * 3 / 4 : set.size();
            const ssize_t got = ::write(ends[1], set.data() + written, end - written);
            written += got > 0 ? static_cast<std::size_t>(got) : set.size();
            std::this_thread::sleep_for(LONGER_THAN_BETWEEN_TWO_LINES);
        }
        ::close(ends[1]);
    });
    before_start([] {
        ::dup2(slow_input, STDIN_FILENO);
        ::dup2(far_, STDERR_FILENO);
    });
    const outcome loaded = run({"load", "-"});
    ::close(ends[0]);
    writer.join();
    EXPECT_EQ(loaded.status, 0);
    EXPECT_EQ(loaded.out, "loaded 24000 items\n");
    const std::string text = shown();
    EXPECT_TRUE(text.starts_with(std::string(AGAIN) + "loading: ")) << text;
    EXPECT_TRUE(text.ends_with(std::string(" items") + AGAIN)) << text;
}

}  // namespace
