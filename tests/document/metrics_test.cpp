// What watches a console gets to know, as OpenMetrics.

#include "document/metrics.h"
#include "pattern.h"
#include "writing.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

using namespace kordTest;
using document::Metrics;

class MetricsText : public testing::Test
{
protected:
    void SetUp() override
    {
        setenv("TZ", "UTC-2", 1); // a console two hours ahead
        tzset();
    }
    void TearDown() override
    {
        unsetenv("TZ");
        tzset();
    }
};

/// Every line as the format has it: each metric's own words before its samples, no sample twice, an end.
void expectOpenMetrics(const std::string& text)
{
    const Pattern words("# (TYPE|UNIT|HELP) ([a-z_]+) .+");
    const Pattern sample(R"re(([a-z_]+)\{([a-z_]+="([^"\\\n]|\\[\\n"])*",?)*\} -?[0-9]+)re");
    std::vector<std::string> seen;
    std::string metric;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line) && line != "# EOF") {
        if (const Pattern::Match found = words.match(line); !found.empty()) {
            metric = found[2];
        } else {
            const Pattern::Match value = sample.match(line);
            ASSERT_FALSE(value.empty()) << line;
            EXPECT_EQ(value[1], metric);
            const std::string series = line.substr(0, line.rfind(' '));
            EXPECT_EQ(std::ranges::find(seen, series), seen.end()) << series;
            seen.push_back(series);
        }
    }
    EXPECT_EQ(line, "# EOF");
    EXPECT_FALSE(std::getline(lines, line));
    EXPECT_FALSE(seen.empty());
}

document::TracedRun endedRun()
{
    document::TracedRun run;
    run.system = "9999-B2C*7ABCD12";
    run.started = "112126 13:41:03";
    run.ended = "112126 13:41:09";
    run.end = document::RunEnd::closed;
    run.status = 3;
    run.problems.resize(3);
    run.problems[0].severity = document::Severity::minor;
    run.problems[2].severity = document::Severity::minor;
    run.events.resize(2);
    run.events[1].toolStatus = 127; // of the event tool, which therefore filed nothing
    return run;
}

TEST_F(MetricsText, TellsHowTheRunWent)
{
    Metrics metrics;
    metrics.take(endedRun());
    const std::string text = metrics.text();
    expectOpenMetrics(text);
    const std::string system = R"({system="9999-B2C-7ABCD12"} )";
    for (const std::string& line :
         {"kord_run_start_timestamp_seconds" + system + "1795261263\n",
          "kord_run_end_timestamp_seconds" + system + "1795261269\n", "kord_run_status" + system + "3\n",
          "kord_run_success" + system + "1\n", "kord_run_minor_errors" + system + "2\n",
          "kord_run_events" + system + "1\n",
          std::string("# UNIT kord_run_start_timestamp_seconds seconds\n"),
          std::string("# UNIT kord_run_end_timestamp_seconds seconds\n"),
          std::string("# HELP kord_run_start_timestamp_seconds When the newest collection started, by the "
                      "console's clock.\n"),
          std::string("# HELP kord_run_end_timestamp_seconds When the newest collection ended; none where it "
                      "has not.\n"),
          std::string("# HELP kord_run_status Exit status of the newest collection: 3 is success.\n"),
          std::string("# HELP kord_run_success Whether the newest collection ended with success.\n"),
          std::string("# HELP kord_run_minor_errors Minor errors of the newest collection.\n"),
          std::string("# HELP kord_run_events Events that the newest collection filed.\n")})
        EXPECT_NE(text.find('\n' + line), std::string::npos) << line << text;
}

TEST_F(MetricsText, ARunThatHasNotEndedHasNoEnd)
{
    document::TracedRun run = endedRun();
    run.end = document::RunEnd::brokenOff;
    run.status = std::nullopt;
    Metrics metrics;
    metrics.take(run);
    const std::string text = metrics.text();
    expectOpenMetrics(text);
    EXPECT_EQ(text.find("kord_run_end"), std::string::npos);
    EXPECT_EQ(text.find("kord_run_status"), std::string::npos);
    EXPECT_NE(text.find("\nkord_run_success{system=\"9999-B2C-7ABCD12\"} 0\n"), std::string::npos);
}

const std::string enclosures =
    list("Enclosures", enclosure({.id = "U.AB1", .serial = "AB1", .location = "R-1"},
                                 drive("U.AB1", {.slot = "-P1-D1", .serial = "A"}) +
                                     drive("U.AB1", {.slot = "-P1-D2", .serial = "B", .state = 2})));

TEST_F(MetricsText, CountsPartsByKindFirmwareAndState)
{
    Metrics metrics;
    const std::string partitions =
        list("Partitions", resource("Tarn01", "SYSTEM-1-1", property("LE", "LIC VRMF", "5\"\\\n\xFF")));
    metrics.take(parse(ofSystem(enclosures + partitions)));
    const std::string text = metrics.text();
    expectOpenMetrics(text);
    const std::string expected =
        "# TYPE kord_document_timestamp_seconds gauge\n# UNIT kord_document_timestamp_seconds seconds\n"
        "# HELP kord_document_timestamp_seconds When the document was collected; its age is the time now "
        "less "
        "this.\n"
        "kord_document_timestamp_seconds{system=\"SYSTEM-1\"} 1795268463\n"
        "# TYPE kord_document_complete gauge\n"
        "# HELP kord_document_complete Whether the document has all that a collection tells.\n"
        "kord_document_complete{system=\"SYSTEM-1\"} 1\n"
        "# TYPE kord_parts gauge\n"
        "# HELP kord_parts Parts in the document by kind, firmware level and service state.\n"
        "kord_parts{system=\"SYSTEM-1\",kind=\"drive\",state=\"0\"} 1\n"
        "kord_parts{system=\"SYSTEM-1\",kind=\"drive\",state=\"2\"} 1\n"
        "kord_parts{system=\"SYSTEM-1\",kind=\"partition\",firmware=\"5\\\"\\\\\\n\xEF\xBF\xBD\"} 1\n"
        "kord_parts{system=\"SYSTEM-1\",kind=\"storageEnclosure\"} 1\n"
        "kord_parts{system=\"SYSTEM-1\",kind=\"system\"} 1\n# EOF\n";
    EXPECT_EQ(text, expected);
}

TEST_F(MetricsText, OfASystemTheNewestDocumentCounts)
{
    const document::Document older = parse(inventory(resource("S", "S", enclosures), "100.5"));
    const document::Document newer = parse(inventory(resource("S", "S", ""), "200.5"));
    Metrics one;
    one.take(older);
    one.take(newer);
    Metrics other;
    other.take(newer);
    other.take(older);
    EXPECT_EQ(one.text(), other.text());
    EXPECT_NE(one.text().find("kord_document_timestamp_seconds{system=\"S\"} 200\n"), std::string::npos);
    EXPECT_NE(one.text().find("kord_document_complete{system=\"S\"} 0\n"), std::string::npos);
    expectOpenMetrics(one.text());
}

} // namespace
