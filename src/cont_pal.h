// cont_pal.h: colour tables as other radar programs trade them (".pal").
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Whether a line begins one of the statements of such a file, as "Color: 20 ...".
bool cont_is_pal(std::string_view line);

// The entries of a level list, "level:#RRGGBB", that a file of such lines means. A
// gradient becomes at most eight steps between two of its lines.
//   quantity  what the data are, for the unit of velocities; null: not known
std::vector<std::string> cont_pal_entries(const std::vector<std::string>& lines,
                                          const char* quantity);
