/// Masks the values of named fields in what a log shows: of JSON the whole value, be it a text, a
/// number, a list or an object; of forms and queries all up to the next field.
///
///     FieldMask mask({"password"});
///     mask.process("{\"password\":\"a,b\",\"n\":1}");   // {"password":"***","n":1}
///     mask.process("user=ann&password=a%2Cb");          // user=ann&password=***
///
/// Names count without regard to case, and as what they mean: with escapes of JSON or of addresses
/// in them too, and within brackets ("user[password]"). A value that breaks off is masked to the
/// end. The time that it takes grows with the length of the text.
#pragma once

#include <ORLFoundation/web/logging/ORLFURLSessionLogProcessor.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

class FieldMask final : public ORLFoundation::ORLFURLSessionLogProcessor {
 public:
  explicit FieldMask(const std::vector<std::string>& names);

  [[nodiscard]] std::optional<std::string> process(std::optional<std::string> string) override;

 private:
  [[nodiscard]] bool isMasked(std::string_view name) const;
  [[nodiscard]] std::string withoutJSONValues(std::string_view text) const;
  [[nodiscard]] std::string withoutFormValues(std::string_view text) const;

  std::vector<std::string> names_;
  std::size_t mostNameBytes_ = 0;  // of a name with its quotes, each character escaped
};

}  // namespace orlftool
