#include "addXmlKord.h"

#include "addTableKord.h"
#include "addTextKord.h"
#include "addTrcKord.h"

#include <cstdarg>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <string_view>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

using namespace std::string_view_literals;

// --- The vocabulary. Consumers match codes and labels to the letter, misspellings included.

/// Text that the compiler puts together.
struct Constant {
    char bytes[200] = {};
    size_t size = 0;

    consteval Constant(std::initializer_list<std::string_view> pieces)
    {
        for (const std::string_view piece : pieces) {
            for (const char character : piece)
                bytes[size++] = character;
        }
    }
    constexpr operator std::string_view() const { return {bytes, size}; }
};

/// A property's start, all that stands before its value.
consteval Constant startOf(std::string_view code, std::string_view name, std::string_view displayName)
{
    return {"<Property name=\"",        name, "\" displayName=\"", displayName, "\">\n", code,
            "\n<Value type=\"string\">"};
}

struct Wording {
    std::string_view code;
    std::string_view text;
};

/// A property's label, in both orders.
struct Label {
    Constant normal;
    Constant reversed;
};

consteval Label label(Wording of)
{
    return {startOf(of.code, of.code, of.text), startOf(of.code, of.text, of.code)};
}

constexpr Label facilityMTMS = label({.code = "S3", .text = "Storage Facility MTMS"});
constexpr Label imageMTMS = label({.code = "S4", .text = "Storage Facility Image MTMS"});
constexpr Label ecLevelLabel = label({.code = "EC", .text = "EC Level"});
constexpr Label changeLevel = label({.code = "EC", .text = "Engineering Change Level"});
constexpr Label firmwareLevelLabel = label({.code = "LE", .text = "Firmware Level"});
constexpr Label partNumberLabel = label({.code = "PN", .text = "Part Number"});
constexpr Label assemblyNumber = label({.code = "PN", .text = "PartNumber of assembly"});
constexpr Label serialNumberLabel = label({.code = "SN", .text = "Serial Number"});
constexpr Label cardIdentification = label({.code = "CC", .text = "Customer Card Indentification Number"});
constexpr Label adapterInterface = label({.code = "IF", .text = "InterfaceID"});
constexpr Label enclosureInterface = label({.code = "IF", .text = "IntefaceID"});
constexpr Label drawerInterface = label({.code = "IF", .text = "Storage Facility MTMS - InterfaceID"});
constexpr Label rackLocationLabel = label({.code = "R1", .text = "Rack Location"});
constexpr Label rackNumberLabel = label({.code = "R2", .text = "Rack Number"});
constexpr Label rackUniqueId = label({.code = "RK", .text = "Rack Unique ID"});
constexpr Label featureCode = label({.code = "FC", .text = "Feature Code"});
constexpr Label typeModelLabel = label({.code = "TM", .text = "Machine Type-Model"});
constexpr Label plantAndSerial = label({.code = "SG", .text = "Plant of Manufature code and Serial Number"});
constexpr Label batteryLife = label({.code = "BT", .text = "Battery Remaining Life"});
constexpr Label diskSpace = label({.code = "DP", .text = "Disk Space Characteristics"});
constexpr Label accountName = label({.code = "AC", .text = "Account Name"});
constexpr Label systemVPD = label({.code = "DS", .text = "System VPD"});
constexpr Label hardwareLocation = label({.code = "YL", .text = "Hardware Location Code"});
constexpr Label licVRMF = label({.code = "LE", .text = "LIC VRMF"});
constexpr Label operatingSystem = label({.code = "OS", .text = "OS"});
constexpr Label nodeName = label({.code = "NN", .text = "WWNN"});
constexpr Label hslPool = label({.code = "H1", .text = "Partition HSL Pool"});
constexpr Label configurationString = label({.code = "U1", .text = "Logcial Configuration String"});
constexpr Label hostInventory = label({.code = "U2", .text = "Host Inventory"});
constexpr Label arrayBelow = label({.code = "A1", .text = "Array"});
constexpr Label rankBelow = label({.code = "A1", .text = "Rank"});
constexpr Label segmentPoolBelow = label({.code = "A1", .text = "Segment Pool"});
constexpr Label partitionIdentifier = label({.code = "CI", .text = "Partition identifier"});
constexpr Label logicalSpace = label({.code = "LS", .text = "Logical Space Characteristics"});

struct Property {
    std::string_view start;
    std::string_view value;
};
using Properties = std::initializer_list<Property>;

Property normal(const Label& label, const char* value)
{
    return {label.normal, textOrEmpty(value)};
}

/// Name and display name change places; consumers of these cards expect them so.
Property reversed(const Label& label, const char* value)
{
    return {label.reversed, textOrEmpty(value)};
}

Property facility(const kordRec* pKordRec)
{
    return normal(facilityMTMS, pKordRec->kordpStorageFacilityMTMS);
}

// --- The shapes. Nothing else writes to the document.

