// The Level II reader on small written volumes.
#include "lev2_walk.h"
#include "lev2_writer.h"

#include "lev2_cuts.h"
#include "maptran.h"
#include "run_program.h"
#include "zyrresrc.h"

#include <cmath>
#include <limits>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

// The radials of a volume with the values of their moments, as text.
std::string dump(const char* name, LEV2_info* info = nullptr) {
    LEV2_info own;
    std::ostringstream out;
    lev2_walk(name, info != nullptr ? *info : own, [&out](const LEV2_data& d) {
        if (d.type != lev2_radial_fixed && d.type != lev2_radial_generic) {
            return;
        }
        out << d.elev_num << '/' << d.rad_num << ' ' << d.rad_az << ' ' << d.elev_ang;
        for (int type = 0; type < lev2_moments; ++type) {
            const bool there = LEV2_set_data_type(type) == 1;
            if (type > lev2_spect && !there) {
                continue; // of two polarizations: radials of old have none
            }
            out << (type > lev2_spect ? " " + std::to_string(type) + ":" : there ? " |" : " -");
            for (int i = 0; i < LEV2_get_gates().count; ++i) {
                out << ' ' << LEV2_get_data();
            }
        }
        out << '\n';
    });
    return out.str();
}
std::string dump(const Bytes& bytes, LEV2_info* info = nullptr) {
    const MemoryFile file(bytes);
    return dump(file.name(), info);
}

// The walk of one radial after a volume header; `data` takes its record.
std::string dump_one(const Lev2Radial& radial, LEV2_data& data) {
    Lev2Volume volume;
    volume.units = {lev2_radial(radial)};
    const MemoryFile file(lev2_volume(volume, false));
    LEV2_info info;
    lev2_walk(file.name(), info, [&data](const LEV2_data& d) { data = d; });
    return dump(file.name());
}

// What is told in one or several walks, without the name of the file.
std::string warnings(const Bytes& bytes, int compress, int walks) {
    const MemoryFile file(bytes);
    LEV2_open_file("/dev/null"); // what was told of a file of this name is forgotten
    MESS_set(0, mess_warn | mess_error);
    LEV2_set_compress(compress);
    testing::internal::CaptureStderr();
    for (int i = 0; i < walks; ++i) {
        dump(file.name());
    }
    std::string text = testing::internal::GetCapturedStderr();
    for (std::size_t at = text.find(file.name()); at != std::string::npos;
         at = text.find(file.name())) {
        text.erase(at, std::string(file.name()).size());
    }
    MESS_set(0, 0);
    return text;
}

void put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }
}

class Lev2 : public testing::Test {
protected:
    void SetUp() override {
        MESS_set(0, 0);
        RES_put("file_path", ZYR_SOURCE_DIR "/etc");
    }
};

} // namespace

TEST_F(Lev2, SameRadialsInEveryPacking) {
    for (const int type : {1, 31}) {
        const Lev2Volume volume = lev2_sample(type);
        const Bytes plain = lev2_volume(volume, false);
        const Bytes packed = lev2_volume(volume, true);
        const std::string text = dump(plain);
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 36);
        const std::string az = type == 31 ? "0.25 1.5" : "0.252686 1.49963";
        EXPECT_NE(text.find("2/1 " + az +
                            " | -100 -90 4 6.5 9 11.5 14 16.5 19 21.5 24 26.5 29 31.5 34 36.5 39 "
                            "41.5 44 46.5 | -100 -90 -27.5"),
                  std::string::npos)
            << text;
        const Bytes front(plain.begin(), plain.begin() + 5000);
        const Bytes rest(plain.begin() + 5000, plain.end());
        for (const Bytes& bytes : {packed, lev2_gzip(plain), lev2_gzip(packed),
                                   nids_join({lev2_gzip(front), lev2_gzip(rest)}), plain}) {
            EXPECT_EQ(dump(bytes), text);
        }
        const std::string scan = text.substr(text.find("2/1"), text.find("3/1") - text.find("2/1"));
        EXPECT_EQ(dump(lev2_unit(volume.units[2])), scan);
    }
}

TEST_F(Lev2, GenericRadialsHaveTwoWidths) {
    for (const bool half : {false, true}) {
        Lev2Radial radial;
        radial.type = 31;
        radial.half_degree = half;
        LEV2_data d;
        dump_one(radial, d);
        EXPECT_EQ(d.az_space, half ? 0.5F : 1.0F);
    }
}

