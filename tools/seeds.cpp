#include "seeds.h"

#include "image_sample.h"
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "rrwds_writer.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include <png.h>
#include <zlib.h>

namespace {

using namespace std::string_literals;

Bytes bytes_of(const std::string& text) {
    return {text.begin(), text.end()};
}

Bytes cut(const Bytes& bytes, std::size_t size) {
    return {bytes.begin(),
            bytes.begin() + static_cast<std::ptrdiff_t>(std::min(size, bytes.size()))};
}

Bytes with(Bytes bytes, std::size_t at, std::uint8_t value) {
    bytes.at(at) = value;
    return bytes;
}

// --- NIDS -----------------------------------------------------------------------

constexpr int many_radars = 10000; // a source above those of single radars

// Thresholds with all that a coded level may bear, and scales that are no zero.
constexpr std::array<int, 16> flagged = {0x8002, 0x8001, 0x8000, 0x2064, 0x1032, 0x0805,
                                         0x0405, 0x4210, 0x0110, 0x3000, 0x5BA0, 0x3C00,
                                         1,      2,      3,      4};

NidsSample digital_sample(int code) {
    NidsSample s;
    s.code = code;
    s.thres = flagged;
    s.p = {0, 18037, 600, 5, 61, 900, 18037, 7, 8, 9, 40};
    s.layers = {nids_radial_packet(16, 6, std::vector<Bytes>(4, {0, 1, 2, 66, 150, 255}))};
    return s;
}

void add_codes(Seeds& all) {
    struct Row {
        const char* name;
        int code;
        int src;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"knots",          99,  1          },
             {"levels",         57,  1          },
             {"hundredths",     138, 1          },
             {"thousandths",    174, 1          },
             {"liquid",         134, 1          },
             {"tops",           135, 1          },
             {"floats",         170, 1          },
             {"classes",        165, 1          },
             {"fixed",          186, 1          },
             {"start",          80,  1          },
             {"storm_motion",   56,  1          },
             {"layer",          65,  1          },
             {"layer_only",     63,  1          },
             {"min_max",        159, 1          },
             {"min_max_accum",  172, 1          },
             {"no_facts",       3,   1          },
             {"composite",      38,  many_radars},
             {"composite_cell", 199, many_radars},
             {"composite_none", 3,   many_radars},
    }) {
        NidsSample s = digital_sample(row.code);
        s.src = row.src;
        all.emplace_back(row.name, nids_message(s));
    }
    for (const int code : {16, 38}) { // coded levels in runs, of one radar and of many
        NidsSample s = digital_sample(code);
        s.src = code == 16 ? 1 : many_radars;
        s.layers = {code == 16
                        ? nids_radial_packet(0xAF1F, 32, std::vector<Bytes>(2, {0x11, 0x32}))
                        : nids_raster_packet(0xBA0F, 0, std::vector<Bytes>(2, {0x1A, 0x2B}))};
        all.emplace_back(code == 16 ? "flags" : "flags_composite", nids_message(s));
    }
}

