// A fact sheet of the NIDS products, typed apart from the program's own rows: each
// subject lists its codes. Every code up to 300 is compared, those without facts too.
#include "nids_tables.h"

#include <array>
#include <cstdio>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

struct Fact {
    const char* codes; // "16 22-27"
    const char* text;
};

// Of one radar: label|length of a bin|range.
constexpr Fact radar[] = {
    {"16 19",   "Base reflectivity (Dbz)|0.54|124"             },
    {"17 20",   "Base reflectivity (Dbz)|1.08|248"             },
    {"18 21",   "Base reflectivity (Dbz)|2.16|248"             },
    {"94",      "Base reflectivity (Dbz)|0.54|248"             },
    {"153",     "Base reflectivity (Dbz)|0.135|248"            },
    {"180 181", "Base reflectivity (Dbz)|0.08|48"              },
    {"186",     "Base reflectivity (Dbz)|0.16|224"             },
    {"22 25",   "Base velocity (knt)|0.135|31"                 },
    {"23 26",   "Base velocity (knt)|0.27|62"                  },
    {"24 27",   "Base velocity (knt)|0.54|124"                 },
    {"99 154",  "Base velocity (knt)|0.135|124"                },
    {"182",     "Base velocity (knt)|0.08|48"                  },
    {"28",      "Base spectrum width (knt)|0.135|31"           },
    {"29",      "Base spectrum width (knt)|0.27|62"            },
    {"30",      "Base spectrum width (knt)|0.54|124"           },
    {"32",      "Digital hyb reflectivity (Dbz)|0.54|124"      },
    {"35 37",   "Comp reflectivity (Dbz)|0.54|124"             },
    {"36 38",   "Comp reflectivity (Dbz)|2.16|248"             },
    {"41",      "Echo tops (1000 ft)|2.16|124"                 },
    {"135",     "Enh Echo tops (1000 ft)|0.54|186"             },
    {"48",      "VAD wind profile (knt)|512|1"                 },
    {"55",      "Stm rel mn rad velocity (knt)|0.27|27"        },
    {"56",      "Stm rel mn rad velocity (knt)|0.54|124"       },
    {"57",      "Vert int liquid (kg/m^3)|2.16|124"            },
    {"134",     "Digital vert int liquid (kg/m^3)|0.54|248"    },
    {"65",      "Layer 1 comp refl (max Dbz)|2.16|124"         },
    {"66",      "Layer 2 comp refl (max Dbz)|2.16|124"         },
    {"90",      "Layer 3 comp refl (max Dbz)|2.16|124"         },
    {"67",      "Comp refl APR (Dbz)|2.16|248"                 },
    {"78 220",  "Sfc 1 hr rainfall acc. (in)|1.08|124"         },
    {"79 221",  "Sfc 3 hr rainfall acc. (in)|1.08|124"         },
    {"80 222",  "Sfc storm total rainfall acc. (in)|1.08|124"  },
    {"81",      "Digital precip array (in)|0.047596|124"       },
    {"138",     "Digital storm precip (in)|1.08|124"           },
    {"141",     "Mesocyclone detection|0.54|124"               },
    {"159",     "Digital diff refl (dBZ)|0.135|162"            },
    {"161",     "Digital correl coeff|0.135|162"               },
    {"163",     "Digital spec diff phase (Deg/km)|0.135|124"   },
    {"165",     "Digital hydro class|0.135|162"                },
    {"166",     "Melting layer|0.135|124"                      },
    {"169",     "1 hr accum|1.08|124"                          },
    {"170",     "Digital accum array (in)|0.135|124"           },
    {"171",     "Storm total accum|1.08|124"                   },
    {"172",     "Digital storm total accum (in)|0.135|124"     },
    {"174",     "Digital 1 hr diff accum (in)|0.135|124"       },
    {"175",     "Digital storm total diff accum (in)|0.135|124"},
    {"176",     "Digital instant prec rate (in/hr)|0.135|124"  },
    {"177",     "Hybrid hydro class|0.135|124"                 },
    {"0-300",   "-|0|0"                                        },
};

// Of several radars: label|cell.
constexpr Fact composite[] = {
    {"137-140 180", "Base reflectivity (Dbz)|2"         },
    {"141",         "Base reflectivity (Dbz)|4"         },
    {"142",         "Base reflectivity (Dbz)|8"         },
    {"143 144",     "Base reflectivity (Dbz)|0"         },
    {"199",         "Winter reflectivity (Dbz)|1"       },
    {"200",         "Winter reflectivity (Dbz)|2"       },
    {"201",         "-|4"                               },
    {"202",         "-|8"                               },
    {"203",         "Reflectivity at Lowest Alt (Dbz)|1"},
    {"30 103",      "Composite reflectivity (Dbz)|4"    },
    {"211",         "Composite reflectivity (Dbz)|1"    },
    {"28-65 104",   "Composite reflectivity (Dbz)|0"    },
    {"6",           "WARP Comp reflectivity (Dbz)|4"    },
    {"90",          "Sfc 1 hr precipitation (in)|4"     },
    {"91",          "Sfc 1 hr precipitation (in)|8"     },
    {"101",         "Sfc precipitation since 12Z (in)|4"},
    {"105",         "Sfc precipitation since 12Z (in)|2"},
    {"107",         "Sfc precipitation since 12Z (in)|8"},
    {"102",         "Sfc 24 hr precipitation (in)|4"    },
    {"106",         "Sfc 24 hr precipitation (in)|2"    },
    {"108",         "Sfc 24 hr precipitation (in)|8"    },
    {"148",         "Vert int liquid (kg/m^3)|4"        },
    {"149",         "Vert int liquid (kg/m^3)|8"        },
    {"209",         "Vert int liquid (kg/m^3)|1"        },
    {"95",          "Echo tops (ft)|4"                  },
    {"96",          "Echo tops (ft)|8"                  },
    {"210",         "Echo tops-18dBZ (ft)|1"            },
    {"212",         "Echo tops-30dBZ (ft)|1"            },
    {"0-300",       "-|0"                               },
};

