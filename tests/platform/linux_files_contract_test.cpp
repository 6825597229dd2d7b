// The contracts of FileSystem and Processes on the real ones, in temporary folders.
#include <gtest/gtest.h>

#include "platform/FileSystemContract.h"
#include "platform/ProcessesContract.h"
#include "platform/linux/EmbeddedProduct.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxProcesses.h"
#include "support/TemporaryRoots.h"

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

void setHostTime(const PathMap &map, const QString &path, qint64 seconds) {
  const timespec times[2] = {{seconds, 0}, {seconds, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, map.host(path)->toUtf8().constData(), times, 0), 0);
}

class LinuxFiles final : public FileSystemSubject {
public:
  FileSystem &files() override { return m_files; }
  QString folder() override { return m_temporary.below("outside"); }
  void mountShare() override {
    if (m_files.presence(u"/Volumes/VB-SHARE$"_s) != Presence::Present) {
      m_files.createFolder(u"/Volumes/VB-SHARE$"_s, 0777);
    }
    m_product.prepare();
    m_product.mount(point());
  }
  void unmountShare() override { ASSERT_TRUE(m_product.unmount(point())); }
  void putLink(const QString &path, const QString &target) override {
    ASSERT_EQ(::symlink(host(target).constData(), host(path).constData()), 0);
  }
  void putFifo(const QString &path) override { ASSERT_EQ(::mkfifo(host(path).constData(), 0600), 0); }
  void setModified(const QString &path, qint64 seconds) override { setHostTime(m_files.map(), path, seconds); }

private:
  [[nodiscard]] QByteArray host(const QString &path) const { return m_files.map().host(path)->toUtf8(); }
  [[nodiscard]] QByteArray point() const { return host(u"/Volumes/VB-SHARE$"_s); }

  TemporaryRoots m_temporary;
  LinuxFileSystem m_files{m_temporary.roots};
  EmbeddedProduct m_product{m_temporary.roots.embedded, u"Auracore 5"_s};
};

class LinuxTools final : public ProcessesSubject {
public:
  FileSystem &files() override { return m_files; }
  Processes &processes() override { return m_processes; }
  QString folder() override { return m_temporary.below("outside"); }
  void setModified(const QString &path, qint64 seconds) override { setHostTime(m_files.map(), path, seconds); }
  void putLeftover(const QString &path) override { m_temporary.put("runtime" + path.toStdString(), ""); }

private:
  TemporaryRoots m_temporary;
  LinuxFileSystem m_files{m_temporary.roots};
  LinuxProcesses m_processes{m_temporary.roots};
};

const bool kFiles = registerFileSystemContract("LinuxFileSystem", [] { return std::make_unique<LinuxFiles>(); });
const bool kTools = registerProcessesContract("LinuxProcesses", [] { return std::make_unique<LinuxTools>(); });

} // namespace

} // namespace sonorel::test
