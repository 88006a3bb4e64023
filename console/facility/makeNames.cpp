// How the parts of a made facility are called, and where they are.

#include "facility/maker.h"

namespace console::facility::making
{

std::string padded(uint64_t value, size_t width)
{
    const std::string digits = std::to_string(value);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

std::string serial36(uint64_t value, size_t width)
{
    constexpr std::string_view alphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::string text(width, '0');
    for (size_t i = width; i-- > 0; value /= alphabet.size())
        text[i] = alphabet[static_cast<size_t>(value % alphabet.size())];
    return text;
}

std::string systemMtms(size_t system)
{
    return std::string(systemModel) + '*' + std::string(systemSerials[system]);
}

std::string systemLocation(size_t system)
{
    return "U9999.B2C." + std::string(systemSerials[system]);
}

std::string partitionLocation(size_t system, uint32_t image)
{
    return systemLocation(system) + "-V" + std::to_string(image + 1);
}

std::string imageId(uint32_t image)
{
    return "9999.A01.00XY12" + std::to_string(image + 1);
}

Field imageMtms(uint32_t image)
{
    return text("storageFacilityImageMTMS", "9999*A01*00XY12" + std::to_string(image + 1));
}

Field imageDomain(uint32_t image)
{
    return text("ActivePeerDomain", imageId(image));
}

std::string drawerLocation(uint32_t drawer)
{
    return "U9999.D10.AD" + padded(drawer + 1, 5);
}

std::string rackMtms(uint32_t rack)
{
    return "1234-5R0*RK" + padded(rack + 1, 6);
}

std::string rackNumber(uint32_t rack)
{
    return std::string(1, 'R').append(std::to_string(rack + 1));
}

Field interfaceIdentifiers(uint32_t index)
{
    std::vector<std::string> identifiers;
    for (uint32_t i = 0; i <= index % 4; ++i)
        identifiers.push_back(std::to_string(index % 64 + 3 + i * 11));
    return list("interfaceIdentifier", identifiers);
}

} // namespace console::facility::making