// Scale of the thresholds, and what divides a level's value.
constexpr Fact scale[] = {
    {"32 94 153 180 182",   "tenths"     },
    {"99 154",              "knots"      },
    {"81",                  "thousandths"},
    {"134",                 "liquid"     },
    {"135",                 "tops"       },
    {"138",                 "hundredths" },
    {"170 172-175",         "floats /100"},
    {"159 161 163 165 176", "floats"     },
    {"177",                 "floats"     },
    {"171",                 "levels /100"},
    {"186",                 "fixed"      },
    {"0-300",               "levels"     },
};

// Elevation (stored), smallest and largest value with their factor.
constexpr Fact params[] = {
    {"22-27 55 56 99 154 182", "elev 4 5 *1"      },
    {"158 159",                "elev 4 5 *0.1"    },
    {"161",                    "elev 4 5 *0.00333"},
    {"175",                    "- 7 4 *0.01"      },
    {"78-81 169-174 220-222",  "- 0 4 *0.1"       },
    {"138",                    "- 0 4 *0.01"      },
    {"16-21 30 94 153",        "elev 0 4 *1"      },
    {"163 165 180 181",        "elev 0 4 *1"      },
    {"0-300",                  "- 0 4 *1"         },
};

// The parameter line, in three parts.
constexpr Fact line_range[] = {
    {"48 55 56", ""   },
    {"0-300",    "Rng"},
};
constexpr Fact line_elev[] = {
    {"16-27 55 56 94 99 153 154 158 159", "El"},
    {"161 163 165 180 181 182",           "El"},
    {"0-300",                             ""  },
};
constexpr Fact line_extra[] = {
    {"80 222",          "B=p5"},
    {"138 171 172 175", "B=p1"},
    {"55 56",           "Stm" },
    {"63-66 89 90",     "Lyr" },
    {"0-300",           ""    },
};
constexpr Fact line_extremes[] = {
    {"22-27 55 56 99 154 182", "Mn,Mx %.0f"},
    {"158 159 161",            "Mn,Mx %.1f"},
    {"175",                    "Mn,Mx %.2f"},
    {"78-81 169-174 220-222",  "Mx %.1f"   },
    {"138",                    "Mx %.2f"   },
    {"165 177",                ""          },
    {"0-300",                  "Mx %.0f"   },
};

constexpr Fact compressed[] = {
    {"32 94 99 134 135 138 153 154 159 161 163 165", "bz"},
    {"170 172-177 180 182 186",                      "bz"},
    {"0-300",                                        ""  },
};

constexpr Fact map[] = {
    {"48",    "display, levels every 4"},
    {"81",    "precip grid, decibel"   },
    {"0-300", "site"                   },
};

constexpr Fact tables[] = {
    {"58",    "tracks"      },
    {"59",    "hail"        },
    {"61",    "vortices"    },
    {"141",   "mesocyclones"},
    {"0-300", "list"        },
};

