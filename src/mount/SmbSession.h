// The connection to the product's share. It is made anew by itself when it was lost, no operation lasts longer than
// its limit, and after a failure that took long every operation fails at once for a while, so that a caller with many
// questions does not wait for each of them. One thread at a time; results are 0 or more, or a negative error number.
#pragma once

#include "mount/MountUrl.h"
#include "mount/Outcome.h"
#include "mount/Watchdog.h"

#include <libsmbclient.h>

#include <chrono>
#include <cstdint>
#include <memory>

namespace sonorel {

// Whether a question may be put to the server again when the connection was lost before its answer came.
enum class Repeat { Yes, No };

class SmbSession {
public:
  // watchdog must outlive the object.
  SmbSession(MountUrl url, Watchdog &watchdog);
  ~SmbSession();
  SmbSession(const SmbSession &) = delete;
  SmbSession &operator=(const SmbSession &) = delete;

  // The first connection, in words: the server is reached, takes the login, and the share's root answers.
  [[nodiscard]] Outcome connect();

  // work: (SMBCCTX *) -> a number, negative with errno when it failed. After a loss of the connection the generation
  // is another one, and every handle of an earlier one is gone.
  template <typename Work> int run(Repeat repeat, Work work) {
    if (isSilent()) {
      return -EIO;
    }
    noticeLoss();
    return answer(repeat, work);
  }
  // work uses a handle of that generation: nothing is asked when it is gone.
  template <typename Work> int runOn(std::uint64_t generation, Work work) {
    if (isSilent()) {
      return -EIO;
    }
    noticeLoss();
    return generation == m_generation ? answer(Repeat::No, work) : -EIO;
  }

  // "smb://address/share" + encoded path
  [[nodiscard]] std::string address(const char *path) const;
  [[nodiscard]] std::uint64_t generation() const { return m_generation; }
  // A connection that ended while nobody used it is put away before anything is asked through it.
  void noticeLoss();
  // Nothing more is asked of the server; what is open is closed as far as that takes no time.
  void close();

private:
  enum class LoginTrace { None, Taken, Refused, NeverTried };

  struct ContextCloser {
    void operator()(SMBCCTX *context) const { ::smbc_free_context(context, 1); }
  };

  template <typename Work> int answer(Repeat repeat, Work &work) {
    const Watchdog::Operation operation(m_watchdog, kLimit);
    for (int attempt = 0;; ++attempt) {
      SMBCCTX *context = openContext();
      errno = 0;
      const auto result = context != nullptr ? static_cast<std::int64_t>(work(context)) : -1;
      if (result >= 0) {
        return static_cast<int>(result);
      }
      const int error = errno;
      const bool isLost = judge(operation, error);
      if (!isLost || repeat == Repeat::No || attempt > 0 || operation.wasCut()) {
        return isLost ? -EIO : -error;
      }
    }
  }

  static void authenticate(SMBCCTX *context, const char *server, const char *share, char *workgroup,
                           int workgroupSize, char *user, int userSize, char *password, int passwordSize);
  [[nodiscard]] SMBCCTX *openContext();
  [[nodiscard]] bool isSilent() const {
    return m_watchdog.isEnding() || std::chrono::steady_clock::now() < m_silentUntil;
  }
  // After an error: true when the connection is gone, which is then put away.
  [[nodiscard]] bool judge(const Watchdog::Operation &operation, int error);
  // The connection stands, but the server has put the share away from under it: even the root is refused with the
  // word for a wrong name.
  [[nodiscard]] bool isShareClosed(int error);
  [[nodiscard]] Outcome failedConnect(int error, bool wasCut);
  // After a refusal: was it the login, or what the login is good for?
  [[nodiscard]] bool isLoginRefused();
  static void hearLog(void *data, int level, const char *text);
  void dropContext();

  static constexpr std::chrono::milliseconds kLimit{5000};

  MountUrl m_url;
  Watchdog &m_watchdog;
  std::string m_base;
  std::unique_ptr<SMBCCTX, ContextCloser> m_context;
  std::uint64_t m_generation = 1;
  LoginTrace m_loginTrace = LoginTrace::None;
  std::chrono::steady_clock::time_point m_silentUntil;
};

} // namespace sonorel
