// A file is there whole or not at all, whatever gets in the way of writing it.

#include "platform/wholeFile.h"

#include "consoleRun.h"
#include "platform/failure.h"
#include "tempFolder.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <sys/resource.h>
#include <thread>

namespace
{

namespace fs = std::filesystem;
using platform::FileDescriptor;
using platform::WholeFile;

class WholeFileTest : public testing::Test
{
protected:
    kordTest::TempFolder temporary;
    const fs::path folder = temporary.path();
    const fs::path path = folder / "file";

    [[nodiscard]] size_t entries() const
    {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
    static std::string textOf(const fs::path& file) { return kordTest::readFile(file).value_or("(none)"); }
    static mode_t modeOf(const fs::path& file)
    {
        struct stat status {
        };
        return stat(file.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
    }
    void leave(const std::string& text) const { std::ofstream(path) << text; }
};

TEST(FileDescriptorTest, ClosesStandardInputsNumberAsWell)
{
    const FileDescriptor kept(dup(STDIN_FILENO));
    close(STDIN_FILENO);
    {
        const FileDescriptor file(open("/dev/null", O_RDONLY));
        EXPECT_EQ(file.get(), STDIN_FILENO);
        EXPECT_TRUE(file.isOpen());
    }
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
    dup2(kept.get(), STDIN_FILENO);
}

TEST_F(WholeFileTest, ShowsNothingBeforeItIsInPlace)
{
    leave("old");
    WholeFile file(path);
    file.write("n"); // a byte by itself
    file.write("ew text");
    EXPECT_EQ(textOf(path), "old");
    file.putInPlace();
    EXPECT_EQ(textOf(path), "new text");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(WholeFileTest, InPlaceRemovesNoOthersTemporaryFile)
{
    auto first = std::make_unique<WholeFile>(path);
    first->putInPlace();
    WholeFile second(folder / "other");
    first.reset();
    second.write("text");
    second.putInPlace();
    EXPECT_EQ(textOf(folder / "other"), "text");
    EXPECT_EQ(entries(), 2U);
}

TEST_F(WholeFileTest, GivenUpLeavesWhatWasThere)
{
    leave("old");
    {
        WholeFile file(path);
        file.write("half a");
    }
    EXPECT_EQ(textOf(path), "old");
    EXPECT_EQ(entries(), 1U);
}

/// A limit on the size of files stands for a full disk.
TEST_F(WholeFileTest, OnAFullDiskLeavesWhatWasThere)
{
    leave("old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit tight = {.rlim_cur = 100, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &tight);
    EXPECT_THROW(platform::writeWhole(path, std::string(101, 'x')), platform::Failure);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(textOf(path), "old");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(WholeFileTest, TwoForOnePlaceAreTwoFiles)
{
    WholeFile first(path);
    WholeFile second(path);
    EXPECT_EQ(entries(), 2U);
    first.write("first");
    second.write("second");
    first.putInPlace();
    EXPECT_EQ(textOf(path), "first");
    second.putInPlace();
    EXPECT_EQ(textOf(path), "second");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(WholeFileTest, HasTheModeOfTheFileInItsPlace)
{
    const mode_t mask = umask(022);
    platform::writeWhole(path, "new");
    EXPECT_EQ(modeOf(path), 0644U);
    fs::permissions(path, fs::perms(0660));
    platform::writeWhole(path, "newer");
    EXPECT_EQ(modeOf(path), 0660U);
    umask(mask);
}

TEST_F(WholeFileTest, HasTheModeThatWasAskedFor)
{
    leave("for all to read");
    fs::permissions(path, fs::perms(0644));
    WholeFile file(path, 0600);
    file.putInPlace();
    EXPECT_EQ(modeOf(path), 0600U);
}

TEST_F(WholeFileTest, FollowsALink)
{
    leave("old");
    fs::create_symlink("file", folder / "link");
    platform::writeWhole(folder / "link", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(textOf(path), "new");
    EXPECT_EQ(entries(), 2U);
}

TEST_F(WholeFileTest, TakesThePlaceOfALinkToNothing)
{
    fs::create_symlink("nothing", path);
    platform::writeWhole(path, "new");
    EXPECT_EQ(textOf(path), "new");
    EXPECT_FALSE(fs::is_symlink(path));
    EXPECT_FALSE(fs::exists(folder / "nothing"));
}

TEST_F(WholeFileTest, GoesThroughAPipe)
{
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const FileDescriptor reader(open(path.c_str(), O_RDWR));
    platform::writeWhole(path, "text");
    std::string text(10, '.');
    text.resize(static_cast<size_t>(read(reader.get(), text.data(), text.size())));
    EXPECT_EQ(text, "text");
    EXPECT_TRUE(fs::is_fifo(path));
}

TEST_F(WholeFileTest, WaitsForTheReaderOfAPipe)
{
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string more(300'000, 'x'); // than a pipe holds
    std::string text;
    std::thread reader([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::ifstream pipe(path);
        text.assign(std::istreambuf_iterator<char>(pipe), {});
    });
    EXPECT_NO_THROW(platform::writeWhole(path, more));
    reader.join();
    EXPECT_EQ(text, more);
}

TEST_F(WholeFileTest, DoesNotWaitForTheReaderOfSomebodyElsesPipe)
{
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a pipe away";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
    try {
        platform::writeWhole(path, "text");
        ADD_FAILURE();
    } catch (const platform::Failure& failure) {
        EXPECT_EQ(failure.what(), path.string() + ": nobody reads this pipe of somebody else's");
    }
}

TEST_F(WholeFileTest, SaysWhatIsInTheWay)
{
    for (const auto& [place, reason] : {std::pair<fs::path, std::string>{"/dev/full", "No space left"},
                                        {folder, "Is a directory"},
                                        {folder / "no/such", "No such file"}}) {
        try {
            platform::writeWhole(place, "text");
            ADD_FAILURE() << place;
        } catch (const platform::Failure& failure) {
            EXPECT_TRUE(std::string(failure.what()).starts_with(place.string() + ": " + reason))
                << failure.what();
        }
    }
}

} // namespace
