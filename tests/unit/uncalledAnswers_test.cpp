// What the collectors that no run calls make of answers that the simulated client never gives them: failed
// calls, answers in error, states other than the good one, answers without attributes.

#include "scriptedClient.h"
#include "unit.h"

#include <gtest/gtest.h>

namespace
{

using Lines = std::vector<std::string>;

/// What a call left behind.
struct Left {
    int32_t result = 0;
    Lines trace;
    Lines events;
    std::string document;

    bool operator==(const Left&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Left& left)
{
    stream << left.result << "\n";
    for (const Lines& lines : {left.trace, left.events}) {
        for (const std::string& line : lines)
            stream << line << "\n";
    }
    return stream << left.document;
}

std::string between(const std::string& text, const std::string& begin, const std::string& end)
{
    const size_t from = text.find(begin);
    if (from == std::string::npos) return "";
    return text.substr(from + begin.size(), text.find(end, from + begin.size()) - from - begin.size());
}

/// The events of a journal's lines: code and text.
Lines eventsOf(const std::string& journal)
{
    Lines events;
    std::istringstream lines(journal);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("pmProblemEventPoster") != std::string::npos)
            events.push_back(between(line, R"("-s",")", "\"") + " " + between(line, R"("-X","\")", "\\\""));
    }
    return events;
}

std::string failedCall(const std::string& name)
{
    return "BED00001 " + name + " : VALE call resulted in a non zero return value";
}

std::string notFound(const std::string& name)
{
    return "BED00000 " + name + " : Expected resources were not found";
}

ValeAttribute numberAttribute(const char* name, uint32_t number)
{
    return {.name = name, .identifier = 0, .type = VALE_UNSIGNED, .value = {.uinteger = number}};
}

ValeErrorNumber gone(uint32_t number)
{
    return {
        .number = number, .ffdcId = nullptr, .message = "gone.", .arguments = nullptr, .argumentCount = 0};
}

/// A collector, its one call, and the lines that it writes whatever the answer.
struct Collector {
    std::string name;
    std::string className;
    std::string selection;
    Lines opening;
    std::function<int32_t(kordRec*)> call;

    /// What it leaves when it fails with this trace line and reports under its own name.
    [[nodiscard]] Left failure(const std::string& line, const std::string& type) const
    {
        Left left{-1, opening, {type == "e" ? notFound(name) : failedCall(name)}, ""};
        left.trace.insert(left.trace.end(), {line, "==>:  handleErrKord " + name + ", " + type});
        return left;
    }
    [[nodiscard]] Left good(const Lines& more = {}, const std::string& document = "") const
    {
        Left left{0, opening, {}, document};
        left.trace.insert(left.trace.end(), more.begin(), more.end());
        return left;
    }
};

/// What a call of the collector leaves.
Left leftBy(const Collector& collector)
{
    kordRec record = unit::freshRecord();
    copyText(record.activePeerDomain_quay, "quay");
    Left left;
    left.events = eventsOf(unit::journaled([&] {
        left.document = unit::written(record, [&](kordRec* run) { left.result = collector.call(run); });
    }));
    left.trace = unit::traceOf(record);
    return left;
}

/// The same with this answer: resources with their attributes, the first one's error.
Left leftBy(const Collector& collector, const std::vector<std::vector<ValeAttribute>>& resources,
            const ValeErrorNumber& error = {})
{
    std::vector<ValeQueryResponse> answer;
    for (const auto& attributes : resources)
        answer.push_back({{}, nullptr, attributes.data(), static_cast<uint32_t>(attributes.size())});
    if (!answer.empty()) answer[0].error = error;
    unit::ScriptedClient client;
    if (answer.empty())
        client.answersNothing(collector.className, collector.selection);
    else
        client.answers(collector.className, collector.selection, answer);
    return leftBy(collector);
}

Left leftByFailed(const Collector& collector)
{
    unit::ScriptedClient client;
    client.fails(collector.className, collector.selection, 7, {.message = "down"});
    return leftBy(collector);
}

const Collector facilityPower = {.name = "querySFState",
                                 .className = "Orvik.TarnStorageFacility",
                                 .selection = "storageFacilityMTMS=\"9999-A01*00XY1230\"",
                                 .opening = {"==>:  querySFState"},
                                 .call = querySFState};

const Collector systemPower = {
    .name = "querySFSystemState",
    .className = "Orvik.TarnStorageFacilitySystem",
    .selection = "managedSystemMTMS=\"9999-B2C*7ABCD12\"",
    .opening = {"==>:  querySFSystemState", "0103: managedSystemMTMS=\"9999-B2C*7ABCD12\""},
    .call = querySFSystemState};

