// img_place: where a picture lies on the earth, for programs that lay it over other
// maps. No state.
#include "img_place.h"

#include "out_file.h"
#include "proj.h"
#include "zyr.h"

#include <array>
#include <cstdio>

namespace {

constexpr double metres = 100000.0; // a unit of plot coordinates

// As many digits as single precision holds, so that 0.1F is "0.1".
std::string number(double value) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.7g", value);
    return text.data();
}

// A line of a world file.
std::string line(double value) {
    std::array<char, 60> text{};
    std::snprintf(text.data(), text.size(), "%.10f\n", value);
    return text.data();
}

std::string sphere() {
    return "GEOGCS[\"Sphere\",DATUM[\"Sphere\",SPHEROID[\"Sphere\"," + number(proj::R * metres) +
           ",0]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";
}

struct Parameter {
    const char* name;
    double value;
};

// A map with its formula's name in the well-known text and what it depends on.
std::string projected(const char* name, std::initializer_list<Parameter> parameters) {
    std::string text = "PROJCS[\"unnamed\"," + sphere() + ",PROJECTION[\"" + name + "\"]";
    for (const Parameter& p : parameters) {
        text += std::string(",PARAMETER[\"") + p.name + "\"," + number(p.value) + "]";
    }
    return text + ",PARAMETER[\"false_easting\",0],PARAMETER[\"false_northing\",0]"
                  ",UNIT[\"metre\",1],AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH]]";
}

std::string stereo_wkt(const Map& m) {
    const double true_lat = proj::asin_deg(m.mult / proj::R - 1.0);
    if (true_lat <= 0.0) {
        return ""; // true in the other hemisphere: no name for that
    }
    return projected("Polar_Stereographic", {
                                                {"latitude_of_origin", m.scale * true_lat},
                                                {"central_meridian",   m.domain.plon     },
                                                {"scale_factor",       1.0               }
    });
}

// The origin is the apex of the cone, a pole.
std::string lambert_wkt(const Map& m) {
    const double south = m.scale;
    if (!is_set(m.xfactor) || !is_set(m.mult) || m.xfactor <= 0.0F || m.tlat1 < 0.0F ||
        m.tlat2 < 0.0F) {
        return "";
    }
    return projected("Lambert_Conformal_Conic_2SP", {
                                                        {"standard_parallel_1", south * m.tlat1},
                                                        {"standard_parallel_2", south * m.tlat2},
                                                        {"latitude_of_origin",  south * 90.0   },
                                                        {"central_meridian",    m.domain.plon  }
    });
}

std::string about_centre_wkt(const char* name, const char* lat_name, const char* lon_name,
                             const Map& m) {
    return projected(name, {
                               {lat_name, m.domain.plat},
                               {lon_name, m.domain.plon}
    });
}

// A unit of the plot in units of the files. The program's Mollweide map is as high
// as its sphere, the well-known one that times the root of two.
double file_unit(const Map& map) {
    switch (map.row->code) {
    case proj_latlon:
        return 1.0;
    case proj_mollweide:
        return metres * std::sqrt(2.0);
    default:
        return metres;
    }
}

double file_x(const Map& map, double x) {
    return x * file_unit(map) + (map.row->code == proj_latlon ? map.domain.plon : 0.0);
}

bool write_text(const std::string& name, const std::string& text) {
    OutputPtr file(open_output(name.c_str(), false));
    if (!file || std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) {
        return false;
    }
    return close_output(file.release()) == 0;
}

// Where the ending of a name begins, its point; the end of a name without one.
std::size_t ending_at(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    const std::size_t slash = name.rfind('/');
    const bool has = dot != std::string::npos && dot + 1 < name.size() &&
                     (slash == std::string::npos || dot > slash + 1);
    return has && dot > 0 ? dot : name.size();
}

std::string as_xml(const std::string& text) {
    std::string xml;
    for (const char c : text) {
        xml += c == '"' ? "&quot;" : std::string(1, c);
    }
    return xml;
}

} // namespace

std::string IMG_place_wkt(const Map& map) {
    switch (map.row->code) {
    case proj_latlon:
        return sphere();
    case proj_pstereo:
        return stereo_wkt(map);
    case proj_lambert:
        return lambert_wkt(map);
    case proj_merc:
        return projected("Mercator_1SP",
                         {
                             {"central_meridian", map.domain.plon},
                             {"scale_factor",     1.0            }
        });
    case proj_mollweide:
        return projected("Mollweide", {
                                          {"central_meridian", map.domain.plon}
        });
    case proj_ortho:
        return about_centre_wkt("Orthographic", "latitude_of_origin", "central_meridian", map);
    case proj_gnomonic:
        return about_centre_wkt("Gnomonic", "latitude_of_origin", "central_meridian", map);
    case proj_lambert_az:
        return about_centre_wkt("Lambert_Azimuthal_Equal_Area", "latitude_of_center",
                                "longitude_of_center", map);
    default:
        return "";
    }
}

std::string IMG_place_world(const IMG_place& place) {
    const double unit = file_unit(place.map);
    return line(place.dx * unit) + "0\n0\n" + line(-place.dy * unit) +
           line(file_x(place.map, place.x)) + line(place.y * unit);
}

std::string IMG_place_domain(const Map& map) {
    const Domain& d = map.domain;
    std::string text = map.row->words[0];
    text += ":" + number(d.plat) + ":" + number(d.plon);
    for (const float parameter : d.param) {
        if (!is_set(parameter)) {
            break;
        }
        text += ":" + number(parameter);
    }
    return text + "," + number(d.clat) + "," + number(d.clon) + "," + std::to_string(d.nx) + "," +
           std::to_string(d.ny) + "," + number(d.dx) + "," + number(d.dy);
}

std::string IMG_world_name(const std::string& image_name) {
    const std::size_t dot = ending_at(image_name);
    if (dot == image_name.size()) {
        return image_name + ".wld";
    }
    return image_name.substr(0, dot + 2) + image_name.back() + "w";
}

int IMG_write_place(const char* image_name, const IMG_place& place) {
    const std::string image = image_name;
    if (image == "-" || image.starts_with('|')) {
        MESS_print(mess_warn, "IMG_write_place: No files beside a picture that is no file: %s\n",
                   image_name);
        return 0;
    }
    const std::string wkt = IMG_place_wkt(place.map);
    if (wkt.empty()) {
        MESS_print(mess_warn,
                   "IMG_write_place: No projection file for a map of this kind (%s): %s\n",
                   place.map.row->name, image_name);
        return 0;
    }
    const std::array<std::pair<std::string, std::string>, 3> files = {
        {{IMG_world_name(image), IMG_place_world(place)},
         {image.substr(0, ending_at(image)) + ".prj", wkt + "\n"},
         {image + ".aux.xml", "<PAMDataset>\n  <SRS>" + as_xml(wkt) + "</SRS>\n</PAMDataset>\n"}}
    };
    int result = 1;
    for (const auto& [name, text] : files) {
        if (!write_text(name, text)) {
            MESS_print(mess_warn, "IMG_write_place: Unable to write file: %s\n", name.c_str());
            result = -1;
        }
    }
    return result;
}
