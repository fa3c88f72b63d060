#include "image_sample.h"

#include "maptran.h"
#include "memory_file.h"

#include <cmath>
#include <cstring>

namespace {

std::uint32_t scatter(std::uint32_t n) {
    n = (n ^ n >> 15) * 0x2C1B3C6DU;
    return n ^ n >> 13;
}

// A table of this many entries goes with pixels of up to 8 bits.
int table_size(const ImageSample& sample) {
    return sample.depth > 8 ? 0 : 1 << sample.depth;
}

void put_pixel(const IMG_report& image, int x, int y, std::uint32_t value) {
    const std::size_t row = static_cast<std::size_t>(image.bytes_line) * y;
    if (image.bits_pixel < 8) { // one bit: the lowest first
        const int place = x % (8 / image.bits_pixel);
        const int shift = image.bits_pixel == 1 ? place : 8 - image.bits_pixel * (place + 1);
        unsigned char& byte = image.data[row + x * image.bits_pixel / 8];
        byte = static_cast<unsigned char>(byte | value << shift);
        return;
    }
    const int bytes = image.bits_pixel / 8;
    for (int i = 0; i < bytes; ++i) {
        const int place = image.byte_order == 0 ? i : bytes - 1 - i;
        image.data[row + static_cast<std::size_t>(x * bytes + i)] =
            static_cast<unsigned char>(value >> 8 * place);
    }
}

} // namespace

int image_color_at(const ImageSample& sample, int x, int y) {
    const double dx = x - sample.width / 2.0;
    const double dy = y - sample.height / 2.0;
    const auto range = static_cast<std::uint32_t>(std::hypot(dx, dy) / 4);
    const auto azimuth = static_cast<std::uint32_t>((std::atan2(dy, dx) + 4) * 60);
    const std::uint32_t cell = scatter(range * 1000 + azimuth);
    const double echo = std::sin(x * 0.011) * std::cos(y * 0.017) + cell % 1000 * 0.0006;
    if ((x + 7 * y) % 211 == 0 || echo < 0.3) {
        return echo < 0.3 ? 0 : 1 % sample.colors;
    }
    return static_cast<int>(cell / 1000 % static_cast<unsigned>(sample.colors));
}

std::uint32_t image_value(const ImageSample& sample, int color) {
    const auto n = static_cast<std::uint32_t>(color);
    return sample.depth <= 8 ? n : n * 0x9E3779B1U >> (32 - sample.depth);
}

std::uint32_t image_rgb(const ImageSample& sample, int color) {
    const std::uint32_t value = image_value(sample, color);
    switch (sample.depth) {
    case 24:
        return value;
    case 16: // 5, 6 and 5 bits
        return (value & 0xF800) << 8 | (value & 0x7E0) << 5 | (value & 0x1F) << 3;
    default:
        return static_cast<std::uint32_t>(color) * 0x9E3779B1U >> 8;
    }
}

IMG_report image_sample(const ImageSample& sample) {
    IMG_report image;
    std::snprintf(image.info, sizeof image.info, "sample %dx%d", sample.width, sample.height);
    image.width = sample.width;
    image.height = sample.height;
    image.depth = sample.depth;
    image.bits_pixel = sample.bits_pixel;
    image.bytes_line = (sample.width * sample.bits_pixel + 31) / 32 * 4;
    image.byte_order = sample.byte_order;
    image.color_type = sample.depth > 8 ? 0 : 1;
    if (sample.depth > 8) {
        image.red = sample.depth == 16 ? 0xF800 : 0xFF0000;
        image.grn = sample.depth == 16 ? 0x7E0 : 0xFF00;
        image.blu = sample.depth == 16 ? 0x1F : 0xFF;
    } else if (IMG_alloc_colors(&image, table_size(sample)) == 1) {
        for (int i = 0; i < image.num_colors; ++i) {
            const std::uint32_t rgb = image_rgb(sample, i);
            image.colors[i] = {static_cast<float>(rgb >> 16) / 255.0F,
                               static_cast<float>(rgb >> 8 & 0xFF) / 255.0F,
                               static_cast<float>(rgb & 0xFF) / 255.0F};
        }
    }
    if (IMG_alloc(&image) == 1) {
        for (int y = 0; y < sample.height; ++y) {
            for (int x = 0; x < sample.width; ++x) {
                put_pixel(image, x, y, image_value(sample, image_color_at(sample, x, y)));
            }
        }
    }
    return image;
}

std::vector<std::pair<std::string, std::vector<std::uint8_t>>>
image_samples(const std::string& kind) {
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files;
    const MemoryFile file({});
    const auto keep = [&](const std::string& name, int written) {
        if (written == 1) {
            files.emplace_back(name, file.bytes());
        }
    };
    IMG_report deep = image_sample({21, 13, 24, 32, 30, 0});
    IMG_report flat = image_sample({19, 11, 8, 8, 60, 0});
    if (kind == "gif") {
        GIF_interlace(1);
        GIF_transparent(1);
        keep("interlaced", GIF_write(file.name(), &deep));
        GIF_interlace(0);
        GIF_transparent(0);
        keep("plain", GIF_write(file.name(), &flat));
    } else if (kind == "png") {
        keep("palette", PNG_write(file.name(), &deep));
    } else if (kind == "xwd") {
        keep("true_color", XWD_write(file.name(), &deep));
        flat.num_colors = 20;
        keep("indexed", XWD_write(file.name(), &flat));
    } else if (kind == "native") {
        keep("packed", IMG_write(file.name(), &deep, 1));
        flat.domain.proj = proj_lambert;
        flat.domain.clat = flat.domain.plat = 35.0F;
        flat.domain.clon = flat.domain.plon = -97.0F;
        flat.domain.param[0] = flat.domain.param[1] = 33.0F;
        flat.domain.dx = flat.domain.dy = 0.5F;
        flat.domain.nx = flat.width;
        flat.domain.ny = flat.height;
        keep("located", IMG_write(file.name(), &flat, 0));
    }
    return files;
}
