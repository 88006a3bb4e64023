// Nothing that names a machine or a customer survives redaction, whatever the console says; and what belongs
// together still does.

#include "recorder/redactor.h"

#include "platform/failure.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace
{

using nlohmann::json;
using recorder::Redactor;
using recorder::StandIns;
using Tape = std::vector<json>;
using Texts = std::vector<std::string>;

// ---- hostile consoles ----

/// Names that a careless redaction takes for something harmless, breaks at, or leaves a part of.
const Texts names = {
    "10TMCDE",
    "TM10ABCDE",
    "SE10TMSE",
    "Operating Theatre",
    "rootbeer",
    "9999-ACME*",
    "U9999.B2C.SECRETNAME-P1-SECRETPLACE",
    "9999-B2C*SECRETNAME",
    "ACMECORP*SECRETNAME",
    "4821-K7Q.CONSOLESERIAL",
    "a\"b\" || serialNumber=\"secret",
    "back\\slash'quote",
    "100% of %s and %n",
    "line\nbreak and\ttab",
    "Žluťoučký kůň",
    "数据中心七号",
    "\U0001F4BE disk \U0001F4BE",
    "-----BEGIN SECRET-----",
    std::string(500, 'X') + "END",
    "e\u0301clat",
    "jane.doe@customer.example",
    "10.20.30.40",
    "0x5005076303FFC123",
};

/// The stretches of letters, digits and characters beyond ASCII that are long enough to tell something.
std::set<std::string> tellingWords(const std::string& text)
{
    const auto tells = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || (c & 0x80) != 0;
    };
    std::set<std::string> words;
    for (auto at = text.begin(); at != text.end();) {
        const auto end = std::find_if_not(at, text.end(), tells);
        if (end - at >= 5) words.emplace(at, end);
        at = end == text.end() ? end : end + 1;
    }
    return words;
}

/// What is left of the names in a tape.
std::set<std::string> survivors(const Tape& tape, const Texts& originals)
{
    // What stays on purpose, or reads like a piece of something else.
    const std::set<std::string> harmless = {"Operating", "U9999", "serialNumber"};
    std::set<std::string> found;
    const std::string text = json(tape).dump();
    for (const std::string& original : originals) {
        for (const std::string& word : tellingWords(original)) {
            if (!harmless.contains(word) && text.find(word) != std::string::npos) found.insert(word);
        }
    }
    return found;
}

/// A response about one resource, with attributes by their names.
json part(const std::vector<std::pair<json, json>>& attributes)
{
    json response = {{"handle", 1}, {"attributes", json::array()}};
    for (const auto& [name, value] : attributes)
        response["attributes"].push_back(json::array({name, value}));
    return response;
}

json query(const Tape& responses, const char* selection = nullptr)
{
    return {{"vale", "query_p_select"},    {"scope", 2},
            {"class", "Orvik.TarnDDM"},    {"selection", selection == nullptr ? json() : json(selection)},
            {"attributes", json::array()}, {"result", 0},
            {"responses", responses}};
}

json program(const char* path, const std::string& output, const Texts& arguments = {})
{
    return {{"program", path}, {"arguments", arguments}, {"status", 0}, {"output", output}};
}

Tape redacted(Tape tape)
{
    StandIns standIns;
    Redactor(standIns).redact(tape);
    return tape;
}

class Hostile : public testing::TestWithParam<std::string>
{
};

TEST_P(Hostile, NameSurvivesInNoAttribute)
{
    for (const char* attribute :
         {"serialNumber", "locationCode", "storageFacilityMTMS", "quayLocationCode", "storageFacilityWWNN",
          "ActivePeerDomain", "userHostDescription", "unknown"}) {
        const std::string& name = GetParam();
        const json plain = part({{attribute, name}, {nullptr, name}});
        const json list = part({{attribute, json::array({name, 7, name})}});
        EXPECT_EQ(survivors(redacted({query({plain, list})}), {name}), std::set<std::string>()) << attribute;
    }
}

