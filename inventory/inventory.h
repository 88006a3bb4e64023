// A fleet's documents in one SQLite database: every part of every document as a row, and what changed from
// one document of a system to the next.

#pragma once

#include "document/document.h"
#include "document/format.h"
#include "inventory/sqlite.h"

#include <functional>
#include <string>

namespace inventory
{

/// Whether a file is a database, by its first bytes.
bool isDatabase(const std::string& file);

class Inventory
{
public:
    /// Writing makes the database where there is none. What is no inventory, or one of a later version, is a
    /// platform::Failure.
    Inventory(const std::string& file, Database::Access access);

    /// Calls for the newest document of every system, in the systems' order.
    void eachLatest(const std::function<void(document::Document)>& use);

    /// A document as it was read when it came in.
    /// \param file that it came from
    [[nodiscard]] document::Document documentOf(int64_t snapshot, std::string_view file);

    /// Where the part with this serial number or identifier was: a row for each document that has it, and for
    /// each that it was gone from.
    /// \return how many rows there are
    size_t history(const std::string& key, document::Format format, bool header,
                   const document::Write& write);

    [[nodiscard]] Database& connection() { return database; }

private:
    void prepare();
    void judge();

    Database database;
};

} // namespace inventory
