/// What GLib counts or owns, in pointers that let it go.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace ORLFoundation::internal::libsecret {

struct UnrefObject {
  void operator()(void* object) const { g_object_unref(object); }
};
template <class Object>
using ObjectPointer = std::unique_ptr<Object, UnrefObject>;

struct UnrefVariant {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using VariantPointer = std::unique_ptr<GVariant, UnrefVariant>;

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};
using TextPointer = std::unique_ptr<char, FreeText>;

/// Where a call leaves its error.
class ErrorSlot {
 public:
  ErrorSlot() = default;
  ~ErrorSlot() { g_clear_error(&error_); }
  ErrorSlot(const ErrorSlot&) = delete;
  ErrorSlot& operator=(const ErrorSlot&) = delete;

  [[nodiscard]] GError** slot() { return &error_; }
  /// null when the call succeeded.
  [[nodiscard]] const GError* error() const { return error_; }

 private:
  GError* error_ = nullptr;
};

}  // namespace ORLFoundation::internal::libsecret
