// def_read.cpp: defaults files. It opens one, reads it line by line through a
// small conditional language (DEF, UNDEF, IF, ELIF, ELSE, END) and decides
// whether a key applies to the running program. It owns the open file, the
// tags and the stack of open blocks; tags and blocks outlast a file.
#include "def_read.h"

#include "files.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int max_tags = 10;
constexpr int max_blocks = 10;
constexpr std::size_t prog_size = 30;
constexpr const char* user_name = ".zyrdef";
constexpr const char* config_name = "zyr.cfg";
// What a directory may hold, in the order of trial.
constexpr const char* default_names[] = {config_name, user_name, "Zyr.res"};
constexpr const char* white = " \t\r\n\v\f";

// State of an open block.
enum class Block : char {
    dead, // branch not live, none taken yet
    live,
    taken // a branch was taken: all later ones are dead
};

struct State {
    std::FILE* def_file = nullptr;
    std::string name;        // of the open file
    bool in_comment = false; // the line goes on in the next piece
    std::array<char, prog_size> prog_name{"Zyr"};
    std::array<char, prog_size> prog_title{};
    std::array<std::string, max_tags> tag;
    int num_tag = 0;
    std::array<Block, max_blocks> match{};
    int num_match = 0;
    int too_deep = 0; // open blocks beyond the stack; all their lines are dead
    std::array<char, file_name_size> cfg_dir{};
};
State state;

using Line = std::array<char, def_line_size>;

// --- Tags and blocks --------------------------------------------------------

// Index of a tag, in any case; num_tag if it is not defined.
int find_tag(const char* text) {
    int i = 0;
    while (i < state.num_tag && stricmp(state.tag[i].c_str(), text) != 0) {
        ++i;
    }
    return i;
}

bool is_tag(const char* text) {
    return find_tag(text) < state.num_tag;
}

void undefine(const char* text) {
    const int found = find_tag(text);
    if (found < state.num_tag) {
        std::move(state.tag.begin() + found + 1, state.tag.begin() + state.num_tag,
                  state.tag.begin() + found);
        --state.num_tag;
    }
}

bool all_live() {
    return state.too_deep == 0 &&
           std::all_of(state.match.begin(), state.match.begin() + state.num_match,
                       [](Block block) { return block == Block::live; });
}

void open_block(const char* tag) {
    if (state.num_match == max_blocks) {
        MESS_print(mess_warn, "DEF_get: too many nested blocks: %s\n", tag);
        ++state.too_deep;
        return;
    }
    state.match[state.num_match++] = is_tag(tag) ? Block::live : Block::dead;
}

// The next branch of the innermost block, live if `wanted` and if no branch
// before it was.
void next_branch(bool wanted, const char* word) {
    if (state.too_deep > 0) {
        return;
    }
    if (state.num_match == 0) {
        MESS_print(mess_warn, "DEF_get: %s without an if\n", word);
        return;
    }
    Block& top = state.match[state.num_match - 1];
    if (top != Block::dead) {
        top = Block::taken;
    } else if (wanted) {
        top = Block::live;
    }
}

void close_block() {
    if (state.too_deep > 0) {
        --state.too_deep;
    } else if (state.num_match > 0) {
        --state.num_match;
    } else {
        MESS_print(mess_warn, "DEF_get: end without an if\n");
    }
}

// Obeys a line of the conditional language. Returns whether it was one that
// is no setting; DEF and UNDEF go on as settings that fit no resource.
bool obey(const char* word, const char* value) {
    const bool has_value = *value != '\0';
    if (std::strcmp(word, "DEF") == 0 && has_value) {
        if (DEF_tag(value) != 0) {
            MESS_print(mess_warn, "DEF_get: too many tags: %s\n", value);
        }
    } else if (std::strcmp(word, "UNDEF") == 0 && has_value) {
        undefine(value);
    } else if (std::strcmp(word, "IF") == 0 && has_value) {
        open_block(value);
        return true;
    } else if (std::strcmp(word, "ELIF") == 0 && has_value) {
        next_branch(is_tag(value), "elif");
        return true;
    } else if (std::strcmp(word, "ELSE") == 0) {
        next_branch(true, "else");
        return true;
    } else if (std::strcmp(word, "END") == 0) {
        close_block();
        return true;
    }
    return false;
}

// --- Lines ------------------------------------------------------------------

// Reads a line, or a piece of one that is too long, without comments.
bool read_line(Line& line) {
    while (std::fgets(line.data(), static_cast<int>(line.size()), state.def_file) != nullptr) {
        const bool comment = state.in_comment || line[0] == '#';
        state.in_comment = comment && std::strchr(line.data(), '\n') == nullptr;
        if (!comment) {
            return true;
        }
    }
    return false;
}

struct Words {
    Line first{};
    Line second{};              // the second word, quotes and all
    const char* rest = nullptr; // the line from the second word on
};

const char* take_word(const char* text, Line& word) {
    text += std::strspn(text, white);
    const std::size_t length = std::strcspn(text, white);
    std::memcpy(word.data(), text, length);
    word[length] = '\0';
    return text + length;
}

Words split(const Line& line) {
    Words words;
    const char* behind = take_word(line.data(), words.first);
    words.rest = behind + std::strspn(behind, white);
    take_word(words.rest, words.second);
    return words;
}

