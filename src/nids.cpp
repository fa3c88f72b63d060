// nids: the logical stream of a NIDS product and the walk of its packets.
//
// A product is one stream of big-endian bytes, whatever it came in: plain, in
// one or several zlib streams after the wrapper, or plain up to a symbology
// block that is bzip2-compressed. The stream works in two fixed buffers; a
// run, vector or text is decoded when it is asked for. NIDS_get_header
// (nids_header.cpp) starts a product and reads its header.
//
// A packet opens with its 2-byte code and a header, all 2-byte numbers:
//
//   code    header                                     then
//   0xAF1F  irange nrange icenter jcenter scale        radials: len (halfwords), start
//           nradial                                    angle, width, runs of one byte
//   16      the same                                   radials: len (bytes), start angle,
//                                                      width, a level a byte
//   0xBA0F  2 not used, istart jstart xscale           rows: len (bytes), runs of one
//   0xBA07  xscale_dec yscale yscale_dec nrows pack    byte (two with pack 1)
//   17      2 not used, cells of a row, nrows          rows: len (bytes), runs of a byte
//                                                      with a level in a second one
//   7       len                                        vectors: x1 y1 x2 y2
//   10      len, value                                 the same
//   4       len                                        barbs: value x y direction speed
//   1, 8    len, value, i, j                           len - 6 characters
//   others  len                                        len bytes, passed over
//
// Those of storm symbols are read where they are wanted, see nids_symbols.cpp.
#include "nids.h"

#include "byte_reader.h"
#include "nids_impl.h"
#include "nids_tables.h"
#include "state_keeper.h"
#include "unpack.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

// --- Constants --------------------------------------------------------------

constexpr int buffer_size = 10000;

// What a product may unpack to. The largest real ones come to 1.5 million.
constexpr long max_stream_bytes = 32L * 1024 * 1024;

constexpr std::array<std::uint8_t, 4> trailer = {0x0D, 0x0D, 0x0A, 0x03};

enum FileType { type_plain = 0, type_zlib = 1, type_refused = 2, type_bzip2 = 3 };

constexpr int packet_divider = 0xFFFF;
constexpr int packet_trend = 21;
constexpr int graphic_id = 2;

struct SkippedPacket {
    int code;
    const char* name;
};

constexpr SkippedPacket skipped_packets[] = {
    {3,  "Special Symbolic Graphic Data"  },
    {5,  "Vector Arrow Data"              },
    {6,  "Linked Vector Data"             },
    {9,  "Linked Vector Data"             },
    {11, "Special Symbolic Graphic Data"  },
    {12, "Special Symbolic Graphic Data"  },
    {13, "Special Symbolic Graphic Data"  },
    {14, "Special Symbolic Graphic Data"  },
    {15, "Special Symbolic Graphic Data"  },
    {18, "Supplemental Precipitation Data"},
};

// --- State ------------------------------------------------------------------

// Byte stream of the open product; `stream = {}` starts over.
struct Stream {
    std::array<std::uint8_t, buffer_size> in{}, out{};
    int isize = -1; // bytes held in `in`; -1: the next read starts a product
    int iptr = 0;   // the next of them
    int iavail = 0; // how many are not yet consumed
    int osize = 0;  // the same for `out`
    int optr = 0;
    int oavail = 0;
    int file_type = type_plain;
    bool comp_test = false; // look for a compression header before going on
    int zstat = 0;          // status of the last decompressor call
    InflateStream zs;
    BunzipStream bz;
    long place = 0;   // bytes delivered since the start of the file
    long message = 0; // of these, before the message header
    int bytes = 0;    // delivered since the last reset
    int nbytes = 0;   // length of the page, 0: no limit
    long total = 0;   // bytes that came into `out` so far
    int failed = 1;   // result of the first read that failed
    bool cut = false; // it failed where more had to come
};
Stream stream;

struct RadialHeader {
    int irange = 0, nrange = 0;
    int icenter = 0, jcenter = 0;
    int scale = 0;
    int nradial = 0;
};
struct RasterHeader {
    int istart = 0, jstart = 0;
    int xscale = 0, xscale_dec = 0;
    int yscale = 0, yscale_dec = 0;
    int nrows = 0;
    int pack = 0;
};
struct RadialData {
    int len = 0; // bytes
    int sangle = 0, dangle = 0;
};
struct RecordHeader { // of vectors, barbs and text
    int len = 0;
    int val = 0;
    int i = 0, j = 0;
};
struct BlockHeader {
    int divider = 0;
    int id = 0;
    int len = 0;
    int count = 0; // layers of a symbology block, pages of a graphic block
};

