#include "DoorFixture.h"

#include <QXmlStreamReader>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

TEST_F(DoorTest, ShowsThePublishedState) {
  UserInterfaceState state;
  state.deviceName = u"Auracore 5"_s;
  state.connected = true;
  state.progress = 12.5;
  state.messageLog = u"line\n"_s;
  state.selectedProducts = QStringList{u"embedded * "_s};
  state.languageFile = u"StringsKorean"_s;
  door.publish(state);
  counter.received();
  EXPECT_EQ(caller.property(u"Version"_s), u"1.24.04.0000"_s);
  EXPECT_EQ(caller.property(u"DeviceName"_s), u"Auracore 5"_s);
  EXPECT_EQ(caller.property(u"Connected"_s), true);
  EXPECT_EQ(caller.property(u"Progress"_s), 12.5);
  EXPECT_EQ(caller.property(u"MessageLog"_s), u"line\n"_s);
  EXPECT_EQ(caller.property(u"SelectedProducts"_s).toStringList(), QStringList{u"embedded * "_s});
  EXPECT_EQ(caller.property(u"Language"_s), u"StringsKorean"_s);
  EXPECT_EQ(caller.property(u"Pending"_s).toUInt(), 1U);
}

// As other programs write them into their calls: a method of another signature is no method to them.
TEST_F(DoorTest, HasTheSignaturesThatProgramsUse) {
  const QDBusMessage reply = caller.call(u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s);
  QXmlStreamReader xml(reply.arguments().value(0).toString());
  QStringList found;
  QString interface;
  while (!xml.atEnd()) {
    xml.readNext();
    const auto attribute = [&xml](const char *name) {
      return xml.attributes().value(QLatin1String(name)).toString();
    };
    if (!xml.isStartElement()) {
      continue;
    }
    if (xml.name() == u"interface") {
      interface = attribute("name");
    } else if (interface != u"com.orv.Sonorel.Client" && interface != u"org.freedesktop.Application") {
      continue;
    } else if (xml.name() == u"method" || xml.name() == u"signal") {
      found.append(attribute("name") + u' ');
    } else if (xml.name() == u"arg") {
      found.last() += attribute("type");
    } else if (xml.name() == u"property") {
      found.append(attribute("name") + u' ' + attribute("type") + u' ' + attribute("access"));
    }
  }
  found.sort();
  EXPECT_EQ(found.join(u'\n'), QStringList({u"Activate a{sv}"_s,
                                            u"ActivateAction sava{sv}"_s,
                                            u"AddAddedProduct is"_s,
                                            u"AddDetectedProduct is"_s,
                                            u"AddManualProduct ss"_s,
                                            u"AddedProducts as read"_s,
                                            u"Alert (ussas) read"_s,
                                            u"AnswerAlert ui"_s,
                                            u"Busy b read"_s,
                                            u"CancelPassword "_s,
                                            u"Connected b read"_s,
                                            u"CurrentTab i read"_s,
                                            u"DetectedProducts as read"_s,
                                            u"DeviceName s read"_s,
                                            u"DockImage s read"_s,
                                            u"EnterPassword s"_s,
                                            u"Language s read"_s,
                                            u"MessageLog s read"_s,
                                            u"Open asa{sv}"_s,
                                            u"PasswordWanted b read"_s,
                                            u"Pending u read"_s,
                                            u"Progress d read"_s,
                                            u"RemoveAddedProduct is"_s,
                                            u"RemoveAllProducts "_s,
                                            u"RemoveProduct is"_s,
                                            u"SelectLanguage i"_s,
                                            u"SelectProduct is"_s,
                                            u"SelectedProducts as read"_s,
                                            u"TransferComplete "_s,
                                            u"Transferring b read"_s,
                                            u"Version s read"_s})
                                   .join(u'\n'));
}

TEST_F(DoorTest, AnnouncesWhatChangedAndOnlyThat) {
  UserInterfaceState state;
  state.connected = true;
  state.dockImage = u"Connect"_s;
  door.publish(state);
  ASSERT_TRUE(caller.wait([&] { return caller.values.contains(u"DockImage"_s); }));
  EXPECT_EQ(caller.values, (QVariantMap{{u"Connected"_s, true}, {u"DockImage"_s, u"Connect"_s}}));
}

