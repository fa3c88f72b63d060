// file_kind.h: what a file is, by its first bytes.
#pragma once

#include <cstdint>
#include <span>

struct FileKind {
    const char* name;  // with its article, "a PNG picture"; null: not known
    const char* input; // the word of `input` whose reader takes it; null: none
    bool sure = true;  // by a mark that no other kind bears there
};

// Some hundred bytes are enough. A gzip file is looked at unpacked.
FileKind file_kind(std::span<const std::uint8_t> head);
// Whether a file is for sure of another kind than the one that `input` reads, as what
// formats without a mark of their own ask.
bool is_other_kind(std::span<const std::uint8_t> head, const char* input);
// Adds to the message about a file that could not be read as a radar file: what
// it looks like, and which `-inp` reads it.
void tell_file_kind(const char* routine, std::span<const std::uint8_t> head);
