// Makes and removes a test's folder under the machine's temporary folder.

#include "tempFolder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace kordTest
{

TempFolder::TempFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "kord-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    folder = name;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

} // namespace kordTest
