// The document's file, and what its writers do with unusual values.

#include "elements.h"
#include "unit.h"

#include <gtest/gtest.h>

namespace
{

using unit::normal;
using unit::property;
using unit::resource;

const std::string path = "/var/adm/stockmere/VPD/addTarnKord_9999-B2C*7ABCD12.xml";

TEST(Writers, openArrayTracesItsSitesFirst)
{
    kordRec record = unit::freshRecord();
    EXPECT_EQ(unit::written(record, [](kordRec* r) { EXPECT_EQ(openArray(r, 7, "I"), 0); }),
              resource("Array", "I/A7"));
    EXPECT_EQ(unit::traceOf(record),
              (std::vector<std::string>{"0703:  arraySites = 7, I", ">>:  openArray resource"}));
}

TEST(Writers, withoutADocumentWriteNothing)
{
    kordRec record = unit::freshRecord();
    EXPECT_EQ(openInventory(&record), 0);
    EXPECT_EQ(openSystem(&record), 0);
    EXPECT_EQ(writeFanTray(&record, "L", "P", "R1"), 0);
    closeInventory(&record);
}

TEST(RackNumbers, loseTheirFirstCharacterAndHoldThree)
{
    const struct {
        const char* text;
        const char* value;
    } cases[] = {{"R12", "12"}, {"R", ""}, {"", ""}, {"R1234", "123"}, {"12", "2"}};
    for (const auto& [text, value] : cases) {
        kordRec record = unit::freshRecord();
        const std::string bytes =
            unit::written(record, [text = text](kordRec* r) { writeFanTray(r, "L", "P", text); });
        EXPECT_NE(bytes.find(property("R2", "Rack Number", "R2", value)), std::string::npos) << text;
    }
}

TEST(RackIdentifiers, areUnsigned)
{
    kordRec record = unit::freshRecord();
    const std::string bytes =
        unit::written(record, [](kordRec* r) { openRackEncl(r, "L", "R1", 4294967295U, "TM", "SE"); });
    EXPECT_NE(bytes.find(property("RK", "Rack Unique ID", "RK", "4294967295")), std::string::npos);
}

TEST(Values, ofAnyLengthAreWritten)
{
    kordRec record = unit::freshRecord();
    for (const size_t length : {3900U, 4096U, 4097U, 100'000U}) {
        const std::string level(length, 'v');
        EXPECT_EQ(unit::written(record, [&](kordRec* run) { writeVRMF(run, level.c_str()); }),
                  "<Property name=\"LE\" displayName=\"LIC VRMF\">\nLE\n<Value type=\"string\">" + level +
                      "</Value>\n</Property>\n");
    }
}

TEST(Values, ofAnyLengthStandTogether)
{
    kordRec record = unit::freshRecord();
    for (size_t length = 0; length < 1500; length += 7) {
        const std::string value(length, 'v');
        const char* const text = value.c_str();
        EXPECT_EQ(
            unit::written(record, [&](kordRec* run) { writeFCIC(run, "L", text, text, text, text, text); }),
            resource("Fiber Channel Interface Card", "L") +
                normal("S3", "Storage Facility MTMS", record.kordpStorageFacilityMTMS) +
                normal("S4", "Storage Facility Image MTMS", value) + normal("EC", "EC Level", value) +
                normal("LE", "Firmware Level", value) + normal("PN", "Part Number", value) +
                normal("SN", "Serial Number", value) +
                normal("DS", "System VPD", "Fiber Channel Interface Card") +
                normal("YL", "Hardware Location Code", "L") + "</Resource>\n");
    }
}

TEST(Values, ofADriveAreCutWhereTheyAreComposed)
{
    kordRec record = unit::freshRecord();
    const std::string name(600, 'n');
    const std::string bytes = unit::written(record, [&](kordRec* run) {
        writeDDM(run, "L", "I", "E", "F", "P", "S", name.c_str(), "M", 1, 2, 3, 4, 5, "T", 6);
    });
    EXPECT_NE(bytes.find("\nDP\n<Value type=\"string\">DI=" + name.substr(0, 496) + "</Value>"),
              std::string::npos)
        << bytes;
}

TEST(Identifiers, areCutAtTheirSize)
{
    kordRec record = unit::freshRecord();
    const std::string location(120, 'L');
    const std::string bytes = unit::written(
        record, [](kordRec* r) { openCecEnclosurePartitions(r, std::string(120, 'L').c_str(), "7"); });
    EXPECT_EQ(bytes, resource(location.substr(0, 99), location.substr(0, 99)));
}

TEST(Hosts, eachEndInAComma)
{
    kordRec record = unit::freshRecord();
    userHostDescr second{1, "second", nullptr};
    userHostDescr first{2, "first", &second};
    const std::string head = "<Property name=U2 displayName=\"Host Inventory\">\nU2\n<Value type=\"string\">";
    const std::string tail = "</Value>\n</Property>\n";
    const auto write = [](userHostDescr* entry) {
        return [entry](kordRec* r) { EXPECT_EQ(writeHostDescription(r, entry), 0); };
    };
    EXPECT_EQ(unit::written(record, write(&first)), head + "first=2,second=1," + tail);
    EXPECT_EQ(unit::written(record, write(nullptr)), head + tail);
}

class Document : public testing::Test
{
protected:
    void SetUp() override { std::filesystem::remove_all(path); }
    void TearDown() override { std::filesystem::remove_all(path); }

    /// Starts a document and gives what it then holds.
    static std::string started(bool expectStart = true)
    {
        kordRec record = unit::freshRecord();
        EXPECT_EQ(startXml(&record), expectStart ? 0 : 1);
        EXPECT_EQ(record.inp != nullptr, expectStart);
        if (record.inp == nullptr) {
            // The text ends in a line feed of its own, and is wrapped.
            const std::string text = " open xmlfile error " + path + " \n";
            EXPECT_EQ(unit::readFile(unit::logPath(record.trcfile)).substr(unit::stampLength),
                      "0700: " + text.substr(0, 57) + "\n" + text.substr(57) + "\n");
            return {};
        }
        fputs("new\n", record.inp);
        fclose(record.inp);
        return unit::readFile(path);
    }
};

TEST_F(Document, takesThePlaceOfAnEarlierOne)
{
    unit::writeFile(path, "a document of an earlier run\n");
    EXPECT_EQ(started(), "new\n");
}

TEST_F(Document, isStartedWithoutStandardInput)
{
    const kordTest::WithoutInput closed;
    EXPECT_EQ(started(), "new\n");
}

TEST_F(Document, reusesAnEmptyFile)
{
    unit::writeFile(path, "");
    struct stat before {
    };
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    EXPECT_EQ(started(), "new\n");
    struct stat after {
    };
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(Document, followsNoLink)
{
    const std::string target = "/var/adm/stockmere/VPD/target";
    unit::writeFile(target, "kept\n");
    std::filesystem::create_symlink(target, path);
    EXPECT_EQ(started(), "new\n");
    EXPECT_EQ(unit::readFile(target), "kept\n");
    std::filesystem::remove(target);
    std::filesystem::remove(path);
    std::filesystem::create_symlink("/var/adm/stockmere/VPD/nowhere", path);
    EXPECT_EQ(started(), "new\n");
    EXPECT_FALSE(std::filesystem::exists("/var/adm/stockmere/VPD/nowhere"));
}

TEST_F(Document, takesThePlaceOfAPipe)
{
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    EXPECT_EQ(started(), "new\n");
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
}

TEST_F(Document, neverRemovesAFolder)
{
    std::filesystem::create_directory(path);
    started(false);
    EXPECT_TRUE(std::filesystem::is_directory(path));
}

} // namespace
