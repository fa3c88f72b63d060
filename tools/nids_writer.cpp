#include "nids_writer.h"

#include <algorithm>
#include <cstddef>

#include <bzlib.h>
#include <zlib.h>

namespace {

void put(Bytes& out, const Bytes& part) {
    out.insert(out.end(), part.begin(), part.end());
}
void put_text(Bytes& out, const std::string& text) {
    out.insert(out.end(), text.begin(), text.end());
}
void put16(Bytes& out, int value) {
    out.push_back(static_cast<std::uint8_t>(value >> 8));
    out.push_back(static_cast<std::uint8_t>(value));
}
void put32(Bytes& out, std::size_t value) {
    put16(out, static_cast<int>(value >> 16));
    put16(out, static_cast<int>(value & 0xFFFF));
}

// Divider, identifier, length with this head, and a count.
Bytes block(int id, std::size_t count, const Bytes& body) {
    Bytes out = nids_words({-1, id});
    put32(out, body.size() + 10);
    put16(out, static_cast<int>(count));
    put(out, body);
    return out;
}

Bytes symbology(const std::vector<Bytes>& layers) {
    Bytes body;
    for (const Bytes& layer : layers) {
        put16(body, -1);
        put32(body, layer.size());
        put(body, layer);
    }
    return block(1, layers.size(), body);
}

Bytes graphic(const std::vector<Bytes>& pages) {
    Bytes body;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        put(body, nids_words({static_cast<int>(i + 1), static_cast<int>(pages[i].size())}));
        put(body, pages[i]);
    }
    return block(2, pages.size(), body);
}

// Each line of the page has its length in front; -1 ends the page.
Bytes tabular(const std::string& text) {
    Bytes body = nids_words({-1, 1});
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        put16(body, 80);
        std::string line = text.substr(at, end - at);
        line.resize(80, ' ');
        put_text(body, line);
        at = end + 1;
    }
    put16(body, -1);
    return block(3, 1, body);
}

} // namespace

Bytes nids_words(std::initializer_list<int> values) {
    Bytes out;
    for (const int value : values) {
        put16(out, value);
    }
    return out;
}

Bytes nids_join(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts) {
        put(out, part);
    }
    return out;
}

Bytes nids_radial_packet(int code, int bins, const std::vector<Bytes>& radials) {
    const int count = static_cast<int>(radials.size());
    Bytes out = nids_words({code, 0, bins, 0, 0, 1000, count});
    for (int i = 0; i < count; ++i) {
        const Bytes& data = radials[static_cast<std::size_t>(i)];
        const int len = static_cast<int>(data.size());
        put(out, nids_words({code == 16 ? len : len / 2, 3600 * i / count, 3600 / count}));
        put(out, data);
    }
    return out;
}

Bytes nids_raster_packet(int code, int pack, const std::vector<Bytes>& rows) {
    const int count = static_cast<int>(rows.size());
    Bytes out = code == 17 ? nids_words({17, 0, 0, count, count})
                           : nids_words({code, 0x8000, 0xC0, 0, 0, 1, 0, 1, 0, count, pack});
    for (const Bytes& row : rows) {
        put16(out, static_cast<int>(row.size()));
        put(out, row);
        if (row.size() % 2 != 0 && pack != 1) {
            out.push_back(0);
        }
    }
    return out;
}

Bytes nids_text_packet(int code, int value, int i, int j, const std::string& text) {
    Bytes out = nids_words({code, static_cast<int>(text.size()) + 6, value, i, j});
    put_text(out, text);
    return out;
}

Bytes nids_symbol_packet(int code, std::initializer_list<int> values) {
    return nids_join({nids_words({code, 2 * static_cast<int>(values.size())}), nids_words(values)});
}

Bytes nids_name_packet(int code, NidsPlace at, const std::string& name) {
    Bytes out = nids_words({code, static_cast<int>(name.size()) + 4, at.i, at.j});
    put_text(out, name);
    return out;
}

Bytes nids_track_packet(int code, char letter, const std::vector<NidsPlace>& places) {
    Bytes body;
    Bytes line;
    for (const NidsPlace& at : places) {
        if (&at != places.data()) { // the first is where the storm is
            put(body, nids_name_packet(2, at, std::string(1, letter) + " "));
        }
        put(line, nids_words({at.i, at.j}));
    }
    put(body, nids_words({6, static_cast<int>(line.size())}));
    put(body, line);
    return nids_join({nids_words({code, static_cast<int>(body.size())}), body});
}

