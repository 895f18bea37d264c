// vistrane xform IN OUT [--mask MASK] [--drag "X0,Y0 X1,Y1 [shift] [ctrl] [alt]"]...
//                       [--numeric "move=DX,DY scale=SX,SY skew=AX,AY rotate=A"] [--undo N]
//                       [--redo N] [--overlay FILE] [--mask-out FILE] [--keep] [--fill RRGGBB]
//                       [--colour RRGGBB] [--nearest]

#include <charconv>
#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <vistrane/frame/free_xform_frame.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands/commands.h"
#include "common/frame_output.h"
#include "common/output_file.h"
#include "common/values.h"

namespace vistrane::cli {
namespace {

constexpr long kMaxUndoSteps = 1000;

// One step of the script, in command-line order.
struct ScriptStep {
    enum class Kind { Drag, Numeric, Undo, Redo };
    Kind kind = Kind::Drag;
    std::vector<DragPoint> drag;
    FXF_NumericParams numeric;
    long count = 0;
};

std::vector<std::string> Words(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    std::string word;
    while (in >> word) {
        words.push_back(word);
    }
    return words;
}

bool SetKey(const std::string& name, DragPoint& keys) {
    if (name == "shift") {
        keys.shift = true;
    } else if (name == "ctrl") {
        keys.ctrl = true;
    } else if (name == "alt") {
        keys.alt = true;
    } else {
        return false;
    }
    return true;
}

// "X0,Y0 X1,Y1 ... [shift] [ctrl] [alt]": the words hold a key for the whole drag; a point may
// add keys of its own ("X,Y+shift+alt"), held while the pointer is at that point only.
std::string ParseDrag(const std::string& text, std::vector<DragPoint>& points) {
    DragPoint wholeDrag;
    for (const std::string& word : Words(text)) {
        if (SetKey(word, wholeDrag)) {
            continue;
        }
        const std::size_t plus = word.find('+');
        DragPoint point;
        if (!ParsePoint(word.substr(0, plus), point.point)) {
            return Quote(word) + " in --drag " + Quote(text) +
                   " is neither a point X,Y nor shift, ctrl or alt";
        }
        for (std::size_t at = plus; at != std::string::npos;) {
            const std::size_t next = word.find('+', at + 1);
            const std::string key = word.substr(at + 1, next - at - 1);
            if (!SetKey(key, point)) {
                return Quote(key) + " in " + Quote(word) + " is not shift, ctrl or alt";
            }
            at = next;
        }
        points.push_back(point);
    }
    if (points.size() < 2) {
        return "--drag " + Quote(text) + " needs at least two points, where it starts and ends";
    }
    for (DragPoint& point : points) {
        point.shift = point.shift || wholeDrag.shift;
        point.ctrl = point.ctrl || wholeDrag.ctrl;
        point.alt = point.alt || wholeDrag.alt;
    }
    return {};
}

bool ParseDouble(const std::string& text, double& value) {
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    return parsed.ec == std::errc() && parsed.ptr == end && value >= -1e6 && value <= 1e6;
}

// "A,B", or "A" for both.
bool ParseDoublePair(const std::string& text, double& first, double& second) {
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos) {
        return ParseDouble(text, first) && ParseDouble(text, second);
    }
    return ParseDouble(text.substr(0, comma), first) && ParseDouble(text.substr(comma + 1), second);
}

std::string ParseNumeric(const std::string& text, FXF_NumericParams& params) {
    const std::vector<std::string> words = Words(text);
    if (words.empty()) {
        return "--numeric " + Quote(text) + " gives no group (move, scale, skew, rotate)";
    }
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        const std::string group = word.substr(0, equals);
        const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
        bool understood = false;
        if (group == "move") {
            CPoint shift;
            understood = ParsePoint(value, shift);
            params.m_UseTranslation = 1;
            params.m_TranslateX = shift.x;
            params.m_TranslateY = shift.y;
        } else if (group == "scale") {
            understood = ParseDoublePair(value, params.m_ScaleX, params.m_ScaleY) &&
                         params.m_ScaleX != 0.0 && params.m_ScaleY != 0.0;
            params.m_UseScale = 1;
        } else if (group == "skew") {
            understood = ParseDoublePair(value, params.m_SkewX, params.m_SkewY);
            params.m_UseSkew = 1;
        } else if (group == "rotate") {
            understood = ParseDouble(value, params.m_Rotation);
            params.m_UseRotation = 1;
        }
        if (!understood) {
            return Quote(word) + " in --numeric is not one of move=DX,DY, scale=SX,SY (non-zero " +
                   "percent), skew=AX,AY or rotate=A (degrees)";
        }
    }
    return {};
}

