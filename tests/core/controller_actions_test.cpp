// Every action in every state that the client can be in: a table of what each of them does.
#include "ControllerFixture.h"

#include <array>
#include <ostream>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

enum class State { NotConnected, PasswordWanted, Connected, Transferring, Cancelling, AfterASleep, Ended };

struct Action {
  const char *name;
  std::array<const char *, 7> effects; // in the states' order; what changes, in the order of effect() below
};

// What is the same before and after is no effect: the tab of a client whose password is wanted is the
// second already, and a cancelled transfer that is waited for selects its own.
constexpr Action kTable[] = {
    {"connect",
     {"mount, Connect", "no panel, asks An address or a password is missing", "umount, mount", "", "",
      "mount, Connect, log", ""}},
    {"disconnect",
     {"", "", "umount, Disconnect", "asks A transfer is running", "umount, tab 1, Disconnect, log", "", ""}},
    {"cancel", {"", "", "", "log", "", "", ""}},
    {"quit",
     {"NewAppIcon, ends", "NewAppIcon, ends", "umount, NewAppIcon, ends",
      "asks Files are still being transferred to Auracore 5", "umount, tab 1, NewAppIcon, log, ends",
      "NewAppIcon, ends", ""}},
    {"reopen", {"agent, tab 0", "agent, tab 0", "agent, tab 0", "agent, tab 1", "agent, tab 0", "agent, tab 0", ""}},
    {"open",
     {"agent, posted", "agent, posted", "agent, posted", "agent, posted", "agent, posted", "agent, posted", ""}},
    {"drop", {"tab 2", "", "worker", "", "log", "tab 2", ""}},
    {"help", {"document", "document", "document", "document", "document", "document", ""}},
    {"products", {"tab 2", "", "tab 2", "tab 2", "tab 2", "tab 2", ""}},
    {"enter a password", {"", "mount, Connect, no panel", "", "", "", "", ""}},
    {"cancel the password", {"", "no panel", "", "", "", "", ""}},
    {"select", {"mount, Connect", "", "", "", "", "mount, Connect, log", ""}},
    {"remove",
     {"removed", "removed", "asks You are connected to this product", "asks You are connected to this product",
      "asks You are connected to this product", "removed", ""}},
    {"remove all",
     {"removed", "removed", "asks You are connected to this product", "asks You are connected to this product",
      "asks You are connected to this product", "removed", ""}},
    {"add", {"added", "added", "added", "added", "added", "added", ""}},
};

struct Row {
  const char *action;
  State state;
  const char *effect;
};

void PrintTo(const Row &row, std::ostream *out) {
  *out << row.action << " in state " << static_cast<int>(row.state);
}

std::vector<Row> rows() {
  std::vector<Row> all;
  for (const Action &action : kTable) {
    for (std::size_t state = 0; state < action.effects.size(); ++state) {
      all.push_back({action.name, static_cast<State>(state), action.effects[state]});
    }
  }
  return all;
}

class ControllerActionsTest : public ControllerTest, public testing::WithParamInterface<Row> {
protected:
  void bring(State state) {
    fakes.files.put(resourceFolder() + u"SonorelHelp.html"_s, "help");
    if (state == State::PasswordWanted) {
      selectProduct({});
      start();
      return;
    }
    startConnected();
    controller->preferences(); // no action leads here, so that every tab that one chooses is seen
    if (state == State::NotConnected) {
      controller->disconnect();
    }
    if (state >= State::Transferring && state != State::Ended) {
      deliver(u"@~Evening@~"_s, {song(u"One"_s)});
    }
    if (state == State::Cancelling) {
      controller->cancel();
    }
    if (state == State::AfterASleep) {
      fakes.power.send(PowerMessage::SystemWillSleep);
      fakes.power.wake();
    }
    if (state == State::Ended) {
      controller->quit();
    }
    fakes.loop.runPosted();
  }

