#include "core/WakeNotice.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

void WakeNotice::show() {
  m_shown = true;
  m_log.showOnly(m_strings.text(u"WaitingForProductText"_s));
  m_interface.flush();
}

void WakeNotice::end() {
  if (std::exchange(m_shown, false)) {
    m_log.show();
  }
}

} // namespace sonorel
