// The one exception type of the program: a failure with a reason that a person can read. Thrown by every
// interface in this folder and by the decoders; caught and logged at the boundary of the operation that the
// user started. The kind says what a caller may conclude; only Absent ever means that something is not there.
#pragma once

#include <QString>

#include <exception>

namespace sonorel {

enum class FailureKind {
  Other,    // anything else; nothing may be concluded
  Absent,   // a definite "no such file" while the volume is alive
  Exists,   // the name is taken
  DiskFull, // no room for the bytes
  Unknown,  // the volume does not answer: stop, delete nothing, replace nothing
  Damaged,  // foreign bytes that do not hold what their format promises
  Stopped,  // the stop token ended the wait
};

class Failure : public std::exception {
public:
  explicit Failure(QString reason, FailureKind kind = FailureKind::Other)
      : m_reason(std::move(reason)), m_text(m_reason.toUtf8()), m_kind(kind) {}

  [[nodiscard]] const QString &reason() const noexcept { return m_reason; }
  [[nodiscard]] FailureKind kind() const noexcept { return m_kind; }
  [[nodiscard]] const char *what() const noexcept override { return m_text.constData(); }

private:
  QString m_reason;
  QByteArray m_text;
  FailureKind m_kind;
};

// The reason of any exception, for log lines.
[[nodiscard]] inline QString reasonOf(const std::exception &e) {
  if (const auto *failure = dynamic_cast<const Failure *>(&e)) {
    return failure->reason();
  }
  return QString::fromUtf8(e.what());
}

} // namespace sonorel
