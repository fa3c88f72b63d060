// The storm's reflectivity (storm.h) sampled on the radials of a NIDS product.
#include "nids_storm.h"

#include "storm.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
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

} // namespace

Bytes nids_sample_storm(int code) {
    const bool super = code == 153;
    const int radials = super ? 720 : 360;
    const int bins = super ? 1840 : 460;
    const float bin_km = super ? 0.25F : 1.0F;
    float max_dbz = -30.0F;
    std::vector<Bytes> data;
    for (int i = 0; i < radials; ++i) {
        Bytes radial(static_cast<std::size_t>(bins));
        const float azimuth =
            (static_cast<float>(i) + 0.5F) * 6.2831853F / static_cast<float>(radials);
        for (int j = 0; j < bins; ++j) {
            const float range = (static_cast<float>(j) + 0.5F) * bin_km;
            const float dbz = storm_dbz(range * std::sin(azimuth), range * std::cos(azimuth));
            // Each bin is measured to about half a decibel, and what is weaker
            // than the receiver's noise is not seen.
            const float seen = dbz + 1.2F * storm_grain(i + 7000, j);
            const bool heard = seen > -31.0F + 20.0F * std::log10(std::max(range, 1.0F)) * 0.75F;
            const float level = std::round((seen + 32.0F) / 0.5F) + 2.0F;
            radial[static_cast<std::size_t>(j)] =
                heard && seen > -5.0F ? static_cast<std::uint8_t>(std::clamp(level, 2.0F, 255.0F))
                                      : 0;
            max_dbz = std::max(max_dbz, seen);
        }
        data.push_back(std::move(radial));
    }
    NidsSample s;
    s.code = code;
    s.thres = {-320, 5, 254};
    s.p[3] = 5;
    s.p[4] = static_cast<int>(max_dbz);
    s.layers = {nids_radial_packet(16, bins, data)};
    s.bzip2 = true;
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
