// SPDX-License-Identifier: Apache-2.0
// The data roots of the operational state database, one for each publishing process.
//
// The items of a root are kept by node: "<path of the root>node/<id in hex>/<item path>".
#pragma once

namespace path_grammar {

// The value is the root's letter in the keys of a store.
enum class root : char { main = 'm', responder = 'r', receive = 'x', checkpoint = 'c' };

struct root_name {
    root id;
    const char *word;  // in data sets
    const char *path;  // of the database
};

inline constexpr root_name ROOTS[] = {
    {root::main, "main", "/oper/perf_meas/main/"},
    {root::responder, "resp", "/oper/perf_meas/resp/"},
    {root::receive, "rx", "/oper/perf_meas/rx/"},
    {root::checkpoint, "chkpt", "/oper/perf_meas/chkpt/"},
};

constexpr const char *path_of(root wanted) {
    const root_name *row = ROOTS;
    while (row->id != wanted) {
        ++row;
    }
    return row->path;
}

}  // namespace path_grammar
