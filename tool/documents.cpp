#include "documents.h"

#include "document/reader.h"
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
    for (const std::string& what : wordsOf(missing))
        platform::complain("kord", name + ": the document is incomplete: " + what);
}

document::Document readDocument(const std::string& file)
{
    document::Document document = document::readFile(file);
    tell(document.name, document.findings, document.findingCount, document.missing);
    return document;
}

int eachDocument(const std::vector<std::string>& files, const std::function<void(document::Document)>& use)
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
                attempt([&] { use(readDocument(one)); });
        });
    }
    return status;
}

} // namespace tool
