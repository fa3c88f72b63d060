// nids_header: message header and product description of a NIDS product, and
// the NIDS_info record made of them. The blocks stay, in nids_value, until the next
// NIDS_get_header.
//
// A file opens with a wrapper, or with the message header at once. A wrapper is
// known by its first two bytes and is some lines long.
//
//   message header, 18 bytes      product description, 102 bytes
//   0  2  product code            0  2  divider           34  2  parameter 1
//   2  2  date, days              2  4  latitude, 0.001   36  2  parameter 2
//   4  4  time, seconds           6  4  longitude         38  2  elevation number
//   8  4  length, bytes           10 2  height, feet      40  2  parameter 3
//   12 2  source                  12 2  product code      42 32  16 thresholds
//   14 2  destination             14 2  mode              74 14  parameters 4 to 10
//   16 2  blocks                  16 2  coverage pattern  88  2  maps
//                                 18 2  sequence number   90  4  offset of symbology
//                                 20 2  volume number     94  4  offset of graphic block
//                                 22 2  volume date       98  4  offset of tabular block
//                                 24 4  volume time
//                                 28 2  generation date
//                                 30 4  generation time
#include "nids.h"

#include "byte_reader.h"
#include "date.h"
#include "map_proj.h"
#include "nids_exact.h"
#include "nids_impl.h"
#include "nids_tables.h"
#include "region.h"
#include "state_keeper.h"
#include "text_num.h"
#include "tools.h"
#include "units.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace {

// --- Constants and tables ---------------------------------------------------

struct Wrapper {
    int mark; // first two bytes of the file
    int lines;
};

constexpr Wrapper wrappers[] = {
    {0x010D, 4},
    {0x2A2A, 2},
    {0x0A2A, 2},
    {0x5344, 2},
    {0x4453, 2},
    {0x400C, 2},
};

constexpr int zlib_lead_bytes = 52; // of a zlib message, after its first code

constexpr char collective_mark[] = "** SDUS97";

constexpr int mess_header_rest = 16; // bytes after the code
constexpr int prod_desc_size = 102;

constexpr double ms_to_knots = 1.944;

// Taken for a size that is not known.
constexpr float default_cell_km = 4.0F;
constexpr int default_size = 460;

constexpr float level_below = -100.0F; // a coded level that means "no data"
constexpr float level_text = -90.0F;   // one that means another text

// --- State ------------------------------------------------------------------

struct State {
    char ext_info[30] = {}; // selector of one product inside a collective file
    bool exact = false;     // values go by the format's own document
};
State state;

// --- Numbers ----------------------------------------------------------------

// A coded level: a number in the low byte, and bits that change it.
float coded_level(unsigned t) {
    auto v = static_cast<float>(t & 0xFFU);
    if ((t & 0x8000U) != 0) {
        v = (t & 3U) == 0 ? level_below : level_text;
    }
    if (v == level_below) {
        return v;
    }
    if ((t & 0x2000U) != 0) {
        v /= 20.0F;
    }
    if ((t & 0x1000U) != 0) {
        v /= 10.0F;
    }
    if ((t & 0x800U) != 0) {
        v += 0.01F; // more than the number
    }
    if ((t & 0x400U) != 0) {
        v -= 0.01F; // less than the number
    }
    return (t & 0x100U) != 0 ? -v : v;
}

// Minimum and step, both divided by `divisor` and multiplied by `factor`, and
// the number of levels.
void linear_thresholds(const NidsProdDesc& desc, float divisor, double factor,
                       std::array<float, nids_num_thres>& v) {
    const float least = static_cast<float>(static_cast<std::int16_t>(desc.thres[0])) / divisor;
    const float step = static_cast<float>(desc.thres[1]) / divisor;
    v[0] = static_cast<float>(least * factor);
    v[1] = static_cast<float>(step * factor);
    v[2] = static_cast<float>(desc.thres[2]);
}

