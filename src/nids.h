// nids.h: the reader of NIDS (WSR-88D Level III) product files.
//
// One product is open at a time. NIDS_get_header reads the file from its start
// up to and including the header of the first symbology packet. The caller
// then walks on from there:
//
//   radial packet (0xAF1F, 16)        NIDS_get_radial, and in it NIDS_get_data
//   raster packet (0xBA0F, 0xBA07, 17) NIDS_get_rastor, and in it NIDS_get_data
//   vectors (7, 10)                   NIDS_get_vector
//   wind barbs (4)                    NIDS_get_wind
//   text (1, 8)                       NIDS_get_text, once
//   storm symbols (see there)         NIDS_get_symbol, if they were asked for
//
// each until it gives a result below 1, then NIDS_packet for the next packet.
// When NIDS_packet gives 0 or less the symbology block is done: NIDS_graphic,
// and if it returns 1, NIDS_graphic_layer for each page and in it NIDS_packet
// and the record routines until NIDS_packet gives 0 or less.
//
// The plotter's file routines around this (NIDS_open_file, NIDS_rewind_file,
// NIDS_close_file, NIDS_print_info) are declared in nids_plt.h.
#pragma once

#include "zyr.h"

#include <cstdint>
#include <span>

#include <cstdio>

// --- The product ------------------------------------------------------------

// Codes of the packets that are walked.
constexpr int nids_packet_radial = 0xAF1F;     // run-length radials of 16 levels
constexpr int nids_packet_raster = 0xBA0F;     // run-length raster of 16 levels
constexpr int nids_packet_raster_alt = 0xBA07; // the same, another code
constexpr int nids_packet_dig_radial = 16;     // radials of 256 levels
constexpr int nids_packet_dig_precip = 17;     // run-length raster of 256 levels
constexpr int nids_packet_wind = 4;
constexpr int nids_packet_vector = 7;
constexpr int nids_packet_vector_val = 10; // vectors with a value
constexpr int nids_packet_text = 1;
constexpr int nids_packet_text_val = 8;

// A source above this is a composite of several radars.
constexpr int nids_max_site = 9999;

constexpr int nids_num_thres = 16;

// What the header of a product says.
struct NIDS_info {
    char info[50] = {};               // product label
    char misc[50] = {};               // parameter line
    int src = 0;                      // source identifier
    int mode = 0;                     // 0 maintenance, 1 clear air, 2 precipitation
    int code = 0;                     // product code
    int type = 0;                     // code of the first packet, 0xBA07 as 0xBA0F; 0: none
    Date date;                        // volume scan
    Domain domain;                    // map domain of the product
    int nx = 0, ny = 0;               // size of the data array
    float res = 0;                    // bin length, nautical miles; composites: cell size, km
    float alt = 0;                    // height of the site, metres
    float thres[nids_num_thres] = {}; // decoded thresholds
    float elev = 0;                   // elevation angle, degrees
    float elevt = 0;                  // not assigned by the reader
    float range = 0;                  // range, nautical miles; 0 for composites
    float max = 0, nmax = 0;          // largest and smallest value, product's unit
    int beg_date = 0, beg_time = 0;   // not assigned by the reader
    int end_date = 0, end_time = 0;
};

// Takes the selector of one product inside a collective file: a character and
// the product's number, counted from 0; null or empty for none. Returns 0.
int NIDS_set_ext_info(const char* str);

// Whether values, texts and the labels of some products go by the format's own
// document (1), from the next header on, or as given here (0, at the start). Returns 0.
int NIDS_set_exact(int on);
int NIDS_get_exact();
constexpr float nids_folded = -9998.0F; // by the document, value of a range folded bin

// Rewinds the file and reads up to the header of the first packet. Failures
// after the message header leave the fields after them unset. Returns 1; 0
// when the file can't be read as a product (`info` is then unspecified).
int NIDS_get_header(FILE* ifile, NIDS_info* info);
// Whether what NIDS_get_header took for a product can be one: its radar is
// somewhere on the earth. Bytes of another kind give 0.
int NIDS_is_plausible();
// Whether a file that begins with these bytes is a product. Changes nothing.
int NIDS_is_product(std::span<const std::uint8_t> head);

// The two fixed blocks, read at the stream's position. Return 1; 0 on failure.
int NIDS_mess_header(FILE* ifile);
int NIDS_prod_desc(FILE* ifile);

// --- The logical stream -----------------------------------------------------

// The product's bytes, unpacked and without wrapper. NIDS_read returns 1 when
// all `dsize` bytes were delivered, -1 when the file ends, is refused or goes
// past the reader's limit, 0 when a decompressor fails; a stream that failed
// stays failed until the next NIDS_get_header.
int NIDS_read(unsigned char* data, int dsize, FILE* ifile);
// 2 or 4 bytes, big-endian in the stream, stored in host order. Result as
// NIDS_read; `val` is left alone on failure.
int NIDS_read_short(unsigned char* val, FILE* ifile);
int NIDS_read_long(unsigned char* val, FILE* ifile);
// Passes all bytes through the next line feed. Result as NIDS_read.
int NIDS_skip_line(FILE* ifile);

// --- Number formats ---------------------------------------------------------

// 16-bit float: sign, 5 bits exponent with bias 16, 10 bits fraction.
float NIDS_float16(int val);
// IEEE 754 single from its high and low halfword.
float NIDS_float32(int val1, int val2);
// Date of a day number, day 1 being 1 January 1970; a number below 1 counts
// as 1. Returns 0.
int NIDS_julian_date(int julian, int* year, int* month, int* day);
// Hours, minutes and seconds of a second of the day. Returns 0.
int NIDS_dec_time(int secs, int* hour, int* min, int* sec);