TEST_F(Lev2, FixedRadial) {
    Lev2Radial radial;
    radial.type = 1;
    radial.az = 359.9945F; // the last code
    radial.moments = {
        {"VEL", -375, 250, 8, 0, 0, {0, 1, 2, 129, 255}},
        {"SW ", -375, 250, 8, 0, 0, {129, 131}         }
    };
    LEV2_data d;
    EXPECT_EQ(dump_one(radial, d),
              "1/1 359.995 0.499878 - | -100 -90 -63.5 0 63 | 0 1 -100 -100 -100\n");
    radial.vel_res = 4;
    EXPECT_NE(dump_one(radial, d).find("| -100 -90 -127 0 126"), std::string::npos);
    EXPECT_EQ(d.first_vel, 0.0F); // whole kilometres
    const MemoryFile file(lev2_volume({.units = {lev2_radial(radial)}}, false));
    LEV2_info info;
    lev2_walk(file.name(), info, [](const LEV2_data& /*data*/) {
        LEV2_set_data_type(lev2_vel);
        EXPECT_EQ(LEV2_get_gates().centre_km, -0.375F);
        EXPECT_EQ(LEV2_get_gates().first_km, 0.0F);
    });
    EXPECT_EQ(d.vel_size, 0.25F);
    EXPECT_EQ(d.nyquist_vel, 26.0F);
    EXPECT_TRUE(d.num_vel == 5 && d.num_refl == 0 && d.cov_patt == 12 && d.refl_ptr == 0);
}

// What decides whether a moment of a generic radial is there, and its values.
TEST_F(Lev2, MomentBlocks) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const Lev2Moment refl = {
        "REF", 2125, 250, 8, 2, 66, {0, 1, 2, 66}
    };
    const Lev2Moment zdr = {
        "ZDR", 0, 250, 8, 16, 128, {0, 9}
    };
    const Lev2Moment unnamed = {"", 0, 250, 8, 2, 129, {129}};
    const struct {
        const char* note;
        std::vector<Lev2Moment> moments;
        const char* values;
    } rows[] = {
        {"others in place of the Doppler moments",
         {refl, zdr, zdr},
         "| -100 -90 -32 0 - - 3: -100 -7.4375"                                                                                    },
        {"by name, in any place",
         {zdr, zdr, zdr, {"VEL", 0, 250, 8, 1, 0, {5}}, refl},
         "| -100 -90 -32 0 | 5 - 3: -100 -7.4375"                                                                                  },
        {"two polarizations, each by its own scale",
         {{"CFP", 0, 250, 8, 1, 8, {0, 1, 7, 8, 30}},
          {"PHI", 0, 250, 16, 2.5F, 2, {0, 1, 2, 902}},
          {"RHO", 0, 250, 8, 300, -60.5F, {2, 239}},
          {"ZDR", 0, 250, 16, 32, 418, {1, 386, 450}}},
         "- - - 3: -90 -1 1 4: -100 -90 0 360 5: 0.208333 0.998333 6: -100 -100 -100 0 22"                                         },
        {"without a name by place",                  {refl, unnamed, unnamed},                          "| -100 -90 -32 0 | 0 | 0" },
        {"a name before a place",                    {unnamed, unnamed, {"REF", 0, 250, 8, 1, 0, {7}}}, "| 7 | 0 -"                },
        {"no gates",                                 {{"REF", 0, 250, 8, 2, 66, {}}},                   "- - -"                    },
        {"scale 0",                                  {{"REF", 0, 250, 8, 0, 66, {5}}},                  "- - -"                    },
        {"scale no number",                          {{"REF", 0, 250, 8, nan, 66, {5}}},                "- - -"                    },
        {"offset no number",                         {{"REF", 0, 250, 8, 2, nan, {5}}},                 "- - -"                    },
        {"value overflows",                          {{"REF", 0, 250, 8, 1e-38F, 0, {5}}},              "- - -"                    },
        {"words",                                    {{"REF", 0, 250, 16, 2, 66, {0, 1, 256, 65535}}},  "| -100 -90 95 32734.5 - -"},
        {"width has its own scale",                  {{"SW ", 0, 250, 8, 7, 7, {131}}},                 "- - | 1"                  },
        {"but not in words",                         {{"SW ", 0, 250, 16, 7, 7, {21}}},                 "- - | 2"                  },
    };
    for (const auto& row : rows) {
        Lev2Radial radial;
        radial.moments = row.moments;
        LEV2_data d;
        EXPECT_EQ(dump_one(radial, d), std::string("1/1 0 0.5 ") + row.values + "\n") << row.note;
        EXPECT_EQ(d.num_refl == missing, d.refl_ptr == 0) << row.note;
    }
    LEV2_set_exact(1);
    Lev2Radial radial;
    radial.moments = {
        {"SW ", 0, 250, 8, 7, 7, {131, 14}}
    };
    LEV2_data d;
    EXPECT_EQ(dump_one(radial, d), "1/1 0 0.5 - - | 17.7143 1\n");
    LEV2_set_exact(0);
}

