// Turns the drop agent's notifications into queued work: one drag becomes one Drop, which the board takes whole or
// refuses whole. Reads no tags, so that a drop of many thousand paths is queued at once; the worker names them.
// Controller's thread; looks at the dropped files, never at the share beyond asking whether it is there. Read next:
// DropBuilding.h for what a drag holds.
#pragma once

#include "core/state/MessageLog.h"
#include "core/state/Session.h"
#include "core/state/Strings.h"
#include "core/state/TransferBoard.h"
#include "core/state/View.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Notifications.h"

#include <chrono>
#include <functional>
#include <vector>

namespace sonorel {

class DropIntake {
public:
  // What the intake asks of other roles.
  struct Hooks {
    std::function<bool()> isConnected;
    std::function<void()> startTransfer;
    std::function<void()> killTrackChuteAndLaunch;
    std::function<void(quint32)> dropsFinished; // for a drop that reached no transfer
    std::function<void(std::chrono::milliseconds)> pause = [](std::chrono::milliseconds) {};
    // The picture library's image files behind the paths, one for each; asked once for a drop.
    std::function<QStringList(const QStringList &)> changePhotosPaths = [](const QStringList &paths) {
      return paths;
    };
    // False for a path that means something inside the client and that nobody else may name.
    std::function<bool(const QString &)> isOutside = [](const QString &) { return true; };
    // Before the board takes a drop.
    std::function<void()> dropComes = [] {};
  };

  // All references must outlive the object.
  DropIntake(FileSystem &files, TransferBoard &board, MessageLog &log, Strings &strings, const Session &session,
             View &view, Desktop &desktop, Hooks hooks);

  // Drops that come before wait, and are handled now in their order.
  void setReady();

  void handleiTunesDragAndDrop(const Notification &notification);
  void handleiPhotoDragAndDrop(const Notification &notification);
  void handleSafariDragAndDrop(const Notification &notification);
  // Files opened with the application: the agent is restarted, after a second; the paths are not queued here.
  void openFiles();

private:
  enum class OnException { Alert, LogOnly };
  enum class Refusal { Told, Silent }; // of a drop while the running transfer is being cancelled

  void whenReady(std::function<void()> handling);
  void guarded(const QString &operation, OnException onException, const std::function<void()> &handling);
  void open(); // what every drag begins with
  // Shown, and the drop is over, when not.
  [[nodiscard]] bool isConnectedOrShown();
  void handleMusic(const Notification &notification);
  [[nodiscard]] QStringList imagesOf(const QStringList &dropped) const;
  void handOver(const Drop &drop, Refusal refusal = Refusal::Told);
  void startTransfer();

  FileSystem &m_files;
  TransferBoard &m_board;
  MessageLog &m_log;
  Strings &m_strings;
  const Session &m_session;
  View &m_view;
  Desktop &m_desktop;
  Hooks m_hooks;
  bool m_ready = false;
  std::vector<std::function<void()>> m_waiting;
};

} // namespace sonorel
