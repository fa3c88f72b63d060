// nids_colr: levels and colours of NIDS products, by the list of the product's
// row; those without one take the 16 thresholds of the product itself. The level
// file that "auto" takes goes by the product's label.
#include "nids_draw.h"

#include "cont.h"
#include "nids_exact.h"
#include "nids_tables.h"

#include <string_view>

namespace {

constexpr char of_thresholds[] =
    "off,blue,lblue,cyan,lcyan,green,lgreen,brown,yellow,red,lred,magenta,lmagenta,dgray,"
    "lgray,white";

// What a label says the product is a picture of, and the level file for it. The
// first word that the label holds counts.
struct Quantity {
    std::string_view word;
    const char* levels;
};
constexpr Quantity quantities[] = {
    {"velocity",      "velocity"    },
    {"spectrum",      "width"       },
    {"diff refl",     "diff_refl"   },
    {"correl",        "correlation" },
    {"diff phase",    "kdp"         },
    {"hydro class",   "hydro_class" },
    {"refl",          "reflectivity"},
    {"tops (1000 ft", "tops"        },
    {"liquid",        "liquid"      },
    {"diff accum",    "precip_diff" },
    {"accum",         "precip"      },
    {"(in",           "precip"      },
};

const char* levels_of(std::string_view label) {
    for (const Quantity& quantity : quantities) {
        if (label.find(quantity.word) != std::string_view::npos) {
            return quantity.levels;
        }
    }
    return nullptr;
}

} // namespace

int NIDS_set_colors(const NIDS_info& info) {
    CONT_init();
    CONT_param_decode();
    CONT_reset_fill_set();
    const NidsProduct& product = nids_product(info.code);
    const char* colors = product.colors;
    if (colors == nullptr && NIDS_get_exact() != 0) {
        colors = nids_exact(info.code).colors;
    }
    if (colors == nullptr) {
        CONT_set_values(info.thres, nids_num_thres);
    }
    CONT_set_quantity(levels_of(info.info));
    CONT_set_fill_colors(colors != nullptr ? colors : of_thresholds, 0);
    if (product.barb_levels) {
        CONT_set_base(0.0F);
        CONT_set_intrvl(4.0F);
        CONT_set_range(16.0F, 0.0F);
    }
    CONT_set_type(cont_fill);
    return 0;
}