// Where the walk is; `walk = {}` starts over.
struct Walk {
    int status = 0;      // result of the last NIDS_packet
    int packet_code = 0; // 0xBA07 as 0xBA0F
    RadialHeader rad_hdr;
    RasterHeader ras_hdr;
    int cur_radial = 0, cur_row = 0; // read so far
    RadialData rad_data_hdr;
    int ras_data_len = 0;
    int cur_radius = 0, cur_column = 0; // bytes read of the radial or row
    RecordHeader vect_hdr;
    int cur_vector = 0;                     // bytes read of the packet
    const std::uint8_t* bin_at = nullptr;   // bins of a digital radial that the
    const std::uint8_t* bin_end = nullptr;  // stream has given up, in its buffer
    const std::uint8_t* bin_from = nullptr; // the first of those
    int level = 0;                          // of the run before them
    RecordHeader text_hdr;
    BlockHeader pr_symb;
    BlockHeader gr_alpha;
    int cur_page = 0;                 // pages opened so far
    std::array<NIDS_data, 256> bin{}; // one bin of each level of a packet 16 or 17
};
Walk walk;

// --- Stream -----------------------------------------------------------------

// Moves what is left of `in` to its front and fills it up from the file.
// Returns 1; -1 when there is nothing.
int refill_input(Stream& s, FILE* ifile) {
    std::memmove(s.in.data(), s.in.data() + s.iptr, static_cast<std::size_t>(s.iavail));
    const auto want = static_cast<std::size_t>(buffer_size - s.iavail);
    const std::size_t got = std::fread(s.in.data() + s.iavail, 1, want, ifile);
    s.isize = s.iavail + static_cast<int>(got);
    s.iptr = 0;
    if (got < want && s.isize >= 4 &&
        std::equal(trailer.begin(), trailer.end(), s.in.begin() + s.isize - 4)) {
        s.isize -= 4;
    }
    s.iavail = s.isize;
    return s.isize < 1 ? -1 : 1;
}

// Makes the undelivered output of a plain stream its input again.
void unread_output(Stream& s) {
    std::memcpy(s.in.data(), s.out.data() + s.optr, static_cast<std::size_t>(s.oavail));
    s.iptr = 0;
    s.iavail = s.isize = s.oavail;
    s.oavail = 0;
}

int start_inflate(Stream& s) {
    s.zs.reset(new z_stream{});
    s.file_type = type_zlib;
    return zlib_status(inflateInit(s.zs.get())) == Z_OK ? 1 : 0;
}

int start_bunzip(Stream& s) {
    s.bz.reset(new bz_stream{});
    s.file_type = type_bzip2;
    return bzip2_status(BZ2_bzDecompressInit(s.bz.get(), 0, 0)) == BZ_OK ? 1 : 0;
}

// Looks at the next two bytes for the start of a compressed stream. All that
// is not yet delivered is in `in` afterwards. Result as NIDS_read.
int examine(Stream& s, FILE* ifile) {
    s.comp_test = false;
    if (s.oavail > 0) {
        unread_output(s);
    }
    if (s.iavail < 2) {
        refill_input(s, ifile);
    }
    const int first = s.iavail > 0 ? s.in[static_cast<std::size_t>(s.iptr)] : 0;
    const int second = s.iavail > 1 ? s.in[static_cast<std::size_t>(s.iptr) + 1] : 0;
    const bool plain = s.file_type == type_plain;
    if (plain && first == 'R' && second == '3') {
        MESS_print(mess_debug, "Encrypted data\n");
        s.file_type = type_refused;
        return -1;
    }
    if (plain && first == 'B' && second == 'Z') {
        MESS_print(mess_debug, "BZlib Compressed data\n");
        return start_bunzip(s);
    }
    // Behind a zlib stream any compression method may follow.
    if (s.iavail > 1 && (first * 256 + second) % 31 == 0 && (!plain || first == 'x')) {
        MESS_print(mess_debug, "Zlib Compressed data\n");
        return start_inflate(s);
    }
    s.file_type = type_plain;
    s.zstat = 0;
    return 1;
}

