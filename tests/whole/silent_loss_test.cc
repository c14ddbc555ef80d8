// SPDX-License-Identifier: Apache-2.0
// Nothing is lost without a word: a store with a cut, a changed bit, a page that is zeroed, swapped or overwritten, a
// changed head or page header gives its whole contents or a message, and no command ends by a signal.
//
// PM_MUTANTS sets how many damaged stores are tried, and prints what became of each kind; PM_MUTANTS_FROM is the first
// one's number.
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/errcode.h"
#include "tests/support/command.h"

namespace {

constexpr std::size_t PAGE = 4096;
constexpr std::size_t PAGE_HEADER = 16;
constexpr std::size_t HEAD = 152;  // bytes of a meta page that are in use
#ifdef PM_SANITIZE
constexpr unsigned MUTANTS = 12;
#else
constexpr unsigned MUTANTS = 240;
#endif

unsigned number_of(const char *variable, unsigned otherwise) {
    const char *text = std::getenv(variable);
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

class mutation {
public:
    mutation(unsigned seed, std::string *bytes) : random_(seed), bytes_(*bytes), kind_(seed % 8) {}

    // Damages the bytes; says how.
    std::string apply() {
        switch (kind_) {
        case 0: bytes_.resize(below(bytes_.size())); return "cut";
        case 1: return flip_bits();
        case 2: bytes_.replace(a_page(), PAGE, PAGE, '\0'); return "zeroed page";
        case 3: return swap_pages();
        case 4: return fill(a_page(), PAGE), "random page";
        case 5: return flip_in(below(2) * PAGE + below(HEAD)), "changed head";
        case 6: return flip_in(a_page() + below(PAGE_HEADER)), "changed page header";
        default: bytes_.replace(a_page(), PAGE, bytes_, a_page(), PAGE); return "page over another page";
        }
    }

private:
    std::size_t below(std::size_t end) { return random_() % end; }
    std::size_t a_page() { return below(bytes_.size() / PAGE) * PAGE; }
    void flip_in(std::size_t at) { bytes_[at] = static_cast<char>(bytes_[at] ^ (1 << below(8))); }
    std::string flip_bits() {
        for (std::size_t left = 1 + below(8); left > 0; --left) {
            flip_in(below(bytes_.size()));
        }
        return "flipped bits";
    }
    std::string swap_pages() {
        const std::size_t first = a_page();
        const std::size_t second = a_page();
        const std::string kept = bytes_.substr(first, PAGE);
        bytes_.replace(first, PAGE, bytes_, second, PAGE);
        bytes_.replace(second, PAGE, kept);
        return "swapped pages";
    }
    void fill(std::size_t at, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            bytes_[at + i] = static_cast<char>(random_());
        }
    }

    std::mt19937_64 random_;
    std::string &bytes_;
    unsigned kind_;
};

// What became of the stores that were damaged in one way.
struct tally {
    unsigned tried = 0;
    unsigned told = 0;    // some command said so
    unsigned silent = 0;  // some command's output differed, and it said nothing
};

struct asked {
    const char *program;
    std::vector<const char *> arguments;
};

const std::vector<asked> COMMANDS = {
    {PERF_STORE, {"dump"}},
    {PERF_STORE, {"ls"}},
    {PERF_STORE, {"get", "--root", "main", "--node", "0x100", "summary"}},
    {PERF_SHOW, {"-c", "1"}},
    {PERF_SHOW, {"-c", "9"}},
    {PERF_SHOW, {"-c", "17", "-b"}},
    {PERF_SHOW, {"-c", "17", "-o", "100"}},
    {PERF_SHOW, {"-c", "1", "-i", "eth0/0/0/3"}},
};

class SilentLoss : public testing::Test {
protected:
    void SetUp() override {
        const std::string set = own_.path() + "/set";
        const command_result loaded =
            run_command("perf-store gen --nodes 3 --interfaces 40 --policies 20 --endpoints 8 --tunnels 8 >" + set +
                            "; perf-store load " + set,
                        store());
        ASSERT_EQ(loaded.status, 0) << loaded.err;
        sound_ = read_file(store() + "/data.mdb");
        for (const asked &command : COMMANDS) {
            expected_.push_back(run(command));
            ASSERT_EQ(expected_.back().status, 0);
            ASSERT_EQ(expected_.back().err, "");
            ASSERT_GT(expected_.back().out.size(), 20U) << command.arguments[0];
        }
    }

