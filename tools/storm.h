// storm.h: an invented storm over Oklahoma: a supercell with a hook echo and a
// mesocyclone ahead of a bowing squall line with trailing stratiform rain, seen
// by KTLX on 20 May 2019, 22:31:24 UTC. East is x, north is y, km from the radar.
#pragma once

// Reflectivity, and the wind where the lowest beam meets it, m/s.
float storm_dbz(float x, float y);
struct StormWind {
    float east, north;
};
StormWind storm_wind(float x, float y);
// Distance from the middle of the mesocyclone.
float storm_mesocyclone_km(float x, float y);
// Grain of a measurement, from -0.5 to 0.5.
float storm_grain(int x, int y);
