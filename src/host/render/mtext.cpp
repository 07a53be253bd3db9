#include "host/render/mtext.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "host/render/text.h"
#include "host/system/utf.h"

namespace zepk::render {

namespace {

struct Format {
  double height = 1, widthFactor = 1, oblique = 0;
  int color = -1;
  long trueColor = -1;
  bool underline = false;
  bool operator==(const Format& o) const {
    return height == o.height && widthFactor == o.widthFactor && oblique == o.oblique && color == o.color &&
           trueColor == o.trueColor && underline == o.underline;
  }
};

struct Token {
  enum Kind { Word, Space, Newline } kind = Word;
  Format f;
  std::u16string text;
};

bool isWide(char16_t c) { return c >= 0x2E80 && !(c >= 0xD800 && c <= 0xDFFF); }

// A value of a code up to its ";": a number, "x" after it for a factor of
// the current value.
double codeValue(const std::u16string& v, double current) {
  std::string s = sys::toUtf8(v);
  bool relative = !s.empty() && (s.back() == 'x' || s.back() == 'X');
  if (relative) s.pop_back();
  char* end = nullptr;
  double d = std::strtod(s.c_str(), &end);
  if (end == s.c_str() || !std::isfinite(d) || d <= 0) return current;
  return relative ? current * d : d;
}

class Reader {
 public:
  Reader(std::u16string_view s, double height) : s_(s) { f_.height = height; }

  std::vector<Token> read() {
    while (i_ < s_.size()) {
      char16_t c = s_[i_];
      if (c == u'{') {
        stack_.push_back(f_);
        ++i_;
      } else if (c == u'}') {
        if (!stack_.empty()) f_ = stack_.back(), stack_.pop_back();
        ++i_;
      } else if (c == u'\\' && i_ + 1 < s_.size()) {
        code();
      } else if (c == u'^' && i_ + 1 < s_.size()) {
        char16_t d = s_[i_ + 1];
        i_ += 2;
        if (d == u'I') add(u"    ");
        else if (d == u'J') newline();
        else if (d == u' ') add(u"^");
        else add(std::u16string(1, d));
      } else if (c == u'\n') {
        newline();
        ++i_;
      } else if (c == u'\r') {
        ++i_;
      } else {
        add(std::u16string(1, c));
        ++i_;
      }
    }
    return std::move(out_);
  }

 private:
  std::u16string untilSemicolon() {
    size_t start = i_;
    while (i_ < s_.size() && s_[i_] != u';') ++i_;
    std::u16string v(s_.substr(start, i_ - start));
    if (i_ < s_.size()) ++i_;
    return v;
  }

