// lev2_stream: the bytes of a Level II volume. Three layers, each of a fixed
// size, so that any volume is read in the same memory:
//
//   source    the file in pieces of 64 KiB
//   units     of a packed volume: 4 bytes length, whose sign means nothing,
//             and that many bytes with a bzip2 stream
//   buffer    decoded records; all before the current one may be dropped
//
// lev2_stream_open comes first. State: the open file and these layers.
#include "lev2_stream.h"

#include "unpack.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// --- Constants ----------------------------------------------------------------

constexpr std::size_t piece_size = 65536;

// A unit may be as large as the file, but no larger than this.
constexpr std::int64_t max_unit_bytes = 64L * 1024 * 1024;

// What a file and a volume may unpack to. The largest real ones come to a
// hundred million.
constexpr std::size_t max_volume_bytes = 256UL * 1024 * 1024;

constexpr std::array<std::uint8_t, 4> trailer = {0x0D, 0x0D, 0x0A, 0x03};
constexpr std::size_t trailer_read = 1000; // it ends a shorter read

constexpr std::array<std::uint8_t, 3> bzip2_mark = {'B', 'Z', 'h'};
constexpr std::size_t length_size = 4; // of a unit

// --- State --------------------------------------------------------------------

// The memory of the layers; what it holds is in `stream`.
struct Areas {
    std::array<std::uint8_t, piece_size> piece{};
    std::array<std::uint8_t, lev2_buffer_size> out{};
};
Areas areas;

// The file's bytes. `at` and `left` are those of `piece` not yet consumed.
struct Source {
    const std::uint8_t* at = nullptr;
    std::size_t left = 0;
    std::size_t total = 0; // bytes delivered to `at`
    bool broken = false;   // the file can't be read further
};

struct Stream {
    FILE_ptr file;
    bool started = false; // the header was read
    std::array<std::uint8_t, lev2_header_size> header{};
    std::size_t header_size = 0;
    bool packed = false;
    Source source;
    BunzipStream bz;            // of the open unit
    std::int64_t unit_left = 0; // its bytes that are still in the source
    int units = 0;              // opened so far
    std::size_t osize = 0;      // bytes held in `out`
    std::size_t blk_off = 0;    // of these, before the current record
    std::size_t total = 0;      // bytes that came into `out` so far
    Lev2End end = Lev2End::none;
};
Stream stream;

// --- Source -------------------------------------------------------------------

// Has bytes at hand unless the file ends; false then.
bool source_has(Source& s, std::FILE* file) {
    if (s.left > 0) {
        return true;
    }
    if (s.total > max_volume_bytes) {
        return false;
    }
    s.left = std::fread(areas.piece.data(), 1, areas.piece.size(), file);
    s.at = areas.piece.data();
    s.broken = std::ferror(file) != 0; // a damaged gzip file
    s.total += s.left;
    return s.left > 0;
}

void consume(Source& s, std::size_t n) {
    s.at += n;
    s.left -= n;
}

// The number of bytes that were there of `n`.
std::size_t source_read(Source& s, std::FILE* file, std::uint8_t* to, std::size_t n) {
    std::size_t done = 0;
    while (done < n && source_has(s, file)) {
        const std::size_t part = std::min(n - done, s.left);
        std::memcpy(to + done, s.at, part);
        consume(s, part);
        done += part;
    }
    return done;
}

// Passes over up to `n` bytes.
void source_skip(Source& s, std::FILE* file, std::int64_t n) {
    while (n > 0 && source_has(s, file)) {
        const std::size_t part = std::min(static_cast<std::size_t>(n), s.left);
        consume(s, part);
        n -= static_cast<std::int64_t>(part);
    }
}

// --- Units --------------------------------------------------------------------

Lev2End source_end(const Source& s) {
    return s.total > max_volume_bytes ? Lev2End::too_long
           : s.broken                 ? Lev2End::damaged
                                      : Lev2End::file;
}

std::int64_t unit_length(const std::array<std::uint8_t, length_size>& field) {
    std::uint32_t bits = 0;
    for (const std::uint8_t b : field) {
        bits = bits << 8 | b;
    }
    const std::int64_t length = static_cast<std::int32_t>(bits);
    return length < 0 ? -length : length;
}

