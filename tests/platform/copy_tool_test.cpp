#include "platform/linux/CopyTool.h"
#include "platform/linux/EmbeddedProduct.h"

#include <gtest/gtest.h>

#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

// The host's copy program, or a script in its place that behaves like a network mount.
class CopyTools : public testing::Test {
protected:
  TemporaryRoots temporary;
  Volumes volumes{temporary.roots};
  EmbeddedProduct product{temporary.roots.embedded, u"Auracore 5"_s};

  void SetUp() override {
    std::filesystem::create_directory(temporary.base() / "runtime/Volumes/VB-SHARE$");
    product.prepare();
    product.mount(volumes.hostPoint(u"VB-SHARE$"_s));
    temporary.put("outside/track.mp3", "a track");
    const timespec times[2] = {{1'000'000'000, 0}, {1'200'000'000, 987'654'321}};
    ::utimensat(AT_FDCWD, source().toUtf8().constData(), times, 0);
  }
  [[nodiscard]] QString source() const { return temporary.below("outside/track.mp3"); }
  [[nodiscard]] ToolResult copy(const QString &program = u"/bin/cp"_s) {
    CopyTool tool(volumes, program.toUtf8());
    return tool.copy({u"/bin/cp"_s, {u"-p"_s, source(), u"/Volumes/VB-SHARE$/Music/track.mp3"_s}, {}, {}}, {});
  }
  [[nodiscard]] ToolResult copyWith(const std::string &script) {
    temporary.putScript("bin/cp", script);
    return copy(temporary.below("bin/cp"));
  }
  [[nodiscard]] struct stat target() const {
    struct stat facts = {};
    EXPECT_EQ(::stat((temporary.base() / "data/Embedded/VB-SHARE$/Music/track.mp3").c_str(), &facts), 0);
    return facts;
  }
};

} // namespace

TEST_F(CopyTools, NeverLeaveAReadOnlyCopy) {
  ::chmod(source().toUtf8().constData(), 0444);
  EXPECT_TRUE(succeeded(copy()));
  EXPECT_EQ(target().st_mode & 07777U, 0644U);
  EXPECT_EQ(target().st_mtim.tv_sec, 1'200'000'000);
}

TEST_F(CopyTools, PutNothingIntoAFolderThatHasTheTargetsName) {
  std::filesystem::create_directory(temporary.base() / "data/Embedded/VB-SHARE$/Music/track.mp3");
  EXPECT_EQ(copy().status, 1);
  EXPECT_FALSE(temporary.exists("data/Embedded/VB-SHARE$/Music/track.mp3/track.mp3"));
}

TEST_F(CopyTools, MendWhatAMountCouldNotKeep) {
  const ToolResult result =
      copyWith("cat \"$3\" > \"$4\"\n"
               "echo \"cp: preserving times for 'x': Operation not supported\"\n"
               "echo \"cp: failed to preserve ownership for 'x': Operation not permitted\" >&2\n"
               "exit 1");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(temporary.bytes("data/Embedded/VB-SHARE$/Music/track.mp3"), "a track");
  EXPECT_EQ(target().st_mtim.tv_sec, 1'200'000'000);
}

TEST_F(CopyTools, DoNotCallAShortCopyMended) {
  const ToolResult result = copyWith("head -c 3 \"$3\" > \"$4\"\n"
                                     "echo \"cp: preserving times for 'x': Operation not supported\"; exit 1");
  EXPECT_EQ(result.status, 1);
}

TEST_F(CopyTools, DoNotMendWhatFailedForAnotherReason) {
  const ToolResult result = copyWith("cat \"$3\" > \"$4\"\n"
                                     "echo \"cp: failed to close 'x': Input/output error\"; exit 1");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(target().st_mtim.tv_sec, 1'200'000'000);
  EXPECT_EQ(copyWith("cat \"$3\" > \"$4\"; exit 1").status, 1) << "a copy that says nothing";
}

TEST_F(CopyTools, CountNoCopyOntoAnEmbeddedProductThatWasMountedAnew) {
  const std::string point = temporary.below("runtime/Volumes/VB-SHARE$").toStdString();
  const std::string tree = temporary.roots.embedded.toStdString();
  const ToolResult result = copyWith("/bin/cp \"$@\" && rm '" + point + "' && ln -s '" + tree + "' '" + point + "'");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, QByteArray("cp: the volume went away during the copy\n"));
}

TEST_F(CopyTools, KnowComplaintsAboutAttributes) {
  EXPECT_TRUE(complainsOfAttributesOnly("cp: preserving times for '/a': Operation not permitted\n"));
  EXPECT_TRUE(complainsOfAttributesOnly("cp: failed to preserve ownership for 'a'$'\\n''b': Operation not permitted\n"
                                        "cp: preserving permissions for 'a': Operation not supported\n"));
  EXPECT_TRUE(complainsOfAttributesOnly("cp: setting permissions for 'a': Operation not permitted"));
  EXPECT_FALSE(complainsOfAttributesOnly(""));
  EXPECT_FALSE(complainsOfAttributesOnly("cp: error writing 'cp: preserving times for ': No space left on device\n"));
  EXPECT_FALSE(complainsOfAttributesOnly("cp: preserving times for 'a': Operation not permitted\n"
                                         "cp: failed to close 'a': Input/output error\n"));
}

TEST_F(CopyTools, EndWithTheirUsage) {
  CopyTool tool(volumes);
  EXPECT_EQ(tool.copy({{}, {u"-r"_s, source(), u"/Volumes/VB-SHARE$/x"_s}, {}, {}}, {}).status, 64);
  EXPECT_EQ(tool.copy({{}, {u"-p"_s, u"track.mp3"_s, u"/Volumes/VB-SHARE$/x"_s}, {}, {}}, {}).status, 1);
}

} // namespace sonorel::test
