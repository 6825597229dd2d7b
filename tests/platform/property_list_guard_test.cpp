#include "platform/Failure.h"
#include "platform/linux/PropertyListGuard.h"
#include "support/Printers.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <chrono>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray listOf(const QByteArray &content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">" +
         content + "</plist>\n";
}

// The reason of the refusal, empty when the list passes.
QString refusalOf(const QByteArray &bytes) {
  try {
    if (isBinaryPropertyList(bytes)) {
      checkBinaryPropertyList(bytes);
    } else {
      checkXmlPropertyList(bytes);
    }
    return {};
  } catch (const Failure &e) {
    EXPECT_EQ(e.kind(), FailureKind::Damaged);
    return e.reason();
  }
}

#define EXPECT_REFUSED(bytes, words)                                                                                 \
  EXPECT_TRUE(refusalOf(bytes).contains(QStringLiteral(words))) << refusalOf(bytes).toStdString()

// A binary list of objects that stand one after the other, the first one the root.
QByteArray binaryListOf(const QList<QByteArray> &objects) {
  QByteArray bytes = "bplist00";
  QByteArray table;
  for (const QByteArray &object : objects) {
    table += static_cast<char>(bytes.size());
    bytes += object;
  }
  const auto tableStart = static_cast<char>(bytes.size());
  QByteArray trailer(32, '\0');
  trailer[6] = 1;
  trailer[7] = 1;
  trailer[15] = static_cast<char>(objects.size());
  trailer[31] = tableStart;
  return bytes + table + trailer;
}

} // namespace

TEST(XmlPropertyListGuard, PassesEveryKindOfValue) {
  EXPECT_EQ(
      refusalOf(listOf("<dict><key>a</key><string>x &amp; &#x20AC; y</string><key>b</key><array><true/><false/>"
                       "<true></true></array><key>c</key><integer>-12</integer><key>d</key><real>1.5e3</real>"
                       "<key>e</key><date>2026-02-28T23:59:59Z</date><key>f</key><data>\n\tAAE=\n\t</data>"
                       "<key>g</key><dict/><key/><string/><key>h</key><data/><key>i</key><integer>0x1F</integer>"
                       "</dict>")),
      QString());
}

TEST(XmlPropertyListGuard, PassesCommentsAndCharacterData) {
  EXPECT_EQ(
      refusalOf("\xEF\xBB\xBF<!-- a > b --><plist version=\"1.0\"><!-- <dict> -->\n<string><![CDATA[<&>]]></string>"
                "</plist><!-- end -->\n"),
      QString());
}

TEST(XmlPropertyListGuard, RefusesWhatIsCutAtAnyLength) {
  const QByteArray whole =
      "<plist version=\"1.0\"><dict><key>k</key><array><string>v</string><data>AAE=</data></array>"
      "</dict></plist>";
  ASSERT_EQ(refusalOf(whole), QString());
  for (qsizetype length = 0; length < whole.size(); ++length) {
    EXPECT_NE(refusalOf(whole.left(length)), QString()) << length;
  }
}

TEST(XmlPropertyListGuard, RefusesTagsThatDoNotFit) {
  EXPECT_REFUSED(listOf("<dict><key>a</key><string>x</dict>"), "end tag");
  EXPECT_REFUSED(listOf("<array></dict>"), "end tag");
  EXPECT_REFUSED(listOf("<dict><string>x</string></dict>"), "in turn");
  EXPECT_REFUSED(listOf("<dict><key>a</key><key>b</key><true/></dict>"), "in turn");
  EXPECT_REFUSED(listOf("<dict><key>a</key></dict>"), "no value");
  EXPECT_REFUSED(listOf("<array><key>a</key></array>"), "outside a dictionary");
  EXPECT_REFUSED(listOf("<set/>"), "unknown element");
  EXPECT_REFUSED(listOf("<true/><true/>"), "more than one value");
  EXPECT_REFUSED(listOf(""), "no value");
  EXPECT_REFUSED(listOf("<array>loose text</array>"), "between the elements");
  EXPECT_REFUSED(listOf("<true/>") + "<true/>", "after the end");
  EXPECT_REFUSED(QByteArray("<dict/>"), "does not begin");
  EXPECT_REFUSED(QByteArray("no list at all"), "between the elements");
}

