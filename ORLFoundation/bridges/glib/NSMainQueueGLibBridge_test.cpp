#include <ORLFoundation/bridges/glib/NSMainQueueGLibBridge.h>

#include <ORLFoundation/bridges/NSMainQueueBridge_testing.h>

#include <functional>
#include <memory>
#include <utility>

namespace ORLFoundation {
namespace {

using Loop = std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)>;

/// The default context.
class GLibHost {
 public:
  using Bridge = NSMainQueueGLibBridge;
  class Modal {
   public:
    explicit Modal(const GLibHost& /*host*/) {}
    void run() { g_main_loop_run(loop_.get()); }
    void quit() { g_main_loop_quit(loop_.get()); }

   private:
    const Loop loop_{g_main_loop_new(nullptr, FALSE), &g_main_loop_unref};
  };

  void run() { g_main_loop_run(loop_.get()); }
  void quit() { g_main_loop_quit(loop_.get()); }
  static void after(int milliseconds, std::function<void()> call) {
    const auto run = [](gpointer data) -> gboolean {
      (*static_cast<std::function<void()>*>(data))();
      return G_SOURCE_REMOVE;
    };
    const auto drop = [](gpointer data) { delete static_cast<std::function<void()>*>(data); };
    g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(milliseconds), run,
                       new std::function<void()>(std::move(call)), drop);
  }
  static int wakesWhileIdle(int milliseconds) {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    bool isOver = false;
    after(milliseconds, [&] { isOver = true; });
    int wakes = 0;
    for (; !isOver; ++wakes) g_main_context_iteration(nullptr, TRUE);
    return wakes - 1;
  }
  static bool servesOnAThreadOfItsOwn() {
    GThread* const thread = g_thread_new("host", &serve, nullptr);
    return g_thread_join(thread) == thread;
  }

 private:
  /// Answers the thread on which an item of the main queue ran, as on the main thread, in a chosen
  /// context.
  static gpointer serve(gpointer /*data*/) {
    GMainContext* const context = g_main_context_new();
    g_main_context_push_thread_default(context);
    GThread* ranOn = nullptr;
    {
      const Loop loop(g_main_loop_new(context, FALSE), &g_main_loop_unref);
      const NSMainQueueGLibBridge bridge(context);
      dispatch_async(dispatch_get_main_queue(), [&] {
        if (NSThread::isMainThread()) ranOn = g_thread_self();
        g_main_loop_quit(loop.get());
      });
      g_main_loop_run(loop.get());
    }
    g_main_context_pop_thread_default(context);
    g_main_context_unref(context);
    return ranOn;
  }

  const Loop loop_{g_main_loop_new(nullptr, FALSE), &g_main_loop_unref};
};

INSTANTIATE_TYPED_TEST_SUITE_P(GLib, NSMainQueueBridge, GLibHost);

}  // namespace
}  // namespace ORLFoundation
