#include "host/db/textmetrics.h"

#include <atomic>

namespace zepk::db {

namespace {

double estimate(std::u16string_view s) {
  double w = 0;
  for (char16_t c : s) w += c >= 0x2E80 ? 1.0 : 0.6;
  return w;
}

std::atomic<TextAdvanceFn> installed{nullptr};

}  // namespace

void setTextAdvance(TextAdvanceFn fn) { installed.store(fn); }

double textAdvance(std::u16string_view text) {
  TextAdvanceFn fn = installed.load();
  return fn ? fn(text) : estimate(text);
}

}  // namespace zepk::db
