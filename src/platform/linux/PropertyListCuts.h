// What is left out of an XML property list while it is looked through: keys that are not wanted, with their values.
// Pure; one thread at a time.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>

#include <span>
#include <utility>
#include <vector>

namespace sonorel {

class PropertyListCuts {
public:
  static constexpr int kNoLevel = -1; // of a dictionary in which every key is wanted, at every level below too

  // keys: as PropertyLists::WantedKeys; must outlive the object.
  explicit PropertyListCuts(std::span<const QByteArrayList> keys) : m_keys(keys) {}

  [[nodiscard]] int outermostLevel() const { return m_keys.empty() ? kNoLevel : 0; }
  [[nodiscard]] int levelBelow(int level) const;
  // key as it stands in the list; one that is not written in plain characters counts as wanted.
  [[nodiscard]] bool isWanted(int level, QByteArrayView key) const;
  // In the order of the list.
  void cut(qsizetype begin, qsizetype end);
  [[nodiscard]] QByteArray rest(QByteArrayView bytes) const;

private:
  std::span<const QByteArrayList> m_keys;
  std::vector<std::pair<qsizetype, qsizetype>> m_cuts; // begin and end
  qsizetype m_cutBytes = 0;
};

} // namespace sonorel
