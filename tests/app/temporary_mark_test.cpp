#include "app/TemporaryMark.h"

#include "platform/Failure.h"
#include "support/Printers.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

void put(const QString &path, const QByteArray &bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(bytes);
}

} // namespace

TEST(TemporaryMark, StaysTheSameForOneDataFolder) {
  const QTemporaryDir data;
  const QString mark = temporaryMark(data.path());
  EXPECT_TRUE(QRegularExpression(u"^[0-9a-f]{8}$"_s).match(mark).hasMatch()) << mark.toStdString();
  EXPECT_EQ(temporaryMark(data.path()), mark);
  const QTemporaryDir other;
  EXPECT_NE(temporaryMark(other.path()), mark);
}

TEST(TemporaryMark, DamagedMarkIsMadeAnew) {
  const QTemporaryDir data;
  put(data.filePath(u"TemporaryMark"_s), "../../evil");
  const QString mark = temporaryMark(data.path());
  EXPECT_EQ(mark.size(), 8);
  EXPECT_FALSE(mark.contains(u'.'));
  EXPECT_EQ(temporaryMark(data.path()), mark);
}

TEST(TemporaryMark, FolderThatCannotBeWrittenIsAFailure) {
  const QTemporaryDir data;
  EXPECT_THROW((void)temporaryMark(data.filePath(u"absent"_s)), Failure);
}

} // namespace sonorel