// Offsets, counts and numbers that do not fit their record leave the next one alone.
TEST_F(Lev2, DamagedRecords) {
    Lev2Radial radial;
    radial.moments = {
        {"REF", 0, 250, 8, 2, 66, {66, 68}}
    };
    const Bytes record = lev2_radial(radial);
    const std::size_t pointer = lev2_pointers_at + 12;
    const std::size_t block = lev2_data_at + record[pointer + 3];
    const auto last = static_cast<std::uint32_t>(record.size() - lev2_data_at);
    const auto with = [&](std::size_t at, std::uint32_t value) {
        Bytes damaged = record;
        put32(damaged, at, value);
        const std::string text = dump(nids_join({lev2_header({}), damaged, record}));
        EXPECT_TRUE(text.ends_with("\n1/1 0 0.5 | 0 1 - -\n")) << text;
        return text.substr(4, text.find('\n') - 4);
    };
    EXPECT_EQ(with(pointer, 0), "0 0.5 - - -");
    EXPECT_EQ(with(pointer, 0xFFFFFFF0), "0 0.5 - - -");
    EXPECT_EQ(with(pointer, last - 27), "0 0.5 - - -");
    EXPECT_EQ(with(block + 8, 0xFFFF0000), "0 0.5 | 0 1 - -");   // too many gates
    EXPECT_EQ(with(lev2_data_at + 12, 0x7FC00000), "0 0 - - -"); // azimuth, no number
    EXPECT_EQ(with(lev2_data_at + 12, 0x7F000000), "0 0 - - -"); // and too large a one
    Bytes no_size = record;
    put32(no_size, lev2_size_at, lev2_radial_generic);
    dump(nids_join({lev2_header({}), no_size, record})); // comes to an end
}

// Cut anywhere, a volume gives its whole radials.
TEST_F(Lev2, CutVolumes) {
    for (const int type : {1, 31}) {
        const Lev2Volume volume = lev2_sample(type, 2);
        const Bytes plain = lev2_volume(volume, false);
        const std::string all = dump(plain);
        std::size_t held = 0;
        for (std::size_t size = 0; size <= plain.size(); size += type == 1 ? 97 : 29) {
            const std::string text = dump(Bytes(plain.begin(), plain.begin() + size));
            EXPECT_TRUE(all.starts_with(text) && text.size() >= held) << size;
            held = text.size();
        }
        const Bytes packed = lev2_gzip(lev2_volume(volume, true));
        for (std::size_t size = 0; size <= packed.size(); size += 3) {
            EXPECT_TRUE(all.starts_with(dump(Bytes(packed.begin(), packed.begin() + size))));
        }
    }
}

TEST_F(Lev2, Units) {
    const Lev2Volume volume = lev2_sample(31, 2);
    const Bytes header = lev2_header(volume);
    const Bytes first = lev2_unit(volume.units[1]);
    const Bytes second = lev2_unit(volume.units[2], true);
    const std::string both = dump(nids_join({header, first, second}));
    const std::string one = dump(nids_join({header, first}));
    const auto with_length = [&](std::uint32_t length, std::size_t more) {
        Bytes unit = first;
        put32(unit, 0, length);
        unit.resize(unit.size() + more);
        return dump(nids_join({header, unit, second}));
    };
    const auto size = static_cast<std::uint32_t>(first.size() - 4);
    EXPECT_GT(both.size(), one.size());
    EXPECT_EQ(with_length(size + 1000, 1000), both); // bytes after the stream
    EXPECT_EQ(with_length(0 - size, 0), both);
    EXPECT_EQ(with_length(0, 0), "");
    EXPECT_EQ(with_length(size - 20, 0), ""); // the block is not whole
    for (const std::uint32_t length : {0x7FFFFFFFU, 0x80000000U, 0x80000001U}) {
        EXPECT_EQ(with_length(length, 0), one);
    }
    Bytes broken = nids_join({header, first, second});
    broken[header.size() + first.size() + 10] ^= 0xFF; // the mark of a block
    EXPECT_EQ(dump(broken), one);
}

