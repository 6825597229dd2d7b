// libplist's trees and our values, one into the other. Any thread; a thread's numeric locale does not matter while
// a CLocale lives in it.
#pragma once

#include <QByteArrayList>
#include <QVariant>

#include <clocale>
#include <memory>
#include <plist/plist.h>
#include <span>

namespace sonorel {

struct PlistFree {
  void operator()(void *node) const { plist_free(node); }
};
using PlistNode = std::unique_ptr<void, PlistFree>;

// libplist reads and writes reals in the thread's locale; lists always have a decimal point.
class CLocale {
public:
  CLocale() : m_c(::newlocale(LC_NUMERIC_MASK, "C", nullptr)), m_before(m_c ? ::uselocale(m_c) : nullptr) {}
  CLocale(const CLocale &) = delete;
  CLocale &operator=(const CLocale &) = delete;
  ~CLocale() {
    if (m_c) {
      ::uselocale(m_before);
      ::freelocale(m_c);
    }
  }

private:
  locale_t m_c;
  locale_t m_before;
};

// keys: as PropertyLists::WantedKeys. Throws Failure (Damaged) for a node that no property list of ours holds.
[[nodiscard]] QVariant valueOfNode(plist_t node, std::span<const QByteArrayList> keys = {});
// Throws Failure for a value that a property list cannot hold.
[[nodiscard]] PlistNode nodeOfValue(const QVariant &value);
[[nodiscard]] QString textOfNode(plist_t node); // of a string node

} // namespace sonorel
