// The window's values, and the one who changes them. Whoever wants a change asks for it, from any thread, and it
// takes effect on the controller's thread, in the order asked; then a copy of all values is published. Questions are
// opened and answered later; nobody waits. Read next: core/state/View.h, platform/UserInterface.h.
#pragma once

#include "core/OpenQuestions.h"
#include "core/state/Strings.h"
#include "core/state/TransferBoard.h"
#include "core/state/View.h"
#include "platform/Loop.h"
#include "platform/UserInterface.h"
#include "products/ProductRows.h"

#include <QMap>

#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

namespace sonorel {

class InterfaceController final : public View {
public:
  static constexpr std::chrono::milliseconds kPulsePeriod{300};

  // All references must outlive the object, and the loop must not run any more when it is destroyed.
  InterfaceController(Loop &loop, UserInterface &userInterface, const TransferBoard &board, const Strings &strings);
  ~InterfaceController() override;
  InterfaceController(const InterfaceController &) = delete;
  InterfaceController &operator=(const InterfaceController &) = delete;

  // --- View ---
  void fillMessageLog(std::function<QString()> text) override;
  void windowFrontCentre() override;
  void setEnableDisableCancelBtn(bool enabled) override;
  void setHighlightCancelBtn(bool highlighted) override;
  void setProgressBar(double percent) override;
  void setDockIcon(const QString &iconImageType) override;
  void stopPulse() override;
  void selectTab(Tab tab) override;
  void setLanguageEnabled(bool enabled) override;
  void attention() override;
  void alert(const QString &message, const QString &informativeText) override;
  quint32 ask(Question question, std::function<void(int)> answered) override;
  void withdraw(quint32 question) override;
  void transferStateChanged() override;
  void transferComplete() override;

  // --- further values; any thread ---
  void setConnected(bool connected);
  void setDeviceName(const QString &name);
  void setLabels(const QMap<QString, QString> &labels, const QString &languageFile);
  void setProducts(const ProductTables &tables);
  void setCheckMark(const QString &glyph);
  void showPasswordPanel(bool shown); // always with an empty field
  void windowWillClose();             // the window is hidden
  void quit(int status);              // the first status counts
  // Runs on the controller's thread when all that was asked for before is shown, with the log as it is now.
  void whenShown(std::function<void()> told);

  // --- controller's thread ---
  // Everything that was asked for takes effect now: before something blocks.
  void flush();
  // The progress indicator; connecting makes the client busy as well. Both take effect at once.
  void showConnectionIndicator(bool shown);
  void showConnecting(bool connecting);
  // A number that no question has, or a button that it has not, is ignored.
  void answerAlert(quint32 serial, int button);
  // The program ends: every question, and every one asked from now on, is answered with -1.
  void closeQuestions();
  [[nodiscard]] const UserInterfaceState &state() const { return m_state; }

private:
  using LogText = std::function<QString()>;

  void enqueue(std::function<void()> change);
  void showLog(const std::shared_ptr<LogText> &text);
  void keepWaitingLog();
  template <typename Value> void put(Value UserInterfaceState::*field, const Value &value);
  void publish();
  void showImage(const QString &image);
  void pulsateImage();

  Loop &m_loop;
  UserInterface &m_userInterface;
  const TransferBoard &m_board;
  const Strings &m_strings;
  OpenQuestions m_questions;

  std::mutex m_mutex; // guards everything down to the empty line
  std::vector<std::function<void()>> m_wanted;
  bool m_posted = false;
  // Wanted and not yet in effect, shared with the operation that will show it; null: none, or one that must stay as
  // it is.
  std::shared_ptr<LogText> m_waitingLog;

  // Controller's thread.
  UserInterfaceState m_state;
  bool m_changed = false;
  Loop::TimerId m_pulsatingTimer = 0;
  bool m_pulsateImageToggler = false;
  bool m_quitAsked = false;
};

} // namespace sonorel