// Units that unpack to ever more nothing end at a limit.
TEST_F(Lev2, Bomb) {
    const Bytes unit = lev2_unit(Bytes(45000000));
    Bytes bytes = lev2_header(Lev2Volume{});
    for (int i = 0; i < 8; ++i) {
        bytes.insert(bytes.end(), unit.begin(), unit.end());
    }
    EXPECT_EQ(warnings(bytes, 1, 1), "LEV2_get_block: The volume is too long:\n");
}

TEST_F(Lev2, Header) {
    const Lev2Volume sample = lev2_sample(31, 1);
    LEV2_info info;
    dump(lev2_volume(sample, false), &info);
    EXPECT_STREQ(info.id, "TLX");
    EXPECT_NEAR(info.lat, 35.3334, 1e-4);
    EXPECT_EQ(info.date.year * 10000 + info.date.month * 100 + info.date.day, 20190520);
    EXPECT_EQ(info.date.hour * 10000 + info.date.min * 100 + info.date.sec, 223124);
    dump(lev2_unit(sample.units[2]), &info);
    EXPECT_STREQ(info.id, "TLX");
    EXPECT_TRUE(info.date.day == 20 && info.date.hour == 22);
}

TEST_F(Lev2, Warnings) {
    const auto volume = [](const char* site, float lat, float lon, const char* id) {
        Lev2Radial radial;
        radial.lat = lat;
        radial.lon = lon;
        radial.id = id;
        Lev2Volume made;
        made.site = site;
        made.units = {nids_join({lev2_other(15), lev2_radial(radial)})};
        return made;
    };
    const Lev2Volume known = volume("KTLX", 1, 2, "KTLX");
    const Bytes plain = lev2_volume(known, false);
    const Bytes packed = lev2_volume(known, true);
    const std::string unknown = "LEV2_get_header: Unknown site:";
    const std::string none = ", plotted at 38.98,-77.48\n";
    const auto told = [](const Bytes& bytes, int compress) {
        return warnings(bytes, compress, 2); // once
    };
    EXPECT_EQ(told(plain, 0) + told(lev2_gzip(plain), 0) + told(packed, 1), "");
    EXPECT_EQ(told(plain, 1), "LEV2_get_header: An uncompressed file, read as \"lev2\":\n");
    EXPECT_EQ(told(packed, 0), "LEV2_get_header: A compressed file, read as \"lev2z\":\n");
    EXPECT_EQ(told(lev2_unit(known.units[0]), 1),
              "LEV2_get_header: No volume header, read as a piece of a volume:\n");
    for (const float unit : {1.0F, 1000.0F}) { // terminal radars give thousandths
        EXPECT_EQ(told(lev2_volume(volume("KQQQ", 35.5F * unit, -97.25F * unit, "KQQQ"), false), 0),
                  unknown + "\"QQQ\" (the volume says 35.500,-97.250)" + none);
    }
    EXPECT_EQ(told(lev2_volume(volume("", 1, 2, "KTLX"), false), 0), "");
    EXPECT_EQ(told(lev2_header(volume("KQQQ", 0, 0, "")), 0), unknown + "\"QQQ\"" + none);
    EXPECT_EQ(told(Bytes(plain.begin(), plain.end() - 1), 0),
              "LEV2_get_block: The volume ends inside a radial:\n");
    EXPECT_EQ(told(Bytes(packed.begin(), packed.end() - 1), 1),
              "LEV2_get_block: The volume is damaged or not whole:\n");
    for (const Bytes& file : {plain, packed}) { // the end of a transmission
        EXPECT_EQ(told(nids_join({
                           file, {0x0D, 0x0D, 0x0A, 0x03}
        }),
                       file == packed),
                  "");
    }
}

