// resrc.cpp: the resource database. It owns the one list of settings, in the
// order of first mention, and the command line's address. It knows neither
// where settings come from (res_start) nor what their texts mean (res_conv).
#include "res_list.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace {

struct State {
    res_obj root_res;           // head of the list, itself no resource
    res_obj* last = &root_res;  // tail
    res_obj* retired = nullptr; // holds replaced values, which callers may still point at
    int clargc = 0;
    char** clargv = nullptr;
    std::array<char, 4> spare_name{"ZYR"}; // program name when no memory is left
};
State state;

// A copy of `length` characters with room for `room` in all, if that is more.
char* new_text(const char* text, std::size_t length, std::size_t room = 0) {
    char* copy = new (std::nothrow) char[std::max(length, room) + 1];
    if (copy != nullptr) {
        std::memcpy(copy, text, length);
        copy[length] = '\0';
    }
    return copy;
}

res_obj* find_resource(const char* name) {
    for (res_obj* entry = state.root_res.next; entry != nullptr; entry = entry->next) {
        if (std::strcmp(entry->name, name) == 0) {
            return entry;
        }
    }
    return nullptr;
}

// Takes `data` (may be null) as the entry's value and keeps the old text.
int replace_data(res_obj* entry, char* data, std::size_t length, std::size_t room) {
    if (entry->data != nullptr && !entry->given) { // nobody points at it
        delete[] entry->data;
    } else if (entry->data != nullptr) {
        auto* keeper = new (std::nothrow) res_obj;
        if (keeper == nullptr) {
            delete[] data;
            return -1;
        }
        keeper->data = entry->data;
        keeper->next = state.retired;
        state.retired = keeper;
    }
    entry->data = data;
    entry->given = false;
    entry->length = length;
    entry->room = room;
    return 0;
}

} // namespace

void RES_setCL(int argc, char** argv) {
    state.clargc = argc;
    state.clargv = argv;
}

const char* RES_get_prog() {
    return state.clargc > 0 && state.clargv != nullptr ? state.clargv[0] : nullptr;
}

char* RES_get_progname(char* buffer) {
    const char* prog = RES_get_prog();
    if (prog == nullptr) {
        prog = "ZYR";
    }
    const char* slash = std::strrchr(prog, '/');
    const char* name = slash != nullptr ? slash + 1 : prog;
    if (buffer != nullptr) {
        copy_text(buffer, file_name_size, name);
        return buffer;
    }
    char* copy = new_text(name, std::strlen(name));
    return copy != nullptr ? copy : state.spare_name.data();
}

int RES_new(int index, const char* name, const char* data, DEF_convert cvt) {
    const std::size_t length = data != nullptr ? std::strlen(data) : 0;
    char* value = data != nullptr ? new_text(data, length) : nullptr;
    if (data != nullptr && value == nullptr) {
        return -1;
    }
    res_obj* entry = find_resource(name);
    if (entry == nullptr) {
        entry = new (std::nothrow) res_obj;
        char* own_name = new_text(name, std::strlen(name));
        if (entry == nullptr || own_name == nullptr) {
            delete entry;
            delete[] own_name;
            delete[] value;
            return -1;
        }
        entry->name = own_name;
        state.last->next = entry;
        state.last = entry;
    }
    entry->index = index;
    entry->cvt = cvt;
    return replace_data(entry, value, length, length);
}

int RES_append(int index, const char* name, const char* data, DEF_convert cvt) {
    res_obj* entry = find_resource(name);
    if (entry == nullptr) {
        return RES_new(index, name, data, cvt);
    }
    if (data == nullptr) {
        return 0;
    }
    if (entry->data == nullptr) {
        return RES_new(entry->index, name, data, entry->cvt);
    }
    const std::size_t more = std::strlen(data);
    const std::size_t length = entry->length + 1 + more;
    if (length > entry->room) { // twice the room, so that thousands of files cost no more than one
        const std::size_t room = 2 * length;
        char* text = new_text(entry->data, entry->length, room);
        if (text == nullptr || replace_data(entry, text, entry->length, room) != 0) {
            return -1;
        }
    }
    char* end = entry->data + entry->length;
    *end = '\n';
    std::memcpy(end + 1, data, more + 1);
    entry->length = length;
    return 0;
}

int RES_put(const char* name, const char* value) {
    return RES_new(missing, name, value, CV_string);
}

int RES_put_again(const char* name, const char* value) {
    res_obj* entry = find_resource(name);
    if (entry == nullptr) {
        return RES_put(name, value);
    }
    entry->given = false;
    return RES_new(entry->index, name, value, entry->cvt);
}

const char* RES_get(const char* name) {
    const res_obj* entry = find_resource(name);
    if (entry == nullptr) {
        return nullptr;
    }
    entry->given = true;
    return entry->data != nullptr ? entry->data : "";
}

int RES_getval(const char* name, void* out, DEF_convert cvt) {
    const res_obj* entry = find_resource(name);
    if (entry != nullptr) {
        entry->given = true;
    }
    return entry != nullptr && out != nullptr ? RES_conv_data(entry->data, out, cvt) : 0;
}

int RES_getvals(const char* name, int* count, char*** array) {
    *count = 0;
    *array = nullptr;
    if (const res_obj* entry = find_resource(name)) {
        parse_string(entry->data, entry->cvt == CV_strings ? '\n' : ',', count, array);
    }
    return *count;
}

TextList RES_items(const char* name) {
    int count = 0;
    char** items = nullptr;
    RES_getvals(name, &count, &items);
    return {count, items};
}

int RES_list() {
    constexpr unsigned list_level = 8;
    for (const res_obj* entry = state.root_res.next; entry != nullptr; entry = entry->next) {
        if (entry->data != nullptr) {
            MESS_print(list_level, "%s: %s\n", entry->name, entry->data);
        } else {
            MESS_print(list_level, "%s:\n", entry->name);
        }
    }
    return 0;
}

const res_obj* RES_first() {
    return state.root_res.next;
}
