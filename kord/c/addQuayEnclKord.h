// The management consoles of the document.

#pragma once

#include "kordRec.h"

#include <span>

/// Writes every console, the local one under its own MTMS: 0, or -1 on failure.
int32_t addQuayEnclKord(kordRec* pKordRec);

/// This console's type-model, serial, and model, from its vital product data: 2 when found, 1 when not. The
/// field is left untouched when not found; a serial and a model want at least 10 characters.
int32_t getQuayFullTM(const kordRec* pKordRec, std::span<char> QuayTM);
int32_t getQuaySE(const kordRec* pKordRec, std::span<char> QuaySE);
int32_t getQuayTM(const kordRec* pKordRec, std::span<char> QuayTM);

/// What follows the first "." of a location code: AB12.7XY9Z01 gives 7XY9Z01. Always 0.
int32_t getResQuaySE(const char* input, std::span<char> output, const kordRec* pKordRec);

/// Write a console's rack and account properties: 0 or -1.
int32_t queryRackEnclMTMS(kordRec* pKordRec, const char* rackNumber);
int32_t queryStoragePlex(kordRec* pKordRec);
