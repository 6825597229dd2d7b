#include "mount/SmbSession.h"

#include "mount/SambaSettings.h"
#include "mount/SharePath.h"
#include "mount/Sockets.h"

#include <netdb.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace sonorel {

namespace {

using namespace std::chrono_literals;

constexpr auto kConnectLimit = 15s;   // below the 20 s after which the client ends the program
constexpr auto kRequestTimeOut = 10s; // the watchdog is there before
constexpr auto kSilence = 3s;
constexpr auto kSilenceAfterRefusal = 30s; // an account is not to be locked by our asking again

// libsmbclient has one error for a refused login and for a refused share, but tells them apart in its log.
constexpr int kLogWithLogins = 5;
constexpr const char *kLoginRefused = "login failed";
constexpr const char *kLoginTaken = "session setup ok";
constexpr const char *kWantedInClear = "requested PLAINTEXT password";

bool isRefusal(int error) {
  return error == EACCES || error == EPERM;
}

// The number behind a name, found once: while the network is away a name server would keep every caller waiting. None
// when the name is not known here; then libsmbclient asks around in the old way, by broadcast.
std::string numericHost(const std::string &host) {
  addrinfo wanted = {};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo *found = nullptr;
  if (::getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0) {
    return {};
  }
  const std::unique_ptr<addrinfo, void (*)(addrinfo *)> owner(found, ::freeaddrinfo);
  std::array<char, NI_MAXHOST> text = {};
  const addrinfo *best = found;
  for (const addrinfo *entry = found; entry != nullptr; entry = entry->ai_next) {
    if (entry->ai_family == AF_INET) { // old products speak nothing newer
      best = entry;
      break;
    }
  }
  if (::getnameinfo(best->ai_addr, best->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0) {
    return {};
  }
  return best->ai_family == AF_INET6 ? '[' + std::string(text.data()) + ']' : std::string(text.data());
}

void fill(char *place, int size, const std::string &text) {
  if (size > 0) {
    const size_t length = std::min(text.size(), static_cast<size_t>(size) - 1);
    std::memcpy(place, text.data(), length);
    place[length] = '\0';
  }
}

} // namespace

SmbSession::SmbSession(MountUrl url, Watchdog &watchdog) : m_url(std::move(url)), m_watchdog(watchdog) {}

SmbSession::~SmbSession() {
  ::explicit_bzero(m_url.password.data(), m_url.password.size());
}

void SmbSession::authenticate(SMBCCTX *context, const char * /*server*/, const char * /*share*/, char * /*workgroup*/,
                              int /*workgroupSize*/, char *user, int userSize, char *password, int passwordSize) {
  const auto *self = static_cast<const SmbSession *>(::smbc_getOptionUserData(context));
  fill(user, userSize, self->m_url.user);
  fill(password, passwordSize, self->m_url.password);
}

std::string SmbSession::address(const char *path) const {
  return path[0] == '/' && path[1] == '\0' ? m_base : m_base + encodedPath(path);
}

SMBCCTX *SmbSession::openContext() {
  if (m_context) {
    return m_context.get();
  }
  std::unique_ptr<SMBCCTX, ContextCloser> context(::smbc_new_context());
  if (!context) {
    return nullptr;
  }
  SMBCCTX *raw = context.get();
  ::smbc_setDebug(raw, 0);
  ::smbc_setLogCallback(raw, this, hearLog);
  ::smbc_setOptionUserData(raw, this);
  ::smbc_setFunctionAuthDataWithContext(raw, authenticate);
  ::smbc_setOptionUseKerberos(raw, 0);
  ::smbc_setOptionFallbackAfterKerberos(raw, 0);
  ::smbc_setOptionNoAutoAnonymousLogin(raw, 1);
  ::smbc_setOptionUseCCache(raw, 0);
  ::smbc_setPort(raw, m_url.port);
  if (::smbc_init_context(raw) == nullptr) {
    return nullptr;
  }
  if (!useOwnSambaSettings(raw)) {
    return nullptr;
  }
  ::smbc_setOptionProtocols(raw, "NT1", "SMB3");
  ::smbc_setTimeout(raw, static_cast<int>(std::chrono::milliseconds(kRequestTimeOut).count()));
  m_context = std::move(context);
  return raw;
}

Outcome SmbSession::connect() {
  const Watchdog::Operation operation(m_watchdog, kConnectLimit);
  const std::string host = numericHost(m_url.host);
  m_base = "smb://" + (host.empty() ? encodedPath(m_url.host) : host) + '/' + encodedPath(m_url.share);
  SMBCCTX *context = openContext();
  if (context == nullptr) {
    return {ExitStatus::Failed, "libsmbclient cannot be used"};
  }
  ::smbc_setDebug(context, kLogWithLogins);
  struct stat facts = {};
  errno = 0;
  const int result = ::smbc_getFunctionStat(context)(context, m_base.c_str(), &facts);
  const int error = errno;
  ::smbc_setDebug(context, 0);
  if (result == 0) {
    return {};
  }
  if (host.empty() && !isRefusal(error)) {
    return {ExitStatus::UnknownHost, "nobody knows the product's host name"};
  }
  return failedConnect(error, operation.wasCut());
}

void SmbSession::hearLog(void *data, int /*level*/, const char *text) {
  auto *self = static_cast<SmbSession *>(data);
  if (std::strstr(text, kWantedInClear) != nullptr) {
    self->m_loginTrace = LoginTrace::NeverTried;
  } else if (self->m_loginTrace == LoginTrace::NeverTried) {
    return; // it calls that a failed login, too
  } else if (std::strstr(text, kLoginRefused) != nullptr) {
    self->m_loginTrace = LoginTrace::Refused;
  } else if (std::strstr(text, kLoginTaken) != nullptr) {
    self->m_loginTrace = LoginTrace::Taken;
  }
}

bool SmbSession::isLoginRefused() {
  if (m_loginTrace != LoginTrace::None || !m_context) {
    return m_loginTrace != LoginTrace::Taken;
  }
  // The log was silent: whoever may log in at all may use this share, which every server has.
  const std::string everybodys = m_base.substr(0, m_base.rfind('/')) + "/IPC$";
  struct stat facts = {};
  return ::smbc_getFunctionStat(m_context.get())(m_context.get(), everybodys.c_str(), &facts) != 0 &&
         isRefusal(errno);
}

Outcome SmbSession::failedConnect(int error, bool wasCut) {
  if (wasCut || error == ETIMEDOUT) {
    return {ExitStatus::Unreachable, "the product does not answer"};
  }
  if (m_loginTrace == LoginTrace::NeverTried) {
    return {ExitStatus::NoCommonProtocol, "the product wants the password in clear, which is not done"};
  }
  if (isRefusal(error)) {
    return isLoginRefused()
               ? Outcome{ExitStatus::RefusedCredentials, "the product refuses the user name or the password"}
               : Outcome{ExitStatus::RefusedAccess, "the product does not let this user into the share"};
  }
  switch (error) {
  case ECONNREFUSED:
  case EHOSTUNREACH:
  case ENETUNREACH:
  case EHOSTDOWN:
    return {ExitStatus::Unreachable, "the product cannot be reached"};
  case ENODEV:
  case ENOENT:
    return {ExitStatus::NoSuchShare, "the product has no such share"};
  case ECONNABORTED:
  case ECONNRESET:
  case ENOTCONN:
  case EPIPE:
  case ENETRESET:
  case EPROTO:
  case EINVAL: // libsmbclient's word for an answer that it cannot place
    return {ExitStatus::NoCommonProtocol, "what answers there is no file server that we understand"};
  default:
    return {ExitStatus::Failed,
            "the share cannot be used: error " + std::to_string(error) + ", " + std::strerror(error)};
  }
}

bool SmbSession::judge(const Watchdog::Operation &operation, int error) {
  if (operation.wasCut()) {
    dropContext();
    m_silentUntil = std::chrono::steady_clock::now() + kSilence;
    return true;
  }
  if (isConnectionAlive() && !isShareClosed(error)) {
    return false;
  }
  dropContext();
  if (isRefusal(error)) {
    m_silentUntil = std::chrono::steady_clock::now() + kSilenceAfterRefusal;
    return false;
  }
  return true;
}

bool SmbSession::isShareClosed(int error) {
  if (error != EINVAL || !m_context) {
    return false;
  }
  struct stat facts = {};
  return ::smbc_getFunctionStat(m_context.get())(m_context.get(), m_base.c_str(), &facts) != 0 && errno == EINVAL;
}

void SmbSession::noticeLoss() {
  if (m_context && !isConnectionAlive()) {
    dropContext();
  }
}

void SmbSession::dropContext() {
  cutConnections(); // what is closed below must not wait for answers
  m_context.reset();
  ++m_generation;
}

void SmbSession::close() {
  m_context.reset();
}

} // namespace sonorel