constexpr std::string_view endList = "</ResourceList>\n";
constexpr std::string_view endResource = "</Resource>\n";
constexpr std::string_view endBoth = "</Resource>\n</ResourceList>\n";

/// Gathers the pieces of an element on their way to the document: a stream takes one large piece faster than
/// many small ones.
struct Element {
    FILE* stream;
    size_t used = 0;
    char bytes[4096];

    explicit Element(const kordRec* pKordRec) : stream(pKordRec->inp) {}
    ~Element() { flush(); }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    void add(std::string_view piece)
    {
        if (piece.size() > sizeof bytes - used) flush();
        if (piece.size() > sizeof bytes) return write(piece);
        memmove(bytes + used, piece.data(), piece.size()); // a bounded memcpy is made in place, slowly
        used += piece.size();
    }
    void add(const char* text) { add(std::string_view(textOrEmpty(text))); }
    void add(const Property& property)
    {
        add(property.start);
        add(property.value);
        add("</Value>\n</Property>\n"sv);
    }
    void flush();
    void write(std::string_view text) const;
};

void Element::flush()
{
    write({bytes, used});
    used = 0;
}

[[gnu::noinline]] void Element::write(std::string_view text) const
{
    // What follows a piece that was lost would stand where it does not belong: the document ends there.
    if (stream != nullptr && ferror_unlocked(stream) == 0)
        fwrite_unlocked(text.data(), 1, text.size(), stream);
}

template <typename... Pieces>
void put(const kordRec* pKordRec, const Pieces&... pieces)
{
    Element element(pKordRec);
    (element.add(pieces), ...);
}

void addResource(Element& element, const char* displayName, const char* uniqueId, Properties properties)
{
    const std::string_view id = textOrEmpty(uniqueId);
    element.add("<Resource displayName=\""sv);
    element.add(displayName);
    element.add("\" uniqueId=\""sv);
    element.add(id);
    element.add("\">\n"sv);
    element.add(id);
    element.add("\n"sv);
    for (const Property& property : properties)
        element.add(property);
}

int32_t openList(const kordRec* pKordRec, const char* traceText, const char* displayName)
{
    trace(pKordRec, ">>", "%s", traceText);
    put(pKordRec, "<ResourceList displayName=\""sv, displayName, "\">\n"sv);
    return 0;
}

int32_t openResource(const kordRec* pKordRec, const char* traceText, const char* displayName,
                     const char* uniqueId, Properties properties = {})
{
    trace(pKordRec, ">>", "%s", traceText);
    Element element(pKordRec);
    addResource(element, displayName, uniqueId, properties);
    return 0;
}

int32_t closeElement(const kordRec* pKordRec, const char* traceText, std::string_view endTags)
{
    trace(pKordRec, ">>", "%s", traceText);
    put(pKordRec, endTags);
    return 0;
}

/// A whole resource.
int32_t writeResource(const kordRec* pKordRec, const char* displayName, const char* uniqueId,
                      Properties properties)
{
    Element element(pKordRec);
    addResource(element, displayName, uniqueId, properties);
    element.add(endResource);
    return 0;
}

/// A property that stands by itself.
int32_t writeProperty(const kordRec* pKordRec, const char* traceText, const Property& property)
{
    trace(pKordRec, ">>", "%s", traceText);
    put(pKordRec, property);
    return 0;
}

// --- Composed values.

struct Composed {
    char text[100];
};

[[gnu::format(printf, 1, 2)]] Composed compose(const char* format, ...)
{
    Composed composed;
    va_list arguments;
    va_start(arguments, format);
    formatArguments(composed.text, format, arguments);
    va_end(arguments);
    return composed;
}

/// A partition within an enclosure or a system.
Composed partitionOf(const char* owner, const char* lparId)
{
    return compose("%s-%s", owner, lparId);
}

/// A numbered part of an image's storage configuration: "S" array site, "A" array, "R" rank, "P" segment
/// pool.
Composed partOf(const char* image, const char* kind, int32_t number)
{
    return compose("%s/%s%d", image, kind, number);
}

/// The R2 value: a rack text without its first character, at most three characters.
struct RackNumber {
    char text[4];
};

RackNumber rackNumberOf(const char* rackText)
{
    RackNumber number;
    copyText(number.text, *rackText != '\0' ? rackText + 1 : "");
    return number;
}

/// A sub-list of a partition within an enclosure: a list and, in it, the partition's resource.
int32_t openPartitionSubList(const kordRec* pKordRec, const char* traceText, const char* displayName,
                             const char* uniqueId)
{
    openList(pKordRec, traceText, "Enclosures Partitions");
    Element element(pKordRec);
    addResource(element, displayName, uniqueId, {});
    return 0;
}

