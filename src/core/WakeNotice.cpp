#include "core/WakeNotice.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

void WakeNotice::show() {
  if (!m_before) {
    m_before = m_log.viewText();
  }
  m_log.showOnly(m_strings.text(u"WaitingForProductText"_s));
  m_interface.flush();
}

void WakeNotice::end() {
  if (const auto before = std::exchange(m_before, std::nullopt)) {
    m_log.showOnly(*before);
  }
}

} // namespace sonorel
