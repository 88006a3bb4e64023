// A facility out of counters: every text differs from its neighbours' and is as long as on a real machine.

#include "storageDocument.h"

#include "report.h"

namespace bench
{

namespace
{

constexpr int drivesEach = 20;

Part makePart(const std::string& enclosure, const char* place, int number, int serial)
{
    return {.location = format("%s-%s%d", enclosure.c_str(), place, number),
            .partNumber = format("17P%04d", serial % 10'000),
            .serialNumber = format("YM10%08d", serial),
            .ecLevel = format("F%05d", serial % 7),
            .firmware = format("5C0%d", serial % 4)};
}

Enclosure makeEnclosure(int number)
{
    const std::string location = format("U9999.E16.%07d", number);
    Enclosure enclosure;
    enclosure.location = location;
    enclosure.image = format("9999-A01-00XY123%d", 1 + number % 2);
    enclosure.rackLocation = format("9999-R01-%07d-%d", number / 5, 1 + number % 5);
    enclosure.rackNumber = format("R%d", number / 5 % 1000);
    enclosure.serial = format("%08d", number);
    for (int i = 0; i < drivesEach; ++i) {
        const int serial = number * drivesEach + i;
        enclosure.drives.push_back(
            {makePart(location, "P1-D", i + 1, serial), format("D%09d", serial), serial / 8, serial % 8});
    }
    for (int i = 1; i <= 2; ++i)
        enclosure.cards.push_back(makePart(location, "P1-C", i, number * 2 + i));
    enclosure.baffles.push_back(makePart(location, "P1-B", 1, number));
    return enclosure;
}

} // namespace

Storage makeStorage(int enclosures)
{
    Storage storage{.system = "9999-B2C-7ABCD12", .facility = "9999-A01-00XY1230", .enclosures = {}};
    for (int i = 0; i < enclosures; ++i)
        storage.enclosures.push_back(makeEnclosure(i));
    return storage;
}

} // namespace bench
