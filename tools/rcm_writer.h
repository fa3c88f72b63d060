// rcm_writer: makes Radar Coded Messages for tests, fuzz seeds and pictures.
#pragma once

#include "nids_writer.h"
#include "rarep.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

// A report without echoes, of the sample's site and time.
std::unique_ptr<RCM_report> rcm_blank();
// The message of a report: as text with bytes of the line before it, or as
// packets, which bear the site's place. Winds come with the error letter of `rms`.
Bytes rcm_message(const RCM_report& report, bool packets);
// The text of a message from "1234" on.
std::string rcm_text(const RCM_report& report);
// The invented storm (storm.h) as a site sees it, on the site's own grid.
std::unique_ptr<RCM_report> rcm_storm_report(const char* id, float lat, float lon);
// The storm as KTLX's message; the messages of four sites around it, in both forms.
Bytes rcm_sample(bool packets);
Bytes rcm_region_sample();
// Small messages of every kind, by name.
std::vector<std::pair<std::string, Bytes>> rcm_samples();