constexpr Fact colors[] = {
    {"32 94 153 180 186",
     "-100:off,5:blue,10:lblue,15:cyan,20:lcyan,25:green,30:lgreen,35:brown,40:yellow,45:red,"
     "50:lred,55:magenta,60:lmagenta,65:dgray,70:lgray,75:white"           },
    {"48",                "lblue,lcyan,lgreen,yellow,lred"                 },
    {"81 138",
     "0.01:blue,.1:lblue,.2:cyan,.5:lcyan,.8:green,1.0:lgreen,1.2:brown,1.5:yellow,1.8:red,"
     "2.0:lred,2.5:magenta,3.0:lmagenta,4.0:dgray,6.0:lgray,8.0:white"     },
    {"55 56",             "-50:lblue,-40:cyan,-30:lcyan,-22:green,-10:lgreen,-5:dgray,-1:off,0:lgray,5:yellow,"
              "10:brown,22:lred,30:red,40:lmagenta,50:magenta"},
    {"134 135",
     "-100:off,0:blue,5:lblue,10:cyan,15:lcyan,20:green,25:lgreen,30:brown,35:yellow,40:red,"
     "45:lred,50:magenta,55:lmagenta,60:dgray,65:lgray,70:white"           },
    {"22-27 99 154 182",
     "-70:blue,-63:lblue,-49:cyan,-35:lcyan,-25:green,-19:lgreen,-9:dgray,0:off,1:lgray,"
     "10:yellow,20:brown,26:lred,36:red,50:lmagenta,64:magenta"            },
    {"158 159",
     "-7.0:blue,-6.3:lblue,-4.9:cyan,-3.5:lcyan,-2.5:green,-1.9:lgreen,-.9:dgray,0:off,.1:lgray,"
     "1.0:yellow,2.0:brown,2.6:lred,3.6:red,5.0:lmagenta,6.4:magenta"      },
    {"170-176",
     "-100:off,.01:blue,.05:lblue,.1:cyan,.25:lcyan,.5:green,.75:lgreen,1:brown,1.25:yellow,"
     "1.5:red,2:lred,2.5:magenta,3:lmagenta,4:dgray,6:lgray,8:white"       },
    {"165 177",
     "-100:off,10:magenta,20:lmagenta,30:cyan,40:blue,50:lblue,60:dgreen,70:green,80:lgreen,"
     "90:lcyan,100:red,140:dgray,150:lgray"                                },
    {"161 163",
     "-200:off,-1.:blue,-.8:lblue,-.6:cyan,-.4:lcyan,-.2:green,0:yellow,.2:brown,.4:lred,.6:red,"
     ".8:lmagenta,1.:magenta"                                              },
    {"0-300",             "-"                                              },
};

bool has(const char* codes, int code) {
    std::istringstream in(codes);
    for (std::string word; in >> word;) {
        int first = 0;
        int last = 0;
        const int n = std::sscanf(word.c_str(), "%d-%d", &first, &last);
        if (code >= first && code <= (n == 2 ? last : first)) {
            return true;
        }
    }
    return false;
}

// What the first row of a subject that names the code says.
template <std::size_t N> std::string fact(const Fact (&rows)[N], int code) {
    for (const Fact& row : rows) {
        if (has(row.codes, code)) {
            return row.text;
        }
    }
    return "no row";
}

std::string text(const char* value) {
    return value != nullptr ? value : "-";
}

std::string number(double value) {
    std::array<char, 40> out{};
    std::snprintf(out.data(), out.size(), "%g", value);
    return out.data();
}

std::string scale_text(const NidsProduct& p) {
    const std::array<const char*, 9> names = {"levels",     "tenths",      "knots",
                                              "hundredths", "thousandths", "liquid",
                                              "tops",       "floats",      "fixed"};
    return names.at(static_cast<std::size_t>(p.scale)) +
           (p.divisor != 1 ? " /" + number(p.divisor) : "");
}

std::string extremes_text(const NidsParams& p) {
    const std::array<const char*, 3> names = {"", "Mx", "Mn,Mx"};
    return p.show == NidsExtremes::none ? ""
                                        : names.at(static_cast<std::size_t>(p.show)) +
                                              (" %." + std::to_string(p.decimals)) + "f";
}

std::string map_text(const NidsProduct& p) {
    const std::array<const char*, 3> names = {"site", "display", "precip grid"};
    return std::string(names.at(static_cast<std::size_t>(p.map))) +
           (p.barb_levels ? ", levels every 4" : "") + (p.decibel ? ", decibel" : "");
}

} // namespace

TEST(NidsFacts, EveryCodeHasThoseOfTheSheet) {
    const std::array<const char*, 5> extras = {"", "B=p5", "B=p1", "Stm", "Lyr"};
    const std::array<const char*, 5> layouts = {"list", "tracks", "hail", "vortices",
                                                "mesocyclones"};
    for (int code = 0; code <= 300; ++code) {
        SCOPED_TRACE(code);
        const NidsProduct& p = nids_product(code);
        EXPECT_EQ(text(p.label) + "|" + number(p.bin_nmi) + "|" + number(p.range_nmi),
                  fact(radar, code));
        EXPECT_EQ(text(p.mosaic) + "|" + number(p.cell_km), fact(composite, code));
        EXPECT_EQ(scale_text(p), fact(scale, code));
        EXPECT_EQ(std::string(p.params.elev != NidsElev::none ? "elev " : "- ") +
                      std::to_string(p.params.nmax) + " " + std::to_string(p.params.max) + " *" +
                      number(p.params.factor),
                  fact(params, code));
        EXPECT_EQ(p.show_range ? "Rng" : "", fact(line_range, code));
        EXPECT_EQ(p.params.elev == NidsElev::shown ? "El" : "", fact(line_elev, code));
        EXPECT_EQ(extras.at(static_cast<std::size_t>(p.extra)), fact(line_extra, code));
        EXPECT_EQ(extremes_text(p.params), fact(line_extremes, code));
        EXPECT_EQ(p.compressed ? "bz" : "", fact(compressed, code));
        EXPECT_EQ(map_text(p), fact(map, code));
        EXPECT_EQ(layouts.at(static_cast<std::size_t>(p.table)), fact(tables, code));
        EXPECT_EQ(text(p.colors), fact(colors, code));
    }
}