// Fills `out`; result as NIDS_read. A result of 1 without output means that
// input was consumed.
int inflate_output(Stream& s) {
    if (s.zstat < 0 || s.zstat == Z_NEED_DICT) {
        return 0;
    }
    z_stream& zs = *s.zs;
    zs.next_in = s.in.data() + s.iptr;
    zs.avail_in = static_cast<uInt>(s.iavail);
    zs.next_out = s.out.data();
    zs.avail_out = buffer_size;
    s.zstat = zlib_status(inflate(&zs, Z_PARTIAL_FLUSH));
    s.osize = s.oavail = buffer_size - static_cast<int>(zs.avail_out);
    s.optr = 0;
    if (s.iavail == 0 && s.oavail == 0) {
        return -1;
    }
    s.iavail = static_cast<int>(zs.avail_in);
    s.iptr = s.isize - s.iavail;
    // A preset dictionary is never there.
    return s.zstat < 0 || s.zstat == Z_NEED_DICT ? 0 : 1;
}

int bunzip_output(Stream& s, FILE* ifile) {
    if (s.zstat == BZ_STREAM_END) {
        return s.iavail > 0 ? 0 : -1;
    }
    bz_stream& bz = *s.bz;
    bz.next_out = reinterpret_cast<char*>(s.out.data());
    bz.avail_out = buffer_size;
    bool at_end = false;
    do {
        if (s.iavail == 0 && refill_input(s, ifile) < 1) {
            at_end = true; // but output of a whole block may be left inside
        }
        bz.next_in = reinterpret_cast<char*>(s.in.data() + s.iptr);
        bz.avail_in = static_cast<unsigned>(s.iavail);
        s.zstat = bzip2_status(BZ2_bzDecompress(&bz));
        s.iavail = static_cast<int>(bz.avail_in);
        s.iptr = s.isize - s.iavail;
    } while (s.zstat == BZ_OK && bz.avail_out == buffer_size && !at_end);
    s.osize = s.oavail = buffer_size - static_cast<int>(bz.avail_out);
    s.optr = 0;
    if (s.zstat != BZ_OK && s.zstat != BZ_STREAM_END) {
        s.oavail = 0;
        return 0;
    }
    if (s.zstat == BZ_STREAM_END) {
        s.bz.reset(); // 4 MB, which the picture may have
        return 1;
    }
    return s.oavail > 0 ? 1 : 0;
}

int copy_output(Stream& s) {
    const auto n = static_cast<std::size_t>(s.iavail);
    std::memcpy(s.out.data(), s.in.data() + s.iptr, n);
    s.optr = 0;
    s.osize = s.oavail = s.iavail;
    s.iptr = s.isize;
    s.iavail = 0;
    return s.oavail > 0 ? 1 : -1;
}

int decode_output(Stream& s, FILE* ifile) {
    switch (s.file_type) {
    case type_zlib:
        return inflate_output(s);
    case type_bzip2:
        return bunzip_output(s, ifile);
    default:
        return copy_output(s);
    }
}

// One step towards output in `out`. Result as NIDS_read.
int fill(Stream& s, FILE* ifile) {
    bool refilled = false;
    if (s.oavail == 0) {
        // A decompressor may hold output when all of its input is consumed.
        const bool unpacking = s.file_type != type_plain && s.zstat == Z_OK;
        // Many outputs come of one bzip2 input, which is then left in place.
        const bool left = s.file_type == type_bzip2 && s.iavail > 0;
        if (!left && refill_input(s, ifile) < 1 && !unpacking) {
            return -1;
        }
        refilled = true;
        if (s.file_type == type_zlib && s.zstat == Z_STREAM_END) {
            s.comp_test = true;
        }
    }
    if (s.comp_test) {
        const int result = examine(s, ifile);
        if (result < 1) {
            return result;
        }
        refilled = true;
    }
    if (!refilled) {
        return 1;
    }
    const int result = decode_output(s, ifile);
    s.total += s.oavail;
    if (s.total > max_stream_bytes) {
        MESS_print(mess_warn, "NIDS_read: Product too long\n");
        return -1;
    }
    return result;
}

