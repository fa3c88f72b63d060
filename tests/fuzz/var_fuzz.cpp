// A variable file and, after a line "==", a variable text; also the text as a
// condition of the menu and as labels.
#include "plt_tool.h"
#include "run_program.h"
#include "var_tool.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    MESS_set(0, 0);
    RES_put("file_path", dir.path().c_str());
    const std::string all(reinterpret_cast<const char*>(data), size);
    const std::size_t cut = std::min(all.find("==\n"), all.size());
    dir.write("f.var", all.substr(0, cut));
    dir.write("variable.lup", all.substr(0, cut));
    const std::string text = cut < all.size() ? all.substr(cut + 3) : "";
    if (text.find("fi:") != std::string::npos) {
        return 0; // only this target's files are for a fuzzer to open
    }
    FLAG_set(flag_plot_type, size % 3 == 0 ? missing : static_cast<int>(size % 40));
    VAR_setup("f.var", text.c_str());
    check(VAR_get_num() <= var_max);
    for (int i = 0; i < VAR_get_num(); ++i) {
        char label[plt_label_size] = "";
        PLT_set_label_type(1);
        check(VAR_make_var_form_datatype(i, label) == 0);
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
    check(*VAR_get_model_str() == 'm' && VAR_find_number(-1) == nullptr);
    VAR_open_file("none.var");
    VAR_open_file(nullptr);
    VAR_menu_display(text.c_str());
    return 0;
}