// Every reader of a packet meets the end of its bytes, and a length that is none.
void add_cuts(Seeds& all) {
    NidsSample s;
    s.code = 48;
    s.thres = flagged;
    const std::vector<Bytes> radials = {
        Bytes{0x11, 0x32},
        Bytes{0x5A, 0x1F}
    };
    const std::vector<Bytes> rows = {
        Bytes{0x1A, 0x2B},
        Bytes{0x3C   }
    };
    const std::vector<Bytes> boxes = {
        Bytes{3,  100, 4, 0},
        Bytes{7, 1   }
    };
    const Bytes levels = {1, 2, 66, 150, 255, 3};
    Seeds packets;
    packets.emplace_back("radial", nids_radial_packet(0xAF1F, 32, radials));
    packets.emplace_back("digital", nids_radial_packet(16, 6, std::vector<Bytes>(2, levels)));
    packets.emplace_back("raster", nids_raster_packet(0xBA0F, 0, rows));
    packets.emplace_back("precip", nids_raster_packet(17, 0, boxes));
    packets.emplace_back("vector", nids_words({7, 16, 0, 0, 511, 511, 10, 20, 30, 40}));
    packets.emplace_back("valued", nids_words({10, 18, 5, 0, 0, 511, 511, 10, 20, 30, 40}));
    packets.emplace_back("barb", nids_words({4, 10, 3, 100, 200, 270, 45}));
    packets.emplace_back("text", nids_text_packet(8, 5, 20, 30, "ALT KFT"));
    packets.emplace_back("unknown", nids_words({29, 6, 1, 2, 3}));
    for (const auto& [name, packet] : packets) {
        s.layers = {packet};
        const Bytes whole = nids_message(s);
        const std::size_t start = whole.size() - packet.size();
        const std::string base = name;
        all.emplace_back(base + "_head", cut(whole, start + 3));
        all.emplace_back(base + "_half", cut(whole, start + packet.size() / 2));
        all.emplace_back(base + "_end", cut(whole, whole.size() - 1));
        all.emplace_back(base + "_length", with(whole, start + 2, 0xFF));
    }
    const Bytes whole = nids_message(s);
    for (const std::size_t size : {1, 2, 10, 40, 122, 126, 132, 138}) {
        all.emplace_back("cut_" + std::to_string(size), cut(whole, size));
    }
    // A divider or a count that is none, and a block that is not there.
    all.emplace_back("divider", with(whole, 120, 0x55));
    all.emplace_back("block", with(whole, 123, 9));
    all.emplace_back("layers", with(whole, 128, 0x7F));
    all.emplace_back("layer_divider", with(whole, 130, 0x55));
}

void add_pages(Seeds& all) {
    NidsSample s = digital_sample(62);
    s.layers = {nids_words({7, 16, 0, 0, 511, 511, 10, 20, 30, 40})};
    s.pages = {nids_text_packet(8, 0, 1, 1, " STM ID  AZ/RAN"),
               nids_text_packet(8, 0, 1, 11, "   A0    211/ 32")};
    s.tabular = "STORM POSITION\n A0 211/32";
    const Bytes whole = nids_message(s);
    constexpr std::size_t graphic_offset = 112 + 3; // its low byte
    all.emplace_back("pages", whole);
    all.emplace_back("pages_before", with(whole, graphic_offset, 61));
    all.emplace_back("pages_far", with(whole, graphic_offset - 2, 1));
    all.emplace_back("pages_elsewhere",
                     with(whole, graphic_offset, static_cast<std::uint8_t>(whole[115] + 3)));
    all.emplace_back("pages_cut", cut(whole, whole.size() - 90));
    all.emplace_back("pages_none", with(with(whole, 115, 0), 114, 0));
    s.layers.clear();
    all.emplace_back("pages_alone", nids_message(s));
}

