#include "services/textfiles.h"

#include <algorithm>
#include <cstdint>

#include "host/wincompat.h"

namespace zepk::services {

namespace {

std::u16string convert(std::string_view s, UINT codePage) {
  std::u16string out;
  if (s.empty()) return out;
  const int len = static_cast<int>(s.size());
  int n = MultiByteToWideChar(codePage, 0, s.data(), len, nullptr, 0);
  out.resize(std::max(n, 0));
  if (n > 0) MultiByteToWideChar(codePage, 0, s.data(), len, out.data(), n);
  return out;
}

}  // namespace

std::u16string decodeTextFile(std::string_view b) {
  if (b.substr(0, 3) == "\xEF\xBB\xBF") return convert(b.substr(3), CP_UTF8);
  if (b.substr(0, 2) == "\xFF\xFE") {
    std::u16string out;
    for (size_t i = 2; i + 1 < b.size(); i += 2)
      out += static_cast<char16_t>(static_cast<uint8_t>(b[i]) | static_cast<uint8_t>(b[i + 1]) << 8);
    return out;
  }
  return convert(b, CP_ACP);
}

std::vector<std::u16string> splitTextLines(std::u16string_view s) {
  std::vector<std::u16string> lines;
  size_t start = 0;
  while (start < s.size()) {
    size_t end = std::min(s.find(u'\n', start), s.size());
    std::u16string line(s.substr(start, end - start));
    if (!line.empty() && line.back() == u'\r') line.pop_back();
    lines.push_back(std::move(line));
    start = end + 1;
  }
  return lines;
}

std::u16string joinLines(const std::vector<std::u16string>& lines) {
  std::u16string out;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i) out += u"\r\n";
    out += lines[i];
  }
  return out;
}

}  // namespace zepk::services
