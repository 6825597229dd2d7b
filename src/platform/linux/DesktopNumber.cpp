#include "platform/linux/DesktopNumber.h"

#include <QByteArrayView>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <poll.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kPatience{500};
constexpr QByteArrayView kProperty = "_NET_CURRENT_DESKTOP";

struct Free {
  void operator()(void *reply) const { std::free(reply); }
};
template <typename Reply> using Answer = std::unique_ptr<Reply, Free>;

// nullopt: the server has not answered in time. Null: it has answered with an error, or has gone.
template <typename Reply> std::optional<Answer<Reply>> waitFor(xcb_connection_t *connection, unsigned request) {
  xcb_flush(connection);
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (;;) {
    void *reply = nullptr;
    xcb_generic_error_t *error = nullptr;
    if (xcb_poll_for_reply(connection, request, &reply, &error) != 0) {
      std::free(error);
      return Answer<Reply>(static_cast<Reply *>(reply));
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      xcb_discard_reply(connection, request);
      return std::nullopt;
    }
    pollfd socket{xcb_get_file_descriptor(connection), POLLIN, 0};
    ::poll(&socket, 1, static_cast<int>(left.count()));
  }
}

} // namespace

void DesktopNumber::Close::operator()(xcb_connection_t *connection) const {
  xcb_disconnect(connection);
}

qint64 DesktopNumber::current() {
  if (m_connection && xcb_connection_has_error(m_connection.get()) != 0) {
    m_connection.reset();
  }
  m_last = m_connection || connect() ? ask() : kUnknown;
  return m_last;
}

bool DesktopNumber::connect() {
  const char *const display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') {
    return false;
  }
  int screen = 0;
  m_connection.reset(xcb_connect(nullptr, &screen));
  m_root = {};
  if (xcb_connection_has_error(m_connection.get()) != 0) {
    m_connection.reset();
    return false;
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
  for (; screen > 0 && screens.rem > 1; --screen) {
    xcb_screen_next(&screens);
  }
  m_root.window = screens.data->root;
  return true;
}

qint64 DesktopNumber::ask() {
  xcb_connection_t *const connection = m_connection.get();
  if (m_root.property == 0) {
    const auto asked = xcb_intern_atom(connection, 0, kProperty.size(), kProperty.data());
    const auto atom = waitFor<xcb_intern_atom_reply_t>(connection, asked.sequence);
    if (!atom || !*atom) {
      return atom ? kUnknown : m_last;
    }
    m_root.property = (*atom)->atom;
  }
  const auto asked = xcb_get_property(connection, 0, m_root.window, m_root.property, XCB_ATOM_CARDINAL, 0, 1);
  const auto property = waitFor<xcb_get_property_reply_t>(connection, asked.sequence);
  if (!property) {
    return m_last;
  }
  const bool isNumber = *property && (*property)->format == 32 && xcb_get_property_value_length(property->get()) == 4;
  return isNumber ? *static_cast<const quint32 *>(xcb_get_property_value(property->get())) : kUnknown;
}

} // namespace sonorel
