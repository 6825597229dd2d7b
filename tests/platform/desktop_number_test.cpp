#include "platform/linux/DesktopNumber.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstring>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

using namespace sonorel;

namespace {

// An X server of the test's own on a display number that is free.
class XServer {
public:
  XServer() {
    std::array<int, 2> told{};
    if (::pipe(told.data()) != 0) {
      return;
    }
    m_process = ::fork();
    if (m_process == 0) {
      ::close(told[0]);
      const QByteArray descriptor = QByteArray::number(told[1]);
      ::execlp("Xvfb", "Xvfb", "-displayfd", descriptor.constData(), "-screen", "0", "64x64x24", "-noreset",
               "-nolisten", "tcp", static_cast<char *>(nullptr));
      ::_exit(127);
    }
    ::close(told[1]);
    char c = 0;
    for (m_display = ":"; ::read(told[0], &c, 1) == 1 && c != '\n';) {
      m_display += c;
    }
    ::close(told[0]);
    qputenv("DISPLAY", m_display);
  }
  XServer(const XServer &) = delete;
  XServer &operator=(const XServer &) = delete;
  ~XServer() {
    qunsetenv("DISPLAY");
    end();
  }

  void signal(int number) const { ::kill(m_process, number); }
  void end() {
    if (m_process > 0) {
      ::kill(m_process, SIGKILL);
      ::waitpid(m_process, nullptr, 0);
      m_process = 0;
    }
  }
  // As a window manager does. Empty bytes take the property away.
  void tell(const char *type, int format, const QByteArray &bytes) const {
    xcb_connection_t *const connection = xcb_connect(m_display.constData(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(connection), 0);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_atom_t property = atom(connection, "_NET_CURRENT_DESKTOP");
    if (bytes.isEmpty()) {
      xcb_delete_property(connection, root, property);
    } else {
      xcb_change_property(connection, XCB_PROP_MODE_REPLACE, root, property, atom(connection, type),
                          static_cast<uint8_t>(format), static_cast<uint32_t>(bytes.size() * 8 / format),
                          bytes.constData());
    }
    static_cast<void>(atom(connection, "DONE")); // its answer comes after the change
    xcb_disconnect(connection);
  }
  void show(quint32 desktop) const {
    tell("CARDINAL", 32, QByteArray(reinterpret_cast<const char *>(&desktop), sizeof desktop));
  }

private:
  static xcb_atom_t atom(xcb_connection_t *connection, const char *name) {
    xcb_intern_atom_reply_t *const reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t found = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
    std::free(reply);
    return found;
  }

  pid_t m_process = 0;
  QByteArray m_display;
};

} // namespace

TEST(DesktopNumber, IsUnknownWithoutAnXServer) {
  DesktopNumber number;
  qunsetenv("DISPLAY");
  EXPECT_EQ(number.current(), -1);
  qputenv("DISPLAY", ":64999");
  EXPECT_EQ(number.current(), -1);
  qunsetenv("DISPLAY");
}

TEST(DesktopNumber, FollowsTheWindowManager) {
  const XServer server;
  DesktopNumber number;
  EXPECT_EQ(number.current(), -1) << "no window manager";
  server.show(0);
  EXPECT_EQ(number.current(), 0);
  server.show(3);
  EXPECT_EQ(number.current(), 3);
  server.show(0xFFFFFFFF);
  EXPECT_EQ(number.current(), 4294967295);
  server.tell("CARDINAL", 32, {});
  EXPECT_EQ(number.current(), -1);
}

TEST(DesktopNumber, IsUnknownWhenTheValueIsNoNumber) {
  const XServer server;
  DesktopNumber number;
  server.tell("CARDINAL", 8, "2");
  EXPECT_EQ(number.current(), -1);
  server.tell("STRING", 32, QByteArray(4, '\1'));
  EXPECT_EQ(number.current(), -1);
}

TEST(DesktopNumber, StaysAsItWasWhileTheServerIsBusy) {
  const XServer server;
  DesktopNumber number;
  server.show(2);
  EXPECT_EQ(number.current(), 2);
  server.signal(SIGSTOP);
  EXPECT_EQ(number.current(), 2);
  server.signal(SIGCONT);
  server.show(1);
  EXPECT_EQ(number.current(), 1);
}

TEST(DesktopNumber, IsUnknownWhenTheServerHasGoneAndFoundAgainWithTheNext) {
  DesktopNumber number;
  {
    XServer server;
    server.show(2);
    EXPECT_EQ(number.current(), 2);
    server.end();
    EXPECT_EQ(number.current(), -1);
  }
  const XServer next;
  next.show(5);
  EXPECT_EQ(number.current(), 5);
}
