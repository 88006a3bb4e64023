#include "document/page.h"

#include "document/pageData.h"
#include "document/pageText.h"

namespace document
{

namespace
{

/// Without "<" and "&" no text can end the element that the data stands in, nor begin another.
std::string withoutMarkup(const std::string& data)
{
    std::string safe;
    safe.reserve(data.size());
    for (const char byte : data) {
        switch (byte) {
        case '<':
            safe += "\\u003c";
            break;
        case '>':
            safe += "\\u003e";
            break;
        case '&':
            safe += "\\u0026";
            break;
        default:
            safe += byte;
        }
    }
    return safe;
}

std::string pageOf(const std::string& data)
{
    return std::string(pageStart) + withoutMarkup(data) + std::string(pageEnd);
}

} // namespace

std::string page(const Document& document)
{
    return pageOf(pageData(document));
}

std::string page(const Changes& changes)
{
    return pageOf(pageData(changes));
}

} // namespace document