TEST_F(DoorTest, TheLogIsOnlyInvalidatedAndAtMostTenTimesASecond) {
  UserInterfaceState state;
  QElapsedTimer time;
  time.start();
  for (int i = 0; time.elapsed() < 450; ++i) {
    state.messageLog += u"line\n"_s;
    door.publish(state);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
  }
  ASSERT_TRUE(caller.wait([&] { return !caller.invalidated.isEmpty(); }));
  EXPECT_LE(caller.invalidated.size(), 6);
  EXPECT_EQ(caller.invalidated.count(u"MessageLog"_s), caller.invalidated.size());
  EXPECT_FALSE(caller.values.contains(u"MessageLog"_s));
}

TEST_F(DoorTest, TransferCompleteComesAfterItsValues) {
  UserInterfaceState state;
  state.transferring = true;
  door.publish(state);
  state.transferring = false;
  state.messageLog = u"The transfer has ended."_s;
  door.publish(state);
  door.announceTransferComplete();
  ASSERT_TRUE(caller.wait([&] { return caller.order.contains(u"TransferComplete"_s); }));
  EXPECT_EQ(caller.order.last(), u"TransferComplete"_s);
  EXPECT_TRUE(caller.order.contains(u"MessageLog"_s));
}

TEST_F(DoorTest, PendingIsAnnouncedWithEachChangeAndNeverFallsBelowNothing) {
  counter.received();
  counter.received();
  door.announcePending();
  ASSERT_TRUE(caller.wait([&] { return caller.values.contains(u"Pending"_s); }));
  EXPECT_EQ(caller.values.take(u"Pending"_s), QVariant(2U));
  door.announcePending(); // nothing new
  counter.finished(3);
  door.announcePending();
  ASSERT_TRUE(caller.wait([&] { return caller.values.contains(u"Pending"_s); }));
  EXPECT_EQ(caller.values.take(u"Pending"_s), QVariant(0U));
  EXPECT_EQ(caller.order, (QStringList{u"Pending"_s, u"Pending"_s}));
}

TEST_F(DoorTest, AlertIsAnnouncedInItsForm) {
  door.openQuestion({3, u"Attention"_s, u"An address is missing."_s, {u"OK"_s}});
  ASSERT_TRUE(caller.wait([&] { return caller.values.contains(u"Alert"_s); }));
  const auto announced = caller.values.take(u"Alert"_s).value<QDBusArgument>();
  EXPECT_EQ(announced.currentSignature(), u"(ussas)"_s);
  DoorAlert alert;
  announced >> alert;
  EXPECT_EQ(alert.serial, 3U);
  EXPECT_EQ(alert.message, u"Attention"_s);
  EXPECT_EQ(alert.informativeText, u"An address is missing."_s);
  EXPECT_EQ(alert.buttons, QStringList{u"OK"_s});
  door.closeQuestion(3);
  ASSERT_TRUE(caller.wait([&] { return caller.values.contains(u"Alert"_s); }));
  const auto closed = caller.values.take(u"Alert"_s).value<QDBusArgument>();
  closed >> alert;
  EXPECT_EQ(alert.serial, 0U);
  EXPECT_EQ(alert.buttons, QStringList());
}

