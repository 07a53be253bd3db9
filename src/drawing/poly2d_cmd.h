// Commands on old-style 2D polylines.
#pragma once

namespace zepk::drawing {

// 2dPl: turns the selected polylines (lightweight ones converted) into 2D
// polylines of one type: simple, curve-fit, quadratic or cubic spline.
void cmd2dPl();

}  // namespace zepk::drawing
