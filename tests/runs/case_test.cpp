// The form of the cases, and the comparisons behind their expectations.

#include <gtest/gtest.h>

#include "parseJson.h"
#include "runCheck.h"

namespace
{

using kordTest::Texts;
using nlohmann::json;

kordTest::RunCase only(const json& object, const json& fragments = json::object())
{
    return kordTest::readCases({{"about", "one"}, {"cases", {object}}}, fragments, "file").at(0);
}

const json plain = {{"name", "plain"}, {"why", "nothing is asked for"}};

json with(const json& more)
{
    json object = plain;
    object.update(more);
    return object;
}

TEST(Case, hasDefaults)
{
    const auto run = only(plain);
    EXPECT_EQ(run.name, "file_plain");
    EXPECT_EQ(run.facility, "small.json");
    EXPECT_EQ(run.arguments, (Texts{"-t", "9999-B2C*7ABCD12"}));
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "XML file was built successfully. This is the normal return.\n");
    EXPECT_FALSE(run.wrapped);
    EXPECT_FALSE(run.trace.has_value());
}

TEST(Case, refusesWhatItDoesNotKnow)
{
    EXPECT_THROW(only(with({{"tracee", json::array()}})), std::runtime_error);
    EXPECT_THROW(only(with({{"document", {{"line", "x"}}}})), std::runtime_error);
    EXPECT_THROW(only(with({{"setup", {{{"file", "a"}, {"text", "x"}}}}})), std::runtime_error);
    EXPECT_THROW(only({{"name", "noReason"}}), std::runtime_error);
    EXPECT_THROW(only(with({{"name", "two words"}})), std::runtime_error);
    EXPECT_THROW(only(with({{"status", "3"}})), std::runtime_error);
    EXPECT_THROW(only(with({{"trace", {"@nowhere"}}})), std::runtime_error);
    EXPECT_THROW(only(with({{"files", {{{"file", "a"}, {"absent", true}, {"content", ""}}}}})),
                 std::runtime_error);
}

TEST(Case, saysWhatAFailedRunPrints)
{
    EXPECT_THROW(only(with({{"status", 255}})), std::runtime_error);
    EXPECT_EQ(only(with({{"status", 255}, {"output", ""}})).output, "");
}

TEST(Case, isSpreadOverItsVariants)
{
    const json object =
        with({{"user", "guest"},
              {"variants", {{{"name", "a"}, {"status", 3}}, {{"name", "b"}, {"user", "root"}}}}});
    const auto runs = kordTest::readCases({{"about", "two"}, {"cases", {object}}}, json::object(), "file");
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].name, "file_plain_a");
    EXPECT_EQ(runs[0].user, "guest");
    EXPECT_TRUE(runs[0].wrapped);
    EXPECT_EQ(runs[1].user, "root");
    EXPECT_FALSE(runs[1].wrapped);
}

/// The cases of a file of one, and what is wrong with it.
std::vector<kordTest::RunCase> spread(const json& object, const json& fragments = json::object())
{
    return kordTest::readCases({{"about", "one"}, {"cases", {object}}}, fragments, "file");
}

std::string faultOf(const json& object, const json& fragments = json::object())
{
    try {
        spread(object, fragments);
    } catch (const std::exception& fault) {
        return fault.what();
    }
    return "";
}

json parse(const char* text)
{
    return kordTest::parseJson(text);
}

TEST(Case, isMadeForEachRowAndVariant)
{
    const auto runs = spread(parse(R"({"name": "{who}", "why": "{who} of {count}",
        "each": [["who", "count", "user"], ["a", 1, "guest"], ["b", 2, null]],
        "user": "{user}", "trace": ["{line}"],
        "variants": [{"name": "x", "with": {"line": "{count}{x*2}"}}, {"name": "y", "with": {"line": "none"}}]})"));
    ASSERT_EQ(runs.size(), 4U);
    EXPECT_EQ(runs[0].name, "file_a_x");
    EXPECT_EQ(runs[0].why, "a of 1");
    EXPECT_EQ(runs[0].user, "guest");
    EXPECT_EQ(*runs[0].trace, (Texts{"1xx"}));
    EXPECT_EQ(runs[1].name, "file_a_y");
    EXPECT_EQ(*runs[1].trace, (Texts{"none"}));
    EXPECT_EQ(runs[2].name, "file_b_x");
    EXPECT_FALSE(runs[2].user.has_value()) << "a key whose parameter is null is left out";
    EXPECT_EQ(*runs[2].trace, (Texts{"2xx"}));
}