// The steps of the script, or the reason one of them is not understood.
std::string ParseScript(const ParsedArgs& args, std::vector<ScriptStep>& steps) {
    for (const auto& [name, value] : args.Occurrences()) {
        ScriptStep step;
        std::string problem;
        if (name == "drag") {
            step.kind = ScriptStep::Kind::Drag;
            problem = ParseDrag(value, step.drag);
        } else if (name == "numeric") {
            step.kind = ScriptStep::Kind::Numeric;
            problem = ParseNumeric(value, step.numeric);
        } else if (name == "undo" || name == "redo") {
            step.kind = name == "undo" ? ScriptStep::Kind::Undo : ScriptStep::Kind::Redo;
            if (!ParseNumber(value, 1, kMaxUndoSteps, step.count)) {
                problem = "--" + name + " " + Quote(value) +
                          " is not a number of steps from 1 to " + std::to_string(kMaxUndoSteps);
            }
        } else {
            continue;
        }
        if (!problem.empty()) {
            return problem;
        }
        steps.push_back(step);
    }
    return {};
}

// What one drag did to the frame, so that a drag the frame read differently from what the
// user meant (a centre drag on a small selection, a start off every handle) is not silent.
void ReportDrag(int number, const CPoint* before, const CPoint* after) {
    const CPoint shift = after[FXF_TopLeft] - before[FXF_TopLeft];
    bool moved = true;
    bool changed = false;
    for (int k = FXF_TopLeft; k < FXF_CloneVertex; k += 2) {
        moved = moved && after[k] - before[k] == shift;
        changed = changed || after[k] != before[k];
    }
    if (!changed) {
        std::printf("drag %d: changed nothing (it started off every handle or did not move)\n",
                    number);
    } else if (moved) {
        std::printf("drag %d: moved the frame by %d,%d\n", number, shift.x, shift.y);
    } else {
        std::printf("drag %d: reshaped the frame\n", number);
    }
}

void RunScript(C_FreeXFormFrame& frame, const std::vector<ScriptStep>& steps) {
    int drags = 0;
    for (const ScriptStep& step : steps) {
        switch (step.kind) {
            case ScriptStep::Kind::Drag: {
                CPoint before[C_FreeXFormFrame::kPointCount];
                CPoint after[C_FreeXFormFrame::kPointCount];
                frame.GetDrawPoints(before);
                RunDrag(frame, step.drag);
                frame.GetDrawPoints(after);
                ReportDrag(++drags, before, after);
                break;
            }
            case ScriptStep::Kind::Numeric:
                frame.SetNumericParams(&step.numeric);
                break;
            case ScriptStep::Kind::Undo:
                for (long i = 0; i < step.count; ++i) {
                    frame.UndoRedoOp(MODAL_Undo);
                }
                break;
            case ScriptStep::Kind::Redo:
                for (long i = 0; i < step.count; ++i) {
                    frame.UndoRedoOp(MODAL_Redo);
                }
                break;
        }
    }
}

bool SameCorners(const CPoint* a, const CPoint* b) {
    for (int k = FXF_TopLeft; k < FXF_CloneVertex; k += 2) {
        if (a[k] != b[k]) {
            return false;
        }
    }
    return true;
}