/// The two kinds of adapter card differ in their display name alone.
int32_t writeAdapter(const kordRec* pKordRec, const char* displayName, const char* interfaceIdentifier,
                     const char* locationCode, const char* kordpStorageFacilityImageMTMS,
                     const char* partNumber, const char* serialNumber, const char* ecLevel,
                     const char* firmware, const char* ccin)
{
    return writeResource(pKordRec, displayName, locationCode,
                         {
                             normal(imageMTMS, kordpStorageFacilityImageMTMS),
                             reversed(assemblyNumber, partNumber),
                             reversed(serialNumberLabel, serialNumber),
                             reversed(changeLevel, ecLevel),
                             reversed(firmwareLevelLabel, firmware),
                             normal(adapterInterface, interfaceIdentifier),
                             reversed(cardIdentification, ccin),
                             normal(systemVPD, displayName),
                             normal(hardwareLocation, locationCode),
                         });
}

constexpr const char* documentVersion = "1.0";
constexpr const char* nvcName = "Orvik Non Volatile Control Card";
constexpr const char* daName = "OSK FC-AL Cobaltarray Adapter";
constexpr const char* haName = "Orvik Sable HA - LW";
constexpr const char* storName = "Storage Enclosure";
constexpr const char* ddmName = "OSK Physical Disk Drive";
constexpr const char* fcicName = "Fiber Channel Interface Card";
constexpr const char* baffleName = "Storage Enclosure Slot Baffle";
constexpr const char* rackName = "TARN Rack";
constexpr const char* ppsName = "Primary Power Supply";
constexpr const char* batteryName = "Rack Battery Assembly";
constexpr const char* rpcName = "Rack Power Control Card";
constexpr const char* fanSenseName = "Fan Sense Card";
constexpr const char* fanTrayName = "Fan Tray";
constexpr const char* quayName = "Quay";
constexpr const char* arraySiteName = "Array Site";
constexpr const char* arrayName = "Array";
constexpr const char* rankName = "Rank";
constexpr const char* segmentPoolName = "Segment Pool";

constexpr TraceText noFileLine = {"0700", " open xmlfile error %s \n"};
constexpr TraceText stampLine = {"0701", " stamp=%s"};
constexpr TraceText openArrayLine = {"0703", " arraySites = %d, %s"};

/// Makes way for a new document: an empty file stays, anything else but a folder goes.
void removeEarlier(const char* path)
{
    struct stat status {
    };
    if (lstat(path, &status) != 0 || S_ISDIR(status.st_mode)) return;
    if (status.st_size != 0 || !S_ISREG(status.st_mode)) unlink(path);
}

// --- What the tables tell

constexpr ToldLine lines[] = {
    {.function = "startXml",
     .line = noFileLine,
     .explanation = {.meaning = "the document's file could not be opened",
                     .advice = "see /var/adm/stockmere/VPD"}},
    {.function = "openInventory", .line = stampLine, .explanation = {.meaning = "the document's timestamp"}},
    {.function = "openArray", .line = openArrayLine},
};

} // namespace

const ToldLines addXmlLines = {.module = "addXmlKord", .lines = lines};

// --- Frame

int32_t startXml(kordRec* pKordRec)
{
    char path[100];
    formatText(path, "%s/addTarnKord_%s.xml", documentFolder, pKordRec->inputSystemMTMS);
    removeEarlier(path);

    constexpr mode_t defaultMode = 0666;
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, defaultMode);
    FILE* stream = fd >= 0 ? fdopen(fd, "w") : nullptr;
    if (stream == nullptr) {
        if (fd >= 0) close(fd);
        trace(pKordRec, noFileLine, path);
        return 1;
    }
    static char largeWrites[65536]; // a size alone would be passed over
    setvbuf(stream, largeWrites, _IOFBF, sizeof largeWrites);
    pKordRec->inp = stream;
    return 0;
}

int32_t openInventory(const kordRec* pKordRec)
{
    trace(pKordRec, ">>", " openInventory");
    timeval now{};
    gettimeofday(&now, nullptr);
    // Consumers read the microseconds as a plain number, without leading zeros.
    const Composed stamp = compose("%lld.%ld", static_cast<long long>(now.tv_sec), now.tv_usec);

    put(pKordRec, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    if (pKordRec->testFlag == 1) put(pKordRec, "<?xml-stylesheet type=\"text/xsl\" href=\"v03.xsl\"?>\n");
    put(pKordRec, "<com.orvik.inventory verion=\"", documentVersion, "\">\n");
    put(pKordRec, "<ResourceSet class=\"com.orvik.inventory.Hardware\" type=\"Hardware\" version=\"",
        documentVersion, "\" timestamp=\"", stamp.text, "\">\n");
    trace(pKordRec, stampLine, stamp.text);
    return 0;
}

void closeInventory(const kordRec* pKordRec)
{
    closeElement(pKordRec, " closeInventory", "</ResourceSet>\n</com.orvik.inventory>\n");
}

// --- System and lists

int32_t openSystem(const kordRec* pKordRec)
{
    const char* system = pKordRec->kordpManagedSystemMTMS;
    return openResource(pKordRec, " openSystem resource", system, system, {facility(pKordRec)});
}

int32_t closeSystem(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeSystem resource", endResource);
}

int32_t openEnclosures(const kordRec* pKordRec)
{
    return openList(pKordRec, " openEnclosures resourcelist", "Enclosures");
}

int32_t closeEnclosures(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeEnclosures resourcelist", endList);
}

int32_t openPartitionList(const kordRec* pKordRec)
{
    return openList(pKordRec, " openPartitionList  resourcelist", "Partitions");
}

int32_t closePartitionList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closePartitionList  resourcelist", endList);
}

