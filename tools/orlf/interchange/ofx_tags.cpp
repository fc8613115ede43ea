#include "interchange/ofx_tags.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

#include "cli/message_text.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation::internal;
using Kind = XmlPiece::Kind;

constexpr std::string_view kXmlBlanks = " \t\r\n";

/// The beginning of names, digits and points apart, in ASCII; beyond it all characters may.
bool mayBeginName(char c) { return base::isLetter(c) || c == '_' || c == ':' || !base::isASCII(c); }

bool isName(std::string_view name) {
  if (name.empty() || !mayBeginName(name.front())) return false;
  return std::all_of(name.begin(), name.end(), [](char c) {
    return mayBeginName(c) || base::isDigit(c) || c == '-' || c == '.';
  });
}

/// Whether attributes stand behind a name, each as NAME="VALUE" with either marks.
bool areAttributes(std::string_view text) {
  for (text = trimmed(text, kXmlBlanks); !text.empty();) {
    const std::size_t equals = text.find('=');
    if (equals == text.npos || !isName(trimmed(text.substr(0, equals), kXmlBlanks))) return false;
    text = trimmed(text.substr(equals + 1), kXmlBlanks);
    if (text.empty() || (text.front() != '"' && text.front() != '\'')) return false;
    const std::size_t end = text.find(text.front(), 1);
    if (end == text.npos) return false;
    text.remove_prefix(end + 1);
    if (!text.empty() && kXmlBlanks.find(text.front()) == kXmlBlanks.npos) return false;
    text = trimmed(text, kXmlBlanks);
  }
  return true;
}

/// Whether an instruction, a comment or a declaration was not cut at a > inside of it.
bool isWholeInstruction(std::string_view text) {
  if (text.starts_with("<?")) return text.ends_with("?>") && text.size() > 3;
  if (text.starts_with("<!--")) return text.ends_with("-->") && text.size() > 6;
  return text.ends_with('>') && text.size() > 3 && base::isLetter(text[2]);
}

/// What stands between the name and the end of a tag.
std::string_view attributesOf(const XmlPiece& piece) {
  const std::size_t front = piece.kind == Kind::End ? 2 : 1;
  const std::size_t back = piece.kind == Kind::Empty ? 2 : 1;
  const std::size_t start = front + piece.name.size();
  return piece.text.size() < start + back
             ? std::string_view()
             : piece.text.substr(start, piece.text.size() - start - back);
}

/// Follows the tags of a document and counts what is wrong.
class TagCheck {
 public:
  void take(const XmlPiece& piece) {
    if (piece.kind == Kind::Text) {
      if (open_.empty() && !trimmed(piece.text, kXmlBlanks).empty())
        ++faults_["text stands outside of every element"];
      return;
    }
    if (piece.kind == Kind::Other) {
      if (!isWholeInstruction(piece.text)) tellForm(piece.text);
      return;
    }
    checkForm(piece);
    if (piece.kind == Kind::End) {
      close(piece.name);
      return;
    }
    if (open_.empty() && ++roots_ == 2) ++faults_["more than one element is the root"];
    if (piece.name.find('.') != piece.name.npos) vendors_.emplace(piece.name);
    if (piece.kind == Kind::Start) {
      open_.push_back(piece.name);
      ++counts_[piece.name];
    }
  }

  std::vector<std::string> remarks() {
    while (!open_.empty()) leaveOpen();
    if (roots_ == 0) ++faults_["no element begins"];
    std::vector<std::string> remarks;
    for (const auto& [fault, count] : faults_)
      remarks.push_back(fault + (count > 1 ? " (" + std::to_string(count) + " times)" : ""));
    if (!vendors_.empty()) remarks.push_back("tags of a vendor's own: " + vendorList());
    return remarks;
  }

 private:
  void checkForm(const XmlPiece& piece) {
    const bool hasForm =
        piece.text.ends_with('>') && isName(piece.name) && areAttributes(attributesOf(piece)) &&
        (piece.kind != Kind::End || trimmed(attributesOf(piece), kXmlBlanks).empty());
    if (!hasForm) tellForm(piece.text);
  }

  void tellForm(std::string_view tag) { ++faults_[quotedForMessage(tag) + " is no tag of XML"]; }

