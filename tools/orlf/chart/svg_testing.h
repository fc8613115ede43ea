/// Reads SVG back: which elements it holds, with which attributes and text.
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace orlftool {

struct SvgElement {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::string text;
};

inline std::string takeXml(xmlChar* text) {
  const std::unique_ptr<xmlChar, void (*)(void*)> owner(text, [](void* p) { xmlFree(p); });
  return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

inline void collectElements(const xmlNode* node, std::vector<SvgElement>& elements) {
  for (; node != nullptr; node = node->next) {
    if (node->type != XML_ELEMENT_NODE) continue;
    SvgElement element{
        reinterpret_cast<const char*>(node->name), {}, takeXml(xmlNodeGetContent(node))};
    for (const xmlAttr* attribute = node->properties; attribute != nullptr;
         attribute = attribute->next)
      element.attributes[reinterpret_cast<const char*>(attribute->name)] =
          takeXml(xmlNodeGetContent(attribute->children));
    elements.push_back(std::move(element));
    collectElements(node->children, elements);
  }
}

/// All elements in order. Throws std::runtime_error for text that is no XML.
inline std::vector<SvgElement> elementsOfSvg(const std::string& svg) {
  const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
      xmlReadMemory(svg.data(), static_cast<int>(svg.size()), "chart.svg", nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
      &xmlFreeDoc);
  if (!document) throw std::runtime_error("no XML: " + svg.substr(0, 200));
  std::vector<SvgElement> elements;
  collectElements(xmlDocGetRootElement(document.get()), elements);
  return elements;
}

inline std::vector<SvgElement> elementsNamed(const std::string& svg, const std::string& name) {
  std::vector<SvgElement> found;
  for (SvgElement& element : elementsOfSvg(svg))
    if (element.name == name) found.push_back(std::move(element));
  return found;
}

}  // namespace orlftool
