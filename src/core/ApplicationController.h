// The one long-lived owner: it builds one object per role and joins them. What people and scripts ask for comes in
// here, from any thread; each operation returns at once and runs on the controller's thread, in the order asked.
// Construction does nothing but build; start begins the work. Read next: Roles.h, StartUp.h, ConnectFlow.h.
#pragma once

#include "core/Platform.h"
#include "core/state/PlaylistInfo.h"
#include "core/state/View.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <stop_token>

namespace sonorel {

class Connection;
struct Roles;
struct ShareRoles;

class ApplicationController {
public:
  // Everything in the platform must outlive the controller. When it is destroyed the loop must not run any more and
  // the worker must have been joined: both refer to its roles.
  ApplicationController(const Platform &platform, const ControllerValues &values);
  ~ApplicationController();
  ApplicationController(const ApplicationController &) = delete;
  ApplicationController &operator=(const ApplicationController &) = delete;

  // `init`, then `awakeFromNib` with the automatic connection.
  void start();

  // Any thread: ends what the controller waits for now, as a request to end does, and asks for nothing else. For an
  // end that must not wait for a product.
  void interrupt();
  // Of the waits that begin now; for waits on the controller's thread that happen outside of the logic.
  [[nodiscard]] std::stop_token interruption() const;

  // --- what is asked from outside ---
  void reopen(bool hasVisibleWindows); // a click on the dock icon
  void windowWillClose();              // hides it
  void openFiles(const QStringList &paths);
  void connect(); // what is pressed before another connect is done is the same one
  void disconnect();
  void cancel();
  // The user's wish: `applicationShouldTerminate:`, which may refuse.
  void quit();
  // Any thread: it was asked to quit and has not refused; what is asked for now may never be done.
  [[nodiscard]] bool isQuitting() const;
  // The system's (a signal, the end of the session): the first is treated as the user's, a further one cancels the
  // transfer, ends the running copy, lets a favourites rewrite finish, disconnects and quits.
  void endRequested();
  void help();
  void products();    // the connection tab
  void preferences(); // the preferences tab
  void answerAlert(quint32 serial, int button);
  void enterPassword(const QString &password);
  void cancelPassword();
  void addManualProduct(const QString &address, const QString &hostName);
  // Rows with the text that was seen; a row that has changed meanwhile is left alone.
  void addDetectedProduct(int row, const QString &text);
  void addAddedProduct(int row, const QString &text);
  void selectProduct(int row, const QString &text);
  void removeProduct(int row, const QString &text);
  void removeAddedProduct(int row, const QString &text);
  void removeAllProducts();
  void selectLanguage(int index);

  // --- class getters; each forwards to the role that owns the value; controller's thread ---
  // Null until `awakeFromNib` has made it.
  [[nodiscard]] Connection *getConnectionObject() const;
  [[nodiscard]] QVariantMap getAppProperty() const;
  [[nodiscard]] QString getResourcePath() const;
  [[nodiscard]] QList<PlaylistInfo> getPlaylistArray(bool photos) const;
  [[nodiscard]] QString getInvalidChars() const;
  [[nodiscard]] QString getCurrentLanguage() const;
  // Of the track being transferred; empty when the tag is missing.
  [[nodiscard]] QString getTitle() const;
  [[nodiscard]] QString getAuthor() const;
  [[nodiscard]] QString getAlbum() const;

private:
  void showTab(Tab tab);
  // On the controller's thread; dropped before `init` has made the roles and after the end.
  void post(const QString &name, std::function<void(ShareRoles &)> operation);

  std::unique_ptr<Roles> m_roles;
};

} // namespace sonorel
