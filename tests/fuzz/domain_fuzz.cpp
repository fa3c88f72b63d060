// Domain strings and region files: the first line is the domain of the plot, its
// region and "stat_prior"; the rest is the region file "zyr.reg" of that run and, after
// a line "==", what is answered to the region menu. What comes out is projected.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "maptran.h"
#include "region.h"
#include "run_program.h"
#include "state_keeper.h"
#include "zyrresrc.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// "var" asks the user for its centre.
bool asks(const std::string& text) {
    std::string lower = text;
    low_string(lower.data());
    return lower.find("var") != std::string::npos;
}

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void project(const Domain& domain) {
    MAP_domain(&domain);
    for (int degrees = -90; degrees <= 90; degrees += 15) {
        const auto lat = static_cast<float>(degrees);
        float x = 0.0F;
        float y = 0.0F;
        MAP_tran(lat, lat * 2.0F, &x, &y);
        float lat2 = 0.0F;
        float lon2 = 0.0F;
        MAP_untran(x, y, &lat2, &lon2);
        require(std::isfinite(x) && std::isfinite(y));
        require(std::isfinite(lat2) && std::isfinite(lon2));
    }
}

// Answers that neither end the program nor set anything, and so many regions after
// them that none is asked for without an answer.
bool answer(const TempDir& dir, std::string answers) {
    const std::string typed = answers;
    low_string(answers.data());
    if (answers.find('-') != std::string::npos || answers.find("set") != std::string::npos ||
        answers.find("exit") != std::string::npos) {
        return false;
    }
    std::string more = "\n";
    for (int i = 0; i < 9; ++i) {
        more += "us\nback\n";
    }
    return std::freopen(dir.rewrite("answers", typed + more).c_str(), "r", stdin) != nullptr;
}

// Without a setting the domain is the first of the region file.
void take_first(const TempDir& dir) {
    dir.rewrite("zyr.reg", "ta Tornado_Alley 1 37,-98,1\n");
    Domain domain;
    FLAG_set_batch(1);
    require(DOM_get_region(&domain, 0) == 0 && DOM_get_region(&domain, 4) == dom_by_region);
    require(DOM_prompt_region(&domain, 0) == dom_by_region);
    require(DOM_prompt_region(&domain, 0) == 0);
    FLAG_set_batch(0);
}

// The domains of the region menu, which a text may fill, and of the setting. One that
// nobody can plot would end the program where one is needed.
void take_regions(const TempDir& dir, const std::string& text, const std::string& answers) {
    RES_put_again("plot_domain", text.c_str());
    Domain domain;
    const int result = DOM_get_region(&domain, 1);
    if (!answers.empty() && answer(dir, answers)) {
        DOM_prompt_region(&domain, result == 0 ? 1 : 0);
    }
    DOM_check_text("plot_domain", text.c_str());
    require(DOM_print(mess_print, &domain) == 0); // no message is on
    require(DOM_proj_str(nullptr) == -1 && DOM_proj_str(text.c_str()) < proj_pixel);
    if (result > 0) {
        Domain other = domain;
        require(DOM_comp(&domain, &other) == 1 && DOM_aspect(&domain) > 0);
        other.param[0] = 5;
        require(DOM_comp(&domain, &other) == (domain.param[0] == 5 ? 1 : 0));
        DOM_prompt_region(&domain, 1);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static const StateKeeper first = [] {
        MESS_set(0, 0);
        RES_put("file_path", dir.path().c_str());
        DOM_set_prior(DOM_get_prior());
        DOM_set_loc_prior(DOM_get_loc_prior());
        StateKeeper keeper;
        keep_region(keeper);
        keep_flag(keeper);
        take_first(dir);
        return keeper;
    }();
    const std::string all(data, data + size);
    if (asks(all)) {
        return 0;
    }
    first.restore();
    const std::size_t end = std::min(all.find('\n'), size);
    const std::size_t file = std::min(end + 1, size);
    const std::size_t answers = std::min(all.find("==\n", file), size);
    const std::string text = all.substr(0, end);
    dir.rewrite("zyr.reg", all.substr(file, answers - file));
    RES_put_again("stat_prior", text.substr(0, 9).c_str());
    Domain domain;
    const int result = DOM_decode(text.c_str(), &domain);
    require(result == dom_by_value || result == dom_by_region || result == dom_invalid ||
            result == missing);
    require(std::isfinite(DOM_aspect(&domain)));
    require(DOM_proj_word(&domain).size() < res_value_size);
    if (result > 0) {
        project(domain);
    }
    DOM_read_menu("none.reg");
    DOM_print_file("none.reg");
    DOM_read_menu("zyr.reg");
    DOM_print_file("zyr.reg");
    take_regions(dir, text, all.substr(std::min(answers + 3, size)));
    return 0;
}