// The thresholds of a product from its 16 halfwords.
std::array<float, nids_num_thres> decode_thresholds(int code, const NidsProdDesc& desc) {
    std::array<float, nids_num_thres> v{};
    const auto& t = desc.thres;
    switch (nids_product(code).scale) {
    case NidsScale::tenths:
        linear_thresholds(desc, 10.0F, 1.0, v);
        break;
    case NidsScale::knots:
        linear_thresholds(desc, 10.0F, ms_to_knots, v);
        break;
    case NidsScale::hundredths:
        linear_thresholds(desc, 100.0F, 1.0, v);
        break;
    case NidsScale::thousandths:
        linear_thresholds(desc, 1000.0F, 1.0, v);
        break;
    case NidsScale::liquid:
        v = {NIDS_float16(t[0]), NIDS_float16(t[1]), static_cast<float>(t[2]), NIDS_float16(t[3]),
             NIDS_float16(t[4])};
        break;
    case NidsScale::tops:
        std::copy_n(t.begin(), 4, v.begin());
        break;
    case NidsScale::floats:
        v[0] = nids_finite(NIDS_float32(t[0], t[1]));
        v[0] = v[0] == 0.0F ? 1.0F : v[0];
        v[2] = nids_finite(NIDS_float32(t[2], t[3]));
        break;
    case NidsScale::levels:
        std::transform(t.begin(), t.end(), v.begin(), coded_level);
        break;
    case NidsScale::fixed: // its thresholds are not to be trusted
        std::transform(t.begin(), t.end(), v.begin(), coded_level);
        v[0] = -32.0F;
        v[1] = 0.5F;
        v[2] = 256.0F;
        break;
    }
    return v;
}

// --- Reading the blocks -----------------------------------------------------

void print_mess_header(const NidsMessHeader& mess) {
    MESS_print(mess_debug, "Code: %d\n", mess.code);
    MESS_print(mess_debug, "Date: %d\n", mess.date);
    MESS_print(mess_debug, "Time: %d\n", mess.time);
    MESS_print(mess_debug, "Length: %d\n", mess.len);
    MESS_print(mess_debug, "Source: %d\n", mess.src);
    MESS_print(mess_debug, "Destination: %d\n", mess.dest);
    MESS_print(mess_debug, "Number of blocks : %d\n", mess.nblock);
}

void print_prod_desc(const NidsProdDesc& desc, const std::array<float, nids_num_thres>& thres) {
    MESS_print(mess_debug, "Product Description: %d\n", desc.code);
    MESS_print(mess_debug, "Divider: %d\n", desc.divider);
    MESS_print(mess_debug, "Latitude: %d\n", desc.lat);
    MESS_print(mess_debug, "Longitude: %d\n", desc.lon);
    MESS_print(mess_debug, "Height: %d\n", desc.height);
    MESS_print(mess_debug, "Code: %d\n", desc.code);
    MESS_print(mess_debug, "Operational Mode: %d\n", desc.op_mode);
    MESS_print(mess_debug, "Volume Coverage Pattern: %d\n", desc.vol_cov_pat);
    MESS_print(mess_debug, "Sequence Number: %d\n", desc.seq_num);
    MESS_print(mess_debug, "Volume Scan Number: %d\n", desc.vol_scan_num);
    MESS_print(mess_debug, "Volume Scan date: %d\n", desc.vol_scan_date);
    MESS_print(mess_debug, "Volume Scan time: %d\n", desc.vol_scan_time);
    MESS_print(mess_debug, "Product Generation date: %d\n", desc.prod_gen_date);
    MESS_print(mess_debug, "Product Generation time: %d\n", desc.prod_gen_time);
    MESS_print(mess_debug, "Elevation: %d\n", desc.elev);
    for (std::size_t i = 0; i < thres.size(); ++i) {
        MESS_print(mess_debug, "Threshold[%d]: %d %f\n", static_cast<int>(i), desc.thres[i],
                   static_cast<double>(thres[i]));
    }
    MESS_print(mess_debug, "Number of Maps: %d\n", desc.nmaps);
    MESS_print(mess_debug, "Offset to Symbolics: %d\n", desc.off_symb);
    MESS_print(mess_debug, "Offset to Graphics: %d\n", desc.off_graph);
    MESS_print(mess_debug, "Offset to Tabular: %d\n", desc.off_tab);
    for (std::size_t i = 0; i < thres.size(); ++i) {
        MESS_print(mess_debug, "THRES #%d: %2X\n", static_cast<int>(i), desc.thres[i]);
    }
}

