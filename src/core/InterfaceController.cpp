#include "core/InterfaceController.h"

#include "core/state/DockImages.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

InterfaceController::InterfaceController(Loop &loop, UserInterface &userInterface, const TransferBoard &board,
                                         const Strings &strings)
    : m_loop(loop), m_userInterface(userInterface), m_board(board), m_strings(strings), m_questions(userInterface) {}

InterfaceController::~InterfaceController() {
  m_loop.cancel(m_pulsatingTimer);
}

// --- the order of changes ---

void InterfaceController::enqueue(std::function<void()> change) {
  {
    const std::lock_guard lock(m_mutex);
    m_wanted.push_back(std::move(change));
    if (std::exchange(m_posted, true)) {
      return;
    }
  }
  m_loop.post([this] { flush(); });
}

void InterfaceController::flush() {
  for (;;) {
    std::vector<std::function<void()>> wanted;
    {
      const std::lock_guard lock(m_mutex);
      wanted.swap(m_wanted);
      m_posted = false;
    }
    if (wanted.empty()) {
      break;
    }
    for (const auto &change : wanted) {
      change();
    }
  }
  publish();
}

void InterfaceController::publish() {
  if (std::exchange(m_changed, false)) {
    m_userInterface.publish(m_state);
  }
}

template <typename Value> void InterfaceController::put(Value UserInterfaceState::*field, const Value &value) {
  if (m_state.*field != value) {
    m_state.*field = value;
    m_changed = true;
  }
}

// --- View ---

// Thousands of messages may come while this thread is busy: each would carry the whole log.
void InterfaceController::fillMessageLog(std::function<QString()> text) {
  std::shared_ptr<LogText> waiting;
  {
    const std::lock_guard lock(m_mutex);
    if (m_waitingLog) {
      *m_waitingLog = std::move(text);
      return;
    }
    waiting = m_waitingLog = std::make_shared<LogText>(std::move(text));
  }
  enqueue([this, waiting] { showLog(waiting); });
}

void InterfaceController::showLog(const std::shared_ptr<LogText> &text) {
  LogText last;
  {
    const std::lock_guard lock(m_mutex);
    if (m_waitingLog == text) {
      m_waitingLog.reset();
    }
    last = *text;
  }
  put(&UserInterfaceState::messageLog, last());
}

// What is told next must not show a log that came later.
void InterfaceController::keepWaitingLog() {
  std::shared_ptr<LogText> waiting;
  {
    const std::lock_guard lock(m_mutex);
    waiting = std::exchange(m_waitingLog, nullptr);
  }
  if (waiting) {
    LogText kept = [text = (*waiting)()] { return text; };
    const std::lock_guard lock(m_mutex);
    *waiting = std::move(kept);
  }
}

void InterfaceController::windowFrontCentre() {
  enqueue([this] {
    put(&UserInterfaceState::windowVisible, true);
    publish();
    m_userInterface.raise();
  });
}

// A worker's wish may arrive after Cancel was pressed; so may those for progress and the pulse.
void InterfaceController::setEnableDisableCancelBtn(bool enabled) {
  enqueue([this, enabled] { put(&UserInterfaceState::cancelEnabled, enabled && !m_board.isCancel); });
}

void InterfaceController::setHighlightCancelBtn(bool highlighted) {
  enqueue([this, highlighted] { put(&UserInterfaceState::cancelHighlighted, highlighted && !m_board.isCancel); });
}

void InterfaceController::setProgressBar(double percent) {
  enqueue([this, percent] { put(&UserInterfaceState::progress, m_board.isCancel ? 0.0 : percent); });
}

void InterfaceController::setDockIcon(const QString &iconImageType) {
  enqueue([this, iconImageType] {
    if (iconImageType != kTransferIcon) {
      showImage(iconImageType);
    } else if (m_pulsatingTimer == 0 && !m_board.isCancel) {
      m_pulsatingTimer = m_loop.every(kPulsePeriod, [this] { pulsateImage(); });
    }
  });
}

void InterfaceController::showImage(const QString &image) {
  m_loop.cancel(std::exchange(m_pulsatingTimer, 0));
  put(&UserInterfaceState::dockImage, image);
}

