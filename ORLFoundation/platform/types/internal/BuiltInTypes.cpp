#include <ORLFoundation/platform/types/internal/BuiltInTypes.h>

namespace ORLFoundation::internal::types {

const UTTypeTable& builtInTypes() {
  // Never destroyed: constants of other sources are looked up in it.
  static const auto& table = *new UTTypeTable({
      {"public.item", {}, {}, {}},
      {"public.content", {}, {}, {}},
      {"public.data", {}, {"application/octet-stream"}, {"public.item"}},
      {"public.folder", {}, {"inode/directory"}, {"public.item"}},
      {"public.text", {}, {}, {"public.data", "public.content"}},
      {"public.plain-text", {"txt", "text"}, {"text/plain"}, {"public.text"}},
      {"public.delimited-values-text", {}, {}, {"public.text"}},
      {"public.comma-separated-values-text",
       {"csv"},
       {"text/csv", "text/comma-separated-values"},
       {"public.delimited-values-text"}},
      {"public.tab-separated-values-text",
       {"tsv", "tab"},
       {"text/tab-separated-values"},
       {"public.delimited-values-text"}},
      {"public.html", {"html", "htm"}, {"text/html"}, {"public.text"}},
      {"public.xml", {"xml"}, {"application/xml", "text/xml"}, {"public.text"}},
      {"public.json", {"json"}, {"application/json"}, {"public.text"}},
      {"com.adobe.pdf", {"pdf"}, {"application/pdf"}, {"public.data", "public.content"}},
      {"public.image", {}, {}, {"public.data", "public.content"}},
      {"public.png", {"png"}, {"image/png"}, {"public.image"}},
      {"public.jpeg", {"jpeg", "jpg", "jpe"}, {"image/jpeg"}, {"public.image"}},
      {"public.audio", {}, {}, {"public.data", "public.content"}},
      {"public.movie", {}, {}, {"public.data", "public.content"}},
      {"public.archive", {}, {}, {"public.data"}},
      {"public.zip-archive", {"zip"}, {"application/zip"}, {"public.archive"}},
      {"public.qif", {"qif"}, {"application/qif", "application/x-qw"}, {"public.plain-text"}},
      {"public.qmtf", {"qmtf"}, {}, {"public.data"}},
      {"public.ofx", {"ofx"}, {"application/x-ofx"}, {"public.text"}},
      {"public.qfx", {"qfx"}, {"application/vnd.intu.qfx"}, {"public.ofx"}},
      {"public.txf", {"txf"}, {"application/x-txf"}, {"public.plain-text"}},
  });
  return table;
}

}  // namespace ORLFoundation::internal::types
