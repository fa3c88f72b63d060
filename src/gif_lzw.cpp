// gif_lzw: the LZW coder of GIF files. State: the tables of the stream that is
// being written or read.
#include "gif_lzw.h"

#include <algorithm>
#include <array>

namespace {

constexpr int max_bits = 12;
constexpr int num_codes = 1 << max_bits;
constexpr int block_size = 254; // data bytes of a sub-block

// --- Writing --------------------------------------------------------------------

struct hash_entry {
    int hash = -1; // string: code of its beginning + last index * 4096
    int val = -1;  // its code
    hash_entry* next = nullptr;
};

struct Encoder {
    std::FILE* file = nullptr;
    std::array<hash_entry, num_codes> h_table{};
    std::array<hash_entry, num_codes> h_nodes{}; // for collisions
    int h_table_ind = 0;                         // next free code
    int h_node_ind = 0;                          // next free node
    int code_size = 0;
    int coded_size = 0;          // bits of a code now
    int coded_mask = 0;          // largest code of that size
    int prev_data = -1;          // code of the string so far, -1 before the first index
    std::uint32_t temp_data = 0; // bits that make no byte yet
    int data_bits = 0;
    int filled = 0; // data bytes in `block`
    std::array<std::uint8_t, block_size + 1> block{};

    [[nodiscard]] int clear_code() const { return 1 << code_size; }
    [[nodiscard]] int end_info_code() const { return clear_code() + 1; }
};
Encoder enc;

void write_block() {
    enc.block[0] = static_cast<std::uint8_t>(enc.filled);
    std::fwrite(enc.block.data(), 1, static_cast<std::size_t>(enc.filled) + 1, enc.file);
    enc.filled = 0;
}

void put_byte() {
    enc.block[++enc.filled] = static_cast<std::uint8_t>(enc.temp_data);
    enc.temp_data >>= 8;
    enc.data_bits -= 8;
    if (enc.filled == block_size) {
        write_block();
    }
}

void out_code(int code) {
    enc.temp_data |= static_cast<std::uint32_t>(code) << enc.data_bits;
    enc.data_bits += enc.coded_size;
    while (enc.data_bits >= 8) {
        put_byte();
    }
    if (enc.h_table_ind > enc.coded_mask && enc.coded_size < max_bits) {
        ++enc.coded_size;
        enc.coded_mask = (1 << enc.coded_size) - 1;
    }
}

void clear_table() {
    out_code(enc.clear_code());
    enc.h_table.fill({});
    enc.coded_size = enc.code_size + 1;
    enc.coded_mask = (1 << enc.coded_size) - 1;
    enc.h_table_ind = enc.end_info_code() + 1;
    enc.h_node_ind = 0;
}

// Enters the string under the next free code, after the last of its chain.
void enter(hash_entry* last, int hash_data) {
    if (enc.h_table_ind >= num_codes || enc.h_node_ind >= num_codes) {
        clear_table();
        return;
    }
    hash_entry* at = last;
    if (last->hash != -1) {
        at = &enc.h_nodes[enc.h_node_ind++];
        last->next = at;
    }
    *at = {hash_data, enc.h_table_ind++, nullptr};
}

// --- Reading --------------------------------------------------------------------

struct str_tab {
    std::int16_t pfix; // code of the string without its last pixel, -1 none
    std::uint8_t ext;  // its last pixel
    std::uint8_t first;
};

struct Decoder {
    std::FILE* file = nullptr;
    std::array<str_tab, num_codes> table{};
    int table_ptr = 0;
    int code_size = 0;
    int coded_size = 0;
    std::uint32_t temp_data = 0;
    int data_bits = 0;
    int left = 0; // bytes of the sub-block not yet taken
    int at = 0;   // next of them
    std::array<std::uint8_t, 255> block{};
    std::array<std::uint8_t, num_codes> pix_stack{}; // a string, from its end
};
Decoder dec;

bool next_block() {
    const int size = std::getc(dec.file);
    if (size <= 0) {
        return false;
    }
    const auto n = static_cast<std::size_t>(size);
    dec.left = static_cast<int>(std::fread(dec.block.data(), 1, n, dec.file));
    dec.at = 0;
    return dec.left > 0;
}

// The next code, -1 at the end of the data.
int read_data() {
    while (dec.data_bits < dec.coded_size) {
        if (dec.left == 0 && !next_block()) {
            return -1;
        }
        dec.temp_data |= std::uint32_t{dec.block[dec.at++]} << dec.data_bits;
        --dec.left;
        dec.data_bits += 8;
    }
    const auto code = static_cast<int>(dec.temp_data & ((1U << dec.coded_size) - 1U));
    dec.temp_data >>= dec.coded_size;
    dec.data_bits -= dec.coded_size;
    return code;
}

void reset_table() {
    dec.coded_size = dec.code_size + 1;
    dec.table_ptr = (1 << dec.code_size) + 2;
}

// The string of a code, from the end of `pix_stack`.
std::span<const std::uint8_t> string_of(int code, int last) {
    std::uint8_t* end = dec.pix_stack.data() + dec.pix_stack.size();
    std::uint8_t* p = end;
    if (last >= 0) { // not yet in the table: the string before and its first pixel
        *--p = dec.table[last].first;
        code = last;
    }
    while (code >= 0 && p > dec.pix_stack.data()) {
        *--p = dec.table[code].ext;
        code = dec.table[code].pfix;
    }
    return {p, static_cast<std::size_t>(end - p)};
}

} // namespace

