#include "ps_plot.h"

#include "map.h"
#include "maptran.h"
#include "run_program.h"
#include "zyrgks.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

namespace {

void read_back(const std::string& text, PsPicture& out) {
    std::istringstream in(text);
    PsLine path;
    for (std::string line; std::getline(in, line);) {
        const std::string op = line.substr(line.find_last_of(' ') + 1);
        if (line.starts_with("%%Message: ")) {
            out.messages.push_back(line.substr(11));
        } else if (op == "np") {
            path.clear();
        } else if (op == "mv" || op == "ln") {
            char* rest = nullptr;
            const float x = std::strtof(line.c_str(), &rest);
            path.push_back({x, std::strtof(rest, nullptr)});
        } else if (op == "stroke") {
            out.lines.push_back(path);
        } else if (op == "fill") {
            out.fills.push_back(path);
        }
    }
}

} // namespace

Gpt PsPicture::plot(const Gpt& p) const {
    const float sx = (window.x_max - window.x_min) / (device.x_max - device.x_min);
    const float sy = (window.y_max - window.y_min) / (device.y_max - device.y_min);
    return {window.x_min + (p.x - device.x_min) * sx, window.y_min + (p.y - device.y_min) * sy};
}

double PsPicture::visible(const Gpt& a, const Gpt& b) const {
    double from = 0;
    double to = 1;
    const auto cut = [&](double p, double d, double low, double high) {
        if (d == 0) {
            from = p < low || p > high ? 2 : from;
            return;
        }
        from = std::max(from, std::min((low - p) / d, (high - p) / d));
        to = std::min(to, std::max((low - p) / d, (high - p) / d));
    };
    const double dx = static_cast<double>(b.x) - a.x;
    const double dy = static_cast<double>(b.y) - a.y;
    cut(a.x, dx, device.x_min, device.x_max);
    cut(a.y, dy, device.y_min, device.y_max);
    const double width = static_cast<double>(device.x_max) - device.x_min;
    return from < to ? (to - from) * std::hypot(dx, dy) / width : 0;
}

double PsPicture::longest() const {
    double most = 0;
    for (const PsLine& line : lines) {
        for (std::size_t i = 1; i < line.size(); ++i) {
            most = std::max(most, visible(line[i - 1], line[i]));
        }
    }
    return most;
}

PsPicture ps_plot(const Domain& domain, const std::function<void()>& draw) {
    const TempDir directory;
    const std::string file = directory.path() + "/plot.ps";
    RES_put("device", ("p," + file).c_str());
    int id = 0;
    Gws_type type = ws_none;
    Glim offset{0, 0, 0.04F, 0.04F};
    const float aspect = static_cast<float>(domain.nx - 1) / static_cast<float>(domain.ny - 1);
    GPH_setup(&id, &type, aspect, &offset);
    MAP_setup(&domain);
    PsPicture out;
    MAP_get_window(&out.window);
    out.device = {xW_ps(out.window.x_min), xW_ps(out.window.x_max), yW_ps(out.window.y_min),
                  yW_ps(out.window.y_max)};
    draw();
    GPH_end(id);
    read_back(read_text(file), out);
    return out;
}
