/// A session bus of a test's own, on which nothing is started by itself, and a keyring daemon on
/// it.
#pragma once

#include <ORLFoundation/bridges/libsecret/internal/GLibPointers.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation {

/// A program that runs until this dies.
class RunningProgram {
 public:
  using Environment = std::vector<std::pair<std::string, std::string>>;

  RunningProgram(const std::vector<std::string>& words, const Environment& environment,
                 GSubprocessFlags flags) {
    using namespace internal::libsecret;
    const ObjectPointer<GSubprocessLauncher> launcher(g_subprocess_launcher_new(flags));
    for (const auto& [name, value] : environment)
      g_subprocess_launcher_setenv(launcher.get(), name.c_str(), value.c_str(), TRUE);
    std::vector<const gchar*> pointers;
    for (const std::string& word : words) pointers.push_back(word.c_str());
    pointers.push_back(nullptr);
    ErrorSlot error;
    process_.reset(g_subprocess_launcher_spawnv(launcher.get(), pointers.data(), error.slot()));
    if (!process_) throw std::runtime_error(error.error()->message);
  }
  ~RunningProgram() {
    g_subprocess_force_exit(process_.get());
    g_subprocess_wait(process_.get(), nullptr, nullptr);
  }
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  /// The next line of its output.
  [[nodiscard]] std::string readLine() const {
    std::string line;
    GInputStream* const output = g_subprocess_get_stdout_pipe(process_.get());
    for (char byte = 0; g_input_stream_read(output, &byte, 1, nullptr, nullptr) == 1;) {
      if (byte == '\n') return line;
      line += byte;
    }
    throw std::runtime_error("a program ended without a word");
  }
  /// Gives it all of its input.
  void write(const std::string& input) const {
    GOutputStream* const pipe = g_subprocess_get_stdin_pipe(process_.get());
    g_output_stream_write_all(pipe, input.data(), input.size(), nullptr, nullptr, nullptr);
    g_output_stream_close(pipe, nullptr, nullptr);
  }
  /// Makes it stand still, or go on; returns when it does.
  void freeze(bool isToFreeze) const {
    g_subprocess_send_signal(process_.get(), isToFreeze ? SIGSTOP : SIGCONT);
    while (isToFreeze != isFrozen()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

 private:
  /// As the kernel tells behind the program's name, which stands in brackets.
  [[nodiscard]] bool isFrozen() const {
    std::ifstream file(std::string("/proc/") + g_subprocess_get_identifier(process_.get()) +
                       "/stat");
    std::string text;
    std::getline(file, text);
    return text.find(") T ") != std::string::npos;
  }

  internal::libsecret::ObjectPointer<GSubprocess> process_;
};

/// While it lives, the session bus of this process is a new one.
class PrivateSessionBus {
 public:
  PrivateSessionBus() {
    const std::string config = folder_.write(
        "bus.conf", "<busconfig><type>session</type><listen>unix:dir=" + folder_.path().string() +
                        "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                        "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow "
                        "eavesdrop=\"true\"/><allow own=\"*\"/>"
                        "</policy></busconfig>");
    program_.emplace(
        std::vector<std::string>{ORLF_DBUS_DAEMON, "--config-file=" + config, "--print-address=1",
                                 "--nofork"},
        RunningProgram::Environment{},
        GSubprocessFlags(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_SILENCE));
    address_ = program_->readLine();
    variable_.set(address_.c_str());
    own_ = connectAgain();
  }

  [[nodiscard]] const std::string& address() const { return address_; }
  /// One more connection.
  [[nodiscard]] internal::libsecret::ObjectPointer<GDBusConnection> connectAgain() const {
    using namespace internal::libsecret;
    ErrorSlot error;
    ObjectPointer<GDBusConnection> made(g_dbus_connection_new_for_address_sync(
        address_.c_str(),
        GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, error.slot()));
    if (!made) throw std::runtime_error(error.error()->message);
    return made;
  }
  /// A connection of the test's own.
  [[nodiscard]] GDBusConnection* connection() const { return own_.get(); }
  void stop() { program_.reset(); }

  /// null where the call fails.
  internal::libsecret::VariantPointer call(const char* destination, const char* path,
                                           const char* interface, const char* method,
                                           GVariant* arguments) const {
    return internal::libsecret::VariantPointer(
        g_dbus_connection_call_sync(own_.get(), destination, path, interface, method, arguments,
                                    nullptr, G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr));
  }
  /// Waits until somebody owns the name, or nobody does.
  void awaitName(const char* name, bool isOwned) const {
    for (int turn = 0; turn < 5000; ++turn) {
      const auto reply = call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                              "org.freedesktop.DBus", "NameHasOwner", g_variant_new("(s)", name));
      gboolean has = FALSE;
      if (reply) g_variant_get(reply.get(), "(b)", &has);
      if ((has != FALSE) == isOwned) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    throw std::runtime_error(std::string(name) + " does not come or go");
  }

 private:
  const orlftest::EnvironmentVariable variable_{"DBUS_SESSION_BUS_ADDRESS", nullptr};
  const orlftest::EnvironmentVariable others_[3] = {
      {"DISPLAY", nullptr}, {"WAYLAND_DISPLAY", nullptr}, {"SECRET_SERVICE_BUS_NAME", nullptr}};
  const orlftest::TemporaryFolder folder_{orlftest::parentInMemory()};
  std::optional<RunningProgram> program_;
  std::string address_;
  internal::libsecret::ObjectPointer<GDBusConnection> own_;
};

inline constexpr const char* kSecretsName = "org.freedesktop.secrets";
inline constexpr const char* kSecretsPath = "/org/freedesktop/secrets";

/// A keyring daemon on the bus, whose files stay when it is started anew.
class PrivateKeyring {
 public:
  explicit PrivateKeyring(const PrivateSessionBus& bus) : bus_(bus) { start(); }

  void start(const std::string& password = "pass word") {
    const std::string home = folder_.path().string();
    program_.emplace(
        std::vector<std::string>{ORLF_GNOME_KEYRING, "--foreground", "--components=secrets",
                                 "--unlock"},
        RunningProgram::Environment{{"HOME", home},
                                    {"XDG_DATA_HOME", home},
                                    {"XDG_CONFIG_HOME", home},
                                    {"XDG_CACHE_HOME", home},
                                    {"XDG_RUNTIME_DIR", home},
                                    {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}},
        GSubprocessFlags(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                         G_SUBPROCESS_FLAGS_STDERR_SILENCE));
    program_->write(password);
    bus_.awaitName(kSecretsName, true);
  }
  void stop() {
    program_.reset();
    bus_.awaitName(kSecretsName, false);
  }
  /// Makes it stand still, or go on.
  void freeze(bool isToFreeze) const { program_->freeze(isToFreeze); }

  void lock() const {
    const auto reply = bus_.call(
        kSecretsName, kSecretsPath, "org.freedesktop.Secret.Service", "Lock",
        g_variant_new_parsed("([objectpath '/org/freedesktop/secrets/collection/login'],)"));
    if (!reply) throw std::runtime_error("the keyring cannot be locked");
  }
  [[nodiscard]] const orlftest::TemporaryFolder& folder() const { return folder_; }

 private:
  const PrivateSessionBus& bus_;
  const orlftest::TemporaryFolder folder_{orlftest::parentInMemory()};
  std::optional<RunningProgram> program_;
};

}  // namespace ORLFoundation
