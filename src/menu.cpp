// menu.cpp: numbered menus on the terminal. It prints a table of entries and
// reads a choice by number, abbreviation or name; a text that is none of these
// is handed back. It keeps nothing between calls.
#include "text_num.h"
#include "zyr.h"

#include <array>
#include <cstring>

namespace {

constexpr int max_visible = 79;
constexpr int two_columns_from = 13;
constexpr std::size_t word_size = 81; // what the caller's string holds

constexpr int offers_exit = 1;
constexpr int offers_back = 2;
constexpr int offers_help = 4;

// Visible entries by their number; entry 0 of the table, the way back, is 0.
struct Visible {
    std::array<const MENU_item*, max_visible + 1> place{};
    int count = 0; // without place 0
};

Visible list_visible(const MENU_item* menu, int menu_num) {
    Visible list;
    list.place[0] = menu;
    const bool known = menu_num >= 0 && menu_num < static_cast<int>(std::size(menu->disp));
    for (int i = 1; known && menu[0].name != nullptr && menu[i].name != nullptr; ++i) {
        if (menu[i].disp[menu_num] == 1 && list.count < max_visible) {
            list.place[++list.count] = &menu[i];
        }
    }
    return list;
}

void print_item(const Visible& list, int number, bool left) {
    const char* name = list.place[number]->name;
    if (*name == '-') {
        MESS_print(mess_print, " --------------------               %s", left ? "" : "\n");
    } else {
        MESS_print(mess_print, " %2d: %-30s%s", number, name, left ? " " : "\n");
    }
}

void print_columns(const Visible& list) {
    const int column = (list.count + 1) / 2;
    for (int i = 1; i <= column; ++i) {
        print_item(list, i, true);
        if (i + column <= list.count) {
            print_item(list, i + column, false);
        } else {
            MESS_print(mess_print, "\n");
        }
    }
}

void print_bottom(const MENU_item* menu, int flag, bool two_columns) {
    if ((flag & offers_help) != 0) {
        MESS_print(mess_print, " 99: Help                          \n");
    }
    const bool exit = (flag & offers_exit) != 0;
    if ((flag & offers_back) != 0) {
        MESS_print(mess_print, "  0: %-30s%s", menu[0].name, exit && two_columns ? " " : "\n");
    }
    if (exit) {
        MESS_print(mess_print, " %2d: Exit program                  \n",
                   (flag & offers_back) != 0 ? -1 : 0);
    }
    MESS_print(mess_print, "\n");
}

void print_abbreviations(const Visible& list) {
    for (int i = 0; i <= list.count; ++i) {
        MESS_print(mess_print, "%s%s", i > 0 ? "," : "", list.place[i]->abbr);
    }
    MESS_print(mess_print, "\n\n");
}

int smallest_number(int flag) {
    if ((flag & offers_exit) != 0) {
        return -1;
    }
    return (flag & offers_back) != 0 ? 0 : 1;
}

// Takes an entry as the answer.
int choose(const MENU_item* item, char* string) {
    copy_text(string, word_size, item->abbr);
    return item->index;
}

int find_choice(const Visible& list, char* string, int flag) {
    if ((flag & offers_back) != 0 && stricmp(string, "main") == 0) {
        return 0;
    }
    if (string_is_num(string) != 0) {
        int number = missing;
        std::string_view text = string;
        take_plain(&text, &number);
        if (number >= smallest_number(flag) && number <= list.count) {
            return number > 0 ? choose(list.place[number], string) : number;
        }
    }
    for (int i = 0; i <= list.count; ++i) {
        const MENU_item* item = list.place[i];
        if (stricmp(string, item->abbr) == 0 || stricmp(string, item->name) == 0) {
            return choose(item, string);
        }
    }
    return missing;
}

} // namespace

int MENU_print(const char* title, const MENU_item* menu, int menu_num, int flag) {
    const Visible list = list_visible(menu, menu_num);
    const bool two_columns = list.count >= two_columns_from;
    MESS_print(mess_print, "%s\n", title);
    if (two_columns) {
        print_columns(list);
    } else {
        for (int i = 1; i <= list.count; ++i) {
            print_item(list, i, false);
        }
    }
    print_bottom(menu, flag, two_columns);
    return 1;
}

int MENU_process(const char* title, const MENU_item* menu, int menu_num, const char* prompt,
                 char* string, int flag) {
    const Visible list = list_visible(menu, menu_num);
    MENU_print(title, menu, menu_num, flag);
    ZYR_promptl(prompt, string);
    while (std::strcmp(string, "?") == 0) {
        print_abbreviations(list);
        ZYR_promptl(prompt, string);
    }
    return find_choice(list, string, flag);
}
