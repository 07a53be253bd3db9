// The progress meter: kept as the host keeps it, drawn on standard error
// only when that is a terminal, so that piped output stays clean.
#include "host/editor/progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

#include "host/aced.h"
#include "host/system/utf.h"

namespace zepk::editor {

std::string progressLine(const std::string& label, int min, int max, int pos, int width) {
  pos = std::clamp(pos, min, max);
  double part = max > min ? static_cast<double>(pos - min) / (max - min) : 1.0;
  int filled = static_cast<int>(part * width + 1e-9);
  std::string line = label.empty() ? "" : label + " ";
  line += "[" + std::string(static_cast<size_t>(filled), '#') + std::string(static_cast<size_t>(width - filled), '.') + "]";
  char pct[16];
  std::snprintf(pct, sizeof pct, " %3d%%", static_cast<int>(part * 100 + 1e-9));
  return line + pct;
}

namespace {

struct Meter {
  bool on = false;
  std::string label;
  int min = 0, max = 100, pos = 0;
  size_t drawn = 0;  // characters of the last line drawn
};

Meter meter;

bool terminal() { return ::isatty(2) == 1; }

void draw() {
  if (!terminal()) return;
  std::string line = progressLine(meter.label, meter.min, meter.max, meter.pos);
  std::string pad(meter.drawn > line.size() ? meter.drawn - line.size() : 0, ' ');
  std::fprintf(stderr, "\r%s%s", line.c_str(), pad.c_str());
  std::fflush(stderr);
  meter.drawn = line.size();
}

}  // namespace

}  // namespace zepk::editor

using zepk::editor::meter;

int acedSetStatusBarProgressMeter(const ACHAR* pszLabel, int nMinPos, int nMaxPos) {
  if (nMinPos >= nMaxPos) return -1;
  meter.on = true;
  meter.label = pszLabel ? zepk::sys::toUtf8(pszLabel) : std::string();
  meter.min = nMinPos;
  meter.max = nMaxPos;
  meter.pos = nMinPos;
  zepk::editor::draw();
  return 0;
}

int acedSetStatusBarProgressMeterPos(int nPos) {
  if (!meter.on) return -1;
  meter.pos = std::clamp(nPos, meter.min, meter.max);
  zepk::editor::draw();
  return 0;
}

void acedRestoreStatusBar() {
  if (meter.on && meter.drawn && zepk::editor::terminal()) {
    std::fprintf(stderr, "\r%s\r", std::string(meter.drawn, ' ').c_str());
    std::fflush(stderr);
  }
  meter = zepk::editor::Meter{};
}
