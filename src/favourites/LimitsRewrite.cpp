#include "favourites/LimitsRewrite.h"

#include "favourites/FavouritesBackup.h"
#include "favourites/LimitsFile.h"
#include "platform/Failure.h"
#include "platform/ShareNames.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kPauseBeforeSecondLook{1000};

bool isWhole(const QByteArray &file) {
  try {
    static_cast<void>(readLimits(file));
    return true;
  } catch (const Failure &) {
    return false;
  }
}

// What an interrupted write of the kept bytes leaves behind. A last number that lost digits still reads as one.
bool isCut(const QByteArray &file, const QByteArray &kept) {
  return !isWhole(file) || (file.size() < kept.size() && kept.startsWith(file));
}

} // namespace

LimitsRewrite::LimitsRewrite(Tools tools, QString path) : m_tools(std::move(tools)), m_path(std::move(path)) {}

bool LimitsRewrite::exists() {
  return m_tools.files.presence(m_path) == Presence::Present;
}

QByteArray LimitsRewrite::read() {
  QByteArray file = m_tools.files.read(m_path);
  if (const auto bytes = kept()) {
    if (isCut(file, *bytes)) {
      m_tools.files.write(m_path, *bytes);
      m_tools.desktop.log(u"The limits file was cut by an interrupted write; it was completed."_s);
      file = *bytes;
    }
    forget();
  } else if (!isWhole(file)) {
    m_tools.clock.sleep(kPauseBeforeSecondLook, {});
    file = m_tools.files.read(m_path);
  }
  return file;
}

void LimitsRewrite::write(const QByteArray &oldBytes, const QByteArray &newBytes) {
  keep(newBytes);
  try {
    m_tools.files.write(m_path, newBytes);
  } catch (const Failure &failure) {
    try {
      m_tools.files.write(m_path, oldBytes);
      forget();
    } catch (const Failure &) {
      throw failure; // what is kept goes out at the next look
    }
    throw;
  }
  forget();
}

QString LimitsRewrite::keptPath() const {
  return m_tools.backupFolder() + u'/' + kLimitsFileName.toString() + u".next"_s;
}

std::optional<QByteArray> LimitsRewrite::kept() {
  const QString path = keptPath();
  return m_tools.files.presence(path) == Presence::Present ? std::optional(m_tools.files.read(path)) : std::nullopt;
}

void LimitsRewrite::keep(const QByteArray &newBytes) {
  const QString folder = m_tools.backupFolder();
  makePrivateFolders(m_tools.files, folder);
  m_tools.files.writeAtomically(keptPath(), newBytes);
  m_tools.files.sync(keptPath());
  m_tools.files.sync(folder);
}

// What is left behind is dropped at the next look, where the file on the share is whole.
void LimitsRewrite::forget() {
  try {
    m_tools.files.removeFile(keptPath());
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The kept limits could not be removed: "_s + failure.reason());
  }
}

} // namespace sonorel
