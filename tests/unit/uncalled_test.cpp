// The collectors that belong to the interface although no run calls them, on the simulated client.

#include "unit.h"

#include <gtest/gtest.h>

namespace
{

using Lines = std::vector<std::string>;

class Uncalled : public testing::Test
{
protected:
    void SetUp() override
    {
        record = unit::freshRecord();
        ASSERT_EQ(vale_start_session(nullptr, 0, 2, &record.sess_hndl_SR), 0);
        ASSERT_EQ(vale_start_session(nullptr, 0, 4, &record.sess_hndl_DM), 0);
    }
    void TearDown() override
    {
        vale_end_session(record.sess_hndl_SR);
        vale_end_session(record.sess_hndl_DM);
    }

    /// What a collector asks the client first, as the journal shows it.
    template <typename Call>
    std::string asked(Call call)
    {
        const std::string added = unit::journaled([&] { call(&record); });
        const size_t begin = added.find("\"vale\":");
        return added.substr(begin, added.find(",\"result\"") - begin);
    }

    kordRec record{};
};

TEST_F(Uncalled, facilityPowerIsOff)
{
    EXPECT_EQ(querySFState(&record), 0);
    EXPECT_EQ(unit::traceOf(record), (Lines{"==>:  querySFState"}));
}

TEST_F(Uncalled, facilityIsMissing)
{
    copyText(record.storageFacilityMTMS, "none");
    EXPECT_EQ(querySFState(&record), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"==>:  querySFState", "0101:  no res  array_cnt_sf=0",
                                            "==>:  handleErrKord querySFState, e"}));
}

TEST_F(Uncalled, facilitySessionIsMissing)
{
    kordRec alone = record;
    alone.sess_hndl_SR = nullptr;
    EXPECT_EQ(querySFState(&alone), -1);
    const Lines lines = unit::traceOf(alone);
    ASSERT_GE(lines.size(), 3U);
    EXPECT_TRUE(lines[1].starts_with("0100:  SF rRc= 1, ")) << lines[1];
    EXPECT_EQ(lines.back(), "==>:  handleErrKord querySFState, r");
}

TEST_F(Uncalled, sharedSessionIsMissing)
{
    kordRec alone = record;
    alone.sess_hndl_SR = nullptr;
    EXPECT_EQ(querySFSystemState(&alone), -1);
    EXPECT_EQ(queryRackEnclMTMS(&alone, "R1"), -1);
    EXPECT_EQ(queryStoragePlex(&alone), -1);
    Lines reports;
    for (const std::string& line : unit::traceOf(alone)) {
        if (line.starts_with("==>:  handleErrKord")) reports.push_back(line);
    }
    EXPECT_EQ(reports,
              (Lines{"==>:  handleErrKord querySFSystemState, r", "==>:  handleErrKord queryRackEnclMTMS, r",
                     "==>:  handleErrKord queryStoragePlex, r"}));
}

TEST_F(Uncalled, askForTheStatesThatChange)
{
    EXPECT_EQ(asked(querySFState),
              R"("vale":"query_d_select","scope":2,"class":"Orvik.TarnStorageFacility",)"
              R"("selection":"storageFacilityMTMS=\"9999-A01*00XY1230\"","attributes":["PowerState"])");
    EXPECT_EQ(asked(querySFSystemState),
              R"("vale":"query_d_select","scope":2,"class":"Orvik.TarnStorageFacilitySystem",)"
              R"("selection":"managedSystemMTMS=\"9999-B2C*7ABCD12\"","attributes":["powerRunState"])");
}

TEST_F(Uncalled, askForTheConsolesProperties)
{
    copyText(record.activePeerDomain_quay, "9999.A01.00XY1230");
    const auto askedInDocument = [&](auto collector) {
        std::string line;
        unit::written(record, [&](kordRec*) { line = asked(collector); });
        return line;
    };
    const std::string rack = askedInDocument([](kordRec* run) { queryRackEnclMTMS(run, "R1"); });
    EXPECT_EQ(rack,
              R"json("vale":"query_p_select","scope":2,"class":"Orvik.TarnRack",)json"
              R"json("selection":"(storageFacilityMTMS=\"9999-A01*00XY1230\") && (rackNumber=\"R1\")",)json"
              R"json("attributes":["rackEnclosureMTMS"])json");
    EXPECT_EQ(askedInDocument(queryStoragePlex),
              R"("vale":"query_p_select","scope":2,"class":"Orvik.TarnStoragePlex",)"
              R"("selection":"ActivePeerDomain=\"9999.A01.00XY1230\" ",)"
              R"("attributes":["storagePlexAccountName"])");
}

TEST_F(Uncalled, enumerateTheTeskHosts)
{
    int32_t count = 0;
    EXPECT_EQ(asked([&](kordRec* run) { enumerateTeskHost(run, &count, "image", "domain"); }),
              R"("vale":"enumerate_resources","scope":4,"class":"Orvik.TarnTeskHost",)"
              R"("selection":"storageFacilityImageMTMS=\"image\" && ActivePeerDomain=\"domain\"")");
}

TEST_F(Uncalled, systemRuns)
{
    EXPECT_EQ(querySFSystemState(&record), 0);
    EXPECT_EQ(unit::traceOf(record),
              (Lines{"==>:  querySFSystemState", "0103: managedSystemMTMS=\"9999-B2C*7ABCD12\""}));
}

