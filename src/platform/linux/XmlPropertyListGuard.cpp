#include "platform/linux/PropertyListCuts.h"
#include "platform/linux/PropertyListGuard.h"
#include "platform/linux/PropertyListText.h"

#include <array>
#include <utility>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

enum class Element { Plist, Dict, Array, Key, String, Integer, Real, True, False, Date, Data };

struct ElementName {
  QByteArrayView name;
  Element element;
};

constexpr std::array<ElementName, 11> kElements{{{"plist", Element::Plist},
                                                 {"dict", Element::Dict},
                                                 {"array", Element::Array},
                                                 {"key", Element::Key},
                                                 {"string", Element::String},
                                                 {"integer", Element::Integer},
                                                 {"real", Element::Real},
                                                 {"true", Element::True},
                                                 {"false", Element::False},
                                                 {"date", Element::Date},
                                                 {"data", Element::Data}}};

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isContainer(Element element) {
  return element == Element::Plist || element == Element::Dict || element == Element::Array;
}

constexpr qsizetype kNoCut = -1;

// One pass over the bytes with a stack of open containers; never recursive, allocates only that stack and the places
// of what is not wanted.
class XmlScan {
public:
  explicit XmlScan(QByteArrayView bytes, std::span<const QByteArrayList> keys = {}) : m_bytes(bytes), m_cuts(keys) {}

  void run() {
    prologue();
    while (!m_ended) {
      next();
    }
    skipBetween();
    if (m_at != m_bytes.size()) {
      refuse(u"something stands after the end of the list"_s);
    }
  }

  [[nodiscard]] QByteArray wanted() const { return m_cuts.rest(m_bytes); }

private:
  struct Open {
    Element element;
    qsizetype values = 0; // children, keys not counted
    qsizetype keys = 0;
    bool keyGiven = false; // in a dictionary: a key waits for its value
    int level = PropertyListCuts::kNoLevel;
    qsizetype cut = kNoCut; // where the key began whose value is not wanted
  };
  struct Tag {
    Element element;
    bool end = false;
    bool empty = false;
  };

  QByteArrayView m_bytes;
  PropertyListCuts m_cuts;
  qsizetype m_at = 0;
  qsizetype m_objects = 0;
  quint64 m_movedBytes = 0;
  quint64 m_comparedKeys = 0;
  std::vector<Open> m_open;
  bool m_ended = false;

  [[noreturn]] void refuse(const QString &reason) const { refusePropertyList(reason, m_at); }

  [[nodiscard]] bool at(QByteArrayView text) const {
    return m_bytes.size() - m_at >= text.size() && m_bytes.sliced(m_at, text.size()) == text;
  }

  void skipTo(QByteArrayView ending) {
    const qsizetype found = m_bytes.indexOf(ending, m_at);
    if (found < 0) {
      refuse(u"the list ends too early"_s);
    }
    m_at = found + ending.size();
  }

  // White space, comments and processing instructions.
  void skipBetween() {
    while (true) {
      while (m_at < m_bytes.size() && isSpace(m_bytes[m_at])) {
        ++m_at;
      }
      if (at("<!--")) {
        m_at += 4;
        skipTo("-->");
      } else if (at("<?")) {
        skipTo("?>");
      } else {
        return;
      }
    }
  }

  void prologue() {
    if (at("\xEF\xBB\xBF")) {
      m_at += 3;
    }
    skipBetween();
    if (at("<!DOCTYPE")) {
      const qsizetype start = m_at;
      skipTo(">");
      if (m_bytes.sliced(start, m_at - start).contains('[')) {
        refuse(u"the list declares entities of its own"_s);
      }
      skipBetween();
    }
    const Tag tag = readTag();
    if (tag.element != Element::Plist || tag.end || tag.empty) {
      refuse(u"the list does not begin with a \"plist\" element"_s);
    }
    m_open.push_back({tag.element});
  }

  void next() {
    const qsizetype begin = m_at;
    skipBetween();
    const Tag tag = readTag();
    if (tag.end) {
      closeContainer(tag.element);
      endOfValue();
      return;
    }
    enterChild(tag.element);
    if (!tag.empty && isContainer(tag.element)) {
      openContainer(tag.element);
      return;
    }
    QByteArrayView text;
    if (tag.empty) {
      checkText(tag.element, text);
    } else {
      text = leaf(tag.element);
    }
    if (tag.element != Element::Key) {
      endOfValue();
    } else if (!m_cuts.isWanted(m_open.back().level, text)) {
      m_open.back().cut = begin;
    }
  }

  void openContainer(Element element) {
    if (m_open.size() > static_cast<std::size_t>(PropertyLists::kDepthLimit)) {
      refuse(u"the list is nested more than %1 levels deep"_s.arg(PropertyLists::kDepthLimit));
    }
    const Open &parent = m_open.back();
    Open child{element};
    if (element == Element::Dict && parent.cut == kNoCut) {
      child.level = parent.element == Element::Plist ? m_cuts.outermostLevel() : m_cuts.levelBelow(parent.level);
    }
    m_open.push_back(child);
  }

  // What stands in front of a key goes with it.
  void endOfValue() {
    if (m_open.empty() || m_open.back().cut == kNoCut) {
      return;
    }
    m_cuts.cut(std::exchange(m_open.back().cut, kNoCut), m_at);
  }

  void enterChild(Element element) {
    if (++m_objects > kPropertyListObjects) {
      refuse(u"the list holds more than %1 values"_s.arg(kPropertyListObjects));
    }
    Open &parent = m_open.back();
    if (element == Element::Plist) {
      refuse(u"a \"plist\" element stands inside the list"_s);
    }
    if (parent.element == Element::Dict) {
      if ((element == Element::Key) == parent.keyGiven) {
        refuse(u"a dictionary does not hold keys and values in turn"_s);
      }
      parent.keyGiven = element == Element::Key;
    } else if (element == Element::Key) {
      refuse(u"a key stands outside a dictionary"_s);
    }
    if (parent.element == Element::Plist && parent.values > 0) {
      refuse(u"the list holds more than one value"_s);
    }
    ++(element == Element::Key ? parent.keys : parent.values);
  }

