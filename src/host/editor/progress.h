// The status bar's progress meter, drawn as a bar of text.
#pragma once

#include <string>

namespace zepk::editor {

// The meter's line for a position: the label, a bar of width cells and the
// percentage ("Loading [#####.....]  50%"); pos is clamped to min..max.
std::string progressLine(const std::string& label, int min, int max, int pos, int width = 30);

}  // namespace zepk::editor
