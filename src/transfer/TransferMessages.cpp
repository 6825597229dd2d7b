#include "transfer/TransferMessages.h"

#include "core/state/PathNames.h"
#include "core/state/ShareLayout.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

TransferMessages::TransferMessages(MessageLog &log, Strings &strings, View &view, TransferBoard &board)
    : m_log(log), m_strings(strings), m_view(view), m_board(board) {}

QString TransferMessages::text(const QString &key) {
  m_strings.reload();
  return m_strings.text(key);
}

QString TransferMessages::text(const QString &key, const QString &fileName) {
  return withFileName(text(key), fileName);
}

void TransferMessages::startNew() {
  m_log.startNew();
}

void TransferMessages::show(const QString &line) {
  m_log.showLine(line);
}

void TransferMessages::showInFront(const QString &line) {
  show(line);
  m_view.windowFrontCentre();
}

void TransferMessages::showOnTab(const QString &line) {
  show(line);
  m_view.selectTab(Tab::Transfer);
  m_view.windowFrontCentre();
}

void TransferMessages::showBehindSeparator(const QString &line) {
  m_log.appendSeparator();
  show(line);
}

void TransferMessages::showWithRemainingList(const QString &text) {
  m_log.appendSeparator();
  m_log.append(text + u'\n');
  if (appendRemainingList()) {
    m_log.show();
  }
}

bool TransferMessages::appendRemainingList() {
  const QList<QueueEntry> remaining = m_board.entriesFrom(m_board.fileIndex);
  QString lines;
  for (const QueueEntry &entry : remaining) {
    lines += shownName(entry) + u'\n';
  }
  m_log.append(lines);
  return !remaining.isEmpty();
}

void TransferMessages::showClosingLine(bool placedSomething) {
  m_strings.reload();
  if (m_board.isCancel) {
    m_log.showOnly(m_log.viewText() + m_strings.text(u"Message3"_s));
    (void)m_board.takeVideoPresent();
  } else if (placedSomething) {
    QString text = m_log.viewText();
    if (!text.isEmpty()) {
      text += u'\n';
    }
    if (m_board.takeVideoPresent()) {
      text += m_strings.text(u"Message16"_s) + u'\n';
    }
    m_log.showOnly(text + m_strings.text(u"Message6"_s));
  }
}

void TransferMessages::reportMissing(const QString &path) {
  showOnTab(text(u"Message13"_s, lastPathComponent(path)));
}

void TransferMessages::reportRadio(const QString &item) {
  showOnTab(text(u"Message14"_s, item.mid(kRadioPrefix.size())));
}

void TransferMessages::reportFailedCopy(const QString &name) {
  showBehindSeparator(text(u"Message10"_s, name));
}

void TransferMessages::setProgress(double percent) {
  if (!m_board.isCancel) {
    m_view.setProgressBar(percent);
  }
}

} // namespace sonorel
