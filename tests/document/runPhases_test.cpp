// Which lines a run can write, as far as it has come: by them runs that write at the same time are told
// apart.

#include "document/progress.h"
#include "document/runReader.h"
#include "document/trace.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using document::RunReader;
using document::TraceLine;

/// A line that is kept.
struct Kept {
    std::string stamp;
    std::string code;
    std::string text;

    [[nodiscard]] TraceLine line() const
    {
        return {.stamp = stamp, .code = code, .text = text, .further = {}};
    }
};

std::vector<Kept> linesOf(const std::string& log)
{
    std::vector<Kept> lines;
    document::TraceReader reader([&](const TraceLine& line) {
        lines.push_back({std::string(line.stamp), std::string(line.code), std::string(line.text)});
    });
    reader.read(log);
    reader.settle();
    return lines;
}

/// The log of a whole run of the collector.
std::vector<Kept> wholeRun()
{
    std::ifstream file(std::string(KORD_SOURCE_DIR) + "/tests/fuzz/corpus/explain/wholeRun");
    std::ostringstream text;
    std::string mode; // the first line is for the fuzzer
    std::getline(file, mode);
    text << file.rdbuf();
    return linesOf(text.str());
}

/// What the collector does, in its order.
const std::vector<std::string> phases = {"start",
                                         "sessions",
                                         "system checks",
                                         "state checks",
                                         "partition checks",
                                         "domain session",
                                         "processor complexes",
                                         "I/O enclosures",
                                         "storage enclosures",
                                         "racks",
                                         "consoles",
                                         "partitions",
                                         "final checks"};

TEST(RunPhases, ARunCanHaveWrittenItsOwnLines)
{
    const std::vector<Kept> lines = wholeRun();
    std::set<std::string> met;
    RunReader run(1, lines.at(0).line());
    document::Progress progress;
    for (const Kept& kept : lines) {
        EXPECT_TRUE(run.fits(kept.line())) << kept.code << ": " << kept.text;
        run.read(kept.line());
        progress.read(kept.line());
        met.emplace(progress.phase());
    }
    EXPECT_EQ(met, std::set<std::string>(phases.begin(), phases.end()));
    EXPECT_TRUE(run.ended());
}

/// The first and the last code of each range, and the phases that write them. A command of the console runs
/// in four of them.
struct Written {
    std::vector<std::string> codes;
    std::vector<std::string> phases;
};
const std::vector<Written> written = {
    {{"0002", "0003", "0068"}, {"start"}},
    {{"0004"}, {"sessions"}},
    {{"0005", "0006"}, {"domain session"}},
    {{"0007", "0114", "0121"}, {"processor complexes"}},
    {{"0011", "0016"}, {"partition checks", "final checks"}},
    {{"0017"}, {"state checks", "final checks"}},
    {{"0062", "0067"}, {"start", "state checks", "consoles", "final checks"}},
    {{"0107", "0109"}, {"system checks"}},
    {{"0200", "0217"}, {"I/O enclosures"}},
    {{"0300", "0326"}, {"storage enclosures"}},
    {{"0400", "0429"}, {"racks"}},
    {{"0500", "0517"}, {"consoles"}},
    {{"0600", "0695", "0800", "0924"}, {"partitions"}},
    {{"0696", "0698"}, {"partition checks", "partitions"}},
    {{"==> queryPartition"}, {"partition checks"}},
    {{"==> addCecEnclKord"}, {"processor complexes"}},
    {{"==> addIoEnclKord"}, {"I/O enclosures"}},
    {{"==> addStorEnclKord"}, {"storage enclosures", "racks"}}, // both ask for racks under this name
    {{"==> addQuayEnclKord"}, {"consoles"}},
    {{"==> addPartitionKord"}, {"partitions"}},
    {{"0010"}, {"partition checks", "final checks"}},
    // Of these any run can be. A code of another length is none of a range.
    {{"0001", "0019", "0061", "0069", "0106", "0110",  "0113",      "0122", "0199",
      "0218", "0299", "0327", "0399", "0430", "0499",  "0518",      "0599", "0699",
      "0799", "0925", "050",  "060",  "061",  "02005", "==> other", ">>"},
     phases},
};

TraceLine lineOf(std::string_view code, std::string_view text)
{
    return {.stamp = "112126 13:41:03", .code = code, .text = text, .further = {}};
}

/// Every code against a run in every phase: its own and the one that follows are possible. What a document
/// that could not be started leaves out is possible as well.
TEST(RunPhases, ARunWritesTheCodesOfItsPhase)
{
    const std::vector<Kept> lines = wholeRun();
    for (size_t now = 0; now < phases.size(); ++now) {
        RunReader run(1, lines.at(0).line());
        document::Progress progress;
        for (const Kept& kept : lines) {
            document::Progress next = progress;
            next.read(kept.line());
            if (progress.phase() == phases[now] && next.phase() != phases[now]) break;
            if (document::closingStatus(kept.line())) break;
            run.read(kept.line());
            progress = next;
        }
        ASSERT_EQ(progress.phase(), phases[now]);
        for (const Written& row : written) {
            bool possible = false;
            for (const std::string& phase : row.phases) {
                const auto at = static_cast<size_t>(std::ranges::find(phases, phase) - phases.begin());
                possible = possible || at == now || at == now + 1 ||
                           (phases[now] == "domain session" && phase == "final checks");
            }
            for (const std::string& code : row.codes) {
                const bool isEntry = code.starts_with("==> ");
                const std::string text = isEntry ? code.substr(3) : "x";
                EXPECT_EQ(run.fits(lineOf(isEntry ? std::string_view("==>") : code, text)), possible)
                    << phases[now] << ": " << code;
            }
        }
    }
}

/// Without a document the run goes on with its last checks.
TEST(RunPhases, ARunWithoutADocumentMayEnd)
{
    const TraceLine start = lineOf("SRCV", "155968_quay1 07-15-05  9999-B2C*7ABCD12");
    const auto fits = [&](const std::vector<TraceLine>& lines) {
        RunReader run(1, start);
        for (const TraceLine& line : lines)
            run.read(line);
        return run.fits(lineOf("0017", "x"));
    };
    const TraceLine domain = lineOf("0005", "start DM session ");
    const TraceLine entry = lineOf("==>", " addCecEnclKord");
    EXPECT_TRUE(fits({start, domain, entry}));
    EXPECT_FALSE(fits({start, domain, lineOf(">>", " openInventory"), entry}));
}

} // namespace
