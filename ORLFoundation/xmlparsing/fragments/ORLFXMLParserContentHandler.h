/// Collects the text of its element. Two hooks see it: at the start of a sub-element and at the
/// end.
///
///     class NoteHandler : public ORLFXMLParserContentHandler {
///       bool finalizeContent(std::string_view content, std::string_view) override {
///         return keep(content), !content.empty();
///       }
///     };
#pragma once

#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserFragmentHandlerBase.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class ORLFXMLParserContentHandler : public ORLFXMLParserFragmentHandlerBase {
 public:
  /// Both false at first.
  [[nodiscard]] bool includeIgnorableWhitespace() const noexcept {
    return includeIgnorableWhitespace_;
  }
  void setIncludeIgnorableWhitespace(bool value) noexcept { includeIgnorableWhitespace_ = value; }
  /// Whether the text inside of skipped sub-elements counts.
  [[nodiscard]] bool includeUnhandledSubElementContent() const noexcept {
    return includeUnhandledSubElementContent_;
  }
  void setIncludeUnhandledSubElementContent(bool value) noexcept {
    includeUnhandledSubElementContent_ = value;
  }
  /// The text so far; nil but from `beginFragmentWithParent` to `endFragment`.
  [[nodiscard]] const std::optional<std::string>& content() const noexcept { return content_; }
  void setContent(std::optional<std::string> content) { content_ = std::move(content); }

  /// `checkpointContent:forSubElement:`  The text before a sub-element that a handler takes, since
  /// the last checkpoint that answered true. true, as here, begins a new text.
  [[nodiscard]] virtual bool checkpointContent(std::string_view content,
                                               std::string_view forSubElement);
  /// `finalizeContent:forElement:`  The text at the element's end. false refuses it: the parse
  /// fails with code 86. true here.
  [[nodiscard]] virtual bool finalizeContent(std::string_view content, std::string_view forElement);

  void beginFragmentWithParent(const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
                               const std::shared_ptr<ORLFXMLParser>& parser) override;
  void endFragment() override;
  [[nodiscard]] Error willStartSubElement(std::string_view name) override;
  [[nodiscard]] Error endElement(std::string_view name) override;
  [[nodiscard]] Error foundCharacters(std::string_view text) override;
  [[nodiscard]] Error foundIgnorableWhitespace(std::string_view text) override;
  [[nodiscard]] bool takesUnhandledCharacters() const override { return true; }
  void unhandledSubElementFoundCharacters(std::string_view name, std::string_view text) override;
  [[nodiscard]] bool takesUnhandledIgnorableWhitespace() const override { return true; }
  void unhandledSubElementFoundIgnorableWhitespace(std::string_view name,
                                                   std::string_view text) override;

  [[nodiscard]] std::string className() const override { return "ORLFXMLParserContentHandler"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  void append(std::string_view text);
  [[nodiscard]] std::string_view contentSoFar() const noexcept;

  bool includeIgnorableWhitespace_ = false;
  bool includeUnhandledSubElementContent_ = false;
  std::optional<std::string> content_;
};

}  // namespace ORLFoundation