// --- Processor complex enclosures

int32_t openCecEncl(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openCecEncl resource", "CEC", locationCode, {facility(pKordRec)});
}

int32_t closeCecEncl(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeCecEncl resource", endResource);
}

int32_t openCecEnclosurePartitionsList(const kordRec* pKordRec)
{
    return openList(pKordRec, " openCecEnclosurePartitions resourcelist", "Enclosures Partitions");
}

int32_t closeCecEnclosurePartitionsList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeCecEnclosurePartitions resourcelist", endList);
}

int32_t openCecEnclosurePartitions(const kordRec* pKordRec, const char* locationCode_cec, const char* lparId)
{
    const Composed id = partitionOf(locationCode_cec, lparId);
    return openResource(pKordRec, " openCecEnclosurePartitions  resource", id.text, id.text);
}

int32_t closeCecEnclosurePartitions(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeCecEnclosurePartitions resource ", endResource);
}

int32_t openPartitionResourcesList(const kordRec* pKordRec)
{
    return openList(pKordRec, " openPartitionResourcesList  resourcelist", "Partition Resources");
}

int32_t closePartitionResourcesList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closePartitionResourcesList resourcelist", endList);
}

int32_t openPartitionResources(const kordRec* pKordRec)
{
    return openList(pKordRec, " openPartitionResources  resourcelist", "Partition Resources");
}

int32_t closePartitionResources(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closePartitionResources resourcelist", endList);
}

int32_t openEnclosurePartitions(const kordRec* pKordRec, const char* locationCode_cec, const char* lparId)
{
    const Composed id = partitionOf(locationCode_cec, lparId);
    return openPartitionSubList(pKordRec, " openEnclosurePartitions resourcelist resource", id.text, id.text);
}

int32_t closeEnclosurePartitions(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeEnclosurePartitions resource resourcelist", endBoth);
}

int32_t openNVC(const kordRec* pKordRec, const char* locationCode_nvc)
{
    return openResource(pKordRec, " openNVC", nvcName, locationCode_nvc);
}

int32_t closeNVC(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeNVC", endResource);
}

int32_t writeNVC(const kordRec* pKordRec, const char* locationCode_nvc,
                 const char* kordpStorageFacilityImageMTMS, const char* partNumber_nvc,
                 const char* serialNumber_nvc, const char* ecLevel_nvc)
{
    writeResource(pKordRec, nvcName, locationCode_nvc,
                  {
                      normal(imageMTMS, kordpStorageFacilityImageMTMS),
                      reversed(assemblyNumber, partNumber_nvc),
                      reversed(serialNumberLabel, serialNumber_nvc),
                      reversed(changeLevel, ecLevel_nvc),
                  });
    fflush(stdout);
    return 0;
}

// --- I/O enclosures

int32_t openIOEncl(const kordRec* pKordRec, const char* interfaceIdentifier, const char* locationCode)
{
    return openResource(pKordRec, " openIOEncl resource", "Larkspur", locationCode,
                        {
                            facility(pKordRec),
                            normal(drawerInterface, interfaceIdentifier),
                        });
}

int32_t closeIOEncl(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeIOEncl resource", endResource);
}

int32_t openEnclosurePartitionsIOD(const kordRec* pKordRec, const char* ioDrawerMTMS, const char* lparId)
{
    const Composed id = partitionOf(ioDrawerMTMS, lparId);
    return openPartitionSubList(pKordRec, " writeEnclosurePartitionsIOD resourcelist resource", id.text,
                                id.text);
}

int32_t closeEnclosurePartitionsIOD(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeEnclosurePartitionsIOD resource resourcelist", endBoth);
}

int32_t closeDA(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeDA", endResource);
}
int32_t closeHA(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeHA", endResource);
}

int32_t writeDA(const kordRec* pKordRec, const char* interfaceIdentifier, const char* /*daPair*/,
                const char* locationCode, const char* kordpStorageFacilityImageMTMS, const char* partNumber,
                const char* serialNumber, const char* ecLevel, const char* firmware, const char* ccin)
{
    return writeAdapter(pKordRec, daName, interfaceIdentifier, locationCode, kordpStorageFacilityImageMTMS,
                        partNumber, serialNumber, ecLevel, firmware, ccin);
}

