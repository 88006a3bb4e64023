// The form of the cases, and the comparisons behind their expectations.

#include <gtest/gtest.h>

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
