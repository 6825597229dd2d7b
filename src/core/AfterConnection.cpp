#include "core/AfterConnection.h"

#include "core/state/DockImages.h"
#include "core/state/ShareLayout.h"
#include "products/PasswordArchive.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

const auto kDeviceConnected = u"DeviceConnected"_s;

} // namespace

AfterConnection::AfterConnection(const Files &files, Settings &settings, Session &session,
                                 InterfaceController &interface, ClientMessages &messages, DeviceName &deviceName,
                                 ProductList &products, ClientAlive &clientAlive, Hooks hooks)
    : m_lists(files.lists), m_settings(settings), m_session(session), m_interface(interface), m_messages(messages),
      m_deviceName(deviceName), m_products(products), m_clientAlive(clientAlive), m_hooks(std::move(hooks)),
      m_machinePreferences(files.files, files.lists, files.desktop, files.paths.machinePreferences),
      m_agentFile(files.files, files.lists, files.desktop, files.paths.dropperPropertyFilePath) {}

void AfterConnection::byUser(const QString &address) {
  beginSession();
  storeCredentials(address);
  readDeviceName();
  m_interface.setDockIcon(kConnectImage);
  m_messages.send(kClientConnected);
  tellDropAgent();
  m_clientAlive.start();
  checkFavourites();
  m_products.updateProductInfoInProductsLists(address);
}

void AfterConnection::automatic() {
  beginSession();
  m_interface.setDockIcon(kConnectImage);
  readDeviceName();
  tellDropAgent();
  m_messages.send(kClientConnected);
  m_clientAlive.start();
  checkFavourites();
  m_products.updateProductInfoInProductsLists(m_session.IPAddressString());
}

// The password as the user gave it, never as it stands in the mount URL.
void AfterConnection::storeCredentials(const QString &address) {
  const QByteArray password = encrypt(m_lists, m_session.PasswordString());
  m_settings.change([&](QVariantMap &values) {
    values.insert(u"IPAddress"_s, address);
    values.insert(u"Password"_s, password);
  });
  const QVariantMap machine{
      {u"IPAddress"_s, address}, {u"Password"_s, password}, {u"Username"_s, m_settings.text(u"Username"_s)}};
  m_machinePreferences.write(machine, m_machinePreferences.exists() ? std::nullopt : std::optional(kFolderMode));
}

// First of all: whatever fails afterwards, the share is there and takes drops.
void AfterConnection::beginSession() {
  m_session.setConnectedAddress(m_session.IPAddressString());
  m_session.setHardwareAddress({});
}

void AfterConnection::readDeviceName() {
  const QString name = m_deviceName.getDeviceName();
  m_session.setDeviceName(name);
  m_interface.setDeviceName(name);
  if (name != kUnknownName) {
    m_settings.setAndSave(u"ProductName"_s, name);
    m_hooks.updateDeviceName();
  }
}

void AfterConnection::tellDropAgent() {
  if (!m_agentFile.exists()) {
    return;
  }
  QVariantMap values = m_agentFile.read().value_or(QVariantMap());
  if (textAt(values, kDeviceConnected) != m_session.deviceName()) {
    values.insert(kDeviceConnected, m_session.deviceName());
    m_agentFile.write(values);
  }
}

void AfterConnection::checkFavourites() {
  m_hooks.cleanShare();
  m_session.setAU5UTF8Compliant(m_hooks.checkAU5SoftwareVersion());
  m_hooks.validateOrvFile();
}

} // namespace sonorel