Bytes nids_trend_packet(const std::string& name, NidsPlace at,
                        const std::vector<std::array<int, 3>>& volumes) {
    constexpr std::array<int, 3> codes = {1, 4, 5}; // top, hail, severe hail
    const int count = static_cast<int>(volumes.size());
    Bytes body;
    put_text(body, name);
    put(body, nids_words({at.i, at.j}));
    for (std::size_t k = 0; k < codes.size(); ++k) {
        put(body, nids_words({codes[k], 256 * count + count})); // the newest is the last
        for (auto volume = volumes.rbegin(); volume != volumes.rend(); ++volume) {
            put16(body, (*volume)[k]);
        }
    }
    return nids_join({nids_words({21, static_cast<int>(body.size())}), body});
}

Bytes nids_page_packets(const std::vector<std::string>& lines, const std::vector<int>& columns) {
    constexpr int line_step = 10;
    constexpr int right = 511;
    const int height = line_step * static_cast<int>(lines.size());
    Bytes vectors;
    for (int y = 0; y <= height; y += line_step) {
        put(vectors, nids_words({0, y, right, y}));
    }
    for (const int x : columns) {
        put(vectors, nids_words({x, 0, x, height}));
    }
    Bytes out = nids_words({10, static_cast<int>(vectors.size()) + 2, 2});
    put(out, vectors);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        put(out, nids_text_packet(8, 1, 0, line_step * static_cast<int>(i) + 1, lines[i]));
    }
    return out;
}

Bytes nids_message(const NidsSample& s) {
    constexpr int head = 18 + 102;
    Bytes symb = s.layers.empty() ? Bytes{} : symbology(s.layers);
    const Bytes graph = s.pages.empty() ? s.trends : graphic(s.pages);
    const Bytes tab = s.tabular.empty() ? Bytes{} : tabular(s.tabular);
    const auto offset = [&](const Bytes& part, std::size_t before) {
        return part.empty() ? 0 : (head + before) / 2;
    };
    const std::size_t off_symb = offset(symb, 0);
    const std::size_t off_graph = offset(graph, symb.size());
    const std::size_t off_tab = offset(tab, symb.size() + graph.size());
    put(symb, graph);
    put(symb, tab);
    const std::size_t unpacked = symb.size();
    symb = s.bzip2 ? nids_bzip2(symb) : symb;

    Bytes out = nids_words({s.code, s.days});
    put32(out, static_cast<std::size_t>(s.seconds));
    put32(out, head + symb.size());
    put(out, nids_words({s.src, 0, symb.empty() ? 2 : 3}));
    put16(out, -1);
    put32(out, static_cast<std::size_t>(s.lat));
    put32(out, static_cast<std::size_t>(s.lon));
    put(out, nids_words({s.height, s.code, s.mode, s.vcp, 0, 41, s.days}));
    put32(out, static_cast<std::size_t>(s.seconds));
    put16(out, s.days);
    put32(out, static_cast<std::size_t>(s.seconds) + 130);
    put(out, nids_words({s.p[1], s.p[2], 1, s.p[3]}));
    for (const int t : s.thres) {
        put16(out, t);
    }
    const int packed = static_cast<int>(unpacked);
    put(out, nids_words({s.p[4], s.p[5], s.p[6], s.p[7], s.bzip2 ? 1 : s.p[8],
                         s.bzip2 ? packed >> 16 : s.p[9], s.bzip2 ? packed : s.p[10], 0}));
    put32(out, off_symb);
    put32(out, off_graph);
    put32(out, off_tab);
    put(out, symb);
    return out;
}

Bytes nids_bzip2(const Bytes& data) {
    auto size = static_cast<unsigned>(data.size() + data.size() / 100 + 600);
    Bytes out(size);
    Bytes source = data;
    BZ2_bzBuffToBuffCompress(reinterpret_cast<char*>(out.data()), &size,
                             reinterpret_cast<char*>(source.data()),
                             static_cast<unsigned>(source.size()), 9, 0, 0);
    out.resize(size);
    return out;
}

Bytes nids_wrapped(const std::string& mark, const Bytes& message) {
    Bytes out;
    if (mark[0] == '\x01') {
        put_text(out, mark + "\r\n123 \r\r\nSDUS54 KOUN 202231\r\r\nN0QTLX\r\r\n");
    } else {
        put_text(out, mark + "US54 KOUN 202231\r\r\nN0QTLX\r\r\n");
    }
    put(out, message);
    return out;
}