    [[nodiscard]] std::string store() const { return own_.path() + "/store"; }

    // Without a shell: there are many.
    [[nodiscard]] command_result run(const asked &command) const {
        std::vector<char *> words{const_cast<char *>(command.program)};
        for (const char *each : command.arguments) {
            words.push_back(const_cast<char *>(each));
        }
        words.push_back(nullptr);
        const std::string out = own_.path() + "/out";
        const std::string err = own_.path() + "/err";
        const std::string url = "lmdb:" + store();
        const pid_t child = fork();
        if (child == 0) {
            setenv("OPSTORE_URL", url.c_str(), 1);
            setenv("TZ", "UTC", 1);
            setenv("PERF_SHOW_NOW", "1709647387042", 1);
            dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
            dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
            alarm(60);
            execv(command.program, words.data());
            std::_Exit(127);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0,
                read_file(out), read_file(err)};
    }

    // Whether a result that is not the expected one says why. No sound record has these texts.
    static bool says_so(const command_result &result) {
        bool found = !result.err.empty() || result.out.find("(damaged)") != std::string::npos;
        for (const errcode code : {OPSTORE_DAMAGED, PARCEL_MALFORMED, PARCEL_CHECKSUM, PARCEL_OTHER_TYPE,
                                   PARCEL_UNKNOWN_SCHEMA, PARCEL_SCHEMA_CHANGED}) {
            found = found || result.out.find(errcode_strerror(code)) != std::string::npos;
        }
        return found;
    }

    const temporary_folder own_;
    std::string sound_;
    std::vector<command_result> expected_;
};

TEST_F(SilentLoss, NoDamagedStoreGivesAnotherAnswer) {
    const unsigned from = number_of("PM_MUTANTS_FROM", 0);
    const unsigned to = from + number_of("PM_MUTANTS", MUTANTS);
    std::map<std::string, tally> kinds;
    for (unsigned seed = from; seed < to; ++seed) {
        std::string bytes = sound_;
        const std::string kind = mutation(seed, &bytes).apply();
        const std::string what = kind + ", mutant " + std::to_string(seed);
        std::filesystem::remove_all(store());
        std::filesystem::create_directory(store());
        write_file(store() + "/data.mdb", bytes);
        bool told = false;
        bool silent = false;
        for (std::size_t i = 0; i < COMMANDS.size(); ++i) {
            const command_result result = run(COMMANDS[i]);
            const std::string which = what + ", command " + std::to_string(i);
            EXPECT_EQ(result.signal, 0) << which;
            const bool same = result.out == expected_[i].out;
            told = told || says_so(result) || result.status != expected_[i].status;
            const bool explained = same || result.status == 1 || says_so(result);
            EXPECT_TRUE(explained) << which << " lost something in silence";
            silent = silent || !explained;
        }
        ++kinds[kind].tried;
        kinds[kind].told += told ? 1 : 0;
        kinds[kind].silent += silent ? 1 : 0;
    }
    unsigned told = 0;
    for (const auto &[kind, counted] : kinds) {
        told += counted.told;
        if (std::getenv("PM_MUTANTS") != nullptr) {
            std::printf("%-22s %6u tried, %6u told, %u silent\n", kind.c_str(), counted.tried, counted.told,
                        counted.silent);
        }
    }
    EXPECT_GT(told, (to - from) / 2) << "mutants are harmless";
}

}  // namespace
