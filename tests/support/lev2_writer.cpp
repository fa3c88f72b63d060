#include "lev2_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

#include <zlib.h>

namespace {

constexpr std::size_t prefix_size = 12;
constexpr std::size_t fixed_record_size = 2432;
constexpr int fixed_gates_at = 100; // of the first moment, from the data header
constexpr std::array<const char*, 3> fixed_moments = {"REF", "VEL", "SW "};

void put(Bytes& out, const Bytes& part) {
    out.insert(out.end(), part.begin(), part.end());
}
void put_text(Bytes& out, std::string text, std::size_t size) {
    text.resize(size, '\0');
    out.insert(out.end(), text.begin(), text.end());
}
void put8(Bytes& out, int value) {
    out.push_back(static_cast<std::uint8_t>(value));
}
void put16(Bytes& out, int value) {
    put8(out, value >> 8);
    put8(out, value);
}
void put32(Bytes& out, std::uint32_t value) {
    put16(out, static_cast<int>(value >> 16));
    put16(out, static_cast<int>(value & 0xFFFF));
}
void put_float(Bytes& out, float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    put32(out, bits);
}

// Prefix and message header of a record.
Bytes record_head(int type, std::size_t message_size, int number, int days, int ms) {
    Bytes out(prefix_size);
    put16(out, static_cast<int>(message_size / 2));
    put8(out, 0); // channel
    put8(out, type);
    put16(out, number);
    put16(out, days);
    put32(out, static_cast<std::uint32_t>(ms));
    put16(out, 1); // segments
    put16(out, 1);
    return out;
}

int hundredths(float value) {
    return static_cast<int>(std::lround(value * 100));
}
int coded_angle(float degrees) {
    return static_cast<int>(std::lround(degrees / 360.0F * 65536.0F));
}

Bytes fixed_radial(const Lev2Radial& radial) {
    std::array<int, 3> at{}; // offset of each moment, 0: absent
    std::array<Lev2Moment, 3> moment;
    Bytes gates;
    for (std::size_t i = 0; i < fixed_moments.size(); ++i) {
        for (const Lev2Moment& found : radial.moments) {
            if (found.name == fixed_moments[i]) {
                moment[i] = found;
                at[i] = fixed_gates_at + static_cast<int>(gates.size());
                gates.insert(gates.end(), found.words.begin(), found.words.end());
            }
        }
    }
    const Lev2Moment& doppler = at[1] != 0 ? moment[1] : moment[2];
    Bytes out = record_head(1, fixed_record_size - prefix_size, radial.num, radial.days, radial.ms);
    put32(out, static_cast<std::uint32_t>(radial.ms));
    put(out,
        nids_words({radial.days, 4600, coded_angle(radial.az), radial.num, radial.status,
                    coded_angle(radial.elev), radial.elev_num, moment[0].first_m, doppler.first_m,
                    moment[0].gate_m, doppler.gate_m, static_cast<int>(moment[0].words.size()),
                    static_cast<int>(doppler.words.size()), 1}));
    put32(out, 0); // calibration
    put(out, nids_words({at[0], at[1], at[2], radial.vel_res, radial.vcp}));
    out.resize(out.size() + 16);
    put(out, nids_words({hundredths(radial.nyquist), 12, 35}));
    out.resize(lev2_data_at + fixed_gates_at);
    put(out, gates);
    out.resize(fixed_record_size);
    return out;
}

Bytes volume_block(const Lev2Radial& radial) {
    Bytes out;
    put_text(out, "RVOL", 4);
    put(out, nids_words({44, 0x0100}));
    put_float(out, radial.lat);
    put_float(out, radial.lon);
    put16(out, radial.height_m);
    out.resize(40);
    put16(out, radial.vcp);
    out.resize(44);
    return out;
}

Bytes elevation_block() {
    Bytes out;
    put_text(out, "RELV", 4);
    put(out, nids_words({12, 12, 0, 0})); // attenuation 0.012
    return out;
}

Bytes radial_block(const Lev2Radial& radial) {
    Bytes out;
    put_text(out, "RRAD", 4);
    put(out, nids_words({20, 4600, 0, 0, 0, 0, hundredths(radial.nyquist), 0}));
    return out;
}

Bytes moment_block(const Lev2Moment& moment) {
    Bytes out;
    put_text(out, moment.name.empty() ? "" : "D" + moment.name, 4);
    put32(out, 0);
    put(out, nids_words(
                 {static_cast<int>(moment.words.size()), moment.first_m, moment.gate_m, 100, 16}));
    put8(out, 0);
    put8(out, moment.word_size);
    put_float(out, moment.scale);
    put_float(out, moment.offset);
    for (const int word : moment.words) {
        moment.word_size == 16 ? put16(out, word) : put8(out, word);
    }
    return out;
}

Bytes generic_radial(const Lev2Radial& radial) {
    std::vector<Bytes> blocks = {volume_block(radial), elevation_block(), radial_block(radial)};
    for (const Lev2Moment& moment : radial.moments) {
        blocks.push_back(moment_block(moment));
    }
    constexpr std::size_t num_pointers = 10;
    const std::size_t first = lev2_pointers_at - lev2_data_at + 4 * num_pointers;
    Bytes pointers;
    Bytes body;
    for (std::size_t i = 0; i < num_pointers; ++i) {
        put32(pointers, i < blocks.size() ? static_cast<std::uint32_t>(first + body.size()) : 0);
        put(body, i < blocks.size() ? blocks[i] : Bytes());
    }
    Bytes data;
    put_text(data, radial.id, 4);
    put32(data, static_cast<std::uint32_t>(radial.ms));
    put16(data, radial.days);
    put16(data, radial.num);
    put_float(data, radial.az);
    put16(data, 0); // compression
    put16(data, static_cast<int>(first + body.size()));
    put(data,
        {static_cast<std::uint8_t>(radial.half_degree ? 1 : 2),
         static_cast<std::uint8_t>(radial.status), static_cast<std::uint8_t>(radial.elev_num), 1});
    put_float(data, radial.elev);
    put16(data, 0); // blanking, indexing
    put16(data, static_cast<int>(blocks.size()));
    put(data, pointers);
    put(data, body);
    data.resize((data.size() + 1) / 2 * 2);
    Bytes out = record_head(31, data.size() + 16, radial.num, radial.days, radial.ms);
    put(out, data);
    return out;
}

} // namespace

