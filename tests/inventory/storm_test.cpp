// Whatever happens to an import, the database is whole and holds exactly what was taken in.
//
// KORD_INVENTORY_KILLS sets how often it is killed.

#include "fleet.h"

#include "consoleRun.h"
#include "inventory/inventory.h"

#include <cstdlib>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <unistd.h>

namespace
{

using namespace kordTest;
using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

constexpr int systems = 4;
constexpr int nights = 4;

class Storm : public testing::Test
{
protected:
    Fleet fleet;
    static inline std::unique_ptr<Fleet> calm; ///< where nothing happens

    static void SetUpTestSuite()
    {
        calm = std::make_unique<Fleet>();
        for (int night = 0; night < nights; ++night) {
            for (int system = 0; system < systems; ++system)
                write(system, night);
        }
        ASSERT_EQ(calm->import({documents()}).status, 0);
    }
    static void TearDownTestSuite() { calm.reset(); }

    static std::string documents() { return calm->in("nights"); }

    static void write(int system, int night)
    {
        std::vector<Drive> drives;
        for (int slot = 1; slot <= 60; ++slot) {
            const int age = slot % nights == night ? night : 0;
            drives.push_back(
                {.slot = "-P1-D" + std::to_string(slot),
                 .serial = "S" + std::to_string(system * 1000 + slot) + "-" + std::to_string(age)});
        }
        calm->write(
            "nights/addTarnKord_" + std::to_string(night) + std::to_string(system) + ".xml",
            documentOf({.system = "SYSTEM-" + std::to_string(system), .day = night, .drives = drives}));
    }

    /// What is there is whole, and each document once. Documents come in their files' order.
    void expectWhole(bool inOrder = true) const
    {
        EXPECT_THAT(fleet.ask("PRAGMA integrity_check"), ElementsAre("ok"));
        const Lines there = fleet.ask("SELECT hash FROM snapshot ORDER BY snapshot");
        const Lines all = calm->ask("SELECT hash FROM snapshot ORDER BY snapshot");
        ASSERT_LE(there.size(), all.size());
        const bool same = std::equal(there.begin(), there.end(), all.begin());
        EXPECT_TRUE(same || !inOrder);
        EXPECT_THAT(
            fleet.ask("SELECT hash FROM snapshot AS one WHERE (SELECT count(*) FROM part "
                      "WHERE part.snapshot = one.snapshot) <> 64 OR NOT EXISTS (SELECT 1 FROM document "
                      "WHERE document.snapshot = one.snapshot)"),
            IsEmpty());
        EXPECT_THAT(
            fleet.ask("SELECT count(*) FROM part WHERE snapshot NOT IN (SELECT snapshot FROM snapshot)"),
            ElementsAre("0"));
    }

