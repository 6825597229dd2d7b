#include "core/ApplicationController.h"

#include "core/Roles.h"
#include "core/ShippedDefaults.h"
#include "core/state/LogException.h"
#include "platform/DropNotifications.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ApplicationController::ApplicationController(const Platform &platform, const ControllerValues &values)
    : m_roles(std::make_unique<Roles>(platform, values)) {}

ApplicationController::~ApplicationController() = default;

void ApplicationController::start() {
  Roles &roles = *m_roles;
  ShippedDefaults(roles.platform.files, roles.platform.propertyLists, roles.platform.desktop, roles.paths).install();
  const bool initialised = roles.startUp.init();
  roles.interface.showConnecting(initialised); // before the door opens: what comes now waits
  roles.values.initialised(initialised);
  if (!initialised) {
    return;
  }
  roles.startUp.awakeFromNib();
  ++roles.connectsDone;
  if (roles.interface.state().busy) {
    // It ended early: the indicator stays, but people may act.
    roles.interface.showConnecting(false);
    roles.interface.showConnectionIndicator(true);
  }
  roles.share->intake.setReady();
}

void ApplicationController::interrupt() {
  m_roles->interruption.interrupt();
}

std::stop_token ApplicationController::interruption() const {
  return m_roles->interruption.token();
}

void ApplicationController::post(const QString &name, std::function<void(ShareRoles &)> operation) {
  m_roles->platform.loop.post([this, name, operation = std::move(operation)] {
    if (!m_roles->share || m_roles->quitRequests.isTerminated()) {
      return; // the start-up has failed, or the program is about to end
    }
    try {
      m_roles->interface.flush(); // it looks at the window as the operations before it have left it
      operation(*m_roles->share);
    } catch (const std::exception &e) {
      logException(m_roles->platform.desktop, name, e);
    }
  });
}

void ApplicationController::reopen(bool hasVisibleWindows) {
  post(u"reopen"_s,
       [hasVisibleWindows](ShareRoles &share) { share.events.applicationShouldHandleReopen(hasVisibleWindows); });
}

void ApplicationController::windowWillClose() {
  post(u"windowWillClose"_s, [](ShareRoles &share) { share.events.windowWillClose(); });
}

void ApplicationController::openFiles(const QStringList &paths) {
  post(u"openFiles"_s, [this, paths](ShareRoles &share) {
    share.intake.openFiles();
    m_roles->platform.notifications.post(kMusicDrag.toString(),
                                         {kFinderName.toString(), {{kDraggedFilesKey.toString(), paths}}});
  });
}

void ApplicationController::connect() {
  post(u"connect"_s, [this, doneBefore = m_roles->connectsDone.load()](ShareRoles &share) {
    if (m_roles->connectsDone == doneBefore) {
      share.connect();
    }
  });
}

void ApplicationController::disconnect() {
  post(u"disconnect"_s, [](ShareRoles &share) { share.connectFlow.onDisconnect(); });
}

void ApplicationController::cancel() {
  post(u"cancel"_s, [](ShareRoles &share) { share.connectFlow.onCancel(); });
}

void ApplicationController::quit() {
  m_roles->quitRequests.byUser();
}

void ApplicationController::endRequested() {
  m_roles->quitRequests.bySystem();
}

bool ApplicationController::isQuitting() const {
  return m_roles->quitRequests.isAsked();
}

void ApplicationController::help() {
  post(u"help"_s, [](ShareRoles &share) { share.texts.onHelp(); });
}

void ApplicationController::products() {
  showTab(Tab::Connection);
}

void ApplicationController::preferences() {
  showTab(Tab::Preferences);
}

// The menu that asks for it is there also while the window is hidden.
void ApplicationController::showTab(Tab tab) {
  post(u"showTab"_s, [this, tab](ShareRoles &) {
    m_roles->interface.selectTab(tab);
    m_roles->interface.windowFrontCentre();
  });
}

void ApplicationController::answerAlert(quint32 serial, int button) {
  m_roles->platform.loop.post([this, serial, button] { // also while the start has failed
    try {
      m_roles->interface.answerAlert(serial, button);
    } catch (const std::exception &e) {
      logException(m_roles->platform.desktop, u"answerAlert"_s, e);
    }
  });
}

void ApplicationController::enterPassword(const QString &password) {
  post(u"enterPassword"_s, [password](ShareRoles &share) { share.selection.OkEnterPasswordPanel(password); });
}

void ApplicationController::cancelPassword() {
  post(u"cancelPassword"_s, [](ShareRoles &share) { share.selection.CancelEnterPasswordPanel(); });
}

void ApplicationController::addManualProduct(const QString &address, const QString &hostName) {
  post(u"addManualProduct"_s,
       [address, hostName](ShareRoles &share) { share.products.AddManualProduct(address, hostName); });
}

void ApplicationController::addDetectedProduct(int row, const QString &text) {
  post(u"addDetectedProduct"_s, [row, text](ShareRoles &share) {
    share.products.AddDetectedProductToProductsList({row, text});
  });
}

void ApplicationController::addAddedProduct(int row, const QString &text) {
  post(u"addAddedProduct"_s, [row, text](ShareRoles &share) {
    share.products.AddManuallyAddedProductToProductsList({row, text});
  });
}

void ApplicationController::selectProduct(int row, const QString &text) {
  post(u"selectProduct"_s, [row, text](ShareRoles &share) { share.selection.onProductSelection({row, text}); });
}

void ApplicationController::removeProduct(int row, const QString &text) {
  post(u"removeProduct"_s, [row, text](ShareRoles &share) {
    share.selection.RemoveAProductProductsList({row, text});
  });
}

void ApplicationController::removeAddedProduct(int row, const QString &text) {
  post(u"removeAddedProduct"_s, [row, text](ShareRoles &share) {
    share.products.RemoveAManualProductFromList({row, text});
  });
}

void ApplicationController::removeAllProducts() {
  post(u"removeAllProducts"_s, [](ShareRoles &share) { share.selection.RemoveWholeProductsFromProductList(); });
}

void ApplicationController::selectLanguage(int index) {
  post(u"selectLanguage"_s, [index](ShareRoles &share) { share.texts.langSelect(index); });
}

Connection *ApplicationController::getConnectionObject() const {
  return m_roles->share ? m_roles->share->connectFlow.checkConnection() : nullptr;
}

QVariantMap ApplicationController::getAppProperty() const {
  return m_roles->settings.all();
}

QString ApplicationController::getResourcePath() const {
  return m_roles->paths.resourceFilePath;
}

QList<PlaylistInfo> ApplicationController::getPlaylistArray(bool photos) const {
  return m_roles->board.records(photos);
}

QString ApplicationController::getInvalidChars() const {
  return kInvalidChars.toString();
}

QString ApplicationController::getCurrentLanguage() const {
  return m_roles->strings.languageFile();
}

QString ApplicationController::getTitle() const {
  return m_roles->board.currentTrack().title;
}

QString ApplicationController::getAuthor() const {
  return m_roles->board.currentTrack().authors;
}

QString ApplicationController::getAlbum() const {
  return m_roles->board.currentTrack().album;
}

} // namespace sonorel
