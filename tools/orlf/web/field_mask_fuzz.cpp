// Bodies, forms and queries of any bytes: what is masked stays masked, and no value of a field that
// stands in front of the bytes or behind them is shown.
#include "web/field_mask.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static orlftool::FieldMask mask({"pass", "Token"});
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string secret = "hunter2hunter2";
  if (text.find(secret) != std::string::npos) return 0;
  const std::string masked = *mask.process(text);
  if (mask.process(masked) != masked) std::abort();
  for (const std::string& with :
       {"{\"pass\":\"" + secret + "\"," + text, "pass=" + secret + "&" + text,
        text + "\n{\"pass\":\"" + secret + "\"}", text + "\n&token=" + secret})
    if (mask.process(with)->find(secret) != std::string::npos) std::abort();
  return 0;
}
