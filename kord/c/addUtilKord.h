// The command runner, the login user, and the text utilities for MTMS strings.
//
// An MTMS is the type in positions 0 to 3, a separator, the model in 5 to 7, a separator, and the serial from
// position 9: 8 characters in a facility's or an enclosure's MTMS, 7 in a managed system's.
//
// Every function returns 0 for success and 1 for failure, unless it says otherwise. An output field is cut to
// its size.

#pragma once

#include "addTextKord.h"
#include "kordRec.h"

/// Runs a shell command; with both `xargc` and `xargv` given, its standard output comes back as lines, which
/// the caller hands to `releaseOutput`. Without them the command's output is dropped and the result is 1 even
/// when it succeeds. Traces "0066" when the command fails and "0067" when its output cannot be read.
int32_t excuteCommand(const kordRec* pKordRec, const char* Cmd, int32_t* xargc, char*** xargv);

/// Reads the file's lines: `xargc` newlines, and as many entries (at least one), all pointing into one heap
/// buffer that starts at `xargv[0]`. A last line without a newline is not counted; entries beyond the lines
/// found are empty. Traces "0062", "0063" or "0064" on failure.
int32_t parseOutput(const kordRec* pKordRec, const char* Filename, int32_t* xargc, char*** xargv);

/// Releases what `excuteCommand` or `parseOutput` gave: the text buffer, then the line array. Null is
/// allowed.
void releaseOutput(char** xargv);

/// Whether a log of the trace folder can be written to by its name: it is a log, or not there.
bool isNameOfLog(const char* fileName);

/// Sends what the command appends to that log, by the last ">>" in it, nowhere if its name is no log's. The
/// shell would follow a link and wait for a FIFO's reader.
void spareOddLog(std::span<char> command, const char* fileName);

/// Fills `loginUserName` from `whoami`, or with "briskroot" when that fails (result 1). Traces "0068".
int32_t getLoginUserName(kordRec* pKordRec);

int32_t get_StorageFacility_type(const char* storageFacilityMTMS, std::span<char> type);
int32_t get_StorageFacility_model(const char* storageFacilityMTMS, std::span<char> model);
int32_t get_StorageFacility_serial(const char* storageFacilityMTMS, std::span<char> serial);
int32_t get_StorageFacilitySystem_type(const char* managedSystemMTMS, std::span<char> type);
int32_t get_StorageFacilitySystem_model(const char* managedSystemMTMS, std::span<char> model);
int32_t get_StorageFacilitySystem_serial(const char* managedSystemMTMS, std::span<char> serial);
int32_t get_StorageFacilitySystem_modeltype(const char* managedSystemMTMS, std::span<char> modeltype);
int32_t getStorageEnclosure_typemodel(const char* enclosureMTMS_stor, std::span<char> enclosureTyemodel);
int32_t getStorageEnclosure_serial(const char* enclosureMTMS_stor, std::span<char> enclosureSerial);

/// 9999-A11-00XY121 gives 9999-A11*00XY121.
int32_t convertToStorageFacilityImageMTMS(std::span<char> storageFacilityImageMTMS,
                                          const char* StorageFacilityImageID);

int32_t convertStringFromDotToDash(std::span<char> output, const char* input);
int32_t convertStringFromDotToMM(std::span<char> output, const char* input);
int32_t convertStringFromMMToDash(std::span<char> output, const char* input);

/// "<" and ">" become "-", in place.
int32_t removeInvalidCharInString(char* tmp);

/// 9999-A01*00XY1230 with pool 1 gives 9999-A01*00XY1231.
void createStorageFacilityImageMTMS(const char* storageFacilityMTMS, const char* hslLumenPoolId,
                                    std::span<char> storageFacilityImageMTMS);

/// Facility MTMS 00XY123, server number 1 and pool 1 give SF00XY123Tarn11.
void createLparName(const kordRec* pKordRec, const char* hslLumenPoolId, std::span<char> lparName);