Bytes nids_zlib(const Bytes& message, int streams) {
    Bytes whole(54, ' ');
    put(whole, message);
    Bytes out;
    const std::size_t part = whole.size() / static_cast<std::size_t>(streams) + 1;
    for (std::size_t at = 0; at < whole.size(); at += part) {
        const std::size_t size = std::min(part, whole.size() - at);
        uLongf packed_size = compressBound(size);
        Bytes packed(packed_size);
        compress2(packed.data(), &packed_size, whole.data() + at, size, 9);
        packed.resize(packed_size);
        put(out, packed);
    }
    return out;
}

Bytes nids_collective(const std::vector<Bytes>& messages) {
    Bytes out;
    for (const Bytes& message : messages) {
        put_text(out, "** SDUS97 KTLX 202231 ***\nSDUS54 KOUN 202231\nN0QTLX\n ");
        put(out, message);
        out.push_back('\n');
    }
    return out;
}

std::vector<std::pair<std::string, Bytes>> nids_samples() {
    const Bytes vectors = nids_words({7, 16, 0, 0, 511, 511, 10, 20, 30, 40});
    const Bytes barb = nids_words({4, 10, 3, 100, 200, 270, 45});

    NidsSample radial;
    radial.code = 19;
    radial.thres = {0x8002, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70, 75};
    const std::vector<Bytes> runs = {
        Bytes{0xF0, 0x94},
        Bytes{0xF5, 0x9A},
        Bytes(), Bytes{0x8F, 0xF1}
    };
    radial.layers.push_back(nids_radial_packet(0xAF1F, 24, runs));
    const Bytes message = nids_message(radial);

    NidsSample digital;
    digital.thres = {-320, 5, 254};
    digital.p[3] = 5;
    digital.p[4] = 61;
    const Bytes levels = {0, 1, 2, 66, 90, 120, 150, 255};
    digital.layers.push_back(nids_radial_packet(16, 8, std::vector<Bytes>(8, levels)));
    digital.bzip2 = true;

    NidsSample raster = radial;
    raster.code = 38;
    const std::vector<Bytes> rows = {
        Bytes{0xF1, 0x52},
        Bytes{0x3A   },
        Bytes()
    };
    const std::vector<Bytes> pairs = {
        Bytes{9, 0x13},
        Bytes{4, 0x0F}
    };
    raster.layers[0] = nids_raster_packet(0xBA07, 2, rows);
    put(raster.layers[0], nids_raster_packet(0xBA0F, 1, pairs));
    Bytes page = nids_words({10, 10, 2, 0, 0, 511, 0});
    put(page, vectors);
    put(page, nids_text_packet(8, 0, 1, 1, " STM ID  AZ/RAN TVS  MESO POSH/POH/MX SIZE VIL"));
    raster.pages.push_back(page);
    raster.pages.push_back(
        nids_text_packet(1, 0, 1, 11, "   A0    211/ 32 NONE MESO  70/ 90/ 1.50  55  62 12.9"));
    raster.tabular = "STORM POSITION\n A0 211/32";

    NidsSample precip = radial;
    precip.code = 81;
    precip.thres = {-6000, 125, 254};
    const std::vector<Bytes> boxes = {
        Bytes{100,  0, 31, 255},
        Bytes{131, 40 }
    };
    precip.layers[0] = nids_raster_packet(17, 0, boxes);
    precip.layers.push_back(nids_words({18, 4, 1, 2}));

    NidsSample wind = radial;
    wind.code = 48;
    wind.layers[0] = nids_words({10, 10, 5, 0, 0, 511, 511});
    put(wind.layers[0], barb);
    put(wind.layers[0], nids_text_packet(8, 5, 20, 30, "ALT KFT"));

    // Symbols that are passed over, some of degrees that show, and the hail packet, which
    // ends the walk; of a southern radar.
    NidsSample symbols = radial;
    symbols.code = 141;
    symbols.lat = -33700;
    symbols.lon = 151200;
    symbols.layers[0] = nids_words(
        {3, 6, 10, 20, 30, 5, 4, 1, 2, 6, 8, 0, 0, 9, 9, 9, 6, 1, 2, 3, 15, 6, 10, 20, 0x4130});
    put(symbols.layers[0], nids_words({7, 8, -35, 150, -33, 152}));
    put(symbols.layers[0], nids_words({4, 10, 3, -33, 150, 270, 45}));
    put(symbols.layers[0], nids_text_packet(8, 0, -34, 151, "SYD"));
    put(symbols.layers[0], nids_words({19, 4, 1, 2}));

    std::vector<std::pair<std::string, Bytes>> all;
    all.emplace_back("radial", nids_wrapped("SD", message));
    all.emplace_back("digital", nids_wrapped("\x01\r", nids_message(digital)));
    all.emplace_back("raster", nids_message(raster));
    all.emplace_back("precip", nids_wrapped("**", nids_message(precip)));
    all.emplace_back("wind", nids_wrapped("DS", nids_message(wind)));
    all.emplace_back("symbols", nids_message(symbols));
    all.emplace_back("zlib", nids_wrapped("SD", nids_zlib(message, 1)));
    all.emplace_back("zlib_parts", nids_wrapped("\x01\r", nids_zlib(nids_message(raster), 3)));
    const std::vector<Bytes> both = {message, nids_message(digital)};
    all.emplace_back("collective", nids_collective(both));

    // A list of storms on two pages, and one of columns after a packet that is
    // not walked.
    const char* header = " STM ID  AZ/RAN TVS  MDA  POSH/POH/MX SIZE VIL DBZM  HT  TOP  FCST MVMT ";
    NidsSample storms = radial;
    storms.code = 37;
    storms.layers[0] = raster.layers[0];
    storms.pages = {
        nids_page_packets(
            {header, "    K3  211/ 32 TVS     9   80/100/ 1.75    55  62 12.9 >37.6  245/ 31  ",
             "    P1   60/ 20 NONE    3   50/ 90/<0.50    31  51  9.4  30.2    NEW    "},
            {0, 60, 120, 170, 511}),
        nids_page_packets(
            {header, "    W8  330/ 48 NONE NONE     UNKNOWN        8  44  7.5  22.1  230/  9  "},
            {0, 60, 120, 170, 511}),
    };
    NidsSample tracks = radial;
    tracks.code = 58;
    tracks.layers[0] = nids_words({2, 6, 10, 20, 0x2220});
    tracks.pages = {
        nids_page_packets({" STORM ID        K3        P1", " AZ/RAN    211/ 32    60/ 20",
                           " FCST MVT  245/ 31     NEW  ", " ERR/MEAN  0.9/ 0.6  0.0/ 0.0",
                           " DBZM HGT   62 12.9   51  9.4"},
                          {0, 60, 130, 200}),
    };
    all.emplace_back("storms", nids_message(storms));
    all.emplace_back("tracks", nids_message(tracks));

    // The storms of that table, and others, by their symbols.
    NidsSample cells = tracks;
    const NidsPlace k3 = {-122, -203};
    cells.layers[0] = nids_join({
        nids_name_packet(2, k3, "\" "),
        nids_name_packet(15, k3, "K3"),
        nids_track_packet(23, '!', {k3,   {-150, -220}, {-180, -230}}
          ),
        nids_track_packet(24, '#', {k3,   {-60, -180} }
          ),
        nids_symbol_packet(19, {128,  74,           90,             80, 2}
          ),
        nids_name_packet(15, {128,    74             },
          "P1"),
        nids_words({28,   0,            0,6, 1, 2, 3}
          ), // generic data
        nids_symbol_packet(20, {-100,   120,              9,                     24, 40, 160, 11, 8}
          ),
        nids_text_packet(8, 1, 40, 160, "86"),
        nids_symbol_packet(12, {200, -40       }
          ),
        nids_symbol_packet(26, {230,  -60          }
          ),
        nids_symbol_packet(3, {10,    -90,              20           }
          ),
        nids_symbol_packet(25, {10,  -90,          40                        }
          ),
    });
    NidsSample trends = tracks;
    trends.code = 62;
    trends.layers.clear();
    trends.pages.clear();
    trends.trends = nids_join({
        nids_words({22,             0x0201, 754, 764}
        ),
        nids_trend_packet("R7", {-244,           406},
        {{1318, 60, 30},              {290, 90, 90}}
        ),
        nids_trend_packet("S2", {300, 200},
        {{254, 100, 70}}
        )
    });
    all.emplace_back("cells", nids_message(cells));
    all.emplace_back("trends", nids_message(trends));
    return all;
}
