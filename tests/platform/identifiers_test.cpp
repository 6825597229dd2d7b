#include "platform/linux/QtIdentifiers.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace sonorel;

TEST(QtIdentifiers, TextIsUpperCaseWithoutBraces) {
  QtIdentifiers identifiers;
  const QString text = identifiers.generateUUID();
  const QRegularExpression form(QStringLiteral("^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"));
  EXPECT_TRUE(form.match(text).hasMatch()) << text.toStdString();
  EXPECT_NE(text, identifiers.generateUUID());
}

TEST(QtIdentifiers, BytesAreThoseOfARandomIdentifier) {
  QtIdentifiers identifiers;
  const QByteArray bytes = identifiers.generateUUIDBytes();
  ASSERT_EQ(bytes.size(), 16);
  EXPECT_EQ(static_cast<quint8>(bytes[6]) >> 4, 4); // the version, at its place in the order of RFC 4122
  EXPECT_EQ(static_cast<quint8>(bytes[8]) >> 6, 2);
  EXPECT_NE(bytes, identifiers.generateUUIDBytes());
}
