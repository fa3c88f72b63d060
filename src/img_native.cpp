// img_native: the native image format: a text header that can place the picture
// on the earth, and a byte a pixel. State: how long a reader waits for a file
// that is still being written.
//
//   line 1  "ZYRIMG" and flag letters: Z compressed, 4 a domain text in line 4,
//           * pixels in another file, V and C further headers
//   line 2  date label     line 3  description
//   line 4  "width height", or a projection word, clat clon dx dy nx ny
//   ...     width * height bytes; compressed: a zlib stream for each 10000 bytes
#include "img_kind.h"
#include "img_pixel.h"

#include "date.h"
#include "files.h"
#include "maptran.h"
#include "out_file.h"
#include "region.h"
#include "text_num.h"
#include "unpack.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

namespace {

constexpr char magic[] = "ZYRIMG";
constexpr std::size_t magic_size = sizeof magic - 1;
constexpr std::size_t piece_size = 10000; // bytes of pixels in a stream

struct Patience {
    int tries = 10; // seconds without anything new
};
Patience patience;

// --- Writing --------------------------------------------------------------------

// The byte that stands for each pixel of a row: the mean of the components at 32
// bits a pixel, else the least significant byte.
void row_bytes(const IMG_report& image, int row, std::vector<std::uint32_t>* values,
               std::uint8_t* out) {
    const bool mean = image.bits_pixel == 32;
    IMG_row_values(image, row, image.width, values->data());
    std::transform(values->begin(), values->end(), out, [mean](std::uint32_t v) {
        const std::uint32_t sum = (v >> 16) + (v >> 8 & 0xFF) + (v & 0xFF);
        return static_cast<std::uint8_t>(mean ? sum / 3 : v);
    });
}

std::string one_line(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string projection_line(const IMG_report& image) {
    const Domain& d = image.domain;
    char numbers[200];
    if (!is_set(d.proj)) {
        std::snprintf(numbers, sizeof numbers, "%d %d\n", image.width, image.height);
        return numbers;
    }
    std::snprintf(numbers, sizeof numbers, "%f %f %f %f %d %d\n", static_cast<double>(d.clat),
                  static_cast<double>(d.clon), static_cast<double>(d.dx), static_cast<double>(d.dy),
                  d.nx, d.ny);
    return DOM_proj_word(&d) + numbers;
}

bool write_pieces(std::FILE* file, const std::vector<std::uint8_t>& bytes) {
    std::vector<std::uint8_t> out(compressBound(piece_size));
    for (std::size_t at = 0; at < bytes.size(); at += piece_size) {
        uLongf size = out.size();
        const auto n = static_cast<uLong>(std::min(piece_size, bytes.size() - at));
        if (compress(out.data(), &size, bytes.data() + at, n) != Z_OK ||
            std::fwrite(out.data(), 1, size, file) != size) {
            return false;
        }
    }
    return true;
}

int write_file(const char* filename, const IMG_report& image, bool packed) {
    if (!IMG_is_sound(image, "IMG_write")) {
        return 0;
    }
    OutputPtr file(open_output(filename, false));
    if (!file) {
        MESS_print(mess_warn, "Unable to open: %s\n", filename);
        return 0;
    }
    std::fprintf(file.get(), "%s%s\n%s\n%s\n%s", magic, packed ? "Z" : "",
                 one_line(image.datim).c_str(), one_line(image.info).c_str(),
                 projection_line(image).c_str());
    const auto width = static_cast<std::size_t>(image.width);
    std::vector<std::uint8_t> bytes(width * static_cast<std::size_t>(image.height));
    std::vector<std::uint32_t> values(width);
    for (int row = 0; row < image.height; ++row) {
        row_bytes(image, row, &values, bytes.data() + width * static_cast<std::size_t>(row));
    }
    const bool written =
        packed ? write_pieces(file.get(), bytes)
               : std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    return written && close_output(file.release()) == 0 ? 1 : 0;
}

// --- Reading --------------------------------------------------------------------

struct ProjWord {
    const char* text; // its first letters
    int proj;
};
constexpr ProjWord proj_words[] = {
    {"LL", proj_latlon   },
    {"ME", proj_merc     },
    {"PS", proj_pstereo  },
    {"LC", proj_lambert  },
    {"SA", proj_satellite},
};

bool read_line(std::FILE* file, std::string* line) {
    constexpr std::size_t longest = 250;
    line->clear();
    for (int c = std::getc(file); c != '\n'; c = std::getc(file)) {
        if (c == EOF) {
            return false;
        }
        if (line->size() < longest) {
            line->push_back(static_cast<char>(c));
        }
    }
    if (!line->empty() && line->back() == '\r') {
        line->pop_back();
    }
    return true;
}

// The numbers after a projection word.
void decode_proj_word(const std::string& word, Domain* d) {
    const std::size_t colon = word.find(':');
    const char* numbers = colon == std::string::npos ? "" : word.c_str() + colon;
    std::array<float, 5> v{};
    std::size_t n = 0;
    while (n < v.size() && take_char(&numbers, ':') && take_float(&numbers, &v[n])) {
        ++n;
    }
    switch (d->proj) {
    case proj_pstereo:
        if (n >= 1) {
            d->plon = v[0];
        }
        break;
    case proj_lambert:
        if (n == 5) {
            d->plat = v[0];
            d->plon = v[1];
            std::copy_n(&v[2], 3, d->param);
        } else if (n >= 1) {
            d->plon = v[0];
        }
        break;
    case proj_satellite:
        if (n >= 2) {
            d->plat = v[0];
            d->plon = v[1];
        }
        if (n >= 3) {
            d->param[0] = v[2];
        }
        break;
    default:
        break;
    }
}

// A domain text can also name files and ask the user; one that came in a file
// gives numbers alone, after a projection word. Decoding it leaves the plot's
// own domain settings as they were.
bool decode_domain(const std::string& text, Domain* d) {
    const std::size_t word = std::min(text.find_first_of(":,"), text.size());
    const bool has_word = DOM_proj_str(text.substr(0, word).c_str()) > 0;
    if (text.find_first_not_of("0123456789+-.eE:,", has_word ? word : 0) != std::string::npos) {
        return false;
    }
    char key[file_name_size] = "";
    FILE_get_key('r', key);
    const int flag = FLAG_get(flag_domain);
    const int prior = DOM_get_prior();
    const bool good = DOM_decode(text.c_str(), d) == dom_by_value;
    FILE_set_key('r', key);
    FLAG_set(flag_domain, flag);
    DOM_set_prior(prior);
    return good;
}

bool decode_location(const std::string& line, Domain* d) {
    const std::size_t start = line.find_first_not_of(' ');
    if (start == std::string::npos) {
        return false;
    }
    const bool has_word = std::isalpha(static_cast<unsigned char>(line[start])) != 0;
    const std::size_t blank = has_word ? line.find(' ', start) : start;
    if (blank == std::string::npos) {
        return false;
    }
    for (const ProjWord& row : proj_words) {
        if (has_word && line.compare(start, 2, row.text) == 0) {
            d->proj = row.proj;
        }
    }
    decode_proj_word(line.substr(start, blank - start), d);
    const char* at = line.c_str() + blank;
    return take_float(&at, &d->clat) && take_float(&at, &d->clon) && take_float(&at, &d->dx) &&
           take_float(&at, &d->dy) && take_int(&at, &d->nx) && take_int(&at, &d->ny);
}

bool decode_size(const std::string& line, bool version4, IMG_report* image) {
    Domain& d = image->domain;
    const char* at = line.c_str();
    if (!version4 && take_int(&at, &image->width) && take_int(&at, &image->height) &&
        string_is_blank(at) != 0) {
        d.nx = image->width;
        d.ny = image->height;
        return d.nx > 0 && d.ny > 0;
    }
    if (version4 ? !decode_domain(line, &d) : !decode_location(line, &d)) {
        return false;
    }
    image->width = d.nx;
    image->height = d.ny;
    return d.nx > 0 && d.ny > 0;
}

bool skip_bytes(std::FILE* file, int count) {
    for (int i = 0; i < count; ++i) {
        if (std::getc(file) == EOF) {
            return false;
        }
    }
    return true;
}

bool skip_headers(std::FILE* file, const std::string& flags) {
    constexpr int block = 1024;
    if (flags.find('V') != std::string::npos && !skip_bytes(file, block)) {
        return false;
    }
    if (flags.find('C') == std::string::npos) {
        return true;
    }
    if (!skip_bytes(file, 3)) {
        return false;
    }
    const int count = std::getc(file);
    return count != EOF && skip_bytes(file, 2 * count);
}

// Inflates stream after stream.
class Unpacker {
public:
    Unpacker() { active = zlib_status(inflateInit(&stream)) == Z_OK; }
    ~Unpacker() { inflateEnd(&stream); }
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;

    // Takes a block of input. False when the output is full or the data are
    // damaged.
    bool feed(std::uint8_t* in, std::size_t n) {
        stream.next_in = in;
        stream.avail_in = static_cast<uInt>(n);
        while (active && stream.avail_in > 0 && stream.avail_out > 0) {
            const int status = zlib_status(inflate(&stream, Z_SYNC_FLUSH));
            if (status == Z_STREAM_END) {
                inflateReset(&stream);
            } else if (status != Z_OK) {
                return false;
            }
        }
        return active && stream.avail_out > 0;
    }
    [[nodiscard]] std::size_t room() const { return stream.avail_out; }
    void set_output(std::uint8_t* out, std::size_t n) {
        stream.next_out = out;
        stream.avail_out = static_cast<uInt>(n);
    }

private:
    z_stream stream{};
    bool active = false;
};

// A file that gives no more may be growing: it is asked again for some seconds.
// Returns the bytes that came.
std::size_t read_packed(std::FILE* file, std::uint8_t* out, std::size_t size) {
    std::array<std::uint8_t, piece_size> in{};
    Unpacker unpacker;
    unpacker.set_output(out, size);
    for (int tries = 0;;) {
        const std::size_t n = std::fread(in.data(), 1, in.size(), file);
        if (n > 0) {
            tries = 0;
            if (!unpacker.feed(in.data(), n)) {
                return size - unpacker.room();
            }
        } else if (tries++ < patience.tries) {
            std::clearerr(file);
            ZYR_sleep(1.0F);
        } else {
            return size - unpacker.room();
        }
    }
}

// The file that the next word names: a plain file in the directory of the image.
// A name that came in a file opens nothing else: no command, device or FIFO.
FILE_ptr open_pixels(std::FILE* file, const std::string& filename) {
    char name[file_name_size] = "";
    // NOLINTNEXTLINE(cert-err34-c): a word, no number
    const bool named = std::fscanf(file, "%159s", name) == 1;
    const std::string path = filename.substr(0, filename.rfind('/') + 1) + name;
    FILE_ptr pixels;
    if (named && std::strchr(name, '/') == nullptr && path.size() < file_name_size) {
        char full[file_name_size];
        // Without waiting for the writer of a FIFO.
        const int fd = open(FILE_add_user_path(path.c_str(), full), O_RDONLY | O_NONBLOCK);
        struct stat info {};
        const bool plain = fd >= 0 && fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
        pixels.reset(plain ? fdopen(fd, "rb") : nullptr);
        if (!pixels && fd >= 0) {
            close(fd);
        }
    }
    if (!pixels) {
        MESS_print(mess_warn, "Unable to open: %s\n", name);
    }
    return pixels;
}

bool read_pixels(std::FILE* file, const char* filename, const std::string& flags,
                 IMG_report* image) {
    const std::size_t size =
        static_cast<std::size_t>(image->bytes_line) * static_cast<std::size_t>(image->height);
    FILE_ptr other;
    if (flags.find('*') != std::string::npos) {
        other = open_pixels(file, filename);
        if (!other) {
            return false;
        }
        file = other.get();
    }
    const std::size_t got = flags.find('Z') != std::string::npos
                                ? read_packed(file, image->data.get(), size)
                                : std::fread(image->data.get(), 1, size, file);
    if (got < size) { // what arrived is kept
        MESS_print(mess_warn, "IMG_read_zyr: Pixels are missing: %s\n", filename);
    }
    return true;
}

} // namespace

int IMG_set_patience(int tries) {
    patience.tries = tries;
    return 0;
}

int IMG_encode(const char* filename, const IMG_report& image, const IMG_look& /*look*/) {
    return write_file(filename, image, false);
}

int IMG_write(const char* filename, IMG_report* image, int type) {
    return write_file(filename, *image, type == 1);
}

int IMG_read_zyr(const char* filename, IMG_report* image, int type) {
    const FILE_ptr file(FILE_open(filename, "rb"));
    if (!file) {
        MESS_print(mess_warn, "Unable to open: %s\n", filename);
        return 0;
    }
    std::string first;
    std::string line;
    if (read_line(file.get(), &first) && first.compare(0, 3, "** ") == 0) {
        read_line(file.get(), &first);
    }
    if (first.compare(0, magic_size, magic) != 0) {
        MESS_print(mess_warn, "IMG_read_zyr: Invalid image type\n");
        return 0;
    }
    const std::string flags = first.substr(magic_size);
    IMG_init(image);
    image->source = img_native;
    read_line(file.get(), &line);
    copy_text(image->datim, sizeof image->datim, line.c_str());
    DATE_decode_label(image->datim, &image->date);
    read_line(file.get(), &line);
    copy_text(image->info, sizeof image->info, line.c_str());
    if (!read_line(file.get(), &line) ||
        !decode_size(line, flags.find('4') != std::string::npos, image)) {
        MESS_print(mess_warn, "IMG_read_zyr: Invalid image size: %s\n", filename);
        return 0;
    }
    image->depth = 8;
    image->bits_pixel = 8;
    image->bytes_line = image->width;
    if (type == 1) {
        return 1;
    }
    if (!skip_headers(file.get(), flags) || IMG_alloc(image) == 0) {
        MESS_print(mess_warn, "IMG_read_zyr: Invalid image size: %s\n", filename);
        return 0;
    }
    return read_pixels(file.get(), filename, flags, image) ? 1 : 0;
}
