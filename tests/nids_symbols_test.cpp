// Storm symbols: the packets of every kind, lengths that are none, the symbols on
// the page in the place of the tables', and the place of every storm of the real
// products beside what their own tables say.
#include "nids_impl.h"
#include "nids_page.h"
#include "nids_report.h"
#include "nids_walk.h"
#include "reference.h"

#include <cmath>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr const char* kinds[] = {"cell", "hail", "meso", "low",  "weak",  "shear", "tvs",
                                 "etvs", "name", "past", "fcst", "past-", "fcst-", "circle"};

// The walk as text: symbols, and other packets by their code.
struct Symbols : NidsSink {
    std::ostringstream out;
    void packet(int code) {
        if (NIDS_is_symbol(code) == 0) {
            out << "<" << code << ">";
        }
    }
    void symbol(const NIDS_symbol& s) {
        out << kinds[static_cast<int>(s.kind)] << " " << s.x << "," << s.y;
        if (s.kind == NidsSymbol::past_line || s.kind == NidsSymbol::forecast_line) {
            out << "-" << s.x2 << "," << s.y2;
        }
        out << (s.radius != 0 ? " r" + std::to_string(std::lround(s.radius)) : "");
        if (s.hail != 0 || s.top != 0) {
            out << " " << s.hail << "/" << s.shail << "/" << s.size << "/" << s.top;
        }
        out << (s.name[0] != '\0' ? " " : "") << s.name << ";";
    }
    void text(const NIDS_text_data& t) { out << "'" << t.data << "'"; }
};

std::string walk(const Bytes& bytes) {
    MESS_set(0, 0);
    NIDS_info info;
    Symbols symbols;
    NIDS_take_symbols(1);
    nids_walk(nids_memory(bytes).get(), info, symbols);
    NIDS_take_symbols(0);
    return symbols.out.str();
}

std::string walk_packets(const Bytes& packets, int code = 58) {
    NidsSample s;
    s.code = code;
    s.layers = {packets};
    return walk(nids_message(s));
}

Bytes sample(const std::string& wanted) {
    for (const auto& [name, bytes] : nids_samples()) {
        if (name == wanted) {
            return bytes;
        }
    }
    return {};
}

} // namespace

TEST(NidsSymbols, EveryPacket) {
    const Bytes end = nids_symbol_packet(12, {4, 8}); // the packet before ended where it should
    struct Row {
        Bytes packets;
        const char* text;
    };
    const Row rows[] = {
        {nids_name_packet(2,                 {-8, 6},                                        "\" "), "cell -2,1.5;"},
        {nids_name_packet(2,                    {4, 4},                                                                  "$"), "past 1,1;"},
        {nids_symbol_packet(2,         {4, 4}),"cell 1,1;"},
        {nids_name_packet(15,                                  {4, 4},                                                             "A7"), "name 1,1 A7;"},
        {nids_symbol_packet(15,                       {4, 4, 0x4137, 8, 8, 0x4239}),                                                                                    "name 1,1 A7;name 2,2 B9;"},
        {nids_symbol_packet(3,{4, 4, 12, 8, 8, 8}),"meso 1,1 r3;meso 2,2 r2;"},
        {nids_symbol_packet(11,                                  {4, 4, 12}),                                                            "shear 1,1 r3;"},
        {nids_symbol_packet(12,        {4, 4, 8, 8}),"tvs 1,1;tvs 2,2;"},
        {nids_symbol_packet(26,                    {4, 4}),                                                                 "etvs 1,1;"},
        {nids_symbol_packet(13,              {4, 4}),                "hail 1,1 100/100/0/0;"},
        {nids_symbol_packet(14,                                  {4, 4}),                                                            "hail 1,1 100/50/0/0;"},
        {nids_symbol_packet(19,                {4, 4, 90, 70, 2}),                                                                                            "hail 1,1 90/70/2/0;"},
        {nids_symbol_packet(20,        {4, 4, 2, 8, 4, 4, 4, 0}),"meso 1,1 r2;tvs 1,1;"},
        {nids_symbol_packet(20,              {4, 4, 6, 0, 4, 4, 9, 8, 4, 4, 11, 8}),
         "etvs 1,1;low 1,1 r2;weak 1,1 r2;"},
        {nids_symbol_packet(20,                                  {4, 4, 0, 0, 4, 4, 12, 0}),                                                            "cell 1,1;cell 1,1;"},
        {nids_symbol_packet(25,            {4, 4, 80}),"circle 1,1 r20;"},
        {nids_track_packet(23, '!',{{0, 0}, {4, 4}, {8, 4}}),
         "past 1,1;past 2,1;past- 0,0-1,1;past- 1,1-2,1;"},
        {nids_track_packet(24,              '#',                            {{0, 0}, {4, 4}}), "fcst 1,1;fcst- 0,0-1,1;"},
        {nids_words({24, 10, 25, 6, 4, 4, 40}),                                  "circle 1,1 r10;"                                                           },
        {nids_words({28, 0, 0, 6, 12, 4, 1}), ""                                              },
        {nids_words({29, 0, 0, 0}),""},
 // Lengths that are no multiple of a record, none, or longer inside than outside.
        {nids_words({12, 6, 4, 4, 9}),              "tvs 1,1;"                                     },
        {nids_words({19, 4, 1, 2}),                                  ""                                                            },
        {nids_words({23, 0}),         ""                                  },
        {nids_words({23, 6, 2, 99, 4}),               ""                                            },
        {nids_words({23, 8, 12, 999, 4, 4}),         "tvs 1,1;"                                                      },
        {nids_words({23, 12, 77, 2, 5, 12, 4, 0}),""},
        {nids_words({23, 2, 6}),                                ""                               },
    };
    for (const Row& row : rows) {
        EXPECT_EQ(walk_packets(nids_join({row.packets, end})), std::string(row.text) + "tvs 1,2;")
            << "packet " << row.packets[1];
    }
    // A length beyond the product ends with it.
    EXPECT_EQ(walk_packets(nids_words({28, 0, -1, -1, 12, 4, 1, 1})), "");
    EXPECT_EQ(walk_packets(nids_words({12, 8, 4, 4, 8})), "tvs 1,1;");
    EXPECT_EQ(walk_packets(nids_words({99, 4, 1, 1})), "<99>");
}

