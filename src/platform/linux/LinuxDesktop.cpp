#include "platform/linux/LinuxDesktop.h"

#include "platform/linux/AutostartEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qint64 kEntryLimit = 64 * 1024;

// Empty for what is no readable file of an entry's size.
QByteArray entryBytes(const QString &path) {
  QFile file(path);
  if (!QFileInfo(path).isFile() || file.size() > kEntryLimit || !file.open(QIODevice::ReadOnly)) {
    return {};
  }
  return file.read(kEntryLimit);
}

std::optional<LoginItem> entryIn(const QString &path) {
  return decodeAutostartEntry(entryBytes(path));
}

bool writeEntry(const QString &path, const QByteArray &bytes) {
  QSaveFile entry(path);
  return entry.open(QIODevice::WriteOnly) && entry.write(bytes) == bytes.size() && entry.commit();
}

bool isOfClient(const LoginItem &item) {
  return item.path.endsWith(u"/Sonorel.app");
}

// One call, so that lines of several threads do not mix.
void writeTo(int descriptor, const QByteArray &bytes) {
  qsizetype written = 0;
  while (written < bytes.size()) {
    const auto more =
        ::write(descriptor, bytes.constData() + written, static_cast<std::size_t>(bytes.size() - written));
    if (more < 0 && errno == EINTR) {
      continue;
    }
    if (more <= 0) {
      return; // nobody reads it
    }
    written += more;
  }
}

} // namespace

LinuxDesktop::LinuxDesktop(Places places) : m_places(std::move(places)) {}

QString LinuxDesktop::autostartFolder() const {
  return m_places.configHome + u"/autostart"_s;
}

std::vector<LoginItem> LinuxDesktop::loginItems() {
  std::vector<LoginItem> items;
  const QDir folder(autostartFolder());
  QStringList names = folder.entryList({u"sonorel*.desktop"_s}, QDir::Files, QDir::Name);
  // In the order they were set: the first has no number, and shorter ones are smaller.
  std::stable_sort(names.begin(), names.end(),
                   [](const QString &a, const QString &b) { return a.size() < b.size(); });
  for (const QString &name : names) {
    if (const auto item = entryIn(folder.filePath(name))) {
      items.push_back(*item);
    }
  }
  return items;
}

bool LinuxDesktop::setLoginItems(const std::vector<LoginItem> &items) {
  QDir folder(autostartFolder());
  if (!folder.mkpath(u"."_s)) {
    return false;
  }
  bool written = true;
  QStringList wanted;
  for (std::size_t i = 0; i < items.size(); ++i) {
    wanted.append(i == 0 ? u"sonorel.desktop"_s : u"sonorel-%1.desktop"_s.arg(i + 1));
    const QByteArray bytes = encodeAutostartEntry(items[i], commandOf(items[i]));
    written = writeEntry(folder.filePath(wanted.constLast()), bytes) && written;
  }
  const QStringList names = folder.entryList({u"sonorel*.desktop"_s}, QDir::Files, QDir::Name);
  for (const QString &name : names) {
    if (!wanted.contains(name) && entryIn(folder.filePath(name))) {
      written = folder.remove(name) && written;
    }
  }
  return written;
}

QString LinuxDesktop::commandOf(const LoginItem &item) const {
  if (isOfClient(item)) {
    return m_places.client;
  }
  return m_places.hostPath(item.path).value_or(item.path);
}

void LinuxDesktop::removeAgentLoginItems() {
  auto items = loginItems();
  const auto agents =
      std::erase_if(items, [](const LoginItem &item) { return item.path.endsWith(u"/TrackChute.app"_s); });
  if (agents > 0 && !setLoginItems(items)) {
    log(u"the drop agent's login item could not be removed"_s);
  }
  QDir folder(autostartFolder());
  for (const QString &name : {u"trackchute.desktop"_s, u"com.orv.TrackChute.desktop"_s}) {
    if (folder.exists(name) && !folder.remove(name)) {
      log(u"the autostart entry %1 could not be removed"_s.arg(folder.filePath(name)));
    }
  }
}

// The program may have been installed elsewhere since the client registered itself, which it does once.
void LinuxDesktop::renewLoginItems() {
  const QDir folder(autostartFolder());
  for (const QString &name : folder.entryList({u"sonorel*.desktop"_s}, QDir::Files)) {
    const QString path = folder.filePath(name);
    const QByteArray bytes = entryBytes(path);
    const auto item = decodeAutostartEntry(bytes);
    const QByteArray renewed = item && isOfClient(*item) ? withCommand(bytes, m_places.client) : bytes;
    if (renewed != bytes && !writeEntry(path, renewed)) {
      log(u"the autostart entry %1 could not be renewed"_s.arg(path));
    }
  }
}

qint64 LinuxDesktop::spaceNumber() {
  return m_desktopNumber.current();
}

QString LinuxDesktop::systemLanguage() {
  return QLocale::system().uiLanguages().value(0);
}

bool LinuxDesktop::openDocument(const QString &path) {
  const auto hostPath = m_places.hostPath(path);
  const QString opener = QStandardPaths::findExecutable(u"xdg-open"_s);
  if (!hostPath || !QFileInfo::exists(*hostPath) || opener.isEmpty()) {
    return false;
  }
  return m_openers.start({opener.toUtf8(), {hostPath->toUtf8()}, std::nullopt, {}, -1});
}

void LinuxDesktop::log(const QString &line) {
  writeTo(STDERR_FILENO, line.toUtf8() + '\n');
}

void LinuxDesktop::printError(const QString &text) {
  writeTo(STDERR_FILENO, text.toUtf8());
}

void LinuxDesktop::printOutput(const QString &text) {
  writeTo(STDOUT_FILENO, text.toUtf8());
}

} // namespace sonorel
