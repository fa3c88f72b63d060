// The storm's reflectivity (storm.h) sampled on the radials of a NIDS product.
#include "nids_storm.h"

#include "storm.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int half_km = 232; // of the composite

struct Cell {
    float x, y; // km from the radar
    float dbz;
};

// Mean of the storm around a place, as a cell is identified by its mass.
float cell_dbz(float x, float y) {
    float sum = 0;
    for (int i = -2; i <= 2; ++i) {
        for (int j = -2; j <= 2; ++j) {
            sum += storm_dbz(x + static_cast<float>(i), y + static_cast<float>(j));
        }
    }
    return sum / 25.0F;
}

// Cells in the order of their strength, each the strongest within 18 km.
std::vector<Cell> find_cells() {
    std::vector<Cell> all;
    for (int y = -half_km; y < half_km; y += 2) {
        for (int x = -half_km; x < half_km; x += 2) {
            const Cell cell = {static_cast<float>(x), static_cast<float>(y),
                               cell_dbz(static_cast<float>(x), static_cast<float>(y))};
            if (cell.dbz > 42.0F && std::hypot(cell.x, cell.y) > 20.0F) {
                all.push_back(cell);
            }
        }
    }
    std::sort(all.begin(), all.end(), [](const Cell& a, const Cell& b) { return a.dbz > b.dbz; });
    std::vector<Cell> cells;
    for (const Cell& cell : all) {
        const bool apart = std::none_of(cells.begin(), cells.end(), [&](const Cell& other) {
            return std::hypot(cell.x - other.x, cell.y - other.y) < 18.0F;
        });
        if (apart && cells.size() < 16) {
            cells.push_back(cell);
        }
    }
    return cells;
}

// What a radar derives of a cell from many elevations follows from its strength here.
struct CellFacts {
    std::string name;
    float range_nmi, azimuth;
    bool rotates;
    int rank; // of its rotation, 0: none
    int severe, hail;
    float inches, vil, top;
    int dir, knots;
};

CellFacts cell_facts(const Cell& cell, int index) {
    const float over = std::max(cell.dbz - 45.0F, 0.0F);
    CellFacts facts;
    facts.name = {static_cast<char>('A' + index * 7 % 26), static_cast<char>('0' + index % 10)};
    facts.range_nmi = std::hypot(cell.x, cell.y) / 1.852F;
    facts.azimuth = std::fmod(std::atan2(cell.x, cell.y) * 57.29578F + 360.0F, 360.0F);
    facts.rotates = storm_mesocyclone_km(cell.x, cell.y) < 14.0F;
    facts.rank = facts.rotates ? 9 : index % 3 == 0 ? 2 : 0;
    facts.severe = std::clamp(static_cast<int>(over * 0.7F) * 10, 0, 100);
    facts.hail = std::clamp(static_cast<int>(over * 0.9F) * 10, 0, 100);
    facts.inches = std::round(over * 0.5F) / 4.0F;
    facts.vil = 8.0F + over * 2.6F;
    facts.top = 28.0F + over;
    facts.dir = facts.rotates ? 265 : 238 + index * 5 % 19;
    facts.knots = facts.rotates ? 24 : 30 + index * 7 % 16;
    return facts;
}

std::string table_line(const Cell& cell, int index) {
    const CellFacts facts = cell_facts(cell, index);
    const float over = std::max(cell.dbz - 45.0F, 0.0F);
    const std::string rank = facts.rank > 0 ? std::to_string(facts.rank) : "NONE";
    std::array<char, 120> line{};
    std::snprintf(line.data(), line.size(),
                  "    %s  %3.0f/%3.0f %-4s %4s  %3d/%3d/%5.2f%6.0f%4.0f%5.1f%6.1f  %3d/%3d  ",
                  facts.name.c_str(), facts.azimuth, facts.range_nmi,
                  facts.rotates ? "TVS" : "NONE", rank.c_str(), facts.severe, facts.hail,
                  facts.inches, facts.vil, cell.dbz + 3.0F, 6.0F + over * 0.5F, facts.top,
                  facts.dir, facts.knots);
    return line.data();
}

// The place of a cell that moves evenly, minutes from now.
NidsPlace cell_place(const Cell& cell, const CellFacts& facts, int minutes, float bend) {
    const float km = static_cast<float>(facts.knots * minutes) * 1.852F / 60.0F;
    const float toward = (static_cast<float>(facts.dir) + 180.0F + bend) / 57.29578F;
    return {static_cast<int>(std::lround((cell.x + km * std::sin(toward)) * 4.0F)),
            static_cast<int>(std::lround((cell.y + km * std::cos(toward)) * 4.0F))};
}