TEST(NidsSymbols, TrendsOfTheNewestVolume) {
    const auto trends = [](const Bytes& bytes) { // after what the walk met before them
        const std::string text = walk(bytes);
        return text.substr(text.find('>') + 1);
    };
    EXPECT_EQ(trends(sample("trends")),
              "cell -30.5,50.75 60/30/0/31.8 R7;cell 37.5,25 100/70/0/25.4 S2;");
    // Lists longer than the packet, of no volume, and a place of the newest that is none.
    NidsSample s;
    s.code = 62;
    s.trends = nids_words(
        {21, 18, 0x4141, 8, 8, 1, 0x0009, 4, 0x02FF, 40, 50, 21, 10, 0x4242, 16, 16, 5, 0x0901});
    EXPECT_EQ(trends(nids_message(s)), "cell 1,1 50/0/0/0 AA;cell 2,2 BB;");
    s.code = 61; // other products have none
    EXPECT_EQ(walk(nids_message(s)).find("AA"), std::string::npos);
}

namespace {

class NidsCells : public RadarPlot {
protected:
    NidsCells() : RadarPlot(nids_samples()) {}
};

// What is drawn of the storms: the texts, and how many markers and lines.
std::string storm_layer(const std::string& page) {
    const std::size_t from = std::min(page.find("%%Message: NIDS Extra"), page.size());
    std::istringstream in(page.substr(from, page.find("%%Message: Labels") - from));
    std::string texts;
    int marks = 0;
    int lines = 0;
    for (std::string line; std::getline(in, line);) {
        marks += line.starts_with("%%PM:") ? 1 : 0;
        lines += line.starts_with("%%PL:") ? 1 : 0;
        std::istringstream words(line.starts_with("%%TE:") ? line.substr(5) : "");
        std::string x;
        std::string y;
        std::string text;
        if (words >> x >> y && std::getline(words >> std::ws, text)) {
            texts += text + " ";
        }
    }
    return texts + std::to_string(marks) + "m" + std::to_string(lines) + "l";
}

} // namespace