TEST_F(DoorTest, TheOldestAlertIsShownAndAnswered) {
  door.openQuestion({3, u"Attention"_s, u"An address is missing."_s, {u"OK"_s}});
  door.openQuestion({4, u"Please note"_s, u"Really?"_s, {u"No"_s, u"Yes"_s}});
  EXPECT_EQ(caller.client(u"AnswerAlert"_s, {4U, 2}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  EXPECT_EQ(caller.client(u"AnswerAlert"_s, {9U, 0}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  EXPECT_EQ(caller.client(u"AnswerAlert"_s, {3U, -1}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  EXPECT_EQ(door.alert().serial, 3U);
  EXPECT_EQ(caller.client(u"AnswerAlert"_s, {3U, 0}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(door.alert().message, u"Please note"_s);
  EXPECT_EQ(caller.client(u"AnswerAlert"_s, {4U, 1}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(door.alert().serial, 0U);
  EXPECT_EQ(done, (QStringList{u"answer 3 0"_s, u"answer 4 1"_s}));
}

// It would wait for the end of a connect, and close the panel that this has opened.
TEST_F(DoorTest, CancelOfAPasswordThatIsNotWantedIsTakenAndDoesNothing) {
  UserInterfaceState state;
  state.busy = true;
  door.publish(state);
  EXPECT_EQ(caller.client(u"CancelPassword"_s).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(done, QStringList());
}

TEST_F(DoorTest, RowsAreRefusedWhenTheyAreNotWhatWasSeen) {
  UserInterfaceState state;
  state.addedProducts = QStringList{u"a"_s, u"b"_s};
  door.publish(state);
  EXPECT_EQ(caller.client(u"AddAddedProduct"_s, {0, u"b"_s}).errorName(), u"com.orv.Sonorel.Error.Changed"_s);
  EXPECT_EQ(caller.client(u"AddAddedProduct"_s, {2, u"b"_s}).errorName(), u"com.orv.Sonorel.Error.Changed"_s);
  EXPECT_EQ(caller.client(u"AddAddedProduct"_s, {-1, u"b"_s}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  EXPECT_EQ(caller.client(u"AddAddedProduct"_s, {1, u"b"_s}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(done, QStringList{u"addAdded 1 b"_s});
}

TEST_F(DoorTest, TheAddPanelsFieldRulesHold) {
  for (const auto &[address, host] : {std::pair{u""_s, u""_s}, std::pair{u"1.2.3.4.5"_s, u""_s},
                                      std::pair{u"10.0.0.x"_s, u""_s}, std::pair{u"123.123.123.1234"_s, u""_s}}) {
    EXPECT_EQ(caller.client(u"AddManualProduct"_s, {address, host}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  }
  EXPECT_EQ(caller.client(u"AddManualProduct"_s, {u"10.0.0.7"_s, u""_s}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(caller.client(u"AddManualProduct"_s, {u""_s, u"localhost:4450"_s}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(done, (QStringList{u"add 10.0.0.7 "_s, u"add  localhost:4450"_s}));
}

TEST_F(DoorTest, OpensLocalFilesOnly) {
  const auto open = [&](const QStringList &uris) {
    return caller.call(u"org.freedesktop.Application"_s, u"Open"_s, {uris, QVariantMap()}).errorName();
  };
  EXPECT_EQ(open({u"http://host/a.mp3"_s, u"/music/no-uri.mp3"_s}), u"com.orv.Sonorel.Error.Invalid"_s);
  EXPECT_EQ(open({}), u"com.orv.Sonorel.Error.Invalid"_s);
  EXPECT_EQ(open({u"http://host/a.mp3"_s, u"file:///music/b.mp3"_s}), u""_s);
  EXPECT_EQ(done, QStringList{u"open /music/b.mp3"_s});
}

// What no person can type into a field of one line; a text of megabytes would make the stored list unreadable.
TEST_F(DoorTest, TextsThatNoFieldHoldsAreRefused) {
  UserInterfaceState state;
  state.passwordWanted = true;
  door.publish(state);
  for (const QString &text : {u"two\nlines"_s, QString(QChar(0x1B)) + u"[2J"_s, QString(1025, u'x')}) {
    EXPECT_EQ(caller.client(u"AddManualProduct"_s, {u""_s, text}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
    EXPECT_EQ(caller.client(u"EnterPassword"_s, {text}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  }
  EXPECT_EQ(done, QStringList());
  EXPECT_EQ(caller.client(u"EnterPassword"_s, {QString(1024, u'é')}).type(), QDBusMessage::ReplyMessage);
}

TEST_F(DoorTest, LanguagesAreThirteenAndWaitForATransfer) {
  for (const int index : {-1, 13}) {
    EXPECT_EQ(caller.client(u"SelectLanguage"_s, {index}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  }
  EXPECT_EQ(caller.client(u"SelectLanguage"_s, {12}).type(), QDBusMessage::ReplyMessage);
  UserInterfaceState state;
  state.languageEnabled = false;
  door.publish(state);
  EXPECT_EQ(caller.client(u"SelectLanguage"_s, {0}).errorName(), u"com.orv.Sonorel.Error.Busy"_s);
  EXPECT_EQ(done, QStringList{u"language 12"_s});
}

TEST_F(DoorTest, PasswordsAreTakenOnlyWhenWanted) {
  EXPECT_EQ(caller.client(u"EnterPassword"_s, {u"x"_s}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  UserInterfaceState state;
  state.passwordWanted = true;
  door.publish(state);
  EXPECT_EQ(caller.client(u"EnterPassword"_s, {u""_s}).errorName(), u"com.orv.Sonorel.Error.Invalid"_s);
  EXPECT_EQ(caller.client(u"EnterPassword"_s, {u"p@ss;100%:x"_s}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(done, QStringList{u"password p@ss;100%:x"_s});
}

} // namespace sonorel
