// raw_tool.cpp: names of raw files, with the field and the format after them,
// and items to plot (zyrraw.h). State: the field and format of the last name.
#include "zyrraw.h"

#include "files.h"
#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace {

struct State {
    std::string field;
    std::string format;
};
State state;

// The name along `file_path`, else along `raw_path`, else as it was given.
std::string find_path(const std::string& name) {
    char path[file_name_size] = "";
    for (const char* resource : {"file_path", "raw_path"}) {
        FILE_add_path(RES_get(resource), name.c_str(), path);
        if (FILE_exist(path) != 0 && FILE_is_dir(path) != 1) {
            return path;
        }
    }
    return "";
}

// Length of the file name: up to the first mark in front of which a file is.
std::size_t name_length(const std::string& text) {
    constexpr std::size_t first_mark = 2; // the third character
    if (!find_path(text).empty()) {
        return text.size();
    }
    std::size_t mark = text.find_first_of("-:", first_mark);
    const std::size_t first = mark;
    while (mark != std::string::npos && find_path(text.substr(0, mark)).empty()) {
        mark = text.find_first_of("-:", mark + 1);
    }
    return std::min(mark != std::string::npos ? mark : first, text.size());
}

// The selector of a field text; null for a number that is too large.
const char* selector_of(const std::string& field) {
    if (!is_digit(field[0])) {
        return field.c_str();
    }
    const char* at = field.c_str();
    int number = 0;
    scan_int(&at, any_width, &number);
    return number < raw_selectors - raw_first_value ? RAW_selector(number + raw_first_value)
                                                    : nullptr;
}

} // namespace

int RAW_file_open(const char* file, const char** ind, const char** fmt, int mode) {
    const std::string text = std::string(file).substr(0, file_name_size);
    const std::size_t end = name_length(text);
    const std::string name = text.substr(0, end);
    std::string rest = text.substr(end);
    *ind = RAW_selector(raw_each);
    *fmt = nullptr;
    if (!rest.empty() && rest[0] == '-') {
        const std::size_t colon = std::min(rest.find(':'), rest.size());
        state.field = rest.substr(1, colon - 1);
        rest.erase(0, colon);
        if (!state.field.empty()) {
            *ind = selector_of(state.field);
        }
    }
    if (!rest.empty()) {
        state.format = rest.substr(1);
        *fmt = state.format.c_str();
    }
    const std::string path = find_path(name);
    int type = 0;
    const int raw_fd =
        *ind != nullptr ? RAW_open(path.empty() ? name.c_str() : path.c_str(), mode, &type) : -1;
    if (raw_fd < 0) {
        MESS_print(mess_warn, "RAW_file_open: Unable to open file:%s\n", file);
    }
    return raw_fd;
}

int RAW_data_init(RAW_data* data) {
    *data = {};
    return 0;
}

int RAW_data_init_val(RAW_data* data) {
    data->data[0] = '\0';
    data->value[0] = data->value[1] = missing_f;
    return 0;
}

void keep_raw_tool(StateKeeper& keeper) {
    keeper.keep(state);
}