// --- Records ----------------------------------------------------------------

Bytes lev2_radial(const Lev2Radial& radial) {
    return radial.type == 31 ? generic_radial(radial) : fixed_radial(radial);
}

Bytes lev2_other(int type) {
    Bytes out = record_head(type, 32, 1, 18037, 0);
    out.resize(fixed_record_size);
    return out;
}

Bytes lev2_pattern(const std::vector<bool>& half_degrees) {
    constexpr std::size_t cut_size = 46;
    Bytes out = record_head(5, 22 + cut_size * half_degrees.size() + 16, 1, 18037, 0);
    put(out, nids_words({0, 2, 212, static_cast<int>(half_degrees.size()), 0, 0, 0, 0, 0, 0, 0}));
    for (const bool half : half_degrees) {
        Bytes cut(cut_size);
        cut[4] = half ? 1 : 0;
        put(out, cut);
    }
    out.resize(fixed_record_size);
    return out;
}

// --- Volumes ----------------------------------------------------------------

Bytes lev2_header(const Lev2Volume& volume) {
    Bytes out;
    put_text(out, volume.name, 12);
    put32(out, static_cast<std::uint32_t>(volume.days));
    put32(out, static_cast<std::uint32_t>(volume.ms));
    put_text(out, volume.site, 4);
    return out;
}

Bytes lev2_unit(const Bytes& records, bool negative) {
    const Bytes body = nids_bzip2(records);
    const auto size = static_cast<std::uint32_t>(body.size());
    Bytes out;
    put32(out, negative ? 0 - size : size);
    put(out, body);
    return out;
}

Bytes lev2_volume(const Lev2Volume& volume, bool packed) {
    Bytes out = lev2_header(volume);
    for (std::size_t i = 0; i < volume.units.size(); ++i) {
        put(out,
            packed ? lev2_unit(volume.units[i], i + 1 == volume.units.size()) : volume.units[i]);
    }
    return out;
}

