// The slicers, converters and composers of MTMS texts. The input's first byte is the output field's size;
// then an MTMS in a line of its own, and a pool ID.

#include "fuzz.h"

#include "addQuayEnclKord.h"
#include "addUtilKord.h"

#include <unistd.h>

namespace
{

struct Slicer {
    int32_t (*slice)(const char* mtms, std::span<char> part);
    size_t from;
    size_t length;
};
constexpr Slicer slicers[] = {
    {get_StorageFacility_type, 0, 4},
    {get_StorageFacility_model, 5, 3},
    {get_StorageFacility_serial, 9, 8},
    {get_StorageFacilitySystem_type, 0, 4},
    {get_StorageFacilitySystem_model, 5, 3},
    {get_StorageFacilitySystem_serial, 9, 7},
    {get_StorageFacilitySystem_modeltype, 0, 8},
    {getStorageEnclosure_typemodel, 0, 8},
    {getStorageEnclosure_serial, 9, 8},
};

struct Converter {
    int32_t (*convert)(std::span<char> output, const char* input);
    char from;
    char to;
};
constexpr Converter converters[] = {
    {convertStringFromDotToDash, '.', '-'},
    {convertStringFromDotToMM, '.', '*'},
    {convertStringFromMMToDash, '*', '-'},
};

/// A stretch of a text; empty when the text ends before it.
std::string stretch(const std::string& text, size_t from, size_t length)
{
    return from < text.size() ? text.substr(from, length) : "";
}

void checkSlicers(const std::string& mtms, size_t size)
{
    for (const Slicer& slicer : slicers) {
        fuzz::Field part(size);
        fuzz::require(slicer.slice(mtms.c_str(), part) == 0, "a slicer gives 0");
        fuzz::require(part.text() == part.cut(stretch(mtms, slicer.from, slicer.length)),
                      "a slicer cuts its stretch");
    }
}

void checkConverters(const std::string& mtms, size_t size)
{
    for (const Converter& converter : converters) {
        fuzz::Field output(std::max<size_t>(size, 1));
        fuzz::require(converter.convert(output, mtms.c_str()) == 0, "a converter gives 0");
        std::string expected = output.cut(mtms);
        std::replace(expected.begin(), expected.end(), converter.from, converter.to);
        fuzz::require(output.text() == expected, "a converter changes its one character");
    }
    std::string clean = mtms;
    fuzz::require(removeInvalidCharInString(clean.data()) == 0, "the cleaner gives 0");
    fuzz::require(clean.size() == mtms.size(), "the cleaner keeps the length");
    for (size_t i = 0; i < mtms.size(); ++i) {
        const bool invalid = mtms[i] == '<' || mtms[i] == '>';
        fuzz::require(clean[i] == (invalid ? '-' : mtms[i]), "the cleaner changes angle brackets alone");
    }
}

/// A composed name or MTMS takes no more of a field.
constexpr size_t composedLength = 29;

void checkComposers(const std::string& mtms, const std::string& pool, size_t size)
{
    fuzz::Field image(size);
    fuzz::require(convertToStorageFacilityImageMTMS(image, mtms.c_str()) == 0, "the image MTMS gives 0");
    fuzz::require(image.text() == image.cut(stretch(mtms, 0, 8) + "*" + stretch(mtms, 9, 7)),
                  "an image MTMS is type-model, asterisk, serial");

    fuzz::Field created(size);
    createStorageFacilityImageMTMS(mtms.c_str(), pool.c_str(), created);
    const std::string composed = mtms.substr(0, mtms.empty() ? 0 : mtms.size() - 1) + pool;
    fuzz::require(created.text() == created.cut(composed.substr(0, composedLength)),
                  "the pool takes the place of a facility's last character");

    kordRec record{};
    copyText(record.storageFacilityMTMS, mtms.c_str());
    record.storageFacilityServerNumber = static_cast<int32_t>(size) - 128;
    fuzz::Field name(size);
    createLparName(&record, pool.c_str(), name);
    const char server = std::to_string(record.storageFacilityServerNumber)[0];
    const std::string whole = "SF" + std::string(record.storageFacilityMTMS) + "Tarn" + server + pool;
    fuzz::require(name.text() == name.cut(whole.substr(0, composedLength)),
                  "a partition's name holds facility, server and pool");
}

/// The serial of a console, from its location code.
void checkConsoleSerial(const std::string& location, size_t size)
{
    kordRec record{};
    copyText(record.trcfile, "fuzz.slices.log");
    fuzz::Field serial(size);
    fuzz::require(getResQuaySE(location.c_str(), serial, &record) == 0, "a console's serial gives 0");
    const size_t dot = location.find('.');
    fuzz::require(serial.text() == serial.cut(dot == std::string::npos ? "" : location.substr(dot + 1)),
                  "a console's serial follows the first dot");
    unlink((std::string(traceFolder) + "/" + record.trcfile).c_str());
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const size_t fieldSize = input.number();
    const std::string mtms = input.line();
    checkSlicers(mtms, fieldSize);
    checkConverters(mtms, fieldSize);
    checkComposers(mtms, input.text(), fieldSize);
    checkConsoleSerial(mtms, std::max<size_t>(fieldSize, 1));
    return 0;
}