TEST(Case, takesVariantsNamesWhereItHasNone)
{
    const auto runs = spread(parse(R"({"why": "w", "variants": [{"name": "x"}, {"name": "y"}]})"));
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].name, "file_x");
    EXPECT_EQ(runs[1].name, "file_y");
}

TEST(Case, isLikeAFragmentButForItsOwn)
{
    const json fragments = parse(R"({
        "base": {"with": {"end": 3, "line": "base"}, "status": "{end}", "output": "", "trace": ["{line}"]},
        "fails": {"like": "base", "with": {"end": 255, "line": "fails"}, "traceLacks": ["{line}"]}})");
    const auto run =
        spread(parse(R"({"name": "a", "why": "w", "like": "fails", "with": {"line": "own"}})"), fragments);
    EXPECT_EQ(run.at(0).status, 255);
    EXPECT_EQ(*run[0].trace, (Texts{"own"}));
    EXPECT_EQ(run[0].traceLacks, (Texts{"own"}));
    const auto other = spread(
        parse(R"({"name": "a", "why": "w", "like": "{which}", "with": {"which": "base"}, "trace": []})"),
        fragments);
    EXPECT_EQ(other.at(0).status, 3);
    EXPECT_EQ(*other[0].trace, Texts{});
}

TEST(Case, numbersStayNumbers)
{
    const auto run = spread(parse(R"({"name": "a", "why": "w", "with": {"nth": 4, "list": ["x", 1]},
        "faults": [{"nth": "{nth}", "text": "the {nth}th", "answer": "{list}"}, "@list"]})"));
    EXPECT_EQ(run.at(0).faults, parse(R"([{"nth": 4, "text": "the 4th", "answer": ["x", 1]}, "x", 1])"));
}

TEST(Case, fragmentsAreCalledWithParametersAndTables)
{
    const json fragments = parse(R"({"line": ["<{is}>", "={value}"], "value": "shared"})");
    const auto run = spread(parse(R"({"name": "a", "why": "w", "with": {"lines": ["@line"], "is": "outer"},
        "trace": [{"@line": {"is": "a"}}, {"@line": [["is", "value"], ["b", 1], ["c", "{is}"]]}, "@lines"]})"),
                            fragments);
    EXPECT_EQ(*run.at(0).trace,
              (Texts{"<a>", "=shared", "<b>", "=1", "<c>", "=outer", "<outer>", "=shared"}));
}

TEST(Case, ownFragmentsOfAFileComeFirst)
{
    const json file = parse(R"({"about": "f", "fragments": {"x": "own"},
        "cases": [{"name": "a", "why": "w", "trace": ["{x}", "{y}"]}]})");
    const auto runs = kordTest::readCases(file, parse(R"({"x": "shared", "y": "too"})"), "file");
    EXPECT_EQ(*runs.at(0).trace, (Texts{"own", "too"}));
}

