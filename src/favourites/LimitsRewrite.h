// Reads and writes the bytes of the limits file. It is written in place, as its product knows it, so a death in the
// middle leaves it cut; until a write is through, the new bytes stand in the product's backup folder, and the next
// look completes a file that is cut. Blocks. One thread at a time.
#pragma once

#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace sonorel {

class LimitsRewrite {
public:
  struct Tools {
    FileSystem &files;
    Clock &clock;
    Desktop &desktop;
    std::function<QString()> backupFolder; // of the product connected now
  };

  // What the tools refer to must outlive the object; path is the limits file's.
  LimitsRewrite(Tools tools, QString path);

  // There is a limits file.
  [[nodiscard]] bool exists();
  // The whole file, completed when an earlier write was cut. A file that lacks a key is looked at twice: another
  // client may be writing it. Throws Failure.
  [[nodiscard]] QByteArray read();
  // Throws Failure; oldBytes were put back as far as possible.
  void write(const QByteArray &oldBytes, const QByteArray &newBytes);

private:
  [[nodiscard]] QString keptPath() const;
  [[nodiscard]] std::optional<QByteArray> kept();
  void keep(const QByteArray &newBytes);
  void forget();

  Tools m_tools;
  QString m_path;
};

} // namespace sonorel