  void code() {
    char16_t d = s_[i_ + 1];
    i_ += 2;
    switch (d) {
      case u'P': case u'X': case u'N': newline(); return;
      case u'~': add(u"\u00A0"); return;
      case u'\\': case u'{': case u'}': add(std::u16string(1, d)); return;
      case u'H': f_.height = codeValue(untilSemicolon(), f_.height); return;
      case u'W': f_.widthFactor = codeValue(untilSemicolon(), f_.widthFactor); return;
      case u'Q': {
        std::string v = sys::toUtf8(untilSemicolon());
        double deg = std::strtod(v.c_str(), nullptr);
        if (std::isfinite(deg) && std::fabs(deg) < 85) f_.oblique = deg * M_PI / 180;
        return;
      }
      case u'C': {
        std::string v = sys::toUtf8(untilSemicolon());
        int idx = std::atoi(v.c_str());
        f_.color = idx >= 1 && idx <= 255 ? idx : -1;
        f_.trueColor = -1;
        return;
      }
      case u'c': {
        std::string v = sys::toUtf8(untilSemicolon());
        long bgr = std::strtol(v.c_str(), nullptr, 10);
        // Kept as the file keeps it: blue in the high byte.
        f_.trueColor = ((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF);
        return;
      }
      case u'S': {
        std::u16string v = untilSemicolon();
        for (char16_t& ch : v)
          if (ch == u'^' || ch == u'#') ch = u'/';
        add(v);
        return;
      }
      case u'L': f_.underline = true; return;
      case u'l': f_.underline = false; return;
      case u'O': case u'o': case u'K': case u'k': return;
      case u'A': case u'T': case u'f': case u'F': case u'p': untilSemicolon(); return;
      default: add(std::u16string(1, d)); return;
    }
  }

  void newline() {
    Token t;
    t.kind = Token::Newline;
    t.f = f_;
    out_.push_back(t);
  }

  // Text breaks after a space and around wide characters.
  void add(const std::u16string& text) {
    for (char16_t c : text) {
      bool space = c == u' ' || c == u'\t';
      Token::Kind k = space ? Token::Space : Token::Word;
      bool joins = !out_.empty() && out_.back().kind == k && out_.back().f == f_ && !isWide(c) &&
                   !(k == Token::Word && !out_.back().text.empty() && isWide(out_.back().text.back()));
      if (joins) {
        out_.back().text += c;
        continue;
      }
      Token t;
      t.kind = k;
      t.f = f_;
      t.text = std::u16string(1, c);
      out_.push_back(t);
    }
  }

  std::u16string_view s_;
  size_t i_ = 0;
  Format f_;
  std::vector<Format> stack_;
  std::vector<Token> out_;
};

struct Placed {
  Token t;
  double x = 0, w = 0;
};

}  // namespace

MTextLayout layoutMText(std::u16string_view contents, double height, double wrapWidth, double spacingFactor,
                        int column, const std::function<double(std::u16string_view)>& advance) {
  MTextLayout out;
  if (!(height > 0)) return out;
  if (!(spacingFactor > 0)) spacingFactor = 1;
  std::vector<Token> tokens = Reader(contents, height).read();

  std::vector<std::vector<Placed>> lines(1);
  double x = 0;
  auto endLine = [&] {
    while (!lines.back().empty() && lines.back().back().t.kind == Token::Space) lines.back().pop_back();
    lines.emplace_back();
    x = 0;
  };
  for (const Token& t : tokens) {
    if (t.kind == Token::Newline) {
      endLine();
      continue;
    }
    double w = advance(decodeTextCodes(t.text)) * t.f.height * t.f.widthFactor;
    bool hasWord = false;
    for (const Placed& p : lines.back()) hasWord = hasWord || p.t.kind == Token::Word;
    if (wrapWidth > 0 && t.kind == Token::Word && hasWord && x + w > wrapWidth * (1 + 1e-9)) endLine();
    lines.back().push_back({t, x, w});
    x += w;
  }
  while (!lines.back().empty() && lines.back().back().t.kind == Token::Space) lines.back().pop_back();

  std::vector<double> widths;
  for (const auto& line : lines) {
    double w = 0;
    for (const Placed& p : line) w = std::max(w, p.x + p.w);
    widths.push_back(w);
    out.width = std::max(out.width, w);
  }
  double box = wrapWidth > 0 ? wrapWidth : out.width;
  double y = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    double h = 0;
    for (const Placed& p : lines[i]) h = std::max(h, p.t.f.height);
    if (h == 0) h = height;
    y = i == 0 ? -h : y - h * spacingFactor * 5.0 / 3.0;
    double shift = (box - widths[i]) * column / 2.0;
    for (const Placed& p : lines[i]) {
      MTextRun* last = out.runs.empty() ? nullptr : &out.runs.back();
      const Format& f = p.t.f;
      bool merge = last && last->y == y && last->x + last->width == p.x + shift && last->height == f.height &&
                   last->widthFactor == f.widthFactor && last->oblique == f.oblique && last->color == f.color &&
                   last->trueColor == f.trueColor && last->underline == f.underline;
      if (merge) {
        last->text += p.t.text;
        last->width += p.w;
        continue;
      }
      MTextRun r;
      r.x = p.x + shift, r.y = y;
      r.height = f.height, r.widthFactor = f.widthFactor, r.oblique = f.oblique;
      r.color = f.color, r.trueColor = f.trueColor, r.underline = f.underline;
      r.width = p.w;
      r.text = p.t.text;
      out.runs.push_back(r);
    }
  }
  out.lines = static_cast<int>(lines.size());
  out.height = -y;
  return out;
}

}  // namespace zepk::render