TEST(Case, tellsWhatIsWrongWithItsParameters)
{
    const auto expectFault = [](const char* rest, const char* fault) {
        const std::string text = std::string(R"({"name": "a", "why": "w", )") + rest + "}";
        EXPECT_NE(faultOf(kordTest::parseJson(text), parse(R"({"round": ["@round"]})")).find(fault),
                  std::string::npos)
            << text;
    };
    expectFault(R"("trace": ["{nobody}"])", "a: nothing is named \"nobody\"");
    expectFault(R"("trace": ["@nobody"])", "nothing is named \"nobody\"");
    expectFault(R"("like": "nobody")", "nothing is named \"nobody\"");
    expectFault(R"("with": {"x": 1})", "the parameter \"x\" is never used");
    expectFault(R"("each": [["x", "y"], [1, 2]], "trace": ["{x}"])", "the parameter \"y\" is never used");
    expectFault(R"("trace": [{"@list": {"x": 1}}], "with": {"list": []})",
                "the parameter \"x\" is never used");
    expectFault(R"("each": [["x", "y"], [1]], "trace": ["{x}"])", "does not fit its heading");
    expectFault(R"("each": [], "trace": [])", "no table");
    expectFault(R"("with": {"any": 1}, "trace": ["{any}"])", "cannot be a parameter's name");
    expectFault(R"("with": {"x": "{y}", "y": "{x}"}, "trace": ["{x}"])", "stands within itself");
    expectFault(R"("trace": ["@round"])", "stands within itself");
    expectFault(R"("with": {"x": ["a"]}, "trace": ["b{x}"])", "within a text stands [\"a\"]");
}

TEST(Case, hasOneOfEachName)
{
    EXPECT_THROW(kordTest::readCases({{"about", "two"}, {"cases", {plain, plain}}}, json::object(), "file"),
                 std::runtime_error);
}

TEST(Case, putsFragmentsAndRepetitionsIn)
{
    const json fragments = {{"inner", {"b", "c"}}, {"outer", {"a", "@inner"}}};
    const auto run = only(with({{"trace", {"@outer", "d{x*3}e{ *2}f"}}}), fragments);
    EXPECT_EQ(*run.trace, (Texts{"a", "b", "c", "dxxxe  f"}));
}

TEST(Case, brokenFileIsACaseThatFails)
{
    const auto runs = kordTest::loadCases(KORD_SOURCE_DIR "/tests/runs/cases", "no such fragments");
    ASSERT_FALSE(runs.empty());
    EXPECT_NE(runs[0].broken, "");
}

TEST(Comparison, anyStandsForOneCharacterOrMore)
{
    EXPECT_TRUE(kordTest::matches("a{any}c", "abbc"));
    EXPECT_TRUE(kordTest::matches("a{any}b{any}", "aXbbY"));
    EXPECT_FALSE(kordTest::matches("a{any}c", "ac"));
    EXPECT_FALSE(kordTest::matches("a{any}", "a"));
    EXPECT_FALSE(kordTest::matches("a", "ab"));
}

TEST(Comparison, listsDifferInLengthOrLine)
{
    EXPECT_EQ(kordTest::difference({"a", "b"}, {"a", "b"}), "");
    EXPECT_NE(kordTest::difference({"a", "b"}, {"a"}), "");
    EXPECT_NE(kordTest::difference({"a"}, {"a", "b"}), "");
    EXPECT_NE(kordTest::difference({"a"}, {"b"}), "");
}

TEST(Comparison, linesAreFoundInOrder)
{
    EXPECT_EQ(kordTest::missingLine({"a", "c"}, {"a", "b", "c"}), "");
    EXPECT_NE(kordTest::missingLine({"c", "a"}, {"a", "b", "c"}), "");
    EXPECT_NE(kordTest::missingLine({"a", "a"}, {"a", "b"}), "");
}

TEST(Comparison, stretchesHaveNoGaps)
{
    EXPECT_EQ(kordTest::missingStretch({"b", "c"}, {"a", "b", "b", "c"}), "");
    EXPECT_NE(kordTest::missingStretch({"a", "c"}, {"a", "b", "c"}), "");
    EXPECT_NE(kordTest::missingStretch({"d"}, {"a"}), "");
}

TEST(NumberedLines, fillTheFile)
{
    const kordTest::NumberedLines lines{.count = 3, .bytes = 50};
    size_t bytes = 0;
    for (int number = 1; number <= lines.count; ++number) {
        bytes += lines.line(number).size() + 1;
    }
    EXPECT_EQ(bytes, 50U);
    EXPECT_EQ(lines.line(2), "old 2 .........");
}

} // namespace
