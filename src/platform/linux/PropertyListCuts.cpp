#include "platform/linux/PropertyListCuts.h"

namespace sonorel {

int PropertyListCuts::levelBelow(int level) const {
  return level != kNoLevel && level + 1 < static_cast<int>(m_keys.size()) ? level + 1 : kNoLevel;
}

bool PropertyListCuts::isWanted(int level, QByteArrayView key) const {
  if (level == kNoLevel) {
    return true;
  }
  const QByteArrayList &wanted = m_keys[static_cast<std::size_t>(level)];
  return wanted.isEmpty() || wanted.contains(key) || key.contains('&') || key.contains('<');
}

void PropertyListCuts::cut(qsizetype begin, qsizetype end) {
  m_cutBytes += end - begin;
  if (!m_cuts.empty() && m_cuts.back().second == begin) {
    m_cuts.back().second = end;
  } else {
    m_cuts.emplace_back(begin, end);
  }
}

QByteArray PropertyListCuts::rest(QByteArrayView bytes) const {
  QByteArray kept;
  kept.reserve(bytes.size() - m_cutBytes);
  qsizetype at = 0;
  for (const auto &[begin, end] : m_cuts) {
    kept.append(bytes.sliced(at, begin - at));
    at = end;
  }
  return kept.append(bytes.sliced(at));
}

} // namespace sonorel
