// What a successful connection is followed by: the product is asked who it is, the drop agent and the product are
// told, and the favourites are made fit. Controller's thread; blocks on the share; passes failures on.
#pragma once

#include "core/ClientAlive.h"
#include "core/ClientPaths.h"
#include "core/DeviceName.h"
#include "core/InterfaceController.h"
#include "core/PropertyFile.h"
#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "link/ClientMessages.h"
#include "products/ProductList.h"

#include <functional>

namespace sonorel {

class AfterConnection {
public:
  // What other roles do at their place.
  struct Hooks {
    std::function<void()> updateDeviceName;
    std::function<void()> cleanShare; // temporary files that nobody will finish
    std::function<QString()> checkAU5SoftwareVersion;
    std::function<void()> validateOrvFile;
  };
  struct Files {
    FileSystem &files;
    PropertyLists &lists;
    Desktop &desktop;
    const ClientPaths &paths;
  };

  // All references must outlive the object.
  AfterConnection(const Files &files, Settings &settings, Session &session, InterfaceController &interface,
                  ClientMessages &messages, DeviceName &deviceName, ProductList &products, ClientAlive &clientAlive,
                  Hooks hooks);

  // Connect button: address and password into the client property file and the machine-wide preferences, then the
  // steps of every connection.
  void byUser(const QString &address);
  // The connection at the start.
  void automatic();

private:
  void storeCredentials(const QString &address);
  void beginSession();
  void readDeviceName();
  void tellDropAgent();
  void checkFavourites();

  PropertyLists &m_lists;
  Settings &m_settings;
  Session &m_session;
  InterfaceController &m_interface;
  ClientMessages &m_messages;
  DeviceName &m_deviceName;
  ProductList &m_products;
  ClientAlive &m_clientAlive;
  Hooks m_hooks;
  PropertyFile m_machinePreferences;
  PropertyFile m_agentFile;
};

} // namespace sonorel