// Gives the line as a setting.
void give(const Words& words, char* key, char* value) {
    Line text = words.second;
    if (text[0] == '"') {
        const char* quoted = words.rest + 1;
        const std::size_t length = std::strcspn(quoted, "\"\r\n");
        std::memcpy(text.data(), quoted, length);
        text[length] = '\0';
    }
    std::transform(words.first.begin(), words.first.end(), key, [](char c) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    });
    const std::size_t length = std::strlen(key);
    if (length > 0 && key[length - 1] == ':') {
        key[length - 1] = '\0';
    }
    if (copy_text(value, def_value_size, text.data()) != 0) {
        MESS_print(mess_warn, "DEF_get: value of %s cut: %s\n", key, value);
    }
}

// --- Names ------------------------------------------------------------------

// The full name: program part, ".", resource.
std::string full_name(const char* resource) {
    const char* title = state.prog_title.data();
    std::string name;
    if (*title == '\0' || *title == '+') {
        name = state.prog_name.data();
    }
    if (*title == '+') {
        name.append(".").append(title + 1);
    } else if (*title != '\0') {
        name = title;
    }
    return name.append(".").append(resource);
}

// Does the name fit the pattern? Of the text after a `*` only the first
// occurrence is tried.
bool fits(const std::string& full, const char* pattern) {
    const char* name = full.c_str();
    while (*pattern != '\0') {
        if (*pattern == '*') {
            ++pattern;
            const std::string part(pattern, std::strcspn(pattern, "*"));
            name = std::strstr(name, part.c_str());
            if (name == nullptr) {
                return false;
            }
            name += part.size();
            pattern += part.size();
        } else if (*pattern++ != *name++) {
            return false; // also at the end of the name
        }
    }
    return *name == '\0';
}

// The last part of a pattern, after "." or `*`.
const char* last_part(const char* pattern) {
    const char* end = pattern + std::strlen(pattern);
    while (end > pattern && end[-1] != '.' && end[-1] != '*') {
        --end;
    }
    return end;
}

bool copy_variable(const std::string& name, char* value) {
    const char* text = std::getenv(name.c_str());
    if (text == nullptr) {
        return false;
    }
    if (copy_text(value, def_value_size, text) != 0) {
        MESS_print(mess_warn, "DEF_env: value of %s cut: %s\n", name.c_str(), value);
    }
    return true;
}

// Remembers where the last zyr.cfg lies.
void note_directory(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    const std::size_t length = slash == std::string::npos ? 0 : slash + 1;
    if (name.compare(length, std::string::npos, config_name) == 0) {
        const std::string directory = length == 0 ? "./" : name.substr(0, length);
        if (copy_text(state.cfg_dir.data(), state.cfg_dir.size(), directory.c_str()) != 0) {
            state.cfg_dir[0] = '\0';
        }
    }
}

// The first default file that exists in a directory, else the last.
std::string file_in(const char* directory) {
    std::string name;
    for (const char* file : default_names) {
        name = directory;
        if (name.back() != '/') {
            name += '/';
        }
        name += file;
        if (FILE_exist(name.c_str()) != 0) {
            break;
        }
    }
    return name;
}

} // namespace

int DEF_open(const char* name) {
    DEF_close();
    std::string file = name == nullptr || *name == '\0' ? user_name : name;
    if (FILE_is_dir(file.c_str()) != 0) {
        file = file_in(file.c_str());
    }
    state.def_file = FILE_open_text(file.c_str());
    if (state.def_file == nullptr) {
        return -1;
    }
    note_directory(file);
    state.name = file;
    return 0;
}

const char* DEF_file() {
    return state.name.c_str();
}

int DEF_close() {
    if (state.def_file != nullptr) {
        FILE_close(state.def_file);
    }
    state.def_file = nullptr;
    state.in_comment = false;
    return 0;
}

int DEF_get(char* key, char* value) {
    if (key == nullptr || state.def_file == nullptr) {
        return -1;
    }
    Line line{};
    while (read_line(line)) {
        const Words words = split(line);
        if (words.first[0] == '\0' || obey(words.first.data(), words.second.data())) {
            continue;
        }
        if (words.second[0] != '\0' && all_live()) {
            give(words, key, value);
            return 1;
        }
    }
    return -1;
}

int DEF_prog() {
    std::array<char, file_name_size> name{};
    RES_get_progname(name.data());
    return copy_text(state.prog_name.data(), state.prog_name.size(), name.data());
}

int DEF_name(const char* text) {
    if (copy_text(state.prog_title.data(), state.prog_title.size(), text) != 0) {
        MESS_print(mess_warn, "DEF_name: name cut: %s\n", state.prog_title.data());
        return -1;
    }
    return 0;
}

int DEF_clr_tag() {
    state.num_tag = 0;
    return 0;
}

int DEF_tag(const char* text) {
    if (state.num_tag == max_tags) {
        return -1;
    }
    state.tag[state.num_tag++] = text;
    return 0;
}

int DEF_cmp(const char* resource, const char* pattern) {
    return fits(full_name(resource), pattern) ? 1 : 0;
}

int DEF_valid(const char* pattern) {
    const char* name = last_part(pattern);
    return *name != '\0' && fits(full_name(name), pattern) ? 1 : 0;
}

int DEF_parse_name(const char* pattern, char* out) {
    const char* name = last_part(pattern);
    if (copy_text(out, res_name_size, name) != 0) {
        MESS_print(mess_warn, "DEF_parse_name: name cut: %s\n", out);
    }
    return *out != '\0' ? 1 : 0;
}

int DEF_env(const char* resource, const char* env, char* value) {
    if (copy_variable("zyr" + full_name(resource), value) ||
        (env != nullptr && *env != '\0' && copy_variable(env, value))) {
        return 1;
    }
    return copy_variable(std::string("zyr") + resource, value) ? 1 : 0;
}

const char* DEF_cfg_dir() {
    return state.cfg_dir.data();
}
