#include "platform/linux/SystemError.h"

#include <cerrno>
#include <system_error>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

FailureKind failureKind(int error) {
  switch (error) {
  case ENOENT:
  case ENOTDIR:
    return FailureKind::Absent;
  case EEXIST:
  case ENOTEMPTY:
    return FailureKind::Exists;
  case ENOSPC:
  case EDQUOT:
    return FailureKind::DiskFull;
  case EIO:
  case ENXIO:
  case ENODEV:
  case ENOTCONN:
  case ESTALE:
  case EHOSTDOWN:
  case EHOSTUNREACH:
  case ENETDOWN:
  case ENETUNREACH:
  case ENETRESET:
  case ETIMEDOUT:
  case ECONNABORTED:
  case ECONNREFUSED:
  case ECONNRESET:
  case ESHUTDOWN:
  case EPIPE:
  case ENOLINK:
  case ECOMM:
  case EREMOTEIO:
    return FailureKind::Unknown;
  default:
    return FailureKind::Other;
  }
}

Failure systemFailure(int error, const QString &path) {
  return Failure(QString::fromStdString(std::generic_category().message(error)) + u": "_s + path, failureKind(error));
}

bool provesAbsence(int error) {
  return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == EINVAL || error == ELOOP;
}

} // namespace sonorel
