// LISP functions on the view kept in each document's record.
#pragma once

namespace zepk::frame {

int lispDocZoomWindow();
int lispDocSaveViewSize();
int lispDocReViewSize();

}  // namespace zepk::frame