// False at the end of the volume.
bool open_unit(Stream& s) {
    std::array<std::uint8_t, length_size> field{};
    const bool whole =
        source_read(s.source, s.file.get(), field.data(), length_size) == length_size;
    if (!whole || (field == trailer && !source_has(s.source, s.file.get()))) {
        s.end = source_end(s.source);
        return false;
    }
    s.unit_left = std::min(unit_length(field), max_unit_bytes);
    if (s.unit_left == 0) {
        s.end = Lev2End::file;
        return false;
    }
    s.bz.reset(new bz_stream{});
    if (bzip2_status(BZ2_bzDecompressInit(s.bz.get(), 0, 0)) != BZ_OK) {
        s.end = Lev2End::damaged;
        return false;
    }
    ++s.units;
    return true;
}

void close_unit(Stream& s) {
    s.bz.reset();
    source_skip(s.source, s.file.get(), s.unit_left);
    s.unit_left = 0;
}

// One call of the decompressor. Returns the bytes that it produced.
std::size_t bunzip_step(Stream& s) {
    // Output may be left inside when there is no more input.
    const bool fed = s.unit_left > 0 && source_has(s.source, s.file.get());
    const std::size_t room = areas.out.size() - s.osize;
    const std::size_t given =
        fed ? std::min(static_cast<std::size_t>(s.unit_left), s.source.left) : 0;
    bz_stream& bz = *s.bz;
    bz.next_in = reinterpret_cast<char*>(const_cast<std::uint8_t*>(s.source.at));
    bz.avail_in = static_cast<unsigned>(given);
    bz.next_out = reinterpret_cast<char*>(areas.out.data() + s.osize);
    bz.avail_out = static_cast<unsigned>(room);
    const int status = bzip2_status(BZ2_bzDecompress(&bz));
    const std::size_t used = given - bz.avail_in;
    consume(s.source, used);
    s.unit_left -= static_cast<std::int64_t>(used);
    const std::size_t produced = room - bz.avail_out;
    if (status == BZ_STREAM_END) {
        close_unit(s);
    } else if (status != BZ_OK || (!fed && produced == 0)) {
        s.end = s.source.total > max_volume_bytes ? Lev2End::too_long : Lev2End::damaged;
    }
    return produced;
}

std::size_t fill_packed(Stream& s) {
    std::size_t produced = 0;
    while (produced == 0 && s.end == Lev2End::none) {
        if (s.bz != nullptr || open_unit(s)) {
            produced = bunzip_step(s);
        }
    }
    return produced;
}

std::size_t fill_plain(Stream& s) {
    const std::size_t room = areas.out.size() - s.osize;
    std::uint8_t* to = areas.out.data() + s.osize;
    std::size_t got = source_read(s.source, s.file.get(), to, room);
    if (got < room) {
        s.end = source_end(s.source);
    }
    if (got < trailer_read && got >= trailer.size() &&
        std::equal(trailer.begin(), trailer.end(), to + got - trailer.size())) {
        got -= trailer.size();
    }
    return got;
}

// --- Units ahead of the walk ----------------------------------------------------

// Hops from length to length, from the first unit to the end of the file. None when
// they are not all whole.
std::vector<Lev2UnitPlace> hop_units(int file, std::int64_t at, std::int64_t file_size) {
    constexpr std::size_t most_units = 10000;
    std::vector<Lev2UnitPlace> units;
    while (at < file_size && units.size() < most_units) {
        std::array<std::uint8_t, length_size> field{};
        if (pread(file, field.data(), field.size(), at) != static_cast<ssize_t>(field.size())) {
            return {};
        }
        at += static_cast<std::int64_t>(length_size);
        if (field == trailer && at == file_size) {
            return units;
        }
        units.push_back({at, unit_length(field)});
        at += units.back().size;
        if (units.back().size == 0 || units.back().size > max_unit_bytes || at > file_size) {
            return {};
        }
    }
    return at == file_size ? units : std::vector<Lev2UnitPlace>{};
}

// --- Buffer -------------------------------------------------------------------

// Drops what lies before the current record and brings more after it. Returns
// 1; 0 at the end of the volume.
int read_block(Stream& s) {
    MESS_print(mess_debug, "Block: %d %d - %d %d %d %d\n", static_cast<int>(s.source.total),
               static_cast<int>(s.source.left), static_cast<int>(s.osize),
               static_cast<int>(s.blk_off), static_cast<int>(s.osize - s.blk_off),
               static_cast<int>(s.end));
    if (s.end != Lev2End::none) {
        return 0;
    }
    if (s.blk_off > 0) {
        s.osize -= s.blk_off;
        std::memmove(areas.out.data(), areas.out.data() + s.blk_off, s.osize);
        s.blk_off = 0;
    }
    const std::size_t got = s.packed ? fill_packed(s) : fill_plain(s);
    s.osize += got;
    s.total += got;
    if (s.total > max_volume_bytes) {
        s.end = Lev2End::too_long;
    }
    return got > 0 ? 1 : 0;
}

