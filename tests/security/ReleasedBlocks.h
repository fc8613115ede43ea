/// What still lies in memory that this program gives back: operator delete and the hooks of OpenSSL
/// and libxml2 look through each block for secrets before it goes, on whatever thread. For a
/// program of its own, whose `main` is here.
///
///     ReleasedBlocks blocks({{"password", password}});
///     EXPECT_THAT(blocks.foundAfter([&] { useIt(password); }), IsEmpty());
#pragma once

#include <string>
#include <vector>

namespace orlftest {

struct SoughtSecret {
  std::string name;
  std::string bytes;
  /// A block that begins with the bytes is let pass: they are a text of its own there.
  bool mayBegin = false;
};

struct SecretSearch;

/// One at a time.
class ReleasedBlocks {
 public:
  explicit ReleasedBlocks(const std::vector<SoughtSecret>& sought);

  /// Does the work, and names the secrets that lay in blocks which were given back meanwhile.
  template <class Work>
  [[nodiscard]] std::vector<std::string> foundAfter(const Work& work) const {
    const Looking looking(search_);
    work();
    return looking.found();
  }

 private:
  class Looking {
   public:
    explicit Looking(SecretSearch& search);
    ~Looking();
    Looking(const Looking&) = delete;
    Looking& operator=(const Looking&) = delete;
    /// And looks no longer.
    [[nodiscard]] std::vector<std::string> found() const;

   private:
    SecretSearch& search_;
  };

  SecretSearch& search_;
};

}  // namespace orlftest
