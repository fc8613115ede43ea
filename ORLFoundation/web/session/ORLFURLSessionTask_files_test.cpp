#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask_testing.h>
#include <ORLFoundation/web/session/internal/DownloadFiles.h>
#include <gmock/gmock.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using testing::ElementsAre;
using testing::IsEmpty;

class ORLFURLSessionTaskFiles : public SessionTaskTest {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.path() / name; }
  [[nodiscard]] TaskPointer downloadTo(const std::string& place) {
    return session_->taskWithRequestDestination(request_, NSURL::fileURLWithPath(place),
                                                recording());
  }
  /// The platform's file comes from a folder.
  void download(std::size_t number, NSInteger status, const TemporaryFolder& from) {
    platform()->exchange(number).state->setResponse(answerOf(status));
    const auto location = NSURL::fileURLWithPath(from.write("location", "content"));
    platform()->tellDownloaded(number, location);
    std::filesystem::remove(location.path());
  }

  const TemporaryFolder folder_;
};

TEST_F(ORLFURLSessionTaskFiles, PutsADownloadInPlaceOfAnOlderFile) {
  folder_.write("file", "older");
  const auto task = downloadTo(path("file"));
  task->resume();
  download(1, 200, folder_);
  platform()->tellCompleted(1);
  settle();
  EXPECT_EQ(folder_.read("file"), "content");
  EXPECT_EQ(*task->result().get<NSURL>(), NSURL::fileURLWithPath(path("file")));
  EXPECT_EQ(ended().at(0).error, nullptr);
}

TEST_F(ORLFURLSessionTaskFiles, EndsADownloadOfAnotherStatusWithItsTextAndNoFile) {
  const struct {
    NSInteger status, code;
  } rows[] = {{404, -1100}, {500, -1}, {201, -1}, {304, -1}, {401, -1}, {0, -1}};
  std::size_t number = 0;
  for (const auto& row : rows) {
    folder_.write("file", "older");
    const auto task = downloadTo(path("file"));
    task->resume();
    download(++number, row.status, folder_);
    EXPECT_EQ(task->taskDestinationError()->code(), row.code);
    EXPECT_EQ(folder_.read("file"), "older");
    platform()->tellCompleted(number);
    settle();
    const auto error = ended().at(number - 1).error;
    EXPECT_EQ(error->domain(), NSURLErrorDomain);
    EXPECT_EQ(error->code(), row.code) << row.status;
    EXPECT_EQ(error->userInfo()->objectForKey("statusCode").as<NSInteger>(), row.status);
    EXPECT_EQ(error->userInfo()->objectForKey("statusDescription").as<std::string>(),
              NSHTTPURLResponse::localizedStringForStatusCode(row.status));
    EXPECT_THAT(folder_.names(), IsEmpty()) << "a failed download leaves no file";
  }
}

TEST_F(ORLFURLSessionTaskFiles, CopiesADownloadThatComesFromAnotherFileSystem) {
  const TemporaryFolder elsewhere(parentInMemory());
  const auto task = downloadTo(path("file"));
  task->resume();
  download(1, 200, elsewhere);
  platform()->tellCompleted(1);
  settle();
  EXPECT_EQ(folder_.read("file"), "content");
  EXPECT_THAT(folder_.names(), ElementsAre("file")) << "the temporary folder is gone";
}

TEST_F(ORLFURLSessionTaskFiles, EndsWithAFailureWhereNoDownloadCanBePut) {
  const auto task = downloadTo(path("missing/file"));
  task->resume();
  download(1, 200, folder_);
  platform()->tellCompleted(1);
  settle();
  EXPECT_EQ(ended().at(0).error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(ended().at(0).error, task->taskDestinationError());
  const auto web = session_->taskWithRequestDestination(
      request_, NSURL::URLWithString("https://example.com/file"), recording());
  web->resume();
  download(2, 200, folder_);
  platform()->tellCompleted(2);
  settle();
  EXPECT_EQ(ended().at(1).error->domain(), NSCocoaErrorDomain);
}

TEST_F(ORLFURLSessionTaskFiles, LeavesAFolderAtItsDestinationAlone) {
  folder_.write("folder/inside", "kept");
  const auto task = downloadTo(path("folder"));
  task->resume();
  download(1, 200, folder_);
  EXPECT_EQ(task->taskDestinationError()->code(), NSFileWriteFileExistsError);
  platform()->tellCompleted(1);
  settle();
  EXPECT_NE(ended().at(0).error, nullptr);
  EXPECT_EQ(folder_.read("folder/inside"), "kept");
}

TEST_F(ORLFURLSessionTaskFiles, RemovesNoFolderWhenAuthenticationFails) {
  folder_.write("folder/inside", "kept");
  folder_.write("file", "older");
  for (const char* name : {"folder", "file"}) {
    const auto task = downloadTo(path(name));
    task->resume();
    platform()->tellCompleted(task->connection()->taskIdentifier(),
                              urlError(NSURLErrorUserAuthenticationRequired));
    settle();
    EXPECT_EQ(task->failures(), 1U);
  }
  EXPECT_THAT(folder_.names(), ElementsAre("folder"));
}

/// The first error of the platform counts, not that of the place.
TEST_F(ORLFURLSessionTaskFiles, EndsWithThePlatformsErrorFirst) {
  const auto task = downloadTo(path("file"));
  task->resume();
  download(1, 404, folder_);
  const auto error = urlError(NSURLErrorNetworkConnectionLost);
  platform()->tellCompleted(1, error);
  settle();
  EXPECT_EQ(ended().at(0).error, error);
}

TEST_F(ORLFURLSessionTaskFiles, HasNoPlaceForADownloadThatNobodyAskedFor) {
  std::shared_ptr<const NSError> error;
  const auto location = NSURL::fileURLWithPath(folder_.write("location", "content"));
  EXPECT_FALSE(internal::session::placeDownload(location, std::nullopt, &error));
  EXPECT_EQ(error->code(), NSFileNoSuchFileError);
  internal::session::removeDownload(std::nullopt);
  EXPECT_EQ(folder_.read("location"), "content");
}

}  // namespace
}  // namespace ORLFoundation
