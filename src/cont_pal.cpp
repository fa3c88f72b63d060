// cont_pal: colour tables of other radar programs. A line is a keyword, a colon
// and numbers; a semicolon begins a comment:
//
//   Units: KTS                  of the values
//   Step: 5                     numbers on the bar, not used
//   Color: 20 0 255 0           a value, red, green, blue from 0 to 255: a gradient
//                               to the colour of the next line
//   Color: 20 0 255 0 0 90 0    a gradient to the second colour
//   Color4, SolidColor4         with a fourth number a colour, the opacity
//   SolidColor: 50 255 0 0      one colour up to the next line
//   RF: 119 0 125               range folded
//
// No state.
#include "cont_pal.h"

#include "lev2.h"
#include "text_num.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

struct Rgb {
    std::array<float, 3> part{};
};

// Values from `value` up to the next entry's.
struct Entry {
    float value = 0;
    Rgb from, to;
    bool open = false; // the gradient ends in the next entry's colour
};

enum class Statement { unknown, units, color, solid, folded, other };

struct StatementRow {
    std::string_view word;
    Statement statement;
    bool opacity; // a fourth number a colour
};
constexpr StatementRow statements[] = {
    {"color",       Statement::color,  false},
    {"color4",      Statement::color,  true },
    {"solidcolor",  Statement::solid,  false},
    {"solidcolor4", Statement::solid,  true },
    {"rf",          Statement::folded, false},
    {"units",       Statement::units,  false},
    {"unit",        Statement::units,  false},
    {"product",     Statement::other,  false},
    {"step",        Statement::other,  false},
    {"scale",       Statement::other,  false},
    {"offset",      Statement::other,  false},
    {"nd",          Statement::other,  false},
    {"decimals",    Statement::other,  false},
};

// Metres a second of a unit of velocity.
struct Unit {
    const char* word;
    float metres_s;
};
constexpr Unit units[] = {
    {"kt",   0.514444F},
    {"mph",  0.44704F },
    {"m/s",  1.0F     },
    {"ms",   1.0F     },
    {"km/h", 0.277778F},
    {"kph",  0.277778F},
};

constexpr int most_steps = 8;   // of a gradient between two lines
constexpr int table_room = 120; // steps in all: each may need a slot of the colour table

// The row of a line's keyword, and what follows its colon.
const StatementRow* statement_of(std::string_view line, std::string_view* rest) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return nullptr;
    }
    std::string word;
    for (const char c : line.substr(0, colon)) {
        if (std::isspace(static_cast<unsigned char>(c)) == 0) {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    *rest = line.substr(colon + 1);
    const auto* const row = std::find_if(std::begin(statements), std::end(statements),
                                         [&](const StatementRow& r) { return r.word == word; });
    return row != std::end(statements) ? row : nullptr;
}

bool take_rgb(const char** text, bool opacity, Rgb* color) {
    for (float& part : color->part) {
        if (!take_float(text, &part)) {
            return false;
        }
        part = std::clamp(part, 0.0F, 255.0F);
    }
    float alpha = 0;
    return !opacity || take_float(text, &alpha);
}

bool take_entry(const char* text, const StatementRow& row, Entry* entry) {
    if (!take_float(&text, &entry->value) || !take_rgb(&text, row.opacity, &entry->from)) {
        return false;
    }
    entry->to = entry->from;
    entry->open = row.statement == Statement::color && !take_rgb(&text, row.opacity, &entry->to);
    return true;
}

// What a value of the file is multiplied by to be one of the data.
float factor_of(std::string_view unit, const char* quantity) {
    const bool knots = quantity != nullptr && std::strcmp(quantity, "velocity") == 0;
    const bool metres = quantity != nullptr && std::strcmp(quantity, "velocity_ms") == 0;
    while (!unit.empty() && std::isspace(static_cast<unsigned char>(unit.front())) != 0) {
        unit.remove_prefix(1);
    }
    const std::string word(unit);
    for (const Unit& row : units) {
        if ((knots || metres) &&
            strnicmp(word.c_str(), row.word, static_cast<int>(std::strlen(row.word))) == 0) {
            return metres ? row.metres_s : row.metres_s / units[0].metres_s;
        }
    }
    return 1.0F;
}

std::string entry_text(float level, const Rgb& color) {
    std::array<char, 60> text{};
    std::snprintf(text.data(), text.size(), "%g:#%02x%02x%02x", static_cast<double>(level),
                  static_cast<unsigned>(std::lround(color.part[0])),
                  static_cast<unsigned>(std::lround(color.part[1])),
                  static_cast<unsigned>(std::lround(color.part[2])));
    return text.data();
}

Rgb between(const Rgb& from, const Rgb& to, float part) {
    Rgb mixed;
    for (std::size_t i = 0; i < mixed.part.size(); ++i) {
        mixed.part[i] = from.part[i] + (to.part[i] - from.part[i]) * part;
    }
    return mixed;
}

} // namespace

bool cont_is_pal(std::string_view line) {
    std::string_view rest;
    return statement_of(line, &rest) != nullptr;
}

std::vector<std::string> cont_pal_entries(const std::vector<std::string>& lines,
                                          const char* quantity) {
    std::vector<Entry> entries;
    std::vector<std::string> out;
    float factor = 1.0F;
    for (const std::string& line : lines) {
        std::string_view rest;
        const StatementRow* row = statement_of(line, &rest);
        const std::string text(rest.substr(0, rest.find(';')));
        const char* at = text.c_str();
        Entry entry;
        if (row == nullptr) {
            continue;
        }
        if (row->statement == Statement::units) {
            factor = factor_of(text, quantity);
        } else if (row->statement == Statement::folded) {
            // Only the moments of a volume distinguish a folded value from others.
            if (quantity != nullptr && std::strcmp(quantity, "velocity_ms") == 0 &&
                take_rgb(&at, false, &entry.from) && out.empty()) {
                out = {entry_text(lev2_folded - 1.0F, entry.from),
                       std::to_string(static_cast<int>(lev2_folded) + 1) + ":off"};
            }
        } else if (row->statement != Statement::other && take_entry(at, *row, &entry)) {
            entries.push_back(entry);
        }
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.value < b.value; });
    const int room = table_room / std::max(static_cast<int>(entries.size()), 1);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry& entry = entries[i];
        const bool last = i + 1 == entries.size();
        const float end = last ? entry.value : entries[i + 1].value;
        const Rgb to = entry.open && !last ? entries[i + 1].from : entry.to;
        const bool flat = last || end == entry.value || to.part == entry.from.part;
        const int steps = flat ? 1 : std::clamp(room, 1, most_steps);
        for (int step = 0; step < steps; ++step) {
            const float part = static_cast<float>(step) / static_cast<float>(steps);
            const float level = entry.value + (end - entry.value) * part;
            out.push_back(entry_text(level * factor, between(entry.from, to, part)));
        }
    }
    return out;
}