int32_t writeHA(const kordRec* pKordRec, const char* interfaceIdentifier, const char* locationCode,
                const char* kordpStorageFacilityImageMTMS, const char* partNumber, const char* serialNumber,
                const char* ecLevel, const char* firmware, const char* ccin)
{
    return writeAdapter(pKordRec, haName, interfaceIdentifier, locationCode, kordpStorageFacilityImageMTMS,
                        partNumber, serialNumber, ecLevel, firmware, ccin);
}

// --- Storage enclosures

int32_t openStorEncl(const kordRec* pKordRec, const char* locationCode,
                     const char* kordpStorageFacilityImageMTMS, const char* RackLocation,
                     const char* rackNumber, const char* interfaceID, const char* feature,
                     const char* enclosureTypemodel, const char* encloseSerial)
{
    return openResource(pKordRec, " openStorEncl  resource", storName, locationCode,
                        {
                            facility(pKordRec),
                            normal(imageMTMS, kordpStorageFacilityImageMTMS),
                            normal(rackLocationLabel, RackLocation),
                            normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                            normal(enclosureInterface, interfaceID),
                            normal(featureCode, feature),
                            normal(typeModelLabel, enclosureTypemodel),
                            normal(plantAndSerial, encloseSerial),
                            normal(systemVPD, storName),
                            normal(hardwareLocation, locationCode),
                        });
}

int32_t closeStorEncl(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeStorEncl resource", endResource);
}

int32_t openEnclosurePartitionsStor(const kordRec* pKordRec, const char* locationCode, const char* lparId)
{
    return openPartitionSubList(pKordRec, " writeEnclosurePartitionsStor resourcelist resource",
                                "Enclosure's MTMS - Partition Id", partitionOf(locationCode, lparId).text);
}

int32_t closeEnclosurePartitionsStor(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeEnclosurePartitionsStor resource resourcelist", endBoth);
}

int32_t openDDM(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openDDM", ddmName, locationCode);
}

int32_t closeDDM(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeDDM", endResource);
}

int32_t writeDDM(const kordRec* pKordRec, const char* locationCode, const char* kordpStorageFacilityImageMTMS,
                 const char* ecLevel, const char* firmwareLevel, const char* partNumber,
                 const char* serialNumber, const char* diskName, const char* diskManufacturer,
                 int32_t diskCapacity, int32_t diskRPM, int32_t diskInterfaceRate, int32_t arraySite,
                 int32_t arraySitePosition, const char* diskInterfaceType, int32_t serviceState)
{
    char space[500];
    formatText(space, "DI=%s,DM=%s,DC=%dMB,DR=%d,DS=%d,AS=%d,AP=%d,IT=%s,ST=%d", diskName, diskManufacturer,
               diskCapacity, diskRPM, diskInterfaceRate, arraySite, arraySitePosition, diskInterfaceType,
               serviceState);
    return writeResource(pKordRec, ddmName, locationCode,
                         {
                             facility(pKordRec),
                             normal(imageMTMS, kordpStorageFacilityImageMTMS),
                             normal(ecLevelLabel, ecLevel),
                             normal(firmwareLevelLabel, firmwareLevel),
                             normal(partNumberLabel, partNumber),
                             normal(serialNumberLabel, serialNumber),
                             normal(diskSpace, space),
                             normal(systemVPD, ddmName),
                             normal(hardwareLocation, locationCode),
                         });
}

int32_t openFCIC(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openFCIC", fcicName, locationCode);
}

int32_t closeFCIC(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeFCIC", endResource);
}

int32_t writeFCIC(const kordRec* pKordRec, const char* locationCode,
                  const char* kordpStorageFacilityImageMTMS, const char* ecLevel, const char* firmwareLevel,
                  const char* partNumber, const char* serialNumber)
{
    return writeResource(pKordRec, fcicName, locationCode,
                         {
                             facility(pKordRec),
                             normal(imageMTMS, kordpStorageFacilityImageMTMS),
                             normal(ecLevelLabel, ecLevel),
                             normal(firmwareLevelLabel, firmwareLevel),
                             normal(partNumberLabel, partNumber),
                             normal(serialNumberLabel, serialNumber),
                             normal(systemVPD, fcicName),
                             normal(hardwareLocation, locationCode),
                         });
}

int32_t openBaffle(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openBaffle", baffleName, locationCode);
}

int32_t closeBaffle(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeBaffle", endResource);
}

int32_t writeBaffle(const kordRec* pKordRec, const char* locationCode,
                    const char* kordpStorageFacilityImageMTMS, const char* partNumber)
{
    return writeResource(pKordRec, baffleName, locationCode,
                         {
                             facility(pKordRec),
                             normal(imageMTMS, kordpStorageFacilityImageMTMS),
                             normal(partNumberLabel, partNumber),
                             normal(systemVPD, baffleName),
                             normal(hardwareLocation, locationCode),
                         });
}

// --- Racks

