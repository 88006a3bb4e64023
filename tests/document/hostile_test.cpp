// Values that take time: what is read, listed and written grows with the document, whatever it holds.

#include "document/json.h"
#include "document/list.h"
#include "writing.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace
{

using namespace kordTest;

std::string repeated(const std::string& text, size_t times)
{
    std::string all;
    for (size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string ofHosts(const std::string& value)
{
    return ofPartitions(resource("P", "SYSTEM-1-1", hosts(value)));
}

std::string ofDrives(size_t count, const std::function<std::string(size_t)>& one)
{
    std::string drives;
    for (size_t i = 0; i < count; ++i)
        drives += one(i);
    return ofEnclosures(enclosure({.id = "E", .serial = "1", .location = "R-1"}, drives));
}

struct Hostile {
    std::string name;
    std::function<std::string(size_t)> document; ///< of that size
};

const std::vector<Hostile> hostile = {
    {"commas in host descriptions", [](size_t size) { return ofHosts(repeated(",", size) + "=1,"); }},
    {"hosts without end", [](size_t size) { return ofHosts(repeated("a=,", size)); }},
    {"equals signs and digits", [](size_t size) { return ofHosts(repeated("=1", size) + ','); }},
    {"digits", [](size_t size) { return ofHosts("a=" + repeated("9", size) + ",b=1,"); }},
    {"hosts", [](size_t size) { return ofHosts(repeated("web=1,", size)); }},
    {"identifiers of many lines",
     [](size_t size) {
         const std::string id = repeated("line\n", size);
         return ofEnclosures(resource("Quay", id, ""));
     }},
    {"drives of one identifier",
     [](size_t size) {
         return ofDrives(size / 10,
                         [](size_t i) { return drive("E", {.slot = "-D1", .serial = std::to_string(i)}); });
     }},
    {"one drive again and again",
     [](size_t size) {
         return ofDrives(size / 10, [](size_t) { return drive("E", {.slot = "-D1", .serial = "S"}); });
     }},
    {"a drive in many shares",
     [](size_t size) {
         std::string shares;
         for (size_t i = 0; i < size / 20; ++i)
             shares +=
                 enclosure({.id = "E", .serial = "1", .location = "R-1", .partition = std::to_string(i)},
                           drive("E", {.slot = "-D1", .serial = "S"}));
         return ofEnclosures(shares);
     }},
    {"a long identifier",
     [](size_t size) { return ofEnclosures(resource("Quay", std::string(10 * size, 'x'), "")); }},
    {"keys in a drive's space",
     [](size_t size) {
         return ofEnclosures(
             resource("OSK Physical Disk Drive", "D",
                      property("DP", "Disk Space Characteristics", repeated("DI=,ST,", size))));
     }},
    {"counts",
     [](size_t size) {
         return ofPartitions(
             resource("P", "S-1", property("U1", "Logcial Configuration String", repeated("v0=1,", size))));
     }},
    {"names of properties",
     [](size_t size) {
         return ofDrives(size / 20, [](size_t i) {
             return resource("OSK Physical Disk Drive", std::to_string(i),
                             property("PN", "Label " + std::to_string(i), "x"));
         });
     }},
    {"firmware levels",
     [](size_t size) {
         return ofPartitions(
             resource("P", "SYSTEM-1-1", repeated(property("LE", "LIC VRMF", "5"), size / 10)));
     }},
    {"arrays and array sites",
     [](size_t size) {
         std::string sites;
         std::string arrays;
         for (size_t i = 0; i < size / 20; ++i) {
             const std::string number = std::to_string(i);
             sites += resource("Array Site", "I/S" + number, property("A1", "Array", "I/A" + number));
             arrays += resource("Array", "I/A" + number + number, "");
         }
         return ofPartitions(resource(
             "P", "S-1",
             list("Storage Configurations", resource("Storage Logical Configuration", "I_L1",
                                                     list("Array Sites", sites) + list("Arrays", arrays)))));
     }},
    {"ranks of one number",
     [](size_t size) {
         std::string ranks;
         std::string pools;
         for (size_t i = 0; i < size / 20; ++i) {
             const std::string number = std::to_string(i);
             ranks += resource("Rank", "I/R" + number, property("A1", "Segment Pool", "I/P1"));
             pools += resource("Segment Pool", number + "/P1", "");
         }
         return ofPartitions(resource(
             "P", "S-1",
             list("Storage Configurations", resource("Storage Logical Configuration", "I_L1",
                                                     list("Ranks", ranks) + list("Segment Pool", pools)))));
     }},
};

/// How much everything that a command makes of a document is.
size_t writtenOf(const std::string& text)
{
    size_t written = 0;
    const document::Write write = [&](std::string_view piece) { written += piece.size(); };
    document::writeJson(parse(text), write);
    for (const auto format : {document::Format::table, document::Format::csv, document::Format::json}) {
        document::ListOptions options;
        options.kind = "all";
        options.format = format;
        options.order = {"id", "-serial"};
        document::List list(options, write);
        list.add(parse(text));
        list.finish();
    }
    return written;
}

/// What grows with the square of such a document takes minutes for the larger one: the suite's time limit
/// ends it.
TEST(Hostile, EverythingGrowsWithTheDocument)
{
    constexpr size_t size = 50'000;
    for (const Hostile& one : hostile) {
        const size_t small = writtenOf(one.document(size));
        EXPECT_GT(small, 0U) << one.name;
        EXPECT_LT(writtenOf(one.document(4 * size)), 5 * small) << one.name;
    }
}

} // namespace
