// The desktop services of the host on Linux: special folders, shortcuts
// as .desktop files, the files of the host and of its modules, and
// running programs.
#pragma once

#include <string>
#include <string_view>

namespace zepk::sys {

// ---------------------------------------------------------------- folders

// The folder of a CSIDL number (the flags in its high byte ignored), with
// no "/" at its end; empty for a number with no folder here. The XDG
// folders come from the environment ($XDG_CONFIG_HOME, $XDG_DATA_HOME,
// $XDG_CACHE_HOME, $XDG_DESKTOP_DIR...), then from user-dirs.dirs in the
// configuration folder, then from their usual places under $HOME.
std::string specialFolder(int csidl);
// The temporary folder: $TMPDIR, else /tmp.
std::string tempFolder();
// Makes a folder and its parents; true if it is there afterwards.
bool makeFolders(const std::string& path);

// -------------------------------------------------------------- shortcuts

struct Shortcut {
  std::string target;       // a program, a file, a folder or a URL
  std::string arguments;    // for a program
  std::string workingDir;
  std::string description;  // the Comment
  std::string icon;
};
// Writes a shortcut as a .desktop file (a name ending in ".lnk" or with no
// extension gets ".desktop" in its place), atomically, marked executable
// as desktops want. A program runs with its arguments (Type=Application);
// anything else opens as a link (Type=Link). Gives the file written, empty
// on failure.
std::string writeShortcut(const std::string& linkPath, const Shortcut& s);
// Reads one back; false if the file is no shortcut.
bool readShortcut(const std::string& path, Shortcut* out);

// ---------------------------------------------------------------- modules

// The host's program file.
std::string programFile();
// Modules linked into the host are named by their handles: the file of a
// module is <folder of the program>/<name>.arx, as if it stood beside the
// host's program.
void registerModuleHandle(const void* handle, std::u16string_view name);
std::u16string moduleFile(const void* handle);

// --------------------------------------------------------------- programs

// Runs a command line through /bin/sh and waits: its exit status (128 +
// the signal when killed, -1 when it could not start). With output, what
// it printed on standard output is kept there.
int runCommand(const std::string& commandLine, std::string* output = nullptr);
// Starts a command line through /bin/sh without waiting (no zombie is left
// behind); false if it could not start.
bool startCommand(const std::string& commandLine, const std::string& dir = std::string());
// A program's file: a path as given when it is executable, else the first
// executable of that name along $PATH; empty when there is none.
std::string findProgram(std::string_view name);
// Quotes a word for /bin/sh.
std::string shellQuote(std::string_view word);

}  // namespace zepk::sys
