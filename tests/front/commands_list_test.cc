// SPDX-License-Identifier: Apache-2.0
// examples/commands.txt, which the documents are made from, against the command table.
#include <algorithm>
#include <fstream>
#include <map>

#include "front/command_table.h"
#include "front/dispatch.h"
#include "tests/front/front_test.h"

namespace {

// What the list says of a command type.
struct listed {
    std::string nodes, root, path, record;
    std::size_t forms = 0;
};

// The fields of a line, which " | " separates.
std::vector<std::string> fields_of(const std::string &line) {
    std::vector<std::string> fields;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 3) {
        end = line.find(" | ", begin);
        fields.push_back(line.substr(begin, end - begin));
    }
    return fields;
}

std::map<std::uint32_t, listed> read_list() {
    std::map<std::uint32_t, listed> types;
    std::uint32_t type = 0;
    std::ifstream in(PM_COMMANDS);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with(' ')) {
            EXPECT_EQ(fields_of(line).size(), 4U) << line;
            ++types[type].forms;
        } else if (!line.empty() && line[0] >= '0' && line[0] <= '9') {
            const std::vector<std::string> fields = fields_of(line);
            EXPECT_EQ(fields.size(), 6U) << line;
            type = static_cast<std::uint32_t>(std::stoul(line));
            EXPECT_FALSE(types.contains(type)) << "listed twice: " << line;
            types[type] = {fields.at(1), fields.at(2), fields.at(3), fields.at(4), 0};
        }
    }
    return types;
}

std::string nodes_word(pm_show_nodes nodes) {
    switch (nodes) {
    case pm_show_nodes::all: return "all";
    case pm_show_nodes::local: return "local";
    case pm_show_nodes::hosting: return "interface";
    }
    return "";
}

class CommandsListTest : public FrontTest {
protected:
    // What the table says of a type that has one row, in the words of the list.
    listed described(const pm_show_command &row) {
        given("-c " + std::to_string(row.type));
        pm_show_request request{};
        pm_show_path item_path = "";
        EXPECT_EQ(pm_show_build_request(&request, item_path), pm_show_build::ready);
        listed result;
        result.nodes = nodes_word(row.nodes);
        result.root = std::string(row.root).substr(std::string("/oper/perf_meas/").size());
        result.root.pop_back();  // the last '/'
        result.path = item_path;
        result.path += row.single == pm_show_single::by_name         ? "NAME"
                       : row.single == pm_show_single::by_session_id ? "ID"
                       : row.single == pm_show_single::never         ? " (all items)"
                                                                     : "";
        result.record = row.record()->name;
        return result;
    }
};

TEST_F(CommandsListTest, NamesTheTypesOfTheTableAndShowsThem) {
    const std::map<std::uint32_t, listed> list = read_list();
    for (const pm_show_command &row : pm_show_commands()) {
        EXPECT_TRUE(list.contains(row.type)) << "type " << row.type << " is not in the list";
    }
    for (const auto &[type, line] : list) {
        EXPECT_FALSE(pm_show_commands_of(type).empty()) << "type " << type << " is not in the table";
        EXPECT_GT(line.forms, 0U) << "type " << type << " has no form";
    }
}

TEST_F(CommandsListTest, SaysOfEveryTypeWhatTheTableSays) {
    const std::map<std::uint32_t, listed> list = read_list();
    for (const pm_show_command &row : pm_show_commands()) {
        if (row.variant != pm_show_variant::only || !list.contains(row.type)) {
            continue;
        }
        SCOPED_TRACE(row.type);
        listed line = list.at(row.type);
        if (line.path.ends_with(" *")) {  // takes a filter
            line.path.resize(line.path.size() - 2);
        }
        const listed expected = described(row);
        EXPECT_EQ(line.nodes, expected.nodes);
        EXPECT_EQ(line.root, expected.root);
        EXPECT_EQ(line.path, expected.path);
        EXPECT_EQ(line.record, expected.record);
    }
}

}  // namespace