// Reads the header, and looks at what follows it for the kind of volume. A
// piece of a packed volume has a unit at its front. Once a file.
void start(Stream& s) {
    if (s.started) {
        return;
    }
    s.started = true;
    Source& source = s.source;
    if (!source_has(source, s.file.get())) {
        return;
    }
    const auto is_unit = [&source](std::size_t at, std::size_t letters) {
        return source.left >= at + length_size + letters &&
               std::equal(bzip2_mark.begin(), bzip2_mark.begin() + static_cast<int>(letters),
                          source.at + at + length_size);
    };
    if (is_unit(0, 2)) {
        s.packed = true;
        return;
    }
    s.packed = is_unit(lev2_header_size, bzip2_mark.size());
    s.header_size = source_read(source, s.file.get(), s.header.data(), lev2_header_size);
}

} // namespace

// --- Shared with lev2_read.cpp ------------------------------------------------

void lev2_stream_open(FILE_ptr file) {
    stream = {};
    stream.file = std::move(file);
}

bool lev2_stream_is_open() {
    return stream.file != nullptr;
}

bool lev2_stream_rewind() {
    if (std::fseek(stream.file.get(), 0, SEEK_SET) != 0) {
        return false;
    }
    lev2_stream_open(std::move(stream.file));
    return true;
}

std::span<const std::uint8_t> lev2_stream_header() {
    start(stream);
    return std::span<const std::uint8_t>(stream.header).first(stream.header_size);
}

bool lev2_stream_packed() {
    start(stream);
    return stream.packed;
}

std::span<const std::uint8_t> lev2_record(std::size_t n) {
    start(stream);
    while (stream.osize - stream.blk_off < n && read_block(stream) == 1) {
    }
    return std::span<const std::uint8_t>(areas.out).subspan(stream.blk_off,
                                                            stream.osize - stream.blk_off);
}

void lev2_advance(std::size_t n) {
    const std::size_t held = lev2_record(n).size();
    stream.blk_off += std::min(n, held);
}

int lev2_units_walked() {
    Stream& s = stream;
    if (s.blk_off < s.osize) {
        return -1;
    }
    if (s.bz != nullptr && s.end == Lev2End::none) { // all but the stream's own end may be there
        s.blk_off = s.osize = 0;
        const std::size_t got = bunzip_step(s);
        s.osize += got;
        s.total += got;
    }
    return s.bz == nullptr && s.osize == s.blk_off ? s.units : -1;
}

std::vector<Lev2UnitPlace> lev2_list_units() {
    struct stat status = {};
    const int file = fileno(stream.file.get()); // -1: a stream of this program's own
    if (!lev2_stream_packed() || file < 0 || fstat(file, &status) != 0 ||
        !S_ISREG(status.st_mode)) {
        return {};
    }
    return hop_units(file, static_cast<std::int64_t>(stream.header_size), status.st_size);
}

bool lev2_unpack_head(Lev2UnitPlace unit, std::span<std::uint8_t> head) {
    const int file = fileno(stream.file.get());
    std::vector<std::uint8_t> in(piece_size);
    const BunzipStream bz(new bz_stream{});
    int status = bzip2_status(BZ2_bzDecompressInit(bz.get(), 0, 0));
    bz->next_out = reinterpret_cast<char*>(head.data());
    bz->avail_out = static_cast<unsigned>(head.size());
    while (status == BZ_OK && bz->avail_out > 0 && unit.size > 0) {
        const auto part = std::min(unit.size, static_cast<std::int64_t>(in.size()));
        const ssize_t got = pread(file, in.data(), static_cast<std::size_t>(part), unit.at);
        if (got <= 0) {
            return false;
        }
        unit.at += got;
        unit.size -= got;
        bz->next_in = reinterpret_cast<char*>(in.data());
        bz->avail_in = static_cast<unsigned>(got);
        status = bzip2_status(BZ2_bzDecompress(bz.get()));
    }
    return bz->avail_out == 0;
}

Lev2End lev2_stream_end() {
    return stream.end;
}
