// name_find.h: the files that fit an open template, one with "%*".
#pragma once

#include "name_tmpl.h"

#include <string>
#include <vector>

struct FoundName {
    std::string name;
    Date date; // as far as the name says it
};

// The files of a date, of all dates where its fields are unknown (those of
// `source.set` go before): the newest first, by their date and then by the text
// after it, which counts seconds in names of radars. Directories are left out.
std::vector<FoundName> find_names(const NameSource& source, const Date& date);