// NIDS_read without the null and start tests.
int read_bytes(Stream& s, unsigned char* data, int dsize, FILE* ifile) {
    for (int done = 0; done < dsize;) {
        if (s.failed == 1 && (s.oavail == 0 || s.comp_test)) {
            s.failed = fill(s, ifile);
            s.cut = s.failed != 1;
        }
        if (s.failed != 1) {
            return s.failed;
        }
        const int n = std::min(dsize - done, s.oavail);
        std::memcpy(data + done, s.out.data() + s.optr, static_cast<std::size_t>(n));
        s.optr += n;
        s.oavail -= n;
        done += n;
    }
    s.bytes += dsize;
    s.place += dsize;
    return 1;
}

// The halfword with which a block or packet begins. The end of the product may
// be in its place, but not that of a compressed stream that is not whole.
int read_start(FILE* ifile, std::uint16_t& value) {
    const bool going = stream.failed == 1;
    const int result = NIDS_read_short(reinterpret_cast<unsigned char*>(&value), ifile);
    if (result < 1 && going) {
        const bool unpacked =
            stream.file_type == type_plain ||
            stream.zstat == (stream.file_type == type_zlib ? Z_STREAM_END : BZ_STREAM_END);
        stream.cut = result != -1 || !unpacked;
    }
    return result;
}

// Whether there was a byte.
bool next_byte(FILE* ifile, std::uint8_t& b) {
    return NIDS_read(&b, 1, ifile) == 1;
}

int skip_bytes(FILE* ifile, long n) {
    std::array<unsigned char, 512> area{};
    while (n > 0) {
        const int part = static_cast<int>(std::min(n, static_cast<long>(area.size())));
        const int result = NIDS_read(area.data(), part, ifile);
        if (result < 1) {
            return result;
        }
        n -= part;
    }
    return 1;
}

// Goes to a place of the stream: forward, or back over what is still in the
// output buffer. Result as NIDS_read.
int go_to(FILE* ifile, long place) {
    const long back = stream.place - place;
    if (back <= 0) {
        return skip_bytes(ifile, -back);
    }
    if (stream.failed != 1 || back > stream.optr) {
        return -1;
    }
    stream.optr -= static_cast<int>(back);
    stream.oavail += static_cast<int>(back);
    stream.place = place;
    return 1;
}

// --- Packets ----------------------------------------------------------------

// `N` 16-bit signed numbers. Whether they were all there.
template <std::size_t N> bool read_shorts(FILE* ifile, std::array<int, N>& values) {
    std::array<unsigned char, 2 * N> area{};
    if (NIDS_read(area.data(), static_cast<int>(area.size()), ifile) < 1) {
        return false;
    }
    ByteReader reader(area);
    for (int& value : values) {
        value = reader.i16be();
    }
    return true;
}

float threshold(int index) {
    const auto& thres = nids_header().thres;
    return index >= 0 && index < nids_num_thres ? thres[static_cast<std::size_t>(index)]
                                                : missing_f;
}

void set_level_values(int packet) {
    for (int level = 0; level < 256; ++level) {
        walk.bin[static_cast<std::size_t>(level)] = {
            1.0F, nids_level_value(nids_header(), packet, level)};
    }
}

int open_radials(FILE* ifile) {
    std::array<int, 6> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.rad_hdr = {v[0], v[1], v[2], v[3], v[4], v[5]};
    walk.cur_radial = 0;
    MESS_print(mess_debug, "Index of first range bin: %d\n", v[0]);
    MESS_print(mess_debug, "Number of range bins: %d\n", v[1]);
    MESS_print(mess_debug, "I center of sweep: %d\n", v[2]);
    MESS_print(mess_debug, "J center of sweep: %d\n", v[3]);
    MESS_print(mess_debug, "Scale factor: %d\n", v[4]);
    MESS_print(mess_debug, "Number of radials: %d\n", v[5]);
    return 1;
}

int open_raster(FILE* ifile) {
    std::array<int, 10> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.ras_hdr = {v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9]};
    walk.cur_row = 0;
    MESS_print(mess_debug, "I coordinate start: %d\n", v[2]);
    MESS_print(mess_debug, "J coordinate start: %d\n", v[3]);
    MESS_print(mess_debug, "X scale int: %d\n", v[4]);
    MESS_print(mess_debug, "X scale frac: %d\n", v[5]);
    MESS_print(mess_debug, "Y scale int: %d\n", v[6]);
    MESS_print(mess_debug, "Y scale frac: %d\n", v[7]);
    MESS_print(mess_debug, "Number of rows: %d\n", v[8]);
    MESS_print(mess_debug, "Packing descriptor: %d\n", v[9]);
    return 1;
}

