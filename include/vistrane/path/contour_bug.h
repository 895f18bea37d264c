#pragma once

// C_ContourBug: the contour follower that turns a selection mask into outlines. It works on a
// copy of the mask with a one-pixel empty border in which only edge pixels remain (value 255:
// a selected pixel with an unselected 4-neighbour). A raster scan finds each edge pixel not
// yet traced; a first pass walks its contour, marking the pixels with a label and counting
// them, and a second pass walks it again writing the pixel coordinates as anchors. Labels run
// down from 254; after label 1 the traced pixels are cleared and labels start again, so any
// number of contours can be traced. Outer outlines and hole outlines are not told apart.
//
// The step tables, for direction d = 0..3, with y growing downwards and the next row down at
// -scan bytes (rows stored bottom-up):
//   forward step: offsets -scan, +scan, -1, +1; moves (0,1), (0,-1), (-1,0), (1,0);
//                 then direction 2, 3, 1, 0
//   turning step: offsets -1, +1, +scan, -scan; moves (-1,0), (1,0), (0,-1), (0,1);
//                 then direction 1, 0, 3, 2
// Every contour starts one turning step of direction 0 left of its start pixel, in direction 1.
// A plain value: copying copies the tables.

#include <vistrane/export.h>
#include <vistrane/path/path_point.h>
#include <vistrane/platform/geometry.h>

class C_Image;
class C_PointPath;

enum CB_ContourFollowResult {
    CB_OK = 0,
    CB_NO_CONTOUR = 1,     // no image, or no edge pixel
    CB_OUT_OF_MEMORY = 2,  // the mask copy or a sub-path could not be allocated
};

class VISTRANE_API C_ContourBug {
  public:
    // Makes `work` a mask two pixels wider and higher than `mask` holding 255 on the edge
    // pixels of the mask (moved by one pixel) and 0 elsewhere.
    CB_ContourFollowResult PrepareMaskCopy(C_Image* mask, C_Image* work);
    // Fills the step tables for a working mask whose rows are `scan` bytes long.
    void FillDirectionOffsets(long scan);
    // First pass: labels the contour through `start` and returns its length in pixels.
    long BackTrackFollowThisContour(unsigned char* start, unsigned char label);
    // Second pass: walks the same contour from (x, y), writing at most the first pass's length
    // of anchors (directions 0, flags 0) to `points`; returns how many were written.
    long BackTrackFollowThisContour(unsigned char* start, S_PathPoint* points, long x, long y,
                                    unsigned char label);
    // Traces every contour of `mask` into sub-paths of `path`, added at the head; contours of
    // 3 pixels or fewer give none. On CB_OUT_OF_MEMORY the sub-paths traced so far stay.
    CB_ContourFollowResult CreateMaskContour(C_Image* mask, C_PointPath* path);

  private:
    long m_ForwardOffset[4] = {};
    CPoint m_ForwardStep[4];
    int m_AfterForward[4] = {};
    long m_TurnOffset[4] = {};
    CPoint m_TurnStep[4];
    int m_AfterTurn[4] = {};
    long m_ContourLength = 0;
};
