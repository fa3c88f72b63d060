// units.h: units of what comes in and of what is drawn.
#pragma once

constexpr double pi = 3.1415926535898;
constexpr double deg_to_rad = pi / 180.0;
constexpr double rad_to_deg = 180.0 / pi;

constexpr double km_per_nmi = 1.852;
constexpr double km_per_mile = 1.60934;
constexpr double m_per_foot = 0.3048;

// The same where all else is in single precision.
constexpr auto km_per_nmi_f = static_cast<float>(km_per_nmi);
constexpr auto km_per_mile_f = static_cast<float>(km_per_mile);
constexpr auto m_per_foot_f = static_cast<float>(m_per_foot);