NidsProdDesc parse_prod_desc(std::span<const std::uint8_t> bytes) {
    NidsProdDesc desc;
    ByteReader r(bytes);
    desc.divider = r.i16be();
    desc.lat = r.i32be();
    desc.lon = r.i32be();
    desc.height = r.i16be();
    desc.code = r.i16be();
    desc.op_mode = r.i16be();
    desc.vol_cov_pat = r.i16be();
    desc.seq_num = r.i16be();
    desc.vol_scan_num = r.i16be();
    desc.vol_scan_date = r.u16be();
    desc.vol_scan_time = r.i32be();
    desc.prod_gen_date = r.u16be();
    desc.prod_gen_time = r.i32be();
    desc.p[1] = r.i16be();
    desc.p[2] = r.i16be();
    desc.elev = r.i16be();
    desc.p[3] = r.i16be();
    for (std::uint16_t& t : desc.thres) {
        t = r.u16be();
    }
    for (std::size_t i = 4; i <= 10; ++i) {
        desc.p[i] = r.i16be();
    }
    desc.nmaps = r.i16be();
    desc.off_symb = r.i32be();
    desc.off_graph = r.i32be();
    desc.off_tab = r.i32be();
    return desc;
}

int read_code(FILE* ifile, int* code) {
    std::int16_t value = 0;
    const int result = NIDS_read_short(reinterpret_cast<unsigned char*>(&value), ifile);
    *code = value;
    return result;
}

// Is the radar somewhere on the earth, and the description what it is said to be?
bool is_plausible(int code, const NidsProdDesc& desc) {
    constexpr int most_lat = 90000;
    constexpr int most_lon = 180000;
    const bool on_earth = desc.lat >= -most_lat && desc.lat <= most_lat && desc.lon >= -most_lon &&
                          desc.lon <= most_lon;
    return code > 0 && on_earth && (desc.divider == -1 || desc.lat != 0 || desc.lon != 0);
}

// The product code, with what comes before it. Result as NIDS_read.
int read_product_code(FILE* ifile, int* code) {
    int result = read_code(ifile, code);
    for (const Wrapper& wrapper : wrappers) {
        if (result < 1 || *code != wrapper.mark) {
            continue;
        }
        for (int i = 0; i < wrapper.lines; ++i) {
            NIDS_skip_line(ifile); // the read after it reports
        }
        nids_expect_compression();
        result = read_code(ifile, code);
        if (result == 1 && nids_in_zlib()) {
            std::array<unsigned char, zlib_lead_bytes> lead{};
            NIDS_read(lead.data(), zlib_lead_bytes, ifile);
            result = read_code(ifile, code);
        }
        break;
    }
    return result;
}

// Goes to the product of a collective file that `ext_info` selects. Returns 1;
// 0 when the file holds no such product.
int find_in_collective(FILE* ifile, const char* ext_info) {
    constexpr long most_products = 100000;
    long bytes = 64L * 1024 * 1024; // to look through: a device never ends
    char line[200] = {};
    long left = std::clamp<long>(text_int(ext_info + 1), 0, most_products) + 1;
    while (left > 0) {
        std::size_t used = 0;
        int c = std::fgetc(ifile);
        for (; c != EOF && c != '\n'; c = --bytes > 0 ? std::fgetc(ifile) : EOF) {
            if (used + 1 < sizeof line) {
                line[used++] = static_cast<char>(c);
            }
        }
        line[used] = '\0';
        if (c == EOF) {
            return 0;
        }
        if (std::strncmp(line, collective_mark, sizeof collective_mark - 1) == 0) {
            MESS_print(mess_debug, "HDR: %s\n", line);
            --left;
        }
    }
    for (int i = 0; i < 2; ++i) {
        fgetnline(ifile, line, 49);
        MESS_print(mess_debug, "HDR2: %s\n", line);
    }
    return std::fgetc(ifile) != EOF ? 1 : 0;
}

// --- Making NIDS_info -------------------------------------------------------

// Bin length, range, and for composites the cell size.
void set_resolution(NIDS_info& info) {
    const NidsProduct& product = nids_product(info.code);
    const bool mosaic = info.src > nids_max_site && product.map != NidsMap::display;
    info.res = mosaic && product.cell_km > 0 ? product.cell_km : product.bin_nmi;
    if (state.exact && !mosaic && info.res == 0) {
        info.res = nids_exact(info.code).bin_nmi;
    }
    info.range = mosaic ? 0 : product.range_nmi;
    info.domain.dx = info.res;
}

