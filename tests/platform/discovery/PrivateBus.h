// A message bus for one test, on a socket in a folder of its own; it may be started late and ended early. Main
// thread.
#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace sonorel::test {

class PrivateBus {
public:
  ~PrivateBus() { stop(); }

  [[nodiscard]] QString address() const { return QStringLiteral("unix:path=") + m_folder.filePath(u"bus"_qs); }
  // False when it does not come up.
  [[nodiscard]] bool start() {
    QFile configuration(m_folder.filePath(u"bus.conf"_qs));
    if (!configuration.open(QIODevice::WriteOnly) || configuration.write(kConfiguration) < 0) {
      return false;
    }
    configuration.close();
    m_process.start(u"dbus-daemon"_qs,
                    {u"--nofork"_qs, u"--nopidfile"_qs, u"--print-address"_qs,
                     u"--config-file="_qs + configuration.fileName(), u"--address="_qs + address()});
    return m_process.waitForReadyRead();
  }
  void stop() {
    if (m_process.state() != QProcess::NotRunning) {
      m_process.kill();
      m_process.waitForFinished();
    }
    QFile::remove(m_folder.filePath(u"bus"_qs));
  }

private:
  static constexpr char kConfiguration[] =
      R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>)";

  QTemporaryDir m_folder;
  QProcess m_process;
};

} // namespace sonorel::test
