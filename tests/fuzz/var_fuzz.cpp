// A variable file and, after a line "==", a variable text; also the text as a
// condition of the menu and as labels.
#include "plt_tool.h"
#include "run_program.h"
#include "state_keeper.h"
#include "var_tool.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// What an input leaves, the rows of the lookup file among it, is gone before the next.
StateKeeper first_state() {
    StateKeeper keeper;
    keep_var_code(keeper);
    keep_var_file(keeper);
    keep_var_tool(keeper);
    keep_flag(keeper);
    return keeper;
}

void label(const VAR_data& var) {
    char text[var_label_size] = "";
    VAR_make_datalevel(var.time, var.ltype, var.level, text);
    check(std::strlen(text) < sizeof text);
    VAR_print(&var);
    check(VAR_print_type(var.type) != nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static const StateKeeper keeper = first_state();
    keeper.restore();
    MESS_set(0, 0);
    RES_put("file_path", dir.path().c_str());
    const std::string all(reinterpret_cast<const char*>(data), size);
    const std::size_t cut = std::min(all.find("==\n"), all.size());
    dir.rewrite("f.var", all.substr(0, cut));
    if (cut > 0) {
        dir.rewrite("variable.lup", all.substr(0, cut));
    } else {
        std::filesystem::remove(dir.path() + "/variable.lup");
    }
    const std::string text = cut < all.size() ? all.substr(cut + 3) : "";
    if (text.find("fi:") != std::string::npos && !text.starts_with("fi:f.var:")) {
        return 0; // only this target's files are for a fuzzer to open
    }
    FLAG_set(flag_plot_type, size % 3 == 0 ? missing : static_cast<int>(size % 40));
    if (size % 2 == 0) {
        FLAG_set(flag_def_time, 5);
        FLAG_set(flag_def_ltype, 100);
        FLAG_set(flag_def_level, 500);
    }
    RES_put("plot_param", size % 3 == 0 ? "labs" : "labn,labc");
    VAR_setup("f.var", text.c_str());
    check(VAR_get_num() <= var_max && *VAR_get_name(-1) == '\0');
    for (int i = 0; i < VAR_get_num(); ++i) {
        char form[plt_label_size] = "";
        check(VAR_make_var_form_datatype(i, form) == 0);
        label(VAR_get_vars()[i]);
        check(std::strlen(VAR_get_name(i)) < var_name_size);
        VAR_is_LABEL(i);
        VAR_is_type_PLOT(i);
    }
    VAR_set_model_str("mdr");
    FLAG_set(flag_def_time, 5);
    VAR_read_menu();
    VAR_print_file();
    char choice[81] = "";
    FLAG_set_batch(1);
    VAR_menu("", "", choice, 3);
    KnownWords words;
    VAR_add_names(&words);
    check(*VAR_get_model_str() == 'm');
    for (const int number : {-1, 11}) {
        const VAR_desc* row = VAR_find_number(number);
        check(row == nullptr || row->ind[0] == number);
    }
    VAR_open_file("none.var");
    VAR_open_file(nullptr);
    VAR_menu_display(text.c_str());
    char form[plt_label_size] = "";
    check(VAR_make_var_form_datatype(-1, form) == -1);
    return 0;
}