TEST_P(Hostile, NameSurvivesInNoProgramsOutput)
{
    const std::string& name = GetParam();
    const Texts state = {"-r", "sys", "-m", name, "-F", "state"};
    Texts wrapped = state;
    wrapped.insert(wrapped.begin(), "/opt/brisk/bin/qmstat");
    const Tape tape = {
        program("whoami", name + "\n" + name + "\n"),
        program("whoami", "root\n" + name),
        program("/opt/brisk/bin/qmstat", name + "\n", state),
        program("/opt/brisk/bin/qmstat", "Operating\n" + name + "\n", state),
        program("/opt/tarnquay/bin/mmquaycmd", "Operating\n" + name + "\n", wrapped),
        program("/opt/brisk/bin/qconvpd", "*TM 4821-K7Q\n*SE " + name + "\n*XX " + name + "\n" + name + "\n"),
        program("/opt/brisk/bin/qconvpd", "*TM " + name + " SE " + name + "\n*TM4821-K7Q " + name),
        program("/opt/brisk/bin/qconvpd", "*SE" + name + "\nTM" + name + "\n"),
    };
    EXPECT_EQ(survivors(redacted(tape), {name}), std::set<std::string>());
}

TEST_P(Hostile, NameSurvivesInNoSelectionAndNoMessage)
{
    const std::string& name = GetParam();
    const json known = part({{"serialNumber", name}});
    const json failed = {{"vale", "get_errmsg"}, {"message", "no answer from " + name + ", gone\n"}};
    json error = part({});
    error["error"] = {{"number", 7}, {"message", name}};
    const std::string selection = "serialNumber=\"" + name + "\"";
    EXPECT_EQ(survivors(redacted({query({known, error}, selection.c_str()), failed}), {name}),
              std::set<std::string>());
}

TEST_P(Hostile, NameSurvivesInNoImageLevel)
{
    const json levels = {{"elements", json::array({0, GetParam(), "5.1.0.309"})}};
    const json action = {{"vale", "invoke_action"}, {"responses", json::array({levels})}};
    const Tape tape = redacted({action});
    EXPECT_EQ(survivors(tape, GetParam() == "10.20.30.40" ? Texts() : Texts{GetParam()}),
              std::set<std::string>());
    EXPECT_EQ(tape[0]["responses"][0]["elements"][2], "5.1.0.309");
}

