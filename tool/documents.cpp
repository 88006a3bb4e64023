#include "documents.h"

#include "document/reader.h"
#include "platform/commandLine.h"

namespace tool
{

document::Document readDocument(const std::string& file)
{
    document::Document document = document::readFile(file);
    for (const std::string& what : document.missing)
        platform::complain("kord", document.name + ": the document is incomplete: " + what);
    return document;
}

int eachDocument(const std::vector<std::string>& files, const std::function<void(document::Document)>& use)
{
    constexpr int trouble = 2;
    int status = 0;
    for (const std::string& file : files) {
        try {
            use(readDocument(file));
        } catch (const document::Malformed& malformed) {
            platform::complain("kord", malformed.what());
            status = trouble;
        }
    }
    return status;
}

} // namespace tool
