// data_file.h: radar files, which may come packed by gzip or through a pipe.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

// Opens a radar file as FILE_open does; a gzip file is unpacked while it is
// read, and a damaged one sets the stream's error mark where it breaks. Of a
// pipe the first 4096 bytes can be gone back to. Null on failure; close it with
// FILE_close.
[[nodiscard]] std::FILE* FILE_open_data(const char* name);
// Reads the first bytes and goes back to the start. Returns those that there
// are, no more than 4096.
std::span<const std::uint8_t> FILE_head(std::FILE* file, std::span<std::uint8_t> area);