int32_t openRackEncl(const kordRec* pKordRec, const char* locationCode, const char* rackNumber,
                     uint32_t rackIndentifier, const char* Typemodel, const char* Serial)
{
    return openResource(pKordRec, " openRackEncl  resource", rackName, locationCode,
                        {
                            facility(pKordRec),
                            normal(rackUniqueId, compose("%u", rackIndentifier).text),
                            normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                            normal(typeModelLabel, Typemodel),
                            normal(plantAndSerial, Serial),
                            normal(systemVPD, rackName),
                            normal(hardwareLocation, locationCode),
                        });
}

int32_t closeRackEncl(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeRackEncl  resource", endResource);
}

int32_t openGlobalResources(const kordRec* pKordRec)
{
    return openList(pKordRec, " openGlobalResources  resourcelist", "Global Resources");
}

int32_t closeGlobalResources(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeGlobalResources resourcelist", endList);
}

int32_t openPPS(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openPPS", ppsName, locationCode);
}

int32_t closePPS(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closePPS", endResource);
}

int32_t writePPS(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                 const char* flashFirmwareLevel, const char* partNumber, const char* serialNumber,
                 const char* rackNumber)
{
    return writeResource(pKordRec, ppsName, locationCode,
                         {
                             facility(pKordRec),
                             normal(ecLevelLabel, ecLevel),
                             normal(firmwareLevelLabel, flashFirmwareLevel),
                             normal(partNumberLabel, partNumber),
                             normal(serialNumberLabel, serialNumber),
                             normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                             normal(systemVPD, ppsName),
                             normal(hardwareLocation, locationCode),
                         });
}

int32_t openBattery(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openBattery ", batteryName, locationCode);
}

int32_t closeBattery(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeBattery", endResource);
}

int32_t writeBattery(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                     const char* partNumber, const char* serialNumber, const char* batteryRemainingLife,
                     const char* rackNumber)
{
    return writeResource(pKordRec, batteryName, locationCode,
                         {
                             facility(pKordRec),
                             normal(ecLevelLabel, ecLevel),
                             normal(partNumberLabel, partNumber),
                             normal(serialNumberLabel, serialNumber),
                             normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                             normal(batteryLife, batteryRemainingLife),
                             normal(systemVPD, batteryName),
                             normal(hardwareLocation, locationCode),
                         });
}

int32_t openRPC(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openRPC", rpcName, locationCode);
}

int32_t closeRPC(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeRPC", endResource);
}

int32_t writeRPC(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                 const char* flashFirmwareLevel, const char* partNumber, const char* serialNumber,
                 const char* kyrosFeatureCode, const char* rackNumber)
{
    // The firmware level follows the rack number here, unlike in a power supply.
    return writeResource(pKordRec, rpcName, locationCode,
                         {
                             facility(pKordRec),
                             normal(ecLevelLabel, ecLevel),
                             normal(partNumberLabel, partNumber),
                             normal(serialNumberLabel, serialNumber),
                             normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                             normal(firmwareLevelLabel, flashFirmwareLevel),
                             normal(featureCode, kyrosFeatureCode),
                             normal(systemVPD, rpcName),
                             normal(hardwareLocation, locationCode),
                         });
}

int32_t openFanSense(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openFanSense", fanSenseName, locationCode);
}

int32_t closeFanSense(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeFanSense", endResource);
}

int32_t writeFanSense(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                      const char* partNumber, const char* serialNumber, const char* rackNumber)
{
    return writeResource(pKordRec, fanSenseName, locationCode,
                         {
                             facility(pKordRec),
                             normal(ecLevelLabel, ecLevel),
                             normal(partNumberLabel, partNumber),
                             normal(serialNumberLabel, serialNumber),
                             normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                             normal(systemVPD, fanSenseName),
                             normal(hardwareLocation, locationCode),
                         });
}

int32_t openFanTray(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, " openFanTray", fanTrayName, locationCode);
}

int32_t closeFanTray(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeFanTray", endResource);
}

int32_t writeFanTray(const kordRec* pKordRec, const char* locationCode, const char* partNumber,
                     const char* rackNumber)
{
    return writeResource(pKordRec, fanTrayName, locationCode,
                         {
                             facility(pKordRec),
                             normal(partNumberLabel, partNumber),
                             normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                             normal(systemVPD, fanTrayName),
                             normal(hardwareLocation, locationCode),
                         });
}

// --- Consoles

int32_t openQUAYEncl(const kordRec* pKordRec, const char* quayLocationCode)
{
    return openResource(pKordRec, " openQUAYEncl resource", quayName, quayLocationCode,
                        {
                            facility(pKordRec),
                            normal(systemVPD, quayName),
                            normal(hardwareLocation, quayLocationCode),
                        });
}

int32_t closeQUAYEncl(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeQUAYEncl resource", endResource);
}

