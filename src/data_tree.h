// data_tree.h: where the maps, colours, fonts and defaults of the program lie.
#pragma once

#include <string>
#include <vector>

// The built-in search list, the last place first in rank: the current directory,
// the fixed places, and the data tree beside the program: "../zyr/etc" and
// "../share/zyrrad" from its own directory, and "etc" of the source tree that
// it was built in. A directory is there once. `program`: argv[0], which counts where the
// system does not say which program runs (no /proc); null for none.
std::vector<std::string> data_tree_search(const char* program);
