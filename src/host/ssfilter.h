// Selection filters: whether an object's group list passes an ssget filter
// list. Plain data in, yes or no out; no drawing needed.
//
// A filter is a list of groups, all of which must pass (an implicit AND):
//   (code . value)  the object has a group of that code with that value;
//                   strings are wildcard patterns, matched without regard
//                   to case; an object without the group has the host's
//                   default for 62 (256), 6 ("BYLAYER"), 39 (0.0) and 67 (0)
//   (-4 . "op") before a group: a relational test instead of equality:
//                   * = != /= <> < <= > >= on numbers, & (any bit of the
//                   value) and &= (all of its bits) on integers; for points
//                   one operator for every coordinate or one per coordinate
//                   ("<,<,*")
//   (-4 . "<AND") ... (-4 . "AND>"), <OR ... OR>, <XOR two tests XOR>,
//   <NOT one test NOT>  logical groups, nested freely
//   (-3 ("APP1") ("APP*")) extended data of each named application (a
//                   pattern) is present
#pragma once

#include <string>
#include <vector>

#include "host/db/memfiler.h"

namespace zepk::db {

class SelectionFilter {
 public:
  // Parses the filter; false with a reason for one that is malformed
  // (unbalanced or misplaced operators, an unknown operator, an operator
  // for a value it cannot test).
  bool parse(const std::vector<DxfItem>& filter, std::string* why = nullptr);
  // Whether the groups (an entget list with the extended data of every
  // application after its -3 group) pass.
  bool matches(const std::vector<DxfItem>& groups) const;
  bool empty() const { return nodes_.empty(); }

 private:
  struct Node {
    enum Kind { Test, And, Or, Xor, Not, XData } kind = Test;
    DxfItem value;
    std::vector<std::string> ops;  // per coordinate for points
    std::vector<std::u16string> apps;
    std::vector<Node> children;
  };
  bool parseSeq(const std::vector<DxfItem>& f, size_t& i, std::vector<Node>& out, const std::string& closer,
                std::string* why);
  bool eval(const Node& n, const std::vector<DxfItem>& groups) const;
  bool test(const Node& n, const std::vector<DxfItem>& groups) const;
  std::vector<Node> nodes_;
};

}  // namespace zepk::db