int32_t writeRackEnclMTMS(const kordRec* pKordRec, const char* rackEnclosureMTMS)
{
    return writeProperty(pKordRec, " writeRackEnclMTMS", normal(rackNumberLabel, rackEnclosureMTMS));
}

int32_t writeStorPlex(const kordRec* pKordRec, const char* storagePlexAccountName)
{
    return writeProperty(pKordRec, " writeStorPlex", normal(accountName, storagePlexAccountName));
}

// --- Partitions

void openPartitionResource(const kordRec* pKordRec, const char* uniqueId, const char* lparName)
{
    openResource(pKordRec, " openPartitionResource resource", lparName, uniqueId, {facility(pKordRec)});
}

int32_t closePartitionResource(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closePartitionResource resource", endResource);
}

int32_t writeSFI(const kordRec* pKordRec, const char* kordpStorageFacilityImageMTMS)
{
    return writeProperty(pKordRec, " writeSFI", normal(imageMTMS, kordpStorageFacilityImageMTMS));
}

int32_t writeVRMF(const kordRec* pKordRec, const char* vrmf)
{
    writeProperty(pKordRec, " writeVRMF", normal(licVRMF, vrmf));
    fflush(stdout);
    return 0;
}

int32_t writeOnyx(const kordRec* pKordRec, const char* onyx)
{
    return writeProperty(pKordRec, " writeOnyx", normal(operatingSystem, onyx));
}

int32_t writeSFImageWWNN(const kordRec* pKordRec, const char* wwnn)
{
    return writeProperty(pKordRec, " writeWWNN", normal(nodeName, wwnn));
}

int32_t writeHSLPool(const kordRec* pKordRec, const char* PoolId)
{
    return writeProperty(pKordRec, " writeHSLPool", normal(hslPool, PoolId));
}

int32_t writeLogcialConfig(const kordRec* pKordRec, const char* logicalConfiguration)
{
    return writeProperty(pKordRec, " writeLogcialConfig", normal(configurationString, logicalConfiguration));
}

int32_t writeHostInventory(const kordRec* pKordRec, const char* description)
{
    return writeProperty(pKordRec, " writeHostInventory", normal(hostInventory, description));
}

int32_t writeHostDescription(const kordRec* pKordRec, const userHostDescr* pFirst)
{
    trace(pKordRec, ">>", " writeHostDescription");
    // Consumers receive this one name without quotation marks.
    put(pKordRec, "<Property name=U2 displayName=\"Host Inventory\">\nU2\n<Value type=\"string\">");
    for (const userHostDescr* entry = pFirst; entry != nullptr; entry = entry->nextp) {
        put(pKordRec, entry->description, "=", compose("%d", entry->count).text, ",");
    }
    put(pKordRec, "</Value>\n</Property>\n");
    return 0;
}

// --- Storage configuration

void openStorConfigResourceList(const kordRec* pKordRec)
{
    openList(pKordRec, " openStorConfigResourceList  resourcelist", "Storage Configurations");
}

int32_t closeStorConfigResourceList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeStorConfigResourceList  resourcelist", endList);
}

int32_t openStorConfigResource(const kordRec* pKordRec, const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, " openStorConfigResource resource", "Storage Logical Configuration",
                        compose("%s%s", kordpStorageFacilityImageMTMS, "_L1").text);
}

int32_t closeStorConfigResource(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeStorConfigResource resource", endResource);
}

int32_t openArraySitesResourceList(const kordRec* pKordRec)
{
    return openList(pKordRec, " openArraySitesResourceList resourcelist", "Array Sites");
}

int32_t closeArraySitesResourceList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeArraySitesResourceList resourcelist", endList);
}

int32_t openArraysResourceList(const kordRec* pKordRec)
{
    return openList(pKordRec, " openArraysResourceList  resourcelist", "Arrays");
}

int32_t closeArraysResourceList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeArraysResourceList resourcelist", endList);
}

int32_t openRanksResourceList(const kordRec* pKordRec)
{
    return openList(pKordRec, " openRanksResourceList resourcelist", "Ranks");
}

int32_t closeRanksResourceList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeRanksResourceList resourcelist", endList);
}

int32_t openSegmentPoolResourceList(const kordRec* pKordRec)
{
    return openList(pKordRec, " openSegmentPoolResourceList resourcelist", segmentPoolName);
}

int32_t closeSegmentPoolResourceList(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeSegmentPoolResourceList resourcelist", endList);
}

int32_t openArraySite(const kordRec* pKordRec, int32_t arraySite, const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, " openArraySite resource", arraySiteName,
                        partOf(kordpStorageFacilityImageMTMS, "S", arraySite).text);
}

int32_t closeArraySite(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeArraySite resource", endResource);
}

