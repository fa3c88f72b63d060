// region.h: domains in text form: the domain string, the region file, the
// built-in regions, the region prompt and the station priorities.
#pragma once

#include "zyr.h"

#include <string>

// --- The record -------------------------------------------------------------

// Clears the record: every number unset, `ellipse` 0. Returns 0.
int DOM_init(Domain* domain);

// Projection code of a keyword such as "ps" or "lambert" (any case; keywords
// match as prefixes, the first of the table wins). Returns `missing` for the
// word "miss"; -1 for an unknown word and for null.
int DOM_proj_str(const char* proj);

// Returns 1 if both records describe the same picture. An unset `plat` or
// `plon` counts as the other record's when that equals this one's centre.
int DOM_comp(const Domain* dom1, const Domain* dom2);

// Returns 1 if both use the same projection, so that their plot coordinates
// are the same; centre, spacing and size may differ.
int DOM_comp_proj(const Domain* dom1, const Domain* dom2);

// Width over height, (nx - 1) / (ny - 1); 1.0 unless both counts exceed 1.
float DOM_aspect(const Domain* domain);

// The projection word of a grid or image file, such as "PS:-105.000000 ", with its
// blank; empty for a projection that has none.
std::string DOM_proj_word(const Domain* domain);

// Prints the record as a domain string at message level `level`; nothing when
// that level is off. Returns 1 if printed, else 0.
int DOM_print(unsigned level, const Domain* domain);

// --- Domain strings ---------------------------------------------------------

// Results of DOM_decode besides `missing` (empty text, null or "miss").
constexpr int dom_invalid = -1;  // no shape fits
constexpr int dom_by_value = 1;  // given by numbers
constexpr int dom_by_region = 2; // given by a region word

// Reads a domain string, such as "ps,39,-97,25,17,1.2", "id:DCA,0.5" or "us".
// Sets flag 5, the file name key `r` and the base priority. A region word that
// nobody knows still gives dom_by_region, with `proj` -1 and no centre.
int DOM_decode(const char* str, Domain* domain);

// Kinds of field that DOM_set_params fits.
enum {
    dom_end = 0,
    dom_proj = 1,
    dom_plon = 3,
    dom_station = 4,
    dom_clat = 5,
    dom_clon = 6,
    dom_nx = 7,
    dom_ny = 8,
    dom_dx = 9,
    dom_dy = 10,
    dom_region = 11
};

// Tries one shape: fields `paramv[0]` to `paramv[paramc - 1]` against up to
// eight kinds, ended by dom_end. Returns 0 if the shape fits; -1 if the counts
// differ (the record is left alone); else the kind of the field that does not
// fit.
int DOM_set_params(int paramc, char** paramv, Domain* domain, int i1, int i2, int i3, int i4,
                   int i5, int i6, int i7, int i8);

// A built-in region ("us", "ne", "at", "se", "mw", "sp", "nw", "sw", and "var",
// which asks for the centre). Returns 1; 0 for another word, with `proj` -1,
// no centre and the common size and spacing.
int DOM_get_def_region(const char* region, Domain* domain);

// --- The region file --------------------------------------------------------

// Each line: abbreviation, name with `_` for blanks, display flag, domain
// string. Files are found along the resource `file_path`.

// Fills the region menu from the file. Returns 1; 0 if it can't be opened.
int DOM_read_menu(const char* file);

// Room for a domain string from a region file, closing zero included.
constexpr int dom_string_size = 501;

// Finds the line with the abbreviation `str` (any case; null: the first line)
// and copies its domain string to `domstr`, dom_string_size characters.
// Returns 1; 0 if there is none.
int DOM_search_file(const char* file, const char* str, char* domstr);

// Lists abbreviations and names. Returns 1; 0 if the file can't be opened.
int DOM_print_file(const char* file);

// --- The domain of a plot ---------------------------------------------------

// Warns of the text of a resource that no plot takes where it is no domain.
void DOM_check_text(const char* resource, const char* text);

// Domain from the resources `plot_domain` (with `flag` 1, 3 or 4) or `region`,
// with `flag` 4 else from the first region of the menu. Returns the result of
// DOM_decode; 0 with a cleared record if no resource gives a domain that can
// be plotted: the data's own is to be taken.
int DOM_get_region(Domain* domain, int flag);

// The same for a program that must have a domain: asks with the region menu
// if no resource names one (`plot_domain` counts with `flag` 1). To be called
// in a loop; plot while the result is at least 1.
int DOM_prompt_region(Domain* domain, int flag);

// --- Priorities -------------------------------------------------------------

// Base priority of stations from the height of the picture in projection
// units (1 for the largest), changed by the resource `stat_prior` ("+N", "-N",
// "N"). Returns the priority.
int DOM_set_base_prior(float size);
int DOM_set_prior(int prior);
int DOM_get_prior();
int DOM_set_loc_prior(int prior);
int DOM_get_loc_prior();
