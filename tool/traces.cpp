#include "traces.h"

#include "document/input.h"

#include <array>

namespace tool
{

void readTrace(document::Explainer& explainer, const std::string& file)
{
    constexpr size_t enough = size_t{16} * 1024 * 1024;
    document::Input input(file);
    std::array<char, 65536> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    size_t total = 0;
    for (size_t got = 0; (got = input.read(bytes)) > 0 && (total < enough || explainer.foundLines());) {
        explainer.read({bytes.data(), got});
        total += got;
    }
    explainer.end();
    if (!explainer.foundLines())
        throw document::Malformed(input.name() + ": no line of a collector's trace log");
}

} // namespace tool