  void act(const QString &action) {
    const QString row = shown().selectedProducts.value(0);
    const QMap<QString, std::function<void()>> actions{
        {u"connect"_s, [&] { controller->connect(); }},
        {u"disconnect"_s, [&] { controller->disconnect(); }},
        {u"cancel"_s, [&] { controller->cancel(); }},
        {u"quit"_s, [&] { controller->quit(); }},
        {u"reopen"_s, [&] { controller->reopen(false); }},
        {u"open"_s, [&] { controller->openFiles({u"/Users/anna/a.mp3"_s}); }},
        {u"drop"_s, [&] { deliver(u"@~Night@~"_s, {song(u"Two"_s)}); }},
        {u"help"_s, [&] { controller->help(); }},
        {u"products"_s, [&] { controller->products(); }},
        {u"enter a password"_s, [&] { controller->enterPassword(u"secret"_s); }},
        {u"cancel the password"_s, [&] { controller->cancelPassword(); }},
        {u"select"_s, [&] { controller->selectProduct(0, row); }},
        {u"remove"_s, [&] { controller->removeProduct(0, row); }},
        {u"remove all"_s, [&] { controller->removeAllProducts(); }},
        {u"add"_s, [&] { controller->addManualProduct({}, u"den"_s); }},
    };
    ASSERT_TRUE(actions.contains(action));
    actions[action]();
    fakes.loop.runPosted();
  }

  // What the action has changed: tools, agent, worker, window.
  QString effect() {
    QStringList effects;
    for (const QString &program : fakes.processes.programs()) {
      if (program.startsWith(u"/sbin/"_s) && !effects.contains(program.mid(6))) {
        effects.append(program.mid(6));
      }
    }
    const auto note = [&effects](bool happened, const QString &what) {
      if (happened) {
        effects.append(what);
      }
    };
    const UserInterfaceState now = shown();
    note(fakes.processes.detached.size() > m_agents, u"agent"_s);
    note(fakes.worker.starts() > m_workers, u"worker"_s);
    note(fakes.desktop.opened.size() > m_opened, u"document"_s);
    note(!fakes.notifications.posted.isEmpty(), u"posted"_s);
    note(m_before.currentTab != now.currentTab, u"tab %1"_s.arg(now.currentTab));
    note(m_before.dockImage != now.dockImage, now.dockImage);
    note(m_before.messageLog != now.messageLog, u"log"_s);
    note(m_before.addedProducts != now.addedProducts, u"added"_s);
    note(m_before.selectedProducts != now.selectedProducts, u"removed"_s);
    note(!m_before.passwordWanted && now.passwordWanted, u"panel"_s);
    note(m_before.passwordWanted && !now.passwordWanted, u"no panel"_s);
    for (const Question &question : fakes.userInterface.questions) {
      effects.append(u"asks "_s + question.informativeText.section(u'.', 0, 0));
    }
    note(m_quitBefore != fakes.userInterface.quitStatus, u"ends"_s);
    return effects.join(u", "_s);
  }
  void remember() {
    m_before = shown();
    m_agents = fakes.processes.detached.size();
    m_workers = fakes.worker.starts();
    m_opened = fakes.desktop.opened.size();
    m_quitBefore = fakes.userInterface.quitStatus;
    fakes.processes.requests.clear();
  }
  UserInterfaceState shown() { return fakes.userInterface.last(); }

private:
  UserInterfaceState m_before;
  qsizetype m_agents = 0;
  qsizetype m_opened = 0;
  int m_workers = 0;
  std::optional<int> m_quitBefore;
};

} // namespace

TEST_P(ControllerActionsTest, DoesWhatItMayDoThere) {
  bring(GetParam().state);
  remember();
  act(QString::fromLatin1(GetParam().action));
  EXPECT_EQ(effect(), QString::fromUtf8(GetParam().effect));
}

INSTANTIATE_TEST_SUITE_P(Table, ControllerActionsTest, testing::ValuesIn(rows()));
