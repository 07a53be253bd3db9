// Writing groups as ASCII DXF, as files of AC1032 (2018) are written:
//
//  - text is UTF-8 and goes out as given: the format holds any character;
//  - each code is right-aligned in three columns ("  0", " 10", "100"; four
//    digits take four: "1001"), on a line of its own, the value on the next;
//  - a real is written in the shortest form that reads back to the same
//    double, with ".0" added to whole numbers ("1.0", "0.1", "-2.5e-07",
//    "1e+300"); integers plainly; a boolean as 0 or 1;
//  - lines end in "\r\n" by default, as files from Windows programs do and
//    as every reader accepts; "\n" on request.
//
// A value that cannot be written is refused, never altered: a line break
// (CR or LF) in text, which would split the group (the caller chooses the
// form its field allows: \P in multiline text, caret notation ^J elsewhere);
// a real that is not finite; an integer outside its group's range; a value of
// the wrong kind for its code; a negative code. The first refusal is kept in
// error() and every later call does nothing, so a caller may write a whole
// file and check once at the end.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "host/dxf/group.h"

namespace zepk::dxf {

enum class LineEnd { CrLf, Lf };

class GroupWriter {
 public:
  explicit GroupWriter(LineEnd lineEnd = LineEnd::CrLf) : eol_(lineEnd == LineEnd::CrLf ? "\r\n" : "\n") {}

  // Each returns ok().
  bool text(int code, std::string_view value);    // String, Handle, Binary and unknown codes
  bool real(int code, double value);              // Real codes
  bool integer(int code, std::int64_t value);     // integer codes; a Real code takes it as a real
  bool boolean(int code, bool value);             // Bool codes (and other integer codes)
  bool point(int code, double x, double y, double z);  // code, code + 10, code + 20
  bool point(int code, double x, double y);            // code, code + 10
  bool group(const Group& g);                     // by the kind the value holds
  // Groups another writer made, as they are (ok() and the sink as for
  // groups written here).
  bool append(std::string_view groups);

  bool ok() const { return error_.empty(); }
  // "group 1: a line break cannot be written in a text value", empty when ok.
  const std::string& error() const { return error_; }

  const std::string& bytes() const { return out_; }
  std::string release() { return std::move(out_); }
  void reserve(std::size_t n) { out_.reserve(n); }

  // Where the bytes go as they are made, a piece at a time, instead of
  // staying in bytes(): the writer hands over what it holds whenever that
  // passes a megabyte, and at flush(). A sink that fails stops the writer
  // (ok() is false from then on) and sinkFailed() says so.
  using Sink = std::function<bool(std::string_view)>;
  void setSink(Sink sink) {
    sink_ = std::move(sink);
    out_.reserve(kPiece + 4096);
  }
  bool flush();
  bool sinkFailed() const { return sinkFailed_; }

 private:
  bool refuse(int code, const std::string& why);
  bool checkCode(int code);
  void putCode(int code);
  char* codeLine(char* p, int code) const;
  void putEol() { out_ += eol_; }

  // After each group: hand a full piece to the sink.
  void done() {
    if (sink_ && out_.size() >= kPiece) flush();
  }

  static constexpr std::size_t kPiece = std::size_t{1} << 20;
  std::string out_;
  std::string error_;
  const char* eol_;
  Sink sink_;
  bool sinkFailed_ = false;
};

// Writes the bytes to `path` so that the file is either replaced whole or
// left as it was: they go to a new file in the same folder, are flushed to
// the disk, and the new file is renamed over the old one. A symbolic link is
// followed, so the file it names is replaced and the link stays. The new
// file gets the old one's permission bits (a new one 0666 less the umask).
// On failure no temporary file is left behind and *error (when given) says
// what went wrong, naming the path.
bool writeFileAtomically(const std::string& path, std::string_view bytes, std::string* error = nullptr);

// The same, with the bytes made while the file is written: `produce` gets a
// function that appends bytes to the new file (false once writing has
// failed) and returns whether it made them all. When it returns false, or
// writing fails, the old file stays as it was; *error then says why: the
// failure to write when there was one, else what `produce` put there. A
// fault of the path itself is told only once `produce` has succeeded, as
// when the bytes are made first.
using Producer = std::function<bool(const std::function<bool(std::string_view)>& append)>;
bool writeFileAtomically(const std::string& path, const Producer& produce, std::string* error = nullptr);

}  // namespace zepk::dxf
