// nids_colr: levels and colours of NIDS products. The product's code chooses
// the list; codes without one take the 16 thresholds of the product itself.
#include "nids_draw.h"

#include "cont.h"
#include "nids_tables.h"

namespace {

constexpr char reflectivity[] =
    "-100:off,5:blue,10:lblue,15:cyan,20:lcyan,25:green,30:lgreen,35:brown,40:yellow,45:red,"
    "50:lred,55:magenta,60:lmagenta,65:dgray,70:lgray,75:white";
constexpr char wind_profile[] = "lblue,lcyan,lgreen,yellow,lred";
constexpr char storm_precip[] =
    "0.01:blue,.1:lblue,.2:cyan,.5:lcyan,.8:green,1.0:lgreen,1.2:brown,1.5:yellow,1.8:red,"
    "2.0:lred,2.5:magenta,3.0:lmagenta,4.0:dgray,6.0:lgray,8.0:white";
constexpr char storm_velocity[] =
    "-50:lblue,-40:cyan,-30:lcyan,-22:green,-10:lgreen,-5:dgray,-1:off,0:lgray,5:yellow,"
    "10:brown,22:lred,30:red,40:lmagenta,50:magenta";
constexpr char liquid_tops[] =
    "-100:off,0:blue,5:lblue,10:cyan,15:lcyan,20:green,25:lgreen,30:brown,35:yellow,40:red,"
    "45:lred,50:magenta,55:lmagenta,60:dgray,65:lgray,70:white";
constexpr char velocity[] =
    "-70:blue,-63:lblue,-49:cyan,-35:lcyan,-25:green,-19:lgreen,-9:dgray,0:off,1:lgray,"
    "10:yellow,20:brown,26:lred,36:red,50:lmagenta,64:magenta";
constexpr char diff_reflectivity[] =
    "-7.0:blue,-6.3:lblue,-4.9:cyan,-3.5:lcyan,-2.5:green,-1.9:lgreen,-.9:dgray,0:off,"
    ".1:lgray,1.0:yellow,2.0:brown,2.6:lred,3.6:red,5.0:lmagenta,6.4:magenta";
constexpr char accumulation[] =
    "-100:off,.01:blue,.05:lblue,.1:cyan,.25:lcyan,.5:green,.75:lgreen,1:brown,1.25:yellow,"
    "1.5:red,2:lred,2.5:magenta,3:lmagenta,4:dgray,6:lgray,8:white";
constexpr char hydrometeor[] =
    "-100:off,10:magenta,20:lmagenta,30:cyan,40:blue,50:lblue,60:dgreen,70:green,80:lgreen,"
    "90:lcyan,100:red,140:dgray,150:lgray";
constexpr char correlation[] =
    "-200:off,-1.:blue,-.8:lblue,-.6:cyan,-.4:lcyan,-.2:green,0:yellow,.2:brown,.4:lred,"
    ".6:red,.8:lmagenta,1.:magenta";
constexpr char of_thresholds[] =
    "off,blue,lblue,cyan,lcyan,green,lgreen,brown,yellow,red,lred,magenta,lmagenta,dgray,"
    "lgray,white";

constexpr int code_wind_profile = 48;

struct ColorRow {
    int first, last; // product codes
    const char* colors;
};
constexpr ColorRow color_rows[] = {
    {22,                27,                velocity         },
    {32,                32,                reflectivity     },
    {code_wind_profile, code_wind_profile, wind_profile     },
    {55,                56,                storm_velocity   },
    {81,                81,                storm_precip     },
    {94,                94,                reflectivity     },
    {99,                99,                velocity         },
    {134,               135,               liquid_tops      },
    {138,               138,               storm_precip     },
    {153,               153,               reflectivity     },
    {154,               154,               velocity         },
    {158,               159,               diff_reflectivity},
    {161,               161,               correlation      },
    {163,               163,               correlation      },
    {165,               165,               hydrometeor      },
    {170,               176,               accumulation     },
    {177,               177,               hydrometeor      },
    {180,               180,               reflectivity     },
    {182,               182,               velocity         },
    {186,               186,               reflectivity     },
};
static_assert(nids_sorted(color_rows));

} // namespace

int NIDS_set_colors(const NIDS_info& info) {
    CONT_init();
    CONT_param_decode();
    CONT_reset_fill_set();
    const ColorRow* row = nids_row(color_rows, info.code);
    if (row == nullptr) {
        CONT_set_values(info.thres, nids_num_thres);
    }
    CONT_set_fill_colors(row != nullptr ? row->colors : of_thresholds, 0);
    if (info.code == code_wind_profile) {
        CONT_set_base(0.0F);
        CONT_set_intrvl(4.0F);
        CONT_set_range(16.0F, 0.0F);
    }
    CONT_set_type(cont_fill);
    return 0;
}
