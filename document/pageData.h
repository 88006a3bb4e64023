// A document, or what differs between two, as the page's script reads it.
//
// A page of a hundred thousand drives has to be small and quick to open. So the parts of a kind are a table
// by columns, those of the table of parts: of each column its distinct values stand once, and a row goes by a
// character or two. Identifiers and properties are told as patterns of literal text and columns, from which
// the script makes the document's own text again; most of them are the same for all parts of a kind.

#pragma once

#include "document/diff.h"
#include "document/document.h"

#include <string>

namespace document
{

/// JSON:
///
///     "system", "timestamp": of the document, "source": the file; "missing", "findings": what it lacks and
///                            what the collector would not have written, "findingCount": of how much
///     "kinds":     of each { "word", "singular", "plural", "counted", "columns": [[name, type, unit,
///     meaning,
///                  source, shown], ...], "rows", "old": how many of them, the last ones, only the older of
///                  two documents tells, and by column "name", "list", "parent": the number of the row
///                  around, all kinds counted on, or -1, "id": an index of patterns, "shape": one of shapes,
///                  "listed": how often the document lists it, "values": [a column's values, ...] }
///     "patterns":  of each its pieces: a text, the index of a column, -1: the identifier of the row around,
///                  -2: the row's own, -3: its name
///     "shapes":    of each its properties: [code, label, pattern]
///     "absent":    [kind, row around] of every place for a part that has none
///     "changes":   what `writeJson` tells of the changes; null in the page of one document
///
/// A column is [distinct values, indexes]: the indexes in as many of the 64 digits 0-9A-Za-z-_ each as the
/// greatest needs, "" where every row has the next value, or all the only one.
std::string pageData(const Document& document);
std::string pageData(const Changes& changes);

} // namespace document
