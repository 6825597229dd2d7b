#include "platform/linux/AvahiMessages.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace sonorel;

TEST(AvahiMessages, TextRecordIsReadFromItsEnd) {
  const QList<QByteArray> reversed{"B=2", "A=second", QByteArray("A=fi\0st", 7), "=no key", "flag", ""};
  const QMap<QByteArray, QByteArray> expected{{"A", QByteArray("fi\0st", 5)}, {"B", "2"}, {"flag", {}}};
  EXPECT_EQ(textRecordOf(reversed), expected);
}

TEST(AvahiMessages, AsksForIPv4OnEveryInterface) {
  using namespace Qt::Literals::StringLiterals;
  EXPECT_EQ(serviceBrowserNew(u"_qxproduct_-1._tcp"_s, QString()).arguments(),
            QVariantList({-1, 0, u"_qxproduct_-1._tcp"_s, QString(), 0U}));
  EXPECT_EQ(serviceResolverNew(3, {u"den"_s, u"_qxproduct_-1._tcp"_s, u"local"_s}).arguments(),
            QVariantList({3, 0, u"den"_s, u"_qxproduct_-1._tcp"_s, u"local"_s, 0, 0U}));
}

TEST(AvahiMessages, MessageOfAnotherSignatureIsNone) {
  const QDBusMessage signal =
      QDBusMessage::createSignal(QStringLiteral("/"), QStringLiteral("a.b"), QStringLiteral("c"));
  EXPECT_FALSE(itemOf(signal));
  EXPECT_FALSE(resolvedServiceOf(signal));
}
