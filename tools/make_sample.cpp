// Writes sample radar products.
//   make_sample FILE             a storm as a reflectivity product (code 94)
//   make_sample --super FILE     the same in super resolution (code 153)
//   make_sample --storms FILE    the same as a composite with a storm table (code 37)
//   make_sample --symbols FILE   the same with packets of storm symbols
//   make_sample --lev2 FILE      the same as a Level II volume, with velocities
//   make_sample --nowrad FILE    a national mosaic; --nowrad-us the Lambert section
//   make_sample --kavrad FILE    the same weather on the coarse KAVRAD grid
//   make_sample --rrwds FILE     the storm as an RRWDS image
//   make_sample --rcm FILE       the storm as a Radar Coded Message; --rcm-region of four sites
//   make_sample --rcm-seeds DIR  small messages of every kind
//   make_sample --mdr FILE       the weather of the mosaics as a summary of digitised
//                                reports; --rcm-summary of Radar Coded Messages
//   make_sample --summary DIR    the same, and netCDF summaries
//   make_sample --summary-seeds KIND DIR
//                                small summaries: text or netcdf
//   make_sample --mosaic-seeds KIND DIR small images: nowrad, kavrad or rrwds
//   make_sample --all DIR        a file of every kind, as the documents name them
//   make_sample --seeds DIR      small products of every kind, whole and damaged
//   make_sample --lev2-seeds DIR small Level II volumes of every kind, the same
//   make_sample --image-seeds KIND DIR
//                                the same of images: gif, png, xwd or native
//   make_sample --overlay-seeds DIR
//                                images to be laid over a plot
#include "image_sample.h"
#include "lev2_storm.h"
#include "lev2_writer.h"
#include "mosaic_writer.h"
#include "nids_storm.h"
#include "nids_writer.h"
#include "rcm_writer.h"
#include "rrwds_writer.h"
#include "seeds.h"
#include "summary_writer.h"

#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace {

bool write_file(const std::string& name, const Bytes& bytes) {
    std::ofstream out(name, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        std::fprintf(stderr, "make_sample: Unable to write file:%s\n", name.c_str());
    }
    return static_cast<bool>(out);
}

bool write_files(const std::string& dir, const std::vector<std::pair<std::string, Bytes>>& files) {
    bool good = true;
    for (const auto& [name, bytes] : files) {
        good = write_file(std::string(dir).append("/").append(name), bytes) && good;
    }
    return good;
}

// A tornado and a severe thunderstorm watch of the storm's evening.
constexpr std::string_view watches = "WWUS30 KWNS 202058\nSAW3\nSPC AWW 202058\n"
                                     "WW 197 TORNADO OK TX 202100Z - 210400Z\n"
                                     "AXIS..75 STATUTE MILES EITHER SIDE OF LINE..\n"
                                     "25NNW OKC/OKLAHOMA CITY OK/ - 25ESE ABI/ABILENE TX/\n"
                                     "..AVIATION COORDS.. 65NM E/W /22NNW OKC - 22ESE ABI/\n"
                                     "SPC AWW 202130\n"
                                     "WW 198 SEVERE TSTM AR OK 202140Z - 210300Z\n"
                                     "AXIS..60 STATUTE MILES NORTH AND SOUTH OF LINE..\n"
                                     "20S TUL/TULSA OK/ - 20S LIT/LITTLE ROCK AR/\n"
                                     "..AVIATION COORDS.. 50NM N/S /17S TUL - 17S LIT/\n";

// What the surface stations said at that time, as a table.
constexpr std::string_view observations = "stn,lat,lon,n,wind,t,td,p,ww,ff\n"
                                          "OKC,35.39,-97.60,6,\"160,15\",27,21,52,TSRA,15\n"
                                          "TUL,36.20,-95.89,3,\"170,15\",29,22,85,,15\n"
                                          "LAW,34.57,-98.42,8,\"300,30\",17,16,97,+TSRA,30\n"
                                          "SPS,33.99,-98.49,7,\"310,25\",18,15,104,-RA,25\n"
                                          "PNC,36.73,-97.10,5,\"150,20\",26,20,61,VCTS,20\n"
                                          "CSM,35.35,-99.20,6,\"290,25\",17,13,118,BR,25\n";