TEST_F(NidsCells, TakeThePlaceOfTheTables) {
    NidsSample s; // two vortices of a storm that is elsewhere, and one of another
    s.code = 61;
    s.layers = {nids_join({nids_symbol_packet(12, {-90, -4}), nids_name_packet(15, {-44, 36}, "D0"),
                           nids_symbol_packet(12, {-80, 8}), nids_name_packet(15, {-44, 36}, "D0"),
                           nids_symbol_packet(12, {99, 8}), nids_name_packet(15, {99, 8}, "E7")})};
    write("vortices", nids_message(s));
    struct Row {
        const char* args;
        const char* layer;
    };
    const Row rows[] = {
  // The table alone, as without the word.
        {"./cells",                            "K3 P1 2m11l"             },
        {"./cells -pp storms,nostorms",        "K3 P1 2m11l"             },
        {"./cells -pp exact",                  "K3 2\" P1 86 11m7l"      },
        {"./cells -pp exact,nostorms",         "K3 P1 2m11l"             },
        {"./tracks -pp STORMS",                "2m0l"                    },
        {"./cells -pp storms",                 "K3 2\" P1 86 11m7l"      },
        {"./cells -pp storms -va comp,track",  "K3 2\" P1 86 11m7l"      },
        {"./cells -pp storms -va id",          "K3 P1 K3 2\" P1 86 11m7l"},
        {"./cells -pp storms,numplt=1",        "K3 5m3l"                 },
        {"./cells -pp storms,strong,numplt=1", "K3 2\" P1 86 11m7l"      },
        {"./cells -pp storms,strong",          "2\" P1 86 6m4l"          },
        {"./cells -pp storms -dr sum",         "0m0l"                    },
        {"./trends -pp storms",                "R7 32 S2 25 2m0l"        },
        {"./radial -pp storms",                "0m0l"                    },
        {"./vortices -pp storms",              "D0 E7 5m0l"              },
    };
    for (const Row& row : rows) {
        const NidsPage page = nids_page(dir, std::string("-me error ") + row.args);
        EXPECT_EQ(page.run.code, 0) << row.args << page.run.err;
        EXPECT_EQ(storm_layer(page.text), row.layer) << row.args;
    }
    EXPECT_EQ(count_text(nids_page(dir, "-me warn -pp storms ./cells").run.err, "Unknown word"), 0);
    expect_golden(nids_page(dir, "./cells -dr data -sc 1.5 "
                                 "-pp nobar,site,storms -pd merc,35.3,-97.3,41,31,.05,.05"),
                  "nids_cells");
}

// --- Real products ------------------------------------------------------------

namespace {

struct Place {
    float x, y; // km
};

// Storms by their symbols and by the pages. A name is that of the mark before it
// and, where it stands apart, of a storm in another place, which the page does not say.
struct Storms : NidsSink {
    NidsTable table = NidsTable::list;
    bool on_page = false;
    NIDS_symbol mark;
    std::multimap<std::string, Place> symbols, tables;
    NidsColumns columns{};
    std::vector<int> unknown;

    void packet(int code) {
        const bool known = NIDS_is_symbol(code) != 0 || code == 8 || code == 1 || code == 0xFFFF;
        if (!known) {
            unknown.push_back(code);
        }
    }
    void symbol(const NIDS_symbol& s) {
        if (s.kind < NidsSymbol::name) {
            mark = s;
        }
        if (s.kind == NidsSymbol::name || s.name[0] != '\0') {
            symbols.insert({
                s.name, {mark.x, mark.y}
            });
        }
    }
    void take_columns() {
        for (const NIDS_report& storm : columns) {
            if (nids_has_place(storm)) {
                const float km = storm.rad * 1.852F;
                const float angle = storm.ang / 57.29578F;
                tables.insert({
                    storm.id, {km * std::sin(angle), km * std::cos(angle)}
                });
            }
        }
        columns = {};
    }
    void page(int /*number*/) {
        on_page = true;
        take_columns();
    }
    void text(const NIDS_text_data& t) {
        if (on_page) {
            nids_column_line(table, t.data, &columns);
        }
    }
};

} // namespace

TEST(NidsSymbolsReal, StormsStandWhereTheTablesSay) {
    if (!std::filesystem::exists(real_data)) {
        GTEST_SKIP() << "no real products";
    }
    MESS_set(0, 0);
    NIDS_take_symbols(1);
    int named = 0;
    int products = 0;
    for (const auto& entry : std::filesystem::directory_iterator(real_data + std::string("nids"))) {
        const NidsFile file(std::fopen(entry.path().c_str(), "rb"), std::fclose);
        NIDS_info info;
        if (file == nullptr || NIDS_get_header(file.get(), &info) != 1 ||
            info.src > nids_max_site) {
            continue;
        }
        Storms storms;
        storms.table = nids_product(info.code).table;
        if (storms.table == NidsTable::list && info.code != 62) {
            continue;
        }
        ++products;
        nids_walk(file.get(), info, storms);
        storms.take_columns();
        EXPECT_TRUE(info.code == 62 || nids_header().pr_desc.off_symb == 0 ||
                    storms.unknown.empty())
            << entry.path() << " ends at " << storms.unknown.back();
        for (const auto& [name, place] : storms.symbols) {
            // Circulations are named by numbers of their own, which the table has, too.
            const auto [from, to] = storms.tables.equal_range(name);
            float nearest = from == to ? 0.0F : 1e9F;
            for (auto at = from; at != to; ++at) {
                nearest =
                    std::min(nearest, std::hypot(at->second.x - place.x, at->second.y - place.y));
            }
            named += from == to ? 0 : 1;
            // Half a degree and half a nautical mile.
            const float slack = 1.2F + 0.0088F * std::hypot(place.x, place.y);
            EXPECT_LE(nearest, slack) << entry.path() << " " << name;
        }
    }
    NIDS_take_symbols(0);
    EXPECT_GT(products, 25);
    EXPECT_GT(named, 150);
}
