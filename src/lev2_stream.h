// lev2_stream.h: the bytes of a Level II volume: file, bzip2 units and
// the sliding buffer of decoded records. Used by lev2_read.cpp alone.
#pragma once

#include "files.h"

#include <cstddef>
#include <cstdint>
#include <span>

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
// Counts the units of a packed volume by their lengths and unpacks the first bytes
// of the last one, which leaves the walk where it is. 0 when the file must be read
// to be counted (a pipe, gzip), has more bytes than its units or fewer, or when the
// last unit does not fill `head`.
int lev2_count_units(std::span<std::uint8_t> head);

// Why the volume ended.
enum class Lev2End {
    none,    // it has not
    file,    // nothing follows
    damaged, // a unit or the gzip stream is broken or not whole
    too_long // it unpacks to more than any volume
};
Lev2End lev2_stream_end();
