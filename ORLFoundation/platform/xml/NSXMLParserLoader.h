/// Who fetches documents that do not lie in files. The library has no loader of its own: a host
/// that wants `NSXMLParser` to open such addresses installs one.
///
///     NSSetXMLParserLoader([](const NSURL& url, NSErrorSlot error) {
///       return NSInputStream::initWithData(fetch(url, error));
///     });
///
/// Only addresses that a program hands to a parser ever reach it; those inside of a document never
/// do.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>

#include <functional>
#include <memory>

namespace ORLFoundation {

class NSInputStream;
class NSURL;

/// Gives the document's bytes, or null with the slot filled. Runs on the thread that parses.
using NSXMLParserLoader =
    std::function<std::shared_ptr<NSInputStream>(const NSURL& url, NSErrorSlot error)>;

/// Replaces the loader for the whole process and gives back the one before; an empty one stands for
/// none. Safe on any thread.
NSXMLParserLoader NSSetXMLParserLoader(NSXMLParserLoader loader);

}  // namespace ORLFoundation
