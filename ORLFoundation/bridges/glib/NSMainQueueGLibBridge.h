/// The main queue within a main loop of GLib's, GTK's included. The library links no GLib: who
/// includes this does, or takes the component GLibBridge of its CMake package.
///
///     const NSMainQueueGLibBridge bridge;      // the default context
///     g_main_loop_run(loop);
#pragma once

#include <ORLFoundation/platform/dispatch/NSMainQueuePollBridge.h>
#include <glib-unix.h>

namespace ORLFoundation {

/// The context serves the main queue while it lives. It is made and dies on the thread that runs
/// the context, which is the main thread (NSMainQueuePollBridge.h tells the rest). Loops within
/// loops, as modal dialogs run them, go on serving.
class NSMainQueueGLibBridge {
 public:
  /// null is GLib's default context. The context is held.
  explicit NSMainQueueGLibBridge(GMainContext* context = nullptr)
      : source_(g_unix_fd_source_new(bridge_.descriptor(), G_IO_IN)) {
    g_source_set_callback(source_,
                          reinterpret_cast<GSourceFunc>(reinterpret_cast<void (*)()>(&dispatch)),
                          &bridge_, nullptr);
    g_source_set_can_recurse(source_, TRUE);
    g_source_attach(source_, context);
  }
  ~NSMainQueueGLibBridge() {
    g_source_destroy(source_);
    g_source_unref(source_);
  }
  NSMainQueueGLibBridge(const NSMainQueueGLibBridge&) = delete;
  NSMainQueueGLibBridge& operator=(const NSMainQueueGLibBridge&) = delete;

 private:
  static gboolean dispatch(gint, GIOCondition, gpointer bridge) noexcept {
    static_cast<NSMainQueuePollBridge*>(bridge)->dispatch();
    return G_SOURCE_CONTINUE;
  }

  NSMainQueuePollBridge bridge_;
  GSource* const source_;
};

}  // namespace ORLFoundation
