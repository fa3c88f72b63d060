// nids_walk.h: the whole walk of a product as a plotter does it, with a sink
// that is told what is met.
#pragma once

#include "nids.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

// A sink that ignores everything; others hide what they need.
struct NidsSink {
    void packet(int /*code*/) {}                   // each, also the one that ends the walk
    void line(float /*angle*/, float /*width*/) {} // a radial; a raster row with 0, 0
    void run(const NIDS_data& /*data*/) {}
    void vector(const NIDS_vector_data& /*data*/) {}
    void wind(const NIDS_wind_data& /*data*/) {}
    void text(const NIDS_text_data& /*data*/) {}
    void symbol(const NIDS_symbol& /*data*/) {} // while they are taken
    void page(int /*number*/) {}
};

template <typename Sink> void nids_walk_packet(FILE* file, int type, Sink& sink) {
    NIDS_data data;
    NIDS_vector_data vector;
    NIDS_wind_data wind;
    NIDS_text_data text;
    NIDS_symbol symbol;
    float angle = 0;
    float width = 0;
    switch (type) {
    case nids_packet_radial:
    case nids_packet_dig_radial:
        while (NIDS_get_radial(file, &angle, &width) > 0) {
            sink.line(angle, width);
            while (NIDS_get_data(file, &data) > 0) {
                sink.run(data);
            }
        }
        break;
    case nids_packet_raster:
    case nids_packet_raster_alt:
    case nids_packet_dig_precip:
        while (NIDS_get_rastor(file) > 0) {
            sink.line(0, 0);
            while (NIDS_get_data(file, &data) > 0) {
                sink.run(data);
            }
        }
        break;
    case nids_packet_vector:
    case nids_packet_vector_val:
        while (NIDS_get_vector(file, &vector) > 0) {
            sink.vector(vector);
        }
        break;
    case nids_packet_wind:
        while (NIDS_get_wind(file, &wind) > 0) {
            sink.wind(wind);
        }
        break;
    case nids_packet_text:
    case nids_packet_text_val:
        if (NIDS_get_text(file, &text) > 0) {
            sink.text(text);
        }
        break;
    default:
        while (NIDS_is_symbol(type) != 0 && NIDS_get_symbol(file, &symbol) > 0) {
            sink.symbol(symbol);
        }
        break;
    }
}

// Header, symbology block and pages. Returns the result of NIDS_get_header.
template <typename Sink> int nids_walk(FILE* file, NIDS_info& info, Sink& sink) {
    if (NIDS_get_header(file, &info) != 1) {
        return 0;
    }
    int type = info.type;
    int status = NIDS_packet_status();
    for (; status > 0; status = NIDS_packet(file, &type)) {
        sink.packet(type);
        nids_walk_packet(file, type, sink);
    }
    if (status == 0) {
        sink.packet(type);
    }
    if (NIDS_trends(file) == 1) {
        while (NIDS_packet(file, &type) > 0) {
            sink.packet(type);
            nids_walk_packet(file, type, sink);
        }
    }
    if (NIDS_graphic(file) == 1) {
        for (int page = NIDS_graphic_layer(file); page != 0; page = NIDS_graphic_layer(file)) {
            sink.page(page);
            while (NIDS_packet(file, &type) > 0) {
                nids_walk_packet(file, type, sink);
            }
        }
    }
    return 1;
}

using NidsFile = std::unique_ptr<FILE, int (*)(FILE*)>;

// The bytes as an open file; they must outlive it.
inline NidsFile nids_memory(const std::vector<std::uint8_t>& bytes) {
    FILE* file = bytes.empty()
                     ? std::fopen("/dev/null", "rb")
                     : fmemopen(const_cast<std::uint8_t*>(bytes.data()), bytes.size(), "rb");
    return {file, std::fclose};
}
