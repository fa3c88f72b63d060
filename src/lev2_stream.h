// lev2_stream.h: the bytes of a Level II volume: file, bzip2 units and
// the sliding buffer of decoded records. Used by lev2_read.cpp alone.
#pragma once

#include "files.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Bytes of a volume header, and the most that a record may have.
constexpr std::size_t lev2_header_size = 24;
constexpr std::size_t lev2_buffer_size = 200000;

// Takes an open file (null: none) in place of the one before.
void lev2_stream_open(FILE_ptr file);
bool lev2_stream_is_open();
// Starts over; false when what was read of a pipe can't be had again.
bool lev2_stream_rewind();

// The volume header, shorter when the file is, empty for a piece of a volume.
std::span<const std::uint8_t> lev2_stream_header();
// Whether the records lie in bzip2 units.
bool lev2_stream_packed();

// What the stream holds from the current record on: at least `n` bytes, fewer
// only where the volume ends. Valid until the next call.
std::span<const std::uint8_t> lev2_record(std::size_t n);
// Moves `n` bytes on.
void lev2_advance(std::size_t n);

// The units that the walk of a packed volume has gone through; -1 inside of one.
int lev2_units_walked();
// Where the bytes of a unit lie in the file.
struct Lev2UnitPlace {
    std::int64_t at = 0, size = 0;
};
// The units of a packed volume by their lengths, which leaves the walk where it is. None
// when the file must be read to find them (a pipe, gzip), or has more bytes than its
// units or fewer.
std::vector<Lev2UnitPlace> lev2_list_units();
// Unpacks the first bytes of one. False when it does not fill `head`.
bool lev2_unpack_head(Lev2UnitPlace unit, std::span<std::uint8_t> head);

// Why the volume ended.
enum class Lev2End {
    none,    // it has not
    file,    // nothing follows
    damaged, // a unit or the gzip stream is broken or not whole
    too_long // it unpacks to more than any volume
};
Lev2End lev2_stream_end();