void GIF_begin_code(std::FILE* file, int code_size) {
    enc.file = file;
    enc.code_size = code_size;
    enc.coded_size = code_size + 1;
    enc.coded_mask = (1 << enc.coded_size) - 1;
    enc.h_table_ind = 0;
    enc.prev_data = -1;
    enc.temp_data = 0;
    enc.data_bits = 0;
    enc.filled = 0;
    clear_table();
}

void GIF_put_code(std::span<const std::uint8_t> pixels) {
    int prev = enc.prev_data;
    for (const int cur_data : pixels) {
        if (prev < 0) {
            prev = cur_data;
            continue;
        }
        const int hash_data = prev + cur_data * num_codes;
        hash_entry* entry = &enc.h_table[(prev ^ (cur_data << 4)) & (num_codes - 1)];
        while (entry->hash != hash_data && entry->next != nullptr) {
            entry = entry->next;
        }
        if (entry->hash == hash_data) {
            prev = entry->val;
            continue;
        }
        out_code(prev);
        enter(entry, hash_data);
        prev = cur_data;
    }
    enc.prev_data = prev;
}

void GIF_end_code() {
    if (enc.prev_data >= 0) {
        out_code(enc.prev_data);
    }
    out_code(enc.end_info_code());
    if (enc.data_bits > 0) {
        enc.data_bits = 8;
        put_byte();
    }
    if (enc.filled > 0) {
        write_block();
    }
}

bool GIF_decode(std::FILE* file, int code_size, GIF_take take, void* to) {
    dec.file = file;
    dec.code_size = code_size;
    dec.temp_data = 0;
    dec.data_bits = 0;
    dec.left = 0;
    for (int i = 0; i < num_codes; ++i) {
        const auto pixel = static_cast<std::uint8_t>(i);
        dec.table[i] = {-1, pixel, pixel};
    }
    reset_table();
    const int clear_code = 1 << code_size;
    int last = -1; // the code before, -1 after a clear code
    for (int code = read_data(); code >= 0 && code != clear_code + 1; code = read_data()) {
        if (code == clear_code) {
            reset_table();
            last = -1;
            continue;
        }
        const bool known = code < dec.table_ptr;
        if (!known && (code > dec.table_ptr || last < 0)) {
            return false;
        }
        const auto pixels = string_of(code, known ? -1 : last);
        take(to, pixels);
        if (last >= 0) {
            if (dec.table_ptr >= num_codes) {
                return false; // a full table has to be cleared
            }
            dec.table[dec.table_ptr++] = {static_cast<std::int16_t>(last), pixels.front(),
                                          dec.table[last].first};
            if (dec.table_ptr == 1 << dec.coded_size && dec.coded_size < max_bits) {
                ++dec.coded_size;
            }
        }
        last = code;
    }
    return true;
}
