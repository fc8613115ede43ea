// The command `template-image` on tiny pictures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/MadePng.h>
#include <tests/tool/RunTool.h>
#include "io/png_file.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using orlftest::runTool;
using orlftest::ToolRun;

class TemplateImage : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] Bytes pixels(const std::string& name) const {
    const auto image = orlftool::readPngFile(path(name));
    const auto bytes = image->fields().provider->bytes();
    return {bytes.begin(), bytes.end()};
  }
  /// A picture of three grays: black, a middle one and white.
  std::string grays() {
    return write("grays.png", orlftest::madePng(3, PNG_FORMAT_GRAY, {0, 153, 255}));
  }
  /// What a run that fails with one line says, without the names of files.
  std::string failure(const std::vector<std::string>& arguments, int exitCode = 1) {
    const ToolRun run = runTool(arguments);
    EXPECT_EQ(run.exitCode, exitCode) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_FALSE(std::filesystem::exists(path("out.png")));
    std::string text = run.err;
    for (auto at = text.find(folder_.string()); at != std::string::npos;
         at = text.find(folder_.string()))
      text.erase(at, folder_.string().size() + 1);
    return text;
  }
};

TEST_F(TemplateImage, DrawsThePictureInTheColor) {
  const ToolRun run = runTool({"template-image", grays(), path("out.png"), "--color", "#336699"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out, path("out.png") + ": 3 x 1 pixels\n");
  EXPECT_EQ(pixels("out.png"), (Bytes{0x33, 0x66, 0x99, 255,  //
                                      0x33, 0x66, 0x99, 102,  //
                                      0x33, 0x66, 0x99, 0}));
}

TEST_F(TemplateImage, TakesAnOpacityAndAThreshold) {
  const ToolRun run = runTool({"template-image", grays(), path("out.png"), "--color", "#fFfFfF80",
                               "--threshold", "0.2", "--json"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(nlohmann::json::parse(run.out),
            (nlohmann::json{{"file", path("out.png")}, {"width", 3}, {"height", 1}}));
  // (102 - 51) / 0.8 * 128 / 255
  EXPECT_EQ(pixels("out.png"), (Bytes{255, 255, 255, 128, 255, 255, 255, 32, 255, 255, 255, 0}));
}

TEST_F(TemplateImage, MakesAWhollyWhitePictureClear) {
  const std::string white = write("white.png", orlftest::madePng(1, PNG_FORMAT_GRAY, {255}));
  EXPECT_EQ(runTool({"template-image", white, path("out.png"), "--color", "#123456"}).exitCode, 0);
  EXPECT_EQ(pixels("out.png"), (Bytes{0x12, 0x34, 0x56, 0}));
}

TEST_F(TemplateImage, MayTakeThePlaceOfItsSource) {
  const std::string file = grays();
  EXPECT_EQ(runTool({"template-image", file, file, "--color", "#000000"}).exitCode, 0);
  EXPECT_EQ(pixels("grays.png")[7], 102);
  EXPECT_EQ(names().size(), 1U);
}

TEST_F(TemplateImage, FailsWithOneLineForFilesThatAreNoPictures) {
  const auto of = [this](const std::string& in) {
    return failure({"template-image", in, path("out.png"), "--color", "#000000"});
  };
  EXPECT_EQ(of(path("absent.png")),
            "orlf template-image: absent.png: cannot be read: No such file or directory\n");
  std::filesystem::create_directory(path("folder"));
  EXPECT_EQ(of(path("folder")), "orlf template-image: folder: expected a PNG, got a directory\n");
  EXPECT_EQ(of(write("text.png", "text")),
            "orlf template-image: text.png: expected a PNG, got another file\n");
  EXPECT_EQ(of(write("huge.png", orlftest::pngHeader(70000, 70000))),
            "orlf template-image: huge.png: cannot be read as PNG: an image of 70000 x 70000 "
            "pixels, expected 1 to 134217728 of them\n");
  EXPECT_NE(of(write("zero.png", orlftest::pngHeader(0, 1))).find("zero.png: cannot be read"),
            std::string::npos);
  const std::string whole = orlftest::madePng(3, PNG_FORMAT_GRAY, {0, 153, 255});
  EXPECT_NE(of(write("cut.png", whole.substr(0, 50))).find("cut.png: cannot be read as PNG"),
            std::string::npos);
}

TEST_F(TemplateImage, FailsWithOneLineWhereItCannotWrite) {
  EXPECT_EQ(failure({"template-image", grays(), path("no/out.png"), "--color", "#000000"}),
            "orlf template-image: no/out.png: cannot be written: No such file or directory\n");
}

TEST_F(TemplateImage, KeepsWhatStandsAtItsPlaceWhenItFails) {
  write("old.png", "old");
  (void)failure(
      {"template-image", write("text.png", "text"), path("old.png"), "--color", "#000000"});

  EXPECT_EQ(read("old.png"), "old");
}

}  // namespace
