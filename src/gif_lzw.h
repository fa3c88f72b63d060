// gif_lzw.h: the LZW coder of GIF files, as sub-blocks of a stream. One stream
// at a time: the tables are static, and coding allocates nothing.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

// Writes rows of indexes as one LZW stream with its sub-blocks, the closing
// empty block not included.
//   code_size  smallest size of a code, 2 to 8: every index is below 2^code_size
void GIF_begin_code(std::FILE* file, int code_size);
void GIF_put_code(std::span<const std::uint8_t> pixels);
void GIF_end_code();

// Takes the next pixels of a stream.
using GIF_take = void (*)(void* to, std::span<const std::uint8_t> pixels);
// Decodes a stream up to its end code, its empty block, or the end of the file.
// False for a code that the table cannot hold.
bool GIF_decode(std::FILE* file, int code_size, GIF_take take, void* to);
