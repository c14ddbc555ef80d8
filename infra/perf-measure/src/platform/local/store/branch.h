// Where items are kept: data roots, their branches on the nodes, and the processes that serve them.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

namespace store {

// One letter for each data root.
enum class root : char { main = 'm', responder = 'r', receive = 'x', checkpoint = 'c' };

struct root_name {
    root id;
    const char *word;  // in data sets
    const char *path;  // of the database
};
// In the order in which a dump has them.
inline constexpr root_name ROOTS[] = {
    {root::main, "main", "/oper/perf_meas/main/"},
    {root::responder, "resp", "/oper/perf_meas/resp/"},
    {root::receive, "rx", "/oper/perf_meas/rx/"},
    {root::checkpoint, "chkpt", "/oper/perf_meas/chkpt/"},
};

// The items of a data root on a node. An item's path is the one below its branch.
struct branch {
    root data_root;
    std::uint32_t node;

    auto operator<=>(const branch &) const = default;
};

inline constexpr std::size_t MAX_PATH_LENGTH = 400;  // bytes of an item's path

// State of the process that serves a branch.
enum class publisher_state : std::uint32_t { running, stopped, unreachable, starting };

}  // namespace store