TEST(XmlPropertyListGuard, RefusesWrongValues) {
  EXPECT_REFUSED(listOf("<integer>twelve</integer>"), "no integer");
  EXPECT_REFUSED(listOf("<integer/>"), "no integer");
  EXPECT_REFUSED(listOf("<integer>010</integer>"), "no integer");
  EXPECT_REFUSED(listOf("<integer>9223372036854775808</integer>"), "no integer");
  EXPECT_REFUSED(listOf("<real>1,5</real>"), "no number");
  EXPECT_REFUSED(listOf("<date>2026-02-30T00:00:00Z</date>"), "no date");
  EXPECT_REFUSED(listOf("<data>AAE</data>"), "no base64");
  EXPECT_REFUSED(listOf("<data>A*E=</data>"), "no base64");
  EXPECT_REFUSED(listOf("<data>=AAA</data>"), "no base64");
  EXPECT_REFUSED(listOf("<true>yes</true>"), "holds text");
  EXPECT_REFUSED(listOf("<string>a &nbsp; b</string>"), "unknown entity");
  EXPECT_REFUSED(listOf("<string>a & b</string>"), "unknown entity");
}

TEST(XmlPropertyListGuard, RefusesOtherEncodingsAndOwnEntities) {
  EXPECT_REFUSED(listOf("<string>caf\xE9</string>"), "not UTF-8");
  EXPECT_REFUSED(listOf(QByteArray("<string>a\0b</string>", 20)), "NUL");
  EXPECT_REFUSED(QByteArray("<!DOCTYPE plist [<!ENTITY a \"aaaa\">]><plist><string>&a;</string></plist>"),
                 "entities");
}

TEST(XmlPropertyListGuard, Allows64LevelsAndNoMore) {
  const auto nested = [](int levels) {
    return listOf(QByteArray("<array>").repeated(levels) + QByteArray("</array>").repeated(levels));
  };
  EXPECT_EQ(refusalOf(nested(64)), QString());
  EXPECT_REFUSED(nested(65), "64 levels");
  EXPECT_REFUSED(nested(100000), "64 levels");
}

TEST(XmlPropertyListGuard, RefusesTwoHundredMegabytesBeforeLookingAtThem) {
  const QByteArray large(200 * 1024 * 1024, 'x');
  const auto before = std::chrono::steady_clock::now();
  EXPECT_REFUSED(large, "larger than");
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(60)); // and not hours
}

TEST(XmlPropertyListGuard, RefusesMoreValuesThanMemoryShouldHold) {
  EXPECT_REFUSED(listOf("<array>" + QByteArray("<true/>").repeated(4'000'001) + "</array>"), "more than 4000000");
}

