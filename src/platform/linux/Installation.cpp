#include "platform/linux/Installation.h"

#include "platform/ShareNames.h"

#include <filesystem>
#include <pwd.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace sonorel {

namespace {

QString fromEnvironment(const char *name) {
  const QString value = qEnvironmentVariable(name);
  return value.startsWith(u'/') ? value : QString(); // relative ones are to be ignored
}

// A service or a container may start a program without HOME; "/" would be nobody's home.
QString homeFolder() {
  if (const QString home = fromEnvironment("HOME"); !home.isEmpty()) {
    return home;
  }
  const passwd *account = ::getpwuid(::getuid());
  return account != nullptr ? QString::fromLocal8Bit(account->pw_dir) : u"/"_s;
}

bool isFolder(const QString &path) {
  std::error_code error;
  return fs::is_directory(path.toStdString(), error);
}

} // namespace

QString programFolder() {
  std::error_code error;
  return QString::fromStdString(fs::read_symlink("/proc/self/exe", error).parent_path().string());
}

Roots rootsFromEnvironment(const QString &programs) {
  Roots roots;
  const QString home = homeFolder();
  const QString dataHome = fromEnvironment("XDG_DATA_HOME");
  const QString runtime = fromEnvironment("XDG_RUNTIME_DIR");
  roots.home = home;
  roots.data = (dataHome.isEmpty() ? home + u"/.local/share"_s : dataHome) + u"/sonorel"_s;
  roots.runtime = runtime.isEmpty() ? roots.data : runtime + u"/sonorel"_s;
  roots.embedded = roots.data + u"/Embedded/"_s + kShareName.toString();

  const QString inBuild = programs + u"/../resources"_s;
  const bool isBuildTree = isFolder(inBuild);
  roots.resources = isBuildTree ? inBuild : programs + u"/../share/sonorel/resources"_s;
  roots.scripts = isBuildTree ? programs + u"/../scripts"_s : programs + u"/../share/sonorel/scripts"_s;
  roots.agent = programs + u"/trackchute"_s;
  roots.mountProgram = programs + u"/sonorel-mount"_s;
  roots.unmountProgram = programs + u"/sonorel-umount"_s;
  return roots;
}

} // namespace sonorel
