#include "core/DeviceName.h"

#include "link/HardwareAddress.h"
#include "link/TextEncoding.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kAttempts = 5;
constexpr quint64 kServerTextLimit = 1024ULL * 1024;

// The order of the search decides, not the order in the text.
QString nameIn(const QString &text) {
  for (const QStringView name : {kAuralis5, kVaultbox1, kAuracore5}) {
    if (text.contains(name)) {
      return name.toString();
    }
  }
  return kUnknownName.toString();
}

} // namespace

DeviceName::DeviceName(FileSystem &files, PropertyLists &lists, Desktop &desktop, Settings &settings,
                       Session &session, ShareFolders folders, const ClientPaths &paths)
    : m_files(files), m_settings(settings), m_session(session), m_folders(std::move(folders)),
      m_machinePreferences(files, lists, desktop, paths.machinePreferences, paths.machinePreferencesAside) {}

QString DeviceName::getDeviceName() {
  std::optional<QString> name;
  for (int getCount = 1; !name && getCount <= kAttempts; ++getCount) {
    name = readName();
  }
  storeHardwareAddress();
  return name.value_or(kUnknownName.toString());
}

std::optional<QString> DeviceName::readName() {
  const QString path = m_folders.system() + kProductNameFileName.toString();
  const auto volume = m_files.volume(path);
  const bool mounted = volume && volume->mountRoot == m_folders.share();
  // Only a share that is there can lack the file.
  if (mounted && m_files.presence(path) == Presence::Absent) {
    return kVaultbox1.toString();
  }
  try {
    const auto text = fromStrictUtf8(m_files.read(path, kServerTextLimit));
    return text ? std::optional(nameIn(*text)) : std::nullopt;
  } catch (const Failure &) {
    return std::nullopt;
  }
}

void DeviceName::storeHardwareAddress() {
  m_session.setHardwareAddress({});
  const QString path = kAddressFilePath.toString();
  if (m_files.presence(path) != Presence::Present) {
    return;
  }
  const QByteArray bytes = m_files.read(path, kServerTextLimit);
  const QString address = hardwareAddressIn(bytes);
  if (isHardwareAddress(address)) {
    m_session.setHardwareAddress(address);
  }
  m_settings.setAndSave(u"MACAdress"_s, bytes);
  QVariantMap machine = m_machinePreferences.read().value_or(QVariantMap());
  machine.insert(u"MACAdress"_s, bytes);
  m_machinePreferences.write(machine, m_machinePreferences.exists() ? std::nullopt : std::optional(kFolderMode));
}

} // namespace sonorel