// --- Packets ----------------------------------------------------------------

// A run of equal bins of a radial, or cells of a row.
struct NIDS_data {
    float run = 0; // how many
    float val = 0; // value in the product's unit; missing_f: none
};
// Coordinates of records are the numbers in the product: those of its domain,
// and in a graphic block pixels of a 512 by 512 page.
struct NIDS_vector_data {
    float val = 0;
    float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};
struct NIDS_text_data {
    float val = 0; // missing_f: no threshold of that index
    float x = 0, y = 0;
    char data[100] = {};
};
struct NIDS_wind_data {
    float val = 0; // missing_f: no threshold of that index
    float x = 0, y = 0;
    float dir = 0; // degrees
    float spd = 0;
};

// What a packet of storm symbols marks.
enum class NidsSymbol {
    cell,             // where a storm is
    hail,             // hail of a storm
    mesocyclone,      //
    low_mesocyclone,  // a strong one whose base is low
    weak_mesocyclone, //
    shear,            // correlated through several elevations
    vortex,           // tornado vortex signature
    high_vortex,      // the same, not down to the ground
    // These belong to the one of the above that was met last.
    name,
    past, // a place on its track
    forecast,
    past_line, // a piece of its track
    forecast_line,
    circle // of a forecast
};
// Coordinates are kilometres east and north of the radar.
struct NIDS_symbol {
    NidsSymbol kind = NidsSymbol::cell;
    float x = 0, y = 0;
    float x2 = 0, y2 = 0; // the other end of a line
    float radius = 0;     // km, 0: none
    int hail = 0;         // probability of hail, percent; below 0: not known
    int shail = 0;        // of severe hail
    float size = 0;       // of hail, inches
    float top = 0;        // of the storm, 1000 feet
    char name[8] = "";    // not checked to be letters
};

// Headers of the symbology block and of its first layer. Return 1; 0 for a
// wrong identifier or divider, the end of the stream or a null file.
int NIDS_prod_symb(FILE* ifile);
int NIDS_prod_symb_layer(FILE* ifile);

// Header of the next packet; packets that are not drawn are passed over. The
// packet before must have been consumed. `*code` takes the code as read.
// Returns 1; 0 for a null file, a code that is not handled (dividers are) and
// the end of a page; -1 at the end of the stream.
int NIDS_packet(FILE* ifile, int* code);

// Whether the walk takes the packets of storm symbols (1), from the next header on.
// By 0, as at the start, NIDS_packet knows some of them not, and passes over others.
// Returns 0.
int NIDS_take_symbols(int on);
// 1 for the code of a packet that NIDS_get_symbol reads, which it does only while
// symbols are taken; else 0.
int NIDS_is_symbol(int code);
// Goes on to the cell trends of a storm structure product, which have no block, to
// be walked by NIDS_packet. Returns 1; 0 when there are none or none are taken.
int NIDS_trends(FILE* ifile);

// Result of the last NIDS_packet. NIDS_get_header calls it once: the first
// packet is there to be walked if this is above 0.
int NIDS_packet_status();

// To be asked when the symbology block is done. 0 when the stream ended, or could
// not be unpacked, where more had to come: in a header, a record, or in front of
// the block. Else 1.
int NIDS_is_whole();

// Next radial: start angle and width, degrees. Next row. Return 1; 0 when the
// packet has no more; -1 at the end of the stream.
int NIDS_get_radial(FILE* ifile, float* sangle, float* dangle);
int NIDS_get_rastor(FILE* ifile);

// Where the bins of the open radial packet are by the format's own document: distance
// of the near end of the first and length of each, km along the ground.
struct NIDS_bins {
    float first_km = 0, size_km = 0;
    int count = 0;
};
NIDS_bins NIDS_get_bins();

// Next run of the radial or row. Returns 1; 0 at its end; -1 at the end of the
// stream. For a packet of another kind 1, and `data` is left alone.
int NIDS_get_data(FILE* ifile, NIDS_data* data);

// The bins of a digital radial that follow the run read last, as far as they are at hand:
// their levels, a byte each. They count as read. Valid until the next call.
std::span<const std::uint8_t> NIDS_take_bins();
// The value of a level of this packet.
float NIDS_bin_value(std::uint8_t level);

// Level of the run read last, as it is in the product: one of 16, or of 256.
int NIDS_get_level();

// Next record of the packet. Return 1; 0 when the packet has no more; -1 at
// the end of the stream.
int NIDS_get_vector(FILE* ifile, NIDS_vector_data* vect_data);
int NIDS_get_wind(FILE* ifile, NIDS_wind_data* wind);

// Next symbol of the packet. Packets that hold none have no more. Returns 1; 0 when
// the packet has no more; -1 at the end of the stream.
int NIDS_get_symbol(FILE* ifile, NIDS_symbol* symbol);

// The text of the packet, cut at 99 characters. Returns 1; 0 for a null file;
// -1 at the end of the stream (`text` then holds what there was).
int NIDS_get_text(FILE* ifile, NIDS_text_data* text);

// Header of the graphic alphanumeric block, which follows the walk or lies where
// the product description says. Returns 1; 0 when there is none, for a wrong
// divider or identifier and at the end of the stream.
int NIDS_graphic(FILE* ifile);
// Header of the next page. Returns its number; 0 when there are no more.
int NIDS_graphic_layer(FILE* ifile);
