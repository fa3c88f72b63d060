// nids_impl.h: what the sources of the NIDS reader share: the decoded header
// blocks (nids_value.cpp, filled in by nids_header.cpp), the hold on the stream
// (nids.cpp) and the packets of storm symbols (nids_symbols.cpp).
#pragma once

#include "nids.h"

#include <array>
#include <cstdint>

struct NidsMessHeader {
    int code = 0;
    int date = 0;
    int time = 0;
    int len = 0;
    int src = 0;
    int dest = 0;
    int nblock = 0;
};

struct NidsProdDesc {
    int divider = 0;
    int lat = 0, lon = 0; // thousandths of a degree
    int height = 0;       // feet
    int code = 0;
    int op_mode = 0;
    int vol_cov_pat = 0;
    int seq_num = 0;
    int vol_scan_num = 0;
    int vol_scan_date = 0; // day 1 being 1 January 1970
    int vol_scan_time = 0; // seconds of the day
    int prod_gen_date = 0;
    int prod_gen_time = 0;
    std::array<int, 11> p{}; // product parameters p[1] to p[10]
    int elev = 0;            // elevation number
    std::array<std::uint16_t, nids_num_thres> thres{};
    int nmaps = 0;
    int off_symb = 0, off_graph = 0, off_tab = 0; // halfwords from the message header, 0: none
};

struct NidsHeader {
    NidsMessHeader mess;
    NidsProdDesc pr_desc;
    std::array<float, nids_num_thres> thres{};
    std::array<float, nids_num_thres> levels{}; // the values of 16 levels; `thres` are their bounds
    bool exact = false;                         // as NIDS_set_exact says
};

// The header blocks of the open product.
const NidsHeader& nids_header();
NidsHeader& nids_fill_header(); // for nids_header.cpp alone
// A number of tenths; and one that a damaged product may hold, an infinity being missing.
float nids_tenths(int value);
float nids_finite(float v);
constexpr float nids_usual_bin_nmi = 0.54F; // for a length that is not known

// Starts a new product: the next read takes the file from where it is.
void nids_restart();
// The product code, two bytes, was read: offsets count from it.
void nids_begin_message();
// The next bytes may open a compressed stream.
void nids_expect_compression();
// Whether the product is inside a zlib stream.
bool nids_in_zlib();
// Code of the packet read last, 0xBA07 as 0xBA0F; 0: none.
int nids_packet_code();
// Numbers of the open radial or raster header: bins of a radial, rows.
int nids_num_bins();
int nids_num_rows();

// Passes over bytes of the stream. Result as NIDS_read.
int nids_skip_bytes(FILE* ifile, long n);

// Whether the walk takes a packet as one of storm symbols, or that passes over it
// by its own length. Opens it after its code: returns 1; -1 at the end of the stream.
bool nids_is_symbol_packet(int code);
// How it reads: NIDS_read and nids_skip_bytes, whose module calls it.
struct NidsSource {
    int (*read)(unsigned char* data, int dsize, FILE* ifile);
    int (*skip)(FILE* ifile, long n);
};
int nids_open_symbols(FILE* ifile, int code, const NidsSource& source);

// Length of a bin of the open product, km along the beam, and what it is along the
// ground, 1 where the scale factor of its packet is not the cosine of the elevation.
float nids_bin_km();
float nids_ground_factor(int packet_scale);

// Value of one of the 256 levels of a digital radial or precipitation packet.
float nids_level_value(const NidsHeader& header, int packet, int level);
