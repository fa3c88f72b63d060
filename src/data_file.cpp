// data_file: opens radar files, whatever they are packed in. A plain file is
// given as it is. Of a gzip file or a pipe the reader gets a stream of its own,
// fed by this module: the first bytes are kept, so that a look at the kind of
// file costs a pipe nothing, and what follows is unpacked on demand. The state
// is the stream's and goes with it.
#include "data_file.h"

#include "files.h"
#include "no_memory.h"
#include "unpack.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

#include <unistd.h>

namespace {

constexpr std::size_t head_size = 4096;
constexpr std::size_t piece_size = 65536;
constexpr std::array<std::uint8_t, 2> gzip_mark = {0x1F, 0x8B};

struct Source {
    FILE_ptr file;
    InflateStream zs;    // null: what is read is given
    bool broken = false; // the gzip stream is damaged or not whole
    bool ended = false;  // or done
    std::size_t at = 0;  // bytes given to the reader
    std::size_t head_bytes = 0;
    std::array<std::uint8_t, head_size> head{};
    std::array<std::uint8_t, piece_size> piece{}; // input of the decompressor

    std::size_t read_file(std::uint8_t* to, std::size_t size) {
        return std::fread(to, 1, size, file.get());
    }
};

// More input for the gzip stream. False at the end of the file.
bool feed(Source& s) {
    if (s.zs->avail_in == 0) {
        s.zs->next_in = s.piece.data();
        s.zs->avail_in = static_cast<uInt>(s.read_file(s.piece.data(), s.piece.size()));
    }
    return s.zs->avail_in > 0;
}

// At the end of a gzip stream: whether another one follows.
bool next_member(Source& s) {
    return feed(s) && *s.zs->next_in == gzip_mark[0] && inflateReset(s.zs.get()) == Z_OK;
}

std::size_t unpack(Source& s, std::uint8_t* to, std::size_t size) {
    z_stream& zs = *s.zs;
    zs.next_out = to;
    zs.avail_out = static_cast<uInt>(std::min<std::size_t>(size, 1U << 30));
    const std::size_t room = zs.avail_out;
    while (zs.avail_out > 0 && !s.broken && !s.ended) {
        const int status = feed(s) ? zlib_status(inflate(&zs, Z_NO_FLUSH)) : Z_BUF_ERROR;
        if (status == Z_STREAM_END) {
            s.ended = !next_member(s);
        } else {
            s.broken = status != Z_OK;
        }
    }
    return room - zs.avail_out;
}

std::size_t produce(Source& s, std::uint8_t* to, std::size_t size) {
    return s.zs != nullptr ? unpack(s, to, size) : s.read_file(to, size);
}

// Reads the head, and finds out whether it is packed.
void start(Source& s) {
    s.at = 0;
    s.zs.reset();
    s.broken = s.ended = false;
    s.head_bytes = s.read_file(s.head.data(), s.head.size());
    if (s.head_bytes <= gzip_mark.size() ||
        !std::equal(gzip_mark.begin(), gzip_mark.end(), s.head.begin())) {
        return;
    }
    s.zs.reset(new z_stream{});
    constexpr int gzip_window = 16 + MAX_WBITS;
    s.broken = zlib_status(inflateInit2(s.zs.get(), gzip_window)) != Z_OK;
    std::copy_n(s.head.begin(), s.head_bytes, s.piece.begin());
    s.zs->next_in = s.piece.data();
    s.zs->avail_in = static_cast<uInt>(s.head_bytes);
    s.head_bytes = unpack(s, s.head.data(), s.head.size());
}

// --- The stream of the reader -----------------------------------------------------

Source& source_of(void* cookie) {
    return *static_cast<Source*>(cookie);
}

ssize_t read_source(void* cookie, char* to, std::size_t size) {
    Source& s = source_of(cookie);
    std::size_t got = 0;
    if (s.at < s.head_bytes) {
        got = std::min(size, s.head_bytes - s.at);
        std::memcpy(to, s.head.data() + s.at, got);
    } else {
        got = produce(s, reinterpret_cast<std::uint8_t*>(to), size);
    }
    s.at += got;
    if (got == 0 && (s.broken || std::ferror(s.file.get()) != 0)) {
        errno = EIO;
        return -1;
    }
    return static_cast<ssize_t>(got);
}

// Goes to the start alone.
int seek_source(void* cookie, off64_t* offset, int whence) {
    Source& s = source_of(cookie);
    if (whence == SEEK_CUR && *offset == 0) {
        *offset = static_cast<off64_t>(s.at);
        return 0;
    }
    if (whence != SEEK_SET || *offset != 0) {
        return -1;
    }
    if (s.at > s.head_bytes) {
        if (std::fseek(s.file.get(), 0, SEEK_SET) != 0) {
            return -1;
        }
        start(s);
    }
    s.at = 0;
    return 0;
}

int close_source(void* cookie) {
    const std::unique_ptr<Source> owner(&source_of(cookie));
    return 0;
}

} // namespace

std::FILE* FILE_open_data(const char* name) {
    // A file of a command's name was met by a shell's "*".
    const bool plain = *name == '|' && access(name, F_OK) == 0;
    FILE_ptr file(FILE_open(plain ? (std::string("./") + name).c_str() : name, "r"));
    if (file == nullptr) {
        return nullptr;
    }
    std::array<std::uint8_t, gzip_mark.size()> mark{};
    const bool goes_back = std::fseek(file.get(), 0, SEEK_SET) == 0;
    if (goes_back) {
        const bool packed =
            std::fread(mark.data(), 1, mark.size(), file.get()) == mark.size() && mark == gzip_mark;
        std::rewind(file.get());
        if (!packed) {
            return file.release();
        }
    }
    auto source = std::make_unique<Source>();
    source->file = std::move(file);
    start(*source);
    std::FILE* const stream =
        fopencookie(source.get(), "r", {read_source, nullptr, seek_source, close_source});
    static_cast<void>(source.release()); // it is the stream's now
    return ZYR_need(stream);
}

std::span<const std::uint8_t> FILE_head(std::FILE* file, std::span<std::uint8_t> area) {
    const std::size_t got = std::fread(area.data(), 1, std::min(area.size(), head_size), file);
    std::rewind(file);
    return area.first(got);
}
