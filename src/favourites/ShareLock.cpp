#include "favourites/ShareLock.h"

#include "core/state/LogException.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint64 kLargestMark = 4096; // a mark is far shorter; anything else is not ours

} // namespace

ShareLock::ShareLock(Tools tools, QString path, const QByteArray &ownMark, std::stop_token stop)
    : m_tools(tools), m_path(std::move(path)), m_mark(ownMark + '/' + tools.identifiers.generateUUID().toLatin1()) {
  while (!tryCreate()) {
    waitForHolder(ownMark, stop);
  }
}

ShareLock::~ShareLock() {
  try {
    if (content() == m_mark) {
      m_tools.files.removeFile(m_path);
    }
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"unlockFavourites"_s, e);
  } catch (...) {
    m_tools.desktop.log(u"The lock of the favourites was left behind."_s);
  }
}

void ShareLock::requireHeld() {
  if (content() != m_mark) {
    throw Failure(u"another client took over the favourites"_s, FailureKind::Unknown);
  }
}

bool ShareLock::tryCreate() {
  try {
    m_tools.files.createExclusively(m_path, m_mark);
    return true;
  } catch (const Failure &failure) {
    if (failure.kind() == FailureKind::Exists) {
      return false;
    }
    throw;
  }
}

std::optional<QByteArray> ShareLock::content() {
  try {
    return m_tools.files.read(m_path, kLargestMark);
  } catch (const Failure &failure) {
    if (failure.kind() == FailureKind::Absent) {
      return std::nullopt;
    }
    throw;
  }
}

// Returns when the lock is gone, by its holder or because it was a dead client's.
void ShareLock::waitForHolder(const QByteArray &ownMark, std::stop_token stop) {
  const auto first = content();
  const auto start = m_tools.clock.monotonicNow();
  while (true) {
    const auto holder = content();
    if (!holder || holder != first) {
      return; // gone, or somebody else's turn: begin again
    }
    // Only the time counts for which it was watched: the file's own time is of the product's clock, which may be
    // behind.
    const std::chrono::seconds limit = holder->isEmpty() ? kStaleWhenEmptyAfter : kStaleAfter;
    const bool old = m_tools.clock.monotonicNow() - start >= limit;
    if (old || holder->startsWith(ownMark + '/')) {
      m_tools.desktop.log(u"The lock of the favourites was left by a client that ended; it is removed."_s);
      m_tools.files.removeFile(m_path);
      return;
    }
    if (!m_tools.clock.sleep(kPollInterval, stop)) {
      throw Failure(u"ended while another client was writing the favourites"_s, FailureKind::Stopped);
    }
  }
}

} // namespace sonorel
