// The agent's side of the session bus: one notification out, one answer back. Main thread; blocks for the answers.
#pragma once

#include "platform/Notifications.h"

#include <QString>
#include <QStringList>
#include <QVariantList>

namespace sonorel::trackchute {

class Poster {
public:
  // Throws Failure when there is no session bus or no client on it.
  Poster();

  // The client's `DeviceName`, `Busy`, `Connected` and the number of its `SelectedProducts`. Each throws Failure when
  // it does not answer.
  [[nodiscard]] QString deviceName() const;
  [[nodiscard]] bool isBusy() const;
  [[nodiscard]] bool isConnected() const;
  [[nodiscard]] qsizetype selectedProducts() const;
  // Each posts one notification and returns when the client has received it. Throws Failure when it is too large for
  // one notification, when the client does not answer, or when it is quitting and will not carry the drop.
  void postDrag(const QString &object, const QStringList &draggedFiles);
  void postAlbums(const QVariantList &photoData); // of "albumName" and "draggedFiles"
  void postBookmarks(const QStringList &titles, const QStringList &urls);

private:
  static void post(const QString &name, const Notification &notification);
};

} // namespace sonorel::trackchute
