// zepk: the standalone host. Runs LISP files, scripts and expressions in one
// session, or reads a command line from standard input or a terminal.
#include <pthread.h>
#include <readline/history.h>
#include <readline/readline.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/editor/commandline.h"
#include "host/editor/commands.h"
#include "host/editor/docman.h"
#include "host/editor/lispcmds.h"
#include "host/render/command.h"
#include "host/render/picture.h"
#include "host/render/text.h"
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/lisp/bridge.h"
#include "host/lisp/drawing.h"
#include "host/dbapserv.h"
#include "host/rxmodule.h"
#include "host/system/codepage.h"
#include "host/system/utf.h"

namespace {

using namespace zepk;

constexpr const char* kVersion = "0.1.0";

struct Step {
  enum Kind { Expr, File } kind;
  std::string text;
};

struct Options {
  std::vector<Step> steps;
  // --render: a picture of the drawing once everything has run.
  std::string render;
  render::PictureOptions picture;
};

bool endsWith(const std::string& s, const char* suffix) {
  size_t n = std::strlen(suffix);
  if (s.size() < n) return false;
  for (size_t i = 0; i < n; ++i)
    if (std::tolower(static_cast<unsigned char>(s[s.size() - n + i])) != suffix[i]) return false;
  return true;
}

bool readFile(const std::string& path, std::string* out) {
  std::ifstream f(path, std::ios::binary);
  if (!f) return false;
  std::stringstream ss;
  ss << f.rdbuf();
  *out = ss.str();
  return true;
}

// Reads lines from a terminal with editing and history.
void interactive(editor::CommandLine& cl, lisp::Interp& in) {
  std::string histFile;
  if (const char* home = std::getenv("HOME")) histFile = std::string(home) + "/.zepk_history";
  using_history();
  // Timers and window messages are handled while the terminal waits.
  rl_event_hook = [] {
    editor::documentsIdle();
    return 0;
  };
  rl_set_keyboard_input_timeout(50000);
  if (!histFile.empty()) read_history(histFile.c_str());
  cl.run(
      [&](std::string* out) {
        // A command's prompt is on the line already; at "Command: " the
        // prompt is readline's own.
        bool inCommand = editor::Commands::get().depth() > 0;
        if (!inCommand) in.out().freshLine();
        std::string prompt = inCommand ? std::string() : cl.prompt();
        std::fflush(stdout);
        char* line = readline(prompt.c_str());
        if (!line) return false;
        *out = line;
        std::free(line);
        if (!out->empty()) add_history(out->c_str());
        // readline has echoed the line and its end; output starts at column 0.
        return true;
      },
      false);
  cl.finish();
  if (!histFile.empty()) write_history(histFile.c_str());
  std::printf("\n");
}

int runSession(const Options& opt) {
  // The session starts with a new drawing as its one document. The
  // documents outlive the interpreter, whose values may name their objects.
  editor::initDocuments();
  struct Documents {
    ~Documents() { editor::shutdownDocuments(); }
  } documents;
  lisp::Interp in;
  in.maxDepth = 30000;
  lisp::installBridge(in);
  lisp::installDrawing(in);
  editor::CommandLine cl(in);
  editor::installCommandFunctions(in);
  editor::registerBuiltinCommands();
  editor::registerDocumentCommands();
  render::registerRenderCommands();
  render::installTextMetrics();
  // What each new document's LISP starts with: the host's own functions.
  editor::captureLispBase();
  if (opt.steps.empty()) {
    rx::loadAutoloadModules();
  } else {
    // With expressions or files to run, standard output carries their
    // results only: what the modules say while loading goes to standard
    // error.
    lisp::StringOutput startup;
    in.setOutput(&startup);
    rx::loadAutoloadModules();
    in.setOutput(nullptr);
    if (!startup.text.empty()) {
      size_t from = startup.text.find_first_not_of('\n');
      if (from != std::string::npos) std::fprintf(stderr, "%s\n", startup.text.c_str() + from);
    }
  }
  editor::setScriptRunner([&](const std::u16string& path) {
    std::string text;
    if (!readFile(sys::toUtf8(path), &text)) {
      in.out().write("Cannot find script file \"" + sys::toUtf8(path) + "\".\n");
      return;
    }
    cl.feedScript(text, true);
  });

  int status = 0;
  for (const Step& st : opt.steps) {
    if (editor::quitRequested) break;
    if (st.kind == Step::Expr) {
      cl.evalAndPrint(sys::fromUtf8(st.text));
      continue;
    }
    const std::string& path = st.text;
    std::string text;
    if (!readFile(path, &text)) {
      std::fprintf(stderr, "zepk: cannot read %s: %s\n", path.c_str(), std::strerror(errno));
      status = 1;
      break;
    }
    if (endsWith(path, ".lsp")) {
      in.loadFile(path);
      in.runQueued();
      editor::documentsIdle();
    } else if (endsWith(path, ".scr")) {
      cl.feedScript(text, true);
      cl.finish();
    } else {
      std::fprintf(stderr, "zepk: %s: not a LISP file (.lsp) or a script (.scr)\n", path.c_str());
      status = 2;
      break;
    }
  }

  if (opt.steps.empty() && status == 0) {
    if (isatty(STDIN_FILENO)) {
      interactive(cl, in);
    } else {
      cl.run([](std::string* line) { return static_cast<bool>(std::getline(std::cin, *line)); }, true);
      cl.finish();
    }
  }
  in.out().freshLine();
  if (!opt.render.empty() && status == 0) {
    std::string error;
    if (!render::writePicture(acdbHostApplicationServices()->workingDatabase(), opt.render, opt.picture, &error)) {
      std::fprintf(stderr, "zepk: %s\n", error.c_str());
      status = 1;
    }
  }
  rx::unloadAllModules();
  return status;
}

struct ThreadArgs {
  const Options* opt;
  int status;
};

void* sessionThread(void* p) {
  auto* a = static_cast<ThreadArgs*>(p);
  a->status = runSession(*a->opt);
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  Options opt;
  CLI::App app{
      "zepk: a headless CAD host with the ZEPK survey toolkit.\n"
      "Runs its arguments in order in one session: FILE.lsp is loaded, FILE.scr runs\n"
      "as a script, -e EXPR evaluates LISP and prints the value. With no arguments,\n"
      "reads the command line from standard input or, on a terminal, interactively.",
      "zepk"};
  app.set_version_flag("-V,--version", std::string("zepk ") + kVersion + " (host release 17.1)");
  std::vector<std::string> exprs, files;
  app.add_option("-e,--eval", exprs, "Evaluate a LISP expression and print its value")->type_name("EXPR");
  app.add_option("args", files, "LISP files (.lsp) and scripts (.scr), run in order")->type_name("ARG");
  std::string size, background, window;
  app.add_option("--render", opt.render,
                 "After the rest has run, write a picture of the drawing (.png, .svg or .pdf)")
      ->type_name("FILE");
  app.add_option("--size", size, "Size of the picture in pixels (default 1600x1200)")->type_name("WxH");
  app.add_option("--scale", opt.picture.scale, "Pixels per drawing unit; the size follows from the view")
      ->type_name("N")
      ->check(CLI::PositiveNumber);
  app.add_option("--background", background, "Background of the picture: white (default) or black")
      ->type_name("COLOR")
      ->check(CLI::IsMember({"white", "black"}, CLI::ignore_case));
  app.add_option("--window", window, "Show this window of the drawing instead of its extents")
      ->type_name("X0,Y0,X1,Y1");
  app.add_flag("--frame", opt.picture.frame, "Draw a frame round the drawing's extents");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e);
  }
  if (!size.empty() && !render::parsePictureSize(size, &opt.picture.width, &opt.picture.height)) {
    std::fprintf(stderr, "zepk: --size %s: give WIDTHxHEIGHT in pixels, from 1 to %d each\n", size.c_str(),
                 render::kMaxPictureSide);
    return 2;
  }
  if (!window.empty() && !render::parseWindow(window, opt.picture.window)) {
    std::fprintf(stderr, "zepk: --window %s: give X0,Y0,X1,Y1, two opposite corners of the drawing\n",
                 window.c_str());
    return 2;
  }
  opt.picture.hasWindow = !window.empty();
  opt.picture.blackBackground = background == "black" || background == "BLACK" || background == "Black";
  render::PictureFormat format;
  if (!opt.render.empty() && !render::pictureFormatOf(opt.render, &format)) {
    std::fprintf(stderr, "zepk: --render %s: a picture's name ends in .png, .svg or .pdf\n", opt.render.c_str());
    return 2;
  }
  // The options are valid; take them again in the order given, since
  // expressions and files run interleaved as written.
  bool onlyFiles = false;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    static const char* const kPictureOptions[] = {"--render", "--size", "--scale", "--background", "--window"};
    bool pictureOption = false;
    for (const char* p : kPictureOptions) {
      if (onlyFiles) break;
      if (a == p) {
        pictureOption = true;
        ++i;
      } else if (a.rfind(std::string(p) + "=", 0) == 0) {
        pictureOption = true;
      }
    }
    if (pictureOption || (!onlyFiles && a == "--frame")) continue;
    if (!onlyFiles && a == "--") {
      onlyFiles = true;
    } else if (!onlyFiles && (a == "-e" || a == "--eval") && i + 1 < argc) {
      opt.steps.push_back({Step::Expr, argv[++i]});
    } else if (!onlyFiles && a.rfind("--eval=", 0) == 0) {
      opt.steps.push_back({Step::Expr, a.substr(7)});
    } else if (!onlyFiles && a.size() > 2 && a.rfind("-e", 0) == 0) {
      opt.steps.push_back({Step::Expr, a.substr(2)});
    } else {
      opt.steps.push_back({Step::File, a});
    }
  }

  // The session runs on a thread with a large stack, so that deep recursion
  // in LISP programs meets the interpreter's own limit and not the system's.
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, size_t(1) << 30);
  ThreadArgs args{&opt, 0};
  pthread_t th;
  if (pthread_create(&th, &attr, sessionThread, &args) != 0) {
    args.status = runSession(opt);
  } else {
    pthread_join(th, nullptr);
  }
  pthread_attr_destroy(&attr);
  return args.status;
}
