// Every case of tests/runs/cases, run on the simulated console.

#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

#include "process.h"
#include "runCheck.h"

namespace
{

using kordTest::RunCase;

const std::filesystem::path source = KORD_SOURCE_DIR;
const std::filesystem::path build = kordTest::triedBuild();

class WholeRun : public testing::TestWithParam<RunCase>
{
};

TEST_P(WholeRun, leavesWhatItShould)
{
    const RunCase& run = GetParam();
    ASSERT_EQ(run.broken, "");
    const kordTest::Places places{.console = build / "bin/kord-console",
                                  .facilities = source / "console/facilities",
                                  .expected = source / "tests/runs/expected",
                                  .documents = build / "tests/runs/documents",
                                  .update = std::getenv("KORD_UPDATE") != nullptr};
    for (const std::string& fault : checkRun(run, places)) {
        ADD_FAILURE() << run.name << ": " << fault << "\n(" << run.why << ")";
    }
}

const std::filesystem::path cases = source / "tests/runs/cases";
const std::filesystem::path fragments = source / "tests/runs/fragments.json";

INSTANTIATE_TEST_SUITE_P(Cases, WholeRun, testing::ValuesIn(kordTest::loadCases(cases, fragments)),
                         [](const auto& parameter) { return parameter.param.name; });

} // namespace

int main(int count, char* arguments[])
{
    if (count > 1 && std::string_view(arguments[1]) == "--list-expanded") {
        std::cout << kordTest::expandedFolder(cases, fragments, count > 2 ? arguments[2] : "") << "\n";
        return 0;
    }
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