// The cell, its track and what it is warned of, as packets of symbols.
Bytes cell_packets(const Cell& cell, int index) {
    const CellFacts facts = cell_facts(cell, index);
    const NidsPlace at = cell_place(cell, facts, 0, 0);
    std::vector<NidsPlace> past = {at};
    std::vector<NidsPlace> forecast = {at};
    for (int i = 1; i <= 4; ++i) {
        past.push_back(cell_place(cell, facts, -6 * i, static_cast<float>(6 * i)));
        forecast.push_back(cell_place(cell, facts, 15 * i, 0));
    }
    Bytes out = nids_join({nids_name_packet(2, at, "\" "), nids_name_packet(15, at, facts.name),
                           nids_track_packet(23, '!', past), nids_track_packet(24, '#', forecast)});
    if (facts.hail > 0) {
        out = nids_join({out, nids_symbol_packet(19, {at.i, at.j, facts.hail, facts.severe,
                                                      static_cast<int>(facts.inches + 0.5F)})});
    }
    if (facts.rank > 0) {
        out = nids_join({out, nids_symbol_packet(20, {at.i + 6, at.j - 6, facts.rotates ? 9 : 11,
                                                      8 + facts.rank})});
    }
    if (facts.rotates) {
        out = nids_join({out, nids_symbol_packet(12, {at.i + 4, at.j - 10})});
    }
    return out;
}

// A bin of a radial; place in km from the radar.
struct Bin {
    int radial, index;
    float x, y, range;
};

// Reflectivity of a bin, which is measured to about half a decibel.
float bin_dbz(const Bin& bin) {
    return storm_dbz(bin.x, bin.y) + 1.2F * storm_grain(bin.radial + 7000, bin.index);
}

int byte_level(float level) {
    return static_cast<int>(std::clamp(level, 2.0F, 255.0F));
}

Bytes polar_packet(int radials, int bins, float bin_km,
                   const std::function<int(const Bin&)>& level) {
    std::vector<Bytes> data;
    for (int i = 0; i < radials; ++i) {
        Bytes radial;
        const float azimuth =
            (static_cast<float>(i) + 0.5F) * 6.2831853F / static_cast<float>(radials);
        for (int j = 0; j < bins; ++j) {
            const float range = (static_cast<float>(j) + 0.5F) * bin_km;
            radial.push_back(static_cast<std::uint8_t>(
                level({i, j, range * std::sin(azimuth), range * std::cos(azimuth), range})));
        }
        data.push_back(std::move(radial));
    }
    return nids_radial_packet(16, bins, data);
}

} // namespace

Bytes nids_sample_storm(int code) {
    const bool super = code == 153;
    const float bin_km = super ? 0.25F : 1.0F;
    float max_dbz = -30.0F;
    NidsSample s;
    s.code = code;
    s.thres = {-320, 5, 254};
    s.layers = {polar_packet(super ? 720 : 360, super ? 1840 : 460, bin_km, [&](const Bin& bin) {
        const float seen = bin_dbz(bin);
        // What is weaker than the receiver's noise is not seen.
        const bool heard = seen > -31.0F + 20.0F * std::log10(std::max(bin.range, 1.0F)) * 0.75F;
        max_dbz = std::max(max_dbz, seen);
        return heard && seen > -5.0F ? byte_level(std::round((seen + 32.0F) / 0.5F) + 2.0F) : 0;
    })};
    s.p[3] = 5;
    s.p[4] = static_cast<int>(max_dbz);
    s.bzip2 = true;
    return nids_wrapped("SD", nids_message(s));
}

Bytes nids_sample_velocity() {
    float low = 0;
    float high = 0;
    NidsSample s;
    s.code = 99;
    s.thres = {-635, 5, 254};
    s.layers = {polar_packet(360, 1200, 0.25F, [&](const Bin& bin) {
        if (bin_dbz(bin) < 5.0F) {
            return 0;
        }
        const StormWind wind = storm_wind(bin.x, bin.y);
        const float speed = (wind.east * bin.x + wind.north * bin.y) / bin.range +
                            1.6F * storm_grain(bin.radial + 9000, bin.index);
        low = std::min(low, speed);
        high = std::max(high, speed);
        return byte_level(std::round((speed + 63.5F) / 0.5F) + 2.0F);
    })};
    s.p[3] = 5;
    s.p[4] = static_cast<int>(low * 1.944F); // knots
    s.p[5] = static_cast<int>(high * 1.944F);
    s.bzip2 = true;
    return nids_wrapped("SD", nids_message(s));
}

