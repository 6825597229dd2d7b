// ".sonorel-lock" in the System folder: at most one client rewrites favourites at a time. Created exclusively,
// removed when the object dies. A lock that was watched for 60 seconds is a dead client's; so is one of this client,
// which runs only once at a time on its data folder. Blocks while another client holds it.
#pragma once

#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Identifiers.h"

#include <chrono>
#include <stop_token>

namespace sonorel {

class ShareLock {
public:
  static constexpr std::chrono::seconds kStaleAfter{60};
  static constexpr std::chrono::seconds kStaleWhenEmptyAfter{5}; // its client ended between making and filling it
  static constexpr std::chrono::milliseconds kPollInterval{500};

  struct Tools {
    FileSystem &files;
    Clock &clock;
    Identifiers &identifiers;
    Desktop &desktop;
  };

  // path is the lock's; ownMark tells this client's locks from those of others. Throws Failure: Stopped, or whatever
  // the share answers when the lock cannot be made.
  ShareLock(Tools tools, QString path, const QByteArray &ownMark, std::stop_token stop);
  ~ShareLock();
  ShareLock(const ShareLock &) = delete;
  ShareLock &operator=(const ShareLock &) = delete;

  // Throws Failure (Unknown) when somebody else took the lock for stale meanwhile.
  void requireHeld();

private:
  [[nodiscard]] bool tryCreate();
  void waitForHolder(const QByteArray &ownMark, std::stop_token stop);
  [[nodiscard]] std::optional<QByteArray> content();

  Tools m_tools;
  QString m_path;
  QByteArray m_mark; // of this very lock
};

} // namespace sonorel