  void closeContainer(Element element) {
    const Open open = m_open.back();
    if (open.element != element) {
      refuse(u"an end tag does not fit its start tag"_s);
    }
    if (open.keyGiven) {
      refuse(u"a key has no value"_s);
    }
    if (element == Element::Plist && open.values == 0) {
      refuse(u"the list holds no value"_s);
    }
    const auto keys = static_cast<quint64>(open.keys);
    m_comparedKeys += keys * keys;
    require(m_comparedKeys <= kPropertyListComparedKeys, u"its dictionaries hold too many keys"_s);
    m_open.pop_back();
    m_ended = m_open.empty();
  }

  QByteArrayView leaf(Element element) {
    const qsizetype start = m_at;
    const qsizetype end = m_bytes.indexOf('<', m_at);
    if (end < 0) {
      refuse(u"the list ends too early"_s);
    }
    m_at = end;
    while (at("<![CDATA[") || at("<!--")) {
      if (element != Element::String && element != Element::Key) {
        refuse(u"a number, date or data element holds more than text"_s);
      }
      skipTo(at("<!--") ? QByteArrayView("-->") : QByteArrayView("]]>"));
      const qsizetype more = m_bytes.indexOf('<', m_at);
      m_at = more < 0 ? m_bytes.size() : more;
    }
    const QByteArrayView text = m_bytes.sliced(start, m_at - start);
    const Tag tag = readTag();
    if (!tag.end || tag.element != element) {
      refuse(u"an end tag does not fit its start tag"_s);
    }
    checkText(element, text);
    return text;
  }

  void checkText(Element element, QByteArrayView text) {
    switch (element) {
    case Element::Key:
    case Element::String:
      return checkEntities(text);
    case Element::Integer:
      return require(isListInteger(text), u"an integer element holds no integer"_s);
    case Element::Real:
      return require(isListReal(text), u"a real element holds no number"_s);
    case Element::Date:
      return require(isListDate(text), u"a date element holds no date"_s);
    case Element::Data:
      return require(isListBase64(text), u"a data element holds no base64 text"_s);
    case Element::True:
    case Element::False:
      return require(text.trimmed().isEmpty(), u"a boolean element holds text"_s);
    case Element::Plist:
    case Element::Dict:
    case Element::Array:
      return;
    }
  }

  void require(bool condition, const QString &reason) const {
    if (!condition) {
      refuse(reason);
    }
  }

  void checkEntities(QByteArrayView text) {
    const bool isPlain = !text.contains("<![CDATA[");
    for (qsizetype i = text.indexOf('&'); i >= 0; i = text.indexOf('&', i + 1)) {
      m_movedBytes += static_cast<quint64>(text.size() - i);
      require(m_movedBytes <= kPropertyListMovedBytes, u"its texts hold too many entities"_s);
      const qsizetype end = isPlain ? text.indexOf(';', i) : i;
      require(!isPlain || (end >= 0 && isListEntity(text.sliced(i + 1, end - i - 1))),
              u"a text holds an unknown entity"_s);
    }
  }

  Tag readTag() {
    if (m_at >= m_bytes.size()) {
      refuse(u"the list ends too early"_s);
    }
    if (m_bytes[m_at] != '<') {
      refuse(u"text stands between the elements"_s);
    }
    const qsizetype end = m_bytes.indexOf('>', m_at);
    if (end < 0) {
      refuse(u"the list ends too early"_s);
    }
    QByteArrayView inside = m_bytes.sliced(m_at + 1, end - m_at - 1);
    Tag tag{Element::Plist};
    tag.end = inside.startsWith('/');
    inside = tag.end ? inside.sliced(1) : inside;
    tag.empty = inside.endsWith('/');
    inside = tag.empty ? inside.chopped(1) : inside;
    tag.element = elementOf(inside);
    if (tag.end && tag.empty) {
      refuse(u"a tag is both start and end"_s);
    }
    m_at = end + 1;
    return tag;
  }

  Element elementOf(QByteArrayView inside) const {
    qsizetype length = 0;
    while (length < inside.size() && !isSpace(inside[length])) {
      ++length;
    }
    const QByteArrayView name = inside.first(length);
    for (const ElementName &known : kElements) {
      if (known.name == name) {
        // Only "plist" has an attribute, its version.
        require(known.element == Element::Plist || inside.sliced(length).trimmed().isEmpty(),
                u"an element has an attribute"_s);
        return known.element;
      }
    }
    refuse(u"the list holds an unknown element"_s);
  }
};

// Other encodings would have to be declared; what is not declared is UTF-8.
void checkEncoding(QByteArrayView bytes) {
  if (!bytes.isValidUtf8()) {
    refusePropertyList(u"the list is not UTF-8"_s);
  }
  if (bytes.contains('\0')) {
    refusePropertyList(u"the list holds a NUL character"_s);
  }
}

} // namespace

void checkXmlPropertyList(QByteArrayView bytes) {
  checkPropertyListSize(bytes);
  checkEncoding(bytes);
  XmlScan(bytes).run();
}

QByteArray wantedOfXmlPropertyList(QByteArrayView bytes, std::span<const QByteArrayList> keys) {
  checkPropertyListSize(bytes);
  checkEncoding(bytes);
  XmlScan scan(bytes, keys);
  scan.run();
  return scan.wanted();
}

} // namespace sonorel
