// The contracts of files and tools on the fakes that every other test builds on.
#include "platform/FileSystemContract.h"
#include "platform/ProcessesContract.h"
#include "support/FakeProcesses.h"
#include "support/Fixtures.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

class FakeFiles final : public FileSystemSubject {
public:
  FakeFiles() { m_files.makeFolders(folder()); }

  FileSystem &files() override { return m_files; }
  QString folder() override { return u"/Users/me/Work"_s; }
  void mountShare() override { m_files.mount(kMountPoint.toString()); }
  void unmountShare() override { m_files.unmount(kMountPoint.toString()); }
  void putLink(const QString &path, const QString &target) override { m_files.putLink(path, target); }
  void putFifo(const QString &path) override { m_files.putOther(path); }
  void setModified(const QString &path, qint64 seconds) override { m_files.setModified(path, seconds); }

private:
  FakeFileSystem m_files;
};

class FakeMachine final : public ProcessesSubject {
public:
  FakeMachine() { m_files.makeFolders(folder()); }

  FileSystem &files() override { return m_files; }
  Processes &processes() override { return m_processes; }
  QString folder() override { return u"/Users/me/Work"_s; }
  void setModified(const QString &path, qint64 seconds) override { m_files.setModified(path, seconds); }
  void putLeftover(const QString &path) override { m_files.put(path, "left behind"); }

private:
  FakeFileSystem m_files;
  FakeProcesses m_processes{m_files};
};

const bool kFiles = registerFileSystemContract("FakeFileSystem", [] { return std::make_unique<FakeFiles>(); });
const bool kTools = registerProcessesContract("FakeProcesses", [] { return std::make_unique<FakeMachine>(); });

} // namespace

TEST(FakeFilesContract, IsRegistered) {
  EXPECT_TRUE(kFiles);
  EXPECT_TRUE(kTools);
}
