// grd_tool.cpp: the range of a grid's values and the plot positions of its
// points. No state.
#include "zyrgrid.h"

#include "map_proj.h"
#include "no_memory.h"

#include <cmath>
#include <cstdlib>

namespace {

std::size_t num_points(const GRD_report& grid) {
    const Domain& domain = grid.domain;
    return domain.nx > 0 && domain.ny > 0
               ? static_cast<std::size_t>(domain.nx) * static_cast<std::size_t>(domain.ny)
               : 0;
}

float* new_array(std::size_t count) {
    auto* const block = static_cast<float*>(std::calloc(count, sizeof(float)));
    if (block == nullptr) {
        ZYR_note_no_memory();
    }
    return block;
}

// Latitude and longitude of every point, north row first.
void fill_lat_lon(const Domain& own, float* lat, float* lon) {
    const Map map = map_make(own);
    float cx = 0.0F;
    float cy = 0.0F;
    map.tran(own.clat, own.clon, &cx, &cy);
    const float left = cx - own.dx * static_cast<float>(own.nx - 1) / 2.0F;
    const float bottom = cy - own.dy * static_cast<float>(own.ny - 1) / 2.0F;
    for (int row = own.ny - 1; row >= 0; --row) {
        const float y = bottom + static_cast<float>(row) * own.dy;
        for (int column = 0; column < own.nx; ++column) {
            map.untran(left + static_cast<float>(column) * own.dx, y, lat++, lon++);
        }
    }
}

} // namespace

int GRD_maxmin(const GRD_report* grid, float* max, float* min) {
    *max = missing_f;
    *min = missing_f;
    if (grid->grid == nullptr) {
        return -1;
    }
    const std::size_t count = num_points(*grid);
    for (std::size_t i = 0; i < count; ++i) {
        const float value = grid->grid[i];
        if (!is_set(value) || !std::isfinite(value)) {
            continue;
        }
        if (!is_set(*max)) {
            *max = value;
            *min = value;
        } else if (value > *max) {
            *max = value;
        } else if (value < *min) {
            *min = value;
        }
    }
    return 0;
}

int GRD_proj_XY(const GRD_report* grid, const Domain* domain, float** x, float** y) {
    std::free(*x);
    std::free(*y);
    const std::size_t count = num_points(*grid);
    *x = count > 0 ? new_array(count) : nullptr;
    *y = count > 0 ? new_array(count) : nullptr;
    if (*x == nullptr || *y == nullptr) {
        std::free(*x);
        std::free(*y);
        *x = nullptr;
        *y = nullptr;
        MESS_print(mess_warn, "GRD_proj_XY: Unable to allocate grid arrays\n");
        return -1;
    }
    fill_lat_lon(grid->domain, *x, *y);
    const Map plot = map_make(*domain);
    for (std::size_t i = 0; i < count; ++i) {
        const float lat = (*x)[i];
        const float lon = (*y)[i];
        if (is_set(lat) && is_set(lon)) {
            plot.tran(lat, lon, &(*x)[i], &(*y)[i]);
        }
    }
    return 0;
}

int GRD_is_vect_func(const char* /*name*/) {
    return 0;
}

int GRD_is_math_func(const char* /*name*/) {
    return 0;
}
