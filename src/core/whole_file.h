// A file that is there whole or not at all: written under another name and renamed when it is complete.
//
// Readers of the file see the one of before or the new one, also while it is written and after a kill. (A power cut may
// lose what the system had not stored yet.)
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zurt {

/// The name under which StoreWholeFile writes: in the same folder, with a dot ahead and ".part" behind.
std::string PartName(const std::string& name);

/// Writes the pieces one behind the other, replacing a file that exists. Ends the run with a library error that names the
/// file when something fails, without leaving a part behind.
void StoreWholeFile(const std::string& name, const std::vector<std::string_view>& pieces);

} // namespace zurt