  void close(std::string_view name) {
    const auto found = counts_.find(name);
    if (found == counts_.end() || found->second == 0) {
      ++faults_["</" + oneLine(name) + "> closes nothing"];
      return;
    }
    while (open_.back() != name) leaveOpen();
    --counts_[open_.back()];
    open_.pop_back();
  }

  void leaveOpen() {
    ++faults_["<" + oneLine(open_.back()) + "> is never closed"];
    --counts_[open_.back()];
    open_.pop_back();
  }

  [[nodiscard]] std::string vendorList() const {
    std::string list;
    for (const std::string& name : vendors_) list += (list.empty() ? "" : ", ") + oneLine(name);
    return list;
  }

  std::vector<std::string_view> open_;
  std::unordered_map<std::string_view, std::size_t> counts_;  // of those in `open_`
  std::map<std::string, std::size_t> faults_;
  std::set<std::string> vendors_;
  std::size_t roots_ = 0;
};

/// Writes pieces on lines of their own.
class Indenter {
 public:
  void take(const XmlPiece& piece) {
    switch (piece.kind) {
      case Kind::Text:
        takeText(piece.text);
        return;
      case Kind::Start:
        beginLine();
        ++depth_;
        break;
      case Kind::End:
        depth_ -= std::min<std::size_t>(depth_, 1);
        if (!isLeaf_) beginLine();
        break;
      case Kind::Empty:
      case Kind::Other:
        beginLine();
        break;
    }
    result_ += pending_;
    pending_ = {};
    result_ += piece.text;
    isLeaf_ = piece.kind == Kind::Start;
  }

  std::string result() {
    beginLine();
    return std::move(result_);
  }

 private:
  /// Text behind a start tag waits: an end tag keeps it on the line.
  void takeText(std::string_view text) {
    const std::string_view plain = trimmed(text, kXmlBlanks);
    if (isLeaf_) {
      // The pieces of a text stand side by side.
      pending_ = pending_.empty()
                     ? text
                     : std::string_view(pending_.data(), pending_.size() + text.size());
    } else if (!plain.empty()) {
      beginLine();
      result_ += plain;
    }
  }

  void beginLine() {
    const std::string_view plain = trimmed(pending_, kXmlBlanks);
    pending_ = {};
    isLeaf_ = false;
    if (!plain.empty()) {
      beginLine();
      result_ += plain;
    }
    if (result_.empty()) return;
    constexpr std::size_t kDeepest = 64;
    result_ += '\n';
    result_.append(2 * std::min(depth_, kDeepest), ' ');
  }

  std::string result_;
  std::string_view pending_;
  std::size_t depth_ = 0;
  bool isLeaf_ = false;
};

}  // namespace

bool XmlPieces::next(XmlPiece& piece) {
  if (rest_.empty()) return false;
  piece = {};
  const bool isTag = rest_.front() == '<';
  const std::size_t end = rest_.find(isTag ? '>' : '<');
  piece.text = rest_.substr(0, end == rest_.npos || !isTag ? end : end + 1);
  rest_.remove_prefix(piece.text.size());
  if (!isTag) return true;
  const bool isEnd = piece.text.starts_with("</");
  const std::string_view inner = piece.text.substr(isEnd ? 2 : 1);
  piece.name = inner.substr(0, inner.find_first_of(" \t\r\n/>"));
  if (piece.text.starts_with("<![CDATA[") && piece.text.ends_with("]]>")) return true;
  piece.kind = isEnd                                                 ? Kind::End
               : inner.starts_with('?') || inner.starts_with('!')    ? Kind::Other
               : piece.text.ends_with("/>") && piece.text.size() > 2 ? Kind::Empty
                                                                     : Kind::Start;
  return true;
}

std::vector<std::string> remarksOnTags(std::string_view xml) {
  TagCheck check;
  XmlPieces pieces(xml);
  for (XmlPiece piece; pieces.next(piece);) check.take(piece);
  return check.remarks();
}

std::string indentedXml(std::string_view xml) {
  Indenter indenter;
  XmlPieces pieces(xml);
  for (XmlPiece piece; pieces.next(piece);) indenter.take(piece);
  std::string result = indenter.result();
  result.erase(result.find_last_not_of(kXmlBlanks) + 1);
  return result;
}

}  // namespace orlftool
