#include "host/ssfilter.h"

#include <cmath>

#include "host/lisp/wildcard.h"
#include "host/system/utf.h"

namespace zepk::db {

namespace {

std::string upperAscii(const std::u16string& s) {
  std::string out = sys::toUtf8(s);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

std::string trim(const std::string& s) {
  size_t a = s.find_first_not_of(' ');
  if (a == std::string::npos) return "";
  size_t b = s.find_last_not_of(' ');
  return s.substr(a, b - a + 1);
}

bool knownOp(const std::string& op) {
  return op == "*" || op == "=" || op == "!=" || op == "/=" || op == "<>" || op == "<" || op == "<=" || op == ">" ||
         op == ">=" || op == "&" || op == "&=";
}

bool compare(double a, const std::string& op, double b) {
  if (op == "*") return true;
  if (op == "=") return a == b;
  if (op == "!=" || op == "/=" || op == "<>") return a != b;
  if (op == "<") return a < b;
  if (op == "<=") return a <= b;
  if (op == ">") return a > b;
  if (op == ">=") return a >= b;
  auto ia = static_cast<int64_t>(a), ib = static_cast<int64_t>(b);
  if (op == "&") return (ia & ib) != 0;
  if (op == "&=") return (ia & ib) == ib;
  return false;
}

// What an object shows for a group it leaves out of its list.
bool defaultFor(int code, DxfItem* out) {
  DxfItem it;
  it.code = code;
  switch (code) {
    case 62: it.kind = DxfItem::Int, it.i = 256; break;
    case 67: it.kind = DxfItem::Int, it.i = 0; break;
    case 6: it.kind = DxfItem::String, it.s = u"BYLAYER"; break;
    case 39: it.kind = DxfItem::Real, it.p[0] = 0.0; break;
    default: return false;
  }
  *out = it;
  return true;
}

}  // namespace

bool SelectionFilter::parse(const std::vector<DxfItem>& filter, std::string* why) {
  nodes_.clear();
  size_t i = 0;
  if (!parseSeq(filter, i, nodes_, "", why)) {
    nodes_.clear();
    return false;
  }
  return true;
}

bool SelectionFilter::parseSeq(const std::vector<DxfItem>& f, size_t& i, std::vector<Node>& out,
                               const std::string& closer, std::string* why) {
  auto bad = [&](std::string reason) {
    if (why) *why = std::move(reason);
    return false;
  };
  while (i < f.size()) {
    const DxfItem& it = f[i];
    if (it.code == -3) {
      Node n;
      n.kind = Node::XData;
      ++i;
      while (i < f.size() && f[i].code == 1001) {
        if (f[i].kind != DxfItem::String) return bad("an application name that is not a string");
        n.apps.push_back(f[i].s);
        ++i;
      }
      if (n.apps.empty()) return bad("-3 without an application");
      out.push_back(std::move(n));
      continue;
    }
    if (it.code == -4) {
      if (it.kind != DxfItem::String) return bad("-4 without an operator");
      std::string op = trim(upperAscii(it.s));
      ++i;
      if (!op.empty() && op[0] == '<' && op.size() > 1 && std::isalpha(static_cast<unsigned char>(op[1]))) {
        std::string name = op.substr(1);
        Node n;
        if (name == "AND") n.kind = Node::And;
        else if (name == "OR") n.kind = Node::Or;
        else if (name == "XOR") n.kind = Node::Xor;
        else if (name == "NOT") n.kind = Node::Not;
        else return bad("unknown operator " + op);
        if (!parseSeq(f, i, n.children, name + ">", why)) return false;
        if (n.kind == Node::Xor && n.children.size() != 2) return bad("<XOR needs two operands");
        if (n.kind == Node::Not && n.children.size() != 1) return bad("<NOT needs one operand");
        if ((n.kind == Node::And || n.kind == Node::Or) && n.children.empty()) return bad(op + " without operands");
        out.push_back(std::move(n));
        continue;
      }
      if (!op.empty() && op.back() == '>' && op.size() > 1 && std::isalpha(static_cast<unsigned char>(op[0]))) {
        if (op != closer) return bad("unbalanced " + op);
        return true;
      }
      // A relational operator for the group that follows.
      if (i >= f.size() || f[i].code == -4 || f[i].code == -3) return bad("operator " + op + " without a group");
      Node n;
      n.value = f[i];
      std::vector<std::string> ops;
      size_t start = 0;
      for (;;) {
        size_t comma = op.find(',', start);
        ops.push_back(trim(op.substr(start, comma == std::string::npos ? std::string::npos : comma - start)));
        if (comma == std::string::npos) break;
        start = comma + 1;
      }
      for (const std::string& o : ops)
        if (!knownOp(o)) return bad("unknown operator " + op);
      if (n.value.kind == DxfItem::Point) {
        if (ops.size() != 1 && ops.size() != 2 && ops.size() != 3) return bad("operator " + op + " for a point");
      } else if (ops.size() != 1) {
        return bad("operator " + op + " for a value that is not a point");
      }
      if (n.value.kind == DxfItem::String && ops[0] != "*" && ops[0] != "=" && ops[0] != "!=" && ops[0] != "/=" &&
          ops[0] != "<>")
        return bad("operator " + op + " for a string");
      if ((ops[0] == "&" || ops[0] == "&=") && n.value.kind != DxfItem::Int)
        return bad("operator " + op + " for a value that is not an integer");
      n.ops = std::move(ops);
      out.push_back(std::move(n));
      ++i;
      continue;
    }
    Node n;
    n.value = it;
    n.ops = {"="};
    out.push_back(std::move(n));
    ++i;
  }
  if (!closer.empty()) return bad("missing " + closer);
  return true;
}

bool SelectionFilter::matches(const std::vector<DxfItem>& groups) const {
  for (const Node& n : nodes_)
    if (!eval(n, groups)) return false;
  return true;
}

bool SelectionFilter::eval(const Node& n, const std::vector<DxfItem>& groups) const {
  switch (n.kind) {
    case Node::Test: return test(n, groups);
    case Node::And:
      for (const Node& c : n.children)
        if (!eval(c, groups)) return false;
      return true;
    case Node::Or:
      for (const Node& c : n.children)
        if (eval(c, groups)) return true;
      return false;
    case Node::Xor: return eval(n.children[0], groups) != eval(n.children[1], groups);
    case Node::Not: return !eval(n.children[0], groups);
    case Node::XData: {
      std::vector<std::u16string> present;
      bool inX = false;
      for (const DxfItem& g : groups) {
        if (g.code == -3) inX = true;
        if (inX && g.code == 1001 && g.kind == DxfItem::String) present.push_back(g.s);
      }
      for (const std::u16string& pattern : n.apps) {
        bool found = false;
        for (const std::u16string& app : present)
          if (lisp::wcMatch(app, pattern, false)) found = true;
        if (!found) return false;
      }
      return true;
    }
  }
  return false;
}

bool SelectionFilter::test(const Node& n, const std::vector<DxfItem>& groups) const {
  const DxfItem& want = n.value;
  auto one = [&](const DxfItem& g) -> bool {
    const std::string& op0 = n.ops[0];
    if (op0 == "*" && n.ops.size() == 1) return true;
    switch (want.kind) {
      case DxfItem::String: {
        if (g.kind != DxfItem::String) return false;
        bool m = lisp::wcMatch(g.s, want.s, false);
        return op0 == "=" ? m : !m;
      }
      case DxfItem::Int:
      case DxfItem::Real: {
        double a;
        if (g.kind == DxfItem::Int) a = static_cast<double>(g.i);
        else if (g.kind == DxfItem::Real) a = g.p[0];
        else return false;
        double b = want.kind == DxfItem::Int ? static_cast<double>(want.i) : want.p[0];
        return compare(a, op0, b);
      }
      case DxfItem::Point: {
        if (g.kind != DxfItem::Point) return false;
        for (int k = 0; k < 3; ++k) {
          const std::string& op = n.ops.size() == 1 ? op0 : (static_cast<size_t>(k) < n.ops.size() ? n.ops[k] : "*");
          if (!compare(g.p[k], op, want.p[k])) return false;
        }
        return true;
      }
      case DxfItem::Id: return g.kind == DxfItem::Id && (g.id == want.id) == (op0 == "=");
      default: return false;
    }
  };
  bool seen = false;
  for (const DxfItem& g : groups) {
    if (g.code == -3) break;
    if (g.code != want.code) continue;
    seen = true;
    if (one(g)) return true;
  }
  DxfItem d;
  if (!seen && defaultFor(want.code, &d)) return one(d);
  return false;
}

}  // namespace zepk::db
