#include "documents.h"

#include "document/reader.h"
#include "inventory/inventory.h"
#include "platform/commandLine.h"
#include "platform/failure.h"
#include "platform/text.h"

namespace tool
{

void tell(const std::string& name, const std::vector<document::Finding>& findings, uint64_t findingCount,
          const document::Missing& missing)
{
    for (const document::Finding& finding : findings)
        platform::complain("kord", name + ':' + std::to_string(finding.line) + ": " + finding.what);
    const uint64_t more = findingCount - findings.size();
    if (more > 0) platform::complain("kord", name + ": " + std::to_string(more) + " more of these");
    const std::string incomplete = name + ": the document is incomplete: ";
    for (const std::string& what : wordsOf(missing))
        platform::complain("kord", incomplete + what);
}

void tell(const document::Document& document)
{
    tell(document.name, document.findings, document.findingCount, document.missing);
}

namespace
{

document::Document told(document::Document document)
{
    tell(document);
    return document;
}

} // namespace

std::string documentOf(const std::string& file)
{
    const std::vector<std::string> found = document::documentsOf(file);
    if (found.size() == 1) return found.front();
    throw document::Malformed(platform::shown(file) + ": the folder holds " +
                              (found.empty() ? "no document" : std::to_string(found.size()) + " documents") +
                              ": name one");
}

document::Document readDocument(const std::string& file)
{
    return told(document::readFile(documentOf(file)));
}

bool areSeveral(const std::vector<std::string>& files)
{
    if (files.size() != 1) return true;
    return inventory::isDatabase(files.front()) || document::documentsOf(files.front()).size() > 1;
}

bool attempt(const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const document::Malformed& malformed) {
        platform::complain("kord", malformed.what());
        return false;
    }
}

namespace
{

/// A file that is no inventory is one file in trouble among others.
inventory::Inventory openInventory(const std::string& file)
{
    try {
        return {file, inventory::Database::Access::read};
    } catch (const platform::Failure& failure) {
        throw document::Malformed(failure.what());
    }
}

} // namespace

int eachFile(const std::vector<std::string>& files, const std::function<void(const std::string&)>& use)
{
    int status = 0;
    const auto tried = [&](const std::function<void()>& work) {
        if (!attempt(work)) status = trouble;
    };
    for (const std::string& file : files) {
        tried([&] {
            for (const std::string& one : document::documentsOf(file))
                tried([&] { use(one); });
        });
    }
    return status;
}

int eachDocument(const std::vector<std::string>& files, const std::function<void(document::Document)>& use)
{
    return eachFile(files, [&](const std::string& file) {
        if (!inventory::isDatabase(file)) return use(readDocument(file));
        inventory::Inventory database = openInventory(file);
        database.eachLatest([&](document::Document document) { use(told(std::move(document))); });
    });
}

} // namespace tool
