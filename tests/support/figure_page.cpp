#include "figure_page.h"

#include "map.h"
#include "plt_tool.h"
#include "region.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

std::string color_name(const std::string& numbers) {
    for (int i = 0; i < CLR_get_num(); ++i) {
        float rgb[3] = {};
        char text[60] = "";
        CLR_get_rgb(i, &rgb[0], &rgb[1], &rgb[2]);
        std::snprintf(text, sizeof text, "%4.2f %4.2f %4.2f", static_cast<double>(rgb[0]),
                      static_cast<double>(rgb[1]), static_cast<double>(rgb[2]));
        if (numbers == text) {
            return CLR_get_name(i);
        }
    }
    return numbers;
}

// Two numbers at the start of a line. Returns what stands after them, null
// if they are not there.
const char* two_numbers(const char* text, Gpt* pt) {
    char* second = nullptr;
    char* rest = nullptr;
    pt->x = std::strtof(text, &second);
    pt->y = std::strtof(second, &rest);
    return second == text || rest == second ? nullptr : rest;
}

} // namespace

FigurePage::FigurePage(const Domain& domain, const std::string& source_dir)
    : name_("/tmp/figure_page_" + std::to_string(getpid()) + ".ps") {
    MESS_set(0, mess_error);
    FLAG_resetplot(1);
    RES_put("file_path", (source_dir + "/etc").c_str());
    RES_put("device", ("p," + name_).c_str());
    RES_put("plot_param", "pscolor");
    std::remove(name_.c_str());
    PLT_open(DOM_aspect(&domain));
    MAP_setup(&domain);
    GPH_trans(tran_map);
}

void FigurePage::window(const Glim& lim) {
    GPH_win(tran_map, &lim);
}

void FigurePage::read(int tran) {
    GPH_trans(tran);
    const float x0 = xW_ps(0.0F);
    const float y0 = yW_ps(0.0F);
    const float dx = xW_ps(1.0F) - x0;
    const float dy = yW_ps(1.0F) - y0;
    PLT_close();

    std::ifstream file(name_);
    std::string line;
    std::string color;
    bool keep = false;
    while (std::getline(file, line)) {
        Gpt pt = {};
        const bool text = line.starts_with("%%TE:");
        const char* rest = two_numbers(line.c_str() + (text ? 5 : 0), &pt);
        if (line.starts_with("%%")) {
            keep = line.starts_with("%%PL:") || line.starts_with("%%FA:");
            if (keep) {
                figures.push_back({line[2] == 'F', "", {}});
            } else if (text && rest != nullptr) {
                texts.push_back({pt, rest + 1});
            } else if (line.starts_with("%%Message: ")) {
                messages.push_back(line.substr(11));
            }
        } else if (line.ends_with(" setrgbcolor")) {
            color = color_name(line.substr(0, line.find(" setrgb")));
        } else if (keep && rest != nullptr) {
            figures.back().points.push_back({(pt.x - x0) / dx, (pt.y - y0) / dy});
        } else if (keep && (line == "stroke" || line == "fill")) {
            figures.back().color = color;
            keep = false;
        }
    }
    std::remove(name_.c_str());
}

std::vector<Figure> FigurePage::pick(bool filled, const std::string& color) const {
    std::vector<Figure> found;
    std::copy_if(figures.begin(), figures.end(), std::back_inserter(found), [&](const Figure& f) {
        return f.filled == filled && (color.empty() || f.color == color);
    });
    return found;
}

double polygon_area(const std::vector<Gpt>& points) {
    double twice = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Gpt& a = points[i];
        const Gpt& b = points[(i + 1) % points.size()];
        twice += static_cast<double>(a.x) * b.y - static_cast<double>(b.x) * a.y;
    }
    return std::fabs(twice) / 2.0;
}

std::string show(const std::vector<Gpt>& points) {
    std::string all;
    for (const Gpt& pt : points) {
        char text[60] = "";
        // Adding 0 turns -0.00 into 0.00.
        std::snprintf(text, sizeof text, "%s(%.2f,%.2f)", all.empty() ? "" : " ",
                      std::round(static_cast<double>(pt.x) * 100.0) / 100.0 + 0.0,
                      std::round(static_cast<double>(pt.y) * 100.0) / 100.0 + 0.0);
        all += text;
    }
    return all;
}