int open_precip(FILE* ifile) {
    std::array<int, 4> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.ras_hdr = {};
    walk.ras_hdr.nrows = v[3];
    walk.cur_row = 0;
    MESS_print(mess_debug, "Number of LFM boxes in row: %d\n", v[2]);
    MESS_print(mess_debug, "Number of rows: %d\n", v[3]);
    return 1;
}

// Vectors and wind barbs; `has_value` adds a value, which `len` counts.
int open_vectors(FILE* ifile, bool has_value) {
    std::array<int, 1> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.vect_hdr = {v[0], 0, 0, 0};
    walk.cur_vector = 0;
    MESS_print(mess_debug, "Number of bytes: %d\n", v[0]);
    if (has_value) {
        if (!read_shorts(ifile, v)) {
            return -1;
        }
        walk.vect_hdr.len -= 2;
        walk.vect_hdr.val = v[0];
        MESS_print(mess_debug, "Value: %d\n", v[0]);
    }
    return 1;
}

int open_text(FILE* ifile) {
    std::array<int, 4> v{};
    if (nids_header().exact && walk.packet_code == nids_packet_text) {
        std::array<int, 3> placed{}; // it has no value
        if (!read_shorts(ifile, placed)) {
            return -1;
        }
        walk.text_hdr = {placed[0] - 4, 0, placed[1], placed[2]};
        MESS_print(mess_debug, "Number of bytes: %d\n", placed[0]);
        return 1;
    }
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.text_hdr = {v[0] - 6, v[1], v[2], v[3]};
    MESS_print(mess_debug, "Number of bytes: %d\n", v[0]);
    MESS_print(mess_debug, "Value: %d\n", v[1]);
    return 1;
}

// Passes over a packet that is not drawn. Returns 0 if its code is not known.
int skip_packet(FILE* ifile) {
    for (const SkippedPacket& row : skipped_packets) {
        if (row.code == walk.packet_code) {
            MESS_print(mess_debug, "%s:%d\n", row.name, row.code);
            std::array<int, 1> v{};
            if (!read_shorts(ifile, v)) {
                return -1;
            }
            MESS_print(mess_debug, "Number of bytes: %d\n", v[0]);
            return skip_bytes(ifile, v[0]) < 1 ? -1 : 1;
        }
    }
    return 0;
}

int read_packet(FILE* ifile, int* code) {
    if (ifile == nullptr || (stream.nbytes > 0 && stream.bytes >= stream.nbytes)) {
        return 0;
    }
    walk.bin_at = walk.bin_end;
    std::uint16_t read_code = 0;
    if (read_start(ifile, read_code) < 1) {
        return -1;
    }
    *code = read_code;
    if (nids_is_symbol_packet(read_code)) {
        walk.packet_code = read_code;
        return nids_open_symbols(ifile, read_code, {NIDS_read, nids_skip_bytes});
    }
    walk.packet_code = read_code == nids_packet_raster_alt ? nids_packet_raster : read_code;
    switch (walk.packet_code) {
    case nids_packet_radial:
        MESS_print(mess_debug, "Radial Data\n");
        return open_radials(ifile);
    case nids_packet_dig_radial:
        set_level_values(walk.packet_code);
        return open_radials(ifile);
    case nids_packet_raster:
        MESS_print(mess_debug, "Rastor Data\n");
        return open_raster(ifile);
    case nids_packet_dig_precip:
        MESS_print(mess_debug, "Digital Precipitation Array Data:%d\n", walk.packet_code);
        set_level_values(walk.packet_code);
        return open_precip(ifile);
    case nids_packet_vector:
    case nids_packet_vector_val:
        MESS_print(mess_debug, "Unlinked Vector Data:%d\n", walk.packet_code);
        return open_vectors(ifile, walk.packet_code == nids_packet_vector_val);
    case nids_packet_wind:
        MESS_print(mess_debug, "Wind Barb Data:%d\n", walk.packet_code);
        return open_vectors(ifile, false);
    case nids_packet_text:
    case nids_packet_text_val:
        MESS_print(mess_debug, "Uniform Text Data:%d\n", walk.packet_code);
        return open_text(ifile);
    default:
        return skip_packet(ifile);
    }
}

