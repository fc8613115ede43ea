#include "web/fetch_headers.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>

#include <algorithm>
#include <string_view>

#include "cli/failure.h"
#include "io/input_file.h"
#include "io/secret_input.h"
#include "io/text_lines.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

namespace base = ORLFoundation::internal::base;

std::string typedHeader(const std::string& option) {
  return std::string(askOnTerminal("Header field (Name: value), which is not shown: ",
                                   option + ": there is no terminal to ask at")
                         .text());
}

std::string_view withoutQuotes(std::string_view text) {
  const bool isQuoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

HeaderField readHeader(const std::string& option, std::string_view text) {
  const auto colon = text.find(':');
  HeaderField field;
  if (colon != std::string_view::npos) {
    field.name = trimmed(text.substr(0, colon));
    field.value = trimmed(text.substr(colon + 1));
  }
  if (ORLFoundation::NSIsHTTPToken(field.name) && ORLFoundation::NSIsHTTPFieldValue(field.value))
    return field;
  throw UsageFailure(option + ": expected a header field such as 'Accept: text/csv'");
}

/// "a=1; b=2" is "a=1", "1", "b=2" and "2"; "Bearer X" is "X" too.
void addParts(std::string_view value, std::vector<std::string>& secrets) {
  if (const auto blank = value.find(' '); blank != std::string_view::npos)
    secrets.emplace_back(trimmed(value.substr(blank)));
  while (!value.empty()) {
    const std::string_view part = value.substr(0, value.find_first_of(";,"));
    value.remove_prefix(std::min(value.size(), part.size() + 1));
    const std::string_view text = trimmed(part);
    const auto sign = text.find('=');
    if (sign != std::string_view::npos) secrets.emplace_back(withoutQuotes(text.substr(sign + 1)));
    secrets.emplace_back(text);
  }
}

/// What "Basic" hides: the name with its password, and the password alone.
void addCredentials(std::string_view value, std::vector<std::string>& secrets) {
  constexpr std::string_view kScheme = "basic ";
  if (!base::equalsIgnoringCase(value.substr(0, kScheme.size()), kScheme)) return;
  const std::string both = base::bytesOfLooseBase64Text(value.substr(kScheme.size()));
  secrets.push_back(both);
  if (const auto colon = both.find(':'); colon != std::string::npos)
    secrets.push_back(both.substr(colon + 1));
}

}  // namespace

std::vector<HeaderField> readHeaders(const std::string& option,
                                     const std::vector<std::string>& texts) {
  std::vector<HeaderField> fields;
  for (const std::string& text : texts) {
    if (text == "-") {
      fields.push_back(readHeader(option, typedHeader(option)));
    } else if (text == "@") {
      throw UsageFailure(option + ": expected a path behind @, got ''");
    } else if (text.starts_with('@')) {
      for (const std::string& line : linesOfText(readInputFile(text.substr(1), "a header file")))
        if (!trimmed(line).empty()) fields.push_back(readHeader(option, line));
    } else {
      fields.push_back(readHeader(option, text));
    }
  }
  return fields;
}

std::vector<std::string> secretsOf(const std::vector<HeaderField>& fields) {
  std::vector<std::string> secrets;
  for (const HeaderField& field : fields) {
    secrets.push_back(field.value);
    addParts(field.value, secrets);
    addCredentials(field.value, secrets);
  }
  return secrets;
}

}  // namespace orlftool
