#include "fleet.h"

#include "inventory/sqlite.h"

#include <fstream>

namespace kordTest
{

namespace fs = std::filesystem;

std::string documentOf(const Night& night)
{
    constexpr int start = 1793491200; // 1 November 2026
    constexpr int secondsOfDay = 86400;
    std::string drives;
    for (const Drive& one : night.drives)
        drives += drive("U.AB1", one);
    const std::string enclosures =
        list("Enclosures", enclosure({.id = "U.AB1", .serial = "AB1", .location = "R-1"}, drives));
    const std::string partitions = night.failed
                                       ? ""
                                       : list("Partitions", resource("Tarn01", night.system + "-1", "") +
                                                                resource("Tarn02", night.system + "-2", ""));
    return inventory(resource(night.system, night.system,
                              property("S3", "Storage Facility MTMS", "FACILITY") + enclosures + partitions),
                     std::to_string(start + night.day * secondsOfDay) + ".5");
}

std::string cutOff(const std::string& document)
{
    return document.substr(0, document.find("<ResourceList displayName=\"Partitions\""));
}

fs::path Fleet::write(const std::string& name, const std::string& text) const
{
    fs::create_directories(in(name).parent_path());
    std::ofstream(in(name), std::ios::binary) << text;
    return in(name);
}

Outcome Fleet::kord(std::vector<std::string> arguments, std::chrono::milliseconds limit)
{
    arguments.insert(arguments.begin(), kordTest::triedBuild() / "bin/kord");
    return runProcess({.arguments = arguments, .folder = {}, .limit = limit});
}

Outcome Fleet::import(std::vector<std::string> files) const
{
    files.insert(files.begin(), {"import", database()});
    return kord(std::move(files));
}

std::vector<std::string> Fleet::ask(const std::string& sql) const
{
    inventory::Database opened(database(), inventory::Database::Access::write);
    inventory::Statement statement(opened, sql);
    std::vector<std::string> lines;
    while (statement.step()) {
        std::string line;
        for (int column = 0; column < statement.columns(); ++column)
            line.append(column == 0 ? "" : "|").append(statement.text(column));
        lines.push_back(line);
    }
    return lines;
}

} // namespace kordTest
