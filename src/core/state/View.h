// The window as the logic sees it: setters that take effect on the controller's thread without being waited for,
// and alerts that are opened and answered later. Any thread may call them; each call carries its value.
#pragma once

#include "platform/UserInterface.h"

#include <QString>

#include <functional>

namespace sonorel {

enum class Tab { About = 0, Transfer = 1, Connection = 2, Preferences = 3 };

class View {
public:
  virtual ~View() = default;
  // Asked for the text when it takes effect, once for all calls that came meanwhile; the last one counts.
  virtual void fillMessageLog(std::function<QString()> text) = 0;
  virtual void windowFrontCentre() = 0;
  virtual void setEnableDisableCancelBtn(bool enabled) = 0; // never enables while a cancel is under way
  virtual void setHighlightCancelBtn(bool highlighted) = 0;
  virtual void setProgressBar(double percent) = 0;
  virtual void setDockIcon(const QString &iconImageType) = 0; // "Transfer" pulses; any other is an image
  virtual void stopPulse() = 0;
  virtual void selectTab(Tab tab) = 0;
  virtual void setLanguageEnabled(bool enabled) = 0;
  virtual void attention() = 0;
  // The standard alert: one "BtnOk" button.
  virtual void alert(const QString &message, const QString &informativeText) = 0;
  // answered runs on the controller's thread with the button's index, or -1 when the program ends first. Returns the
  // question's number, which takes the place of the one in question.
  virtual quint32 ask(Question question, std::function<void(int)> answered) = 0;
  // Whoever asked waits for the answer no more: the question goes, and answered with it. Nothing when it is answered.
  virtual void withdraw(quint32 question) = 0;
  // The transfer's state for everybody who watches, after all values of that transfer.
  virtual void transferStateChanged() = 0;
  virtual void transferComplete() = 0;
};

} // namespace sonorel
