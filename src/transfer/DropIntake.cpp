#include "transfer/DropIntake.h"

#include "core/state/DockImages.h"
#include "core/state/LogException.h"
#include "core/state/PathNames.h"
#include "platform/DropNotifications.h"
#include "transfer/DropBuilding.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kPauseBeforeAgent{1000};

} // namespace

DropIntake::DropIntake(FileSystem &files, TransferBoard &board, MessageLog &log, Strings &strings,
                       const Session &session, View &view, Desktop &desktop, Hooks hooks)
    : m_files(files), m_board(board), m_log(log), m_strings(strings), m_session(session), m_view(view),
      m_desktop(desktop), m_hooks(std::move(hooks)) {}

void DropIntake::setReady() {
  m_ready = true;
  for (const auto &handling : std::exchange(m_waiting, {})) {
    handling();
  }
}

void DropIntake::whenReady(std::function<void()> handling) {
  if (m_ready) {
    handling();
  } else {
    m_waiting.push_back(std::move(handling));
  }
}

void DropIntake::handleiTunesDragAndDrop(const Notification &notification) {
  whenReady([this, notification] {
    guarded(u"handleiTunesDragAndDrop"_s, OnException::Alert, [&] { handleMusic(notification); });
  });
}

void DropIntake::handleiPhotoDragAndDrop(const Notification &notification) {
  whenReady([this, notification] {
    guarded(u"handleiPhotoDragAndDrop"_s, OnException::Alert, [&] {
      if (isConnectedOrShown()) {
        handOver(dropOfAlbums(notification.userInfo.value(kPhotoDataKey.toString()).toList(),
                              [this](const QStringList &dropped) { return imagesOf(dropped); }));
      }
    });
  });
}

void DropIntake::handleSafariDragAndDrop(const Notification &notification) {
  whenReady([this, notification] {
    guarded(u"handleSafariDragAndDrop"_s, OnException::LogOnly, [&] {
      if (isConnectedOrShown()) {
        handOver(dropOfBookmarks(notification.userInfo.value(kTitlesKey.toString()).toStringList(),
                                 notification.userInfo.value(kUrlsKey.toString()).toStringList()),
                 Refusal::Silent);
      }
    });
  });
}

void DropIntake::openFiles() {
  open();
  m_view.windowFrontCentre();
  m_hooks.pause(kPauseBeforeAgent);
  m_hooks.killTrackChuteAndLaunch();
}

void DropIntake::guarded(const QString &operation, OnException onException, const std::function<void()> &handling) {
  try {
    open();
    handling();
  } catch (const std::exception &exception) {
    logException(m_desktop, operation, exception);
    if (onException == OnException::Alert) {
      m_view.alert(m_strings.text(u"ExceptionText"_s), m_strings.text(u"ErrorDrag"_s));
    }
    m_hooks.dropsFinished(1);
  }
}

void DropIntake::open() {
  m_view.attention();
  m_strings.reload();
  if (m_board.transferComplete()) {
    m_log.clear();
  }
}

bool DropIntake::isConnectedOrShown() {
  if (m_hooks.isConnected()) {
    return true;
  }
  m_view.selectTab(Tab::Connection);
  m_view.setDockIcon(kDisconnectImage);
  m_view.setProgressBar(0);
  m_view.windowFrontCentre();
  m_hooks.dropsFinished(1);
  return false;
}

void DropIntake::handleMusic(const Notification &notification) {
  const QStringList paths = notification.userInfo.value(kDraggedFilesKey.toString()).toStringList();
  const QString name = notification.object;
  if (!isConnectedOrShown()) {
    return;
  }
  if (isNotTransferable(name, paths)) {
    m_log.showOnly(m_strings.text(u"Message12"_s));
    m_view.windowFrontCentre();
    handOver({});
    return;
  }
  handOver(dropOf(name, paths, m_files, m_session.deviceName()));
}

// The library's own list is no more to be trusted than a drag: nobody has looked at its paths yet.
QStringList DropIntake::imagesOf(const QStringList &dropped) const {
  QStringList images = m_hooks.changePhotosPaths(dropped);
  for (qsizetype i = 0; i < dropped.size(); ++i) {
    if (!isPlainPath(images.at(i)) || !m_hooks.isOutside(images.at(i))) {
      images[i] = dropped[i];
    }
  }
  return images;
}

// Without a thread there is no transfer, and the next drop must be able to start one.
void DropIntake::startTransfer() {
  try {
    m_hooks.startTransfer();
  } catch (const std::exception &) {
    (void)m_board.finish();
    m_view.transferStateChanged();
    throw;
  }
}

void DropIntake::handOver(const Drop &drop, Refusal refusal) {
  m_hooks.dropComes();
  switch (m_board.offer(drop)) {
  case DropAnswer::Started:
    m_view.setProgressBar(0);
    m_view.transferStateChanged();
    startTransfer();
    break;
  case DropAnswer::Refused:
    if (refusal == Refusal::Told) {
      m_log.showOnly(m_strings.text(u"Message11"_s));
      m_view.windowFrontCentre();
    }
    m_hooks.dropsFinished(1);
    break;
  case DropAnswer::Appended:
  case DropAnswer::Waiting:
    break;
  }
}

} // namespace sonorel
