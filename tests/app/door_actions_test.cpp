#include "DoorFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

// Every action in every state: what the client is asked for, or the name of the refusal.
TEST_F(DoorTest, EachActionIsTakenOnlyWhereItIsExpected) {
  struct Row {
    QString name;
    std::function<QDBusMessage()> call;
    QString idle, connecting, transferring, quitting;
  };
  const auto action = [&](const QString &name) {
    return [&, name] {
      return caller.call(u"org.freedesktop.Application"_s, u"ActivateAction"_s,
                         {name, QVariantList(), QVariantMap()});
    };
  };
  const auto method = [&](const QString &name, const QVariantList &arguments) {
    return [&, name, arguments] { return caller.client(name, arguments); };
  };
  const auto busy = u"Busy"_s;
  const Row rows[] = {
      {u"cancel"_s, action(u"cancel"_s), u"cancel"_s, u"cancel"_s, u"cancel"_s, u"cancel"_s},
      {u"quit"_s, action(u"quit"_s), u"quit"_s, u"quit"_s, u"quit"_s, u"quit"_s},
      {u"CancelPassword"_s, method(u"CancelPassword"_s, {}), u"cancelPassword"_s, u"cancelPassword"_s,
       u"cancelPassword"_s, u"cancelPassword"_s},
      {u"AnswerAlert"_s, method(u"AnswerAlert"_s, {3U, 0}), u"answer 3 0"_s, u"answer 3 0"_s, u"answer 3 0"_s,
       u"answer 3 0"_s},
      {u"Activate"_s, [&] { return caller.call(u"org.freedesktop.Application"_s, u"Activate"_s, {QVariantMap()}); },
       u"reopen"_s, u"reopen"_s, u"reopen"_s, busy},
      {u"Open"_s,
       [&] {
         return caller.call(u"org.freedesktop.Application"_s, u"Open"_s,
                            {QStringList{u"file:///music/a%20b.mp3"_s}, QVariantMap()});
       },
       u"open /music/a b.mp3"_s, u"open /music/a b.mp3"_s, u"open /music/a b.mp3"_s, busy},
      {u"help"_s, action(u"help"_s), u"help"_s, u"help"_s, u"help"_s, busy},
      {u"products"_s, action(u"products"_s), u"products"_s, u"products"_s, u"products"_s, busy},
      {u"preferences"_s, action(u"preferences"_s), u"preferences"_s, u"preferences"_s, u"preferences"_s, busy},
      {u"connect"_s, action(u"connect"_s), u"connect"_s, busy, busy, busy},
      {u"disconnect"_s, action(u"disconnect"_s), u"disconnect"_s, busy, u"disconnect"_s, busy},
      {u"EnterPassword"_s, method(u"EnterPassword"_s, {u"x"_s}), u"password x"_s, busy, busy, busy},
      {u"AddManualProduct"_s, method(u"AddManualProduct"_s, {u""_s, u"host"_s}), u"add  host"_s, busy, u"add  host"_s,
       busy},
      {u"AddDetectedProduct"_s, method(u"AddDetectedProduct"_s, {0, u"d"_s}), u"addDetected 0 d"_s, busy,
       u"addDetected 0 d"_s, busy},
      {u"AddAddedProduct"_s, method(u"AddAddedProduct"_s, {0, u"a"_s}), u"addAdded 0 a"_s, busy, u"addAdded 0 a"_s,
       busy},
      {u"SelectProduct"_s, method(u"SelectProduct"_s, {0, u"s"_s}), u"select 0 s"_s, busy, u"select 0 s"_s, busy},
      {u"RemoveProduct"_s, method(u"RemoveProduct"_s, {0, u"s"_s}), u"remove 0 s"_s, busy, u"remove 0 s"_s, busy},
      {u"RemoveAddedProduct"_s, method(u"RemoveAddedProduct"_s, {0, u"a"_s}), u"removeAdded 0 a"_s, busy,
       u"removeAdded 0 a"_s, busy},
      {u"RemoveAllProducts"_s, method(u"RemoveAllProducts"_s, {}), u"removeAll"_s, busy, u"removeAll"_s, busy},
      {u"SelectLanguage"_s, method(u"SelectLanguage"_s, {1}), u"language 1"_s, busy, busy, busy},
      {u"dance"_s, action(u"dance"_s), u"Invalid"_s, u"Invalid"_s, u"Invalid"_s, u"Invalid"_s},
  };
  const auto outcome = [&](const Row &row, const UserInterfaceState &state) {
    door.publish(state);
    door.openQuestion({3, u"Attention"_s, u"An address is missing."_s, {u"OK"_s}});
    done.clear();
    const QDBusMessage reply = row.call();
    door.closeQuestion(3);
    const QString refusal = reply.errorName().section(u'.', -1);
    EXPECT_TRUE(refusal.isEmpty() || done.isEmpty()) << "refused and done";
    return refusal.isEmpty() ? done.join(u'|') : refusal;
  };
  UserInterfaceState idle;
  idle.passwordWanted = true;
  idle.detectedProducts = QStringList{u"d"_s};
  idle.addedProducts = QStringList{u"a"_s};
  idle.selectedProducts = QStringList{u"s"_s};
  UserInterfaceState connecting = idle;
  connecting.busy = true;
  UserInterfaceState transferring = idle;
  transferring.transferring = true;
  transferring.languageEnabled = false;
  for (const Row &row : rows) {
    EXPECT_EQ(outcome(row, idle), row.idle) << row.name.toStdString();
    EXPECT_EQ(outcome(row, connecting), row.connecting) << row.name.toStdString();
    EXPECT_EQ(outcome(row, transferring), row.transferring) << row.name.toStdString();
    isQuitting = true;
    for (const UserInterfaceState &state : {idle, connecting, transferring}) {
      EXPECT_EQ(outcome(row, state), row.quitting) << row.name.toStdString();
    }
    isQuitting = false;
  }
}

} // namespace sonorel