Bytes lev2_gzip(const Bytes& data) {
    z_stream zs{};
    constexpr int gzip_window = 16 + MAX_WBITS;
    deflateInit2(&zs, Z_BEST_SPEED, Z_DEFLATED, gzip_window, 8, Z_DEFAULT_STRATEGY);
    Bytes out(deflateBound(&zs, data.size()));
    zs.next_in = const_cast<Bytef*>(data.data());
    zs.avail_in = static_cast<uInt>(data.size());
    zs.next_out = out.data();
    zs.avail_out = static_cast<uInt>(out.size());
    deflate(&zs, Z_FINISH);
    out.resize(zs.total_out);
    deflateEnd(&zs);
    return out;
}

// --- Samples ----------------------------------------------------------------

Lev2Volume lev2_sample(int type, int radials) {
    constexpr int gates = 20;
    constexpr int scans = 3;
    Lev2Volume volume;
    volume.name = type == 31 ? "AR2V0006.001" : "ARCHIVE2.001";
    volume.units.push_back(nids_join({lev2_other(15), lev2_other(2)}));
    for (int scan = 1; scan <= scans; ++scan) {
        Bytes unit;
        for (int i = 0; i < radials; ++i) {
            Lev2Radial radial;
            radial.type = type;
            radial.elev_num = scan;
            radial.elev = scan == 2 ? 1.5F : 0.5F;
            radial.num = i + 1;
            radial.status = i > 0 ? 1 : scan == 1 ? 3 : 0;
            radial.az = static_cast<float>(i) * 360.0F / static_cast<float>(radials) + 0.25F;
            Lev2Moment refl;
            for (int gate = 0; gate < gates; ++gate) {
                refl.words.push_back(gate < 2 ? gate : 60 + 5 * gate + i + 4 * (scan - 1));
            }
            radial.moments.push_back(refl);
            if (scan == 2) {
                Lev2Moment vel = refl;
                vel.name = "VEL";
                vel.offset = 129.0F;
                radial.moments.push_back(vel);
                vel.name = "SW ";
                radial.moments.push_back(vel);
            }
            put(unit, lev2_radial(radial));
        }
        volume.units.push_back(unit);
    }
    return volume;
}

Lev2Volume lev2_units(const std::vector<int>& scans, const std::vector<bool>& half_degrees) {
    constexpr int radials = 120;
    Lev2Volume volume;
    volume.units.push_back(nids_join({lev2_other(15), lev2_pattern(half_degrees), lev2_other(2)}));
    for (const int scan : scans) {
        Bytes unit;
        for (int i = 0; i < radials; ++i) {
            Lev2Radial radial;
            radial.elev_num = scan;
            radial.num = i + 1;
            radial.az = static_cast<float>(3 * i);
            radial.moments = {
                {"REF", 2125, 1000, 8, 2.0F, 66.0F, {0, 100 + i, 200 - i, 120}}
            };
            put(unit, lev2_radial(radial));
        }
        volume.units.push_back(unit);
    }
    return volume;
}

std::vector<std::pair<std::string, Bytes>> lev2_samples() {
    const Lev2Volume fixed = lev2_sample(1, 1);
    const Lev2Volume generic = lev2_sample(31, 2);
    Lev2Radial words;
    words.moments = {
        {"REF", 0, 1000, 16, 2.0F,  66.0F,  {0, 1, 2, 300, 65535}},
        {"",    0, 250,  8,  2.0F,  129.0F, {0, 1, 2, 255}       },
        {"ZDR", 0, 250,  8,  16.0F, 128.0F, {0, 1, 2, 255}       },
        {"VEL", 0, 250,  16, 2.0F,  129.0F, {7, 8}               }
    };
    Lev2Volume wide;
    wide.units = {nids_join({lev2_other(5), lev2_radial(words)})};
    return {
        {"fixed_plain",        lev2_volume(fixed,             false) },
        {"fixed_gzip",         lev2_gzip(lev2_volume(fixed,   false))},
        {"generic_plain",      lev2_volume(generic,           false) },
        {"generic_bzip2",      lev2_volume(generic,           true)  },
        {"generic_bzip2_gzip", lev2_gzip(lev2_volume(generic, true)) },
        {"piece",              lev2_unit(generic.units[2])  },
        {"words_plain",    lev2_volume(wide,                        false)       },
        {"words_bzip2",    lev2_volume(wide,                         true)},
    };
}
