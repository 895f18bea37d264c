#pragma once

// Installed font families, so that a family name that matches none is refused with the names
// the user probably meant rather than drawn in fontconfig's nearest substitute.

#include <string>
#include <vector>

namespace vistrane::cli {

// Every family name fontconfig knows (a font with several names gives each), sorted, unique.
std::vector<std::string> InstalledFontFamilies();

// True when `name` is one of `families`, ignoring letter case.
bool HasFamily(const std::string& name, const std::vector<std::string>& families);

// The families that look like `name`: one contains the other, ignoring case, or they differ
// by at most a third of the name's letters (at least 2) in single-letter edits.
std::vector<std::string> CloseFamilies(const std::string& name,
                                       const std::vector<std::string>& families);

}  // namespace vistrane::cli