TEST_F(Uncalled, systemIsMissing)
{
    copyText(record.managedSystemMTMS, "none");
    EXPECT_EQ(querySFSystemState(&record), -1);
    EXPECT_EQ(unit::traceOf(record),
              (Lines{"==>:  querySFSystemState", "0103: managedSystemMTMS=\"none\"",
                     "0104:  no res  array_cnt_sfs=0", "==>:  handleErrKord querySFSystemState, e"}));
}

TEST_F(Uncalled, rackPropertyCarriesTheFacility)
{
    EXPECT_EQ(unit::written(record, [](kordRec* r) { EXPECT_EQ(queryRackEnclMTMS(r, "R1"), 0); }),
              "<Property name=\"R2\" displayName=\"Rack Number\">\nR2\n"
              "<Value type=\"string\">9999-A01*00XY1230</Value>\n</Property>\n");
    EXPECT_EQ(unit::traceOf(record), (Lines{"==>:  queryRackEnclMTMS", ">>:  writeRackEnclMTMS"}));
}

TEST_F(Uncalled, rackIsMissing)
{
    EXPECT_EQ(queryRackEnclMTMS(&record, "R9"), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"==>:  queryRackEnclMTMS", "0515:  no res  array_cnt_rack=0",
                                            "==>:  handleErrKord queryRackEnclMTMS, e"}));
}

TEST_F(Uncalled, plexPropertyCarriesTheAccount)
{
    copyText(record.activePeerDomain_quay, "9999.A01.00XY1230");
    EXPECT_EQ(unit::written(record, [](kordRec* r) { EXPECT_EQ(queryStoragePlex(r), 0); }),
              "<Property name=\"AC\" displayName=\"Account Name\">\nAC\n"
              "<Value type=\"string\">Northern Harbour Trust</Value>\n</Property>\n");
    EXPECT_EQ(unit::traceOf(record), (Lines{"==>:  queryStoragePlex", ">>:  writeStorPlex"}));
}

TEST_F(Uncalled, plexIsMissing)
{
    copyText(record.activePeerDomain_quay, "none");
    EXPECT_EQ(queryStoragePlex(&record), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"==>:  queryStoragePlex", "0517:  no res array_cnt_plex=0",
                                            "==>:  handleErrKord queryStoragePlex, e"}));
}

TEST_F(Uncalled, teskHostsAreCounted)
{
    int32_t count = 7;
    EXPECT_EQ(enumerateTeskHost(&record, &count, "9999*A01*00XY121", "9999.A01.00XY121"), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(enumerateTeskHost(&record, &count, "none", "none"), -2);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(record.Flag, 1);
}

TEST_F(Uncalled, countsStayOnFailure)
{
    kordRec alone = record;
    alone.sess_hndl_DM = nullptr;
    int32_t count = 7;
    EXPECT_EQ(enumerateTeskHost(&alone, &count, "image", "domain"), -1);
    EXPECT_EQ(enumerateHAPort0(&alone, &count, "image", "domain"), -1);
    EXPECT_EQ(count, 7);
}

TEST(Descriptions, areFoldedNewestFirst)
{
    const kordRec record = unit::freshRecord();
    userHostDescr* first = nullptr;
    EXPECT_EQ(findDescrRecord(&record, &first, "red"), 0);
    EXPECT_EQ(addDescrRecord(&record, &first, "red"), 0);
    EXPECT_EQ(addDescrRecord(&record, &first, "blue"), 0);
    EXPECT_EQ(findDescrRecord(&record, &first, "red"), 1);
    EXPECT_EQ(findDescrRecord(&record, &first, "Red"), 0);
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first->description, "blue");
    EXPECT_EQ(first->nextp->count, 2);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0677:  add red, 1", "0677:  add blue, 1", "0676: find red, 2"}));
    freeDescrRecord(&record, &first);
    EXPECT_EQ(first, nullptr);
}

/// A record holds 255 characters, and two descriptions that agree in these are one.
TEST(DescrRecords, areFoundByWhatTheyHold)
{
    const kordRec record = unit::freshRecord();
    userHostDescr* first = nullptr;
    const std::string held(255, 'h');
    EXPECT_EQ(addDescrRecord(&record, &first, (held + "one").c_str()), 0);
    EXPECT_EQ(findDescrRecord(&record, &first, (held + "another").c_str()), 1);
    EXPECT_EQ(findDescrRecord(&record, &first, held.c_str()), 1);
    EXPECT_EQ(findDescrRecord(&record, &first, held.substr(1).c_str()), 0);
    freeDescrRecord(&record, &first);
}

TEST(ConsoleSerial, followsTheFirstDot)
{
    const struct {
        const char* input;
        const char* output;
        const char* trace;
    } cases[] = {
        {"AB12.7XY9Z01", "7XY9Z01", "getResQuaySE: input  AB12.7XY9Z01 output 7XY9Z01 i=4"},
        {"A.B.C", "B.C", "getResQuaySE: input  A.B.C output B.C i=1"},
        {"none", "", "getResQuaySE: input  none output  i=4"},
        {"", "", "getResQuaySE: input   output  i=0"},
    };
    for (const auto& [input, output, traced] : cases) {
        const kordRec record = unit::freshRecord();
        char serial[20] = "left over";
        EXPECT_EQ(getResQuaySE(input, serial, &record), 0);
        EXPECT_STREQ(serial, output);
        EXPECT_EQ(unit::traceOf(record), Lines{traced});
    }
}

} // namespace
