#include "document/reader.h"

#include "document/builder.h"
#include "document/completeness.h"
#include "document/references.h"
#include "document/scanner.h"

namespace document
{

namespace
{

class Reader
{
public:
    explicit Reader(Input& input) : scanner(input), builder(scanner.name()) {}

    Document read()
    {
        for (;;) {
            const Event& event = scanner.next();
            completeness.see(event);
            if (event.kind == Event::Kind::end) break;
            take(event);
        }
        if (!builder.hasPart()) throw Malformed(scanner.name() + ": there is no managed system");
        Document document = builder.finish();
        document.missing = completeness.missing();
        document.findings = scanner.findings();
        document.findingCount = scanner.findingCount();
        return document;
    }

private:
    void take(const Event& event)
    {
        switch (event.kind) {
        case Event::Kind::start:
            return builder.timestamp(event.timestamp);
        case Event::Kind::listStart:
            return builder.openList(meant(event.name, name));
        case Event::Kind::listEnd:
            return builder.closeList();
        case Event::Kind::resourceStart:
            return builder.openPart(meant(event.name, name), meant(event.id, id));
        case Event::Kind::resourceEnd:
            return builder.closePart();
        case Event::Kind::property:
            return builder.property(
                {.code = event.code, .label = meant(event.label, name), .reversed = event.reversed},
                meant(event.value, value));
        case Event::Kind::cut:
        case Event::Kind::end:
            return;
        }
    }

    Scanner scanner;
    Completeness completeness;
    Builder builder;
    std::string name; ///< texts as they are meant, where they hold references
    std::string id;
    std::string value;
};

} // namespace

Document read(Input& input)
{
    return Reader(input).read();
}

Document readFile(const std::string& file)
{
    Input input(file);
    return read(input);
}

} // namespace document
