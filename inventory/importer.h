// Takes documents into an inventory.

#pragma once

#include "document/diff.h"
#include "document/document.h"
#include "document/rows.h"
#include "inventory/inventory.h"
#include "inventory/sqlite.h"

#include <optional>
#include <string>

namespace inventory
{

/// A document's bytes, unpacked.
struct Incoming {
    std::string file;
    std::string bytes;
    std::string hash; ///< by which documents are told apart
};

/// Reads all of a file; "-" is standard input.
Incoming incomingOf(const std::string& file);

class Importer
{
public:
    explicit Importer(Inventory& into);

    /// Whether the same document is there already.
    [[nodiscard]] bool holds(const Incoming& incoming);

    /// Takes a document in whole, or not at all.
    /// \return false: it was there already
    bool add(const Incoming& incoming, const document::Document& document);

private:
    /// A snapshot of the same system.
    struct Neighbour {
        int64_t snapshot = 0;
        std::string file;
    };

    std::optional<Neighbour> find(Statement& statement, std::string_view system, std::string_view time,
                                  bool complete);
    int64_t addSnapshot(const Incoming& incoming, const document::Document& document, std::string_view time);
    void addParts(int64_t snapshot, const document::Document& document, std::string_view time);
    void addChanges(int64_t before, const document::Document& old, int64_t after,
                    const document::Document& now);
    void addChange(const document::Change& change, document::Values& old, document::Values& now);

    Inventory& inventory;
    Database& database;
    Statement known;
    Statement previous;
    Statement next;
    Statement newSnapshot;
    Statement newDocument;
    Statement newPart;
    Statement newChange;
    Statement noChanges;
};

} // namespace inventory
