// A folder of a test's own, gone with everything in it at the end of the test.

#pragma once

#include <filesystem>

namespace kordTest
{

class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return folder; }

private:
    std::filesystem::path folder;
};

} // namespace kordTest
