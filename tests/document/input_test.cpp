// Where documents come from.

#include "descriptors.h"
#include "document/input.h"
#include "document/scanner.h"
#include "tempFolder.h"
#include "writing.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

namespace
{

using document::Input;
using document::Malformed;
using namespace kordTest;
namespace fs = std::filesystem;

class InputTest : public testing::Test
{
protected:
    fs::path write(const std::string& name, const std::string& bytes)
    {
        std::ofstream(folder.path() / name, std::ios::binary) << bytes;
        return folder.path() / name;
    }

    fs::path writePacked(const std::string& name, const std::string& bytes)
    {
        fs::path path = folder.path() / name;
        gzFile file = gzopen(path.c_str(), "wb");
        gzwrite(file, bytes.data(), static_cast<unsigned>(bytes.size()));
        gzclose(file);
        return path;
    }

    static std::string contentOf(Input& input)
    {
        std::string content;
        std::array<char, 1000> bytes{};
        while (const size_t count = input.read(bytes))
            content.append(bytes.data(), count);
        return content;
    }

    static std::string contentOf(const fs::path& file)
    {
        Input input(file);
        return contentOf(input);
    }

    TempFolder folder;
};

std::string longText()
{
    std::string text;
    for (int i = 0; i < 100'000; ++i)
        text += std::to_string(i * 7919) + '\n';
    return text;
}

TEST_F(InputTest, ReadsAFilePackedOrNot)
{
    for (const std::string& text :
         {std::string(), std::string("short"), std::string("\x1f\0", 2), longText()}) {
        EXPECT_EQ(contentOf(write("plain", text)), text);
        EXPECT_EQ(contentOf(writePacked("packed", text)), text);
    }
}

TEST_F(InputTest, LeavesNoFileOpen)
{
    const auto before = openFiles();
    contentOf(write("plain", "text"));
    contentOf(writePacked("packed", "text"));
    EXPECT_EQ(openFiles(), before);
}

TEST_F(InputTest, ReadsWhatIsLeftOfAPackedFile)
{
    const std::string text = longText();
    const fs::path path = writePacked("packed", text);
    fs::resize_file(path, fs::file_size(path) / 2);
    Input input(path);
    const std::string content = contentOf(input);
    EXPECT_TRUE(input.isCut());
    EXPECT_GT(content.size(), text.size() / 4);
    EXPECT_TRUE(text.starts_with(content));
}

TEST_F(InputTest, TellsOfACutPackedDocument)
{
    const fs::path path = writePacked("packed", ofPartitions(resource("P", "S-1", hosts(longText()))));
    fs::resize_file(path, fs::file_size(path) / 2);
    Input input(path);
    document::Scanner scanner(input);
    while (scanner.next().kind != document::Event::Kind::end) {
    }
    EXPECT_FALSE(scanner.complete());
    ASSERT_EQ(scanner.findings().size(), 1U);
    EXPECT_EQ(scanner.findings()[0].what, "the packed document ends before its time");
    EXPECT_EQ(scanner.findings()[0].line, 13U); // where the hosts start
}

TEST_F(InputTest, SaysWhatCannotBeRead)
{
    const auto fault = [](const fs::path& path) -> std::string {
        try {
            contentOf(path);
        } catch (const Malformed& malformed) {
            return malformed.what();
        }
        return "";
    };
    EXPECT_EQ(fault("/no/such/file"), "/no/such/file: No such file or directory");
    EXPECT_EQ(fault(folder.path()), folder.path().string() + ": Is a directory");
    const fs::path damaged = writePacked("damaged", longText());
    std::fstream(damaged, std::ios::in | std::ios::out | std::ios::binary).seekp(5000) << "damage";
    EXPECT_THAT(fault(damaged), testing::StartsWith(damaged.string() + ": cannot be unpacked: "));
}

TEST_F(InputTest, AFolderStandsForItsDocuments)
{
    for (const char* name : {"addTarnKord_B.xml", "addTarnKord_D.xml", "addTarnKord_A.xml.gz",
                             "addTarnKord_C.xml.old", "other.xml", "addTarnKord_A.xml", "addTarnKord_C.xml"})
        write(name, "");
    const auto path = [&](const char* name) { return (folder.path() / name).string(); };
    EXPECT_EQ(document::documentsOf(folder.path()),
              (std::vector<std::string>{path("addTarnKord_A.xml"), path("addTarnKord_A.xml.gz"),
                                        path("addTarnKord_B.xml"), path("addTarnKord_C.xml"),
                                        path("addTarnKord_D.xml")}));
    EXPECT_EQ(document::documentsOf(path("other.xml")), std::vector<std::string>{path("other.xml")});
    EXPECT_EQ(document::documentsOf("-"), std::vector<std::string>{"-"});
}

TEST_F(InputTest, SaysWhyAFolderCannotBeRead)
{
    std::string fault;
    try {
        const WithoutFiles none;
        document::documentsOf(folder.path());
    } catch (const Malformed& malformed) {
        fault = malformed.what();
    }
    EXPECT_EQ(fault, folder.path().string() + ": Too many open files");
}

} // namespace