// Identifier (which must be `id`), length and count of a block whose divider
// was read.
int read_block(FILE* ifile, BlockHeader& block, int divider, int id) {
    std::array<unsigned char, 8> area{};
    block = {};
    if (NIDS_read(area.data(), static_cast<int>(area.size()), ifile) < 1) {
        return 0;
    }
    ByteReader reader(area);
    block.divider = divider;
    block.id = reader.i16be();
    block.len = reader.i32be();
    block.count = reader.i16be();
    return block.id == id ? 1 : 0;
}

// The next bin of a digital radial; those after it that are in the output
// buffer are made ready.
int next_bins(FILE* ifile, NIDS_data* data) {
    std::uint8_t level = 0;
    if (walk.cur_radius >= walk.rad_data_hdr.len) {
        return 0;
    }
    if (!next_byte(ifile, level)) {
        return -1;
    }
    ++walk.cur_radius;
    walk.level = level;
    *data = walk.bin[level];
    const int n = std::min(stream.oavail, walk.rad_data_hdr.len - walk.cur_radius);
    walk.bin_at = walk.bin_from = stream.out.data() + stream.optr;
    walk.bin_end = walk.bin_at + n;
    walk.cur_radius += n;
    stream.optr += n;
    stream.oavail -= n;
    stream.bytes += n;
    stream.place += n;
    return 1;
}

// A byte of four bits run and four bits threshold index.
int nibble_run(FILE* ifile, NIDS_data* data) {
    std::uint8_t b = 0;
    if (!next_byte(ifile, b)) {
        return -1;
    }
    data->run = static_cast<float>(b >> 4);
    walk.level = b & 0xF;
    data->val = nids_header().levels[b & 0xF];
    return 1;
}

// A byte of run and a byte of level: of 256 (packet 17), or a count of
// hundreds and a threshold index.
int two_byte_run(FILE* ifile, NIDS_data* data) {
    std::uint8_t run = 0;
    std::uint8_t level = 0;
    if (!next_byte(ifile, run) || !next_byte(ifile, level)) {
        return -1;
    }
    data->run = static_cast<float>(run);
    walk.level = walk.packet_code == nids_packet_dig_precip ? level : level & 0xF;
    data->val = walk.packet_code == nids_packet_dig_precip
                    ? walk.bin[level].val
                    : static_cast<float>(level >> 4) * 100.0F + nids_header().thres[level & 0xF];
    return 1;
}

int row_data(FILE* ifile, NIDS_data* data) {
    if (walk.cur_column >= walk.ras_data_len) {
        return 0;
    }
    if (walk.packet_code == nids_packet_dig_precip || walk.ras_hdr.pack == 1) {
        walk.cur_column += 2;
        return two_byte_run(ifile, data);
    }
    ++walk.cur_column;
    return nibble_run(ifile, data);
}

// Apart, so that the call for a bin that is ready saves no registers.
[[gnu::noinline]] int next_data(FILE* ifile, NIDS_data* data) {
    switch (walk.packet_code) {
    case nids_packet_dig_radial:
        return next_bins(ifile, data);
    case nids_packet_radial:
        if (walk.cur_radius >= walk.rad_data_hdr.len) {
            return 0;
        }
        ++walk.cur_radius;
        return nibble_run(ifile, data);
    case nids_packet_raster:
    case nids_packet_dig_precip:
        return row_data(ifile, data);
    default:
        return 1;
    }
}

} // namespace

// --- Shared with nids_header.cpp --------------------------------------------

void nids_restart() {
    stream = {};
    walk = {};
}

void nids_begin_message() {
    stream.message = stream.place - 2;
}

void nids_expect_compression() {
    stream.comp_test = true;
}

bool nids_in_zlib() {
    return stream.file_type == type_zlib;
}

int nids_packet_code() {
    return walk.packet_code;
}

int nids_skip_bytes(FILE* ifile, long n) {
    return skip_bytes(ifile, n);
}

int nids_num_bins() {
    return walk.rad_hdr.nrange;
}

int nids_num_rows() {
    return walk.ras_hdr.nrows;
}

// --- Stream -----------------------------------------------------------------

int NIDS_read(unsigned char* data, int dsize, FILE* ifile) {
    if (ifile == nullptr) {
        return -1;
    }
    if (stream.isize == -1) {
        stream = {};
        stream.isize = 0;
    }
    return read_bytes(stream, data, dsize, ifile);
}

