// The document's cost: the collector's writers, without their trace, beside plain formatted printing and
// libxml2's writer, all building the same bytes into the same stream.

#include "addTextKord.h"
#include "addXmlKord.h"
#include "builders.h"
#include "report.h"
#include "storageDocument.h"

#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace
{

using namespace bench;

constexpr int enclosures = 500;
constexpr int drives = 20 * enclosures;

void writeEnclosure(const kordRec* record, const Enclosure& enclosure)
{
    const char* image = enclosure.image.c_str();
    openStorEncl(record, enclosure.location.c_str(), image, enclosure.rackLocation.c_str(),
                 enclosure.rackNumber.c_str(), interfaces, feature, typeModel, enclosure.serial.c_str());
    openEnclosurePartitionsStor(record, enclosure.location.c_str(), lparId);
    openPartitionResources(record);
    for (const Drive& drive : enclosure.drives) {
        writeDDM(record, drive.location.c_str(), image, drive.ecLevel.c_str(), drive.firmware.c_str(),
                 drive.partNumber.c_str(), drive.serialNumber.c_str(), drive.name.c_str(), manufacturer,
                 capacity, speed, rate, drive.arraySite, drive.position, interfaceType, serviceState);
    }
    for (const Part& card : enclosure.cards) {
        writeFCIC(record, card.location.c_str(), image, card.ecLevel.c_str(), card.firmware.c_str(),
                  card.partNumber.c_str(), card.serialNumber.c_str());
    }
    for (const Part& baffle : enclosure.baffles)
        writeBaffle(record, baffle.location.c_str(), image, baffle.partNumber.c_str());
    closePartitionResources(record);
    closeEnclosurePartitionsStor(record);
    closeStorEncl(record);
}

void writeWithCollector(FILE* stream, const Storage& storage)
{
    kordRec record{};
    record.inp = stream;
    copyText(record.kordpManagedSystemMTMS, storage.system.c_str());
    copyText(record.kordpStorageFacilityMTMS, storage.facility.c_str());
    openInventory(&record);
    openSystem(&record);
    openEnclosures(&record);
    for (const Enclosure& enclosure : storage.enclosures)
        writeEnclosure(&record, enclosure);
    closeEnclosures(&record);
    closeSystem(&record);
    closeInventory(&record);
}

template <typename Builder>
void writeWith(FILE* stream, const Storage& storage)
{
    Builder builder(stream);
    buildDocument(builder, storage);
}

using Writer = void (*)(FILE* stream, const Storage& storage);
using Stream = std::unique_ptr<FILE, int (*)(FILE*)>;

/// A file that is gone at the end, written in pieces as large as the collector's document.
Stream newStream()
{
    Stream stream(std::tmpfile(), std::fclose);
    if (stream == nullptr) {
        std::perror("a temporary file");
        std::exit(2);
    }
    static char largeWrites[65536]; // one stream is open at a time
    std::setvbuf(stream.get(), largeWrites, _IOFBF, sizeof largeWrites);
    return stream;
}

double costOf(Writer write, const Storage& storage)
{
    const Stream stream = newStream();
    return timeOf([&] {
        write(stream.get(), storage);
        std::fflush(stream.get());
    });
}

/// The bytes that the writer makes, but for its time.
std::string bytesOf(Writer write, const Storage& storage)
{
    const Stream stream = newStream();
    write(stream.get(), storage);
    std::string bytes(static_cast<size_t>(std::ftell(stream.get())), '\0');
    std::rewind(stream.get());
    if (std::fread(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size()) return {};

    constexpr std::string_view before = "timestamp=\"";
    const size_t stamp = bytes.find(before);
    if (stamp == std::string::npos) return {};
    const size_t start = stamp + before.size();
    return bytes.erase(start, bytes.find('"', start) - start);
}

} // namespace

int main()
{
    const Storage storage = makeStorage(enclosures);
    const std::string document = bytesOf(writeWithCollector, storage);
    if (document.empty() || bytesOf(writeWith<PlainBuilder>, storage) != document ||
        bytesOf(writeWith<XmlBuilder>, storage) != document) {
        std::fputs("the builders' documents differ: their times say nothing\n", stderr);
        return 2;
    }

    const auto contender = [&](const char* name, Writer write) {
        return Contender{name, [&storage, write] { return costOf(write, storage); }};
    };
    const std::vector<Contender> contenders = {contender("the collector's writers", writeWithCollector),
                                               contender("fprintf", writeWith<PlainBuilder>),
                                               contender("xmlTextWriter", writeWith<XmlBuilder>)};
    const std::vector<Series> costs = interleave(contenders);

    Report report(format("Writing the document: %d drives, %.1f MB", drives,
                         static_cast<double>(document.size()) / 1e6));
    std::vector<std::vector<std::string>> rows;
    for (size_t i = 0; i < contenders.size(); ++i) {
        rows.push_back({contenders[i].name, cell(costs[i], 1e6), cell(costs[i], 1e3 * drives),
                        cell(ratio(costs[i], costs[0]))});
    }
    report.table({"builder", "ms", "µs a drive", "times the collector's"}, rows);
    report.atLeast("xmlTextWriter, times the collector's writers", median(ratio(costs[2], costs[0])), 2);
    report.atLeast("fprintf, times the collector's writers", median(ratio(costs[1], costs[0])), 1);
    return report.status();
}
