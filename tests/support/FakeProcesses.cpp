#include "support/FakeProcesses.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

constexpr QStringView kScripts = u"/usr/bin/osascript";

QString withoutSlash(const QString &path) {
  return path.size() > 1 && path.endsWith(u'/') ? path.chopped(1) : path;
}

} // namespace

ToolResult exited(int status, const QByteArray &output) {
  return {ToolEnding::Exited, status, output};
}

void FakeProcesses::failAt(int run, const ToolResult &result, int times) {
  const std::lock_guard guard(m_mutex);
  m_failTimes = times;
  m_failAt = m_runs + run;
  m_failure = result;
}

int FakeProcesses::runs() const {
  const std::lock_guard guard(m_mutex);
  return m_runs;
}

QStringList FakeProcesses::programs() const {
  const std::lock_guard guard(m_mutex);
  QStringList found;
  for (const ToolRequest &request : requests) {
    found.append(request.program);
  }
  return found;
}

ToolResult FakeProcesses::run(const ToolRequest &request, std::stop_token stop) {
  std::optional<ToolResult> failure;
  {
    const std::lock_guard guard(m_mutex);
    requests.append(request);
    ++m_runs;
    if (m_runs >= m_failAt && m_runs < m_failAt + m_failTimes) {
      failure = m_failure;
    }
  }
  if (m_files.isDead()) {
    throw Died();
  }
  if (stop.stop_requested()) {
    return {ToolEnding::Stopped, -1, {}};
  }
  if (failure) {
    leaveHalf(request);
    return *failure;
  }
  if (onRun) {
    if (const auto answer = onRun(request)) {
      return *answer;
    }
  }
  try {
    return model(request, stop);
  } catch (const Failure &e) {
    return exited(1, request.program.toUtf8() + ": " + e.reason().toUtf8() + "\n");
  }
}

bool FakeProcesses::startDetached(const QString &program, const QStringList &arguments) {
  const std::lock_guard guard(m_mutex);
  detached.append((QStringList{program} + arguments).join(u' '));
  return detachedStarts;
}

ToolResult FakeProcesses::model(const ToolRequest &request, const std::stop_token &stop) {
  if (request.program == u"/bin/cp"_s) {
    return copy(request.arguments);
  }
  if (request.program == u"/bin/rm"_s) {
    return remove(request.arguments);
  }
  if (request.program == u"/bin/rmdir"_s) {
    return removeFolder(request.arguments);
  }
  if (request.program == u"/sbin/mount"_s) {
    return mount(request, stop);
  }
  if (request.program == u"/sbin/umount"_s) {
    return unmount(request.arguments);
  }
  if (request.program == kScripts && onScript) {
    return onScript(request, false);
  }
  return exited(0);
}

ToolResult FakeProcesses::copy(const QStringList &arguments) {
  if (arguments.size() != 3 || arguments.at(0) != u"-p"_s) {
    return exited(64, "usage: cp -p from to\n");
  }
  const QString from = arguments.at(1);
  const QString to = arguments.at(2);
  const QByteArray bytes = m_files.read(from);
  const auto source = m_files.attributes(from, Links::Follow);
  if (isFolder(m_files, to)) {
    return exited(1, "cp: cannot overwrite directory with non-directory\n");
  }
  m_files.write(to, bytes);
  m_files.setModified(to, source->modifiedSeconds);
  return exited(0);
}

ToolResult FakeProcesses::remove(const QStringList &arguments) {
  bool force = false;
  bool whole = false;
  for (const QString &argument : arguments) {
    if (argument.startsWith(u'-')) {
      force = force || argument.contains(u'f');
      whole = whole || argument.contains(u'r', Qt::CaseInsensitive);
      continue;
    }
    if (force && m_files.presence(argument) == Presence::Absent) {
      continue;
    }
    if (whole) {
      m_files.removeTree(argument);
    } else {
      m_files.removeLeftover(argument);
    }
  }
  return exited(0);
}

ToolResult FakeProcesses::removeFolder(const QStringList &arguments) {
  for (const QString &argument : arguments) {
    m_files.removeFolder(withoutSlash(argument));
  }
  return exited(0);
}

ToolResult FakeProcesses::mount(const ToolRequest &request, const std::stop_token &stop) {
  if (request.arguments.size() != 4) {
    return exited(64, "usage: mount -t type url point\n");
  }
  MountAnswer answer;
  if (!mountAnswers.empty()) {
    answer = mountAnswers.front();
    mountAnswers.pop_front();
  }
  if (answer.hang) {
    if (onHang) {
      onHang(request.deadline);
    }
    return {stop.stop_requested() ? ToolEnding::Stopped : ToolEnding::DeadlinePassed, 128 + 15, answer.output};
  }
  const QString point = withoutSlash(request.arguments.at(3));
  if (answer.status != 0) {
    return exited(answer.status, answer.output);
  }
  if (!isFolder(m_files, point)) {
    return exited(66, "mount: no such folder\n");
  }
  if (m_files.isMounted(point)) {
    return exited(64, "mount: File exists\n");
  }
  m_files.mount(point, request.arguments.at(1));
  return exited(0, answer.output);
}

ToolResult FakeProcesses::unmount(const QStringList &arguments) {
  const QString point = withoutSlash(arguments.value(arguments.size() - 1));
  if (!m_files.isMounted(point)) {
    return exited(1, "umount: not currently mounted\n");
  }
  m_files.unmount(point);
  return exited(0);
}

void FakeProcesses::leaveHalf(const ToolRequest &request) {
  if (request.program == kScripts && onScript) {
    (void)onScript(request, true);
  }
  if (request.program != u"/bin/cp"_s || request.arguments.size() != 3) {
    return;
  }
  try {
    m_files.writeHalf(request.arguments.at(2), m_files.read(request.arguments.at(1)));
  } catch (const Failure &) {
    // Nothing to leave: source or target cannot be reached.
  }
}

} // namespace sonorel::test
