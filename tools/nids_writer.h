// nids_writer.h: makes NIDS products for tests, benches, fuzz seeds and the
// demo: packets are put together as bytes, nids_message adds the header blocks.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

// Big-endian halfwords; their low 16 bits count.
Bytes nids_words(std::initializer_list<int> values);
Bytes nids_join(std::initializer_list<Bytes> parts);

// --- Packets ----------------------------------------------------------------

// Radials around the whole circle, of code 16 (a level a byte) or 0xAF1F (a
// run a byte, an even number of them).
Bytes nids_radial_packet(int code, int bins, const std::vector<Bytes>& radials);
// Rows of code 0xBA0F, 0xBA07 or 17, each with its length in front; a row of
// odd length is padded unless `pack` is 1.
Bytes nids_raster_packet(int code, int pack, const std::vector<Bytes>& rows);
// Text of code 1 or 8.
Bytes nids_text_packet(int code, int value, int i, int j, const std::string& text);

// Storm symbols: a packet of these halfwords, of a name or a symbol's letter at a
// place, of a track (23 past, 24 forecast) from a place by the letters and a line.
// Places are quarters of a kilometre east and north of the radar.
struct NidsPlace {
    int i, j;
};
Bytes nids_symbol_packet(int code, std::initializer_list<int> values);
Bytes nids_name_packet(int code, NidsPlace at, const std::string& name);
Bytes nids_track_packet(int code, char letter, const std::vector<NidsPlace>& places);
// A storm's name with its top, percent of hail and of severe hail over the last
// volumes, the last first (packet 21; eighths of a kilometre).
Bytes nids_trend_packet(const std::string& name, NidsPlace at,
                        const std::vector<std::array<int, 3>>& volumes);

// A page of the graphic block: lines of text in a table with rules at `columns`.
Bytes nids_page_packets(const std::vector<std::string>& lines, const std::vector<int>& columns);

// --- Products ---------------------------------------------------------------

// A product before it is put together. Radar: KTLX, Oklahoma City.
struct NidsSample {
    int code = 94;
    int src = 1;
    int lat = 35333, lon = -97278; // thousandths of a degree
    int height = 1277;             // feet
    int mode = 2, vcp = 12;
    int days = 18037, seconds = 81084; // 20 May 2019 22:31:24
    std::array<int, 11> p{};           // parameters p[1] to p[10]
    std::array<int, 16> thres{};
    std::vector<Bytes> layers; // packets of each symbology layer
    std::vector<Bytes> pages;  // packets of each page of the graphic block
    Bytes trends;              // in the place of pages: packets without a block
    std::string tabular;       // one page of 80 columns a line
    bool bzip2 = false;        // pack the symbology block and what follows
};

// Message header, product description and blocks.
Bytes nids_message(const NidsSample& sample);

// --- Wrappers ---------------------------------------------------------------

Bytes nids_bzip2(const Bytes& data);
// A message after the wrapper with these first two bytes, such as "SD".
Bytes nids_wrapped(const std::string& mark, const Bytes& message);
// The message in `streams` zlib streams, with its 54 lead bytes.
Bytes nids_zlib(const Bytes& message, int streams);
// Several messages in one file.
Bytes nids_collective(const std::vector<Bytes>& messages);

// --- Samples ----------------------------------------------------------------

// A small product of every kind of packet, wrapper and compression, by name.
std::vector<std::pair<std::string, Bytes>> nids_samples();