// Storms: lists of a trend that are none, packets that end within each other, symbols
// that name no place or all the same one, and more of them than any product has.
void add_symbols(Seeds& all) {
    constexpr int storm_tracks = 58;
    constexpr int far = 20000; // quarters of a kilometre
    NidsSample s;
    s.code = storm_tracks;
    const auto add = [&](const std::string& name, std::initializer_list<Bytes> packets) {
        s.layers = {nids_join(packets)};
        all.emplace_back(name, nids_message(s));
    };
    const NidsPlace here = {40, 60};
    const Bytes track = nids_track_packet(23, '"',
                                          {
                                              here, {30, 50},
                                               {20, 40}
    });
    const auto trend = [](std::initializer_list<int> lists) {
        const int size = 2 * static_cast<int>(lists.size()) + 6;
        return nids_join({nids_words({21, size, 'A' << 8 | '1', 40, 60}), nids_words(lists)});
    };
    add("hail_words", {nids_symbol_packet(13, {40, 60, far, 60}), nids_symbol_packet(14, {1, 2})});
    add("hail_sizes", {nids_symbol_packet(19, {40, 60, 90, 80, 2, 44, 60, 60, 20, 0})});
    add("features",
        {nids_symbol_packet(20, {1, 2, 3, 40, 5, 6, 9, 40, 7, 8, 11, 500, 1, 1, 99, 0})});
    add("trend_lists", {trend({7, 0x0101, 33, 1, 0, 4, 0x0203, 50, 60, 5, 0xFF01})});
    add("trend_cut", {cut(trend({1, 0x0401, 5}), 12)});
    add("names", {nids_symbol_packet(12, {40, 60}), nids_name_packet(15, here, "A1"),
                  nids_name_packet(15, {80, 90}, "B2"), nids_name_packet(15, {81, 90}, "B2"),
                  nids_name_packet(15, {far, far}, "C3"), nids_text_packet(8, 0, 80, 90, "D4")});
    add("texts_alone", {nids_text_packet(1, 0, 80, 90, "D4")});
    add("track_far", {
                         nids_track_packet(24, '#', {here, {far, far}, {20, 40}}
                           )
    });
    s.pages = {nids_join({nids_words({4, 10, 3, 100, 200, 270, 45}), nids_symbol_packet(12, {9, 9}),
                          nids_text_packet(8, 0, 1, 1, " STM ID  AZ/RAN"), nids_words({8, 2, 0})})};
    add("page_winds", {nids_symbol_packet(12, {40, 60})});
    s.pages.clear();
    for (const std::size_t size : {2, 6, 10, 20}) {
        add("track_cut_" + std::to_string(size), {track});
        all.back().second.resize(all.back().second.size() - size);
        add("trend_cut_" + std::to_string(size), {trend({1, 0x0401, 5, 6, 7, 8, 4, 0x0101, 9})});
        all.back().second.resize(all.back().second.size() - size);
    }
    add("letter_cut", {nids_name_packet(2, here, "\"")});
    all.back().second.pop_back();
    Bytes vortices = nids_words({12, 40000});
    vortices.resize(40004);
    s.bzip2 = true;
    add("symbols_flood", {vortices, vortices, vortices});
}

void add_damaged(Seeds& all) {
    NidsSample s = digital_sample(94);
    const Bytes plain = nids_message(s);
    s.bzip2 = true;
    const Bytes packed = nids_message(s);
    const Bytes zlib = nids_wrapped("SD", nids_zlib(plain, 2));
    constexpr std::size_t stream = 140; // a byte inside a stream
    all.emplace_back("bzip2_damaged", with(packed, stream, 0x5A));
    all.emplace_back("bzip2_cut", cut(packed, packed.size() - 20));
    all.emplace_back("bzip2_more", nids_join({packed, Bytes(40, 7)}));
    all.emplace_back("zlib_damaged", with(zlib, 70, 0x5A));
    all.emplace_back("zlib_cut", cut(zlib, zlib.size() - 20));
    all.emplace_back("zlib_dictionary", nids_wrapped("SD", bytes_of("x\xBB\0\0\0\1abcd"s)));
    all.emplace_back("encrypted", nids_wrapped("SD", bytes_of("R3 and what nobody can read")));
    all.emplace_back("trailer", nids_join({plain, bytes_of("\r\r\n\x03"s)}));
    s.layers = {Bytes(std::size_t{70} << 20, 0)}; // 70 MB of nothing, in some bytes
    all.emplace_back("bzip2_bomb", nids_message(s));
    for (const char* text :
         {"** SDUS97", "SDUS54 KOUN", "\x01\r\r\n123", "CD", "** \n** \n** \n"}) {
        all.emplace_back("wrapper_" + std::to_string(all.size()), bytes_of(text));
    }
}

// --- Level II -------------------------------------------------------------------

Bytes lev2_with(const Lev2Radial& radial, bool packed = false) {
    Lev2Volume volume;
    volume.units = {lev2_radial(radial)};
    return lev2_volume(volume, packed);
}

} // namespace

Seeds nids_seeds() {
    Seeds all;
    add_codes(all);
    add_cuts(all);
    add_pages(all);
    add_damaged(all);
    add_symbols(all);
    NidsSample scaled = digital_sample(159); // values by the format's own document
    scaled.thres = {0x4000, 0, 0x4284, 0, 0, 255, 2, 0};
    all.emplace_back("scaled", nids_message(scaled));
    return all;
}

