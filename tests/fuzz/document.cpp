// A document of any bytes: what is mended is XML, balanced, the same when mended again, and cut documents
// too. An input that does not begin as a document stands inside one.

#include "fuzz.h"

#include "document/mend.h"

#include <libxml/parser.h>
#include <optional>

namespace
{

/// The document's bytes as XML; none where they are no document.
std::optional<std::string> mended(const std::string& bytes, document::Completeness& completeness)
{
    constexpr size_t longest = size_t{1} << 20U;
    document::Input input("document", bytes);
    document::Scanner scanner(input, longest);
    std::string xml;
    try {
        document::mend(scanner, completeness, [&](std::string_view piece) { xml += piece; });
    } catch (const document::Malformed&) {
        return std::nullopt;
    }
    fuzz::require(scanner.findings().size() <= document::Scanner::mostFindings, "the findings have a bound");
    fuzz::require(scanner.findingCount() >= scanner.findings().size(), "all findings are counted");
    return xml;
}

bool isWellFormed(const std::string& xml)
{
    xmlParserCtxt* const context = xmlNewParserCtxt();
    xmlDoc* const parsed =
        xmlCtxtReadMemory(context, xml.data(), static_cast<int>(xml.size()), nullptr, nullptr,
                          XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    const bool wellFormed = context->wellFormed != 0;
    xmlFreeDoc(parsed);
    xmlFreeParserCtxt(context);
    return wellFormed;
}

void check(const std::string& bytes)
{
    document::Completeness before;
    const auto once = mended(bytes, before);
    if (!once) return;
    fuzz::require(isWellFormed(*once), "a mended document is well-formed");
    document::Completeness after;
    const auto twice = mended(*once, after);
    fuzz::require(twice.has_value() && *twice == *once, "mending again changes nothing");
    fuzz::require(wordsOf(before.missing()) == wordsOf(after.missing()),
                  "a mended document lacks what it lacked");
}

const std::string head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<com.orvik.inventory verion=\"1.0\">\n"
    "<ResourceSet class=\"com.orvik.inventory.Hardware\" type=\"Hardware\" version=\"1.0\" "
    "timestamp=\"1795268463.5\">\n";
const std::string start = "<Resource displayName=\"S\" uniqueId=\"S\">\nS\n"
                          "<Property name=\"S3\" displayName=\"Storage Facility MTMS\">\nS3\n"
                          "<Value type=\"string\">F</Value>\n</Property>\n";
const std::string tail = "</Resource>\n</ResourceSet>\n</com.orvik.inventory>\n";

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string bytes(fuzz::Input(data, size).bytes());
    if (bytes.starts_with("<?xml")) {
        check(bytes);
    } else {
        check(head + start + bytes + tail);
        check(head + start + bytes);
    }
    return 0;
}