std::string SaveAll(C_Image& result, C_Image& resultMask, const ParsedArgs& args,
                    C_FreeXFormFrame& frame, unsigned long frameColour) {
    const ImageFileResult saved = SaveImageFile(args.Positionals()[1], result);
    if (!saved.ok) {
        return saved.error;
    }
    ReportWritten(args.Positionals()[1], result);
    if (args.Has("mask-out")) {
        const ImageFileResult maskSaved = SaveImageFile(args.Value("mask-out"), resultMask);
        if (!maskSaved.ok) {
            return maskSaved.error;
        }
    }
    if (args.Has("overlay")) {
        if (!DrawFrame(frame, result, frameColour)) {
            return "cannot draw the frame";
        }
        const ImageFileResult overlaySaved = SaveImageFile(args.Value("overlay"), result);
        if (!overlaySaved.ok) {
            return overlaySaved.error;
        }
    }
    return {};
}

int RunXForm(const Subcommand& command, const ParsedArgs& args) {
    std::vector<ScriptStep> steps;
    if (const std::string problem = ParseScript(args, steps); !problem.empty()) {
        return UsageError(command, problem);
    }
    ConfirmOptions options;
    options.keepOriginal = args.Has("keep");
    options.nearest = args.Has("nearest");
    unsigned long frameColour = RGB(255, 0, 255);
    for (const auto& [name, colour] :
         {std::pair{"fill", &options.fill}, std::pair{"colour", &frameColour}}) {
        if (args.Has(name) && !ParseColor(args.Value(name), *colour)) {
            return UsageError(command,
                              "--" + std::string(name) + ": " + ColorError(args.Value(name)));
        }
    }
    for (const char* name : {"mask-out", "overlay"}) {
        if (args.Has(name) &&
            ImageFileFormatFromPath(args.Value(name)) == ImageFileFormat::Unknown) {
            return UsageError(command, "cannot tell the format of " + Quote(args.Value(name)) +
                                           ": name it .bmp or .png");
        }
    }
    if (ImageFileFormatFromPath(args.Positionals()[1]) == ImageFileFormat::Unknown) {
        return UsageError(command, "cannot tell the format of " + Quote(args.Positionals()[1]) +
                                       ": name it .bmp or .png");
    }

    C_Image picture;
    if (const int failed = LoadInput(command, args.Positionals()[0], picture)) {
        return failed;
    }
    C_Image mask;
    if (args.Has("mask")) {
        if (const std::string problem = LoadMaskFor(args.Value("mask"), picture, mask);
            !problem.empty()) {
            return Failure(command, problem);
        }
    } else if (!mask.CreateMask(picture.Width(), picture.Height())) {
        return Failure(command, "not enough memory for the mask");
    } else {
        mask.FillBitmapBytes(255);
    }
    CRect bounds;
    if (!SelectionBounds(mask, bounds)) {
        return Failure(command, "the mask selects nothing");
    }

    C_FreeXFormFrame frame(bounds);
    CPoint initial[C_FreeXFormFrame::kPointCount];
    frame.GetDrawPoints(initial);
    RunScript(frame, steps);
    CPoint corners[C_FreeXFormFrame::kPointCount];
    frame.GetDrawPoints(corners);
    std::printf("frame: %d,%d %d,%d %d,%d %d,%d\n", corners[FXF_TopLeft].x, corners[FXF_TopLeft].y,
                corners[FXF_TopRight].x, corners[FXF_TopRight].y, corners[FXF_BottomRight].x,
                corners[FXF_BottomRight].y, corners[FXF_BottomLeft].x, corners[FXF_BottomLeft].y);

    C_Image result;
    C_Image resultMask;
    // A frame back on the selection's bounds is a transform the user did not make: the picture
    // is written as it came, rather than lifted and laid back with blending round-offs.
    if (SameCorners(initial, corners)) {
        if (!result.Create(picture.Width(), picture.Height(), 1, nullptr, 0) ||
            !resultMask.Clone(&mask)) {
            return Failure(command, "not enough memory for the result");
        }
        result.DibBlt(0, 0, picture.Width(), picture.Height(), &picture, 0, 0, 0);
    } else if (const std::string problem =
                   ConfirmFrame(frame, picture, mask, bounds, options, result, resultMask);
               !problem.empty()) {
        return Failure(command, problem);
    }
    if (const std::string problem = SaveAll(result, resultMask, args, frame, frameColour);
        !problem.empty()) {
        return Failure(command, problem);
    }
    return kExitSuccess;
}