// A volume that names no site has that of its file's name, or the user's.
TEST_F(Lev2, SiteByNameOrIdentifier) {
    Lev2Radial radial;
    radial.id = "";
    Lev2Volume made;
    made.site = "";
    made.units = {lev2_radial(radial)};
    const Bytes bytes = lev2_volume(made, false);
    const TempDir dir;
    const struct {
        const char *name, *identifier, *site;
    } rows[] = {
        {"KTLX19990503_235621", "",     "TLX"},
        {"Level2_KFTG_2015.ar", "",     "FTG"},
        {"x.KTLXA.KTL.ktlx",    "",     ""   },
        {"KQQQ1999_KTLX",       "",     "TLX"}, // one that there is
        {"KFTG1999",            "KTLX", "TLX"},
        {"KFTG1999",            "INX",  "INX"},
        {"KFTG1999",            "QQQ",  "FTG"},
        {"x.ar",                "QQQ",  ""   },
    };
    for (const auto& row : rows) {
        RES_put("identifier", row.identifier);
        const std::string name = dir.write(row.name, {bytes.begin(), bytes.end()});
        LEV2_open_file("/dev/null");
        LEV2_set_compress(0);
        MESS_set(0, mess_warn);
        testing::internal::CaptureStderr();
        ASSERT_EQ(lev2_open_volume(name.c_str()), 1);
        LEV2_info info;
        LEV2_get_header(&info);
        LEV2_close_file();
        MESS_set(0, 0);
        EXPECT_STREQ(info.id, row.site) << row.name;
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  *row.site != '\0'
                      ? ""
                      : std::string("LEV2_get_header: Unknown site:\"") + row.identifier +
                            "\" (the volume says 35.333,-97.278), "
                            "plotted at 38.98,-77.48\n"
                            "LEV2_get_header: A site in the file's name (KTLX...) is taken, or -id "
                            "KTLX\n")
            << row.name;
    }
}

// A walk for one scan leaves the rest of the volume unread where nothing of the scan
// can be there.
TEST_F(Lev2, TheRestOfAVolumeIsLeft) {
    // A unit for each number of a scan; the pattern's cuts, "h" one of half degrees.
    const auto sample = [](const std::string& scans, const std::string& pattern) {
        std::vector<int> numbers;
        std::vector<bool> half_degrees;
        for (const char c : scans) {
            numbers.push_back(c - '0');
        }
        for (const char c : pattern) {
            half_degrees.push_back(c == 'h');
        }
        return lev2_units(numbers, half_degrees);
    };
    enum Change { as_it_is, silent, joined, ended, longer, cut, zipped };
    const auto made = [&sample](const char* scans, const std::string& pattern, Change change) {
        Lev2Volume volume = sample(scans, pattern);
        if (change == silent) { // about its pattern
            volume.units[0] = lev2_other(2);
        } else if (change == joined) { // metadata and radials in one unit
            volume.units[0] = nids_join({volume.units[0], volume.units[1]});
            volume.units.erase(volume.units.begin() + 1);
        }
        Bytes bytes = lev2_volume(volume, true);
        if (change == ended) { // by the mark of a transmission
            bytes.insert(bytes.end(), {0x0D, 0x0D, 0x0A, 0x03});
        } else if (change == longer || change == cut) {
            bytes.resize(bytes.size() + (change == longer ? 3 : -9));
        }
        return change == zipped ? lev2_gzip(bytes) : bytes;
    };
    const std::string beyond(60, 'o'); // the record's end
    const std::string many(65, 'o');
    const struct {
        const char *scans, *pattern;
        Change change;
        int scan, units; // of 120 radials that are walked
    } rows[] = {
        {"111222333",  "ooo",          as_it_is, 1, 3 },
        {"111222333",  "ooo",          as_it_is, 2, 6 },
        {"111222333",  "ooo",          as_it_is, 3, 9 },
        {"111222333",  "ooo",          as_it_is, 4, 9 },
        {"111222333",  "ooo",          as_it_is, 0, 9 },
        {"111222333",  "oooooo",       as_it_is, 1, 3 }, // scans are still to come
        {"111111222",  "ho",           as_it_is, 1, 6 },
        {"111222333",  "ooo",          ended,    1, 3 },
        {"111222111",  "ooo",          as_it_is, 1, 9 }, // a scan comes again
        {"1112221113", "ooo",          as_it_is, 1, 10},
        {"111111",     "ooo",          as_it_is, 1, 6 },
        {"11222333",   "ooo",          as_it_is, 1, 8 }, // or is short
        {"1112233",    "ooo",          as_it_is, 1, 7 },
        {"111222333",  "oo",           as_it_is, 1, 9 },
        {"111222333",  beyond.c_str(), as_it_is, 1, 9 },
        {"111222333",  many.c_str(),   as_it_is, 1, 9 },
        {"111222333",  "ooo",          silent,   1, 9 },
        {"111222333",  "ooo",          joined,   1, 9 },
        {"111222333",  "ooo",          longer,   1, 9 },
        {"111222333",  "ooo",          cut,      1, 9 },
        {"111222333",  "ooo",          zipped,   1, 9 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.scans) + " " + row.pattern + " " + std::to_string(row.change));
        const MemoryFile file(made(row.scans, row.pattern, row.change));
        std::array<int, 5> all{};
        LEV2_info info;
        lev2_walk(file.name(), info, [&all](const LEV2_data& d) {
            ++all[d.type == lev2_radial_generic ? d.elev_num : 4];
        });
        ASSERT_EQ(LEV2_open_file(file.name()), 1);
        for (int round = 0; round < 2; ++round) { // the second one after going back
            LEV2_get_header(&info);
            LEV2_data d;
            int wanted = 0;
            int walked = 0;
            while (LEV2_is_scan_done(row.scan) == 0 && LEV2_get_block(&d) == 1) {
                EXPECT_EQ(LEV2_is_scan_done(row.scan), 0) << "a radial is at hand";
                walked += d.type == lev2_radial_generic ? 1 : 0;
                wanted += d.type == lev2_radial_generic && d.elev_num == row.scan ? 1 : 0;
                LEV2_next_block();
            }
            EXPECT_EQ(walked, row.units * 120);
            EXPECT_EQ(wanted, row.scan > 0 && row.scan < 4 ? all[row.scan] : 0);
        }
        LEV2_close_file();
    }
}