int32_t writeArraySite(const kordRec* pKordRec, int32_t arraySite, const char* kordpStorageFacilityImageMTMS,
                       int32_t array, int32_t arrayPostition, int32_t daPair, int32_t diskCapacity,
                       int32_t diskRPM, const char* lparId)
{
    const Composed id = partOf(kordpStorageFacilityImageMTMS, "S", arraySite);
    const Composed space =
        compose("AP=%d,DP=%d,DC=%dMB,DR=%d", arrayPostition, daPair, diskCapacity, diskRPM);
    return writeResource(
        pKordRec, arraySiteName, id.text,
        {
            facility(pKordRec),
            normal(imageMTMS, kordpStorageFacilityImageMTMS),
            normal(arrayBelow, partOf(kordpStorageFacilityImageMTMS, "A", array).text),
            normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId).text),
            normal(logicalSpace, space.text),
            normal(systemVPD, arraySiteName),
            normal(hardwareLocation, id.text),
        });
}

int32_t openArray(const kordRec* pKordRec, int32_t arraySites, const char* kordpStorageFacilityImageMTMS)
{
    trace(pKordRec, openArrayLine, arraySites, kordpStorageFacilityImageMTMS);
    return openResource(pKordRec, " openArray resource", arrayName,
                        partOf(kordpStorageFacilityImageMTMS, "A", arraySites).text);
}

int32_t closeArray(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeArray resource", endResource);
}

int32_t writeArray(const kordRec* pKordRec, const char* arraySites, const char* kordpStorageFacilityImageMTMS,
                   const char* serialNumber, const char* raidType, const char* arraySiteConfiguration,
                   int32_t daPair, int32_t diskCapacity, int32_t diskRPM, int32_t rank, int32_t rankPosition,
                   const char* lparId)
{
    const Composed id = compose("%s/A%s", kordpStorageFacilityImageMTMS, arraySites);
    const Composed space =
        compose("AN=%s,AC=%s,RP=%d,DP=%d,DC=%dMB,DR=%d,RT=%s", serialNumber, arraySiteConfiguration,
                rankPosition, daPair, diskCapacity, diskRPM, raidType);
    return writeResource(
        pKordRec, arrayName, id.text,
        {
            facility(pKordRec),
            normal(imageMTMS, kordpStorageFacilityImageMTMS),
            normal(rankBelow, partOf(kordpStorageFacilityImageMTMS, "R", rank).text),
            normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId).text),
            normal(logicalSpace, space.text),
            normal(systemVPD, arrayName),
            normal(hardwareLocation, id.text),
        });
}

int32_t openRank(const kordRec* pKordRec, int32_t rank, const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, " openRank", rankName,
                        partOf(kordpStorageFacilityImageMTMS, "R", rank).text);
}

int32_t closeRank(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeRank", endResource);
}

int32_t writeRank(const kordRec* pKordRec, int32_t rank, const char* kordpStorageFacilityImageMTMS,
                  int32_t segmentPool, const char* serialNumber, int32_t segmentType, int32_t numberSegments,
                  int32_t rankGroup, const char* lparId)
{
    const Composed id = partOf(kordpStorageFacilityImageMTMS, "R", rank);
    const Composed space =
        compose("RN=%s,ET=%d,ES=%d,RG=%d", serialNumber, segmentType, numberSegments, rankGroup);
    return writeResource(
        pKordRec, rankName, id.text,
        {
            facility(pKordRec),
            normal(imageMTMS, kordpStorageFacilityImageMTMS),
            normal(segmentPoolBelow, partOf(kordpStorageFacilityImageMTMS, "P", segmentPool).text),
            normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId).text),
            normal(logicalSpace, space.text),
            normal(systemVPD, rankName),
            normal(hardwareLocation, id.text),
        });
}

int32_t openSegmentPool(const kordRec* pKordRec, int32_t segmentPool,
                        const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, " openSegmentPool", segmentPoolName,
                        partOf(kordpStorageFacilityImageMTMS, "P", segmentPool).text);
}

int32_t closeSegmentPool(const kordRec* pKordRec)
{
    return closeElement(pKordRec, " closeSegmentPool", endResource);
}

int32_t writeSegmentPool(const kordRec* pKordRec, int32_t segmentPool,
                         const char* kordpStorageFacilityImageMTMS, int32_t segmentType,
                         int32_t numberSegments, int32_t segmentLimit, int32_t numbervirtualSegments,
                         int32_t virtualSegmentLimit, int32_t rankGroup, const char* lparId)
{
    const Composed id = partOf(kordpStorageFacilityImageMTMS, "P", segmentPool);
    const Composed space = compose("ET=%d,ES=%d,EL=%d,VE=%d,VL=%d,RG=%d", segmentType, numberSegments,
                                   segmentLimit, numbervirtualSegments, virtualSegmentLimit, rankGroup);
    return writeResource(
        pKordRec, segmentPoolName, id.text,
        {
            facility(pKordRec),
            normal(imageMTMS, kordpStorageFacilityImageMTMS),
            normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId).text),
            normal(logicalSpace, space.text),
            normal(systemVPD, segmentPoolName),
            normal(hardwareLocation, id.text),
        });
}
