#include "app/Composition.h"

#include "platform/ApplicationPaths.h"
#include "platform/Failure.h"
#include "transfer/TrackArtwork.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

HostPath hostPathOf(const Roots &roots) {
  return [map = PathMap(roots)](const QString &path) { return map.host(path); };
}

} // namespace

Composition::Composition(const CompositionOptions &options, const QDBusConnection &bus, std::function<void(int)> quit)
    : m_quit(std::move(quit)), m_desktop({options.configHome, options.client, hostPathOf(options.roots)}),
      m_files(options.roots, options.temporaryMark, [this](const QString &line) { m_desktop.log(line); }),
      m_filesInFront(options.filesInFront ? options.filesInFront(m_files) : nullptr),
      m_usedFiles(m_filesInFront ? *m_filesInFront : m_files),
      m_processes(options.roots,
                  {.embeddedProduct = options.embeddedProduct,
                   .artworkTemporaryName = artworkTemporaryName(options.temporaryMark)},
                  [this](const QString &line) { m_desktop.log(line); }),
      m_clock(options.pauseScale), m_loop(failureLog(u"an operation"_s)), m_worker(failureLog(u"a transfer"_s)),
      m_applications(bus, options.roots.scripts + u'/' + kExporterScript.toString()),
      m_metadata(hostPathOf(options.roots)),
      m_scripts(
          m_usedFiles, m_processes, m_clock, [this] { return m_controller.interruption(); },
          kBundleResourcesPath.toString() + u'/' + kConverterScript.toString()),
      m_serviceBrowser(m_loop, m_desktop, {}), m_power(QDBusConnection::systemBus(), m_loop, m_desktop),
      m_door(bus, actions(), m_dropCounter), m_userInterface(m_door, m_quit),
      m_notifications(bus, m_loop, m_desktop, notificationHooks()), m_controller(platform(), values(options)) {}

Composition::~Composition() {
  m_loop.stop();
  m_controller.interrupt(); // whatever it still waits for, nothing follows
  if (m_thread.joinable()) {
    m_thread.join();
  }
  // The worker's body refers to the controller, which ends before it.
  m_worker.requestStop();
  m_worker.join();
}

void Composition::start() {
  m_loop.post([this] {
    m_desktop.renewLoginItems();
    m_controller.start();
  });
  m_thread = std::thread([this] { m_loop.run(); });
}

void Composition::requestQuit() {
  m_controller.endRequested();
}

Platform Composition::platform() {
  return {m_usedFiles,     m_processes,     m_loop,         m_clock,        m_worker,  m_identifiers,
          m_propertyLists, m_notifications, m_applications, m_metadata,     m_scripts, m_serviceBrowser,
          m_datagrams,     m_power,         m_desktop,      m_userInterface};
}

ControllerValues Composition::values(const CompositionOptions &options) {
  ControllerValues values;
  values.homePath = options.roots.home;
  values.backupFolder = options.roots.data + u"/Backup"_s;
  values.temporaryMark = options.temporaryMark;
  values.isOutside = [this](const QString &path) { return m_files.map().fromOutside(path) == path; };
  values.dropsFinished = [this](quint32 drops) { dropsFinished(drops); };
  values.initialised = [this](bool initialised) {
    QMetaObject::invokeMethod(
        &m_door, [this, initialised] { openDoor(initialised); }, Qt::QueuedConnection);
  };
  return values;
}

ClientActions Composition::actions() {
  ClientActions actions;
  ApplicationController &controller = m_controller;
  actions.isQuitting = [&controller] { return controller.isQuitting(); };
  actions.reopen = [&controller] { controller.reopen(false); };
  actions.openFiles = [&controller](const QStringList &paths) { controller.openFiles(paths); };
  actions.connect = [&controller] { controller.connect(); };
  actions.disconnect = [&controller] { controller.disconnect(); };
  actions.cancel = [&controller] { controller.cancel(); };
  actions.quit = [&controller] { controller.quit(); };
  actions.help = [&controller] { controller.help(); };
  actions.products = [&controller] { controller.products(); };
  actions.preferences = [&controller] { controller.preferences(); };
  actions.answerAlert = [&controller](quint32 serial, int button) { controller.answerAlert(serial, button); };
  actions.enterPassword = [&controller](const QString &password) { controller.enterPassword(password); };
  actions.cancelPassword = [&controller] { controller.cancelPassword(); };
  actions.addManualProduct = [&controller](const QString &address, const QString &hostName) {
    controller.addManualProduct(address, hostName);
  };
  actions.addDetectedProduct = [&controller](int row, const QString &text) {
    controller.addDetectedProduct(row, text);
  };
  actions.addAddedProduct = [&controller](int row, const QString &text) { controller.addAddedProduct(row, text); };
  actions.selectProduct = [&controller](int row, const QString &text) { controller.selectProduct(row, text); };
  actions.removeProduct = [&controller](int row, const QString &text) { controller.removeProduct(row, text); };
  actions.removeAddedProduct = [&controller](int row, const QString &text) {
    controller.removeAddedProduct(row, text);
  };
  actions.removeAllProducts = [&controller] { controller.removeAllProducts(); };
  actions.selectLanguage = [&controller](int index) { controller.selectLanguage(index); };
  return actions;
}

DBusNotifications::Hooks Composition::notificationHooks() {
  return {[this] {
            m_dropCounter.received();
            m_door.announcePending();
          },
          [this] { dropsFinished(1); },
          [this](const QString &path, QString *reason) { return m_files.map().fromOutside(path, reason); }};
}

std::function<void(const std::exception &)> Composition::failureLog(const QString &where) {
  return
      [this, where](const std::exception &e) { m_desktop.log(u"Exception in "_s + where + u": "_s + reasonOf(e)); };
}

void Composition::dropsFinished(quint32 drops) {
  QMetaObject::invokeMethod(
      &m_door,
      [this, drops] {
        m_dropCounter.finished(drops);
        m_door.announcePending();
      },
      Qt::QueuedConnection);
}

void Composition::openDoor(bool initialised) {
  if (!initialised) {
    // Nobody can answer the alert before the door is open, and it will not open.
    const DoorAlert alert = m_door.alert();
    m_desktop.log(u"the client could not be started: "_s + alert.message + u' ' + alert.informativeText);
    m_quit(kNotStarted);
  } else if (!m_door.open()) {
    m_desktop.log(u"the name com.orv.Sonorel is taken on this session bus"_s);
    m_quit(kNotStarted);
  }
}

} // namespace sonorel
