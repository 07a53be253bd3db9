// zepk-reference DIR: writes DIR/lisp-reference.md and DIR/commands.md from
// the toolkit's tables, each to a temporary name first and then renamed.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "frame/reference.h"

namespace {

bool writeAtomically(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::path tmp = path;
  tmp += ".tmp";
  {
    std::ofstream f(tmp, std::ios::binary);
    if (!(f << text)) return false;
  }
  std::error_code ec;
  std::filesystem::rename(tmp, path, ec);
  return !ec;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: zepk-reference DIR\n");
    return 2;
  }
  std::filesystem::path dir = argv[1];
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (!writeAtomically(dir / "lisp-reference.md", zepk::frame::lispReferenceMarkdown()) ||
      !writeAtomically(dir / "commands.md", zepk::frame::commandsMarkdown())) {
    std::fprintf(stderr, "zepk-reference: cannot write into %s\n", argv[1]);
    return 1;
  }
  return 0;
}
