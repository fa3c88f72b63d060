// summary_writer.h: makes radar summaries for tests, benches, fuzz seeds and
// pictures.
#pragma once

#include "mosaic_writer.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

// Texts of MDR reports: a grid of 120 by 90 levels 0 to 9 (row 0 stays empty: the
// first block begins at row 1), then a line for each report. `first`: what
// stands before the grid.
constexpr char summary_date[] = "2235Z 20 MAY 19";
Bytes summary_mdr(const MosaicCell& level, const std::vector<std::string>& reports,
                  const std::string& first = std::string("ZYRRAD\n") + summary_date + "\n");
// Texts of Radar Coded Messages: 449 by 353 levels 0 to 6, then the records.
Bytes summary_rcm(const MosaicCell& level, const std::vector<std::string>& records,
                  const std::string& first = std::string("ZYRRAD\n") + summary_date + "\n");

// --- netCDF -------------------------------------------------------------------

// A classic file. Dimension 0 is that of records, where it has none of its own
// size; values are given as numbers, texts as strings of their full length.
struct NcVar {
    std::string name;
    std::vector<int> dims;
    char type = 'i';            // b byte, c text, i whole number, f float
    std::vector<double> values; // in the order of the dimensions
    std::string text;           // of type c
};
struct NcFile {
    std::vector<std::pair<std::string, int>> dims; // size 0: records
    std::vector<std::pair<std::string, std::string>> atts;
    std::vector<NcVar> vars;
    int records = 0;
};
Bytes netcdf_classic(const NcFile& file);
// Both kinds of netCDF summaries, with these levels and three reports. `turned`: the
// grid's columns come before its rows.
NcFile summary_stations(const MosaicCell& level, bool turned = false);
NcFile summary_reports(const MosaicCell& level, bool turned = false);

// --- Samples --------------------------------------------------------------------

// The evening of the mosaics as summaries, by name: "mdr.rad", "rcm.rad", "station.nc",
// "report.nc".
std::vector<std::pair<std::string, Bytes>> summary_samples();
Bytes summary_sample(bool rcm);
// Small files of every kind, whole and damaged; of texts or of netCDF.
std::vector<std::pair<std::string, Bytes>> summary_seeds(bool netcdf);
