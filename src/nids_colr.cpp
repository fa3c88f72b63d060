// nids_colr: levels and colours of NIDS products, by the list of the product's
// row; those without one take the 16 thresholds of the product itself.
#include "nids_draw.h"

#include "cont.h"
#include "nids_tables.h"

namespace {

constexpr char of_thresholds[] =
    "off,blue,lblue,cyan,lcyan,green,lgreen,brown,yellow,red,lred,magenta,lmagenta,dgray,"
    "lgray,white";

} // namespace

int NIDS_set_colors(const NIDS_info& info) {
    CONT_init();
    CONT_param_decode();
    CONT_reset_fill_set();
    const NidsProduct& product = nids_product(info.code);
    if (product.colors == nullptr) {
        CONT_set_values(info.thres, nids_num_thres);
    }
    CONT_set_fill_colors(product.colors != nullptr ? product.colors : of_thresholds, 0);
    if (product.barb_levels) {
        CONT_set_base(0.0F);
        CONT_set_intrvl(4.0F);
        CONT_set_range(16.0F, 0.0F);
    }
    CONT_set_type(cont_fill);
    return 0;
}
