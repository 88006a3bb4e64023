#include "documents.h"

#include "document/reader.h"
#include "inventory/inventory.h"
#include "platform/commandLine.h"

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

document::Document readDocument(const std::string& file)
{
    return told(document::readFile(file));
}

int eachFile(const std::vector<std::string>& files, const std::function<void(const std::string&)>& use)
{
    constexpr int trouble = 2;
    int status = 0;
    const auto attempt = [&](const std::function<void()>& work) {
        try {
            work();
        } catch (const document::Malformed& malformed) {
            platform::complain("kord", malformed.what());
            status = trouble;
        }
    };
    for (const std::string& file : files) {
        attempt([&] {
            for (const std::string& one : document::documentsOf(file))
                attempt([&] { use(one); });
        });
    }
    return status;
}

int eachDocument(const std::vector<std::string>& files, const std::function<void(document::Document)>& use)
{
    return eachFile(files, [&](const std::string& file) {
        if (!inventory::isDatabase(file)) return use(readDocument(file));
        inventory::Inventory database(file, inventory::Database::Access::read);
        database.eachLatest([&](document::Document document) { use(told(std::move(document))); });
    });
}

} // namespace tool
