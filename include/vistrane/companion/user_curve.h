#pragma once

// A user-defined colour curve (C_Helper::FillUserColorOperLUTs, C_Image::UserColorOperation).
//
// Each channel has its own curve given by up to 16 control points (input level, output level)
// with strictly increasing inputs. Between points the curve is a monotone cubic (Fritsch and
// Carlson, 1980): it passes through every point and never overshoots, so between two points its
// output stays between their two outputs. Before the first point and after the last the curve is
// flat at their outputs. A curve of 0 points is the identity; a curve of exactly 1 point is
// flat at that output.
//
// The master curve is applied after each channel's own curve (output = master[channel[input]]),
// so a host can offer one overall curve and three per-channel corrections.

#include <vistrane/platform/types.h>

constexpr int kUserCurveMaxPoints = 16;

struct S_UserCurve {
    int nPoints;                      // 0..kUserCurveMaxPoints
    BYTE input[kUserCurveMaxPoints];  // strictly increasing
    BYTE output[kUserCurveMaxPoints];
};

struct S_OneUserColorOper {
    S_UserCurve master;
    S_UserCurve red;
    S_UserCurve green;
    S_UserCurve blue;
};

enum USERCURVE_ERROR {
    USERCURVE_ERROR_NONE = 0,
    USERCURVE_ERROR_POINT_COUNT = 1,     // nPoints outside 0..kUserCurveMaxPoints
    USERCURVE_ERROR_NOT_INCREASING = 2,  // input[point] <= input[point - 1]
    USERCURVE_ERROR_NULL_ARGUMENT = 3,
};

// Which curve and point were rejected: channel 0 master, 1 red, 2 green, 3 blue; point is the
// offending index (-1 when the count itself is wrong).
struct S_CalcColorError {
    int code;  // a USERCURVE_ERROR
    int channel;
    int point;
};