// The parser moves the rest of a text for each entity, and looks through a row of keys for each new one.
TEST(XmlPropertyListGuard, RefusesTextsThatTheParserWouldTakeHoursFor) {
  const auto text = [](int entities) {
    return listOf("<string>" + QByteArray("&amp;").repeated(entities) + "</string>");
  };
  EXPECT_EQ(refusalOf(text(20'000)), QString());
  EXPECT_REFUSED(text(200'000), "too many entities");
  EXPECT_REFUSED(
      listOf("<array>" + ("<string>" + QByteArray("&lt;").repeated(50'000) + "</string>").repeated(40) + "</array>"),
      "too many entities");
  // Many short texts with an entity each are an ordinary list.
  EXPECT_EQ(refusalOf(listOf(
                "<array>" +
                QByteArray("<string>/Music/Mac/Rock &amp; Roll/01 Salt &amp; Pepper.mp3</string>").repeated(200'000) +
                "</array>")),
            QString());
}

TEST(XmlPropertyListGuard, RefusesDictionariesThatTheParserWouldTakeMinutesFor) {
  const auto dictionary = [](int keys) {
    QByteArray entries;
    for (int i = 0; i < keys; ++i) {
      entries += "<key>" + QByteArray::number(i) + "</key><true/>";
    }
    return "<dict>" + entries + "</dict>";
  };
  EXPECT_EQ(refusalOf(listOf(dictionary(100'000))), QString()); // a photo library twice the largest one known
  EXPECT_REFUSED(listOf(dictionary(320'000)), "too many keys");
  EXPECT_REFUSED(listOf("<array>" + dictionary(190'000).repeated(3) + "</array>"), "too many keys");
  EXPECT_EQ(refusalOf(listOf("<array>" + dictionary(5).repeated(100'000) + "</array>")), QString());
}

TEST(BinaryPropertyListGuard, PassesSmallLists) {
  EXPECT_EQ(refusalOf(binaryListOf({"\x53"
                                    "abc"})),
            QString());
  EXPECT_EQ(refusalOf(binaryListOf({QByteArray("\xD1\x01\x02", 3),
                                    "\x51"
                                    "k",
                                    "\x11\x01\x02"})),
            QString());
  EXPECT_EQ(refusalOf(binaryListOf({QByteArray("\xA2\x01\x01", 3), "\x09"})), QString());
}

TEST(BinaryPropertyListGuard, RefusesWhatIsCutAtAnyLength) {
  const QByteArray whole = binaryListOf({QByteArray("\xD1\x01\x02", 3),
                                         "\x51"
                                         "k",
                                         "\x53"
                                         "abc"});
  ASSERT_EQ(refusalOf(whole), QString());
  for (qsizetype length = 6; length < whole.size(); ++length) {
    EXPECT_NE(refusalOf(whole.left(length)), QString()) << length;
  }
}

TEST(BinaryPropertyListGuard, RefusesObjectsThatLieOutside) {
  EXPECT_REFUSED(binaryListOf({"\x5F\x12\x7F\xFF\xFF\xFF"}), "cut short");
  EXPECT_REFUSED(binaryListOf({"\x53"
                               "ab"}),
                 "cut short");
  EXPECT_REFUSED(binaryListOf({QByteArray("\xA1\x07", 2)}), "does not hold");
  EXPECT_REFUSED(binaryListOf({QByteArray("\xD1\x01\x01", 3), "\x09"}), "no text");
  EXPECT_REFUSED(binaryListOf({"\xC1"}), "unknown object");
  EXPECT_REFUSED(binaryListOf({QByteArray("\x00", 1)}), "unknown object");
}

TEST(BinaryPropertyListGuard, RefusesTextsThatTheParserCannotHold) {
  const auto withKey = [](const QByteArray &key) {
    return binaryListOf({QByteArray("\xD1\x01\x02", 3), key, "\x09"});
  };
  EXPECT_EQ(refusalOf(withKey(QByteArray("\x63\x00\xE9\xD8\x3C\xDF\xB5", 7))), QString());
  EXPECT_REFUSED(withKey(QByteArray("\x52\x00\x61", 3)), "cannot hold");
  EXPECT_REFUSED(withKey("\x51\xE9"), "cannot hold");
  EXPECT_REFUSED(withKey(QByteArray("\x61\x00\x00", 3)), "cannot hold");
  EXPECT_REFUSED(withKey("\x61\xDF\xB5"), "cannot hold");
  EXPECT_REFUSED(withKey("\x61\xD8\x3C"), "within a character");
}

TEST(BinaryPropertyListGuard, RefusesAListThatHoldsItself) {
  EXPECT_REFUSED(binaryListOf({QByteArray("\xA1\x00", 2)}), "holds itself");
}

// Each level names the next one twice: 2 to the power of 40 values in 180 bytes.
TEST(BinaryPropertyListGuard, RefusesSharedObjectsThatExpandWithoutBound) {
  QList<QByteArray> objects;
  for (char level = 1; level <= 40; ++level) {
    objects.append(QByteArray("\xA2") + level + level);
  }
  objects.append("\x09");
  const auto before = std::chrono::steady_clock::now();
  EXPECT_REFUSED(binaryListOf(objects), "too many values");
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(60)); // and not hours
}

TEST(PropertyListGuard, GivesTheListWithoutWhatIsNotWanted) {
  const std::vector<QByteArrayList> keys{{"list"}, {}, {"a", "c"}};
  const auto wanted = [&](const QByteArray &content) {
    return wantedOfXmlPropertyList("<plist><dict>" + content + "</dict></plist>", keys);
  };
  EXPECT_EQ(wanted("<key>x</key><string>list</string> <key>list</key><dict>\n"
                   "<key>1</key><dict><key>a</key><real>1</real><key>b</key><dict><key>a</key><array/></dict>\n"
                   "<!-- c --><key/><true/> <key>c</key><array><dict><key>b</key><false/></dict></array></dict>\n"
                   "<key>2</key><string>b</string></dict><key>y</key><dict/>\n"),
            "<plist><dict> <key>list</key><dict>\n"
            "<key>1</key><dict><key>a</key><real>1</real>"
            " <key>c</key><array><dict><key>b</key><false/></dict></array></dict>\n"
            "<key>2</key><string>b</string></dict>\n</dict></plist>");
  EXPECT_EQ(wanted("<key>li&#115;t</key><true/><key><![CDATA[y]]></key><true/>"),
            "<plist><dict><key>li&#115;t</key><true/><key><![CDATA[y]]></key><true/></dict></plist>");
  EXPECT_EQ(wantedOfXmlPropertyList("<plist><array><dict><key>x</key><true/></dict></array></plist>", keys),
            "<plist><array><dict><key>x</key><true/></dict></array></plist>");
  EXPECT_THROW((void)wanted("<key>x</key><integer>no</integer>"), Failure);
  EXPECT_THROW((void)wanted("<key>x</key><dict><key>y</key></dict>"), Failure);
}