void set_sizes(NIDS_info& info, const NidsProdDesc& desc) {
    int size = default_size;
    if (info.type == nids_packet_raster || info.type == nids_packet_dig_precip) {
        size = nids_num_rows();
    } else if (info.type == nids_packet_radial || info.type == nids_packet_dig_radial) {
        size = 2 * nids_num_bins();
    }
    // A packet without extent leaves no domain to be drawn on.
    size = size < 2 ? default_size : size;
    info.nx = info.ny = size;
    if (info.src > nids_max_site && desc.p[10] > 1) {
        info.nx = desc.p[10];
    }
    info.domain.nx = info.nx;
    info.domain.ny = info.ny;
}

// Plot units (100 km) of a length at the centre of a polar stereographic map.
float plot_length(const Domain& domain, float length_nmi) {
    return static_cast<float>(map_stereo_factor(domain.clat) * (length_nmi * km_per_nmi) / 100.0);
}

bool is_length(float v) {
    return std::isfinite(v) && v > 0;
}

// `level` is that of the warnings.
void finish_domain(NIDS_info& info, unsigned level) {
    Domain& domain = info.domain;
    const NidsMap map = nids_product(info.code).map;
    if (map == NidsMap::display) {
        domain.proj = proj_pixel;
        domain.clat = domain.clon = 0;
        domain.dx = domain.dy = 511;
    } else if (map == NidsMap::precip_grid) {
        domain.proj = proj_pstereo;
        domain.plat = 90;
        domain.plon = -105;
        domain.dx = domain.dy = 0.047596F;
    } else if (info.src <= nids_max_site) {
        domain.proj = proj_pstereo;
        domain.plat = domain.clat;
        domain.plon = domain.clon;
        domain.nx = domain.ny * 3 / 2 + 1;
        domain.ny += 1;
        domain.dx = plot_length(domain, info.res);
        if (!is_length(domain.dx)) {
            MESS_print(level, "NIDS_get_header: Unknown bin length, product:%d\n", info.code);
            domain.dx = plot_length(domain, nids_usual_bin_nmi);
        }
        if (!is_length(domain.dx)) { // a centre without map factor
            domain.dx = static_cast<float>(nids_usual_bin_nmi * km_per_nmi / 100.0);
        }
        domain.dy = domain.dx;
    } else {
        domain.proj = proj_lambert;
        domain.plat = 90;
        domain.plon = domain.clon;
        domain.param[0] = 33;
        domain.param[1] = 45;
        domain.param[2] = 1;
        if (!is_length(domain.dx)) {
            MESS_print(level, "NIDS_get_header: Unknown cell size, product:%d\n", info.code);
            domain.dx = default_cell_km;
        }
        domain.dx /= 100.0F;
        domain.dy = domain.dx;
    }
}

void set_label(NIDS_info& info) {
    const NidsProduct& product = nids_product(info.code);
    const char* label = info.src > nids_max_site ? product.mosaic : product.label;
    if (label == nullptr && state.exact) {
        label = nids_exact(info.code).label;
    }
    if (label != nullptr) {
        copy_text(info.info, sizeof info.info, label);
    } else {
        std::snprintf(info.info, sizeof info.info, "Not supported - %d", info.code);
    }
}

void set_params(NIDS_info& info, const NidsProdDesc& desc) {
    const NidsParams& row = nids_product(info.code).params;
    if (row.elev != NidsElev::none) {
        info.elev = nids_tenths(desc.p[3]);
    }
    info.max = static_cast<float>(desc.p[static_cast<std::size_t>(row.max)] * row.factor);
    if (row.nmax != 0) {
        info.nmax = static_cast<float>(desc.p[static_cast<std::size_t>(row.nmax)] * row.factor);
    }
}

// Text that grows in a fixed buffer; what does not fit is left out.
class Line {
public:
    Line(char* text, std::size_t size) : text_(text), size_(size) { text_[0] = '\0'; }
    [[gnu::format(printf, 2, 3)]] void add(const char* format, ...) {
        const std::size_t used = std::strlen(text_);
        va_list args;
        va_start(args, format);
        std::vsnprintf(text_ + used, size_ - used, format, args);
        va_end(args);
    }

private:
    char* text_;
    std::size_t size_;
};