TEST_F(Lev2, WhyThePictureIsEmpty) {
    const MemoryFile file(lev2_volume(lev2_sample(31), true));
    dump(file.name());
    ASSERT_EQ(LEV2_get_cuts().size(), 3U);
    EXPECT_EQ(lev2_cut_text(LEV2_get_cuts()[1]),
              "Scan 2: El=1.5 12 radials: reflectivity, velocity, spectrum width");
    Lev2Cuts cuts;
    EXPECT_EQ(lev2_empty_text(cuts, 1, 0), "The file holds no radials");
    LEV2_data d;
    for (const int num : {1, 2, 3, 7, 4, 2, 0, 255}) {
        d.elev_num = num;
        d.refl_ptr = 68;
        d.vel_ptr = num % 2 == 0 && num != 0 ? 90 : 0;
        lev2_count_radial(cuts, d);
    }
    EXPECT_EQ(lev2_empty_text(cuts, 2, 1), "");
    EXPECT_EQ(lev2_empty_text(cuts, 9, 1), "There is no scan 9, the volume has 0-4,7,255");
    EXPECT_EQ(lev2_empty_text(cuts, 1, 1),
              "Scan 1 (El=0.0) has no velocity, scans that have it: 2,4");
    Lev2Cuts tilted; // an antenna that is still moving: the mean counts
    for (const float angle : {0.5F, 0.9F, 1.0F}) {
        d.elev_ang = angle;
        lev2_count_radial(tilted, d);
    }
    EXPECT_EQ(lev2_cut_text(tilted.row[0]).substr(0, 18), "Scan 255: El=0.8 3");
    EXPECT_EQ(lev2_empty_text(cuts, 1, 2), "Scan 1 (El=0.0) has no spectrum width, nor has any "
                                           "other");
    for (d.elev_num = 0; d.elev_num < 300; ++d.elev_num) {
        lev2_count_radial(cuts, d);
    }
    EXPECT_EQ(cuts.count, static_cast<std::size_t>(lev2_max_cuts));
}

// Its length unit is told by the places of gates on a page.
TEST_F(Lev2, Domain) {
    Domain domain;
    MAP_proj(proj_lambert);
    LEV2_get_domain(35.3F, -97.3F, 230, &domain);
    EXPECT_EQ(MAP_get_proj(), proj_lambert);
    EXPECT_TRUE(domain.proj == proj_pstereo && domain.nx == 691 && domain.ny == 461);
    LEV2_get_domain(35.3F, -97.3F, -5, &domain);
    EXPECT_TRUE(domain.nx == 4 && domain.ny == 3);
}