int NIDS_read_short(unsigned char* val, FILE* ifile) {
    std::array<unsigned char, 2> area{};
    const int result = NIDS_read(area.data(), 2, ifile);
    if (result == 1) {
        const std::uint16_t value = ByteReader(area).u16be();
        std::memcpy(val, &value, sizeof value);
    }
    return result;
}

int NIDS_read_long(unsigned char* val, FILE* ifile) {
    std::array<unsigned char, 4> area{};
    const int result = NIDS_read(area.data(), 4, ifile);
    if (result == 1) {
        const std::uint32_t value = ByteReader(area).u32be();
        std::memcpy(val, &value, sizeof value);
    }
    return result;
}

int NIDS_skip_line(FILE* ifile) {
    unsigned char c = 0;
    int result = 1;
    while (c != '\n' && result == 1) {
        result = NIDS_read(&c, 1, ifile);
    }
    return result;
}

// --- Blocks and packets -----------------------------------------------------

int NIDS_prod_symb(FILE* ifile) {
    const NidsHeader& header = nids_header();
    const int code = header.mess.code;
    // Parameter 8 of the later products says that the block is compressed.
    // Inside a zlib stream there is nothing to look for.
    if (stream.file_type == type_plain &&
        (nids_product(code).compressed || (code >= 32 && header.pr_desc.p[8] == 1))) {
        stream.comp_test = true;
    }
    // A product whose description has no block may end here.
    const bool may_end = header.pr_desc.code != 0 && header.pr_desc.off_symb == 0;
    std::uint16_t divider = 0;
    if (ifile == nullptr || read_start(ifile, divider) < 1) {
        stream.cut = stream.cut || !may_end;
        return 0;
    }
    return read_block(ifile, walk.pr_symb, static_cast<std::int16_t>(divider), 1);
}

int NIDS_prod_symb_layer(FILE* ifile) {
    std::array<unsigned char, 6> area{}; // divider, length
    if (ifile == nullptr || NIDS_read(area.data(), static_cast<int>(area.size()), ifile) < 1) {
        return 0;
    }
    return ByteReader(area).u16be() == packet_divider ? 1 : 0;
}

int NIDS_packet(FILE* ifile, int* code) {
    int read_code = 0;
    walk.status = read_packet(ifile, code != nullptr ? code : &read_code);
    return walk.status;
}

int NIDS_trends(FILE* ifile) {
    const NidsHeader& header = nids_header();
    if (ifile == nullptr || NIDS_is_symbol(packet_trend) == 0 ||
        !nids_product(header.mess.code).trends || header.pr_desc.off_graph <= 0 ||
        go_to(ifile, stream.message + 2L * header.pr_desc.off_graph) < 1) {
        return 0;
    }
    return 1;
}

int NIDS_packet_status() {
    return walk.status;
}

int NIDS_is_whole() {
    return stream.cut ? 0 : 1;
}

int NIDS_get_radial(FILE* ifile, float* sangle, float* dangle) {
    if (walk.cur_radial >= walk.rad_hdr.nradial) {
        return 0;
    }
    std::array<int, 3> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    const bool halfwords = walk.packet_code == nids_packet_radial;
    walk.rad_data_hdr = {halfwords ? 2 * v[0] : v[0], v[1], v[2]};
    walk.bin_at = walk.bin_end;
    walk.cur_radius = 0;
    ++walk.cur_radial;
    *sangle = static_cast<float>(v[1] / 10.0);
    *dangle = static_cast<float>(v[2] / 10.0);
    MESS_print(mess_debug, "Number of bytes: %d\n", v[0]);
    return 1;
}

NIDS_bins NIDS_get_bins() {
    const RadialHeader& h = walk.rad_hdr;
    const float size_km = nids_bin_km() * nids_ground_factor(h.scale);
    return {static_cast<float>(std::max(h.irange, 0)) * size_km, size_km, h.nrange};
}

int NIDS_get_rastor(FILE* ifile) {
    if (walk.cur_row >= walk.ras_hdr.nrows) {
        return 0;
    }
    std::array<int, 1> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.ras_data_len = walk.ras_hdr.pack == 1 ? v[0] : (v[0] + 1) / 2 * 2;
    walk.cur_column = 0;
    ++walk.cur_row;
    MESS_print(mess_debug, "Number of bytes: %d\n", v[0]);
    return 1;
}