void add_start(Line& line, int days, int minutes) {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int min = 0;
    int sec = 0;
    NIDS_julian_date(days, &year, &month, &day);
    NIDS_dec_time(minutes * 60, &hour, &min, &sec);
    line.add(" B=%d/%.2d:%.2d", day, hour, min);
}

void add_extra(Line& line, NidsExtra extra, const NidsProdDesc& desc) {
    switch (extra) {
    case NidsExtra::none:
        break;
    case NidsExtra::start_p5:
        add_start(line, desc.p[5], desc.p[6]);
        break;
    case NidsExtra::start_p1:
        add_start(line, desc.p[1], desc.p[2]);
        break;
    case NidsExtra::storm:
        line.add(" Stm=%.0f-%.0f", nids_tenths(desc.p[9]), nids_tenths(desc.p[8]));
        break;
    case NidsExtra::layer:
        line.add(" Lyr=%d-%d", desc.p[5], desc.p[6]);
        break;
    }
}

void set_misc(NIDS_info& info, const NidsProdDesc& desc) {
    constexpr std::array<const char*, 3> modes = {"Md=mt", "Md=cl", "Md=pr"};
    const NidsProduct& product = nids_product(info.code);
    const NidsParams& row = product.params;
    Line line(info.misc, sizeof info.misc);
    if (info.mode >= 0 && info.mode < static_cast<int>(modes.size())) {
        line.add("%s", modes[static_cast<std::size_t>(info.mode)]);
    }
    if (info.src > nids_max_site) {
        line.add(" Res=%3.1f", info.res);
    } else if (product.show_range) {
        line.add(" Rng=%.0f(%.1f)", info.range, info.res);
    }
    if (row.elev == NidsElev::shown) {
        line.add(" El=%.1f", info.elev);
    }
    add_extra(line, product.extra, desc);
    switch (row.show) {
    case NidsExtremes::min_max:
        line.add(" Mn,Mx=%.*f,%.*f", row.decimals, info.nmax, row.decimals, info.max);
        break;
    case NidsExtremes::max:
        line.add(" Mx=%.*f", row.decimals, info.max);
        break;
    case NidsExtremes::none:
        break;
    }
}

void set_date(NIDS_info& info, const NidsProdDesc& desc) {
    Date& date = info.date;
    MESS_print(mess_debug, "Volume Scan date: %d\n", desc.vol_scan_date);
    MESS_print(mess_debug, "Volume Scan time: %d\n", desc.vol_scan_time);
    NIDS_julian_date(desc.vol_scan_date, &date.year, &date.month, &date.day);
    NIDS_dec_time(desc.vol_scan_time, &date.hour, &date.min, &date.sec);
}

NIDS_info make_info(const NidsHeader& header) {
    const NidsProdDesc& desc = header.pr_desc;
    NIDS_info info;
    info.src = header.mess.src;
    info.code = header.mess.code;
    info.mode = desc.op_mode;
    info.type = nids_packet_code();
    DOM_init(&info.domain);
    info.domain.clat = static_cast<float>(desc.lat / 1000.0);
    info.domain.clon = static_cast<float>(desc.lon / 1000.0);
    info.alt = static_cast<float>(desc.height * m_per_foot);
    set_resolution(info);
    set_sizes(info, desc);
    // Bytes of another kind are refused as a whole.
    finish_domain(info, is_plausible(info.code, desc) ? mess_warn : mess_debug);
    set_params(info, desc);
    std::copy(header.thres.begin(), header.thres.end(), info.thres);
    set_label(info);
    set_misc(info, desc);
    set_date(info, desc);
    return info;
}

} // namespace

// --- Shared with nids.cpp ---------------------------------------------------

// --- Public -----------------------------------------------------------------

int NIDS_is_product(std::span<const std::uint8_t> head) {
    ByteReader r(head);
    int code = r.i16be();
    const auto* wrapper = std::find_if(std::begin(wrappers), std::end(wrappers),
                                       [code](const Wrapper& row) { return row.mark == code; });
    if (wrapper != std::end(wrappers)) {
        for (int line = 0; line < wrapper->lines; ++line) {
            while (r.ok() && r.u8() != '\n') {
            }
        }
        code = r.i16be();
        constexpr int zlib_method = 0x78;
        if (code >> 8 == zlib_method && code % 31 == 0) {
            return 1;
        }
    }
    r.skip(mess_header_rest);
    const auto desc = r.bytes(prod_desc_size);
    return r.ok() && parse_prod_desc(desc).divider == -1 &&
                   is_plausible(code, parse_prod_desc(desc))
               ? 1
               : 0;
}

