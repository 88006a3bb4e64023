// The run record that every function is handed, the host-description record, and the console's fixed paths.

#pragma once

#include "vale.h"

#include <cstdint>
#include <cstdio>

/// The partition tables hold 8 slots; a partition's slot is its interconnect pool ID less one.
constexpr int32_t partitionSlots = 8;

/// One run. `main` zero-fills it and owns it; nothing in it but `inp` is a resource. Its layout is an
/// interface: fields that the run has no use for keep their places, and say who has the value.
struct kordRec {
    int32_t Flag;                        ///< 1: a minor error was met during collection
    int32_t configFlag;                  ///< 1: option "-m"; nothing asks for it
    int32_t testFlag;                    ///< 1: option "-t" or "-m"
    int32_t storageFacilityServerNumber; ///< which of the facility's two servers is described
    int32_t RackNumber;                  ///< not filled: the collectors of racks hand their rack's on
    int32_t num_contacts;                ///< partitions that the managed system reported, in slots or not
    ValeSessionHandle sess_hndl_LC;      ///< local scope (1)
    ValeSessionHandle sess_hndl_DM;      ///< domain scope (4)
    ValeSessionHandle sess_hndl_SR;      ///< shared-resource scope (2)
    char partnerLParID[partitionSlots][30];
    char partnerLparName[partitionSlots][30];
    char LParID[partitionSlots][30];
    char lparName[partitionSlots][30];
    char Hostname[partitionSlots][30]; ///< for the trace alone
    char hslLumenPoolId[partitionSlots][2];
    char StorageFacilityImageID[partitionSlots][30];
    char StorageFacilityImageMTMS[partitionSlots][30];
    char kordpStorageFacilityImageMTMS[partitionSlots][30];
    char activePeerDomain[30]; ///< not filled: an image's domain is its `StorageFacilityImageID`
    char nodeNameList[100];    ///< not filled: nodes are asked for one by one, see `Hostname`
    char storageFacilityMTMS[30];
    char kordpStorageFacilityMTMS[30];
    char partnerSystemMTMS[30];
    char managedSystemMTMS[30];      ///< type-model, "*", serial: towards the console
    char inputSystemMTMS[30];        ///< as given on the command line
    char kordpManagedSystemMTMS[30]; ///< type-model, "-", serial: in the document
    char RackLocation[30];           ///< not filled: each storage enclosure composes its own
    char Partitions_Resources[30];   ///< not filled: writers compose what they write
    char storageFacilityWWNN[17];
    char systemSerial[15];
    char activePeerDomain_quay[30];
    char trcfile[30];       ///< the trace log's name inside `traceFolder`
    char loginUserName[30]; ///< "root" runs the console's tools directly, anyone else through the wrapper
    FILE* inp;              ///< the document; null until it is started, and writers then write nothing
};

/// One distinct host description and how many host ports carry it.
struct userHostDescr {
    int32_t count;
    char description[256];
    userHostDescr* nextp;
};

constexpr const char* documentFolder = "/var/adm/stockmere/VPD";
constexpr const char* traceFolder = "/var/tarnquay/log";
constexpr const char* commandOutputFolder = "/var/brisk/log";