constexpr OptionSpec kXFormOptions[] = {
    {"mask", "MASK", "a grey mask of IN's size; its selection is transformed (default: all)"},
    {"drag", "\"X,Y X,Y ...\"", "a mouse drag on the frame (repeatable; see above)"},
    {"numeric", "\"GROUPS\"", "numeric entry: move=DX,DY scale=SX,SY skew=AX,AY rotate=A"},
    {"undo", "N", "undo N steps (1 to 1000; stops when nothing is left)"},
    {"redo", "N", "redo N undone steps"},
    {"overlay", "FILE", "also write OUT with the frame drawn on it"},
    {"colour", "[#]RRGGBB", "the frame's colour in --overlay (default FF00FF)"},
    {"mask-out", "FILE", "also write the selection after the transform"},
    {"keep", nullptr, "leave the original pixels in place (a transformed copy)"},
    {"fill", "[#]RRGGBB", "what the vacated selection becomes (default FFFFFF)"},
    {"nearest", nullptr, "copy the nearest pixel instead of interpolating"},
};

}  // namespace

const Subcommand kXFormCommand = {
    "xform",
    "IN OUT",
    "free-transform a selection by scripted mouse drags on its frame",
    "Puts the free transform frame on the bounds of the selection (--mask, else the whole\n"
    "picture), runs the script of --drag, --numeric, --undo and --redo in the order given,\n"
    "prints the frame's corners (top-left, top-right, bottom-right, bottom-left) and confirms\n"
    "the transform: the selected pixels are lifted, mapped onto the frame and laid back over\n"
    "the picture at the frame's place, blended by the selection's opacity. OUT (.bmp or .png,\n"
    "24-bit) keeps IN's size; what leaves the picture is cut off. The vacated selection\n"
    "becomes --fill unless --keep is given. A frame left on the selection's bounds writes IN\n"
    "unchanged.\n"
    "\n"
    "A drag is points in image coordinates: it presses the button at the first, moves through\n"
    "the others and releases at the last. The words shift, ctrl and alt hold a key for the\n"
    "whole drag; a point may hold keys of its own while the pointer is there, as in\n"
    "  --drag \"300,100 340,60+shift 380,20+shift\"   (SHIFT pressed mid-drag, kept to the end)\n"
    "  --drag \"100,100 150,140 alt\"                  (ALT for the whole drag)\n"
    "What a drag does depends on where it starts: a corner or edge mid-point handle (within\n"
    "about 7 pixels), the centre (within 50), inside the frame (move) or outside (rotate).\n"
    "Corner: stretch; SHIFT keeps the aspect, CTRL moves that corner alone, ALT mirrors it on\n"
    "the opposite corner, SHIFT+CTRL slides along an edge. Mid-point: the edge moves across;\n"
    "CTRL moves it freely, ALT mirrors it, SHIFT+CTRL skews. SHIFT snaps a move to 45 and a\n"
    "rotation to 15 degrees; ALT swaps move and rotate.\n"
    "\n"
    "--numeric rebuilds the frame from the selection's bounds with the groups given, each\n"
    "optional: move=DX,DY pixels, scale=SX,SY percent (or scale=S for both, negative mirrors),\n"
    "skew=AX,AY degrees (AX tilts the top and bottom edges, AY the sides) and rotate=A degrees,\n"
    "clockwise. Groups left out are not applied, so the values are absolute, not added to the\n"
    "drags before. Each drag and each --numeric is one undo step; the last 32 are kept.",
    kXFormOptions,
    2,
    2,
    RunXForm,
};

}  // namespace vistrane::cli
