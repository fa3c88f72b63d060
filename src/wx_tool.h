// wx_tool.h: compass points.
#pragma once

// Bearing of one of the sixteen compass points in capitals, such as "NNE",
// degrees clockwise from north; missing_f for any other text.
float dir_decode(const char* str);
