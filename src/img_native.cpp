// img_native: the native image format: a text header that can place the picture
// on the earth, and a byte a pixel. State: how long a reader waits for a file
// that is still being written.
//
//   line 1  "ZYRIMG" and flag letters: Z compressed, 4 a domain text in line 4,
//           * pixels in another file, V and C further headers
//   line 2  date label     line 3  description
//   line 4  "width height", or a projection word, clat clon dx dy nx ny
//   ...     width * height bytes; compressed: a zlib stream for each 10000 bytes
#include "img_pixel.h"

#include "date.h"
#include "files.h"
#include "maptran.h"
#include "region.h"
#include "text_num.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

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

// The byte that stands for each pixel of a row.
void row_bytes(const IMG_report& image, int row, std::uint8_t* out) {
    const unsigned char* p = image.data + static_cast<std::size_t>(image.bytes_line) * row;
    const int held = std::min(image.width, IMG_line_pixels(image));
    const bool high = image.byte_order == 1;
    std::fill_n(out, image.width, std::uint8_t{0});
    if (image.bits_pixel == 32) {
        for (int x = 0; x < held; x++, p += 4) {
            const int first = high ? 1 : 0;
            out[x] = static_cast<std::uint8_t>((p[first] + p[first + 1] + p[first + 2]) / 3);
        }
    } else if (image.depth == 24) {
        for (int x = 0; x < held; x++, p += 3) {
            out[x] = p[high ? 2 : 0];
        }
    } else if (image.depth == 16 || image.depth == 15) {
        for (int x = 0; x < held; x++, p += 2) {
            out[x] = p[high ? 1 : 0];
        }
    } else {
        std::vector<std::uint32_t> values(static_cast<std::size_t>(image.width));
        IMG_row_values(image, row, image.width, values.data());
        std::transform(values.begin(), values.end(), out,
                       [](std::uint32_t v) { return static_cast<std::uint8_t>(v); });
    }
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

// The numbers behind a projection word.
void decode_proj_word(const std::string& word, Domain* d) {
    const std::size_t colon = word.find(':');
    const char* numbers = colon == std::string::npos ? "" : word.c_str() + colon;
    std::array<float, 5> v{};
    std::size_t n = 0;
    while (n < v.size() && take_char(&numbers, ':') && take_float(&numbers, &v[n])) {
        n++;
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
    // NOLINTNEXTLINE(cert-err34-c): six numbers of one line, each checked by the count
    return std::sscanf(line.c_str() + blank, "%f %f %f %f %d %d", &d->clat, &d->clon, &d->dx,
                       &d->dy, &d->nx, &d->ny) == 6;
}

bool decode_size(const std::string& line, bool version4, IMG_report* image) {
    char end = 0;
    // NOLINTNEXTLINE(cert-err34-c): two numbers alone on a line, checked by the count
    if (!version4 &&
        std::sscanf(line.c_str(), "%d %d %c", &image->width, &image->height, &end) == 2) {
        return true;
    }
    Domain& d = image->domain;
    if (version4 ? DOM_decode(line.c_str(), &d) < 1 : !decode_location(line, &d)) {
        return false;
    }
    image->width = d.nx;
    image->height = d.ny;
    return true;
}

bool skip_bytes(std::FILE* file, int count) {
    for (int i = 0; i < count; i++) {
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
    Unpacker() { active = inflateInit(&stream) == Z_OK; }
    ~Unpacker() { inflateEnd(&stream); }
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;

    // Takes a block of input. False when the output is full or the data are
    // damaged.
    bool feed(std::uint8_t* in, std::size_t n) {
        stream.next_in = in;
        stream.avail_in = static_cast<uInt>(n);
        while (active && stream.avail_in > 0 && stream.avail_out > 0) {
            const int status = inflate(&stream, Z_SYNC_FLUSH);
            if (status == Z_STREAM_END) {
                inflateReset(&stream);
            } else if (status != Z_OK) {
                return false;
            }
        }
        return active && stream.avail_out > 0;
    }
    void set_output(std::uint8_t* out, std::size_t n) {
        stream.next_out = out;
        stream.avail_out = static_cast<uInt>(n);
    }

private:
    z_stream stream{};
    bool active = false;
};

// A file that gives no more may be growing: it is asked again for some seconds.
void read_packed(std::FILE* file, std::uint8_t* out, std::size_t size) {
    std::array<std::uint8_t, piece_size> in{};
    Unpacker unpacker;
    unpacker.set_output(out, size);
    for (int tries = 0;;) {
        const std::size_t n = std::fread(in.data(), 1, in.size(), file);
        if (n > 0) {
            tries = 0;
            if (!unpacker.feed(in.data(), n)) {
                return;
            }
        } else if (tries++ < patience.tries) {
            std::clearerr(file);
            ZYR_sleep(1.0F);
        } else {
            return;
        }
    }
}

bool read_pixels(std::FILE* file, const std::string& flags, IMG_report* image) {
    const std::size_t size =
        static_cast<std::size_t>(image->bytes_line) * static_cast<std::size_t>(image->height);
    if (flags.find('*') != std::string::npos) {
        char name[file_name_size] = "";
        // NOLINTNEXTLINE(cert-err34-c): a word, no number
        const FILE_ptr pixels(std::fscanf(file, "%159s", name) == 1 ? FILE_open(name, "rb")
                                                                    : nullptr);
        // Fewer pixels leave the rest as it is.
        return pixels && std::fread(image->data, 1, size, pixels.get()) <= size;
    }
    if (flags.find('Z') != std::string::npos) {
        read_packed(file, image->data, size);
        return true;
    }
    return std::fread(image->data, 1, size, file) <= size;
}

} // namespace

int IMG_set_patience(int tries) {
    patience.tries = tries;
    return 0;
}

int IMG_write(const char* filename, IMG_report* image, int type) {
    const FILE_ptr file(FILE_open(filename, "wb"));
    if (!file) {
        MESS_print(mess_warn, "Unable to open: %s\n", filename);
        return 0;
    }
    if (image->data == nullptr) {
        return 0;
    }
    std::fprintf(file.get(), "%s%s\n%s\n%s\n%s", magic, type == 1 ? "Z" : "", image->datim,
                 image->info, projection_line(*image).c_str());
    const auto width = static_cast<std::size_t>(image->width);
    std::vector<std::uint8_t> bytes(width * static_cast<std::size_t>(image->height));
    for (int row = 0; row < image->height; row++) {
        row_bytes(*image, row, bytes.data() + width * static_cast<std::size_t>(row));
    }
    const bool written =
        type == 1 ? write_pieces(file.get(), bytes)
                  : std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    return written && std::fflush(file.get()) == 0 ? 1 : 0;
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
    return read_pixels(file.get(), flags, image) ? 1 : 0;
}
