#include "platform/linux/EmbeddedProduct.h"

#include <gtest/gtest.h>

#include "ContractRegistration.h"
#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <regex>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class EmbeddedProducts : public testing::Test {
protected:
  TemporaryRoots temporary;
  [[nodiscard]] EmbeddedProduct product(const QString &name = u"Auracore 5"_s) const {
    return {temporary.roots.embedded, name};
  }
  [[nodiscard]] QByteArray point() const { return temporary.below("runtime/Volumes/VB-SHARE$").toUtf8(); }
  [[nodiscard]] std::string system(const std::string &name) const {
    return temporary.bytes("data/Embedded/VB-SHARE$/System/" + name);
  }
};

} // namespace

TEST_F(EmbeddedProducts, HaveTheFilesOfAProduct) {
  product().prepare();
  for (const char *folder : {"System", "Music", "Photo", "Video", "Favorites"}) {
    EXPECT_TRUE(std::filesystem::is_directory(temporary.base() / "data/Embedded/VB-SHARE$" / folder)) << folder;
  }
  EXPECT_EQ(system("OrvProductName.orv"), "Auracore 5\n");
  EXPECT_TRUE(std::regex_match(system("MacIPAdress.orv"), std::regex("127\\.0\\.0\\.1\n02(-[0-9A-F]{2}){5}\n")));
  EXPECT_EQ(system("OrvSpecialFavouriteLimits.orv"),
            "GREEN_ENABLED=1\r\nYELLOW_ENABLED=1\r\nRED_ENABLED=1\r\nBLUE_ENABLED=1\r\n"
            "GREEN_LIMIT=10\r\nYELLOW_LIMIT=10\r\nRED_LIMIT=10\r\nBLUE_LIMIT=10\r\n");
}

TEST_F(EmbeddedProducts, TellTheVersionThatTakesUnicode) {
  product(u"Auralis 5"_s).prepare();
  EXPECT_EQ(system("OrvProductName.orv"), "Auralis 5\n5.03.00.2387\n");
}

TEST_F(EmbeddedProducts, KeepWhatIsThere) {
  temporary.put("data/Embedded/VB-SHARE$/System/OrvProductName.orv", "Vaultbox 1\n");
  product().prepare();
  const std::string address = system("MacIPAdress.orv");
  product(u"Auralis 5"_s).prepare();
  EXPECT_EQ(system("OrvProductName.orv"), "Vaultbox 1\n");
  EXPECT_EQ(system("MacIPAdress.orv"), address);
}

TEST_F(EmbeddedProducts, AreNotMountedOnAFolderThatHoldsSomething) {
  temporary.put("runtime/Volumes/VB-SHARE$/file", "x");
  EXPECT_EQ(failureOf([&] { product().mount(point()); }), FailureKind::Exists);
  EXPECT_TRUE(temporary.exists("runtime/Volumes/VB-SHARE$/file"));
  EXPECT_FALSE(EmbeddedProduct::mountIdentity(point(), temporary.roots.embedded));
  EXPECT_FALSE(product().unmount(point()));
}

TEST_F(EmbeddedProducts, HaveAnotherIdentityAtEveryMount) {
  std::filesystem::create_directory(temporary.base() / "runtime/Volumes/VB-SHARE$");
  product().prepare();
  std::vector<quint64> seen;
  for (int i = 0; i < 50; ++i) {
    product().mount(point());
    const auto identity = EmbeddedProduct::mountIdentity(point(), temporary.roots.embedded);
    ASSERT_TRUE(identity);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), *identity), 0);
    seen.push_back(*identity);
    ASSERT_TRUE(product().unmount(point()));
  }
  EXPECT_TRUE(std::filesystem::is_directory(temporary.base() / "data/Embedded/VB-SHARE$/System"));
}

TEST_F(EmbeddedProducts, AnswerToTheirName) {
  EXPECT_TRUE(EmbeddedProduct::isAddress(u"embedded"_s));
  EXPECT_TRUE(EmbeddedProduct::isAddress(u"Embedded"_s));
  EXPECT_FALSE(EmbeddedProduct::isAddress(u"embedded2"_s));
  EXPECT_FALSE(EmbeddedProduct::isAddress(QString()));
}

} // namespace sonorel::test
