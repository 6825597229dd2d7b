// The number of the desktop that is shown, as the window manager of an X11 session tells it. One connection, made at
// the first question and kept; without an X server there is nothing to ask. One thread.
#pragma once

#include <QtGlobal>

#include <memory>

struct xcb_connection_t;

namespace sonorel {

class DesktopNumber {
public:
  static constexpr qint64 kUnknown = -1;

  // Waits for the server, no longer than a moment: one that is busy leaves the number as it was.
  [[nodiscard]] qint64 current();

private:
  struct Close {
    void operator()(xcb_connection_t *connection) const;
  };
  struct Root {
    quint32 window = 0;
    quint32 property = 0; // the atom; 0: not asked yet
  };

  bool connect();
  [[nodiscard]] qint64 ask();

  std::unique_ptr<xcb_connection_t, Close> m_connection;
  Root m_root;
  qint64 m_last = kUnknown;
};

} // namespace sonorel
