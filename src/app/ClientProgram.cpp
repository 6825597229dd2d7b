#include "app/ClientProgram.h"

#include "app/EndRequests.h"
#include "app/FirstClient.h"
#include "app/TemporaryMark.h"
#include "platform/Failure.h"
#include "platform/ShareNames.h"
#include "platform/linux/DataFolders.h"
#include "platform/linux/Installation.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

void say(const QString &text) {
  std::fputs((u"sonoreld: "_s + text + u'\n').toUtf8().constData(), stderr);
}

// Of a start that does not become the client.
int endedBy(Turn turn, const QString &data) {
  if (turn == Turn::StillQuitting) {
    say(u"the client that runs was asked to quit and has not ended; start again later"_s);
  } else if (turn == Turn::NoAnswer) {
    say(u"another client uses %1 and does not answer on this session bus"_s.arg(data));
  }
  return turn == Turn::Theirs || turn == Turn::GivenUp ? kEnded : kFailed;
}

int runAlone(const CompositionOptions &options, const QDBusConnection &bus, EndRequests &endRequests) {
  Composition composition(options, bus, [](int status) { QCoreApplication::exit(status); });
  endRequests.observe(bus, [&composition] { composition.requestQuit(); });
  composition.start();
  return QCoreApplication::exec();
}

} // namespace

CompositionOptions optionsFromEnvironment() {
  CompositionOptions options;
  options.roots = rootsFromEnvironment(programFolder());
  options.client = programFolder() + u"/sonoreld"_s;
  options.embeddedProduct = kAuracore5.toString();
  const QString configHome = qEnvironmentVariable("XDG_CONFIG_HOME");
  options.configHome = configHome.startsWith(u'/') ? configHome : options.roots.home + u"/.config"_s;
  return options;
}

int runClient(CompositionOptions options) {
  EndRequests endRequests;
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    say(u"there is no session bus; start it with: dbus-run-session sonoreld"_s);
    return kNoSessionBus;
  }
  try {
    prepareDataFolders(options.roots);
    LinuxFileSystem files(options.roots);
    std::unique_ptr<FileLock> lock;
    const Turn turn =
        awaitTurn(bus, {[&] {
                          if (!lock) {
                            lock = files.lock(options.roots.data + u"/client.lock"_s);
                          }
                          return lock != nullptr;
                        },
                        [&](std::chrono::milliseconds time) { return !endRequests.arrivesWithin(time); }});
    if (turn != Turn::Ours) {
      return endedBy(turn, options.roots.data);
    }
    options.temporaryMark = temporaryMark(options.roots.data);
    return runAlone(options, bus, endRequests);
  } catch (const std::exception &e) {
    say(reasonOf(e));
    return kFailed;
  }
}

} // namespace sonorel