Seeds lev2_seeds() {
    Lev2Radial radial;
    radial.moments = {
        {"REF", 0, 1000, 8, 2.0F, 66.0F,  {0, 1, 2, 255}},
        {"VEL", 0, 250,  8, 2.0F, 129.0F, {0, 1, 2, 255}}
    };
    Lev2Radial terminal = radial; // positions in thousandths of a degree
    terminal.id = "TOKC";
    terminal.lat = 35276.0F;
    terminal.lon = -97510.0F;
    Lev2Radial dual = radial; // the moments of two polarizations, words of 8 and 16 bits
    dual.moments = {
        {"ZDR", 0, 250, 8,  16.0F,  128.0F, {0, 1, 2, 255}        },
        {"PHI", 0, 250, 16, 2.8F,   2.0F,   {0, 1, 2, 513}        },
        {"RHO", 0, 250, 8,  300.0F, -60.5F, {0, 1, 2, 255}        },
        {"CFP", 0, 250, 8,  1.0F,   8.0F,   {0, 1, 2, 3, 7, 8, 99}}
    };
    Lev2Radial fixed = radial;
    fixed.type = 1;
    Lev2Radial angles = radial;
    angles.az = 4000;
    Lev2Volume cuts; // velocity in the second and the third
    for (const int number : {1, 2, 3}) {
        Lev2Radial cut_radial = radial;
        cut_radial.elev_num = number;
        cut_radial.moments.resize(number == 1 ? 1 : 2);
        cuts.units.push_back(lev2_radial(cut_radial));
    }
    const Bytes plain = lev2_with(radial);
    const Bytes old = lev2_with(fixed);
    const Bytes packed = lev2_volume(lev2_sample(31, 1), true);
    const Bytes unit = lev2_unit(lev2_radial(radial));
    const Bytes zipped = lev2_gzip(plain);
    Bytes head = lev2_header({});
    Lev2Volume nameless;
    nameless.site = "";
    nameless.units = {lev2_radial(radial)};
    Seeds seeds;
    seeds.emplace_back("terminal", lev2_with(terminal));
    seeds.emplace_back("dual", lev2_with(dual));
    seeds.emplace_back("cuts", lev2_volume(cuts, false));
    seeds.emplace_back("pattern",
                       lev2_volume(lev2_units({1, 1, 1, 2, 2, 2}, {false, false}), true));
    seeds.emplace_back("angles", lev2_with(angles));
    seeds.emplace_back("nameless", lev2_volume(nameless, false));
    seeds.emplace_back("header", head);
    seeds.emplace_back("header_cut", cut(head, 9));
    seeds.emplace_back("cut_prefix", cut(plain, 24 + 20));
    seeds.emplace_back("cut_record", cut(plain, plain.size() - 30));
    seeds.emplace_back("cut_fixed", cut(old, 24 + 300));
    seeds.emplace_back("metadata", nids_join({head, lev2_other(5), lev2_other(2)}));
    seeds.emplace_back("unit_cut", cut(packed, packed.size() - 40));
    seeds.emplace_back("unit_damaged", with(packed, 24 + 60, 0x5A));
    seeds.emplace_back("unit_skipped", nids_join({with(unit, 3, 0xFF), Bytes(100, 1)}));
    const Bytes twice = nids_join({packed, unit});
    seeds.emplace_back("units", twice);
    seeds.emplace_back("units_trailer", nids_join({twice, bytes_of("\r\r\n\x03"s)}));
    seeds.emplace_back("units_cut", cut(twice, twice.size() - 5));
    seeds.emplace_back("units_head", nids_join({
                                         twice, {0, 0}
    }));
    seeds.emplace_back("last_damaged", with(twice, twice.size() - unit.size() + 9, 0x5A));
    seeds.emplace_back("unit_longer", nids_join({head, with(unit, 3, 0xF0), Bytes(300, 0)}));
    seeds.emplace_back("unit_none", nids_join({head, unit, Bytes(4, 0), unit}));
    seeds.emplace_back("units_more", nids_join({head, unit, bytes_of("\0\0\0"s)}));
    seeds.emplace_back("trailer", nids_join({plain, bytes_of("\r\r\n\x03"s)}));
    seeds.emplace_back("gzip_cut", cut(zipped, zipped.size() - 12));
    seeds.emplace_back("gzip_damaged", with(zipped, zipped.size() / 2, 0x5A));
    seeds.emplace_back("gzip_twice", nids_join({zipped, zipped}));
    seeds.emplace_back("gzip_and_more", nids_join({zipped, bytes_of("more")}));
    return seeds;
}

