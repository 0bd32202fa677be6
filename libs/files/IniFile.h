#pragma once

#include <map>
#include <string>

#include "libs/files/Status.h"

namespace files {

// The sections of an INI text: section name to key to value, blanks around each taken off and
// quotes around a value too.
using IniSection = std::map<std::string, std::string>;
using IniSections = std::map<std::string, IniSection>;

// badFormat for a line that is no section, key, comment or blank, and for a section or key given
// twice.
Status parseIni(const std::string &text, IniSections &sections);

} // namespace files
