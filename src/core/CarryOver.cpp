#include "core/CarryOver.h"

#include "core/state/ShareLayout.h"
#include "link/HardwareAddress.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint64 kReceiptLimit = 1024ULL * 1024;
const auto kVolumesFolder = u"/Volumes/"_s;
const auto kReceipt = u"/Library/Receipts/Sonorel 1.0.pkg/Contents/Info.plist"_s;
const auto kBundleName = u"/Sonorel.app"_s;

QString cleanedBundlePath(QString path) {
  while (path.contains(u"//"_s)) {
    path.replace(u"//"_s, u"/"_s);
  }
  while (path.startsWith(u'.')) {
    path.remove(0, 1);
  }
  while (path.endsWith(u'.')) {
    path.chop(1);
  }
  return path;
}

// The settings that are carried over. Everybody may write that file: a value of the wrong type counts as missing.
QVariantMap carriedSettings(const QVariantMap &machine) {
  const auto isText = [](const QVariant &value) { return value.typeId() == QMetaType::QString; };
  const auto isData = [](const QVariant &value) { return value.typeId() == QMetaType::QByteArray; };
  QVariantMap carried;
  for (const QString &key : {u"IPAddress"_s, u"Username"_s}) {
    if (isText(machine.value(key))) {
      carried.insert(key, machine.value(key));
    }
  }
  // A password that somebody wrote by hand is a text.
  if (const QVariant password = machine.value(u"Password"_s); isData(password) || isText(password)) {
    carried.insert(u"Password"_s, password);
  }
  if (const QVariant addressFile = machine.value(u"MACAdress"_s); isData(addressFile)) {
    carried.insert(u"MACAdress"_s, addressFile);
  }
  return carried;
}

void copyWhenPresent(const QVariantMap &from, QVariantMap &to, const QString &key) {
  if (from.contains(key)) {
    to.insert(key, from.value(key));
  }
}

} // namespace

CarryOver::CarryOver(FileSystem &files, PropertyLists &lists, Desktop &desktop, Settings &settings,
                     const ClientPaths &paths)
    : m_files(files), m_lists(lists), m_desktop(desktop), m_settings(settings), m_paths(paths),
      m_machinePreferences(files, lists, desktop, paths.machinePreferences, paths.machinePreferencesAside),
      m_productList(files, lists, desktop, paths.productsDetailsDictFilePath) {}

void CarryOver::fromReceipts() {
  QStringList volumes;
  try {
    volumes = m_files.list(kVolumesFolder);
  } catch (const Failure &) {
    return; // no volumes, no receipts
  }
  for (const QString &volume : volumes) {
    const QString bundle = earlierBundle(kVolumesFolder + volume + kReceipt);
    if (bundle.isEmpty() || bundle == m_paths.bundle) {
      continue;
    }
    if (m_files.presence(m_paths.PFPath) == Presence::Present && m_settings.text(u"FirstLaunch"_s) == u"No"_s) {
      saveForNewInstallation();
    }
    removeBundle(bundle);
  }
}

QString CarryOver::earlierBundle(const QString &receipt) {
  if (m_files.presence(receipt) != Presence::Present) {
    return {};
  }
  try {
    const QVariantMap info = m_lists.decode(m_files.read(receipt, kReceiptLimit)).toMap();
    const QVariant folder = info.value(u"IFPkgRelocatedPath"_s);
    return folder.typeId() == QMetaType::QString ? cleanedBundlePath(folder.toString() + kBundleName) : QString();
  } catch (const Failure &e) {
    m_desktop.log(receipt + u" cannot be read: "_s + e.reason());
    return {};
  }
}

void CarryOver::saveForNewInstallation() {
  const QVariantMap settings = m_settings.all();
  QVariantMap saved;
  if (settings.contains(u"IPAddress"_s) && settings.contains(u"Password"_s)) {
    for (const QString &key : {u"IPAddress"_s, u"Password"_s, u"Username"_s, u"MACAdress"_s}) {
      copyWhenPresent(settings, saved, key);
    }
  }
  m_machinePreferences.write(saved);
}

// The path stands in a file that anybody may have written: nothing but a bundle of that name is ever deleted.
void CarryOver::removeBundle(const QString &path) {
  if (!path.startsWith(u'/') || !path.endsWith(kBundleName) || path.split(u'/').contains(u".."_s)) {
    return;
  }
  try {
    if (m_files.presence(path) == Presence::Present) {
      m_files.removeTree(path);
    }
  } catch (const Failure &e) {
    m_desktop.log(path + u" could not be deleted: "_s + e.reason());
  }
}

void CarryOver::fromMachinePreferences() {
  const QVariantMap machine = m_machinePreferences.read().value_or(QVariantMap());
  const QVariantMap carried = carriedSettings(machine);
  if (carried.contains(u"IPAddress"_s) && carried.contains(u"Password"_s) && carried.contains(u"Username"_s)) {
    takeOver(carried);
  }
  m_files.removeTree(m_paths.machineFolder);
  m_files.createFolder(m_paths.machineFolder, kFolderMode);
  m_machinePreferences.write(machine, kFolderMode);
}

void CarryOver::takeOver(const QVariantMap &carried) {
  m_settings.change([&](QVariantMap &settings) { settings.insert(carried); });
  if (m_files.presence(m_paths.productsDetailsDictFilePath) == Presence::Absent) {
    createProductList(carried);
  }
}

void CarryOver::createProductList(const QVariantMap &carried) {
  QVariantMap record{{u"Is Selected"_s, u"No"_s},
                     {u"Detection Type"_s, u"1"_s},
                     {u"Password"_s, carried.value(u"Password"_s)},
                     {u"IP Address"_s, carried.value(u"IPAddress"_s)}};
  const QString hardwareAddress = hardwareAddressIn(carried.value(u"MACAdress"_s).toByteArray());
  if (!hardwareAddress.isEmpty()) {
    record.insert(u"Mac Address"_s, hardwareAddress);
  }
  m_productList.write({{u"Selected Devices"_s, QVariantList{record}}}, kPrivateFileMode);
}

} // namespace sonorel