void InterfaceController::pulsateImage() {
  put(&UserInterfaceState::dockImage, m_pulsateImageToggler ? kDisconnectImage : kConnectImage);
  m_pulsateImageToggler = !m_pulsateImageToggler;
  publish();
}

void InterfaceController::stopPulse() {
  enqueue([this] { m_loop.cancel(std::exchange(m_pulsatingTimer, 0)); });
}

void InterfaceController::selectTab(Tab tab) {
  enqueue([this, tab] { put(&UserInterfaceState::currentTab, static_cast<int>(tab)); });
}

void InterfaceController::setLanguageEnabled(bool enabled) {
  enqueue([this, enabled] { put(&UserInterfaceState::languageEnabled, enabled); });
}

void InterfaceController::attention() {
  enqueue([this] {
    publish();
    m_userInterface.attention();
  });
}

void InterfaceController::transferStateChanged() {
  enqueue([this] { put(&UserInterfaceState::transferring, m_board.isCarrying()); });
}

void InterfaceController::transferComplete() {
  whenShown([this] { m_userInterface.transferComplete(); });
}

void InterfaceController::whenShown(std::function<void()> told) {
  keepWaitingLog();
  enqueue([this, told = std::move(told)] {
    publish();
    told();
  });
}

// --- questions ---

void InterfaceController::alert(const QString &message, const QString &informativeText) {
  ask({.message = message, .informativeText = informativeText, .buttons = {m_strings.text(u"BtnOk"_s)}}, [](int) {});
}

quint32 InterfaceController::ask(Question question, std::function<void(int)> answered) {
  question.serial = m_questions.newSerial();
  enqueue([this, question, answered = std::move(answered)] {
    publish();
    m_questions.open(question, answered);
  });
  return question.serial;
}

void InterfaceController::withdraw(quint32 question) {
  enqueue([this, question] { m_questions.withdraw(question); });
}

void InterfaceController::answerAlert(quint32 serial, int button) {
  flush();
  m_questions.answer(serial, button);
}

void InterfaceController::closeQuestions() {
  m_questions.refuseFurtherOnes();
  flush();
  m_questions.closeAll();
}

// --- further values ---

void InterfaceController::setConnected(bool connected) {
  enqueue([this, connected] { put(&UserInterfaceState::connected, connected); });
}

void InterfaceController::setDeviceName(const QString &name) {
  enqueue([this, name] { put(&UserInterfaceState::deviceName, name); });
}

void InterfaceController::setLabels(const QMap<QString, QString> &labels, const QString &languageFile) {
  enqueue([this, labels, languageFile] {
    put(&UserInterfaceState::labels, labels);
    put(&UserInterfaceState::languageFile, languageFile);
  });
}

void InterfaceController::setProducts(const ProductTables &tables) {
  enqueue([this, tables] {
    put(&UserInterfaceState::detectedProducts, tables.detected);
    put(&UserInterfaceState::addedProducts, tables.added);
    put(&UserInterfaceState::selectedProducts, tables.selected);
    put(&UserInterfaceState::dockMenuProducts, tables.dockMenu);
    put(&UserInterfaceState::activeProduct, static_cast<int>(tables.active));
  });
}

void InterfaceController::setCheckMark(const QString &glyph) {
  enqueue([this, glyph] { put(&UserInterfaceState::checkMark, glyph); });
}

void InterfaceController::showPasswordPanel(bool shown) {
  enqueue([this, shown] { put(&UserInterfaceState::passwordWanted, shown); });
}

void InterfaceController::windowWillClose() {
  enqueue([this] { put(&UserInterfaceState::windowVisible, false); });
}

void InterfaceController::quit(int status) {
  enqueue([this, status] {
    publish();
    if (!std::exchange(m_quitAsked, true)) {
      m_userInterface.quit(status);
    }
  });
}

void InterfaceController::showConnectionIndicator(bool shown) {
  enqueue([this, shown] { put(&UserInterfaceState::connectionIndicator, shown); });
  flush();
}

void InterfaceController::showConnecting(bool connecting) {
  enqueue([this, connecting] {
    put(&UserInterfaceState::busy, connecting);
    put(&UserInterfaceState::connectionIndicator, connecting);
  });
  flush();
}

} // namespace sonorel
