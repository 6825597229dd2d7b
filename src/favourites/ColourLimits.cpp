#include "favourites/ColourLimits.h"

#include "core/state/LogException.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kLargestLimit = 99;
constexpr int kAlbumLimit = 9;
constexpr QStringView kAllEnabled = u"#1#1#1#1#";

int limitFor(qsizetype titles) {
  if (titles == kAlbumLimit) {
    return kAlbumLimit + 1; // 9 stands for albums
  }
  return static_cast<int>(qMin<qsizetype>(titles, kLargestLimit));
}

} // namespace

ColourLimits::ColourLimits(const LimitsRewrite::Tools &tools, const ShareFolders &folders, std::function<void()> quit)
    : m_desktop(tools.desktop), m_file(tools, folders.system() + kLimitsFileName.toString()),
      m_quit(std::move(quit)) {}

bool ColourLimits::presentLimitSettings() {
  m_damage.reset();
  if (!m_file.exists()) {
    return false;
  }
  try {
    m_values = readLimits(m_file.read());
  } catch (const Failure &failure) {
    m_desktop.log(u"The limits file cannot be read: "_s + failure.reason());
    if (failure.kind() != FailureKind::Damaged) {
      return false;
    }
    m_damage = failure;
  }
  return true;
}

bool ColourLimits::giveUpDamaged() {
  if (m_damage) {
    failEdit(*m_damage);
  }
  return m_damage.has_value();
}

void ColourLimits::failEdit(const std::exception &exception) {
  logException(m_desktop, u"problem while setting limits(setLimitInOrvFile)"_s, exception);
  const auto *failure = dynamic_cast<const Failure *>(&exception);
  if (failure == nullptr || failure->kind() == FailureKind::Damaged) {
    m_quit();
  }
}

void ColourLimits::setLimitInOrvFile(const QString &enables, const QString &limits) {
  QByteArray file;
  QByteArray edited;
  try {
    file = m_file.read();
    edited = editedLimits(file, enables, limits);
    if (edited == file) {
      return;
    }
  } catch (const std::exception &exception) {
    failEdit(exception);
    return;
  }
  try {
    m_file.write(file, edited);
  } catch (const Failure &failure) {
    const bool opened = failure.kind() == FailureKind::DiskFull || failure.kind() == FailureKind::Unknown;
    m_desktop.printOutput(opened ? u"Write Limits File: Couldn't write the file.\n"_s
                                 : u"Write Limits File: Couldn't open file for writing.\n"_s);
  }
}

void ColourLimits::completeInterruptedWrite() {
  try {
    if (m_file.exists()) {
      static_cast<void>(m_file.read());
    }
  } catch (const std::exception &exception) {
    logException(m_desktop, u"presentLimitSettings"_s, exception);
  }
}

void ColourLimits::executeLimitOperatingLogic(const QStringList &changedNames, const FavouriteLists &lists) {
  if (!presentLimitSettings() || giveUpDamaged()) {
    return;
  }
  for (const QString &name : changedNames) {
    const int index = colourIndex(name);
    if (index < 0 || static_cast<size_t>(index) >= lists.size()) {
      continue;
    }
    KeyLimit &key = m_values[static_cast<size_t>(index)];
    const auto &songs = lists[static_cast<size_t>(index)].songs;
    if (key.enable != 1 || key.limit > kLargestLimit || songs.empty()) {
      continue;
    }
    if (songs.back().itemType == u"1"_s) {
      key.limit = limitFor(static_cast<qsizetype>(songs.size()));
    } else if (songs.back().itemType == u"2"_s) {
      key.limit = kAlbumLimit;
    }
  }
  setLimitInOrvFile(enablesText(m_values), limitsText(m_values));
}

void ColourLimits::enableCFLLimits() {
  if (!presentLimitSettings() || giveUpDamaged()) {
    return;
  }
  setLimitInOrvFile(kAllEnabled.toString(), limitsText(m_values));
  for (KeyLimit &key : m_values) {
    key.enable = 1;
  }
}

} // namespace sonorel
