// What incomplete documents are said to lack.

#include "document/completeness.h"
#include "writing.h"

#include <gtest/gtest.h>

namespace
{

using namespace kordTest;
using Texts = std::vector<std::string>;

Texts missing(const std::string& text)
{
    document::Input input("test.xml", text);
    document::Scanner scanner(input);
    document::Completeness completeness;
    for (;;) {
        const document::Event& event = scanner.next();
        completeness.see(event);
        if (event.kind == document::Event::Kind::end) return wordsOf(completeness.missing());
    }
}

std::string share(const std::string& enclosure, const std::string& partition)
{
    const std::string id = enclosure + '-' + partition;
    return resource("Larkspur", enclosure, list("Enclosures Partitions", resource(id, id, "")));
}

std::string partition(const std::string& number)
{
    return resource("P", "SYSTEM-1-" + number, "");
}

TEST(Completeness, ADocumentWithItsPartitionsAndItsEndIsComplete)
{
    EXPECT_EQ(missing(ofSystem(list("Enclosures", share("U-P1", "1") + share("U-P2", "2") +
                                                      resource("TARN Rack", "U",
                                                               list("Global Resources",
                                                                    resource("Fan Tray", "U-A1", "")))) +
                               list("Partitions", partition("1") + partition("2")))),
              Texts{});
}

TEST(Completeness, ThePartitionsAreMissing)
{
    EXPECT_EQ(missing(ofEnclosures(share("U", "1"))), Texts{"the partitions"});
    EXPECT_EQ(missing(ofPartitions("")), Texts{"the partitions"});
}

TEST(Completeness, APartitionThatAnEnclosureNamesIsMissing)
{
    EXPECT_EQ(missing(ofSystem(list("Enclosures", share("U", "1") + share("V", "3") + share("W", "2")) +
                               list("Partitions", partition("1")))),
              (Texts{"partition 2", "partition 3"}));
}

TEST(Completeness, TheEndIsMissing)
{
    const std::string text = ofPartitions(partition("1"));
    EXPECT_EQ(missing(text.substr(0, text.size() - 2)), Texts{"the end"});
    EXPECT_EQ(missing(text.substr(0, text.find("<ResourceList"))), (Texts{"the partitions", "the end"}));
}

} // namespace