// --- Mosaics and RRWDS ----------------------------------------------------------

namespace {

// Runs of every form, masks, and control bytes that look like tags.
Seeds nowrad_seeds() {
    Bytes head = nowrad_header(nowrad_latlon(3, 60, -97.3, 36.5, 0.11, 0.13));
    const Bytes line = {0x00, 0xF0, 0x0C, 0x01, 0x00};
    const Bytes end = {0x00, 0xF0, 0x0D};
    const auto image = [&](const Bytes& packets) { return nids_join({head, line, packets, end}); };
    const auto titled = [](const std::string& title) {
        NowradImage with_title = nowrad_lambert(3, 60);
        with_title.title = title;
        return nowrad_header(with_title);
    };
    Seeds all;
    all.emplace_back("runs", image({0x35, 0xE4, 0x1F, 0xD3, 0x20, 0x01, 0xC0, 0x00, 0x11}));
    all.emplace_back("masks", image({0x10, 0xF5, 0x35, 0x00, 0x10, 0xF0, 0x0D}));
    all.emplace_back("like_tags", image({0x00, 0xF0, 0x00, 0x00, 0x00, 0x12, 0x00, 0xF1, 0x02}));
    all.emplace_back("run_cut", nids_join({
                                    head, line, {0xD1, 0x05}
    }));
    all.emplace_back("line_cut", nids_join({
                                     head, {0x00, 0xF0, 0x0C, 0x01}
    }));
    all.emplace_back("zero_last", nids_join({
                                      head, line, {0x21, 0x00}
    }));
    all.emplace_back("zero_mark", nids_join({
                                      head, line, {0x21, 0x00, 0xF0}
    }));
    all.emplace_back("us", titled("USRAD Hi               22:30 03-JUN-99"));
    all.emplace_back("no_month", titled("NOWrad Master       22:30 03-XYZ-99"));
    all.emplace_back("no_day", titled("NOWrad Master       22:30"));
    all.emplace_back("no_time", titled("NOWrad Master       none"));
    NowradImage other = nowrad_latlon(3, 60, -97.3, 36.5, 0.11, 0.13);
    other.projection = "nothing";
    all.emplace_back("no_angles", nowrad_header(other));
    other.kind = 'L';
    all.emplace_back("no_lambert", nowrad_header(other));
    other.kind = 'X';
    all.emplace_back("no_projection", nowrad_header(other));
    all.emplace_back("no_size", nowrad_header(nowrad_latlon(0, 60, -97.3, 36.5, 0.11, 0.13)));
    for (const std::size_t size : {2, 3, 4, 9, 30, 60}) {
        all.emplace_back("cut_" + std::to_string(size), cut(head, size));
    }
    return all;
}

Seeds kavrad_seeds() {
    Bytes bytes; // a value and its run for each code, then each form of a run
    for (int code = 0; code < 64; ++code) {
        bytes.push_back(static_cast<std::uint8_t>(0x40 | code));
    }
    const Bytes runs = {0x22, 0x05, 0x24, 0x80, 0x23, 0x23, 0x25, 0x21};
    Seeds all;
    for (const char type : {' ', 'C'}) {
        const Bytes head = kavrad_header({.coarse = type == 'C', .type = type, .date = "2x    "});
        all.emplace_back(type == 'C' ? "codes_marked" : "codes", nids_join({head, bytes, runs}));
        all.emplace_back(type == 'C' ? "run_cut" : "no_end", nids_join({head, cut(runs, 3)}));
    }
    all.emplace_back("short", cut(kavrad_header({}), 100));
    return all;
}

// A few azimuths are enough: the rest is the same.
Seeds rrwds_seeds() {
    const auto level = [](int azimuth, int bin) { return (azimuth + bin / 9) % 8; };
    RrwdsImage low;
    low.near = true;
    low.elev = -1.3F;
    RrwdsImage nowhere;
    nowhere.site = "\x01?";
    constexpr std::size_t three = 12 + 3 * 80;
    Seeds all;
    all.emplace_back("far", cut(rrwds_file({}, level), three));
    all.emplace_back("near", cut(rrwds_file(low, level), three + 33));
    all.emplace_back("nowhere", cut(rrwds_file(nowhere, level), three));
    all.emplace_back("short", cut(rrwds_file({}, level), 11));
    return all;
}

} // namespace