    void expectAll() const
    {
        const std::string content =
            "SELECT system, time, hash, (SELECT count(*) FROM part WHERE part.snapshot = one.snapshot), "
            "(SELECT group_concat(change || kind || id || serial || ifnull(old_serial, '')) FROM "
            "(SELECT * FROM change WHERE change.snapshot = one.snapshot ORDER BY id)) "
            "FROM snapshot AS one ORDER BY system, time";
        const Lines wanted = calm->ask(content);
        ASSERT_EQ(wanted.size(), size_t{systems} * nights);
        EXPECT_EQ(fleet.ask(content), wanted);
    }
};

TEST_F(Storm, KilledAtAnyMomentNothingIsHalfThere)
{
    const char* const many = std::getenv("KORD_INVENTORY_KILLS");
    const long kills = many == nullptr ? 12 : std::strtol(many, nullptr, 10);
    const int seed = many == nullptr ? 1 : static_cast<int>(std::random_device()());
    std::mt19937 random(static_cast<unsigned>(seed));
    SCOPED_TRACE("seed " + std::to_string(seed));
    int killed = 0;
    for (int tries = 0; killed < kills && tries < 10 * kills; ++tries) {
        const std::chrono::milliseconds moment(1 + random() % 120);
        const Outcome outcome = Fleet::kord({"import", fleet.database(), documents()}, moment);
        killed += outcome.timedOut ? 1 : 0;
        // The first to come is one who asks. The making of the database may have been undone.
        const bool listed = Fleet::kord({"list", "drives", fleet.database(), "--count"}).status == 0;
        const bool made =
            std::filesystem::exists(fleet.database()) && !fleet.ask("SELECT 1 FROM sqlite_schema").empty();
        EXPECT_EQ(listed, made);
        if (made) expectWhole();
        if (!outcome.timedOut) {
            expectAll();
            std::filesystem::remove(fleet.database());
        }
    }
    EXPECT_GE(killed, kills);
    EXPECT_EQ(fleet.import({documents()}).status, 0);
    expectAll();
}

/// What a line that begins with a number counts.
size_t numberIn(const std::string& line)
{
    return std::strtoul(line.c_str(), nullptr, 10);
}

TEST_F(Storm, SeveralImportsAtOnceAllLand)
{
    std::vector<std::future<Outcome>> imports;
    for (int i = 0; i < 4; ++i)
        imports.push_back(std::async(std::launch::async, [&] { return fleet.import({documents()}); }));
    size_t imported = 0;
    for (auto& one : imports) {
        const Outcome outcome = one.get();
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        imported += numberIn(outcome.output);
    }
    EXPECT_EQ(imported, size_t{systems} * nights);
    expectWhole(false);
    expectAll();
}

void expectTrouble(const Outcome& outcome, const std::string& what, const Fleet& fleet)
{
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "kord: " + fleet.database().string() + ": " + what + "\n");
}

TEST_F(Storm, OnAFullDiskWhatWasTakenInStays)
{
    // Room that is limited for one process is limited for every user, a small disk only root can make.
    const std::string limited = "ulimit -f \"$1\"; shift; exec \"$@\"";
    const std::string kord = kordTest::triedBuild() / "bin/kord";
    for (const int blocks : {40, 400, 600}) {
        const size_t before = blocks > 400 ? fleet.ask("SELECT 1 FROM snapshot").size() : 0;
        const Outcome outcome =
            runProcess({.arguments = {"/bin/sh", "-c", limited, "sh", std::to_string(blocks), kord, "import",
                                      fleet.database(), documents()},
                        .folder = {}});
        expectTrouble(outcome, "disk I/O error", fleet);
        if (blocks == 40) {
            EXPECT_THAT(fleet.ask("SELECT 1 FROM sqlite_schema"), IsEmpty());
            continue;
        }
        expectWhole();
        const size_t there = fleet.ask("SELECT 1 FROM snapshot").size();
        EXPECT_EQ(there, before + numberIn(outcome.output));
        EXPECT_GT(there, before);
    }
    EXPECT_EQ(fleet.import({documents()}).status, 0);
    expectAll();
}

TEST_F(Storm, AFullDiskIsCalledOne)
{
    if (geteuid() != 0 || !hasNamespaces()) GTEST_SKIP() << "only root may mount";
    std::filesystem::create_directory(fleet.database().parent_path() / "small");
    const std::string script =
        "mount -t tmpfs -o size=200k small small || exit 99; \"$1\" import small/fleet.db "
        "\"$2\"; status=$?; cat small/fleet.db >fleet.db; exit $status";
    const std::string kord = kordTest::triedBuild() / "bin/kord";
    const Outcome outcome = runProcess({.arguments = {"/usr/bin/env", "unshare", "--mount", "/bin/sh", "-c",
                                                      script, "sh", kord, documents()},
                                        .folder = fleet.database().parent_path()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "kord: small/fleet.db: database or disk is full\n");
    expectWhole();
    EXPECT_GT(fleet.ask("SELECT 1 FROM snapshot").size(), 0U);
    EXPECT_EQ(fleet.import({documents()}).status, 0);
    expectAll();
}

} // namespace
