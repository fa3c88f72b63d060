// rrwds_writer: the bytes of RRWDS images.
#include "rrwds_writer.h"

#include "storm.h"

#include <cmath>
#include <numbers>

namespace {

std::uint8_t two_digits(int value) {
    return static_cast<std::uint8_t>(value / 10 << 4 | value % 10);
}

} // namespace

Bytes rrwds_file(const RrwdsImage& image, const std::function<int(int azimuth, int bin)>& level) {
    Bytes out(12, 0);
    for (std::size_t i = 0; i < 3 && i < image.site.size(); ++i) {
        out[i] = static_cast<std::uint8_t>(image.site[i]);
    }
    const int tenths = static_cast<int>(std::lround(std::fabs(image.elev) * 10.0F));
    out[3] = image.near ? 0x80 : 0;
    out[5] = static_cast<std::uint8_t>(image.hour / 10 << 6 | image.hour % 10 << 2);
    out[6] = static_cast<std::uint8_t>(two_digits(image.min) | (image.elev < 0 ? 0x80 : 0));
    out[8] = static_cast<std::uint8_t>(tenths / 100);
    out[9] = two_digits(tenths % 100);
    out[10] = two_digits(image.day);
    out[11] = two_digits(image.month);
    for (int azimuth = 0; azimuth < 360; ++azimuth) {
        Bytes record(80, 0);
        for (int bin = 0; bin < 200; ++bin) {
            for (int bit = 0; bit < 3; ++bit) {
                const int at = 3 * bin + bit;
                record[4 + at / 8] |=
                    static_cast<std::uint8_t>((level(azimuth, bin) >> bit & 1) << at % 8);
            }
        }
        out.insert(out.end(), record.begin(), record.end());
    }
    return out;
}

Bytes rrwds_sample() {
    constexpr float least[] = {18, 30, 40, 45, 50, 55}; // dBZ of levels 1 to 6
    return rrwds_file({}, [&](int azimuth, int bin) {
        const double angle = azimuth * std::numbers::pi / 180.0;
        const double r = (bin + 0.5) * 1.852;
        const float dbz = storm_dbz(static_cast<float>(r * std::sin(angle)),
                                    static_cast<float>(r * std::cos(angle)));
        int level = 0;
        for (const float limit : least) {
            level += dbz >= limit ? 1 : 0;
        }
        return level;
    });
}