Seeds mosaic_seeds(const std::string& kind) {
    Seeds all = kind == "nowrad" ? nowrad_samples() : kind == "kavrad" ? kavrad_samples() : Seeds{};
    const Seeds more = kind == "nowrad"   ? nowrad_seeds()
                       : kind == "kavrad" ? kavrad_seeds()
                                          : rrwds_seeds();
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

// --- Images ---------------------------------------------------------------------

namespace {

std::string gif_head(char flags) {
    return "GIF89a\x04\0\x03\0"s + flags + "\0\0"s;
}

// Pictures of four by three pixels, and of none.
Seeds gif_seeds() {
    const std::string table = "\0\0\0\xFF\xFF\xFF\xFF\0\0\0\0\xFF"s; // four colours
    const std::string place = ",\0\0\0\0\x04\0\x03\0"s;
    // Clear, a pixel, strings not yet in the table, and the end.
    const std::string codes = "\x02\x04\x84\x8F\xA9\x5C\0"s;
    const std::string control = "!\xF9\x04\x01\x0A\0\x02\0"s;
    const std::string comment = "!\xFE\x05hello\0"s;
    const std::string loop = "!\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0"s;
    // Codes of nine bits and more, none of which clears the table.
    std::string full_table;
    std::string codes9;
    for (int i = 0; i < 5200; ++i) {
        codes9 += static_cast<char>(i * 37 % 256);
    }
    for (std::size_t at = 0; at < codes9.size(); at += 255) {
        const std::string block = codes9.substr(at, 255);
        full_table += static_cast<char>(block.size()) + block;
    }
    Seeds all;
    const auto add = [&](const char* name, const std::string& text) {
        all.emplace_back(name, bytes_of(text));
    };
    add("local_table", gif_head(0) + place + "\x81"s + table + codes + ";");
    add("both_tables", gif_head('\x81') + table + place + "\x81"s + table + codes + ";");
    add("extensions",
        gif_head('\x81') + table + comment + loop + control + place + "\0"s + codes + ";");
    add("junk_before", gif_head('\x81') + table + "??" + place + "\0"s + codes);
    add("interlaced_rows", gif_head('\x81') + table + place + "@" + codes + ";");
    add("outside", gif_head('\x81') + table + ",\x03\0\x02\0\x04\0\x03\0\0"s + codes);
    add("noted", "** from a friend\n" + gif_head('\x81') + table + place + "\0"s + codes);
    add("trailer", gif_head('\x81') + table + ";");
    add("cut_screen", gif_head(0).substr(0, 9));
    add("cut_table", gif_head('\x81') + table.substr(0, 5));
    add("cut_extension", gif_head('\x81') + table + control.substr(0, 5));
    add("cut_place", gif_head('\x81') + table + place.substr(0, 6));
    add("cut_local", gif_head(0) + place + "\x81"s + table.substr(0, 5));
    add("cut_codes", gif_head('\x81') + table + place + "\0"s + codes.substr(0, 4));
    add("code_size", gif_head('\x81') + table + place + "\0\x0C\x01\x01"s);
    add("unknown_code", gif_head('\x81') + table + place + "\0\x02\x02\xFC\xFF\0"s);
    add("no_width", gif_head('\x81') + table + ",\0\0\0\0\0\0\x03\0\0"s + codes);
    add("huge", "GIF89a\xFF\xFF\xFF\xFF\0\0\0"s);
    add("full_table", gif_head('\x81') + table + place + "\0\x08"s + full_table);
    add("other", "GIB89a with nothing behind");
    return all;
}

void append_png(png_structp png, png_bytep data, std::size_t size) {
    auto* out = static_cast<Bytes*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + size);
}

Bytes png_file(int type, int depth, int interlace, int width = 5, int height = 3) {
    Bytes out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &out, append_png, nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                 depth, type, interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const std::array<png_color, 2> palette = {
        {{255, 0, 0}, {0, 0, 255}}
    };
    if (type == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, palette.data(), 2);
    }
    png_write_info(png, info);
    Bytes row(png_get_rowbytes(png, info), 0x4B);
    for (int pass = png_set_interlace_handling(png); pass > 0; --pass) {
        for (int y = 0; y < height; ++y) {
            png_write_row(png, row.data());
        }
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return out;
}

// The size of a header and its checksum put right.
Bytes png_of_size(Bytes png, std::uint32_t size) {
    for (int i = 0; i < 4; ++i) {
        png[16 + i] = png[20 + i] = static_cast<std::uint8_t>(size >> (24 - 8 * i));
    }
    const auto sum = static_cast<std::uint32_t>(crc32(0, &png[12], 17));
    for (int i = 0; i < 4; ++i) {
        png[29 + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
    }
    return png;
}

Seeds png_seeds() {
    constexpr int interlaced = PNG_INTERLACE_ADAM7;
    const Bytes rgb = png_file(PNG_COLOR_TYPE_RGB, 8, 0);
    Seeds seeds;
    seeds.emplace_back("bits", png_file(PNG_COLOR_TYPE_PALETTE, 1, 0));
    seeds.emplace_back("grey4", png_file(PNG_COLOR_TYPE_GRAY, 4, 0));
    seeds.emplace_back("grey16", png_file(PNG_COLOR_TYPE_GRAY, 16, interlaced));
    seeds.emplace_back("grey_alpha", png_file(PNG_COLOR_TYPE_GRAY_ALPHA, 8, 0));
    seeds.emplace_back("rgb", rgb);
    seeds.emplace_back("rgb_alpha", png_file(PNG_COLOR_TYPE_RGB_ALPHA, 16, interlaced));
    seeds.emplace_back("cut_header", cut(rgb, 20));
    seeds.emplace_back("cut_pixels", cut(rgb, rgb.size() - 20));
    seeds.emplace_back("cut_mark", cut(rgb, 5));
    seeds.emplace_back("other", with(rgb, 1, 'Q'));
    seeds.emplace_back("no_palette", with(png_file(PNG_COLOR_TYPE_PALETTE, 1, 0), 37, 'q'));
    seeds.emplace_back("huge", png_of_size(rgb, 60000));
    seeds.emplace_back("wider", png_of_size(rgb, 0x7FFFFFF));
    seeds.emplace_back("wide", png_file(PNG_COLOR_TYPE_GRAY, 1, 0, 70000, 1));
    return seeds;
}

// `at` a field of a dump's header, four bytes.
Bytes with_field(Bytes dump, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        dump.at(at + i) = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }
    return dump;
}

Seeds xwd_seeds() {
    const auto all = image_samples("xwd");
    const Bytes& deep = all.front().second;
    const Bytes& flat = all.back().second;
    Bytes four = with_field(with_field(flat, 44, 4), 12, 4); // four bits a pixel
    Seeds seeds;
    seeds.emplace_back("cut_head", cut(deep, 60));
    seeds.emplace_back("cut_name", cut(deep, 104));
    seeds.emplace_back("cut_colors", cut(flat, 150));
    seeds.emplace_back("cut_pixels", cut(deep, deep.size() - 9));
    seeds.emplace_back("version", with_field(deep, 4, 6));
    seeds.emplace_back("small_head", with_field(deep, 0, 99));
    seeds.emplace_back("many_colors", with_field(deep, 76, 0xFFFFFF));
    seeds.emplace_back("too_deep", with_field(deep, 12, 33));
    seeds.emplace_back("short_lines", with_field(deep, 48, 3));
    seeds.emplace_back("huge", with_field(deep, 48, 0x7FFFFFF));
    seeds.emplace_back("high_first", with_field(deep, 28, 1));
    seeds.emplace_back("nibbles", four);
    seeds.emplace_back("planes_cut", with_field(flat, 8, 1));
    seeds.emplace_back("planes_huge",
                       with_field(with_field(with_field(deep, 8, 1), 16, 60000), 20, 60000));
    seeds.emplace_back("no_red", with_field(deep, 56, 0));
    seeds.emplace_back("odd_bits", with_field(with_field(deep, 44, 12), 12, 12));
    return seeds;
}

Seeds native_seeds() {
    const std::string pixels = "abcdef";
    const std::string volume(1024, 'v');
    const auto packed = image_samples("native").front().second;
    Seeds all;
    const auto add = [&](const char* name, const std::string& text) {
        all.emplace_back(name, bytes_of(text));
    };
    add("version4", "ZYRIMG4\n\n\nps,35,-97,3,2,0.5,0.5\n" + pixels);
    add("bad_domain", "ZYRIMG4\n\n\nfi:name\n" + pixels);
    add("polar", "ZYRIMG\n\n\nPS:-105 35 -97 .5 .5 3 2\n" + pixels);
    add("lambert", "ZYRIMG\n\n\nLC:-95 35 -97 .5 .5 3 2\n" + pixels);
    add("satellite",
        "ZYRIMG\r\n1230Z 25 DEC 99\r\n\r\nSAT:0:-75:6.6 35 -97 .5 .5 3 2\r\n" + pixels);
    add("mercator", "ZYRIMG\n\n\nME 35 -97 .5 .5 3 2\n" + pixels);
    add("bare", "ZYRIMG\n\n\n35 -97 .5 .5 3 2\n" + pixels);
    add("word_alone", "ZYRIMG\n\n\nLC\n" + pixels);
    add("blank", "ZYRIMG\n\n\n   \n" + pixels);
    add("elsewhere", "ZYRIMG*\n\n\n3 2\nnone\n");
    add("command", "ZYRIMG*\n\n\n3 2\n|true\n");
    add("itself", "ZYRIMG*\n\n\n3 2\n../" + pixels);
    add("skipped", "ZYRIMGCV\n\n\n3 2\n" + volume + "..\x09\x02...." + pixels);
    add("skip_cut", "ZYRIMGV\n\n\n3 2\n" + pixels);
    add("skip_count", "ZYRIMGC\n\n\n3 2\n..\x09");
    add("skip_three", "ZYRIMGC\n\n\n3 2\n.");
    add("missing", "ZYRIMG\n\n\n30 20\n" + pixels);
    add("huge", "ZYRIMG\n\n\n65535 65535\n" + pixels);
    add("other", "ZYRIM2\n\n\n3 2\n" + pixels);
    add("noted", "** from a friend\nZYRIMG\n\n\n3 2\n" + pixels);
    add("no_lines", "ZYRIMG");
    add("damaged", "ZYRIMGZ\n\n\n3 2\nno stream");
    add("more", std::string(packed.begin(), packed.end()) + "and more");
    add("less", std::string(packed.begin(), packed.end() - 30));
    return all;
}

} // namespace

Seeds image_seeds(const std::string& kind) {
    return kind == "gif"   ? gif_seeds()
           : kind == "png" ? png_seeds()
           : kind == "xwd" ? xwd_seeds()
                           : native_seeds();
}

Seeds overlay_seeds() {
    constexpr int displays = 3;
    Seeds all;
    for (const char* kind : {"gif", "png", "xwd", "native"}) {
        Seeds images = image_samples(kind);
        const Seeds more = image_seeds(kind);
        std::copy_if(more.begin(), more.end(), std::back_inserter(images), [](const auto& seed) {
            constexpr std::array<const char*, 6> shown = {"bits",       "grey16", "rgb_alpha",
                                                          "high_first", "no_red", "local_table"};
            return std::find(shown.begin(), shown.end(), seed.first) != shown.end();
        });
        for (const auto& [name, bytes] : images) {
            const auto number = static_cast<std::uint8_t>(all.size());
            for (std::uint8_t display = 0; display < displays; ++display) {
                all.emplace_back(name + "_" + std::to_string(display),
                                 nids_join({
                                     Bytes{display, number},
                                     bytes
                }));
            }
        }
    }
    return all;
}
