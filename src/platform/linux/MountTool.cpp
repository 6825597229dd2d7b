#include "platform/linux/MountTool.h"

#include "platform/ShareNames.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/EmbeddedProduct.h"
#include "platform/linux/SystemError.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// As the first system's tools end.
constexpr int kUsage = 64;
constexpr int kNoPoint = 66;
constexpr int kNoShare = 71;
constexpr int kNoProgram = 127;
constexpr mode_t kOpenMode = 0777;
constexpr mode_t kCoveredMode = 0555;

ToolResult ended(int status, const QByteArray &text) {
  return {ToolEnding::Exited, status, text};
}

// "/Volumes/X" or "/Volumes/X/" to "X"; empty for anything else.
QString pointName(const QString &path) {
  const auto clean = PathMap::cleaned(path);
  return clean && PathMap::belowVolume(*clean).isEmpty() ? PathMap::volumeName(*clean) : QString();
}

bool isEmptyFolder(const QByteArray &point) {
  // Removing is the only question that nobody can answer differently a moment later.
  return ::rmdir(point.constData()) == 0 && ::mkdir(point.constData(), kOpenMode) == 0;
}

} // namespace

std::optional<ShareUrl> parseShareUrl(const QString &url) {
  if (!url.startsWith(u"//"_s)) {
    return std::nullopt;
  }
  const QString rest = url.mid(url.lastIndexOf(u'@') + 1);
  const QString place = rest.size() == url.size() ? url.mid(2) : rest;
  const qsizetype slash = place.indexOf(u'/');
  if (slash <= 0) {
    return std::nullopt;
  }
  const auto plain = [](const QString &text) {
    return QString::fromUtf8(QByteArray::fromPercentEncoding(text.toUtf8()));
  };
  QString share = place.mid(slash + 1);
  while (share.endsWith(u'/')) {
    share.chop(1);
  }
  return ShareUrl{plain(place.left(slash)), plain(share)};
}

void MountTool::note(const QString &line) const {
  if (m_log) {
    m_log(line);
  }
}

ToolResult MountTool::mount(const ToolRequest &request, std::stop_token stop) {
  const QStringList &arguments = request.arguments;
  const auto url = arguments.size() == 4 ? parseShareUrl(arguments.at(2)) : std::nullopt;
  if (!url || arguments.at(0) != u"-t"_s || arguments.at(1) != u"smbfs"_s) {
    return ended(kUsage, "usage: mount -t smbfs //user:password@address/share point\n");
  }
  const QString name = pointName(arguments.at(3));
  if (name.isEmpty()) {
    return ended(kNoPoint, "mount: the mount point is not below /Volumes\n");
  }
  if (m_volumes.mounted(name)) {
    return ended(kUsage, "mount: the mount point is in use\n");
  }
  if (stop.stop_requested()) {
    return {ToolEnding::Stopped, -1, {}};
  }
  if (!clearPoint(name)) {
    return ended(kNoPoint, "mount: the mount point cannot be used\n");
  }
  return EmbeddedProduct::isAddress(url->address) ? mountEmbedded(name, url->share)
                                                  : mountShare(name, request, std::move(stop));
}

bool MountTool::clearPoint(const QString &name) {
  const QByteArray point = m_volumes.hostPoint(name);
  struct stat facts = {};
  if (::lstat(point.constData(), &facts) != 0) {
    return false;
  }
  if (isEmptyFolder(point)) {
    ::chmod(point.constData(), kOpenMode);
    return true;
  }
  for (int number = 1; number < 10'000; ++number) {
    const QByteArray aside = point + ".aside-" + QByteArray::number(number);
    if (::renameat2(AT_FDCWD, point.constData(), AT_FDCWD, aside.constData(), RENAME_NOREPLACE) == 0) {
      note(u"/Volumes/"_s + name + u" was not mounted and not empty; what was there is now "_s +
           QString::fromUtf8(aside));
      break;
    }
    if (errno != EEXIST) {
      note(systemFailure(errno, QString::fromUtf8(point)).reason());
      return false;
    }
  }
  return ::mkdir(point.constData(), kOpenMode) == 0 && ::chmod(point.constData(), kOpenMode) == 0;
}

ToolResult MountTool::mountEmbedded(const QString &name, const QString &share) {
  if (share != kShareName) {
    return ended(kNoShare, "mount: no such share\n");
  }
  try {
    const EmbeddedProduct product(m_volumes.map().roots().embedded, m_productName);
    product.prepare();
    product.mount(m_volumes.hostPoint(name));
    return ended(0, {});
  } catch (const Failure &e) {
    note(u"The embedded product cannot be mounted: "_s + e.reason());
    return ended(kNoShare, "mount: the embedded product cannot be mounted\n");
  }
}

ToolResult MountTool::mountShare(const QString &name, const ToolRequest &request, std::stop_token stop) {
  const Roots &roots = m_volumes.map().roots();
  const QByteArray point = m_volumes.hostPoint(name);
  const FileDescriptor covered(::open(point.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  HostCommand command;
  command.program = roots.mountProgram.toUtf8();
  command.arguments = {point};
  command.input = request.arguments.at(2).toUtf8();
  ToolResult result = runChild(command, request.deadline, std::move(stop));
  if (result.ending == ToolEnding::NotStarted) {
    note(u"The mount program cannot be started: "_s + roots.mountProgram);
    return ended(kNoProgram, "mount: the mount program cannot be started\n");
  }
  const bool isMounted = m_volumes.mounted(name).has_value();
  if (succeeded(result) && !isMounted) {
    return ended(kNoShare, "mount: nothing was mounted\n");
  }
  if (succeeded(result) && covered.isOpen()) {
    ::fchmod(covered.get(), kCoveredMode); // nothing may be written here when the volume goes away
  }
  if (result.ending != ToolEnding::Exited && isMounted) {
    // It was done at the very moment when it was ended: nobody would know of this mount.
    HostCommand undo;
    undo.program = roots.unmountProgram.toUtf8();
    undo.arguments = {"-f", point};
    static_cast<void>(runChild(undo, std::chrono::seconds(3), {}));
  }
  return result;
}

ToolResult MountTool::unmount(const ToolRequest &request, std::stop_token stop) {
  const QStringList &arguments = request.arguments;
  const bool isForced = arguments.size() == 2 && arguments.at(0) == u"-f"_s;
  if (arguments.size() != 1 && !isForced) {
    return ended(kUsage, "usage: umount [-f] point\n");
  }
  const QString name = pointName(arguments.last());
  const auto volume = name.isEmpty() ? std::nullopt : m_volumes.mounted(name);
  if (!volume) {
    return ended(1, "umount: not currently mounted\n");
  }
  const Roots &roots = m_volumes.map().roots();
  const QByteArray point = m_volumes.hostPoint(name);
  if (volume->tableId == 0) {
    const bool isDone = EmbeddedProduct(roots.embedded, m_productName).unmount(point);
    return isDone ? ended(0, {}) : ended(1, "umount: the mount point cannot be freed\n");
  }
  HostCommand command;
  command.program = roots.unmountProgram.toUtf8();
  command.arguments = isForced ? QList<QByteArray>{"-f", point} : QList<QByteArray>{point};
  const ToolResult result = runChild(command, request.deadline, std::move(stop));
  if (result.ending == ToolEnding::NotStarted) {
    note(u"The unmount program cannot be started: "_s + roots.unmountProgram);
    return ended(kNoProgram, "umount: the unmount program cannot be started\n");
  }
  if (succeeded(result) && !m_volumes.mounted(name)) {
    ::chmod(point.constData(), kOpenMode);
  }
  return result;
}

} // namespace sonorel