// Called for every bin: what is ready is taken without a look at the stream.
int NIDS_get_data(FILE* ifile, NIDS_data* data) {
    if (walk.bin_at != walk.bin_end) {
        *data = walk.bin[*walk.bin_at++];
        return 1;
    }
    return next_data(ifile, data);
}

std::span<const std::uint8_t> NIDS_take_bins() {
    const std::span<const std::uint8_t> ready(walk.bin_at, walk.bin_end);
    walk.bin_at = walk.bin_end;
    return ready;
}

float NIDS_bin_value(std::uint8_t level) {
    return walk.bin[level].val;
}

int NIDS_get_level() {
    const bool ready = walk.packet_code == nids_packet_dig_radial && walk.bin_at != walk.bin_from;
    return ready ? walk.bin_at[-1] : walk.level;
}

int NIDS_get_vector(FILE* ifile, NIDS_vector_data* vect_data) {
    if (walk.cur_vector >= walk.vect_hdr.len) {
        return 0;
    }
    std::array<int, 4> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.cur_vector += 8;
    *vect_data = {static_cast<float>(walk.vect_hdr.val), static_cast<float>(v[0]),
                  static_cast<float>(v[1]), static_cast<float>(v[2]), static_cast<float>(v[3])};
    return 1;
}

int NIDS_get_wind(FILE* ifile, NIDS_wind_data* wind) {
    if (walk.cur_vector >= walk.vect_hdr.len) {
        return 0;
    }
    std::array<int, 5> v{};
    if (!read_shorts(ifile, v)) {
        return -1;
    }
    walk.cur_vector += 10;
    *wind = {threshold(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2]),
             static_cast<float>(v[3]), static_cast<float>(v[4])};
    MESS_print(mess_debug, "WIND: %7.2f %7.2f = %7.2f %7.2f = %7.2f\n", wind->x, wind->y, wind->dir,
               wind->spd, wind->val);
    return 1;
}

int NIDS_get_text(FILE* ifile, NIDS_text_data* text) {
    if (ifile == nullptr) {
        return 0;
    }
    *text = {};
    text->val = threshold(walk.text_hdr.val);
    text->x = static_cast<float>(walk.text_hdr.i);
    text->y = static_cast<float>(walk.text_hdr.j);
    const int len = std::max(walk.text_hdr.len, 0);
    const int kept = std::min(len, static_cast<int>(sizeof text->data) - 1);
    const int result = NIDS_read(reinterpret_cast<unsigned char*>(text->data), kept, ifile) == 1
                           ? skip_bytes(ifile, len - kept)
                           : -1;
    MESS_print(mess_debug, "TEXT: %s\n", text->data);
    return result == 1 ? 1 : -1;
}

int NIDS_graphic(FILE* ifile) {
    const NidsProdDesc& desc = nids_header().pr_desc;
    walk.cur_page = 0;
    stream.nbytes = stream.bytes = 0;
    if (ifile == nullptr) {
        return 0;
    }
    // A walk that ended at the divider has consumed it.
    if (walk.packet_code == packet_divider && desc.off_symb != 0 &&
        read_block(ifile, walk.gr_alpha, packet_divider, graphic_id) == 1) {
        return 1;
    }
    // Others end wherever they met what is not walked.
    std::array<int, 1> divider{};
    if (desc.off_graph <= 0 || go_to(ifile, stream.message + 2L * desc.off_graph) < 1 ||
        !read_shorts(ifile, divider) || divider[0] != -1) {
        return 0;
    }
    return read_block(ifile, walk.gr_alpha, packet_divider, graphic_id);
}

int NIDS_graphic_layer(FILE* ifile) {
    if (ifile == nullptr || nids_header().pr_desc.off_graph == 0 ||
        walk.cur_page >= walk.gr_alpha.count ||
        skip_bytes(ifile, stream.nbytes - stream.bytes) < 1) { // the rest of a page
        return 0;
    }
    std::array<int, 2> v{}; // number, length
    if (!read_shorts(ifile, v) || v[0] < 1 || v[0] > walk.gr_alpha.count) {
        return 0; // what follows the last page is the next block
    }
    ++walk.cur_page;
    stream.nbytes = v[1];
    stream.bytes = 0;
    return v[0];
}

void keep_nids(StateKeeper& keeper) {
    keeper.keep(walk);
}
