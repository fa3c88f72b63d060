// table.h: a hash table with up to four keys over one set of records, which
// also keeps them in order of entry.
#pragma once

#include <cstddef>

constexpr int tab_max_keys = 4;

struct TAB_entry {
    char* key = nullptr;       // owned; null marks an empty bucket head
    void* data = nullptr;      // the record, shared by the entries of all keys
    TAB_entry* link = nullptr; // next entry of the same bucket
    TAB_entry* next = nullptr; // next record in order of entry (first key only)
};

struct TAB_table {
    int tab_size = 0;              // buckets per key
    int data_size = 0;             // bytes of a record
    TAB_entry* data_ptr = nullptr; // position of TAB_next
    TAB_entry* head_ptr = nullptr; // all records in order of entry
    TAB_entry* last_ptr = nullptr;
    int num_entry = 0;
    int numkey = 0;
    TAB_entry* table[tab_max_keys] = {};
};

// Bucket of a key, from 0 on; 0 for an unsized table.
int TAB_key(const TAB_table* table, const char* text);
// Clears iterator, list and counts; frees nothing.
void TAB_init(TAB_table* table);
// Empty buckets for `numkey` keys (1 to 4). Returns 0; -1 for sizes out of
// range or without memory. The table is taken as new: clear an old one first.
int TAB_create(TAB_table* table, int tab_size, int data_size, int numkey);
// Enters a copy of the record under one key text (const char*) per key of the
// table. Keys may repeat and stay in order of entry. Returns 0; -1 without memory.
int TAB_enter(TAB_table* table, const void* data, const char* key1, ...);
// First record of a key; `which` counts keys from 1. Null if there is none.
void* TAB_search(const TAB_table* table, int which, const char* text);
// All records of a key, up to `max`, in order of entry. Returns their count.
int TAB_searches(const TAB_table* table, int which, const char* text, void** array, int max);
// Walk in order of entry; null at the end.
void* TAB_first(TAB_table* table);
void* TAB_next(TAB_table* table);
// Frees keys, entries and records, and leaves an unsized table.
void TAB_clear(TAB_table* table);
