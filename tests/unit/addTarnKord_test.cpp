// What the run record holds, whoever reads it: its layout is an interface.

#include "addProcessKord.h"
#include "addTarnKord.h"
#include "scriptedClient.h"
#include "unit.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace
{

struct FieldSize {
    const char* name;
    size_t size;
    size_t expected;
};

/// A document or a log that got the number of standard output would have the last line in it.
TEST(Process, hasItsStandardStreamsAndNoFileMore)
{
    const size_t open = kordTest::openFiles();
    holdStandardStreams();
    EXPECT_EQ(kordTest::openFiles(), open);
    const kordTest::WithoutInput closed;
    holdStandardStreams();
    EXPECT_GE(fcntl(STDIN_FILENO, F_GETFD), 0);
}

TEST(RunRecord, isAsWideAsItsReadersExpect)
{
    constexpr size_t slots = 8;
    const FieldSize fields[] = {
        {"partnerLParID", sizeof(kordRec::partnerLParID), slots * 30},
        {"partnerLparName", sizeof(kordRec::partnerLparName), slots * 30},
        {"LParID", sizeof(kordRec::LParID), slots * 30},
        {"lparName", sizeof(kordRec::lparName), slots * 30},
        {"Hostname", sizeof(kordRec::Hostname), slots * 30},
        {"hslLumenPoolId", sizeof(kordRec::hslLumenPoolId), slots * 2},
        {"StorageFacilityImageID", sizeof(kordRec::StorageFacilityImageID), slots * 30},
        {"StorageFacilityImageMTMS", sizeof(kordRec::StorageFacilityImageMTMS), slots * 30},
        {"kordpStorageFacilityImageMTMS", sizeof(kordRec::kordpStorageFacilityImageMTMS), slots * 30},
        {"activePeerDomain", sizeof(kordRec::activePeerDomain), 30},
        {"nodeNameList", sizeof(kordRec::nodeNameList), 100},
        {"storageFacilityMTMS", sizeof(kordRec::storageFacilityMTMS), 30},
        {"kordpStorageFacilityMTMS", sizeof(kordRec::kordpStorageFacilityMTMS), 30},
        {"partnerSystemMTMS", sizeof(kordRec::partnerSystemMTMS), 30},
        {"managedSystemMTMS", sizeof(kordRec::managedSystemMTMS), 30},
        {"inputSystemMTMS", sizeof(kordRec::inputSystemMTMS), 30},
        {"kordpManagedSystemMTMS", sizeof(kordRec::kordpManagedSystemMTMS), 30},
        {"RackLocation", sizeof(kordRec::RackLocation), 30},
        {"Partitions_Resources", sizeof(kordRec::Partitions_Resources), 30},
        {"storageFacilityWWNN", sizeof(kordRec::storageFacilityWWNN), 17},
        {"systemSerial", sizeof(kordRec::systemSerial), 15},
        {"activePeerDomain_quay", sizeof(kordRec::activePeerDomain_quay), 30},
        {"trcfile", sizeof(kordRec::trcfile), 30},
        {"loginUserName", sizeof(kordRec::loginUserName), 30},
    };
    for (const FieldSize& field : fields)
        EXPECT_EQ(field.size, field.expected) << field.name;
}

TEST(HostDescription, holds255Characters)
{
    EXPECT_EQ(sizeof(userHostDescr::description), 256U);
}

ValeAttribute text(const char* name, const char* value)
{
    return {.name = name, .identifier = 0, .type = VALE_TEXT, .value = {.text = value}};
}

TEST(RunRecord, keepsTheNodeOfEveryPartition)
{
    kordRec record = unit::freshRecord();
    record.num_contacts = 2;
    copyText(record.LParID[0], "11");
    copyText(record.LParID[1], "12");
    unit::ScriptedClient client;
    const std::vector<ValeAttribute> first = {text("StorageFacilityImageID", "9999.A01.00XY121"),
                                              text("Hostname", "node-one")};
    const std::vector<ValeAttribute> second = {text("StorageFacilityImageID", "9999.A01.00XY122"),
                                               text("Hostname", "node-two")};
    std::vector<ValeQueryResponse> answers[] = {
        {{.error = {}, .handle = nullptr, .attributes = first.data(), .attributeCount = 2}},
        {{.error = {}, .handle = nullptr, .attributes = second.data(), .attributeCount = 2}}};
    client.answers("Orvik.ManagedNode", R"(HWModel="9999-B2C" && HWSerialNum="7ABCD12" && LParID="11")",
                   answers[0]);
    client.answers("Orvik.ManagedNode", R"(HWModel="9999-B2C" && HWSerialNum="7ABCD12" && LParID="12")",
                   answers[1]);
    EXPECT_EQ(queryValeId(&record), 0);
    EXPECT_STREQ(record.Hostname[0], "node-one");
    EXPECT_STREQ(record.Hostname[1], "node-two");
    EXPECT_STREQ(record.StorageFacilityImageID[1], "9999.A01.00XY122");
    EXPECT_STREQ(record.StorageFacilityImageMTMS[1], "9999*A01*00XY122");
    EXPECT_STREQ(record.kordpStorageFacilityImageMTMS[1], "9999-A01-00XY122");
}

TEST(CleanUp, givesTheResultOfTheLastSessionThatItEnds)
{
    char session;
    const auto open = reinterpret_cast<ValeSessionHandle>(&session);
    struct Case {
        std::vector<ValeSessionHandle kordRec::*> open;
        std::vector<int32_t> results;
        int32_t result;
    };
    const auto local = &kordRec::sess_hndl_LC;
    const auto domain = &kordRec::sess_hndl_DM;
    const auto shared = &kordRec::sess_hndl_SR;
    const std::vector<Case> cases = {{{}, {}, 0},
                                     {{local}, {5}, 5},
                                     {{local, domain, shared}, {0, 0, 0}, 0},
                                     {{local, domain, shared}, {5, 7, 0}, 0},
                                     {{local, domain, shared}, {0, 7, 9}, 9}};
    for (const Case& one : cases) {
        kordRec record = unit::freshRecord();
        for (const auto handle : one.open)
            record.*handle = open;
        unit::ScriptedClient client;
        client.ends(one.results);
        EXPECT_EQ(cleanUpKord(&record, nullptr, 3), one.result);
    }
}

} // namespace
