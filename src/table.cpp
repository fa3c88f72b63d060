// table.cpp: the keyed hash table. The table is the caller's; no state here.
#include "table.h"
#include "no_memory.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// The entry in front of a new one: the last of a bucket's chain.
TAB_entry* chain_end(TAB_entry* head) {
    while (head->link != nullptr) {
        head = head->link;
    }
    return head;
}

// First entry of a chain from `entry` on with this key.
const TAB_entry* find(const TAB_entry* entry, const char* text) {
    while (entry != nullptr && (entry->key == nullptr || std::strcmp(entry->key, text) != 0)) {
        entry = entry->link;
    }
    return entry;
}

// Head of the chain that a search walks; null for a search that cannot hit.
const TAB_entry* chain_of(const TAB_table* table, int which, const char* text) {
    if (table == nullptr || table->tab_size < 1 || which < 1 || which > table->numkey ||
        text == nullptr) {
        return nullptr;
    }
    return table->table[which - 1] + TAB_key(table, text);
}

// What one record needs, before any of it joins the table.
struct NewRecord {
    void* data = nullptr;
    std::array<char*, tab_max_keys> keys{};
    std::array<TAB_entry*, tab_max_keys> entries{};
    bool complete = true;

    void drop() {
        std::free(data);
        for (int i = 0; i < tab_max_keys; ++i) {
            std::free(keys[i]);
            delete entries[i];
        }
    }
};

} // namespace

int TAB_key(const TAB_table* table, const char* text) {
    constexpr int modulus = 35177;
    int h = 0;
    for (; *text != '\0'; ++text) {
        h = (h * 257 + static_cast<signed char>(*text)) % modulus;
        h += h < 0 ? modulus : 0;
    }
    return table->tab_size < 1 ? 0 : h % table->tab_size;
}

void TAB_init(TAB_table* table) {
    *table = TAB_table{};
}

int TAB_create(TAB_table* table, int tab_size, int data_size, int numkey) {
    TAB_init(table);
    if (tab_size < 1 || data_size < 0 || numkey < 1 || numkey > tab_max_keys) {
        return -1;
    }
    for (int i = 0; i < numkey; ++i) {
        table->table[i] = new (std::nothrow) TAB_entry[static_cast<std::size_t>(tab_size)];
        if (table->table[i] == nullptr) {
            TAB_clear(table);
            return -1;
        }
    }
    table->tab_size = tab_size;
    table->data_size = data_size;
    table->numkey = numkey;
    return 0;
}

int TAB_enter(TAB_table* table, const void* data, const char* key1, ...) {
    if (table->tab_size < 1 || table->numkey < 1) {
        return -1;
    }
    const auto size = static_cast<std::size_t>(table->data_size);
    NewRecord record;
    record.data = ZYR_need(std::malloc(std::max<std::size_t>(size, 1)));
    record.complete = record.data != nullptr;
    va_list args;
    va_start(args, key1);
    for (int i = 0; i < table->numkey; ++i) {
        const char* key = i == 0 ? key1 : va_arg(args, const char*);
        record.keys[i] = ZYR_need(strdup(key == nullptr ? "" : key));
        record.entries[i] = new (std::nothrow) TAB_entry;
        record.complete =
            record.complete && record.keys[i] != nullptr && record.entries[i] != nullptr;
    }
    va_end(args);
    if (!record.complete) {
        record.drop();
        return -1;
    }
    std::memcpy(record.data, data, size);

    for (int i = 0; i < table->numkey; ++i) {
        TAB_entry* head = table->table[i] + TAB_key(table, record.keys[i]);
        TAB_entry* entry = head;
        if (head->key == nullptr) {
            delete record.entries[i]; // the empty head takes it
        } else {
            entry = record.entries[i];
            chain_end(head)->link = entry;
        }
        entry->key = record.keys[i];
        entry->data = record.data;
        if (i == 0) {
            (table->last_ptr == nullptr ? table->head_ptr : table->last_ptr->next) = entry;
            table->last_ptr = entry;
        }
    }
    ++table->num_entry;
    return 0;
}

void* TAB_search(const TAB_table* table, int which, const char* text) {
    const TAB_entry* entry = find(chain_of(table, which, text), text);
    return entry == nullptr ? nullptr : entry->data;
}

int TAB_searches(const TAB_table* table, int which, const char* text, void** array, int max) {
    int count = 0;
    const TAB_entry* entry = find(chain_of(table, which, text), text);
    for (; entry != nullptr && count < max; entry = find(entry->link, text)) {
        array[count++] = entry->data;
    }
    return count;
}

void* TAB_first(TAB_table* table) {
    table->data_ptr = table->head_ptr;
    return table->data_ptr == nullptr ? nullptr : table->data_ptr->data;
}

void* TAB_next(TAB_table* table) {
    if (table->data_ptr != nullptr) {
        table->data_ptr = table->data_ptr->next;
    }
    return table->data_ptr == nullptr ? nullptr : table->data_ptr->data;
}

void TAB_clear(TAB_table* table) {
    for (TAB_entry* entry = table->head_ptr; entry != nullptr; entry = entry->next) {
        std::free(entry->data);
    }
    for (TAB_entry* buckets : table->table) {
        for (int i = 0; buckets != nullptr && i < table->tab_size; ++i) {
            std::free(buckets[i].key);
            for (TAB_entry* entry = buckets[i].link; entry != nullptr;) {
                TAB_entry* next = entry->link;
                std::free(entry->key);
                delete entry;
                entry = next;
            }
        }
        delete[] buckets;
    }
    TAB_init(table);
}
