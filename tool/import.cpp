// kord import: documents into an inventory database.

#include "commands.h"
#include "documents.h"
#include "output.h"

#include "document/reader.h"
#include "inventory/importer.h"
#include "platform/failure.h"
#include "platform/text.h"

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace tool
{

namespace
{

struct ImportOptions {
    std::string database;
    std::vector<std::string> files;
};

/// How far the work has come, on a terminal that shows messages: a line that goes before anything else is
/// told.
class FileLine
{
public:
    FileLine(size_t number, const std::string& file)
    {
        const std::string line = std::to_string(number) + ": " + platform::shown(file);
        if (stands) write("\r" + platform::cutTo(line, Output::columns() - 1) + "\x1b[K");
    }
    ~FileLine() { clear(); }
    FileLine(const FileLine&) = delete;
    FileLine& operator=(const FileLine&) = delete;

    void clear()
    {
        if (std::exchange(stands, false)) write("\r\x1b[K");
    }

private:
    static void write(const std::string& text) { std::fputs(text.c_str(), stderr); }

    bool stands = isatty(STDERR_FILENO) != 0;
};

class Import
{
public:
    explicit Import(const std::string& database)
        : inventory(database, inventory::Database::Access::write), importer(inventory)
    {
    }

    int run(const std::vector<std::string>& files)
    {
        return eachFile(files, [&](const std::string& file) { take(file); });
    }

    [[nodiscard]] std::string result() const
    {
        std::string text =
            std::to_string(imported) + (imported == 1 ? " document" : " documents") + " imported";
        if (known > 0) text += ", " + std::to_string(known) + " there already";
        return text + '\n';
    }

private:
    void take(const std::string& file)
    {
        FileLine progress(imported + known + 1, file);
        const inventory::Incoming incoming = inventory::incomingOf(file);
        if (importer.holds(incoming)) {
            ++known;
            return;
        }
        document::Input input(incoming.file, incoming.bytes);
        const document::Document document = document::read(input);
        progress.clear();
        tell(document);
        ++(importer.add(incoming, document) ? imported : known);
    }

    inventory::Inventory inventory;
    inventory::Importer importer;
    size_t imported = 0;
    size_t known = 0;
};

int import(const ImportOptions& options, Output& output)
{
    std::signal(SIGXFSZ, SIG_IGN); // a database that must not grow is a full disk, and told like one
    Import work(options.database);
    try {
        const int status = work.run(options.files);
        output.write(work.result());
        return status;
    } catch (const platform::Failure& failure) {
        output.write(work.result());
        output.flush();
        throw;
    }
}

} // namespace

platform::Command importCommand()
{
    const auto options = std::make_shared<ImportOptions>();
    return writing(
        {.name = "import",
         .help = "Put documents into an inventory database, which is made where there is none",
         .arguments = {{.name = "DATABASE", .into = &options->database, .help = "The SQLite database"},
                       {.name = "FILE",
                        .into = &options->files,
                        .help = "A document, a folder of documents or - for standard input"}}},
        [options](Output& output) { return import(*options, output); });
}

} // namespace tool
