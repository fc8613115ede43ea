
#include <ORLFoundation/support/collections/ORLFArrayUtilities.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/collections/ORLFMutableArrayUtilities.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <stdexcept>
#include <utility>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::jsonDisagreement;

id objectOf(const Json& value) {
  if (value.is_null()) return {};
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_number_unsigned()) return value.get<std::uint64_t>();
  if (value.is_number_integer()) return value.get<std::int64_t>();
  if (value.is_number()) return value.get<double>();
  if (value.is_string()) return value.get<std::string>();
  throw std::runtime_error("no object: " + value.dump());
}

std::shared_ptr<NSMutableArray> arrayOf(const Json& list) {
  const auto array = std::make_shared<NSMutableArray>();
  for (const Json& member : list) array->addObject(objectOf(member));
  return array;
}

NSUInteger numberOf(const Json& value) { return value.get<NSUInteger>(); }

Json jsonOf(const id& object) {
  if (object.isNil()) return nullptr;
  if (const auto text = object.as<std::string>()) return *text;
  const NSNumber number = object.as<NSNumber>().value();
  if (number.kind() == NSNumber::Kind::Boolean) return number.boolValue();
  if (number.kind() == NSNumber::Kind::Double) return number.doubleValue();
  return number.integerValue();
}

Json jsonOf(const NSArray& array) {
  Json list = Json::array();
  for (const id& member : array) list.push_back(jsonOf(member));
  return list;
}

Json jsonOf(const NSIndexSet& set) {
  Json list = Json::array();
  set.enumerateIndexesUsingBlock([&](NSUInteger index, bool&) { list.push_back(index); });
  return list;
}

/// A check of an operation that answers a list.
orlftest::JsonCheck check(Json (*answer)(const Json& in)) {
  return [answer](const Json& in, const Json& out) { return jsonDisagreement(out, answer(in)); };
}

Json pairs(const Json& in) {
  Json list = Json::array();
  orlfEnumerateObjectPairsUsingBlock(
      *arrayOf(in), [&](const id& previous, const id& object, NSUInteger index, bool&) {
        list.push_back({jsonOf(previous), jsonOf(object), index});
      });
  return list;
}

Json moved(const Json& in, void (*move)(NSMutableArray&, const Json&, NSUInteger)) {
  const auto array = arrayOf(in.at(0));
  move(*array, in.at(1), numberOf(in.at(2)));
  return jsonOf(*array);
}

/// A row whose operation raises has nil for an answer, or the exception's name or reason.
std::string checkIndexSet(const Json& in, const Json& out) {
  try {
    return jsonDisagreement(out, jsonOf(*orlfIndexSet(*arrayOf(in))));
  } catch (const NSException& exception) {
    if (out.is_null()) return "";
    const std::string expected = out.dump();
    const bool isNamed = expected.find(exception.name()) != std::string::npos ||
                         expected.find(exception.reason()) != std::string::npos;
    return isNamed ? "" : "expected " + expected + ", raised " + exception.reason();
  }
}

const orlftest::JsonChecks kChecks = {
    {"orlfEnumerateObjectPairsUsingBlock:", check(&pairs)},
    {"orlfArrayByRemovingFirstObject",
     check([](const Json& in) { return jsonOf(*orlfArrayByRemovingFirstObject(arrayOf(in))); })},
    {"orlfArrayByRemovingLastObject",
     check([](const Json& in) { return jsonOf(*orlfArrayByRemovingLastObject(arrayOf(in))); })},
    {"orlfArrayByRemovingObject:", check([](const Json& in) {
       return jsonOf(*orlfArrayByRemovingObject(arrayOf(in.at(0)), objectOf(in.at(1))));
     })},
    {"orlfArrayByRemovingObjectsFromArray:", check([](const Json& in) {
       return jsonOf(*orlfArrayByRemovingObjectsFromArray(arrayOf(in.at(0)), arrayOf(in.at(1))));
     })},
    {"orlfMoveObjectAtIndex:toIndex:", check([](const Json& in) {
       return moved(in, [](NSMutableArray& array, const Json& from, NSUInteger to) {
         orlfMoveObjectAtIndex(array, numberOf(from), to);
       });
     })},
    {"orlfMoveObject:toIndex:", check([](const Json& in) {
       return moved(in, [](NSMutableArray& array, const Json& object, NSUInteger to) {
         orlfMoveObject(array, objectOf(object), to);
       });
     })},
    {"insertionIndexesOfSortedObjects:usingComparator:", check([](const Json& in) {
       return jsonOf(*insertionIndexesOfSortedObjects(
           *arrayOf(in.at(0)), *arrayOf(in.at(1)), [](const id& left, const id& right) {
             return left.get<NSNumber>()->compare(*right.get<NSNumber>());
           }));
     })},
    {"orlfArrayWithNumbersInRange:", check([](const Json& in) {
       return jsonOf(*orlfArrayWithNumbersInRange({numberOf(in.at(0)), numberOf(in.at(1))}));
     })},
    {"orlfIndexSet", &checkIndexSet},
};

TEST(ORLFArrayUtilities, AgreeWithTheVectors) { orlftest::runJsonVectors("texts_arrays", kChecks); }

}  // namespace
}  // namespace ORLFoundation
