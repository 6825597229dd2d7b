// A temporary folder in which the built scripts are run on files that ffmpeg has made.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace sonorel::test {

struct Ended {
  int status = -1;
  QString said;
};

class ScriptFolder {
public:
  [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
  QString makeFolder(const QString &name) const {
    EXPECT_TRUE(QDir().mkpath(path(name)));
    return path(name);
  }
  QString put(const QString &name, const QByteArray &bytes) const {
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return path(name);
  }
  [[nodiscard]] QByteArray bytes(const QString &name) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
  }
  // Every file in the folder, hidden ones too.
  [[nodiscard]] QStringList filesIn(const QString &name) const {
    return QDir(path(name)).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
  }

  [[nodiscard]] static Ended run(const QString &program, const QStringList &arguments,
                                 const QStringList &extra = {}) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setEnvironment(QProcess::systemEnvironment() + QStringList{QStringLiteral("LC_ALL=C")} + extra);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60'000)) << program.toStdString();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAll()).trimmed()};
  }
  // Killed as soon as it writes more than so many bytes into a file.
  [[nodiscard]] static Ended runAndKill(int bytes, const QString &program, const QStringList &arguments,
                                        const QStringList &extra = {}) {
    return run(QStringLiteral("prlimit"),
               QStringList{QStringLiteral("--fsize=%1").arg(bytes), QStringLiteral("--core=0"), program} + arguments,
               extra);
  }
  void ffmpeg(const QStringList &arguments) const {
    const Ended made =
        run(QStringLiteral("ffmpeg"),
            QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")} + arguments);
    ASSERT_EQ(made.status, 0) << made.said.toStdString();
  }

private:
  QTemporaryDir m_folder;
};

} // namespace sonorel::test
