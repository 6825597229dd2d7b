#include "platform/linux/PropertyListGuard.h"

#include <algorithm>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kHeader = 8;   // "bplist0" and one character
constexpr qsizetype kTrailer = 32; // sizes and the root, at the end

// Walks the objects from the root as the parser would expand them, shared ones again at each place.
class BinaryScan {
public:
  explicit BinaryScan(QByteArrayView bytes) : m_bytes(bytes) {}

  void run() {
    readTrailer();
    m_waiting.push_back({m_root, 1, false});
    while (!m_waiting.empty()) {
      const Place place = m_waiting.back();
      m_waiting.pop_back();
      visit(place);
    }
  }

private:
  struct Place {
    quint64 object;
    int depth;
    bool isKey;
  };

  QByteArrayView m_bytes;
  std::vector<Place> m_waiting;
  quint64 m_root = 0;
  quint64 m_count = 0;
  quint64 m_table = 0;
  int m_offsetSize = 0;
  int m_referenceSize = 0;
  qsizetype m_objects = 0; // visited
  quint64 m_expanded = 0;  // bytes of texts and data, as often as they are visited

  [[nodiscard]] quint64 number(quint64 position, int size) const {
    quint64 value = 0;
    for (int i = 0; i < size; ++i) {
      value = value << 8 | static_cast<quint8>(m_bytes[static_cast<qsizetype>(position) + i]);
    }
    return value;
  }

  // True when so many bytes stand from the position to the offset table.
  [[nodiscard]] bool holds(quint64 position, quint64 size) const {
    return position <= m_table && size <= m_table - position;
  }

  void require(bool condition, const QString &reason) const {
    if (!condition) {
      refusePropertyList(reason);
    }
  }

  void readTrailer() {
    require(m_bytes.size() >= kHeader + kTrailer && m_bytes.startsWith("bplist0"), u"the list is cut short"_s);
    const auto trailer = static_cast<quint64>(m_bytes.size() - kTrailer);
    m_offsetSize = static_cast<quint8>(m_bytes[static_cast<qsizetype>(trailer) + 6]);
    m_referenceSize = static_cast<quint8>(m_bytes[static_cast<qsizetype>(trailer) + 7]);
    m_count = number(trailer + 8, 8);
    m_root = number(trailer + 16, 8);
    m_table = number(trailer + 24, 8);
    require(m_offsetSize >= 1 && m_offsetSize <= 8 && m_referenceSize >= 1 && m_referenceSize <= 8,
            u"the list's trailer holds impossible sizes"_s);
    require(m_table >= kHeader && m_table <= trailer, u"the list's offset table lies outside of it"_s);
    require(m_count > 0 && m_count <= (trailer - m_table) / static_cast<quint64>(m_offsetSize),
            u"the list's offset table is cut short"_s);
  }

  void visit(const Place &place) {
    require(++m_objects <= kBinaryPropertyListObjects, u"the list expands to too many values"_s);
    require(place.object < m_count, u"the list refers to an object that it does not hold"_s);
    require(place.depth <= PropertyLists::kDepthLimit, u"the list is nested too deeply, or holds itself"_s);
    const quint64 position = number(m_table + place.object * static_cast<quint64>(m_offsetSize), m_offsetSize);
    require(position >= kHeader && holds(position, 1), u"an object lies outside of the list"_s);
    const auto marker = static_cast<quint8>(m_bytes[static_cast<qsizetype>(position)]);
    const int kind = marker >> 4;
    require(!place.isKey || kind == 0x5 || kind == 0x6, u"a key is no text"_s);
    visitKind(place, kind, marker & 0x0F, position + 1);
  }

  void visitKind(const Place &place, int kind, int low, quint64 position) {
    switch (kind) {
    case 0x0:
      return require(low == 0x8 || low == 0x9, u"the list holds an unknown object"_s);
    case 0x1:
      return checkBytes(position, quint64{1} << low, low <= 3);
    case 0x2:
      return checkBytes(position, quint64{1} << low, low == 2 || low == 3);
    case 0x3:
      return checkBytes(position, 8, low == 3);
    case 0x8:
      return checkBytes(position, static_cast<quint64>(low) + 1, low <= 7);
    case 0x4:
      return (void)content(1, low, position);
    case 0x5:
      return checkAscii(content(1, low, position));
    case 0x6:
      return checkUtf16(content(2, low, position));
    case 0xA:
      return children(place, low, position, 1);
    case 0xD:
      return children(place, low, position, 2);
    default:
      refusePropertyList(u"the list holds an unknown object"_s);
    }
  }

  void checkBytes(quint64 position, quint64 size, bool known) const {
    require(known && holds(position, size), u"an object's size is wrong"_s);
  }

  // The count that follows a marker: its low half, or the integer object behind it.
  quint64 count(int low, quint64 &position) const {
    if (low != 0x0F) {
      return static_cast<quint64>(low);
    }
    require(holds(position, 1), u"an object is cut short"_s);
    const auto marker = static_cast<quint8>(m_bytes[static_cast<qsizetype>(position)]);
    const int size = 1 << (marker & 0x0F);
    require((marker & 0xF0) == 0x10 && (marker & 0x0F) <= 3 && holds(position + 1, static_cast<quint64>(size)),
            u"an object's count is wrong"_s);
    const quint64 value = number(position + 1, size);
    position += 1 + static_cast<quint64>(size);
    require(value <= static_cast<quint64>(m_bytes.size()), u"an object is cut short"_s);
    return value;
  }

  QByteArrayView content(quint64 unit, int low, quint64 position) {
    const quint64 size = count(low, position) * unit;
    require(holds(position, size), u"an object is cut short"_s);
    m_expanded += size;
    require(m_expanded <= static_cast<quint64>(PropertyLists::kSizeLimit), u"the list expands to too many bytes"_s);
    return m_bytes.sliced(static_cast<qsizetype>(position), static_cast<qsizetype>(size));
  }

  // The parser keeps texts as C strings and ends the program when a key holds a NUL.
  void checkAscii(QByteArrayView text) const {
    const bool valid =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<quint8>(c) - 1U < 0x7FU; });
    require(valid, u"a text holds a character that it cannot hold"_s);
  }

  void checkUtf16(QByteArrayView text) const {
    bool expectsLow = false;
    for (qsizetype i = 0; i < text.size(); i += 2) {
      const auto unit = static_cast<char16_t>(static_cast<quint8>(text[i]) << 8 | static_cast<quint8>(text[i + 1]));
      require(unit != 0 && QChar::isLowSurrogate(unit) == expectsLow,
              u"a text holds a character that it cannot hold"_s);
      expectsLow = QChar::isHighSurrogate(unit);
    }
    require(!expectsLow, u"a text ends within a character"_s);
  }

  void children(const Place &place, int low, quint64 position, quint64 columns) {
    const quint64 rows = count(low, position);
    const auto step = static_cast<quint64>(m_referenceSize);
    require(holds(position, rows * columns * step), u"an object is cut short"_s);
    require(rows * columns + m_waiting.size() <= static_cast<quint64>(kBinaryPropertyListObjects),
            u"the list expands to too many values"_s);
    for (quint64 i = 0; i < rows * columns; ++i) {
      const bool isKey = columns == 2 && i < rows;
      m_waiting.push_back({number(position + i * step, m_referenceSize), place.depth + 1, isKey});
    }
  }
};

} // namespace

void checkBinaryPropertyList(QByteArrayView bytes) {
  checkPropertyListSize(bytes);
  BinaryScan(bytes).run();
}

} // namespace sonorel
