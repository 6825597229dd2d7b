// What a person or a script sees. The logic publishes a copy of its state and opens questions; nothing is ever
// waited for: answers come back as operations. All methods return at once and may be called from any thread.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace sonorel {

struct UserInterfaceState {
  QString deviceName;
  QString dockImage; // "Connect", "Disconnect", "NewAppIcon", "AppIcon"
  QString messageLog;
  double progress = 0;    // 0 to 100
  int currentTab = 0;     // 0 about, 1 transfer, 2 connection, 3 preferences
  bool connected = false; // the last answer, never a fresh test
  bool busy = false;      // connecting
  bool transferring = false;
  bool connectionIndicator = false;
  bool cancelEnabled = false;
  bool cancelHighlighted = false;
  bool languageEnabled = true;
  bool passwordWanted = false;
  bool windowVisible = false;
  QString languageFile;
  QMap<QString, QString> labels; // strings-table key to text, placeholders replaced
  QStringList detectedProducts;
  QStringList addedProducts;
  QStringList selectedProducts;
  QStringList dockMenuProducts; // the products submenu: an entry for each selected row
  int activeProduct = -1;       // the selected row that gets the check mark while connected; -1: none
  QString checkMark;            // `checkMarkString`, that glyph
};

struct Question {
  quint32 serial = 0; // 1 and up; 0 before it is open
  QString message;
  QString informativeText;
  QStringList buttons;     // the first is the default
  QString helpAnchor = {}; // the place in the help that explains it; empty: none
};

class UserInterface {
public:
  virtual ~UserInterface() = default;
  virtual void publish(const UserInterfaceState &state) = 0;
  virtual void open(const Question &question) = 0;
  virtual void close(quint32 serial) = 0;
  // Sent after every state of that transfer has been published.
  virtual void transferComplete() = 0;
  virtual void raise() = 0;          // activate and bring the main window to the front
  virtual void attention() = 0;      // informational request
  virtual void quit(int status) = 0; // the program ends
};

} // namespace sonorel
