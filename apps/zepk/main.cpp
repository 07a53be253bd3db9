#include <iostream>
#include <string>
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"
using namespace zepk;
int main(int argc, char** argv) {
  lisp::Interp in;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "-e" && i + 1 < argc) {
      lisp::Value v;
      if (in.evalText(sys::fromUtf8(argv[++i]), &v)) {
        in.out().freshLine();
        in.out().write(lisp::prin1String(v));
        in.out().write(std::string_view("\n"));
      }
    } else {
      in.loadFile(a);
    }
  }
}
