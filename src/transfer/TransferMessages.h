// What a person reads of a transfer: its lines in the message log, in the chosen language, and its progress. The
// texts are read anew for each message, so that a change of the language holds from the next line on. Worker thread;
// waits for nobody. Read next: MessageLog.h.
#pragma once

#include "core/state/MessageLog.h"
#include "core/state/Strings.h"
#include "core/state/TransferBoard.h"
#include "core/state/View.h"

#include <QString>

namespace sonorel {

class TransferMessages {
public:
  // All references must outlive the object.
  TransferMessages(MessageLog &log, Strings &strings, View &view, TransferBoard &board);

  [[nodiscard]] QString text(const QString &key);
  [[nodiscard]] QString text(const QString &key, const QString &fileName);

  void startNew();                       // the log is another transfer's from here on
  void show(const QString &line);        // appended, shown, then the line end
  void showInFront(const QString &line); // and the window with it
  void showOnTab(const QString &line);   // and the window with the transfer's tab
  void showBehindSeparator(const QString &line);
  // A block of its own: the text, then every item from the current one on.
  void showWithRemainingList(const QString &text);
  // The last line: that the transfer was cancelled or, when it placed something, is complete.
  void showClosingLine(bool placedSomething);

  void reportMissing(const QString &path);
  void reportRadio(const QString &item);
  void reportFailedCopy(const QString &name);

  // A cancelled transfer leaves the progress as it is.
  void setProgress(double percent);

private:
  [[nodiscard]] bool appendRemainingList();

  MessageLog &m_log;
  Strings &m_strings;
  View &m_view;
  TransferBoard &m_board;
};

} // namespace sonorel
