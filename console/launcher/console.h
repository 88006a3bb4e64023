// The console's file tree under a root folder.

#pragma once

#include "platform/installation.h"

#include <array>
#include <cstdint>
#include <filesystem>

namespace console::launcher
{

/// The folders that a program on the console finds at their absolute paths; here under the root.
inline constexpr std::array consoleFolders = {"opt/brisk/bin", "opt/tarnquay/bin", "var/adm/stockmere/VPD",
                                              "var/tarnquay/log", "var/brisk/log"};

/// The folder, under the root, of those console programs that are called by their bare name.
constexpr const char* pathFolder = ".console/bin";

/// A Failure when the root lies in one of the folders that a run covers, where its programs could not reach
/// it, or when PATH cannot name a folder in it.
void refuseUnfit(const std::filesystem::path& root);

/// Lays the root out where folders are missing, puts the console's programs in place and returns the root's
/// absolute path. Everything else that lies there stays.
std::filesystem::path layOut(const std::filesystem::path& root, const platform::Installation& installation);

/// An empty journal.
void startJournal(const std::filesystem::path& root);

/// Zeroed shared state for a facility of that many fault rules.
void startState(const std::filesystem::path& root, uint64_t rules);

} // namespace console::launcher
