// A document that outgrows its disk: the run goes on to its end, and what fits is kept. The tiny disk is
// mounted inside the run, where only root may.

#include "consoleRun.h"
#include "tempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace kordTest
{

TEST(FullDisk, leavesATruncatedDocumentAndAWholeRun)
{
    if (geteuid() != 0) GTEST_SKIP() << "only root may mount";
    const TempFolder root;
    const std::string mtms = "9999-B2C*7ABCD12";
    const std::string script = "mount -t tmpfs -o size=4096 tiny /var/adm/stockmere/VPD || exit 99\n"
                               "addTarnKord x '" +
                               mtms +
                               "'; status=$?\n"
                               "wc -c </var/adm/stockmere/VPD/addTarnKord_" +
                               mtms +
                               ".xml\n"
                               "head -n 1 /var/adm/stockmere/VPD/addTarnKord_" +
                               mtms +
                               ".xml\n"
                               "exit $status";
    const Outcome outcome = runOnConsole({
        .console = triedBuild() / "bin/kord-console",
        .facility = std::string(KORD_SOURCE_DIR) + "/console/facilities/facility.json",
        .root = root.path(),
        .folder = root.path(),
        .user = {},
        .program = {"sh", "-c", "PATH=" + triedBuild().string() + "/bin:$PATH\n" + script},
    });
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "XML file was built successfully. This is the normal return.\n4096\n"
                              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");

    const std::vector<TraceLine> trace = readTrace(traceFile(root.path(), mtms));
    ASSERT_FALSE(trace.empty());
    EXPECT_EQ(trace.back().joined(), "0010:  exit 3 ------------------");
    const std::vector<nlohmann::json> journal = readJournal(root.path());
    ASSERT_FALSE(journal.empty());
    EXPECT_EQ(journal.back().value("vale", ""), "exit");
    EXPECT_TRUE(journal.back()["responses"].empty());
    EXPECT_TRUE(journal.back()["sessions"].empty());
}

} // namespace kordTest