const Collector rack = {.name = "queryRackEnclMTMS",
                        .className = "Orvik.TarnRack",
                        .selection = "(storageFacilityMTMS=\"9999-A01*00XY1230\") && (rackNumber=\"R1\")",
                        .opening = {"==>:  queryRackEnclMTMS"},
                        .call = [](kordRec* run) { return queryRackEnclMTMS(run, "R1"); }};

const Collector plex = {.name = "queryStoragePlex",
                        .className = "Orvik.TarnStoragePlex",
                        .selection = "ActivePeerDomain=\"quay\" ",
                        .opening = {"==>:  queryStoragePlex"},
                        .call = queryStoragePlex};

/// A collector and its trace lines for a failed call, for an answer with error 5 and for no answer.
struct Failing {
    const Collector& collector;
    std::string failed;
    std::string inError;
    std::string missing;
};

const Failing failing[] = {
    {facilityPower, "0100:  SF rRc= 7, down", "0101:  response 5, gone.", "0101:  no res  array_cnt_sf=0"},
    {systemPower, "0103:  SF returned 7, down", "0104:  response error 5, gone.",
     "0104:  no res  array_cnt_sfs=0"},
    {rack, "0515:   rack 7, down", "0516: response 5, gone.", "0515:  no res  array_cnt_rack=0"},
    {plex, "0511:  plex 7, down", "0511:  response  5, gone.", "0517:  no res array_cnt_plex=0"},
};

TEST(UncalledAnswers, areReportedUnderTheCollectorsName)
{
    for (const auto& [collector, failed, inError, missing] : failing) {
        EXPECT_EQ(leftByFailed(collector), collector.failure(failed, "r"));
        EXPECT_EQ(leftBy(collector, {{}}, gone(5)), collector.failure(inError, "r"));
        EXPECT_EQ(leftBy(collector, {}), collector.failure(missing, "e"));
    }
}

TEST(UncalledAnswers, knowNoMinorError)
{
    EXPECT_EQ(leftBy(facilityPower, {{numberAttribute("PowerState", 0)}}, gone(0x40008)),
              facilityPower.failure("0101:  response 262152, gone.", "r"));
    EXPECT_EQ(leftBy(systemPower, {{numberAttribute("powerRunState", 6)}}, gone(0xFFFFFFFF)),
              systemPower.failure("0104:  response error -1, gone.", "r"));
    EXPECT_EQ(leftBy(rack, {{unit::textAttribute("rackEnclosureMTMS", "r")}}, gone(0x40008)),
              rack.failure("0516: response 262152, gone.", "r"));
    EXPECT_EQ(leftBy(plex, {{unit::textAttribute("storagePlexAccountName", "North")}}, gone(0x40008)),
              plex.failure("0511:  response  262152, gone.", "r"));
}

TEST(UncalledAnswers, facilityPowerIsOff)
{
    EXPECT_EQ(leftBy(facilityPower, {{numberAttribute("PowerState", 0)}}), facilityPower.good());
    EXPECT_EQ(leftBy(facilityPower, {{numberAttribute("PowerState", 1)}}),
              facilityPower.failure("0102:  power state =1", "e"));
}

TEST(UncalledAnswers, systemRuns)
{
    EXPECT_EQ(leftBy(systemPower, {{numberAttribute("powerRunState", 6)}}), systemPower.good());
    EXPECT_EQ(leftBy(systemPower, {{numberAttribute("powerRunState", 0)}}),
              systemPower.failure("0105:  power run state =0", "e"));
}

TEST(UncalledAnswers, stateIsTheFirstValueOfTheFirstResource)
{
    EXPECT_EQ(leftBy(facilityPower, {{numberAttribute("other", 0), numberAttribute("PowerState", 1)},
                                     {numberAttribute("PowerState", 1)}}),
              facilityPower.good());
    EXPECT_EQ(leftBy(systemPower, {{numberAttribute("powerRunState", 5)}, {numberAttribute("other", 6)}}),
              systemPower.failure("0105:  power run state =5", "e"));
}

TEST(UncalledAnswers, stateOfAResourceWithoutAttributesIsMissing)
{
    for (const Collector& collector : {facilityPower, systemPower}) {
        const Left left = leftBy(collector, {{}});
        EXPECT_EQ(left.result, -1);
        EXPECT_EQ(left.events, Lines{notFound(collector.name)});
        EXPECT_EQ(left.trace.back(), "==>:  handleErrKord " + collector.name + ", e");
    }
}

