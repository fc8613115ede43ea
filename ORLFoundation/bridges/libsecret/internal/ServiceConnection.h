/// The way to the Secret Service: the session bus, and a session with who answers there.
#pragma once

#include <ORLFoundation/bridges/libsecret/internal/GLibPointers.h>
#include <ORLFoundation/bridges/libsecret/internal/PromptingService.h>

namespace ORLFoundation::internal::libsecret {

/// Used by one thread at a time.
class ServiceConnection {
 public:
  ServiceConnection() = default;
  ~ServiceConnection();
  ServiceConnection(const ServiceConnection&) = delete;
  ServiceConnection& operator=(const ServiceConnection&) = delete;

  /// While it lives the service is there, under a policy for prompts, and what calls of this thread
  /// make belongs to the connection: a host's main loop sees nothing of it.
  class Use {
   public:
    /// Throws `StatusFailure` where no service can be had.
    Use(ServiceConnection& connection, const PromptPolicy& policy);
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

   private:
    ServiceConnection& connection_;
  };

  [[nodiscard]] SecretService* service() const { return service_.get(); }
  /// A method of an object of the service. Throws `StatusFailure` where it fails.
  [[nodiscard]] VariantPointer call(const char* path, const char* interface, const char* method,
                                    GVariant* arguments, GCancellable* cancellable) const;
  /// Lets go of all; the next use opens it again.
  void close();

 private:
  void open(GCancellable* cancellable);
  /// Takes in what the service told unasked. What waits there holds the bus, also one that has
  /// ended, and as long as that is held GLib gives no other.
  void drain();
  /// The service has the owner that it had.
  [[nodiscard]] bool isOpen(GCancellable* cancellable) const;

  GMainContext* const context_ = g_main_context_new();
  ObjectPointer<GDBusConnection> bus_;
  ObjectPointer<SecretService> service_;
  TextPointer owner_;
};

/// Throws where a call has failed.
void throwFailure(const ErrorSlot& error);

}  // namespace ORLFoundation::internal::libsecret
