// One document, described once for every builder that is measured: a facility's storage enclosures with their
// drives, interface cards and baffles, nearly all that the document of a large facility holds.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench
{

struct Part {
    std::string location;
    std::string partNumber;
    std::string serialNumber;
    std::string ecLevel;
    std::string firmware;
};

struct Drive : Part {
    std::string name;
    int32_t arraySite;
    int32_t position;
};

struct Enclosure {
    std::string location;
    std::string image;
    std::string rackLocation;
    std::string rackNumber; ///< as the rack has it, "R12"; the document has it without its first letter
    std::string serial;
    std::vector<Drive> drives;
    std::vector<Part> cards;
    std::vector<Part> baffles;
};

struct Storage {
    std::string system;
    std::string facility;
    std::vector<Enclosure> enclosures;
};

/// What all drives and all enclosures have in common.
constexpr const char* manufacturer = "OSK";
constexpr int32_t capacity = 146000;
constexpr int32_t speed = 10000;
constexpr int32_t rate = 2;
constexpr int32_t serviceState = 1;
constexpr const char* interfaceType = "FCAL";
constexpr const char* interfaces = "1000,100";
constexpr const char* feature = "1234";
constexpr const char* typeModel = "9999-E16";
constexpr const char* lparId = "1";

/// A facility with that many enclosures of 20 drives.
Storage makeStorage(int enclosures);

/// Builds the document through the verbs of a builder: `open` and `close` of the frame, `list`, `endList`,
/// `resource`, `property`, `endResource`.
template <typename Builder>
void buildDocument(Builder& builder, const Storage& storage);

} // namespace bench

#include "storageDocument.inl"
