// The LISP functions and commands of the drawing-object family: layers,
// entity creation, boxes, draw order, selection sets, groups, hatch loops,
// documents and views.
#pragma once

namespace zepk::drawing {

// Layers.
int lispLayerMake();
int lispLayerOn();
int lispLayerLock();
int lispLayerFreeze();
int lispLayerOnAll();
int lispLayerLockAll();
int lispLayerFreezeAll();
int lispLayerUnLockAll();

}  // namespace zepk::drawing