TEST_P(Hostile, NameSurvivesInNoCommandLine)
{
    StandIns standIns;
    Redactor redactor(standIns);
    const Texts line =
        redactor.commandLine({"/usr/bin/addTarnKord", GetParam(), "9999-B2C*" + GetParam(), GetParam()});
    EXPECT_EQ(line.size(), 3U);
    EXPECT_EQ(survivors({json(line)}, {GetParam()}), std::set<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Names, Hostile, testing::ValuesIn(names));

// ---- what stays ----

std::string outputOf(const char* path, const std::string& output)
{
    return redacted({program(path, output)})[0]["output"];
}

TEST(Redacted, KeepsWhatTheCollectorLooksFor)
{
    EXPECT_EQ(outputOf("whoami", "root\n"), "root\n");
    EXPECT_EQ(outputOf("/opt/brisk/bin/qmstat", "Operating\n"), "Operating\n");
    EXPECT_EQ(outputOf("/opt/brisk/bin/qmstat", "Power Off\nOperating\n"), "Power Off\nOperating\n");
    for (const char* line : {"*TM 4821-K7Q\n", "*TM4821-K7Q\n", "TM: xx -[4821K7Q]-\n"}) {
        const std::string vpd = outputOf("/opt/brisk/bin/qconvpd", line);
        EXPECT_NE(
            vpd.find(std::string_view(line).find('[') == std::string_view::npos ? "4821-K7Q" : "-[4821K7Q]-"),
            std::string::npos)
            << vpd;
    }
}

TEST(Redacted, NeverReadsAsWhatTheCollectorLooksFor)
{
    for (int i = 0; i < 2000; ++i) {
        ASSERT_NE(outputOf("whoami", "abcd\n"), "root\n");
        const std::string vpd = outputOf("/opt/brisk/bin/qconvpd", "*SE AB CD EF GH IJ KL\n");
        ASSERT_EQ(vpd.find("TM"), std::string::npos) << vpd;
        ASSERT_EQ(vpd.find("SE"), vpd.rfind("SE")) << vpd;
    }
}

/// With these pairs each of the outputs would, however often the rest is drawn anew.
TEST(Redacted, EndsWhereEveryStandInWouldMislead)
{
    struct Case {
        const char* pairs;
        json line;
    };
    const std::vector<Case> misleading = {
        {R"({"abcd": "root"})", program("whoami", "abcd\n")},
        {R"({"Abcdefghj": "Operating"})", program("/opt/brisk/bin/qmstat", "Abcdefghj\n")},
        {R"({"AB": "TM"})", program("/opt/brisk/bin/qconvpd", "*SE x AB\n")},
        {R"({"AB": "SE"})", program("/opt/brisk/bin/qconvpd", "*TM x AB\n")},
        {R"({"ABC": "TMD"})", program("/opt/brisk/bin/qconvpd", "ABC\n")},
    };
    for (const Case& given : misleading) {
        StandIns standIns;
        standIns.load(given.pairs);
        Tape tape = {given.line, program("whoami", "root\n")};
        try {
            Redactor(standIns).redact(tape);
            ADD_FAILURE() << given.pairs;
        } catch (const platform::Failure& failure) {
            EXPECT_STREQ(failure.what(), "every stand-in for some text would mislead the collector");
        }
    }
    StandIns standIns; // the same texts mislead nobody elsewhere
    standIns.load(R"({"abcd": "root", "AB": "TM"})");
    Tape tape = {program("/opt/brisk/bin/qmstat", "abcd\n"), program("whoami", "AB\n")};
    Redactor(standIns).redact(tape);
    EXPECT_EQ(tape[0]["output"], "root\n");
    EXPECT_EQ(tape[1]["output"], "TM\n");
}

/// Also where somebody is called the same.
TEST(Redacted, KeepsWhatTheCollectorLooksForThoughItIsAName)
{
    const json named = part({{"lparName", "root"}, {"Hostname", "Operating"}, {"ddmname", "locationCode"}});
    const Tape tape =
        redacted({query({named}, "locationCode=\"U9999.B2C.7ABCD12-P1\""), program("whoami", "root\n"),
                  program("/opt/brisk/bin/qmstat", "Operating\n")});
    EXPECT_TRUE(tape[0]["selection"].get<std::string>().starts_with("locationCode=\"U9999.B2C.")) << tape[0];
    EXPECT_EQ(tape[1]["output"], "root\n");
    EXPECT_EQ(tape[2]["output"], "Operating\n");
}

/// The event tool's output and messages are not read, and keep what is nobody's name.
TEST(Redacted, ReplacesNamesInWhatIsOnlyShown)
{
    constexpr const char* poster = "/opt/tarnquay/bin/pmProblemEventPoster";
    const Tape tape = redacted({query({part({{"Hostname", "ledger-01"}})}),
                                program(poster, "filed for ledger-01\n"),
                                program("/opt/tarnquay/bin/mmquaycmd", "filed for ledger-01\n", {poster}),
                                {{"vale", "get_errmsg"}, {"message", "filed for ledger-01\n"}}});
    const std::string standIn = tape[0]["responses"][0]["attributes"][0][1];
    EXPECT_NE(standIn, "ledger-01");
    EXPECT_EQ(tape[1]["output"], "filed for " + standIn + "\n");
    EXPECT_EQ(tape[2]["output"], tape[1]["output"]);
    EXPECT_EQ(tape[3]["message"], tape[1]["output"]);
}

TEST(Redacted, KnowsTheSystemInAProgramsArguments)
{
    const Tape tape = redacted({program("whoami", "", {"-m", "9999-B2C*7ABCD12", "-M", "word", "-m"})});
    const json& arguments = tape[0]["arguments"];
    const std::string system = arguments[1];
    EXPECT_EQ(system.substr(0, 9), "9999-B2C*");
    EXPECT_NE(system.substr(9), "7ABCD12");
    EXPECT_EQ(arguments, json({"-m", system, "-M", "word", "-m"}));
}

/// Such a stand-in would be taken for the other text, and replaced once more in messages.
TEST(Redacted, HasNoStandInThatIsAnOriginal)
{
    const std::set<std::string> originals = {"104", "217", "389", "450", "562",
                                             "618", "733", "871", "926", "095"};
    for (int i = 0; i < 100; ++i) {
        std::vector<std::pair<json, json>> attributes;
        for (const std::string& original : originals)
            attributes.emplace_back("serialNumber", original);
        const Tape tape = redacted({query({part(attributes)})});
        for (const json& attribute : tape[0]["responses"][0]["attributes"])
            ASSERT_FALSE(originals.contains(attribute[1])) << tape;
    }
}

TEST(Redacted, KeepsTheFormOfVitalData)
{
    for (const std::string line : {"*DS Hall-Seven", "*XX Hall  \tSeven", "*SE10TMCDE", "-*SEHall",
                                   "DS AB CD", "*SE x AB", "HallSeven x", "*TM Hall *SE Seven"}) {
        const std::string vpd = outputOf("/opt/brisk/bin/qconvpd", line);
        ASSERT_EQ(vpd.size(), line.size()) << vpd;
        const size_t keyword = std::min({line.find("DS"), line.find("XX"), line.find("SE"), line.find("TM")});
        if (keyword <= 2) {
            EXPECT_EQ(vpd.substr(0, keyword + 2), line.substr(0, keyword + 2));
        }
        for (const char* word : {"Hall", "Seven", "10TM", "AB", "CD", " x"}) {
            const size_t at = line.find(word);
            if (at != std::string::npos) {
                EXPECT_NE(vpd.substr(at, std::string_view(word).size()), word) << vpd;
            }
        }
        for (size_t i = 0; i < line.size(); ++i)
            EXPECT_EQ(vpd[i] == ' ' || vpd[i] == '\t', line[i] == ' ' || line[i] == '\t') << vpd;
    }
}

TEST(Redacted, KeepsTheConsolesSerialAndItsLocationCodeTogether)
{
    const json consoles = part({{"quayLocationCode", "4821-K7Q.10TMCDE"}});
    const Tape tape =
        redacted({program("/opt/brisk/bin/qconvpd", "*TM 4821-K7Q\n*SE 10TMCDE\n"), query({consoles})});
    const std::string vpd = tape[0]["output"];
    const std::string serial = vpd.substr(vpd.find("*SE ") + 4, 7);
    EXPECT_EQ(tape[1]["responses"][0]["attributes"][0][1], "4821-K7Q." + serial);
}

TEST(Redacted, KeepsThePlacesOfLocationCodes)
{
    const json drive = part({{"locationCode", "U9999.B2C.7ABCD12-P1-C3-D12"}});
    const std::string code = redacted({query({drive})})[0]["responses"][0]["attributes"][0][1];
    EXPECT_TRUE(code.starts_with("U9999.B2C.") && code.ends_with("-P1-C3-D12")) << code;
}

/// The one attribute of a response, redacted.
std::string attributeOf(const char* name, const std::string& value)
{
    return redacted({query({part({{name, value}})})})[0]["responses"][0]["attributes"][0][1];
}

TEST(Redacted, KeepsWhatManyMachinesShare)
{
    for (const char* name : {"LParID",
                             "lparId",
                             "hslLumenPoolId",
                             "rackNumber",
                             "enclosureNumber",
                             "mmReserve1DesiredMem",
                             "desiredMem",
                             "mmReserve2DesiredMem",
                             "desiredProcs",
                             "remainingBatteryLife",
                             "HWModel",
                             "partNumber",
                             "CCIN",
                             "featureCode",
                             "kyrosFeatureCode",
                             "diskManufacturer",
                             "diskInterfaceType",
                             "deviceType",
                             "raidType",
                             "arraySiteConfiguration",
                             "ecLevel",
                             "firmwareLevel",
                             "flashFirmwareLevel",
                             "runningImageLevel"})
        EXPECT_EQ(attributeOf(name, "AB-1"), "AB-1") << name;
    for (const char* name :
         {"serialNumber", "lparName", "userHostDescription", "Hostname", "ddmname", "other"})
        EXPECT_NE(attributeOf(name, "AB-1"), "AB-1") << name;
}

TEST(Redacted, KeepsTheTypeModelOfEveryMtms)
{
    for (const char* name : {"storageFacilityMTMS", "managedSystemMTMS", "managedSystem0MTMS",
                             "managedSystem1MTMS", "storageFacilityImageMTMS", "StorageFacilityImageID",
                             "rackEnclosureMTMS", "enclosureMTMS", "ActivePeerDomain", "quayLocationCode"}) {
        for (const char* typeModel : {"9999-B2C*", "9999.B2C.", "9999*B2C*", "AZaz-z09-"}) {
            const std::string value = attributeOf(name, std::string(typeModel) + "7ABCD12");
            EXPECT_EQ(value.substr(0, 9), typeModel) << name;
            EXPECT_NE(value.substr(9), "7ABCD12") << name;
        }
    }
}

/// Eight characters with a separator behind the fourth, and a separator behind them.
TEST(Redacted, TakesNothingElseForATypeModel)
{
    const auto keepsStart = [](const std::string& value) {
        return attributeOf("storageFacilityMTMS", value).substr(0, 4) == value.substr(0, 4);
    };
    EXPECT_TRUE(keepsStart("9999-B2C*7ABCD12"));
    for (const char* other : {"9999-B2CX7ABCD12", "9999XB2C*7ABCD12", "9999-B-C*7ABCD12", "99-9-B2C*7ABCD12",
                              "9999-B2:*7ABCD12", "9999-B2@*7ABCD12", "9999-B2[*7ABCD12", "9999-B2`*7ABCD12",
                              "9999-B2{*7ABCD12", "9999-B2/*7ABCD12", "9999-B2C", "9999-B2C*"})
        EXPECT_FALSE(keepsStart(other)) << other;
    EXPECT_TRUE(keepsStart("9999-B2C*7"));
}

TEST(Redacted, KeepsTheStatesOfASystem)
{
    for (const char* state : {"Operating", "operating", "Initializing", "Starting", "Stopping", "Standby",
                              "Failed", "Error", "Power Off", "Off", "Recovery", "Unknown", "Not Available"})
        EXPECT_EQ(outputOf("/opt/brisk/bin/qmstat", std::string(state) + "\n"), std::string(state) + "\n");
    EXPECT_NE(outputOf("/opt/brisk/bin/qmstat", "Resting\n"), "Resting\n");
    EXPECT_NE(outputOf("whoami", "Standby\n"), "Standby\n");
}

/// Steps are up to two letters and up to three digits.
TEST(Redacted, KeepsOnlyPlacesInLocationCodes)
{
    const std::string machine = "U9999.B2C.7ABCD12";
    const auto stays = [&](const std::string& step) {
        return attributeOf("locationCode", machine + "-P1-" + step).ends_with("-P1-" + step);
    };
    for (const char* step : {"P1", "C3", "D12", "AB123", "V1", "12", "123", "P"})
        EXPECT_TRUE(stays(step)) << step;
    for (const char* step : {"ABC1", "P1234", "1P", "P1X", "P_1", "NAME"})
        EXPECT_FALSE(stays(step)) << step;
    EXPECT_TRUE(attributeOf("locationCode", "9999.B2C.7ABCD12-P1").ends_with("-P1"));
    EXPECT_TRUE(attributeOf("locationCode", "U9999.B2C.7").starts_with("U9999.B2C."));
    for (const char* other : {"9999.B2C.", "U9999XB2C.7ABCD12-P1", "U9999.B2CX7ABCD12-P1"})
        EXPECT_NE(attributeOf("locationCode", other).substr(0, 5), std::string(other).substr(0, 5)) << other;
    const std::string pattern = "locationCode =? '" + machine + "-P1%'";
    const std::string selection = redacted({query({}, pattern.c_str())})[0]["selection"];
    EXPECT_TRUE(selection.starts_with("locationCode =? 'U9999.B2C.")) << selection;
    EXPECT_TRUE(selection.ends_with("-P1%'")) << selection;
    EXPECT_EQ(selection.find("7ABCD12"), std::string::npos);
}

/// In brackets it needs no separator, but then its type is a number.
TEST(Redacted, KeepsTheTypeModelOfVitalData)
{
    const auto stays = [](const std::string& word) {
        return outputOf("/opt/brisk/bin/qconvpd", "*TM " + word + "\n") == "*TM " + word + "\n";
    };
    for (const char* word : {"4821-K7Q", "[4821K7Q]", "-[4821-K7Q]-", "[4821K7Q"})
        EXPECT_TRUE(stays(word)) << word;
    for (const char* word : {"4821K7Q", "[482AK7Q]", "[4821K7QX]", "[4821K7]", "[4821K-Q]", "NAMENAME"})
        EXPECT_FALSE(stays(word)) << word;
    const std::string other = outputOf("/opt/brisk/bin/qconvpd", "*SE 4821-K7Q\n");
    EXPECT_TRUE(other.starts_with("*SE ") && other != "*SE 4821-K7Q\n") << other;
}

TEST(Redacted, KnowsMtmsInTheWordsOfACommand)
{
    StandIns standIns;
    Redactor redactor(standIns);
    const Texts line = redactor.commandLine({"script", "9999-B2C*7ABCD12", "9999-B2C", "word", "9999-B2C*"});
    EXPECT_EQ(line[0], "script");
    EXPECT_EQ(line[1], "9999-B2C*" + standIns.of("7ABCD12"));
    EXPECT_EQ(line[2], "9999-B2C");
    EXPECT_EQ(line[3], "word");
    EXPECT_EQ(line[4], "9999-B2C*");
    const auto option = [&](const std::string& word) {
        return redactor.commandLine({"addTarnKord", word, "9999-B2C*7ABCD12"})[1];
    };
    const std::string cut = redactor.commandLine({"addTarnKord", "-t", "9999-B2C"})[2];
    EXPECT_EQ(cut, standIns.of("9999-B2C"));
    EXPECT_EQ(cut.size(), 8U);
    EXPECT_EQ(option("-t"), "-t");
    EXPECT_EQ(option("ab"), "ab");
    EXPECT_NE(option("abc"), "abc");
}

TEST(Redacted, KeepsNumbersAndOptions)
{
    const json drive = part({{"diskCapacity", 73400}, {"arraySites", json::array({1, 2})}});
    EXPECT_EQ(redacted({query({drive})})[0]["responses"][0], drive);
    StandIns standIns;
    const Texts line = Redactor(standIns).commandLine({"addTarnKord", "-m", "9999-B2C*7ABCD12"});
    EXPECT_EQ(line[1], "-m");
    EXPECT_EQ(line[2], "9999-B2C*" + standIns.of("7ABCD12"));
}

} // namespace