int NIDS_is_plausible() {
    return is_plausible(nids_header().mess.code, nids_header().pr_desc) ? 1 : 0;
}

int NIDS_set_ext_info(const char* str) {
    copy_text(state.ext_info, sizeof state.ext_info, str != nullptr ? str : "");
    return 0;
}

int NIDS_set_exact(int on) {
    state.exact = on != 0;
    return 0;
}

int NIDS_get_exact() {
    return state.exact ? 1 : 0;
}

int NIDS_mess_header(FILE* ifile) {
    NidsMessHeader& mess = nids_fill_header().mess;
    mess = {};
    std::array<unsigned char, mess_header_rest> area{};
    if (ifile == nullptr || read_product_code(ifile, &mess.code) < 1) {
        return 0;
    }
    nids_begin_message();
    if (NIDS_read(area.data(), mess_header_rest, ifile) < 1) {
        return 0;
    }
    ByteReader r(area);
    mess.date = r.i16be();
    mess.time = r.i32be();
    mess.len = r.i32be();
    mess.src = r.i16be();
    mess.dest = r.i16be();
    mess.nblock = r.i16be();
    print_mess_header(mess);
    return 1;
}

int NIDS_prod_desc(FILE* ifile) {
    NidsHeader& header = nids_fill_header();
    header.pr_desc = {};
    header.thres = {};
    std::array<unsigned char, prod_desc_size> area{};
    if (ifile == nullptr || NIDS_read(area.data(), prod_desc_size, ifile) < 1) {
        return 0;
    }
    header.pr_desc = parse_prod_desc(area);
    header.thres = decode_thresholds(header.mess.code, header.pr_desc);
    header.exact = state.exact;
    header.levels = state.exact ? nids_exact_levels(header) : header.thres;
    print_prod_desc(header.pr_desc, header.thres);
    return 1;
}

int NIDS_get_header(FILE* ifile, NIDS_info* info) {
    if (ifile == nullptr) {
        return 0;
    }
    std::rewind(ifile);
    nids_restart();
    nids_fill_header() = {};
    if (state.ext_info[0] != '\0' && find_in_collective(ifile, state.ext_info) == 0) {
        return 0;
    }
    if (NIDS_mess_header(ifile) == 0) {
        return 0;
    }
    // A failure from here on shows as a product without data.
    int packet = 0;
    static_cast<void>(NIDS_prod_desc(ifile));
    static_cast<void>(NIDS_prod_symb(ifile));
    static_cast<void>(NIDS_prod_symb_layer(ifile));
    static_cast<void>(NIDS_packet(ifile, &packet));
    *info = make_info(nids_header());
    return 1;
}

float NIDS_float16(int val) {
    const int exponent = (val >> 10) & 0x1F;
    const auto fraction = static_cast<float>(val & 0x3FF) / 1024.0F;
    const float size = exponent != 0 ? std::ldexp(1.0F + fraction, exponent - 16) : 2.0F * fraction;
    return (val & 0x8000) != 0 ? -size : size;
}

float NIDS_float32(int val1, int val2) {
    const std::uint32_t bits = (static_cast<std::uint32_t>(val1) & 0xFFFFU) << 16 |
                               (static_cast<std::uint32_t>(val2) & 0xFFFFU);
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

int NIDS_julian_date(int julian, int* year, int* month, int* day) {
    constexpr std::array<int, 12> lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    int left = std::max(julian, 1);
    *year = 1970;
    for (int length = 365; left > length;) {
        left -= length;
        *year += 1;
        length = DATE_is_leap(*year) != 0 ? 366 : 365;
    }
    *month = 1;
    for (const int days : lengths) {
        const int length = *month == 2 && DATE_is_leap(*year) != 0 ? 29 : days;
        if (left <= length) {
            break;
        }
        left -= length;
        *month += 1;
    }
    *day = left;
    return 0;
}

int NIDS_dec_time(int secs, int* hour, int* min, int* sec) {
    *hour = secs / 3600;
    *min = secs / 60 % 60;
    *sec = secs % 60;
    return 0;
}

void keep_nids_header(StateKeeper& keeper) {
    keeper.keep(state);
}
