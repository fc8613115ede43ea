#include "io/child_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli/failure.h"

namespace orlftool {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void fail(const std::string& program, int code) {
  throw JobFailure(program + " cannot be started: " + std::strerror(code));
}

/// A file without a name, gone when it is closed: nobody waits for a full pipe.
File temporaryFile(const std::string& program) {
  File file(std::tmpfile(), &std::fclose);
  if (!file) fail(program, errno);
  return file;
}

File fileWith(std::string_view bytes, const std::string& program) {
  File file = temporaryFile(program);
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
      std::fflush(file.get()) != 0)
    fail(program, errno);
  std::rewind(file.get());
  return file;
}

std::string contentsOf(std::FILE* file) {
  std::string text;
  std::array<char, 4096> buffer{};
  std::rewind(file);
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file))
    text.append(buffer.data(), count);
  return text;
}

/// Where the program's three streams come from and go to.
class Streams {
 public:
  Streams(int in, int errors) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_adddup2(&actions_, in, STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO);
  }
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* actions() const noexcept { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

int exitCodeOf(pid_t child, const std::string& program) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0)
    if (errno != EINTR) fail(program, errno);
  constexpr int kSignalled = 128;
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}

}  // namespace

ChildRun runProgram(const std::vector<std::string>& words, std::string_view input) {
  const std::string& program = words.at(0);
  const File in = fileWith(input, program);
  const File errors = temporaryFile(program);
  const Streams streams(::fileno(in.get()), ::fileno(errors.get()));
  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  arguments.reserve(copies.size() + 1);
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  const int code = ::posix_spawnp(&child, program.c_str(), streams.actions(), nullptr,
                                  arguments.data(), ::environ);
  if (code == ENOENT) return {};
  if (code != 0) fail(program, code);
  ChildRun run{true, exitCodeOf(child, program), {}};
  run.errors = contentsOf(errors.get());
  return run;
}

}  // namespace orlftool