TEST(UncalledAnswers, rackPropertyIsTheFacilityWhateverTheRack)
{
    const std::string property = "<Property name=\"R2\" displayName=\"Rack Number\">\nR2\n"
                                 "<Value type=\"string\">9999-A01*00XY1230</Value>\n</Property>\n";
    const Left once = rack.good({">>:  writeRackEnclMTMS"}, property);
    EXPECT_EQ(leftBy(rack, {{unit::textAttribute("rackEnclosureMTMS", "1234-5R0*RK000001")}}), once);
    EXPECT_EQ(leftBy(rack, {{unit::textAttribute("rackEnclosureMTMS", nullptr)}, {}}), once);
    EXPECT_EQ(leftBy(rack, {{}}), once);
}

TEST(UncalledAnswers, plexIsCutToItsField)
{
    const std::string name(99, 'n');
    EXPECT_EQ(leftBy(plex, {{}, {unit::textAttribute("storagePlexAccountName", (name + "nn").c_str())}}),
              plex.good({">>:  writeStorPlex"}, "<Property name=\"AC\" displayName=\"Account Name\">\nAC\n"
                                                "<Value type=\"string\">" +
                                                    name + "</Value>\n</Property>\n"));
}

/// The count of mainframe channel hosts, which no run asks for either.
class TeskHosts : public testing::Test
{
protected:
    /// What the count leaves; beside it the count itself and whether the record shows a minor error.
    Left leftBy(std::vector<ValeEnumerateResponse> answer)
    {
        unit::ScriptedClient client;
        if (answer.empty())
            client.answersNothing(hosts.className, hosts.selection);
        else
            client.answers(hosts.className, hosts.selection, answer);
        return ::leftBy(hosts);
    }

    const std::vector<ValeResourceHandle> handles = std::vector<ValeResourceHandle>(9, nullptr);
    int32_t count = 7;
    bool isMinor = false;
    const Collector hosts = {.name = "enumerateTeskHost",
                             .className = "Orvik.TarnTeskHost",
                             .selection = "storageFacilityImageMTMS=\"i\" && ActivePeerDomain=\"d\"",
                             .opening = {"==>:  enumerateTeskHost",
                                         "0636:   storageFacilityImageMTMS=\"i\" && ActivePeerDomain=\"d\""},
                             .call = [this](kordRec* run) {
                                 const int32_t result = enumerateTeskHost(run, &count, "i", "d");
                                 isMinor = run->Flag == 1;
                                 return result;
                             }};
    const ValeResourceHandle* some = handles.data();
};

TEST_F(TeskHosts, areSummedOverAllResponses)
{
    EXPECT_EQ(leftBy({{{}, "", some, 4}, {{}, "", some, 0}, {gone(5), "", some, 2}}),
              hosts.good({"0640:  cound 6, 3"}));
    EXPECT_EQ(count, 6);
    EXPECT_FALSE(isMinor);
}

TEST_F(TeskHosts, areNoneWithoutHandlesInTheFirstResponse)
{
    Left left = hosts.good({"0640:  no res found 0"});
    left.result = -2;
    EXPECT_EQ(leftBy({{{}, "", some, 0}, {{}, "", some, 2}}), left);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(isMinor);
}

TEST_F(TeskHosts, areNoneForAMinorError)
{
    for (const uint32_t number : {0x40008U, 0x4000aU, 0x30002U}) {
        count = 7;
        Left left = hosts.good({"0639:  response " + std::to_string(number) + ", gone."});
        left.result = -2;
        EXPECT_EQ(leftBy({{gone(number), "", some, 2}}), left);
        EXPECT_EQ(count, 0);
        EXPECT_TRUE(isMinor);
    }
}

TEST_F(TeskHosts, stayUncountedInAnyOtherError)
{
    Left left = hosts.good({"0639:  response 262157, gone.", "==>:  handleErrKord Orvik.TarnTeskHost, r"});
    left.result = -1;
    left.events = {"BED00001 Orvik.TarnTeskHost : gone "};
    EXPECT_EQ(leftBy({{gone(0x4000d), "", some, 2}}), left);
    EXPECT_EQ(count, 7);
    EXPECT_FALSE(isMinor);
}

TEST_F(TeskHosts, stayUncountedWithoutAnAnswer)
{
    EXPECT_EQ(leftBy({}), hosts.failure("0638 :  no enum response enumCount_hap=0", "e"));
    EXPECT_EQ(leftByFailed(hosts), hosts.failure("0637 :  TeskHost 7, down", "r"));
    EXPECT_EQ(count, 7);
    EXPECT_FALSE(isMinor);
}

} // namespace
