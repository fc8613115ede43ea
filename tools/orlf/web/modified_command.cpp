#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "session.h"
#include "values/date_text.h"
#include "web/web_address.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void printModified(Session& session, const std::string& text) {
  const NSURL url = readAddressArgument(text);
  if (isDataAddress(url)) throw UsageFailure("URL: an address of data has no date");
  std::shared_ptr<const NSError> error;
  const auto date = ORLFURLSession::fetchLastModifiedDateForContentsOfURL(url, &error);
  if (!date && error) throw JobFailure(shownAddress(url) + ": " + failureText(*error));
  if (!date) throw JobFailure(shownAddress(url) + ": the server names no date");
  const std::string shown = dateTimeText(*date, *session.calendar);
  if (session.options.json) {
    printJson(session.out, {{"url", shownAddress(url)}, {"modified", shown}});
  } else {
    session.out << shown << '\n';
  }
}

}  // namespace

Job declareModifiedCommand(Options& options) {
  options.describe("Print when what stands at an address was last modified, without fetching it.");
  auto url = std::make_shared<std::string>();
  options.required("URL", *url, "An address of http, https or file");
  return [url](Session& session) { printModified(session, *url); };
}

}  // namespace orlftool
