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

// Making entities.
int lispMakeLine();
int lispMakeLines();
int lispMakeCircle();
int lispMakeArc();
int lispMakeWipeout();
int lispDrawText();

// Entities.
int lispEntGetBox();
int lispEntGetBoxAngle();
int lispEntGetBox9Pts();
int lispEntGetBoxAngle9Pts();
int lispEntGetGripPoints();
int lispEntGetStretchPoints();
int lispEntMatchProp();
int lispEntAddHyperlinks();
int lispExplode();
int lispTransformBy();
int lispTransformByCopy();
int lispMoveToTop();
int lispMoveToBottom();
int lispMoveAbove();
int lispMoveBelow();
int lispSwapOrder();
int lispSetRelativeDrawOrder();
int lispGetSortHandle();
int lispEntSwapId();
int lispSwapEnt();

// Selection sets and groups.
int lispPickSetGetBox();
int lispPickSetToList();
int lispListToPickSet();
int lispSsUnion();
int lispSsSub();
int lispSsFree();
int lispGroupMake();
int lispGroupAddTo();
int lispGroupRemove();

// Texts and variables.
int lispTextGetBox();
int lispTextGetBox9Pts();
int lispTextToMText();
int lispTextFind();
int lispDocGetVar();

// Hatches.
int lispHatchGetLoop();
int lispHatchAppendLoop();

// Documents.
int lispDocWBlock();
int lispDocInsert();

// Temporary graphics and documents.
int lispGrDrawLines();
int lispGrPoint();
int lispEntDraw();
int lispReDraw();
int lispDocNew();
int lispDocOpen();
int lispFileToText();

// Commands.
void cmdMyWblock();
void cmdZkUcs();
void cmdMtbgf();
void cmdHatchBoundary();
void cmdHatchLoop();
void cmdZepkLock();

}  // namespace zepk::drawing
