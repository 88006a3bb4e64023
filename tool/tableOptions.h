// The options of commands that print a table.

#pragma once

#include "document/format.h"
#include "platform/commandLine.h"

#include <string>

namespace tool
{

struct TableOptions {
    std::string word = "table";
    bool noHeader = false;

    [[nodiscard]] document::Format format() const
    {
        if (word == "csv") return document::Format::csv;
        if (word == "json") return document::Format::json;
        return word == "jsonl" ? document::Format::lines : document::Format::table;
    }

    platform::Option formatOption()
    {
        return {.names = "--format",
                .into = &word,
                .help = "How to write the list",
                .value = "table|csv|json|jsonl"};
    }

    platform::Option headerOption()
    {
        return {.names = "--no-header", .into = &noHeader, .help = "Without the line of column names"};
    }
};

} // namespace tool
