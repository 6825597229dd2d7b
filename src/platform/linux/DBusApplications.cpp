#include "platform/linux/DBusApplications.h"

#include "platform/ApplicationPaths.h"
#include "platform/linux/BusNames.h"
#include "platform/linux/FileDescriptor.h"

#include <QDBusMessage>

#include <array>
#include <csignal>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kBusAnswer = 5000; // milliseconds
constexpr int kPatience = 1000;  // milliseconds

struct KnownApplication {
  QLatin1String busName; // and bundle identifier
  QStringView name;
  QStringView path;
};

constexpr std::array<KnownApplication, 2> kKnown{
    {{kClientService, u"Sonorel", kBundlePath}, {kAgentService, u"TrackChute", kAgentBundlePath}}};

constexpr QStringView kArtworkExporter = u"iTunes"; // the name by which it is asked for

void send(const FileDescriptor &process, int signal) {
  ::syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0U);
}

bool hasEndedWithin(const FileDescriptor &process, int milliseconds) {
  pollfd end{process.get(), POLLIN, 0};
  return ::poll(&end, 1, milliseconds) == 1;
}

} // namespace

std::vector<RunningApplication> DBusApplications::launched() {
  std::vector<RunningApplication> running;
  for (const KnownApplication &known : kKnown) {
    if (const auto process = ownerOf(known.busName)) {
      running.push_back({known.name.toString(), known.path.toString(), known.busName, *process});
    }
  }
  if (::access(m_exporter.toUtf8().constData(), X_OK) == 0) {
    running.push_back({kArtworkExporter.toString(), m_exporter, {}, 0});
  }
  return running;
}

void DBusApplications::end(const RunningApplication &application) {
  if (application.processId <= 1) {
    return;
  }
  // The descriptor keeps the process apart from a later one of the same number: opened first, asked afterwards.
  const FileDescriptor process(
      static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(application.processId), 0U)));
  if (process.isOpen() && ownerOf(application.bundleIdentifier) == application.processId) {
    send(process, SIGTERM);
    if (!hasEndedWithin(process, kPatience)) {
      send(process, SIGKILL);
      static_cast<void>(hasEndedWithin(process, kPatience));
    }
  }
}

std::optional<qint64> DBusApplications::ownerOf(const QString &busName) const {
  QDBusMessage question = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                         u"org.freedesktop.DBus"_s, u"GetConnectionUnixProcessID"_s);
  question << busName;
  const QDBusMessage answer = m_bus.call(question, QDBus::Block, kBusAnswer);
  if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
    return std::nullopt; // nobody owns the name
  }
  return answer.arguments().constFirst().toUInt();
}

} // namespace sonorel