Bytes nids_sample_classes() {
    // From the weakest echo up: ice, snow, wet snow, rain, heavy rain, hail.
    constexpr std::array<std::pair<float, int>, 7> classes = {
        {{5.0F, 30},
         {15.0F, 40},
         {24.0F, 50},
         {30.0F, 60},
         {43.0F, 70},
         {54.0F, 100},
         {60.0F, 110}}
    };
    NidsSample s;
    s.code = 165;
    s.layers = {polar_packet(360, 1200, 0.25F, [&](const Bin& bin) {
        const float dbz = bin_dbz(bin);
        int level = 0;
        for (const auto& [least, word] : classes) {
            level = dbz >= least ? word : level;
        }
        return level;
    })};
    s.p[3] = 5;
    s.bzip2 = true;
    return nids_wrapped("SD", nids_message(s));
}

Bytes nids_sample_profile() {
    constexpr int heights = 15; // of 2000 feet
    constexpr int times = 10;
    constexpr int left = 60;
    constexpr int bottom = 470;
    constexpr int step_x = 42;
    constexpr int step_y = 28;
    Bytes lines;
    Bytes barbs;
    Bytes texts = nids_text_packet(8, 0, 4, 2, "ALT KFT");
    const auto put = [](Bytes& out, const Bytes& more) {
        out.insert(out.end(), more.begin(), more.end());
    };
    std::array<char, 8> text{};
    for (int row = 0; row < heights; ++row) {
        const int y = bottom - row * step_y;
        put(lines, nids_words({10, 10, 0, left - 10, y, 511, y}));
        std::snprintf(text.data(), text.size(), "%2d", 2 * (row + 1));
        put(texts, nids_text_packet(8, 0, left - 35, y - 6, text.data()));
        for (int column = 0; column < times; ++column) {
            // The wind veers with height, and backs in the low levels as the storm comes.
            const int from = 165 + row * 7 - (row < 4 ? column * 2 : 0);
            const int knots = 18 + row * 5 + (row < 4 ? column * 2 : 0);
            put(barbs, nids_words({4, 10, 1 + (row + column) % 3, left + column * step_x, y, from,
                                   knots}));
        }
    }
    for (int column = 0; column < times; ++column) {
        const int minutes = 21 * 60 + 45 + column * 5;
        std::snprintf(text.data(), text.size(), "%02d%02d", minutes / 60, minutes % 60);
        put(texts, nids_text_packet(8, 0, left + column * step_x - 12, bottom + 20, text.data()));
    }
    NidsSample s;
    s.code = 48;
    s.thres = {0, 4, 8, 12, 16, 20};
    s.p[4] = 18 + (heights - 1) * 5;
    put(lines, barbs);
    put(lines, texts);
    s.layers = {lines};
    return nids_wrapped("SD", nids_message(s));
}

Bytes nids_sample_storm_table(bool symbols) {
    std::vector<Bytes> rows;
    float most = 0;
    for (int j = 0; j < 2 * half_km; ++j) {
        Bytes row;
        for (int i = 0; i < 2 * half_km; ++i) {
            const float x = static_cast<float>(i - half_km) + 0.5F;
            const float y = static_cast<float>(half_km - j) - 0.5F;
            const float dbz =
                std::hypot(x, y) < half_km ? storm_dbz(x, y) + 1.2F * storm_grain(i, j) : 0.0F;
            const int level = std::clamp(static_cast<int>(dbz / 5.0F), 0, 15);
            most = std::max(most, dbz);
            // A byte is a run of up to 15 cells and their level.
            if (!row.empty() && (row.back() & 15) == level && row.back() >> 4 < 15) {
                row.back() = static_cast<std::uint8_t>(row.back() + 16);
            } else {
                row.push_back(static_cast<std::uint8_t>(16 + level));
            }
        }
        rows.push_back(std::move(row));
    }
    NidsSample s;
    s.code = 37;
    s.thres = {0x8002, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70, 75};
    s.p[4] = static_cast<int>(most);
    s.layers = {nids_raster_packet(0xBA07, 2, rows)};
    std::vector<std::string> lines;
    int index = 0;
    for (const Cell& cell : find_cells()) {
        if (symbols) {
            s.layers[0] = nids_join({s.layers[0], cell_packets(cell, index)});
        }
        if (index % 4 == 0) {
            lines.assign(1, " STM ID  AZ/RAN TVS  MDA  POSH/POH/MX SIZE VIL DBZM  HT  TOP  "
                            "FCST MVMT ");
        }
        lines.push_back(table_line(cell, index++));
        if (index % 4 == 0) {
            s.pages.push_back(
                nids_page_packets(lines, {0, 54, 110, 145, 180, 284, 310, 345, 390, 511}));
        }
    }
    return nids_wrapped("SD", nids_message(s));
}
