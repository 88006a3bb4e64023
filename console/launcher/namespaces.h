// The console's folders at their absolute paths, for this process and its children alone.

#pragma once

#include <filesystem>
#include <string>

namespace console::launcher
{

/// Moves the process into a mount namespace of its own. Returns an empty text, or why there is none.
///
/// KORD_CONSOLE_NO_NAMESPACES=1 in the environment refuses it, so that what the launcher does on machines
/// that forbid namespaces can be tested on one that does not.
std::string enterNamespace();

/// Mounts the root's console folders at their absolute paths, within the namespace.
void mountConsole(const std::filesystem::path& root);

} // namespace console::launcher