// What the pages of doc/ plot.
std::vector<std::pair<std::string, Bytes>> all_samples() {
    std::vector<std::pair<std::string, Bytes>> all = {
        {"storm.nids",              nids_sample_storm()                       },
        {"super.nids",              nids_sample_storm(153)                    },
        {"storms.nids",             nids_sample_storm_table()                 },
        {"symbols.nids",            nids_sample_storm_table(true)             },
        {"velocity.nids",           nids_sample_velocity()                    },
        {"classes.nids",            nids_sample_classes()                     },
        {"profile.nids",            nids_sample_profile()                     },
        {"KTLX20190520_223124_V06", lev2_sample_storm()                       },
        {"mosaic.now",              nowrad_sample('C')                        },
        {"lambert.now",             nowrad_sample('L')                        },
        {"mosaic.kav",              kavrad_sample(true)                       },
        {"storm.rrw",               rrwds_sample()                            },
        {"message.rcm",             rcm_sample(false)                         },
        {"region.rcm",              rcm_region_sample()                       },
        {"watches.txt",             {watches.begin(), watches.end()}          },
        {"obs.csv",                 {observations.begin(), observations.end()}},
    };
    for (auto& sample : summary_samples()) {
        all.push_back(std::move(sample));
    }
    return all;
}

} // namespace

int main(int argc, char** argv) {
    const std::string option = argc == 3 ? argv[1] : "";
    if (argc == 2 && *argv[1] != '-') {
        return write_file(argv[1], nids_sample_storm()) ? 0 : 1;
    }
    if (option == "--all") {
        return write_files(argv[2], all_samples()) ? 0 : 1;
    }
    if (option == "--super") {
        return write_file(argv[2], nids_sample_storm(153)) ? 0 : 1;
    }
    if (option == "--storms" || option == "--symbols") {
        return write_file(argv[2], nids_sample_storm_table(option == "--symbols")) ? 0 : 1;
    }
    if (option == "--lev2") {
        return write_file(argv[2], lev2_sample_storm()) ? 0 : 1;
    }
    if (option == "--nowrad" || option == "--nowrad-us") {
        return write_file(argv[2], nowrad_sample(option == "--nowrad" ? 'C' : 'L')) ? 0 : 1;
    }
    if (option == "--kavrad") {
        return write_file(argv[2], kavrad_sample(true)) ? 0 : 1;
    }
    if (option == "--rrwds") {
        return write_file(argv[2], rrwds_sample()) ? 0 : 1;
    }
    if (option == "--rcm" || option == "--rcm-region") {
        return write_file(argv[2], option == "--rcm" ? rcm_sample(false) : rcm_region_sample()) ? 0
                                                                                                : 1;
    }
    if (option == "--rcm-seeds") {
        return write_files(argv[2], rcm_samples()) ? 0 : 1;
    }
    if (option == "--mdr" || option == "--rcm-summary") {
        return write_file(argv[2], summary_sample(option != "--mdr")) ? 0 : 1;
    }
    if (option == "--summary") {
        return write_files(argv[2], summary_samples()) ? 0 : 1;
    }
    if (argc == 4 && std::string(argv[1]) == "--summary-seeds") {
        return write_files(argv[3], summary_seeds(std::string(argv[2]) == "netcdf")) ? 0 : 1;
    }
    if (argc == 4 && std::string(argv[1]) == "--mosaic-seeds") {
        return write_files(argv[3], mosaic_seeds(argv[2])) ? 0 : 1;
    }
    if (option == "--seeds") {
        return write_files(argv[2], nids_samples()) && write_files(argv[2], nids_seeds()) ? 0 : 1;
    }
    if (option == "--lev2-seeds") {
        return write_files(argv[2], lev2_samples()) && write_files(argv[2], lev2_seeds()) ? 0 : 1;
    }
    if (option == "--overlay-seeds") {
        return write_files(argv[2], overlay_seeds()) ? 0 : 1;
    }
    if (argc == 4 && std::string(argv[1]) == "--image-seeds") {
        return write_files(argv[3], image_samples(argv[2])) &&
                       write_files(argv[3], image_seeds(argv[2]))
                   ? 0
                   : 1;
    }
    std::fprintf(
        stderr,
        "usage: make_sample FILE | --super FILE | --storms FILE | --symbols FILE | --lev2 FILE | "
        "--nowrad FILE | "
        "--nowrad-us FILE | --kavrad FILE | --rrwds FILE | --rcm FILE | --rcm-region FILE | "
        "--rcm-seeds DIR | --mdr FILE | "
        "--rcm-summary FILE | --summary DIR | --summary-seeds KIND DIR | "
        "--mosaic-seeds KIND DIR | --all DIR | --seeds DIR | "
        "--lev2-seeds DIR | --image-seeds KIND DIR | --overlay-seeds DIR\n");
    return 2;
}
